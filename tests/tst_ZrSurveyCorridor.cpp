// Corridors along guides of many shapes. Guides are drawn and results are measured on a plane that shares no
// formula with the planner.

#include "SurveyChecks.h"
#include "ZrKit/planning/ZrSurveyCorridor.h"

#include <QtTest/QtTest>

#include <cmath>
#include <random>

namespace {

using Settings = ZrSurveyCorridorSettings;

constexpr double tolerance = 0.005; ///< metres, for what planes differ over 2 km

} // namespace

Q_DECLARE_METATYPE(Plane)

class tst_ZrSurveyCorridor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void straight();
    void rightAngle();
    void withoutCentreLine();
    void entryAndOrder_data();
    void entryAndOrder();
    void random_data();
    void random();
    void overshoot();
    void tightBends_data();
    void tightBends();
    void curveWithinItsRadius();
    void bendsWithRadius();
    void closeLinesGetLoops();
    void appended();

private:
    ZrSurveyPlan Planned(const Plane& guide, const Settings& settings)
    {
        ZrSurveyCorridor corridor;
        if (!corridor.Make(m_plane.From(guide), settings))
            QTest::qFail(qPrintable(corridor.Error()), __FILE__, __LINE__);
        return corridor.Plan();
    }

    double Within(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(m_random);
    }

    GeoPlane m_plane{{48.4789, -68.5147}};
    std::mt19937 m_random{20250815};
};

void tst_ZrSurveyCorridor::straight()
{
    Settings settings;
    settings.lineSpacing = 30.0;
    settings.linesLeft = 1;
    settings.linesRight = 2;
    const ZrSurveyPlan plan = Planned({{0, 0}, {400, 0}}, settings);
    QVERIFY(std::fabs(plan.heading - 90.0) < 0.01);
    QCOMPARE(plan.lines.size(), std::size_t{4});
    QVERIFY(std::fabs(plan.lineLength - 1600.0) < 0.02);
    QVERIFY(std::fabs(plan.pathLength - 1690.0) < 0.02);
    for (std::size_t i = 0; i < 4; ++i) {
        const Plane line = m_plane.To(plan.lines[i].points);
        const double y = 30.0 - 30.0 * static_cast<double>(i);
        const double x = i % 2 == 0 ? 0.0 : 400.0;
        QVERIFY(Apart(line.front(), {x, y}) < tolerance);
        QVERIFY(Apart(line.back(), {400.0 - x, y}) < tolerance);
        QCOMPARE(plan.lines[i].number, static_cast<int>(i) + 1);
    }
    QCOMPARE(survey::Inconsistency(plan, m_plane), QString());
}

void tst_ZrSurveyCorridor::rightAngle()
{
    // North, then east: lines to the left go around the outside.
    Settings settings;
    settings.lineSpacing = 20.0;
    const ZrSurveyPlan plan = Planned({{0, -200}, {0, 0}, {300, 0}}, settings);
    QCOMPARE(plan.lines.size(), std::size_t{3});
    const std::vector<Plane> expected{{{-20, -200}, {-20, 20}, {300, 20}}, {{300, 0}, {0, 0}, {0, -200}},
        {{20, -200}, {20, -20}, {300, -20}}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const Plane line = m_plane.To(plan.lines[i].points);
        QCOMPARE(line.size(), expected[i].size());
        for (std::size_t j = 0; j < line.size(); ++j)
            QVERIFY(Apart(line[j], expected[i][j]) < tolerance);
    }
    QStringList names;
    for (const ZrSurveyWaypoint& wpt : plan.waypoints)
        names.append(wpt.name);
    QCOMPARE(names.join(QLatin1Char(',')), QStringLiteral("L1 S,L1 B1,L1 E,L2 S,L2 B1,L2 E,L3 S,L3 B1,L3 E"));
    QCOMPARE(survey::Inconsistency(plan, m_plane), QString());
}

