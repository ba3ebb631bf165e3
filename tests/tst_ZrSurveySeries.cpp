// The curves and the track of a recording, from made logs and real ones.

#include "ZrKit/import/ZrImportSession.h"
#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrKit/review/ZrSurveySeries.h"
#include "ZrKit/review/ZrSurveySeriesReader.h"
#include "ZrSurveyLog.h"

#include <QDir>

#include <cmath>
#include <limits>

namespace {

using survey::Nav;
using survey::NavItem;
using survey::S;
using survey::startTime;
using survey::TimedItem;

/// Metres of a degree of latitude on the sphere of `ZrUtil`.
constexpr double metresPerDegree = 6371000.0 * 3.14159265358979323846 / 180.0;

Item FixItem(double time, double latitude, double longitude, u8 quality = 1)
{
    ZrFixRecord fix;
    fix.latitude = latitude;
    fix.longitude = longitude;
    fix.quality = quality;
    return TimedItem(18, 0, time, fix.Encode());
}

Item DepthItem(double time, float depth, float offset)
{
    ZrDepthRecord record;
    record.depth = depth;
    record.offset = offset;
    return TimedItem(19, 0, time, record.Encode());
}

Item MotionItem(double time, float heading, float course, float speed)
{
    ZrMotionRecord record;
    record.headingTrue = heading;
    record.courseTrue = course;
    record.speedGround = speed;
    return TimedItem(20, 0, time, record.Encode());
}

class CancelAt final : public IZrProgress
{
public:
    CancelAt(ZrSurveySeriesReader& reader, int percent)
        : m_reader(reader)
        , m_percent(percent)
    {
    }

    void UpdateProgress(int percent) override
    {
        last = percent;
        if (percent >= m_percent)
            m_reader.cancel = true;
    }

    int GetProgress() override { return last; }

    int last = -1;

private:
    ZrSurveySeriesReader& m_reader;
    int m_percent;
};

bool Same(float a, float b)
{
    return (std::isnan(a) && std::isnan(b)) || std::fabs(a - b) <= 1e-4f * std::max(1.0f, std::fabs(b));
}

} // namespace

class tst_ZrSurveySeries : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void cleanup() { End(); }

    void rowsOfNavigation();
    void valuesOutOfRange();
    void headingGoesOnBeyond360();
    void speedOfMotion();
    void speedOfPositions();
    void repeatedPositionsHaveNoSpeed();
    void equalTimes();
    void clockSetBack();
    void fixesWithoutNavigation();
    void fixesInFrontOfNavigation();
    void compressedRecords();
    void unusableRecordsAreCounted();
    void recordsThatWereNotFilled();
    void damagedLog();
    void unreadableLogs_data();
    void unreadableLogs();
    void emptyLog();
    void cancelled();
    void memoryIsThatOfTheRows();
    void glider();
    void sideScan();
    void boat();

private:
    bool Read(const LogBytes& log)
    {
        return WriteWhole(m_log, log.Bytes()) && m_reader.Read(m_log, m_series);
    }

    ZrSurveySeriesReader m_reader;
    ZrSurveySeries m_series;
};

