// A vehicle on its way: where its arrow points, the zone that its map is in, the trail, and the camera.

#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrVehicleMap.h"
#include "ZrUtil/ZrTheme.h"

#include <QtMath>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double never = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr int arrow = 1;
constexpr int dot = 3;

/// Meridian of the zone.
double Meridian(const ZrVehicleMap& way)
{
    return qRadiansToDegrees(way.Grid()->Projection().lngOrigin);
}

} // namespace

class tst_ZrVehicleMap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void arrowPointsWhereItGoes_data();
    void arrowPointsWhereItGoes();
    void arrowIsOfTrueNorth();
    void withoutHeading_data();
    void withoutHeading();
    void stale();
    void unknownPlaces_data();
    void unknownPlaces();
    void zoneOfThePlan();
    void zoneOfTheTrail();
    void zoneAcrossTheEquator();
    void zoneOfAnotherWay();
    void trailGrows();
    void trailWithHoles();
    void follows();
    void centred();

private:
    const ZrMapMarker& Marker() const { return m_way->m_vehicle.Markers().front(); }

    std::unique_ptr<ZrMapView> m_camera;
    std::unique_ptr<ZrVehicleMap> m_way;
    int m_zones = 0; ///< told of
};

void tst_ZrVehicleMap::init()
{
    m_camera = std::make_unique<ZrMapView>();
    m_camera->SetSize(400, 300);
    m_way = std::make_unique<ZrVehicleMap>(*m_camera);
    m_zones = 0;
    m_way->m_zoneChanged = [this] { ++m_zones; };
}

void tst_ZrVehicleMap::arrowPointsWhereItGoes_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<double>("heading");

    const struct
    {
        const char* name;
        double lat;
        double lng;
    } places[] = {{"on the meridian", 50.3, -3.0}, {"west of it", 50.3, -5.9}, {"east of it", 60.0, -0.1},
        {"south", -33.9, 18.4}, {"far north", 78.0, 20.9}, {"equator", 0.0, 8.9}};

    for (const auto& place : places) {
        for (const double heading : {0.0, 37.5, 90.0, 180.0, 270.0, 359.9}) {
            QTest::addRow("%s, %.1f", place.name, heading) << place.lat << place.lng << heading;
        }
    }
}

/// Against a place a little ahead, which is found without the convergence.
void tst_ZrVehicleMap::arrowPointsWhereItGoes()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(double, heading);
    m_way->SetVehicle(lat, lng, heading, true);
    QCOMPARE(Marker().image, arrow);
    QVERIFY(Marker().isTurning);
    const double there = qDegreesToRadians(heading);
    const double sinLat = std::sin(qDegreesToRadians(lat));
    // Metres of a degree on the ellipsoid: radii of curvature of the meridian and across it.
    constexpr double axis = 6378137.0;
    constexpr double e2 = 0.00669437999014;
    const double root = std::sqrt(1.0 - e2 * sinLat * sinLat);
    const double ofLat = qDegreesToRadians(1.0) * axis * (1.0 - e2) / (root * root * root);
    const double ofLng = qDegreesToRadians(1.0) * axis / root * std::cos(qDegreesToRadians(lat));
    constexpr double ahead = 1.0; // metres
    const QPointF from = m_way->ToWorld(lat, lng);
    const QPointF to
        = m_way->ToWorld(lat + ahead * std::cos(there) / ofLat, lng + ahead * std::sin(there) / ofLng);
    const double angle = qRadiansToDegrees(std::atan2(from.x() - to.x(), to.y() - from.y())); // from up, left
    const double off = std::remainder(Marker().angle - angle, 360.0);
    QVERIFY2(std::fabs(off) < 0.001, qPrintable(QStringLiteral("%1 beside %2").arg(off).arg(angle)));
}

/// Three degrees beside the meridian of the zone north of the grid is two degrees off.
void tst_ZrVehicleMap::arrowIsOfTrueNorth()
{
    m_way->SetVehicle(50.3, -5.9, 0.0, true);
    QVERIFY2(Marker().angle < -2.2 && Marker().angle > -2.3, qPrintable(QString::number(Marker().angle)));
    m_way->SetVehicle(50.3, -0.1, 0.0, true);
    QVERIFY2(Marker().angle > 2.2 && Marker().angle < 2.3, qPrintable(QString::number(Marker().angle)));
    m_way->SetVehicle(50.3, -3.0, 0.0, true);
    QVERIFY(std::fabs(Marker().angle) < 1e-9);
}

