// Mosaics: what is filled and what stays empty, and which amplitudes show.

#include "MosaicChecks.h"

#include <functional>

using namespace sonarline;

class tst_ZrMosaicFill : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_shelf.Renew(); }

    void gapsStayEmpty_data();
    void gapsStayEmpty();
    void turnsHaveNoHoles_data();
    void turnsHaveNoHoles();
    void aMissingSideIsBridged();
    void differentRanges();
    void sidesAndGaps();
    void someLinesOnly();
    void wildPositionsDoNotGrowThePicture();
    void standingStillShowsNothing();
    void blends_data();
    void blends();
    void coarsePixelsAverage();
    void nearestKeepsAmplitudes();
    void bilinearLiesBetween();
    void automaticGainEvensOut();

private:
    std::unique_ptr<Loaded> Load(const std::vector<Ping>& pings) { return m_shelf.Load(pings); }

    LogShelf m_shelf;
};

void tst_ZrMosaicFill::gapsStayEmpty_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("metres");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("joined");
    QTest::newRow("none") << 0.25 << 0.25 << 0.0 << true;
    QTest::newRow("just in time") << 2.9 << 0.25 << 0.0 << true;
    QTest::newRow("late") << 3.1 << 0.25 << 0.0 << false;
    QTest::newRow("near") << 0.25 << 9.9 << 0.0 << true;
    QTest::newRow("a leap") << 0.25 << 10.2 << 0.0 << false;
    QTest::newRow("a turn") << 0.25 << 0.25 << 29.0 << true;
    QTest::newRow("a spin") << 0.25 << 0.25 << 31.0 << false;
    QTest::newRow("clock set back") << -5.0 << 0.25 << 0.0 << false;
}

void tst_ZrMosaicFill::gapsStayEmpty()
{
    QFETCH(double, seconds);
    QFETCH(double, metres);
    QFETCH(double, degrees);
    QFETCH(bool, joined);
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.heading = 0.0;
    plan.pings = 20;
    std::vector<Ping> pings = Straight(plan);
    Plan second = plan;
    second.start = Away({pings.back().lat, pings.back().lng}, 0.0, metres);
    second.heading = degrees;
    for (Ping ping : Straight(second)) {
        ping.time += pings[19].time - startTime + seconds;
        pings.push_back(ping);
    }
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaic mosaic(PlainSettings(0.1));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    QCOMPARE(mosaic.Gaps(), joined ? 0U : 2U);
    QCOMPARE(mosaic.Strips() + mosaic.Gaps(), 78U);
    if (degrees != 0.0 || seconds < 0.0)
        return;
    // The middle between both halves, 10 m to starboard.
    const ZrGeoPoint middle = Away({pings[19].lat, pings[19].lng}, 0.0, metres / 2.0);
    double column = 0.0;
    double row = 0.0;
    QVERIFY(mosaic.Frame().Find(Away(middle, 90.0, 10.0), column, row));
    const double reach = 2.0 * std::sqrt(400.0 - 25.0);
    const double length = 2.0 * 19.0 * 0.25 + (joined ? metres : 0.0);
    QVERIFY2(
        std::fabs(Area(mosaic) / (reach * length) - 1.0) < 0.02, qPrintable(QString::number(Area(mosaic))));
    if (joined || metres > 1.0) {
        const QRgb pixel = mosaic.Image().pixel(static_cast<int>(column), static_cast<int>(row));
        QCOMPARE(qAlpha(pixel), joined ? 255 : 0);
    }
}

void tst_ZrMosaicFill::turnsHaveNoHoles_data()
{
    QTest::addColumn<double>("radius");
    QTest::addColumn<double>("perPing");
    QTest::newRow("wide") << 40.0 << 1.0;
    QTest::newRow("as wide as the reach") << 19.4 << 2.0;
    QTest::newRow("tight") << 4.0 << 5.0;
    QTest::newRow("on the spot") << 0.5 << 12.0;
    QTest::newRow("to port") << -10.0 << 6.0;
}