void tst_ZrSurveySeries::rowsOfNavigation()
{
    LogBytes log;
    Nav nav;
    nav.latitude = 44.5;
    nav.longitude = -63.25;
    nav.altitude = 5.0f;
    nav.depth = 12.5f;
    nav.heading = 90.0f;
    nav.pitch = -3.0f;
    nav.roll = 2.0f;
    log.Add(NavItem(startTime, nav));
    log.Add(TimedItem(17, 0, startTime, QByteArray(1000, 'x'))); // a ping is not looked at
    log.Add(NavItem(startTime + 1, Nav()));
    QVERIFY(Read(log));
    QCOMPARE(m_series.Count(), std::size_t(2));
    QCOMPARE(m_series.times->Times(), (std::vector<double>{startTime, startTime + 1}));
    QCOMPARE(m_series.depth.Value(0), 12.5f);
    QCOMPARE(m_series.altitude.Value(0), 5.0f);
    QCOMPARE(m_series.seabed.Value(0), 17.5f);
    QCOMPARE(m_series.heading.Value(0), 90.0f);
    QCOMPARE(m_series.pitch.Value(0), -3.0f);
    QCOMPARE(m_series.roll.Value(0), 2.0f);
    QCOMPARE(m_series.track[0].latitude, 44.5);
    QCOMPARE(m_series.track[0].longitude, -63.25);
    for (const ZrPlotSeries* series : {&m_series.depth, &m_series.altitude, &m_series.seabed,
             &m_series.heading, &m_series.speed, &m_series.pitch, &m_series.roll}) {
        QCOMPARE(series->Count(), std::size_t(2));
        QVERIFY(std::isnan(series->Value(1)));
    }
    QVERIFY(std::isnan(m_series.track[1].latitude));
    QCOMPARE(m_reader.Skipped(), u64(0));
    QCOMPARE(m_reader.Damage(), QString());
    QCOMPARE(m_reader.Error(), QString());
}

void tst_ZrSurveySeries::valuesOutOfRange()
{
    LogBytes log;
    Nav nav;
    nav.latitude = 91.0;
    nav.longitude = 0.0;
    nav.altitude = 0.0f; // no echo
    nav.depth = 12001.0f;
    nav.heading = 361.0f;
    nav.pitch = 91.0f;
    nav.roll = std::numeric_limits<float>::infinity();
    log.Add(NavItem(startTime, nav));
    nav.latitude = 0.0;
    nav.longitude = -180.5;
    nav.altitude = -1.0f;
    nav.depth = -1001.0f;
    nav.heading = -std::numeric_limits<float>::infinity();
    nav.pitch = -91.0f;
    nav.roll = 181.0f;
    log.Add(NavItem(startTime + 1, nav));
    QVERIFY(Read(log));
    for (std::size_t i = 0; i < 2; ++i) {
        QVERIFY(std::isnan(m_series.track[i].latitude));
        QVERIFY(std::isnan(m_series.track[i].longitude));
        for (const ZrPlotSeries* series : {&m_series.depth, &m_series.altitude, &m_series.seabed,
                 &m_series.heading, &m_series.pitch, &m_series.roll})
            QVERIFY(std::isnan(series->Value(i)));
    }
    QCOMPARE(m_reader.Skipped(), u64(0)); // records with nothing in them are records
}

void tst_ZrSurveySeries::headingGoesOnBeyond360()
{
    LogBytes log;
    const float unknown = std::nanf("");
    const float headings[] = {350, 359, 5, 20, unknown, 10, 355, 180, 0, 180, 0};
    const float expected[] = {350, 359, 365, 380, unknown, 370, 355, 180, 0, 180, 0};
    for (int i = 0; i < 11; ++i) {
        Nav nav;
        nav.heading = headings[i];
        log.Add(NavItem(startTime + i, nav));
    }
    QVERIFY(Read(log));
    for (std::size_t i = 0; i < 11; ++i) {
        const float value = m_series.heading.Value(i);
        QVERIFY(std::isnan(value) == std::isnan(expected[i]));
        if (std::isnan(value))
            continue;
        if (i < 8)
            QVERIFY2(Same(value, expected[i]), qPrintable(QString::number(i)));
        // A turn by half a round may be to either side; the direction is what was recorded.
        QVERIFY(std::fabs(std::remainder(value - headings[i], 360.0f)) < 1e-3f);
    }
}

void tst_ZrSurveySeries::speedOfMotion()
{
    LogBytes log;
    const float unknown = std::nanf("");
    log.Add(MotionItem(startTime, unknown, unknown, 2.5f));
    log.Add(NavItem(startTime + 1, Nav()));
    log.Add(MotionItem(startTime + 2, unknown, unknown, unknown)); // says nothing
    log.Add(NavItem(startTime + 5, Nav()));
    log.Add(NavItem(startTime + 5.1, Nav())); // too old by now
    log.Add(MotionItem(startTime + 6, unknown, unknown, 51.0f));
    log.Add(NavItem(startTime + 6, Nav()));
    QVERIFY(Read(log));
    QCOMPARE(m_series.speed.Value(0), 2.5f);
    QCOMPARE(m_series.speed.Value(1), 2.5f);
    QVERIFY(std::isnan(m_series.speed.Value(2)));
    QVERIFY(std::isnan(m_series.speed.Value(3)));
}

