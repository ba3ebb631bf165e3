// Survey patterns against what they promise, over random areas in several places of the earth. Areas are
// drawn and results are measured on a plane that shares no formula with the planner.

#include "SurveyChecks.h"
#include "ZrKit/planning/ZrSurveyPattern.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <limits>
#include <random>

namespace {

using Settings = ZrSurveyPatternSettings;

constexpr double tolerance = 0.005; ///< metres, for what planes differ over 2 km
constexpr double unspent = 0.01; ///< metres, half of what a width may exceed its lines
constexpr double nan_ = std::numeric_limits<double>::quiet_NaN();

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

class tst_ZrSurveyPatternRandom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void random_data();
    void random();
    void turns_data();
    void turns();
    void overshoot();
    void margin();
    void senseOfTheRingDoesNotMatter();

private:
    static ZrArea Area(const GeoPlane& plane, const Plane& ring)
    {
        return {QStringLiteral("area"), plane.From(ring)};
    }

    double Within(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(m_random);
    }

    /// Corners around the middle, which makes a simple ring; convex when they lie on an ellipse.
    Plane RandomRing(bool convex)
    {
        const int count
            = convex ? 3 + static_cast<int>(m_random() % 8) : 5 + static_cast<int>(m_random() % 20);
        const double size = Within(50.0, 800.0);
        const double flatness = Within(0.2, 1.0);
        std::vector<double> angles;
        for (int i = 0; i < count; ++i)
            angles.push_back((i + Within(0.1, 0.9)) / count * 2.0 * geoPi);
        Plane ring;
        for (const double angle : angles) {
            const double radius = convex ? size : size * Within(0.15, 1.0);
            ring.push_back({radius * std::cos(angle), radius * flatness * std::sin(angle)});
        }
        if (m_random() % 2 == 0)
            std::reverse(ring.begin(), ring.end());
        return ring;
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
    std::mt19937 m_random{20250814};
};

void tst_ZrSurveyPatternRandom::random_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<bool>("convex");
    for (const bool convex : {true, false}) {
        const char* kind = convex ? "convex" : "concave";
        QTest::addRow("%s, north-west", kind) << 48.4789 << -68.5147 << convex;
        QTest::addRow("%s, equator", kind) << 0.0 << 9.0 << convex;
        QTest::addRow("%s, south-east", kind) << -33.9 << 151.2 << convex;
        QTest::addRow("%s, antimeridian", kind) << -17.5 << 179.9999 << convex;
        QTest::addRow("%s, near the north pole", kind) << 88.9 << 40.0 << convex;
        QTest::addRow("%s, near the south pole", kind) << -88.9 << -180.0 << convex;
    }
}

void tst_ZrSurveyPatternRandom::random()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(bool, convex);
    const GeoPlane plane({lat, lng});
    for (int round = 0; round < 12; ++round) {
        const Plane ring = RandomRing(convex);
        double top = 0.0;
        for (const ZrLocalPoint& p : ring)
            top = std::max(top, std::hypot(p.x, p.y));
        Settings settings;
        settings.lineSpacing = Within(0.02, 0.4) * top;
        settings.heading = Within(0.0, 360.0);
        settings.alternateSpacing = round % 3 == 1 ? settings.lineSpacing * Within(0.3, 2.0) : 0.0;
        settings.crossSpacing = round % 3 == 2 ? settings.lineSpacing * Within(0.5, 3.0) : 0.0;
        settings.order = static_cast<Settings::eOrder>(round % 4);
        settings.entry = static_cast<Settings::eEntry>(m_random() % 4);
        settings.turnRadius = Within(0.1, 1.0) * settings.lineSpacing;
        const double half
            = std::max(settings.lineSpacing, settings.alternateSpacing) / 2.0 + unspent + tolerance;

        for (const Settings::eEnds ends : {Settings::Cover, Settings::Edge}) {
            settings.ends = ends;
            ZrSurveyPattern pattern;
            QVERIFY2(pattern.Make(Area(plane, ring), settings), qPrintable(pattern.Error()));
            const ZrSurveyPlan& plan = pattern.Plan();
            QCOMPARE(pattern.Error(), QString());
            QCOMPARE(survey::Inconsistency(plan, plane), QString());

            double area = 0.0;
            double edge = 0.0;
            for (std::size_t i = 0; i < ring.size(); ++i) {
                const ZrLocalPoint a = ring[i];
                const ZrLocalPoint b = ring[(i + 1) % ring.size()];
                area += (a.x * b.y - b.x * a.y) / 2.0;
                edge += Apart(a, b);
            }
            double along = 0.0;
            for (const ZrSurveyLine& line : plan.lines) {
                const Plane points = plane.To(line.points);
                if (!line.cross)
                    along += Apart(points.front(), points.back());
                const double spacing = line.cross ? settings.crossSpacing / 2.0 + unspent + tolerance : half;
                const double heading = settings.heading + (line.cross ? 90.0 : 0.0);
                const double s = std::sin(heading / 180.0 * geoPi);
                const double c = std::cos(heading / 180.0 * geoPi);
                for (int i = 0; i <= 40; ++i) {
                    const ZrLocalPoint p{points.front().x + (points.back().x - points.front().x) * i / 40.0,
                        points.front().y + (points.back().y - points.front().y) * i / 40.0};
                    if (ends == Settings::Edge) {
                        QVERIFY(IsWithin(p, ring) || ToEdge(p, ring) < tolerance);
                        continue;
                    }
                    // Something of the area lies abeam.
                    bool sees = IsWithin(p, ring);
                    for (int j = -20; !sees && j <= 20; ++j) {
                        const double off = spacing * j / 20.0;
                        const ZrLocalPoint q{p.x + off * c, p.y - off * s};
                        sees = IsWithin(q, ring) || ToEdge(q, ring) < spacing / 20.0;
                    }
                    QVERIFY2(sees, qPrintable(line.Name()));
                }
            }
            // A strip as wide as a spacing along every line: the area, but for what the edge makes of its
            // ends.
            const double spacing = settings.alternateSpacing > 0.0
                ? (settings.lineSpacing + settings.alternateSpacing) / 2.0
                : settings.lineSpacing;
            const double most = std::max(settings.lineSpacing, settings.alternateSpacing);
            const double wide = along * spacing;
            QVERIFY2(std::fabs(wide - std::fabs(area)) <= 1.5 * most * edge,
                qPrintable(QStringLiteral("%1 m2, not %2").arg(wide).arg(area)));

            if (ends == Settings::Edge)
                continue;
            Plane samples = ring;
            for (int tries = 0; tries < 400; ++tries) {
                const ZrLocalPoint p{Within(-top, top), Within(-top, top)};
                if (IsWithin(p, ring))
                    samples.push_back(p);
            }
            QVERIFY(samples.size() > ring.size());
            for (const ZrLocalPoint& p : samples) {
                const double off = survey::ToLines(p, plan, plane);
                QVERIFY2(off <= half,
                    qPrintable(QStringLiteral("%1, %2: %3 m of %4").arg(p.x).arg(p.y).arg(off).arg(half)));
                if (settings.crossSpacing > 0.0)
                    QVERIFY(survey::ToLines(p, plan, plane, true)
                        <= settings.crossSpacing / 2.0 + unspent + tolerance);
            }
        }
    }
}

