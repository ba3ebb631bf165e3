// A part of a recording whose records are read piece by piece: the bytes of one that is in memory.

#include "LoadedLog.h"
#include "ZrKit/export/ZrTrackExport.h"
#include "ZrKit/review/ZrDatasetTrack.h"
#include "ZrKit/review/ZrEventTable.h"
#include "ZrKit/review/ZrRecordSource.h"
#include "ZrKit/review/ZrSteadyTime.h"
#include "ZrUtil/IZrProgress.h"

#include <QBuffer>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>

namespace {

using export_range::Body;
using survey::Event;
using survey::EventFile;
using survey::S;
using survey::startTime;
using survey::TimedItem;
using survey::Uid;

constexpr int atOnce = static_cast<int>(ZrRecordSource::AtOnce);
constexpr int manyRecords = 3 * atOnce + 100;

/// A long log: the position is not known at first, then only now and then, so that records in between repeat
/// it; across the antimeridian at the borders of pieces; for a while without a time; with plans, soundings
/// and fixes in between.
LogBytes ManyRecords()
{
    LogBytes log;
    for (int i = 0; i < manyRecords; ++i) {
        survey::Nav nav;
        if (i > 100 && (i % 7 == 0 || i % atOnce == 0 || i % atOnce == 1)) {
            nav.latitude = 44.0 + i * 1e-5;
            nav.longitude = (i / atOnce) % 2 == 0 ? 179.9 + i * 1e-6 : -179.9 - i * 1e-6;
        }
        nav.depth = static_cast<float>(i % 100);
        nav.altitude = i % 3 == 0 ? std::nanf("") : 5.0f;
        nav.heading = static_cast<float>(i % 360);
        const bool isTimeless = i > 2 * atOnce + 10 && i < 2 * atOnce + 20;
        if (i % 1000 == 0)
            log.Add(TimedItem(70, 0, startTime + i, survey::PlanText("plan")));
        if (i % 500 == 3)
            log.Add(TimedItem(19, 0, startTime + i, QByteArray(8, static_cast<char>(i % 50))));
        if (i % 800 == 5)
            log.Add(TimedItem(18, 0, startTime + i, QByteArray(28, '\0')));
        log.Add(survey::NavItem(isTimeless ? std::nan("") : startTime + i, nav));
    }
    return log;
}

/// Records of which one cannot be read.
class BadRecords final : public ZrRecordSource
{
public:
    BadRecords(ZrRecordSource& good, std::size_t bad)
        : m_good(good)
        , m_bad(bad)
    {
    }

    std::size_t Count() const override { return m_good.Count(); }

    bool Read(std::size_t first, std::size_t end, std::vector<ZrLogRec>& records) override
    {
        if (onRead)
            onRead();
        return (m_bad < first || m_bad >= end) && m_good.Read(first, end, records);
    }

    QString Error() const override { return S("The disk is gone"); }

    void SetBad(std::size_t bad) { m_bad = bad; }

    std::function<void()> onRead;

private:
    ZrRecordSource& m_good;
    std::size_t m_bad;
};

} // namespace

class tst_ZrExportRangePieces : public QObject, private export_range::LoadedLog
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        Begin();
        m_out = m_folder->filePath(S("part \u00e9.log"));
    }

    void cleanup() { End(); }

    void inPieces_data();
    void inPieces();
    void eventsInPieces();
    void recordsThatCannotBeRead_data();
    void recordsThatCannotBeRead();
    void cancelledWhileItReads();
    void recordsThatCannotBeReadAtFirst();
    void eventsInARange_data();
    void eventsInARange();
};

