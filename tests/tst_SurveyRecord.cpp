// The page "Record" of the application as a person sees it: sources, map, waterfall and instruments.

#include "DrawnText.h"
#include "RecordedLog.h"
#include "SurveyRecordWindow.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/planning/ZrPlanRecord.h"
#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QSignalSpy>

class tst_SurveyRecord : public SurveyRecordWindow
{
    Q_OBJECT

private Q_SLOTS:
    void simulatorIsLive();
    void planThatChanges();
    void planThatChangesInView();
    void waterfallRuns();
    void bottomLineCanBeSwitchedOff();
    void anglesHaveTheirSign_data();
    void anglesHaveTheirSign();
    void looksOfTheSonar();
    void nightInk();
    void figuresOfOneSize();
    void followEndsByHand();
    void otherUnitsAtOnce();
    void replayIsASource();
    void sourceThatCannotBeHad();
    void staleValuesAreMarked();
    void idleWithoutData();
    void nothingIsShownOfNowhere();
    void nothingOverlaps_data();
    void nothingOverlaps();
};

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

/// The simulated vehicle runs the plan as it is, but for one that is being recorded; the map shows what it
/// runs.
void tst_SurveyRecord::planThatChanges()
{
    const auto plan = [this](double lat) {
        ZrPlanDocument& document = m_view->Model().plan;
        document.New();
        document.Route().linked = true;
        for (const double lng : {-4.0, -3.998})
            document.Route().Add(lat, lng, eZrWptBlue, ZrWpts::eAddTail)->name = QString::number(lat);
        document.Edited();
    };
    const auto shown = [this] {
        const auto& labels = Page().Map().Names().Labels();
        return labels.size() == 2 ? labels.front().text.toDouble() : 0.0;
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
    QCOMPARE(shown(), 48.5);
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    m_view->Show(QStringLiteral("Home"));
    plan(47.5);
    m_view->Show(QStringLiteral("Record"));
    const auto items = Page().Session().Status().items;
    QTRY_VERIFY(Page().Session().Status().items > items + 200);
    QVERIFY(IsOn());
    QVERIFY(isNear(48.5));
    QCOMPARE(shown(), 48.5);
    plan(47.5); // in view
    QCOMPARE(shown(), 48.5);
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QTRY_VERIFY(isNear(47.5));
    QCOMPARE(shown(), 47.5);
    // The same plan is no reason to begin anew.
    const i64 trail = Page().Map().TrailCount();
    m_view->Show(QStringLiteral("Home"));
    m_view->Show(QStringLiteral("Record"));
    QVERIFY(Page().Map().TrailCount() >= trail);
}

/// As by Undo in a message that stays over a change of pages, or a draft that is read late: the vehicle runs
/// it, the map shows it, and the log begins with it.
void tst_SurveyRecord::planThatChangesInView()
{
    Open();
    QTRY_VERIFY(HasPosition());
    const i64 places = Page().Map().PlanCount();
    ZrPlanDocument& plan = m_view->Model().plan;
    plan.Route().linked = true;
    for (const double lng : {-4.0, -3.998})
        plan.Route().Add(48.5, lng, eZrWptBlue, ZrWpts::eAddTail);
    plan.Edited();
    QVERIFY(Page().Map().PlanCount() != places);
    QTRY_VERIFY(HasPosition() && std::fabs(Page().Session().State().latitude.value - 48.5) < 0.01);
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Page().Session().Status().items > 20);
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    const std::vector<Item> items = ReadLog(Logs().first());
    QVERIFY(items.front().inf == CRecType(rtMissionPlan));
    QCOMPARE(items.front().payload, ZrPlanRecord::Encode(plan.Route()));
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

void tst_SurveyRecord::anglesHaveTheirSign_data()
{
    QTest::addColumn<float>("heading");
    QTest::addColumn<float>("pitch");
    QTest::addColumn<float>("roll");
    QTest::addColumn<QString>("headingText");
    QTest::addColumn<QString>("pitchText");
    QTest::addColumn<QString>("rollText");
    QTest::newRow("bow up, starboard down") << 40.04F << 3.2F << 4.5F << "40.0°"
                                            << "3.2°"
                                            << "4.5°";
    QTest::newRow("bow down, port down") << 359.9F << -3.2F << -14.5F << "359.9°"
                                         << "−3.2°"
                                         << "−14.5°";
    QTest::newRow("one of each") << 359.97F << -3.2F << 4.5F << "0.0°"
                                 << "−3.2°"
                                 << "4.5°";
    QTest::newRow("nearly level") << -0.02F << -0.04F << -0.06F << "0.0°"
                                  << "0.0°"
                                  << "−0.1°";
}

/// Pitch and roll with the sign minus, as wide as a digit, and the degrees; a full turn is none.
void tst_SurveyRecord::anglesHaveTheirSign()
{
    QFETCH(float, heading);
    QFETCH(float, pitch);
    QFETCH(float, roll);
    const QString path = m_dir->filePath(QStringLiteral("angles.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 100.0));
    ZrNavRecord nav;
    nav.latitude = 48.0;
    nav.longitude = -68.0;
    nav.heading = heading;
    nav.pitch = pitch;
    nav.roll = roll;
    QVERIFY(log.Write(
        zr::rec_type(krtNavigation), 1, ZrNavRecord::Format, 100.0, false, zr::bytes_of(nav.Encode())));
    QVERIFY(log.Commit());
    m_view->Model().settings.source = SurveySource::replay;
    m_view->Model().settings.sourceFile = path;
    Open();
    QTRY_VERIFY(!Tile(QStringLiteral("Heading"))->Value().isEmpty());
    QTEST(Tile(QStringLiteral("Heading"))->Number(), "headingText");
    QTEST(Tile(QStringLiteral("Pitch"))->Number(), "pitchText");
    QTEST(Tile(QStringLiteral("Roll"))->Number(), "rollText");
}

/// Palette and gain, as they are called and set.
void tst_SurveyRecord::looksOfTheSonar()
{
    Open();
    const auto isDrawn = [this](const char* text) {
        for (const DrawnText& drawn : TextDevice::Of(Page())) {
            if (drawn.text == QString::fromUtf8(text))
                return true;
        }
        return false;
    };
    SurveySettings& settings = m_view->Model().settings;
    settings.palette = 3;
    settings.gain = 4.5;
    QVERIFY(isDrawn("Hot"));
    QVERIFY(isDrawn("+4.5 dB"));
    settings.gain = -2.0;
    QVERIFY(isDrawn("−2 dB"));
    settings.gain = 0.0;
    QVERIFY(isDrawn("0 dB"));
}

/// Scale and bottom line have the ink of the night and are not below its shade; nothing is blue.
void tst_SurveyRecord::nightInk()
{
    Open();
    ZrColourScheme::Apply(ZrColourScheme::night);
    QTRY_VERIFY(Page().Waterfall().Ring().End() > 150);
    QWidget* panel = Page().findChildren<ZrMapPanel*>().last();
    const auto count = [this, panel](const QColor& ink) {
        const QImage image = m_view->grab(panel->geometry()).toImage();
        int found = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                const int off = std::max({std::abs(colour.red() - ink.red()),
                    std::abs(colour.green() - ink.green()), std::abs(colour.blue() - ink.blue())});
                found += off <= 6 ? 1 : 0;
            }
        }
        return found;
    };
    const auto blue = [this, panel] {
        const QImage image = m_view->grab(panel->geometry()).toImage();
        int found = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                found += colour.blue() > colour.red() + 20 ? 1 : 0;
            }
        }
        return found;
    };
    QTRY_VERIFY(count(ZrColourScheme::OverPicture(QColor(235, 240, 245))) > 20);
    QTRY_VERIFY(count(ZrColourScheme::OverPicture(QColor(64, 224, 255))) > 20);
    QCOMPARE(ZrColourScheme::Current(), int(ZrColourScheme::night));
    QCOMPARE(blue(), 0);
    ZrColourScheme::Apply(ZrColourScheme::dusk);
}

