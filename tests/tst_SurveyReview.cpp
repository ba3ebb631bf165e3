// The page "Review" in its real window, on a real side-scan line over a wreck.

#include "GlTest.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrToolRun.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewMeasure.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QImage>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace {

constexpr int patience = 60000; ///< milliseconds

} // namespace

class tst_SurveyReview : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void opens();
    void oneCursor();
    void scrubs();
    void plays();
    void loops();
    void steps();
    void typedTime();
    void events();
    void eventsOutlive();
    void measuresAsTheTool();
    void exports();
    void damagedLog();
    void noLog();
    void cancelled();
    void idlePageDrawsNothing();
    void readsOnlyWhatIsShown();
    void keys();
    void everySize();
    void everyColour();

private:
    ReviewPage& Page() const { return *static_cast<ReviewPage*>(m_view->GetPage(QStringLiteral("Review"))); }

    ZrSurveyRecording& Rec() const { return *Page().Recording(); }

    QString Toast() const
    {
        const auto* toast = m_view->findChild<ZrToast*>();
        return toast && toast->isVisible() ? toast->Text() : QString();
    }

    void Open(const QString& path);
    void WaitForLines() const;
    QPoint PixelOf(const ZrSonarSpot& spot) const;
    void TypeText(const QString& text) const;

    QTemporaryDir m_folder;
    QString m_source;
    QString m_log;
    std::unique_ptr<SurveyView> m_view;
};

