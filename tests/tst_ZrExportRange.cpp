// A part of a recording as files of its own.

#include "LoadedLog.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/review/ZrSteadyTime.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

using export_range::Body;
using survey::Event;
using survey::EventFile;
using survey::EventTexts;
using survey::NavItem;
using survey::S;
using survey::startTime;
using survey::TimedItem;
using survey::Uid;

class Steps final : public IZrProgress
{
public:
    void UpdateProgress(int percent) override
    {
        percents << percent;
        if (export_ && percent >= cancelAt)
            export_->cancel = true;
    }

    int GetProgress() override { return percents.isEmpty() ? -1 : percents.last(); }

    QVector<int> percents;
    ZrExportRange* export_ = nullptr;
    int cancelAt = 1000;
};

} // namespace

class tst_ZrExportRange : public QObject, private export_range::LoadedLog
{
    Q_OBJECT

private Q_SLOTS:

    void init()
    {
        Begin();
        m_out = m_folder->filePath(S("part \u00e9.log"));
    }

    void cleanup() { End(); }

    void recordsOfATimeRange();
    void middleWithState();
    void wholeLog();
    void stateIsNotTakenFromAWrongIndex();
    void eventsOfThePart();
    void filesOfAnEarlierLog();
    void damagedLog();
    void logThatHasChanged();
    void partIsAWholeLog();
    void track_data();
    void track();
    void records();
    void events();
    void nothingToExport();
    void ownFilesAreRefused_data();
    void ownFilesAreRefused();
    void cannotBeWritten_data();
    void cannotBeWritten();
    void cancelled_data();
    void cancelled();
};

void tst_ZrExportRange::recordsOfATimeRange()
{
    const std::vector<double> times{10, 11, 11, 12, 14};
    const ZrSteadyTime steady(times);
    QCOMPARE(ZrExportRange::FirstFrom(steady, 11.0), std::size_t(1));
    QCOMPARE(ZrExportRange::EndAt(steady, 11.0), std::size_t(3));
    QCOMPARE(ZrExportRange::FirstFrom(steady, 12.5), std::size_t(4));
    QCOMPARE(ZrExportRange::EndAt(steady, 13.5), std::size_t(4));
    QCOMPARE(ZrExportRange::FirstFrom(steady, -1e9), std::size_t(0));
    QCOMPARE(ZrExportRange::EndAt(steady, 1e9), std::size_t(5));
    QCOMPARE(ZrExportRange::FirstFrom(steady, std::nan("")), std::size_t(5));
    QCOMPARE(ZrExportRange::EndAt(steady, std::nan("")), std::size_t(0));
    QCOMPARE(ZrExportRange::EndAt(ZrSteadyTime(), 1.0), std::size_t(0));
}

void tst_ZrExportRange::middleWithState()
{
    LogBytes log;
    const Item depthOld = TimedItem(19, 0, startTime, QByteArray(8, 'a'));
    const Item depth = TimedItem(19, 0, startTime, QByteArray(8, 'b'));
    const Item fix = TimedItem(18, 0, startTime, QByteArray(28, '\0'));
    const Item other = TimedItem(99, 0, startTime, QByteArray(8, 'o'));
    const Item fixBehind = TimedItem(18, 0, startTime, QByteArray(28, '\1'));
    log.Add(depthOld)
        .Add(fix)
        .Add(NavItem(0))
        .Add(depth)
        .Add(other)
        .Add(NavItem(1))
        .Add(other)
        .Add(NavItem(2))
        .Add(fixBehind)
        .Add(NavItem(3));
    Load(log.Bytes());
    ZrExportRange part(m_dataset, 1, 3);
    Steps steps;
    part.progress = &steps;
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(part.Error(), QString());
    // The latest fix and depth, in the order of the log; then everything from record 1 up to record 3.
    const QByteArray expected = fix.Bytes() + depth.Bytes() + NavItem(1).Bytes() + other.Bytes()
        + NavItem(2).Bytes() + fixBehind.Bytes();
    QCOMPARE(Body(m_out).toHex(), expected.toHex());
    QCOMPARE(part.Items(), u64(6));
    QCOMPARE(DoubleAt(ReadWhole(m_out), 40), startTime + 1);
    QCOMPARE(steps.GetProgress(), 100);
    QVERIFY(std::is_sorted(steps.percents.begin(), steps.percents.end()));
    QVERIFY(!QFileInfo::exists(m_out + S(".evt")));
}

