// Paths over turn arcs, held against lengths calculated by hand and against what must hold for any route.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrUnits.h"

#include <QElapsedTimer>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

using Metres = std::vector<std::pair<double, double>>;

constexpr double pi = 3.141592653589793;
const double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

class tst_ZrRoutePath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void straightOnTheEllipsoid_data();
    void straightOnTheEllipsoid();
    void rightAngle_data();
    void rightAngle();
    void endsNeverTurn();
    void gentleTurn_data();
    void gentleTurn();
    void straightOn();
    void turnsThatShareALeg();
    void turnsThatDoNotFit_data();
    void turnsThatDoNotFit();
    void doublingBack();
    void coincidentWaypoints();
    void agreesWithTheRoute();
    void staleFieldsPlayNoPart();
    void projectionOfTheProcessStays();
    void closedRoute();
    void nothingToRun();
    void unknownPositions();
    void tooWide_data();
    void tooWide();
    void acrossTheAntimeridian();
    void propertiesOfAnyPath_data();
    void propertiesOfAnyPath();
    void reversedPath();
    void largeRoute();
    void legLines();
};

void tst_ZrRoutePath::straightOnTheEllipsoid_data()
{
    QTest::addColumn<ZrGeoPoint>("from");
    QTest::addColumn<ZrGeoPoint>("to");
    QTest::addColumn<double>("metres");
    // Along the equator it is a · Δλ; along meridians the arcs are those of published tables of WGS 84.
    const double degree = 6378137.0 * pi / 180.0;
    QTest::newRow("equator 1 degree") << ZrGeoPoint{0, 10} << ZrGeoPoint{0, 11} << degree;
    QTest::newRow("equator 6 degrees") << ZrGeoPoint{0, 10} << ZrGeoPoint{0, 16} << 6 * degree;
    QTest::newRow("equator 59 degrees") << ZrGeoPoint{0, -20} << ZrGeoPoint{0, 39} << 59 * degree;
    QTest::newRow("equator 40 degrees") << ZrGeoPoint{0, -20} << ZrGeoPoint{0, 20} << 40 * degree;
    QTest::newRow("meridian 0 to 1") << ZrGeoPoint{0, 10} << ZrGeoPoint{1, 10} << 110574.389;
    QTest::newRow("meridian 0 to 45") << ZrGeoPoint{0, 10} << ZrGeoPoint{45, 10} << 4984944.378;
    QTest::newRow("meridian 45 to 46") << ZrGeoPoint{45, 10} << ZrGeoPoint{46, 10} << 111141.548;
    QTest::newRow("antimeridian") << ZrGeoPoint{0, 179.5} << ZrGeoPoint{0, -179.5} << degree;
}

void tst_ZrRoutePath::straightOnTheEllipsoid()
{
    QFETCH(ZrGeoPoint, from);
    QFETCH(ZrGeoPoint, to);
    QFETCH(double, metres);
    ZrWpts route;
    AppendWpt(route, from);
    AppendWpt(route, to);
    const ZrRoutePath path(route);
    const double span = std::fabs(std::remainder(to.lng - from.lng, 360.0));
    const double relative = span > 50.0 ? 3e-3 : span > 10.0 ? 1e-3 : 1e-6;
    QVERIFY2(
        Near(path.Length(), metres, relative * metres), qPrintable(QString::number(path.Length(), 'f', 4)));
    QVERIFY(Near(path.Duration(), path.Length() / 0.5, 1e-9 * metres));
}

void tst_ZrRoutePath::rightAngle_data()
{
    QTest::addColumn<double>("radius");
    QTest::addColumn<double>("east"); // of the last waypoint: where the turn goes
    QTest::addColumn<double>("sweep");
    QTest::newRow("right") << 10.0 << 100.0 << -pi / 2;
    QTest::newRow("left") << 10.0 << -100.0 << pi / 2;
    QTest::newRow("negative radius") << -10.0 << 100.0 << -pi / 2;
}