void tst_ZrSurveySeries::speedOfPositions()
{
    // Two metres a second to the north, ten rows a second, then nothing for two minutes.
    LogBytes log;
    for (int i = 0; i < 200; ++i) {
        Nav nav;
        const double time = i * 0.1 + (i < 100 ? 0.0 : 120.0);
        nav.latitude = 44.0 + 2.0 * time / metresPerDegree;
        nav.longitude = -63.0;
        log.Add(NavItem(startTime + time, nav));
    }
    QVERIFY(Read(log));
    QVERIFY(std::isnan(m_series.speed.Value(39)));
    for (const std::size_t i : {std::size_t(42), std::size_t(99), std::size_t(145), std::size_t(199)})
        QVERIFY2(std::fabs(m_series.speed.Value(i) - 2.0f) < 0.01f, qPrintable(QString::number(i)));
    QVERIFY(std::isnan(m_series.speed.Value(100)));
}

void tst_ZrSurveySeries::repeatedPositionsHaveNoSpeed()
{
    LogBytes log;
    for (int i = 0; i < 20; ++i) {
        Nav nav;
        nav.latitude = 44.0;
        nav.longitude = -63.0;
        nav.flags = i > 0 ? 1 : 0;
        log.Add(NavItem(startTime + i, nav));
    }
    QVERIFY(Read(log));
    QVERIFY(!m_series.speed.ExtentOf(0, 20).IsKnown());
    QCOMPARE(m_series.track[19].latitude, 44.0);
}

void tst_ZrSurveySeries::equalTimes()
{
    LogBytes log;
    for (int i = 0; i < 100; ++i) {
        Nav nav;
        nav.latitude = 44.0 + i * 0.001;
        nav.longitude = -63.0;
        log.Add(NavItem(i < 50 ? std::nan("") : startTime, nav));
    }
    QVERIFY(Read(log));
    QCOMPARE(m_series.Count(), std::size_t(100));
    QCOMPARE(m_series.times->Begin(), startTime);
    QCOMPARE(m_series.times->End(), startTime);
    QVERIFY(!m_series.speed.ExtentOf(0, 100).IsKnown());
}

void tst_ZrSurveySeries::clockSetBack()
{
    LogBytes log;
    for (int i = 0; i < 20; ++i) {
        Nav nav;
        nav.depth = static_cast<float>(i);
        log.Add(NavItem(startTime + i - (i < 10 ? 0 : 3600), nav));
    }
    QVERIFY(Read(log));
    QCOMPARE(m_series.times->Runs().size(), std::size_t(2));
    const double steady = m_series.times->FromLog(startTime + 15 - 3600);
    QCOMPARE(m_series.depth.ValueAt(steady), 15.0f);
}

