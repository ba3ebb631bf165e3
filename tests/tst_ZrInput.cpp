#include "ZrInputChecks.h"

#include <limits>
#include <memory>

using input::U;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double untouched = 777.5;
const char* const grey = "QLineEdit { background-color : #515151;}";
const char* const red = "QLineEdit { background-color : #aa0000;}";

} // namespace

/// The control by itself: parsing, showing, ranges, signals. What it tells
/// and looks like: tst_ZrInputShown; units and positions: tst_ZrInputRecalc; the keyboard on the screen:
/// tst_ZrInputDlg.
class tst_ZrInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void startsEmpty();
    void readsTexts_data();
    void readsTexts();
    void readsAsQtDoes_data();
    void readsAsQtDoes();
    void leavesOutForFreeTextAlone();
    void comparesWithTheRange_data();
    void comparesWithTheRange();
    void showsValues_data();
    void showsValues();
    void showsStoredTextForOthers();
    void readsItsCurrentText();

    void takesValuesOutOfRangeWhenTyped();
    void keepsTheLastValueOnAnError();
    void emitsForTypedTextOnly();
    void ignoresValuesWhileUpdating();
    void setsTexts();
    void setsTextsWithinItsOwnChange();
    void keepsTheValueOfAFreeText();
    void parsesBackWhatItShows();

    void commitsValidTexts_data();
    void commitsValidTexts();
    void tellsTheNewStateInEverySignal();
    void validates();
    void negates_data();
    void negates();

    void registersInOrder();
    void survivesDeletionLater();
    void staysAnOrdinaryLineWithoutTabletMode();

private:
    std::unique_ptr<ZrTabletState> m_state;
    std::unique_ptr<QWidget> m_top;
};

void tst_ZrInput::init()
{
    m_state = std::make_unique<ZrTabletState>();
    ZrTheme::tabletMode = false;
    m_top = std::make_unique<QWidget>();
    m_top->resize(400, 300);
}

void tst_ZrInput::cleanup()
{
    m_top.reset();
    m_state.reset();
    QVERIFY(ZrInput::s_inputs.empty());
}

void tst_ZrInput::startsEmpty()
{
    ZrInput in(m_top.get());
    QCOMPARE(in.kind, 0);
    QCOMPARE(in.text, QString());
    QCOMPARE(in.caption, QString());
    QCOMPARE(in.value, 0.0);
    QCOMPARE(in.min, -1e100);
    QCOMPARE(in.max, 1e100);
    QVERIFY(!in.textCol.isValid());
    QVERIFY(!in.backCol.isValid());
    QCOMPARE(in.valueFont, QFont());
    QCOMPARE(in.places, 2);
    QVERIFY(!in.hasRange);
    QVERIFY(!in.updating);
    QCOMPARE(int(ZrInput::valid), 1);
    QCOMPARE(int(ZrInput::error), 0);
    QCOMPARE(int(ZrInput::outOfRange), -1);
    double v = untouched;
    QCOMPARE(in.GetStrValue(QStringLiteral("12"), v), 1);
    QCOMPARE(v, 12.0);
    QCOMPARE(in.styleSheet(), QString());
}