void tst_SurveyReview::initTestCase()
{
    QVERIFY(m_folder.isValid());
    m_source = m_folder.filePath(QStringLiteral("source.log"));
    const QString xtf = QStringLiteral(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf");
    const ToolResult result = RunTool({QStringLiteral("log"), QStringLiteral("import"), xtf, m_source});
    QVERIFY2(result.code == 0, result.Text());
}

void tst_SurveyReview::init()
{
    ZrUnits::SetToMetric();
    m_log = m_folder.filePath(QStringLiteral("wreck ö.log"));
    for (const char* suffix : {"", ".evt", ".zri", ".zri.json", ".xml"})
        QFile::remove(m_log + QLatin1String(suffix));
    QVERIFY(QFile::copy(m_source, m_log));
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    m_view = std::make_unique<SurveyView>(QString());
    m_view->resize(1280, 800);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
}

void tst_SurveyReview::cleanup()
{
    m_view.reset();
}

void tst_SurveyReview::Open(const QString& path)
{
    m_view->OpenLog(path);
    QTRY_VERIFY_WITH_TIMEOUT(!Page().IsLoading(), patience);
}

void tst_SurveyReview::WaitForLines() const
{
    QTRY_VERIFY_WITH_TIMEOUT(!Page().Sonar().Loader()->IsLoading(), patience);
    Settle();
}

void tst_SurveyReview::TypeText(const QString& text) const
{
    for (ZrTextPanel* panel : m_view->findChildren<ZrTextPanel*>()) {
        if (!panel->isVisible())
            continue;
        panel->Input().setFocus();
        panel->Input().selectAll();
        QTest::keyClicks(&panel->Input(), text);
        QTest::keyClick(&panel->Input(), Qt::Key_Return);
        return;
    }
    QFAIL("no text is asked for");
}

void tst_SurveyReview::opens()
{
    Open(m_log);
    QVERIFY(Page().Recording());
    QCOMPARE(Rec().Pings().size(), std::size_t(300));
    QVERIFY(!Rec().IsDamaged());
    QVERIFY2(Rec().Remarks().isEmpty(), qPrintable(Rec().Remarks().join(QLatin1Char('\n'))));
    QCOMPARE(Rec().Series().Count(), std::size_t(300));
    QCOMPARE(Page().Clock().Time(), Rec().Times()->Begin());
    QCOMPARE(m_view->Page(), static_cast<SurveyPage*>(&Page()));
}

void tst_SurveyReview::oneCursor()
{
    Open(m_log);
    QSignalSpy moved(&m_view->Model().vehicle, &SurveyVehicle::Changed);
    const double at = Rec().TimeOfPing(150.0);
    Page().GoTo(at);
    QCOMPARE(moved.size(), 1);
    QCOMPARE(Page().Bar().Cursor(), at);
    QVERIFY(std::fabs(Page().Sonar().Panel().Cursor() - 150.0) < 1e-6);
    const SurveyVehicle::Pose& pose = m_view->Model().vehicle.Current();
    QVERIFY(!m_view->Model().vehicle.IsLive());
    QCOMPARE(m_view->Model().vehicle.Source(), QStringLiteral("wreck ö.log"));
    const ZrGeoPoint position = Rec().PositionAt(at);
    QCOMPARE(pose.lat, position.lat);
    QVERIFY(std::fabs(pose.lat - 48.445) < 0.01 && std::fabs(pose.lng + 68.828) < 0.01);
    QCOMPARE(pose.depth, double(Rec().Series().depth.ValueAt(at)));
    QVERIFY(pose.heading >= 0.0 && pose.heading < 360.0);
    QCOMPARE(Page().Plots().ValueText(0, 0), QString::number(pose.depth, 'f', 1) + QStringLiteral(" m"));
    // The middle of the waterfall is the cursor's line.
    WaitForLines();
    const ZrWaterfallPanel& panel = Page().Sonar().Panel();
    QVERIFY2(std::fabs(panel.YOf(150.0) - panel.height() / 2.0) < 3.0,
        qPrintable(QString::number(panel.YOf(150.0))));
}

void tst_SurveyReview::scrubs()
{
    Open(m_log);
    Page().Act(ReviewTransport::play);
    QVERIFY(Page().Clock().IsPlaying());
    ZrTimeBar& bar = Page().Bar();
    const double wanted = Rec().Times()->Begin() + 20.0;
    const QPoint at(qRound(bar.XOf(wanted)), bar.height() / 2 + 8);
    SendPress(bar, at);
    SendRelease(bar, at);
    QVERIFY(!Page().Clock().IsPlaying());
    QVERIFY(std::fabs(Page().Clock().Time() - wanted) < 0.05);
    QCOMPARE(bar.Cursor(), Page().Clock().Time());
    // The waterfall too: a drag downwards goes on in time, for the newest line is at the top.
    WaitForLines();
    ZrWaterfallPanel& panel = Page().Sonar().Panel();
    const double ping = panel.Cursor();
    SendPress(panel, QPoint(200, 100));
    SendMove(panel, QPoint(200, 120));
    SendMove(panel, QPoint(200, 160));
    SendRelease(panel, QPoint(200, 160));
    QVERIFY2(panel.Cursor() > ping + 5.0, qPrintable(QString::number(panel.Cursor() - ping)));
    QVERIFY(std::fabs(Rec().PingAt(Page().Clock().Time()) - panel.Cursor()) < 1e-6);
}

void tst_SurveyReview::plays()
{
    Open(m_log);
    const double begin = Page().Clock().Time();
    Page().Act(ReviewTransport::faster);
    const double rate = Page().Clock().Rate();
    QVERIFY(rate > 1.0);
    Page().Act(ReviewTransport::play);
    QVERIFY(Page().Advance(0.02));
    for (int i = 0; i < 100; ++i)
        Page().Advance(0.02);
    const double played = Page().Clock().Time() - begin;
    // Real frames may have come in between; none of them goes backward or takes longer than it was.
    QVERIFY2(played >= 2.0 * rate - 1e-6 && played < 12.0 * rate, qPrintable(QString::number(played)));
    QCOMPARE(Page().Bar().Cursor(), Page().Clock().Time());
    Page().Act(ReviewTransport::playBack);
    QVERIFY(Page().Clock().IsPlaying() && Page().Clock().Rate() < 0.0);
    for (int i = 0; i < 2000 && Page().Clock().IsPlaying(); ++i)
        Page().Advance(0.05);
    QVERIFY(!Page().Clock().IsPlaying());
    QCOMPARE(Page().Clock().Time(), begin);
}

void tst_SurveyReview::loops()
{
    Open(m_log);
    const double begin = Rec().Times()->Begin();
    Page().Act(ReviewTransport::loop);
    QVERIFY(!Page().Clock().HasLoop());
    QVERIFY(!Toast().isEmpty());
    Page().GoTo(begin + 5.0);
    Page().Act(ReviewTransport::setA);
    Page().GoTo(begin + 7.0);
    Page().Act(ReviewTransport::setB);
    Page().Act(ReviewTransport::loop);
    QVERIFY(Page().Clock().HasLoop());
    Page().Act(ReviewTransport::play);
    double most = 0.0;
    double least = 1e300;
    for (int i = 0; i < 200; ++i) {
        Page().Advance(0.05);
        most = std::max(most, Page().Clock().Time());
        least = std::min(least, Page().Clock().Time());
    }
    QVERIFY(Page().Clock().IsPlaying());
    QVERIFY(most <= begin + 7.0 + 1e-6 && least >= begin + 5.0 - 1e-6);
}

void tst_SurveyReview::steps()
{
    Open(m_log);
    const std::vector<double>& times = Rec().Times()->Times();
    Page().GoTo(times[100]);
    Page().Act(ReviewTransport::recordForward);
    QCOMPARE(Page().Clock().Time(), *std::upper_bound(times.begin(), times.end(), times[100]));
    Page().Act(ReviewTransport::recordBack);
    QCOMPARE(Page().Clock().Time(), times[100]);
    Page().Act(ReviewTransport::secondForward);
    QVERIFY(std::fabs(Page().Clock().Time() - times[100] - 1.0) < 1e-6);
    Page().Act(ReviewTransport::secondBack);
    QVERIFY(std::fabs(Page().Clock().Time() - times[100]) < 1e-6);
}

void tst_SurveyReview::typedTime()
{
    Open(m_log);
    Page().Act(ReviewTransport::typeTime);
    TypeText(QStringLiteral("21:13:20"));
    QVERIFY(std::fabs(std::fmod(Page().Clock().Time(), 60.0) - 20.0) < 1e-6);
    const double at = Page().Clock().Time();
    QVERIFY(!Page().GoToText(QStringLiteral("soon")).isEmpty());
    QVERIFY(!Page().GoToText(QStringLiteral("23:00")).isEmpty());
    QCOMPARE(Page().Clock().Time(), at);
    QCOMPARE(Page().GoToText(QStringLiteral("+2")), QString());
    QVERIFY(std::fabs(Page().Clock().Time() - at - 2.0) < 1e-6);
}

void tst_SurveyReview::events()
{
    Open(m_log);
    ZrEventList& events = Rec().Events();
    QCOMPARE(events.Count(), std::size_t(0));
    const double at = Rec().TimeOfPing(100.0);
    Page().GoTo(at);
    Page().Act(ReviewTransport::addEvent);
    TypeText(QStringLiteral("Wreck"));
    QCOMPARE(events.Count(), std::size_t(1));
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck"));
    QVERIFY(std::fabs(Rec().TimeOf(events.At(0)) - at) < 1e-6);
    QCOMPARE(Page().Events().List().Items().size(), 1);
    Page().GoTo(Rec().TimeOfPing(200.0));
    Page().Events().Add(Page().Clock().Time(), QStringLiteral("Rope"));
    Page().Events().Edit(0);
    TypeText(QStringLiteral("Wreck, bow"));
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck, bow"));
    // To the one before and behind.
    Page().Act(ReviewTransport::previousEvent);
    QVERIFY(std::fabs(Page().Clock().Time() - at) < 1e-6);
    Page().Act(ReviewTransport::previousEvent);
    QVERIFY(std::fabs(Page().Clock().Time() - at) < 1e-6);
    Page().Act(ReviewTransport::nextEvent);
    QVERIFY(std::fabs(Page().Clock().Time() - Rec().TimeOfPing(200.0)) < 1e-6);
    Page().Events().Remove(0);
    QCOMPARE(events.Count(), std::size_t(1));
    Page().Events().Undo();
    QCOMPARE(events.Count(), std::size_t(2));
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck, bow"));
    Page().Events().Undo();
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck"));
    Page().Events().Redo();
    QCOMPARE(events.At(0).text, QStringLiteral("Wreck, bow"));
    // An empty text is refused in words.
    Page().Events().Edit(0);
    for (ZrTextPanel* panel : m_view->findChildren<ZrTextPanel*>()) {
        if (!panel->isVisible())
            continue;
        panel->Input().selectAll();
        QTest::keyClick(&panel->Input(), Qt::Key_Delete);
        panel->Accept();
        QVERIFY(panel->isVisible());
        QVERIFY(!panel->Problem().isEmpty());
        panel->Cancel();
    }
}

void tst_SurveyReview::eventsOutlive()
{
    Open(m_log);
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"), QStringLiteral("long"));
    Open(m_log);
    QCOMPARE(Rec().Events().Count(), std::size_t(1));
    QCOMPARE(Rec().Events().At(0).text, QStringLiteral("Wreck"));
    ZrEventFile file;
    QCOMPARE(file.Read(m_log), ZrEventFile::Whole);
    QCOMPARE(file.events.size(), std::size_t(1));
    QCOMPARE(file.events[0].detail, QStringLiteral("long"));
    QCOMPARE(file.events[0].src, esUser);
}

QPoint tst_SurveyReview::PixelOf(const ZrSonarSpot& spot) const
{
    const ZrSonarChannel& channel = Rec().Pings()[spot.ping].sides[spot.side];
    const QPointF at = Page().Sonar().Panel().Layout().ToPixel(
        static_cast<double>(spot.ping), spot.side, (spot.sample + 0.5) * channel.SampleLength());
    return at.toPoint();
}

/// A target, its length and its height are what `zr sonar target` tells for the same samples, but for the
/// pixel that a finger hits.
void tst_SurveyReview::measuresAsTheTool()
{
    const ZrUnitsState units;
    Open(m_log);
    const std::size_t line = 150;
    Page().GoTo(Rec().TimeOfPing(static_cast<double>(line)));
    WaitForLines();
    ZrWaterfallPanel& panel = Page().Sonar().Panel();
    ReviewMeasure& measure = Page().Sonar().Measure();
    QTest::keyClick(m_view.get(), Qt::Key_M);
    QVERIFY(measure.IsOn() && measure.isVisible());
    const ZrSonarSpot from{line, sideStarboard, 600.0};
    const ZrSonarSpot to{line + 20, sideStarboard, 640.0};
    const QPoint a = PixelOf(from);
    const QPoint b = PixelOf(to);
    QVERIFY2(panel.rect().contains(a) && panel.rect().contains(b),
        qPrintable(QStringLiteral("%1, %2 to %3, %4").arg(a.x()).arg(a.y()).arg(b.x()).arg(b.y())));
    SendPress(panel, a);
    SendMove(panel, (a + b) / 2);
    SendMove(panel, b);
    SendRelease(panel, b);
    QVERIFY(measure.Target() && measure.Extent());
    measure.ShadowButton().on = false;
    QTest::mouseClick(&measure.ShadowButton(), Qt::LeftButton);
    const QPoint shadow = PixelOf({line, sideStarboard, 700.0});
    SendPress(panel, shadow);
    SendRelease(panel, shadow);
    QVERIFY2(measure.Shadow(), qPrintable(Toast()));

    const auto number = [](std::size_t value) { return QString::number(value); };
    const u32 port = Rec().Pings()[line].sides[sidePort].sampleCount;
    const ToolResult result = RunTool({QStringLiteral("sonar"), QStringLiteral("target"), m_log,
        QStringLiteral("--line"), number(line), QStringLiteral("--column"), number(port + 600),
        QStringLiteral("--to-line"), number(line + 20), QStringLiteral("--to-column"), number(port + 640),
        QStringLiteral("--shadow-column"), number(port + 700), QStringLiteral("--json")});
    QVERIFY2(result.code == 0, result.Text());
    const QJsonObject tool = result.Json();
    // A pixel is some 9 cm here.
    const double pixel = panel.Layout().MetresPerPixel();
    QVERIFY(pixel > 0.0 && pixel < 0.15);
    const auto isNear = [&tool](const char* key, double value, double within) {
        const double expected = tool.value(QLatin1String(key)).toDouble();
        if (std::fabs(value - expected) <= within)
            return true;
        qWarning("%s: %g instead of %g", key, value, expected);
        return false;
    };
    QVERIFY(isNear("slant_range", measure.Target()->slantRange, pixel));
    QVERIFY(isNear("ground_range", measure.Target()->groundRange, 2.0 * pixel));
    QVERIFY(isNear("altitude", measure.Target()->altitude, 0.05));
    QVERIFY(isNear("latitude", measure.Target()->position.lat, 5e-6));
    QVERIFY(isNear("longitude", measure.Target()->position.lng, 5e-6));
    QVERIFY(isNear("distance", measure.Extent()->distance, 0.4));
    QVERIFY(isNear("height", measure.Shadow()->height, 0.15));

    // Kept as an event at the time of the ping.
    QTest::mouseClick(&measure.StoreButton(), Qt::LeftButton);
    QCOMPARE(Rec().Events().Count(), std::size_t(1));
    QVERIFY(std::fabs(Rec().Events().At(0).time - Rec().Pings()[measure.Target()->spot.ping].time) < 1e-3);
    QVERIFY(Rec().Events().At(0).detail.contains(QStringLiteral("Height")));
    // The water column is refused in words, and what was measured stays.
    const QPoint water = PixelOf({line, sideStarboard, 60.0});
    SendPress(panel, water);
    SendRelease(panel, water);
    QVERIFY(!Toast().isEmpty());
    QVERIFY(measure.Extent());
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QVERIFY(!measure.IsOn());
}

void tst_SurveyReview::exports()
{
    Open(m_log);
    Page().Events().Add(Rec().TimeOfPing(100.0), QStringLiteral("Wreck"));
    Page().Events().Add(Rec().TimeOfPing(290.0), QStringLiteral("Beyond"));
    Page().Export().SetPart(Page().Recording(), Rec().TimeOfPing(200.0), Rec().TimeOfPing(50.0));
    QSignalSpy done(&Page().Export(), &ReviewExport::Done);
    const auto write = [&](int kind, const char* name) {
        const QString path = m_folder.filePath(QLatin1String(name));
        const int before = done.size();
        if (!Page().Export().Write(kind, path) || (done.size() == before && !done.wait(patience))
            || !done.last()[0].toBool())
            return QString();
        return path;
    };
    const auto content = [](const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QString part = write(ReviewExport::segment, "part.log");
    QVERIFY2(!part.isEmpty(), qPrintable(Toast()));
    ZrSonarLog log;
    QVERIFY(log.Open(part));
    QVERIFY2(log.Pings().size() >= 148 && log.Pings().size() <= 153,
        qPrintable(QString::number(log.Pings().size())));
    QCOMPARE(log.Damage(), QString());
    const QByteArray gpx = content(write(ReviewExport::track, "part.gpx"));
    QVERIFY(gpx.contains("<gpx") && gpx.contains("Wreck") && !gpx.contains("Beyond"));
    QVERIFY(content(write(ReviewExport::records, "records.csv")).count('\n') > 100);
    const QByteArray events = content(write(ReviewExport::events, "events.csv"));
    QVERIFY(events.contains("Wreck") && !events.contains("Beyond"));
    const QImage waterfall(write(ReviewExport::waterfall, "waterfall.png"));
    QVERIFY(waterfall.width() > 500 && waterfall.height() > 100);
    const QString mosaic = write(ReviewExport::mosaic, "mosaic.png");
    QVERIFY(QImage(mosaic).width() > 100);
    QVERIFY(QFile::exists(ZrMosaicFile::WorldFileName(mosaic)));
    // A place that cannot be written: told in words.
    QVERIFY(write(ReviewExport::track, "no folder/part.gpx").isEmpty());
    QVERIFY2(Toast().contains(QStringLiteral("failed")), qPrintable(Toast()));
}

void tst_SurveyReview::damagedLog()
{
    QFile file(m_log);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.resize(file.size() / 2));
    file.close();
    Open(m_log);
    QVERIFY(Page().Recording());
    QVERIFY(Rec().IsDamaged());
    QVERIFY(Rec().Pings().size() > 100 && Rec().Pings().size() < 200);
    QVERIFY2(Toast().contains(QStringLiteral("damaged")), qPrintable(Toast()));
}

void tst_SurveyReview::noLog()
{
    Open(m_log);
    const std::shared_ptr<ZrSurveyRecording> before = Page().Recording();
    const QString text = m_folder.filePath(QStringLiteral("text.log"));
    QFile file(text);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("no log at all");
    file.close();
    for (const QString& path : {text, m_folder.filePath(QStringLiteral("missing.log")), m_folder.path()}) {
        Open(path);
        QVERIFY2(Toast().contains(QStringLiteral("cannot be opened")), qPrintable(Toast()));
        QCOMPARE(Page().Recording(), before);
    }
}

void tst_SurveyReview::cancelled()
{
    // The one asked for last is the one that is shown.
    const QString other = m_folder.filePath(QStringLiteral("other.log"));
    QFile::remove(other);
    QVERIFY(QFile::copy(m_source, other));
    m_view->OpenLog(other);
    m_view->OpenLog(m_log);
    QTRY_VERIFY_WITH_TIMEOUT(!Page().IsLoading() && Page().Recording(), patience);
    QCOMPARE(Rec().Path(), m_log);
    // A recording that was told to stop tells so and is not used.
    ZrSurveyRecording stopped;
    stopped.cancel = true;
    QVERIFY(!stopped.Load(m_log));
    QCOMPARE(stopped.Error(), QStringLiteral("Cancelled"));
}

void tst_SurveyReview::idlePageDrawsNothing()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(100.0));
    WaitForLines();
    QTest::qWait(50);
    Settle();
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    ZrPaintCounter page(Page());
    QTest::qWait(500);
    QCOMPARE(frames.size(), 0);
    QCOMPARE(page.Take(), 0);
    // One step, few frames, and still again.
    Page().Act(ReviewTransport::recordForward);
    QTRY_VERIFY(frames.size() > 0);
    WaitForLines();
    QTest::qWait(100);
    frames.clear();
    QTest::qWait(300);
    QCOMPARE(frames.size(), 0);
}

