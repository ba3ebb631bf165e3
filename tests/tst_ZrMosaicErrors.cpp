// Mosaics: what is refused, limits of size, progress and cancel.

#include "MosaicChecks.h"
#include "ZrUtil/IZrProgress.h"

#include <functional>

using namespace sonarline;

namespace {

class Progress final : public IZrProgress
{
public:
    void UpdateProgress(int percent) override
    {
        percents.push_back(percent);
        if (onPercent)
            onPercent(percent);
    }

    int GetProgress() override { return percents.empty() ? 0 : percents.back(); }

    std::vector<int> percents;
    std::function<void(int)> onPercent;
};

} // namespace

class tst_ZrMosaicErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_shelf.Renew(); }

    void refusedSettings_data();
    void refusedSettings();
    void noLines();
    void noPositions();
    void noSamples();
    void noSeabed();
    void tooLarge();
    void automaticResolutionFits();
    void logThatHasChanged();
    void cancelled_data();
    void cancelled();
    void cancelledWhilePlaced();
    void progressGoesUp();
    void buildingTwiceIsTheSame();

private:
    std::unique_ptr<Loaded> Load(const std::vector<Ping>& pings) { return m_shelf.Load(pings); }

    LogShelf m_shelf;
};

void tst_ZrMosaicErrors::refusedSettings_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("error");
    const QString limit = QStringLiteral("A limit of the settings is negative or not a number");
    const QString contrast = QStringLiteral("The contrast of the settings makes no sense");
    const QString pixel
        = QStringLiteral("The size of a pixel must be from 0.001 to 1000 metres, or 0 for an automatic one");
    const QStringList errors{pixel, pixel, pixel, pixel,
        QStringLiteral("Neither port nor starboard is to be shown"), limit, limit, limit, limit, limit, limit,
        limit, limit, QStringLiteral("The heading offset is not a number"), contrast, contrast, contrast,
        contrast, QStringLiteral("There is no palette \"mauve\"; there are ")};
    for (int i = 0; i < errors.size(); ++i)
        QTest::addRow("%d", i) << i << errors[i];
}

void tst_ZrMosaicErrors::refusedSettings()
{
    QFETCH(int, number);
    QFETCH(QString, error);
    constexpr double inf = std::numeric_limits<double>::infinity();
    const std::vector<std::function<void(ZrMosaicSettings&)>> changes{
        [](ZrMosaicSettings& s) { s.resolution = 0.0009; },
        [](ZrMosaicSettings& s) { s.resolution = 1001.0; },
        [](ZrMosaicSettings& s) { s.resolution = unknown; },
        [](ZrMosaicSettings& s) { s.resolution = -1.0; },
        [](ZrMosaicSettings& s) { s.port = s.starboard = false; },
        [](ZrMosaicSettings& s) { s.nadirGap = -1.0; },
        [](ZrMosaicSettings& s) { s.farGap = unknown; },
        [](ZrMosaicSettings& s) { s.maxTime = -1.0; },
        [](ZrMosaicSettings& s) { s.maxStep = unknown; },
        [](ZrMosaicSettings& s) { s.maxTurn = -1.0; },
        [](ZrMosaicSettings& s) { s.maxEndTurn = -1.0; },
        [](ZrMosaicSettings& s) { s.maxFixGap = unknown; },
        [](ZrMosaicSettings& s) { s.track.smoothing = -1.0; },
        [](ZrMosaicSettings& s) { s.track.headingOffset = unknown; },
        [](ZrMosaicSettings& s) { s.gamma = 0.0; },
        [=](ZrMosaicSettings& s) { s.gamma = inf; },
        [](ZrMosaicSettings& s) { s.clip = 0.6; },
        [](ZrMosaicSettings& s) { s.clip = unknown; },
        [](ZrMosaicSettings& s) { s.palette = QStringLiteral("mauve"); },
    };
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.pings = 4;
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaicSettings settings = PlainSettings(0.1);
    changes.at(static_cast<std::size_t>(number))(settings);
    ZrMosaic mosaic(settings);
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(!mosaic.Build());
    QVERIFY2(mosaic.Error().startsWith(error), qPrintable(mosaic.Error()));
    QVERIFY(mosaic.Image().isNull());
}