void tst_ZrExportRangePieces::inPieces_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("end");
    const std::pair<int, int> ranges[]
        = {{0, manyRecords}, {0, 1}, {50, 60}, {90, 110}, {0, atOnce}, {0, atOnce + 1}, {1, atOnce},
            {atOnce - 1, atOnce + 1}, {atOnce, 2 * atOnce}, {atOnce, 2 * atOnce + 1},
            {atOnce + 3, atOnce + 5}, {2 * atOnce - 1, manyRecords}, {2 * atOnce + 8, 2 * atOnce + 30},
            {2 * atOnce + 12, 2 * atOnce + 15}, {manyRecords - 1, manyRecords}, {110, 110 + 2 * atOnce}};
    for (const auto& range : ranges)
        QTest::newRow(qPrintable(S("%1 to %2").arg(range.first).arg(range.second)))
            << range.first << range.second;
}

/// Byte for byte what all records in memory give: positions that are repeated from before the part, what
/// stands in front of it, lines across pieces.
void tst_ZrExportRangePieces::inPieces()
{
    QFETCH(int, first);
    QFETCH(int, end);
    const LogBytes log = ManyRecords();
    QVERIFY(WriteWhole(m_log + S(".evt"),
        EventFile({{startTime + 3, S("early"), Uid(1)}, {startTime + atOnce - 0.4, S("border"), Uid(2)},
            {startTime + atOnce + 4, S("Öst"), Uid(3)}, {startTime + 2 * atOnce + 13, S("untimed"), Uid(4)},
            {startTime + 1e6, S("late"), Uid(5)}, {std::nan(""), S("never"), Uid(6)}})));
    Load(log.Bytes());
    QCOMPARE(m_dataset.recs.size(), std::size_t(manyRecords));
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    QVERIFY(light.recs.empty());
    ZrSteadyTime steady;
    for (const ZrLogRec& rec : m_dataset.recs)
        steady.Append(rec.time);
    const std::size_t from = std::size_t(first);
    const std::size_t to = std::size_t(end);
    ZrExportRange part(light, *reader.Records(), from, to);
    part.times = &steady;

    ZrTrackData data;
    const std::vector<ZrTrackPoint> points = ZrDatasetTrack::Points(m_dataset, from, to);
    const std::vector<ZrTrackEvent> events = ZrDatasetTrack::Events(m_dataset, from, to);
    data.name = QFileInfo(m_log).completeBaseName();
    data.points = points;
    data.events = events;
    const auto placed = std::count_if(
        points.begin(), points.end(), [](const ZrTrackPoint& point) { return point.HasPosition(); });
    for (const char* suffix : {"gpx", "kml", "geojson", "csv"}) {
        const QString out = m_folder->filePath(S("track.") + S(suffix));
        QCOMPARE(part.WriteTrack(out), ZrExportRange::Done);
        QCOMPARE(part.Items(), u64(placed));
        QBuffer whole;
        QVERIFY(whole.open(QIODevice::WriteOnly));
        QVERIFY(ZrTrackExport::WriteTo(whole, ZrTrackExport::FormatOf(out), data));
        QVERIFY2(ReadWhole(out) == whole.data(), suffix);
    }

    const QString table = m_folder->filePath(S("records.csv"));
    ZrExportRange all(m_dataset, 0, std::size_t(manyRecords));
    QCOMPARE(all.WriteRecords(table), ZrExportRange::Done);
    QList<QByteArray> lines = ReadWhole(table).split('\n');
    QCOMPARE(lines.size(), manyRecords + 2);
    QByteArray expected = lines.takeFirst() + '\n';
    for (int i = first; i < end; ++i)
        expected += lines[i] + '\n';
    QCOMPARE(part.WriteRecords(table), ZrExportRange::Done);
    QCOMPARE(part.Items(), u64(end - first));
    QVERIFY(ReadWhole(table) == expected);

    expected = ZrEventTable::Heading();
    for (const ZrDatasetTrack::PlacedEvent& event : ZrDatasetTrack::EventsIn(m_dataset, from, to))
        expected += ZrEventTable::Line(*event.event);
    QCOMPARE(part.WriteEvents(table), ZrExportRange::Done);
    QCOMPARE(ReadWhole(table), expected);

    // What stands in front: the latest sounding and fix before the part; behind it: all up to the next
    // record.
    const auto posOf = [&](std::size_t i) { return static_cast<int>(m_dataset.recs[i].pos); };
    const QByteArray whole = log.Bytes();
    QByteArray items;
    if (first > 0) {
        std::array<u64, 8> state;
        std::memcpy(state.data(),
            reinterpret_cast<const char*>(&m_dataset.recs[from]) + offsetof(ZrLogRec, crdPos), sizeof state);
        std::sort(state.begin(), state.end());
        for (const u64 pos : state) {
            if (pos == 0)
                continue;
            const auto at = static_cast<int>(pos);
            const bool isFix = whole.mid(at + 40, 28) == QByteArray(28, '\0');
            items += whole.mid(at, 40 + (isFix ? 28 : 8));
        }
    }
    const int begin = first == 0 ? 48 : posOf(from);
    items += whole.mid(begin, (to == m_dataset.recs.size() ? whole.size() : posOf(to)) - begin);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QVERIFY(Body(m_out) == items);
}

