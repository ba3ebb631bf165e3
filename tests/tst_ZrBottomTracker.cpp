// The seabed found along lines: a real line against what an eye sees in it, and made ones over a known seabed
// with all that may go wrong.

#include "BottomPings.h"
#include "ZrKit/import/ZrImportSession.h"
#include "ZrKit/sonar/ZrBottomTracker.h"
#include "ZrKit/sonar/ZrSonarLog.h"

#include <memory>
#include <numeric>

using bottom::Pings;
using bottom::Scene;

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

class Percents final : public IZrProgress
{
public:
    void UpdateProgress(int percent) override
    {
        all.append(percent);
        if (percent >= cancelFrom)
            tracker->cancel = true;
    }

    int GetProgress() override { return all.isEmpty() ? 0 : all.last(); }

    QVector<int> all;
    int cancelFrom = 1000;
    ZrBottomTracker* tracker = nullptr;
};

int CountUnknown(const std::vector<double>& line)
{
    return static_cast<int>(
        std::count_if(line.begin(), line.end(), [](double altitude) { return std::isnan(altitude); }));
}

} // namespace

class tst_ZrBottomTracker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void realLine();
    void nothingThere_data();
    void nothingThere();
    void oneSide_data();
    void oneSide();
    void slope();
    void faintSeabed();
    void falseEchoes_data();
    void falseEchoes();
    void layerAndRecordedAltitude_data();
    void layerAndRecordedAltitude();
    void cliff();
    void dropouts();
    void noBridge();
    void longLine();
    void emptyLogs();
    void logCutShort();
    void progressAndCancel();

private:
    /// Tracks a line of pings with the same samples on no two of them.
    std::vector<double> Track(const std::vector<Scene>& scenes, float recorded = std::nanf(""));

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
    std::unique_ptr<ZrBottomTracker> m_tracker;
};

void tst_ZrBottomTracker::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_path = m_dir->filePath(QStringLiteral("line.log"));
    m_tracker = std::make_unique<ZrBottomTracker>();
}

std::vector<double> tst_ZrBottomTracker::Track(const std::vector<Scene>& scenes, float recorded)
{
    Pings pings;
    bottom::Log log;
    for (const Scene& scene : scenes) {
        const std::vector<u16> port = pings.Side(scene);
        log.Add(port, pings.Side(scene), scene.range, recorded);
    }
    ZrSonarLog opened;
    if (!log.Write(m_path) || !opened.Open(m_path) || opened.Pings().size() != scenes.size())
        qFatal("the test log is not as it should be");
    return m_tracker->Track(opened);
}

