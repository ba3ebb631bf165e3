// Index files in pieces: the bytes of a dataset's own, what is damaged, disks that are full; and datasets
// that leave their records there.

#include "SmallFiles.h"
#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrIndexFile.h"
#include "ZrKit/review/ZrIndexStamp.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"
#include "ZrUtil/IZrProgress.h"

#include <cstring>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <optional>
#include <unistd.h>

namespace {

using survey::Event;
using survey::EventFile;
using survey::EventItem;
using survey::EventTexts;
using survey::NavItem;
using survey::S;
using survey::startTime;
using survey::SurveyLog;
using survey::TimedItem;
using survey::Uid;

constexpr int atOnce = static_cast<int>(ZrRecordSource::AtOnce);

bool AreSame(const std::vector<ZrLogRec>& a, const std::vector<ZrLogRec>& b)
{
    return a.size() == b.size()
        && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(ZrLogRec)) == 0);
}

std::vector<ZrLogRec> All(ZrRecordSource& source)
{
    std::vector<ZrLogRec> records;
    return source.Read(0, source.Count(), records) ? records : std::vector<ZrLogRec>();
}

/// A log whose positions are repeated over long stretches, so that a record needs the one before it.
LogBytes LongLog(int count)
{
    LogBytes log;
    for (int i = 0; i < count; ++i) {
        survey::Nav nav;
        nav.depth = static_cast<float>(i);
        if (i % 3000 == 100)
            nav.latitude = nav.longitude = 10.0 + i * 1e-4;
        log.Add(survey::NavItem(startTime + i, nav));
        if (i % 1000 == 7)
            log.Add(TimedItem(19, 0, startTime + i, QByteArray(8, 'd')));
    }
    return log;
}

/// Does something when a scan has come so far.
class AtPercent final : public IZrProgress
{
public:
    AtPercent(int percent, std::function<void()> act)
        : m_at(percent)
        , m_act(std::move(act))
    {
    }

    void UpdateProgress(int percent) override
    {
        if (m_percent < m_at && percent >= m_at)
            m_act();
        m_percent = percent;
    }

    int GetProgress() override { return m_percent; }

private:
    int m_at;
    std::function<void()> m_act;
    int m_percent = 0;
};

/// Puts a device that takes no bytes and gives none in the place of the files that are open in \p folder, but
/// for \p kept; gives how many they were.
int LoseFilesIn(const QString& folder, const QString& kept)
{
    const int gone = open("/dev/full", O_WRONLY);
    int lost = 0;
    const QDir handles(S("/proc/self/fd"));
    for (const QString& name : handles.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        const QString target = QFile::symLinkTarget(handles.filePath(name));
        if (target.startsWith(folder + QLatin1Char('/')) && target != kept)
            lost += dup2(gone, name.toInt()) >= 0 ? 1 : 0;
    }
    close(gone);
    return lost;
}

} // namespace

class tst_ZrIndexFile : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void cleanup() { End(); }

    void piecesOfAFile();
    void bytesOfADataset();
    void refused_data();
    void refused();
    void cutOffWhileItIsOpen();
    void goesWithItsObject();
    void cannotBeMoved();
    void recordsOfALog_data();
    void recordsOfALog();
    void secondTimeFromIndex();
    void damagedIndexIsMadeAnew();
    void eventsAndPlan();
    void withoutRecords();
    void damagedLog();
    void unreadable();
    void cancelled();
    void notBesideTheLog_data();
    void notBesideTheLog();
    void diskIsFull_data();
    void diskIsFull();
    void diskIsFullForAWhile();
    void diskOfTemporariesIsFull();
    void diskIsGone_data();
    void diskIsGone();

private:
    QByteArray Bytes(const char* ending) const { return ReadWhole(m_log + S(ending)); }
};

void tst_ZrIndexFile::piecesOfAFile()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(50).Bytes()));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QVERIFY(!reader.Records());
    ZrIndexFile index;
    QCOMPARE(index.Count(), std::size_t(0));
    QVERIFY2(index.Open(m_log + S(".zri"), dataset), qPrintable(index.Error()));
    QCOMPARE(index.Count(), std::size_t(50));
    QVERIFY(AreSame(All(index), dataset.recs));
    std::vector<ZrLogRec> records(3);
    QVERIFY(index.Read(20, 23, records));
    QVERIFY(AreSame(records, {dataset.recs.begin() + 20, dataset.recs.begin() + 23}));
    QVERIFY(index.Read(48, 1000, records));
    QVERIFY(AreSame(records, {dataset.recs.begin() + 48, dataset.recs.end()}));
    for (const auto& range : {std::pair(50, 60), std::pair(5, 5), std::pair(9, 2)}) {
        QVERIFY(index.Read(std::size_t(range.first), std::size_t(range.second), records));
        QVERIFY(records.empty());
    }
    QCOMPARE(index.Error(), QString());
}