void tst_ZrSurveyCorridor::withoutCentreLine()
{
    Settings settings;
    settings.centreLine = false;
    settings.lineSpacing = 20.0;
    settings.linesLeft = 2;
    const ZrSurveyPlan plan = Planned({{0, 0}, {0, 100}}, settings);
    QCOMPARE(plan.lines.size(), std::size_t{3});
    const double places[] = {-40.0, -20.0, 20.0};
    for (std::size_t i = 0; i < 3; ++i)
        QVERIFY(std::fabs(m_plane.To(plan.lines[i].Start()).x - places[i]) < tolerance);
    settings.linesLeft = settings.linesRight = 0;
    settings.centreLine = true;
    const ZrSurveyPlan one = Planned({{0, 0}, {0, 100}}, settings);
    QCOMPARE(one.lines.size(), std::size_t{1});
    QVERIFY(Apart(m_plane.To(one.lines[0].End()), {0.0, 100.0}) < tolerance);
}

void tst_ZrSurveyCorridor::entryAndOrder_data()
{
    QTest::addColumn<int>("entry");
    QTest::addColumn<int>("order");
    QTest::addColumn<double>("x"); // of the start of line 1
    QTest::addColumn<double>("y");
    QTest::addColumn<QString>("numbers");
    const int next = Settings::Next;
    QTest::newRow("near left") << int(Settings::NearLeft) << next << -40.0 << 0.0 << "1 2 3 4 5";
    QTest::newRow("near right") << int(Settings::NearRight) << next << 40.0 << 0.0 << "1 2 3 4 5";
    QTest::newRow("far left") << int(Settings::FarLeft) << next << -40.0 << 500.0 << "1 2 3 4 5";
    QTest::newRow("far right") << int(Settings::FarRight) << next << 40.0 << 500.0 << "1 2 3 4 5";
    QTest::newRow("every other") << int(Settings::NearLeft) << int(Settings::EveryOther) << -40.0 << 0.0
                                 << "1 3 5 4 2";
    QTest::newRow("even then odd") << int(Settings::FarRight) << int(Settings::EvenThenOdd) << 20.0 << 500.0
                                   << "2 4 1 3 5";
}

void tst_ZrSurveyCorridor::entryAndOrder()
{
    QFETCH(int, entry);
    QFETCH(int, order);
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(QString, numbers);
    Settings settings;
    settings.lineSpacing = 20.0;
    settings.linesLeft = settings.linesRight = 2;
    settings.entry = static_cast<Settings::eEntry>(entry);
    settings.order = static_cast<Settings::eOrder>(order);
    const ZrSurveyPlan plan = Planned({{0, 0}, {0, 250}, {0, 500}}, settings);
    QVERIFY(Apart(m_plane.To(plan.lines.front().Start()), {x, y}) < tolerance);
    QStringList run;
    for (const ZrSurveyLine& line : plan.lines)
        run.append(QString::number(line.number));
    QCOMPARE(run.join(QLatin1Char(' ')), numbers);
    for (std::size_t i = 1; i < plan.lines.size(); ++i) {
        // Directions alternate.
        QVERIFY(std::fabs(m_plane.To(plan.lines[i - 1].End()).y - m_plane.To(plan.lines[i].Start()).y)
            < tolerance);
    }
}

void tst_ZrSurveyCorridor::random_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::newRow("north-west") << 48.4789 << -68.5147;
    QTest::newRow("equator") << 0.0 << 9.0;
    QTest::newRow("south-east") << -33.9 << 151.2;
    QTest::newRow("antimeridian") << -17.5 << 179.9999;
    QTest::newRow("near the north pole") << 88.9 << 40.0;
}

