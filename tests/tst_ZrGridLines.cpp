// The lines of a grid that a view shows, and where their texts go.

#include "ZrKit/map/ZrGridLines.h"
#include "ZrKit/map/ZrGridSteps.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrUnits.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double spacing = 120.0;

using Line = ZrGridLines::Line;
using Lines = ZrGridLines::Lines;

ZrMapView ViewOf(const QPointF& centre, double scale, double rotation = 0.0)
{
    ZrMapView view;
    view.SetSize(1280, 800);
    view.SetCentre(centre);
    view.SetScale(scale);
    view.SetRotation(rotation);
    return view;
}

ZrProj ProjectionOf(double lat, double lng)
{
    ZrProj projection;
    projection.SetupUTM(lat, lng);
    return projection;
}

QPointF WorldOf(const ZrProj& projection, double lat, double lng)
{
    double east = 0.0;
    double north = 0.0;
    ZrUnits::LLToEN(ZrUnits::wgs84, projection, lat, lng, east, north);
    return {east, north};
}

Lines Geographic(const ZrMapView& view, const ZrProj& projection, eGeoStyle style = eGeoDMSFrac)
{
    return ZrGridLines::Geographic(view, spacing, style, ZrUnits::wgs84, projection);
}

/// Of one direction.
Lines Only(const Lines& lines, bool isNorthSouth)
{
    Lines only;
    for (const Line& line : lines) {
        if (line.isNorthSouth == isNorthSouth)
            only.push_back(line);
    }
    return only;
}

double DistanceToSegment(const QPointF& p, const QPointF& a, const QPointF& b)
{
    const QPointF d = b - a;
    const double length = QPointF::dotProduct(d, d);
    const double t = length > 0 ? std::clamp(QPointF::dotProduct(p - a, d) / length, 0.0, 1.0) : 0.0;
    const QPointF off = p - (a + d * t);
    return std::hypot(off.x(), off.y());
}

/// The least distance in pixels of a point of \p a that is in view from the line \p b.
double Apart(const ZrMapView& view, const Line& a, const Line& b)
{
    double least = infinite;
    const QRectF screen(0, 0, view.Width(), view.Height());
    for (std::size_t i = 1; i < a.points.size(); ++i) {
        for (int k = 0; k <= 8; ++k) {
            const QPointF p = view.ToPixel(a.points[i - 1] + (a.points[i] - a.points[i - 1]) * (k / 8.0));
            if (!screen.contains(p))
                continue;
            for (std::size_t j = 1; j < b.points.size(); ++j)
                least = std::min(
                    least, DistanceToSegment(p, view.ToPixel(b.points[j - 1]), view.ToPixel(b.points[j])));
        }
    }
    return least;
}

} // namespace

class tst_ZrGridLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void projectedMetres();
    void projectedFeet();
    void projectedLeavesTheView();
    void neverTooClose_data();
    void neverTooClose();
    void viewIsCovered_data();
    void viewIsCovered();
    void geographicLeavesTheView();
    void meridiansAreWhereTheyShouldBe_data();
    void meridiansAreWhereTheyShouldBe();
    void curvesAreSmooth();
    void southernHemisphere();
    void antimeridian();
    void farFromTheProjection_data();
    void farFromTheProjection();
    void nonsense_data();
    void nonsense();
    void textsAtTheEdges();
    void textsOfATurnedMap_data();
    void textsOfATurnedMap();
    void textsBesideTheirLines_data();
    void textsBesideTheirLines();
    void textsWithoutArea();
};

void tst_ZrGridLines::init()
{
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDMSFrac);
}

void tst_ZrGridLines::projectedMetres()
{
    const ZrMapView view = ViewOf({400010, 5000030}, 2.0);
    const Lines lines = ZrGridLines::Projected(view, spacing);
    const Lines eastings = Only(lines, true);
    // 240 m at least: 250; from 398730 to 401290 and 250 m more at either end.
    QCOMPARE(eastings.size(), std::size_t(13));
    QCOMPARE(eastings[0].text, QStringLiteral("398500 mE"));
    QCOMPARE(eastings[1].text, QStringLiteral("398750 mE"));
    QCOMPARE(eastings[1].points[0].x(), 398750.0);
    QCOMPARE(eastings[1].points[1].x(), 398750.0);
    const Lines northings = Only(lines, false);
    QCOMPARE(northings[1].text, QStringLiteral("4999250 mN"));
    QCOMPARE(northings[1].points[0].y(), 4999250.0);
    // Decimals where the step has some.
    const Lines close = ZrGridLines::Projected(ViewOf({10, 20}, 0.002), spacing);
    QCOMPARE(close[1].text, QStringLiteral("8.75 mE"));
}

