// Very long plans on the page "Plan": its lists, and what an edit costs the thread that the fingers wait for.

#include "SurveyPlanWindow.h"
#include "ThreadTime.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrSanitizer.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <algorithm>
#include <functional>

namespace {

constexpr double mostMs = 50.0; ///< of a step on a plan of 10,000 waypoints
constexpr double mostFrameMs = 50.0; ///< of its lines and marks made anew

double CpuMsOf(const std::function<void()>& act)
{
    const double begin = long_log::ThreadMs();
    act();
    return long_log::ThreadMs() - begin;
}

} // namespace

class tst_SurveyPlanLong : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:
    void lists_data();
    void lists();
    void chartFollowsTheReview();
    void recordShowsIt();
    void findingOfItsWaypoint();
    void legOfItsWaypoints();
    void stepsCost_data();
    void stepsCost();
    void frameCosts();

private:
    void OpenRecord();
    void Put(int count);
    void Fill(int count);
    double RestMs();

    ZrTouchList* List() { return m_page->findChild<PlanListPanel*>()->List(); }

    ZrTouchList* Checks()
    {
        return m_page->findChildren<ZrTouchList*>(QString(), Qt::FindDirectChildrenOnly).last();
    }
};

/// Looks at the page "Record" and comes back.
void tst_SurveyPlanLong::OpenRecord()
{
    m_view->Model().settings.source = SurveySource::udp;
    m_view->Model().settings.udpPort = 0; // any free one, at which nobody sends
    m_view->Show(QStringLiteral("Record"));
    QTRY_VERIFY(m_view->GetPage(QStringLiteral("Record"))->isVisible());
    QTRY_VERIFY(m_view->Model().feed.State() == ZrSourceFacts::waiting);
    m_view->Show(QStringLiteral("Plan"));
    QTRY_VERIFY(m_page->isVisible());
}

/// Lines of a hundred waypoints to and fro.
void tst_SurveyPlanLong::Put(int count)
{
    ZrWpts route;
    for (int i = 0; i < count; ++i) {
        const int line = i / 100;
        auto wpt = std::make_unique<ZrWpt>();
        wpt->lat = 48.4 + 1e-4 * line;
        wpt->lng = -68.8 + 1e-3 * (line % 2 == 0 ? i % 100 : 99 - i % 100);
        route.AddTail(wpt.release());
    }
    route.linked = true;
    route.UpdatePseudo();
    route.Recalc(true);
    Plan().Route() = route;
    Plan().History().Reset();
    Plan().Edited();
}

/// The same, on the page.
void tst_SurveyPlanLong::Fill(int count)
{
    Put(count);
    QTRY_COMPARE_WITH_TIMEOUT(List()->Count(), count, 60000);
    QTRY_COMPARE_WITH_TIMEOUT(static_cast<int>(m_page->Chart().Points().size()), count, 60000);
}

void tst_SurveyPlanLong::lists_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("isReviewed"); // that of the longest one takes long
    QTest::newRow("10000") << 10000 << true;
    QTest::newRow("the most") << int(ZrSurveyPlanner::MostWaypoints) << false;
}

/// Rows are those of the plan, and made when they are looked at: none is kept.
void tst_SurveyPlanLong::lists()
{
    QFETCH(int, count);
    QFETCH(bool, isReviewed);
    Fill(count);
    QVERIFY(List()->Items().isEmpty());
    QCOMPARE(List()->Item(0).title, Wpt(0)->Name());
    QCOMPARE(List()->Item(0).detail, QString());
    QCOMPARE(List()->Item(count - 1).title, Wpt(count - 1)->Name());
    if (isReviewed)
        QTRY_VERIFY_WITH_TIMEOUT(List()->Item(count - 1).detail.endsWith(QLatin1String(" m")), 60000);
    // To its end, as a hand goes there.
    QTest::keyClick(List(), Qt::Key_Home);
    QTRY_COMPARE(List()->Current(), 0);
    QTest::keyClick(List(), Qt::Key_End);
    QTRY_COMPARE(List()->Current(), count - 1);
    const QRect row = List()->visualRect(List()->model()->index(count - 1, 0));
    QVERIFY(List()->viewport()->rect().intersects(row));
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QTRY_COMPARE(List()->Count(), count - 1);
    QCOMPARE(Plan().Route().GetCount(), count - 1);
    if (!isReviewed)
        return;
    // As many findings as there are waypoints.
    Plan().SetNoGo({{QStringLiteral("All"), {{48.0, -69.0}, {48.0, -68.0}, {50.0, -68.0}, {50.0, -69.0}}}});
    QTRY_VERIFY_WITH_TIMEOUT(Checks()->Count() > 0, 120000);
    QVERIFY(Checks()->Items().isEmpty());
    QVERIFY(!Checks()->Item(Checks()->Count() - 1).title.isEmpty());
}