void tst_ZrExportRange::wholeLog()
{
    LogBytes log;
    const Item head = TimedItem(70, 0, startTime, survey::PlanText("plan"));
    const Item tail = TimedItem(99, 0, startTime, QByteArray(8, 'o'));
    log.Add(head).Add(NavItem(0)).Add(NavItem(1)).Add(tail);
    Load(log.Bytes());
    ZrExportRange part(m_dataset, 0, 1000);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(Body(m_out), log.Bytes().mid(48));
    QCOMPARE(part.Items(), u64(4));
    QCOMPARE(part.Damage(), QString());
}

void tst_ZrExportRange::stateIsNotTakenFromAWrongIndex()
{
    LogBytes log;
    log.Add(TimedItem(18, 0, startTime, QByteArray(28, '\0')))
        .Add(NavItem(0))
        .Add(NavItem(1))
        .Add(NavItem(2));
    Load(log.Bytes());
    const std::array<u64, 8> wrong{49, 0, log.Start(1), log.Start(3), ~u64(0), 1, 47, 48};
    std::memcpy(
        reinterpret_cast<char*>(&m_dataset.recs[1]) + offsetof(ZrLogRec, crdPos), wrong.data(), sizeof wrong);
    ZrExportRange part(m_dataset, 1, 2);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(Body(m_out), NavItem(1).Bytes());
}

void tst_ZrExportRange::eventsOfThePart()
{
    LogBytes log;
    for (int i = 0; i < 10; ++i)
        log.Add(NavItem(i));
    QVERIFY(WriteWhole(m_log + S(".evt"),
        EventFile({{startTime + 1, S("before"), Uid(1)}, {startTime + 3.4, S("\u6c88\u8239"), Uid(2)},
            {startTime + 5, S("last"), Uid(3)}, {startTime + 8, S("behind"), Uid(4)}})));
    Load(log.Bytes());
    ZrExportRange part(m_dataset, 3, 6);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(EventTexts(m_out), (QStringList{S("\u6c88\u8239"), S("last")}));
    // A part without events replaces them by none.
    ZrExportRange other(m_dataset, 6, 7);
    QCOMPARE(other.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(EventTexts(m_out), QStringList());
}

void tst_ZrExportRange::filesOfAnEarlierLog()
{
    for (const char* suffix : {"", ".zri", ".zri.json", ".evt.json"})
        QVERIFY(WriteWhole(m_out + S(suffix), "old"));
    LogBytes log;
    log.Add(NavItem(0)).Add(NavItem(1));
    Load(log.Bytes());
    ZrExportRange part(m_dataset, 0, 1);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QVERIFY(!QFileInfo::exists(m_out + S(".zri")));
    QVERIFY(!QFileInfo::exists(m_out + S(".zri.json")));
    QVERIFY(!QFileInfo::exists(m_out + S(".evt.json")));
}

void tst_ZrExportRange::damagedLog()
{
    LogBytes log;
    for (int i = 0; i < 5; ++i)
        log.Add(NavItem(i));
    Load(log.Bytes().left(static_cast<int>(log.Start(4)) + 30));
    QCOMPARE(m_dataset.recs.size(), std::size_t(4));
    ZrExportRange part(m_dataset, 2, 4);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(Body(m_out), NavItem(2).Bytes() + NavItem(3).Bytes());
    QVERIFY2(part.Damage().endsWith(S("(at position %1)").arg(log.Start(4))), qPrintable(part.Damage()));
    ZrExportRange sound(m_dataset, 2, 3); // ends in front of it
    QCOMPARE(sound.WriteLog(m_out), ZrExportRange::Done);
    QCOMPARE(sound.Damage(), QString());
}

void tst_ZrExportRange::logThatHasChanged()
{
    Load(survey::SurveyLog(10).Bytes());
    ZrExportRange part(m_dataset, 5, 8);
    QVERIFY(WriteWhole(m_log, survey::SurveyLog(2).Bytes()));
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Failed);
    QCOMPARE(part.Error(), m_log + S(" has changed since it was loaded"));
    QFile::remove(m_log);
    QCOMPARE(part.WriteLog(m_out), ZrExportRange::Failed);
    QVERIFY(part.Error().startsWith(S("Cannot read ") + m_log));
    QCOMPARE(Names(), QStringList());
}

