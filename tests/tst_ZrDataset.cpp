// ZrDataset: scanning a log, what the records remember, replaying through a player, extents and plots.

#include "ZrDatasetFixture.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QMetaMethod>

#include <cmath>

namespace {

constexpr CRecType navType(0, 16);
constexpr CRecType crdA(0, 40);
constexpr CRecType crdB(7, 41);

constexpr CrdTypes crdTypes{crdA, CRecType(), crdB};

Item SubItem(quint16 sub, quint16 type, double time, const QByteArray& payload = QByteArray())
{
    Item item = TimedItem(type, time, payload);
    item.sub = sub;
    return item;
}

/// Counts how often each operation that applications override is called, in order.
class TracingDataset : public ZrDataset
{
public:
    using ZrDataset::ZrDataset;

    void UpdCrdPos(std::array<u64, 8>& crdPos, const ZrLogItemInf& inf, u64 pos) override
    {
        calls << QStringLiteral("UpdCrdPos %1 at %2").arg(inf.type).arg(pos);
        ZrDataset::UpdCrdPos(crdPos, inf, pos);
    }

    void FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8> payload) override
    {
        const u64 pos = rec.pos;
        calls << QStringLiteral("FillRec %1 pos %2 payload %3")
                     .arg(inf.type)
                     .arg(pos)
                     .arg(QString::fromLatin1(Bytes(payload)));
        ZrDataset::FillRec(rec, inf, payload);
    }

    QStringList calls;
};

} // namespace

class tst_ZrDataset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void startsEmpty();
    void constructedFromItsRecordTypes();
    void membersStandInOrder();
    void virtualsAndSignalsStandInOrder();
    void coordinateSlotsTakeTheirTypes();
    void defaultFillerSetsTheTimeAlone();

    void scanMakesOneRecordPerIndexItem();
    void scanCallsTheOverrides();
    void scanTellsPercentages();
    void scanWritesItsMessages();
    void secondReadUsesTheIndex();
    void playableRangeNeedsThreeRecords_data();
    void playableRangeNeedsThreeRecords();
    void emptyIndexTypeMatchesEmptyItems();
    void itemOfTheIndexTypeIsARecordWhateverItIs();
    void missionPlanIsRestored();
    void lastMissionPlanWins();
    void onlySubTypeZeroIsPlanOrEvent();
    void damagedLogGivesTheRecordsBefore();
    void logThatCannotBeOpened_data();
    void logThatCannotBeOpened();
    void readingAnotherLogForgetsTheFirst();
    void unicodePath();
    void grownLogKeepsPercentagesInRange();

    void currentRecordIsChecked();
    void clearDataEmpties();
    void prerollReplaysTheFirstOfEachType();
    void prerollWithoutRecordsDoesNothing();
    void seekReplaysTheLatestOfEachType();
    void replayReopensAClosedPlayer();
    void replayOfAMissingLogIsQuiet();
    void replaySurvivesReceiversThatReload();
    void replayTakesAnyPosition_data();
    void replayTakesAnyPosition();

    void extentsOfRecords();
    void extentsWithoutRecords();
    void extentsLeaveOutWhatIsNoNumber();
    void extentsOfNegativeValues();

private:
    QString Path(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    /// Writes the log and reads it into \p dataset.
    void ReadLog(ZrDataset& dataset, const LogBytes& log, const char* name = "a.log")
    {
        QVERIFY(WriteWhole(Path(name), log.Bytes()));
        dataset.ReadFile(Path(name));
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrDataset::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrDataset::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrDataset::startsEmpty()
{
    ZrDataset dataset;
    QCOMPARE(dataset.curRec, -1);
    QCOMPARE(dataset.spareI32, 10);
    QCOMPARE(dataset.firstRec, -1);
    QCOMPARE(dataset.lastRec, -1);
    QVERIFY(dataset.altitudePlot.empty() && dataset.seabedPlot.empty() && dataset.recs.empty());
    QVERIFY(dataset.events.IsEmpty());
    QCOMPARE(dataset.spareF64, 0.0);
    QVERIFY(dataset.fileName.isEmpty());
    QVERIFY(!dataset.curEvt);
    QCOMPARE(dataset.maxSeabed, 0.0f);
    for (double extent : {dataset.minLatitude, dataset.maxLatitude, dataset.minLongitude,
             dataset.maxLongitude, dataset.meanLatitude, dataset.meanLongitude})
        QCOMPARE(extent, 0.0);
    QVERIFY(dataset.IdxType() == CRecType());
    QVERIFY(dataset.CrdTypes() == CrdTypes());
    QVERIFY(!dataset.GetRec());
    QCOMPARE(dataset.GetNextFp(), u64(0));
}

void tst_ZrDataset::constructedFromItsRecordTypes()
{
    const ZrDataset dataset(navType, crdTypes);
    QVERIFY(dataset.IdxType() == navType);
    QVERIFY(dataset.CrdTypes() == crdTypes);
    QVERIFY(dataset.CrdTypes()[2] == CRecType(7, 41));
}

void tst_ZrDataset::membersStandInOrder()
{
    const ZrDataset d;
    const std::vector<const void*> members{&d.curRec, &d.spareI32, &d.firstRec, &d.lastRec, &d.altitudePlot,
        &d.seabedPlot, &d.events, &d.spareF64, &d.fileName, &d.curEvt, &d.maxSeabed, &d.minLatitude,
        &d.maxLatitude, &d.minLongitude, &d.maxLongitude, &d.meanLatitude, &d.meanLongitude, &d.recs,
        &d.idxType, &d.crdTypes};
    QVERIFY(std::is_sorted(members.begin(), members.end()));
}

void tst_ZrDataset::virtualsAndSignalsStandInOrder()
{
    const QMetaObject& meta = ZrDataset::staticMetaObject;
    QCOMPARE(meta.className(), "ZrDataset");
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("PercentLoad(int)"));
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodSignature(), QByteArray("NewDataset()"));
#if defined(__GNUC__) && defined(__x86_64__)
    // A pointer to a virtual function begins with the offset of its slot, plus 1.
    const auto slotOf = [](auto function) {
        std::ptrdiff_t offset;
        std::memcpy(&offset, &function, sizeof offset);
        return (offset - 1) / std::ptrdiff_t(sizeof(void*));
    };
    const std::ptrdiff_t first = slotOf(&ZrDataset::UpdCrdPos);
    QCOMPARE(first, std::ptrdiff_t(12)); // behind the functions of QObject
    QCOMPARE(slotOf(&ZrDataset::FillRec), first + 1);
    QCOMPARE(slotOf(&ZrDataset::Preroll), first + 2);
    QCOMPARE(slotOf(&ZrDataset::SeekTo), first + 3);
#endif
}

