#include "ZrKit/map/ZrLiveWaterfall.h"
#include "ZrKit/map/ZrPaletteRows.h"
#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/map/ZrWaterfallOverlay.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrUtil/ZrUnits.h"

#include <QImage>
#include <QPainter>
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
    void contrastIsOfTheSeaFloor();
    void linesAreAlike();
    void contrastFollows();
    void pulseIsDim();
    void bottomIsFound();
    void bottomThatIsToldOnly();
    void overlay();
    void overlayWithoutAltitude();
    void scale();
    void scaleWhereItIsNarrow_data();
    void scaleWhereItIsNarrow();
    void clears();
    void paletteRows();

private:
    /// A sea floor of speckle from \p altitude on, metres, behind a quiet water column and a loud pulse.
    static ZrPingRecord SeaFloor(u32 number, u8 side, double altitude, double level = 3000.0)
    {
        ZrPingRecord ping;
        ping.pingNumber = number;
        ping.side = side;
        ping.sampleWidth = 2;
        ping.slantRange = 50.0F;
        u32 state = number * 2654435761U + side * 40503U + 1U;
        const auto speckle = [&state] {
            state = state * 1664525U + 1013904223U;
            return -std::log((static_cast<double>(state >> 8) + 1.0) / 16777217.0);
        };
        for (int i = 0; i < 1000; ++i) {
            const double range = (i + 0.5) * 0.05;
            const double mean = range < 0.4 ? 60000.0 : range < altitude ? 30.0 : level;
            const bool isFlat = range < 0.4 || altitude > 50.0; // noise may look like anything
            const int value = static_cast<int>(std::min(mean * (isFlat ? 1.0 : speckle()), 65535.0));
            ping.samples += static_cast<char>(value & 0xFF);
            ping.samples += static_cast<char>(value >> 8);
        }
        return ping;
    }

    static void AddLines(ZrLiveWaterfall& waterfall, u32 first, u32 end, double altitude,
        double level = 3000.0, double told = std::numeric_limits<double>::quiet_NaN())
    {
        for (u32 number = first; number < end; ++number) {
            for (u8 side = 0; side < 2; ++side)
                waterfall.Add(SeaFloor(number, side, altitude, level), number, told);
        }
    }

    /// The mean brightness of a line over shares of its range.
    static double Mean(const ZrLiveWaterfall& waterfall, i64 line, double from, double to)
    {
        const auto samples = waterfall.Ring().Samples(line, sidePort);
        double sum = 0.0;
        int count = 0;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double share = (static_cast<double>(i) + 0.5) / static_cast<double>(samples.size());
            if (share >= from && share < to) {
                sum += samples[i];
                ++count;
            }
        }
        return sum / count;
    }

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

/// Half of what is seen is water: neither it nor the pulse make the sea floor all white or all black.
void tst_ZrLiveWaterfall::contrastIsOfTheSeaFloor()
{
    ZrLiveWaterfall waterfall(256, 500);
    AddLines(waterfall, 0, 100, 25.0);
    for (const i64 line : {i64(0), i64(50), i64(99)}) {
        const double floor = Mean(waterfall, line, 0.6, 1.0);
        QVERIFY2(floor > 35.0 && floor < 130.0, qPrintable(QString::number(floor)));
        QVERIFY(Mean(waterfall, line, 0.05, 0.45) < 10.0);
        int black = 0;
        int white = 0;
        for (const u8 value : waterfall.Ring().Samples(line, sidePort).subspan(300, 200)) {
            black += value == 0 ? 1 : 0;
            white += value == 255 ? 1 : 0;
        }
        QVERIFY2(black <= 20 && white <= 20,
            qPrintable(QStringLiteral("%1 black, %2 white of 200").arg(black).arg(white)));
    }
}

/// Lines made early look as those made late: there are no bands.
void tst_ZrLiveWaterfall::linesAreAlike()
{
    ZrLiveWaterfall waterfall(512, 500);
    AddLines(waterfall, 0, 400, 8.0);
    double least = 255.0;
    double most = 0.0;
    for (i64 line = 0; line + 8 <= 400; line += 8) {
        double mean = 0.0;
        for (i64 i = line; i < line + 8; ++i)
            mean += Mean(waterfall, i, 0.3, 1.0) / 8.0;
        least = std::min(least, mean);
        most = std::max(most, mean);
    }
    QVERIFY2(most - least < 0.12 * most, qPrintable(QStringLiteral("%1 to %2").arg(least).arg(most)));
}

