#include "ZrUtil/ZrLogEmit.h"

#include <QtTest>

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Emitted
{
    int level;
    std::string file;
    int line;
    std::string function;
    std::string category;
    int reserved;
    qint64 time;
    std::string message;
};

std::mutex emittedLock; // guards emitted
std::vector<Emitted> emitted;

std::string text_of(const char* text)
{
    return text ? text : "<null>";
}

/// A type of an application with a formatter that fails in its own way.
struct Thrower
{
    int what = 0;
};

/// A type of an application with a working formatter.
struct Depth
{
    int decimetres = 0;
};

int evaluations = 0;

int counted(int value)
{
    ++evaluations;
    return value;
}

const char* counted(const char* text)
{
    ++evaluations;
    return text;
}

void emit_plain(const char* format)
{
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, format);
}

} // namespace

// Takes the place of the library's function: what the library hands over is seen here.
void zr_debug_log_modern(int level, const char* source_file, int source_line, const char* function,
    const char* category, int reserved, int64_t steady_time_ns, const char* message)
{
    const std::lock_guard<std::mutex> guard(emittedLock);
    emitted.push_back({level, text_of(source_file), source_line, text_of(function), text_of(category),
        reserved, steady_time_ns, text_of(message)});
}

namespace fmt {

template <> struct formatter<Thrower>
{
    template <class Context> auto parse(Context& context) { return context.begin(); }

    template <class Context> auto format(const Thrower& value, Context& context) const
    {
        if (value.what == 1)
            throw std::runtime_error("of its own");
        if (value.what == 2)
            throw 7; // NOLINT: not an exception class on purpose
        return context.out();
    }
};

template <> struct formatter<Depth>
{
    template <class Context> auto parse(Context& context) { return context.begin(); }

    template <class Context> auto format(const Depth& value, Context& context) const
    {
        const std::string text = std::to_string(value.decimetres) + " dm";
        return std::copy(text.begin(), text.end(), context.out());
    }
};

} // namespace fmt

class tst_ZrLogEmit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase();

    void argumentsArriveInOrder();
    void hasNoGuard();
    void nullPointersPass();
    void values();
    void qtTexts_data();
    void qtTexts();
    void otherTextTypes();
    void nullTextValues();
    void valuesOfApplications();
    void wrongFormat_data();
    void wrongFormat();
    void failingFormatter();
    void failingFormatterOfAnotherKind();
    void manyValuesAndLongTexts();

    void guard_data();
    void guard();
    void guardSkipsArguments();
    void macroGivesThePlace();
    void macroEvaluatesOnce();
    void macroIsAStatement();
    void macroFromThreads();
};

void tst_ZrLogEmit::init()
{
    emitted.clear();
    evaluations = 0;
    zr_debug_log_level = 2;
    zr_debug_log_to_file = 0;
    zr_debug_log_to_dbg = 1;
}

void tst_ZrLogEmit::cleanupTestCase()
{
    zr_debug_log_to_dbg = 0;
}

void tst_ZrLogEmit::argumentsArriveInOrder()
{
    zrLogEmit(2, "dir/Theme.cpp", 71, "bool ZrTheme::Load(const QString&)", "ZrUtil-ZrTheme", 0,
        123456789012345, "Failed opening stylesheet \"{}\"", QStringLiteral(":/css/AppView.css"));
    QCOMPARE(emitted.size(), std::size_t(1));
    const Emitted& line = emitted[0];
    QCOMPARE(line.level, 2);
    QCOMPARE(line.file, std::string("dir/Theme.cpp"));
    QCOMPARE(line.line, 71);
    QCOMPARE(line.function, std::string("bool ZrTheme::Load(const QString&)"));
    QCOMPARE(line.category, std::string("ZrUtil-ZrTheme"));
    QCOMPARE(line.reserved, 0);
    QCOMPARE(line.time, qint64(123456789012345));
    QCOMPARE(line.message, std::string("Failed opening stylesheet \":/css/AppView.css\""));
}

void tst_ZrLogEmit::hasNoGuard()
{
    zr_debug_log_level = -1;
    zr_debug_log_to_dbg = 0;
    zrLogEmit(5, "f.cpp", 1, "f", "c", 0, 1, "all the same");
    QCOMPARE(emitted.size(), std::size_t(1));
}

void tst_ZrLogEmit::nullPointersPass()
{
    zrLogEmit(2, nullptr, 1, nullptr, nullptr, 0, 1, nullptr);
    zrLogEmit(2, nullptr, 1, nullptr, nullptr, 0, 1, nullptr, 5);
    QCOMPARE(emitted.size(), std::size_t(2));
    QCOMPARE(emitted[0].file, std::string("<null>"));
    QCOMPARE(emitted[0].function, std::string("<null>"));
    QCOMPARE(emitted[0].category, std::string("<null>"));
    QCOMPARE(emitted[0].message, std::string());
    QCOMPARE(emitted[1].message, std::string());
}