void tst_ZrDataset::coordinateSlotsTakeTheirTypes()
{
    // A type may stand in several slots; unused slots take no item, not even one of type {0, 0}.
    ZrDataset dataset(navType, {crdA, CRecType(), crdB, crdA});
    std::array<u64, 8> positions{1, 2, 3, 4, 5, 6, 7, 8};
    const auto update = [&](CRecType type, u64 pos) {
        ZrLogItem item;
        item.type = type.type;
        item.sub = type.sub;
        dataset.UpdCrdPos(positions, ZrLogItemInf(item), pos);
    };
    update(CRecType(), 100);
    QVERIFY((positions == std::array<u64, 8>{1, 2, 3, 4, 5, 6, 7, 8}));
    update(CRecType(0, 41), 101); // the sub-type counts
    update(CRecType(41, 7), 102);
    QVERIFY((positions == std::array<u64, 8>{1, 2, 3, 4, 5, 6, 7, 8}));
    update(crdA, 103);
    QVERIFY((positions == std::array<u64, 8>{103, 2, 3, 103, 5, 6, 7, 8}));
    update(crdB, ~u64(0));
    QVERIFY((positions == std::array<u64, 8>{103, 2, ~u64(0), 103, 5, 6, 7, 8}));
}

void tst_ZrDataset::defaultFillerSetsTheTimeAlone()
{
    ZrDataset dataset;
    ZrLogItem item;
    item.time = 12.25;
    ZrLogRec rec;
    rec.latitude = 5.0;
    QByteArray payload(200, '\x7f');
    dataset.FillRec(rec, ZrLogItemInf(item), Span(payload));
    ZrLogRec expected;
    expected.time = 12.25;
    expected.latitude = 5.0;
    QCOMPARE(std::memcmp(&rec, &expected, sizeof rec), 0);
}

void tst_ZrDataset::scanMakesOneRecordPerIndexItem()
{
    LogBytes log;
    Nav nav;
    nav.latitude = 60.5;
    nav.depth = 12.5f;
    log.Add(TimedItem(16, 100.0, NavPayload(nav))) // 0
        .Add(TimedItem(40, 100.5, "a")) // 1
        .Add(SubItem(7, 41, 101.0, "b")) // 2
        .Add(TimedItem(16, 102.0, NavPayload(nav))) // 3
        .Add(TimedItem(40, 102.5, "c")) // 4
        .Add(TimedItem(41, 102.6, "not of sub-type 7")) // 5
        .Add(SubItem(1, 16, 102.7, "not the index type")) // 6
        .Add(TimedItem(16, 103.0, NavPayload(nav))); // 7
    NavDataset dataset(navType, crdTypes);
    DatasetSignals heard(dataset);
    ReadLog(dataset, log);
    QCOMPARE(dataset.fileName, Path("a.log"));
    QCOMPARE(dataset.recs.size(), std::size_t(3));
    const std::vector<double> times{100.0, 102.0, 103.0};
    const std::vector<u64> positions{log.Start(0), log.Start(3), log.Start(7)};
    const std::vector<CrdPositions> coordinates{
        CrdPositions{}, {log.Start(1), 0, log.Start(2)}, {log.Start(4), 0, log.Start(2)}};
    for (std::size_t i = 0; i < 3; ++i) {
        const ZrLogRec& rec = dataset.recs[i];
        QCOMPARE(double(rec.time), times[i]);
        QCOMPARE(u64(rec.pos), positions[i]);
        QCOMPARE(dataset.GetRecFp(int(i)), positions[i]);
        QVERIFY(CrdPosOf(rec) == coordinates[i]);
        QCOMPARE(double(rec.latitude), 60.5);
        QCOMPARE(float(rec.depth), 12.5f);
    }
    QCOMPARE(dataset.curRec, 0);
    QCOMPARE(dataset.firstRec, 0);
    QCOMPARE(dataset.lastRec, 2);
    QVERIFY(heard.lines.contains(QStringLiteral("NewDataset, 3 records, current 0")));
    QVERIFY(QFile::exists(Path("a.log.zri")));
    QVERIFY(!QFile::exists(Path("a.log.evt"))); // nothing to keep
    QVERIFY(!QFile::exists(Path("a.log.xml")));
}

