#include "ZrInputChecks.h"

#include <QAccessible>
#include <QImage>

#include <limits>
#include <memory>

using input::U;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

double Contrast(const QColor& a, const QColor& b)
{
    const auto light = [](const QColor& c) {
        const auto part
            = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
        return 0.2126 * part(c.redF()) + 0.7152 * part(c.greenF()) + 0.0722 * part(c.blueF());
    };
    const double la = light(a) + 0.05;
    const double lb = light(b) + 0.05;
    return std::max(la, lb) / std::min(la, lb);
}

} // namespace

/// What the control tells about itself in words and colours, to the eye and to assistive tools.
class tst_ZrInputShown : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isLargeEnoughForFingers();
    void isReadable();
    void marksErrorsWithoutColour();
    void disabledIsSeenAtEveryScale();
    void hoveringIsSeenWithoutColour();

    void writesTheRangeOut_data();
    void writesTheRangeOut();
    void roundsTheRangeInwards_data();
    void roundsTheRangeInwards();
    void givesReasons_data();
    void givesReasons();
    void isAccessible();
    void leavesAccessibleTextsOfTheApplication();

private:
    std::unique_ptr<ZrTabletState> m_state;
    std::unique_ptr<QWidget> m_top;
};

void tst_ZrInputShown::init()
{
    m_state = std::make_unique<ZrTabletState>();
    ZrTheme::tabletMode = false;
    m_top = std::make_unique<QWidget>();
    m_top->resize(400, 300);
}

void tst_ZrInputShown::cleanup()
{
    m_top.reset();
    m_state.reset();
    QVERIFY(ZrInput::s_inputs.empty());
}

void tst_ZrInputShown::isLargeEnoughForFingers()
{
    ZrInput in(m_top.get());
    const QLineEdit plain(m_top.get());
    QCOMPARE(in.sizeHint().width(), plain.sizeHint().width());
    ZrTheme::tabletMode = true;
    QVERIFY(in.sizeHint().height() >= 44);
    QVERIFY(in.minimumSizeHint().height() >= 44);
    ZrTheme::tabletMode = false;
    QCOMPARE(in.sizeHint(), plain.sizeHint());
    QCOMPARE(in.minimumSizeHint(), plain.minimumSizeHint());
}

/// The text against both backgrounds, as painted.
void tst_ZrInputShown::isReadable()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindDouble;
    in.resize(200, 40);
    for (const char* text : {"88", "88x"}) {
        in.SetText(QString::fromLatin1(text));
        in.ensurePolished();
        const QImage image = in.grab().toImage();
        const QColor back = image.pixelColor(150, 20);
        QCOMPARE(back, QColor(qstrlen(text) == 3 ? "#aa0000" : "#515151"));
        double best = 0.0;
        for (int x = 0; x < 60; ++x) {
            for (int y = 8; y < 30; ++y)
                best = std::max(best, Contrast(back, image.pixelColor(x, y)));
        }
        QVERIFY2(best >= 4.5, qPrintable(QString::number(best)));
    }
}

/// What only the colour told would be lost to some: along the lower edge an error has a line.
void tst_ZrInputShown::marksErrorsWithoutColour()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindText;
    in.resize(200, 40);
    in.SetText(QStringLiteral("x"));
    const auto inked = [&in] {
        const QImage image = in.grab().toImage();
        const QColor back = image.pixelColor(150, 20);
        int count = 0;
        for (int x = 60; x < 180; ++x) {
            for (int y = 26; y < 38; ++y)
                count += Contrast(back, image.pixelColor(x, y)) >= 3.0 ? 1 : 0;
        }
        return count;
    };
    QCOMPARE(inked(), 0);
    in.SetValid(false);
    QVERIFY(inked() > 60);
    in.SetValid(true);
    QCOMPARE(inked(), 0);
}

void tst_ZrInputShown::writesTheRangeOut_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("lo");
    QTest::addColumn<double>("hi");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, int kind, double lo, double hi, const char* text) {
        QTest::newRow(name) << kind << lo << hi << U(text);
    };
    row("integer", 0, 1, 200, "1 to 200");
    row("double", 1, -60, 60, "-60.00 to 60.00");
    row("depth", 7, 0, 6000, "0.00 to 6000.00 m");
    row("speed", 9, 0, 2.5, "0.00 to 2.50 m/s");
    row("easting", 11, 100000, 900000, "100000.00 to 900000.00 mE");
    row("latitude", 4, -90, 90, "90° 0' 0.000\" S to 90° 0' 0.000\" N");
    row("lower end only", 7, 0, 1e100, "at least 0.00 m");
    row("upper end only", 7, -1e100, 50, "at most 50.00 m");
    row("upper end only, infinite", 1, -infinity, 50, "at most 50.00");
    row("no end", 1, -1e100, 1e100, "");
    row("not numbers", 1, notANumber, notANumber, "");
    row("free text", 3, 0, 1, "");
    row("kind that is none", 13, 0, 1, "");
}