void tst_ZrInput::readsTexts_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("result");
    QTest::addColumn<double>("value");
    const auto row = [](const char* name, int kind, const char* text, int result, double value) {
        QTest::newRow(name) << kind << U(text) << result << value;
    };
    row("integer", 0, "12", 1, 12.0);
    row("integer with blanks", 0, " -7 ", 1, -7.0);
    row("no integer: point", 0, "12.0", 0, 0.0);
    row("no integer: exponent", 0, "1e3", 0, 0.0);
    row("no integer: hexadecimal", 0, "0x10", 0, 0.0);
    row("largest integer", 0, "2147483647", 1, 2147483647.0);
    row("no integer: too large", 0, "2147483648", 0, 0.0);
    row("smallest integer", 0, "-2147483648", 1, -2147483648.0);
    row("integer, empty", 0, "", 0, 0.0);
    row("double", 1, "3.25", 1, 3.25);
    row("double, exponent", 1, "-1.5e-3", 1, -0.0015);
    row("double, words", 1, "abc", 0, 0.0);
    row("double, comma", 1, "3,25", 0, 0.0);
    row("double, groups", 1, "1,000", 0, 0.0);
    row("double, empty", 1, "", 0, 0.0);
    row("double, blank", 1, "   ", 0, 0.0);
    row("double, sign only", 1, "-", 0, 0.0);
    row("double, begun exponent", 1, "1e", 0, 0.0);
    row("double, infinite", 1, "inf", 1, infinity);
    row("double, other digits", 1, "١٢", 0, 0.0);
    row("float", 2, "0.5", 1, 0.5);
    row("float, rounded", 2, "0.1", 1, static_cast<double>(0.1F));
    row("free text", 3, "any thing", 1, untouched);
    row("free text, empty", 3, "", 1, untouched);
    row("latitude", 4, "51 7 24.444 N", 1, 51.0 + 7.0 / 60 + 24.444 / 3600);
    row("latitude, marks", 4, "N51° 7' 24.444\"", 1, 51.0 + 7.0 / 60 + 24.444 / 3600);
    row("latitude, south", 4, "51.5 S", 1, -51.5);
    row("latitude, words", 4, "north", 0, 0.0);
    row("latitude, beyond the pole", 4, "95", 1, 95.0);
    row("longitude", 5, "3 20.5 W", 1, -(3.0 + 20.5 / 60));
    row("longitude, empty", 5, "", 0, 0.0);
    row("tiny length, mm", 6, "1500", 1, 1.5);
    row("short length, m", 7, "12.5", 1, 12.5);
    row("short length, label", 7, "12.5m", 0, 0.0);
    row("long length, km", 8, "1.5", 1, 1500.0);
    row("speed, m/s", 9, "2.5", 1, 2.5);
    row("temperature, °C", 10, "-1.8", 1, -1.8);
    row("easting", 11, "500000.25", 1, 500000.25);
    row("easting, label", 11, "500000.25 mE", 1, 500000.25);
    row("northing", 12, "5612345", 1, 5612345.0);
    row("northing, empty", 12, "", 0, 0.0);
    row("northing, words", 12, "up", 0, 0.0);
    row("kind above the table", 13, "12", 0, 0.0);
    row("kind below the table", -1, "12", 0, 0.0);
    row("absurd kind", std::numeric_limits<int>::max(), "12", 0, 0.0);
}

void tst_ZrInput::readsTexts()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(int, result);
    QFETCH(double, value);
    ZrInput in(m_top.get());
    in.kind = kind;
    double v = untouched;
    QCOMPARE(in.GetStrValue(text, v), result);
    if (std::isinf(value))
        QCOMPARE(v, value);
    else
        QVERIFY2(std::fabs(v - value) <= 1e-9 * std::max(1.0, std::fabs(value)),
            qPrintable(QString::number(v, 'g', 17)));
}

void tst_ZrInput::readsAsQtDoes_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"nan", "NaN", "-inf", "1e400", "-1e400", "1e39", "1e-400", "1e-60", "0x1p3",
             "+5", "--5", "5-", "1 2", "٣", "1e+", ".", ".5", "5.", "\t7\n", "\xEF\xBC\x95"})
        QTest::newRow(text) << U(text);
    QTest::newRow("long") << QString(20000, QLatin1Char('9'));
    QTest::newRow("zero inside") << QStringLiteral("1") + QChar(0) + QStringLiteral("2");
    QTest::newRow("half a pair") << QString(QChar(0xD83D));
}

/// Plain numbers are what Qt's conversions say, in result and in what is written, whatever the text.
void tst_ZrInput::readsAsQtDoes()
{
    QFETCH(QString, text);
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    ZrInput in(m_top.get());
    bool ok = false;
    double v = untouched;
    in.kind = ZrInput::kindInt;
    const double asInt = text.toInt(&ok, 10);
    QCOMPARE(in.GetStrValue(text, v), ok ? 1 : 0);
    QVERIFY(same(v, asInt));
    in.kind = ZrInput::kindDouble;
    const double asDouble = text.toDouble(&ok);
    QCOMPARE(in.GetStrValue(text, v), ok ? 1 : 0);
    QVERIFY(same(v, asDouble));
    in.kind = ZrInput::kindFloat;
    const double asFloat = static_cast<double>(text.toFloat(&ok));
    QCOMPARE(in.GetStrValue(text, v), ok ? 1 : 0);
    QVERIFY(same(v, asFloat));
}

void tst_ZrInput::leavesOutForFreeTextAlone()
{
    ZrInput in(m_top.get());
    for (int kind = -1; kind <= 13; ++kind) {
        in.kind = kind;
        double v = untouched;
        in.GetStrValue(QStringLiteral("?"), v);
        QCOMPARE(v, kind == ZrInput::kindText ? untouched : 0.0);
    }
    // A range means nothing to a text.
    in.kind = ZrInput::kindText;
    in.SetRange(1.0, 2.0);
    double v = untouched;
    QCOMPARE(in.GetStrValue(QStringLiteral("5"), v), 1);
    QCOMPARE(v, untouched);
}

