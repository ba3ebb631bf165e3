#include "ZrKit/map/ZrLiveWaterfall.h"
#include "ZrKit/map/ZrPaletteRows.h"
#include "ZrKit/sonar/ZrSonarPalette.h"

#include <QImage>
#include <QtTest>

#include <cmath>

class tst_ZrLiveWaterfall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothSidesMakeALine();
    void oneSideMakesALineByTheNext();
    void sampleWidths_data();
    void sampleWidths();
    void badPings_data();
    void badPings();
    void seaFloorIsVisible();
    void clears();
    void paletteRows();

private:
    static ZrPingRecord Ping(u32 number, u8 side)
    {
        ZrPingRecord ping;
        ping.pingNumber = number;
        ping.side = side;
        ping.sampleWidth = 2;
        ping.slantRange = 50.0F;
        for (int i = 0; i < 256; ++i) {
            const int value = 1000 + (i * 7919 + static_cast<int>(number) * 104729) % 3000;
            ping.samples += static_cast<char>(value & 0xFF);
            ping.samples += static_cast<char>(value >> 8);
        }
        return ping;
    }
};

void tst_ZrLiveWaterfall::bothSidesMakeALine()
{
    ZrLiveWaterfall waterfall(64, 256);
    waterfall.Add(Ping(1, 0), 10.0, 8.0);
    QCOMPARE(waterfall.Ring().End(), i64(0));
    waterfall.Add(Ping(1, 1), 10.0, 8.0);
    QCOMPARE(waterfall.Ring().End(), i64(1));
    const auto& line = waterfall.Ring().At(0);
    QCOMPARE(line.time, 10.0);
    QCOMPARE(line.altitude, 8.0);
    QCOMPARE(line.range[0], 50.0);
    QCOMPARE(line.range[1], 50.0);
    QCOMPARE(line.count[0], 256);
}

void tst_ZrLiveWaterfall::oneSideMakesALineByTheNext()
{
    ZrLiveWaterfall waterfall(64, 256);
    for (u32 number = 1; number <= 5; ++number)
        waterfall.Add(Ping(number, 1), number, std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(waterfall.Ring().End(), i64(4));
    QVERIFY(!waterfall.Ring().HasSide(sidePort));
    // A sonar that does not count.
    waterfall.Add(Ping(5, 1), 6.0, 8.0);
    QCOMPARE(waterfall.Ring().End(), i64(5));
}

void tst_ZrLiveWaterfall::sampleWidths_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
    QTest::newRow("4") << 4;
}

void tst_ZrLiveWaterfall::sampleWidths()
{
    QFETCH(int, width);
    ZrLiveWaterfall waterfall(64, 256);
    ZrPingRecord ping = Ping(1, 0);
    ping.sampleWidth = static_cast<u8>(width);
    waterfall.Add(ping, 1.0, 8.0);
    ping.side = 1;
    waterfall.Add(ping, 1.0, 8.0);
    QCOMPARE(waterfall.Ring().End(), i64(1));
    QCOMPARE(waterfall.Ring().At(0).count[0], std::min(256, 512 / width));
}

void tst_ZrLiveWaterfall::badPings_data()
{
    QTest::addColumn<int>("what");
    QTest::newRow("no samples") << 0;
    QTest::newRow("range 0") << 1;
    QTest::newRow("range NaN") << 2;
    QTest::newRow("range infinite") << 3;
    QTest::newRow("side 2") << 4;
    QTest::newRow("width 3") << 5;
    QTest::newRow("width 0") << 6;
}

void tst_ZrLiveWaterfall::badPings()
{
    QFETCH(int, what);
    ZrPingRecord ping = Ping(1, 0);
    if (what == 0)
        ping.samples.clear();
    if (what >= 1 && what <= 3)
        ping.slantRange = what == 1 ? 0.0F : what == 2 ? std::nanf("") : HUGE_VALF;
    if (what == 4)
        ping.side = 2;
    if (what >= 5)
        ping.sampleWidth = what == 5 ? 3 : 0;
    ZrLiveWaterfall waterfall(64, 256);
    waterfall.Add(ping, 1.0, 8.0);
    waterfall.Add(ping, 1.0, 8.0);
    waterfall.Add(Ping(2, 0), 1.0, 8.0);
    QCOMPARE(waterfall.Ring().End(), i64(0));
}

void tst_ZrLiveWaterfall::seaFloorIsVisible()
{
    ZrLiveWaterfall waterfall(64, 256);
    for (u32 number = 0; number < 40; ++number) {
        waterfall.Add(Ping(number, 0), number, 8.0);
        waterfall.Add(Ping(number, 1), number, 8.0);
    }
    double sum = 0.0;
    for (const u8 value : waterfall.Ring().Samples(39, sidePort))
        sum += value;
    const double mean = sum / 256.0;
    // Amplitudes of 1000 to 4000 of 65535 would be nearly black as they are.
    QVERIFY2(mean > 60.0 && mean < 200.0, qPrintable(QString::number(mean)));
}

void tst_ZrLiveWaterfall::clears()
{
    ZrLiveWaterfall waterfall(64, 256);
    waterfall.Add(Ping(1, 0), 1.0, 8.0);
    waterfall.Clear();
    waterfall.Add(Ping(2, 1), 1.0, 8.0);
    QCOMPARE(waterfall.Ring().End(), i64(0));
    waterfall.Add(Ping(2, 0), 1.0, 8.0);
    QCOMPARE(waterfall.Ring().End(), i64(1));
}

void tst_ZrLiveWaterfall::paletteRows()
{
    const QImage rows(QStringLiteral(":/palettes.png"));
    QVERIFY(!rows.isNull());
    for (const QString& name : ZrSonarPalette::Names()) {
        const int row = ZrPaletteRows::Of(name);
        QVERIFY2(row >= 0, qPrintable(name));
        ZrSonarPalette palette;
        QVERIFY(palette.Load(name));
        for (int i = 0; i < 256; ++i) {
            const QRgb a = rows.pixel(i, 10 * row + 5);
            const QRgb b = palette.Colour(i);
            const int off = std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                std::abs(qBlue(a) - qBlue(b))});
            QVERIFY2(off <= 2, qPrintable(QStringLiteral("%1 %2: %3").arg(name).arg(i).arg(off)));
        }
    }
    QCOMPARE(ZrPaletteRows::Of(QStringLiteral("none")), -1);
    QCOMPARE(ZrPaletteRows::Of(QString()), -1);
}

QTEST_MAIN(tst_ZrLiveWaterfall)
#include "tst_ZrLiveWaterfall.moc"
