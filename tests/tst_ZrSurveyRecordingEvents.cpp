// The events of a recording: those of its log, each taken over once, and those added.

#include "SurveyRecordingLog.h"
#include "ZrKit/review/ZrDatasetReader.h"

#include <QDateTime>
#include <QtTest>

using sonar_test::Log;
using sonar_test::SonarLine;
using survey_recording::AddEvent;
using survey_recording::AddWithEvents;
using survey_recording::IsNear;
using survey_recording::unknown;
using survey_recording::WriteWithEvents;

namespace {

QStringList TextsOf(const ZrSurveyRecording& recording)
{
    QStringList texts;
    for (std::size_t i = 0; i < recording.Events().Count(); ++i)
        texts << recording.Events().At(i).text;
    return texts;
}

} // namespace

class tst_ZrSurveyRecordingEvents : public QObject, private survey_recording::Folder
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Begin(); }

    void indexOfFixesStays();
    void removedEventsStayAway_data();
    void removedEventsStayAway();
    void events();
    void eventsThatCannotBeKept();
    void removedBeforeTheyCouldBeKept();
    void takenOverBeforeThatWasKept();
};

/// It is found good and not made anew.
void tst_ZrSurveyRecordingEvents::indexOfFixesStays()
{
    const QString path = File("fix.log");
    QVERIFY(WriteWithEvents(path, ZrFixRecord::RecType));
    const auto open = [&] { return ZrSurveyRecording().Load(path); };
    QVERIFY(open());
    const QDateTime before = QDateTime::fromSecsSinceEpoch(1000000000);
    for (const char* suffix : {".zri", ".zri.json", ".evt", ".evt.json"}) {
        QFile file(path + QLatin1String(suffix));
        QVERIFY2(file.exists() && file.open(QIODevice::ReadWrite), suffix);
        QVERIFY(file.setFileTime(before, QFileDevice::FileModificationTime));
    }
    QVERIFY(open());
    for (const char* suffix : {".zri", ".zri.json", ".evt", ".evt.json"})
        QCOMPARE(QFileInfo(path + QLatin1String(suffix)).lastModified(), before);
}

void tst_ZrSurveyRecordingEvents::removedEventsStayAway_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("navigation") << int(ZrNavRecord::RecType);
    QTest::newRow("fixes") << int(ZrFixRecord::RecType);
    QTest::newRow("sonar alone") << int(ZrPingRecord::RecType);
}

/// Whatever the log holds, at every opening, and when the index is lost.
void tst_ZrSurveyRecordingEvents::removedEventsStayAway()
{
    QFETCH(int, type);
    const QString path = File("events.log");
    QVERIFY(WriteWithEvents(path, type));
    {
        ZrSurveyRecording recording;
        QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
        QCOMPARE(TextsOf(recording).size(), 3);
        QVERIFY(recording.Events().Remove(recording.Events().Id(1)));
        QVERIFY(recording.Events().Save());
    }
    const QStringList left{QStringLiteral("event 0"), QStringLiteral("event 16")};
    for (int i = 0; i < 3; ++i) {
        ZrSurveyRecording recording;
        QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
        QCOMPARE(TextsOf(recording), left);
        ZrDatasetReader reader;
        const std::unique_ptr<ZrSurveyDataset> records = recording.IndexRecords(reader);
        QVERIFY(records);
        QCOMPARE(records->events.GetCount(), 2);
        if (i > 0)
            QFile::remove(path + QStringLiteral(".zri"));
    }
    // What the log has got since is there.
    Log longer(path);
    AddWithEvents(longer, type);
    AddEvent(longer, sonar_test::startTime + 19.5, QStringLiteral("new"));
    QVERIFY(longer.Commit());
    ZrSurveyRecording recording;
    QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
    QCOMPARE(TextsOf(recording), left + QStringList{QStringLiteral("new")});
}

