// Exports of recordings of all sorts of logs: damaged, grown, gone, without a place for an index; and of long
// ones, what is read and held.

#include "LongLog.h"
#include "PeakNew.h"
#include "SurveyExportLine.h"

#include <map>

using sonar_test::Log;
using sonar_test::SonarLine;
using survey_export::Percents;
using survey_export::S;
using survey_export::startTime;

class tst_ZrSurveyExportLogs : public QObject, private survey_export::LineFolder
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase() { MakeOriginal(); }

    void init() { Begin(); }

    void damagedLog();
    void logThatHasGrown();
    void removedEventsOfAGrowingLog();
    void eventsThatCannotBeKept();
    void logThatIsGone();
    void recordsThatAreNoRows();
    void folderThatCannotBeWritten();
    void readsThePartAlone_data();
    void readsThePartAlone();
    void holdsPiecesAlone_data();
    void holdsPiecesAlone();
    void mosaicHoldsThePartAlone();

private:
    /// So many records a second apart, each tenth with an event behind it.
    static bool WriteEvents(const QString& log, int count);

    static QStringList TextsOf(const ZrEventList& events)
    {
        QStringList texts;
        for (std::size_t i = 0; i < events.Count(); ++i)
            texts << events.At(i).text;
        return texts;
    }

    /// A log of so many lines, with three events, opened once.
    std::shared_ptr<ZrSurveyRecording> Long(qint64 lines);

    std::map<qint64, std::shared_ptr<ZrSurveyRecording>> m_long;
};

bool tst_ZrSurveyExportLogs::WriteEvents(const QString& log, int count)
{
    Log growing(log);
    for (int i = 0; i < count; ++i) {
        growing.AddNav(startTime + i, SonarLine().NavOf(i));
        ZrLogEvt evt(startTime + i, esUser, S("event %1.").arg(i));
        evt.uid = QUuid(static_cast<uint>(i + 1), 1, 2, 3, 4, 5, 6, 7, 8, 9, 10);
        QByteArray bytes;
        evt.Save(bytes);
        if (i % 10 == 0)
            growing.AddItem(rtEvent, 0, 0, startTime + i, bytes);
    }
    return growing.Commit();
}

std::shared_ptr<ZrSurveyRecording> tst_ZrSurveyExportLogs::Long(qint64 lines)
{
    std::shared_ptr<ZrSurveyRecording>& recording = m_long[lines];
    if (recording)
        return recording;
    const QString log = m_originals.filePath(S("long%1.log").arg(lines));
    long_log::Shape shape;
    shape.lines = lines;
    shape.samples = 1;
    auto opened = long_log::Write(log, shape) ? Opened(log) : nullptr;
    if (!opened)
        return nullptr;
    for (const int at : {100, 1005, 1900}) {
        ZrLogEvt evt(startTime + at, esUser, S("event at %1").arg(at));
        evt.uid = QUuid(static_cast<uint>(at), 1, 2, 3, 4, 5, 6, 7, 8, 9, 10);
        opened->Events().Add(evt);
    }
    if (opened->Events().Save())
        recording = opened;
    return recording;
}

/// A log of its own is written as far as it is sound, and that is said.
void tst_ZrSurveyExportLogs::damagedLog()
{
    QVERIFY(QFile::resize(m_log, QFileInfo(m_log).size() - 100));
    const auto recording = Opened(m_log);
    QVERIFY(recording && recording->IsDamaged());
    ZrSurveyExport part(recording, recording->Times()->Begin(), recording->Times()->End());
    QCOMPARE(part.Run(ZrSurveyExport::segment, File(S("part.log"))), ZrSurveyExport::Done);
    QVERIFY2(part.Remark().contains(S("(at position ")), qPrintable(part.Remark()));
    QCOMPARE(part.Run(ZrSurveyExport::track, File(S("part.gpx"))), ZrSurveyExport::Done);
    QCOMPARE(part.Remark(), QString());
    ZrSurveyExport sound(recording, recording->Times()->Begin(), recording->Times()->Begin() + 5.0);
    QCOMPARE(sound.Run(ZrSurveyExport::segment, File(S("part.log"))), ZrSurveyExport::Done);
    QCOMPARE(sound.Remark(), QString());
}