void tst_ZrVehicleMap::withoutHeading_data()
{
    QTest::addColumn<double>("heading");
    QTest::newRow("not known") << never;
    QTest::newRow("infinite") << -infinite;
}

void tst_ZrVehicleMap::withoutHeading()
{
    QFETCH(double, heading);
    m_way->SetVehicle(50.3, -5.9, heading, true);
    QCOMPARE(Marker().image, dot);
    QCOMPARE(Marker().angle, 0.0);
}

void tst_ZrVehicleMap::stale()
{
    m_way->SetVehicle(50.3, -4.1, 10.0, true);
    QCOMPARE(Marker().colour, ZrTheme::vehicle);
    m_way->SetVehicle(50.3, -4.1, 10.0, false);
    QCOMPARE(Marker().colour, ZrTheme::ctrlOutlineCol);
}

void tst_ZrVehicleMap::unknownPlaces_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::newRow("latitude") << never << -4.1;
    QTest::newRow("longitude") << 50.3 << never;
    QTest::newRow("both") << never << never;
    QTest::newRow("infinite") << 50.3 << infinite;
}

void tst_ZrVehicleMap::unknownPlaces()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QVERIFY(!m_way->Locate(lat, lng));
    m_way->SetVehicle(lat, lng, 0.0, true);
    m_way->Append({QPointF(lng, lat)});
    QVERIFY(!m_way->Grid());
    QVERIFY(m_way->m_vehicle.Markers().empty());
    QCOMPARE(m_way->m_trail.m_track.Count(), i64(0));
    QCOMPARE(m_zones, 0);
    QVERIFY(std::isnan(m_way->ToWorld(50.3, -4.1).x())); // no grid yet
    // Of a vehicle that was somewhere nothing is changed.
    m_way->SetVehicle(50.3, -4.1, 0.0, true);
    const QPointF at = Marker().position;
    const QPointF centre = m_camera->Centre();
    m_way->SetVehicle(lat, lng, 0.0, true);
    QVERIFY(m_way->Locate(lat, lng)); // there is one still
    QCOMPARE(Marker().position, at);
    QCOMPARE(m_camera->Centre(), centre);
    QVERIFY(std::isnan(m_way->ToWorld(lat, lng).x()));
    QVERIFY(std::isnan(m_way->ToWorld(lat, lng).y()));
}

void tst_ZrVehicleMap::zoneOfThePlan()
{
    QVERIFY(m_way->Locate(50.3, -4.1));
    QCOMPARE(m_zones, 1);
    QCOMPARE(Meridian(*m_way), -3.0);
    QCOMPARE(m_camera->Centre(), m_way->ToWorld(50.3, -4.1));
    QCOMPARE(m_camera->Scale(), ZrVehicleMap::FirstScale);
    QVERIFY(m_way->Locate(50.4, -0.1)); // the same zone
    QCOMPARE(m_zones, 1);
    QCOMPARE(m_camera->Centre(), m_way->ToWorld(50.3, -4.1));
}

/// The zone is that of the plan until the vehicle is in another one; then the trail decides, also beyond the
/// border of its zone.
void tst_ZrVehicleMap::zoneOfTheTrail()
{
    QVERIFY(m_way->Locate(50.3, -0.1));
    m_way->SetVehicle(50.3, 0.1, 90.0, true);
    QCOMPARE(m_zones, 2);
    QCOMPARE(Meridian(*m_way), 3.0);
    QCOMPARE(Marker().position, m_way->ToWorld(50.3, 0.1));
    m_way->Append({{0.01, 50.3}});
    m_way->Append({{-0.01, 50.3}, {-0.2, 50.3}});
    m_way->SetVehicle(50.3, -0.2, 270.0, true);
    QVERIFY(m_way->Locate(50.3, -40.0));
    QCOMPARE(m_zones, 2);
    QCOMPARE(Meridian(*m_way), 3.0);
    // No jump at the border.
    const ZrTrackLod& track = m_way->m_trail.m_track;
    QCOMPARE(track.Count(), i64(3));
    const QPointF step = track[1] - track[0];
    QVERIFY2(std::fabs(std::hypot(step.x(), step.y()) - 1425.0) < 5.0, qPrintable(QString::number(step.x())));
}

