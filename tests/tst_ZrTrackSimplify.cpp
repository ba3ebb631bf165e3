// Simplified tracks are held against the definition: every point left out lies near the line of those kept.
// The distances are calculated a second way, on a plane or by the great circles of ZrUtil.

#include "ZrKit/export/ZrTrackSegments.h"
#include "ZrKit/export/ZrTrackSimplify.h"
#include "ZrUtil/ZrUtil.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

Q_DECLARE_METATYPE(ZrTrackPoint)

namespace {

using Track = std::vector<ZrTrackPoint>;
using Indices = std::vector<std::size_t>;

constexpr double metresPerDegree = 6371000.0 * 3.141592653589793 / 180.0;

ZrTrackPoint At(double latitude, double longitude, double time = 0.0)
{
    ZrTrackPoint point;
    point.time = time;
    point.latitude = latitude;
    point.longitude = longitude;
    return point;
}

/// A point \p east and \p north metres from a place, a second after the one before.
ZrTrackPoint Near(double latitude, double longitude, double east, double north, double time)
{
    const double level = std::cos(latitude / 180.0 * 3.141592653589793);
    return At(latitude + north / metresPerDegree, longitude + east / metresPerDegree / level, time);
}

/// Metres between \p p and the line from \p a to \p b on a plane that touches the sphere at \p a; good to
/// some millimetres for a few kilometres.
double PlaneDistance(const ZrTrackPoint& p, const ZrTrackPoint& a, const ZrTrackPoint& b)
{
    const double level = std::cos((a.latitude + p.latitude) / 2.0 / 180.0 * 3.141592653589793);
    const auto x = [&](const ZrTrackPoint& q) {
        return std::remainder(q.longitude - a.longitude, 360.0) * metresPerDegree * level;
    };
    const auto y = [&](const ZrTrackPoint& q) { return (q.latitude - a.latitude) * metresPerDegree; };
    const double length2 = x(b) * x(b) + y(b) * y(b);
    const double along = length2 > 0.0 ? (x(p) * x(b) + y(p) * y(b)) / length2 : 0.0;
    const double share = std::min(std::max(along, 0.0), 1.0);
    return std::hypot(x(p) - share * x(b), y(p) - share * y(b));
}

/// A vehicle under way: it turns a little each second, now and then at once.
Track Wandering(int size, double latitude, double longitude, unsigned seed)
{
    std::mt19937 random(seed);
    const auto unit = [&] { return static_cast<double>(random()) / 4294967295.0 * 2.0 - 1.0; };
    Track track;
    double heading = unit() * 3.0;
    double east = 0.0;
    double north = 0.0;
    for (int i = 0; i < size; ++i) {
        heading += random() % 100 == 0 ? unit() * 3.0 : unit() * 0.05;
        east += 1.5 * std::sin(heading) + unit() * 0.1;
        north += 1.5 * std::cos(heading) + unit() * 0.1;
        track.push_back(Near(latitude, longitude, east, north, i));
    }
    return track;
}

Indices All(std::size_t size)
{
    Indices all(size);
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

} // namespace

class tst_ZrTrackSimplify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void distance_data();
    void distance();
    void distanceAgreesWithGreatCircles();
    void smallDistancesKeepTheirDigits();
    void smallTracks_data();
    void smallTracks();
    void straightLineKeepsItsEnds();
    void droppedPointsLieNear_data();
    void droppedPointsLieNear();
    void toleranceDecides();
    void segmentsStayApart();
    void gapsInTime();
    void pointsWithoutPosition();
    void segments();
    void longTracks_data();
    void longTracks();
};