/// A line of 300 pings at 30 m range. The first seabed sample of these pings was read by eye from enlarged
/// images of both sides, to about 2 samples. The altimeter of the vehicle told 0.5 to 2 m less throughout.
void tst_ZrBottomTracker::realLine()
{
    struct Seen
    {
        std::size_t ping;
        double sample;
    };

    const Seen seen[]
        = {{5, 447}, {25, 427}, {50, 397}, {75, 365.5}, {100, 337}, {120, 315}, {140, 295}, {160, 274},
            {175, 264}, {190, 250}, {205, 231}, {220, 197}, {240, 173}, {255, 155.5}, {270, 146}, {290, 145}};
    constexpr double tolerance = 0.12; // metres; 4 samples

    ZrImportSession session;
    const QString file = QStringLiteral(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf");
    QCOMPARE(session.Run({file}, m_path, nullptr), ZrImportSession::Done);
    ZrSonarLog log;
    QVERIFY2(log.Open(m_path), qPrintable(log.Error()));
    const std::vector<double> line = m_tracker->Track(log);
    QCOMPARE(line.size(), std::size_t(300));
    for (const Seen& at : seen) {
        const double metres = at.sample * log.Pings()[at.ping].sides[sidePort].SampleLength();
        const double found = line[at.ping];
        QVERIFY2(std::fabs(found - metres) < tolerance,
            qPrintable(QStringLiteral("ping %1: %2, seen %3").arg(at.ping).arg(found).arg(metres)));
    }
    QCOMPARE(CountUnknown(line), 0);
    const std::vector<double>& sure = m_tracker->Confidences();
    QCOMPARE(sure.size(), line.size());
    QVERIFY(*std::min_element(sure.begin(), sure.end()) > 0.5);
    QVERIFY(std::accumulate(sure.begin(), sure.end(), 0.0) / static_cast<double>(sure.size()) > 0.9);
    QVERIFY(*std::max_element(sure.begin(), sure.end()) <= 1.0);
    // The vehicle sank steadily: no step is larger than a decimetre.
    for (std::size_t i = 1; i < line.size(); ++i)
        QVERIFY(std::fabs(line[i] - line[i - 1]) < 0.1);
    // Ping by ping without the line the same comes out.
    for (std::size_t i = 0; i < line.size(); ++i) {
        std::vector<u16> port;
        std::vector<u16> starboard;
        QVERIFY(log.ReadSamples(i, sidePort, port) && log.ReadSamples(i, sideStarboard, starboard));
        const ZrSonarPing& ping = log.Pings()[i];
        const ZrBottomEcho echo = ZrBottomTracker::Find({port, ping.sides[sidePort].slantRange},
            {starboard, ping.sides[sideStarboard].slantRange}, unknown);
        QVERIFY(std::fabs(echo.altitude - line[i]) < 0.2);
    }
}

void tst_ZrBottomTracker::nothingThere_data()
{
    QTest::addColumn<std::vector<u16>>("side");
    Pings pings;
    Scene water;
    water.altitude = unknown;
    QTest::newRow("no samples") << std::vector<u16>();
    QTest::newRow("one sample") << std::vector<u16>(1, 700);
    QTest::newRow("three samples") << std::vector<u16>{1, 2, 60000};
    QTest::newRow("all zero") << std::vector<u16>(1024, 0);
    QTest::newRow("all saturated") << std::vector<u16>(1024, 65535);
    QTest::newRow("all the same") << std::vector<u16>(1024, 32767);
    std::vector<u16> falling(1024);
    for (std::size_t i = 0; i < falling.size(); ++i)
        falling[i] = static_cast<u16>(60000 / (i + 1));
    QTest::newRow("fading away") << falling;
    std::vector<u16> pulse(1024, 0);
    std::fill(pulse.begin(), pulse.begin() + 8, u16(32767));
    QTest::newRow("pulse only") << pulse;
    QTest::newRow("water only") << pings.Side(water);
}

void tst_ZrBottomTracker::nothingThere()
{
    QFETCH(std::vector<u16>, side);
    const ZrBottomEcho echo = ZrBottomTracker::Find({side, 30.0}, {side, 30.0}, unknown);
    QVERIFY(std::isnan(echo.altitude));
    QCOMPARE(echo.strength, 0.0);
    bottom::Log log;
    for (int i = 0; i < 30; ++i)
        log.Add(side, side);
    ZrSonarLog opened;
    QVERIFY(log.Write(m_path) && opened.Open(m_path));
    const std::vector<double> line = m_tracker->Track(opened);
    QCOMPARE(line.size(), opened.Pings().size());
    QCOMPARE(CountUnknown(line), static_cast<int>(line.size()));
    QCOMPARE(m_tracker->Confidences(), std::vector<double>(line.size(), 0.0));
}

void tst_ZrBottomTracker::oneSide_data()
{
    QTest::addColumn<std::vector<u16>>("other");
    Pings pings(9);
    Scene water;
    water.altitude = unknown;
    QTest::newRow("not recorded") << std::vector<u16>();
    QTest::newRow("zero") << std::vector<u16>(1024, 0);
    QTest::newRow("saturated") << std::vector<u16>(1024, 65535);
    QTest::newRow("noise") << pings.Side(water);
    QTest::newRow("two samples") << std::vector<u16>{3, 4};
}

void tst_ZrBottomTracker::oneSide()
{
    QFETCH(std::vector<u16>, other);
    Scene scene;
    Pings pings;
    bottom::Log log;
    for (int i = 0; i < 60; ++i) {
        scene.altitude = 8.0 + 0.05 * i;
        const std::vector<u16> side = pings.Side(scene);
        if (i < 30)
            log.Add(side, other);
        else
            log.Add(other, side);
    }
    ZrSonarLog opened;
    QVERIFY(log.Write(m_path) && opened.Open(m_path));
    const std::vector<double> line = m_tracker->Track(opened);
    QCOMPARE(line.size(), std::size_t(60));
    for (std::size_t i = 0; i < line.size(); ++i) {
        QVERIFY(std::fabs(line[i] - (8.0 + 0.05 * static_cast<double>(i))) < 0.1);
        // Less sure than of both sides, but sure.
        QVERIFY(m_tracker->Confidences()[i] > 0.3 && m_tracker->Confidences()[i] < 0.85);
    }
}

void tst_ZrBottomTracker::slope()
{
    std::vector<Scene> scenes(150);
    for (std::size_t i = 0; i < scenes.size(); ++i)
        scenes[i].altitude = 5.0 + 0.1 * static_cast<double>(i);
    const std::vector<double> line = Track(scenes);
    for (std::size_t i = 0; i < scenes.size(); ++i)
        QVERIFY(std::fabs(line[i] - scenes[i].altitude) < 0.1);
}

/// A seabed hardly twice as bright as the water: single pings miss it at times, the line does not.
void tst_ZrBottomTracker::faintSeabed()
{
    std::vector<Scene> scenes(200);
    for (Scene& scene : scenes) {
        scene.noise = 1000.0;
        scene.seabed = 2200.0;
    }
    const std::vector<double> line = Track(scenes);
    QVERIFY(CountUnknown(line) < 4);
    for (const double altitude : line)
        QVERIFY(std::isnan(altitude) || std::fabs(altitude - 10.0) < 0.25);
    const std::vector<double>& sure = m_tracker->Confidences();
    const auto missed = std::count(sure.begin(), sure.end(), 0.0);
    QVERIFY(missed < 40);
    QVERIFY(*std::max_element(sure.begin(), sure.end()) < 0.8);
}

void tst_ZrBottomTracker::falseEchoes_data()
{
    QTest::addColumn<int>("every"); ///< pings from one fish to the next
    QTest::addColumn<int>("length"); ///< pings of it
    QTest::addColumn<double>("height"); ///< metres
    QTest::addColumn<bool>("hides"); ///< the seabed is not in those pings
    QTest::newRow("small fish") << 5 << 1 << 0.2 << false;
    QTest::newRow("small fish hiding it") << 5 << 1 << 0.2 << true;
    QTest::newRow("school") << 7 << 2 << 1.5 << false;
    QTest::newRow("school hiding it") << 10 << 3 << 1.5 << true;
    QTest::newRow("wake") << 40 << 9 << 1.5 << false;
    QTest::newRow("wake hiding it") << 40 << 9 << 1.5 << true;
}

void tst_ZrBottomTracker::falseEchoes()
{
    QFETCH(int, every);
    QFETCH(int, length);
    QFETCH(double, height);
    QFETCH(bool, hides);
    std::vector<Scene> scenes(160);
    std::vector<double> seabed(scenes.size());
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        Scene& scene = scenes[i];
        seabed[i] = scene.altitude = 12.0 + 2.0 * std::sin(static_cast<double>(i) * 0.03);
        if (static_cast<int>(i) % every >= every - length) {
            scene.fishFrom = 5.0;
            scene.fishTo = scene.fishFrom + height;
            if (hides)
                scene.altitude = unknown;
        }
    }
    const std::vector<double> line = Track(scenes);
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        // A gap at the very end is none that can be bridged.
        if (hides && i + static_cast<std::size_t>(length) >= scenes.size() && std::isnan(line[i]))
            continue;
        QVERIFY2(std::fabs(line[i] - seabed[i]) < 0.15,
            qPrintable(QStringLiteral("ping %1: %2, %3").arg(i).arg(line[i]).arg(seabed[i])));
        if (std::isnan(scenes[i].altitude))
            QCOMPARE(m_tracker->Confidences()[i], 0.0);
    }
}

