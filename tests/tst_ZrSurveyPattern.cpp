// Survey patterns against what they promise, over random areas in several places of the earth. Areas are
// drawn and results are measured on a plane that shares no formula with the planner.

#include "SurveyChecks.h"
#include "ZrKit/planning/ZrSurveyPattern.h"

#include <QtTest/QtTest>

#include <algorithm>

namespace {

using Settings = ZrSurveyPatternSettings;

constexpr double tolerance = 0.005; ///< metres, for what planes differ over 2 km
constexpr double unspent = 0.01; ///< metres, half of what a width may exceed its lines

Plane Rectangle(double width, double height, double heading = 0.0)
{
    // Along the heading lies the height.
    const double s = std::sin(heading / 180.0 * geoPi);
    const double c = std::cos(heading / 180.0 * geoPi);
    Plane ring;
    for (const ZrLocalPoint p : {ZrLocalPoint{-1, -1}, {-1, 1}, {1, 1}, {1, -1}}) {
        const double across = p.x * width / 2.0;
        const double along = p.y * height / 2.0;
        ring.push_back({along * s + across * c, along * c - across * s});
    }
    return ring;
}

/// The place of a point along and across a heading.
ZrLocalPoint Seen(ZrLocalPoint p, double heading)
{
    const double s = std::sin(heading / 180.0 * geoPi);
    const double c = std::cos(heading / 180.0 * geoPi);
    return {p.x * s + p.y * c, p.x * c - p.y * s};
}

} // namespace

class tst_ZrSurveyPattern : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void square();
    void namesAndIds();
    void waypointsCarrySettings();
    void appendsToWhatIsThere();
    void emptyPlanAddsNothing();
    void colours();
    void entryCorner_data();
    void entryCorner();
    void heading_data();
    void heading();
    void longestSide_data();
    void longestSide();
    void lastLaneIsCovered_data();
    void lastLaneIsCovered();
    void alternateSpacing_data();
    void alternateSpacing();
    void crosshatch();
    void overshootJoinsPieces();
    void concaveLinesFallIntoPieces();
    void smallestLength();
    void closeLines();
    void racetrackNeedsNoLoops();
    void repeatedCorners();
    void acrossTheAntimeridian();

private:
    static ZrArea Area(const GeoPlane& plane, const Plane& ring)
    {
        return {QStringLiteral("area"), plane.From(ring)};
    }

    /// Plans in the plane around 48 N; the test fails with the planner's text.
    ZrSurveyPlan Planned(const Plane& ring, const Settings& settings)
    {
        ZrSurveyPattern pattern;
        if (!pattern.Make(Area(m_plane, ring), settings))
            QTest::qFail(qPrintable(pattern.Error()), __FILE__, __LINE__);
        return pattern.Plan();
    }

    GeoPlane m_plane{{48.4789, -68.5147}};
};

void tst_ZrSurveyPattern::square()
{
    Settings settings;
    settings.lineSpacing = 25.0;
    settings.heading = 0.0;
    const ZrSurveyPlan plan = Planned(Rectangle(100.0, 100.0), settings);
    QCOMPARE(plan.heading, 0.0);
    QCOMPARE(plan.lines.size(), std::size_t{4});
    QCOMPARE(plan.waypoints.size(), std::size_t{8});
    QVERIFY(plan.findings.empty());
    QVERIFY(std::fabs(plan.lineLength - 400.0) < 0.01);
    QVERIFY(std::fabs(plan.pathLength - 475.0) < 0.01);
    for (std::size_t i = 0; i < 4; ++i) {
        const Plane line = m_plane.To(plan.lines[i].points);
        const double x = -37.5 + 25.0 * static_cast<double>(i);
        const double y = i % 2 == 0 ? -50.0 : 50.0;
        QVERIFY(Apart(line.front(), {x, y}) < tolerance);
        QVERIFY(Apart(line.back(), {x, -y}) < tolerance);
        QCOMPARE(plan.lines[i].number, static_cast<int>(i) + 1);
        QCOMPARE(plan.lines[i].piece, 0);
        QVERIFY(!plan.lines[i].cross);
    }
    QCOMPARE(survey::Inconsistency(plan, m_plane), QString());
}