void tst_ZrRoutePath::rightAngle()
{
    QFETCH(double, radius);
    QFETCH(double, east);
    QFETCH(double, sweep);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {east, 100}}, radius);
    const ZrRoutePath path(route);

    // 90 m, a quarter of a circle of 10 m, 90 m.
    const double arc = 10.0 * pi / 2.0;
    QVERIFY(Near(path.Length(), 180.0 + arc, 1e-6));
    QCOMPARE(path.Legs().size(), std::size_t{2});
    QVERIFY(Near(path.Legs()[0].straight, 90.0, 1e-6));
    QVERIFY(Near(path.Legs()[0].arc, arc, 1e-9));
    QVERIFY(Near(path.Legs()[0].direct, 100.0, 1e-6));
    QCOMPARE(path.Legs()[0].q, 0.0);
    QVERIFY(Near(path.Legs()[1].q, 90.0 + arc, 1e-6));
    QVERIFY(Near(path.Legs()[1].length, 90.0, 1e-6));
    QVERIFY(Near(path.Duration(), (180.0 + arc) / 0.5, 1e-5));

    const ZrRouteTurn& turn = path.Turns()[1];
    QCOMPARE(turn.state, ZrRouteTurn::eTurns);
    QCOMPARE(turn.radius, 10.0);
    QVERIFY(Near(turn.deflection, sweep, 1e-7));
    QVERIFY(Near(turn.reach, 10.0, 1e-6));
    const double side = east > 0.0 ? 1.0 : -1.0;
    const ZrLocalPoint w = path.Points()[1];
    QVERIFY(Apart(turn.tp1, {w.x, w.y - 10.0}) < 1e-3);
    QVERIFY(Apart(turn.tp2, {w.x + side * 10.0, w.y}) < 1e-3);
    QVERIFY(Apart(turn.centre, {w.x + side * 10.0, w.y - 10.0}) < 1e-3);

    QCOMPARE(path.Pieces().size(), std::size_t{3});
    QVERIFY(!path.Pieces()[0].isArc);
    QVERIFY(path.Pieces()[1].isArc);
    QVERIFY(Near(path.Pieces()[1].sweep, sweep, 1e-7));
    QCOMPARE(path.Pieces()[1].leg, 0);
    QCOMPARE(path.Pieces()[2].leg, 1);
}

void tst_ZrRoutePath::endsNeverTurn()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}, {100, 0}});
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        route.GetNext(pos)->r = 10.0;
    for (const bool closed : {false, true}) {
        route.closed = closed;
        const ZrRoutePath path(route);
        QCOMPARE(path.Turns()[0].state, ZrRouteTurn::eNoTurn);
        QCOMPARE(path.Turns()[1].state, ZrRouteTurn::eTurns);
        QCOMPARE(path.Turns()[2].state, ZrRouteTurn::eTurns);
        QCOMPARE(path.Turns()[3].state, ZrRouteTurn::eNoTurn);
        QVERIFY(Near(path.Length(), 300.0 - 40.0 + 10.0 * pi + (closed ? 100.0 : 0.0), 1e-6));
    }
}

void tst_ZrRoutePath::gentleTurn_data()
{
    QTest::addColumn<double>("degrees"); // change of heading, positive to the right
    for (const double degrees : {0.01, 0.5, 1.0, 3.0, 30.0, 120.0, 170.0})
        for (const double side : {-1.0, 1.0})
            QTest::newRow(qPrintable(QString::number(side * degrees))) << side * degrees;
}

void tst_ZrRoutePath::gentleTurn()
{
    QFETCH(double, degrees);
    const double angle = degrees / 180.0 * pi;
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 1000}, {1000 * std::sin(angle), 1000 + 1000 * std::cos(angle)}}, 15.0);
    const ZrRoutePath path(route);
    const ZrRouteTurn& turn = path.Turns()[1];
    QCOMPARE(turn.state, ZrRouteTurn::eTurns);
    const double reach = 15.0 * std::tan(std::fabs(angle) / 2.0);
    QVERIFY(Near(path.Length(), 2000.0 - 2.0 * reach + 15.0 * std::fabs(angle), 1e-5));
    QVERIFY(Near(turn.deflection, -angle, 1e-8));
    // The centre is on the side of the turn, however gentle.
    const double right = turn.centre.x - turn.tp1.x;
    QVERIFY2(Near(right, degrees > 0.0 ? 15.0 : -15.0, 1e-4), qPrintable(QString::number(right)));
    QVERIFY(Near(Apart(turn.centre, turn.tp2), 15.0, 1e-6));
}

