// The page "Record" of the application as a person uses it: a real window, touches, and the logs on disk.

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/review/ZrLogCheck.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrPlayer.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QSignalSpy>
#include <QStorageInfo>
#include <QSurfaceFormat>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

class tst_SurveyRecord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void simulatorIsLive();
    void planThatChanges();
    void oneTouchRecords();
    void eventsEndInTheLog();
    void notesEndInTheLog();
    void keysDoTheSame();
    void recordingGoesOnBehindOtherPages();
    void waterfallRuns();
    void bottomLineCanBeSwitchedOff();
    void stopsBeforeTheDiskIsFull();
    void splitsWithHead();
    void anglesHaveTheirSign();
    void followEndsByHand();
    void otherUnitsAtOnce();
    void replayIsASource();
    void sourceThatCannotBeHad();
    void folderThatCannotBeMade();
    void staleValuesAreMarked();
    void idleWithoutData();
    void nothingOverlaps_data();
    void nothingOverlaps();

private:
    void Open(const QSize& size = QSize(1280, 800));

    RecordPage& Page() { return *static_cast<RecordPage*>(m_view->GetPage(QStringLiteral("Record"))); }

    ZrBtn* Button(const QString& text)
    {
        for (ZrBtn* button : Page().findChildren<ZrBtn*>()) {
            if (button->text == text && button->isVisible())
                return button;
        }
        return nullptr;
    }

    ZrValueTile* Tile(const QString& caption)
    {
        for (ZrValueTile* tile : Page().findChildren<ZrValueTile*>()) {
            if (tile->accessibleName().startsWith(caption))
                return tile;
        }
        return nullptr;
    }

    void Touch(QWidget* widget)
    {
        QVERIFY(widget);
        const QPoint middle = widget->rect().center();
        QTest::touchEvent(widget, m_screen).press(0, middle, widget);
        QTest::touchEvent(widget, m_screen).release(0, middle, widget);
    }

    QStringList Logs() const
    {
        QStringList paths;
        const QDir dir(m_dir->filePath(QStringLiteral("logs")));
        for (const QString& name : dir.entryList({QStringLiteral("*.log")}, QDir::Files, QDir::Name))
            paths += dir.filePath(name);
        return paths;
    }

    QStringList EventsOf(const QString& log)
    {
        ZrSurveyDataset dataset;
        dataset.ReadFile(log);
        QStringList texts;
        for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;)
            texts += dataset.events.GetNext(pos)->text;
        texts.sort(); // those of one moment are in any order
        return texts;
    }

    bool IsOn() { return Page().Session().Recording() == ZrRecordingSession::recordingOn; }

    bool IsOff() { return Page().Session().Recording() == ZrRecordingSession::recordingOff; }

    bool HasPosition() { return Page().Session().State().latitude.IsKnown(); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<SurveyView> m_view;
    QTouchDevice* m_screen = QTest::createTouchDevice();
};

void tst_SurveyRecord::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    ZrUnits::SetToMetric();
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    m_view = std::make_unique<SurveyView>(QString());
    SurveySettings& settings = m_view->Model().settings;
    settings.recordDir = m_dir->filePath(QStringLiteral("logs"));
    settings.simSpeed = 20.0;
    settings.stopBelowMegabytes = 1;
}

void tst_SurveyRecord::cleanup()
{
    m_view.reset();
    ZrUnits::SetToMetric();
}

void tst_SurveyRecord::Open(const QSize& size)
{
    m_view->resize(size);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    QApplication::setActiveWindow(m_view.get());
    m_view->Show(QStringLiteral("Record"));
    QTRY_VERIFY(Page().isVisible());
}