void tst_ZrSurveyPattern::namesAndIds()
{
    Settings settings;
    settings.lineSpacing = 50.0;
    settings.heading = 0.0;
    settings.turnRadius = 10.0;
    const ZrSurveyPlan plan = Planned(Rectangle(100.0, 100.0), settings);
    ZrWpts route;
    const QUuid id = plan.AppendTo(route);
    QVERIFY(!id.isNull());
    QVERIFY(plan.AppendTo(route) != id);
    QStringList names;
    QSet<QUuid> uuids;
    int count = 0;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        uuids.insert(wpt->uuid);
        if (count++ < 6) {
            names.append(wpt->Name());
            QCOMPARE(wpt->gridId, id);
        } else {
            QVERIFY(wpt->gridId != id && !wpt->gridId.isNull());
        }
    }
    QCOMPARE(count, 12);
    QCOMPARE(uuids.size(), 12);
    QCOMPARE(names,
        (QStringList{QStringLiteral("L1 S"), QStringLiteral("L1 E"), QStringLiteral("L1 T1"),
            QStringLiteral("L1 T2"), QStringLiteral("L2 S"), QStringLiteral("L2 E")}));
}

void tst_ZrSurveyPattern::waypointsCarrySettings()
{
    Settings settings;
    settings.turnRadius = 12.5;
    settings.type = eZrWptRed;
    settings.spdType = 4;
    settings.speed = 1.75;
    settings.zType = 2;
    settings.z = 31.5;
    settings.alt = 6.25;
    ZrWpts route;
    route.linked = true;
    Planned(Rectangle(120.0, 200.0), settings).AppendTo(route);
    QCOMPARE(route.GetCount(), 10);
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        QCOMPARE(int(wpt->type), int(eZrWptRed));
        QCOMPARE(wpt->colour, QColor(Qt::red));
        QCOMPARE(wpt->spdType, 4);
        QCOMPARE(wpt->speed, 1.75);
        QCOMPARE(wpt->zType, 2);
        QCOMPARE(wpt->z, 31.5);
        QCOMPARE(wpt->alt, 6.25);
        QCOMPARE(wpt->r, wpt->name.contains(QLatin1Char('T')) ? 12.5 : 0.0);
    }
    QCOMPARE(route.GetHead()->pseudo, QStringLiteral("Start Mission"));
    QCOMPARE(route.GetTail()->pseudo, QStringLiteral("Finish Mission"));
    QVERIFY(route.GetTail()->q > 0.0); // recomputed
}

void tst_ZrSurveyPattern::appendsToWhatIsThere()
{
    ZrWpts route;
    const ZrWpt* first = route.Add(48.47, -68.51, eZrWptYellow, ZrWpts::eAddTail);
    Planned(Rectangle(100.0, 100.0), {}).AppendTo(route);
    QCOMPARE(route.GetCount(), 5);
    QCOMPARE(route.GetHead(), first);
    QVERIFY(first->gridId.isNull());
    QCOMPARE(first->colour, QColor(Qt::yellow));
    QVERIFY(!route.linked);
    QCOMPARE(route.GetTail()->pseudo, QStringLiteral("Mkr: 5"));
}

void tst_ZrSurveyPattern::emptyPlanAddsNothing()
{
    ZrWpts route;
    QVERIFY(ZrSurveyPlan().AppendTo(route).isNull());
    QVERIFY(route.IsEmpty());
}

void tst_ZrSurveyPattern::colours()
{
    for (const eZrWptType type : {eZrWptBlue, eZrWptRed, eZrWptYellow, static_cast<eZrWptType>(9)}) {
        Settings settings;
        settings.type = type;
        ZrWpts route;
        Planned(Rectangle(100.0, 100.0), settings).AppendTo(route);
        ZrWpts other;
        QCOMPARE(route.GetHead()->colour, other.Add(0.0, 0.0, type, ZrWpts::eAddTail)->colour);
        QCOMPARE(int(route.GetHead()->type), int(type));
    }
}