void tst_ZrInputShown::writesTheRangeOut()
{
    QFETCH(int, kind);
    QFETCH(double, lo);
    QFETCH(double, hi);
    QFETCH(QString, text);
    ZrInput in(m_top.get());
    in.kind = kind;
    QCOMPARE(in.RangeText(), QString());
    in.SetRange(lo, hi);
    QCOMPARE(in.RangeText(), text);
}

void tst_ZrInputShown::roundsTheRangeInwards_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("places");
    QTest::addColumn<double>("lo");
    QTest::addColumn<double>("hi");
    QTest::newRow("integer") << 0 << 2 << 0.4 << 9.6;
    QTest::newRow("double") << 1 << 2 << 0.004 << 9.999;
    QTest::newRow("double, no places") << 1 << 0 << 0.4 << 9.6;
    QTest::newRow("feet") << 7 << 2 << 1.0 << 100.0;
    QTest::newRow("inches") << 6 << 0 << 0.01 << 0.5;
    QTest::newRow("miles") << 8 << 2 << 1000.0 << 50000.0;
    QTest::newRow("knots") << 9 << 1 << 0.1 << 2.6;
    QTest::newRow("°F") << 10 << 0 << -1.9 << 30.3;
    QTest::newRow("grid feet") << 11 << 2 << 100000.0 << 900000.0;
}

/// What the user is told to be allowed must be accepted when typed.
void tst_ZrInputShown::roundsTheRangeInwards()
{
    QFETCH(int, kind);
    QFETCH(int, places);
    QFETCH(double, lo);
    QFETCH(double, hi);
    ZrUnits::SetToImperial();
    ZrInput in(m_top.get());
    in.kind = kind;
    in.places = places;
    in.SetRange(lo, hi);
    const QStringList words = in.RangeText().split(QLatin1Char(' '));
    QVERIFY2(words.size() >= 3, qPrintable(in.RangeText()));
    for (const QString& end : {words[0], words[2]}) {
        double v = 0.0;
        QVERIFY2(in.GetStrValue(end, v) == ZrInput::valid, qPrintable(in.RangeText()));
    }
    // Not further in than one step of what is shown.
    const int decimals = words[0].section(QLatin1Char('.'), 1).size();
    const QString before = QString::number(words[0].toDouble() - std::pow(10.0, -decimals), 'f', decimals);
    double v = 0.0;
    QCOMPARE(in.GetStrValue(before, v), ZrInput::outOfRange);
}

void tst_ZrInputShown::givesReasons_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("valid") << 1 << "5"
                           << "";
    QTest::newRow("out of range") << 7 << "11"
                                  << "0.00 to 10.00 m";
    QTest::newRow("empty") << 1 << " "
                           << "nothing is typed";
    QTest::newRow("integer, word") << 0 << "x"
                                   << "a whole number is expected";
    QTest::newRow("integer, fraction") << 0 << "1.5"
                                       << "a whole number is expected";
    QTest::newRow("integer, too large") << 0 << "99999999999"
                                        << "this number is too large";
    QTest::newRow("integer, decimals") << 0 << "5.0"
                                       << "a whole number is expected";
    QTest::newRow("integer, exponent") << 0 << "1e3"
                                       << "a whole number is expected";
    QTest::newRow("integer, too far below") << 0 << "-99999999999"
                                            << "this number is too large";
    QTest::newRow("integer, not a number") << 0 << "nan"
                                           << "a whole number is expected";
    QTest::newRow("number") << 9 << "1.."
                            << "a number is expected";
    QTest::newRow("latitude") << 4 << "north"
                              << "a position is expected, like 51 7.4 N";
    QTest::newRow("longitude") << 5 << "west"
                               << "a position is expected, like 4 12.5 W";
}

void tst_ZrInputShown::givesReasons()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(QString, reason);
    ZrInput in(m_top.get());
    in.kind = kind;
    in.SetRange(0, 10);
    QCOMPARE(in.RefusalText(text), reason);
    // The examples given are values.
    if (reason.contains(QStringLiteral("like "))) {
        double v = 0.0;
        in.hasRange = false;
        QCOMPARE(in.GetStrValue(reason.section(QStringLiteral("like "), 1), v), ZrInput::valid);
    }
}