void tst_ZrLogEmit::values()
{
    const i64 big = std::numeric_limits<i64>::min();
    const u64 bigger = std::numeric_limits<u64>::max();
    const std::string text = "std";
    zrLogEmit(1, "f.cpp", 1, "f", "c", 0, 1, "{} {:04x} {} {} {:.3f} {} {} {}", 42, 0xBEEF, big, bigger,
        1.0 / 3.0, true, 'z', text);
    zrLogEmit(1, "f.cpp", 1, "f", "c", 0, 1, "{1} before {0}, {{}}", u8(7), QStringLiteral("last"));
    zrLogEmit(1, "f.cpp", 1, "f", "c", 0, 1, "no values");
    QCOMPARE(emitted[0].message,
        std::string("42 beef -9223372036854775808 18446744073709551615 0.333 true z std"));
    QCOMPARE(emitted[1].message, std::string("last before 7, {}"));
    QCOMPARE(emitted[2].message, std::string("no values"));
}

void tst_ZrLogEmit::qtTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("utf8");
    QTest::newRow("plain") << QStringLiteral("AppView.css") << QByteArray("AppView.css");
    QTest::newRow("empty") << QStringLiteral("") << QByteArray();
    QTest::newRow("null") << QString() << QByteArray();
    QTest::newRow("two bytes") << QString(QChar(0xE9)) << QByteArray("\xC3\xA9");
    QTest::newRow("three bytes") << QString(QChar(0x6DF1)) << QByteArray("\xE6\xB7\xB1");
    const QChar pair[] = {QChar(0xD83C), QChar(0xDF0A)};
    QTest::newRow("four bytes") << QString(pair, 2) << QByteArray("\xF0\x9F\x8C\x8A");
    QTest::newRow("placeholders are text") << QStringLiteral("{} {0} %s") << QByteArray("{} {0} %s");
    QTest::newRow("line break") << QStringLiteral("a\nb") << QByteArray("a\nb");
}

void tst_ZrLogEmit::qtTexts()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, utf8);
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "<{}>", text);
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "<{}>", QStringView(text));
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "<{}>", utf8);
    QCOMPARE(emitted.size(), std::size_t(3));
    for (const Emitted& line : emitted)
        QCOMPARE(QByteArray::fromStdString(line.message), "<" + utf8 + ">");
}

void tst_ZrLogEmit::otherTextTypes()
{
    char array[] = "array";
    char* pointer = array;
    zrLogEmit(
        2, "f.cpp", 1, "f", "c", 0, 1, "{} {} {} {}", QLatin1String("caf\xE9"), "literal", array, pointer);
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "{}", QStringLiteral("tempo") + QStringLiteral("rary"));
    QCOMPARE(emitted[0].message, std::string("caf\xC3\xA9 literal array array"));
    QCOMPARE(emitted[1].message, std::string("temporary"));
}

void tst_ZrLogEmit::nullTextValues()
{
    const char* none = nullptr;
    char* noneEither = nullptr;
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "{} {}", none, noneEither);
    QCOMPARE(emitted[0].message, std::string("(null) (null)"));
}

void tst_ZrLogEmit::valuesOfApplications()
{
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "at {}", Depth{125});
    QCOMPARE(emitted[0].message, std::string("at 125 dm"));
}

void tst_ZrLogEmit::wrongFormat_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("too few values") << QByteArray("{} and {}");
    QTest::newRow("open brace") << QByteArray("depth {");
    QTest::newRow("closing brace") << QByteArray("depth }");
    QTest::newRow("wrong type") << QByteArray("{:d}");
    QTest::newRow("unknown type") << QByteArray("{:q}");
    QTest::newRow("index too high") << QByteArray("{7}");
    QTest::newRow("unknown name") << QByteArray("{depth}");
    QTest::newRow("huge index") << QByteArray("{99999999999999999999}");
    QTest::newRow("huge width") << QByteArray("{:99999999999999999999}");
    QTest::newRow("mixed numbering") << QByteArray("{} {0}");
}

void tst_ZrLogEmit::wrongFormat()
{
    QFETCH(QByteArray, format);
    zrLogEmit(2, "f.cpp", 9, "f", "c", 0, 1, format.constData(), QStringLiteral("value"));
    QCOMPARE(emitted.size(), std::size_t(1));
    QCOMPARE(emitted[0].line, 9);
    const QByteArray message = QByteArray::fromStdString(emitted[0].message);
    QVERIFY2(message.startsWith(format + " (format error: "), message.constData());
    QVERIFY2(message.endsWith(')'), message.constData());
}

void tst_ZrLogEmit::failingFormatter()
{
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "value {}", Thrower{1});
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "value {}", Thrower{0});
    QCOMPARE(emitted[0].message, std::string("value {} (format error: of its own)"));
    QCOMPARE(emitted[1].message, std::string("value "));
}

void tst_ZrLogEmit::failingFormatterOfAnotherKind()
{
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "value {}", Thrower{2});
    QCOMPARE(emitted.size(), std::size_t(1));
    QCOMPARE(emitted[0].message, std::string("value {}"));
}