/// Of the tiles of 256 lines those in view, each once.
void tst_SurveyReview::readsOnlyWhatIsShown()
{
    Open(m_log);
    WaitForLines();
    const ZrWaterfallLoader& loader = *Page().Sonar().Loader();
    const i64 first = loader.LinesRead();
    QVERIFY2(first > 0 && first <= 256, qPrintable(QString::number(first)));
    for (double ping = 0.0; ping < 100.0; ping += 10.0)
        Page().GoTo(Rec().TimeOfPing(ping));
    WaitForLines();
    QVERIFY(loader.LinesRead() <= 300);
    Page().GoTo(Rec().TimeOfPing(299.0));
    WaitForLines();
    QCOMPARE(loader.LinesRead(), i64(300));
    Page().GoTo(Rec().TimeOfPing(0.0));
    WaitForLines();
    QCOMPARE(loader.LinesRead(), i64(300));
}

void tst_SurveyReview::keys()
{
    Open(m_log);
    QTest::keyClick(m_view.get(), Qt::Key_End);
    QCOMPARE(Page().Clock().Time(), Rec().Times()->End());
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QCOMPARE(Page().Clock().Time(), Rec().Times()->Begin());
    QTest::keyClick(m_view.get(), Qt::Key_Right, Qt::ShiftModifier);
    QVERIFY(std::fabs(Page().Clock().Time() - Rec().Times()->Begin() - 1.0) < 1e-6);
    // Also when the finger was on a panel last.
    QTest::keyClick(&Page().Sonar().Panel(), Qt::Key_Left, Qt::ShiftModifier);
    QCOMPARE(Page().Clock().Time(), Rec().Times()->Begin());
    QTest::keyClick(m_view.get(), Qt::Key_A);
    QCOMPARE(Page().Bar().RangeA(), Rec().Times()->Begin());
    QTest::keyClick(m_view.get(), Qt::Key_End);
    QTest::keyClick(m_view.get(), Qt::Key_B);
    QCOMPARE(Page().Bar().RangeB(), Rec().Times()->End());
    QTest::keyClick(m_view.get(), Qt::Key_Home);
    QTest::keyClick(m_view.get(), Qt::Key_Space);
    QVERIFY(Page().Clock().IsPlaying());
    QTest::keyClick(m_view.get(), Qt::Key_Space);
    QVERIFY(!Page().Clock().IsPlaying());
    const bool slant = m_view->Model().settings.slant;
    QTest::keyClick(m_view.get(), Qt::Key_S);
    QCOMPARE(m_view->Model().settings.slant, !slant);
    QTest::keyClick(m_view.get(), Qt::Key_2);
    QVERIFY(!Page().Plots().isVisible() && Page().Sonar().Panel().isVisible());
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QVERIFY(Page().Plots().isVisible());
}