void tst_ZrGridLines::projectedFeet()
{
    ZrUnits::SetToImperial();
    const Lines lines = Only(ZrGridLines::Projected(ViewOf({400010, 5000030}, 2.0), spacing), true);
    // 240 m are 787 ft: 1000.
    QCOMPARE(lines[1].text, QStringLiteral("1309000 ftE"));
    QVERIFY(std::fabs(lines[1].points[0].x() - 1309000 * 1200.0 / 3937.0) < 1e-6);
    QVERIFY(std::fabs(lines[2].points[0].x() - lines[1].points[0].x() - 1000 * 1200.0 / 3937.0) < 1e-6);
}

void tst_ZrGridLines::projectedLeavesTheView()
{
    for (const double rotation : {0.0, 30.0, 90.0, 215.0}) {
        const ZrMapView view = ViewOf({400010, 5000030}, 2.0, rotation);
        const QRectF bounds = view.Bounds();
        for (const Line& line : ZrGridLines::Projected(view, spacing)) {
            QCOMPARE(line.points.size(), std::size_t(2));
            const QPointF d = line.points[1] - line.points[0];
            QVERIFY(line.isNorthSouth ? d.x() == 0 && d.y() > bounds.height()
                                      : d.y() == 0 && d.x() > bounds.width());
        }
    }
}

void tst_ZrGridLines::neverTooClose_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("rotation");
    for (const double lat : {0.0, 50.3, -33.0, 70.0, -80.0}) {
        for (const double scale : {0.001, 0.013, 0.9, 7.0, 60.0, 800.0, 50000.0})
            QTest::addRow("%g, %g", lat, scale) << lat << scale << lat * 3;
    }
}

void tst_ZrGridLines::neverTooClose()
{
    QFETCH(double, lat);
    QFETCH(double, scale);
    QFETCH(double, rotation);
    const ZrProj projection = ProjectionOf(lat, -4.1);
    const ZrMapView view = ViewOf(WorldOf(projection, lat, -4.1), scale, rotation);
    for (const Lines& all : {ZrGridLines::Projected(view, spacing), Geographic(view, projection),
             Geographic(view, projection, eGeoDeg), Geographic(view, projection, eGeoDegMin)}) {
        for (const bool isNorthSouth : {false, true}) {
            const Lines lines = Only(all, isNorthSouth);
            QVERIFY(lines.size() <= 20);
            for (std::size_t i = 1; i < lines.size(); ++i)
                QVERIFY2(Apart(view, lines[i], lines[i - 1]) > spacing * 0.98,
                    qPrintable(QString::number(Apart(view, lines[i], lines[i - 1]))));
        }
    }
}

void tst_ZrGridLines::viewIsCovered_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("rotation");
    for (const double scale : {0.001, 0.013, 0.9, 7.0, 60.0, 400.0}) {
        for (const double rotation : {0.0, 33.0, 180.0, 271.0})
            QTest::addRow("%g, %g", scale, rotation) << scale << rotation;
    }
}

void tst_ZrGridLines::viewIsCovered()
{
    QFETCH(double, scale);
    QFETCH(double, rotation);
    const ZrProj projection = ProjectionOf(50.3, -4.1);
    const ZrMapView view = ViewOf(WorldOf(projection, 50.3, -4.1), scale, rotation);
    const QRectF screen(0, 0, view.Width(), view.Height());
    for (const Lines& all : {ZrGridLines::Projected(view, spacing), Geographic(view, projection)}) {
        for (const bool isNorthSouth : {false, true}) {
            // From every pixel the next line is not far.
            for (int x = 0; x <= 1280; x += 160) {
                for (int y = 0; y <= 800; y += 160) {
                    double least = infinite;
                    for (const Line& line : Only(all, isNorthSouth)) {
                        for (std::size_t i = 1; i < line.points.size(); ++i)
                            least = std::min(least,
                                DistanceToSegment({double(x), double(y)}, view.ToPixel(line.points[i - 1]),
                                    view.ToPixel(line.points[i])));
                    }
                    QVERIFY2(least < spacing * 2.0, qPrintable(QString::number(least)));
                }
            }
        }
    }
}