void tst_ZrLogEmit::manyValuesAndLongTexts()
{
    const QString text(1000000, QLatin1Char('x'));
    zrLogEmit(2, "f.cpp", 1, "f", "c", 0, 1, "{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}", 1, 2, 3, 4, 5, 6, 7,
        8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, text);
    QCOMPARE(emitted[0].message.size(), std::size_t(9 + 20 + 1000000));
    QCOMPARE(emitted[0].message.substr(0, 30), std::string("12345678910111213141516171819x"));
    emit_plain("plain");
    QCOMPARE(emitted[1].message, std::string("plain"));
}

void tst_ZrLogEmit::guard_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("toFile");
    QTest::addColumn<int>("toDbg");
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("wanted");
    QTest::newRow("below the limit") << 2 << 0 << 1 << 1 << true;
    QTest::newRow("at the limit") << 2 << 0 << 1 << 2 << true;
    QTest::newRow("above the limit") << 2 << 1 << 1 << 3 << false;
    QTest::newRow("file only") << 2 << 1 << 0 << 2 << true;
    QTest::newRow("both") << 2 << 1 << 1 << 2 << true;
    QTest::newRow("no output") << 5 << 0 << 0 << 0 << false;
    QTest::newRow("any value but 0 is on") << 2 << -1 << 0 << 2 << true;
    QTest::newRow("nothing") << -1 << 1 << 1 << 0 << false;
    QTest::newRow("trace") << 5 << 0 << 1 << 5 << true;
}

void tst_ZrLogEmit::guard()
{
    QFETCH(int, limit);
    QFETCH(int, toFile);
    QFETCH(int, toDbg);
    QFETCH(int, level);
    QFETCH(bool, wanted);
    zr_debug_log_level = limit;
    zr_debug_log_to_file = toFile;
    zr_debug_log_to_dbg = toDbg;
    QCOMPARE(zr::log_wanted(level), wanted);
    ZR_LOG(level, counted("ZrUtil-Test"), "value {}", counted(7));
    zr_debug_log_to_file = 0;
    QCOMPARE(emitted.size(), std::size_t(wanted ? 1 : 0));
    QCOMPARE(evaluations, wanted ? 2 : 0);
    if (wanted) {
        QCOMPARE(emitted[0].level, level);
        QCOMPARE(emitted[0].message, std::string("value 7"));
    }
}

void tst_ZrLogEmit::guardSkipsArguments()
{
    ZR_LOG(3, counted("c"), counted("{} {}"), counted(1), QString::number(counted(2)));
    QCOMPARE(evaluations, 0);
    QVERIFY(emitted.empty());
    zr_debug_log_level = 3;
    ZR_LOG(3, counted("c"), counted("{} {}"), counted(1), QString::number(counted(2)));
    QCOMPARE(evaluations, 4);
    QCOMPARE(emitted.size(), std::size_t(1));
}

void tst_ZrLogEmit::macroGivesThePlace()
{
    const qint64 before = zr::steady_ns();
    const int line = __LINE__ + 1;
    ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrUtil-tst", "here");
    const qint64 after = zr::steady_ns();
    QCOMPARE(emitted.size(), std::size_t(1));
    QCOMPARE(emitted[0].level, 2);
    QCOMPARE(emitted[0].file, std::string(__FILE__));
    QCOMPARE(emitted[0].line, line);
    QVERIFY2(emitted[0].function.find("tst_ZrLogEmit::macroGivesThePlace()") != std::string::npos,
        emitted[0].function.c_str());
    QVERIFY2(emitted[0].function.find("void ") == 0, emitted[0].function.c_str());
    QCOMPARE(emitted[0].category, std::string("ZrUtil-tst"));
    QCOMPARE(emitted[0].reserved, 0);
    QVERIFY(emitted[0].time >= before);
    QVERIFY(emitted[0].time <= after);
    QVERIFY(before > 0);
}

void tst_ZrLogEmit::macroEvaluatesOnce()
{
    ZR_LOG(counted(1), "c", "{}", counted(5));
    QCOMPARE(evaluations, 2);
    QCOMPARE(emitted[0].level, 1);
    QCOMPARE(emitted[0].message, std::string("5"));
}

void tst_ZrLogEmit::macroIsAStatement()
{
    // An else belongs to the if outside.
    bool other = false;
    if (zr_debug_log_level == 99)
        ZR_LOG(1, "c", "not reached");
    else
        other = true;
    QVERIFY(other);
    QVERIFY(emitted.empty());
}

void tst_ZrLogEmit::macroFromThreads()
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 500; ++i)
                ZR_LOG(1, "c", "{} {}", QString::number(t), i);
        });
    }
    for (int i = 0; i < 500; ++i)
        zr_debug_log_write_switch(&zr_debug_log_level, 1 + i % 3);
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(emitted.size(), std::size_t(2000));
    std::vector<int> next(4, 0);
    for (const Emitted& line : emitted) {
        const QStringList parts = QString::fromStdString(line.message).split(QLatin1Char(' '));
        QCOMPARE(parts.size(), 2);
        QCOMPARE(parts[1].toInt(), next.at(static_cast<std::size_t>(parts[0].toInt()))++);
    }
}

QTEST_GUILESS_MAIN(tst_ZrLogEmit)

#include "tst_ZrLogEmit.moc"