void tst_ZrSurveyPattern::entryCorner_data()
{
    QTest::addColumn<int>("entry");
    QTest::addColumn<int>("order");
    QTest::addColumn<double>("along"); // sign
    QTest::addColumn<double>("across");
    const char* const orders[] = {"next", "every other", "even then odd", "racetrack"};
    for (int order = 0; order < 4; ++order) {
        QTest::addRow("near left, %s", orders[order]) << int(Settings::NearLeft) << order << -1.0 << -1.0;
        QTest::addRow("near right, %s", orders[order]) << int(Settings::NearRight) << order << -1.0 << 1.0;
        QTest::addRow("far left, %s", orders[order]) << int(Settings::FarLeft) << order << 1.0 << -1.0;
        QTest::addRow("far right, %s", orders[order]) << int(Settings::FarRight) << order << 1.0 << 1.0;
    }
}

void tst_ZrSurveyPattern::entryCorner()
{
    QFETCH(int, entry);
    QFETCH(int, order);
    QFETCH(double, along);
    QFETCH(double, across);
    for (const double heading : {0.0, 37.0, 180.0, 290.0}) {
        Settings settings;
        settings.heading = heading;
        settings.lineSpacing = 20.0;
        settings.entry = static_cast<Settings::eEntry>(entry);
        settings.order = static_cast<Settings::eOrder>(order);
        const ZrSurveyPlan plan = Planned(Rectangle(200.0, 300.0, heading), settings);
        QCOMPARE(plan.lines.size(), std::size_t{10});
        // Numbers count from the corner's side.
        bool backward = along > 0.0;
        for (const ZrSurveyLine& line : plan.lines) {
            const ZrLocalPoint start = Seen(m_plane.To(line.Start()), heading);
            const ZrLocalPoint end = Seen(m_plane.To(line.End()), heading);
            const double place = across * (90.0 - 20.0 * (line.number - 1));
            QVERIFY(std::fabs(start.y - place) < tolerance);
            QVERIFY(std::fabs(end.y - place) < tolerance);
            // Directions alternate.
            QVERIFY(std::fabs(start.x - (backward ? 150.0 : -150.0)) < tolerance);
            QVERIFY(std::fabs(end.x - (backward ? -150.0 : 150.0)) < tolerance);
            backward = !backward;
        }
        QCOMPARE(plan.lines.front().number, order == Settings::EvenThenOdd ? 2 : 1);
    }
}

void tst_ZrSurveyPattern::heading_data()
{
    QTest::addColumn<double>("wanted");
    QTest::addColumn<double>("heading");
    QTest::newRow("0") << 0.0 << 0.0;
    QTest::newRow("-0") << -0.0 << 0.0;
    QTest::newRow("359.5") << 359.5 << 359.5;
    QTest::newRow("360") << 360.0 << 0.0;
    QTest::newRow("370") << 370.0 << 10.0;
    QTest::newRow("-10") << -10.0 << 350.0;
    QTest::newRow("-1e-20") << -1e-20 << 0.0;
    QTest::newRow("many turns") << -3.0 * 360.0 + 5.0 << 5.0;
}

void tst_ZrSurveyPattern::heading()
{
    QFETCH(double, wanted);
    QFETCH(double, heading);
    Settings settings;
    settings.heading = wanted;
    settings.lineSpacing = 30.0;
    const ZrSurveyPlan plan = Planned(Rectangle(400.0, 200.0, 20.0), settings);
    QCOMPARE(plan.heading, heading);
    for (std::size_t i = 0; i < plan.lines.size(); ++i) {
        const Plane line = m_plane.To(plan.lines[i].points);
        const double run = std::atan2(line[1].x - line[0].x, line[1].y - line[0].y) / geoPi * 180.0;
        const double expected = i % 2 == 0 ? heading : heading + 180.0;
        QVERIFY(std::fabs(std::remainder(run - expected, 360.0)) < 1e-3);
    }
}

void tst_ZrSurveyPattern::longestSide_data()
{
    QTest::addColumn<double>("along");
    QTest::addColumn<double>("heading");
    QTest::newRow("north") << 0.0 << 0.0;
    QTest::newRow("60") << 60.0 << 60.0;
    QTest::newRow("east") << 90.0 << 90.0;
    QTest::newRow("135") << 135.0 << 135.0;
    QTest::newRow("west") << 270.0 << 90.0;
    QTest::newRow("240") << 240.0 << 60.0;
}