void tst_ZrIndexFile::bytesOfADataset()
{
    QVERIFY(WriteWhole(m_log, LongLog(2 * atOnce + 5).Bytes()));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    const QString other = m_folder->filePath(S("by itself"));
    dataset.WriteIndex(other);
    QVERIFY(Bytes(".zri") == ReadWhole(other + S(".zri")));
    ZrIndexFile index;
    QVERIFY(index.Create(m_folder->path(), dataset));
    QVERIFY(index.Append(zr::span<const ZrLogRec>(dataset.recs.data(), 5)));
    QVERIFY(index.Append(zr::span<const ZrLogRec>(dataset.recs.data() + 5, dataset.recs.size() - 5)));
    QVERIFY(AreSame(All(index), dataset.recs)); // already readable
    const QString moved = m_folder->filePath(S("verschoben ü.zri"));
    QVERIFY(WriteWhole(moved, "old"));
    QVERIFY2(index.MoveTo(moved, m_log), qPrintable(index.Error()));
    QVERIFY(ReadWhole(moved) == ReadWhole(other + S(".zri")));
    QVERIFY(AreSame(All(index), dataset.recs)); // and still
    QVERIFY(bool(QFile::permissions(moved) & QFile::ReadOther)
        == bool(QFile::permissions(m_log) & QFile::ReadOther));
}

void tst_ZrIndexFile::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QByteArray index;
    {
        QTemporaryDir folder;
        const QString log = folder.filePath(S("log"));
        QVERIFY(WriteWhole(log, SurveyLog(5).Bytes()));
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        QCOMPARE(reader.Read(log, dataset), ZrDatasetReader::Built);
        index = ReadWhole(log + S(".zri"));
    }
    QTest::newRow("empty") << QByteArray() << S("This is no index");
    QTest::newRow("half a header") << index.left(45) << S("This is no index");
    QTest::newRow("magic") << Flipped(index, 0, 1) << S("This is no index");
    QTest::newRow("version") << Flipped(index, 4, 1) << S("This is no index");
    QTest::newRow("types") << Flipped(index, 10, 1) << S("The index is of other record types");
    QTest::newRow("last type") << Flipped(index, 44, 1) << S("The index is of other record types");
    QTest::newRow("short") << index.left(index.size() - 1) << S("The index is damaged");
    QTest::newRow("long") << index + 'x' << S("The index is damaged");
    QTest::newRow("count") << Flipped(index, 6, 1) << S("The index is damaged");
    QTest::newRow("absurd count") << Flipped(index, 9, 0xFF) << S("The index is damaged");
}

void tst_ZrIndexFile::refused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    const QString path = m_log + S(".zri");
    QVERIFY(WriteWhole(path, bytes));
    ZrIndexFile index;
    QVERIFY(!index.Open(path, ZrSurveyDataset()));
    QCOMPARE(index.Error(), error);
    QCOMPARE(index.Count(), std::size_t(0));
    QVERIFY(!index.MoveTo(path, m_log));
    QCOMPARE(index.Error(), S("No index is being written"));
    QVERIFY(ReadWhole(path) == bytes);
    QVERIFY(!index.Open(m_log + S(".none"), ZrSurveyDataset()));
    QVERIFY(!index.Error().isEmpty());
    QVERIFY(!index.Open(m_folder->path(), ZrSurveyDataset()));
    QVERIFY(!index.Error().isEmpty());
}

void tst_ZrIndexFile::cutOffWhileItIsOpen()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(50).Bytes()));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    ZrIndexFile index;
    QVERIFY(index.Open(m_log + S(".zri"), dataset));
    QVERIFY(QFile::resize(m_log + S(".zri"), 46 + 20 * 160 + 7));
    std::vector<ZrLogRec> records;
    QVERIFY(index.Read(0, 20, records));
    QVERIFY(!index.Read(10, 21, records));
    QVERIFY(records.empty());
    QCOMPARE(index.Error(), S("The index is cut off, or cannot be read"));
}