void tst_ZrSurveySeries::fixesWithoutNavigation()
{
    LogBytes log;
    const float unknown = std::nanf("");
    log.Add(FixItem(startTime, 44.0, -63.0));
    log.Add(DepthItem(startTime + 1, 20.0f, 0.5f));
    log.Add(MotionItem(startTime + 1, unknown, 45.0f, 3.0f));
    log.Add(FixItem(startTime + 2, 44.1, -63.0));
    log.Add(MotionItem(startTime + 3, 50.0f, 45.0f, 3.0f));
    log.Add(DepthItem(startTime + 3, 21.0f, -0.5f)); // down to the keel: no depth of the transducer
    log.Add(FixItem(startTime + 4, 44.2, -63.0, 0)); // no position
    log.Add(FixItem(startTime + 60, 44.3, -63.0));
    QVERIFY(Read(log));
    QCOMPARE(m_series.Count(), std::size_t(4));
    QVERIFY(m_reader.IsOfFixes());
    QVERIFY(std::isnan(m_series.altitude.Value(0)));
    QCOMPARE(m_series.altitude.Value(1), 20.0f);
    QCOMPARE(m_series.depth.Value(1), 0.5f);
    QCOMPARE(m_series.seabed.Value(1), 20.5f);
    QCOMPARE(m_series.heading.Value(1), 45.0f);
    QCOMPARE(m_series.speed.Value(1), 3.0f);
    QCOMPARE(m_series.heading.Value(2), 50.0f);
    QCOMPARE(m_series.seabed.Value(2), 21.0f);
    QVERIFY(std::isnan(m_series.track[2].latitude));
    QCOMPARE(m_series.track[3].latitude, 44.3);
    QVERIFY(std::isnan(m_series.altitude.Value(3)));
}

void tst_ZrSurveySeries::fixesInFrontOfNavigation()
{
    LogBytes log;
    log.Add(FixItem(startTime, 44.0, -63.0));
    log.Add(FixItem(startTime + 1, 44.0, -63.0));
    log.Add(NavItem(startTime + 2, Nav()));
    log.Add(FixItem(startTime + 3, 44.0, -63.0));
    log.Add(NavItem(startTime + 4, Nav()));
    QVERIFY(Read(log));
    QVERIFY(!m_reader.IsOfFixes());
    QCOMPARE(m_series.times->Times(), (std::vector<double>{startTime + 2, startTime + 4}));
    QCOMPARE(m_series.depth.Count(), std::size_t(2));
    QVERIFY(std::isnan(m_series.track[0].latitude));
}

void tst_ZrSurveySeries::compressedRecords()
{
    LogBytes log;
    Nav nav;
    nav.depth = 7.0f;
    Item item = NavItem(startTime, nav);
    item.dataSize = static_cast<quint32>(item.payload.size());
    item.payload = qCompress(item.payload, 1);
    item.compressed = true;
    log.Add(item);
    QVERIFY(Read(log));
    QCOMPARE(m_series.depth.Value(0), 7.0f);
}

void tst_ZrSurveySeries::unusableRecordsAreCounted()
{
    LogBytes log;
    log.Add(TimedItem(16, 0, startTime, QByteArray(39, '\0'))); // too short
    Item format = NavItem(startTime, Nav());
    format.format = 2;
    log.Add(format);
    Item packed = NavItem(startTime, Nav());
    packed.compressed = true; // but it is not
    packed.dataSize = 40;
    log.Add(packed);
    log.Add(TimedItem(16, 5, startTime, QByteArray())); // of another kind
    log.Add(NavItem(startTime, Nav()));
    QVERIFY(Read(log));
    QCOMPARE(m_series.Count(), std::size_t(1));
    QCOMPARE(m_reader.Skipped(), u64(3));
}

/// Zeros everywhere are no values; one zero among others is.
void tst_ZrSurveySeries::recordsThatWereNotFilled()
{
    Nav blank;
    blank.depth = blank.altitude = blank.heading = blank.pitch = blank.roll = 0.0f;
    Nav surface = blank; // at the surface, heading north
    surface.latitude = 48.0;
    surface.longitude = -68.0;
    Nav island = blank; // where no position is recorded as 0, 0
    island.latitude = island.longitude = 0.0;
    Nav turning = blank;
    turning.heading = 1.0f;
    LogBytes log;
    double time = startTime;
    for (const Nav& nav : {blank, surface, island, turning})
        log.Add(NavItem(time += 1.0, nav));
    QVERIFY(Read(log));
    QCOMPARE(m_series.Count(), std::size_t(4));
    for (const std::size_t row : {0, 2}) {
        QVERIFY(std::isnan(m_series.depth.Value(row)));
        QVERIFY(std::isnan(m_series.heading.Value(row)));
        QVERIFY(std::isnan(m_series.track[row].latitude));
    }
    for (const std::size_t row : {1, 3}) {
        QCOMPARE(m_series.depth.Value(row), 0.0f);
        QVERIFY(!std::isnan(m_series.heading.Value(row)));
    }
}

