// Ticks of value axes.

#include "ZrKit/review/ZrAxisTicks.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

QString Labels(const ZrAxisTicks& ticks)
{
    QStringList labels;
    for (const double value : ticks.Values())
        labels << ticks.Label(value);
    return labels.join(QLatin1Char(' '));
}

} // namespace

class tst_ZrAxisTicks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void labels_data();
    void labels();
    void angles_data();
    void angles();
    void widenedRange();
    void labelsOfOtherValues();
    void absurdRanges_data();
    void absurdRanges();
    void anyRange();
};

void tst_ZrAxisTicks::labels_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<int>("most");
    QTest::addColumn<QString>("expected");

    QTest::newRow("ten") << 0.0 << 10.0 << 6 << QStringLiteral("0 2 4 6 8 10");
    QTest::newRow("tenths") << 0.0 << 1.0 << 11
                            << QStringLiteral("0.0 0.1 0.2 0.3 0.4 0.5 0.6 0.7 0.8 0.9 1.0");
    QTest::newRow("fifths") << -0.5 << 0.5 << 6 << QStringLiteral("-0.4 -0.2 0.0 0.2 0.4");
    QTest::newRow("halves") << 0.0 << 2.0 << 5 << QStringLiteral("0.0 0.5 1.0 1.5 2.0");
    QTest::newRow("depths") << 3.7 << 187.2 << 5 << QStringLiteral("50 100 150");
    QTest::newRow("turned round") << 187.2 << 3.7 << 5 << QStringLiteral("50 100 150");
    QTest::newRow("headings") << 0.0 << 360.0 << 5 << QStringLiteral("0 100 200 300");
    QTest::newRow("millis") << 1.0001 << 1.0009 << 6 << QStringLiteral("1.0002 1.0004 1.0006 1.0008");
    QTest::newRow("equal") << 5.0 << 5.0 << 3 << QStringLiteral("4.5 5.0 5.5");
    QTest::newRow("equal zeros") << 0.0 << 0.0 << 3 << QStringLiteral("-0.5 0.0 0.5");
    QTest::newRow("large") << 0.0 << 5e12 << 6 << QStringLiteral("0 1e+12 2e+12 3e+12 4e+12 5e+12");
    QTest::newRow("tiny") << 0.0 << 1e-12 << 3 << QStringLiteral("0 5e-13 1e-12");
    QTest::newRow("too few asked for") << 0.0 << 10.0 << -4 << QStringLiteral("0 10");
}

void tst_ZrAxisTicks::labels()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(int, most);
    QFETCH(QString, expected);
    QCOMPARE(Labels(ZrAxisTicks(low, high, most)), expected);
}

void tst_ZrAxisTicks::angles_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<int>("most");
    QTest::addColumn<QString>("expected");

    QTest::newRow("a turn") << 0.0 << 360.0 << 5 << QStringLiteral("0 90 180 270 360");
    QTest::newRow("a turn, low") << 0.0 << 360.0 << 3 << QStringLiteral("0 180 360");
    QTest::newRow("to and fro") << 80.4 << 268.3 << 3 << QStringLiteral("90 180");
    QTest::newRow("to and fro, high") << 80.4 << 268.3 << 6 << QStringLiteral("90 120 150 180 210 240");
    QTest::newRow("half a quarter") << -20.0 << 30.0 << 6 << QStringLiteral("-20 -10 0 10 20 30");
    QTest::newRow("over north") << 341.0 << 363.0 << 3 << QStringLiteral("345 360");
    QTest::newRow("no twenties") << 0.0 << 60.0 << 4 << QStringLiteral("0 30 60");
    QTest::newRow("a degree") << 86.0 << 87.0 << 6 << QStringLiteral("86.0 86.2 86.4 86.6 86.8 87.0");
    QTest::newRow("two turns") << 0.0 << 720.0 << 3 << QStringLiteral("0 360 720");
    QTest::newRow("many turns") << -100.0 << 7300.0 << 5 << QStringLiteral("0 3600 7200");
    QTest::newRow("equal") << 90.0 << 90.0 << 3 << QStringLiteral("90");
}

/// Of degrees: round numbers are those of a compass.
void tst_ZrAxisTicks::angles()
{
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(int, most);
    QFETCH(QString, expected);
    const ZrAxisTicks ticks(low, high, most, ZrAxisTicks::angular);
    QCOMPARE(Labels(ticks), expected);
    QVERIFY(static_cast<int>(ticks.Values().size()) <= most);
    QVERIFY(ticks.Low() <= low && ticks.High() >= high);
    const double quarter = 90.0 / ticks.Step();
    QVERIFY(ticks.Step() > 90.0 || std::fabs(quarter - std::round(quarter)) < 1e-9);
}

