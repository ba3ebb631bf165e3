// ZrWaterfall: where echoes come to lie, and how bright they are.

#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrKit/sonar/ZrWaterfall.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"
#include "ZrLogFixture.h"
#include "ZrSonarLine.h"

#include <QtTest/QtTest>

#include <algorithm>

class tst_ZrWaterfall : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init();

    void targetLies_data();
    void targetLies();
    void roundTargetStaysRound_data();
    void roundTargetStaysRound();
    void pulseAndWaterDoNotCount_data();
    void pulseAndWaterDoNotCount();
    void designsStatistics();
    void contrastByHand();
    void gainIsApplied();
    void palettesAndInversion();
    void shownGainAndContrast_data();
    void shownGainAndContrast();
    void noDataIsNotBlack();
    void transparentNoData();
    void pingWithoutSamples();
    void rowsBetweenPingsAreBlended();
    void rowsOfSeveralPingsAreTheirMean();
    void narrowEchoesAreNotLost();
    void bottomLine();
    void bottomLineNotInGroundRange();

private:
    /// Writes the line, opens it and draws it; null with `m_error` when that fails.
    QImage Draw(const SonarLine& line);

    std::unique_ptr<QTemporaryDir> m_folder;
    ZrWaterfallSettings m_settings; ///< for `Draw`
    std::unique_ptr<ZrWaterfallMap> m_map; ///< of `Draw`
    float m_lo = 0.0F;
    float m_hi = 0.0F;
    QString m_error;
};

namespace {

/// Grey, no gain, and as bright as the amplitude says: 256 for a step.
ZrWaterfallSettings Plain()
{
    ZrWaterfallSettings settings;
    settings.gain.mode = ZrSonarGainSettings::gainNone;
    settings.palette = QStringLiteral("linear");
    settings.gamma = 1.0;
    settings.lo = 0.0F;
    settings.hi = 65536.0F;
    return settings;
}

int Grey(const QImage& image, int x, int y)
{
    const QRgb pixel = image.pixel(x, y);
    return qRed(pixel) == qGreen(pixel) && qGreen(pixel) == qBlue(pixel) ? qRed(pixel) : -1;
}

/// What is brighter than \p least.
struct Blob
{
    double x = 0.0; ///< middle
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    int pixels = 0;

    Blob(const QImage& image, int least, const QRect& within)
    {
        int left = image.width();
        int right = -1;
        int top = image.height();
        int bottom = -1;
        for (int row = within.top(); row <= within.bottom(); ++row) {
            for (int column = within.left(); column <= within.right(); ++column) {
                if (Grey(image, column, row) < least)
                    continue;
                ++pixels;
                x += column + 0.5;
                y += row + 0.5;
                left = std::min(left, column);
                right = std::max(right, column);
                top = std::min(top, row);
                bottom = std::max(bottom, row);
            }
        }
        x /= pixels;
        y /= pixels;
        width = right - left + 1;
        height = bottom - top + 1;
    }
};

} // namespace

void tst_ZrWaterfall::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings = Plain();
}

QImage tst_ZrWaterfall::Draw(const SonarLine& line)
{
    const QString path = m_folder->filePath(QStringLiteral("line.log"));
    const MessageCatcher quiet;
    ZrSonarLog log;
    QImage image;
    m_error.clear();
    if (!line.Write(path) || !log.Open(path)) {
        m_error = QStringLiteral("no log");
        return image;
    }
    const ZrSonarTrack track(log.Pings(), {});
    m_map = std::make_unique<ZrWaterfallMap>(
        log.Pings(), track, line.Bottom(), m_settings, 0, log.Pings().size() - 1);
    ZrWaterfall waterfall(log);
    if (!waterfall.Render(*m_map, image))
        m_error = waterfall.Error();
    m_lo = waterfall.Lo();
    m_hi = waterfall.Hi();
    return image;
}