void tst_ZrSurveySeries::damagedLog()
{
    LogBytes log;
    for (int i = 0; i < 5; ++i)
        log.Add(NavItem(i));
    QVERIFY(WriteWhole(m_log, log.Bytes().left(static_cast<int>(log.Start(3)) + 20)));
    QVERIFY(m_reader.Read(m_log, m_series));
    QCOMPARE(m_series.Count(), std::size_t(3));
    QVERIFY(!m_reader.Damage().isEmpty());
    QCOMPARE(m_reader.DamagePos(), u64(log.Start(3)));
    QVERIFY(Read(log)); // a second reading forgets it
    QCOMPARE(m_reader.Damage(), QString());
    QCOMPARE(m_series.Count(), std::size_t(5));
}

void tst_ZrSurveySeries::unreadableLogs_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("missing") << 0;
    QTest::newRow("folder") << 1;
    QTest::newRow("no log") << 2;
    QTest::newRow("empty file") << 3;
}

void tst_ZrSurveySeries::unreadableLogs()
{
    QFETCH(int, kind);
    QVERIFY(Read(survey::SurveyLog(3)));
    QFile::remove(m_log);
    if (kind == 1)
        QVERIFY(QDir().mkdir(m_log));
    if (kind == 2)
        QVERIFY(WriteWhole(m_log, QByteArray(1000, 'x')));
    if (kind == 3)
        QVERIFY(WriteWhole(m_log, QByteArray()));
    QVERIFY(!m_reader.Read(m_log, m_series));
    QVERIFY(!m_reader.Error().isEmpty());
    QCOMPARE(m_series.Count(), std::size_t(0));
}

void tst_ZrSurveySeries::emptyLog()
{
    QVERIFY(Read(LogBytes()));
    QCOMPARE(m_series.Count(), std::size_t(0));
    QVERIFY(m_series.times->IsEmpty());
    QVERIFY(std::isnan(m_series.depth.ValueAt(0.0)));
}

void tst_ZrSurveySeries::cancelled()
{
    LogBytes log;
    for (int i = 0; i < 40000; ++i)
        log.Add(NavItem(i));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    ZrSurveySeriesReader reader;
    CancelAt half(reader, 50);
    reader.progress = &half;
    QVERIFY(!reader.Read(m_log, m_series));
    QCOMPARE(reader.Error(), S("Cancelled"));
    QCOMPARE(m_series.Count(), std::size_t(0));
    QVERIFY(half.last < 60);
    QVERIFY(!reader.Read(m_log, m_series)); // nobody has taken it back
    reader.cancel = false;
    CancelAt never(reader, 1000);
    reader.progress = &never;
    QVERIFY(reader.Read(m_log, m_series));
    QCOMPARE(never.last, 100);
    QCOMPARE(m_series.Count(), std::size_t(40000));
}

void tst_ZrSurveySeries::memoryIsThatOfTheRows()
{
    LogBytes log;
    for (int i = 0; i < 30000; ++i) {
        log.Add(NavItem(i));
        log.Add(MotionItem(startTime + i, 1.0f, 1.0f, 1.0f));
        log.Add(TimedItem(17, 0, startTime + i, QByteArray(200, 'x')));
    }
    QVERIFY(Read(log));
    QCOMPARE(m_series.Count(), std::size_t(30000));
    QVERIFY2(m_series.Bytes() < 60u * 30000u, qPrintable(QString::number(m_series.Bytes() / 30000.0)));
    QVERIFY(m_series.Bytes() > 50u * 30000u);
}

