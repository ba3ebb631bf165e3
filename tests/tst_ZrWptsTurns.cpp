#include "RouteChecks.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr double pi = 3.141592653589793;

/// Turn at the middle of three grid points, in metres; the points stay away from the real grid so that
/// expected values can be written by hand.
struct Corner
{
    ZrWpts route;
    ZrWpt* wpt = nullptr;

    Corner(GridPoint a, GridPoint w, GridPoint b, double radius, const QVector<double>& former = staleTurn)
    {
        for (const GridPoint point : {a, w, b}) {
            auto* added = new ZrWpt;
            added->x = point.east;
            added->y = point.north;
            route.AddTail(added);
        }
        wpt = At(route, 1);
        wpt->r = radius;
        SetTurn(*wpt, former);
        route.CalcTangentPoints();
    }
};

/// Change of heading from a → w to w → b in radians, positive counter-clockwise.
double TurnAngle(GridPoint a, GridPoint w, GridPoint b)
{
    const double ux = w.east - a.east;
    const double uy = w.north - a.north;
    const double vx = b.east - w.east;
    const double vy = b.north - w.north;
    return std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
}

double Distance(double x1, double y1, double x2, double y2)
{
    return std::hypot(x2 - x1, y2 - y1);
}

/// How far the point is behind \p w on the way from \p from to \p w, and how far off that line, in metres.
struct OnLine
{
    double behind;
    double off;

    OnLine(GridPoint from, GridPoint w, double x, double y)
    {
        const double length = std::hypot(w.east - from.east, w.north - from.north);
        const double ux = (w.east - from.east) / length;
        const double uy = (w.north - from.north) / length;
        behind = (w.east - x) * ux + (w.north - y) * uy;
        off = (w.east - x) * uy - (w.north - y) * ux;
    }
};

/// +π/2 or −π/2 on the vertical axis, where a y of 0 counts as negative.
double Angle(double y, double x)
{
    if (x == 0.0)
        return y > 0.0 ? pi / 2 : -pi / 2;
    return std::atan2(y, x);
}

/// The turn at \p w with the angles themselves, step by step: centre, sweep, tangent points.
QVector<double> TurnByAngles(GridPoint a, GridPoint w, GridPoint b, double r)
{
    const double radius = std::fabs(r);
    double ux = w.east - a.east;
    double uy = w.north - a.north;
    double vx = w.east - b.east;
    double vy = w.north - b.north;
    const double uLength = std::sqrt(ux * ux + uy * uy);
    const double vLength = std::sqrt(vx * vx + vy * vy);
    ux /= uLength;
    uy /= uLength;
    vx /= vLength;
    vy /= vLength;
    const double t = std::tan(std::acos(std::max(-1.0, std::min(1.0, ux * vx + uy * vy))) / 2.0);
    const double k = radius / t;
    const double tp1X = w.east - k * ux;
    const double tp1Y = w.north - k * uy;
    const double tp2X = w.east - k * vx;
    const double tp2Y = w.north - k * vy;
    const double alpha = Angle(uy, ux);
    double x = tp1X + radius * std::cos(alpha + pi / 2);
    double y = tp1Y + radius * std::sin(alpha + pi / 2);
    if (std::fabs(std::hypot(tp2X - x, tp2Y - y) - radius) > 0.05) {
        x = tp1X + radius * std::cos(alpha - pi / 2);
        y = tp1Y + radius * std::sin(alpha - pi / 2);
    }
    const double a1 = Angle(tp1Y - y, tp1X - x);
    const double a2 = Angle(tp2Y - y, tp2X - x);
    double c1 = a1;
    double c2 = a2;
    while (c1 < a2)
        c1 += 2 * pi;
    while (c2 < a1)
        c2 += 2 * pi;
    const double ccw = std::fabs(c2 - a1);
    const double cw = std::fabs(c1 - a2);
    return {x, y, ccw > cw ? -cw : ccw, tp1X, tp1Y, tp2X, tp2Y};
}

} // namespace

