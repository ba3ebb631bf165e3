// The settings document: passes over objects, the three forms of the file, files that are none.

#include "XmlChecks.h"
#include "ZrLogFixture.h"
#include "ZrUtil/IPersistable.h"
#include "ZrUtil/IPersistableLinked.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrSetModule.h"

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

using zr::ePersistLoading;
using zr::ePersistStoring;
using zr::ZrSetApp;

constexpr auto neither = static_cast<zr::ePersistMode>(2);

/// A class with settings: a flag, a count, a colour and a nested object.
class Winch final : public zr::IPersistable
{
public:
    bool tabletMode = false;
    int turns = 0;
    QColor colour = QColor(0, 0, 0);
    double tension = 1.5;

    void settings(zr::ZrSetModule& module) override
    {
        module.item(S("tablet mode"), tabletMode);
        module.item(S("turns"), turns);
        module.item(S("colour"), colour);
        module.sub_item(S("brake"), [this](zr::ZrSetModule& brake) { brake.item(S("tension"), tension); });
    }
};

/// Notes what is called, and what the document holds by then.
class Linked : public zr::IPersistable, public zr::IPersistableLinked
{
public:
    QStringList calls;
    QJsonObject atEnd;

    void settings(zr::ZrSetModule& module) override
    {
        calls << S("settings %1").arg(module.mode);
        module.item(S("value"), value);
    }

    void post_cfg_load(zr::ZrSetModule& module) override
    {
        calls << S("post %1").arg(module.mode);
        atEnd = *module.object;
        module.object->insert(S("left by post"), true);
    }

    int value = 1;
};

const QByteArray winchText = "{\n"
                             "    \"brake\": {\n"
                             "        \"tension\": 2.25\n"
                             "    },\n"
                             "    \"colour\": \"80ff0001\",\n"
                             "    \"tablet mode\": true,\n"
                             "    \"turns\": \"12\"\n"
                             "}\n";

Winch TurnedWinch()
{
    Winch winch;
    winch.tabletMode = true;
    winch.turns = 12;
    winch.colour = QColor(255, 0, 1, 128);
    winch.tension = 2.25;
    return winch;
}

QByteArray Nested(int levels)
{
    return "{\"a\":" + QByteArray(levels - 1, '[') + QByteArray(levels - 1, ']') + "}";
}

const QJsonObject sample{{S("a"), S("12")}, {S("b"), QJsonArray{true, 2.5, QJsonValue::Null}},
    {S("c"), QJsonObject{{S("ü"), S("深度")}}}, {S("d"), QJsonObject()}};

} // namespace

class tst_ZrSetApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void modes_data();
    void modes();
    void formatNumbers();
    void storesAClass();
    void documentationShowsIt();
    void loadsAClass();
    void storingClearsTheRoot();
    void loadingKeepsTheRoot();
    void neitherModeChangesNothing();
    void postLoadRunsAfterLoading();
    void postLoadDoesNotRunOtherwise_data();
    void postLoadDoesNotRunOtherwise();
    void defaultsStay();
    void formats_data();
    void formats();
    void fileTexts();
    void notFiniteNumbers_data();
    void notFiniteNumbers();
    void emptyRoot_data();
    void emptyRoot();
    void binaryLosesCarriageReturns();
    void textTakesCarriageReturns();
    void saveTruncates_data();
    void saveTruncates();
    void loadFailures_data();
    void loadFailures();
    void topLevelArrayIsAnEmptyObject_data();
    void topLevelArrayIsAnEmptyObject();
    void oddText_data();
    void oddText();
    void nesting();
    void wrongFormat_data();
    void wrongFormat();
    void saveFailures_data();
    void saveFailures();
    void fullDisk_data();
    void fullDisk();
    void damagedBinary();
    void cutFiles_data();
    void cutFiles();
    void unicodePath();
    void large();
    void localeDoesNotMatter();

