// Loading a dataset: when an index is used, when the log is scanned anew, and what becomes of the files
// beside it.

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrSurveyLog.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <csignal>
#include <memory>
#include <sys/resource.h>

namespace {

using survey::Event;
using survey::EventFile;
using survey::EventItem;
using survey::EventTexts;
using survey::NavItem;
using survey::PlanText;
using survey::S;
using survey::startTime;
using survey::SurveyLog;
using survey::TimedItem;
using survey::Uid;

constexpr const char* planNote = "survey of the bay";

/// A dataset that fills its records in a way of its own.
class OtherDataset : public ZrSurveyDataset
{
    Q_OBJECT
};

/// The same class with its way of filling counted up.
class NextDataset : public ZrSurveyDataset
{
    Q_OBJECT
    Q_CLASSINFO("filler", "2")
};

/// Sets the flag of a reader when it is told a percentage.
class CancelAt final : public IZrProgress
{
public:
    CancelAt(ZrDatasetReader& reader, int percent)
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
    ZrDatasetReader& m_reader;
    int m_percent;
};

QStringList Texts(const ZrDataset& dataset)
{
    QStringList texts;
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;)
        texts << dataset.events.GetNext(pos)->text;
    return texts;
}

} // namespace

class tst_ZrDatasetReader : public QObject, private survey::LogFolder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void cleanup() { End(); }

    void firstLoadScansAndWrites();
    void secondLoadTakesTheIndex();
    void scanGivesWhatTheDatasetGives();
    void signalsOfTheDatasetAreNotEmitted();
    void whatWasInTheDatasetIsGone();
    void indexIsOutOfDate_data();
    void indexIsOutOfDate();
    void changesOfALongLogAreNoticed_data();
    void changesOfALongLogAreNoticed();
    void indexOfAnotherClassIsNotUsed();
    void indexOfOtherTypesIsNotUsed();
    void rebuildOnDemand();
    void copiedFolderKeepsItsIndex();
    void logWithoutRecordsRemovesAnOldIndex();
    void indexOfOtherTypesSurvivesALogWithoutRecords();
    void damagedLogIsUsedUpToTheDamage();
    void unreadableLogs_data();
    void unreadableLogs();
    void eventsOfTheLogAreFound();
    void userEventsSurviveARebuild();
    void removedEventsStayAway_data();
    void removedEventsStayAway();
    void removedEventsStayAwayWithoutWriting();
    void withoutTheEventFileAllEventsAreNew();
    void eventAddedDuringTheScanSurvives();
    void missingEventFileIsMadeAnew();
    void damagedEventFileIsKeptAside();
    void eventsSurviveAnotherLogOfTheSameName();
    void cancelledScanChangesNothing();
    void cancelBeforeTheStart();
    void failedWriteChangesNothing();
    void nothingIsWrittenUnlessAskedTo();
    void folderThatCannotBeWrittenIsNoObstacle();
    void foldersInPlaceOfFilesAreNoObstacle_data();
    void foldersInPlaceOfFilesAreNoObstacle();
    void planIsRestored();
    void planOfTheUserStays();
    void compressedEventsAndPlansAreUnderstood();
    void damagedPlanWritesNothing();
    void progressIsReported();
    void stampIsTheDocumentedOne_data();
    void stampIsTheDocumentedOne();
    void stampRoundTrip();
    void stampThatIsNotUnderstood_data();
    void stampThatIsNotUnderstood();
    void typesOfAnIndexFile();

private:
    QByteArray Bytes(const char* ending) const { return ReadWhole(m_log + S(ending)); }

    /// Loads into a fresh dataset and forgets it.
    ZrDatasetReader::eResult Load(QString* reason = nullptr) const
    {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        const ZrDatasetReader::eResult result = reader.Read(m_log, dataset);
        if (reason)
            *reason = reader.Reason();
        return result;
    }
};

void tst_ZrDatasetReader::firstLoadScansAndWrites()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(7).Bytes()));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QCOMPARE(reader.Reason(), S("there is no index yet"));
    QVERIFY(reader.Complete());
    QCOMPARE(reader.Error(), QString());
    QCOMPARE(reader.WriteError(), QString());
    QCOMPARE(dataset.fileName, m_log);
    QCOMPARE(dataset.recs.size(), std::size_t(7));
    QCOMPARE(dataset.curRec, 0);
    QCOMPARE(dataset.firstRec, 0);
    QCOMPARE(dataset.lastRec, 6);
    QCOMPARE(dataset.minLatitude, 44.0);
    QCOMPARE(dataset.maxLatitude, 44.0 + 6 * 0.001);
    QCOMPARE(dataset.altitudePlot.size(), std::size_t(14));
    QCOMPARE(Names(), (QStringList{S("dive äß.log"), S("dive äß.log.zri"), S("dive äß.log.zri.json")}));
    QCOMPARE(Bytes(".zri").size(), 46 + 7 * 160);
}