void tst_ZrIndexFile::goesWithItsObject()
{
    ZrSurveyDataset dataset;
    const QStringList before = Names();
    {
        ZrIndexFile index;
        QVERIFY(index.Create(m_folder->path(), dataset));
        QVERIFY(index.Append(std::vector<ZrLogRec>(10)));
    }
    QCOMPARE(Names(), before);
    ZrIndexFile index;
    QVERIFY(!index.Create(S("/proc/none"), dataset));
    QVERIFY(!index.Error().isEmpty());
}

void tst_ZrIndexFile::cannotBeMoved()
{
    ZrSurveyDataset dataset;
    QVERIFY(QDir().mkpath(m_log + S(".zri/inside")));
    const QStringList before = Names();
    {
        ZrIndexFile index;
        QVERIFY(index.Create(m_folder->path(), dataset));
        QVERIFY(index.Append(std::vector<ZrLogRec>(10)));
        QVERIFY(!index.MoveTo(m_log + S(".zri"), m_log));
        QCOMPARE(index.Error(), S("Is a directory"));
        QCOMPARE(index.Count(), std::size_t(10));
    }
    QCOMPARE(Names(), before);
}

void tst_ZrIndexFile::recordsOfALog_data()
{
    QTest::addColumn<int>("count");
    for (const int count :
        {1, 2, 3, atOnce - 1, atOnce, atOnce + 1, atOnce + 2, 2 * atOnce, 2 * atOnce + 1, 3 * atOnce + 99})
        QTest::newRow(qPrintable(QString::number(count))) << count;
}

/// The same records, index and stamp as with all of them in memory.
void tst_ZrIndexFile::recordsOfALog()
{
    QFETCH(int, count);
    QVERIFY(WriteWhole(m_log, LongLog(count).Bytes()));
    ZrSurveyDataset whole;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, whole), ZrDatasetReader::Built);
    const QByteArray index = Bytes(".zri");
    const QByteArray stamp = Bytes(".zri.json");
    QVERIFY(QFile::remove(m_log + S(".zri")));
    ZrSurveyDataset light;
    light.recs.resize(7);
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    QCOMPARE(reader.WriteError(), QString());
    QVERIFY(light.recs.empty());
    QCOMPARE(light.fileName, m_log);
    QVERIFY(reader.Records());
    QCOMPARE(reader.Records()->Count(), std::size_t(count));
    QVERIFY(AreSame(All(*reader.Records()), whole.recs));
    QVERIFY(Bytes(".zri") == index);
    QCOMPARE(Bytes(".zri.json"), stamp);
    QCOMPARE(Names().size(), 3);
}

void tst_ZrIndexFile::secondTimeFromIndex()
{
    QVERIFY(WriteWhole(m_log, LongLog(atOnce + 9).Bytes()));
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    QCOMPARE(reader.Reason(), S("there is no index yet"));
    const std::vector<ZrLogRec> first = All(*reader.Records());
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::FromIndex);
    QCOMPARE(reader.Reason(), QString());
    QVERIFY(AreSame(All(*reader.Records()), first));
    ZrSurveyDataset whole;
    QCOMPARE(reader.Read(m_log, whole), ZrDatasetReader::FromIndex);
    QVERIFY(!reader.Records());
    QVERIFY(AreSame(whole.recs, first));
    reader.rebuild = true;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    QVERIFY(AreSame(All(*reader.Records()), first));
}

void tst_ZrIndexFile::damagedIndexIsMadeAnew()
{
    QVERIFY(WriteWhole(m_log, LongLog(300).Bytes()));
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    const QByteArray index = Bytes(".zri");
    const std::pair<QByteArray, QString> damages[]
        = {{index.left(index.size() - 1), S("the index is damaged or of other record types")},
            {Flipped(index, 10, 1), S("the index is damaged or of other record types")},
            {Flipped(index, 46, 1), S("the index does not fit the log")},
            {Flipped(index, index.size() - 1, 1), S("the index does not fit the log")}};
    for (const auto& damage : damages) {
        QVERIFY(WriteWhole(m_log + S(".zri"), damage.first));
        QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
        QCOMPARE(reader.Reason(), damage.second);
        QVERIFY(Bytes(".zri") == index);
    }
}