class tst_ZrWptsTurns : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { ResetRouteState(); }

    void cleanup() { ResetRouteState(); }

    void rightAngles_data();
    void rightAngles();
    void straight_data();
    void straight();
    void straightAtRandom();
    void gentleRightTurnKeepsTheLeftCentre();
    void doublingBackLeavesTheFields();
    void almostDoublingBack();
    void halfACircleGoesCounterClockwise();
    void noLengthLeavesTheFields_data();
    void noLengthLeavesTheFields();
    void noRadiusClearsTheFields();
    void endsNeverTurn();
    void endsWithoutRadiusKeepTheirFields();
    void oneWaypointAndNone();
    void distancesOfTheTurnStay();
    void radiusLargerThanTheLegs();
    void notANumber();
    void randomRoutes_data();
    void randomRoutes();
    void agreesWithTheAngles_data();
    void agreesWithTheAngles();
};

void tst_ZrWptsTurns::rightAngles_data()
{
    QTest::addColumn<QVector<double>>("points"); // a, b; the waypoint is at 1000, 2000
    QTest::addColumn<QVector<double>>("turn"); // centre, rit / (π/2), tp1, tp2 from the waypoint
    QTest::addColumn<double>("radius");
    const auto row = [](const char* name, QVector<double> points, QVector<double> turn,
                         double radius = 10.0) { QTest::newRow(name) << points << turn << radius; };
    row("east then north", {-100, 0, 0, 100}, {-10, 10, 1, -10, 0, 0, 10});
    row("east then south", {-100, 0, 0, -100}, {-10, -10, -1, -10, 0, 0, -10});
    row("west then south", {100, 0, 0, -100}, {10, -10, 1, 10, 0, 0, -10});
    row("west then north", {100, 0, 0, 100}, {10, 10, -1, 10, 0, 0, 10});
    row("north then west", {0, -100, -100, 0}, {-10, -10, 1, 0, -10, -10, 0});
    row("north then east", {0, -100, 100, 0}, {10, -10, -1, 0, -10, 10, 0});
    row("south then east", {0, 100, 100, 0}, {10, 10, 1, 0, 10, 10, 0});
    row("south then west", {0, 100, -100, 0}, {-10, 10, -1, 0, 10, -10, 0});
    row("negative radius", {-100, 0, 0, 100}, {-10, 10, 1, -10, 0, 0, 10}, -10.0);
    row("half the radius", {-100, 0, 0, -100}, {-5, -5, -1, -5, 0, 0, -5}, 5.0);
}

void tst_ZrWptsTurns::rightAngles()
{
    QFETCH(QVector<double>, points);
    QFETCH(QVector<double>, turn);
    QFETCH(double, radius);
    const Corner corner(
        {1000 + points[0], 2000 + points[1]}, {1000, 2000}, {1000 + points[2], 2000 + points[3]}, radius);
    const ZrWpt& wpt = *corner.wpt;
    QVERIFY(Near(wpt.ricX, 1000 + turn[0], 1e-9));
    QVERIFY(Near(wpt.ricY, 2000 + turn[1], 1e-9));
    QVERIFY(Near(wpt.rit, turn[2] * pi / 2, 1e-9));
    QVERIFY(Near(wpt.tp1X, 1000 + turn[3], 1e-9));
    QVERIFY(Near(wpt.tp1Y, 2000 + turn[4], 1e-9));
    QVERIFY(Near(wpt.tp2X, 1000 + turn[5], 1e-9));
    QVERIFY(Near(wpt.tp2Y, 2000 + turn[6], 1e-9));
    QCOMPARE(wpt.r, radius);
}

void tst_ZrWptsTurns::straight_data()
{
    QTest::addColumn<double>("east");
    QTest::addColumn<double>("north");
    QTest::newRow("east") << 100.0 << 0.0;
    QTest::newRow("north") << 0.0 << 100.0;
    QTest::newRow("west") << -100.0 << 0.0;
    QTest::newRow("south") << 0.0 << -100.0;
    QTest::newRow("north-east") << 70.0 << 70.0;
    QTest::newRow("south-west") << -0.1 << -0.3;
}