void tst_ZrTrackSimplify::distance_data()
{
    QTest::addColumn<QVector<double>>("place"); // latitude, longitude: point, from, to
    QTest::addColumn<double>("expected");
    const double degree = metresPerDegree;
    QTest::newRow("beside the equator") << QVector<double>{1, 5, 0, 0, 0, 10} << degree;
    QTest::newRow("on it") << QVector<double>{0, 5, 0, 0, 0, 10} << 0.0;
    QTest::newRow("beyond the end") << QVector<double>{0, 12, 0, 0, 0, 10} << 2 * degree;
    QTest::newRow("before the start") << QVector<double>{0, -3, 0, 0, 0, 10} << 3 * degree;
    QTest::newRow("beside a meridian") << QVector<double>{0, 1, -10, 0, 10, 0} << degree;
    QTest::newRow("no line") << QVector<double>{2, 30, 0, 30, 0, 30} << 2 * degree;
    QTest::newRow("across the antimeridian") << QVector<double>{1, 180, 0, 179, 0, -179} << degree;
    QTest::newRow("other way of writing") << QVector<double>{1, -180, 0, 179, 0, 181} << degree;
    QTest::newRow("over the pole") << QVector<double>{90, 0, 80, 10, 80, -170} << 0.0;
    QTest::newRow("beside the pole") << QVector<double>{89, 100, 80, 10, 80, -170} << degree;
    QTest::newRow("far side") << QVector<double>{0, -175, 0, 0, 0, 10} << 175 * degree;
    QTest::newRow("no latitude") << QVector<double>{91, 0, 0, 0, 0, 10} << std::nan("");
    QTest::newRow("no longitude") << QVector<double>{0, 0, 0, 0, 0, std::nan("")} << std::nan("");
}

void tst_ZrTrackSimplify::distance()
{
    QFETCH(QVector<double>, place);
    QFETCH(double, expected);
    const double found
        = ZrTrackSimplify::Distance(At(place[0], place[1]), At(place[2], place[3]), At(place[4], place[5]));
    if (std::isnan(expected))
        QVERIFY(std::isnan(found));
    else
        QVERIFY2(std::fabs(found - expected) < 1e-6, qPrintable(QString::number(found, 'g', 17)));
}

/// The nearest of many places on the line, found by dividing it again and again.
void tst_ZrTrackSimplify::distanceAgreesWithGreatCircles()
{
    std::mt19937 random(7);
    const auto degrees
        = [&](double limit) { return (static_cast<double>(random()) / 4294967295.0 * 2.0 - 1.0) * limit; };
    for (int i = 0; i < 200; ++i) {
        const ZrTrackPoint a = At(degrees(60), degrees(180));
        const ZrTrackPoint b = At(a.latitude + degrees(5), a.longitude + degrees(5));
        const ZrTrackPoint p = At(a.latitude + degrees(5), a.longitude + degrees(5));
        // Along the line by halving between places on it.
        Track places{a, b};
        double nearest = 1e9;
        for (int pass = 0; pass < 14; ++pass) {
            Track finer;
            for (std::size_t k = 0; k + 1 < places.size(); ++k) {
                const auto unit = [](const ZrTrackPoint& q) {
                    const double la = ZrUtil::D2R(q.latitude);
                    const double lo = ZrUtil::D2R(q.longitude);
                    return std::array<double, 3>{
                        std::cos(la) * std::cos(lo), std::cos(la) * std::sin(lo), std::sin(la)};
                };
                const auto u = unit(places[k]);
                const auto v = unit(places[k + 1]);
                const double x = u[0] + v[0];
                const double y = u[1] + v[1];
                const double z = u[2] + v[2];
                finer.push_back(places[k]);
                finer.push_back(
                    At(ZrUtil::R2D(std::atan2(z, std::hypot(x, y))), ZrUtil::R2D(std::atan2(y, x))));
            }
            finer.push_back(places.back());
            places = finer;
        }
        for (const ZrTrackPoint& q : places)
            nearest = std::min(nearest, ZrUtil::LL2LLRng(p.latitude, p.longitude, q.latitude, q.longitude));
        const double found = ZrTrackSimplify::Distance(p, a, b);
        // The places are up to 50 m apart: within metres of the nearest one when the line passes close by.
        QVERIFY2(std::fabs(found - nearest) < 30.0 && found <= nearest + 1e-3,
            qPrintable(QStringLiteral("%1 %2").arg(found).arg(nearest)));
    }
}

