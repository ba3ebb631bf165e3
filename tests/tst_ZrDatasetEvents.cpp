// The events of ZrDataset: their order, the event file byte by byte and damaged, the event cursor.

#include "ZrDatasetFixture.h"

namespace {

constexpr CRecType navType(0, 16);

ZrLogEvt Event(double time, const char* text)
{
    return ZrLogEvt(time, esUser, QString::fromUtf8(text));
}

/// The bytes of an event file with this count before the events.
QByteArray EventFile(qint32 count, const QByteArray& events)
{
    QByteArray bytes;
    AppendBe<qint32>(bytes, count);
    return bytes + events;
}

/// One letter per event: an event file of which each event has 42 bytes and 2 per letter.
QByteArray Letters(const char* letters)
{
    QByteArray bytes;
    for (double time = 1.0; *letters; ++letters, ++time)
        bytes += EventBytes(time, 2, QString(QLatin1Char(*letters)));
    return bytes;
}

QStringList Texts(const char* letters)
{
    QStringList texts;
    for (; *letters; ++letters)
        texts << QString(QLatin1Char(*letters));
    return texts;
}

std::vector<int> EventRecs(const ZrDataset& dataset)
{
    std::vector<int> recs;
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;)
        recs.push_back(dataset.events.GetNext(pos)->rec);
    return recs;
}

} // namespace

class tst_ZrDatasetEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void addedEventsAreInOrderOfTime();
    void equalTimesPutTheLaterAddedFirst();
    void timesThatAreNoNumbersGoToTheEnd();
    void unsortedListTakesTheFirstPlace();
    void addedEventIsACopyWithItsRecord();
    void addingTellsTimeAndRecord();
    void addingRewritesTheFile();
    void addingWithoutALogWritesNothing();

    void goldenFile();
    void goldenFileIsRead();
    void emptyListWritesNothing();
    void fileThatCannotBeWritten();
    void fullDiskKeepsTheList();
    void fileThatCannotBeOpenedLeavesNoEvents();
    void readingKeepsTheOrderOfTheFile();
    void truncatedAtEveryOffset();
    void countsOtherThanTheEvents_data();
    void countsOtherThanTheEvents();
    void damagedTextEndsTheList_data();
    void damagedTextEndsTheList();

    void eventsOfALogAreFound();
    void recordsOfEventsFollowTheTable();
    void scanReplacesTheEventFile();
    void scanRewritesTheFileAtEachEvent();
    void scanWhoseEventsCannotBeWritten();
    void scanWithoutEventsLeavesTheEventFile();
    void damagedEventOfALogIsTakenAsFarAsItGoes();
    void manyEventsOfALog();

    void cursorStepsForwards();
    void cursorStepsBackwards();
    void cursorOfNoEvents();
    void cursorOfOneEvent();
    void cursorStaysWithItsEvent();
    void cursorIsDroppedWithTheList();

private:
    QString Log() const { return m_dir->filePath(QStringLiteral("a.log")); }

    QString EvtPath() const { return Log() + QStringLiteral(".evt"); }

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MessageCatcher> m_messages;
};

void tst_ZrDatasetEvents::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    m_messages.reset(new MessageCatcher);
}

void tst_ZrDatasetEvents::cleanup()
{
    m_messages.reset();
    m_dir.reset();
}

void tst_ZrDatasetEvents::addedEventsAreInOrderOfTime()
{
    ZrDataset dataset;
    for (const char* text : {"5", "1", "9", "3", "7"})
        dataset.AddEvent(Event(QByteArray(text).toDouble(), text));
    QCOMPARE(EventTexts(dataset), Texts("13579"));
}

void tst_ZrDatasetEvents::equalTimesPutTheLaterAddedFirst()
{
    ZrDataset dataset;
    dataset.AddEvent(Event(1.0, "a"));
    dataset.AddEvent(Event(1.0, "b"));
    dataset.AddEvent(Event(2.0, "c"));
    dataset.AddEvent(Event(1.0, "d"));
    dataset.AddEvent(Event(2.0, "e"));
    dataset.AddEvent(Event(0.0, "f"));
    dataset.AddEvent(Event(-0.0, "g"));
    QCOMPARE(EventTexts(dataset), Texts("gfdbaec"));
}

