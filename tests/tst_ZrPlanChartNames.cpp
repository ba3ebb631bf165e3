// Names of a plan on a map: where no leg runs through them and no pin hides them.

#include "CountedNew.h"
#include "PlanChart.h"
#include "ZrKit/map/ZrLabelDeclutter.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrTheme.h"

#include <QtTest>

#include <algorithm>
#include <cmath>

using plan_chart::Findings;
using plan_chart::Show;

class tst_ZrPlanChartNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void namesBesidePins();
    void namesOfAreasBesidePins();
    void namesBesideTheLegs_data();
    void namesBesideTheLegs();
    void namesOfAreasBetweenTheLines();
    void namesOfAreasOnLongLegs_data();
    void namesOfAreasOnLongLegs();
    void namesOfAreasAsideOfLegs_data();
    void namesOfAreasAsideOfLegs();
    void namesOfAreasWithManyLegs();
};

void tst_ZrPlanChartNames::initTestCase()
{
    ZrTheme::dp = 1.0F;
    ZrColourScheme::Apply(ZrColourScheme::dusk);
}

/// A name is put where no pin stands, also that of a waypoint whose pin it is.
void tst_ZrPlanChartNames::namesBesidePins()
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

/// Names of areas as well; they stay near the middle.
void tst_ZrPlanChartNames::namesOfAreasBesidePins()
{
    const ZrGeoPoint origin{50.3, -4.1};
    ZrPlanChart chart;
    chart.SetOrigin(origin);
    const QPointF middle = chart.ToWorld(origin);
    ZrMapView view;
    view.SetSize(400, 400);
    view.SetCentre(middle);
    view.SetScale(1.0);
    ZrArea area;
    area.name = QStringLiteral("Area 1");
    for (const QPointF& corner : {QPointF(-90, -90), QPointF(90, -90), QPointF(90, 90), QPointF(-90, 90)})
        area.ring.push_back(chart.ToGeo(middle + corner));
    auto* layer = static_cast<ZrLabelLayer*>(chart.Layers().last());
    const auto box = [&] {
        const ZrMapLabel& label = layer->Labels().back();
        return ZrLabelDeclutter::Box(label, layer->TextSize(label.text, label.size), view, 1.0);
    };
    for (const bool isNoGo : {false, true}) {
        chart.SetAreas(isNoGo ? std::vector<ZrArea>() : std::vector{area},
            isNoGo ? std::vector{area} : std::vector<ZrArea>());
        chart.Match(view);
        const QRectF before = box();
        // In the middle, at its ends, and of several.
        for (const auto& places :
            {std::vector<QPointF>{{0, 0}}, {{-18, -4}}, {{18, -20}}, {{0, 0}, {2, 0}}}) {
            chart.SetFindings(Findings(chart, places));
            chart.Match(view);
            const auto pins = chart.PinRects(view);
            QVERIFY(std::any_of(
                pins.begin(), pins.end(), [&](const QRectF& pin) { return pin.intersects(before); }));
            for (const QRectF& pin : pins)
                QVERIFY(!pin.intersects(box()));
            QVERIFY(std::fabs(box().center().y() - 200.0) <= 2.0 * before.height());
        }
        chart.SetFindings({});
        chart.Match(view);
        QCOMPARE(box(), before);
    }
}

void tst_ZrPlanChartNames::namesBesideTheLegs_data()
{
    QTest::addColumn<double>("rotation");
    for (const double rotation : {0.0, 30.0, 90.0, 135.0, 180.0, 270.0, 355.0})
        QTest::addRow("%g", rotation) << rotation;
}

/// No leg runs through the name of its waypoint, however the map is turned.
void tst_ZrPlanChartNames::namesBesideTheLegs()
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
void tst_ZrPlanChartNames::namesOfAreasBetweenTheLines()
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

void tst_ZrPlanChartNames::namesOfAreasOnLongLegs_data()
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
void tst_ZrPlanChartNames::namesOfAreasOnLongLegs()
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

void tst_ZrPlanChartNames::namesOfAreasAsideOfLegs_data()
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
void tst_ZrPlanChartNames::namesOfAreasAsideOfLegs()
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
void tst_ZrPlanChartNames::namesOfAreasWithManyLegs()
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

QTEST_MAIN(tst_ZrPlanChartNames)
#include "tst_ZrPlanChartNames.moc"
