// A plan on a map: where its parts are, and what a finger hits.

#include "PlanChart.h"
#include "ZrKit/chart/ZrPlanChart.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrWpts.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>

using plan_chart::Findings;
using plan_chart::Show;

class tst_ZrPlanChart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void thereAndBack_data();
    void thereAndBack();
    void badOrigin();
    void waypointUnderTheFinger();
    void legUnderTheFinger();
    void legFollowsTheArc();
    void areas();
    void findingsShareAPin();
    void pinRects();
    void pinUnderTheFinger();
    void pinOfFindingsBefore();
    void footOnALeg();
    void bounds();
    void invalidPositions();

private:
    std::vector<QPointF> Pins(ZrPlanChart& chart, const QColor& colour) const;
};

void tst_ZrPlanChart::initTestCase()
{
    ZrTheme::dp = 1.0F;
    ZrColourScheme::Apply(ZrColourScheme::dusk);
}

void tst_ZrPlanChart::thereAndBack_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("metres"); // 28 mm at the border of a zone, by the series of the grid
    QTest::newRow("north west") << 50.3 << -4.1 << 0.001;
    QTest::newRow("south east") << -33.9 << 151.2 << 0.001;
    QTest::newRow("antimeridian") << 1.0 << 179.9999 << 0.03;
    QTest::newRow("zero") << 0.0 << 0.0 << 0.03;
}

void tst_ZrPlanChart::thereAndBack()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, metres);
    ZrPlanChart chart;
    chart.SetOrigin({lat, lng});
    const ZrGeoPoint back = chart.ToGeo(chart.ToWorld({lat, lng}));
    constexpr double metresPerDegree = 111000.0;
    QVERIFY(std::fabs(back.lat - lat) * metresPerDegree < metres);
    QVERIFY(std::fabs(back.lng - lng) * metresPerDegree < metres);
}

void tst_ZrPlanChart::badOrigin()
{
    ZrPlanChart chart;
    chart.SetOrigin({50.3, -4.1});
    const QPointF before = chart.ToWorld({50.3, -4.1});
    chart.SetOrigin({});
    chart.SetOrigin({95.0, 0.0});
    QCOMPARE(chart.ToWorld({50.3, -4.1}), before);
}

void tst_ZrPlanChart::waypointUnderTheFinger()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    QCOMPARE(chart.WaypointAt(view, {200, 200}, 20.0), 1);
    QCOMPARE(chart.WaypointAt(view, {200, 300}, 20.0), 0);
    QCOMPARE(chart.WaypointAt(view, {300, 200}, 20.0), 2);
    QCOMPARE(chart.WaypointAt(view, {200, 255}, 20.0), -1);
    // The nearer of two.
    QCOMPARE(chart.WaypointAt(view, {200, 240}, 200.0), 1);
    QCOMPARE(chart.WaypointAt(view, {200, 260}, 200.0), 0);
}

void tst_ZrPlanChart::legUnderTheFinger()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    QPointF foot;
    QCOMPARE(chart.LegAt(view, {205, 250}, 16.0, &foot), 0);
    const QPointF pixel = view.ToPixel(foot);
    QVERIFY(std::fabs(pixel.x() - 200.0) < 0.5 && std::fabs(pixel.y() - 250.0) < 0.5);
    QCOMPARE(chart.LegAt(view, {250, 195}, 16.0), 1);
    QCOMPARE(chart.LegAt(view, {250, 250}, 16.0), -1);
    QCOMPARE(chart.LegAt(view, {200, 330}, 16.0), -1);
}

void tst_ZrPlanChart::legFollowsTheArc()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view, 50.0);
    // The way leaves the corner out by r · (√2 − 1).
    QCOMPARE(chart.LegAt(view, {200, 200}, 16.0), -1);
    const double cut = 50.0 * (1.0 - std::sqrt(0.5));
    QCOMPARE(chart.LegAt(view, {200.0 + cut, 200.0 + cut}, 2.0), 0);
}

void tst_ZrPlanChart::areas()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    const auto place = [&](double x, double y) { return chart.ToGeo(view.ToWorld({x, y})); };
    const ZrArea outer{
        QStringLiteral("A"), {place(100, 100), place(300, 100), place(300, 300), place(100, 300)}};
    const ZrArea inner{
        QStringLiteral("B"), {place(150, 150), place(200, 150), place(200, 200), place(150, 200)}};
    chart.SetAreas({outer, inner}, {inner});
    QCOMPARE(chart.AreaAt(view.ToWorld({170, 170}), false), 1);
    QCOMPARE(chart.AreaAt(view.ToWorld({250, 250}), false), 0);
    QCOMPARE(chart.AreaAt(view.ToWorld({350, 350}), false), -1);
    QCOMPARE(chart.AreaAt(view.ToWorld({170, 170}), true), 0);
    QCOMPARE(chart.AreaAt(view.ToWorld({250, 250}), true), -1);
}