void tst_ZrMosaicFill::turnsHaveNoHoles()
{
    QFETCH(double, radius);
    QFETCH(double, perPing);
    std::vector<Ping> pings;
    ZrGeoPoint at{51.0, 3.0};
    double heading = 20.0;
    for (int i = 0; i < 50; ++i) {
        Ping ping;
        ping.time = startTime + i * 0.25;
        ping.lat = at.lat;
        ping.lng = at.lng;
        ping.heading = std::fmod(heading + 360.0, 360.0);
        ping.altitude = 5.0;
        for (std::vector<quint16>& side : ping.sides)
            side.assign(200, 1000);
        pings.push_back(ping);
        const bool turns = i >= 20 && i < 30;
        if (turns)
            heading += radius > 0.0 ? perPing : -perPing;
        at = Away(at, heading, turns ? std::fabs(radius) * perPing / 57.29577951308232 : 0.3);
    }
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaicSettings settings = PlainSettings(0.1);
    settings.maxTurn = 30.0;
    ZrMosaic mosaic(settings);
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    QCOMPARE(mosaic.Gaps(), 0U);
    QCOMPARE(Holes(mosaic.Image()), 0);
    QVERIFY(Area(mosaic) > 300.0);
}

void tst_ZrMosaicFill::aMissingSideIsBridged()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    for (const std::size_t i : {10U, 11U, 40U})
        pings[i].sides[sidePort].clear();
    pings[59].sides[sideStarboard].clear();
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaic mosaic(PlainSettings(0.1));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(mosaic.Build());
    QCOMPARE(mosaic.Gaps(), 0U);
    QCOMPARE(mosaic.Strips(), 56U + 58U);
    QCOMPARE(Holes(mosaic.Image()), 0);
}

void tst_ZrMosaicFill::differentRanges()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    for (std::size_t i = 30; i < 60; ++i) {
        pings[i].slantRange = 10.0;
        for (std::vector<quint16>& side : pings[i].sides)
            side.resize(100);
    }
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaic mosaic(PlainSettings(0.05));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(mosaic.Build());
    const double expected = 2.0 * (29.5 * 0.25 * std::sqrt(375.0) + 29.5 * 0.25 * std::sqrt(75.0));
    QVERIFY2(std::fabs(Area(mosaic) / expected - 1.0) < 0.02, qPrintable(QString::number(Area(mosaic))));
    QCOMPARE(Holes(mosaic.Image()), 0);
}

void tst_ZrMosaicFill::sidesAndGaps()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    const double length = 59 * 0.25;
    const double reach = std::sqrt(375.0);
    const auto area = [&line](const std::function<void(ZrMosaicSettings&)>& change) {
        ZrMosaicSettings settings = PlainSettings(0.05);
        change(settings);
        ZrMosaic mosaic(settings);
        mosaic.AddLine(line->log, line->bottom);
        return mosaic.Build() ? Area(mosaic) : unknown;
    };
    QVERIFY(std::fabs(area([](ZrMosaicSettings&) {}) / (2.0 * reach * length) - 1.0) < 0.01);
    QVERIFY(std::fabs(area([](ZrMosaicSettings& s) { s.port = false; }) / (reach * length) - 1.0) < 0.01);
    QVERIFY(
        std::fabs(area([](ZrMosaicSettings& s) { s.starboard = false; }) / (reach * length) - 1.0) < 0.01);
    QVERIFY(
        std::fabs(area([](ZrMosaicSettings& s) { s.nadirGap = 4.0; }) / (2.0 * (reach - 4.0) * length) - 1.0)
        < 0.01);
    QVERIFY(
        std::fabs(area([](ZrMosaicSettings& s) { s.farGap = 3.0; }) / (2.0 * (reach - 3.0) * length) - 1.0)
        < 0.01);
}

void tst_ZrMosaicFill::someLinesOnly()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaic mosaic(PlainSettings(0.1));
    mosaic.AddLine(line->log, line->bottom, 10, 20);
    QVERIFY(mosaic.Build());
    QCOMPARE(mosaic.Strips(), 20U);
    ZrMosaic beyond(PlainSettings(0.1));
    beyond.AddLine(line->log, line->bottom, 50, 1000);
    QVERIFY(beyond.Build());
    QCOMPARE(beyond.Strips(), 18U);
    ZrMosaic none(PlainSettings(0.1));
    none.AddLine(line->log, line->bottom, 60, 70);
    QVERIFY(!none.Build());
}

void tst_ZrMosaicFill::wildPositionsDoNotGrowThePicture()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    pings[20].lat = 51.1; // 11 km away
    pings[40].lng = -30.0;
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaic mosaic(PlainSettings(0.1));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    QCOMPARE(mosaic.Gaps(), 4U); // the other one is too far away to be placed at all, and bridged
    QCOMPARE(mosaic.Frame().zone, 31);
    QVERIFY(mosaic.Frame().width < 500 && mosaic.Frame().height < 500);
}

