// The page "Review": a recording is opened, one cursor goes through it.

#include "SurveyReviewWindow.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/ui/ZrPlotPanel.h"
#include "ZrSurveyLog.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "apps/ZrSurvey/ReviewMap.h"
#include "apps/ZrSurvey/ReviewTransport.h"
#include "apps/ZrSurvey/ScenePage.h"

#include <algorithm>

namespace {

/// Writes the log \p from and all of its items once more, so many seconds later, to \p to.
bool LaterOnce(const QString& from, const QString& to, double seconds)
{
    QFile in(from);
    QFile out(to);
    if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = in.readAll();
    QByteArray later = bytes.mid(ZrLogHeader::Size);
    for (int at = 0; at < later.size();) {
        ZrLogItem item = ZrLogItem::Decode(reinterpret_cast<const u8*>(later.constData()) + at);
        item.time += seconds;
        const auto header = item.Encode();
        std::copy(header.begin(), header.end(), later.begin() + at);
        at += static_cast<int>(ZrLogItem::Size + item.storedSize);
    }
    return out.write(bytes) == bytes.size() && out.write(later) == later.size();
}

} // namespace

class tst_SurveyReview : public SurveyReviewWindow
{
    Q_OBJECT

private Q_SLOTS:
    void opens();
    void oneCursor();
    void everyPaneMovesTheOthers();
    void beforeTheFirstValue();
    void startsWhereAPositionIs();
    void firstPositionFarBehind();
    void gapsInRealTime();
    void scrubs();
    void plays();
    void playsInThreeDimensions();
    void otherPagesPause();
    void loops();
    void steps();
    void typedTime();
    void damagedLog();
    void noLog();
    void cancelled();
};

void tst_SurveyReview::opens()
{
    Open(m_log);
    QVERIFY(Page().Recording());
    QCOMPARE(Rec().Pings().size(), std::size_t(300));
    QVERIFY(!Rec().IsDamaged());
    QVERIFY2(Rec().Remarks().isEmpty(), qPrintable(Rec().Remarks().join(QLatin1Char('\n'))));
    QCOMPARE(Rec().Series().Count(), std::size_t(300));
    QCOMPARE(Page().Clock().Time(), Rec().FirstPosition(Rec().Times()->End()));
    QCOMPARE(m_view->Page(), static_cast<SurveyPage*>(&Page()));
}