/// After a change of the sea floor the contrast goes there, in steps that are small.
void tst_ZrLiveWaterfall::contrastFollows()
{
    ZrLiveWaterfall waterfall(1024, 500);
    AddLines(waterfall, 0, 140, 8.0, 600.0);
    AddLines(waterfall, 140, 500, 8.0, 6000.0);
    const auto mean = [&waterfall](i64 first) {
        double sum = 0.0;
        for (i64 i = first; i < first + 8; ++i)
            sum += Mean(waterfall, i, 0.3, 1.0) / 8.0;
        return sum;
    };
    const double after = mean(490);
    QVERIFY2(after > 35.0 && after < 130.0, qPrintable(QString::number(after)));
    for (i64 line = 260; line < 490; line += 8)
        QVERIFY2(std::fabs(mean(line + 2) - mean(line)) < 30.0, qPrintable(QString::number(line)));
}

void tst_ZrLiveWaterfall::pulseIsDim()
{
    ZrLiveWaterfall waterfall(64, 1000);
    AddLines(waterfall, 0, 20, 8.0);
    const auto samples = waterfall.Ring().Samples(19, sideStarboard);
    for (std::size_t i = 0; i < 8; ++i)
        QCOMPARE(samples[i], ZrLiveWaterfall::PulseMost);
    // Behind it everything may be white.
    u8 brightest = 0;
    for (const u8 value : samples.subspan(200, 800))
        brightest = std::max(brightest, value);
    QVERIFY(brightest > 200);
}

void tst_ZrLiveWaterfall::bottomIsFound()
{
    ZrLiveWaterfall waterfall(64, 500);
    AddLines(waterfall, 0, 30, 12.0, 3000.0, 10.5); // the other sensor hangs lower
    for (i64 line = 6; line < 30; ++line) {
        const double altitude = waterfall.Ring().At(line).altitude;
        QVERIFY2(std::fabs(altitude - 12.0) < 0.3, qPrintable(QString::number(altitude)));
    }
}

void tst_ZrLiveWaterfall::bottomThatIsToldOnly()
{
    ZrLiveWaterfall waterfall(64, 500);
    AddLines(waterfall, 0, 5, 12.0);
    QVERIFY(std::fabs(waterfall.Ring().At(4).altitude - 12.0) < 0.3);
    // Nothing but noise: for a while the sea floor is where it was, then where one says that it is.
    AddLines(waterfall, 5, 30, 100.0, 3000.0, 30.0);
    QVERIFY(std::fabs(waterfall.Ring().At(6).altitude - 12.0) < 0.3);
    QCOMPARE(waterfall.Ring().At(29).altitude, 30.0);
}