/// One long value makes all of the row smaller.
void tst_SurveyRecord::figuresOfOneSize()
{
    Open(QSize(900, 600));
    Tile(QStringLiteral("Recorded"))->Set(QStringLiteral("1000:00:01"), QString());
    Tile(QStringLiteral("Size"))->Set(QStringLiteral("2.40"), QStringLiteral("kB"));
    QSet<int> sizes;
    for (const char* caption : {"Recorded", "Size", "Rate", "Free space"}) {
        ZrValueTile* tile = Tile(QString::fromLatin1(caption));
        for (const DrawnText& drawn : TextDevice::Of(*tile)) {
            if (drawn.text == tile->Number())
                sizes.insert(drawn.pixels);
        }
    }
    QCOMPARE(sizes.size(), 1);
    QVERIFY(*sizes.begin() < ZrTheme::DpI(36));
}

void tst_SurveyRecord::followEndsByHand()
{
    Open();
    QTRY_VERIFY(HasPosition());
    QVERIFY(Page().Map().m_way.m_isFollowing);
    QTest::keyClick(m_view.get(), Qt::Key_F);
    QVERIFY(!Page().Map().m_way.m_isFollowing);
    QTest::keyClick(m_view.get(), Qt::Key_F);
    QVERIFY(Page().Map().m_way.m_isFollowing);
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QVERIFY(!Page().Map().m_way.m_isFollowing);
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
    m_view->Model().settings.recordDir = QStringLiteral("/proc"); // whose free space does not change
    Open();
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceOpen);
    QSignalSpy spaces(&Page().Session(), &ZrRecordingSession::SpaceMeasured);
    QSignalSpy ticks(Page().findChild<QTimer*>(QStringLiteral("tick")), &QTimer::timeout);
    QTRY_VERIFY(ticks.size() > 1);
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    const int before = ticks.size();
    // Free space is looked at as well.
    spaces.clear();
    QTRY_VERIFY_WITH_TIMEOUT(ticks.size() > before + 11 && spaces.size() > 0, 30000);
    QCOMPARE(frames.size(), 0);
}