void tst_ZrWaterfall::targetLies_data()
{
    QTest::addColumn<int>("sides");
    QTest::addColumn<bool>("slant");
    QTest::addColumn<bool>("speed");
    QTest::addColumn<bool>("newestTop");
    QTest::addColumn<double>("across");
    QTest::addColumn<QPointF>("expected");
    const int both = ZrWaterfallSettings::bothSides;
    // 200 pings, 0.2 m apart; 10 m up, 30 m of slant range, a tenth of a metre for a pixel. The target lies
    // at ping 60, 12 m on, 24 m on the ground and 26 m of sound away. On the ground 28.28 m are seen.
    QTest::newRow("starboard") << both << false << true << true << 24.0 << QPointF(300 + 260, 400 - 121);
    QTest::newRow("port") << both << false << true << true << -24.0 << QPointF(300 - 260, 400 - 121);
    QTest::newRow("newest below") << both << false << true << false << 24.0 << QPointF(300 + 260, 121);
    QTest::newRow("ground") << both << true << true << true << 24.0 << QPointF(283 + 240, 400 - 121);
    QTest::newRow("ground, port") << both << true << true << true << -24.0 << QPointF(283 - 240, 400 - 121);
    QTest::newRow("rows are pings") << both << false << false << true << 24.0
                                    << QPointF(300 + 260, 200 - 60.5);
    QTest::newRow("ground, rows are pings")
        << both << true << false << false << -24.0 << QPointF(283 - 240, 60.5);
    QTest::newRow("port only") << int(ZrWaterfallSettings::portOnly) << false << true << true << -24.0
                               << QPointF(300 - 260, 400 - 121);
    QTest::newRow("starboard only") << int(ZrWaterfallSettings::starboardOnly) << true << true << true << 24.0
                                    << QPointF(240, 400 - 121);
}

void tst_ZrWaterfall::targetLies()
{
    QFETCH(int, sides);
    QFETCH(bool, slant);
    QFETCH(bool, speed);
    QFETCH(bool, newestTop);
    QFETCH(double, across);
    QFETCH(QPointF, expected);
    SonarLine line = SonarLine::Steady(200, 0.2);
    line.seabed = [across](double x, double north) {
        return std::fabs(x - across) < 0.25 && std::fabs(north - 12.0) < 0.25 ? 60000.0 : 5000.0;
    };
    line.pulse = 50.0;
    m_settings.sides = static_cast<ZrWaterfallSettings::eSides>(sides);
    m_settings.slantCorrected = slant;
    m_settings.speedCorrected = speed;
    m_settings.newest = newestTop ? ZrWaterfallSettings::newestTop : ZrWaterfallSettings::newestBottom;
    m_settings.resolution = 0.1;
    const QImage image = Draw(line);
    QVERIFY2(!image.isNull(), qPrintable(m_error));
    const Blob blob(image, 120, image.rect());
    QVERIFY2(std::fabs(blob.x - expected.x()) < 0.75 && std::fabs(blob.y - expected.y()) < 0.75,
        qPrintable(QStringLiteral("%1, %2").arg(blob.x).arg(blob.y)));
    // The same by the map's own account, which mice are followed with.
    const QPointF told = m_map->ToPixel(60.0, across < 0.0 ? sidePort : sideStarboard, 26.0);
    QVERIFY(std::fabs(blob.x - told.x()) < 0.75 && std::fabs(blob.y - told.y()) < 0.75);
    const ZrWaterfallPoint point = m_map->ToSonar({blob.x, blob.y});
    QVERIFY(std::fabs(point.groundRange - 24.0) < 0.1 && std::fabs(point.ping - 60.0) < 0.6);
    QCOMPARE(point.side, across < 0.0 ? sidePort : sideStarboard);
}

void tst_ZrWaterfall::roundTargetStaysRound_data()
{
    QTest::addColumn<double>("resolution");
    QTest::addColumn<bool>("corrected");
    QTest::newRow("finer than the pings") << 0.05 << true;
    QTest::newRow("as the pings") << 0.1 << true;
    QTest::newRow("coarser") << 0.3 << true;
    QTest::newRow("rows are pings") << 0.1 << false;
}