void tst_ZrSurveyRecordingEvents::events()
{
    const QString path = File("line.log");
    QVERIFY(WriteLine(path, SonarLine()));
    {
        ZrSurveyRecording recording;
        QVERIFY2(recording.Load(path), qPrintable(recording.Error()));
        ZrLogEvt evt;
        evt.time = sonar_test::startTime + 2.0;
        evt.text = QStringLiteral("Wrack äß");
        QVERIFY(IsNear(recording.TimeOf(evt), recording.Times()->Begin() + 2.0, 1e-6));
        evt.time = unknown;
        QVERIFY(std::isnan(recording.TimeOf(evt)));
        evt.time = sonar_test::startTime + 2.0;
        QVERIFY(recording.Events().Add(evt));
        QString error;
        QVERIFY2(recording.Events().Save(&error), qPrintable(error));
        ZrDatasetReader reader;
        const std::unique_ptr<ZrSurveyDataset> records = recording.IndexRecords(reader);
        QVERIFY(records);
        QCOMPARE(records->events.GetCount(), 1);
    }
    ZrSurveyRecording again;
    QVERIFY2(again.Load(path), qPrintable(again.Error()));
    QCOMPARE(again.Events().Count(), std::size_t(1));
    QCOMPARE(again.Events().At(0).text, QStringLiteral("Wrack äß"));
}

/// Those of the log are shown, though there is no event file and none can be written.
void tst_ZrSurveyRecordingEvents::eventsThatCannotBeKept()
{
    const QString path = File("events.log");
    QVERIFY(WriteWithEvents(path, ZrNavRecord::RecType));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    // Below /proc nobody can make a file.
    ZrSurveyRecording recording;
    QVERIFY(recording.Load(QStringLiteral("/proc/self/fd/%1").arg(file.handle())));
    QVERIFY(!recording.Remarks().isEmpty());
    QCOMPARE(TextsOf(recording),
        (QStringList{QStringLiteral("event 0"), QStringLiteral("event 8"), QStringLiteral("event 16")}));
    QVERIFY(!QFileInfo::exists(path + QStringLiteral(".evt")));
}

/// An event file can be written again, and what was removed until then stays away.
void tst_ZrSurveyRecordingEvents::removedBeforeTheyCouldBeKept()
{
    const QString path = File("events.log");
    QVERIFY(WriteWithEvents(path, ZrNavRecord::RecType));
    QVERIFY(QDir().mkdir(path + QStringLiteral(".evt")));
    ZrSurveyRecording recording;
    QVERIFY(recording.Load(path));
    QVERIFY(!recording.Remarks().isEmpty());
    QCOMPARE(TextsOf(recording).size(), 3);
    QVERIFY(QDir().rmdir(path + QStringLiteral(".evt")));
    QVERIFY(recording.Events().Remove(recording.Events().Id(1)));
    QVERIFY(recording.Events().Save());
    const QStringList left{QStringLiteral("event 0"), QStringLiteral("event 16")};
    for (int i = 0; i < 2; ++i) {
        ZrSurveyRecording again;
        QVERIFY(again.Load(path));
        QCOMPARE(again.Remarks(), QStringList());
        QCOMPARE(TextsOf(again), left);
        QFile::remove(path + QStringLiteral(".zri"));
    }
}

/// By an earlier version, of which the index tells: also where it cannot be kept now.
void tst_ZrSurveyRecordingEvents::takenOverBeforeThatWasKept()
{
    const QString path = File("events.log");
    const QString taken = path + QStringLiteral(".evt.json");
    QVERIFY(WriteWithEvents(path, ZrNavRecord::RecType));
    {
        ZrSurveyRecording recording;
        QVERIFY(recording.Load(path));
        QVERIFY(recording.Events().Remove(recording.Events().Id(1)) && recording.Events().Save());
    }
    QVERIFY(QFile::remove(taken) && QDir().mkpath(taken + QStringLiteral("/in the way")));
    QVERIFY(QFile::remove(path + QStringLiteral(".zri")));
    ZrSurveyRecording recording;
    QVERIFY(recording.Load(path));
    QVERIFY(!recording.Remarks().isEmpty());
    QCOMPARE(TextsOf(recording), (QStringList{QStringLiteral("event 0"), QStringLiteral("event 16")}));
}

QTEST_GUILESS_MAIN(tst_ZrSurveyRecordingEvents)
#include "tst_ZrSurveyRecordingEvents.moc"
