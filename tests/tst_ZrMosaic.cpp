// Mosaics: where targets come to lie, against GeographicLib; a real line.

#include "GoldenImage.h"
#include "MosaicChecks.h"
#include "ZrKit/import/ZrImportSession.h"
#include "ZrKit/sonar/ZrBottomTracker.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

using namespace sonarline;

class tst_ZrMosaic : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_shelf.Renew(); }

    void targetsLieWhereTheyAre_data();
    void targetsLieWhereTheyAre();
    void everyPixelIsItsNearestSample();
    void alongAGivenTrack();
    void convergenceTurnsTheLine();
    void pixelsBeginAtMultiples();
    void automaticResolution();
    void frameRoundTrip_data();
    void frameRoundTrip();
    void realLineIsTrue();
    void realLineLooksLikeIt();

private:
    std::unique_ptr<Loaded> Load(const std::vector<Ping>& pings) { return m_shelf.Load(pings); }

    std::unique_ptr<Loaded> RealLine();

    LogShelf m_shelf;
};

std::unique_ptr<Loaded> tst_ZrMosaic::RealLine()
{
    auto loaded = std::make_unique<Loaded>();
    const QString path = m_shelf.Path("real.log");
    ZrImportSession session;
    if (session.Run(
            {QStringLiteral(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf")}, path, nullptr)
        != ZrImportSession::Done)
        qFatal("the real line cannot be imported");
    if (!loaded->log.Open(path))
        qFatal("the imported log cannot be read");

    // The first return of the seabed as a person draws it: the recorded altitude is that of the vehicle's
    // own sounder, up to 2 m less.
    struct Knot
    {
        std::size_t ping;
        double altitude;
    };

    constexpr Knot knots[] = {{0, 13.31}, {10, 13.08}, {20, 12.75}, {30, 12.53}, {40, 12.14}, {50, 11.74},
        {60, 11.25}, {70, 11.01}, {80, 10.75}, {90, 10.36}, {100, 10.08}, {110, 9.67}, {120, 9.35},
        {130, 9.06}, {140, 8.73}, {150, 8.44}, {160, 8.09}, {170, 7.86}, {180, 7.71}, {190, 7.42},
        {200, 6.98}, {210, 6.57}, {220, 5.95}, {230, 5.48}, {240, 5.13}, {250, 4.72}, {260, 4.49},
        {270, 4.40}, {280, 4.34}, {290, 4.37}, {299, 4.37}};
    loaded->bottom = ZrBottomLine(loaded->log.Pings().size());
    for (std::size_t i = 0; i + 1 < std::size(knots); ++i)
        loaded->bottom.Draw(knots[i].ping, knots[i].altitude, knots[i + 1].ping, knots[i + 1].altitude);
    return loaded;
}

void tst_ZrMosaic::targetsLieWhereTheyAre_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("heading");
    for (const double heading : {0.0, 47.5, 90.0, 180.0, 301.0}) {
        QTest::addRow("north %g", heading) << 48.4455 << -68.828 << heading;
        QTest::addRow("south %g", heading) << -43.5 << 172.7 << heading;
        QTest::addRow("zone edge %g", heading) << 61.0 << 5.99999 << heading;
        QTest::addRow("antimeridian %g", heading) << -17.0 << 179.99999 << heading;
        QTest::addRow("equator %g", heading) << 0.00002 << 33.0 << heading;
    }
}

void tst_ZrMosaic::targetsLieWhereTheyAre()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, heading);
    Plan plan;
    plan.start = {lat, lng};
    plan.heading = heading;
    for (const int side : {int(sidePort), int(sideStarboard)}) {
        std::vector<Ping> pings = Straight(plan);
        pings[30].sides[side][150] = 60000;
        const std::unique_ptr<Loaded> line = Load(pings);
        ZrMosaicSettings settings = PlainSettings(0.02);
        settings.sampling = ZrMosaicSettings::samplingNearest;
        ZrMosaic mosaic(settings);
        mosaic.AddLine(line->log, line->bottom);
        QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));

        double column = 0.0;
        double row = 0.0;
        QVERIFY(Brightest(mosaic.Image(), 200, column, row));
        const QList<QByteArray> world = ZrMosaicFile::WorldFile(mosaic.Frame()).split('\n');
        const double east = world[4].toDouble() + world[0].toDouble() * column + world[2].toDouble() * row;
        const double north = world[5].toDouble() + world[1].toDouble() * column + world[3].toDouble() * row;

        const double slant = 150.5 * 0.1;
        const ZrGeoPoint sonar = Away(plan.start, heading, 30 * plan.step);
        const ZrGeoPoint target
            = Away(sonar, heading + (side == sidePort ? -90.0 : 90.0), std::sqrt(slant * slant - 25.0));
        const GridPoint expected = ToGrid(target, mosaic.Frame().zone, mosaic.Frame().south);
        const double off = std::hypot(east - expected.east, north - expected.north);
        QVERIFY2(off < 0.03, qPrintable(QString::number(off))); // a sample is 0.1 m
    }
}