void tst_ZrInputShown::isAccessible()
{
    ZrInput in(m_top.get());
    in.kind = ZrInput::kindShortLength;
    in.caption = QStringLiteral("Depth limit");
    in.SetRange(0, 6000);
    m_top->show();
    QAccessibleInterface* told = QAccessible::queryAccessibleInterface(&in);
    QVERIFY(told);
    QCOMPARE(told->role(), QAccessible::EditableText);
    QCOMPARE(told->text(QAccessible::Name), QStringLiteral("Depth limit"));
    QCOMPARE(told->text(QAccessible::Description), QStringLiteral("allowed: 0.00 to 6000.00 m"));
    in.setText(QStringLiteral("deep"));
    QCOMPARE(told->text(QAccessible::Description),
        QStringLiteral("allowed: 0.00 to 6000.00 m. Error: a number is expected"));
    in.setText(QStringLiteral("5"));
    QCOMPARE(told->text(QAccessible::Description), QStringLiteral("allowed: 0.00 to 6000.00 m"));
    ZrUnits::SetToImperial();
    ZrInput::RecalcAllInputs();
    QCOMPARE(told->text(QAccessible::Description), QStringLiteral("allowed: 0.00 to 19685.04 ft"));
    // A caption set later is told when the control gets the focus.
    in.caption = QStringLiteral("Depth");
    QFocusEvent focus(QEvent::FocusIn);
    QApplication::sendEvent(&in, &focus);
    QCOMPARE(told->text(QAccessible::Name), QStringLiteral("Depth"));
}

void tst_ZrInputShown::leavesAccessibleTextsOfTheApplication()
{
    ZrInput in(m_top.get());
    in.caption = QStringLiteral("Depth");
    in.setAccessibleName(QStringLiteral("mine"));
    in.setAccessibleDescription(QStringLiteral("my own"));
    in.SetRange(0, 1);
    m_top->show();
    QCOMPARE(in.accessibleName(), QStringLiteral("mine"));
    QCOMPARE(in.accessibleDescription(), QStringLiteral("my own"));
}

/// Readable, and with an edge of dashes that are told from what lies between them.
void tst_ZrInputShown::disabledIsSeenAtEveryScale()
{
    for (const float dp : {0.5F, 0.667F, 1.0F, 1.25F, 2.0F}) {
        ZrTheme::dp = dp;
        ZrTheme::SetStdStyle();
        for (const char* text : {"88", "88x"}) {
            ZrInput in(m_top.get());
            in.kind = ZrInput::kindDouble;
            in.resize(200, 40);
            in.SetText(QString::fromLatin1(text));
            in.setEnabled(false);
            const QImage image = in.grab().toImage();
            const QColor back = image.pixelColor(150, 20);
            double best = 0.0;
            for (int x = 6; x < 60; ++x) {
                for (int y = 8; y < 30; ++y)
                    best = std::max(best, Contrast(back, image.pixelColor(x, y)));
            }
            QVERIFY2(best >= 4.5, qPrintable(QString::number(best)));
            for (const int y : {0, 1}) {
                double edge = 0.0;
                int changes = 0;
                bool wasLight = false;
                for (int x = 20; x < 180; ++x) {
                    const double contrast = Contrast(image.pixelColor(x, y), Qt::black);
                    edge = std::max(edge, contrast);
                    const bool isLight = contrast > 2.0;
                    changes += isLight != wasLight ? 1 : 0;
                    wasLight = isLight;
                }
                QVERIFY(edge >= 3.0);
                QVERIFY2(changes >= 12, qPrintable(QString::number(changes)));
            }
        }
    }
}

/// The edge gets wider, in the style sheet of the windows, at every scale.
void tst_ZrInputShown::hoveringIsSeenWithoutColour()
{
    for (const float dp : {0.667F, 0.889F, 1.0F, 1.25F, 2.0F}) {
        ZrTheme::dp = dp;
        ZrTheme::SetStdStyle();
        m_top->setStyleSheet(ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
        ZrInput in(m_top.get());
        in.kind = ZrInput::kindDouble;
        in.resize(200, 40);
        in.SetText(QStringLiteral("1"));
        const auto edge = [&in] {
            const QImage image = in.grab().toImage();
            int wide = 0;
            while (wide < 20 && image.pixelColor(wide, 20) == image.pixelColor(0, 20))
                ++wide;
            return wide;
        };
        const int usual = edge();
        in.setAttribute(Qt::WA_UnderMouse);
        const int hovered = edge();
        QVERIFY2(hovered > usual, qPrintable(QStringLiteral("%1 %2").arg(usual).arg(hovered)));
    }
}

QTEST_MAIN(tst_ZrInputShown)
#include "tst_ZrInputShown.moc"