void tst_ZrDatasetReader::secondLoadTakesTheIndex()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(7).Bytes()));
    ZrSurveyDataset built;
    ZrSurveyDataset read;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, built), ZrDatasetReader::Built);
    QCOMPARE(reader.Read(m_log, read), ZrDatasetReader::FromIndex);
    QCOMPARE(reader.Reason(), QString());
    QVERIFY(reader.Complete());
    QCOMPARE(read.recs.size(), std::size_t(7));
    QCOMPARE(std::memcmp(read.recs.data(), built.recs.data(), 7 * sizeof(ZrLogRec)), 0);
    QCOMPARE(read.curRec, 0);
    QCOMPARE(read.lastRec, 6);
    QCOMPARE(read.maxLatitude, built.maxLatitude);
    QCOMPARE(read.seabedPlot.size(), std::size_t(28));
    QCOMPARE(read.fileName, m_log);
}

void tst_ZrDatasetReader::scanGivesWhatTheDatasetGives()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 3, S("b"), Uid(1)}));
    log.Add(EventItem({startTime + 1, S("a"), QUuid()}));
    log.Add(EventItem({startTime + 3, S("c"), QUuid()}));
    log.Add(NavItem(5));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    ZrSurveyDataset plain;
    plain.ReadFile(m_log);
    const QByteArray index = Bytes(".zri");
    const QByteArray events = Bytes(".evt");
    QVERIFY(!index.isEmpty() && !events.isEmpty());
    QFile::remove(m_log + S(".zri"));
    QFile::remove(m_log + S(".evt"));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QCOMPARE(Bytes(".zri"), index);
    QCOMPARE(Bytes(".evt"), events);
    QCOMPARE(Texts(dataset), Texts(plain));
    QCOMPARE(dataset.seabedPlot, plain.seabedPlot);
    QCOMPARE(dataset.meanLongitude, plain.meanLongitude);
    QCOMPARE(dataset.lastRec, plain.lastRec);
}

void tst_ZrDatasetReader::signalsOfTheDatasetAreNotEmitted()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(7).Bytes()));
    ZrSurveyDataset dataset;
    QSignalSpy percent(&dataset, &ZrDataset::PercentLoad);
    QSignalSpy loaded(&dataset, &ZrDataset::NewDataset);
    ZrDatasetReader reader;
    for (int i = 0; i < 2; ++i)
        reader.Read(m_log, dataset);
    QCOMPARE(percent.size() + loaded.size(), 0);
}

void tst_ZrDatasetReader::whatWasInTheDatasetIsGone()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(2).Bytes()));
    ZrSurveyDataset dataset;
    dataset.recs.resize(100);
    dataset.curRec = 99;
    dataset.lastRec = 99;
    dataset.events.AddTail(new ZrLogEvt(1.0, esUser, S("old")));
    dataset.curEvt = dataset.events.GetHeadPos();
    ZrDatasetReader reader;
    reader.Read(m_log, dataset);
    QCOMPARE(dataset.recs.size(), std::size_t(2));
    QCOMPARE(dataset.curRec, 0);
    QCOMPARE(dataset.lastRec, -1); // two records are no playable range
    QVERIFY(dataset.events.IsEmpty());
    QVERIFY(!dataset.curEvt);
}

void tst_ZrDatasetReader::indexIsOutOfDate_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("reason");
    const QString changed = S("the log has changed since the index was made");
    QTest::newRow("log has grown") << S("grown") << changed;
    QTest::newRow("log is shorter") << S("shorter") << changed;
    QTest::newRow("other first item") << S("first") << changed;
    QTest::newRow("other last item") << S("last") << changed;
    QTest::newRow("other log of the same size") << S("other") << changed;
    QTest::newRow("no stamp") << S("no stamp") << S("the index does not say which log it was made from");
    QTest::newRow("damaged stamp") << S("damaged stamp")
                                   << S("the index does not say which log it was made from");
    QTest::newRow("cut index") << S("cut index") << S("the index is damaged or of other record types");
    QTest::newRow("empty index") << S("empty index") << S("the index is damaged or of other record types");
    QTest::newRow("index without navigation") << S("plain") << S("the index does not fit the log");
    QTest::newRow("index of zeros") << S("zeros") << S("the index does not fit the log");
    QTest::newRow("index with fewer records") << S("fewer") << S("the index does not fit the log");
}