void tst_ZrWptsTurns::straight()
{
    QFETCH(double, east);
    QFETCH(double, north);
    const Corner corner({-east, -north}, {0, 0}, {2 * east, 2 * north}, 10.0);
    const ZrWpt& wpt = *corner.wpt;
    for (const double value : {wpt.tp1X, wpt.tp1Y, wpt.tp2X, wpt.tp2Y, wpt.rit})
        QVERIFY(Near(value, 0.0, 1e-6));
    // The circle touches the path from the left.
    const double length = std::hypot(east, north);
    QVERIFY(Near(wpt.ricX, -10.0 * north / length, 1e-6));
    QVERIFY(Near(wpt.ricY, 10.0 * east / length, 1e-6));
}

/// Rounding takes the product of unit vectors beyond -1 for many exactly straight triples.
void tst_ZrWptsTurns::straightAtRandom()
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> metres(-500.0, 500.0);
    for (int i = 0; i < 10000; ++i) {
        const double east = metres(random);
        const double north = metres(random);
        const Corner corner({-east, -north}, {0, 0}, {east, north}, 25.0);
        for (const double value : {corner.wpt->tp1X, corner.wpt->tp1Y, corner.wpt->tp2X, corner.wpt->tp2Y})
            QVERIFY2(std::fabs(value) < 1e-5, qPrintable(QStringLiteral("%1 %2").arg(east).arg(north)));
        QVERIFY(std::fabs(corner.wpt->rit) < 1e-6);
    }
}

/// The second tangent point is within 0.05 m of the left circle when radius times angle squared is below
/// that: the turn stays on that circle, counter-clockwise by the same angle.
void tst_ZrWptsTurns::gentleRightTurnKeepsTheLeftCentre()
{
    const double angle = 0.05;
    const auto corner = [angle](double radius) {
        return Corner({-100, 0}, {0, 0}, {100 * std::cos(angle), -100 * std::sin(angle)}, radius);
    };
    const Corner below(corner(0.045 / (angle * angle)));
    QVERIFY(below.wpt->ricY > 0.0);
    QVERIFY(Near(below.wpt->rit, angle, 0.01 * angle));
    const Corner above(corner(0.055 / (angle * angle)));
    QVERIFY(above.wpt->ricY < 0.0);
    QVERIFY(Near(above.wpt->rit, -angle, 1e-9));
}

void tst_ZrWptsTurns::doublingBackLeavesTheFields()
{
    const Corner same({0, 0}, {100, 0}, {0, 0}, 10.0);
    QCOMPARE(Turn(*same.wpt), staleTurn);
    QCOMPARE(same.wpt->r, 10.0);
    const Corner farther({0, 0}, {0, 100}, {0, -300}, 10.0);
    QCOMPARE(Turn(*farther.wpt), staleTurn);
    const Corner noFormer({0, 0}, {0, 100}, {0, 50}, 10.0, noTurn);
    QCOMPARE(Turn(*noFormer.wpt), noTurn);
}

void tst_ZrWptsTurns::almostDoublingBack()
{
    // A hairpin of 170 degrees to the left.
    const double angle = 170.0 * pi / 180.0;
    const Corner corner({-1000, 0}, {0, 0}, {1000 * std::cos(angle), 1000 * std::sin(angle)}, 10.0);
    const double k = 10.0 * std::tan(angle / 2.0); // 114.3 m
    QVERIFY(Near(corner.wpt->tp1X, -k, 1e-9));
    QVERIFY(Near(corner.wpt->tp1Y, 0.0, 1e-9));
    QVERIFY(Near(corner.wpt->ricX, -k, 1e-9));
    QVERIFY(Near(corner.wpt->ricY, 10.0, 1e-9));
    QVERIFY(Near(corner.wpt->rit, angle, 1e-9));
}