void tst_ZrSurveyPattern::longestSide()
{
    QFETCH(double, along);
    QFETCH(double, heading);
    const ZrSurveyPlan plan = Planned(Rectangle(100.0, 300.0, along), {});
    QVERIFY2(std::fabs(std::remainder(plan.heading - heading, 180.0)) < 1e-4,
        qPrintable(QString::number(plan.heading)));
    QVERIFY(plan.heading >= 0.0 && plan.heading < 180.0);
    QCOMPARE(plan.lines.size(), std::size_t{2});
    QVERIFY(std::fabs(plan.lineLength - 600.0) < 0.01);
}

void tst_ZrSurveyPattern::lastLaneIsCovered_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<int>("lines");
    QTest::newRow("much less than a spacing") << 1.0 << 1;
    QTest::newRow("a spacing") << 50.0 << 1;
    QTest::newRow("a centimetre more") << 50.01 << 1;
    QTest::newRow("a little more") << 50.03 << 2;
    QTest::newRow("two and a half") << 125.0 << 3;
    QTest::newRow("three") << 150.0 << 3;
    QTest::newRow("a centimetre more than three") << 150.01 << 3;
    QTest::newRow("a little more than three") << 150.03 << 4;
}

void tst_ZrSurveyPattern::lastLaneIsCovered()
{
    QFETCH(double, width);
    QFETCH(int, lines);
    Settings settings;
    settings.heading = 0.0;
    const ZrSurveyPlan plan = Planned(Rectangle(width, 100.0), settings);
    QCOMPARE(static_cast<int>(plan.lines.size()), lines);
    const double first = m_plane.To(plan.lines.front().Start()).x + width / 2.0;
    const double last = width / 2.0 - m_plane.To(plan.lines.back().Start()).x;
    QVERIFY(std::fabs(first - last) < tolerance);
    QVERIFY(std::fabs(first + last + 50.0 * (lines - 1) - width) < tolerance);
    QVERIFY(first <= 25.0 + unspent + tolerance && first >= -tolerance);
}

void tst_ZrSurveyPattern::alternateSpacing_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<int>("entry");
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("second");
    QTest::addColumn<int>("lines");
    const int left = Settings::NearLeft;
    const int right = Settings::FarRight;
    QTest::newRow("30 and 70") << 500.0 << left << 30.0 << 70.0 << 10;
    QTest::newRow("30 and 70 from the right") << 500.0 << right << 30.0 << 70.0 << 10;
    QTest::newRow("odd number") << 420.0 << left << 30.0 << 70.0 << 9;
    QTest::newRow("odd number from the right") << 420.0 << right << 30.0 << 70.0 << 9;
    QTest::newRow("larger one first") << 400.0 << left << 70.0 << 30.0 << 8;
    QTest::newRow("narrow, larger one first") << 55.0 << left << 70.0 << 30.0 << 1;
    QTest::newRow("the same twice") << 500.0 << left << 50.0 << 50.0 << 10;
}

void tst_ZrSurveyPattern::alternateSpacing()
{
    QFETCH(double, width);
    QFETCH(int, entry);
    QFETCH(double, first);
    QFETCH(double, second);
    QFETCH(int, lines);
    Settings settings;
    settings.heading = 0.0;
    settings.lineSpacing = first;
    settings.alternateSpacing = second;
    settings.entry = static_cast<Settings::eEntry>(entry);
    const ZrSurveyPlan plan = Planned(Rectangle(width, 100.0), settings);
    QCOMPARE(static_cast<int>(plan.lines.size()), lines);
    const double side = entry == Settings::NearLeft ? 1.0 : -1.0;
    std::vector<double> places;
    for (const ZrSurveyLine& line : plan.lines)
        places.push_back(side * m_plane.To(line.Start()).x);
    for (std::size_t i = 1; i < places.size(); ++i)
        QVERIFY(std::fabs(places[i] - places[i - 1] - (i % 2 == 1 ? first : second)) < tolerance);
    const double before = places.front() + width / 2.0;
    const double behind = width / 2.0 - places.back();
    QVERIFY(std::fabs(before - behind) < tolerance);
    QVERIFY(before >= -tolerance && before <= std::max(first, second) / 2.0 + tolerance);
}