void tst_ZrDatasetReader::indexIsOutOfDate()
{
    QFETCH(QString, change);
    QFETCH(QString, reason);
    const LogBytes log = SurveyLog(9);
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    const QByteArray index = Bytes(".zri");
    std::size_t records = 9;
    if (change == S("grown")) {
        LogBytes longer = SurveyLog(9);
        QVERIFY(WriteWhole(m_log, longer.Add(NavItem(9)).Bytes()));
        records = 10;
    } else if (change == S("shorter")) {
        QVERIFY(WriteWhole(m_log, SurveyLog(8).Bytes()));
        records = 8;
    } else if (change == S("first")) {
        QVERIFY(WriteWhole(m_log, Flipped(log.Bytes(), static_cast<int>(log.Start(1)) + 40 + 33, 1)));
    } else if (change == S("last")) {
        QVERIFY(WriteWhole(m_log, Flipped(log.Bytes(), log.Bytes().size() - 9, 1)));
    } else if (change == S("other")) {
        QVERIFY(WriteWhole(m_log, Flipped(log.Bytes(), 44, 1))); // another time in the file header
    } else if (change == S("no stamp")) {
        QVERIFY(QFile::remove(m_log + S(".zri.json")));
    } else if (change == S("damaged stamp")) {
        QVERIFY(WriteWhole(m_log + S(".zri.json"), Bytes(".zri.json").left(100)));
    } else if (change == S("cut index")) {
        QVERIFY(WriteWhole(m_log + S(".zri"), index.left(index.size() - 1)));
    } else if (change == S("empty index")) {
        QVERIFY(WriteWhole(m_log + S(".zri"), ""));
    } else if (change == S("plain")) {
        // As an application writes that does not decode navigation; everything else is right.
        QVERIFY(QFile::remove(m_log + S(".zri")));
        ZrDataset plain(ZrSurveyDataset::DefaultIdxType(), ZrSurveyDataset::DefaultCrdTypes());
        plain.ReadFile(m_log);
        QCOMPARE(Bytes(".zri").size(), index.size());
    } else if (change == S("zeros")) {
        ZrDataset plain(ZrSurveyDataset::DefaultIdxType(), ZrSurveyDataset::DefaultCrdTypes());
        plain.recs.resize(9);
        plain.WriteIndex(m_log);
    } else {
        QVERIFY(
            WriteWhole(m_log + S(".zri"), Patched(index.left(46 + 8 * 160), 6, QByteArray("\x08\0\0\0", 4))));
    }

    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QCOMPARE(reader.Reason(), reason);
    QCOMPARE(dataset.recs.size(), records);
    QCOMPARE(dataset.meanLongitude, -63.0 - 0.001 * static_cast<double>(records - 1) / 2.0);
    // The index that stands there now is used.
    QCOMPARE(Load(), ZrDatasetReader::FromIndex);
}

void tst_ZrDatasetReader::changesOfALongLogAreNoticed_data()
{
    // Of a log of several times 64 KiB the ends are digested, and three records looked at.
    constexpr int count = 3000;
    const LogBytes log = SurveyLog(count);
    const int middle = static_cast<int>(log.Start(count / 2 + count / 6 + 1));
    QTest::addColumn<int>("at");
    QTest::addColumn<int>("mask");
    QTest::addColumn<QString>("reason");
    const QString changed = S("the log has changed since the index was made");
    QTest::newRow("file header") << 40 << 1 << changed;
    QTest::newRow("last byte of the first part") << 64 * 1024 - 1 << 1 << changed;
    QTest::newRow("first byte of the last part") << log.Bytes().size() - 64 * 1024 << 1 << changed;
    QTest::newRow("last byte") << log.Bytes().size() - 1 << 1 << changed;
    QTest::newRow("type of the middle item") << middle + 8 << 1 << S("the index does not fit the log");
}

void tst_ZrDatasetReader::changesOfALongLogAreNoticed()
{
    QFETCH(int, at);
    QFETCH(int, mask);
    QFETCH(QString, reason);
    const LogBytes log = SurveyLog(3000);
    QVERIFY(log.Bytes().size() > 3 * 64 * 1024);
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(Load(), ZrDatasetReader::FromIndex);
    QVERIFY(WriteWhole(m_log, Flipped(log.Bytes(), at, mask)));
    QString found;
    QCOMPARE(Load(&found), ZrDatasetReader::Built);
    QCOMPARE(found, reason);
}

void tst_ZrDatasetReader::indexOfAnotherClassIsNotUsed()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(3).Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    OtherDataset other;
    NextDataset next;
    ZrDataset plain(ZrSurveyDataset::DefaultIdxType(), ZrSurveyDataset::DefaultCrdTypes());
    QCOMPARE(ZrIndexStamp::FillerOf(ZrSurveyDataset()), S("ZrSurveyDataset 1"));
    QCOMPARE(ZrIndexStamp::FillerOf(next), S("NextDataset 2"));
    QCOMPARE(ZrIndexStamp::FillerOf(plain), S("ZrDataset"));
    ZrDatasetReader reader;
    for (ZrDataset* dataset : {static_cast<ZrDataset*>(&other), static_cast<ZrDataset*>(&next), &plain}) {
        QCOMPARE(reader.Read(m_log, *dataset), ZrDatasetReader::Built);
        QCOMPARE(reader.Reason(), S("the index was made by another program"));
        QCOMPARE(dataset->recs.size(), std::size_t(3));
    }
    QCOMPARE(double(plain.recs[2].latitude), 0.0);
}

void tst_ZrDatasetReader::indexOfOtherTypesIsNotUsed()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(7).Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    ZrSurveyDataset fixes(CRecType(0, 18), {});
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, fixes), ZrDatasetReader::Built);
    QCOMPARE(reader.Reason(), S("the index is damaged or of other record types"));
    QCOMPARE(fixes.recs.size(), std::size_t(3));
    QCOMPARE(Bytes(".zri").size(), 46 + 3 * 160);
}

void tst_ZrDatasetReader::rebuildOnDemand()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(7).Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    reader.rebuild = true;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QCOMPARE(reader.Reason(), S("it was asked for"));
    QCOMPARE(dataset.recs.size(), std::size_t(7));
}

