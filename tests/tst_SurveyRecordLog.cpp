// The page "Record" of the application as a person records with it: touches, and the logs on disk.

#include "SurveyRecordWindow.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrLogCheck.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrPlayer.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QSignalSpy>
#include <QStorageInfo>

class tst_SurveyRecordLog : public SurveyRecordWindow
{
    Q_OBJECT

private Q_SLOTS:
    void oneTouchRecords();
    void eventsEndInTheLog();
    void notesEndInTheLog();
    void eventsOfTheFirstSeconds();
    void eventsThatNoLogTakes();
    void keysDoTheSame();
    void recordingGoesOnBehindOtherPages();
    void stopsBeforeTheDiskIsFull();
    void splitsWithHead();
    void folderThatCannotBeMade();
};

void tst_SurveyRecordLog::oneTouchRecords()
{
    Open();
    QTRY_VERIFY(HasPosition());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(m_view->Model().recording.IsOn());
    QTRY_VERIFY(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(Page().Session().Status().items > 100);
    QTRY_VERIFY(!Tile(QStringLiteral("Size"))->Value().isEmpty());
    QTRY_VERIFY(!Tile(QStringLiteral("Free space"))->Value().isEmpty());
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QVERIFY(!m_view->Model().recording.IsOn());
    QCOMPARE(Logs().size(), 1);
    ZrSurveyDataset dataset;
    dataset.ReadFile(Logs().first());
    QVERIFY(dataset.recs.size() > 20);
    // The plan is that of the simulated vehicle.
    QVERIFY(QFileInfo(Logs().first() + QStringLiteral(".xml")).size() > 100);
}

void tst_SurveyRecordLog::eventsEndInTheLog()
{
    Open();
    QTRY_VERIFY(HasPosition());
    QVERIFY(!Button(QStringLiteral("Target"))->isEnabled());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    Touch(Button(QStringLiteral("Target")));
    Touch(Button(QStringLiteral("Line end")));
    QCOMPARE(Button(QStringLiteral("Target"))->badge, 1);
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QCOMPARE(EventsOf(Logs().first()), QStringList({QStringLiteral("Line end"), QStringLiteral("Target")}));
}

void tst_SurveyRecordLog::notesEndInTheLog()
{
    Open();
    QTRY_VERIFY(HasPosition());
    QTest::keyClick(m_view.get(), Qt::Key_R);
    QTRY_VERIFY(IsOn());
    QTest::keyClick(m_view.get(), Qt::Key_E);
    auto* note = Page().findChild<ZrInput*>();
    QTRY_VERIFY(note->hasFocus());
    QTest::keyClicks(note, QStringLiteral("rope on the bottom"));
    QTest::keyClick(note, Qt::Key_Return);
    QTRY_COMPARE(note->QLineEdit::text(), QString());
    note->SetText(QStringLiteral("second"));
    Touch(Button(QStringLiteral("Add note")));
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QCOMPARE(EventsOf(Logs().first()),
        QStringList({QStringLiteral("rope on the bottom"), QStringLiteral("second")}));
}

/// The plan is long, and takes its time to be written.
void tst_SurveyRecordLog::eventsOfTheFirstSeconds()
{
    ZrPlanDocument& plan = m_view->Model().plan;
    for (int i = 0; i < 3000; ++i) {
        auto wpt = std::make_unique<ZrWpt>();
        wpt->lat = 48.4 + 1e-4 * i;
        wpt->lng = -68.8;
        plan.Route().AddTail(wpt.release());
    }
    plan.Route().UpdatePseudo();
    plan.Edited();
    Open();
    QTRY_VERIFY(HasPosition());
    QTest::keyClick(m_view.get(), Qt::Key_R);
    QCOMPARE(Page().Session().Recording(), ZrRecordingSession::recordingStarting);
    QTest::keyClick(m_view.get(), Qt::Key_1);
    QCOMPARE(Button(QStringLiteral("Target"))->badge, 1);
    auto* note = Page().findChild<ZrInput*>();
    note->SetText(QStringLiteral("at once"));
    QTest::keyClick(note, Qt::Key_Return);
    QCOMPARE(note->QLineEdit::text(), QString());
    QTRY_VERIFY_WITH_TIMEOUT(IsOn(), 60000);
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QCOMPARE(EventsOf(Logs().first()), QStringList({QStringLiteral("Target"), QStringLiteral("at once")}));
}

/// The recording could not begin.
void tst_SurveyRecordLog::eventsThatNoLogTakes()
{
    m_view->Model().settings.recordDir = QStringLiteral("/proc/none");
    Open();
    QTest::keyClick(m_view.get(), Qt::Key_R);
    QTest::keyClick(m_view.get(), Qt::Key_1);
    QTRY_COMPARE(m_view->Model().unsaved.Count(), std::size_t(1));
    QTRY_VERIFY(IsOff());
    QVERIFY2(Banner()->Text().contains(QStringLiteral("1 event of a recording without a log is in memory")),
        qPrintable(Banner()->Text()));
    QVERIFY(ActionOf(*Banner(), QStringLiteral("Export events")));
}

void tst_SurveyRecordLog::keysDoTheSame()
{
    Open();
    QTRY_VERIFY(HasPosition());
    QTest::keyClick(m_view.get(), Qt::Key_R);
    QTRY_VERIFY(IsOn());
    QTest::keyClick(m_view.get(), Qt::Key_Space);
    QTest::keyClick(m_view.get(), Qt::Key_2);
    QTest::keyClick(m_view.get(), Qt::Key_9); // there is no such button
    const double gain = m_view->Model().settings.gain;
    const int palette = m_view->Model().settings.palette;
    QTest::keyClick(m_view.get(), Qt::Key_BracketRight);
    QTest::keyClick(m_view.get(), Qt::Key_P);
    QCOMPARE(m_view->Model().settings.gain, gain + 2.0);
    QVERIFY(m_view->Model().settings.palette != palette);
    for (int i = 0; i < 30; ++i)
        QTest::keyClick(m_view.get(), Qt::Key_BracketLeft);
    QCOMPARE(m_view->Model().settings.gain, -20.0);
    QTest::keyClick(m_view.get(), Qt::Key_R);
    QTRY_VERIFY(IsOff());
    QCOMPARE(EventsOf(Logs().first()), QStringList({QStringLiteral("Line start"), QStringLiteral("Target")}));
}

void tst_SurveyRecordLog::recordingGoesOnBehindOtherPages()
{
    Open();
    QTRY_VERIFY(HasPosition());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    m_view->Show(QStringLiteral("Home"));
    const u64 items = Page().Session().Status().items;
    const i64 trail = Page().Map().TrailCount();
    QTRY_VERIFY(Page().Session().Status().items > items + 50);
    QTRY_VERIFY(Page().Map().TrailCount() > trail);
    QVERIFY(m_view->Model().recording.IsOn());
    m_view->Show(QStringLiteral("Record"));
    QTRY_VERIFY(Button(QStringLiteral("Stop")));
    // The window is closed while it records.
    const QString log = Logs().first();
    m_view.reset();
    ZrSurveyDataset dataset;
    dataset.ReadFile(log);
    QVERIFY(dataset.recs.size() > 5);
}

/// The disk is filled by another program while it records.
void tst_SurveyRecordLog::stopsBeforeTheDiskIsFull()
{
    constexpr qint64 megabyte = 1000000;
    constexpr qint64 room = 60 * megabyte;
    // Where others hardly write.
    const bool hasMemory = QFileInfo(QStringLiteral("/dev/shm")).isWritable()
        && QStorageInfo(QStringLiteral("/dev/shm")).bytesAvailable() > 3 * room;
    const QTemporaryDir disk(hasMemory ? QStringLiteral("/dev/shm/zr-full") : QString());
    QVERIFY(disk.isValid());
    SurveySettings& settings = m_view->Model().settings;
    settings.recordDir = disk.path();
    settings.stopBelowMegabytes
        = static_cast<int>((QStorageInfo(disk.path()).bytesAvailable() - room) / megabyte);
    Open();
    QTRY_VERIFY(HasPosition());
    QSignalSpy failed(&Page().Session(), &ZrRecordingSession::Failed);
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Page().Session().Status().items > 50);
    QFile filler(disk.filePath(QStringLiteral("filler")));
    QVERIFY(filler.open(QIODevice::WriteOnly));
    QCOMPARE(filler.write(QByteArray(static_cast<int>(2 * room), 'x')), 2 * room);
    filler.close();
    QTRY_VERIFY_WITH_TIMEOUT(IsOff(), 30000);
    QCOMPARE(failed.size(), 1);
    QVERIFY(!m_view->Model().recording.IsOn());
    // Told on the screen, with the reason and the limit; the log says it as well, and is sound.
    QVERIFY(Banner()->isVisible());
    const QString told = Banner()->Text();
    QVERIFY2(told.contains(QStringLiteral("Recording stopped before the disk is full")), qPrintable(told));
    QVERIFY2(Banner()->Advice().contains(QStringLiteral("Free some space")), qPrintable(Banner()->Advice()));
    QVERIFY(ActionOf(*Banner(), QStringLiteral("Review")));
    QTRY_VERIFY(Button(QStringLiteral("Record")));
    const QString log
        = disk.filePath(QDir(disk.path()).entryList({QStringLiteral("*.log")}, QDir::Files).first());
    QVERIFY(EventsOf(log).join(QLatin1Char(' ')).contains(QStringLiteral("free")));
    ZrLogCheck check;
    QVERIFY(check.Run(log));
    QCOMPARE(check.ProblemCount(), u64(0));
    // And it does not begin again on a disk that is full.
    Touch(Button(QStringLiteral("Record")));
    QTRY_COMPARE(failed.size(), 2);
    QVERIFY(IsOff());
}