void tst_ZrBottomTracker::layerAndRecordedAltitude_data()
{
    QTest::addColumn<float>("recorded");
    QTest::addColumn<double>("altitude");
    QTest::newRow("seabed recorded") << 14.0F << 15.0;
    QTest::newRow("layer recorded") << 4.5F << 4.0;
}

/// A layer all along the line that looks like seabed: only the altimeter knows.
void tst_ZrBottomTracker::layerAndRecordedAltitude()
{
    QFETCH(float, recorded);
    QFETCH(double, altitude);
    std::vector<Scene> scenes(80);
    for (Scene& scene : scenes) {
        scene.altitude = 15.0;
        scene.fishFrom = 4.0;
        scene.fishTo = 5.2;
        scene.fish = scene.seabed;
    }
    for (const double metres : Track(scenes, recorded))
        QVERIFY(std::fabs(metres - altitude) < 0.1);
}

/// A jump that stays is followed at once and not smoothed away.
void tst_ZrBottomTracker::cliff()
{
    std::vector<Scene> scenes(120);
    for (std::size_t i = 0; i < scenes.size(); ++i)
        scenes[i].altitude = i < 60 ? 8.0 : 20.0;
    const std::vector<double> line = Track(scenes);
    for (std::size_t i = 0; i < scenes.size(); ++i)
        QVERIFY2(std::fabs(line[i] - scenes[i].altitude) < 0.1, qPrintable(QString::number(i)));
}

void tst_ZrBottomTracker::dropouts()
{
    std::vector<Scene> scenes(120);
    for (std::size_t i = 0; i < scenes.size(); ++i)
        scenes[i].altitude = 8.0 + 0.02 * static_cast<double>(i);
    const auto silence = [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i)
            scenes[i].noise = scenes[i].seabed = scenes[i].pulse = 0.0;
    };
    silence(0, 5);
    silence(20, 30); // as many as are bridged
    silence(60, 71); // one more
    silence(115, 120);
    const std::vector<double> line = Track(scenes);
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        const bool silent = scenes[i].seabed == 0.0;
        const bool bridged = i >= 20 && i < 30;
        QCOMPARE(std::isnan(line[i]), silent && !bridged);
        QCOMPARE(m_tracker->Confidences()[i] > 0.0, !silent);
        if (!silent || bridged)
            QVERIFY(std::fabs(line[i] - scenes[i].altitude) < 0.1);
    }
}

