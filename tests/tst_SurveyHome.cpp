// The home page: what its tiles say, where its entries lead, and that it stands still while nothing happens.

#include "SurveyWindow.h"
#include "ZrKit/geo/ZrPositionShown.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/ui/ZrEntryBtn.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrSurveyLog.h"
#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/HomePage.h"
#include "apps/ZrSurvey/HomeState.h"
#include "apps/ZrSurvey/ReviewPage.h"

using survey::S;

namespace {

const double never = std::nan("");

} // namespace

class tst_SurveyHome : public SurveyWindow
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void positionTile();
    void dataTile();
    void recordingTile();
    void spaceTile_data();
    void spaceTile();
    void durations_data();
    void durations();
    void timesLeft_data();
    void timesLeft();
    void folderOfRecordings();
    void recordingTexts();
    void entries_data();
    void entries();
    void keyboard();
    void tilesFollow();
    void styleOfPositions();
    void noRecordings();
    void recordings();
    void tapOpensReview();
    void recordingInTheBand();
    void layout_data();
    void layout();
    void rests();

private:
    SurveyPage* Home() { return static_cast<SurveyPage*>(m_view->GetPage(S("Home"))); }

    ZrTouchList* List() { return Home()->findChild<ZrTouchList*>(); }

    ZrValueTile* Tile(int index) { return Home()->findChildren<ZrValueTile*>().value(index); }

    ZrEntryBtn* Entry(const QString& title);
    void Make(const QString& name, const QByteArray& bytes);
    void Look();
};

void tst_SurveyHome::init()
{
    Open();
}

void tst_SurveyHome::cleanup()
{
    Close();
}

ZrEntryBtn* tst_SurveyHome::Entry(const QString& title)
{
    for (ZrEntryBtn* entry : Home()->findChildren<ZrEntryBtn*>()) {
        if (entry->Title() == title)
            return entry;
    }
    qFatal("no such entry");
}

void tst_SurveyHome::Make(const QString& name, const QByteArray& bytes)
{
    QVERIFY(QDir().mkpath(Recordings()));
    QVERIFY(WriteWhole(Recordings() + QLatin1Char('/') + name, bytes));
}

/// As coming back to the page does.
void tst_SurveyHome::Look()
{
    auto* list = Home()->findChild<ZrRecordingList*>();
    QVERIFY(list);
    QTRY_VERIFY(!list->IsListing());
    m_view->Show(S("Plan"));
    m_view->GoHome();
    QTRY_VERIFY(!list->IsListing());
    Settle();
}

void tst_SurveyHome::positionTile()
{
    ZrUnits::SetGeoStyle(eGeoDeg);
    SurveyVehicle::Pose pose;
    QCOMPARE(HomeState::Position(pose, true, 0.0).value, QString());
    QCOMPARE(HomeState::Position(pose, true, 0.0).note, S("No position yet"));
    pose.lat = 51.5;
    QCOMPARE(HomeState::Position(pose, true, 0.0).value, QString()); // half of it is none
    pose.lng = -1.25;
    const HomeState::Tile now = HomeState::Position(pose, true, 0.4);
    QCOMPARE(now.value, ZrPositionShown::Text(51.5, -1.25));
    QCOMPARE(now.note, S("Fix now"));
    QCOMPARE(now.state, ZrValueTile::normal);
    QCOMPARE(HomeState::Position(pose, true, 4.9).note, S("Fix 5 s ago"));
    QCOMPARE(HomeState::Position(pose, true, 4.9).state, ZrValueTile::normal);
    QCOMPARE(HomeState::Position(pose, true, 5.0).state, ZrValueTile::warning);
    QCOMPARE(HomeState::Position(pose, true, 29.9).state, ZrValueTile::warning);
    QCOMPARE(HomeState::Position(pose, true, 30.0).state, ZrValueTile::error);
    QCOMPARE(HomeState::Position(pose, true, 130.0).note, S("Fix 2 min ago"));
    QCOMPARE(HomeState::Position(pose, false, 0.0).note, S("From a recording"));
    QCOMPARE(HomeState::Position(pose, false, 0.0).state, ZrValueTile::stale);
    QCOMPARE(HomeState::Position(pose, true, never).state, ZrValueTile::stale);
    const HomeState::Tile last = HomeState::Position(pose, true, 400.0, true);
    QCOMPARE(last.note, S("Fix 7 min ago"));
    QCOMPARE(last.state, ZrValueTile::normal);
}