/// Each part can be understood without the others.
void tst_SurveyRecordLog::splitsWithHead()
{
    m_view->Model().settings.splitMegabytes = 1;
    Open();
    QTRY_VERIFY(HasPosition());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY_WITH_TIMEOUT(Page().Session().Status().part >= 3, 120000);
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    const QStringList logs = Logs();
    QVERIFY(logs.size() >= 3);
    for (const QString& log : logs) {
        QVERIFY2(QFileInfo(log).size() <= 1000000, qPrintable(log));
        ZrPlayer player;
        QVector<u32> types;
        connect(&player, &ZrPlayer::NewPayload, this,
            [&types](const ZrLogItemInf& inf, zr::span<u8>) { types.append(inf.type); });
        QVERIFY(player.OpenFile(log));
        while (types.size() < 8 && player.ReadNextItem(true)) { }
        QVERIFY2(types.first() == u32(rtMissionPlan), qPrintable(log));
        QVERIFY2(types.contains(u32(krtNavigation)) || types.contains(u32(krtFix)), qPrintable(log));
    }
}

void tst_SurveyRecordLog::folderThatCannotBeMade()
{
    m_view->Model().settings.recordDir = QStringLiteral("/proc/none");
    Open();
    QSignalSpy failed(&Page().Session(), &ZrRecordingSession::Failed);
    Touch(Button(QStringLiteral("Record")));
    QTRY_COMPARE(failed.size(), 1);
    QTRY_VERIFY(Button(QStringLiteral("Record")));
    QVERIFY(!m_view->Model().recording.IsOn());
}

GL_TEST_MAIN(tst_SurveyRecordLog)
#include "tst_SurveyRecordLog.moc"