/// Around the events alone, wherever the clock of the log was set to.
void tst_ZrExportRangePieces::eventsInPieces()
{
    LogBytes log;
    for (int i = 0; i < manyRecords; ++i) {
        const double shift = i < 5000 ? 0.0 : i < 9000 ? -3000.0 : 40000.0;
        log.Add(survey::NavItem(startTime + shift + i - (i % 5 == 4 ? 0.7 : 0.0), survey::Nav()));
    }
    QVector<Event> events;
    for (int i = 0; i < 200; ++i)
        events << Event{startTime - 5000.0 + i * 331.7, S("event %1").arg(i), Uid(i)};
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile(events)));
    Load(log.Bytes());
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    ZrSteadyTime steady;
    for (const ZrLogRec& rec : m_dataset.recs)
        steady.Append(rec.time);
    QCOMPARE(steady.Runs().size(), std::size_t(2));
    for (const ZrSteadyTime* times : {static_cast<const ZrSteadyTime*>(nullptr), &std::as_const(steady)}) {
        for (std::size_t first = 0; first < std::size_t(manyRecords); first += 1777) {
            ZrExportRange part(light, *reader.Records(), first, first + 1777);
            part.times = times;
            QCOMPARE(part.WriteEvents(m_out), ZrExportRange::Done);
            QByteArray expected = ZrEventTable::Heading();
            for (const auto& event : ZrDatasetTrack::EventsIn(m_dataset, first, first + 1777))
                expected += ZrEventTable::Line(*event.event);
            QCOMPARE(ReadWhole(m_out), expected);
        }
    }
}

void tst_ZrExportRangePieces::recordsThatCannotBeRead_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("bad");
    for (int kind = 0; kind < 4; ++kind) {
        for (const int bad : {0, atOnce, manyRecords - 1})
            QTest::newRow(qPrintable(S("%1 at %2").arg(kind).arg(bad))) << kind << bad;
    }
}

/// The index may be on a disk that goes away: nothing is replaced.
void tst_ZrExportRangePieces::recordsThatCannotBeRead()
{
    QFETCH(int, kind);
    QFETCH(int, bad);
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{startTime + 3, S("event"), Uid(1)}})));
    Load(survey::SurveyLog(manyRecords).Bytes());
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    const QStringList before = Names();
    BadRecords records(*reader.Records(), std::size_t(bad));
    ZrExportRange part(light, records, 0, std::size_t(manyRecords));
    for (const char* suffix : {"log", "gpx", "kml", "geojson", "csv"}) {
        QCOMPARE(Write(part, kind, m_folder->filePath(S("part.") + S(suffix))), ZrExportRange::Failed);
        QCOMPARE(part.Error(), S("Cannot read the index of %1: The disk is gone").arg(m_log));
        QCOMPARE(part.Items(), u64(0));
        QCOMPARE(Names(), before);
    }
}

