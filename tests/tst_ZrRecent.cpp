// The recent recordings of a folder.

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrRecent.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"

#include <cmath>
#include <limits>

namespace {

using survey::NavItem;
using survey::S;
using survey::startTime;
using survey::TimedItem;

class CancelAt final : public IZrProgress
{
public:
    CancelAt(ZrRecent& recent, int percent)
        : m_recent(recent)
        , m_percent(percent)
    {
    }

    void UpdateProgress(int percent) override
    {
        percents << percent;
        if (percent >= m_percent)
            m_recent.cancel = true;
    }

    int GetProgress() override { return percents.isEmpty() ? -1 : percents.last(); }

    QVector<int> percents;

private:
    ZrRecent& m_recent;
    int m_percent;
};

/// A log of \p count records, one a second from \p begin on, each with a ping of \p pingSize bytes if that is
/// not below 0.
QByteArray Log(double begin, int count, int pingSize)
{
    QByteArray bytes = FileHeader(begin - 2.0);
    for (int i = 0; i < count; ++i) {
        Item nav = NavItem(i);
        nav.time = begin + i;
        bytes += nav.Bytes();
        if (pingSize >= 0)
            bytes += TimedItem(17, 0, begin + i, QByteArray(pingSize, 'x')).Bytes();
    }
    return bytes;
}

QStringList NamesOf(const std::vector<ZrRecentLog>& logs)
{
    QStringList names;
    for (const ZrRecentLog& log : logs)
        names << QFileInfo(log.path).fileName();
    return names;
}

#ifdef Q_OS_LINUX
/// Bytes that this process has asked of the system to read.
qint64 BytesRead()
{
    for (const QByteArray& line : ReadWhole(S("/proc/self/io")).split('\n')) {
        if (line.startsWith("rchar:"))
            return line.mid(6).trimmed().toLongLong();
    }
    return -1;
}
#endif

} // namespace

class tst_ZrRecent : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void cleanup() { End(); }

    void newestFirst();
    void mostRecentOnes();
    void looks_data();
    void looks();
    void largeLogWithoutIndex_data();
    void largeLogWithoutIndex();
    void indexedLog();
    void indexOfALogThatHasGrown();
    void damagedLogWithIndex();
    void damaged_data();
    void damaged();
    void cutAnywhere();
    void samplesThatLookLikeItems();
    void otherFiles();
    void folderThatCannotBeRead_data();
    void folderThatCannotBeRead();
    void cancelled();
    void readsLittle();
};

void tst_ZrRecent::newestFirst()
{
    for (const int i : {3, 1, 2})
        QVERIFY(
            WriteWhole(m_folder->filePath(S("dive %1 \u00e4.log").arg(i)), Log(startTime + i * 1000, 5, -1)));
    QVERIFY(WriteWhole(m_folder->filePath(S("broken.log")), "x"));
    ZrRecent recent;
    CancelAt never(recent, 1000);
    recent.progress = &never;
    const std::vector<ZrRecentLog> logs = recent.List(m_folder->path());
    QCOMPARE(NamesOf(logs),
        (QStringList{
            S("dive 3 \u00e4.log"), S("dive 2 \u00e4.log"), S("dive 1 \u00e4.log"), S("broken.log")}));
    QCOMPARE(recent.Error(), QString());
    QCOMPARE(logs[0].start, startTime + 3000);
    QCOMPARE(logs[0].duration, 4.0);
    QVERIFY(logs[3].isDamaged && std::isnan(logs[3].start));
    QCOMPARE(never.GetProgress(), 100);
    QVERIFY(std::is_sorted(never.percents.begin(), never.percents.end()));
}