void tst_ZrRoutePath::straightOn()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}}, 10.0);
    const ZrRoutePath path(route);
    QCOMPARE(path.Turns()[1].state, ZrRouteTurn::eTurns);
    QVERIFY(Near(path.Turns()[1].deflection, 0.0, 1e-8));
    QVERIFY(Near(path.Length(), 200.0, 1e-6));
}

void tst_ZrRoutePath::turnsThatShareALeg()
{
    // A U-turn of two quarters: both need half of the leg between them, to the last digit or a little more.
    for (const double between : {20.0, 19.97, 20.03}) {
        ZrWpts route;
        Lay(route, {{0, 0}, {0, 100}, {between, 100}, {between, 0}}, 10.0);
        const ZrRoutePath path(route);
        QCOMPARE(path.Turns()[1].state, ZrRouteTurn::eTurns);
        QCOMPARE(path.Turns()[2].state, ZrRouteTurn::eTurns);
        const double rest = std::max(0.0, between - 20.0);
        QVERIFY(Near(path.Length(), 180.0 + 10.0 * pi + rest, 1e-5));
        QVERIFY(Near(path.Legs()[1].straight, rest, 1e-5));
    }
}

void tst_ZrRoutePath::turnsThatDoNotFit_data()
{
    using State = ZrRouteTurn::eState;
    QTest::addColumn<double>("first"); // lengths of the three legs
    QTest::addColumn<double>("second");
    QTest::addColumn<double>("third");
    QTest::addColumn<int>("one");
    QTest::addColumn<int>("two");
    // Right angles of 10 m: each needs 10 m of its legs.
    QTest::newRow("fit") << 10.1 << 20.1 << 10.1 << int(State::eTurns) << int(State::eTurns);
    QTest::newRow("first leg short") << 9.9 << 30.0 << 30.0 << int(State::eBeyondLeg) << int(State::eTurns);
    QTest::newRow("last leg short") << 30.0 << 30.0 << 9.9 << int(State::eTurns) << int(State::eBeyondLeg);
    QTest::newRow("overlap") << 30.0 << 19.9 << 30.0 << int(State::eOverlaps) << int(State::eOverlaps);
    QTest::newRow("both beyond") << 30.0 << 9.9 << 30.0 << int(State::eBeyondLeg) << int(State::eBeyondLeg);
    QTest::newRow("beyond leaves room")
        << 9.9 << 10.1 << 30.0 << int(State::eBeyondLeg) << int(State::eTurns);
}

void tst_ZrRoutePath::turnsThatDoNotFit()
{
    QFETCH(double, first);
    QFETCH(double, second);
    QFETCH(double, third);
    QFETCH(int, one);
    QFETCH(int, two);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, first}, {second, first}, {second, first - third}}, 10.0);
    const ZrRoutePath path(route);
    QCOMPARE(int(path.Turns()[1].state), one);
    QCOMPARE(int(path.Turns()[2].state), two);
    QCOMPARE(path.Turns()[1].overlapsNext, one == ZrRouteTurn::eOverlaps);
    QVERIFY(!path.Turns()[2].overlapsNext);
    // Without its arc a waypoint is a corner.
    const int turns = (one == ZrRouteTurn::eTurns ? 1 : 0) + (two == ZrRouteTurn::eTurns ? 1 : 0);
    QVERIFY(Near(path.Length(), first + second + third - turns * (20.0 - 5.0 * pi), 1e-5));
}

void tst_ZrRoutePath::doublingBack()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 40}}, 10.0);
    const ZrRoutePath path(route);
    QCOMPARE(path.Turns()[1].state, ZrRouteTurn::eDoublesBack);
    QVERIFY(Near(path.Length(), 160.0, 1e-6));
    // Exactly the same position again.
    ZrWpts there;
    Lay(there, {{0, 0}, {0, 100}, {0, 0}}, 10.0);
    QCOMPARE(ZrRoutePath(there).Turns()[1].state, ZrRouteTurn::eDoublesBack);
    QVERIFY(Near(ZrRoutePath(there).Length(), 200.0, 1e-6));
    WptAt(there, 1)->r = 0.0;
    QCOMPARE(ZrRoutePath(there).Turns()[1].state, ZrRouteTurn::eNoTurn);
}