void tst_ZrDataset::scanCallsTheOverrides()
{
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "x")).Add(TimedItem(16, 2.0, "nav")).Add(TimedItem(99, 3.0, ""));
    TracingDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    QCOMPARE(dataset.calls,
        (QStringList{QStringLiteral("UpdCrdPos 40 at %1").arg(log.Start(0)),
            QStringLiteral("UpdCrdPos 16 at %1").arg(log.Start(1)),
            QStringLiteral("FillRec 16 pos %1 payload nav").arg(log.Start(1)),
            QStringLiteral("UpdCrdPos 99 at %1").arg(log.Start(2))}));
    QCOMPARE(double(dataset.recs.at(0).time), 2.0);
    // A coordinate type that is the index type as well is its own latest item.
    TracingDataset both(navType, {CRecType(), navType});
    QFile::remove(Path("a.log.zri"));
    both.ReadFile(Path("a.log"));
    QCOMPARE(CrdPosOf(both.recs.at(0))[1], log.Start(1));
}

void tst_ZrDataset::scanTellsPercentages()
{
    LogBytes log;
    for (int i = 0; i < 7; ++i)
        log.Add(TimedItem(16, i, QByteArray(i * 100, 'x')));
    log.Add(TimedItem(16, 8.0, "")).Add(TimedItem(16, 9.0, ""));
    for (int i = 0; i < 200; ++i) // several items per percent
        log.Add(TimedItem(16, 10.0 + i, "1234567"));
    NavDataset dataset(navType, {});
    DatasetSignals heard(dataset);
    ReadLog(dataset, log);

    QStringList expected{QStringLiteral("PercentLoad 0")};
    qint64 told = 0;
    const qint64 size = qint64(log.Size());
    for (int i = 1; i <= 209; ++i) {
        const qint64 pos = i < 209 ? qint64(log.Start(i)) : size;
        const qint64 percent = pos * 100 / size;
        if (percent != told)
            expected << QStringLiteral("PercentLoad %1").arg(told = percent);
    }
    expected << QStringLiteral("NewDataset, 209 records, current 0") << QStringLiteral("PercentLoad 100");
    QCOMPARE(heard.Take(), expected);

    // From the index there is nothing in between.
    dataset.ReadFile(Path("a.log"));
    QCOMPARE(heard.Take(),
        (QStringList{QStringLiteral("PercentLoad 0"), QStringLiteral("NewDataset, 209 records, current 0"),
            QStringLiteral("PercentLoad 100")}));
}