/// A mission under water: what the series say is what the dataset of the same log says.
void tst_ZrSurveySeries::glider()
{
    ZrImportSession session;
    QStringList files;
    for (int i = 36; i <= 42; ++i)
        files << QStringLiteral(ZR_SOURCE_DIR "/data/glider-nav/sea035.12.gli.sub.%1.csv").arg(i);
    QCOMPARE(session.Run(files, m_log, nullptr), ZrImportSession::Done);
    QVERIFY2(m_reader.Read(m_log, m_series), qPrintable(m_reader.Error()));
    ZrSurveyDataset dataset;
    dataset.ReadFile(m_log);
    QCOMPARE(m_series.Count(), dataset.recs.size());
    QVERIFY(m_series.Count() > 1000);
    QCOMPARE(m_series.times->Runs().size(), std::size_t(1));
    int headings = 0;
    for (std::size_t i = 0; i < m_series.Count(); ++i) {
        const ZrLogRec& rec = dataset.recs[i];
        QCOMPARE(m_series.times->Times()[i], double(rec.time));
        QVERIFY(Same(m_series.depth.Value(i), rec.depth));
        QVERIFY(Same(m_series.pitch.Value(i), rec.pitch));
        QVERIFY(Same(m_series.roll.Value(i), rec.roll));
        if (!std::isnan(rec.heading)) {
            ++headings;
            QVERIFY(std::fabs(std::remainder(m_series.heading.Value(i) - rec.heading, 360.0f)) < 0.01f);
        }
        if (i > 0 && !std::isnan(m_series.heading.Value(i)) && !std::isnan(m_series.heading.Value(i - 1)))
            QVERIFY(std::fabs(m_series.heading.Value(i) - m_series.heading.Value(i - 1)) <= 180.01f);
    }
    QVERIFY(headings > 1000);
    QVERIFY(m_series.depth.ExtentOf(0, m_series.Count()).max > 100.0f);
    QVERIFY(m_series.Bytes() <= 160 * m_series.Count());
}

void tst_ZrSurveySeries::sideScan()
{
    ZrImportSession session;
    const QString file = QStringLiteral(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf");
    QCOMPARE(session.Run({file}, m_log, nullptr), ZrImportSession::Done);
    QVERIFY2(m_reader.Read(m_log, m_series), qPrintable(m_reader.Error()));
    QCOMPARE(m_reader.Damage(), QString());
    QCOMPARE(m_reader.Skipped(), u64(0));
    QVERIFY(m_series.Count() >= 290);
    const ZrPlotSeries::Extent speed = m_series.speed.ExtentOf(0, m_series.Count());
    QVERIFY2(speed.IsKnown() && speed.min > 0.5f && speed.max < 3.0f,
        qPrintable(QStringLiteral("%1 %2").arg(double(speed.min)).arg(double(speed.max))));
    // The first record of the file has the position 0, 0, which is none.
    QVERIFY(std::isnan(m_series.track[0].latitude));
    // Nor are its other zeros values.
    for (const ZrPlotSeries* series :
        {&m_series.depth, &m_series.altitude, &m_series.heading, &m_series.pitch})
        QVERIFY(std::isnan(series->Value(0)) && !std::isnan(series->Value(1)));
    for (std::size_t i = 1; i < m_series.Count(); ++i)
        QVERIFY(std::fabs(m_series.track[i].latitude) < 90.0);
}

/// A boat with a satellite receiver and an echo sounder.
void tst_ZrSurveySeries::boat()
{
    ZrImportSession session;
    const QString folder = QStringLiteral(ZR_SOURCE_DIR "/data/gnss-echosounder/2022.05.30_201358_");
    QCOMPARE(session.Run({folder + S("gnss.txt"), folder + S("sonar.txt")}, m_log, nullptr),
        ZrImportSession::Done);
    QVERIFY2(m_reader.Read(m_log, m_series), qPrintable(m_reader.Error()));
    QVERIFY(m_series.Count() > 100);
    QVERIFY(m_series.seabed.ExtentOf(0, m_series.Count()).IsKnown());
    QVERIFY(m_series.speed.ExtentOf(0, m_series.Count()).IsKnown());
}

QTEST_GUILESS_MAIN(tst_ZrSurveySeries)
#include "tst_ZrSurveySeries.moc"