void tst_ZrRoutePath::coincidentWaypoints()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 100}, {100, 100}}, 10.0);
    const ZrRoutePath path(route);
    QCOMPARE(path.Turns()[1].state, ZrRouteTurn::eNoTurn);
    QCOMPARE(path.Turns()[2].state, ZrRouteTurn::eNoTurn);
    QVERIFY(Near(path.Length(), 200.0, 1e-6));
    QCOMPARE(path.Legs()[1].length, 0.0);
    QCOMPARE(path.Legs()[1].duration, 0.0);
    QCOMPARE(path.Pieces().size(), std::size_t{2});
}

void tst_ZrRoutePath::agreesWithTheRoute()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 300}, {250, 400}, {300, 50}, {500, 0}, {400, -200}}, 25.0);
    route.Recalc(true);
    const ZrRoutePath path(route);
    double q = 0.0;
    double signedArcs = 0.0;
    for (std::size_t i = 1; i < 6; ++i) {
        const ZrWpt& wpt = *WptAt(route, static_cast<int>(i));
        const ZrRouteTurn& turn = path.Turns()[i];
        QVERIFY(Near(turn.deflection, wpt.rit, 1e-6));
        q += path.Legs()[i - 1].length;
        signedArcs += path.Legs()[i - 1].arc - std::copysign(path.Legs()[i - 1].arc, wpt.rit);
        // The scale of the grid is within 4e-4 of 1.
        QVERIFY(Near(q - signedArcs, wpt.q, 5e-4 * q));
    }
    QVERIFY(signedArcs > 20.0);
    QVERIFY(Near(path.Length(), q, 1e-6));
}

void tst_ZrRoutePath::staleFieldsPlayNoPart()
{
    ZrWpts route;
    Wander(route, 40, 3);
    ZrWpts stale(route);
    for (ZrListPos* pos = stale.GetHeadPos(); pos;) {
        ZrWpt* wpt = stale.GetNext(pos);
        wpt->x = wpt->y = wpt->q = wpt->ricX = wpt->ricY = wpt->rit = NaN;
        wpt->tp1X = wpt->tp1Y = wpt->tp1Q = wpt->tp2X = wpt->tp2Y = wpt->tp2Q = 1e300;
    }
    QCOMPARE(ZrRoutePath(stale).Length(), ZrRoutePath(route).Length());
    QCOMPARE(ZrRoutePath(stale).Duration(), ZrRoutePath(route).Duration());
}

void tst_ZrRoutePath::projectionOfTheProcessStays()
{
    ZrUnits::CalcUTM(10.0, 100.0);
    const ZrProj before = ZrUnits::utm;
    ZrWpts route;
    Wander(route, 10, 1, {-40.0, -170.0});
    const ZrRoutePath path(route);
    path.Sample(10.0);
    path.At(5.0);
    QCOMPARE(ZrUnits::utm.lngOrigin, before.lngOrigin);
    QCOMPARE(ZrUnits::utm.falseNorth, before.falseNorth);
}

void tst_ZrRoutePath::closedRoute()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 300}, {400, 300}});
    QVERIFY(Near(ZrRoutePath(route).Length(), 700.0, 1e-5));
    route.closed = true;
    const ZrRoutePath path(route);
    QVERIFY(Near(path.Length(), 1200.0, 1e-5)); // 3, 4, 5
    QCOMPARE(path.Legs().size(), std::size_t{3});
    QCOMPARE(path.Legs()[2].from, 2);
    QCOMPARE(path.Legs()[2].to, 0);
    // The route itself leaves that leg out.
    QVERIFY(Near(route.CalcRange(), 700.0, 5.0));
    // There and back.
    ZrWpts two;
    Lay(two, {{0, 0}, {0, 300}});
    two.closed = true;
    QVERIFY(Near(ZrRoutePath(two).Length(), 600.0, 1e-5));
}