private:
    QString Path() const { return m_dir.filePath(S("settings.json")); }

    void Put(const QByteArray& bytes) const
    {
        QFile file(Path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }

    QByteArray Got() const
    {
        QFile file(Path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    const QTemporaryDir m_dir;
};

namespace {

void FormatRows()
{
    QTest::addColumn<int>("format");
    QTest::newRow("indented") << 0;
    QTest::newRow("compact") << 1;
    QTest::newRow("binary") << 2;
}

ZrSetApp::eFmt Format(int format)
{
    return static_cast<ZrSetApp::eFmt>(format);
}

} // namespace

void tst_ZrSetApp::modes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("loading");
    QTest::addColumn<bool>("storing");
    QTest::newRow("0") << 0 << true << false;
    QTest::newRow("1") << 1 << false << true;
    QTest::newRow("2") << 2 << false << false;
    QTest::newRow("-1") << -1 << false << false;
}

void tst_ZrSetApp::modes()
{
    QFETCH(int, mode);
    const ZrSetApp app(static_cast<zr::ePersistMode>(mode));
    QTEST(app.is_loading(), "loading");
    QTEST(app.is_storing(), "storing");
    QCOMPARE(int(app.mode), mode);
    QCOMPARE(app.root, QJsonObject());
}

void tst_ZrSetApp::formatNumbers()
{
    QCOMPARE(int(ZrSetApp::eFmtIndented), 0);
    QCOMPARE(int(ZrSetApp::eFmtCompact), 1);
    QCOMPARE(int(ZrSetApp::eFmtBinary), 2);
}

void tst_ZrSetApp::storesAClass()
{
    Winch winch = TurnedWinch();
    ZrSetApp app(ePersistStoring);
    app.synchronise(winch);
    QVERIFY(app.save_to_file(Path(), ZrSetApp::eFmtIndented));
    QCOMPARE(Got(), winchText);
}

void tst_ZrSetApp::documentationShowsIt()
{
    QFile file(S(ZR_SOURCE_DIR "/docs/file-formats.md"));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    QVERIFY(file.readAll().contains("```\n" + winchText + "```\n"));
}

void tst_ZrSetApp::loadsAClass()
{
    Put(winchText);
    ZrSetApp app(ePersistLoading);
    QVERIFY(app.load_from_file(Path(), ZrSetApp::eFmtIndented));
    Winch winch;
    app.synchronise(winch);
    QCOMPARE(winch.tabletMode, true);
    QCOMPARE(winch.turns, 12);
    QCOMPARE(winch.colour, QColor(255, 0, 1, 128));
    QCOMPARE(winch.tension, 2.25);
}

void tst_ZrSetApp::storingClearsTheRoot()
{
    ZrSetApp app(ePersistStoring);
    app.root = sample;
    Linked linked;
    app.synchronise(linked);
    QCOMPARE(app.root, (QJsonObject{{S("value"), S("1")}}));
    Winch winch;
    app.synchronise(winch);
    QVERIFY(!app.root.contains(S("value")));
    QCOMPARE(app.root.size(), 4);
}

void tst_ZrSetApp::loadingKeepsTheRoot()
{
    ZrSetApp app(ePersistLoading);
    app.root = sample;
    Winch winch;
    app.synchronise(winch);
    app.synchronise(winch);
    QCOMPARE(app.root, sample);
}

void tst_ZrSetApp::neitherModeChangesNothing()
{
    ZrSetApp app(neither);
    app.root = QJsonObject{{S("value"), S("12")}};
    const QJsonObject before = app.root;
    Linked linked;
    app.synchronise(linked);
    QCOMPARE(linked.calls, QStringList{S("settings 2")});
    QCOMPARE(linked.value, 1);
    QCOMPARE(app.root, before);
}

void tst_ZrSetApp::postLoadRunsAfterLoading()
{
    ZrSetApp app(ePersistLoading);
    app.root = QJsonObject{{S("value"), S("12")}};
    const QJsonObject before = app.root;
    Linked linked;
    zr::IPersistable& asPersistable = linked;
    app.synchronise(asPersistable);
    QCOMPARE(linked.calls, (QStringList{S("settings 0"), S("post 0")}));
    QCOMPARE(linked.value, 12);
    QCOMPARE(linked.atEnd, before);
    // It was the root itself and no copy.
    QCOMPARE(app.root.value(S("left by post")), QJsonValue(true));
}

void tst_ZrSetApp::postLoadDoesNotRunOtherwise_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("storing") << 1;
    QTest::newRow("neither") << 2;
}