void tst_ZrDatasetReader::copiedFolderKeepsItsIndex()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(7).Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    const QTemporaryDir target;
    // The log last, so that its time is later than that of its index.
    for (const char* ending : {".zri", ".zri.json", ""})
        QVERIFY(QFile::copy(m_log + S(ending), target.filePath(S("other name.log")) + S(ending)));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(target.filePath(S("other name.log")), dataset), ZrDatasetReader::FromIndex);
}

void tst_ZrDatasetReader::logWithoutRecordsRemovesAnOldIndex()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(7).Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    LogBytes empty;
    empty.Add(MakeItem(200, "x"));
    QVERIFY(WriteWhole(m_log, empty.Bytes()));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    for (const char* reason : {"the log has changed since the index was made", "there is no index yet"}) {
        QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
        QCOMPARE(reader.Reason(), S(reason));
        QVERIFY(dataset.recs.empty());
        QCOMPARE(dataset.curRec, -1);
        QCOMPARE(dataset.firstRec, -1);
        QCOMPARE(Names(), QStringList{S("dive äß.log")});
    }
}

void tst_ZrDatasetReader::indexOfOtherTypesSurvivesALogWithoutRecords()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(7).Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    ZrSurveyDataset other(CRecType(0, 99), ZrSurveyDataset::DefaultCrdTypes());
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, other), ZrDatasetReader::Built);
    QCOMPARE(Load(), ZrDatasetReader::FromIndex);
}

void tst_ZrDatasetReader::damagedLogIsUsedUpToTheDamage()
{
    const LogBytes log = SurveyLog(9);
    const int at = static_cast<int>(log.Start(6)); // the fifth navigation item behind two fixes
    QVERIFY(WriteWhole(m_log, Flipped(log.Bytes(), at, 0xFF)));
    for (const ZrDatasetReader::eResult result : {ZrDatasetReader::Built, ZrDatasetReader::FromIndex}) {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        QCOMPARE(reader.Read(m_log, dataset), result);
        QVERIFY(!reader.Complete());
        QCOMPARE(reader.Error(), S("Not a valid item header:aabbcc22"));
        QCOMPARE(reader.ErrorPos(), static_cast<u64>(at));
        QCOMPARE(dataset.recs.size(), std::size_t(4));
    }
}

void tst_ZrDatasetReader::unreadableLogs_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << QByteArray() << S("No such file or directory");
    QTest::newRow("empty") << QByteArray("") << S("File is not big enough to contain a header");
    QTest::newRow("no header") << QByteArray(48, 'x') << S("Not a valid header");
}

void tst_ZrDatasetReader::unreadableLogs()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    const QByteArray events = EventFile({{1.0, S("a"), Uid(1)}});
    QVERIFY(WriteWhole(m_log + S(".evt"), events));
    if (!bytes.isNull())
        QVERIFY(WriteWhole(m_log, bytes));
    const QStringList before = Names();
    ZrSurveyDataset dataset;
    dataset.recs.resize(3);
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Unreadable);
    QCOMPARE(reader.Error(), error);
    QVERIFY(!reader.Complete());
    QVERIFY(dataset.recs.empty());
    QVERIFY(dataset.events.IsEmpty());
    QCOMPARE(dataset.curRec, -1);
    QCOMPARE(Names(), before);
    QCOMPARE(Bytes(".evt"), events);
}

void tst_ZrDatasetReader::eventsOfTheLogAreFound()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 3, S("late"), Uid(1)}));
    log.Add(EventItem({startTime + 1, S("early"), Uid(2)}));
    log.Add(TimedItem(3, 1, 0.0, Event{1.0, S("other sub-type"), Uid(3)}.Bytes()));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    for (int i = 0; i < 2; ++i) {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        reader.Read(m_log, dataset);
        QCOMPARE(Texts(dataset), (QStringList{S("early"), S("late")}));
        QCOMPARE(dataset.events.GetHead()->rec, 1);
        QCOMPARE(dataset.events.GetTail()->rec, 3);
        QCOMPARE(EventTexts(m_log), Texts(dataset));
    }
}

void tst_ZrDatasetReader::userEventsSurviveARebuild()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    log.Add(EventItem({startTime + 4, S("without uid"), QUuid()}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::FromIndex);
        ZrLogEvt evt(startTime + 2, esUser, S("of the user"));
        evt.uid = Uid(2);
        dataset.AddEvent(evt);
        dataset.AddEvent(ZrLogEvt(startTime + 1, esUser, S("of the user, without uid")));
        dataset.events.GetAt(dataset.events.FindIndex(2))->text = S("of the log, edited");
        dataset.WriteEvents(m_log);
    }
    const QStringList all{
        S("of the user, without uid"), S("of the user"), S("of the log, edited"), S("without uid")};
    const auto check = [&] {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
        QCOMPARE(Texts(dataset), all);
        QCOMPARE(EventTexts(m_log), all);
    };
    QVERIFY(QFile::remove(m_log + S(".zri")));
    check();
    log.Add(NavItem(7)); // the log grows
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    check();
    QVERIFY(QFile::remove(m_log + S(".zri.json")));
    check();
    QCOMPARE(Names().size(), 5); // log, events, those merged, index, stamp
}