/// One that was made already counts, not the settings; it may be of more pings than are drawn.
void tst_ZrMosaic::alongAGivenTrack()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.heading = 30.0;
    std::vector<Ping> pings = Straight(plan);
    for (std::size_t i = 0; i < pings.size(); ++i)
        pings[i].sides[sidePort][100 + i] = 60000;
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaicSettings turned = PlainSettings(0.1);
    turned.track.headingOffset = 20.0;
    turned.track.smoothing = 3.0;
    const ZrSonarTrack track(line->log.Pings(), turned.track);
    const auto draw = [&](const ZrMosaicSettings& settings, const ZrSonarTrack* given) {
        ZrMosaic mosaic(settings);
        if (given)
            mosaic.AddLine(line->log, line->bottom, *given, 10, 49);
        else
            mosaic.AddLine(line->log, line->bottom, 10, 49);
        return mosaic.Build() ? mosaic.Image() : QImage();
    };
    const QImage expected = draw(turned, nullptr);
    QVERIFY(!expected.isNull());
    QCOMPARE(draw(PlainSettings(0.1), &track), expected);
    QVERIFY(draw(PlainSettings(0.1), nullptr) != expected);
}

void tst_ZrMosaic::everyPixelIsItsNearestSample()
{
    Plan plan;
    plan.start = {61.0, 5.9999};
    plan.heading = 217.0;
    plan.pings = 30;
    std::vector<Ping> pings = Straight(plan);
    for (std::size_t i = 0; i < pings.size(); ++i) {
        for (std::vector<quint16>& side : pings[i].sides) {
            for (std::size_t s = 0; s < side.size(); ++s)
                side[s] = static_cast<quint16>((i * 37 + s * 11) % 255 * 257);
        }
    }
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaicSettings settings = PlainSettings(0.05);
    settings.sampling = ZrMosaicSettings::samplingNearest;
    ZrMosaic mosaic(settings);
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    const ZrSonarTrack track(line->log.Pings(), {});
    const ZrSonarGeo geo(line->log.Pings(), track, line->bottom);
    const QImage& image = mosaic.Image();
    int seen = 0;
    int wrong = 0;
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3) {
            ZrSonarSpot spot;
            double away = 0.0;
            QVERIFY(geo.Find(mosaic.Frame().Position(x + 0.5, y + 0.5), spot, &away));
            const double toEdge = std::fabs(spot.sample - std::floor(spot.sample) - 0.5);
            const bool isEnd = spot.ping == 0 || spot.ping == pings.size() - 1;
            if (isEnd || away > 0.12 || toEdge < 0.02)
                continue; // beside the line, or between two pings or samples
            const auto sample = static_cast<std::size_t>(std::floor(spot.sample + 0.5));
            const int value = pings[spot.ping].sides[spot.side][sample] / 257;
            ++seen;
            // The contrast stretches 1 ... 254 to 0 ... 255.
            wrong
                += qAlpha(image.pixel(x, y)) != 255 || std::abs(qGray(image.pixel(x, y)) - value) > 2 ? 1 : 0;
        }
    }
    QVERIFY(seen > 5000);
    QCOMPARE(wrong, 0);
}