void tst_ZrSurveyPattern::crosshatch()
{
    Settings settings;
    settings.heading = 30.0;
    settings.lineSpacing = 50.0;
    settings.crossSpacing = 100.0;
    settings.turnRadius = 8.0;
    const ZrSurveyPlan plan = Planned(Rectangle(200.0, 300.0, 30.0), settings);
    QCOMPARE(plan.lines.size(), std::size_t{7});
    QVERIFY(plan.findings.empty());
    QCOMPARE(survey::TurnFlaw(plan), QString());
    QStringList names;
    for (const ZrSurveyLine& line : plan.lines) {
        names.append(line.Name());
        const ZrLocalPoint a = Seen(m_plane.To(line.Start()), 30.0);
        const ZrLocalPoint b = Seen(m_plane.To(line.End()), 30.0);
        QVERIFY(std::fabs(line.cross ? a.x - b.x : a.y - b.y) < tolerance);
    }
    QCOMPARE(names.join(QLatin1Char(' ')), QStringLiteral("L1 L2 L3 L4 X1 X2 X3"));
    // Line 4, run backward, ends near and right: there the lines across begin.
    const ZrLocalPoint end = Seen(m_plane.To(plan.lines[3].End()), 30.0);
    const ZrLocalPoint start = Seen(m_plane.To(plan.lines[4].Start()), 30.0);
    QVERIFY(Apart(end, {-150.0, 75.0}) < tolerance);
    QVERIFY(Apart(start, {-100.0, 100.0}) < tolerance);
}

void tst_ZrSurveyPattern::overshootJoinsPieces()
{
    // A notch of 40 m.
    const Plane ring{{0, 0}, {0, 100}, {80, 100}, {80, 50}, {120, 50}, {120, 100}, {200, 100}, {200, 0}};
    Settings settings;
    settings.heading = 90.0;
    settings.lineSpacing = 25.0;
    settings.entry = Settings::NearLeft; // the north-western one
    QCOMPARE(Planned(ring, settings).lines.size(), std::size_t{6});
    settings.overshoot = 19.0;
    QCOMPARE(Planned(ring, settings).lines.size(), std::size_t{6});
    settings.overshoot = 21.0;
    const ZrSurveyPlan plan = Planned(ring, settings);
    QCOMPARE(plan.lines.size(), std::size_t{4});
    QCOMPARE(plan.lines.front().piece, 0);
    QVERIFY(std::fabs(plan.lineLength - 4 * 242.0) < 0.02);
}

void tst_ZrSurveyPattern::concaveLinesFallIntoPieces()
{
    const Plane ring{{0, 0}, {0, 100}, {80, 100}, {80, 50}, {120, 50}, {120, 100}, {200, 100}, {200, 0}};
    Settings settings;
    settings.heading = 90.0;
    settings.lineSpacing = 25.0;
    settings.turnRadius = 5.0;
    for (const Settings::eEnds ends : {Settings::Cover, Settings::Edge}) {
        settings.ends = ends;
        const ZrSurveyPlan plan = Planned(ring, settings);
        QStringList names;
        for (const ZrSurveyLine& line : plan.lines)
            names.append(line.Name());
        QCOMPARE(names.join(QLatin1Char(' ')), QStringLiteral("L1.1 L1.2 L2.2 L2.1 L3 L4"));
        QVERIFY(std::fabs(plan.lineLength - (160.0 + 160.0 + 200.0 + 200.0)) < 0.02);
        QVERIFY(Apart(m_plane.To(plan.lines[0].End()), {80.0, 87.5}) < tolerance);
        QVERIFY(Apart(m_plane.To(plan.lines[1].Start()), {120.0, 87.5}) < tolerance);
        QVERIFY(Apart(m_plane.To(plan.lines[2].Start()), {200.0, 62.5}) < tolerance);
        QCOMPARE(survey::Inconsistency(plan, m_plane), QString());
    }
}

void tst_ZrSurveyPattern::smallestLength()
{
    // A triangle whose lines become shorter and shorter.
    const Plane ring{{0, 0}, {100, 0}, {0, 100}};
    Settings settings;
    settings.heading = 90.0;
    settings.lineSpacing = 10.0;
    QCOMPARE(Planned(ring, settings).lines.size(), std::size_t{10});
    settings.minLength = 35.0;
    const ZrSurveyPlan plan = Planned(ring, settings);
    QCOMPARE(plan.lines.size(), std::size_t{7});
    QCOMPARE(plan.findings.size(), std::size_t{1});
    QCOMPARE(int(plan.findings[0].kind), int(ZrSurveyFinding::PiecesLeftOut));
    QCOMPARE(plan.findings[0].text, QStringLiteral("3 pieces of lines shorter than 35 m are left out."));
    for (const ZrSurveyLine& line : plan.lines)
        QVERIFY(Apart(m_plane.To(line.Start()), m_plane.To(line.End())) >= 35.0 - tolerance);
}