/// Three equal discs, passed at a quarter of a metre, an eighth and a sixteenth for a ping.
void tst_ZrWaterfall::roundTargetStaysRound()
{
    QFETCH(double, resolution);
    QFETCH(bool, corrected);
    SonarLine line;
    const double speeds[] = {0.25, 0.125, 0.0625};
    double north = 0.0;
    while (north < 60.0) {
        SonarLine::Ping ping;
        ping.time = 0.1 * static_cast<double>(line.pings.size());
        ping.north = north;
        line.pings.push_back(ping);
        north += speeds[static_cast<int>(north / 20.0)];
    }
    constexpr double radius = 3.0;
    line.seabed = [](double x, double y) {
        for (const double middle : {10.0, 30.0, 50.0}) {
            if (std::hypot(x - 15.0, y - middle) < radius)
                return 60000.0;
        }
        return 5000.0;
    };
    line.pulse = 50.0;
    m_settings.slantCorrected = true;
    m_settings.speedCorrected = corrected;
    m_settings.resolution = resolution;
    m_settings.newest = ZrWaterfallSettings::newestBottom;
    const QImage image = Draw(line);
    QVERIFY2(!image.isNull(), qPrintable(m_error));
    int odd = 0;
    for (int disc = 0; disc < 3; ++disc) {
        const std::size_t count = line.pings.size();
        std::size_t first = 0;
        while (line.pings[first].north < 20.0 * disc)
            ++first;
        std::size_t last = first;
        while (last + 1 < count && line.pings[last + 1].north < 20.0 * (disc + 1))
            ++last;
        const auto top = static_cast<int>(m_map->ToPixel(static_cast<double>(first), sidePort, 0.0).y());
        const auto end = static_cast<int>(m_map->ToPixel(static_cast<double>(last), sidePort, 0.0).y());
        const Blob blob(image, 128, QRect(0, top, image.width(), end - top));
        const double aspect = blob.height / blob.width;
        odd += std::fabs(aspect - 1.0) > 0.1 ? 1 : 0;
        if (corrected) {
            QVERIFY2(std::fabs(aspect - 1.0) < 0.1, qPrintable(QString::number(aspect)));
            QVERIFY(std::fabs(blob.width * resolution / (2.0 * radius) - 1.0) < 0.1);
            QVERIFY(
                std::fabs(blob.pixels * resolution * resolution / (3.14159 * radius * radius) - 1.0) < 0.07);
        }
    }
    QCOMPARE(odd, corrected ? 0 : 3);
}

void tst_ZrWaterfall::pulseAndWaterDoNotCount_data()
{
    QTest::addColumn<bool>("slant");
    QTest::addColumn<bool>("altitude");
    QTest::addColumn<double>("pulse");
    QTest::newRow("slant range") << false << true << 32767.0;
    QTest::newRow("ground range") << true << true << 32767.0;
    QTest::newRow("weak pulse") << false << true << 1.0;
    QTest::newRow("no altitude") << false << false << 32767.0;
}

void tst_ZrWaterfall::pulseAndWaterDoNotCount()
{
    QFETCH(bool, slant);
    QFETCH(bool, altitude);
    QFETCH(double, pulse);
    SonarLine line = SonarLine::Steady(100, 0.2);
    line.pulse = pulse;
    line.seabed = [](double x, double) { return 3000.0 + 50.0 * std::fabs(x); };
    if (!altitude) {
        for (SonarLine::Ping& ping : line.pings)
            ping.altitude = std::numeric_limits<double>::quiet_NaN();
    }
    m_settings.lo = m_settings.hi = std::numeric_limits<float>::quiet_NaN();
    m_settings.clip = 0.0;
    m_settings.slantCorrected = slant;
    const QImage image = Draw(line);
    QVERIFY2(!image.isNull(), qPrintable(m_error));
    QVERIFY2(m_lo >= 3000.0F && m_lo < 3100.0F, qPrintable(QString::number(double(m_lo))));
    QVERIFY2(m_hi <= 4500.0F && m_hi > 4350.0F, qPrintable(QString::number(double(m_hi))));
}