void tst_ZrAxisTicks::widenedRange()
{
    const ZrAxisTicks ticks(3.7, 187.2, 5);
    QCOMPARE(ticks.Step(), 50.0);
    QCOMPARE(ticks.Low(), 0.0);
    QCOMPARE(ticks.High(), 200.0);
    const ZrAxisTicks even(0.0, 0.3, 4);
    QCOMPARE(even.Low(), 0.0);
    QCOMPARE(even.High(), 0.3);
    QVERIFY(!std::signbit(ZrAxisTicks(-1.0, 1.0, 3).Values()[1]));
}

void tst_ZrAxisTicks::labelsOfOtherValues()
{
    const ZrAxisTicks ticks(0.0, 1.0, 11);
    QCOMPARE(ticks.Decimals(), 1);
    QCOMPARE(ticks.Label(0.24), QStringLiteral("0.2"));
    QCOMPARE(ticks.Label(-1e-9), QStringLiteral("0.0"));
    QCOMPARE(ticks.Label(unknown), QString());
    QCOMPARE(ticks.Label(inf), QString());
}

void tst_ZrAxisTicks::absurdRanges_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    const double values[] = {0.0, -0.0, 1.0, unknown, inf, -inf, 1e308, -1e308, 1e-308, 5e-324, 1e300};
    for (const double low : values) {
        for (const double high : values)
            QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(low).arg(high))) << low << high;
    }
    QTest::newRow("next number") << 1.0 << std::nextafter(1.0, 2.0);
    QTest::newRow("next large number") << 1e15 << std::nextafter(1e15, 2e15);
}

void tst_ZrAxisTicks::absurdRanges()
{
    QFETCH(double, low);
    QFETCH(double, high);
    for (int way = 0; way < 10; ++way) {
        const int most[] = {-1, 0, 2, 10, 1000000000};
        const ZrAxisTicks ticks(
            low, high, most[way / 2], way % 2 == 0 ? ZrAxisTicks::decimal : ZrAxisTicks::angular);
        QVERIFY(ticks.Step() > 0.0);
        QVERIFY(std::isfinite(ticks.Low()) && std::isfinite(ticks.High()));
        QVERIFY(ticks.Low() < ticks.High());
        QVERIFY(ticks.Values().size() <= std::size_t(ZrAxisTicks::MostTicks));
        for (std::size_t i = 1; i < ticks.Values().size(); ++i)
            QVERIFY(ticks.Values()[i] > ticks.Values()[i - 1]);
    }
}

void tst_ZrAxisTicks::anyRange()
{
    std::mt19937 random(5);
    const auto uniform = [&random] { return static_cast<double>(random()) / 4294967296.0 - 0.5; };
    for (int round = 0; round < 20000; ++round) {
        const double size = std::pow(10.0, uniform() * 30.0);
        const double middle = uniform() * size * 100.0;
        const double low = middle - size * (0.5 + uniform());
        const double high = middle + size * (0.5 + uniform());
        const int most = 2 + static_cast<int>(random() % 20);
        const ZrAxisTicks ticks(low, high, most);
        const double first = std::min(low, high);
        const double last = std::max(low, high);
        QVERIFY(int(ticks.Values().size()) <= most);
        QVERIFY(ticks.Low() <= first + ticks.Step() * 1e-6 && ticks.High() >= last - ticks.Step() * 1e-6);
        QVERIFY(
            first - ticks.Low() <= ticks.Step() * 1.000001 && ticks.High() - last <= ticks.Step() * 1.000001);
        // The next smaller step would make too many, so at least a third of what is allowed is there.
        QVERIFY(int(ticks.Values().size()) >= (most - 1) * 2 / 5 - 1);
        QStringList labels;
        for (const double value : ticks.Values()) {
            QVERIFY(value >= first - ticks.Step() * 1e-6 && value <= last + ticks.Step() * 1e-6);
            QVERIFY(std::fabs(ticks.Label(value).toDouble() - value) <= ticks.Step() * 1e-3);
            QVERIFY(!labels.contains(ticks.Label(value)));
            labels << ticks.Label(value);
        }
    }
}

QTEST_APPLESS_MAIN(tst_ZrAxisTicks)
#include "tst_ZrAxisTicks.moc"