void tst_SurveyHome::dataTile()
{
    const HomeState::Tile off = HomeState::Data(S("UDP port 1"), true, never);
    QCOMPARE(off.value, S("Off"));
    QCOMPARE(off.note, S("UDP port 1"));
    QCOMPARE(HomeState::Data(S("x"), false, 0.0).value, S("Off"));
    QCOMPARE(HomeState::Data(S("x"), true, 4.9).value, S("Receiving"));
    QCOMPARE(HomeState::Data(S("x"), true, 4.9).state, ZrValueTile::good);
    const HomeState::Tile late = HomeState::Data(S("x"), true, 5.0);
    QCOMPARE(late.value, S("Silent"));
    QCOMPARE(late.unit, S("5 s"));
    QCOMPARE(late.state, ZrValueTile::warning);
    QCOMPARE(HomeState::Data(S("x"), true, 30.0).state, ZrValueTile::error);
    const HomeState::Tile refused = HomeState::Data(S("x"), true, 1.0, S("Connection refused"));
    QCOMPARE(refused.value, S("No data"));
    QCOMPARE(refused.note, S("Connection refused"));
    QCOMPARE(refused.state, ZrValueTile::error);
    for (const double age : {0.0, 23.0, 400.0, never}) {
        const HomeState::Tile end = HomeState::Data(S("Simulator"), true, age, QString(), true);
        QCOMPARE(end.value, S("At its end"));
        QCOMPARE(end.unit, QString());
        QCOMPARE(end.note, S("Simulator"));
        QCOMPARE(end.state, ZrValueTile::normal);
    }
}

void tst_SurveyHome::recordingTile()
{
    ZrRecorder::Status status;
    status.file = S("/a/b/dive ä.log");
    status.bytes = 12300000;
    QCOMPARE(HomeState::Recording(QString(), status, S("Folder: logs")).value, S("Off"));
    QCOMPARE(HomeState::Recording(QString(), status, S("Folder: logs")).note, S("Folder: logs"));
    const HomeState::Tile on = HomeState::Recording(S("0:00:12"), status, S("Folder: logs"));
    QCOMPARE(on.value, S("0:00:12"));
    QCOMPARE(on.note, S("12.3 MB, dive ä.log"));
    QCOMPARE(on.state, ZrValueTile::good);
    const HomeState::Tile stopped = HomeState::Recording(QString(), status, S("Folder: logs"), true);
    QCOMPARE(stopped.value, S("Stopped"));
    QCOMPARE(stopped.state, ZrValueTile::error);
    QCOMPARE(HomeState::Recording(S("0:00:12"), status, S("Folder: logs"), true).value, S("0:00:12"));
}