void tst_ZrSetApp::postLoadDoesNotRunOtherwise()
{
    QFETCH(int, mode);
    ZrSetApp app(static_cast<zr::ePersistMode>(mode));
    Linked linked;
    app.synchronise(linked);
    QCOMPARE(linked.calls, QStringList{S("settings %1").arg(mode)});
}

void tst_ZrSetApp::defaultsStay()
{
    Put("{\"tablet mode\": true}");
    ZrSetApp app(ePersistLoading);
    QVERIFY(app.load_from_file(Path(), ZrSetApp::eFmtIndented));
    Winch winch = TurnedWinch();
    winch.tabletMode = false;
    app.synchronise(winch);
    QCOMPARE(winch.tabletMode, true);
    QCOMPARE(winch.turns, 12);
    QCOMPARE(winch.tension, 2.25);
    QCOMPARE(winch.colour, QColor(255, 0, 1, 128));
}

void tst_ZrSetApp::formats_data()
{
    FormatRows();
}

void tst_ZrSetApp::formats()
{
    QFETCH(int, format);
    ZrSetApp stored(ePersistStoring);
    stored.root = sample;
    QVERIFY(stored.save_to_file(Path(), Format(format)));
    // Whatever the mode: the file functions do not ask for it.
    for (const zr::ePersistMode mode : {ePersistLoading, ePersistStoring, neither}) {
        ZrSetApp loaded(mode);
        loaded.root = QJsonObject{{S("stale"), 1}};
        QVERIFY(loaded.load_from_file(Path(), Format(format)));
        QCOMPARE(loaded.root, sample);
    }
}

void tst_ZrSetApp::fileTexts()
{
    ZrSetApp app(ePersistStoring);
    app.root = QJsonObject{{S("b"), S("ü\n")}, {S("a"), QJsonArray{1, QJsonArray()}}};
    QVERIFY(app.save_to_file(Path(), ZrSetApp::eFmtIndented));
    QCOMPARE(Got(),
        QByteArray(
            "{\n    \"a\": [\n        1,\n        [\n        ]\n    ],\n    \"b\": \"\xC3\xBC\\n\"\n}\n"));
    QVERIFY(app.save_to_file(Path(), ZrSetApp::eFmtCompact));
    QCOMPARE(Got(), QByteArray("{\"a\":[1,[]],\"b\":\"\xC3\xBC\\n\"}"));
    QVERIFY(app.save_to_file(Path(), ZrSetApp::eFmtBinary));
    QCOMPARE(Got().left(8), QByteArray("qbjs\1\0\0\0", 8));
}

void tst_ZrSetApp::notFiniteNumbers_data()
{
    FormatRows();
}

void tst_ZrSetApp::notFiniteNumbers()
{
    QFETCH(int, format);
    ZrSetApp stored(ePersistStoring);
    Winch winch;
    winch.tension = std::numeric_limits<double>::infinity();
    stored.synchronise(winch);
    QVERIFY(stored.save_to_file(Path(), Format(format)));
    ZrSetApp loaded(ePersistLoading);
    QVERIFY(loaded.load_from_file(Path(), Format(format)));
    winch.tension = 1.0;
    loaded.synchronise(winch);
    // JSON text has no number for it.
    if (format == 2)
        QCOMPARE(winch.tension, std::numeric_limits<double>::infinity());
    else
        QVERIFY(std::isnan(winch.tension));
}

void tst_ZrSetApp::emptyRoot_data()
{
    FormatRows();
}

void tst_ZrSetApp::emptyRoot()
{
    QFETCH(int, format);
    Put("before");
    const ZrSetApp stored(ePersistStoring);
    QVERIFY(stored.save_to_file(Path(), Format(format)));
    const QByteArray texts[] = {"{\n}\n", "{}", ""};
    QCOMPARE(Got(), texts[format]);
    ZrSetApp loaded(ePersistLoading);
    loaded.root = sample;
    // An empty document in the binary form is an empty file, which is none.
    QCOMPARE(loaded.load_from_file(Path(), Format(format)), format != 2);
    QCOMPARE(loaded.root, format == 2 ? sample : QJsonObject());
}