/// Of a colour, where they are.
std::vector<QPointF> tst_ZrPlanChart::Pins(ZrPlanChart& chart, const QColor& colour) const
{
    std::vector<QPointF> places;
    for (ZrMapLayer* layer : chart.Layers()) {
        const auto* marks = dynamic_cast<const ZrMarkerLayer*>(layer);
        for (const ZrMapMarker& marker : marks ? marks->Markers() : std::vector<ZrMapMarker>()) {
            if (marker.image == 7 && marker.colour == colour)
                places.push_back(marker.position);
        }
    }
    return places;
}

/// A track has a finding at every waypoint: pins do not cover one another, and an error is not hidden.
void tst_ZrPlanChart::findingsShareAPin()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    std::vector<QPointF> offsets;
    for (int i = 0; i < 500; ++i)
        offsets.emplace_back(0.4 * i, 0.0);
    chart.SetFindings(Findings(chart, offsets, 250));
    view.SetScale(1.0);
    chart.Match(view);
    // 200 m: the error in the middle, the others 64 m and more from it and from one another.
    const auto shared = Pins(chart, ZrTheme::warnCol);
    QCOMPARE(shared.size(), std::size_t(2));
    QCOMPARE(Pins(chart, ZrTheme::errorCol).size(), std::size_t(1));
    // The numbers tell of all of them.
    const auto* numbers = dynamic_cast<ZrLabelLayer*>(chart.Layers()[3]);
    QVERIFY(numbers);
    int told = 0;
    for (const ZrMapLabel& label : numbers->Labels())
        told += label.text.toInt();
    QCOMPARE(told, 500);
    view.SetScale(0.001);
    chart.Match(view);
    QCOMPARE(Pins(chart, ZrTheme::warnCol).size(), std::size_t(499));
    QVERIFY(numbers->Labels().empty());
    chart.SetFindings({});
    chart.Match(view);
    QVERIFY(Pins(chart, ZrTheme::warnCol).empty());
}

/// The pixels of a pin are on the screen whatever the scale, and no name is to cover them.
void tst_ZrPlanChart::pinRects()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    chart.SetFindings(Findings(chart, {{0, 0}, {0.5, 0}, {100, 0}}));
    for (const double scale : {0.9, 1.1}) {
        view.SetScale(scale);
        chart.Match(view);
        const auto rects = chart.PinRects(view);
        QCOMPARE(rects.size(), std::size_t(4));
        const QPointF at = view.ToPixel(chart.ToWorld({50.3, -4.1}));
        QVERIFY(std::fabs(rects[0].center().x() - at.x()) < 0.01);
        QVERIFY(rects[0].bottom() <= rects[1].top() + 0.01);
        QVERIFY(std::fabs(rects[1].bottom() - at.y()) < 0.01);
        // That of several is larger: there is a number in it.
        QVERIFY(rects[0].width() > rects[2].width());
    }
    // On a screen of two pixels for one.
    const double width = chart.PinRects(view)[0].width();
    chart.Match(view, 2);
    QCOMPARE(chart.PinRects(view)[0].width(), 2.0 * width);
    // Far away there is nothing to keep clear of.
    view.Pan({10000.0, 0.0});
    chart.Match(view);
    QVERIFY(chart.PinRects(view).empty());
}