void tst_ZrIndexFile::eventsAndPlan()
{
    LogBytes log = LongLog(20);
    log.Add(EventItem({startTime + 3, S("in the log"), Uid(1)}));
    log.Add(TimedItem(70, 0, startTime, survey::PlanText("plan")));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{startTime + 5, S("by hand"), Uid(2)}})));
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    QCOMPARE(light.events.GetCount(), 2);
    QCOMPARE(EventTexts(m_log), (QStringList{S("in the log"), S("by hand")}));
    QVERIFY(QFileInfo::exists(m_log + S(".xml")));
}

void tst_ZrIndexFile::withoutRecords()
{
    LogBytes log;
    log.Add(TimedItem(19, 0, startTime, QByteArray(8, 'd')));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    QVERIFY(reader.Records());
    QCOMPARE(reader.Records()->Count(), std::size_t(0));
    QCOMPARE(Names().size(), 1);
    QCOMPARE(reader.WriteError(), QString());
}

void tst_ZrIndexFile::damagedLog()
{
    const LogBytes log = LongLog(atOnce + 50);
    QVERIFY(WriteWhole(m_log, log.Bytes().left(static_cast<int>(log.Start(atOnce + 20)) + 50)));
    ZrSurveyDataset whole;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, whole), ZrDatasetReader::Built);
    const QString error = reader.Error();
    QVERIFY(!error.isEmpty());
    reader.rebuild = true;
    ZrSurveyDataset light;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Built);
    QVERIFY(!reader.Complete());
    QCOMPARE(reader.Error(), error);
    QCOMPARE(reader.ErrorPos(), log.Start(atOnce + 20));
    QVERIFY(AreSame(All(*reader.Records()), whole.recs));
}

void tst_ZrIndexFile::unreadable()
{
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Unreadable);
    QVERIFY(!reader.Records());
    QVERIFY(!reader.Error().isEmpty());
    QVERIFY(WriteWhole(m_log, QByteArray(500, 'x')));
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Unreadable);
    QVERIFY(!reader.Records());
    QCOMPARE(Names().size(), 1);
}

void tst_ZrIndexFile::cancelled()
{
    class CancelAt final : public IZrProgress
    {
    public:
        explicit CancelAt(ZrDatasetReader& reader)
            : m_reader(reader)
        {
        }

        void UpdateProgress(int percent) override
        {
            m_percent = percent;
            m_reader.cancel = percent >= 60;
        }

        int GetProgress() override { return m_percent; }

    private:
        ZrDatasetReader& m_reader;
        int m_percent = 0;
    };

    QVERIFY(WriteWhole(m_log, LongLog(3 * atOnce).Bytes()));
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    CancelAt progress(reader);
    reader.progress = &progress;
    QCOMPARE(reader.Index(m_log, light), ZrDatasetReader::Cancelled);
    QVERIFY(progress.GetProgress() < 65);
    QVERIFY(!reader.Records());
    QVERIFY(light.recs.empty());
    QCOMPARE(Names().size(), 1);
}

void tst_ZrIndexFile::notBesideTheLog_data()
{
    QTest::addColumn<bool>("isWanted");
    QTest::newRow("not wanted") << false;
    QTest::newRow("no place") << true;
}

/// The records are there all the same, in a file elsewhere or in memory.
void tst_ZrIndexFile::notBesideTheLog()
{
    QFETCH(bool, isWanted);
    QVERIFY(WriteWhole(m_log, LongLog(2 * atOnce).Bytes()));
    ZrSurveyDataset whole;
    ZrDatasetReader reader;
    reader.writeIndex = false;
    QCOMPARE(reader.Read(m_log, whole), ZrDatasetReader::Built);
    reader.writeIndex = isWanted;
    QFile file(m_log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    // Below /proc nobody can make a file, the superuser included.
    const QString path = isWanted ? S("/proc/self/fd/%1").arg(file.handle()) : m_log;
    for (const bool hasTemporaries : {true, false}) {
        if (!hasTemporaries)
            qputenv("TMPDIR", "/proc/none");
        ZrSurveyDataset light;
        const ZrDatasetReader::eResult result = reader.Index(path, light);
        qunsetenv("TMPDIR");
        QCOMPARE(result, ZrDatasetReader::Built);
        QCOMPARE(light.recs.empty(), hasTemporaries);
        QVERIFY(AreSame(All(*reader.Records()), whole.recs));
        QVERIFY2(
            reader.WriteError().startsWith(path + S(".zri: ")) == isWanted, qPrintable(reader.WriteError()));
        QCOMPARE(Names().size(), 1);
    }
}

void tst_ZrIndexFile::diskIsFull_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("at once") << qint64(20);
    QTest::newRow("in the first piece") << qint64(1000);
    QTest::newRow("in the second piece") << qint64(46 + 160 * atOnce + 1000);
    QTest::newRow("in the last piece") << qint64(46 + 160 * (2 * atOnce + 10) - 1);
}