void tst_ZrDataset::scanWritesItsMessages()
{
    LogBytes log;
    log.Add(TimedItem(16, 1.0))
        .Add(TimedItem(3, 1602049684.592, EventBytes(1602049684.592, 2, QStringLiteral("e"))))
        .Add(TimedItem(70, 2.0, "<SET>=s\n<OBJ>=o=t\nk=v\n"))
        .Add(TimedItem(16, 3.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    QCOMPARE(m_messages->Take(),
        (QStringList{ConsoleLine(QStringLiteral("Cannot open index file: ") + Path("a.log.zri")),
            QStringLiteral("Found event"), QStringLiteral("Added Event 1602049684.592 0"),
            QStringLiteral("Recovering mission plan"),
            ConsoleLine(QStringLiteral("Settings file written to ") + Path("a.log.xml")),
            QStringLiteral("Number of items read: 4"), QStringLiteral("Number of vehicle entries: 2")}));
    dataset.ReadFile(Path("a.log"));
    QCOMPARE(m_messages->Take(),
        QStringList(QStringLiteral("Read 2 from index file: \"%1\"").arg(Path("a.log.zri"))));
}

void tst_ZrDataset::secondReadUsesTheIndex()
{
    LogBytes log;
    Nav nav;
    nav.longitude = -3.25;
    for (int i = 0; i < 50; ++i)
        log.Add(TimedItem(40, i, "c")).Add(TimedItem(16, i, NavPayload(nav)));
    log.Add(TimedItem(3, 1.0, EventBytes(20.0, 2, QStringLiteral("dive"))));
    NavDataset scanned(navType, crdTypes);
    ReadLog(scanned, log);

    // The log may even be gone.
    QVERIFY(QFile::remove(Path("a.log")));
    NavDataset read(navType, crdTypes);
    read.ReadFile(Path("a.log"));
    QCOMPARE(read.recs.size(), std::size_t(50));
    QCOMPARE(std::memcmp(read.recs.data(), scanned.recs.data(), 50 * sizeof(ZrLogRec)), 0);
    QCOMPARE(read.firstRec, 0);
    QCOMPARE(read.lastRec, 49);
    QCOMPARE(read.curRec, 0);
    QCOMPARE(EventTexts(read), QStringList(QStringLiteral("dive")));
    QCOMPARE(read.meanLongitude, -3.25);
    QVERIFY(read.seabedPlot == scanned.seabedPlot && read.altitudePlot == scanned.altitudePlot);
}

void tst_ZrDataset::playableRangeNeedsThreeRecords_data()
{
    QTest::addColumn<int>("records");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("current");
    QTest::newRow("none") << 0 << -1 << -1 << -1;
    QTest::newRow("one") << 1 << -1 << -1 << 0;
    QTest::newRow("two") << 2 << -1 << -1 << 0;
    QTest::newRow("three") << 3 << 0 << 2 << 0;
    QTest::newRow("four") << 4 << 0 << 3 << 0;
}

void tst_ZrDataset::playableRangeNeedsThreeRecords()
{
    QFETCH(int, records);
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(int, current);
    LogBytes log;
    log.Add(TimedItem(40, 0.0));
    for (int i = 0; i < records; ++i)
        log.Add(TimedItem(16, i));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    for (int round = 0; round < 2; ++round) { // scanned, then from the index
        QCOMPARE(int(dataset.recs.size()), records);
        QCOMPARE(dataset.firstRec, first);
        QCOMPARE(dataset.lastRec, last);
        QCOMPARE(dataset.curRec, current);
        dataset.ReadFile(Path("a.log"));
    }
    QCOMPARE(QFile::exists(Path("a.log.zri")), records > 0);
}

void tst_ZrDataset::emptyIndexTypeMatchesEmptyItems()
{
    LogBytes log;
    log.Add(TimedItem(0, 5.0)).Add(SubItem(1, 0, 6.0)).Add(TimedItem(1, 7.0)).Add(TimedItem(0, 8.0));
    ZrDataset dataset;
    ReadLog(dataset, log);
    QCOMPARE(dataset.recs.size(), std::size_t(2));
    QCOMPARE(double(dataset.recs[1].time), 8.0);
    QVERIFY(CrdPosOf(dataset.recs[1]) == CrdPositions{}); // an unused slot takes no item
}

void tst_ZrDataset::itemOfTheIndexTypeIsARecordWhateverItIs()
{
    LogBytes log;
    log.Add(TimedItem(3, 5.0, EventBytes(5.0, 2, QStringLiteral("e")))).Add(TimedItem(70, 6.0, "<SET>=s\n"));
    ZrDataset events(CRecType(rtEvent), {});
    ReadLog(events, log);
    QCOMPARE(events.recs.size(), std::size_t(1));
    QVERIFY(events.events.IsEmpty());
    QVERIFY(QFile::exists(Path("a.log.xml")));
    QVERIFY(!QFile::exists(Path("a.log.evt")));

    ZrDataset plans(CRecType(rtMissionPlan), {});
    ReadLog(plans, log, "b.log");
    QCOMPARE(plans.recs.size(), std::size_t(1));
    QCOMPARE(EventTexts(plans), QStringList(QStringLiteral("e")));
    QVERIFY(!QFile::exists(Path("b.log.xml")));
}

void tst_ZrDataset::missionPlanIsRestored()
{
    const QByteArray plan = "<SET>=Mission\n<OBJ>=Wpt 0=ZrWpt\nName=Start\nSpeed=2\n<DATA>=line\n";
    LogBytes log;
    log.Add(TimedItem(70, 1.0, plan)).Add(TimedItem(16, 2.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);

    ZrXmlStore store(false);
    QVERIFY(store.Load(Path("a.log.xml")));
    ZrXmlSet* const set = store.Set(QStringLiteral("Mission"));
    QVERIFY(set);
    ZrXmlObj* const obj = set->GetObj(QStringLiteral("Wpt 0"));
    QVERIFY(obj);
    QCOMPARE(obj->type, QStringLiteral("ZrWpt"));
    QString value;
    QVERIFY(obj->GetItm(QStringLiteral("Name"), value));
    QCOMPARE(value, QStringLiteral("Start"));
    QVERIFY(obj->GetItm(QStringLiteral("Speed"), value));
    QCOMPARE(value, QStringLiteral("2"));
    // It is the file form.
    QVERIFY(ReadWhole(Path("a.log.xml")).startsWith("<?xml version=\"1.0\" ?>\n<XmlStore name=\""));
    QVERIFY(ReadWhole(Path("a.log.xml")).contains("\t\t\t<Name val=\"Start\"/>\n"));
}

void tst_ZrDataset::lastMissionPlanWins()
{
    LogBytes log;
    log.Add(TimedItem(70, 1.0, "<SET>=s\n<OBJ>=first=t\nk=v\n"))
        .Add(TimedItem(70, 2.0, "<SET>=s\n<OBJ>=second=t\nk=v\n"));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    QVERIFY(!ReadWhole(Path("a.log.xml")).contains("first"));
    QVERIFY(ReadWhole(Path("a.log.xml")).contains("second"));
}

void tst_ZrDataset::onlySubTypeZeroIsPlanOrEvent()
{
    LogBytes log;
    log.Add(SubItem(1, 3, 1.0, EventBytes(5.0, 2, QStringLiteral("e"))))
        .Add(SubItem(1, 70, 2.0, "<SET>=s\n"));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    QVERIFY(dataset.events.IsEmpty());
    QVERIFY(!QFile::exists(Path("a.log.xml")));
}

void tst_ZrDataset::damagedLogGivesTheRecordsBefore()
{
    LogBytes log;
    for (int i = 0; i < 5; ++i)
        log.Add(TimedItem(16, i, "payload"));
    QVERIFY(WriteWhole(Path("a.log"), Flipped(log.Bytes(), int(log.Start(3)), 0x01)));
    NavDataset dataset(navType, crdTypes);
    DatasetSignals heard(dataset);
    dataset.ReadFile(Path("a.log"));
    QCOMPARE(dataset.recs.size(), std::size_t(3));
    QCOMPARE(dataset.lastRec, 2);
    QVERIFY(QFile::exists(Path("a.log.zri")));
    const QStringList messages = m_messages->Take();
    QVERIFY(messages.contains(QStringLiteral("Not a valid item header:aabbccdc")));
    QVERIFY(messages.contains(QStringLiteral("Number of items read: 3")));
    QVERIFY(messages.contains(QStringLiteral("Number of vehicle entries: 3")));
    QCOMPARE(heard.Take().last(), QStringLiteral("PercentLoad 100"));
}

void tst_ZrDataset::logThatCannotBeOpened_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << QByteArray() << QString();
    QTest::newRow("short") << QByteArray(47, 'x')
                           << QStringLiteral("File is not big enough to contain a header");
    QTest::newRow("no log") << QByteArray(100, 'x') << QStringLiteral("Not a valid header");
}

void tst_ZrDataset::logThatCannotBeOpened()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    NavDataset dataset(navType, crdTypes);
    LogBytes log;
    for (int i = 0; i < 4; ++i)
        log.Add(TimedItem(16, i));
    ReadLog(dataset, log);
    dataset.curRec = 3;
    m_messages->Take();

    DatasetSignals heard(dataset);
    const QString path = Path("bad.log");
    if (!content.isEmpty())
        QVERIFY(WriteWhole(path, content));
    dataset.ReadFile(path);
    QStringList expected{
        ConsoleLine(QStringLiteral("Cannot open index file: ") + path + QStringLiteral(".zri"))};
    if (!reason.isEmpty())
        expected << reason;
    expected << Line("Unable to open log file: ", path);
    QCOMPARE(m_messages->Take(), expected);
    QCOMPARE(heard.Take(), (QStringList{QStringLiteral("PercentLoad 0"), QStringLiteral("PercentLoad 100")}));
    QVERIFY(dataset.recs.empty());
    QCOMPARE(dataset.firstRec, -1);
    QCOMPARE(dataset.lastRec, -1);
    // The current record is not touched, but there is no record any more.
    QCOMPARE(dataset.curRec, 3);
    QVERIFY(!dataset.GetRec());
    QCOMPARE(dataset.GetNextFp(), u64(0));
    QVERIFY(!dataset.SeekToTime(3.0));
    QVERIFY(!QFile::exists(path + QStringLiteral(".zri")));
    QCOMPARE(dataset.fileName, path);
}

void tst_ZrDataset::readingAnotherLogForgetsTheFirst()
{
    LogBytes first;
    for (int i = 0; i < 9; ++i)
        first.Add(TimedItem(16, i));
    first.Add(TimedItem(3, 1.0, EventBytes(4.0, 2, QStringLiteral("e"))));
    LogBytes second;
    second.Add(TimedItem(16, 50.0)).Add(TimedItem(16, 60.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, first, "a.log");
    dataset.GoNextEvt();
    QVERIFY(dataset.curEvt);
    dataset.curRec = 7;
    ReadLog(dataset, second, "b.log");
    QCOMPARE(dataset.recs.size(), std::size_t(2));
    QVERIFY(dataset.events.IsEmpty());
    QVERIFY(!dataset.curEvt);
    QVERIFY(!dataset.HasNextEvt() && !dataset.HasPrevEvt());
    QCOMPARE(dataset.firstRec, -1);
    QCOMPARE(dataset.curRec, 0);
    QCOMPARE(dataset.altitudePlot.size(), std::size_t(4));
    QVERIFY(!QFile::exists(Path("b.log.evt")));
}

void tst_ZrDataset::unicodePath()
{
    LogBytes log;
    log.Add(TimedItem(16, 1.0)).Add(TimedItem(3, 1.0, EventBytes(1.0, 1, QStringLiteral("e"))));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log, "T\xc3\xa5keferd %s.log");
    const QString path = Path("T\xc3\xa5keferd %s.log");
    QVERIFY(QFile::exists(path + QStringLiteral(".zri")));
    QVERIFY(QFile::exists(path + QStringLiteral(".evt")));
    QCOMPARE(m_messages->Take().first(),
        ConsoleLine(QStringLiteral("Cannot open index file: ") + path + QStringLiteral(".zri")));
}

void tst_ZrDataset::grownLogKeepsPercentagesInRange()
{
    // A writer appends while the log is scanned: its size was taken before.
    LogBytes log;
    log.Add(TimedItem(16, 1.0, "p")).Add(TimedItem(16, 2.0, "p"));
    const QByteArray whole = log.Bytes() + TimedItem(16, 3.0, QByteArray(100000, 'g')).Bytes();
    const int cut = int(log.Size()) + 40; // the third header is there, its payload follows
    QVERIFY(WriteWhole(Path("a.log"), whole.left(cut)));

    class Growing : public NavDataset
    {
    public:
        using NavDataset::NavDataset;

        void FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8> payload) override
        {
            NavDataset::FillRec(rec, inf, payload);
            if (recs.empty())
                AppendTo(path, rest);
        }

        QString path;
        QByteArray rest;
    };

    Growing dataset(navType, crdTypes);
    dataset.path = Path("a.log");
    dataset.rest = whole.mid(cut);
    DatasetSignals heard(dataset);
    dataset.ReadFile(Path("a.log"));
    QCOMPARE(dataset.recs.size(), std::size_t(3));
    const int percent = int(whole.size() * 100.0 / cut);
    QVERIFY(percent > 100);
    QVERIFY(heard.lines.contains(QStringLiteral("PercentLoad %1").arg(percent)));
}