/// At every size of a window nothing of the page lies outside of it, nor on another control, and fingers hit
/// everything.
void tst_SurveyReview::everySize()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    for (const QSize size : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080), QSize(2560, 1440)}) {
        m_view->resize(size);
        QTRY_COMPARE(Page().size(), size);
        WaitForLines();
        const QString name = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
        QVector<ZrBtn*> buttons;
        for (ZrBtn* button : Page().findChildren<ZrBtn*>()) {
            if (button->isVisible())
                buttons.append(button);
        }
        QVERIFY(buttons.size() > 20);
        const auto place = [this](const QWidget* w) { return QRect(w->mapTo(&Page(), QPoint()), w->size()); };
        for (int i = 0; i < buttons.size(); ++i) {
            const QRect at = place(buttons[i]);
            const QString who = name + QLatin1Char(' ') + buttons[i]->accessibleName();
            QVERIFY2(Page().rect().contains(at), qPrintable(who));
            QVERIFY2(at.width() >= 44 && at.height() >= 44, qPrintable(who));
            for (int j = 0; j < i; ++j)
                QVERIFY2(!at.intersects(place(buttons[j])),
                    qPrintable(who + QStringLiteral(" and ") + buttons[j]->accessibleName()));
        }
        const QImage picture = m_view->grab().toImage();
        QCOMPARE(picture.size(), size);
        // The waterfall is there, and not of one colour.
        const QRect panel = Page().Sonar().Panel().geometry();
        const QColor middle = picture.pixelColor(panel.center() + QPoint(panel.width() / 3, -20));
        QVERIFY(middle != picture.pixelColor(panel.center() + QPoint(panel.width() / 3 + 9, -31)));
        if (qEnvironmentVariableIsSet("ZR_REVIEW_PICTURES"))
            picture.save(qEnvironmentVariable("ZR_REVIEW_PICTURES") + QLatin1Char('/') + name
                + QStringLiteral(".png"));
    }
}