void tst_ZrMosaicFill::standingStillShowsNothing()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.step = 0.0;
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaic mosaic(PlainSettings(0.1));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(!mosaic.Build());
    QCOMPARE(mosaic.Error(),
        QStringLiteral("No pixel was seen: the sonar did not move, or its samples cannot be read"));
    QVERIFY(mosaic.Image().isNull());
}

void tst_ZrMosaicFill::blends_data()
{
    QTest::addColumn<int>("blend");
    QTest::addColumn<int>("onFirst"); ///< near the track of the first line
    QTest::addColumn<int>("onSecond");
    QTest::newRow("newest") << int(ZrMosaicSettings::blendNewest) << 10000 << 10000;
    QTest::newRow("brightest") << int(ZrMosaicSettings::blendBrightest) << 40000 << 40000;
    QTest::newRow("average") << int(ZrMosaicSettings::blendAverage) << 25000 << 25000;
    QTest::newRow("nadir") << int(ZrMosaicSettings::blendNadir) << 40000 << 10000;
}

void tst_ZrMosaicFill::blends()
{
    QFETCH(int, blend);
    QFETCH(int, onFirst);
    QFETCH(int, onSecond);
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.amplitude = 40000;
    const std::unique_ptr<Loaded> first = Load(Straight(plan));
    Plan other = plan;
    other.start = Away(plan.start, 90.0, 10.0);
    other.amplitude = 10000;
    std::vector<Ping> pings = Straight(other);
    pings[3].sides[sideStarboard].assign(200, 65535); // for a scale of amplitudes
    pings[6].sides[sideStarboard].assign(200, 1);
    const std::unique_ptr<Loaded> second = Load(pings);
    ZrMosaicSettings settings = PlainSettings(0.1);
    settings.blend = static_cast<ZrMosaicSettings::eBlend>(blend);
    settings.sampling = ZrMosaicSettings::samplingNearest;
    ZrMosaic mosaic(settings);
    mosaic.AddLine(first->log, first->bottom);
    mosaic.AddLine(second->log, second->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    const auto amplitude = [&](double east) {
        const ZrGeoPoint at = Away(Away(plan.start, 0.0, 7.6), 90.0, east);
        double column = 0.0;
        double row = 0.0;
        if (!mosaic.Frame().Find(at, column, row))
            return -1;
        return qGray(mosaic.Image().pixel(static_cast<int>(column), static_cast<int>(row))) * 256;
    };
    QVERIFY2(std::abs(amplitude(2.0) - onFirst) < 600, qPrintable(QString::number(amplitude(2.0))));
    QVERIFY2(std::abs(amplitude(8.0) - onSecond) < 600, qPrintable(QString::number(amplitude(8.0))));
    QVERIFY(std::abs(amplitude(-15.0) - 40000) < 600); // the first alone
    QVERIFY(std::abs(amplitude(25.0) - 10000) < 600); // the second alone
}

void tst_ZrMosaicFill::coarsePixelsAverage()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.pings = 200;
    plan.step = 0.05;
    std::vector<Ping> pings = Straight(plan);
    for (std::size_t i = 0; i < pings.size(); ++i) {
        for (std::vector<quint16>& side : pings[i].sides) {
            for (std::size_t s = 0; s < side.size(); ++s)
                side[s] = (i + s) % 2 ? 30000 : 10000;
        }
    }
    // The contrast stretches whatever is there: two pings show it the whole range.
    for (const std::size_t i : {5U, 6U}) {
        for (std::vector<quint16>& side : pings[i].sides)
            side.assign(200, i == 5U ? 65535 : 1);
    }
    const std::unique_ptr<Loaded> scaled = Load(pings);
    ZrMosaic mosaic(PlainSettings(0.4));
    mosaic.AddLine(scaled->log, scaled->bottom);
    QVERIFY(mosaic.Build());
    ZrMosaic fine(PlainSettings(0.01));
    fine.AddLine(scaled->log, scaled->bottom, 100, 104);
    QVERIFY(fine.Build());
    const auto range = [&](const ZrMosaic& of) {
        int least = 255;
        int most = 0;
        for (double east = 7.0; east < 17.0; east += 0.37) {
            for (double north = 5.02; north < 5.18; north += 0.03) {
                double column = 0.0;
                double row = 0.0;
                of.Frame().Find(Away(Away(plan.start, 0.0, north), 90.0, east), column, row);
                const int grey = qGray(of.Image().pixel(static_cast<int>(column), static_cast<int>(row)));
                least = std::min(least, grey);
                most = std::max(most, grey);
            }
        }
        return most - least;
    };
    QVERIFY2(range(fine) > 200, qPrintable(QString::number(range(fine))));
    QVERIFY2(range(mosaic) < 25, qPrintable(QString::number(range(mosaic))));
}