/// Far from the origin of the grid the coordinates are so coarse that a hairpin comes out as half a circle.
void tst_ZrWptsTurns::halfACircleGoesCounterClockwise()
{
    const double far = 1099511627776.0; // 2^40: steps of 0.0001 m
    for (const double side : {1.0, -1.0}) {
        const GridPoint a{far - 100, far};
        const GridPoint w{far, far};
        const GridPoint b{far - 1e6, far + side};
        const Corner corner(a, w, b, 10.0);
        QCOMPARE(corner.wpt->ricY, far + 10.0 * side);
        QCOMPARE(corner.wpt->tp2Y, far + 20.0 * side);
        QCOMPARE(corner.wpt->tp2X, corner.wpt->tp1X);
        QCOMPARE(TurnByAngles(a, w, b, 10.0)[2], pi);
        QCOMPARE(corner.wpt->rit, pi);
    }
}

void tst_ZrWptsTurns::noLengthLeavesTheFields_data()
{
    QTest::addColumn<QVector<double>>("points");
    QTest::addColumn<double>("radius");
    for (const double radius : {10.0, 0.0}) {
        QTest::addRow("first leg, radius %g", radius) << QVector<double>{5, 5, 5, 5, 100, 0} << radius;
        QTest::addRow("second leg, radius %g", radius) << QVector<double>{0, 0, 100, 0, 100, 0} << radius;
        QTest::addRow("both, radius %g", radius) << QVector<double>{1, 2, 1, 2, 1, 2} << radius;
    }
}

void tst_ZrWptsTurns::noLengthLeavesTheFields()
{
    QFETCH(QVector<double>, points);
    QFETCH(double, radius);
    const Corner corner({points[0], points[1]}, {points[2], points[3]}, {points[4], points[5]}, radius);
    QCOMPARE(Turn(*corner.wpt), staleTurn);
    QCOMPARE(corner.wpt->r, radius);
}

void tst_ZrWptsTurns::noRadiusClearsTheFields()
{
    const Corner right({0, 0}, {100, 0}, {100, 100}, 0.0);
    QCOMPARE(Turn(*right.wpt), noTurn);
    const Corner back({0, 0}, {100, 0}, {0, 0}, -0.0);
    QCOMPARE(Turn(*back.wpt), noTurn);
}

void tst_ZrWptsTurns::endsNeverTurn()
{
    ZrWpts route;
    for (const GridPoint point : {GridPoint{0, 0}, GridPoint{100, 0}, GridPoint{100, 100}}) {
        ZrWpt* wpt = AppendGrid(route, point, 5.0);
        SetTurn(*wpt, staleTurn);
    }
    route.Recalc(true);
    QCOMPARE(At(route, 0)->r, 0.0);
    QCOMPARE(At(route, 1)->r, 5.0);
    QCOMPARE(At(route, 2)->r, 0.0);
    QCOMPARE(Turn(*At(route, 0)), noTurn);
    QCOMPARE(Turn(*At(route, 2)), noTurn);
    QVERIFY(Near(At(route, 1)->rit, pi / 2, 1e-6));

    // So it is after the ends have changed.
    At(route, 1)->r = -7.0;
    route.RemoveHead();
    route.CalcTangentPoints();
    QCOMPARE(At(route, 0)->r, 0.0);
    QCOMPARE(Turn(*At(route, 0)), noTurn);
}

void tst_ZrWptsTurns::endsWithoutRadiusKeepTheirFields()
{
    Corner corner({0, 0}, {100, 0}, {100, 100}, 10.0);
    for (const int index : {0, 2})
        SetTurn(*At(corner.route, index), staleTurn);
    corner.route.CalcTangentPoints();
    for (const int index : {0, 2})
        QCOMPARE(Turn(*At(corner.route, index)), staleTurn);
}

void tst_ZrWptsTurns::oneWaypointAndNone()
{
    ZrWpts route;
    route.CalcTangentPoints();
    QVERIFY(route.IsEmpty());
    ZrWpt* wpt = AppendGrid(route, {0, 0}, 5.0);
    SetTurn(*wpt, staleTurn);
    route.CalcTangentPoints();
    QCOMPARE(wpt->r, 0.0);
    QCOMPARE(Turn(*wpt), noTurn);
}

/// The distances belong to `Recalc`.
void tst_ZrWptsTurns::distancesOfTheTurnStay()
{
    const Corner corner({0, 0}, {100, 0}, {100, 100}, 10.0);
    QCOMPARE(corner.wpt->tp1Q, staleTurn[5]);
    QCOMPARE(corner.wpt->tp2Q, staleTurn[8]);
}