/// Colours change at once, with the measuring panel and the list of events open.
void tst_SurveyReview::everyColour()
{
    Open(m_log);
    Page().Events().Add(Rec().TimeOfPing(120.0), QStringLiteral("Wreck"));
    Page().GoTo(Rec().TimeOfPing(150.0));
    QTest::keyClick(m_view.get(), Qt::Key_L, Qt::ControlModifier);
    QTest::keyClick(m_view.get(), Qt::Key_M);
    QVERIFY(Page().Events().isVisible());
    WaitForLines();
    QImage before;
    for (int scheme = 0; scheme < 3; ++scheme) {
        m_view->SetColours(scheme);
        Settle();
        const QImage picture = m_view->grab().toImage();
        QVERIFY(picture != before);
        // The tool bars are not opaque: as light as the scheme, whatever lies below.
        const QColor band = picture.pixelColor(Page().Bar().geometry().topLeft() + QPoint(2, 2));
        QVERIFY2((band.lightness() > 127) == ZrColourScheme::IsLight(), qPrintable(band.name()));
        before = picture;
        if (qEnvironmentVariableIsSet("ZR_REVIEW_PICTURES"))
            picture.save(QStringLiteral("%1/colour%2.png")
                             .arg(qEnvironmentVariable("ZR_REVIEW_PICTURES"))
                             .arg(scheme));
    }
}

GL_TEST_MAIN(tst_SurveyReview)
#include "tst_SurveyReview.moc"