void tst_ZrDatasetReader::removedEventsStayAway_data()
{
    QTest::addColumn<QString>("change");
    for (const char* change : {"grown", "no index", "no stamp", "other types", "no records", "rebuild"})
        QTest::newRow(change) << S(change);
}

/// One by its uid, one without; one without was changed. An event that the log has got since is found.
void tst_ZrDatasetReader::removedEventsStayAway()
{
    QFETCH(QString, change);
    LogBytes log = SurveyLog(change == S("no records") ? 0 : 5);
    log.Add(EventItem({startTime + 1, S("removed"), Uid(1)}));
    log.Add(EventItem({startTime + 2, S("stays"), Uid(2)}));
    log.Add(EventItem({startTime + 3, S("removed, without uid"), QUuid()}));
    log.Add(EventItem({startTime + 4, S("changed, without uid"), QUuid()}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log).size(), 4);
    const QByteArray edited
        = EventFile({{startTime + 2, S("stays"), Uid(2)}, {startTime + 4, S("as changed"), QUuid()}});
    QVERIFY(WriteWhole(m_log + S(".evt"), edited));
    for (int i = 0; i < 3; ++i) {
        ZrSurveyDataset ofNavigation;
        ZrSurveyDataset ofFixes(CRecType(0, 18), ZrSurveyDataset::DefaultCrdTypes());
        ZrDatasetReader reader;
        if (change == S("grown"))
            QVERIFY(WriteWhole(m_log, log.Add(NavItem(10 + i)).Bytes()));
        else if (change == S("no index"))
            QVERIFY(QFile::remove(m_log + S(".zri")));
        else if (change == S("no stamp"))
            QVERIFY(QFile::remove(m_log + S(".zri.json")));
        reader.rebuild = change == S("rebuild");
        ZrDataset& dataset = change == S("other types") && i % 2 == 0 ? ofFixes : ofNavigation;
        QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
        QCOMPARE(reader.WriteError(), QString());
        QCOMPARE(Texts(dataset), (QStringList{S("stays"), S("as changed")}));
        QCOMPARE(Bytes(".evt"), edited);
    }
    QVERIFY(WriteWhole(m_log, log.Add(EventItem({startTime + 3, S("new"), Uid(7)})).Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log), (QStringList{S("stays"), S("new"), S("as changed")}));
}

void tst_ZrDatasetReader::removedEventsStayAwayWithoutWriting()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 1, S("removed"), Uid(1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({})));
    QVERIFY(WriteWhole(m_log, log.Add(EventItem({startTime + 2, S("new"), Uid(2)})).Bytes()));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    reader.writeIndex = false;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QCOMPARE(Texts(dataset), QStringList{S("new")});
    QCOMPARE(EventTexts(m_log), QStringList());
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log), QStringList{S("new")});
}

void tst_ZrDatasetReader::withoutTheEventFileAllEventsAreNew()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 1, S("removed"), Uid(1)}));
    log.Add(EventItem({startTime + 2, S("stays"), Uid(2)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{startTime + 2, S("stays"), Uid(2)}})));
    QVERIFY(QFile::remove(m_log + S(".evt")));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log), (QStringList{S("removed"), S("stays")}));
}

void tst_ZrDatasetReader::eventAddedDuringTheScanSurvives()
{
    LogBytes log = SurveyLog(300);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));

    /// Adds an event to the file when the scan is half done, as another program may.
    class AddHalfway final : public IZrProgress
    {
    public:
        explicit AddHalfway(const QString& log)
            : m_log(log)
        {
        }

        void UpdateProgress(int percent) override
        {
            if (percent < 50 || added)
                return;
            QString error;
            added = ZrEventFile::Update(
                m_log,
                [](ZrEventFile& file) {
                    file.Add(ZrLogEvt(startTime + 5, esUser, S("added meanwhile")));
                    return true;
                },
                &error);
        }

        int GetProgress() override { return 0; }

        bool added = false;

    private:
        QString m_log;
    };

    AddHalfway progress(m_log);
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    reader.progress = &progress;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QVERIFY(progress.added);
    QCOMPARE(EventTexts(m_log), (QStringList{S("of the log"), S("added meanwhile")}));
    QCOMPARE(Texts(dataset), (QStringList{S("of the log"), S("added meanwhile")}));
}

void tst_ZrDatasetReader::missingEventFileIsMadeAnew()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QVERIFY(QFile::remove(m_log + S(".evt")));
    QString reason;
    QCOMPARE(Load(&reason), ZrDatasetReader::Built);
    QCOMPARE(reason, S("the event file is missing"));
    QCOMPARE(EventTexts(m_log), QStringList{S("of the log")});
    QCOMPARE(Load(), ZrDatasetReader::FromIndex);
}