void tst_ZrSurveyCorridor::random()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    const GeoPlane plane({lat, lng});
    for (int round = 0; round < 25; ++round) {
        constexpr double sharpest = 1.05; // radians, of a bend
        Plane guide{{0.0, 0.0}};
        double heading = Within(0.0, 2.0 * geoPi);
        for (int legs = 1 + static_cast<int>(m_random() % 6); legs > 0; --legs) {
            const double length = Within(200.0, 400.0);
            const ZrLocalPoint last = guide.back();
            guide.push_back({last.x + length * std::sin(heading), last.y + length * std::cos(heading)});
            heading += Within(-sharpest, sharpest);
        }
        Settings settings;
        settings.lineSpacing = Within(5.0, 30.0);
        settings.linesLeft = static_cast<int>(m_random() % 4);
        settings.linesRight = static_cast<int>(m_random() % 4);
        settings.entry = static_cast<Settings::eEntry>(m_random() % 4);
        settings.order = static_cast<Settings::eOrder>(m_random() % 4);
        ZrSurveyCorridor corridor;
        QVERIFY2(corridor.Make(plane.From(guide), settings), qPrintable(corridor.Error()));
        const ZrSurveyPlan& plan = corridor.Plan();
        QCOMPARE(static_cast<int>(plan.lines.size()), settings.linesLeft + settings.linesRight + 1);
        QCOMPARE(survey::Inconsistency(plan, plane), QString());

        for (const ZrSurveyLine& line : plan.lines) {
            const bool fromLeft = settings.entry == Settings::NearLeft || settings.entry == Settings::FarLeft;
            const int steps
                = fromLeft ? line.number - 1 - settings.linesLeft : settings.linesRight + 1 - line.number;
            const double off = std::abs(steps) * settings.lineSpacing;
            const Plane points = plane.To(line.points);
            QCOMPARE(points.size(), guide.size());
            // Legs are parallel to the guide and lie beside it, its bends on the halving line of the angle.
            for (std::size_t i = 0; i < guide.size(); ++i) {
                const std::size_t j
                    = Apart(points.front(), guide.front()) < Apart(points.back(), guide.front())
                    ? i
                    : guide.size() - 1 - i;
                if (i > 0) {
                    const ZrLocalPoint a = guide[i - 1];
                    const ZrLocalPoint b = guide[i];
                    const double along = Apart(a, b);
                    const double side
                        = ((points[j].x - a.x) * (b.y - a.y) - (points[j].y - a.y) * (b.x - a.x)) / along;
                    QVERIFY(std::fabs(side - steps * settings.lineSpacing) < tolerance);
                }
                if (i + 1 < guide.size()) {
                    const ZrLocalPoint a = guide[i];
                    const ZrLocalPoint b = guide[i + 1];
                    const double along = Apart(a, b);
                    const double side
                        = ((points[j].x - a.x) * (b.y - a.y) - (points[j].y - a.y) * (b.x - a.x)) / along;
                    QVERIFY(std::fabs(side - steps * settings.lineSpacing) < tolerance);
                }
            }
            QVERIFY(std::fabs(Apart(points.front(), guide.front()) - off) < tolerance
                || std::fabs(Apart(points.front(), guide.back()) - off) < tolerance);
        }

        // All that lies beside the guide is within half a spacing of a line, but for the joints at the bends,
        // where it is half a spacing by the cosine of half the bend.
        for (int i = 0; i < 200; ++i) {
            const std::size_t leg = 1 + m_random() % (guide.size() - 1);
            const ZrLocalPoint a = guide[leg - 1];
            const ZrLocalPoint b = guide[leg];
            const double share = Within(0.0, 1.0);
            const double side
                = Within(-(settings.linesLeft + 0.5), settings.linesRight + 0.5) * settings.lineSpacing;
            const double length = Apart(a, b);
            const ZrLocalPoint p{a.x + (b.x - a.x) * share + (b.y - a.y) / length * side,
                a.y + (b.y - a.y) * share - (b.x - a.x) / length * side};
            // Where another leg is nearer, it may be beyond that one's lines.
            if (ToPolyline(p, guide) < std::fabs(side) - 1e-6)
                continue;
            const double joint = (std::max(settings.linesLeft, settings.linesRight) + 0.5)
                * settings.lineSpacing * std::tan(sharpest / 2.0);
            const bool atBend = share * length < joint || (1.0 - share) * length < joint;
            const double most = settings.lineSpacing / 2.0 / (atBend ? std::cos(sharpest / 2.0) : 1.0);
            const double off = survey::ToLines(p, plan, plane);
            QVERIFY2(off <= most + tolerance, qPrintable(QString::number(off)));
        }
    }
}

void tst_ZrSurveyCorridor::overshoot()
{
    Settings settings;
    settings.overshoot = 35.0;
    settings.linesLeft = 0;
    settings.linesRight = 0;
    const ZrSurveyPlan plan = Planned({{0, -200}, {0, 0}, {300, 0}}, settings);
    const Plane line = m_plane.To(plan.lines[0].points);
    QCOMPARE(line.size(), std::size_t{3});
    QVERIFY(Apart(line[0], {0.0, -235.0}) < tolerance);
    QVERIFY(Apart(line[1], {0.0, 0.0}) < tolerance);
    QVERIFY(Apart(line[2], {335.0, 0.0}) < tolerance);
}