void tst_ZrMosaicErrors::noLines()
{
    ZrMosaic mosaic(PlainSettings(0.1));
    QVERIFY(!mosaic.Build());
    QCOMPARE(mosaic.Error(), QStringLiteral("No side-scan line has a known position"));
    ZrSonarLog closed;
    mosaic.AddLine(closed, ZrBottomLine());
    QVERIFY(!mosaic.Build());
    // A single ping covers nothing.
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.pings = 1;
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaic one(PlainSettings(0.1));
    one.AddLine(line->log, line->bottom);
    QVERIFY(!one.Build());
    QCOMPARE(one.Error(),
        QStringLiteral("No two side-scan lines that follow each other have a known place, or all lie apart"));
}

void tst_ZrMosaicErrors::noPositions()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    for (Ping& ping : pings)
        ping.lat = unknown;
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaic mosaic(PlainSettings(0.1));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(!mosaic.Build());
    QCOMPARE(mosaic.Error(), QStringLiteral("No side-scan line has a known position"));
}

void tst_ZrMosaicErrors::noSamples()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    for (Ping& ping : pings)
        ping.sides[sideStarboard].clear();
    const std::unique_ptr<Loaded> line = Load(pings);
    for (const bool port : {false, true}) {
        ZrMosaicSettings settings = PlainSettings(0.1);
        settings.port = port;
        settings.starboard = !port;
        ZrMosaic mosaic(settings);
        mosaic.AddLine(line->log, line->bottom);
        QCOMPARE(mosaic.Build(), port);
        QCOMPARE(mosaic.Error(),
            port ? QString() : QStringLiteral("The side-scan lines have no samples on the sides shown"));
    }
}

void tst_ZrMosaicErrors::noSeabed()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    const QString error
        = QStringLiteral("No side-scan line reaches the seabed, or the far gap leaves nothing of it");
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaicSettings settings = PlainSettings(0.1);
    settings.farGap = plan.slantRange;
    ZrMosaic nothingLeft(settings);
    nothingLeft.AddLine(line->log, line->bottom);
    QVERIFY(!nothingLeft.Build());
    QCOMPARE(nothingLeft.Error(), error);
    plan.altitude = 2.0 * plan.slantRange;
    const std::unique_ptr<Loaded> high = Load(Straight(plan));
    ZrMosaic mosaic(PlainSettings(0.1));
    mosaic.AddLine(high->log, high->bottom);
    QVERIFY(!mosaic.Build());
    QCOMPARE(mosaic.Error(), error);
}

void tst_ZrMosaicErrors::tooLarge()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.heading = 45.0;
    plan.pings = 100;
    plan.step = 8.0;
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaic mosaic(PlainSettings(0.001));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(!mosaic.Build());
    QVERIFY2(
        mosaic.Error().startsWith(QStringLiteral("The picture would have ")), qPrintable(mosaic.Error()));
    QVERIFY(
        mosaic.Error().contains(QStringLiteral("pixels of 0.001 m; at most 64000000 pixels are allowed")));
    ZrMosaicSettings settings = PlainSettings(0.1);
    settings.mostPixels = 1000;
    ZrMosaic small(settings);
    small.AddLine(line->log, line->bottom);
    QVERIFY(!small.Build());
    QVERIFY(small.Error().contains(QStringLiteral("at most 1000 pixels")));
    // Two lines on either side of the earth.
    Plan far = plan;
    far.start = {-20.0, 100.0};
    const std::unique_ptr<Loaded> other = Load(Straight(far));
    ZrMosaic apart(PlainSettings(1000.0));
    apart.AddLine(line->log, line->bottom);
    apart.AddLine(other->log, other->bottom);
    QVERIFY(!apart.Build());
    QVERIFY2(
        apart.Error().startsWith(QStringLiteral("The side-scan lines lie too far apart for one picture")),
        qPrintable(apart.Error()));
}