void tst_ZrDatasetEvents::timesThatAreNoNumbersGoToTheEnd()
{
    ZrDataset dataset;
    dataset.AddEvent(Event(qQNaN(), "n"));
    dataset.AddEvent(Event(2.0, "b"));
    dataset.AddEvent(Event(qInf(), "i"));
    dataset.AddEvent(Event(-qInf(), "m"));
    dataset.AddEvent(Event(1.0, "a"));
    QCOMPARE(EventTexts(dataset), Texts("nmabi")); // nothing is greater than or equal to what is no number
}

void tst_ZrDatasetEvents::unsortedListTakesTheFirstPlace()
{
    QVERIFY(WriteWhole(EvtPath(),
        EventFile(3,
            EventBytes(9.0, 2, QStringLiteral("9")) + EventBytes(3.0, 2, QStringLiteral("3"))
                + EventBytes(6.0, 2, QStringLiteral("6")))));
    ZrDataset dataset;
    QVERIFY(dataset.ReadEvents(Log()));
    dataset.AddEvent(Event(5.0, "5"));
    QCOMPARE(EventTexts(dataset), Texts("5936"));
}

void tst_ZrDatasetEvents::addedEventIsACopyWithItsRecord()
{
    ZrDataset dataset;
    SetTimes(dataset, {10.0, 20.0, 30.0, 40.0});
    ZrLogEvt evt = Event(21.0, "x");
    evt.code = -3;
    evt.detail = QStringLiteral("detail");
    evt.uid = QUuid::createUuid();
    evt.rec = 1234;
    dataset.AddEvent(evt);
    const ZrLogEvt* const added = dataset.events.GetHead();
    QVERIFY(added != &evt);
    QCOMPARE(added->rec, 1);
    QCOMPARE(added->code, i16(-3));
    QCOMPARE(added->time, 21.0);
    QCOMPARE(added->src, esUser);
    QCOMPARE(added->text, QStringLiteral("x"));
    QCOMPARE(added->detail, QStringLiteral("detail"));
    QCOMPARE(added->uid, evt.uid);
    QCOMPARE(evt.rec, 1234);
    // An event of the list itself may be added again.
    dataset.AddEvent(*added);
    QCOMPARE(EventTexts(dataset), Texts("xx"));
}

void tst_ZrDatasetEvents::addingTellsTimeAndRecord()
{
    ZrDataset dataset;
    SetTimes(dataset, {10.0, 20.0, 30.0});
    dataset.AddEvent(Event(19.5, "x"));
    dataset.AddEvent(Event(1602049684.592, "y"));
    QCOMPARE(m_messages->Take(),
        (QStringList{QStringLiteral("Added Event 19.5 1"), QStringLiteral("Added Event 1602049684.592 2")}));
}

void tst_ZrDatasetEvents::addingRewritesTheFile()
{
    ZrDataset dataset;
    dataset.fileName = Log();
    dataset.AddEvent(Event(2.0, "b"));
    QCOMPARE(ReadWhole(EvtPath()), EventFile(1, EventBytes(2.0, 2, QStringLiteral("b"))));
    dataset.AddEvent(Event(1.0, "a"));
    QCOMPARE(ReadWhole(EvtPath()), EventFile(2, Letters("ab")));
    QVERIFY(WriteWhole(EvtPath(), QByteArray(1000, 'x')));
    dataset.AddEvent(Event(3.0, "c"));
    QCOMPARE(ReadWhole(EvtPath()), EventFile(3, Letters("abc")));
}

void tst_ZrDatasetEvents::addingWithoutALogWritesNothing()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_dir->path()));
    ZrDataset dataset;
    dataset.AddEvent(Event(2.0, "b"));
    dataset.WriteEvents(QString());
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(!QFile::exists(m_dir->filePath(QStringLiteral(".evt"))));
    QCOMPARE(dataset.events.GetCount(), 1);
}