/// The way and the findings of the review come to the map whenever they come.
void tst_SurveyPlanLong::chartFollowsTheReview()
{
    Fill(3000);
    const ZrMapView& camera = m_page->Map().m_camera;
    const auto legAt
        = [&](const QPointF& world) { return m_page->Chart().LegAt(camera, camera.ToPixel(world), 2.0); };
    const auto middle = [&](std::size_t a) {
        return (m_page->Chart().Points()[a] + m_page->Chart().Points()[a + 1]) / 2.0;
    };
    QTRY_COMPARE(legAt(middle(50)), 50);
    const ZrWpt* wpt = Wpt(51);
    Plan().History().Move(Wpt(51), wpt->lat + 5e-5, wpt->lng);
    Plan().Edited();
    QTRY_COMPARE(legAt(middle(50)), 50);
    QTRY_COMPARE(legAt(middle(51)), 51);
    Plan().History().Undo();
    Plan().Edited();
    QTRY_COMPARE(legAt(middle(51)), 51);
}

/// The page "Record", which draws the plan as well, does so when it is looked at; the turns come later.
void tst_SurveyPlanLong::recordShowsIt()
{
    OpenRecord();
    const LiveMap& map = static_cast<RecordPage*>(m_view->GetPage(QStringLiteral("Record")))->Map();
    const i64 before = map.PlanCount();
    Fill(3000);
    QCOMPARE(map.PlanCount(), before);
    m_view->Show(QStringLiteral("Record"));
    QCOMPARE(map.PlanCount(), i64(3000)); // straight
    QTRY_VERIFY_WITH_TIMEOUT(map.PlanCount() > 3000, 60000);
    const i64 measured = map.PlanCount();
    // Nothing is measured again for the same plan.
    m_view->Show(QStringLiteral("Plan"));
    m_view->Show(QStringLiteral("Record"));
    QCOMPARE(map.PlanCount(), measured);
    // Shorter ones at once, also while another one is measured.
    Put(4000);
    Put(3);
    QVERIFY(map.PlanCount() != measured);
    const i64 little = map.PlanCount();
    QTest::qWait(500);
    QCOMPARE(map.PlanCount(), little);
}

/// While the plan is looked at again its findings are those of before.
void tst_SurveyPlanLong::findingOfItsWaypoint()
{
    Fill(3000);
    Plan().History().Change(Wpt(100), QStringLiteral("turn radius"), [](ZrWpt& w) { w.r = 90000.0; });
    Plan().Edited();
    const auto rowOf = [this] {
        for (int row = 0; row < Checks()->Count(); ++row) {
            if (Checks()->Item(row).title == QLatin1String("Turn longer than its leg"))
                return row;
        }
        return -1;
    };
    QTRY_VERIFY_WITH_TIMEOUT(rowOf() >= 0, 60000);
    const int row = rowOf();
    Plan().History().Delete(Wpt(0));
    Plan().Edited();
    Q_EMIT Checks()->Chosen(row);
    QCOMPARE(List()->Current(), 99);
    // Nobody is chosen in the place of one that is gone.
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    Plan().History().Delete(Wpt(99));
    Plan().Edited();
    Q_EMIT Checks()->Chosen(row);
    QCOMPARE(List()->Current(), -1);
}

/// Likewise the way on the map.
void tst_SurveyPlanLong::legOfItsWaypoints()
{
    Fill(3000);
    const ZrMapView& camera = m_page->Map().m_camera;
    const auto middle = [&] { return (m_page->Chart().Points()[150] + m_page->Chart().Points()[151]) / 2.0; };
    const QPointF world = middle();
    QTRY_COMPARE(m_page->Chart().LegAt(camera, camera.ToPixel(world), 2.0), 150);
    m_page->Map().m_camera.SetCentre(world);
    m_page->Map().m_camera.SetScale(0.5);
    QTest::qWait(50);
    const ZrWpt* before = Wpt(150);
    const ZrWpt* behind = Wpt(151);
    Plan().History().Delete(Wpt(0));
    Plan().Edited();
    Tap(m_panel->rect().center());
    QVERIFY(Button("insert")->isVisible());
    Plan().History().Delete(Wpt(0));
    Plan().Edited();
    QTest::keyClick(m_view.get(), Qt::Key_Insert);
    QCOMPARE(Plan().Route().GetCount(), 2999);
    QCOMPARE(Wpt(148), before);
    QCOMPARE(Wpt(150), behind);
    const ZrWpt* added = Wpt(149);
    const QPointF at = m_page->Chart().ToWorld({added->lat, added->lng});
    QVERIFY((at - world).manhattanLength() < 2.0);
}