void tst_ZrRecent::mostRecentOnes()
{
    for (int i = 0; i < 20; ++i)
        QVERIFY(
            WriteWhole(m_folder->filePath(S("%1.log").arg(i)), Log(startTime + (i * 7 % 20) * 100, 2, -1)));
    const std::vector<ZrRecentLog> logs = ZrRecent().List(m_folder->path(), 3);
    QCOMPARE(logs.size(), std::size_t(3));
    QCOMPARE(logs[0].start, startTime + 1900);
    QCOMPARE(logs[2].start, startTime + 1700);
    QVERIFY(ZrRecent().List(m_folder->path(), 0).empty());
}

void tst_ZrRecent::looks_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("duration");
    QTest::addColumn<int>("sonar");

    const double unknown = std::nan("");
    QTest::newRow("no items") << FileHeader(1234.5) << 1234.5 << unknown << int(ZrRecentLog::sonarNone);
    QTest::newRow("no items, no time") << FileHeader() << unknown << unknown << int(ZrRecentLog::sonarNone);
    QTest::newRow("one record") << Log(startTime, 1, -1) << startTime << 0.0 << int(ZrRecentLog::sonarNone);
    QTest::newRow("records") << Log(startTime, 100, -1) << startTime << 99.0 << int(ZrRecentLog::sonarNone);
    QTest::newRow("pings") << Log(startTime, 100, 50) << startTime << 99.0 << int(ZrRecentLog::sonarPresent);
    QTest::newRow("first without time") << FileHeader(5.0) + NavItem(unknown, {}).Bytes() + NavItem(3).Bytes()
                                        << startTime + 3 << 0.0 << int(ZrRecentLog::sonarNone);
    QTest::newRow("clock set back") << FileHeader(5.0) + NavItem(9).Bytes() + NavItem(3).Bytes()
                                    << startTime + 9 << unknown << int(ZrRecentLog::sonarNone);
}

void tst_ZrRecent::looks()
{
    QFETCH(QByteArray, bytes);
    QFETCH(double, start);
    QFETCH(double, duration);
    QFETCH(int, sonar);
    QVERIFY(WriteWhole(m_log, bytes));
    const ZrRecentLog log = ZrRecent::Look(m_log);
    const auto same
        = [](double a, double b) { return std::isnan(b) ? std::isnan(a) : std::fabs(a - b) < 1e-6; };
    QVERIFY2(!log.isDamaged, qPrintable(log.damage));
    QVERIFY2(same(log.start, start), qPrintable(QString::number(log.start)));
    QVERIFY2(same(log.duration, duration), qPrintable(QString::number(log.duration)));
    QCOMPARE(int(log.sonar), sonar);
    QCOMPARE(log.size, u64(bytes.size()));
    QCOMPARE(log.path, m_log);
    QVERIFY(!log.isIndexed);
}

void tst_ZrRecent::largeLogWithoutIndex_data()
{
    QTest::addColumn<int>("pingSize");
    QTest::addColumn<bool>("endKnown");
    QTest::newRow("small pings") << 1000 << true;
    QTest::newRow("large pings") << 30000 << true;
    QTest::newRow("pings larger than what is read") << 100000 << false;
}

void tst_ZrRecent::largeLogWithoutIndex()
{
    QFETCH(int, pingSize);
    QFETCH(bool, endKnown);
    QVERIFY(WriteWhole(m_log, Log(startTime, 300, pingSize)));
    const ZrRecentLog log = ZrRecent::Look(m_log);
    QVERIFY2(!log.isDamaged, qPrintable(log.damage));
    QCOMPARE(log.start, startTime);
    QCOMPARE(log.sonar, ZrRecentLog::sonarPresent);
    if (endKnown)
        QCOMPARE(log.duration, 299.0);
    else
        QVERIFY(std::isnan(log.duration));
}

void tst_ZrRecent::indexedLog()
{
    for (const int pingSize : {-1, 100000}) {
        QVERIFY(WriteWhole(m_log, Log(startTime, 50, pingSize)));
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
        const ZrRecentLog log = ZrRecent::Look(m_log);
        QVERIFY(log.isIndexed);
        QVERIFY(!log.isDamaged);
        QCOMPARE(log.start, startTime);
        QCOMPARE(log.duration, 49.0);
        QCOMPARE(log.sonar, pingSize < 0 ? ZrRecentLog::sonarNone : ZrRecentLog::sonarPresent);
    }
}