void tst_ZrBottomTracker::noBridge()
{
    ZrBottomTrackerSettings settings;
    settings.bridge = settings.medianReach = settings.meanReach = 0;
    m_tracker = std::make_unique<ZrBottomTracker>(settings);
    std::vector<Scene> scenes(20);
    scenes[10].altitude = unknown;
    const std::vector<double> line = Track(scenes);
    QVERIFY(std::isnan(line[10]));
    QCOMPARE(CountUnknown(line), 1);
    // Nothing is smoothed: the line is made of the echoes themselves.
    Pings pings;
    for (std::size_t i = 0; i < 10; ++i) {
        const std::vector<u16> port = pings.Side(scenes[i]);
        const std::vector<u16> starboard = pings.Side(scenes[i]);
        const ZrBottomEcho echo = ZrBottomTracker::Find({port, 30.0}, {starboard, 30.0}, unknown);
        QCOMPARE(line[i], echo.altitude);
        QCOMPARE(m_tracker->Confidences()[i], echo.strength);
    }
}

/// Several times as many pings as are looked at together.
void tst_ZrBottomTracker::longLine()
{
    std::vector<Scene> scenes(2600);
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        scenes[i].samples = 256;
        scenes[i].altitude = 12.0 + 6.0 * std::sin(static_cast<double>(i) * 0.01);
        if (i % 11 < 2) {
            scenes[i].fishFrom = 3.0;
            scenes[i].fishTo = 4.5;
            scenes[i].altitude = i % 3 == 1 ? unknown : scenes[i].altitude;
        }
    }
    const std::vector<double> line = Track(scenes);
    for (std::size_t i = 0; i < scenes.size(); ++i)
        QVERIFY2(std::fabs(line[i] - (12.0 + 6.0 * std::sin(static_cast<double>(i) * 0.01))) < 0.25,
            qPrintable(QString::number(i)));
}

void tst_ZrBottomTracker::emptyLogs()
{
    ZrSonarLog never;
    QVERIFY(m_tracker->Track(never).empty());
    Percents percents;
    m_tracker->progress = &percents;
    QVERIFY(Track({}).empty());
    QVERIFY(percents.all.isEmpty());
    QCOMPARE(Track({Scene()}).size(), std::size_t(1));
    QCOMPARE(Track({Scene(), Scene()}).size(), std::size_t(2));
    QVERIFY(std::fabs(Track({Scene()}).front() - 10.0) < 0.1);
}

/// Pings that can no longer be read are pings without samples.
void tst_ZrBottomTracker::logCutShort()
{
    Pings pings;
    bottom::Log log;
    for (int i = 0; i < 40; ++i) {
        const std::vector<u16> side = pings.Side(Scene());
        log.Add(side, side);
    }
    ZrSonarLog opened;
    QVERIFY(log.Write(m_path) && opened.Open(m_path));
    QVERIFY(QFile::resize(m_path, static_cast<qint64>(opened.Pings()[20].sides[sidePort].pos) + 100));
    const std::vector<double> line = m_tracker->Track(opened);
    QCOMPARE(line.size(), std::size_t(40));
    for (std::size_t i = 0; i < line.size(); ++i)
        QCOMPARE(std::isnan(line[i]), i >= 20);
}

void tst_ZrBottomTracker::progressAndCancel()
{
    std::vector<Scene> scenes(250);
    for (Scene& scene : scenes)
        scene.samples = 64;
    Percents percents;
    m_tracker->progress = &percents;
    QCOMPARE(Track(scenes).size(), scenes.size());
    QCOMPARE(percents.all.size(), 101);
    for (int i = 0; i <= 100; ++i)
        QCOMPARE(percents.all[i], i);
    percents.all.clear();
    percents.tracker = m_tracker.get();
    percents.cancelFrom = 40;
    QVERIFY(Track(scenes).empty());
    QVERIFY(m_tracker->Confidences().empty());
    QCOMPARE(percents.all.last(), 40);
    QVERIFY(Track(scenes).empty()); // it stays set
    m_tracker->cancel = false;
    percents.cancelFrom = 1000;
    QCOMPARE(Track(scenes).size(), scenes.size());
}

QTEST_GUILESS_MAIN(tst_ZrBottomTracker)
#include "tst_ZrBottomTracker.moc"