void tst_ZrTrackSimplify::smallDistancesKeepTheirDigits()
{
    for (const double latitude : {0.0, 43.7, -78.2}) {
        for (const double offset : {1e-3, 0.01, 1.0, 100.0}) {
            const ZrTrackPoint a = Near(latitude, 11.0, 0.0, 0.0, 0.0);
            const ZrTrackPoint b = Near(latitude, 11.0, 0.0, 10.0, 0.0);
            // East of the middle of a line to the north, and beyond its end.
            const double beside = ZrTrackSimplify::Distance(Near(latitude, 11.0, offset, 5.0, 0.0), a, b);
            const double beyond
                = ZrTrackSimplify::Distance(Near(latitude, 11.0, 0.0, 10.0 + offset, 0.0), a, b);
            // Parallels are curved and shorter five metres on; that makes 1e-4 of the offset near the pole.
            QVERIFY2(std::fabs(beside - offset) < 1e-4 * offset + 2e-8,
                qPrintable(QString::number(beside - offset)));
            QVERIFY2(std::fabs(beyond - offset) < 2e-8, qPrintable(QString::number(beyond - offset)));
        }
    }
}

void tst_ZrTrackSimplify::smallTracks_data()
{
    QTest::addColumn<Track>("track");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<Indices>("expected");
    const auto near = [](double east, double north) { return Near(40.0, 10.0, east, north, 0.0); };
    QTest::newRow("none") << Track{} << 1.0 << Indices{};
    QTest::newRow("one") << Track{near(0, 0)} << 1.0 << Indices{0};
    QTest::newRow("two at one place") << Track{near(0, 0), near(0, 0)} << 1.0 << Indices{0, 1};
    QTest::newRow("all at one place") << Track(50, near(0, 0)) << 0.0 << Indices{0, 49};
    QTest::newRow("bump below the tolerance")
        << Track{near(0, 0), near(5, 0.9), near(10, 0)} << 1.0 << Indices{0, 2};
    QTest::newRow("bump above it") << Track{near(0, 0), near(5, 1.1), near(10, 0)} << 1.0 << Indices{0, 1, 2};
    QTest::newRow("there and back") << Track{near(0, 0), near(50, 0), near(100, 0), near(50, 0), near(0, 0)}
                                    << 1.0 << Indices{0, 2, 4};
    QTest::newRow("corner") << Track{near(0, 0), near(50, 0), near(100, 0), near(100, 50), near(100, 100)}
                            << 1.0 << Indices{0, 2, 4};
    QTest::newRow("farthest first") << Track{near(0, 0), near(10, 3), near(20, 5), near(30, 3), near(40, 0)}
                                    << 2.0 << Indices{0, 2, 4};
    QTest::newRow("tolerance of 0") << Track{near(0, 0), near(5, 0.001), near(10, 0)} << 0.0
                                    << Indices{0, 1, 2};
    QTest::newRow("negative tolerance") << Track(5, near(0, 0)) << -1.0 << All(5);
    QTest::newRow("no tolerance") << Track(5, near(0, 0)) << std::nan("") << All(5);
    QTest::newRow("infinite tolerance")
        << Wandering(100, 40, 10, 1) << std::numeric_limits<double>::infinity() << Indices{0, 99};
}

void tst_ZrTrackSimplify::smallTracks()
{
    QFETCH(Track, track);
    QFETCH(double, tolerance);
    QFETCH(Indices, expected);
    QCOMPARE(ZrTrackSimplify::Kept(track, tolerance), expected);
}