void tst_SurveyRecord::simulatorIsLive()
{
    Open();
    QTRY_VERIFY(HasPosition());
    QTRY_VERIFY(!Tile(QStringLiteral("Heading"))->Value().isEmpty());
    QTRY_VERIFY(!Tile(QStringLiteral("Depth"))->Value().isEmpty());
    QTRY_VERIFY(!Tile(QStringLiteral("Altitude"))->Value().isEmpty());
    QTRY_VERIFY(!Tile(QStringLiteral("Speed"))->Value().isEmpty());
    QTRY_COMPARE(Tile(QStringLiteral("Age of fix"))->Value(), QStringLiteral("0"));
    QTRY_VERIFY(Page().Map().TrailCount() > 5);
    QVERIFY(m_view->Model().vehicle.IsLive());
    QVERIFY(std::fabs(m_view->Model().vehicle.Current().lat - 50.332) < 0.01);
    // All of the plan is in view: lanes of 400 m.
    const double height = Page().Map().m_camera.Bounds().height();
    QVERIFY2(height > 400.0 && height < 1500.0, qPrintable(QString::number(height)));
    QVERIFY(Logs().isEmpty());
    QVERIFY(!m_view->Model().recording.IsOn());
}

/// The simulated vehicle runs the plan as it is, but for one that is being recorded.
void tst_SurveyRecord::planThatChanges()
{
    const auto plan = [this](double lat) {
        ZrPlanDocument& document = m_view->Model().plan;
        document.New();
        document.Route().linked = true;
        for (const double lng : {-4.0, -3.998})
            document.Route().Add(lat, lng, eZrWptBlue, ZrWpts::eAddTail);
        document.Edited();
    };
    const auto isNear = [this](double lat) {
        return HasPosition() && std::fabs(Page().Session().State().latitude.value - lat) < 0.01;
    };
    Open();
    QTRY_VERIFY(isNear(50.332));
    m_view->Show(QStringLiteral("Home"));
    plan(48.5);
    m_view->Show(QStringLiteral("Record"));
    QTRY_VERIFY(isNear(48.5));
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    m_view->Show(QStringLiteral("Home"));
    plan(47.5);
    m_view->Show(QStringLiteral("Record"));
    const auto items = Page().Session().Status().items;
    QTRY_VERIFY(Page().Session().Status().items > items + 200);
    QVERIFY(IsOn());
    QVERIFY(isNear(48.5));
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QTRY_VERIFY(isNear(47.5));
    // The same plan is no reason to begin anew.
    const i64 trail = Page().Map().TrailCount();
    m_view->Show(QStringLiteral("Home"));
    m_view->Show(QStringLiteral("Record"));
    QVERIFY(Page().Map().TrailCount() >= trail);
}

void tst_SurveyRecord::oneTouchRecords()
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

void tst_SurveyRecord::eventsEndInTheLog()
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

void tst_SurveyRecord::notesEndInTheLog()
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

void tst_SurveyRecord::keysDoTheSame()
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

void tst_SurveyRecord::recordingGoesOnBehindOtherPages()
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

void tst_SurveyRecord::waterfallRuns()
{
    Open();
    QTRY_VERIFY(Page().Waterfall().Ring().End() > 20);
    QVERIFY(Page().Waterfall().Ring().HasSide(sidePort));
    QVERIFY(Page().Waterfall().Ring().HasSide(sideStarboard));
    // Something of it is on the screen: the newest lines, at its top.
    QWidget* panel = Page().findChildren<ZrMapPanel*>().last();
    const auto brightness = [this, panel] {
        const QImage image = m_view->grabFramebuffer();
        const double ratio = m_view->devicePixelRatioF();
        const QRect at = panel->geometry();
        int brightest = 0;
        for (int x = at.left() + 10; x < at.right() - 10; ++x)
            brightest
                = std::max(brightest, qGray(image.pixel(qRound(x * ratio), qRound((at.top() + 10) * ratio))));
        return brightest;
    };
    QTRY_VERIFY(brightness() > 60);
}

void tst_SurveyRecord::bottomLineCanBeSwitchedOff()
{
    Open();
    QTRY_VERIFY(Page().Waterfall().Ring().End() > 150);
    QWidget* panel = Page().findChildren<ZrMapPanel*>().last();
    const auto drawn = [this, panel] {
        const QImage image = m_view->grab(panel->geometry()).toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                count += colour.blue() > colour.red() + 90 ? 1 : 0;
            }
        }
        return count;
    };
    QVERIFY(m_view->Model().settings.bottom);
    QTRY_VERIFY(drawn() > 50);
    QTest::keyClick(m_view.get(), Qt::Key_O);
    QVERIFY(!m_view->Model().settings.bottom);
    QTRY_COMPARE(drawn(), 0);
    for (ZrBtn* button : Page().findChildren<ZrBtn*>()) {
        if (button->toolTip().contains(QStringLiteral("bottom line"))) {
            QVERIFY(!button->on);
            Touch(button);
            QTRY_VERIFY(button->on);
        }
    }
    QVERIFY(m_view->Model().settings.bottom);
    QTRY_VERIFY(drawn() > 50);
}