/// Within a piece, whatever is left of the track.
void tst_ZrExportRangePieces::cancelledWhileItReads()
{
    Load(survey::SurveyLog(manyRecords).Bytes());
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    const QStringList before = Names();
    for (const char* suffix : {"gpx", "kml", "geojson", "csv"}) {
        BadRecords records(*reader.Records(), manyRecords);
        ZrExportRange part(light, records, 0, std::size_t(manyRecords));
        int reads = 0;
        records.onRead = [&] {
            ++reads;
            part.cancel = reads == 3;
        };
        QCOMPARE(part.WriteTrack(m_folder->filePath(S("track.") + S(suffix))), ZrExportRange::Cancelled);
        QCOMPARE(reads, 3);
        QCOMPARE(Names(), before);
    }
}

/// A sample of them tells how long the file will be; without one it is written all the same, and no
/// percentages are made up.
void tst_ZrExportRangePieces::recordsThatCannotBeReadAtFirst()
{
    class Percents final : public IZrProgress
    {
    public:
        void UpdateProgress(int percent) override { all.push_back(percent); }

        int GetProgress() override { return all.empty() ? 0 : all.back(); }

        std::vector<int> all;
    };

    Load(survey::SurveyLog(manyRecords).Bytes());
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    const QString out = m_folder->filePath(S("track.csv"));
    ZrExportRange good(light, *reader.Records(), 0, std::size_t(manyRecords));
    QCOMPARE(good.WriteTrack(out), ZrExportRange::Done);
    const QByteArray expected = ReadWhole(out);
    QVERIFY(QFile::remove(out));
    BadRecords records(*reader.Records(), 0);
    int reads = 0;
    records.onRead = [&] {
        ++reads;
        records.SetBad(reads == 1 ? 0 : std::size_t(manyRecords));
    };
    ZrExportRange part(light, records, 0, std::size_t(manyRecords));
    Percents progress;
    part.progress = &progress;
    QCOMPARE(part.WriteTrack(out), ZrExportRange::Done);
    QVERIFY(reads > 1);
    QCOMPARE(part.Error(), QString());
    QCOMPARE(part.Items(), u64(manyRecords));
    QVERIFY(ReadWhole(out) == expected);
    QCOMPARE(progress.all, (std::vector<int>{0, 99, 100}));
}

void tst_ZrExportRangePieces::eventsInARange_data()
{
    QTest::addColumn<int>("nearest");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("end");
    QTest::addColumn<bool>("isIn");
    // Of ten records; the tenth is none.
    QTest::newRow("first one") << 3 << 3 << 6 << true;
    QTest::newRow("last one") << 5 << 3 << 6 << true;
    QTest::newRow("before") << 2 << 3 << 6 << false;
    QTest::newRow("behind") << 6 << 3 << 6 << false;
    QTest::newRow("whole") << 9 << 0 << 10 << true;
    QTest::newRow("no time, whole") << 10 << 0 << 10 << true;
    QTest::newRow("no time, more than whole") << 10 << 0 << 20 << true;
    QTest::newRow("no time, without the first") << 10 << 1 << 10 << false;
    QTest::newRow("no time, without the last") << 10 << 0 << 9 << false;
    QTest::newRow("no time, within the range") << 10 << 5 << 20 << false;
}

void tst_ZrExportRangePieces::eventsInARange()
{
    QFETCH(int, nearest);
    QFETCH(int, first);
    QFETCH(int, end);
    QFETCH(bool, isIn);
    QCOMPARE(ZrDatasetTrack::IsIn(std::size_t(nearest), 10, std::size_t(first), std::size_t(end)), isIn);
}

QTEST_GUILESS_MAIN(tst_ZrExportRangePieces)
#include "tst_ZrExportRangePieces.moc"