void tst_ZrDatasetReader::damagedEventFileIsKeptAside()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    const QByteArray whole = EventFile({{startTime + 1, S("of the user"), Uid(2)},
        {startTime + 2, S("cut off"), Uid(3)}, {startTime + 3, S("of the log"), Uid(1)}});
    const QByteArray damaged = whole.left(whole.size() / 2);
    QVERIFY(WriteWhole(m_log + S(".evt"), damaged));
    QString reason;
    QCOMPARE(Load(&reason), ZrDatasetReader::Built);
    QCOMPARE(reason, S("the event file is damaged"));
    QCOMPARE(EventTexts(m_log), (QStringList{S("of the user"), S("of the log")}));
    QCOMPARE(Bytes(".evt.damaged"), damaged);
    QCOMPARE(Load(), ZrDatasetReader::FromIndex);
}

void tst_ZrDatasetReader::eventsSurviveAnotherLogOfTheSameName()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(5).Bytes()));
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{1.0, S("of the user"), Uid(1)}})));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    LogBytes other = SurveyLog(8);
    other.Add(EventItem({startTime + 3, S("of the other log"), Uid(2)}));
    QVERIFY(WriteWhole(m_log, other.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log), (QStringList{S("of the user"), S("of the other log")}));
    // Not even a log without anything takes them along.
    QVERIFY(WriteWhole(m_log, FileHeader()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log), (QStringList{S("of the user"), S("of the other log")}));
}

void tst_ZrDatasetReader::cancelledScanChangesNothing()
{
    LogBytes log = SurveyLog(300);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    log.Add(TimedItem(70, 0, startTime, PlanText(planNote)));
    QVERIFY(WriteWhole(m_log, SurveyLog(5).Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    const QByteArray events = EventFile({{startTime + 1, S("of the user"), Uid(2)}});
    QVERIFY(WriteWhole(m_log + S(".evt"), events));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    const QByteArray index = Bytes(".zri");
    const QByteArray stamp = Bytes(".zri.json");
    const QStringList before = Names();
    // At 100 % all items are read, and still nothing may have been written.
    for (const int percent : {0, 50, 100}) {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        CancelAt progress(reader, percent);
        reader.progress = &progress;
        QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Cancelled);
        QVERIFY2(progress.last <= percent + 1, qPrintable(QString::number(progress.last)));
        QVERIFY(dataset.recs.empty());
        QVERIFY(dataset.events.IsEmpty());
        QCOMPARE(Names(), before);
        QCOMPARE(Bytes(".zri"), index);
        QCOMPARE(Bytes(".zri.json"), stamp);
        QCOMPARE(Bytes(".evt"), events);
    }
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log), (QStringList{S("of the user"), S("of the log")}));
}

void tst_ZrDatasetReader::cancelBeforeTheStart()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(5).Bytes()));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    reader.cancel = true;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Cancelled);
    QCOMPARE(Names(), QStringList{S("dive äß.log")});
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Cancelled);
    QVERIFY(dataset.recs.empty());
}

void tst_ZrDatasetReader::failedWriteChangesNothing()
{
    // The files may grow to 64 KiB; the index needs more.
    LogBytes log = SurveyLog(1000);
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{startTime + 1, S("of the user"), Uid(2)}})));
    const QByteArray events = Bytes(".evt");
    const int code = RunInChild([this] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{64 * 1024, 64 * 1024};
        setrlimit(RLIMIT_FSIZE, &limit);
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        if (reader.Read(m_log, dataset) != ZrDatasetReader::Built || dataset.recs.size() != 1000
            || dataset.events.GetCount() != 1)
            return 1;
        return reader.WriteError() == m_log + S(".zri: The index could not be written") ? 42 : 2;
    });
    QCOMPARE(code, 42);
    QCOMPARE(Names(), (QStringList{S("dive äß.log"), S("dive äß.log.evt")}));
    QCOMPARE(Bytes(".evt"), events);
}

void tst_ZrDatasetReader::nothingIsWrittenUnlessAskedTo()
{
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    log.Add(TimedItem(70, 0, startTime, PlanText(planNote)));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    reader.writeIndex = false;
    reader.restorePlan = false;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QCOMPARE(reader.WriteError(), QString());
    QCOMPARE(Texts(dataset), QStringList{S("of the log")});
    QCOMPARE(Names(), QStringList{S("dive äß.log")});
    reader.writeIndex = true;
    QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    QCOMPARE(Names().size(), 5);
    QVERIFY(!QFileInfo::exists(m_log + S(".xml")));
}

void tst_ZrDatasetReader::folderThatCannotBeWrittenIsNoObstacle()
{
    // Below /proc nobody can make a file, the superuser included: the log is read through a descriptor.
    LogBytes log = SurveyLog(5);
    log.Add(EventItem({startTime + 3, S("of the log"), Uid(1)}));
    log.Add(TimedItem(70, 0, startTime, PlanText(planNote)));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QFile open(m_log);
    QVERIFY(open.open(QIODevice::ReadOnly));
    const QString path = S("/proc/self/fd/%1").arg(open.handle());
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(path, dataset), ZrDatasetReader::Built);
    QCOMPARE(dataset.recs.size(), std::size_t(5));
    QCOMPARE(Texts(dataset), QStringList{S("of the log")});
    QCOMPARE(reader.WriteError(), path + S(".evt: The event file cannot be locked for writing"));
    QCOMPARE(Names(), QStringList{S("dive äß.log")});
}