void tst_ZrRecent::indexOfALogThatHasGrown()
{
    QVERIFY(WriteWhole(m_log, Log(startTime, 50, -1)));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QVERIFY(AppendTo(m_log, NavItem(100).Bytes()));
    const ZrRecentLog log = ZrRecent::Look(m_log);
    QVERIFY(!log.isIndexed);
    QCOMPARE(log.duration, 100.0);
    // Nor is half an index believed.
    QVERIFY(WriteWhole(m_log, Log(startTime, 50, -1)));
    QVERIFY(WriteWhole(m_log + S(".zri"), ReadWhole(m_log + S(".zri")).left(500)));
    QVERIFY(!ZrRecent::Look(m_log).isIndexed);
    QCOMPARE(ZrRecent::Look(m_log).duration, 49.0);
}

void tst_ZrRecent::damagedLogWithIndex()
{
    const QByteArray whole = Log(startTime, 50, -1);
    QVERIFY(WriteWhole(m_log, whole.left(whole.size() - 10)));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    const ZrRecentLog log = ZrRecent::Look(m_log);
    QVERIFY(log.isIndexed);
    QVERIFY(log.isDamaged);
    QCOMPARE(log.damage, reader.Error());
    QCOMPARE(log.duration, 48.0);
}

void tst_ZrRecent::damaged_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("damage");

    const QByteArray log = Log(startTime, 5, -1);
    QTest::newRow("empty") << QByteArray() << S("The file does not begin as a recording");
    QTest::newRow("text") << QByteArray(1000, 'x') << S("The file does not begin as a recording");
    QTest::newRow("half a header") << log.left(47) << S("The file does not begin as a recording");
    QTest::newRow("first item") << Patched(log, 48, "x") << S("There is no item at 48");
    QTest::newRow("second item") << Patched(log, 128, "x") << S("There is no item at 128");
    QTest::newRow("breaks off in a header") << log.left(128 + 20) << S("The recording breaks off");
    QTest::newRow("breaks off in a payload") << log.left(128 + 50) << S("The recording breaks off");
    const QByteArray large = Log(startTime, 300, 2000);
    QTest::newRow("large, breaks off") << large.left(large.size() - 500) << S("The recording breaks off");
}

void tst_ZrRecent::damaged()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, damage);
    QVERIFY(WriteWhole(m_log, bytes));
    const ZrRecentLog log = ZrRecent::Look(m_log);
    QVERIFY(log.isDamaged);
    QCOMPARE(log.damage, damage);
    QCOMPARE(log.size, u64(bytes.size()));
}

/// However a log is cut, it is damaged or ends between two items.
void tst_ZrRecent::cutAnywhere()
{
    const QByteArray log = Log(startTime, 20, 10);
    int whole = 0;
    for (int size = 48; size <= log.size(); ++size) {
        QVERIFY(WriteWhole(m_log, log.left(size)));
        whole += ZrRecent::Look(m_log).isDamaged ? 0 : 1;
    }
    QCOMPARE(whole, 41);
}

void tst_ZrRecent::samplesThatLookLikeItems()
{
    // Pings whose samples are the header of an item that reaches far beyond the end.
    Item fake = TimedItem(17, 0, 1.0, QByteArray());
    QByteArray header = fake.Header();
    header = Patched(header, 32, QByteArray::fromHex("ffffff7f"));
    QByteArray bytes = FileHeader(startTime);
    for (int i = 0; i < 300; ++i)
        bytes += TimedItem(17, 0, startTime + i, header + QByteArray(1000, '\0') + header).Bytes();
    QVERIFY(WriteWhole(m_log, bytes));
    const ZrRecentLog log = ZrRecent::Look(m_log);
    QVERIFY2(!log.isDamaged, qPrintable(log.damage));
    QCOMPARE(log.duration, 299.0);
}