void tst_ZrPlanChart::pinUnderTheFinger()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    std::vector<ZrRouteFinding> findings = Findings(chart, {{0, 0}, {5, 0}, {100, 0}, {3, 4}}, 1);
    findings[2].severity = ZrRouteFinding::eInfo; // has none
    chart.SetFindings(findings);
    chart.Match(view);
    const auto head = [&] { return chart.PinRects(view)[0].center(); };
    const ZrPlanChart::Pin pin = chart.PinAt(view, head(), 20.0);
    QCOMPARE(pin.findings, (std::vector<int>{1, 0, 3})); // the error first
    QVERIFY(pin.hasParts);
    QCOMPARE(std::round(pin.bounds.width()), 5.0);
    QCOMPARE(std::round(pin.bounds.height()), 4.0);
    QVERIFY(chart.PinAt(view, {300, 180}, 20.0).findings.empty());
    QVERIFY(chart.PinAt(view, head() + QPointF(30, 0), 20.0).findings.empty());
    // What it points to is there.
    const QPointF point = view.ToPixel(chart.ToWorld(findings[1].place));
    QVERIFY(chart.PinAt(view, point, 100.0).findings.empty());
    QVERIFY(!chart.PinAt(view, point - QPointF(0, 25), 100.0).findings.empty());
    // Those in one place do not come apart, however near one looks.
    chart.SetFindings(Findings(chart, {{0, 0}, {0, 0}, {0.01, 0.0}}));
    chart.Match(view);
    const ZrPlanChart::Pin same = chart.PinAt(view, head(), 20.0);
    QCOMPARE(same.findings.size(), std::size_t(3));
    QVERIFY(!same.hasParts);
    QVERIFY(chart.PinAt(ZrMapView(), {0, 0}, -1.0).findings.empty());
}

/// A pin that is still on the screen tells nothing of findings that came after it.
void tst_ZrPlanChart::pinOfFindingsBefore()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    chart.SetFindings(Findings(chart, {{0, 0}, {5, 0}, {3, 4}, {100, 0}}));
    chart.Match(view);
    const QPointF head = chart.PinRects(view)[2].center();
    QCOMPARE(chart.PinAt(view, head, 20.0).findings, std::vector<int>{3});
    for (const std::vector<QPointF>& places :
        {std::vector<QPointF>{{0, 0}}, {{0, 0}, {1, 0}, {2, 0}, {3, 0}}, {}}) {
        chart.SetFindings(Findings(chart, places));
        QVERIFY(chart.PinAt(view, head, 20.0).findings.empty());
    }
    chart.SetFindings(Findings(chart, {{100, 0}}));
    chart.Match(view);
    QCOMPARE(chart.PinAt(view, head, 20.0).findings, std::vector<int>{0});
}

void tst_ZrPlanChart::footOnALeg()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    const QPointF foot = chart.FootOnLeg(0, view.ToWorld({230, 270}));
    const QPointF pixel = view.ToPixel(foot);
    QVERIFY(std::fabs(pixel.x() - 200.0) < 0.5 && std::fabs(pixel.y() - 270.0) < 0.5);
    // Beyond its end it is the end.
    QCOMPARE(chart.FootOnLeg(1, view.ToWorld({350, 150})), chart.Points()[2]);
    for (const int leg : {-1, 2, 99})
        QCOMPARE(chart.FootOnLeg(leg, {3, 4}), QPointF(3, 4));
}

void tst_ZrPlanChart::bounds()
{
    ZrPlanChart chart;
    QVERIFY(chart.Bounds().isNull());
    ZrMapView view;
    Show(chart, view);
    QVERIFY(std::fabs(chart.Bounds().width() - 100.0) < 0.01);
    QVERIFY(std::fabs(chart.Bounds().height() - 100.0) < 0.01);
}

void tst_ZrPlanChart::invalidPositions()
{
    ZrPlanChart chart;
    chart.SetOrigin({50.3, -4.1});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    ZrWpts route;
    route.linked = true;
    route.Add(50.3, -4.1, eZrWptBlue, ZrWpts::eAddTail);
    route.Add(nan, nan, eZrWptBlue, ZrWpts::eAddTail);
    route.Add(50.31, -4.1, eZrWptBlue, ZrWpts::eAddTail);
    chart.SetRoute(route, ZrRoutePath(route));
    chart.SetSelected(7, 9);
    ZrMapView view;
    view.SetSize(400, 400);
    view.Fit(chart.Bounds(), 20.0);
    QVERIFY(std::isfinite(view.Scale()));
    QCOMPARE(chart.WaypointAt(view, view.ToPixel(chart.ToWorld({50.31, -4.1})), 10.0), 2);
    QCOMPARE(chart.LegAt(view, {200, 200}, 30.0), -1);
    // A path that is older than the route.
    ZrWpts one;
    one.Add(50.3, -4.1, eZrWptBlue, ZrWpts::eAddTail);
    chart.SetRoute(one, ZrRoutePath(route));
    QCOMPARE(chart.Points().size(), std::size_t(1));
    chart.Match(view);
}

QTEST_MAIN(tst_ZrPlanChart)
#include "tst_ZrPlanChart.moc"