/// One pixel in 10,000 outside at each end, as the sonar packets count.
void tst_ZrWaterfall::designsStatistics()
{
    SonarLine line = SonarLine::Steady(50, 0.2);
    int n = 0;
    // 50 pings of 2 x 400 samples beyond the bottom, of which the first does not count: 39,900, and three of
    // them may lie outside.
    line.seabed = [&n](double, double) {
        ++n;
        return n <= 4 ? 60000.0 : n <= 7 ? 7.0 : n <= 20 ? 9000.0 : n <= 30 ? 900.0 : 4000.0;
    };
    line.pulse = 50.0;
    m_settings.lo = m_settings.hi = std::numeric_limits<float>::quiet_NaN();
    m_settings.speedCorrected = false;
    m_settings.clip = 0.0001;
    QVERIFY(!Draw(line).isNull());
    QCOMPARE(m_lo, 900.0F);
    QCOMPARE(m_hi, 9000.0F);
    n = 0;
    m_settings.clip = 0.01;
    QVERIFY(!Draw(line).isNull());
    QCOMPARE(m_lo, 4000.0F);
    QCOMPARE(m_hi, 4000.0F);
}

void tst_ZrWaterfall::contrastByHand()
{
    SonarLine line = SonarLine::Steady(20, 0.2);
    line.seabed = [](double x, double) { return x < 0.0 ? 2000.0 : 3000.0; };
    m_settings.lo = 1000.0F;
    m_settings.hi = 5000.0F;
    m_settings.gamma = 0.6;
    const QImage image = Draw(line);
    const int y = image.height() / 2;
    QCOMPARE(Grey(image, 100, y), int(std::pow(0.25, 0.6) * 256.0));
    QCOMPARE(Grey(image, 1100, y), int(std::pow(0.5, 0.6) * 256.0));
    QCOMPARE(Grey(image, 500, y), 0); // water
    QCOMPARE(Grey(image, 599, y), 255); // pulse
    QCOMPARE(m_lo, 1000.0F);
    QCOMPARE(m_hi, 5000.0F);
}

void tst_ZrWaterfall::gainIsApplied()
{
    SonarLine line = SonarLine::Steady(50, 0.2);
    line.seabed = [](double x, double) { return 40000.0 - 1000.0 * std::fabs(x); };
    m_settings.slantCorrected = true;
    QImage image = Draw(line);
    const int y = image.height() / 2;
    const int left = m_map->Columns(sidePort);
    QVERIFY(Grey(image, left + 50, y) > 2 * Grey(image, left + 500, y));
    m_settings.gain.mode = ZrSonarGainSettings::gainAuto;
    image = Draw(line);
    QVERIFY(std::abs(Grey(image, left + 50, y) - Grey(image, left + 500, y)) < 6);
    m_settings.gain.mode = ZrSonarGainSettings::gainLaw;
    m_settings.gain.absorption = 0.0;
    m_settings.gain.spreading = 20.0;
    image = Draw(line);
    // 24 m on the ground are 26 m of 30: 16,000 x 26 / 30.
    QVERIFY(std::abs(Grey(image, left + 480, y) - 16000 * 26 / 30 / 256) <= 1);
}

void tst_ZrWaterfall::palettesAndInversion()
{
    SonarLine line = SonarLine::Steady(20, 0.2);
    line.seabed = [](double, double) { return 100.0 * 256.0; };
    const MessageCatcher quiet;
    for (const QString& name : ZrSonarPalette::Names()) {
        ZrSonarPalette palette;
        QVERIFY(palette.Load(name));
        m_settings.palette = name;
        m_settings.invert = false;
        QCOMPARE(Draw(line).pixel(100, 5), palette.Colour(100));
        m_settings.invert = true;
        QCOMPARE(Draw(line).pixel(100, 5), palette.Colour(155));
    }
    QCOMPARE(Draw(line).format(), QImage::Format_RGB32);
}

void tst_ZrWaterfall::shownGainAndContrast_data()
{
    QTest::addColumn<double>("gain");
    QTest::addColumn<double>("contrast");
    QTest::addColumn<int>("grey");
    const double nan = std::nan("");
    const double inf = std::numeric_limits<double>::infinity();
    // Of 100 of 255.
    QTest::newRow("none") << 0.0 << 1.0 << 100;
    QTest::newRow("6 dB") << 20.0 * std::log10(2.0) << 1.0 << 200;
    QTest::newRow("-6 dB") << -20.0 * std::log10(2.0) << 1.0 << 50;
    QTest::newRow("white") << 20.0 << 1.0 << 255;
    QTest::newRow("steep") << 0.0 << 2.0 << 73; // 127.5 - 2 x 27.5 = 72.5
    QTest::newRow("flat") << 0.0 << 0.5 << 114; // 127.5 - 27.5 / 2 = 113.75
    QTest::newRow("black") << 0.0 << 10.0 << 0;
    QTest::newRow("both") << 20.0 * std::log10(1.5) << 0.5 << 171; // 113.75 x 1.5 = 170.6
    QTest::newRow("gain NaN") << nan << 1.0 << 100;
    QTest::newRow("gain infinite") << inf << 1.0 << 100;
    QTest::newRow("contrast NaN") << 0.0 << nan << 100;
    QTest::newRow("contrast infinite") << 0.0 << inf << 100;
    QTest::newRow("contrast 0") << 0.0 << 0.0 << 100;
    QTest::newRow("contrast below 0") << 0.0 << -1.0 << 100;
}