void tst_ZrGridLines::geographicLeavesTheView()
{
    const ZrProj projection = ProjectionOf(50.3, -4.1);
    for (const double scale : {0.01, 2.0, 60.0, 400.0}) {
        for (const double rotation : {0.0, 30.0, 180.0, 290.0}) {
            const ZrMapView view = ViewOf(WorldOf(projection, 50.3, -4.1), scale, rotation);
            const QRectF around(-2, -2, view.Width() + 4, view.Height() + 4);
            for (const Line& line : Geographic(view, projection)) {
                QVERIFY(!around.contains(view.ToPixel(line.points.front())));
                QVERIFY(!around.contains(view.ToPixel(line.points.back())));
            }
        }
    }
}

void tst_ZrGridLines::meridiansAreWhereTheyShouldBe_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("scale");
    QTest::newRow("seconds") << int(eGeoDMSFrac) << 50.3 << -4.1 << 2.0;
    QTest::newRow("minutes") << int(eGeoDegMin) << -33.9 << 151.2 << 30.0;
    QTest::newRow("degrees") << int(eGeoSignedDeg) << 0.1 << 0.1 << 0.02;
    QTest::newRow("whole") << int(eGeoDMS) << 60.0 << 5.0 << 900.0;
}

void tst_ZrGridLines::meridiansAreWhereTheyShouldBe()
{
    QFETCH(int, style);
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, scale);
    const ZrProj projection = ProjectionOf(lat, lng);
    const ZrMapView view = ViewOf(WorldOf(projection, lat, lng), scale);
    const Lines lines = Geographic(view, projection, static_cast<eGeoStyle>(style));
    QVERIFY(lines.size() > 8);
    for (const Line& line : lines) {
        bool isOk = false;
        const double value = ZrUnits::GetValue(line.text, isOk);
        QVERIFY2(isOk, qPrintable(line.text));
        for (const QPointF& point : line.points) {
            double atLat = 0.0;
            double atLng = 0.0;
            ZrUnits::EN2LL(ZrUnits::wgs84, projection, point.x(), point.y(), atLat, atLng);
            // To a tenth of a pixel.
            const double error = std::fabs((line.isNorthSouth ? atLng : atLat) - value) * 111000.0;
            QVERIFY2(error < std::max(0.1 * scale, 0.001) || scale > 500, qPrintable(QString::number(error)));
            QVERIFY(error < 0.2 * scale);
        }
    }
}

void tst_ZrGridLines::curvesAreSmooth()
{
    const ZrProj projection = ProjectionOf(60, 5);
    const ZrMapView view = ViewOf(WorldOf(projection, 60, 5), 900.0);
    for (const Line& line : Geographic(view, projection)) {
        for (std::size_t i = 2; i < line.points.size(); ++i) {
            const QPointF a = view.ToPixel(line.points[i - 2]);
            const QPointF b = view.ToPixel(line.points[i - 1]);
            const QPointF c = view.ToPixel(line.points[i]);
            // The middle point of three is near the line of the others.
            QVERIFY(DistanceToSegment(b, a, c) < 3.0);
        }
    }
}

void tst_ZrGridLines::southernHemisphere()
{
    const ZrProj projection = ProjectionOf(-33.85, 151.25);
    const ZrMapView view = ViewOf(WorldOf(projection, -33.85, 151.25), 10.0);
    QVERIFY(view.Centre().y() > 6e6);
    const Lines lines = Geographic(view, projection);
    QVERIFY(!Only(lines, true).empty() && !Only(lines, false).empty());
    for (const Line& line : lines)
        QVERIFY(line.text.endsWith(QLatin1Char(line.isNorthSouth ? 'E' : 'S')));
    // South is down: the first parallel is the southernmost.
    const Lines parallels = Only(lines, false);
    QVERIFY(view.ToPixel(parallels.front().points[0]).y() > view.ToPixel(parallels.back().points[0]).y());
}

void tst_ZrGridLines::antimeridian()
{
    // Zone 60 reaches beyond it.
    const ZrProj projection = ProjectionOf(-17.0, 179.9);
    const ZrMapView view = ViewOf(WorldOf(projection, -17.0, 180.0), 100.0);
    const Lines meridians = Only(Geographic(view, projection), true);
    QStringList texts;
    for (const Line& line : meridians)
        texts << line.text;
    QVERIFY2(texts.contains(QStringLiteral("180\u00b0 0' E")), qPrintable(texts.join(QLatin1Char('\n'))));
    QVERIFY(texts.filter(QStringLiteral("179\u00b0")).filter(QStringLiteral("E")).size() > 0);
    QVERIFY(texts.filter(QStringLiteral("179\u00b0")).filter(QStringLiteral("W")).size() > 0);
    for (std::size_t i = 1; i < meridians.size(); ++i)
        QVERIFY(meridians[i].points[0].x() > meridians[i - 1].points[0].x());
}