void tst_ZrSurveyPattern::closeLines()
{
    Settings settings;
    settings.heading = 0.0;
    settings.lineSpacing = 25.0;
    settings.turnRadius = 15.0;
    const ZrSurveyPlan loops = Planned(Rectangle(100.0, 100.0), settings);
    QCOMPARE(loops.findings.size(), std::size_t{3});
    QCOMPARE(loops.findings[1].line, std::size_t{1});
    QCOMPARE(loops.findings[1].text,
        QStringLiteral("The line behind L2 is closer than two turn radii of 15 m: a loop leads to it."));
    QCOMPARE(loops.waypoints.size(), std::size_t{8 + 3 * 4});
    settings.loopTurns = false;
    const ZrSurveyPlan left = Planned(Rectangle(100.0, 100.0), settings);
    QCOMPARE(left.findings.size(), std::size_t{3});
    QVERIFY(left.findings[0].text.endsWith(QStringLiteral("no turn leads to it.")));
    QCOMPARE(left.waypoints.size(), std::size_t{8});
    settings.order = Settings::EveryOther; // 1, 3, 4, 2: only 3 and 4 are close
    QCOMPARE(Planned(Rectangle(100.0, 100.0), settings).findings.size(), std::size_t{1});
}

void tst_ZrSurveyPattern::racetrackNeedsNoLoops()
{
    Settings settings;
    settings.heading = 0.0;
    settings.lineSpacing = 10.0;
    settings.turnRadius = 24.0;
    settings.order = Settings::Racetrack;
    const ZrSurveyPlan plan = Planned(Rectangle(300.0, 100.0), settings);
    QCOMPARE(plan.lines.size(), std::size_t{30});
    QVERIFY(plan.findings.empty());
    QCOMPARE(survey::TurnFlaw(plan), QString());
    // Straight turns of half a circle are far shorter than loops between neighbours.
    settings.order = Settings::Next;
    const ZrSurveyPlan next = Planned(Rectangle(300.0, 100.0), settings);
    QCOMPARE(next.findings.size(), std::size_t{29});
    QVERIFY(plan.pathLength < 0.75 * next.pathLength);
}

void tst_ZrSurveyPattern::repeatedCorners()
{
    // A ring that was closed, and corners typed twice.
    Plane ring = Rectangle(100.0, 100.0);
    ring.insert(ring.begin() + 1, ring[1]);
    ring.push_back(ring.front());
    Settings settings;
    settings.heading = 0.0;
    const ZrSurveyPlan plan = Planned(ring, settings);
    QCOMPARE(plan.lines.size(), std::size_t{2});
    QVERIFY(std::fabs(plan.lineLength - 200.0) < 0.01);
    // With the margin every edge counts, edges of no length must not.
    settings.margin = 10.0;
    QVERIFY(std::fabs(Planned(ring, settings).lineLength - 160.0) < 0.01);
}

void tst_ZrSurveyPattern::acrossTheAntimeridian()
{
    const ZrArea area{QStringLiteral("date line"),
        {{-17.50, 179.995}, {-17.50, -179.995}, {-17.51, -179.995}, {-17.51, 179.995}}};
    Settings settings;
    settings.heading = 90.0;
    settings.lineSpacing = 100.0;
    ZrSurveyPattern pattern;
    QVERIFY2(pattern.Make(area, settings), qPrintable(pattern.Error()));
    QCOMPARE(pattern.Plan().lines.size(), std::size_t{12});
    for (const ZrSurveyLine& line : pattern.Plan().lines) {
        QVERIFY(line.Start().lng * line.End().lng < 0.0);
        QVERIFY(std::fabs(std::fabs(line.Start().lng) - 179.995) < 1e-5);
        QVERIFY(std::fabs(GroundDistance(line.Start(), line.End()) - 1061.8) < 1.0);
    }
}

QTEST_APPLESS_MAIN(tst_ZrSurveyPattern)
#include "tst_ZrSurveyPattern.moc"