void tst_ZrInput::comparesWithTheRange_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("lo");
    QTest::addColumn<double>("hi");
    QTest::addColumn<int>("result");
    QTest::newRow("inside") << "5" << 0.0 << 10.0 << 1;
    QTest::newRow("lower end") << "0" << 0.0 << 10.0 << 1;
    QTest::newRow("upper end") << "10" << 0.0 << 10.0 << 1;
    QTest::newRow("above") << "10.0001" << 0.0 << 10.0 << -1;
    QTest::newRow("below") << "-0.0001" << 0.0 << 10.0 << -1;
    QTest::newRow("negative zero") << "-0" << 0.0 << 10.0 << 1;
    QTest::newRow("not a number") << "nan" << 0.0 << 10.0 << -1;
    QTest::newRow("not a number, any range") << "nan" << -infinity << infinity << -1;
    QTest::newRow("infinite, finite range") << "inf" << -1e100 << 1e100 << -1;
    QTest::newRow("infinite, infinite range") << "inf" << 0.0 << infinity << 1;
    QTest::newRow("range of one value") << "3" << 3.0 << 3.0 << 1;
    QTest::newRow("range the wrong way round") << "3" << 5.0 << 1.0 << -1;
    QTest::newRow("range of no numbers") << "3" << notANumber << notANumber << -1;
    QTest::newRow("no value") << "x" << 0.0 << 10.0 << 0;
}

void tst_ZrInput::comparesWithTheRange()
{
    QFETCH(QString, text);
    QFETCH(double, lo);
    QFETCH(double, hi);
    QFETCH(int, result);
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    double v = untouched;
    // Without a range every number is valid, "nan" too.
    QCOMPARE(in.GetStrValue(text, v), result == 0 ? 0 : 1);
    in.SetRange(lo, hi);
    QVERIFY(in.hasRange);
    v = untouched;
    QCOMPARE(in.GetStrValue(text, v), result);
    // Written even when it is refused.
    bool ok = false;
    const double expected = text.toDouble(&ok);
    QVERIFY(v == expected || std::isnan(expected));
    QVERIFY(!std::isnan(expected) || std::isnan(v));
}

void tst_ZrInput::showsValues_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("places");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, int kind, int places, double value, const char* text) {
        QTest::newRow(name) << kind << places << value << U(text);
    };
    row("integer", 0, 2, 12.0, "12");
    row("integer, rounded", 0, 2, 12.6, "13");
    row("integer, large", 0, 2, 1e15, "1000000000000000");
    row("integer, not a number", 0, 2, notANumber, "nan");
    row("double", 1, 2, 3.14159, "3.14");
    row("double, tie", 1, 2, 0.125, "0.13");
    row("double, no places", 1, 0, 3.7, "4");
    row("double, negative zero", 1, 2, -0.0, "0.00");
    row("double, infinite", 1, 2, -infinity, "-inf");
    row("float", 2, 3, 0.5, "0.500");
    row("latitude", 4, 0, 51.123456789, "51° 7' 24.444\" N");
    row("longitude", 5, 0, -4.2, "4° 12' 0.000\" W");
    row("tiny length", 6, 1, 0.0125, "12.5");
    row("short length", 7, 2, 12.5, "12.50");
    row("long length", 8, 3, 1500.0, "1.500");
    row("speed", 9, 1, 1.25, "1.3");
    row("temperature", 10, 1, -1.8, "-1.8");
    row("easting, two decimals whatever the places", 11, 0, 500000.125, "500000.13");
    row("northing, two decimals whatever the places", 12, 7, 5612345.0, "5612345.00");
}

void tst_ZrInput::showsValues()
{
    QFETCH(int, kind);
    QFETCH(int, places);
    QFETCH(double, value);
    QFETCH(QString, text);
    ZrInput in(m_top.get());
    in.kind = kind;
    in.places = places;
    in.text = QStringLiteral("stored");
    QCOMPARE(in.GetText(value), text);
}