void tst_ZrExportRange::partIsAWholeLog()
{
    Load(survey::SurveyLog(100).Bytes());
    for (std::size_t first = 0; first < 100; first += 7) {
        for (std::size_t end = first + 1; end <= 100; end += 31) {
            ZrExportRange part(m_dataset, first, end);
            QCOMPARE(part.WriteLog(m_out), ZrExportRange::Done);
            ZrSurveyDataset again;
            ZrDatasetReader reader;
            reader.writeIndex = false;
            QCOMPARE(reader.Read(m_out, again), ZrDatasetReader::Built);
            QVERIFY(reader.Complete());
            QCOMPARE(again.recs.size(), end - first);
            QCOMPARE(double(again.recs[0].time), double(m_dataset.recs[first].time));
            u64 fix = 0; // one stands in front of every part
            std::memcpy(
                &fix, reinterpret_cast<const char*>(&again.recs[0]) + offsetof(ZrLogRec, crdPos), sizeof fix);
            QVERIFY(fix != 0);
        }
    }
}

void tst_ZrExportRange::track_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("begins");
    QTest::addColumn<int>("points");
    QTest::newRow("gpx") << S("gpx") << QByteArray("<?xml") << 3;
    QTest::newRow("KML") << S("KML") << QByteArray("<?xml") << 3;
    QTest::newRow("geojson") << S("geojson") << QByteArray("{") << 3;
    QTest::newRow("csv") << S("csv") << QByteArray("kind,segment,") << 3;
}

void tst_ZrExportRange::track()
{
    QFETCH(QString, suffix);
    QFETCH(QByteArray, begins);
    QFETCH(int, points);
    LogBytes log;
    for (int i = 0; i < 10; ++i)
        log.Add(NavItem(i));
    QVERIFY(WriteWhole(m_log + S(".evt"),
        EventFile({{startTime + 1, S("before"), Uid(1)}, {startTime + 4, S("Wreck"), Uid(2)}})));
    Load(log.Bytes());
    ZrExportRange part(m_dataset, 3, 6);
    Steps steps;
    part.progress = &steps;
    const QString out = m_folder->filePath(S("track.") + suffix);
    QCOMPARE(part.WriteTrack(out), ZrExportRange::Done);
    QCOMPARE(part.Items(), u64(points));
    QCOMPARE(steps.GetProgress(), 100);
    const QByteArray bytes = ReadWhole(out);
    QVERIFY(bytes.startsWith(begins));
    QVERIFY(bytes.contains("Wreck") && !bytes.contains("before"));
    QVERIFY(bytes.contains("14:05:12") && bytes.contains("14:05:14"));
    QVERIFY(!bytes.contains("14:05:11") && !bytes.contains("14:05:15"));
}

void tst_ZrExportRange::records()
{
    LogBytes log;
    log.Add(NavItem(0));
    log.Add(survey::NavItem(startTime + 1.5, survey::Nav()));
    Load(log.Bytes());
    m_dataset.recs[1].latitude = std::nan(""); // not even an earlier position
    ZrExportRange part(m_dataset, 0, 2);
    QCOMPARE(part.WriteRecords(m_out), ZrExportRange::Done);
    QCOMPARE(part.Items(), u64(2));
    QCOMPARE(ReadWhole(m_out),
        QByteArray("time,latitude,longitude,depth,altitude,seabed,heading,pitch,roll\r\n"
                   "2021-03-03T14:05:09.000Z,44.00000000,-63.00000000,10.00,5.00,15.00,0.00,,\r\n"
                   "2021-03-03T14:05:10.500Z,,,,,,,,\r\n"));
}

void tst_ZrExportRange::events()
{
    LogBytes log;
    for (int i = 0; i < 5; ++i)
        log.Add(NavItem(i));
    Event quoted{startTime + 2, S("a \"b\", c"), Uid(5), S("line\nline"), 3, -4};
    QVERIFY(WriteWhole(m_log + S(".evt"), EventFile({quoted, {startTime + 4, S("\u6c88"), QUuid()}})));
    Load(log.Bytes());
    ZrExportRange part(m_dataset, 1, 5);
    QCOMPARE(part.WriteEvents(m_out), ZrExportRange::Done);
    QCOMPARE(part.Items(), u64(2));
    QCOMPARE(QString::fromUtf8(ReadWhole(m_out)),
        S("time,source,code,uid,text,detail\r\n"
          "2021-03-03T14:05:11.000Z,3,-4,12345678-1234-4321-8000-000000000005,\"a \"\"b\"\", "
          "c\",\"line\nline\"\r\n"
          "2021-03-03T14:05:13.000Z,2,0,,\u6c88,\r\n"));
}