/// The index is made anew, with progress of its own, and the part is the same.
void tst_ZrSurveyExportLogs::logThatHasGrown()
{
    const QString out = File(S("records.csv"));
    ZrSurveyExport part(m_recording, m_begin + 10.0, m_begin + 20.0);
    QCOMPARE(part.Run(ZrSurveyExport::records, out), ZrSurveyExport::Done);
    const QByteArray before = Content(out);
    SonarLine line;
    line.pings = 600;
    QVERIFY(WriteLine(File(S("grown.log")), line));
    QVERIFY(Write(m_log, Content(File(S("grown.log")))));
    Percents percents;
    QCOMPARE(part.Run(ZrSurveyExport::records, out, &percents), ZrSurveyExport::Done);
    QVERIFY(Content(out) == before);
    QVERIFY(std::is_sorted(percents.told.begin(), percents.told.end()));
    QVERIFY(percents.told.contains(25) && percents.GetProgress() == 100);
    // Another log in its place: by time, not by number.
    line.time = startTime + 12.0;
    QVERIFY(WriteLine(File(S("grown.log")), line));
    QVERIFY(Write(m_log, Content(File(S("grown.log")))));
    QCOMPARE(part.Run(ZrSurveyExport::records, out), ZrSurveyExport::Done);
    QCOMPARE(part.Items(), u64(81));
}

/// Each export of a log that is being recorded makes the index anew. What was removed from the list is in
/// none of them, and does not come back into the list by them; what the log has got since does.
void tst_ZrSurveyExportLogs::removedEventsOfAGrowingLog()
{
    const QString log = File(S("growing.log"));
    QVERIFY(WriteEvents(log, 30));
    const auto recording = Opened(log);
    QVERIFY(recording);
    ZrEventList& events = recording->Events();
    QCOMPARE(events.Count(), std::size_t(3));
    QVERIFY(events.Remove(events.Id(1)) && events.Save());
    int lines = 31;
    for (const int kind :
        {ZrSurveyExport::events, ZrSurveyExport::track, ZrSurveyExport::segment, ZrSurveyExport::records}) {
        QVERIFY(WriteEvents(log, lines++));
        ZrSurveyExport part(recording, recording->Times()->Begin(), recording->Times()->End());
        QCOMPARE(part.Run(kind, OutOf(kind)), ZrSurveyExport::Done);
        QVERIFY(!Content(OutOf(kind)).contains("event 10.") || kind == ZrSurveyExport::segment);
    }
    QVERIFY(Content(OutOf(ZrSurveyExport::events)).contains("event 20."));
    const auto segment = Opened(OutOf(ZrSurveyExport::segment));
    QVERIFY(segment);
    QCOMPARE(segment->Events().Count(), std::size_t(2));
    events.Add(ZrLogEvt(startTime + 1.0, esUser, S("added")));
    QVERIFY(events.Save());
    QCOMPARE(TextsOf(events), (QStringList{S("event 0."), S("added"), S("event 20."), S("event 30.")}));
}

/// A part has those of the list, whatever its items say: nothing is saved of what was removed or moved.
void tst_ZrSurveyExportLogs::eventsThatCannotBeKept()
{
    const QString log = File(S("read only.log"));
    QVERIFY(WriteEvents(log, 40));
    QVERIFY(QDir().mkpath(log + S(".evt/in the way")));
    const auto recording = Opened(log);
    QVERIFY(recording);
    ZrEventList& events = recording->Events();
    QCOMPARE(events.Count(), std::size_t(4));
    ZrLogEvt moved = events.At(2);
    moved.time = startTime + 35.0;
    QVERIFY(events.Edit(events.Id(2), moved) && events.Remove(events.Id(1)));
    QVERIFY(!events.Save());
    const double begin = recording->Times()->Begin();
    ZrSurveyExport part(recording, begin, begin + 30.0);
    QCOMPARE(part.Run(ZrSurveyExport::segment, File(S("part.log"))), ZrSurveyExport::Done);
    for (int opened = 0; opened < 2; ++opened) {
        const auto segment = Opened(File(S("part.log")));
        QVERIFY(segment);
        QCOMPARE(TextsOf(segment->Events()), (QStringList{S("event 0."), S("event 30.")}));
        QVERIFY(QFile::remove(File(S("part.log.zri"))));
    }
}