void tst_ZrDatasetEvents::goldenFile()
{
    ZrDataset dataset;
    ZrLogEvt evt = Event(1.5, "A\xc3\xa9");
    evt.code = 0x0102;
    evt.detail = QStringLiteral("");
    evt.uid = QUuid(QStringLiteral("{12345678-9abc-def0-0123-456789abcdef}"));
    evt.rec = 99;
    dataset.AddEvent(evt);
    dataset.AddEvent(ZrLogEvt(-2.0, eEvtSrc(-1), QString()));
    dataset.WriteEvents(Log());
    QCOMPARE(ReadWhole(EvtPath()).toHex(' '),
        FromHex("00 00 00 02                # count\n"
                "00 00                      # code\n"
                "c0 00 00 00 00 00 00 00    # time -2\n"
                "ff ff ff ff                # src\n"
                "ff ff ff ff                # text, null\n"
                "ff ff ff ff                # detail, null\n"
                "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 # uid, null\n"
                "01 02                      # code\n"
                "3f f8 00 00 00 00 00 00    # time 1.5\n"
                "00 00 00 02                # src\n"
                "00 00 00 04 00 41 00 e9    # text\n"
                "00 00 00 00                # detail, empty\n"
                "12 34 56 78 9a bc de f0 01 23 45 67 89 ab cd ef # uid\n")
            .toHex(' '));
}

void tst_ZrDatasetEvents::goldenFileIsRead()
{
    QVERIFY(WriteWhole(EvtPath(),
        FromHex("00 00 00 01                # count\n"
                "ff fe                      # code\n"
                "40 34 80 00 00 00 00 00    # time 20.5\n"
                "00 00 00 01                # src\n"
                "00 00 00 02 26 03          # text\n"
                "00 00 00 02 00 64          # detail\n"
                "12 34 56 78 9a bc de f0 01 23 45 67 89 ab cd ef # uid\n")));
    ZrDataset dataset;
    SetTimes(dataset, {10.0, 20.0, 30.0});
    QVERIFY(dataset.ReadEvents(Log()));
    QCOMPARE(dataset.events.GetCount(), 1);
    const ZrLogEvt& evt = *dataset.events.GetHead();
    QCOMPARE(evt.code, i16(-2));
    QCOMPARE(evt.time, 20.5);
    QCOMPARE(evt.src, esSystem);
    QCOMPARE(evt.text, QString(QChar(0x2603)));
    QCOMPARE(evt.detail, QStringLiteral("d"));
    QCOMPARE(evt.uid, QUuid(QStringLiteral("{12345678-9abc-def0-0123-456789abcdef}")));
    QCOMPARE(evt.rec, 1);
    QCOMPARE(m_messages->Take(), QStringList());
}

void tst_ZrDatasetEvents::emptyListWritesNothing()
{
    const ZrDataset dataset;
    dataset.WriteEvents(Log());
    QVERIFY(!QFile::exists(EvtPath()));
    QVERIFY(WriteWhole(EvtPath(), "as it was"));
    dataset.WriteEvents(Log());
    QCOMPARE(ReadWhole(EvtPath()), QByteArray("as it was"));
}

void tst_ZrDatasetEvents::fileThatCannotBeWritten()
{
    ZrDataset dataset;
    dataset.fileName = m_dir->filePath(QStringLiteral("missing/a.log"));
    dataset.AddEvent(Event(1.0, "a"));
    QVERIFY(QDir().mkdir(EvtPath()));
    dataset.WriteEvents(Log());
    QCOMPARE(dataset.events.GetCount(), 1);
    QVERIFY(QFileInfo(EvtPath()).isDir());
}