/// The tangent points lie before the first and beyond the second leg.
void tst_ZrWptsTurns::radiusLargerThanTheLegs()
{
    const Corner corner({0, 0}, {100, 0}, {100, 100}, 250.0);
    QVERIFY(Near(corner.wpt->tp1X, -150.0, 1e-9));
    QVERIFY(Near(corner.wpt->tp1Y, 0.0, 1e-9));
    QVERIFY(Near(corner.wpt->tp2X, 100.0, 1e-9));
    QVERIFY(Near(corner.wpt->tp2Y, 250.0, 1e-9));
    QVERIFY(Near(corner.wpt->rit, pi / 2, 1e-9));
}

void tst_ZrWptsTurns::notANumber()
{
    const Corner radius({0, 0}, {100, 0}, {100, 100}, NAN);
    QVERIFY(std::isnan(radius.wpt->tp1X));
    QVERIFY(std::isnan(radius.wpt->rit));
    const Corner infinite({0, 0}, {100, 0}, {100, 100}, INFINITY);
    QVERIFY(!std::isfinite(infinite.wpt->tp1X));
    const Corner place({0, NAN}, {100, 0}, {100, 100}, 10.0);
    QVERIFY(std::isnan(place.wpt->tp1Y));
    const Corner far({-1e308, 0}, {1e308, 0}, {1e308, 1e308}, 10.0);
    QVERIFY(!std::isfinite(far.wpt->tp1X));

    // At the ends the radius is reset whatever it is.
    ZrWpts route;
    AppendGrid(route, {0, 0}, NAN);
    AppendGrid(route, {9, 9}, INFINITY);
    route.CalcTangentPoints();
    QCOMPARE(At(route, 0)->r, 0.0);
    QCOMPARE(At(route, 1)->r, 0.0);
}

void tst_ZrWptsTurns::randomRoutes_data()
{
    QTest::addColumn<u32>("seed");
    QTest::addColumn<double>("step"); // longest leg, metres
    QTest::addColumn<double>("origin"); // added to the northing, metres
    QTest::newRow("survey") << 1U << 400.0 << 5550000.0;
    QTest::newRow("short legs") << 2U << 2.0 << 0.0;
    QTest::newRow("transit") << 3U << 50000.0 << 5550000.0;
}

/// What a rounded turn is: both tangent points on the lines of the legs, as far from the waypoint as the
/// change of heading says, at the radius from the centre, and the sweep between them that change.
void tst_ZrWptsTurns::randomRoutes()
{
    QFETCH(u32, seed);
    QFETCH(double, step);
    QFETCH(double, origin);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> metres(-step, step);
    std::uniform_real_distribution<double> radii(-step / 5.0, step / 5.0);
    int left = 0;
    int right = 0;
    int gentle = 0;
    for (int run = 0; run < 200; ++run) {
        ZrWpts route;
        QVector<GridPoint> points;
        GridPoint at{500000.0, origin};
        for (int i = 0; i < 30; ++i) {
            at.east += metres(random);
            at.north += metres(random);
            points.append(at);
            auto* wpt = new ZrWpt;
            wpt->x = at.east;
            wpt->y = at.north;
            wpt->r = radii(random);
            route.AddTail(wpt);
        }
        route.CalcTangentPoints();
        const QVector<ZrWpt*> items = Items(route);
        for (int i = 1; i + 1 < items.size(); ++i) {
            const ZrWpt& wpt = *items[i];
            const double radius = std::fabs(wpt.r);
            const double angle = TurnAngle(points[i - 1], points[i], points[i + 1]);
            const double reach = radius * std::tan(std::fabs(angle) / 2.0);
            if (std::fabs(angle) > 3.1 || radius == 0.0)
                continue; // next to doubling back nothing is exact
            const OnLine in(points[i - 1], points[i], wpt.tp1X, wpt.tp1Y);
            const OnLine out(points[i + 1], points[i], wpt.tp2X, wpt.tp2Y);
            const double exact = 1e-7 + 1e-9 * reach;
            QVERIFY(Near(in.behind, reach, exact));
            QVERIFY(Near(in.off, 0.0, exact));
            QVERIFY(Near(out.behind, reach, exact));
            QVERIFY(Near(out.off, 0.0, exact));
            QVERIFY(Near(Distance(wpt.ricX, wpt.ricY, wpt.tp1X, wpt.tp1Y), radius, exact));
            QVERIFY(Near(Distance(wpt.ricX, wpt.ricY, wpt.tp2X, wpt.tp2Y), radius, 0.05));
            // How far off the circle to the left of the path the second tangent point of a right turn is.
            const double off = radius * (std::sqrt(5.0 - 4.0 * std::cos(angle)) - 1.0);
            const double sweepExact = 1e-9 + 1e-8 / radius;
            if (angle > 0.0) {
                ++left;
                QVERIFY(Near(wpt.rit, angle, sweepExact));
            } else if (off > 0.0501) {
                ++right;
                QVERIFY(Near(wpt.rit, angle, sweepExact));
            } else if (off < 0.0499) {
                ++gentle;
                QVERIFY(Near(wpt.rit, std::atan2(std::sin(-angle), 2.0 - std::cos(angle)), sweepExact));
            }
        }
    }
    QVERIFY(left > 1000);
    QVERIFY(right > 1000);
    QVERIFY(gentle < right);
}