void tst_ZrSetApp::binaryLosesCarriageReturns()
{
    // The length of the text makes a byte 0x0D.
    ZrSetApp stored(ePersistStoring);
    stored.root = QJsonObject{{S("a"), QString(13, QLatin1Char('x'))}};
    QVERIFY(stored.save_to_file(Path(), ZrSetApp::eFmtBinary));
    QVERIFY(Got().contains('\r'));
    ZrSetApp loaded(ePersistLoading);
    loaded.root = sample;
    QVERIFY(!loaded.load_from_file(Path(), ZrSetApp::eFmtBinary));
    QCOMPARE(loaded.root, sample);

    stored.root = QJsonObject{{S("a"), QString(14, QLatin1Char('x'))}};
    QVERIFY(stored.save_to_file(Path(), ZrSetApp::eFmtBinary));
    QVERIFY(loaded.load_from_file(Path(), ZrSetApp::eFmtBinary));
    QCOMPARE(loaded.root, stored.root);
}

void tst_ZrSetApp::textTakesCarriageReturns()
{
    Put("{\r\n\"a\":\r\n\"x\ry\"}\r\n");
    ZrSetApp app(ePersistLoading);
    QVERIFY(app.load_from_file(Path(), ZrSetApp::eFmtIndented));
    QCOMPARE(app.root, (QJsonObject{{S("a"), S("xy")}}));
}

void tst_ZrSetApp::saveTruncates_data()
{
    FormatRows();
}

void tst_ZrSetApp::saveTruncates()
{
    QFETCH(int, format);
    Put(QByteArray(5000, '7'));
    ZrSetApp stored(ePersistStoring);
    stored.root = sample;
    QVERIFY(stored.save_to_file(Path(), Format(format)));
    QVERIFY(!Got().contains('7'));
}

void tst_ZrSetApp::loadFailures_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("format");
    for (const int format : {0, 1, 2}) {
        const auto row = [format](const char* name, const QByteArray& bytes) {
            QTest::addRow("%s, form %d", name, format) << bytes << format;
        };
        row("empty", "");
        row("blanks", " \n");
        row("zeros", QByteArray(4096, '\0'));
        row("garbage", "\x7F\x45LF\xFF\xFE\x01");
        row("cut", "{\"a\": \"12\"");
        row("something behind", "{} x");
        row("two documents", "{}{}");
        row("a number", "12");
        row("a string", "\"a\"");
        row("null", "null");
        row("no quotes", "{a: 1}");
        row("last comma", "{\"a\": 1,}");
        row("comment", "{} // none");
        row("too large a number", "{\"a\": 1e400}");
        row("not UTF-8", "{\"a\": \"\xE4\"}");
        row("UTF-16", QByteArray("{\0}\0", 4));
        row("header alone", QByteArray("qbjs\1\0\0\0", 8));
        row("header of another version", QByteArray("qbjs\2\0\0\0", 8) + QByteArray(12, '\0'));
        row("absurd sizes", QByteArray("qbjs\1\0\0\0", 8) + QByteArray(12, '\xFF'));
    }
}

void tst_ZrSetApp::loadFailures()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, format);
    const DebugLines lines;
    Put(bytes);
    ZrSetApp app(ePersistLoading);
    app.root = sample;
    QVERIFY(!app.load_from_file(Path(), Format(format)));
    QCOMPARE(app.root, sample);

    QVERIFY(!app.load_from_file(m_dir.filePath(S("missing")), Format(format)));
    QVERIFY(!app.load_from_file(m_dir.path(), Format(format)));
    QVERIFY(!app.load_from_file(QString(), Format(format)));
    QVERIFY(!app.load_from_file(S("/dev/null"), Format(format)));
    QCOMPARE(app.root, sample);
    QCOMPARE(lines.Get(), QStringList());
}

void tst_ZrSetApp::topLevelArrayIsAnEmptyObject_data()
{
    FormatRows();
}

