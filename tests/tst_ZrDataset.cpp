// ZrDataset: its operations, scanning a log, what the records remember, the signals.

#include "ZrDatasetFixture.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QMetaMethod>

#include <thread>
#include <type_traits>

// The operations as applications take their addresses and override them.
static_assert(std::is_same_v<decltype(&ZrDataset::UpdCrdPos),
    void (ZrDataset::*)(std::array<u64, 8>&, const ZrLogItemInf&, u64)>);
static_assert(std::is_same_v<decltype(&ZrDataset::FillRec),
    void (ZrDataset::*)(ZrLogRec&, const ZrLogItemInf&, zr::span<u8>)>);
static_assert(std::is_same_v<decltype(&ZrDataset::Preroll), void (ZrDataset::*)(ZrPlayer&)>);
static_assert(std::is_same_v<decltype(&ZrDataset::SeekTo), void (ZrDataset::*)(ZrPlayer&, const ZrLogRec&)>);
static_assert(std::is_same_v<decltype(&ZrDataset::ReadFile), void (ZrDataset::*)(QString)>);
static_assert(std::is_same_v<decltype(&ZrDataset::ReadIndex), bool (ZrDataset::*)(const QString&)>);
static_assert(std::is_same_v<decltype(&ZrDataset::WriteIndex), void (ZrDataset::*)(const QString&) const>);
static_assert(std::is_same_v<decltype(&ZrDataset::ReadEvents), bool (ZrDataset::*)(const QString&)>);
static_assert(std::is_same_v<decltype(&ZrDataset::WriteEvents), void (ZrDataset::*)(const QString&) const>);
static_assert(std::is_same_v<decltype(&ZrDataset::AddEvent), void (ZrDataset::*)(const ZrLogEvt&)>);
static_assert(std::is_same_v<decltype(&ZrDataset::ClearData), void (ZrDataset::*)()>);
static_assert(std::is_same_v<decltype(&ZrDataset::IdxType), CRecType (ZrDataset::*)() const>);
static_assert(std::is_same_v<decltype(&ZrDataset::CrdTypes), std::array<CRecType, 8> (ZrDataset::*)() const>);
static_assert(std::is_same_v<decltype(&ZrDataset::GetRec), const ZrLogRec* (ZrDataset::*)() const>);
static_assert(std::is_same_v<decltype(&ZrDataset::GetRecFp), u64 (ZrDataset::*)(int)>);
static_assert(std::is_same_v<decltype(&ZrDataset::GetNextFp), u64 (ZrDataset::*)()>);
static_assert(std::is_same_v<decltype(&ZrDataset::SeekToTime), bool (ZrDataset::*)(double)>);
static_assert(std::is_same_v<decltype(&ZrDataset::PosFromTime), int (ZrDataset::*)(double)>);
static_assert(std::is_same_v<decltype(&ZrDataset::GoNextEvt), void (ZrDataset::*)()>);
static_assert(std::is_same_v<decltype(&ZrDataset::GoPrevEvt), void (ZrDataset::*)()>);
static_assert(std::is_same_v<decltype(&ZrDataset::HasNextEvt), bool (ZrDataset::*)()>);
static_assert(std::is_same_v<decltype(&ZrDataset::HasPrevEvt), bool (ZrDataset::*)()>);
static_assert(std::is_same_v<decltype(&ZrDataset::UpdateExtents), void (ZrDataset::*)()>);
static_assert(std::is_same_v<decltype(static_cast<bool (ZrDataset::*)(QString, int, int, IZrProgress*)>(
                                 &ZrDataset::ExportTrack)),
    bool (ZrDataset::*)(QString, int, int, IZrProgress*)>);
static_assert(
    std::is_same_v<decltype(static_cast<bool (ZrDataset::*)(QString, IZrProgress*)>(&ZrDataset::ExportTrack)),
        bool (ZrDataset::*)(QString, IZrProgress*)>);
static_assert(std::is_constructible_v<ZrDataset, CRecType, std::array<CRecType, 8>>);

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
    void playableRangeIsSetLast();
    void formerDatasetIsThereAtZeroPercent();
    void indexIsWrittenAfterNewDataset();
    void signalsComeOnTheReadingThread();
    void emptyIndexTypeMatchesEmptyItems();
    void itemOfTheIndexTypeIsARecordWhateverItIs();
    void missionPlanIsRestored();
    void lastMissionPlanWins();
    void missionPlanOfAnyBytes_data();
    void missionPlanOfAnyBytes();
    void missionPlanThatCannotBeWritten();
    void onlySubTypeZeroIsPlanOrEvent();
    void damagedLogGivesTheRecordsBefore();
    void logThatCannotBeOpened_data();
    void logThatCannotBeOpened();
    void folderIsNoLog();
    void readingAnotherLogForgetsTheFirst();
    void unicodePath();
    void grownLogKeepsPercentagesInRange();

    void currentRecordIsChecked();
    void clearDataEmpties();

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

void tst_ZrDataset::playableRangeIsSetLast()
{
    // Whoever hears a signal of the reading finds no range yet, scanned or from the index.
    LogBytes log;
    for (int i = 0; i < 4; ++i)
        log.Add(TimedItem(16, i));
    NavDataset dataset(navType, crdTypes);
    int heard = 0;
    bool range = false;
    const auto look = [&] {
        ++heard;
        range = range || dataset.firstRec != -1 || dataset.lastRec != -1;
    };
    connect(&dataset, &ZrDataset::PercentLoad, this, [&](int percent) {
        if (percent > 0) // at 0 the former dataset is still there
            look();
    });
    connect(&dataset, &ZrDataset::NewDataset, this, look);
    ReadLog(dataset, log);
    QCOMPARE(heard, 6); // four items, the dataset, the end
    dataset.ReadFile(Path("a.log"));
    QCOMPARE(heard, 8);
    QVERIFY(!range);
    QCOMPARE(dataset.firstRec, 0);
    QCOMPARE(dataset.lastRec, 3);
}