void tst_ZrDatasetEvents::fullDiskKeepsTheList()
{
#ifdef Q_OS_LINUX
    QVERIFY(QFile::link(QStringLiteral("/dev/full"), EvtPath()));
    ZrDataset dataset;
    dataset.fileName = Log();
    dataset.AddEvent(Event(2.0, "b"));
    dataset.AddEvent(Event(1.0, "a"));
    dataset.AddEvent(ZrLogEvt(3.0, esUser, QString(100000, QLatin1Char('c')))); // more than any buffer
    dataset.WriteEvents(Log());
    QCOMPARE(dataset.events.GetCount(), 3);
    QCOMPARE(EventTexts(dataset).mid(0, 2), Texts("ab"));
#endif
}

void tst_ZrDatasetEvents::fileThatCannotBeOpenedLeavesNoEvents()
{
    ZrDataset dataset;
    dataset.AddEvent(Event(1.0, "a"));
    QVERIFY(!dataset.ReadEvents(Log()));
    QVERIFY(dataset.events.IsEmpty());
    QVERIFY(QDir().mkdir(EvtPath()));
    dataset.AddEvent(Event(1.0, "a"));
    QVERIFY(!dataset.ReadEvents(Log()));
    QVERIFY(dataset.events.IsEmpty());
}

void tst_ZrDatasetEvents::readingKeepsTheOrderOfTheFile()
{
    QByteArray bytes;
    for (double time : {5.0, 1.0, 5.0, 3.0})
        bytes += EventBytes(time, 2, QString::number(time));
    QVERIFY(WriteWhole(EvtPath(), EventFile(4, bytes)));
    ZrDataset dataset;
    dataset.AddEvent(Event(7.0, "old"));
    QVERIFY(dataset.ReadEvents(Log()));
    QCOMPARE(EventTexts(dataset), Texts("5153"));
}

void tst_ZrDatasetEvents::truncatedAtEveryOffset()
{
    const QByteArray whole = EventFile(3, Letters("abc"));
    QCOMPARE(whole.size(), 4 + 3 * 40);
    ZrDataset dataset;
    for (int cut = 0; cut <= whole.size(); ++cut) {
        QVERIFY(WriteWhole(EvtPath(), whole.left(cut)));
        QVERIFY(dataset.ReadEvents(Log()));
        const int complete = cut < 4 ? 0 : (cut - 4) / 40;
        QCOMPARE(EventTexts(dataset), Texts("abc").mid(0, complete));
    }
}

void tst_ZrDatasetEvents::countsOtherThanTheEvents_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("read");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("fewer") << 1 << 1;
    QTest::newRow("as many") << 2 << 2;
    QTest::newRow("one more") << 3 << 2;
    QTest::newRow("greatest") << std::numeric_limits<int>::max() << 2;
    QTest::newRow("negative") << -1 << 0;
    QTest::newRow("least") << std::numeric_limits<int>::min() << 0;
}

void tst_ZrDatasetEvents::countsOtherThanTheEvents()
{
    QFETCH(int, count);
    QFETCH(int, read);
    QVERIFY(WriteWhole(EvtPath(), EventFile(count, Letters("ab"))));
    ZrDataset dataset;
    QVERIFY(dataset.ReadEvents(Log()));
    QCOMPARE(EventTexts(dataset), Texts("ab").mid(0, read));
}

void tst_ZrDatasetEvents::damagedTextEndsTheList_data()
{
    QTest::addColumn<QByteArray>("length");
    for (const char* length : {"00000001", "00000003", "fffffffd", "fffffffe", "80000000", "00001000"})
        QTest::newRow(length) << QByteArray::fromHex(length);
}

void tst_ZrDatasetEvents::damagedTextEndsTheList()
{
    QFETCH(QByteArray, length);
    const QByteArray whole = EventFile(3, Letters("abc"));
    QVERIFY(WriteWhole(EvtPath(), Patched(whole, 4 + 40 + 14, length)));
    ZrDataset dataset;
    QVERIFY(dataset.ReadEvents(Log()));
    QCOMPARE(EventTexts(dataset), Texts("a"));
}