void tst_ZrTrackSimplify::straightLineKeepsItsEnds()
{
    Track meridian;
    Track equator;
    for (int i = 0; i <= 10000; ++i) {
        meridian.push_back(At(i * 0.008, -40.0, i));
        equator.push_back(At(0.0, 170.0 + i * 0.002, i));
    }
    QCOMPARE(ZrTrackSimplify::Kept(meridian, 1e-4), (Indices{0, 10000}));
    // Over the antimeridian, where the longitudes may jump.
    QCOMPARE(ZrTrackSimplify::Kept(equator, 1e-4), (Indices{0, 10000}));
    for (ZrTrackPoint& point : equator)
        point.longitude = std::remainder(point.longitude, 360.0);
    QCOMPARE(ZrTrackSimplify::Kept(equator, 1e-4), (Indices{0, 10000}));
}

void tst_ZrTrackSimplify::droppedPointsLieNear_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("tolerance");
    int number = 0;
    for (const double latitude : {0.0, 43.5, -71.0}) {
        for (const double longitude : {8.0, 180.0, -179.999}) {
            for (const double tolerance : {0.05, 0.5, 5.0, 100.0}) {
                QTest::newRow(qPrintable(QStringLiteral("%1: %2 %3 %4 m")
                                             .arg(++number)
                                             .arg(latitude)
                                             .arg(longitude)
                                             .arg(tolerance)))
                    << latitude << longitude << tolerance;
            }
        }
    }
}

void tst_ZrTrackSimplify::droppedPointsLieNear()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(double, tolerance);
    const Track track = Wandering(3000, latitude, longitude, static_cast<unsigned>(tolerance * 100.0));
    const Indices kept = ZrTrackSimplify::Kept(track, tolerance);
    QCOMPARE(kept.front(), std::size_t{0});
    QCOMPARE(kept.back(), track.size() - 1);
    QVERIFY(std::is_sorted(kept.begin(), kept.end()));
    QVERIFY2(kept.size() < track.size() * 9 / 10, qPrintable(QString::number(kept.size())));
    for (std::size_t k = 0; k + 1 < kept.size(); ++k) {
        for (std::size_t i = kept[k] + 1; i < kept[k + 1]; ++i) {
            const double distance = PlaneDistance(track[i], track[kept[k]], track[kept[k + 1]]);
            // The plane is off by some parts in a million of the few kilometres.
            QVERIFY2(distance <= tolerance + 0.01 + tolerance * 0.002, qPrintable(QString::number(distance)));
        }
    }
}

void tst_ZrTrackSimplify::toleranceDecides()
{
    const Track track = Wandering(5000, 50.0, 5.0, 3);
    std::size_t before = track.size() + 1;
    for (const double tolerance : {0.01, 0.1, 1.0, 10.0, 100.0, 1000.0}) {
        const std::size_t now = ZrTrackSimplify::Kept(track, tolerance).size();
        QVERIFY(now < before);
        before = now;
    }
}

void tst_ZrTrackSimplify::segmentsStayApart()
{
    // Two straight lines with a hole between them: four ends and the hole stay.
    Track track;
    for (int i = 0; i < 20; ++i)
        track.push_back(Near(40.0, 10.0, i, 0.0, i));
    track[8].latitude = std::nan("");
    track[9].longitude = std::nan("");
    track[10].latitude = std::numeric_limits<double>::infinity();
    const Indices kept = ZrTrackSimplify::Kept(track, 1.0);
    QCOMPARE(kept, (Indices{0, 7, 8, 11, 19}));
    Track few;
    for (const std::size_t i : kept)
        few.push_back(track[i]);
    ZrTrackSegments segments(few);
    QVERIFY(segments.Next());
    QCOMPARE(segments.Points().size(), std::size_t{2});
    QVERIFY(segments.Next());
    QCOMPARE(segments.Points().size(), std::size_t{2});
    QVERIFY(!segments.Next());
}