void tst_SurveyHome::spaceTile_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<double>("left");
    QTest::addColumn<int>("by");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("note");
    QTest::addColumn<int>("state");
    const int none = ZrSpaceLeft::byNothing;
    const int now = ZrSpaceLeft::byRecording;
    const int source = ZrSpaceLeft::bySource;
    const int last = ZrSpaceLeft::byLast;
    QTest::newRow("not known") << qint64(-1) << -1.0 << none << ""
                               << "The disk does not tell" << int(ZrValueTile::normal);
    QTest::newRow("enough") << qint64(1000000000) << -1.0 << none << "1.00"
                            << "– left: no data yet" << int(ZrValueTile::normal);
    QTest::newRow("little") << qint64(999999999) << -1.0 << none << "1.00"
                            << "– left: no data yet" << int(ZrValueTile::warning);
    QTest::newRow("too little") << qint64(499999999) << -1.0 << none << "500"
                                << "– left: no data yet" << int(ZrValueTile::error);
    QTest::newRow("full") << qint64(0) << 0.0 << now << "0"
                          << "For 0 s" << int(ZrValueTile::error);
    QTest::newRow("for long") << qint64(45000000000) << 900.0 << now << "45.0"
                              << "For 15 min" << int(ZrValueTile::normal);
    QTest::newRow("soon full") << qint64(45000000000) << 899.0 << now << "45.0"
                               << "For 14 min" << int(ZrValueTile::warning);
    QTest::newRow("before") << qint64(45000000000) << 9000.0 << source << "45.0"
                            << "About 2 h 30 min" << int(ZrValueTile::normal);
    QTest::newRow("as last") << qint64(45000000000) << 899.0 << last << "45.0"
                             << "About 14 min" << int(ZrValueTile::warning);
    QTest::newRow("nearly a year") << qint64(45000000000) << HomeState::Year - 1.0 << last << "45.0"
                                   << "About 364 days" << int(ZrValueTile::normal);
    QTest::newRow("a year") << qint64(45000000000) << HomeState::Year << last << "45.0"
                            << "For more than a year" << int(ZrValueTile::normal);
    QTest::newRow("for ever") << qint64(45000000000) << 1e15 << now << "45.0"
                              << "For more than a year" << int(ZrValueTile::normal);
}

void tst_SurveyHome::spaceTile()
{
    QFETCH(qint64, bytes);
    QFETCH(double, left);
    QFETCH(int, by);
    ZrSpaceLeft space;
    space.seconds = left;
    space.by = static_cast<ZrSpaceLeft::eBy>(by);
    const HomeState::Tile tile = HomeState::Space(bytes, 500, space);
    QTEST(tile.value, "value");
    QTEST(tile.note, "note");
    QTEST(int(tile.state), "state");
    QVERIFY2(
        tile.hint.endsWith(S("A recording stops when less than 500 MB is free.")), qPrintable(tile.hint));
    QVERIFY(bytes < 0 || tile.hint.startsWith(HomeState::SpaceHint(space)));
}

void tst_SurveyHome::durations_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0.0 << "0 s";
    QTest::newRow("seconds") << 59.4 << "59 s";
    QTest::newRow("nearly a minute") << 59.9 << "1 min";
    QTest::newRow("nearly six minutes") << 359.8 << "6 min";
    QTest::newRow("minutes") << 3569.0 << "59 min";
    QTest::newRow("nearly an hour") << 3599.0 << "1 h 0 min";
    QTest::newRow("hours") << 9000.0 << "2 h 30 min";
    QTest::newRow("two days") << 172800.0 << "2 days";
    QTest::newRow("nearly three days") << 258000.0 << "3 days";
    QTest::newRow("ages") << 1e12 << "11574074 days";
    QTest::newRow("negative") << -1.0 << "";
    QTest::newRow("not a number") << never << "";
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << "";
}

void tst_SurveyHome::durations()
{
    QFETCH(double, seconds);
    QTEST(HomeState::DurationText(seconds), "text");
}

void tst_SurveyHome::timesLeft_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0.0 << "0 min left";
    QTest::newRow("below 0") << -5.0 << "0 min left";
    QTest::newRow("a minute") << 60.0 << "1 min left";
    QTest::newRow("nearly two hours") << 7199.0 << "119 min left";
    QTest::newRow("two hours") << 7200.0 << "2 h left";
    QTest::newRow("nearly two days") << 172799.0 << "47 h left";
    QTest::newRow("two days") << 172800.0 << "2 days left";
    QTest::newRow("nearly a year") << HomeState::Year - 1.0 << "364 days left";
    QTest::newRow("a year") << HomeState::Year << "> 1 year left";
    QTest::newRow("9999 h and more") << 9999.0 * 3600.0 << "> 1 year left";
    QTest::newRow("for ever") << std::numeric_limits<double>::infinity() << "> 1 year left";
}

void tst_SurveyHome::timesLeft()
{
    QFETCH(double, seconds);
    QTEST(HomeState::LeftText(seconds), "text");
}

