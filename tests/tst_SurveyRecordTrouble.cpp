// What the page "Record" says when a recording ends or goes wrong, for how long there is room, and where its
// map has things.

#include "SmallFiles.h"
#include "SurveyRecordWindow.h"
#include "ZrKit/map/ZrMapGesture.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrUtil/ZrForm.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrInput.h"
#include "apps/ZrSurvey/HomePage.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QSignalSpy>

class tst_SurveyRecordTrouble : public SurveyRecordWindow
{
    Q_OBJECT

private Q_SLOTS:
    void stopStaysOnTheScreen();
    void stopIsTouchedAway();
    void nextRecordingEndsTheMessage();
    void folderThatCannotBeWritten();
    void diskThatFails();
    void onOtherPages();
    void sourceThatEnds();
    void timeLeftOfAges();
    void timeLeftOfTheSource();
    void timeLeftOfAnEarlierRecording();
    void timeLeftIsNotKnown();
    void zoomKeys_data();
    void zoomKeys();
    void zoomKeysFollow();
    void arrowAndToolsApart_data();
    void arrowAndToolsApart();
    void northUp();

private:
    void StopForSpace();
};

/// The disk fails while it records, and for another recording too little is free.
void tst_SurveyRecordTrouble::StopForSpace()
{
    SurveySettings& settings = m_view->Model().settings;
    QTRY_VERIFY(HasPosition());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Page().Session().Status().items > 20);
    settings.stopBelowMegabytes = 1000000000; // of the next start
    {
        const SmallFiles limit(QFileInfo(Page().Session().Status().file).size());
        QTRY_VERIFY(IsOff());
    }
    QVERIFY(Banner()->isVisible());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(Banner()->Text().contains(QStringLiteral("Only ")));
    QTRY_VERIFY(IsOff());
    settings.stopBelowMegabytes = 1;
}

/// With time, reason, limit and what to do next; longer than any message that goes by itself, and on the
/// first page as well.
void tst_SurveyRecordTrouble::stopStaysOnTheScreen()
{
    Open();
    StopForSpace();
    const QString text = Banner()->Text();
    QVERIFY2(text.contains(QStringLiteral(" UTC: Only ")), qPrintable(text));
    QVERIFY2(Banner()->Advice().contains(QStringLiteral("Free some space")), qPrintable(Banner()->Advice()));
    QCOMPARE(Banner()->Kind(), ZrBanner::error);
    // No toast lies over it; nothing that is told later takes it away.
    QVERIFY(!m_view->findChild<ZrToast*>()->Text().contains(QStringLiteral("Only ")));
    m_view->Tell(QStringLiteral("something else"));
    QTest::qWait(300);
    QVERIFY(Banner()->isVisible());
    // All below has moved, and nothing is covered.
    const QRect banner = Banner()->geometry();
    for (const QWidget* child : Page().findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (child != Banner() && child->isVisible())
            QVERIFY2(!child->geometry().intersects(banner), qPrintable(child->accessibleName()));
    }
    m_view->Show(QStringLiteral("Home"));
    StateBanner* home = Banner(QStringLiteral("Home"));
    QVERIFY(home->isVisible());
    QCOMPARE(home->Text(), text);
    QWidget* page = m_view->GetPage(QStringLiteral("Home"));
    for (const QWidget* child : page->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (child != home && child->isVisible())
            QVERIFY2(!child->geometry().intersects(home->geometry()), qPrintable(child->accessibleName()));
    }
    bool isTold = false;
    for (const ZrValueTile* tile : page->findChildren<ZrValueTile*>())
        isTold |= tile->Value() == QStringLiteral("Stopped") && tile->State() == ZrValueTile::error;
    QVERIFY(isTold);
    // The way out.
    ZrBtn* settings = ActionOf(*home, QStringLiteral("Settings"));
    QVERIFY(settings);
    QTest::mouseClick(settings, Qt::LeftButton);
    QVERIFY(m_view->forms().isVisible());
    QCOMPARE(m_view->forms().m_form->m_name, QStringLiteral("Recording"));
}