void tst_ZrSurveyExportLogs::logThatIsGone()
{
    ZrSurveyExport part(m_recording, m_begin + 10.0, m_begin + 20.0);
    QVERIFY(QFile::remove(m_log));
    for (int kind = 0; kind < ZrSurveyExport::kindCount; ++kind) {
        const bool isDone = part.Run(kind, OutOf(kind)) == ZrSurveyExport::Done;
        QCOMPARE(isDone, kind == ZrSurveyExport::targets);
        QCOMPARE(part.Error().isEmpty(), isDone);
        QCOMPARE(QFile::exists(OutOf(kind)), isDone);
    }
}

/// Navigation of an unknown format counts as a record, though a review shows nothing of it.
void tst_ZrSurveyExportLogs::recordsThatAreNoRows()
{
    const QString log = File(S("mixed.log"));
    Log mixed(log);
    for (int i = 0; i < 50; ++i) {
        const u16 format = i % 5 == 2 ? 99 : ZrNavRecord::Format;
        mixed.AddItem(ZrNavRecord::RecType, 0, format, startTime + i, SonarLine().NavOf(i).Encode());
    }
    QVERIFY(mixed.Commit());
    const auto recording = Opened(log);
    QVERIFY(recording);
    QCOMPARE(recording->Series().Count(), std::size_t(40));
    const double begin = recording->Times()->Begin();
    ZrSurveyExport part(recording, begin + 20.0, begin + 29.0);
    const QString out = File(S("records.csv"));
    QCOMPARE(part.Run(ZrSurveyExport::records, out), ZrSurveyExport::Done);
    QCOMPARE(part.Items(), u64(10));
    QVERIFY(Content(out).contains("14:05:29.000Z") && Content(out).contains("14:05:38.000Z"));
}