void tst_ZrDatasetEvents::eventsOfALogAreFound()
{
    LogBytes log;
    log.Add(TimedItem(16, 10.0))
        .Add(TimedItem(3, 10.0, EventBytes(12.0, 1, QStringLiteral("b"))))
        .Add(TimedItem(16, 20.0))
        .Add(TimedItem(3, 20.0, EventBytes(11.0, 2, QStringLiteral("a"), 7)))
        .Add(TimedItem(3, 20.0, EventBytes(12.0, 2, QStringLiteral("c"))));
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    ZrDataset dataset(navType, {});
    dataset.ReadFile(Log());
    QCOMPARE(EventTexts(dataset), Texts("acb"));
    QCOMPARE(dataset.events.GetHead()->code, i16(7));
    QCOMPARE(ReadWhole(EvtPath()),
        EventFile(3,
            EventBytes(11.0, 2, QStringLiteral("a"), 7) + EventBytes(12.0, 2, QStringLiteral("c"))
                + EventBytes(12.0, 1, QStringLiteral("b"))));
}

void tst_ZrDatasetEvents::recordsOfEventsFollowTheTable()
{
    // While scanning, an event finds its record among those before it; from the files among all.
    LogBytes log;
    log.Add(TimedItem(3, 0.0, EventBytes(30.0, 1, QStringLiteral("before all")))).Add(TimedItem(16, 10.0));
    log.Add(TimedItem(16, 20.0)).Add(TimedItem(3, 0.0, EventBytes(31.0, 1, QStringLiteral("among them"))));
    log.Add(TimedItem(16, 30.0)).Add(TimedItem(16, 40.0));
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    ZrDataset dataset(navType, {});
    dataset.ReadFile(Log());
    QCOMPARE(EventTexts(dataset), (QStringList{QStringLiteral("before all"), QStringLiteral("among them")}));
    QVERIFY(EventRecs(dataset) == std::vector<int>({0, 1}));
    dataset.ReadFile(Log());
    QVERIFY(EventRecs(dataset) == std::vector<int>({2, 2}));
}

void tst_ZrDatasetEvents::scanReplacesTheEventFile()
{
    LogBytes log;
    log.Add(TimedItem(16, 10.0)).Add(TimedItem(3, 0.0, EventBytes(5.0, 1, QStringLiteral("l"))));
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    ZrDataset dataset(navType, {});
    dataset.ReadFile(Log());
    dataset.AddEvent(Event(6.0, "u"));
    dataset.ReadFile(Log());
    QCOMPARE(EventTexts(dataset), Texts("lu"));
    QVERIFY(QFile::remove(Log() + QStringLiteral(".zri")));
    dataset.ReadFile(Log());
    QCOMPARE(EventTexts(dataset), Texts("l"));
    QCOMPARE(ReadWhole(EvtPath()), EventFile(1, EventBytes(5.0, 1, QStringLiteral("l"))));
}

void tst_ZrDatasetEvents::scanRewritesTheFileAtEachEvent()
{
    // Looks at the event file from within the scan, at every record.
    class Looking : public ZrDataset
    {
    public:
        using ZrDataset::ZrDataset;

        void FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8> payload) override
        {
            ZrDataset::FillRec(rec, inf, payload);
            seen << ReadWhole(path);
        }

        QString path;
        QList<QByteArray> seen;
    };

    const QByteArray old = EventFile(1, Letters("o"));
    const QByteArray a = EventBytes(1.0, 1, QStringLiteral("a"));
    const QByteArray b = EventBytes(0.5, 1, QStringLiteral("b"));
    LogBytes log;
    log.Add(TimedItem(16, 1.0)).Add(TimedItem(3, 0.0, a)).Add(TimedItem(16, 2.0));
    log.Add(TimedItem(3, 0.0, b)).Add(TimedItem(16, 3.0));
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    QVERIFY(WriteWhole(EvtPath(), old));
    Looking dataset(navType, {});
    dataset.path = EvtPath();
    dataset.ReadFile(Log());
    QCOMPARE(dataset.seen, (QList<QByteArray>{old, EventFile(1, a), EventFile(2, b + a)}));
    QCOMPARE(ReadWhole(EvtPath()), EventFile(2, b + a));
}

