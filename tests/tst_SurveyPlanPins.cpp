// Findings on the map of the page "Plan": pins that leave the way and the names to be seen, and what a finger
// gets of them.

#include "SurveyPlanWindow.h"
#include "ZrKit/map/ZrLabelLayer.h"

#include <algorithm>

class tst_SurveyPlanPins : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:
    void namesKeepClear();
    void tapComesNearer();
    void tapOnOneChoosesIt();
    void waypointBelowItsPin();

private:
    void Fill(int count);
    void Paint();
    QPoint HeadOf(std::size_t pin) const;

    ZrTouchList* Checks()
    {
        return m_page->findChildren<ZrTouchList*>(QString(), Qt::FindDirectChildrenOnly).last();
    }
};

/// A track askew through the view, where every other waypoint is at the place of the one before.
void tst_SurveyPlanPins::Fill(int count)
{
    const ZrMapView& camera = m_page->Map().m_camera;
    std::vector<ZrWpt> track;
    for (int i = 0; i < count; ++i) {
        const double along = static_cast<double>(i / 2) / (count / 2);
        const ZrGeoPoint place
            = m_page->Chart().ToGeo(camera.ToWorld({200.0 + 450.0 * along, 150.0 + 400.0 * along}));
        ZrWpt wpt;
        wpt.lat = place.lat;
        wpt.lng = place.lng;
        track.push_back(wpt);
    }
    QVERIFY(Plan().History().InsertPattern(track, 0));
    Plan().Edited();
    QTRY_VERIFY(Checks()->Count() >= count / 2);
    QTRY_VERIFY(!m_page->Chart().PinRects(camera).empty());
    Paint();
}

void tst_SurveyPlanPins::Paint()
{
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    m_page->update();
    m_view->update();
    QTRY_VERIFY(frames.count() > 0);
}

/// Where a finger goes.
QPoint tst_SurveyPlanPins::HeadOf(std::size_t pin) const
{
    const QRectF head = m_page->Chart().PinRects(m_page->Map().m_camera)[2 * pin];
    return (head.center() / m_panel->devicePixelRatioF()).toPoint();
}

void tst_SurveyPlanPins::namesKeepClear()
{
    Fill(300);
    const ZrLabelLayer& names = m_page->Chart().Names();
    const auto pins = m_page->Chart().PinRects(m_page->Map().m_camera);
    QVERIFY2(pins.size() >= 2 * 5 && pins.size() <= 2 * 15, qPrintable(QString::number(pins.size())));
    for (std::size_t i = 0; i < pins.size(); i += 2) {
        for (std::size_t k = 0; k < i; k += 2)
            QVERIFY(!pins[i].intersects(pins[k]));
    }
    std::size_t box = 0;
    int shown = 0;
    for (std::size_t i = 0; i < names.Labels().size(); ++i) {
        if (!names.Shown()[i])
            continue;
        const QRectF& covered = names.Boxes()[box++];
        ++shown;
        for (const QRectF& pin : pins)
            QVERIFY2(!pin.intersects(covered), qPrintable(names.Labels()[i].text));
    }
    QVERIFY(shown > 3);
}

void tst_SurveyPlanPins::tapComesNearer()
{
    Fill(300);
    const ZrMapView& camera = m_page->Map().m_camera;
    const double scale = camera.Scale();
    Tap(HeadOf(1));
    QVERIFY(camera.Scale() < 0.5 * scale);
    Paint();
    // As near as that all that were in it are seen, in pins of their own.
    const auto pins = m_page->Chart().PinRects(camera);
    const auto inView = std::count_if(pins.begin(), pins.end(),
        [&](const QRectF& pin) { return QRectF(0, 0, camera.Width(), camera.Height()).contains(pin); });
    QVERIFY2(inView >= 2 * 2, qPrintable(QString::number(inView)));
    // Again and again there is one finding at last.
    for (int i = 0; i < 10 && !Toast().contains(QLatin1String("same place")); ++i) {
        std::size_t middle = 0;
        const auto all = m_page->Chart().PinRects(camera);
        const QPointF centre(camera.Width() / 2.0, camera.Height() / 2.0);
        for (std::size_t k = 0; 2 * k < all.size(); ++k) {
            if ((all[2 * k].center() - centre).manhattanLength()
                < (all[2 * middle].center() - centre).manhattanLength())
                middle = k;
        }
        Tap(HeadOf(middle));
        Paint();
        if (Checks()->isVisible())
            break;
    }
    QVERIFY(Checks()->isVisible());
    QVERIFY(Checks()->Current() >= 0);
    QVERIFY(!Toast().isEmpty());
}

void tst_SurveyPlanPins::tapOnOneChoosesIt()
{
    AddRoute();
    Plan().History().Change(Wpt(1), QStringLiteral("turn radius"), [](ZrWpt& w) { w.r = 9000.0; });
    Plan().Edited();
    const ZrMapView& camera = m_page->Map().m_camera;
    QTRY_VERIFY(!m_page->Chart().PinRects(camera).empty());
    Paint();
    const double scale = camera.Scale();
    QVERIFY(!Checks()->isVisible());
    const auto* list = m_page->findChild<PlanListPanel*>()->List();
    QCOMPARE(list->Current(), -1);
    Tap(HeadOf(0));
    QCOMPARE(camera.Scale(), scale);
    QVERIFY(Checks()->isVisible());
    const int row = Checks()->Current();
    QVERIFY(row >= 0);
    QCOMPARE(list->Current(), 1);
    QVERIFY(!Toast().isEmpty());
    QCOMPARE(Toast(), Checks()->Item(row).subtitle);
}

/// Its pin does not take the touches that are for the waypoint.
void tst_SurveyPlanPins::waypointBelowItsPin()
{
    AddRoute();
    Plan().History().Change(Wpt(1), QStringLiteral("turn radius"), [](ZrWpt& w) { w.r = 9000.0; });
    Plan().Edited();
    QTRY_VERIFY(!m_page->Chart().PinRects(m_page->Map().m_camera).empty());
    Paint();
    const auto* list = m_page->findChild<PlanListPanel*>()->List();
    for (const QPoint& off : {QPoint(0, 0), QPoint(10, 4), QPoint(0, 12), QPoint(-8, -4)}) {
        QTest::keyClick(m_view.get(), Qt::Key_Escape);
        QTRY_COMPARE(list->Current(), -1);
        Tap(PixelOf(1) + off);
        QCOMPARE(list->Current(), 1);
        QVERIFY(!Checks()->isVisible());
    }
}

GL_TEST_MAIN(tst_SurveyPlanPins)
#include "tst_SurveyPlanPins.moc"