void tst_ZrMosaic::convergenceTurnsTheLine()
{
    Plan plan;
    plan.start = {61.0, 5.99999};
    plan.heading = 0.0;
    plan.pings = 200;
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaicSettings settings = PlainSettings(0.1);
    settings.nadirGap = 0.3;
    ZrMosaic mosaic(settings);
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    const QImage& image = mosaic.Image();
    const auto gapOf = [&image](int row) {
        int sum = 0;
        int count = 0;
        for (int x = 1; x + 1 < image.width(); ++x) {
            if (qAlpha(image.pixel(x, row)) == 0 && x > image.width() / 4 && x < image.width() * 3 / 4) {
                sum += x;
                ++count;
            }
        }
        return count ? static_cast<double>(sum) / count : unknown;
    };
    const int top = image.height() / 5;
    const int bottom = image.height() * 4 / 5;
    const double lean = std::atan2(gapOf(top) - gapOf(bottom), bottom - top) * 57.29577951308232;
    double gamma = 0.0;
    double scale = 0.0;
    double east = 0.0;
    double north = 0.0;
    int zone = 0;
    bool isNorth = true;
    GeographicLib::UTMUPS::Forward(
        61.0, 5.99999, zone, isNorth, east, north, gamma, scale, mosaic.Frame().zone);
    QVERIFY(std::fabs(gamma) > 2.5);
    // A line to true north points by the convergence to the left of grid north.
    QVERIFY2(std::fabs(lean + gamma) < 0.3, qPrintable(QStringLiteral("%1 %2").arg(lean).arg(gamma)));
}

void tst_ZrMosaic::pixelsBeginAtMultiples()
{
    Plan plan;
    plan.start = {48.4455, -68.828};
    plan.heading = 30.0;
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaic mosaic(PlainSettings(0.25));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(mosaic.Build());
    const ZrMosaicFrame& frame = mosaic.Frame();
    QVERIFY(std::fabs(std::remainder(frame.west, 0.25)) < 1e-6);
    QVERIFY(std::fabs(std::remainder(frame.north, 0.25)) < 1e-6);
    QCOMPARE(mosaic.Image().size(), QSize(frame.width, frame.height));
    // No empty margins.
    const auto isSeen = [&](int x, int y) { return qAlpha(mosaic.Image().pixel(x, y)) != 0; };
    int top = 0;
    int left = 0;
    for (int x = 0; x < frame.width; ++x)
        top += isSeen(x, 0) || isSeen(x, 1) ? 1 : 0;
    for (int y = 0; y < frame.height; ++y)
        left += isSeen(0, y) || isSeen(1, y) ? 1 : 0;
    QVERIFY(top > 0 && left > 0);
}

void tst_ZrMosaic::automaticResolution()
{
    Plan plan;
    plan.start = {48.4455, -68.828};
    const auto resolution = [this](const Plan& of) {
        const std::unique_ptr<Loaded> line = Load(Straight(of));
        ZrMosaic mosaic(PlainSettings(0.0));
        mosaic.AddLine(line->log, line->bottom);
        return mosaic.Build() ? mosaic.Frame().resolution : unknown;
    };
    QCOMPARE(resolution(plan), 0.1); // samples of 0.1 m, pings 0.25 m apart
    plan.step = 1.2;
    QCOMPARE(resolution(plan), 0.5);
    plan.step = 0.25;
    plan.samples = 1000; // of 0.02 m
    QCOMPARE(resolution(plan), 0.1);
    plan.step = 0.05;
    QCOMPARE(resolution(plan), 0.02);
}

void tst_ZrMosaic::frameRoundTrip_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<int>("zone");
    QTest::addColumn<int>("epsg");
    QTest::newRow("north") << 48.4 << -68.8 << 19 << 32619;
    QTest::newRow("south") << -43.5 << 172.7 << 59 << 32759;
    QTest::newRow("first") << 10.0 << -180.0 << 1 << 32601;
    QTest::newRow("last") << 10.0 << 179.999 << 60 << 32660;
    QTest::newRow("antimeridian") << -10.0 << 180.0 << 1 << 32701;
    QTest::newRow("edge") << 61.0 << 6.0 << 32 << 32632;
}