void tst_ZrRoutePath::nothingToRun()
{
    ZrWpts route;
    for (const bool closed : {false, true}) {
        route.closed = closed;
        const ZrRoutePath empty(route);
        QCOMPARE(empty.Length(), 0.0);
        QCOMPARE(empty.Duration(), 0.0);
        QVERIFY(empty.Legs().empty() && empty.Pieces().empty() && empty.Sample(1.0).empty());
        QVERIFY(!empty.At(0.0).IsValid());
    }
    AppendWpt(route, testPlace, 10.0);
    const ZrRoutePath one(route);
    QCOMPARE(one.Length(), 0.0);
    QVERIFY(one.Legs().empty() && one.Pieces().empty() && one.Sample(1.0).empty());
    QCOMPARE(one.Turns()[0].state, ZrRouteTurn::eNoTurn);
    // All at one place.
    AppendWpt(route, testPlace, 10.0);
    AppendWpt(route, testPlace, 10.0);
    const ZrRoutePath still(route);
    QCOMPARE(still.Length(), 0.0);
    QCOMPARE(still.Duration(), 0.0);
    QVERIFY(still.Pieces().empty());
}

void tst_ZrRoutePath::unknownPositions()
{
    for (const double bad : {NaN, std::numeric_limits<double>::infinity(), 91.0, -500.0}) {
        ZrWpts route;
        Lay(route, {{0, 0}, {0, 100}, {100, 100}, {100, 0}, {200, 0}}, 10.0);
        WptAt(route, 2)->lat = bad;
        const ZrRoutePath path(route);
        QVERIFY(std::isnan(path.Length()) && std::isnan(path.Duration()));
        QVERIFY(Near(path.Legs()[0].length, 100.0, 1e-5));
        QVERIFY(std::isnan(path.Legs()[1].length) && std::isnan(path.Legs()[2].length));
        QVERIFY(Near(path.Legs()[3].length, 100.0, 1e-5));
        QCOMPARE(path.Pieces().size(), std::size_t{2});
        QVERIFY(std::isnan(path.Points()[2].x));
        for (const ZrRouteTurn& turn : path.Turns())
            QCOMPARE(turn.state, ZrRouteTurn::eNoTurn);
    }
    // A radius that is no number is no turn.
    for (const double bad : {NaN, std::numeric_limits<double>::infinity()}) {
        ZrWpts route;
        Lay(route, {{0, 0}, {0, 100}, {100, 100}}, bad);
        QVERIFY(Near(ZrRoutePath(route).Length(), 200.0, 1e-5));
    }
    ZrWpts none;
    AppendWpt(none, {NaN, NaN});
    AppendWpt(none, {NaN, NaN});
    QVERIFY(std::isnan(ZrRoutePath(none).Length()));
}

void tst_ZrRoutePath::tooWide_data()
{
    QTest::addColumn<ZrGeoPoint>("from");
    QTest::addColumn<ZrGeoPoint>("to");
    QTest::addColumn<bool>("tooWide");
    QTest::newRow("just within") << ZrGeoPoint{0, -29.9} << ZrGeoPoint{0, 29.9} << false;
    QTest::newRow("beyond") << ZrGeoPoint{0, -30.1} << ZrGeoPoint{0, 30.1} << true;
    QTest::newRow("half round") << ZrGeoPoint{0, 0} << ZrGeoPoint{0, 180} << true;
    QTest::newRow("north") << ZrGeoPoint{88.9, 0} << ZrGeoPoint{88.8, 0} << false;
    QTest::newRow("pole") << ZrGeoPoint{90, 0} << ZrGeoPoint{88, 0} << true;
    QTest::newRow("antimeridian") << ZrGeoPoint{0, 160} << ZrGeoPoint{0, -160} << false;
}

