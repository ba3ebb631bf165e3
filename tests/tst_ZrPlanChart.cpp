// A plan on a map: where its parts are, and what a finger hits.

#include "CountedNew.h"
#include "ZrKit/chart/ZrPlanChart.h"
#include "ZrKit/map/ZrLabelDeclutter.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrWpts.h"

#include <QtTest>

#include <cmath>
#include <limits>

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
    void namesBesidePins();
    void footOnALeg();
    void namesBesideTheLegs_data();
    void namesBesideTheLegs();
    void namesOfAreasBetweenTheLines();
    void namesOfAreasOnLongLegs_data();
    void namesOfAreasOnLongLegs();
    void namesOfAreasAsideOfLegs_data();
    void namesOfAreasAsideOfLegs();
    void namesOfAreasWithManyLegs();
    void bounds();
    void invalidPositions();

private:
    void Show(ZrPlanChart& chart, ZrMapView& view, double radius = 0.0);

    /// Warnings at metres from the corner; \p error is the index of one that is an error.
    std::vector<ZrRouteFinding> Findings(
        const ZrPlanChart& chart, const std::vector<QPointF>& offsets, int error = -1) const;
    std::vector<QPointF> Pins(ZrPlanChart& chart, const QColor& colour) const;
};

void tst_ZrPlanChart::initTestCase()
{
    ZrTheme::dp = 1.0F;
    ZrColourScheme::Apply(ZrColourScheme::dusk);
}