void tst_ZrRecent::otherFiles()
{
    QVERIFY(WriteWhole(m_log, Log(startTime, 5, -1)));
    QVERIFY(WriteWhole(m_folder->filePath(S("notes.txt")), "text"));
    QVERIFY(WriteWhole(m_folder->filePath(S("dive.log.evt")), "text"));
    QVERIFY(WriteWhole(m_folder->filePath(S("OLD.LOG")), Log(startTime - 100, 5, -1)));
    QVERIFY(WriteWhole(m_folder->filePath(S("without suffix")), Log(startTime - 200, 5, -1)));
    QVERIFY(QDir(m_folder->path()).mkdir(S("folder.log")));
    QVERIFY(QFile::link(m_folder->filePath(S("nowhere")), m_folder->filePath(S("dangling.log"))));
    QVERIFY(QFile::link(m_log, m_folder->filePath(S("link.log"))));
    const QStringList names = NamesOf(ZrRecent().List(m_folder->path()));
    QCOMPARE(names.size(), 4);
    for (const char* name : {"OLD.LOG", "without suffix", "link.log"})
        QVERIFY(names.contains(S(name)));
}

void tst_ZrRecent::folderThatCannotBeRead_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("no name") << QString();
    QTest::newRow("missing") << S("/nowhere/at/all");
    QTest::newRow("a file") << S("/proc/self/io");
}

void tst_ZrRecent::folderThatCannotBeRead()
{
    QFETCH(QString, folder);
    ZrRecent recent;
    QVERIFY(recent.List(folder).empty());
    QCOMPARE(recent.Error(), S("The folder %1 cannot be read").arg(folder));
    QVERIFY(recent.List(m_folder->path()).empty());
    QCOMPARE(recent.Error(), QString());
    QVERIFY(ZrRecent::Look(S("/nowhere/at/all.log")).isDamaged);
}

void tst_ZrRecent::cancelled()
{
    for (int i = 0; i < 20; ++i)
        QVERIFY(WriteWhole(m_folder->filePath(S("%1.log").arg(i)), Log(startTime + i, 2, -1)));
    ZrRecent recent;
    CancelAt late(recent, 75);
    recent.progress = &late;
    const std::vector<ZrRecentLog> logs = recent.List(m_folder->path());
    QCOMPARE(logs.size(), std::size_t(10)); // what there is until then
    QCOMPARE(logs[0].start, startTime + 19);
    QVERIFY(recent.List(m_folder->path()).empty()); // nobody has taken it back
}

void tst_ZrRecent::readsLittle()
{
#ifdef Q_OS_LINUX
    for (int i = 0; i < 3; ++i)
        QVERIFY(WriteWhole(m_folder->filePath(S("%1.log").arg(i)), Log(startTime + i, 2000, 2000)));
    qint64 before = BytesRead();
    const qint64 own = BytesRead() - before; // what asking costs
    before = BytesRead();
    QCOMPARE(ZrRecent().List(m_folder->path()).size(), std::size_t(3));
    const qint64 read = BytesRead() - before - own;
    QVERIFY2(
        read > 0 && read <= 3 * (2 * qint64(ZrRecent::Peeked) + 2 * 48), qPrintable(QString::number(read)));
    // With indexes it is the headers, the stamps and two records.
    for (int i = 0; i < 3; ++i) {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        QCOMPARE(reader.Read(m_folder->filePath(S("%1.log").arg(i)), dataset), ZrDatasetReader::Built);
    }
    before = BytesRead();
    QVERIFY(ZrRecent().List(m_folder->path())[2].isIndexed);
    const qint64 indexed = BytesRead() - before - own;
    QVERIFY2(indexed < 3 * 64 * 1024, qPrintable(QString::number(indexed)));
#else
    QSKIP("bytes are counted on Linux alone");
#endif
}

QTEST_GUILESS_MAIN(tst_ZrRecent)
#include "tst_ZrRecent.moc"