void tst_ZrDataset::currentRecordIsChecked()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.0});
    dataset.recs[0].pos = 48;
    dataset.recs[1].pos = 99;
    dataset.curRec = 0;
    QCOMPARE(static_cast<const void*>(dataset.GetRec()), static_cast<const void*>(&dataset.recs[0]));
    QCOMPARE(dataset.GetNextFp(), u64(48));
    dataset.curRec = 1;
    QCOMPARE(static_cast<const void*>(dataset.GetRec()), static_cast<const void*>(&dataset.recs[1]));
    QCOMPARE(dataset.GetNextFp(), u64(99));
    for (int outside : {-1, 2, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        dataset.curRec = outside;
        QVERIFY(!dataset.GetRec());
        QCOMPARE(dataset.GetNextFp(), u64(0));
        QCOMPARE(dataset.GetRecFp(outside), u64(0));
    }
    QCOMPARE(dataset.GetRecFp(1), u64(99));
}

void tst_ZrDataset::clearDataEmpties()
{
    LogBytes log;
    for (int i = 0; i < 4; ++i)
        log.Add(TimedItem(16, i));
    log.Add(TimedItem(3, 1.0, EventBytes(2.0, 2, QStringLiteral("e"))));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    QVERIFY(!dataset.HasNextEvt());
    QVERIFY(dataset.curEvt);
    dataset.ClearData();
    QVERIFY(dataset.recs.empty() && dataset.altitudePlot.empty() && dataset.seabedPlot.empty());
    QVERIFY(dataset.events.IsEmpty());
    QVERIFY(!dataset.curEvt);
    QCOMPARE(dataset.firstRec, -1);
    QCOMPARE(dataset.lastRec, -1);
    QVERIFY(!dataset.GetRec());
    QCOMPARE(dataset.fileName, Path("a.log"));
}

