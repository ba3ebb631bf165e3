// The events of a part of a recording: which are of it, and that its readers show no others.

#include "LoadedLog.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrEventTable.h"

#include <cmath>
#include <limits>

namespace {

using export_range::Body;
using survey::Event;
using survey::EventFile;
using survey::EventItem;
using survey::EventTexts;
using survey::NavItem;
using survey::S;
using survey::startTime;
using survey::TimedItem;
using survey::Uid;

Item Compressed(const Event& event)
{
    const QByteArray bytes = event.Bytes();
    Item item = TimedItem(rtEvent, 0, event.time, qCompress(bytes));
    item.compressed = true;
    item.dataSize = static_cast<quint32>(bytes.size());
    return item;
}

ZrLogEvt Evt(double time, const QString& text, const QUuid& uid)
{
    ZrLogEvt evt(time, esUser, text);
    evt.uid = uid;
    return evt;
}

} // namespace

class tst_ZrExportRangeEvents : public QObject, private export_range::LoadedLog
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        Begin();
        m_out = m_folder->filePath(S("part \u00e9.log"));
    }

    void cleanup() { End(); }

    void removedEventsStayAway();
    void eventsOfItsItemsDoNotComeBack_data();
    void eventsOfItsItemsDoNotComeBack();
    void eventsOfItsState();
    void allEventsOfTheDataset();
    void endsInTheLog();

private:
    /// The dataset's events; all of them are of the part.
    void SetEvents(const std::vector<ZrLogEvt>& events)
    {
        ZrEventFile list;
        list.events = events;
        list.Fill(m_dataset);
    }

    /// What readers of the part show, at the first opening and when its index is lost.
    QStringList Shown() const
    {
        QStringList texts;
        for (int opened = 0; opened < 2; ++opened) {
            ZrSurveyDataset dataset;
            ZrDatasetReader reader;
            if (reader.Read(m_out, dataset) != ZrDatasetReader::Built)
                return {S("not read")};
            QStringList now;
            for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;)
                now << dataset.events.GetNext(pos)->text;
            if (opened > 0 && now != texts)
                return {S("another time "), now.join(QLatin1Char(','))};
            texts = now;
            QFile::remove(m_out + S(".zri"));
            QFile::remove(m_out + S(".zri.json"));
        }
        return texts;
    }
};

/// Their items are in the part, but they do not come back with it.
void tst_ZrExportRangeEvents::removedEventsStayAway()
{
    LogBytes log;
    for (int i = 0; i < 10; ++i)
        log.Add(NavItem(i)).Add(EventItem({startTime + i, S("event %1").arg(i), Uid(i + 1)}));
    QVERIFY(WriteWhole(m_log, log.Bytes()));
    {
        ZrSurveyDataset dataset;
        ZrDatasetReader reader;
        QCOMPARE(reader.Read(m_log, dataset), ZrDatasetReader::Built);
    }
    QCOMPARE(EventTexts(m_log).size(), 10);
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({{startTime + 4, S("event 4"), Uid(5)}})));
    QVERIFY(QFile::remove(m_log + S(".zri")));
    Load(log.Bytes());
    for (const int first : {3, 6}) { // with events and without any
        const QStringList texts = first == 3 ? QStringList{S("event 4")} : QStringList();
        ZrExportRange part(m_dataset, static_cast<std::size_t>(first), static_cast<std::size_t>(first + 3));
        QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
        QCOMPARE(EventTexts(m_out), texts);
        for (int opened = 0; opened < 2; ++opened) {
            ZrSurveyDataset dataset;
            ZrDatasetReader reader;
            QCOMPARE(reader.Read(m_out, dataset), ZrDatasetReader::Built);
            QCOMPARE(dataset.recs.size(), std::size_t(3));
            QCOMPARE(EventTexts(m_out), texts);
            QVERIFY(QFile::remove(m_out + S(".zri")));
        }
        for (const char* suffix : {".evt", ".evt.json"})
            QVERIFY(QFile::remove(m_out + S(suffix)));
    }
}

void tst_ZrExportRangeEvents::eventsOfItsItemsDoNotComeBack_data()
{
    QTest::addColumn<bool>("isCompressed");
    QTest::addColumn<bool>("hasUid");
    QTest::newRow("plain") << false << true;
    QTest::newRow("compressed") << true << true;
    QTest::newRow("without uid") << false << false;
}

/// Nothing tells that the recording's event file took them over: they were removed unsaved, say.
void tst_ZrExportRangeEvents::eventsOfItsItemsDoNotComeBack()
{
    QFETCH(bool, isCompressed);
    QFETCH(bool, hasUid);
    LogBytes log;
    std::vector<ZrLogEvt> list;
    for (int i = 0; i < 10; ++i) {
        const QUuid uid = hasUid ? Uid(i + 1) : QUuid();
        const Event event{startTime + i, S("event %1").arg(i), uid};
        log.Add(NavItem(i)).Add(isCompressed ? Compressed(event) : EventItem(event));
        list.push_back(Evt(event.time, event.text, uid));
    }
    Load(log.Bytes());
    QCOMPARE(m_dataset.events.GetCount(), 10);
    ZrExportRange part(m_dataset, 3, 6);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(Shown(), (QStringList{S("event 3"), S("event 4"), S("event 5")}));
    list[3].text = S("edited");
    list[4].time = startTime + 8.5; // out of the part
    list.erase(list.begin() + 5);
    SetEvents(list);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(Shown(), QStringList{S("edited")});
    // Again over it, with none.
    SetEvents({});
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(Shown(), QStringList());
}