void tst_ZrDataset::formerDatasetIsThereAtZeroPercent()
{
    LogBytes log;
    for (int i = 0; i < 3; ++i)
        log.Add(TimedItem(16, i));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log, "a.log");
    QStringList heard;
    connect(&dataset, &ZrDataset::PercentLoad, this, [&](int percent) {
        heard << QStringLiteral("%1: %2, %3").arg(percent).arg(dataset.fileName).arg(dataset.recs.size());
    });
    dataset.ReadFile(Path("missing.log"));
    QCOMPARE(heard,
        (QStringList{QStringLiteral("0: %1, 3").arg(Path("a.log")),
            QStringLiteral("100: %1, 0").arg(Path("missing.log"))}));
}

void tst_ZrDataset::indexIsWrittenAfterNewDataset()
{
    LogBytes log;
    log.Add(TimedItem(16, 1.0)).Add(TimedItem(16, 2.0));
    NavDataset dataset(navType, crdTypes);
    QVector<bool> written;
    connect(&dataset, &ZrDataset::NewDataset, this, [&] {
        written << QFile::exists(Path("a.log.zri"));
        dataset.recs.pop_back(); // what is written is the table as its first users leave it
    });
    ReadLog(dataset, log);
    QCOMPARE(written, QVector<bool>{false});
    QCOMPARE(QFileInfo(Path("a.log.zri")).size(), qint64(46 + 160));
    dataset.ReadFile(Path("a.log"));
    QCOMPARE(written, (QVector<bool>{false, true}));
    QCOMPARE(QFileInfo(Path("a.log.zri")).size(), qint64(46 + 160)); // an index that was taken stays
}

void tst_ZrDataset::signalsComeOnTheReadingThread()
{
    LogBytes log;
    log.Add(TimedItem(16, 1.0)).Add(TimedItem(16, 2.0));
    QVERIFY(WriteWhole(Path("a.log"), log.Bytes()));
    int heard = 0;
    int elsewhere = 0;
    std::size_t records = 0;
    std::thread reader([&] {
        NavDataset dataset(navType, crdTypes);
        const auto look = [&, own = std::this_thread::get_id()] {
            ++heard;
            elsewhere += std::this_thread::get_id() != own;
        };
        connect(&dataset, &ZrDataset::PercentLoad, &dataset, look);
        connect(&dataset, &ZrDataset::NewDataset, &dataset, look);
        dataset.ReadFile(Path("a.log"));
        records = dataset.recs.size();
    });
    reader.join();
    QCOMPARE(heard, 5);
    QCOMPARE(elsewhere, 0);
    QCOMPARE(records, std::size_t(2));
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

void tst_ZrDataset::missionPlanOfAnyBytes_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no lines") << QByteArray("no plan at all");
    QTest::newRow("object without a set") << QByteArray("<OBJ>=Wpt 0=ZrWpt\nName=Start\n");
    QTest::newRow("zeros") << QByteArray(300, '\0');
    QTest::newRow("greatest bytes") << QByteArray(300, '\xff');
    QTest::newRow("cut off") << QByteArray("<SET>=Mission\n<OBJ>=Wpt");
    QTest::newRow("one long line") << QByteArray(2000000, 'x');
}

void tst_ZrDataset::missionPlanOfAnyBytes()
{
    QFETCH(QByteArray, payload);
    LogBytes log;
    log.Add(TimedItem(16, 1.0)).Add(TimedItem(70, 2.0, payload)).Add(TimedItem(16, 3.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    QVERIFY(m_messages->Take().contains(QStringLiteral("Recovering mission plan")));
    QCOMPARE(dataset.recs.size(), std::size_t(2)); // the scan goes on behind it
    QVERIFY(QFile::exists(Path("a.log.xml")));
    ZrXmlStore store(false);
    QVERIFY(store.Load(Path("a.log.xml"))); // whatever it held, the file is one of a store
}

void tst_ZrDataset::missionPlanThatCannotBeWritten()
{
    QVERIFY(QDir().mkdir(Path("a.log.xml")));
    LogBytes log;
    log.Add(TimedItem(70, 1.0, "<SET>=s\n")).Add(TimedItem(16, 2.0));
    NavDataset dataset(navType, crdTypes);
    ReadLog(dataset, log);
    QCOMPARE(dataset.recs.size(), std::size_t(1));
    QVERIFY(QFileInfo(Path("a.log.xml")).isDir());
    QVERIFY(QFile::exists(Path("a.log.zri")));
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

void tst_ZrDataset::folderIsNoLog()
{
    QVERIFY(QDir().mkdir(Path("folder.log")));
    NavDataset dataset(navType, crdTypes);
    dataset.ReadFile(Path("folder.log"));
    QCOMPARE(m_messages->Take().last(), Line("Unable to open log file: ", Path("folder.log")));
    QVERIFY(dataset.recs.empty());
    QCOMPARE(dataset.curRec, -1);
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

QTEST_GUILESS_MAIN(tst_ZrDataset)
#include "tst_ZrDataset.moc"