void tst_ZrSurveyCorridor::tightBends_data()
{
    QTest::addColumn<Plane>("guide");
    QTest::addColumn<Plane>("inner"); // the line 50 m to the right; empty if there is no room for it
    QTest::newRow("leg of 60 m between two bends of 45 degrees")
        << Plane{{0, -300}, {0, 0}, {42.4264, 42.4264}, {342.4264, 42.4264}}
        << Plane{{50, -300}, {50, -20.7107}, {63.1371, -7.5736}, {342.4264, -7.5736}};
    // 30 m is less than two times 50 · tan(22.5°): both neighbours meet where it would have been.
    QTest::newRow("leg of 30 m between two bends of 45 degrees") << Plane{{0, -300}, {0, 0},
        {21.2132, 21.2132}, {321.2132, 21.2132}} << Plane{{50, -300}, {50, -28.7868}, {321.2132, -28.7868}};
    QTest::newRow("first leg too short") << Plane{{0, 0}, {0, 40}, {300, 40}} << Plane{{0, -10}, {300, -10}};
    QTest::newRow("last leg too short") << Plane{{-300, 0}, {0, 0}, {0, -40}} << Plane{{-300, -50}, {0, -50}};
    QTest::newRow("two short legs at the start")
        << Plane{{0, 0}, {0, 20}, {20, 40}, {300, 40}} << Plane{{0, -10}, {300, -10}};
    // Once the first (last) leg is gone, the next one has room.
    QTest::newRow("room for the second leg") << Plane{{0, 0}, {0, 10}, {60, 10}, {210, -249.8076}}
                                             << Plane{{0, -40}, {31.1325, -40}, {166.6987, -274.8076}};
    QTest::newRow("room for the last but one") << Plane{{-210, -249.8076}, {-60, 10}, {0, 10}, {0, 0}}
                                               << Plane{{-166.6987, -274.8076}, {-31.1325, -40}, {0, -40}};
    // Without its short leg this guide bends by 160 degrees.
    QTest::newRow("too sharp a bend left")
        << Plane{{0, 0}, {0, 300}, {30, 300}, {132.606, 18.0923}} << Plane{};
    // A channel that turns back on itself 60 m farther: no line fits 50 m within.
    QTest::newRow("there and back") << Plane{{0, 0}, {0, 300}, {60, 300}, {60, 0}} << Plane{};
}

void tst_ZrSurveyCorridor::tightBends()
{
    QFETCH(Plane, guide);
    QFETCH(Plane, inner);
    Settings settings;
    settings.linesLeft = 0;
    settings.centreLine = false;
    ZrSurveyCorridor corridor;
    const bool made = corridor.Make(m_plane.From(guide), settings);
    if (inner.empty()) {
        QVERIFY(!made);
        QCOMPARE(corridor.Error(),
            QStringLiteral("The bends of the guide leave no room for the line 50 m to the right of it."));
        return;
    }
    QVERIFY2(made, qPrintable(corridor.Error()));
    const Plane line = m_plane.To(corridor.Plan().lines[0].points);
    QCOMPARE(line.size(), inner.size());
    for (std::size_t i = 0; i < line.size(); ++i)
        QVERIFY2(Apart(line[i], inner[i]) < tolerance,
            qPrintable(QStringLiteral("%1: %2, %3").arg(i).arg(line[i].x).arg(line[i].y)));
}