void tst_ZrSurveyPatternRandom::turns_data()
{
    // Where the grid of a route reaches.
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<bool>("convex");
    for (const bool convex : {true, false}) {
        const char* kind = convex ? "convex" : "concave";
        QTest::addRow("%s, north-west", kind) << 48.4789 << -68.5147 << convex;
        QTest::addRow("%s, equator", kind) << 0.0 << 9.0 << convex;
        QTest::addRow("%s, side of a zone", kind) << -33.9 << 149.95 << convex;
        QTest::addRow("%s, north", kind) << 80.0 << 177.0 << convex;
        QTest::addRow("%s, south", kind) << -79.0 << -177.0 << convex;
    }
}

void tst_ZrSurveyPatternRandom::turns()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(bool, convex);
    const GeoPlane plane({lat, lng});
    for (int round = 0; round < 20; ++round) {
        const Plane ring = RandomRing(convex);
        Settings settings;
        settings.lineSpacing = Within(10.0, 60.0);
        settings.heading = Within(0.0, 360.0);
        settings.overshoot = round % 2 == 0 ? 0.0 : Within(0.0, 50.0);
        settings.crossSpacing = round % 3 == 2 ? settings.lineSpacing * Within(0.8, 3.0) : 0.0;
        settings.order = static_cast<Settings::eOrder>(round % 4);
        settings.entry = static_cast<Settings::eEntry>(m_random() % 4);
        settings.turnRadius = Within(0.1, 2.5) * settings.lineSpacing;
        settings.ends = round % 5 == 0 ? Settings::Edge : Settings::Cover;
        ZrSurveyPattern pattern;
        QVERIFY2(pattern.Make(Area(plane, ring), settings), qPrintable(pattern.Error()));
        const ZrSurveyPlan& plan = pattern.Plan();
        QCOMPARE(survey::Inconsistency(plan, plane), QString());
        QCOMPARE(survey::TurnFlaw(plan), QString());

        // Between lines there are two corners, or four and a finding where they are close; between the pieces
        // of one line there are none.
        std::vector<int> corners(plan.lines.size(), 0);
        for (const ZrSurveyWaypoint& wpt : plan.waypoints)
            corners[wpt.line] += wpt.role == ZrSurveyWaypoint::Turn ? 1 : 0;
        std::vector<int> loops(plan.lines.size(), 0);
        for (const ZrSurveyFinding& finding : plan.findings) {
            QCOMPARE(int(finding.kind), int(ZrSurveyFinding::LoopTurn));
            QVERIFY(finding.text.contains(plan.lines[finding.line].Name()));
            ++loops[finding.line];
        }
        QCOMPARE(corners.back(), 0);
        for (std::size_t i = 0; i + 1 < plan.lines.size(); ++i) {
            const ZrSurveyLine& a = plan.lines[i];
            const ZrSurveyLine& b = plan.lines[i + 1];
            if (a.cross == b.cross && a.number == b.number) {
                QCOMPARE(corners[i], 0);
                QVERIFY(std::abs(a.piece - b.piece) == 1);
                continue;
            }
            if (a.cross != b.cross) {
                QCOMPARE(corners[i], 2);
                continue;
            }
            const double heading = settings.heading + (a.cross ? 90.0 : 0.0);
            const double apart
                = std::fabs(Seen(plane.To(a.Start()), heading).y - Seen(plane.To(b.Start()), heading).y);
            const bool close = apart < 2.0 * settings.turnRadius;
            if (std::fabs(apart - 2.0 * settings.turnRadius) > 0.01) {
                QCOMPARE(corners[i], close ? 4 : 2);
                QCOMPARE(loops[i], close ? 1 : 0);
            }
        }
    }
}