void tst_ZrRoutePath::tooWide()
{
    QFETCH(ZrGeoPoint, from);
    QFETCH(ZrGeoPoint, to);
    QFETCH(bool, tooWide);
    ZrWpts route;
    AppendWpt(route, from);
    AppendWpt(route, to);
    const ZrRoutePath path(route);
    QCOMPARE(path.IsTooWide(), tooWide);
    QCOMPARE(std::isnan(path.Length()), tooWide);
    QCOMPARE(path.Pieces().empty(), tooWide);
}

void tst_ZrRoutePath::acrossTheAntimeridian()
{
    ZrWpts there;
    ZrWpts here;
    const Metres metres{{-200, 0}, {-100, 300}, {250, 200}, {100, -100}, {-300, -50}};
    Lay(there, metres, 20.0, {10.0, 180.0});
    Lay(here, metres, 20.0, {10.0, 20.0});
    QVERIFY(Near(ZrRoutePath(there).Length(), ZrRoutePath(here).Length(), 1e-6));
    const auto samples = ZrRoutePath(there).Sample(7.0);
    QVERIFY(
        std::any_of(samples.begin(), samples.end(), [](const auto& s) { return s.position.lng > 179.0; }));
    QVERIFY(
        std::any_of(samples.begin(), samples.end(), [](const auto& s) { return s.position.lng < -179.0; }));
    for (const ZrPathSample& sample : samples)
        QVERIFY(sample.position.IsValid() && std::fabs(sample.position.lng) > 179.99);
}

void tst_ZrRoutePath::propertiesOfAnyPath_data()
{
    QTest::addColumn<ZrGeoPoint>("place");
    QTest::newRow("north") << ZrGeoPoint{50.1, -4.2};
    QTest::newRow("equator") << ZrGeoPoint{0.0, 3.0};
    QTest::newRow("antimeridian") << ZrGeoPoint{-17.0, 180.0};
    QTest::newRow("far south") << ZrGeoPoint{-78.0, 100.0};
}

void tst_ZrRoutePath::propertiesOfAnyPath()
{
    QFETCH(ZrGeoPoint, place);
    int turns = 0;
    int corners = 0;
    for (unsigned seed = 0; seed < 30; ++seed) {
        ZrWpts route;
        Wander(route, 60, seed, place);
        route.closed = seed % 2 == 0;
        const ZrRoutePath path(route);
        double length = 0.0;
        for (std::size_t i = 0; i < path.Pieces().size(); ++i) {
            const ZrPathPiece& piece = path.Pieces()[i];
            QVERIFY(Near(piece.q, length, 1e-6));
            length += piece.length;
            // Pieces meet, up to turns that overlap a little.
            if (i > 0)
                QVERIFY(Apart(path.Pieces()[i - 1].to, piece.from) <= ZrRoutePath::Tolerance);
            QVERIFY(Apart(piece.At(0.5), piece.from) <= piece.length);
            if (!piece.isArc)
                continue;
            QVERIFY(Apart(piece.At(1.0 - 1e-12), piece.to) < 1e-6);
            QVERIFY(Near(Apart(piece.centre, piece.from), Apart(piece.centre, piece.to), 1e-6));
        }
        QVERIFY(Near(length, path.Length(), 1e-6));
        for (std::size_t i = 1; i + 1 < path.Turns().size(); ++i) {
            const ZrRouteTurn& turn = path.Turns()[i];
            if (turn.state != ZrRouteTurn::eTurns) {
                ++corners;
                continue;
            }
            ++turns;
            // Tangent points on the legs, the centre square to both.
            for (const auto& [tangent, end] :
                {std::pair(turn.tp1, path.Points()[i - 1]), std::pair(turn.tp2, path.Points()[i + 1])}) {
                const ZrLocalPoint w = path.Points()[i];
                QVERIFY(Near(Apart(end, tangent) + Apart(tangent, w), Apart(end, w), 0.11));
                const double along = (turn.centre.x - tangent.x) * (end.x - w.x)
                    + (turn.centre.y - tangent.y) * (end.y - w.y);
                QVERIFY(Near(along, 0.0, 1e-5 * Apart(end, w)));
                QVERIFY(Near(Apart(turn.centre, tangent), turn.radius, 1e-5));
            }
        }
        double before = -1.0;
        const auto samples = path.Sample(5.0);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            QVERIFY(samples[i].q > before);
            before = samples[i].q;
            if (i > 0)
                QVERIFY(Apart(samples[i - 1].local, samples[i].local) <= 5.0 + ZrRoutePath::Tolerance);
        }
    }
    QVERIFY(turns > 500 && corners > 50);
}