void tst_SurveyHome::folderOfRecordings()
{
    QStringList notes;
    for (const ZrValueTile* tile : Home()->findChildren<ZrValueTile*>())
        notes.append(tile->Note());
    QVERIFY2(notes.contains(S("Folder: Aufnahmen äß")), qPrintable(notes.join(QLatin1Char('|'))));
}

void tst_SurveyHome::recordingTexts()
{
    ZrRecentLog log;
    log.size = 4200000;
    QCOMPARE(HomeState::RecordingText(log), S("4.20 MB"));
    log.start = survey::startTime;
    log.duration = 90.0;
    log.sonar = ZrRecentLog::sonarPresent;
    QCOMPARE(HomeState::RecordingText(log), S("2021-03-03 14:05 UTC  ·  1 min 30 s  ·  4.20 MB  ·  sonar"));
    log.start = 1e300; // a damaged header may say anything
    QCOMPARE(HomeState::RecordingText(log), S("1 min 30 s  ·  4.20 MB  ·  sonar"));
    // As long as the time line and the exports say.
    for (const double seconds : {35.7, 359.8, 5.25, 3599.7, 9000.0, 1e300}) {
        log.duration = seconds;
        QVERIFY2(HomeState::RecordingText(log).startsWith(ZrTimeText::Elapsed(seconds) + S("  ·")),
            qPrintable(HomeState::RecordingText(log)));
    }
    log.duration = 359.8;
    QCOMPARE(HomeState::RecordingText(log), S("6 min 00 s  ·  4.20 MB  ·  sonar"));
}

void tst_SurveyHome::entries_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("page");
    QTest::newRow("plan") << "Plan"
                          << "Plan";
    QTest::newRow("record") << "Record"
                            << "Record";
    QTest::newRow("review") << "Review"
                            << "Review";
    QTest::newRow("scene") << "3D"
                           << "Scene";
    QTest::newRow("settings") << "Settings"
                              << "Home";
}

void tst_SurveyHome::entries()
{
    QFETCH(QString, title);
    QFETCH(QString, page);
    QVERIFY(m_view->forms().isHidden());
    Click(Entry(title));
    QCOMPARE(static_cast<ZrPage*>(m_view->Page()), m_view->GetPage(page));
    QCOMPARE(m_view->forms().isVisible(), title == S("Settings"));
}

void tst_SurveyHome::keyboard()
{
    auto* entry = Entry(S("Review"));
    entry->setFocus(Qt::TabFocusReason);
    QTest::keyClick(entry, Qt::Key_Space);
    Settle();
    QCOMPARE(static_cast<ZrPage*>(m_view->Page()), m_view->GetPage(S("Review")));
    QVERIFY(entry->toolTip().contains(S("F4")));
}