void tst_ZrLiveWaterfall::overlay()
{
    ZrLiveWaterfall waterfall(64, 500);
    AddLines(waterfall, 0, 30, 12.0);
    ZrWaterfallView view;
    view.rect = QRect(0, 0, 400, 100);
    view.pixelsPerLine = 2.0;
    for (const auto newest : {ZrWaterfallSettings::newestTop, ZrWaterfallSettings::newestBottom}) {
        view.newest = newest;
        const ZrWaterfallLayout layout(waterfall.Ring(), view);
        const std::vector<QPolygonF> lines = ZrWaterfallOverlay::Bottom(layout);
        QCOMPARE(lines.size(), std::size_t(2));
        for (std::size_t side = 0; side < 2; ++side) {
            QCOMPARE(lines[side].size(), 30);
            const double away = std::fabs(lines[side].first().x() - 200.0) * layout.MetresPerPixel();
            QVERIFY2(std::fabs(away - 12.0) < 0.6, qPrintable(QString::number(away)));
            QCOMPARE(lines[side].first().x() < 200.0, side == 0);
            // The newest line is at its edge.
            QCOMPARE(lines[side].first().y(), newest == ZrWaterfallSettings::newestTop ? 1.0 : 99.0);
        }
    }
    QImage image(400, 100, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    view.newest = ZrWaterfallSettings::newestTop;
    ZrWaterfallOverlay::PaintBottom(painter, ZrWaterfallLayout(waterfall.Ring(), view), 2.0);
    painter.end();
    int drawn = 0;
    for (int x = 0; x < 400; ++x)
        drawn += qBlue(image.pixel(x, 30)) > 100 ? 1 : 0;
    QVERIFY2(drawn >= 2 && drawn <= 8, qPrintable(QString::number(drawn)));
    view.slantCorrected = true;
    QVERIFY(ZrWaterfallOverlay::Bottom(ZrWaterfallLayout(waterfall.Ring(), view)).empty());
}

void tst_ZrLiveWaterfall::overlayWithoutAltitude()
{
    ZrLiveWaterfall waterfall(64, 500);
    AddLines(waterfall, 0, 10, 100.0);
    ZrWaterfallView view;
    view.rect = QRect(0, 0, 400, 100);
    QVERIFY(ZrWaterfallOverlay::Bottom(ZrWaterfallLayout(waterfall.Ring(), view)).empty());
    QVERIFY(ZrWaterfallOverlay::Bottom(ZrWaterfallLayout()).empty());
    // An altitude beyond what is shown.
    AddLines(waterfall, 10, 20, 100.0, 3000.0, 400.0);
    QVERIFY(ZrWaterfallOverlay::Bottom(ZrWaterfallLayout(waterfall.Ring(), view)).empty());
}

void tst_ZrLiveWaterfall::scale()
{
    ZrLiveWaterfall waterfall(64, 500);
    AddLines(waterfall, 0, 30, 12.0);
    ZrWaterfallView view;
    view.rect = QRect(0, 0, 600, 100);
    const ZrWaterfallLayout layout(waterfall.Ring(), view);
    QFont font;
    font.setPixelSize(14);
    const int high = ZrWaterfallOverlay::ScaleHeight(font);
    const auto paint = [&font](const ZrWaterfallLayout& of) {
        QImage image(600, 100, QImage::Format_RGB32);
        image.fill(Qt::gray);
        QPainter painter(&image);
        ZrWaterfallOverlay::PaintScale(painter, of, font);
        painter.end();
        return image;
    };
    const QImage image = paint(layout);
    // A band at the lower edge, and ticks above it, as many to port as to starboard.
    QVERIFY(qGray(image.pixel(1, 99)) < qGray(image.pixel(1, 50)));
    const int y = 100 - high - 2;
    int left = 0;
    int right = 0;
    for (int x = 0; x < 600; ++x) {
        if (qGray(image.pixel(x, y)) > 200)
            ++(x < 299 ? left : right);
    }
    QVERIFY2(left >= 2, qPrintable(QString::number(left)));
    QVERIFY(std::abs(right - left) <= 2); // with the middle
    QImage blank(600, 100, QImage::Format_RGB32);
    blank.fill(Qt::gray);
    QCOMPARE(paint(ZrWaterfallLayout()), blank);
    ZrUnits::SetToImperial();
    QVERIFY(paint(layout) != image);
    ZrUnits::SetToMetric();
}

void tst_ZrLiveWaterfall::scaleWhereItIsNarrow_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("sides");
    for (const int width : {150, 180, 200, 240, 280, 330, 400, 600, 1500}) {
        QTest::addRow("%d", width) << width << int(ZrWaterfallSettings::bothSides);
        QTest::addRow("%d port", width) << width << int(ZrWaterfallSettings::portOnly);
        QTest::addRow("%d starboard", width) << width << int(ZrWaterfallSettings::starboardOnly);
    }
}

/// Half a picture may be narrower than two of the usual steps: each side has a number nevertheless.
void tst_ZrLiveWaterfall::scaleWhereItIsNarrow()
{
    QFETCH(int, width);
    QFETCH(int, sides);
    ZrLiveWaterfall waterfall(64, 500);
    AddLines(waterfall, 0, 30, 12.0);
    ZrWaterfallView view;
    view.rect = QRect(0, 0, width, 100);
    view.sides = ZrWaterfallSettings::eSides(sides);
    const ZrWaterfallLayout layout(waterfall.Ring(), view);
    QFont font;
    font.setPixelSize(14);
    const QFontMetrics metrics(font);
    const double middle = layout.Columns(sidePort);
    int texts[2] = {};
    QVector<QPair<double, double>> taken;
    for (const ZrWaterfallOverlay::Mark& mark : ZrWaterfallOverlay::Scale(layout, font)) {
        if (mark.text.isEmpty())
            continue;
        const double half = metrics.horizontalAdvance(mark.text) / 2.0;
        QVERIFY(mark.x - half >= 0.0 && mark.x + half <= width);
        for (const auto& other : qAsConst(taken))
            QVERIFY2(mark.x + half <= other.first || mark.x - half >= other.second, qPrintable(mark.text));
        taken.append({mark.x - half, mark.x + half});
        if (mark.x == middle) {
            QCOMPARE(mark.text, QStringLiteral("m"));
            continue;
        }
        ++texts[mark.x < middle ? 0 : 1];
        QVERIFY(
            std::fabs(mark.text.toDouble() - std::fabs(mark.x - middle) * layout.MetresPerPixel()) < 0.01);
    }
    QCOMPARE(texts[0] > 0, layout.Columns(sidePort) > 0);
    QCOMPARE(texts[1] > 0, layout.Columns(sideStarboard) > 0);
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