/// The disk is filled by another program while it records.
void tst_SurveyRecord::stopsBeforeTheDiskIsFull()
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
    const QString told = m_view->findChild<ZrToast*>()->Text();
    QVERIFY2(told.contains(QStringLiteral("free")), qPrintable(told));
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
void tst_SurveyRecord::splitsWithHead()
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

void tst_SurveyRecord::anglesHaveTheirSign()
{
    Open();
    for (const char* caption : {"Heading", "Pitch", "Roll"}) {
        ZrValueTile* tile = Tile(QString::fromLatin1(caption));
        QTRY_VERIFY(!tile->Value().isEmpty());
        QTRY_VERIFY2(tile->Number().endsWith(ZrUnits::degrees), qPrintable(tile->Number()));
        QVERIFY(!tile->Number().contains(QLatin1Char('-')));
    }
}

void tst_SurveyRecord::followEndsByHand()
{
    Open();
    QTRY_VERIFY(HasPosition());
    QVERIFY(Page().Map().m_isFollowing);
    QTest::keyClick(m_view.get(), Qt::Key_F);
    QVERIFY(!Page().Map().m_isFollowing);
    QTest::keyClick(m_view.get(), Qt::Key_F);
    QVERIFY(Page().Map().m_isFollowing);
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QVERIFY(!Page().Map().m_isFollowing);
    const QPointF centre = Page().Map().m_camera.Centre();
    const i64 trail = Page().Map().TrailCount();
    QTRY_VERIFY(Page().Map().TrailCount() > trail + 3);
    QCOMPARE(Page().Map().m_camera.Centre(), centre);
}

void tst_SurveyRecord::otherUnitsAtOnce()
{
    Open();
    QTRY_VERIFY(!Tile(QStringLiteral("Depth"))->Value().isEmpty());
    QCOMPARE(Tile(QStringLiteral("Depth"))->Unit(), QStringLiteral("m"));
    ZrUnits::SetToImperial();
    QTRY_COMPARE(Tile(QStringLiteral("Depth"))->Unit(), QStringLiteral("ft"));
    QTRY_COMPARE(Tile(QStringLiteral("Speed"))->Unit(), QStringLiteral("kts"));
}

void tst_SurveyRecord::replayIsASource()
{
    const QString path = m_dir->filePath(QStringLiteral("old.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 100.0));
    ZrNavRecord nav;
    for (int i = 0; i < 20; ++i) {
        nav.latitude = 48.0 + 1e-5 * i;
        nav.longitude = -68.0;
        QVERIFY(log.Write(zr::rec_type(krtNavigation), 1, ZrNavRecord::Format, 100.0 + 0.01 * i, false,
            zr::bytes_of(nav.Encode())));
    }
    QVERIFY(log.Commit());
    m_view->Model().settings.source = SurveySource::replay;
    m_view->Model().settings.sourceFile = path;
    Open();
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceFinished);
    QTRY_COMPARE(Page().Map().TrailCount(), i64(20));
    // Another source begins another trail.
    m_view->Model().settings.source = SurveySource::simulator;
    QTRY_VERIFY(m_view->Model().vehicle.Current().lat > 50.0);
}

void tst_SurveyRecord::sourceThatCannotBeHad()
{
    m_view->Model().settings.source = SurveySource::nmeaFile;
    m_view->Model().settings.sourceFile = QStringLiteral("/none/boat.nmea");
    Open();
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceFailed);
    const auto isTold = [this] {
        for (const ZrBtn* button : Page().findChildren<ZrBtn*>()) {
            if (button->text.contains(QStringLiteral("Cannot read /none/boat.nmea")))
                return true;
        }
        return false;
    };
    QTRY_VERIFY(isTold());
}