void tst_ZrDatasetReader::foldersInPlaceOfFilesAreNoObstacle_data()
{
    QTest::addColumn<QString>("ending");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QString>("error");
    const QString unknown = S("the index does not say which log it was made from");
    QTest::newRow("index") << S(".zri") << unknown << S(": Is a directory");
    QTest::newRow("stamp") << S(".zri.json") << unknown << S(": ");
    QTest::newRow("events") << S(".evt") << S("there is no index yet")
                            << S(": The event file cannot be read, so it is not replaced");
    QTest::newRow("events merged") << S(".evt.json") << S("there is no index yet") << S(": ");
}

void tst_ZrDatasetReader::foldersInPlaceOfFilesAreNoObstacle()
{
    QFETCH(QString, ending);
    QFETCH(QString, reason);
    QFETCH(QString, error);
    LogBytes log = SurveyLog(10);
    log.Add(EventItem({startTime, S("in the log"), Uid(1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QVERIFY(QDir().mkpath(m_log + ending + S("/inside")));
    QString found;
    for (int i = 0; i < 2; ++i) {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
        QCOMPARE(dataset.recs.size(), std::size_t(10));
        QCOMPARE(Texts(dataset), QStringList{S("in the log")});
        QVERIFY2(reader.WriteError().startsWith(m_log + ending + error), qPrintable(reader.WriteError()));
        found = reader.Reason();
    }
    QCOMPARE(found, reason);
    QVERIFY(QFileInfo(m_log + ending + S("/inside")).isDir());
}

void tst_ZrDatasetReader::planIsRestored()
{
    LogBytes log = SurveyLog(3);
    QByteArray earlier = PlanText(planNote);
    earlier.replace("bay", "cove");
    log.Add(TimedItem(70, 0, startTime, earlier));
    log.Add(TimedItem(70, 0, startTime, PlanText(planNote)));
    log.Add(TimedItem(70, 1, startTime, "another sub-type"));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    const QByteArray plan = Bytes(".xml");
    QVERIFY2(plan.contains("survey of the bay"), plan);
    QVERIFY2(!plan.contains("cove"), plan);
    ZrXmlStore store(false);
    QVERIFY(store.Load(m_log + S(".xml")));
    QVERIFY(store.Set(S("Missions")));
}

void tst_ZrDatasetReader::planOfTheUserStays()
{
    LogBytes log = SurveyLog(3);
    log.Add(TimedItem(70, 0, startTime, PlanText(planNote)));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QVERIFY(WriteWhole(m_log + S(".xml"), "edited by hand"));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(Bytes(".xml"), QByteArray("edited by hand"));
}

void tst_ZrDatasetReader::compressedEventsAndPlansAreUnderstood()
{
    LogBytes log = SurveyLog(3);
    const QByteArray evt = Event{startTime + 1, S("packed"), Uid(1)}.Bytes();
    Item item = TimedItem(3, 0, startTime, qCompress(evt));
    item.compressed = true;
    item.dataSize = static_cast<quint32>(evt.size());
    log.Add(item);
    item.dataSize += 1; // the sizes do not fit: damaged
    log.Add(item);
    Item plan = TimedItem(70, 0, startTime, qCompress(PlanText(planNote)));
    plan.compressed = true;
    plan.dataSize = static_cast<quint32>(PlanText(planNote).size());
    log.Add(plan);
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QCOMPARE(EventTexts(m_log), QStringList{S("packed")});
    QVERIFY(Bytes(".xml").contains("survey of the bay"));
}

void tst_ZrDatasetReader::damagedPlanWritesNothing()
{
    LogBytes log = SurveyLog(3);
    log.Add(TimedItem(70, 0, startTime, QByteArray("\x00\xFF\x01", 3)));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);
    QVERIFY(!QFileInfo::exists(m_log + S(".xml")));
}

void tst_ZrDatasetReader::progressIsReported()
{
    QVERIFY(WriteWhole(m_log, SurveyLog(1000).Bytes()));
    ProgressList progress;
    ZrSurveyDataset dataset;
    ZrDatasetReader reader;
    reader.progress = &progress;
    reader.Read(m_log, dataset);
    QCOMPARE(progress.values.size(), 101);
    for (int i = 0; i <= 100; ++i)
        QCOMPARE(progress.values[i], i);
}

void tst_ZrDatasetReader::stampIsTheDocumentedOne_data()
{
    QTest::addColumn<int>("records");
    for (const int records : {1, 2, 63, 64, 65, 1000}) // one item has 80 bytes
        QTest::newRow(qPrintable(QString::number(records))) << records;
}

/// The stamp made by hand as docs/file-formats.md says, from the bytes of the log and of the index.
void tst_ZrDatasetReader::stampIsTheDocumentedOne()
{
    QFETCH(int, records);
    LogBytes log = SurveyLog(records);
    log.Add(EventItem({startTime, S("in the log"), Uid(1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    QCOMPARE(Load(), ZrDatasetReader::Built);

    const auto digest = [](quint64 number, const QVector<QByteArray>& parts) {
        QByteArray bytes;
        AppendLe(bytes, number);
        for (const QByteArray& part : parts)
            bytes += part;
        return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex());
    };
    constexpr int end = 64 * 1024;
    const QByteArray table = Bytes(".zri").mid(46);
    QVector<QByteArray> sampled;
    for (int i = 0; i < std::min(records, 64); ++i)
        sampled << table.mid((records <= 64 ? i : i * (records - 1) / 63) * 160, 160);
    const QJsonObject expected{
        {S("version"), 1},
        {S("log_size"), log.Bytes().size()},
        {S("log_digest"), digest(log.Size(), {log.Bytes().left(end), log.Bytes().right(end)})},
        {S("records"), records},
        {S("table_digest"), digest(static_cast<quint64>(records), sampled)},
        {S("filler"), S("ZrSurveyDataset 1")},
        {S("log_events"), 1},
        {S("complete"), true},
        {S("error"), QJsonValue()},
        {S("error_pos"), QJsonValue()},
    };
    const QJsonObject stamp = QJsonDocument::fromJson(Bytes(".zri.json")).object();
    QCOMPARE(stamp, expected);

    const QByteArray document = ReadWhole(S(ZR_SOURCE_DIR "/docs/file-formats.md"));
    for (const QString& key : stamp.keys())
        QVERIFY2(document.contains('`' + key.toUtf8() + '`'), qPrintable(key));
}

void tst_ZrDatasetReader::stampRoundTrip()
{
    ZrIndexStamp stamp;
    stamp.logSize = (1ull << 40) + 1;
    stamp.logDigest = QByteArray::fromHex("00ff10");
    stamp.records = 4000000000u;
    stamp.tableDigest = QByteArray::fromHex("aa");
    stamp.filler = S("Ä \"x\" 1");
    stamp.logEvents = 17;
    stamp.complete = false;
    stamp.error = S("Not a valid item header:aabbcc22");
    stamp.errorPos = 1ull << 39;
    QString error;
    QVERIFY2(stamp.Write(m_log, &error), qPrintable(error));
    ZrIndexStamp read;
    QVERIFY(read.Read(m_log));
    QCOMPARE(read.logSize, stamp.logSize);
    QCOMPARE(read.logDigest, stamp.logDigest);
    QCOMPARE(read.records, stamp.records);
    QCOMPARE(read.tableDigest, stamp.tableDigest);
    QCOMPARE(read.filler, stamp.filler);
    QCOMPARE(read.logEvents, stamp.logEvents);
    QCOMPARE(read.complete, stamp.complete);
    QCOMPARE(read.error, stamp.error);
    QCOMPARE(read.errorPos, stamp.errorPos);
}

void tst_ZrDatasetReader::stampThatIsNotUnderstood_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("no JSON") << QByteArray("index");
    QTest::newRow("an array") << QByteArray("[1, 2]");
    QTest::newRow("no version") << QByteArray(R"({"log_digest": "aa", "table_digest": "aa"})");
    QTest::newRow("later version") << QByteArray(
        R"({"version": 2, "log_digest": "aa", "table_digest": "aa"})");
    QTest::newRow("no digests") << QByteArray(R"({"version": 1, "log_size": 48})");
    QTest::newRow("digest no text") << QByteArray(R"({"version": 1, "log_digest": 7, "table_digest": "aa"})");
}

void tst_ZrDatasetReader::stampThatIsNotUnderstood()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(WriteWhole(m_log + S(".zri.json"), bytes));
    ZrIndexStamp stamp;
    QVERIFY(!stamp.Read(m_log));
}

void tst_ZrDatasetReader::typesOfAnIndexFile()
{
    CRecType idxType(1, 2);
    std::array<CRecType, 8> crdTypes{CRecType(3, 4)};
    QVERIFY(!ZrIndexStamp::TypesOf(m_log, idxType, crdTypes));
    QVERIFY(WriteWhole(m_log, SurveyLog(3).Bytes()));
    ZrSurveyDataset fixes(CRecType(0, 18), {CRecType(1, 17), CRecType(), CRecType(5, 6)});
    ZrDatasetReader reader;
    QCOMPARE(reader.Read(m_log, fixes), ZrDatasetReader::Built);
    const QByteArray index = Bytes(".zri");
    for (const QByteArray& damaged : {index.left(45), Flipped(index, 0, 1), Flipped(index, 4, 1)}) {
        QVERIFY(WriteWhole(m_log + S(".zri"), damaged));
        QVERIFY(!ZrIndexStamp::TypesOf(m_log, idxType, crdTypes));
        QVERIFY(idxType == CRecType(1, 2));
        QVERIFY(crdTypes[0] == CRecType(3, 4));
    }
    QVERIFY(WriteWhole(m_log + S(".zri"), index));
    QVERIFY(ZrIndexStamp::TypesOf(m_log, idxType, crdTypes));
    QVERIFY(idxType == CRecType(0, 18));
    const std::array<CRecType, 8> expected{CRecType(1, 17), CRecType(), CRecType(5, 6)};
    QVERIFY(crdTypes == expected);
}

QTEST_GUILESS_MAIN(tst_ZrDatasetReader)
#include "tst_ZrDatasetReader.moc"