void tst_ZrExportRange::nothingToExport()
{
    Load(survey::SurveyLog(3).Bytes());
    for (const auto& range : {std::pair(1, 1), std::pair(2, 1), std::pair(3, 9), std::pair(1000, 2000)}) {
        ZrExportRange part(m_dataset, std::size_t(range.first), std::size_t(range.second));
        for (int kind = 0; kind < 4; ++kind) {
            QCOMPARE(Write(part, kind, m_out), ZrExportRange::Failed);
            QCOMPARE(part.Error(), S("There is nothing to export"));
            QCOMPARE(part.Items(), u64(0));
        }
    }
    QVERIFY(!QFileInfo::exists(m_out));
}

void tst_ZrExportRange::ownFilesAreRefused_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char* suffix : {"", ".evt", ".evt.json", ".zri", ".zri.json", ".xml"})
        QTest::newRow(qPrintable(S("log") + S(suffix))) << S(suffix);
}

void tst_ZrExportRange::ownFilesAreRefused()
{
    QFETCH(QString, suffix);
    const QByteArray bytes = survey::SurveyLog(3).Bytes();
    Load(bytes);
    const QString own = m_log + suffix;
    if (!suffix.isEmpty())
        QVERIFY(WriteWhole(own, "mine"));
    const QByteArray before = ReadWhole(own);
    QVERIFY(QFile::link(own, m_out)); // by another name
    ZrExportRange part(m_dataset, 0, 3);
    for (int kind = 0; kind < 4; ++kind) {
        for (const QString& out : {own, m_out}) {
            QCOMPARE(Write(part, kind, out), ZrExportRange::Failed);
            QCOMPARE(part.Error(), out + S(" belongs to the recording itself; choose another name"));
        }
    }
    QCOMPARE(ReadWhole(own), before);
    QCOMPARE(Write(part, 0, QString()), ZrExportRange::Failed);
    QCOMPARE(part.Error(), S("The export needs a name for its file"));
}

void tst_ZrExportRange::cannotBeWritten_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("place");
    for (int kind = 0; kind < 4; ++kind) {
        for (const char* place : {"folder", "missing", "proc", "device"})
            QTest::newRow(qPrintable(S("%1 %2").arg(kind).arg(S(place)))) << kind << S(place);
    }
}

void tst_ZrExportRange::cannotBeWritten()
{
    QFETCH(int, kind);
    QFETCH(QString, place);
    Load(survey::SurveyLog(30).Bytes());
    QString out = place == S("proc") ? S("/proc/part.log") : m_folder->filePath(S("none/part.log"));
    if (place == S("folder")) {
        out = m_out;
        QVERIFY(QDir().mkdir(out));
        QVERIFY(WriteWhole(out + S("/inside"), "x"));
    }
    if (place == S("device"))
        out = S("/dev/full");
    ZrExportRange part(m_dataset, 0, 30);
    QCOMPARE(Write(part, kind, out), ZrExportRange::Failed);
    QVERIFY2(part.Error().contains(out), qPrintable(part.Error()));
    QCOMPARE(part.Items(), u64(0));
    QCOMPARE(Names().size(), place == S("folder") ? 2 : 1); // nothing temporary stays
    if (place == S("device"))
        QVERIFY(!QFileInfo(out).isFile());
}

void tst_ZrExportRange::cancelled_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("percent");
    for (int kind = 0; kind < 3; ++kind) {
        QTest::newRow(qPrintable(S("%1 at once").arg(kind))) << kind << -1;
        QTest::newRow(qPrintable(S("%1 half-way").arg(kind))) << kind << 50;
    }
    QTest::newRow("3 at once") << 3 << -1;
}

void tst_ZrExportRange::cancelled()
{
    QFETCH(int, kind);
    QFETCH(int, percent);
    Load(survey::SurveyLog(20000).Bytes());
    QVERIFY(WriteWhole(m_out, "old"));
    ZrExportRange part(m_dataset, 0, 20000);
    Steps steps;
    steps.export_ = &part;
    steps.cancelAt = percent;
    part.progress = &steps;
    part.cancel = percent < 0;
    QCOMPARE(Write(part, kind, m_out), ZrExportRange::Cancelled);
    QCOMPARE(part.Error(), QString());
    QCOMPARE(part.Items(), u64(0));
    QVERIFY(steps.GetProgress() < 60);
    QCOMPARE(ReadWhole(m_out), QByteArray("old"));
    QCOMPARE(Names().size(), 2);
}

QTEST_GUILESS_MAIN(tst_ZrExportRange)
#include "tst_ZrExportRange.moc"