void tst_SurveyHome::tilesFollow()
{
    QCOMPARE(Tile(0)->Value(), QString());
    QCOMPARE(Tile(1)->Value(), S("Off"));
    QCOMPARE(Tile(2)->Value(), S("Off"));
    // Sentences without a position, and then no more of them.
    ZrSourceFacts heard;
    heard.state = ZrSourceFacts::silent;
    heard.age = 12.0;
    m_view->Model().feed.Set(S("2 boat:1"), heard);
    QCOMPARE(Tile(1)->Value(), S("Silent"));
    QCOMPARE(Tile(1)->Unit(), S("12 s"));
    m_view->Model().feed.Set(S("2 boat:1"), ZrSourceFacts());
    QCOMPARE(Tile(1)->Value(), S("Off"));
    SurveyVehicle::Pose pose;
    m_view->Model().vehicle.Set(pose, S("Simulator"), true);
    QCOMPARE(Tile(0)->Value(), QString());
    QCOMPARE(Tile(1)->Value(), S("Receiving"));
    QCOMPARE(Tile(1)->Note(), S("Simulator"));
    pose.lat = 10.0;
    pose.lng = 20.0;
    m_view->Model().vehicle.Set(pose, S("Simulator"), true);
    QVERIFY(!Tile(0)->Value().isEmpty());

    ZrRecorder::Status status;
    status.seconds = 3725.9;
    status.freeBytes = 7000000000;
    status.bytesPerSecond = 6500000000.0 / 7210.0; // down to what stays free
    m_view->Model().recording.Set(status);
    QCOMPARE(Tile(2)->Value(), S("1:02:05"));
    QCOMPARE(Tile(3)->Value(), S("7.00"));
    QCOMPARE(Tile(3)->Unit(), S("GB"));
    QCOMPARE(Tile(3)->Note(), S("For 2 h 0 min"));
    m_view->Model().recording.End();
    QCOMPARE(Tile(2)->Value(), S("Off"));
    QVERIFY(Tile(3)->Note().startsWith(S("About ")) || Tile(3)->Note() == S("For more than a year"));

    ZrSourceFacts facts;
    facts.state = ZrSourceFacts::troubled;
    facts.reason = S("Host not found");
    m_view->Model().feed.Set(S("2 boat:1"), facts);
    QCOMPARE(Tile(1)->Note(), S("Host not found"));
    QCOMPARE(Tile(1)->State(), ZrValueTile::error);
    facts.state = ZrSourceFacts::receiving;
    m_view->Model().feed.Set(S("2 boat:1"), facts);
    QCOMPARE(Tile(1)->Value(), S("Receiving"));
    facts.state = ZrSourceFacts::finished;
    m_view->Model().feed.Set(S("2 boat:1"), facts);
    QCOMPARE(Tile(1)->Value(), S("At its end"));
    QCOMPARE(Tile(1)->State(), ZrValueTile::normal);
}

void tst_SurveyHome::styleOfPositions()
{
    SurveyVehicle::Pose pose;
    pose.lat = 51.5;
    pose.lng = -1.25;
    m_view->Model().vehicle.Set(pose, S("x"), true);
    const QString before = Tile(0)->Value();
    Form<ZrFmApp>()->OnCs(3);
    QTRY_VERIFY(Tile(0)->Value() != before);
    QVERIFY(Tile(0)->Value().contains(S("mE")));
}

void tst_SurveyHome::noRecordings()
{
    Look();
    QVERIFY(List()->Items().isEmpty());
    QVERIFY(List()->m_empty.contains(S("Record")));
    const QString empty = List()->m_empty;
    Settings().recordDir = S("/etc/passwd");
    m_view->SettingsEdited();
    QTRY_VERIFY(List()->m_empty.contains(S("/etc/passwd")));
    Settings().recordDir = Recordings();
    m_view->SettingsEdited();
    QTRY_COMPARE(List()->m_empty, empty);
    QVERIFY(!Tile(3)->Value().isEmpty()); // of the volume that would hold the folder
}

void tst_SurveyHome::recordings()
{
    Make(S("dive ä.log"), survey::SurveyLog(10).Bytes());
    Make(S("broken.log"), survey::SurveyLog(10).Bytes().left(300));
    Look();
    const auto items = List()->Items();
    QCOMPARE(items.size(), 2);
    for (int row = 0; row < items.size(); ++row) {
        const ZrListItem& item = items[row];
        QVERIFY(item.isPicture && !List()->m_picture(row).isNull());
        QVERIFY(!item.subtitle.isEmpty());
        const bool isBroken = item.title == S("broken");
        QCOMPARE(item.detail, isBroken ? S("Damaged") : QString());
        QCOMPARE(item.edge.isValid(), isBroken);
    }
    // The rate of what was recorded tells for how long there is room.
    const SurveyRecording& recording = m_view->Model().recording;
    QCOMPARE(recording.Left(1000000000, 0).by, ZrSpaceLeft::byLast);
    QVERIFY2(Tile(3)->Note().startsWith(S("About ")) || Tile(3)->Note() == S("For more than a year"),
        qPrintable(Tile(3)->Note()));
    // Another folder is looked at as soon as it is chosen.
    Settings().recordDir = m_folder->path();
    m_view->SettingsEdited();
    QTRY_COMPARE(List()->Items().size(), 0);
    QCOMPARE(recording.Left(1000000000, 0).by, ZrSpaceLeft::byNothing);
    QVERIFY2(Tile(3)->Note().startsWith(QString::fromUtf8("– left")), qPrintable(Tile(3)->Note()));
}