void tst_SurveyRecordTrouble::stopIsTouchedAway()
{
    Open();
    StopForSpace();
    const QRect map = Page().findChildren<ZrMapPanel*>().first()->geometry();
    Touch(Banner()->findChild<ZrBtn*>(QStringLiteral("dismiss")));
    QVERIFY(!Banner()->isVisible());
    QVERIFY(Page().findChildren<ZrMapPanel*>().first()->height() > map.height());
    QVERIFY(Banner(QStringLiteral("Home"))->IsEmpty());
    QVERIFY(m_view->Model().recording.Told().text.isEmpty());
}

void tst_SurveyRecordTrouble::nextRecordingEndsTheMessage()
{
    Open();
    StopForSpace();
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(!Banner()->isVisible());
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QVERIFY(Banner()->IsEmpty());
}

void tst_SurveyRecordTrouble::folderThatCannotBeWritten()
{
    m_view->Model().settings.recordDir = QStringLiteral("/proc/none");
    Open();
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(Banner()->isVisible());
    QVERIFY2(Banner()->Text().contains(QStringLiteral("Cannot create a log: /proc/none")),
        qPrintable(Banner()->Text()));
    QVERIFY2(Banner()->Advice().startsWith(QStringLiteral("The folder cannot be written: choose another")),
        qPrintable(Banner()->Advice()));
    QVERIFY(!ActionOf(*Banner(), QStringLiteral("Review"))); // there is nothing to see
    QVERIFY(!Button(QStringLiteral("Target"))->isEnabled()); // no event that would go nowhere
}

/// The log ends; events that were given meanwhile are kept in memory, and that is said until they are
/// exported.
void tst_SurveyRecordTrouble::diskThatFails()
{
    Open();
    QTRY_VERIFY(HasPosition());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Page().Session().Status().items > 20);
    const QString log = Page().Session().Status().file;
    {
        const SmallFiles limit(QFileInfo(log).size());
        // Given before anybody can know that the disk has failed.
        QVERIFY(Page().Session().AddEvent(QStringLiteral("Target")));
        QVERIFY(Page().Session().AddEvent(QStringLiteral("Line end")));
        QTRY_VERIFY(IsOff());
        QTRY_COMPARE(m_view->Model().unsaved.Count(), std::size_t(2));
    }
    const QString text = Banner()->Text();
    QVERIFY2(text.contains(QStringLiteral("does not take any more data")), qPrintable(text));
    QVERIFY2(
        text.contains(QStringLiteral("2 events of %1 are in memory only").arg(QFileInfo(log).fileName())),
        qPrintable(text));
    QVERIFY2(Banner()->Advice().contains(QStringLiteral("Check the disk")), qPrintable(Banner()->Advice()));
    QVERIFY2(
        Banner()->Advice().contains(QStringLiteral("Export them before")), qPrintable(Banner()->Advice()));
    QVERIFY(ActionOf(*Banner(), QStringLiteral("Review")));
    QVERIFY(EventsOf(log).isEmpty());
    // The next recording ends the message about the last one; the events are still there.
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QVERIFY(Banner()->isVisible());
    QVERIFY(Banner()->Text().startsWith(QStringLiteral("2 events of ")));
    Touch(ActionOf(*Banner(), QStringLiteral("Export events")));
    auto* files = m_view->findChild<ZrFilePanel*>(QStringLiteral("export unsaved events"));
    QVERIFY(files && files->isVisible());
    files->Cancel();
    const QString path = m_dir->filePath(QStringLiteral("kept.csv"));
    Q_EMIT files->FileChosen(path);
    QFile table(path);
    QVERIFY(table.open(QIODevice::ReadOnly));
    const QByteArray lines = table.readAll();
    QVERIFY(lines.contains(",Target,") && lines.contains(",Line end,"));
    QVERIFY(Banner()->IsEmpty());
}