void tst_ZrDatasetEvents::scanWhoseEventsCannotBeWritten()
{
    LogBytes log;
    log.Add(TimedItem(3, 0.0, Letters("a"))).Add(TimedItem(16, 2.0));
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    QVERIFY(QDir().mkdir(EvtPath()));
    ZrDataset dataset(navType, {});
    DatasetSignals heard(dataset);
    dataset.ReadFile(Log());
    QCOMPARE(EventTexts(dataset), Texts("a"));
    QVERIFY(heard.lines.contains(QStringLiteral("NewDataset, 1 records, current 0")));
    dataset.ReadFile(Log()); // from the index: beside it are no events
    QVERIFY(dataset.events.IsEmpty());
    QCOMPARE(dataset.recs.size(), std::size_t(1));
}

void tst_ZrDatasetEvents::scanWithoutEventsLeavesTheEventFile()
{
    QVERIFY(WriteWhole(Log(), LogBytes().Add(TimedItem(16, 10.0)).Bytes()));
    QVERIFY(WriteWhole(EvtPath(), EventFile(2, Letters("ab"))));
    ZrDataset dataset(navType, {});
    dataset.ReadFile(Log());
    QVERIFY(dataset.events.IsEmpty());
    dataset.ReadFile(Log()); // from the index, with the events beside it
    QCOMPARE(EventTexts(dataset), Texts("ab"));
}

void tst_ZrDatasetEvents::damagedEventOfALogIsTakenAsFarAsItGoes()
{
    LogBytes log;
    log.Add(TimedItem(3, 0.0, QByteArray()))
        .Add(TimedItem(3, 0.0, EventBytes(5.0, 1, QStringLiteral("cut")).left(17)))
        .Add(TimedItem(3, 0.0, EventBytes(6.0, 1, QStringLiteral("whole")) + "and more"));
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    ZrDataset dataset(navType, {});
    dataset.ReadFile(Log());
    QCOMPARE(EventTexts(dataset), (QStringList{QString(), QString(), QStringLiteral("whole")}));
    QCOMPARE(dataset.events.GetHead()->time, 0.0);
    QCOMPARE(dataset.events.GetAt(dataset.events.FindIndex(1))->time, 5.0);
}

void tst_ZrDatasetEvents::manyEventsOfALog()
{
    LogBytes log;
    QByteArray expected;
    for (int i = 0; i < 400; ++i) {
        const QByteArray bytes = EventBytes(i, 1, QString::number(i));
        log.Add(TimedItem(3, i, bytes));
        expected += bytes;
    }
    QVERIFY(WriteWhole(Log(), log.Bytes()));
    ZrDataset dataset(navType, {});
    dataset.ReadFile(Log());
    QCOMPARE(dataset.events.GetCount(), 400);
    QCOMPARE(ReadWhole(EvtPath()), EventFile(400, expected));
}

void tst_ZrDatasetEvents::cursorStepsForwards()
{
    ZrDataset dataset;
    for (const char* text : {"1", "2", "3"})
        dataset.AddEvent(Event(QByteArray(text).toDouble(), text));
    const auto current = [&] { return dataset.events.GetAt(dataset.curEvt)->text; };
    QVERIFY(!dataset.curEvt);
    dataset.GoNextEvt(); // put on the first, and on to its successor
    QCOMPARE(current(), QStringLiteral("2"));
    QVERIFY(dataset.HasNextEvt() && dataset.HasPrevEvt());
    dataset.GoNextEvt();
    QCOMPARE(current(), QStringLiteral("3"));
    QVERIFY(!dataset.HasNextEvt() && dataset.HasPrevEvt());
    dataset.GoNextEvt();
    QCOMPARE(current(), QStringLiteral("3"));
    dataset.GoPrevEvt();
    QCOMPARE(current(), QStringLiteral("2"));

    dataset.curEvt = nullptr;
    QVERIFY(dataset.HasNextEvt()); // put on the first
    QCOMPARE(current(), QStringLiteral("1"));
    QVERIFY(!dataset.HasPrevEvt());
    dataset.GoPrevEvt();
    QCOMPARE(current(), QStringLiteral("1"));
}