void tst_ZrSurveyPatternRandom::overshoot()
{
    for (int round = 0; round < 20; ++round) {
        const Plane ring = RandomRing(true);
        Settings settings;
        settings.lineSpacing = 20.0;
        settings.heading = Within(0.0, 360.0);
        settings.entry = static_cast<Settings::eEntry>(round % 4);
        const ZrSurveyPlan plain = Planned(ring, settings);
        settings.overshoot = Within(0.1, 200.0);
        const ZrSurveyPlan longer = Planned(ring, settings);
        QCOMPARE(longer.lines.size(), plain.lines.size());
        for (std::size_t i = 0; i < plain.lines.size(); ++i) {
            const Plane a = m_plane.To(plain.lines[i].points);
            const Plane b = m_plane.To(longer.lines[i].points);
            QVERIFY(std::fabs(Apart(a[0], b[0]) - settings.overshoot) < tolerance);
            QVERIFY(std::fabs(Apart(a[1], b[1]) - settings.overshoot) < tolerance);
            QVERIFY(std::fabs(Apart(b[0], b[1]) - Apart(a[0], a[1]) - 2.0 * settings.overshoot) < tolerance);
            QVERIFY(ToSegment(a[0], b[0], b[1]) < tolerance && ToSegment(a[1], b[0], b[1]) < tolerance);
        }
    }
}

void tst_ZrSurveyPatternRandom::margin()
{
    for (int round = 0; round < 30; ++round) {
        const Plane ring = RandomRing(round % 2 == 0);
        Settings settings;
        settings.heading = Within(0.0, 360.0);
        settings.margin = Within(1.0, 15.0);
        settings.lineSpacing = Within(5.0, 40.0);
        ZrSurveyPattern pattern;
        if (!pattern.Make(Area(m_plane, ring), settings)) {
            // Then no place of the area is that far from the edge, but for a sliver between lines.
            QVERIFY2(
                pattern.Error().startsWith(QStringLiteral("Within the margin")), qPrintable(pattern.Error()));
            continue;
        }
        for (const ZrSurveyLine& line : pattern.Plan().lines) {
            const Plane points = m_plane.To(line.points);
            for (int i = 0; i <= 50; ++i) {
                const ZrLocalPoint p{points[0].x + (points[1].x - points[0].x) * i / 50.0,
                    points[0].y + (points[1].y - points[0].y) * i / 50.0};
                QVERIFY(IsWithin(p, ring));
                QVERIFY(ToEdge(p, ring) > settings.margin - tolerance);
            }
            // It ends where the margin begins.
            for (const ZrLocalPoint& p : points)
                QVERIFY(ToEdge(p, ring) < settings.margin + tolerance);
        }
    }
    Settings settings;
    settings.heading = 0.0;
    settings.margin = 10.0;
    settings.lineSpacing = 40.0;
    const ZrSurveyPlan plan = Planned(Rectangle(100.0, 100.0), settings);
    QCOMPARE(plan.lines.size(), std::size_t{2});
    QVERIFY(std::fabs(plan.lineLength - 160.0) < 0.01);
    QVERIFY(std::fabs(m_plane.To(plan.lines[0].Start()).x + 20.0) < tolerance);
}

void tst_ZrSurveyPatternRandom::senseOfTheRingDoesNotMatter()
{
    for (int round = 0; round < 10; ++round) {
        Plane ring = RandomRing(false);
        Settings settings;
        settings.heading = round % 2 == 0 ? nan_ : Within(0.0, 360.0);
        const ZrSurveyPlan one = Planned(ring, settings);
        std::reverse(ring.begin(), ring.end());
        std::rotate(ring.begin(), ring.begin() + 2, ring.end());
        const ZrSurveyPlan other = Planned(ring, settings);
        QCOMPARE(other.lines.size(), one.lines.size());
        for (std::size_t i = 0; i < one.lines.size(); ++i) {
            QVERIFY(Apart(m_plane.To(one.lines[i].Start()), m_plane.To(other.lines[i].Start())) < 1e-3);
            QVERIFY(Apart(m_plane.To(one.lines[i].End()), m_plane.To(other.lines[i].End())) < 1e-3);
        }
    }
}

QTEST_APPLESS_MAIN(tst_ZrSurveyPatternRandom)
#include "tst_ZrSurveyPatternRandom.moc"