void tst_ZrMosaicErrors::automaticResolutionFits()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    plan.heading = 45.0;
    plan.pings = 100;
    plan.step = 8.0;
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaicSettings settings = PlainSettings(0.0);
    settings.mostPixels = 5000;
    ZrMosaic mosaic(settings);
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    QCOMPARE(mosaic.Frame().resolution, 10.0);
    QVERIFY(mosaic.Frame().width * mosaic.Frame().height <= 5000);
}

void tst_ZrMosaicErrors::logThatHasChanged()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    QFile file(line->log.Path());
    QVERIFY(file.resize(48));
    ZrMosaic mosaic(PlainSettings(0.1));
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(!mosaic.Build());
    QCOMPARE(mosaic.Error(),
        QStringLiteral("No pixel was seen: the sonar did not move, or its samples cannot be read"));
}

void tst_ZrMosaicErrors::cancelled_data()
{
    QTest::addColumn<int>("at");
    for (const int at : {0, 5, 14, 50, 91, 99})
        QTest::addRow("at %d %%", at) << at;
}

void tst_ZrMosaicErrors::cancelled()
{
    QFETCH(int, at);
    Plan plan;
    plan.start = {51.0, 3.0};
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaicSettings settings = PlainSettings(0.1);
    settings.gain.mode = ZrSonarGainSettings::gainAuto;
    ZrMosaic mosaic(settings);
    Progress progress;
    progress.onPercent = [&mosaic, at](int percent) {
        if (percent >= at)
            mosaic.cancel = true;
    };
    mosaic.progress = &progress;
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(!mosaic.Build());
    QCOMPARE(mosaic.Error(), QStringLiteral("Cancelled"));
    QVERIFY(mosaic.Image().isNull());
    QVERIFY(progress.percents.back() < at + 5);
    // It can be asked again.
    mosaic.cancel = false;
    progress.onPercent = nullptr;
    QVERIFY2(mosaic.Build(), qPrintable(mosaic.Error()));
    QCOMPARE(mosaic.Error(), QString());
}

/// Before anything is said of where the lines lie, which looks at all pings.
void tst_ZrMosaicErrors::cancelledWhilePlaced()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    for (Ping& ping : pings)
        ping.lat = unknown;
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaic mosaic(PlainSettings(0.1));
    Progress progress;
    progress.onPercent = [&mosaic](int) { mosaic.cancel = true; };
    mosaic.progress = &progress;
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(!mosaic.Build());
    QCOMPARE(mosaic.Error(), QStringLiteral("Cancelled"));
    QCOMPARE(progress.percents, std::vector<int>{0});
}

void tst_ZrMosaicErrors::progressGoesUp()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    const std::unique_ptr<Loaded> line = Load(Straight(plan));
    ZrMosaicSettings settings = PlainSettings(0.1);
    settings.gain.mode = ZrSonarGainSettings::gainAuto;
    ZrMosaic mosaic(settings);
    Progress progress;
    mosaic.progress = &progress;
    mosaic.AddLine(line->log, line->bottom);
    mosaic.AddLine(line->log, line->bottom, 0, 30);
    QVERIFY(mosaic.Build());
    QCOMPARE(progress.percents.front(), 0);
    QCOMPARE(progress.percents.back(), 100);
    QVERIFY(std::is_sorted(progress.percents.begin(), progress.percents.end()));
    QVERIFY(progress.percents.size() > 50);
}

void tst_ZrMosaicErrors::buildingTwiceIsTheSame()
{
    Plan plan;
    plan.start = {51.0, 3.0};
    std::vector<Ping> pings = Straight(plan);
    pings[7].sides[sidePort][120] = 9999;
    const std::unique_ptr<Loaded> line = Load(pings);
    ZrMosaic mosaic(ZrMosaicSettings{});
    mosaic.AddLine(line->log, line->bottom);
    QVERIFY(mosaic.Build());
    const QImage first = mosaic.Image();
    const quint64 strips = mosaic.Strips();
    QVERIFY(mosaic.Build());
    QCOMPARE(mosaic.Image(), first);
    QCOMPARE(mosaic.Strips(), strips);
}

QTEST_GUILESS_MAIN(tst_ZrMosaicErrors)
#include "tst_ZrMosaicErrors.moc"