void tst_SurveyRecord::folderThatCannotBeMade()
{
    m_view->Model().settings.recordDir = QStringLiteral("/proc/none");
    Open();
    QSignalSpy failed(&Page().Session(), &ZrRecordingSession::Failed);
    Touch(Button(QStringLiteral("Record")));
    QTRY_COMPARE(failed.size(), 1);
    QTRY_VERIFY(Button(QStringLiteral("Record")));
    QVERIFY(!m_view->Model().recording.IsOn());
}

void tst_SurveyRecord::staleValuesAreMarked()
{
    const QString path = m_dir->filePath(QStringLiteral("old.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 100.0));
    ZrNavRecord nav;
    nav.latitude = 48.0;
    nav.longitude = -68.0;
    nav.depth = 7.0F;
    QVERIFY(log.Write(
        zr::rec_type(krtNavigation), 1, ZrNavRecord::Format, 100.0, false, zr::bytes_of(nav.Encode())));
    QVERIFY(log.Commit());
    m_view->Model().settings.source = SurveySource::replay;
    m_view->Model().settings.sourceFile = path;
    Open();
    QTRY_COMPARE(Tile(QStringLiteral("Depth"))->Value(), QStringLiteral("7.0"));
    QTRY_COMPARE_WITH_TIMEOUT(Tile(QStringLiteral("Depth"))->State(), ZrValueTile::stale, 30000);
    QVERIFY(Tile(QStringLiteral("Heading"))->Value().isEmpty());
}

void tst_SurveyRecord::idleWithoutData()
{
    m_view->Model().settings.source = SurveySource::udp;
    m_view->Model().settings.udpPort = 0; // any free one
    Open();
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceOpen);
    QSignalSpy ticks(Page().findChild<QTimer*>(QStringLiteral("tick")), &QTimer::timeout);
    QTRY_VERIFY(ticks.size() > 1);
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    const int before = ticks.size();
    QTRY_VERIFY(ticks.size() > before + 3);
    QCOMPARE(frames.size(), 0);
}

void tst_SurveyRecord::nothingOverlaps_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("900x600") << QSize(900, 600);
    QTest::newRow("1280x800") << QSize(1280, 800);
    QTest::newRow("1920x1080") << QSize(1920, 1080);
    QTest::newRow("2560x1440") << QSize(2560, 1440);
}

void tst_SurveyRecord::nothingOverlaps()
{
    QFETCH(QSize, size);
    SurveySettings& settings = m_view->Model().settings;
    while (settings.eventLabels.size() < 8)
        settings.eventLabels += QStringLiteral("Something longer %1").arg(settings.eventLabels.size());
    Open(size);
    QTRY_COMPARE(Page().size(), m_view->size());
    QVector<QWidget*> controls;
    for (ZrBtn* button : Page().findChildren<ZrBtn*>())
        controls += button;
    for (ZrValueTile* tile : Page().findChildren<ZrValueTile*>())
        controls += tile;
    controls += Page().findChild<ZrInput*>();
    for (int i = 0; i < controls.size(); ++i) {
        if (!controls[i]->isVisible())
            continue;
        const QRect at = controls[i]->geometry();
        QVERIFY2(Page().rect().contains(at), qPrintable(controls[i]->accessibleName()));
        if (qobject_cast<ZrBtn*>(controls[i]))
            QVERIFY2(at.width() >= 44 && at.height() >= 44, qPrintable(controls[i]->toolTip()));
        for (int j = i + 1; j < controls.size(); ++j) {
            if (controls[j]->isVisible())
                QVERIFY2(!at.intersects(controls[j]->geometry()),
                    qPrintable(controls[i]->accessibleName() + QStringLiteral(" / ")
                        + controls[j]->accessibleName()));
        }
    }
}

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::puts("SKIP: no display");
        return 77;
    }
    QSurfaceFormat format;
    format.setDepthBufferSize(24);
    format.setStencilBufferSize(8);
    format.setSwapInterval(0);
    QSurfaceFormat::setDefaultFormat(format);
    QStandardPaths::setTestModeEnabled(true);
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    tst_SurveyRecord test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SurveyRecord.moc"