void tst_ZrTrackSimplify::gapsInTime()
{
    Track track;
    for (int i = 0; i < 20; ++i)
        track.push_back(Near(40.0, 10.0, i, 0.0, i < 10 ? i : i + 60));
    QCOMPARE(ZrTrackSimplify::Kept(track, 1.0), (Indices{0, 19}));
    QCOMPARE(ZrTrackSimplify::Kept(track, 1.0, 61.0), (Indices{0, 19}));
    QCOMPARE(ZrTrackSimplify::Kept(track, 1.0, 60.9), (Indices{0, 9, 10, 19}));
    // A clock that was set back makes a gap too; a time that is not known makes none.
    track[15].time = 0.0;
    QCOMPARE(ZrTrackSimplify::Kept(track, 1.0, 61.0), (Indices{0, 14, 15, 16, 19}));
    track[15].time = std::nan("");
    QCOMPARE(ZrTrackSimplify::Kept(track, 1.0, 61.0), (Indices{0, 19}));
}

void tst_ZrTrackSimplify::pointsWithoutPosition()
{
    const Track none(7);
    QCOMPARE(ZrTrackSimplify::Kept(none, 1.0), Indices{0});
    QCOMPARE(ZrTrackSimplify::Kept(none, -1.0), All(7));
    Track around(9);
    around[4] = At(1.0, 2.0);
    QCOMPARE(ZrTrackSimplify::Kept(around, 1.0), (Indices{0, 4, 5}));
}

void tst_ZrTrackSimplify::segments()
{
    Track track(10);
    for (const std::size_t i : {1, 2, 3, 6, 7, 8})
        track[i] = At(1.0, static_cast<double>(i), static_cast<double>(i));
    track[7].time = 100.0;
    track[8].time = 101.0;
    ZrTrackSegments pieces(track, 10.0);
    Indices ends;
    while (pieces.Next()) {
        ends.push_back(pieces.First());
        ends.push_back(pieces.End());
        QCOMPARE(pieces.Points().data(), track.data() + pieces.First());
    }
    QCOMPARE(ends, (Indices{1, 4, 6, 7, 7, 9}));
    QVERIFY(!pieces.Next());
    ZrTrackSegments nothing((zr::span<const ZrTrackPoint>()));
    QVERIFY(!nothing.Next());
}

void tst_ZrTrackSimplify::longTracks_data()
{
    QTest::addColumn<Track>("track");
    QTest::addColumn<double>("tolerance");
    constexpr int size = 300000;
    QTest::newRow("wandering") << Wandering(size, 43.0, 8.0, 9) << 0.5;
    Track line;
    Track spiral;
    Track lanes;
    for (int i = 0; i < size; ++i) {
        line.push_back(At(i * 1e-4, 8.0, i));
        const double turn = i * 0.01;
        spiral.push_back(Near(43.0, 8.0, 0.01 * i * std::cos(turn), 0.01 * i * std::sin(turn), i));
        const int along = i % 1000;
        lanes.push_back(Near(43.0, 8.0, (i / 1000) % 2 == 0 ? along : 1000 - along, (i / 1000) * 20.0, i));
    }
    QTest::newRow("straight") << line << 0.5;
    QTest::newRow("spiral") << spiral << 0.5;
    QTest::newRow("survey lanes") << lanes << 0.5;
    QTest::newRow("nothing left out") << spiral << 0.0;
}

/// No recursion that could exhaust the stack, no time that grows with the square: 4.5e10 distances would take
/// longer than a test program may run.
void tst_ZrTrackSimplify::longTracks()
{
    QFETCH(Track, track);
    QFETCH(double, tolerance);
    const Indices kept = ZrTrackSimplify::Kept(track, tolerance);
    QVERIFY(kept.size() >= 2);
    QCOMPARE(kept.front(), Indices::value_type(0));
    QCOMPARE(kept.back(), Indices::value_type(track.size() - 1));
    QVERIFY(std::is_sorted(kept.begin(), kept.end()));
}

QTEST_GUILESS_MAIN(tst_ZrTrackSimplify)
#include "tst_ZrTrackSimplify.moc"