void tst_SurveyHome::tapOpensReview()
{
    Make(S("dive.log"), survey::SurveyLog(10).Bytes());
    Look();
    QCOMPARE(List()->Items().size(), 1);
    const QRect row = List()->visualRect(List()->model()->index(0, 0));
    QTest::mouseClick(List()->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
    QTRY_COMPARE(static_cast<ZrPage*>(m_view->Page()), m_view->GetPage(S("Review")));
}

void tst_SurveyHome::recordingInTheBand()
{
    for (const char* name : {"Home", "Plan", "Record", "Review", "Scene"}) {
        m_view->Show(S(name));
        Settle();
        SurveyPage* page = m_view->Page();
        const QRect band(page->width() / 2, 0, page->width() / 4 + page->width() / 8, page->BandBottom());
        const QImage off = page->grab(band).toImage();
        ZrRecorder::Status status;
        status.seconds = 61.0;
        m_view->Model().recording.Set(status);
        Settle();
        const QImage on = page->grab(band).toImage();
        QVERIFY2(on != off, name);
        QVERIFY2(HasColour(on, ZrTheme::errorCol), name);
        status.seconds = 62.0;
        m_view->Model().recording.Set(status);
        Settle();
        QVERIFY2(page->grab(band).toImage() != on, name);
        m_view->Model().recording.End();
        Settle();
        QVERIFY2(page->grab(band).toImage() == off, name);
    }
}

void tst_SurveyHome::layout_data()
{
    QTest::addColumn<int>("scale");
    QTest::addColumn<QSize>("size");
    for (const int scale : {2, 0, -2}) {
        for (const QSize& size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080), QSize(2560, 1440)})
            QTest::addRow("%+d %dx%d", scale, size.width(), size.height()) << scale << size;
    }
}

void tst_SurveyHome::layout()
{
    QFETCH(int, scale);
    QFETCH(QSize, size);
    for (int i = 0; i < 20; ++i)
        Make(QString::number(i) + S(".log"), survey::SurveyLog(3).Bytes());
    SetScale(scale);
    m_view->resize(size);
    Settle();
    Look();
    QCOMPARE(Home()->size(), size);
    QVERIFY2(Misplaced(*Home()).isEmpty(), qPrintable(Misplaced(*Home())));
    const QRect content = Home()->Content();
    for (ZrEntryBtn* entry : Home()->findChildren<ZrEntryBtn*>()) {
        QVERIFY(content.contains(entry->geometry()));
        QVERIFY(entry->height() >= std::max(44, ZrTheme::DpI(64)));
    }
    for (const ZrValueTile* tile : Home()->findChildren<ZrValueTile*>())
        QVERIFY(content.contains(tile->geometry()));
    // Buttons of the band are in it.
    for (const ZrBtn* button : Home()->findChildren<ZrBtn*>()) {
        if (button->type == ZrBtn::typeTool && button->isVisible()) {
            QVERIFY(button->geometry().bottom() < content.top());
            QVERIFY(button->height() >= 44);
        }
    }
    QVERIFY(List()->height() >= 2 * std::max(ZrTheme::DpI(72), 44));
}

/// A page on which nothing happens is not painted.
void tst_SurveyHome::rests()
{
    Look();
    ZrPaintCounter page(*Home());
    ZrPaintCounter tile(*Tile(3));
    ZrPaintCounter list(*List()->viewport());
    Settle();
    page.Take();
    tile.Take();
    list.Take();
    for (int i = 0; i < 3; ++i) {
        auto* recordings = Home()->findChild<ZrRecordingList*>();
        recordings->List(Settings().recordDir, 50);
        QTRY_VERIFY(!recordings->IsListing());
    }
    QCOMPARE(page.Take(), 0);
    QCOMPARE(list.Take(), 0);
}

GL_TEST_MAIN(tst_SurveyHome)
#include "tst_SurveyHome.moc"