void tst_ZrInput::showsStoredTextForOthers()
{
    ZrInput in(m_top.get());
    in.text = QStringLiteral("stored");
    for (int kind : {3, 13, -1, 99}) {
        in.kind = kind;
        QCOMPARE(in.GetText(5.0), QStringLiteral("stored"));
    }
    // A kind that is none never parses: its line is red.
    in.kind = 13;
    in.SetText(QStringLiteral("5"));
    QCOMPARE(in.styleSheet(), QString::fromLatin1(red));
    QCOMPARE(in.value, 0.0);
}

void tst_ZrInput::readsItsCurrentText()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetRange(0, 10);
    double v = untouched;
    QCOMPARE(in.GetCurValue(v), 0);
    in.setText(QStringLiteral("7.5"));
    QCOMPARE(in.GetCurValue(v), 1);
    QCOMPARE(v, 7.5);
    in.setText(QStringLiteral("11"));
    QCOMPARE(in.GetCurValue(v), -1);
    QCOMPARE(v, 11.0);
}

void tst_ZrInput::takesValuesOutOfRangeWhenTyped()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetRange(0, 10);
    int news = 0;
    connect(&in, &ZrInput::NewInput, this, [&news] { ++news; });
    QTest::keyClicks(&in, QStringLiteral("11"));
    QCOMPARE(in.value, 11.0);
    QCOMPARE(in.text, QStringLiteral("11"));
    QCOMPARE(in.styleSheet(), QString::fromLatin1(grey));
    QCOMPARE(news, 2); // "1" and "11"
    in.OnCommit(QStringLiteral("12"));
    QCOMPARE(in.value, 11.0);
    QCOMPARE(in.text, QStringLiteral("11"));
    QCOMPARE(in.QLineEdit::text(), QStringLiteral("11"));
    QCOMPARE(news, 2);
    QCOMPARE(in.OnValidate(QStringLiteral("11")), 0);
}

void tst_ZrInput::keepsTheLastValueOnAnError()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetValue(5.0);
    int news = 0;
    connect(&in, &ZrInput::NewInput, this, [&news] { ++news; });
    in.setText(QStringLiteral("5.0x"));
    QCOMPARE(in.styleSheet(), QString::fromLatin1(red));
    QCOMPARE(in.value, 5.0);
    QCOMPARE(in.text, QStringLiteral("5.00"));
    QCOMPARE(in.QLineEdit::text(), QStringLiteral("5.0x"));
    QCOMPARE(news, 0);
    in.setText(QStringLiteral("6"));
    QCOMPARE(in.styleSheet(), QString::fromLatin1(grey));
    QCOMPARE(in.value, 6.0);
    QCOMPARE(news, 1);
    in.SetValid(false);
    QCOMPARE(in.styleSheet(), QString::fromLatin1(red));
    in.SetValid(true);
    QCOMPARE(in.styleSheet(), QString::fromLatin1(grey));
}

void tst_ZrInput::emitsForTypedTextOnly()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    QStringList log;
    connect(&in, &ZrInput::NewInput, this, [&] { log += QStringLiteral("new ") + in.text; });
    in.SetValue(3.14159);
    QCOMPARE(in.QLineEdit::text(), QStringLiteral("3.14"));
    in.SetText(QStringLiteral("8"));
    QCOMPARE(in.value, 8.0);
    QVERIFY(log.isEmpty());
    QVERIFY(!in.updating);
    in.setText(QStringLiteral("9"));
    in.setText(QStringLiteral("9"));
    QCOMPARE(log, QStringList{QStringLiteral("new 9")});
}

void tst_ZrInput::ignoresValuesWhileUpdating()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetValue(1.0);
    in.updating = true;
    in.SetValue(2.0);
    QCOMPARE(in.value, 1.0);
    QCOMPARE(in.text, QStringLiteral("1.00"));
    QCOMPARE(in.QLineEdit::text(), QStringLiteral("1.00"));
    in.updating = false;

    // A listener that sets a value from within the change of another one changes nothing.
    bool wasUpdating = false;
    connect(&in, &QLineEdit::textChanged, this, [&] {
        wasUpdating = in.updating;
        in.SetValue(99.0);
    });
    in.SetValue(3.0);
    QVERIFY(wasUpdating);
    QVERIFY(!in.updating);
    QCOMPARE(in.value, 3.0);
    QCOMPARE(in.QLineEdit::text(), QStringLiteral("3.00"));
}