/// Without a place for an index the log is walked through each time.
void tst_ZrSurveyExportLogs::folderThatCannotBeWritten()
{
    QFile file(m_log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const auto recording = Opened(S("/proc/self/fd/%1").arg(file.handle()));
    QVERIFY(recording);
    ZrSurveyExport part(recording, recording->Times()->Begin() + 10.0, recording->Times()->Begin() + 20.0);
    ZrSurveyExport usual(m_recording, m_begin + 10.0, m_begin + 20.0);
    for (const int kind : {ZrSurveyExport::segment, ZrSurveyExport::records}) {
        QCOMPARE(part.Run(kind, File(S("part"))), ZrSurveyExport::Done);
        QCOMPARE(usual.Run(kind, File(S("usual"))), ZrSurveyExport::Done);
        QVERIFY(!Content(File(S("usual"))).isEmpty());
        QVERIFY(Content(File(S("part"))) == Content(File(S("usual"))));
    }
}

void tst_ZrSurveyExportLogs::readsThePartAlone_data()
{
    QTest::addColumn<int>("kind");
    for (int kind = 0; kind < ZrSurveyExport::targets; ++kind)
        QTest::newRow(qPrintable(ZrSurveyExport::Name(kind))) << kind;
}

/// A hundred records of a log, with an event among them and others far away: as many bytes of one that is
/// five times as long.
void tst_ZrSurveyExportLogs::readsThePartAlone()
{
    QFETCH(int, kind);
    constexpr qint64 lines[] = {20000, 100000};
    qint64 read[2] = {};
    QByteArray written[2];
    for (int i = 0; i < 2; ++i) {
        const auto recording = Long(lines[i]);
        QVERIFY(recording);
        const double begin = recording->Times()->Begin();
        ZrSurveyExport part(recording, begin + 1000.0, begin + 1009.95);
        const QString out = File(S("part")) + QString::number(i);
        const qint64 before = long_log::BytesRead();
        QVERIFY(before > 0);
        QCOMPARE(part.Run(kind, out), ZrSurveyExport::Done);
        read[i] = long_log::BytesRead() - before;
        written[i] = Content(out);
        QVERIFY(part.Items() > 0);
        if (kind != ZrSurveyExport::segment)
            QVERIFY(kind == ZrSurveyExport::records || written[i].contains("event at 1005"));
    }
    QCOMPARE(written[0].isEmpty(), false);
    // The name of the log is in the track.
    QVERIFY(written[0].replace("long20000", "long100000") == written[1]);
    qInfo("%lld and %lld bytes read", read[0], read[1]);
    QVERIFY2(std::llabs(read[1] - read[0]) < 20000, "it goes with the log");
    QVERIFY2(read[1] < 1000000, qPrintable(QString::number(read[1])));
}

void tst_ZrSurveyExportLogs::holdsPiecesAlone_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<bool>("isIndexed");
    for (const char* suffix : {"gpx", "kml", "geojson", "csv"})
        QTest::newRow(suffix) << int(ZrSurveyExport::track) << S(suffix) << true;
    QTest::newRow("log") << int(ZrSurveyExport::segment) << S("log") << true;
    QTest::newRow("records") << int(ZrSurveyExport::records) << S("csv") << true;
    QTest::newRow("events") << int(ZrSurveyExport::events) << S("csv") << true;
    QTest::newRow("log, index made anew") << int(ZrSurveyExport::segment) << S("log") << false;
}

/// The whole of a log with 100,000 records, which would be 16 MB in memory.
void tst_ZrSurveyExportLogs::holdsPiecesAlone()
{
    QFETCH(int, kind);
    QFETCH(QString, suffix);
    QFETCH(bool, isIndexed);
    constexpr qint64 most = 8000000;
    const auto recording = Long(100000);
    QVERIFY(recording);
    if (!isIndexed)
        QVERIFY(QFile::remove(recording->Path() + S(".zri")));
    ZrSurveyExport part(recording, recording->Times()->Begin(), recording->Times()->End());
    const QString out = File(S("whole.") + suffix);
    const peak_new::Since memory;
    QCOMPARE(part.Run(kind, out), ZrSurveyExport::Done);
    qInfo("%lld bytes of memory at most, %lld written", memory.Most(), QFileInfo(out).size());
    QVERIFY2(memory.Most() < most, qPrintable(QString::number(memory.Most())));
    QVERIFY(QFile::remove(out));
}

/// The way of the sonar is known: nothing is made of the pings outside the part.
void tst_ZrSurveyExportLogs::mosaicHoldsThePartAlone()
{
    constexpr qint64 lines[] = {20000, 200000};
    long long held[2] = {};
    for (int i = 0; i < 2; ++i) {
        const auto recording = Long(lines[i]);
        QVERIFY(recording);
        const double begin = recording->Times()->Begin();
        ZrSurveyExport part(recording, begin + 1000.0, begin + 1100.0);
        const QString out = File(S("part.png"));
        QCOMPARE(part.Run(ZrSurveyExport::mosaic, out), ZrSurveyExport::Done); // what stays is there then
        const peak_new::Since memory;
        QCOMPARE(part.Run(ZrSurveyExport::mosaic, out), ZrSurveyExport::Done);
        QCOMPARE(part.Items(), u64(1001));
        held[i] = memory.Most();
    }
    qInfo("%lld and %lld bytes of memory at most", held[0], held[1]);
    QVERIFY2(std::llabs(held[1] - held[0]) < 100000, "it goes with the log");
}

QTEST_MAIN(tst_ZrSurveyExportLogs)
#include "tst_ZrSurveyExportLogs.moc"