/// A grid and a scale of no place say nothing; they come with the first position.
void tst_SurveyRecord::nothingIsShownOfNowhere()
{
    m_view->Model().settings.source = SurveySource::udp;
    m_view->Model().settings.udpPort = 0; // any free one
    Open();
    const LiveMap& map = Page().Map();
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceOpen);
    QVERIFY(!map.m_way.Grid());
    QVERIFY(map.m_grid.NorthArrowRect(map.m_camera, map.m_pixelFactor).isEmpty());
    QVERIFY(map.m_grid.ScaleBarRect(map.m_camera, map.m_pixelFactor).isEmpty());
    m_view->Model().settings.source = SurveySource::simulator;
    QTRY_VERIFY(map.m_way.Grid());
    QTRY_VERIFY(!map.m_grid.NorthArrowRect(map.m_camera, map.m_pixelFactor).isEmpty());
    QVERIFY(!map.m_grid.ScaleBarRect(map.m_camera, map.m_pixelFactor).isEmpty());
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
    // Words of a fair size, and those about the source in full.
    auto* source = Page().findChild<ZrBtn*>(QStringLiteral("source"));
    QTRY_VERIFY(source->text.contains(QStringLiteral("receiving")));
    source->text = QStringLiteral("UDP port 10110\u2028receiving 8888 records/s");
    source->Changed();
    for (const QString& line : source->text.split(QChar(QChar::LineSeparator)))
        QVERIFY2(QFontMetricsF(source->font).horizontalAdvance(line) <= source->textRect.width() + 0.5,
            qPrintable(line));
    for (const ZrBtn* button : Page().findChildren<ZrBtn*>()) {
        if (button->isVisible() && !button->text.isEmpty())
            QVERIFY2(button->font.pixelSize() >= 14, qPrintable(button->text));
    }
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

GL_TEST_MAIN(tst_SurveyRecord)
#include "tst_SurveyRecord.moc"