void tst_ZrDataset::prerollReplaysTheFirstOfEachType()
{
    const QVector<Item> items{TimedItem(16, 0.0), TimedItem(40, 1.0, "first a"), TimedItem(16, 2.0),
        SubItem(7, 41, 3.0, "first b"), TimedItem(40, 4.0, "second a"), TimedItem(16, 5.0)};
    LogBytes log;
    for (const Item& item : items)
        log.Add(item);
    NavDataset dataset(navType, {crdB, CRecType(0, 99), crdA, CRecType()});
    ReadLog(dataset, log);
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    SignalLog signalLog(player);
    dataset.Preroll(player);
    // In the order of the slots.
    QCOMPARE(signalLog.Take(),
        DeliveryLines(items[3], log.Start(3), true) + DeliveryLines(items[1], log.Start(1), true));
    // A slot that the last record does not know is passed over, whatever stands before.
    CrdPositions none{};
    std::memcpy(reinterpret_cast<char*>(&dataset.recs.back()) + 92, &none, sizeof none);
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrDataset::prerollWithoutRecordsDoesNothing()
{
    QVERIFY(WriteWhole(Path("a.log"), LogBytes().Add(TimedItem(40, 1.0)).Bytes()));
    ZrDataset dataset(navType, crdTypes);
    ZrPlayer player;
    SignalLog signalLog(player);
    dataset.Preroll(player);
    QVERIFY(player.OpenFile(Path("a.log")));
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), QStringList());
    QCOMPARE(player.pos, u64(48));
}