void tst_ZrDatasetEvents::cursorStepsBackwards()
{
    ZrDataset dataset;
    for (const char* text : {"1", "2", "3"})
        dataset.AddEvent(Event(QByteArray(text).toDouble(), text));
    const auto current = [&] { return dataset.events.GetAt(dataset.curEvt)->text; };
    dataset.GoPrevEvt(); // put on the last, and back to its predecessor
    QCOMPARE(current(), QStringLiteral("2"));
    dataset.GoPrevEvt();
    QCOMPARE(current(), QStringLiteral("1"));
    QVERIFY(!dataset.HasPrevEvt() && dataset.HasNextEvt());

    dataset.curEvt = nullptr;
    QVERIFY(dataset.HasPrevEvt()); // put on the last
    QCOMPARE(current(), QStringLiteral("3"));
    QVERIFY(!dataset.HasNextEvt());
}

void tst_ZrDatasetEvents::cursorOfNoEvents()
{
    ZrDataset dataset;
    QVERIFY(!dataset.HasNextEvt() && !dataset.HasPrevEvt());
    dataset.GoNextEvt();
    dataset.GoPrevEvt();
    QVERIFY(!dataset.curEvt);
}

void tst_ZrDatasetEvents::cursorOfOneEvent()
{
    ZrDataset dataset;
    dataset.AddEvent(Event(1.0, "a"));
    QVERIFY(!dataset.HasNextEvt());
    QCOMPARE(dataset.curEvt, dataset.events.GetHeadPos());
    QVERIFY(!dataset.HasPrevEvt());
    dataset.GoNextEvt();
    dataset.GoPrevEvt();
    QCOMPARE(dataset.curEvt, dataset.events.GetHeadPos());
    dataset.curEvt = nullptr;
    dataset.GoPrevEvt();
    QCOMPARE(dataset.curEvt, dataset.events.GetHeadPos());
}

void tst_ZrDatasetEvents::cursorStaysWithItsEvent()
{
    ZrDataset dataset;
    dataset.AddEvent(Event(2.0, "b"));
    QVERIFY(!dataset.HasNextEvt());
    dataset.AddEvent(Event(1.0, "a"));
    dataset.AddEvent(Event(3.0, "c"));
    QCOMPARE(dataset.events.GetAt(dataset.curEvt)->text, QStringLiteral("b"));
    QVERIFY(dataset.HasNextEvt() && dataset.HasPrevEvt());
}

void tst_ZrDatasetEvents::cursorIsDroppedWithTheList()
{
    QVERIFY(WriteWhole(Log(), LogBytes().Add(TimedItem(16, 10.0)).Bytes()));
    ZrDataset dataset(navType, {});
    const auto setCursor = [&] {
        dataset.fileName.clear();
        dataset.AddEvent(Event(1.0, "a"));
        dataset.AddEvent(Event(2.0, "b"));
        dataset.GoNextEvt();
        return dataset.curEvt != nullptr;
    };
    QVERIFY(setCursor());
    dataset.ClearData();
    QVERIFY(!dataset.curEvt);
    QVERIFY(setCursor());
    QVERIFY(!dataset.ReadEvents(Log()));
    QVERIFY(!dataset.curEvt);
    QVERIFY(!dataset.HasNextEvt() && !dataset.HasPrevEvt());
    QVERIFY(setCursor());
    dataset.ReadFile(Log());
    QVERIFY(!dataset.curEvt);
    dataset.GoNextEvt();
    dataset.GoPrevEvt();
    QVERIFY(!dataset.curEvt);
}

QTEST_GUILESS_MAIN(tst_ZrDatasetEvents)
#include "tst_ZrDatasetEvents.moc"