void tst_ZrSetApp::topLevelArrayIsAnEmptyObject()
{
    QFETCH(int, format);
    const QJsonDocument document(QJsonArray{QJsonObject{{S("a"), 1}}});
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    Put(format == 2 ? document.toBinaryData() : document.toJson());
    QT_WARNING_POP
    ZrSetApp app(ePersistLoading);
    app.root = sample;
    QVERIFY(app.load_from_file(Path(), Format(format)));
    QCOMPARE(app.root, QJsonObject());
}

void tst_ZrSetApp::oddText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QJsonValue>("a");
    const auto row = [](const char* name, const QByteArray& text, const QJsonValue& a) {
        QTest::newRow(name) << text << a;
    };
    row("byte order mark", "\xEF\xBB\xBF{\"a\": 1}", 1);
    row("equal keys", "{\"a\": 1, \"b\": 2, \"a\": 3}", 3);
    row("raw controls", "{\"a\": \"\t\n\x01\"}", S("\t\n\x01"));
    row("escapes", "{\"a\": \"\\u00fc\\ud83c\\udf0a\"}", S("ü🌊"));
    row("big integer", "{\"a\": 18446744073709551616}", 18446744073709551616.0);
}

void tst_ZrSetApp::oddText()
{
    QFETCH(QByteArray, text);
    QFETCH(QJsonValue, a);
    Put(text);
    ZrSetApp app(ePersistLoading);
    QVERIFY(app.load_from_file(Path(), ZrSetApp::eFmtIndented));
    QCOMPARE(app.root.value(S("a")), a);
}

void tst_ZrSetApp::nesting()
{
    ZrSetApp app(ePersistLoading);
    Put(Nested(1024));
    QVERIFY(app.load_from_file(Path(), ZrSetApp::eFmtCompact));
    QVERIFY(app.save_to_file(Path(), ZrSetApp::eFmtCompact));
    QCOMPARE(Got(), Nested(1024));
    QVERIFY(app.save_to_file(Path(), ZrSetApp::eFmtBinary));
    const QJsonObject before = app.root;
    Put(Nested(1025));
    QVERIFY(!app.load_from_file(Path(), ZrSetApp::eFmtCompact));
    Put(Nested(1000000));
    QVERIFY(!app.load_from_file(Path(), ZrSetApp::eFmtCompact));
    QCOMPARE(app.root, before);
}

void tst_ZrSetApp::wrongFormat_data()
{
    FormatRows();
}

void tst_ZrSetApp::wrongFormat()
{
    QFETCH(int, format);
    ZrSetApp app(ePersistStoring);
    app.root = QJsonObject{{S("a"), 1}};
    QVERIFY(app.save_to_file(Path(), Format(format)));
    for (const int other : {0, 1, 2})
        QCOMPARE(app.load_from_file(Path(), Format(other)), (format == 2) == (other == 2));
}

void tst_ZrSetApp::saveFailures_data()
{
    FormatRows();
}

void tst_ZrSetApp::saveFailures()
{
    QFETCH(int, format);
    const DebugLines lines;
    ZrSetApp app(ePersistStoring);
    app.root = sample;
    QVERIFY(!app.save_to_file(m_dir.path(), Format(format)));
    QVERIFY(!app.save_to_file(m_dir.filePath(S("no such folder/settings.json")), Format(format)));
    QVERIFY(!app.save_to_file(QString(), Format(format)));
    QVERIFY(!app.save_to_file(S("/proc/settings.json"), Format(format)));
    QVERIFY(!app.save_to_file(S("/dev/full"), Format(format)));
    QVERIFY(app.save_to_file(S("/dev/null"), Format(format)));
    QVERIFY(QFileInfo(m_dir.path()).isDir());
    QVERIFY(!QFileInfo::exists(m_dir.filePath(S("no such folder"))));
    QCOMPARE(app.root, sample);
    QCOMPARE(lines.Get(), QStringList());
}

void tst_ZrSetApp::fullDisk_data()
{
    FormatRows();
}