/// Where no banner is, a message goes by; the banner is there later.
void tst_SurveyRecordTrouble::onOtherPages()
{
    Open();
    QTRY_VERIFY(HasPosition());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Page().Session().Status().items > 20);
    m_view->Show(QStringLiteral("Plan"));
    {
        const SmallFiles limit(QFileInfo(Page().Session().Status().file).size());
        QTRY_VERIFY(IsOff());
    }
    const auto* toast = m_view->findChild<ZrToast*>();
    QTRY_VERIFY(toast->isVisible());
    QCOMPARE(toast->Kind(), ZrToast::error);
    QVERIFY2(toast->Text().contains(QStringLiteral("Recording stopped")), qPrintable(toast->Text()));
    m_view->Show(QStringLiteral("Record"));
    QVERIFY(Banner()->isVisible());
}

/// The recording goes on without data, which is said until it ends or others come.
void tst_SurveyRecordTrouble::sourceThatEnds()
{
    UseReplay(48.0, 1.5);
    Open();
    QTRY_VERIFY(HasPosition());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceFinished);
    QTRY_VERIFY(Banner()->isVisible());
    QVERIFY(IsOn());
    QCOMPARE(Banner()->Kind(), ZrBanner::warning);
    QVERIFY2(Banner()->Text().contains(QStringLiteral("the source has ended")), qPrintable(Banner()->Text()));
    QVERIFY2(
        Banner()->Advice().contains(QStringLiteral("Stop the recording")), qPrintable(Banner()->Advice()));
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QVERIFY(!Banner()->isVisible());
}

void tst_SurveyRecordTrouble::timeLeftOfAges()
{
    m_view->Model().settings.source = SurveySource::udp;
    m_view->Model().settings.udpPort = 0; // any free one
    Open();
    m_view->Model().recording.SetEarlierRate(1e-3);
    QTRY_COMPARE_WITH_TIMEOUT(
        Tile(QStringLiteral("Free space"))->Note(), QStringLiteral("> 1 year left"), 15000);
}

/// Before anything is recorded, by what comes; the recording then says the same but for what varies.
void tst_SurveyRecordTrouble::timeLeftOfTheSource()
{
    m_view->Model().settings.simSpeed = 1.0;
    Open();
    ZrValueTile* space = Tile(QStringLiteral("Free space"));
    QTRY_VERIFY_WITH_TIMEOUT(space->Note().startsWith(QChar(0x2248)), 20000);
    QVERIFY2(space->Note().endsWith(QStringLiteral(" left")), qPrintable(space->Note()));
    QVERIFY2(space->toolTip().contains(QStringLiteral("the source")), qPrintable(space->toolTip()));
    SurveyRecording& recording = m_view->Model().recording;
    const qint64 room = 1000000000;
    QTest::qWait(4000); // the rates are means of three seconds
    const double before = recording.Left(room, 0).seconds;
    QCOMPARE(recording.Left(room, 0).by, ZrSpaceLeft::bySource);
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_COMPARE_WITH_TIMEOUT(recording.Left(room, 0).by, ZrSpaceLeft::byRecording, 10000);
    QTRY_VERIFY_WITH_TIMEOUT(std::fabs(recording.Left(room, 0).seconds / before - 1.0) < 0.3, 10000);
    QVERIFY(!space->Note().startsWith(QChar(0x2248)));
    m_view->Show(QStringLiteral("Home"));
    bool isTold = false;
    for (const ZrValueTile* tile : m_view->GetPage(QStringLiteral("Home"))->findChildren<ZrValueTile*>())
        isTold |= tile->Note().startsWith(QStringLiteral("For "));
    QVERIFY(isTold);
}