void tst_ZrInput::setsTexts()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetValue(4.0);
    in.SetText(QStringLiteral("oops"));
    QCOMPARE(in.text, QStringLiteral("oops"));
    QCOMPARE(in.QLineEdit::text(), QStringLiteral("oops"));
    QCOMPARE(in.value, 4.0);
    QCOMPARE(in.styleSheet(), QString::fromLatin1(red));
    in.SetText(QString());
    QCOMPARE(in.text, QString());
    QCOMPARE(in.value, 4.0);
    in.SetText(QStringLiteral("-2.5"));
    QCOMPARE(in.value, -2.5);
    QCOMPARE(in.styleSheet(), QString::fromLatin1(grey));
    // The same text again changes nothing, so the handler does not run.
    in.value = 17.0;
    in.SetText(QStringLiteral("-2.5"));
    QCOMPARE(in.value, 17.0);
}

void tst_ZrInput::setsTextsWithinItsOwnChange()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    int news = 0;
    int depth = 0;
    connect(&in, &ZrInput::NewInput, this, [&news] { ++news; });
    connect(&in, &QLineEdit::textChanged, this, [&] {
        if (depth++ == 0)
            in.SetText(QStringLiteral("5"));
    });
    in.SetValue(1.0);
    QCOMPARE(depth, 2);
    QCOMPARE(in.value, 5.0);
    QCOMPARE(news, 0);
    QVERIFY(!in.updating);
}

void tst_ZrInput::keepsTheValueOfAFreeText()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindText;
    in.value = 42.0;
    in.SetText(QStringLiteral("wreck"));
    QCOMPARE(in.value, 42.0);
    in.setText(QStringLiteral("wreck 2"));
    QCOMPARE(in.value, 42.0);
    in.OnCommit(QStringLiteral("wreck 3"));
    QCOMPARE(in.value, 42.0);
    QCOMPARE(in.text, QStringLiteral("wreck 3"));
    in.OnCommit(QString());
    QCOMPARE(in.text, QString());
}

void tst_ZrInput::parsesBackWhatItShows()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetValue(3.14159);
    QCOMPARE(in.value, 3.14);
    // Nothing to parse back when the line shows it already.
    in.SetValue(3.14159);
    QCOMPARE(in.value, 3.14159);
    in.SetValue(notANumber);
    QCOMPARE(in.QLineEdit::text(), QStringLiteral("nan"));
    QVERIFY(std::isnan(in.value));
}

void tst_ZrInput::commitsValidTexts_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("committed");
    QTest::addColumn<int>("news");
    QTest::addColumn<double>("value");
    QTest::newRow("another text") << "1"
                                  << "5" << 2 << 5.0;
    QTest::newRow("the same text") << "5"
                                   << "5" << 1 << 5.0;
    QTest::newRow("lower end") << "5"
                               << "0" << 2 << 0.0;
    QTest::newRow("upper end") << "5"
                               << "10" << 2 << 10.0;
    QTest::newRow("out of range") << "5"
                                  << "11" << 0 << 5.0;
    QTest::newRow("no value") << "5"
                              << "x" << 0 << 5.0;
    QTest::newRow("empty") << "5"
                           << "" << 0 << 5.0;
    QTest::newRow("not a number") << "5"
                                  << "nan" << 0 << 5.0;
}

void tst_ZrInput::commitsValidTexts()
{
    QFETCH(QString, before);
    QFETCH(QString, committed);
    QFETCH(int, news);
    QFETCH(double, value);
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetRange(0, 10);
    in.SetText(before);
    int counted = 0;
    connect(&in, &ZrInput::NewInput, this, [&counted] { ++counted; });
    in.OnCommit(committed);
    QCOMPARE(counted, news);
    QCOMPARE(in.value, value);
    QCOMPARE(in.text, news > 0 ? committed : before);
    QCOMPARE(in.QLineEdit::text(), in.text);
}

void tst_ZrInput::tellsTheNewStateInEverySignal()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetValue(1.0);
    QStringList log;
    const auto state
        = [&in] { return QStringLiteral("%1 %2 %3").arg(in.value).arg(in.text, in.QLineEdit::text()); };
    connect(&in, &QLineEdit::textChanged, this, [&] { log += QStringLiteral("changed ") + state(); });
    connect(&in, &ZrInput::NewInput, this, [&] { log += QStringLiteral("new ") + state(); });
    in.OnCommit(QStringLiteral("2.5"));
    // The handler of the control is the first receiver of its text.
    QCOMPARE(log,
        (QStringList{QStringLiteral("new 2.5 2.5 2.5"), QStringLiteral("changed 2.5 2.5 2.5"),
            QStringLiteral("new 2.5 2.5 2.5")}));
}