void tst_ZrWptsTurns::agreesWithTheAngles_data()
{
    QTest::addColumn<double>("largest"); // change of heading, degrees
    QTest::addColumn<double>("origin"); // metres
    for (const double origin : {0.0, 5550000.0}) {
        QTest::addRow("hairpins, %g", origin) << 179.9 << origin;
        QTest::addRow("turns, %g", origin) << 120.0 << origin;
        QTest::addRow("gentle, %g", origin) << 2.0 << origin;
        QTest::addRow("nearly straight, %g", origin) << 1e-6 << origin;
    }
}

/// The turn is computed without its angles, to the same result.
void tst_ZrWptsTurns::agreesWithTheAngles()
{
    QFETCH(double, largest);
    QFETCH(double, origin);
    std::mt19937 random(11);
    std::uniform_real_distribution<double> headings(-pi, pi);
    std::uniform_real_distribution<double> changes(-largest * pi / 180.0, largest * pi / 180.0);
    std::uniform_real_distribution<double> metres(1.0, 2000.0);
    std::uniform_real_distribution<double> radii(-100.0, 100.0);
    const GridPoint w{500000.0, origin};
    double worst = 0.0; // in units of the allowed difference
    for (int i = 0; i < 20000; ++i) {
        // Every fourth leg runs exactly along the grid.
        const double in = i % 4 == 0 ? pi / 2 * std::floor(headings(random)) : headings(random);
        const double out = in + changes(random);
        const double before = metres(random);
        const double behind = metres(random);
        const double r = radii(random);
        const GridPoint a{w.east - before * std::cos(in), w.north - before * std::sin(in)};
        const GridPoint b{w.east + behind * std::cos(out), w.north + behind * std::sin(out)};
        const Corner corner(a, w, b, r);
        const QVector<double> expected = TurnByAngles(a, w, b, r);
        const QVector<double> turn{corner.wpt->ricX, corner.wpt->ricY, corner.wpt->rit, corner.wpt->tp1X,
            corner.wpt->tp1Y, corner.wpt->tp2X, corner.wpt->tp2Y};
        const double reach = std::hypot(expected[3] - w.east, expected[4] - w.north);
        const double inMetres = 4e-9 + 1e-12 * reach;
        for (int j = 0; j < turn.size(); ++j) {
            const double allowed = j == 2 ? 1e-13 + 4.0 * inMetres / std::fabs(r) : inMetres;
            worst = std::max(worst, std::fabs(turn[j] - expected[j]) / allowed);
        }
    }
    QVERIFY2(worst <= 1.0, qPrintable(QString::number(worst)));
}

QTEST_GUILESS_MAIN(tst_ZrWptsTurns)
#include "tst_ZrWptsTurns.moc"