/// Both sides of the equator have zones of their own.
void tst_ZrVehicleMap::zoneAcrossTheEquator()
{
    m_way->Locate(0.01, 9.0);
    const double north = m_way->ToWorld(0.01, 9.0).y();
    m_way->Locate(-0.01, 9.0);
    QCOMPARE(m_zones, 2);
    QVERIFY(m_way->ToWorld(-0.01, 9.0).y() > north + 9e6);
}

void tst_ZrVehicleMap::zoneOfAnotherWay()
{
    m_way->Append({{-4.1, 50.3}});
    m_way->SetVehicle(50.3, -4.1, 0.0, true);
    m_way->Clear();
    QCOMPARE(m_way->m_trail.m_track.Count(), i64(0));
    QVERIFY(m_way->m_vehicle.Markers().empty());
    m_way->Append({{-68.0, 48.0}});
    QCOMPARE(m_zones, 2);
    QCOMPARE(Meridian(*m_way), -69.0);
    QCOMPARE(m_way->m_trail.m_track[0], m_way->ToWorld(48.0, -68.0));
}

void tst_ZrVehicleMap::trailGrows()
{
    std::vector<QPointF> places;
    for (int i = 0; i < 1000; ++i)
        places.emplace_back(-4.1 + 1e-5 * i, 50.3);
    m_way->Append(places);
    m_way->Append({});
    m_way->Append({{-4.1, 50.3}});
    QCOMPARE(m_way->m_trail.m_track.Count(), i64(1001));
    QCOMPARE(m_way->m_trail.m_track[500], m_way->ToWorld(50.3, -4.095));
    QCOMPARE(m_way->m_trail.m_track[1000], m_way->m_trail.m_track[0]);
    QVERIFY(m_way->m_vehicle.Markers().empty()); // the trail puts it nowhere
}

void tst_ZrVehicleMap::trailWithHoles()
{
    m_way->Append({{never, 50.3}, {-4.1, 50.3}, {-4.1, infinite}, {-4.0, 50.3}});
    QCOMPARE(m_way->m_trail.m_track.Count(), i64(2));
    QCOMPARE(m_way->m_trail.m_track[1], m_way->ToWorld(50.3, -4.0));
}

void tst_ZrVehicleMap::follows()
{
    m_way->SetVehicle(50.3, -4.1, 0.0, true);
    QCOMPARE(m_camera->Centre(), Marker().position);
    m_camera->SetScale(2.0);
    m_way->SetVehicle(50.301, -4.1, 0.0, true);
    QCOMPARE(m_camera->Centre(), Marker().position);
    QCOMPARE(m_camera->Scale(), 2.0); // as a person has set it
    const QPointF before = m_camera->Centre();
    m_way->m_isFollowing = false;
    m_way->SetVehicle(50.302, -4.1, 0.0, true);
    QCOMPARE(m_camera->Centre(), before);
}

void tst_ZrVehicleMap::centred()
{
    QVERIFY(!m_way->IsCentred()); // nothing is
    m_way->SetVehicle(50.3, -4.1, 0.0, true);
    QVERIFY(m_way->IsCentred());
    m_camera->ZoomAbout({200.0, 150.0}, 1.2);
    m_camera->RotateAbout({200.0, 150.0}, 30.0);
    QVERIFY(m_way->IsCentred());
    m_camera->ZoomAbout({10.0, 10.0}, 1.2);
    QVERIFY(!m_way->IsCentred());
    m_way->SetVehicle(50.3, -4.1, 0.0, true);
    m_camera->Pan({0.9, 0.0});
    QVERIFY(m_way->IsCentred());
    m_camera->Pan({0.9, 0.0});
    QVERIFY(!m_way->IsCentred());
}

QTEST_MAIN(tst_ZrVehicleMap)
#include "tst_ZrVehicleMap.moc"