void tst_ZrMosaic::frameRoundTrip()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(int, zone);
    QFETCH(int, epsg);
    ZrMosaicFrame frame = ZrMosaicFrame::ZoneAt({lat, lng});
    QCOMPARE(frame.zone, zone);
    QCOMPARE(frame.Epsg(), epsg);
    frame.resolution = 0.5;
    frame.west = 500000.0;
    frame.north = 1000000.0;
    double column = 0.0;
    double row = 0.0;
    QVERIFY(frame.Find({lat, lng}, column, row));
    const GridPoint expected = ToGrid({lat, lng}, zone, frame.south);
    QVERIFY(std::fabs(frame.East(column) - expected.east) < 0.002);
    QVERIFY(std::fabs(frame.North(row) - expected.north) < 0.002);
    const ZrGeoPoint back = frame.Position(column, row);
    QVERIFY(Apart(back, {lat, lng}) < 0.002);
    QVERIFY(back.IsValid());
    QVERIFY(!frame.Find({}, column, row));
}

void tst_ZrMosaic::realLineIsTrue()
{
    const std::unique_ptr<Loaded> line = RealLine();
    QCOMPARE(line->log.Pings().size(), std::size_t(300));
    ZrMosaicSettings settings = PlainSettings(0.02);
    settings.sampling = ZrMosaicSettings::samplingNearest;
    settings.track.heading = ZrSonarTrackSettings::headingCourse;
    settings.track.smoothing = 10.0;
    ZrMosaic mosaic(settings);
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    QCOMPARE(mosaic.Frame().Epsg(), 32619);
    QCOMPARE(Holes(mosaic.Image()), 0);
    const ZrSonarTrack track(line->log.Pings(), settings.track);
    std::vector<u16> samples;
    int compared = 0;
    int same = 0;
    u16 lo = 65535;
    u16 hi = 0;
    for (std::size_t ping = 0; ping < 300; ++ping) {
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            QVERIFY(line->log.ReadSamples(ping, side, samples));
            for (std::size_t s = 470; s < samples.size(); ++s) {
                lo = samples[s] ? std::min(lo, samples[s]) : lo;
                hi = std::max(hi, samples[s]);
            }
        }
    }
    for (std::size_t ping = 20; ping < 290; ping += 9) {
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            QVERIFY(line->log.ReadSamples(ping, side, samples));
            const ZrSonarChannel channel = line->log.Pings().Side(ping, side);
            const double altitude = line->bottom.Altitude(ping);
            for (std::size_t s = 500; s < 1000; s += 60) {
                // Far from the nadir a sample is as long on the ground as in slant range: 0.029 m.
                const double slant = (static_cast<double>(s) + 0.5) * channel.slantRange / 1024.0;
                const ZrGeoPoint at
                    = Away(track.Position(ping), track.Heading(ping) + (side == sidePort ? -90.0 : 90.0),
                        std::sqrt(slant * slant - altitude * altitude));
                const GridPoint grid = ToGrid(at, 19, false);
                const int x = static_cast<int>(std::floor((grid.east - mosaic.Frame().west) / 0.02));
                const int y = static_cast<int>(std::floor((mosaic.Frame().north - grid.north) / 0.02));
                // The pixel shows this sample, or a neighbour where its middle lies across the border.
                const int grey = qGray(mosaic.Image().pixel(x, y));
                bool found = false;
                for (std::size_t k = s - 1; k <= s + 1; ++k)
                    found = found || std::fabs(grey - 256.0 * (samples[k] - lo) / (hi - lo)) <= 2.0;
                ++compared;
                same += found ? 1 : 0;
            }
        }
    }
    QVERIFY(compared > 400);
    QVERIFY2(same > compared * 97 / 100, qPrintable(QStringLiteral("%1 of %2").arg(same).arg(compared)));
}

void tst_ZrMosaic::realLineLooksLikeIt()
{
    const std::unique_ptr<Loaded> line = RealLine();
    ZrMosaicSettings settings;
    settings.resolution = 0.1;
    settings.farGap = 0.05;
    settings.track.heading = ZrSonarTrackSettings::headingCourse;
    settings.track.smoothing = 10.0;
    ZrMosaic mosaic(settings);
    // The altimeter of this line reads up to 2 m low.
    ZrBottomTracker tracker;
    line->bottom.SetFound(tracker.Track(line->log));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    QCOMPARE(mosaic.Gaps(), 0U);
    QCOMPARE(Holes(mosaic.Image()), 0);
    const QString wrong = golden::Compare(mosaic.Image(), QStringLiteral("mosaic-wreck.png"));
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

QTEST_GUILESS_MAIN(tst_ZrMosaic)
#include "tst_ZrMosaic.moc"