void tst_ZrSurveyCorridor::curveWithinItsRadius()
{
    // A curve of 100 m radius in steps of one degree, between straight legs, to the right; the line 120 m to
    // the right lies beyond its centre.
    Plane guide{{-100.0, -500.0}};
    for (int i = 0; i <= 90; ++i) {
        const double angle = i / 180.0 * geoPi;
        guide.push_back({-100.0 * std::cos(angle), 100.0 * std::sin(angle)});
    }
    guide.push_back({500.0, 100.0});
    Settings settings;
    settings.lineSpacing = 30.0;
    settings.linesLeft = 4;
    settings.linesRight = 4;
    const ZrSurveyPlan plan = Planned(guide, settings);
    QCOMPARE(plan.lines.size(), std::size_t{9});
    for (const ZrSurveyLine& line : plan.lines) {
        const Plane points = m_plane.To(line.points);
        const double off = 30.0 * (line.number - 5);
        for (std::size_t i = 1; i < points.size(); ++i)
            QVERIFY(Apart(points[i - 1], points[i]) > 0.0005);
        if (line.number < 9) {
            for (const ZrLocalPoint& p : points)
                QVERIFY2(std::fabs(ToPolyline(p, guide) - std::fabs(off)) < 0.1, qPrintable(line.Name()));
            continue;
        }
        // What is left are the two straight legs, which meet.
        QCOMPARE(points.size(), std::size_t{3});
        QVERIFY(Apart(points[1], {20.0, -20.0}) < tolerance);
    }
}

void tst_ZrSurveyCorridor::bendsWithRadius()
{
    Settings settings;
    settings.turnRadius = 15.0;
    settings.lineSpacing = 40.0;
    const ZrSurveyPlan plan = Planned({{0, -200}, {0, 0}, {300, 0}, {400, -200}}, settings);
    QVERIFY(plan.findings.empty());
    QCOMPARE(survey::TurnFlaw(plan), QString());
    QCOMPARE(survey::Inconsistency(plan, m_plane), QString());
    int bends = 0;
    for (const ZrSurveyWaypoint& wpt : plan.waypoints) {
        if (wpt.role == ZrSurveyWaypoint::LineBend) {
            QCOMPARE(wpt.radius, 15.0);
            ++bends;
        }
    }
    QCOMPARE(bends, 6);

    // Two bends of 90 degrees 50 m apart: the first arc takes 30 m of the leg, the second one finds no room.
    settings.turnRadius = 30.0;
    settings.linesLeft = settings.linesRight = 0;
    const ZrSurveyPlan tight = Planned({{0, -200}, {0, 0}, {50, 0}, {50, 200}}, settings);
    QCOMPARE(tight.findings.size(), std::size_t{1});
    QCOMPARE(int(tight.findings[0].kind), int(ZrSurveyFinding::BendTooTight));
    QCOMPARE(tight.findings[0].line, std::size_t{0});
    QCOMPARE(tight.findings[0].text, QStringLiteral("Bend L1 B2 has no room for a turn of 30 m."));
    QCOMPARE(tight.waypoints[1].radius, 30.0);
    QCOMPARE(tight.waypoints[2].radius, 0.0);
    QCOMPARE(survey::TurnFlaw(tight), QString());
}

void tst_ZrSurveyCorridor::closeLinesGetLoops()
{
    Settings settings;
    settings.turnRadius = 15.0;
    settings.lineSpacing = 20.0;
    const ZrSurveyPlan plan = Planned({{0, -200}, {0, 0}, {300, 0}}, settings);
    QCOMPARE(plan.findings.size(), std::size_t{2});
    QCOMPARE(int(plan.findings[0].kind), int(ZrSurveyFinding::LoopTurn));
    QCOMPARE(plan.waypoints.size(), std::size_t{9 + 8});
    QCOMPARE(survey::TurnFlaw(plan), QString());
    settings.order = Settings::EveryOther; // 1, 3, 2
    QCOMPARE(Planned({{0, -200}, {0, 0}, {300, 0}}, settings).findings.size(), std::size_t{1});
}

void tst_ZrSurveyCorridor::appended()
{
    Settings settings;
    settings.type = eZrWptYellow;
    settings.z = 12.0;
    ZrWpts route;
    const QUuid id = Planned({{0, -200}, {0, 0}, {300, 0}}, settings).AppendTo(route);
    QVERIFY(!id.isNull());
    QCOMPARE(route.GetCount(), 9);
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        QCOMPARE(wpt->gridId, id);
        QCOMPARE(wpt->colour, QColor(Qt::yellow));
        QCOMPARE(wpt->z, 12.0);
    }
}

QTEST_APPLESS_MAIN(tst_ZrSurveyCorridor)
#include "tst_ZrSurveyCorridor.moc"