void tst_ZrInput::validates()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.SetRange(0, 10);
    in.SetValue(3.0);
    QCOMPARE(in.OnValidate(QStringLiteral("10")), 1);
    QCOMPARE(in.OnValidate(QStringLiteral("10.1")), 0);
    QCOMPARE(in.OnValidate(QStringLiteral("x")), 0);
    QCOMPARE(in.OnValidate(QString()), 0);
    QCOMPARE(in.value, 3.0);
    in.kind = ZrInput::kindText;
    QCOMPARE(in.OnValidate(QString()), 1);
}

void tst_ZrInput::negates_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("negated");
    const auto row = [](const char* name, int kind, const char* text, const char* negated) {
        QTest::newRow(name) << kind << U(text) << U(negated);
    };
    row("integer", 0, "5", "-5");
    row("integer, smallest", 0, "-2147483648", "2147483648");
    row("double", 1, "5", "-5.00");
    row("double, back", 1, "-5.00", "5.00");
    row("double, zero", 1, "0", "0.00");
    row("double, no value", 1, "5x", "5x");
    row("double, empty", 1, "", "");
    row("free text: the stored one", 3, "typed", "stored");
    row("latitude", 4, "51.5 N", "51° 30' 0.000\" S");
    row("longitude", 5, "4° 12' W", "4° 12' 0.000\" E");
    row("depth", 7, "12.5", "-12.50");
    row("speed", 9, "2", "-2.00");
    row("temperature", 10, "4", "-4.00");
    row("easting", 11, "500000 mE", "-500000.00");
    row("kind that is none", 13, "5", "5");
}

void tst_ZrInput::negates()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(QString, negated);
    ZrInput in(m_top.get());
    in.kind = kind;
    in.text = QStringLiteral("stored");
    in.value = 42.0;
    QString s = text;
    in.OnNegate(s);
    QCOMPARE(s, negated);
    QCOMPARE(in.value, 42.0);
    // Out of range it stays as well.
    if (kind == ZrInput::kindDouble) {
        in.SetRange(0, 1);
        s = QStringLiteral("5");
        in.OnNegate(s);
        QCOMPARE(s, QStringLiteral("5"));
    }
}

void tst_ZrInput::registersInOrder()
{
    QVERIFY(ZrInput::s_inputs.empty());
    auto a = std::make_unique<ZrInput>(m_top.get());
    auto b = std::make_unique<ZrInput>(nullptr);
    auto c = std::make_unique<ZrInput>(m_top.get());
    using List = std::vector<ZrInput*>;
    QVERIFY(ZrInput::s_inputs == (List{a.get(), b.get(), c.get()}));
    b.reset();
    QVERIFY(ZrInput::s_inputs == (List{a.get(), c.get()}));
    auto d = std::make_unique<ZrInput>(m_top.get());
    QVERIFY(ZrInput::s_inputs == (List{a.get(), c.get(), d.get()}));
    a.reset();
    QVERIFY(ZrInput::s_inputs == (List{c.get(), d.get()}));
    // Only the first entry of a control that somebody has entered twice goes.
    ZrInput::s_inputs.push_back(c.get());
    ZrInput* const stale = c.get();
    c.reset();
    QVERIFY(ZrInput::s_inputs == (List{d.get(), stale}));
    ZrInput::s_inputs.pop_back();
    // Controls go with their parent.
    (void)d.release();
    m_top.reset();
    QVERIFY(ZrInput::s_inputs.empty());
}

void tst_ZrInput::survivesDeletionLater()
{
    auto* in = new ZrInput(m_top.get());
    in->kind = ZrInput::kindDouble;
    const QPointer<ZrInput> alive(in);
    connect(in, &ZrInput::NewInput, in, [in] { in->deleteLater(); });
    in->OnCommit(QStringLiteral("5"));
    QVERIFY(alive);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!alive);
}

void tst_ZrInput::staysAnOrdinaryLineWithoutTabletMode()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindText;
    in.setGeometry(0, 0, 300, 40);
    in.SetText(QStringLiteral("one two"));
    m_top->show();
    QTest::mouseClick(&in, Qt::LeftButton, Qt::NoModifier, QPoint(5, 20));
    QVERIFY(m_top->findChildren<ZrInputDlg*>().isEmpty());
    QCOMPARE(in.cursorPosition(), 0);
    QTest::mouseDClick(&in, Qt::LeftButton, Qt::NoModifier, QPoint(8, 20));
    QCOMPARE(in.selectedText(), QStringLiteral("one"));
}

QTEST_MAIN(tst_ZrInput)
#include "tst_ZrInput.moc"