void tst_ZrDataset::seekReplaysTheLatestOfEachType()
{
    const QVector<Item> items{TimedItem(40, 1.0, "a1"), TimedItem(16, 2.0), SubItem(7, 41, 3.0, "b1"),
        TimedItem(40, 4.0, "a2"), TimedItem(16, 5.0, "nav"), TimedItem(40, 6.0, "a3")};
    LogBytes log;
    for (const Item& item : items)
        log.Add(item);
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    SignalLog signalLog(player);
    dataset.SeekTo(player, dataset.recs.at(1));
    QCOMPARE(signalLog.Take(),
        DeliveryLines(items[3], log.Start(3), true) + DeliveryLines(items[2], log.Start(2), true));
    // Playing goes on from the record itself.
    QVERIFY(player.SeekTo(dataset.recs[1].pos));
    QVERIFY(player.ReadNextItem(true));
    QCOMPARE(signalLog.Take(), DeliveryLines(items[4], log.Start(4), false));
    dataset.SeekTo(player, dataset.recs.at(0));
    QCOMPARE(signalLog.Take(), DeliveryLines(items[0], log.Start(0), true));
    dataset.SeekTo(player, ZrLogRec());
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrDataset::replayReopensAClosedPlayer()
{
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "a")).Add(SubItem(7, 41, 2.0, "b")).Add(TimedItem(16, 3.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    SignalLog signalLog(player);
    const QStringList expected = DeliveryLines(TimedItem(40, 1.0, "a"), log.Start(0), true)
        + DeliveryLines(SubItem(7, 41, 2.0, "b"), log.Start(1), true);
    player.CloseFile();
    dataset.SeekTo(player, dataset.recs.at(0));
    QCOMPARE(signalLog.Take(), expected);
    player.CloseFile();
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), expected);

    // A damaged item closes the file; the next slot opens it again.
    QVERIFY(WriteWhole(Path("a.log"), Flipped(log.Bytes(), int(log.Start(0)), 0xff)));
    QVERIFY(player.OpenFile(Path("a.log")));
    m_messages->Take();
    dataset.SeekTo(player, dataset.recs.at(0));
    QCOMPARE(signalLog.Take(),
        QStringList(QStringLiteral("EndOfFile, closed"))
            + DeliveryLines(SubItem(7, 41, 2.0, "b"), log.Start(1), true));
    QCOMPARE(m_messages->Take(), QStringList(QStringLiteral("Not a valid item header:aabbcc22")));
}

void tst_ZrDataset::replayOfAMissingLogIsQuiet()
{
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "a")).Add(TimedItem(16, 3.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    ZrPlayer player; // never opened: it has no file name
    SignalLog signalLog(player);
    m_messages->Take();
    dataset.SeekTo(player, dataset.recs.at(0));
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), QStringList());
    QVERIFY(!player.file.isOpen());
    QVERIFY(QFile::remove(Path("a.log")));
    QVERIFY(!player.OpenFile(Path("a.log")));
    dataset.SeekTo(player, dataset.recs.at(0));
    dataset.Preroll(player);
    QCOMPARE(signalLog.Take(), QStringList());
}