void tst_SurveyRecordTrouble::timeLeftOfAnEarlierRecording()
{
    SurveyRecording recording;
    const qint64 room = 61000000;
    QVERIFY(!recording.Left(room, 1000000).IsKnown());
    recording.SetEarlierRate(10000.0);
    QCOMPARE(recording.Left(room, 1000000).by, ZrSpaceLeft::byLast);
    QCOMPARE(recording.Left(room, 1000000).seconds, 6000.0);
    // That of this run is better known than one of an earlier one.
    ZrRecorder::Status status;
    status.bytesPerSecond = 20000.0;
    recording.Set(status);
    QCOMPARE(recording.Left(room, 1000000).by, ZrSpaceLeft::byRecording);
    recording.End();
    QCOMPARE(recording.Left(room, 1000000).by, ZrSpaceLeft::byLast);
    QCOMPARE(recording.Left(room, 1000000).seconds, 3000.0);
    recording.SetSourceRate(30000.0);
    QCOMPARE(recording.Left(room, 1000000).by, ZrSpaceLeft::bySource);
    QCOMPARE(recording.Left(room, 1000000).seconds, 2000.0);
    recording.SetSourceRate(60000.0); // smoothed
    QVERIFY(recording.Left(room, 1000000).seconds > 1700.0 && recording.Left(room, 1000000).seconds < 2000.0);
    recording.SetSourceRate(0.0); // another source
    QCOMPARE(recording.Left(room, 1000000).by, ZrSpaceLeft::byLast);
}

/// A dash, and why.
void tst_SurveyRecordTrouble::timeLeftIsNotKnown()
{
    m_view->Model().settings.source = SurveySource::udp;
    m_view->Model().settings.udpPort = 0; // any free one
    Open();
    ZrValueTile* space = Tile(QStringLiteral("Free space"));
    QTRY_VERIFY(!space->Value().isEmpty());
    QCOMPARE(space->Note(), QString::fromUtf8("– left: no data"));
    QVERIFY2(space->toolTip().contains(QStringLiteral("nothing has come from the source")),
        qPrintable(space->toolTip()));
    m_view->Show(QStringLiteral("Home"));
    ZrValueTile* home = m_view->GetPage(QStringLiteral("Home"))->findChildren<ZrValueTile*>().last();
    QTRY_COMPARE(home->Note(), QString::fromUtf8("– left: no data yet"));
    QVERIFY(home->toolTip().contains(QStringLiteral("nothing has come from the source")));
}

void tst_SurveyRecordTrouble::zoomKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("isNearer");
    QTest::newRow("+") << int(Qt::Key_Plus) << int(Qt::NoModifier) << true;
    QTest::newRow("Shift +") << int(Qt::Key_Plus) << int(Qt::ShiftModifier) << true;
    QTest::newRow("keypad +") << int(Qt::Key_Plus) << int(Qt::KeypadModifier) << true;
    QTest::newRow("=") << int(Qt::Key_Equal) << int(Qt::NoModifier) << true;
    QTest::newRow("-") << int(Qt::Key_Minus) << int(Qt::NoModifier) << false;
    QTest::newRow("keypad -") << int(Qt::Key_Minus) << int(Qt::KeypadModifier) << false;
    QTest::newRow("Shift -") << int(Qt::Key_Underscore) << int(Qt::ShiftModifier) << false;
}