void tst_ZrRoutePath::reversedPath()
{
    for (unsigned seed = 0; seed < 30; ++seed) {
        ZrWpts route;
        Wander(route, 50, seed);
        route.GetHead()->r = route.GetTail()->r = 0.0;
        const double there = ZrRoutePath(route).Length();
        route.Invert();
        QVERIFY(Near(ZrRoutePath(route).Length(), there, 1e-5));
    }
}

void tst_ZrRoutePath::largeRoute()
{
    ZrWpts route;
    Metres metres;
    for (int i = 0; i < 10000; ++i) {
        // Lanes of 100 m at a distance of 20 m.
        const int lane = i / 2;
        metres.emplace_back(lane * 20.0, (i + lane) % 2 == 0 ? 0.0 : 100.0);
    }
    Lay(route, metres, 10.0);
    QElapsedTimer timer;
    timer.start();
    const ZrRoutePath path(route);
    const auto elapsed = timer.elapsed();
    QVERIFY2(elapsed < 2000, qPrintable(QString::number(elapsed)));
    // The first and last lane turn once; between 9998 quarters there are 4998 lanes of 80 m.
    const double expected = 2 * 90.0 + 4998 * 80.0 + 9998 * 5.0 * pi;
    QVERIFY2(Near(path.Length(), expected, 1e-4 * expected),
        qPrintable(QString::number(path.Length() - expected)));
    qInfo("%lld ms", elapsed);
}

/// Along the arc of a right angle, no step of it larger than asked for.
void tst_ZrRoutePath::legLines()
{
    const ZrLocalFrame frame({44.0, -63.0});
    ZrWpts route;
    for (const ZrLocalPoint at : {ZrLocalPoint{0, 0}, ZrLocalPoint{0, 200}, ZrLocalPoint{200, 200}}) {
        const ZrGeoPoint place = frame.ToGeo(at);
        route.Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
    }
    const auto corners = ZrRoutePath(route).LegLines();
    QCOMPARE(corners.size(), std::size_t(2));
    QCOMPARE(corners[0].size(), std::size_t(2));
    route.GetAt(route.FindIndex(1))->r = 50.0;
    const ZrRoutePath path(route);
    const auto length = [&frame](const std::vector<std::vector<ZrGeoPoint>>& lines) {
        double sum = 0.0;
        ZrLocalPoint before = frame.ToLocal(lines[0][0]);
        for (const auto& line : lines) {
            for (const ZrGeoPoint& place : line) {
                const ZrLocalPoint at = frame.ToLocal(place);
                sum += std::hypot(at.x - before.x, at.y - before.y);
                before = at;
            }
        }
        return sum;
    };
    const double arc = 50.0 * pi / 2.0;
    for (const double step : {0.0, 0.5, 0.01, NaN, -1.0}) {
        const auto lines = path.LegLines(step);
        const double used = step > 0.0 ? step : pi / 36.0;
        // The right angle of the ellipsoid is none of the plane to the last digit.
        const double steps = pi / 2.0 / used;
        const auto count = static_cast<double>(lines[0].size());
        QVERIFY2(count > steps + 1.9 && count < steps + 3.1, qPrintable(QString::number(count)));
        QCOMPARE(lines[1].size(), std::size_t(2));
        // Chords are shorter than their arcs by a share of step² / 24.
        const double off = 300.0 + arc - length(lines);
        QVERIFY2(off >= -0.01 && off < arc * used * used / 24.0 + 0.01, qPrintable(QString::number(off)));
    }
    // A step that would make millions of them is enlarged.
    QVERIFY(path.LegLines(1e-12)[0].size() < 20000);
    QVERIFY(ZrRoutePath(ZrWpts()).LegLines().empty());
}

QTEST_GUILESS_MAIN(tst_ZrRoutePath)
#include "tst_ZrRoutePath.moc"