/// Of the latest items in front of the part one may be an event.
void tst_ZrExportRangeEvents::eventsOfItsState()
{
    m_dataset.crdTypes[0] = CRecType(rtEvent);
    LogBytes log;
    log.Add(NavItem(0)).Add(EventItem({startTime, S("in front"), Uid(1)})).Add(NavItem(1)).Add(NavItem(2));
    Load(log.Bytes());
    ZrExportRange part(m_dataset, 2, 3);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QVERIFY(Body(m_out).contains(Event{startTime, S("in front"), Uid(1)}.Bytes()));
    QCOMPARE(Shown(), QStringList());
}

void tst_ZrExportRangeEvents::allEventsOfTheDataset()
{
    LogBytes log;
    for (int i = 0; i < 10; ++i)
        log.Add(NavItem(i));
    Load(log.Bytes());
    const ZrLogEvt behind = Evt(startTime + 100, S("far behind"), Uid(1));
    const ZrLogEvt timeless = Evt(std::nan(""), S("timeless"), Uid(2));
    SetEvents({behind, timeless});
    const QString table = m_folder->filePath(S("events.csv"));
    ZrExportRange part(m_dataset, 3, 6);
    QCOMPARE(part.WriteEvents(table), ZrExportRange::Done);
    QCOMPARE(ReadWhole(table), ZrEventTable::Heading());
    part.takesAllEvents = true;
    const QByteArray all
        = ZrEventTable::Heading() + ZrEventTable::Line(behind) + ZrEventTable::Line(timeless);
    QCOMPARE(part.WriteEvents(table), ZrExportRange::Done);
    QCOMPARE(ReadWhole(table), all);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(EventTexts(m_out), (QStringList{S("far behind"), S("timeless")}));
    const QString track = m_folder->filePath(S("track.csv"));
    QCOMPARE(part.WriteTrack(track), ZrExportRange::Done);
    QVERIFY(ReadWhole(track).contains("far behind") && ReadWhole(track).contains("timeless"));
    QVERIFY(ReadWhole(track).contains("44.009")); // where the last record is
    // A table of them needs no record.
    ZrExportRange none(m_dataset, 6, 6);
    QCOMPARE(none.WriteEvents(table), ZrExportRange::Failed);
    QCOMPARE(none.Error(), S("There is nothing to export"));
    none.takesAllEvents = true;
    QVERIFY(QFile::remove(table));
    QCOMPARE(none.WriteEvents(table), ZrExportRange::Done);
    QCOMPARE(ReadWhole(table), all);
    SetEvents({});
    QCOMPARE(none.WriteEvents(table), ZrExportRange::Done);
    QCOMPARE(ReadWhole(table), ZrEventTable::Heading());
    for (const int kind : {0, 1, 2}) {
        QCOMPARE(Write(none, kind, m_out), ZrExportRange::Failed);
        QCOMPARE(none.Error(), S("There is nothing to export"));
    }
}

/// Where sonar goes on outside of the records.
void tst_ZrExportRangeEvents::endsInTheLog()
{
    const auto other = [](char byte) { return TimedItem(99, 0, startTime, QByteArray(8, byte)); };
    LogBytes log;
    log.Add(other('a')).Add(other('b')).Add(NavItem(0)).Add(other('c')).Add(NavItem(1)); // 0 ... 4
    log.Add(other('d')).Add(other('e')); // 5, 6
    Load(log.Bytes());
    const auto body = [&](std::size_t first, std::size_t end, u64 beginPos, u64 endPos) {
        ZrExportRange part(m_dataset, first, end);
        part.beginPos = beginPos;
        part.endPos = endPos;
        return part.WriteLog(m_out) == ZrExportRange::Done ? Body(m_out) : QByteArray("not written");
    };
    constexpr u64 all = std::numeric_limits<u64>::max();
    const QByteArray records = NavItem(0).Bytes() + other('c').Bytes() + NavItem(1).Bytes();
    QCOMPARE(body(0, 2, log.Start(1), log.Start(6)), other('b').Bytes() + records + other('d').Bytes());
    QCOMPARE(body(0, 2, log.Start(5), log.Start(5)), records); // begins with the record at the latest
    QCOMPARE(body(0, 2, all, log.Start(3)), records + other('d').Bytes() + other('e').Bytes());
    QCOMPARE(body(0, 2, 0, all), log.Bytes().mid(48));
    QCOMPARE(body(0, 1, 0, log.Start(3)), other('a').Bytes() + other('b').Bytes() + NavItem(0).Bytes());
    QCOMPARE(body(1, 2, log.Start(0), log.Start(6)), NavItem(1).Bytes() + other('d').Bytes());
}

QTEST_GUILESS_MAIN(tst_ZrExportRangeEvents)
#include "tst_ZrExportRangeEvents.moc"