/// Nobody has touched the map.
void tst_SurveyRecordTrouble::zoomKeys()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, isNearer);
    Open();
    QTRY_VERIFY(HasPosition());
    QVERIFY(!Page().findChildren<ZrMapPanel*>().first()->hasFocus());
    const double before = Page().Map().m_camera.Scale();
    QTest::keyClick(m_view.get(), static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    const double factor = before / Page().Map().m_camera.Scale();
    QVERIFY2(
        std::fabs(factor - (isNearer ? ZrMapGesture::WheelFactor : 1.0 / ZrMapGesture::WheelFactor)) < 1e-9,
        qPrintable(QString::number(factor)));
    // In a line of text it is a sign, and with Ctrl something else.
    QTest::keyClick(m_view.get(), static_cast<Qt::Key>(key), Qt::ControlModifier);
    QTest::keyClick(m_view.get(), Qt::Key_E);
    QTRY_VERIFY(Page().findChild<ZrInput*>()->hasFocus());
    QTest::keyClick(
        Page().findChild<ZrInput*>(), static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    QVERIFY(std::fabs(before / Page().Map().m_camera.Scale() - factor) < 1e-9);
}

/// Nearer is not away: the vehicle stays in the middle. By hand it ends.
void tst_SurveyRecordTrouble::zoomKeysFollow()
{
    Open();
    QTRY_VERIFY(Page().Map().m_way.IsCentred());
    QVERIFY(Page().Map().m_way.m_isFollowing);
    QTest::keyClick(m_view.get(), Qt::Key_Plus);
    QVERIFY(Page().Map().m_way.m_isFollowing);
    auto* map = Page().findChildren<ZrMapPanel*>().first();
    map->setFocus();
    QTest::keyClick(map, Qt::Key_Plus);
    QVERIFY(Page().Map().m_way.m_isFollowing);
    QTest::keyClick(map, Qt::Key_Left);
    QVERIFY(!Page().Map().m_way.m_isFollowing);
}

void tst_SurveyRecordTrouble::arrowAndToolsApart_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("900x600") << QSize(900, 600);
    QTest::newRow("1280x800") << QSize(1280, 800);
    QTest::newRow("2560x1440") << QSize(2560, 1440);
}

/// The arrow of the map and its scale are beside the tools, not below them.
void tst_SurveyRecordTrouble::arrowAndToolsApart()
{
    QFETCH(QSize, size);
    Open(size);
    QTRY_COMPARE(Page().size(), m_view->size());
    const LiveMap& map = Page().Map();
    const auto* panel = Page().findChildren<ZrMapPanel*>().first();
    const double ratio = panel->devicePixelRatioF();
    const auto onPage = [&](const QRectF& rect) {
        return QRectF(rect.topLeft() / ratio, rect.size() / ratio).translated(panel->pos());
    };
    const QRectF arrow = onPage(map.m_grid.NorthArrowRect(map.m_camera, map.m_pixelFactor));
    const QRectF bar = onPage(map.m_grid.ScaleBarRect(map.m_camera, map.m_pixelFactor));
    QVERIFY(!arrow.isEmpty() && !bar.isEmpty());
    QVERIFY(QRectF(panel->geometry()).contains(arrow) && QRectF(panel->geometry()).contains(bar));
    int tools = 0;
    for (const ZrBtn* button : Page().findChildren<ZrBtn*>()) {
        if (button->type != ZrBtn::typeRound)
            continue;
        ++tools;
        QVERIFY(panel->geometry().contains(button->geometry()));
        QVERIFY2(!QRectF(button->geometry()).intersects(arrow), qPrintable(button->toolTip()));
        QVERIFY2(!QRectF(button->geometry()).intersects(bar), qPrintable(button->toolTip()));
    }
    QCOMPARE(tools, 2);
}

void tst_SurveyRecordTrouble::northUp()
{
    Open();
    QTRY_VERIFY(Page().Map().m_way.IsCentred());
    auto* panel = Page().findChildren<ZrMapPanel*>().first();
    panel->Map().m_camera.SetRotation(40.0);
    const double ratio = panel->devicePixelRatioF();
    const QPointF middle
        = Page().Map().m_grid.NorthArrowRect(Page().Map().m_camera, Page().Map().m_pixelFactor).center();
    QTest::mouseClick(panel, Qt::LeftButton, Qt::NoModifier, (middle / ratio).toPoint());
    QCOMPARE(Page().Map().m_camera.Rotation(), 0.0);
    QVERIFY(Page().Map().m_way.m_isFollowing);
}

GL_TEST_MAIN(tst_SurveyRecordTrouble)
#include "tst_SurveyRecordTrouble.moc"