/// What is set for the eye, as the screen has it.
void tst_ZrWaterfall::shownGainAndContrast()
{
    QFETCH(double, gain);
    QFETCH(double, contrast);
    QFETCH(int, grey);
    SonarLine line = SonarLine::Steady(20, 0.2);
    line.seabed = [](double, double) { return 100.0 * 256.0; };
    m_settings.shownGain = gain;
    m_settings.shownContrast = contrast;
    QCOMPARE(Grey(Draw(line), 100, 5), grey);
}

void tst_ZrWaterfall::noDataIsNotBlack()
{
    SonarLine line = SonarLine::Steady(100, 0.5);
    line.seabed = [](double, double) { return 0.0; };
    line.water = 0.0;
    for (std::size_t i = 60; i < 100; ++i) {
        line.pings[i].range = 20.0;
        line.pings[i].north += 100.0;
    }
    for (std::size_t i = 20; i < 30; ++i)
        line.pings[i].sides[sidePort] = false;
    m_settings.resolution = 0.25;
    m_settings.newest = ZrWaterfallSettings::newestBottom;
    const QImage image = Draw(line);
    const QRgb noData = ZrWaterfallSettings().noData;
    const QRgb black = qRgb(0, 0, 0);
    QVERIFY(noData != black);
    QCOMPARE(image.width(), 240);
    QCOMPARE(image.pixel(10, 30), black);
    QCOMPARE(image.pixel(10, 50), noData); // no port side
    QCOMPARE(image.pixel(230, 50), black);
    QCOMPARE(image.pixel(120 + 79, image.height() - 10), black);
    QCOMPARE(image.pixel(120 + 80, image.height() - 10), noData); // beyond 20 m
    QCOMPARE(image.pixel(120 - 80, image.height() - 10), black);
    QCOMPARE(image.pixel(120 - 81, image.height() - 10), noData);
    for (int x = 0; x < image.width(); x += 7)
        QCOMPARE(image.pixel(x, 60 * 2 + 4), noData); // gap in the track
}

void tst_ZrWaterfall::transparentNoData()
{
    SonarLine line = SonarLine::Steady(20, 0.2);
    line.pings[10].sides[sidePort] = false;
    m_settings.noData = qRgba(0, 0, 0, 0);
    m_settings.speedCorrected = false;
    const QImage image = Draw(line);
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    QCOMPARE(image.pixel(10, 9), qRgba(0, 0, 0, 0));
    QCOMPARE(qAlpha(image.pixel(10, 8)), 255);
}

/// Its neighbours do not hide that a ping is missing.
void tst_ZrWaterfall::pingWithoutSamples()
{
    SonarLine line = SonarLine::Steady(20, 0.5);
    line.pings[10].sides[sideStarboard] = false;
    m_settings.resolution = 0.1;
    m_settings.newest = ZrWaterfallSettings::newestBottom;
    const QImage image = Draw(line);
    int rows = 0;
    for (int y = 0; y < image.height(); ++y) {
        const bool empty = image.pixel(500, y) == m_settings.noData;
        rows += empty ? 1 : 0;
        QVERIFY(!empty || (y >= 49 && y <= 55));
        QVERIFY(image.pixel(10, y) != m_settings.noData);
    }
    QVERIFY2(rows >= 4 && rows <= 6, qPrintable(QString::number(rows)));
}

