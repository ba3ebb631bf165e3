// Numbers for people, as they are after rounding.

#include "ZrKit/ui/ZrNumberText.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double never = std::numeric_limits<double>::quiet_NaN();
constexpr double endless = std::numeric_limits<double>::infinity();

} // namespace

class tst_ZrNumberText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbers_data();
    void numbers();
    void headings_data();
    void headings();
    void everyHeadingIsInTheTurn();
    void signs_data();
    void signs();
    void writtenByOthers_data();
    void writtenByOthers();
};

void tst_ZrNumberText::numbers_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("text");
    QTest::newRow("positive") << 3.24 << 1 << "3.2";
    QTest::newRow("negative") << -3.2 << 1 << "-3.2";
    QTest::newRow("zero") << 0.0 << 1 << "0.0";
    QTest::newRow("minus zero") << -0.0 << 1 << "0.0";
    QTest::newRow("rounds to zero from below") << -0.04 << 1 << "0.0";
    QTest::newRow("does not") << -0.06 << 1 << "-0.1";
    QTest::newRow("no decimals") << -0.4 << 0 << "0";
    QTest::newRow("two decimals") << -0.004 << 2 << "0.00";
    QTest::newRow("ten") << -10.0 << 0 << "-10";
    QTest::newRow("NaN") << never << 1 << "";
    QTest::newRow("infinite") << endless << 1 << "";
    QTest::newRow("-infinite") << -endless << 1 << "";
}

void tst_ZrNumberText::numbers()
{
    QFETCH(double, value);
    QFETCH(int, decimals);
    QTEST(ZrNumberText::Of(value, decimals), "text");
}

void tst_ZrNumberText::headings_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("text");
    QTest::newRow("north") << 0.0 << 1 << "0.0";
    QTest::newRow("minus zero") << -0.0 << 1 << "0.0";
    QTest::newRow("full turn") << 360.0 << 1 << "0.0";
    QTest::newRow("nearly") << 359.9 << 1 << "359.9";
    QTest::newRow("below the next") << 359.949 << 1 << "359.9";
    QTest::newRow("rounds to a turn") << 359.951 << 1 << "0.0";
    QTest::newRow("in whole degrees") << 359.6 << 0 << "0";
    QTest::newRow("not in whole degrees") << 359.4 << 0 << "359";
    QTest::newRow("a hair below north") << -0.01 << 1 << "0.0";
    QTest::newRow("to the left") << -90.0 << 1 << "270.0";
    QTest::newRow("second turn") << 400.0 << 1 << "40.0";
    QTest::newRow("turns to the left") << -725.0 << 1 << "355.0";
    QTest::newRow("NaN") << never << 1 << "";
    QTest::newRow("infinite") << endless << 1 << "";
    QTest::newRow("-infinite") << -endless << 0 << "";
}

void tst_ZrNumberText::headings()
{
    QFETCH(double, degrees);
    QFETCH(int, decimals);
    QTEST(ZrNumberText::Heading(degrees, decimals), "text");
}

void tst_ZrNumberText::everyHeadingIsInTheTurn()
{
    for (int i = -80000; i <= 80000; i += 7) {
        const double degrees = i * 0.01;
        for (const int decimals : {0, 1, 2}) {
            const QString text = ZrNumberText::Heading(degrees, decimals);
            const double shown = text.toDouble();
            const double off = std::fabs(std::remainder(shown - degrees, 360.0));
            QVERIFY2(!text.startsWith(QLatin1Char('-')) && shown >= 0.0 && shown < 360.0
                    && off <= 0.5000001 * std::pow(10.0, -decimals),
                qPrintable(QStringLiteral("%1: %2").arg(degrees).arg(text)));
        }
    }
}

void tst_ZrNumberText::signs_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("half") << 4.5 << "+4.5";
    QTest::newRow("whole") << 5.0 << "+5";
    QTest::newRow("tens") << 20.0 << "+20";
    QTest::newRow("below 0") << -2.0 << "−2";
    QTest::newRow("half below 0") << -0.5 << "−0.5";
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("minus zero") << -0.0 << "0";
    QTest::newRow("rounds to zero") << -0.04 << "0";
    QTest::newRow("from above") << 0.04 << "0";
    QTest::newRow("rounds to a whole one") << 1.96 << "+2";
    QTest::newRow("NaN") << never << "";
    QTest::newRow("infinite") << endless << "";
}

void tst_ZrNumberText::signs()
{
    QFETCH(double, value);
    QTEST(ZrNumberText::Signed(value), "text");
}

void tst_ZrNumberText::writtenByOthers_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("text");
    for (const char* same : {"", "-", "0", "12", "-1", "-0.1", "-10", "-0.0 m", "-nan"})
        QTest::newRow(same) << same << same;
    QTest::newRow("-0") << "-0"
                        << "0";
    QTest::newRow("-0.00") << "-0.00"
                           << "0.00";
}

void tst_ZrNumberText::writtenByOthers()
{
    QFETCH(QString, number);
    QTEST(ZrNumberText::WithoutMinusZero(number), "text");
}

QTEST_GUILESS_MAIN(tst_ZrNumberText)
#include "tst_ZrNumberText.moc"