void tst_ZrGridLines::farFromTheProjection_data()
{
    QTest::addColumn<QPointF>("centre");
    QTest::addColumn<double>("scale");
    QTest::newRow("east") << QPointF(1e7, 0) << 10.0;
    QTest::newRow("north pole") << QPointF(500000, 9997000) << 10.0;
    QTest::newRow("beyond it") << QPointF(500000, 3e7) << 10.0;
    QTest::newRow("south") << QPointF(0, -1e9) << 10.0;
    QTest::newRow("nowhere") << QPointF(1e300, -1e300) << 10.0;
    QTest::newRow("everything") << QPointF(0, 0) << 50000.0;
}

void tst_ZrGridLines::farFromTheProjection()
{
    QFETCH(QPointF, centre);
    QFETCH(double, scale);
    const ZrProj projection = ProjectionOf(10, 3);
    const ZrMapView view = ViewOf(centre, scale, 17);
    for (const Lines& lines : {ZrGridLines::Projected(view, spacing), Geographic(view, projection)}) {
        QVERIFY(lines.size() <= 60);
        for (const Line& line : lines) {
            for (const QPointF& point : line.points)
                QVERIFY(std::isfinite(point.x()) && std::isfinite(point.y()));
        }
    }
}

void tst_ZrGridLines::nonsense_data()
{
    QTest::addColumn<double>("gap");
    QTest::addColumn<double>("meridian");
    QTest::addColumn<bool>("isEmpty");
    QTest::newRow("gap 0") << 0.0 << 0.0 << false;
    QTest::newRow("gap negative") << -5.0 << 0.0 << false;
    QTest::newRow("gap no number") << notANumber << 0.0 << false;
    QTest::newRow("no size") << spacing << 0.0 << true;
    QTest::newRow("meridian no number") << spacing << notANumber << false;
    QTest::newRow("meridian infinite") << spacing << infinite << false;
}

void tst_ZrGridLines::nonsense()
{
    QFETCH(double, gap);
    QFETCH(double, meridian);
    QFETCH(bool, isEmpty);
    ZrProj projection;
    projection.lngOrigin = meridian;
    ZrMapView view = ViewOf({500000, 1000}, 2.0);
    if (isEmpty)
        view.SetSize(0, 10);
    QVERIFY(ZrGridLines::Geographic(view, gap, eGeoDMS, ZrUnits::wgs84, projection).empty());
    QVERIFY(std::isfinite(meridian) == ZrGridLines::Projected(view, gap).empty());
    ZrSphd flat;
    flat.semiMajor = 0.0;
    flat.semiMinor = 0.0;
    QVERIFY(ZrGridLines::Geographic(view, spacing, eGeoDMS, flat, ZrProj()).empty());
}

void tst_ZrGridLines::textsAtTheEdges()
{
    const ZrMapView view = ViewOf({400010, 5000030}, 2.0);
    const Lines lines = ZrGridLines::Projected(view, spacing);
    const QRectF area(10, 20, 1200, 700);
    const std::vector<QSizeF> sizes(lines.size(), QSizeF(60, 16));
    const std::vector<ZrMapLabel> labels = ZrGridLines::Labels(lines, view, area, 5.0, sizes);
    int eastings = 0;
    int northings = 0;
    for (const ZrMapLabel& label : labels) {
        QVERIFY(label.isOnScreen);
        if (label.text.endsWith(QLatin1Char('E'))) {
            ++eastings;
            QCOMPARE(label.position.y(), 25.0);
            QCOMPARE(int(label.alignY), int(ZrMapLabel::alignTop));
            const double x = view.ToPixel({label.text.split(QLatin1Char(' '))[0].toDouble(), 0}).x();
            const bool isLeft = label.alignX == ZrMapLabel::alignLeft;
            QVERIFY(std::fabs(label.position.x() - x - (isLeft ? 5.0 : -5.0)) < 1e-6);
            QCOMPARE(isLeft, x + 65 <= area.right());
        } else {
            ++northings;
            QCOMPARE(label.position.x(), 15.0);
            QCOMPARE(int(label.alignX), int(ZrMapLabel::alignLeft));
        }
    }
    QCOMPARE(eastings, 10);
    QCOMPARE(northings, 6);
    // No size, no text.
    QVERIFY(ZrGridLines::Labels(lines, view, area, 5.0, {}).empty());
}