void tst_ZrWaterfall::rowsBetweenPingsAreBlended()
{
    SonarLine line = SonarLine::Steady(11, 1.0);
    line.seabed = [](double, double north) { return north > 4.5 ? 256.0 * 200.0 : 256.0 * 100.0; };
    m_settings.resolution = 0.1;
    m_settings.newest = ZrWaterfallSettings::newestBottom;
    const QImage image = Draw(line);
    QCOMPARE(image.height(), 110);
    QCOMPARE(Grey(image, 10, 44), 100);
    for (int i = 0; i < 10; ++i) {
        const int expected = 100 + 10 * i + 5;
        QVERIFY(std::abs(Grey(image, 10, 45 + i) - expected) <= 1);
    }
    QCOMPARE(Grey(image, 10, 55), 200);
}

void tst_ZrWaterfall::rowsOfSeveralPingsAreTheirMean()
{
    SonarLine line = SonarLine::Steady(100, 0.1);
    int ping = 0;
    line.seabed = [&ping](double, double north) {
        ping = static_cast<int>(std::lround(north / 0.1));
        return ping % 2 ? 256.0 * 150.0 : 256.0 * 50.0;
    };
    m_settings.resolution = 1.0;
    const QImage image = Draw(line);
    QCOMPARE(image.height(), 10);
    for (int y = 0; y < 10; ++y)
        QVERIFY(std::abs(Grey(image, 2, y) - 100) <= 10);
}

/// A wire of one sample still shows where a pixel holds twenty.
void tst_ZrWaterfall::narrowEchoesAreNotLost()
{
    SonarLine line = SonarLine::Steady(20, 0.5);
    line.seabed = [](double x, double) { return std::fabs(x - 20.02) < 0.04 ? 60000.0 : 2000.0; };
    m_settings.resolution = 1.0;
    const QImage image = Draw(line);
    int brightest = 0;
    for (int x = 45; x < 60; ++x)
        brightest = std::max(brightest, Grey(image, x, 5));
    QVERIFY2(brightest > 12, qPrintable(QString::number(brightest)));
}

void tst_ZrWaterfall::bottomLine()
{
    SonarLine line = SonarLine::Steady(100, 0.5);
    for (std::size_t i = 0; i < 100; ++i)
        line.pings[i].altitude = i < 50 ? 10.0 : 15.0;
    m_settings.drawBottom = true;
    m_settings.resolution = 0.5;
    m_settings.newest = ZrWaterfallSettings::newestBottom;
    const QImage image = Draw(line);
    const auto marked = [&](int y) {
        QVector<int> columns;
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == m_settings.bottom)
                columns << x;
        }
        return columns;
    };
    QCOMPARE(marked(20), (QVector<int>{60 - 21, 60 + 20}));
    QCOMPARE(marked(80), (QVector<int>{60 - 31, 60 + 30}));
    // Where it jumps the line is drawn without a break.
    QVector<int> jump;
    for (int y = 48; y < 52; ++y)
        jump << marked(y);
    for (int x = 60 + 20; x <= 60 + 30; ++x)
        QVERIFY2(jump.contains(x), qPrintable(QString::number(x)));
    m_settings.drawBottom = false;
    const QImage without = Draw(line);
    QVERIFY(without.pixel(60 + 20, 20) != m_settings.bottom);
    // A ping whose bottom lies beyond the picture has none.
    m_settings.drawBottom = true;
    m_settings.range = 12.0;
    const QImage near = Draw(line);
    for (int x = 0; x < near.width(); ++x)
        QVERIFY(near.pixel(x, 80) != m_settings.bottom);
}

void tst_ZrWaterfall::bottomLineNotInGroundRange()
{
    m_settings.slantCorrected = true;
    const SonarLine line = SonarLine::Steady(20, 0.5);
    const QImage without = Draw(line);
    m_settings.drawBottom = true;
    QVERIFY(Draw(line) == without);
    SonarLine unknown = line;
    for (SonarLine::Ping& ping : unknown.pings)
        ping.altitude = std::numeric_limits<double>::quiet_NaN();
    m_settings.slantCorrected = false;
    m_settings.drawBottom = false;
    const QImage plain = Draw(unknown);
    m_settings.drawBottom = true;
    QVERIFY(Draw(unknown) == plain);
}

QTEST_GUILESS_MAIN(tst_ZrWaterfall)
#include "tst_ZrWaterfall.moc"