void tst_SurveyReview::oneCursor()
{
    Open(m_log);
    QSignalSpy moved(&m_view->Model().reviewed, &SurveyVehicle::Changed);
    const double at = Rec().TimeOfPing(150.0);
    Page().GoTo(at);
    QCOMPARE(moved.size(), 1);
    QCOMPARE(Page().Bar().Cursor(), at);
    QVERIFY(std::fabs(Page().Sonar().Panel().Cursor() - 150.0) < 1e-6);
    const SurveyVehicle::Pose& pose = m_view->Model().reviewed.Current();
    QVERIFY(!m_view->Model().reviewed.IsLive());
    QCOMPARE(m_view->Model().reviewed.Source(), QStringLiteral("wreck ö.log"));
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

/// A finger in the time line, the waterfall, the plots, on the map: each moves all others and the vehicle.
void tst_SurveyReview::everyPaneMovesTheOthers()
{
    Open(m_log);
    Page().GoTo(Rec().TimeOfPing(150.0));
    WaitForLines();
    ZrTimeBar& bar = Page().Bar();
    ZrPlotPanel& plots = Page().Plots();
    ZrWaterfallPanel& waterfall = Page().Sonar().Panel();
    ZrMapPanel& map = Page().Map().Panel();
    QSignalSpy vehicle(&m_view->Model().reviewed, &SurveyVehicle::Changed);
    double before = Page().Clock().Time();
    const auto moved = [&](const char* by) {
        const double now = Page().Clock().Time();
        const bool isMoved = now != before && vehicle.size() > 0;
        before = now;
        vehicle.clear();
        const ZrGeoPoint position = Rec().PositionAt(now);
        const QString depth
            = QString::number(double(Rec().Series().depth.ValueAt(now)), 'f', 1) + QStringLiteral(" m");
        const bool isOne = bar.Cursor() == now && std::fabs(waterfall.Cursor() - Rec().PingAt(now)) < 1e-6
            && plots.ValueText(0, 0) == depth && m_view->Model().reviewed.Current().lat == position.lat
            && Page().Map().Vehicle() == Page().Map().WorldOf(position);
        if (!isMoved || !isOne)
            qWarning("%s: moved %d, one %d", by, int(isMoved), int(isOne));
        return isMoved && isOne;
    };
    const QPoint onBar(qRound(bar.XOf(before + 5.0)), bar.height() / 2 + 8);
    Drag(bar, onBar, onBar + QPoint(60, 0));
    QVERIFY(moved("time line"));
    Drag(waterfall, QPoint(200, 100), QPoint(200, 160));
    QVERIFY(moved("waterfall"));
    const QRect plot = plots.PlotRect(1);
    Drag(plots, plot.center() - QPoint(80, 0), plot.center() - QPoint(120, 0));
    QVERIFY(moved("plots"));
    const QPointF there = Page().Map().PixelOf(Rec().PositionAt(Rec().TimeOfPing(250.0)));
    QVERIFY(map.rect().contains(there.toPoint()));
    SendPress(map, there.toPoint());
    SendRelease(map, there.toPoint());
    QVERIFY(moved("map"));
    QVERIFY(std::fabs(Rec().PingAt(before) - 250.0) < 8.0);
    QTest::keyClick(m_view.get(), Qt::Key_Left);
    QVERIFY(moved("key"));
    Page().Act(ReviewTransport::play);
    Page().Advance(0.02);
    Page().Advance(0.1);
    Page().Act(ReviewTransport::play);
    QVERIFY(moved("playing"));
    // The page 3D shows the vehicle where the cursor is.
    m_view->Show(QStringLiteral("Scene"));
    Settle();
    QCOMPARE(m_view->Model().reviewed.Current().lat, Rec().PositionAt(before).lat);
}

/// The first record of the line holds zeros, as nothing was known yet: none of them is a value.
void tst_SurveyReview::beforeTheFirstValue()
{
    Open(m_log);
    Page().GoTo(Rec().Times()->Begin());
    QCOMPARE(Page().Clock().Time(), Rec().Times()->Begin());
    for (int plot = 0; plot < Page().Plots().Plots().size(); ++plot) {
        for (int curve = 0; curve < Page().Plots().Plots()[plot].curves.size(); ++curve)
            QCOMPARE(Page().Plots().ValueText(plot, curve), QStringLiteral("–"));
    }
    QVERIFY(std::isnan(m_view->Model().reviewed.Current().depth));
    QVERIFY(std::isnan(m_view->Model().reviewed.Current().heading));
    Page().Act(ReviewTransport::recordForward);
    QVERIFY2(Page().Plots().ValueText(0, 0).endsWith(QStringLiteral(" m")),
        qPrintable(Page().Plots().ValueText(0, 0)));
    QVERIFY(m_view->Model().reviewed.Current().depth > 5.0);
}

/// The first screen of a recording shows the vehicle, although its first record knows nothing.
void tst_SurveyReview::startsWhereAPositionIs()
{
    Open(m_log);
    QVERIFY(!Rec().PositionAt(Rec().Times()->Begin()).IsValid());
    const double at = Page().Clock().Time();
    QVERIFY(at > Rec().Times()->Begin() && at < Rec().Times()->Begin() + 10.0);
    QVERIFY(Rec().PositionAt(at).IsValid());
    QCOMPARE(Page().Bar().Cursor(), at);
    QCOMPARE(m_view->Model().reviewed.Current().lat, Rec().PositionAt(at).lat);
    QVERIFY(Page().Plots().ValueText(0, 0) != QStringLiteral("–"));
    QVERIFY(Page().Map().Vehicle() == Page().Map().WorldOf(Rec().PositionAt(at)));
}

/// A vehicle that surfaced only after a long way is shown from the beginning.
void tst_SurveyReview::firstPositionFarBehind()
{
    const QString late = m_folder.filePath(QStringLiteral("late.log"));
    QFile::remove(late);
    LogBytes log;
    for (int i = 0; i < 100; ++i) {
        survey::Nav nav;
        nav.depth = 5.0F;
        if (i >= 11) {
            nav.latitude = 48.0;
            nav.longitude = -68.0;
        }
        log.Add(survey::NavItem(survey::startTime + i, nav));
    }
    QVERIFY(WriteWhole(late, log.Bytes()));
    Open(late);
    QVERIFY2(Page().Recording(), qPrintable(Toast()));
    QCOMPARE(Rec().FirstPosition(Rec().Times()->End()), Rec().Times()->Begin() + 11.0);
    QCOMPARE(Page().Clock().Time(), Rec().Times()->Begin());
}

/// Two lines an hour apart: cut out, or as long as it was; kept in the settings.
void tst_SurveyReview::gapsInRealTime()
{
    const QString two = m_folder.filePath(QStringLiteral("two.log"));
    QFile::remove(two);
    QVERIFY(LaterOnce(m_log, two, 3600.0));
    Open(two);
    QVERIFY2(Page().Recording() && Rec().Pings().size() == 600, qPrintable(Toast()));
    ZrTimeBar& bar = Page().Bar();
    QVERIFY(bar.AreGapsCut());
    QVERIFY(Page().Clock().SkipsGaps());
    QVERIFY(bar.Line().Length() < 120.0);
    QTest::keyClick(m_view.get(), Qt::Key_G);
    QVERIFY(!bar.AreGapsCut() && !m_view->Model().settings.gapsCut);
    QVERIFY(!Page().Clock().SkipsGaps());
    QVERIFY(bar.Line().Length() > 3600.0);
    Keep(QStringLiteral("gaps"));
    // Another log is shown the same way; a restart too, by the settings.
    Open(m_log);
    QVERIFY(!bar.AreGapsCut());
    QTest::keyClick(m_view.get(), Qt::Key_G);
    QVERIFY(bar.AreGapsCut() && Page().Clock().SkipsGaps());
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
    QCOMPARE(Page().Clock().Time(), Page().Clock().Begin());
}

/// The page 3D goes on with what plays, and plays by itself.
void tst_SurveyReview::playsInThreeDimensions()
{
    Open(m_log);
    auto& scene = *static_cast<ScenePage*>(m_view->GetPage(QStringLiteral("Scene")));
    const auto* play = scene.findChild<ZrBtn*>(QStringLiteral("play"));
    QVERIFY(play);
    Page().Act(ReviewTransport::play);
    m_view->Show(QStringLiteral("Scene"));
    QTRY_VERIFY(scene.isVisible() && play->isVisible());
    QVERIFY(Page().Clock().IsPlaying() && play->on);
    QVERIFY(std::min(play->width(), play->height()) >= ZrTheme::DpI(64));
    // The clock, the vehicle and what the other page shows are one cursor.
    const double before = Page().Clock().Time();
    QTRY_VERIFY(Page().Clock().Time() > before + 0.2);
    QTest::keyClick(m_view.get(), Qt::Key_Space);
    QVERIFY(!Page().Clock().IsPlaying() && !play->on);
    const double at = Page().Clock().Time();
    QCOMPARE(m_view->Model().reviewed.Current().lat, Rec().PositionAt(at).lat);
    QCOMPARE(Page().Bar().Cursor(), at);
    // Paused it draws nothing and stays.
    Settle();
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    QTRY_VERIFY(!scene.Way().IsBuilding());
    QTest::qWait(200);
    frames.clear();
    QTest::qWait(300);
    QCOMPARE(frames.size(), 0);
    QCOMPARE(Page().Clock().Time(), at);
    // By the button, and the other page goes on with it.
    QTest::mouseClick(const_cast<ZrBtn*>(play), Qt::LeftButton);
    QVERIFY(Page().Clock().IsPlaying() && play->on);
    QTRY_VERIFY(Page().Clock().Time() > at + 0.1);
    m_view->Show(QStringLiteral("Review"));
    QVERIFY(Page().Clock().IsPlaying());
    const double back = Page().Clock().Time();
    QTRY_VERIFY(Page().Clock().Time() > back + 0.1);
    // At the end it stops there as well.
    m_view->Show(QStringLiteral("Scene"));
    Page().GoTo(Page().Clock().End() - 0.1);
    QTRY_VERIFY(!Page().Clock().IsPlaying());
    QVERIFY(!play->on);
}

/// Nobody sees it go on there.
void tst_SurveyReview::otherPagesPause()
{
    Open(m_log);
    for (const char* from : {"Review", "Scene"}) {
        for (const char* to : {"Home", "Plan", "Record"}) {
            m_view->Show(QStringLiteral("Review"));
            Page().Act(ReviewTransport::play);
            m_view->Show(QLatin1String(from));
            QVERIFY(Page().Clock().IsPlaying());
            m_view->Show(QLatin1String(to));
            QVERIFY2(!Page().Clock().IsPlaying(), to);
        }
    }
    // After the page "Record" the page 3D is about the vehicle itself.
    m_view->Show(QStringLiteral("Scene"));
    QVERIFY(
        !m_view->GetPage(QStringLiteral("Scene"))->findChild<ZrBtn*>(QStringLiteral("play"))->isVisible());
    QTest::keyClick(m_view.get(), Qt::Key_Space);
    QVERIFY(!Page().Clock().IsPlaying());
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

GL_TEST_MAIN(tst_SurveyReview)
#include "tst_SurveyReview.moc"