void tst_ZrGridLines::textsOfATurnedMap_data()
{
    QTest::addColumn<double>("rotation");
    for (const double rotation : {90.0, 180.0, 270.0, 20.0, 45.0, 110.0, 300.0})
        QTest::addRow("%g", rotation) << rotation;
}

void tst_ZrGridLines::textsOfATurnedMap()
{
    QFETCH(double, rotation);
    const ZrMapView view = ViewOf({400010, 5000030}, 2.0, rotation);
    const Lines lines = ZrGridLines::Projected(view, spacing);
    const QRectF area(0, 0, 1280, 700);
    const std::vector<QSizeF> sizes(lines.size(), QSizeF(60, 16));
    const std::vector<ZrMapLabel> labels = ZrGridLines::Labels(lines, view, area, 5.0, sizes);
    QVERIFY(labels.size() > 10);
    const bool isSideways = std::fabs(std::sin(rotation / 57.29577951)) > 0.9;
    for (const ZrMapLabel& label : labels) {
        const double left = label.position.x() - 60.0 * label.alignX / 2.0;
        const double top = label.position.y() - 16.0 * label.alignY / 2.0;
        QVERIFY(area.contains(QRectF(left, top, 60, 16)));
        if (isSideways && std::fmod(rotation, 90.0) == 0.0)
            QVERIFY(label.text.endsWith(QLatin1Char('N')) ? top < 20.0 : left < 20.0);
    }
}

void tst_ZrGridLines::textsBesideTheirLines_data()
{
    QTest::addColumn<double>("rotation");
    for (int rotation = 0; rotation < 360; rotation += 15)
        QTest::addRow("%d", rotation) << double(rotation);
}

void tst_ZrGridLines::textsBesideTheirLines()
{
    QFETCH(double, rotation);
    const ZrMapView view = ViewOf({400010, 5000030}, 2.0, rotation);
    const Lines lines = ZrGridLines::Projected(view, spacing);
    const QRectF area(0, 0, 1280, 800);
    const std::vector<QSizeF> sizes(lines.size(), QSizeF(60, 16));
    int crossed = 0;
    int counted = 0;
    for (const ZrMapLabel& label : ZrGridLines::Labels(lines, view, area, 5.0, sizes)) {
        const QRectF box(label.position.x() - 60.0 * label.alignX / 2.0,
            label.position.y() - 16.0 * label.alignY / 2.0, 60, 16);
        // In the corners there is no side to choose.
        if ((box.left() < 90 || box.right() > 1190) && (box.top() < 40 || box.bottom() > 760))
            continue;
        ++counted;
        const auto line = std::find_if(
            lines.begin(), lines.end(), [&](const Line& other) { return other.text == label.text; });
        const QPointF a = view.ToPixel(line->points[0]);
        const QPointF b = view.ToPixel(line->points[1]);
        for (int i = 0; i <= 2000; ++i)
            crossed += box.adjusted(1, 1, -1, -1).contains(a + (b - a) * (i / 2000.0)) ? 1 : 0;
    }
    QCOMPARE(crossed, 0);
    QVERIFY(counted > 8);
}

void tst_ZrGridLines::textsWithoutArea()
{
    const ZrMapView view = ViewOf({400010, 5000030}, 2.0);
    const Lines lines = ZrGridLines::Projected(view, spacing);
    const std::vector<QSizeF> sizes(lines.size(), QSizeF(60, 16));
    QVERIFY(ZrGridLines::Labels(lines, view, QRectF(), 5.0, sizes).empty());
    QVERIFY(ZrGridLines::Labels(lines, ZrMapView(), QRectF(0, 0, 100, 100), 5.0, sizes).empty());
    QVERIFY(ZrGridLines::Labels({}, view, QRectF(0, 0, 100, 100), 5.0, sizes).empty());
    Line broken;
    broken.points = {{notANumber, 0}, {0, infinite}, {1, 1}};
    QVERIFY(ZrGridLines::Labels({broken, Line()}, view, QRectF(0, 0, 100, 100), 5.0, sizes).empty());
}

QTEST_GUILESS_MAIN(tst_ZrGridLines)
#include "tst_ZrGridLines.moc"