void tst_ZrMosaicFill::nearestKeepsAmplitudes()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    for (std::size_t i = 0; i < pings.size(); i += 2) {
        for (std::vector<quint16>& side : pings[i].sides)
            side.assign(200, 60000);
    }
    const std::unique_ptr<Loaded> line = Load(pings);
    for (const auto sampling : {ZrMosaicSettings::samplingNearest, ZrMosaicSettings::samplingBilinear}) {
        ZrMosaicSettings settings = PlainSettings(0.02);
        settings.sampling = sampling;
        ZrMosaic mosaic(settings);
        mosaic.AddLine(line->log, line->bottom);
        QVERIFY(mosaic.Build());
        int between = 0;
        for (int y = 0; y < mosaic.Image().height(); ++y) {
            for (int x = 0; x < mosaic.Image().width(); ++x) {
                const int grey = qGray(mosaic.Image().pixel(x, y));
                between += qAlpha(mosaic.Image().pixel(x, y)) && grey > 20 && grey < 235 ? 1 : 0;
            }
        }
        QCOMPARE(between == 0, sampling == ZrMosaicSettings::samplingNearest);
    }
}

void tst_ZrMosaicFill::bilinearLiesBetween()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.heading = 0.0;
    plan.step = 1.0;
    plan.interval = 1.0;
    plan.pings = 4;
    std::vector<Ping> pings = Straight(plan);
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::vector<quint16>& side : pings[i].sides)
            side.assign(200, static_cast<quint16>(1 + i * 21844));
    }
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaic mosaic(PlainSettings(0.02));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(mosaic.Build());
    for (double north = 0.1; north < 3.0; north += 0.17) {
        double column = 0.0;
        double row = 0.0;
        QVERIFY(mosaic.Frame().Find(Away(Away(plan.start, 0.0, north), 90.0, 10.0), column, row));
        const int grey = qGray(mosaic.Image().pixel(static_cast<int>(column), static_cast<int>(row)));
        QVERIFY2(std::fabs(grey - north / 3.0 * 256.0) < 3.0, qPrintable(QString::number(grey)));
    }
}

void tst_ZrMosaicFill::automaticGainEvensOut()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    for (Ping& ping : pings) {
        for (std::vector<quint16>& side : ping.sides) {
            for (std::size_t s = 0; s < side.size(); ++s)
                side[s] = static_cast<quint16>(40000 / (1 + s / 20));
        }
    }
    for (std::vector<quint16>& side : pings[1].sides)
        side.assign(200, 1); // for a scale of amplitudes
    const std::unique_ptr<Loaded> line = Load(pings);
    const auto fall = [&](ZrSonarGainSettings::eMode mode) {
        ZrMosaicSettings settings = PlainSettings(0.1);
        settings.gain.mode = mode;
        ZrMosaic mosaic(settings);
        mosaic.AddLine(line->log, line->bottom);
        if (!mosaic.Build())
            return unknown;
        const auto grey = [&](double range) {
            double column = 0.0;
            double row = 0.0;
            mosaic.Frame().Find(Away(Away(plan.start, 0.0, 10.0), 90.0, range), column, row);
            return static_cast<double>(
                qGray(mosaic.Image().pixel(static_cast<int>(column), static_cast<int>(row))));
        };
        return grey(4.0) / grey(18.0);
    };
    QVERIFY(fall(ZrSonarGainSettings::gainNone) > 2.0);
    const double even = fall(ZrSonarGainSettings::gainAuto);
    QVERIFY2(even > 0.85 && even < 1.15, qPrintable(QString::number(even)));
}

QTEST_GUILESS_MAIN(tst_ZrMosaicFill)
#include "tst_ZrMosaicFill.moc"