void tst_ZrIndexFile::diskIsFull()
{
    QFETCH(qint64, bytes);
    QVERIFY(WriteWhole(m_log, LongLog(2 * atOnce + 10).Bytes()));
    ZrSurveyDataset whole;
    ZrDatasetReader reader;
    reader.writeIndex = false;
    QCOMPARE(reader.Read(m_log, whole), ZrDatasetReader::Built);
    reader.writeIndex = true;
    ZrSurveyDataset light;
    ZrDatasetReader::eResult result = ZrDatasetReader::Unreadable;
    {
        const SmallFiles full(bytes);
        result = reader.Index(m_log, light);
    }
    QCOMPARE(result, ZrDatasetReader::Built);
    QVERIFY(AreSame(All(*reader.Records()), whole.recs));
    QCOMPARE(reader.WriteError(), m_log + S(".zri: The index could not be written"));
    QCOMPARE(Names().size(), 1);
}

/// The records went into memory meanwhile; the index is written after all, and nothing is said.
void tst_ZrIndexFile::diskIsFullForAWhile()
{
    QVERIFY(WriteWhole(m_log, LongLog(3 * atOnce).Bytes()));
    ZrSurveyDataset whole;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, whole), ZrDatasetReader::Built);
    const QByteArray index = Bytes(".zri");
    reader.rebuild = true;
    std::optional<SmallFiles> full(1000);
    AtPercent room(80, [&] { full.reset(); });
    reader.progress = &room;
    ZrSurveyDataset light;
    QVERIFY(QFile::remove(m_log + S(".zri")));
    const ZrDatasetReader::eResult result = reader.Index(m_log, light);
    QVERIFY(!full);
    QCOMPARE(result, ZrDatasetReader::Built);
    QCOMPARE(light.recs.size(), std::size_t(3 * atOnce)); // none elsewhere
    QVERIFY(AreSame(All(*reader.Records()), whole.recs));
    QVERIFY(Bytes(".zri") == index);
    QCOMPARE(reader.WriteError(), QString());
}

/// Nobody asked for an index: that there is none is no error.
void tst_ZrIndexFile::diskOfTemporariesIsFull()
{
    QVERIFY(WriteWhole(m_log, LongLog(2 * atOnce).Bytes()));
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    reader.writeIndex = false;
    ZrDatasetReader::eResult result = ZrDatasetReader::Unreadable;
    {
        const SmallFiles full(1000);
        result = reader.Index(m_log, light);
    }
    QCOMPARE(result, ZrDatasetReader::Built);
    QCOMPARE(light.recs.size(), std::size_t(2 * atOnce));
    QCOMPARE(reader.WriteError(), QString());
}

void tst_ZrIndexFile::diskIsGone_data()
{
    QTest::addColumn<int>("percent");
    QTest::newRow("before the second piece") << 50;
    QTest::newRow("before the last piece") << 90;
}

/// Neither does it take more records nor give those back that it has.
void tst_ZrIndexFile::diskIsGone()
{
    QFETCH(int, percent);
    QVERIFY(WriteWhole(m_log, LongLog(3 * atOnce).Bytes()));
    ZrSurveyDataset light;
    ZrDatasetReader reader;
    int lost = 0;
    AtPercent loss(percent, [&] { lost = LoseFilesIn(QFileInfo(m_log).canonicalPath(), m_log); });
    reader.progress = &loss;
    const ZrDatasetReader::eResult result = reader.Index(m_log, light);
    QCOMPARE(lost, 1);
    QCOMPARE(result, ZrDatasetReader::Unreadable);
    QCOMPARE(reader.Error(), S("The index is cut off, or cannot be read"));
    QCOMPARE(reader.ErrorPos(), u64(0)); // the log can be read
    QVERIFY(!reader.Complete());
    QCOMPARE(reader.WriteError(), m_log + S(".zri: The index could not be written"));
    QVERIFY(!reader.Records());
    QVERIFY(light.recs.empty());
    QCOMPARE(Names().size(), 1);
}

QTEST_GUILESS_MAIN(tst_ZrIndexFile)
#include "tst_ZrIndexFile.moc"