void tst_SurveyPlanLong::stepsCost_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    const auto add = [](const char* name, Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::newRow(name) << int(key) << int(modifiers);
    };
    add("delete", Qt::Key_Delete, Qt::NoModifier);
    add("reorder", Qt::Key_Up, Qt::ControlModifier);
    add("reverse", Qt::Key_R, Qt::ControlModifier);
    add("mode", Qt::Key_A, Qt::NoModifier);
}

/// What the event loop does until all has followed the edit: the longest turn. Frames are not counted.
double tst_SurveyPlanLong::RestMs()
{
    double longest = 0.0;
    QElapsedTimer quiet;
    quiet.start();
    while (quiet.elapsed() < 300) {
        const double turn = CpuMsOf([] { QCoreApplication::processEvents(); });
        longest = std::max(longest, turn);
        if (turn > 1.0)
            quiet.start();
        QThread::msleep(1);
    }
    return longest;
}

/// The least of some: a machine in use makes a step longer, none makes it shorter.
void tst_SurveyPlanLong::stepsCost()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    OpenRecord(); // another page that shows the plan
    Fill(10000);
    m_view->setUpdatesEnabled(false);
    Q_EMIT m_page->findChild<PlanListPanel*>()->Chosen(5000);
    RestMs();
    double step = 1e9;
    double undo = 1e9;
    const int runs = 4;
    for (int i = 0; i < runs; ++i) {
        const double now = CpuMsOf([&] {
            QTest::keyClick(
                m_view.get(), static_cast<Qt::Key>(key), static_cast<Qt::KeyboardModifiers>(modifiers));
        });
        step = std::min(step, std::max(now, RestMs()));
        const double back
            = CpuMsOf([this] { QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier); });
        undo = std::min(undo, std::max(back, RestMs()));
    }
    QVERIFY(step > 0.0 && undo > 0.0);
    // Whatever a sanitizer adds is no part of it.
    QVERIFY2(underSanitizer || step < mostMs, qPrintable(QString::number(step)));
    QVERIFY2(underSanitizer || undo < mostMs, qPrintable(QString::number(undo)));
    qInfo("%.1f ms, undo %.1f ms", step, undo);
}

/// What the frame after a step adds: lines, marks and the places of names, made anew for all; and those of a
/// step of the zoom.
void tst_SurveyPlanLong::frameCosts()
{
    Fill(10000);
    const ZrRoutePath path(Plan().Route());
    ZrPlanChart chart;
    chart.SetOrigin({48.4, -68.8});
    chart.SetRoute(Plan().Route(), path);
    ZrMapView view;
    view.SetSize(1280, 800);
    view.Fit(chart.Bounds(), 40.0);
    // The first frame shapes every name.
    const double first = CpuMsOf([&] { chart.Match(view); });
    double made = 1e9;
    double zoomed = 1e9;
    for (int i = 0; i < 4; ++i) {
        chart.SetWaypoints(Plan().Route());
        made = std::min(made, CpuMsOf([&] { chart.Match(view); }));
        view.ZoomAbout({640.0, 400.0}, 2.0);
        zoomed = std::min(zoomed, CpuMsOf([&] { chart.Match(view); }));
        view.ZoomAbout({640.0, 400.0}, 0.5);
    }
    QVERIFY(made > 0.0 && zoomed > 0.0);
    qInfo("first %.1f ms, then %.1f ms, after a zoom %.1f ms", first, made, zoomed);
    QVERIFY2(underSanitizer || made < mostFrameMs, qPrintable(QString::number(made)));
    QVERIFY2(underSanitizer || zoomed < mostFrameMs, qPrintable(QString::number(zoomed)));
}

GL_TEST_MAIN(tst_SurveyPlanLong)
#include "tst_SurveyPlanLong.moc"