void tst_ZrSetApp::fullDisk()
{
    // The disk takes the beginning only: 4 KiB of a larger document.
    QFETCH(int, format);
    ZrSetApp app(ePersistStoring);
    app.root = QJsonObject{{S("a"), QString(10000, QLatin1Char('x'))}};
    const int code = RunInChild([this, &app, format] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        return app.save_to_file(Path(), Format(format)) ? 1 : 42;
    });
    QCOMPARE(code, 42);
    QCOMPARE(Got().size(), 4096);
    QVERIFY(!app.load_from_file(Path(), Format(format)));
    QVERIFY(app.save_to_file(Path(), Format(format)));
    QVERIFY(Got().size() > 10000);
}

void tst_ZrSetApp::damagedBinary()
{
    ZrSetApp stored(ePersistStoring);
    stored.root = sample;
    QVERIFY(stored.save_to_file(Path(), ZrSetApp::eFmtBinary));
    const QByteArray whole = Got();
    int refused = 0;
    for (int i = 0; i < whole.size(); ++i) {
        for (const char change : {'\x01', '\x80', '\xFF'}) {
            QByteArray damaged = whole;
            damaged[i] = static_cast<char>(damaged[i] ^ change);
            Put(damaged);
            ZrSetApp loaded(ePersistLoading);
            loaded.root = QJsonObject{{S("before"), 1}};
            if (!loaded.load_from_file(Path(), ZrSetApp::eFmtBinary)) {
                ++refused;
                QCOMPARE(loaded.root, (QJsonObject{{S("before"), 1}}));
            }
        }
    }
    QVERIFY(refused > whole.size());
}

void tst_ZrSetApp::cutFiles_data()
{
    FormatRows();
}

void tst_ZrSetApp::cutFiles()
{
    QFETCH(int, format);
    ZrSetApp stored(ePersistStoring);
    stored.root = sample;
    QVERIFY(stored.save_to_file(Path(), Format(format)));
    QByteArray whole = Got();
    if (whole.endsWith('\n'))
        whole.chop(1);
    for (int size = 0; size < whole.size(); ++size) {
        Put(whole.left(size));
        ZrSetApp loaded(ePersistLoading);
        QVERIFY2(!loaded.load_from_file(Path(), Format(format)), qPrintable(QString::number(size)));
    }
}

void tst_ZrSetApp::unicodePath()
{
    const QString path = m_dir.filePath(S("Einstellungen äß 深度 🌊.json"));
    ZrSetApp app(ePersistStoring);
    app.root = sample;
    QVERIFY(app.save_to_file(path, ZrSetApp::eFmtIndented));
    QVERIFY(QDir(m_dir.path()).entryList().contains(S("Einstellungen äß 深度 🌊.json")));
    app.root = QJsonObject();
    QVERIFY(app.load_from_file(path, ZrSetApp::eFmtIndented));
    QCOMPARE(app.root, sample);
}

void tst_ZrSetApp::large()
{
    ZrSetApp stored(ePersistStoring);
    for (int i = 0; i < 50000; ++i)
        stored.root.insert(S("%1").arg(i, 6, 10, QLatin1Char('0')), QString(40, QLatin1Char('x')));
    QVERIFY(stored.save_to_file(Path(), ZrSetApp::eFmtIndented));
    ZrSetApp loaded(ePersistLoading);
    QVERIFY(loaded.load_from_file(Path(), ZrSetApp::eFmtIndented));
    QCOMPARE(loaded.root, stored.root);
}

void tst_ZrSetApp::localeDoesNotMatter()
{
    const CommaLocale locale;
    QVERIFY(CommaLocale::HasComma());
    Winch winch = TurnedWinch();
    ZrSetApp stored(ePersistStoring);
    stored.synchronise(winch);
    QVERIFY(stored.save_to_file(Path(), ZrSetApp::eFmtIndented));
    QCOMPARE(Got(), winchText);
    ZrSetApp loaded(ePersistLoading);
    QVERIFY(loaded.load_from_file(Path(), ZrSetApp::eFmtIndented));
    winch.tension = 0.0;
    loaded.synchronise(winch);
    QCOMPARE(winch.tension, 2.25);
}

QTEST_GUILESS_MAIN(tst_ZrSetApp)
#include "tst_ZrSetApp.moc"