void tst_ZrDataset::replaySurvivesReceiversThatReload()
{
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "a")).Add(SubItem(7, 41, 2.0, "b")).Add(TimedItem(16, 3.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    int delivered = 0;
    connect(&player, &ZrPlayer::NewPayload, this, [&] {
        ++delivered;
        dataset.ClearData();
        std::vector<ZrLogRec>().swap(dataset.recs); // frees the table that the position came from
    });
    dataset.SeekTo(player, dataset.recs.at(0));
    QCOMPARE(delivered, 2);
    dataset.ReadFile(Path("a.log"));
    dataset.Preroll(player);
    QCOMPARE(delivered, 4);
}

void tst_ZrDataset::replayTakesAnyPosition_data()
{
    QTest::addColumn<quint64>("pos");
    QTest::addColumn<QString>("message");
    const QString incomplete = QStringLiteral("Incomplete item header found. FS:%1 BR:");
    QTest::newRow("inside the file header")
        << quint64(1) << QStringLiteral("Not a valid item header:30112233");
    QTest::newRow("far behind the end") << (quint64(1) << 40) << incomplete + QStringLiteral("1099511627776");
    QTest::newRow("2^63") << (quint64(1) << 63) << incomplete + QStringLiteral("9223372036854775808");
    QTest::newRow("2^64 - 1") << ~quint64(0) << incomplete + QStringLiteral("18446744073709551615");
}

void tst_ZrDataset::replayTakesAnyPosition()
{
    QFETCH(quint64, pos);
    QFETCH(QString, message);
    LogBytes log;
    log.Add(TimedItem(40, 1.0, "a"));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    NavDataset dataset(navType, crdTypes);
    dataset.recs.push_back(ZrLogRec(ZrLogItemInf(), 48, {pos}));
    ZrPlayer player;
    QVERIFY(player.OpenFile(Path("a.log")));
    SignalLog signalLog(player);
    const QString text = message.contains(QLatin1String("%1")) ? message.arg(log.Size()) : message;
    dataset.SeekTo(player, dataset.recs.at(0));
    dataset.Preroll(player);
    QCOMPARE(m_messages->Take(), (QStringList{text, text}));
    QCOMPARE(signalLog.Take(),
        (QStringList{QStringLiteral("EndOfFile, closed"), QStringLiteral("EndOfFile, closed")}));
}

void tst_ZrDataset::extentsOfRecords()
{
    ZrDataset dataset;
    const double latitudes[] = {60.0, 58.5, 61.0, 60.5};
    const double longitudes[] = {-5.0, 7.0, 3.0, -6.0};
    const float altitudes[] = {5.0f, 2.5f, 100.0f, 0.0f};
    const float depths[] = {10.0f, 20.0f, 1.0f, 50.0f};
    for (int i = 0; i < 4; ++i) {
        ZrLogRec rec;
        rec.latitude = latitudes[i];
        rec.longitude = longitudes[i];
        rec.altitude = altitudes[i];
        rec.depth = depths[i];
        dataset.recs.push_back(rec);
    }
    dataset.curRec = 3;
    dataset.UpdateExtents();
    QCOMPARE(dataset.minLatitude, 58.5);
    QCOMPARE(dataset.maxLatitude, 61.0);
    QCOMPARE(dataset.minLongitude, -6.0);
    QCOMPARE(dataset.maxLongitude, 7.0);
    QCOMPARE(dataset.meanLatitude, 60.0);
    QCOMPARE(dataset.meanLongitude, -0.25);
    QCOMPARE(dataset.maxSeabed, 111.1f); // 101 x 1.1
    QCOMPARE(dataset.curRec, 0);
    const std::vector<float> altitudePlot{0, 5, 1, 2.5, 2, 100, 3, 0};
    const std::vector<float> seabedPlot{0, 0, 0, 15, 1, 0, 1, 22.5, 2, 0, 2, 101, 3, 0, 3, 50};
    QVERIFY(dataset.altitudePlot == altitudePlot);
    QVERIFY(dataset.seabedPlot == seabedPlot);
    dataset.UpdateExtents(); // built anew, not added to
    QVERIFY(dataset.altitudePlot == altitudePlot);
    QVERIFY(dataset.seabedPlot == seabedPlot);
}

void tst_ZrDataset::extentsWithoutRecords()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0});
    dataset.recs[0].latitude = 5.0;
    dataset.recs[0].depth = 5.0f;
    dataset.UpdateExtents();
    QCOMPARE(dataset.curRec, 0);
    dataset.recs.clear();
    dataset.UpdateExtents();
    QCOMPARE(dataset.curRec, -1);
    QVERIFY(dataset.altitudePlot.empty() && dataset.seabedPlot.empty());
    for (double extent : {dataset.minLatitude, dataset.maxLatitude, dataset.minLongitude,
             dataset.maxLongitude, dataset.meanLatitude, dataset.meanLongitude, double(dataset.maxSeabed)})
        QCOMPARE(extent, 0.0);
}

void tst_ZrDataset::extentsLeaveOutWhatIsNoNumber()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.0, 3.0});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double latitudes[] = {nan, 10.0, 20.0};
    for (std::size_t i = 0; i < 3; ++i) {
        dataset.recs[i].latitude = latitudes[i];
        dataset.recs[i].longitude = nan;
        dataset.recs[i].depth = i == 1 ? std::numeric_limits<float>::quiet_NaN() : float(i);
    }
    dataset.UpdateExtents();
    QCOMPARE(dataset.minLatitude, 10.0);
    QCOMPARE(dataset.maxLatitude, 20.0);
    QCOMPARE(dataset.meanLatitude, 15.0);
    QCOMPARE(dataset.minLongitude, 0.0);
    QCOMPARE(dataset.meanLongitude, 0.0);
    QCOMPARE(dataset.maxSeabed, 2.2f);
    QVERIFY(std::isnan(dataset.seabedPlot[7])); // the plots show what is there
}

void tst_ZrDataset::extentsOfNegativeValues()
{
    ZrDataset dataset;
    SetTimes(dataset, {1.0, 2.0});
    dataset.recs[0].latitude = -10.0;
    dataset.recs[1].latitude = -20.0;
    dataset.recs[0].depth = -4.0f;
    dataset.recs[1].depth = -2.0f;
    dataset.UpdateExtents();
    QCOMPARE(dataset.minLatitude, -20.0);
    QCOMPARE(dataset.maxLatitude, -10.0);
    QCOMPARE(dataset.maxSeabed, -2.2f);
}

QTEST_GUILESS_MAIN(tst_ZrDataset)
#include "tst_ZrDataset.moc"