/// A right angle of 100 m on each side: from the south up to the corner, then east.
void tst_ZrPlanChart::Show(ZrPlanChart& chart, ZrMapView& view, double radius)
{
    const ZrGeoPoint origin{50.3, -4.1};
    chart.SetOrigin(origin);
    const QPointF corner = chart.ToWorld(origin);
    ZrWpts route;
    route.linked = true;
    for (const QPointF& offset : {QPointF(0, -100), QPointF(0, 0), QPointF(100, 0)}) {
        const ZrGeoPoint place = chart.ToGeo(corner + offset);
        route.Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
    }
    route.GetAt(route.FindIndex(1))->r = radius;
    route.Recalc(true);
    chart.SetRoute(route, ZrRoutePath(route));
    view.SetSize(400, 400);
    view.SetCentre(corner);
    view.SetScale(1.0);
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

std::vector<ZrRouteFinding> tst_ZrPlanChart::Findings(
    const ZrPlanChart& chart, const std::vector<QPointF>& offsets, int error) const
{
    const QPointF corner = chart.ToWorld({50.3, -4.1});
    std::vector<ZrRouteFinding> findings;
    for (const QPointF& offset : offsets) {
        ZrRouteFinding finding;
        finding.severity
            = static_cast<int>(findings.size()) == error ? ZrRouteFinding::eError : ZrRouteFinding::eWarning;
        finding.place = chart.ToGeo(corner + offset);
        findings.push_back(finding);
    }
    return findings;
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

/// A name is put where no pin stands, also that of a waypoint whose pin it is.
void tst_ZrPlanChart::namesBesidePins()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    chart.Match(view);
    auto* layer = static_cast<ZrLabelLayer*>(chart.Layers().last());
    const auto boxOf = [&](std::size_t waypoint) {
        for (const ZrMapLabel& label : layer->Labels()) {
            if (label.position == chart.Points()[waypoint])
                return ZrLabelDeclutter::Box(label, layer->TextSize(label.text, label.size), view, 1.0);
        }
        return QRectF();
    };
    for (std::size_t i = 0; i < 3; ++i) {
        // Where its name would be.
        const QRectF before = boxOf(i);
        QVERIFY(!before.isEmpty());
        const QPointF corner = view.ToPixel(chart.ToWorld({50.3, -4.1}));
        const QPointF at = before.center() + QPointF(0, 20) - corner;
        const QPointF own = view.ToPixel(chart.Points()[i]) - corner;
        chart.SetFindings(Findings(chart, {{at.x(), -at.y()}, {own.x(), -own.y()}}));
        chart.Match(view);
        for (const QRectF& rect : chart.PinRects(view))
            QVERIFY2(!rect.intersects(boxOf(i)), qPrintable(QString::number(i)));
        chart.SetFindings({});
        chart.Match(view);
        QCOMPARE(boxOf(i), before);
    }
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

void tst_ZrPlanChart::namesBesideTheLegs_data()
{
    QTest::addColumn<double>("rotation");
    for (const double rotation : {0.0, 30.0, 90.0, 135.0, 180.0, 270.0, 355.0})
        QTest::addRow("%g", rotation) << rotation;
}

/// No leg runs through the name of its waypoint, however the map is turned.
void tst_ZrPlanChart::namesBesideTheLegs()
{
    QFETCH(double, rotation);
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    view.SetRotation(rotation);
    chart.Match(view);
    auto* layer = static_cast<ZrLabelLayer*>(chart.Layers().last());
    QCOMPARE(layer->Labels().size(), std::size_t(3));
    const std::vector<QPointF>& points = chart.Points();
    for (const ZrMapLabel& label : layer->Labels()) {
        QVERIFY(!label.text.isEmpty());
        const QRectF box = ZrLabelDeclutter::Box(label, layer->TextSize(label.text, label.size), view, 1.0);
        for (std::size_t leg = 1; leg < points.size(); ++leg) {
            const QPointF a = view.ToPixel(points[leg - 1]);
            const QPointF b = view.ToPixel(points[leg]);
            for (double t = 0.0; t <= 1.0; t += 0.005)
                QVERIFY2(!box.contains(a + (b - a) * t), qPrintable(label.text));
        }
        // And it is beside it.
        const QPointF at = view.ToPixel(label.position);
        QVERIFY(box.adjusted(-16, -16, 16, 16).contains(at) && !box.contains(at));
    }
}

/// The leg to the east runs through the middle of the area, not through its name.
void tst_ZrPlanChart::namesOfAreasBetweenTheLines()
{
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    chart.Match(view);
    ZrArea area;
    area.name = QStringLiteral("Area 1");
    for (const QPointF& corner : {QPointF(210, 150), QPointF(290, 150), QPointF(290, 250), QPointF(210, 250)})
        area.ring.push_back(chart.ToGeo(view.ToWorld(corner)));
    chart.SetAreas({area}, {});
    chart.Match(view);
    auto* layer = static_cast<ZrLabelLayer*>(chart.Layers().last());
    const ZrMapLabel label = layer->Labels().back();
    QCOMPARE(label.text, area.name);
    const QRectF box = ZrLabelDeclutter::Box(label, layer->TextSize(label.text, label.size), view, 1.0);
    QVERIFY2(box.bottom() < 200.0 || box.top() > 200.0, qPrintable(QString::number(box.top())));
    QVERIFY(QRectF(210, 150, 80, 100).contains(box.center()));
    // Without one it is in the middle.
    ZrPlanChart empty;
    empty.SetOrigin({50.3, -4.1});
    empty.SetAreas({area}, {});
    empty.Match(view);
    QCOMPARE(static_cast<ZrLabelLayer*>(empty.Layers().last())->Labels().back().offset, QPointF());
}

void tst_ZrPlanChart::namesOfAreasOnLongLegs_data()
{
    QTest::addColumn<double>("rotation");
    QTest::addColumn<double>("away"); // of the leg, pixels right of the middle
    QTest::newRow("to the left of it") << 0.0 << -15.0;
    QTest::newRow("below it") << 90.0 << 0.0;
    QTest::newRow("above it") << 270.0 << 2.0;
    QTest::newRow("at its lower end") << 90.0 << 9.0;
    QTest::newRow("askew") << 40.0 << 0.0;
}

/// A leg counts however far off its ends are.
void tst_ZrPlanChart::namesOfAreasOnLongLegs()
{
    QFETCH(double, rotation);
    QFETCH(double, away);
    const ZrGeoPoint origin{50.3, -4.1};
    ZrPlanChart chart;
    chart.SetOrigin(origin);
    const QPointF middle = chart.ToWorld(origin);
    ZrWpts route;
    route.linked = true;
    for (const QPointF& offset : {QPointF(away, -5000), QPointF(away, 5000)}) {
        const ZrGeoPoint place = chart.ToGeo(middle + offset);
        route.Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
    }
    route.Recalc(true);
    chart.SetRoute(route, ZrRoutePath(route));
    ZrArea area;
    area.name = QStringLiteral("A");
    for (const QPointF& corner : {QPointF(-90, -90), QPointF(90, -90), QPointF(90, 90), QPointF(-90, 90)})
        area.ring.push_back(chart.ToGeo(middle + corner));
    chart.SetAreas({area}, {});
    ZrMapView view;
    view.SetSize(400, 400);
    view.SetCentre(middle);
    view.SetScale(1.0);
    view.SetRotation(rotation);
    chart.Match(view);
    auto* layer = static_cast<ZrLabelLayer*>(chart.Layers().last());
    const ZrMapLabel label = layer->Labels().back();
    QCOMPARE(label.text, area.name);
    const QRectF box = ZrLabelDeclutter::Box(label, layer->TextSize(label.text, label.size), view, 1.0);
    const QPointF from = view.ToPixel(middle + QPointF(away, -200));
    const QPointF to = view.ToPixel(middle + QPointF(away, 200));
    for (double t = 0.0; t <= 1.0; t += 0.001)
        QVERIFY2(!box.contains(from + (to - from) * t), qPrintable(QString::number(box.top())));
}

void tst_ZrPlanChart::namesOfAreasAsideOfLegs_data()
{
    using Way = QVector<QPointF>;
    QTest::addColumn<QString>("name");
    QTest::addColumn<Way>("way"); // widths and heights of the name from the middle, down
    QTest::addColumn<double>("down"); // heights
    const QString wide = QStringLiteral("Area with quite a long name");
    QTest::newRow("through its end") << wide << Way{{0.48, -0.25}, {0.48, 0.25}} << -1.0;
    QTest::newRow("through its beginning") << wide << Way{{-0.48, -0.25}, {-0.48, 0.25}} << -1.0;
    QTest::newRow("beside it") << wide << Way{{0.6, -9.0}, {0.6, 9.0}} << 0.0;
    // Up there it would be free but for the last leg.
    QTest::newRow("far above it") << QStringLiteral("A")
                                  << Way{{0, -0.8}, {0, 50}, {99, 50}, {99, -1.9}, {-99, -1.9}} << -1.0;
    QTest::newRow("nothing up there") << QStringLiteral("A") << Way{{0, -0.8}, {0, 50}} << -1.5;
    QTest::newRow("far below it") << QStringLiteral("A")
                                  << Way{{0, 0.8}, {0, -50}, {99, -50}, {99, 1.9}, {-99, 1.9}} << 1.0;
}

/// How far the name goes out of the way: to where the least of it is run through.
void tst_ZrPlanChart::namesOfAreasAsideOfLegs()
{
    QFETCH(QString, name);
    QFETCH(QVector<QPointF>, way);
    QFETCH(double, down);
    const ZrGeoPoint origin{50.3, -4.1};
    ZrPlanChart chart;
    chart.SetOrigin(origin);
    const QPointF middle = chart.ToWorld(origin);
    ZrArea area;
    area.name = name;
    for (const QPointF& corner : {QPointF(-90, -90), QPointF(90, -90), QPointF(90, 90), QPointF(-90, 90)})
        area.ring.push_back(chart.ToGeo(middle + corner));
    chart.SetAreas({area}, {});
    ZrMapView view;
    view.SetSize(400, 400);
    view.SetCentre(middle);
    view.SetScale(1.0);
    chart.Match(view);
    auto* layer = static_cast<ZrLabelLayer*>(chart.Layers().last());
    const QSizeF size = layer->TextSize(name, layer->Labels().back().size);
    ZrWpts route;
    route.linked = true;
    for (const QPointF& at : way) {
        const ZrGeoPoint place
            = chart.ToGeo(middle + QPointF(at.x() * size.width(), -at.y() * size.height()));
        route.Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
    }
    route.Recalc(true);
    chart.SetRoute(route, ZrRoutePath(route));
    chart.Match(view);
    QCOMPARE(layer->Labels().back().offset, QPointF(0.0, down * size.height()));
}

/// Legs that are nowhere near the name of an area are not looked through for it.
void tst_ZrPlanChart::namesOfAreasWithManyLegs()
{
    constexpr int legs = 1000;
    constexpr std::size_t areas = 100;
    ZrPlanChart chart;
    ZrMapView view;
    Show(chart, view);
    const QPointF corner = chart.ToWorld({50.3, -4.1});
    ZrWpts route;
    route.linked = true;
    for (int i = 0; i <= legs; ++i) {
        const ZrGeoPoint place = chart.ToGeo(corner + QPointF(10.0 * i, i % 2 * 100.0));
        route.Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
    }
    route.Recalc(true);
    chart.SetRoute(route, ZrRoutePath(route));
    std::vector<ZrArea> all;
    for (std::size_t i = 0; i < areas; ++i) {
        ZrArea area;
        area.name = QStringLiteral("Area");
        const QPointF at = corner + QPointF(100.0 * static_cast<double>(i), -2000.0);
        for (const QPointF& offset : {QPointF(0, 0), QPointF(50, 0), QPointF(50, 50), QPointF(0, 50)})
            area.ring.push_back(chart.ToGeo(at + offset));
        all.push_back(area);
    }
    const auto bytesOf = [&](const std::vector<ZrArea>& some) {
        chart.SetAreas(some, {});
        const std::size_t before = counted_new::Bytes();
        chart.Match(view);
        return counted_new::Bytes() - before;
    };
    bytesOf(all); // letters are measured once
    const std::size_t none = bytesOf({});
    const std::size_t perArea = (bytesOf(all) - none) / areas;
    QVERIFY2(perArea < 16 * legs, qPrintable(QString::number(perArea))); // a point of each leg would be more
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
