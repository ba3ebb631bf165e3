// What the check finds about the waypoints and legs of a route; areas have tests of their own.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRouteCheck.h"
#include "ZrUtil/ZrScoped.h"
#include "ZrUtil/ZrUnits.h"

#include <QElapsedTimer>
#include <QtTest/QtTest>

#include <limits>
#include <set>

using Finding = ZrRouteFinding;
using Findings = std::vector<Finding>;

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();
const double Infinity = std::numeric_limits<double>::infinity();

/// "error turns-overlap 1", one for each finding.
QStringList Summary(const Findings& findings)
{
    QStringList list;
    for (const Finding& finding : findings)
        list += QStringLiteral("%1 %2 %3").arg(finding.SeverityName(), finding.CodeName()).arg(finding.index);
    return list;
}

QStringList Check(const ZrWpts& route)
{
    return Summary(ZrRouteCheck::Run(route));
}

} // namespace

class tst_ZrRouteCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void soundRoute();
    void emptyAndSinglePoint();
    void notLinked();
    void turns_data();
    void turns();
    void turnTexts();
    void severalOverlaps();
    void radiusAtEnds();
    void badRadius();
    void positions_data();
    void positions();
    void coincident();
    void coincidentOnAClosedRoute();
    void speedOfTheRoute_data();
    void speedOfTheRoute();
    void speedOfAWaypoint_data();
    void speedOfAWaypoint();
    void speedPresets();
    void zones_data();
    void zones();
    void closingLegCrosses();
    void tooWide();
    void names();
    void orderAndIdentity();
    void projectionOfTheProcessStays();
    void codeNamesAreUnique();
    void largeRoute();
};

void tst_ZrRouteCheck::soundRoute()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {100, 200}, {100, 0}}, 20.0);
    QCOMPARE(Check(route), QStringList());
    route.closed = true;
    QCOMPARE(Check(route), QStringList());
}

void tst_ZrRouteCheck::emptyAndSinglePoint()
{
    ZrWpts route;
    const Findings empty = ZrRouteCheck::Run(route);
    QCOMPARE(Summary(empty), QStringList{QStringLiteral("error empty -1")});
    QCOMPARE(empty[0].text, QStringLiteral("The route has no waypoint."));
    QVERIFY(empty[0].uuid.isNull() && !empty[0].place.IsValid());
    route.closed = true;
    QCOMPARE(Check(route), QStringList{QStringLiteral("error empty -1")});

    route.linked = true;
    AppendWpt(route, testPlace);
    route.closed = false;
    route.UpdatePseudo();
    const Findings one = ZrRouteCheck::Run(route);
    QCOMPARE(Summary(one), QStringList{QStringLiteral("warning single-point 0")});
    QCOMPARE(one[0].text, QStringLiteral("Start Mission is the only waypoint: there is no leg."));
    QCOMPARE(one[0].uuid, route.GetHead()->uuid);
    QCOMPARE(one[0].place, testPlace);
}

void tst_ZrRouteCheck::notLinked()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}});
    route.linked = false;
    QCOMPARE(Check(route), QStringList{QStringLiteral("info not-linked -1")});
}

void tst_ZrRouteCheck::turns_data()
{
    QTest::addColumn<double>("first"); // lengths of the three legs; right angles of 10 m between them
    QTest::addColumn<double>("second");
    QTest::addColumn<double>("third");
    QTest::addColumn<QStringList>("expected");
    const QString beyond1 = QStringLiteral("error turn-beyond-leg 1");
    const QString beyond2 = QStringLiteral("error turn-beyond-leg 2");
    const QString overlap = QStringLiteral("error turns-overlap 1");
    QTest::newRow("fit") << 10.1 << 20.1 << 10.1 << QStringList();
    QTest::newRow("fit exactly") << 10.0 << 20.0 << 10.0 << QStringList();
    QTest::newRow("first leg short") << 9.9 << 30.0 << 30.0 << QStringList{beyond1};
    QTest::newRow("last leg short") << 30.0 << 30.0 << 9.9 << QStringList{beyond2};
    QTest::newRow("overlap") << 30.0 << 19.9 << 30.0 << QStringList{overlap};
    QTest::newRow("both beyond") << 30.0 << 9.9 << 30.0 << QStringList{beyond1, beyond2};
}

void tst_ZrRouteCheck::turns()
{
    QFETCH(double, first);
    QFETCH(double, second);
    QFETCH(double, third);
    QFETCH(QStringList, expected);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, first}, {second, first}, {second, first - third}}, 10.0);
    QCOMPARE(Check(route), expected);
}

void tst_ZrRouteCheck::turnTexts()
{
    ZrWpts beyond;
    Lay(beyond, {{0, 0}, {0, 40}, {300, 40}}, 50.0);
    QCOMPARE(ZrRouteCheck::Run(beyond).at(0).text,
        QStringLiteral(
            "The turn at Wpt: 1 (90.0 degrees with a radius of 50.0 m) needs 50.0 m of the leg from "
            "Start Mission, which is 40.0 m long."));
    beyond.Invert();
    beyond.UpdatePseudo();
    QCOMPARE(ZrRouteCheck::Run(beyond).at(0).text,
        QStringLiteral("The turn at Wpt: 1 (90.0 degrees with a radius of 50.0 m) needs 50.0 m of the leg to "
                       "Finish Mission, which is 40.0 m long."));

    ZrWpts overlap;
    Lay(overlap, {{0, 0}, {0, 400}, {40, 400}, {40, 0}}, 30.0);
    WptAt(overlap, 2)->r = 25.0;
    QCOMPARE(ZrRouteCheck::Run(overlap).at(0).text,
        QStringLiteral(
            "The turns at Wpt: 1 and Wpt: 2 need 30.0 m and 25.0 m of the leg between them, which is "
            "40.0 m long."));

    ZrWpts back;
    Lay(back, {{0, 0}, {0, 400}, {0, 100}}, -30.0);
    const Findings findings = ZrRouteCheck::Run(back);
    QCOMPARE(Summary(findings), QStringList{QStringLiteral("error doubles-back 1")});
    QCOMPARE(findings[0].text,
        QStringLiteral("The way doubles back at Wpt: 1: a turn with a radius of 30.0 m is not possible."));
    WptAt(back, 1)->r = 0.0;
    QCOMPARE(Check(back), QStringList());
}

void tst_ZrRouteCheck::severalOverlaps()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 400}, {40, 400}, {40, 440}, {400, 440}, {400, 0}}, 30.0);
    QCOMPARE(Check(route),
        (QStringList{QStringLiteral("error turns-overlap 1"), QStringLiteral("error turns-overlap 2")}));
}

void tst_ZrRouteCheck::radiusAtEnds()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {100, 200}}, 20.0);
    route.GetHead()->r = 5.0;
    route.GetTail()->r = -7.5;
    const Findings findings = ZrRouteCheck::Run(route);
    QCOMPARE(Summary(findings),
        (QStringList{QStringLiteral("info radius-at-end 0"), QStringLiteral("info radius-at-end 2")}));
    QCOMPARE(findings[1].text,
        QStringLiteral("Finish Mission is an end of the route and does not turn; its radius of 7.5 m has no "
                       "effect."));
}

void tst_ZrRouteCheck::badRadius()
{
    for (const double bad : {NaN, Infinity, -Infinity}) {
        ZrWpts route;
        Lay(route, {{0, 0}, {0, 200}, {100, 200}}, bad);
        QCOMPARE(Check(route), QStringList{QStringLiteral("error bad-radius 1")});
        route.GetTail()->r = bad;
        QCOMPARE(Check(route).last(), QStringLiteral("error bad-radius 2"));
    }
}

void tst_ZrRouteCheck::positions_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::addColumn<QString>("expected");
    const QString none = QStringLiteral("error no-position 1");
    const QString range = QStringLiteral("error position-out-of-range 1");
    QTest::newRow("lat NaN") << NaN << 10.0 << none;
    QTest::newRow("lng NaN") << 0.0 << NaN << none;
    QTest::newRow("lat infinite") << Infinity << 10.0 << none;
    QTest::newRow("lng infinite") << 0.0 << -Infinity << none;
    QTest::newRow("lat 90.1") << 90.1 << 10.0 << range;
    QTest::newRow("lat -91") << -91.0 << 10.0 << range;
    QTest::newRow("lng 180.1") << 0.0 << 180.1 << range;
    QTest::newRow("lng -360") << 0.0 << -360.0 << range;
    QTest::newRow("huge") << 1e300 << 1e300 << range;
}

void tst_ZrRouteCheck::positions()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    QFETCH(QString, expected);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {100, 200}}, 20.0);
    WptAt(route, 1)->lat = lat;
    WptAt(route, 1)->lng = lng;
    QCOMPARE(Check(route), QStringList{expected});
    // Also as the first one, by which the grid of the others would be chosen.
    ZrWpts first;
    Lay(first, {{0, 0}, {0, 200}});
    first.GetHead()->lat = lat;
    first.GetHead()->lng = lng;
    QCOMPARE(Check(first), QStringList{expected.replace(QLatin1Char('1'), QLatin1Char('0'))});
}

void tst_ZrRouteCheck::coincident()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {0, 200.005}, {100, 200}, {100, 200.5}}, 0.0);
    const Findings findings = ZrRouteCheck::Run(route);
    QCOMPARE(Summary(findings), QStringList{QStringLiteral("warning coincident 2")});
    QCOMPARE(findings[0].text,
        QStringLiteral("Wpt: 2 is at the place of Wpt: 1: the leg between them has no length."));
    // All of them.
    ZrWpts still;
    Lay(still, {{0, 0}, {0, 0}, {0, 0}}, 10.0);
    QCOMPARE(Check(still),
        (QStringList{QStringLiteral("warning coincident 1"), QStringLiteral("warning coincident 2")}));
}

void tst_ZrRouteCheck::coincidentOnAClosedRoute()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {100, 200}, {0, 0}});
    QCOMPARE(Check(route), QStringList());
    route.closed = true;
    QCOMPARE(Check(route), QStringList{QStringLiteral("warning coincident 0")});
}

void tst_ZrRouteCheck::speedOfTheRoute_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<QString>("text");
    const QString text
        = QStringLiteral("The route has a speed of %1 m/s: no leg that inherits it has a duration.");
    QTest::newRow("zero") << 0.0 << text.arg(QLatin1String("0"));
    QTest::newRow("negative") << -0.5 << text.arg(QLatin1String("-0.5"));
    QTest::newRow("NaN") << NaN << text.arg(QLatin1String("nan"));
    QTest::newRow("infinite") << Infinity << text.arg(QLatin1String("inf"));
    QTest::newRow("good") << 0.01 << QString();
}

void tst_ZrRouteCheck::speedOfTheRoute()
{
    QFETCH(double, speed);
    QFETCH(QString, text);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}});
    route.speed = speed;
    const Findings findings = ZrRouteCheck::Run(route);
    QCOMPARE(findings.size(), std::size_t{text.isEmpty() ? 0U : 1U});
    if (!text.isEmpty()) {
        QCOMPARE(Summary(findings), QStringList{QStringLiteral("error bad-speed -1")});
        QCOMPARE(findings[0].text, text);
    }
    // A preset takes the place of the speed.
    route.speedType = 2;
    QCOMPARE(Check(route), QStringList());
}

void tst_ZrRouteCheck::speedOfAWaypoint_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("speed");
    QTest::addColumn<QString>("text");
    const QString own = QStringLiteral("Wpt: 1 has a speed of its own of %1 m/s.");
    QTest::newRow("inherits") << 0 << NaN << QString();
    QTest::newRow("slow") << 1 << 0.0 << QString();
    QTest::newRow("fast") << 3 << -1.0 << QString();
    QTest::newRow("own") << 4 << 0.3 << QString();
    QTest::newRow("zero") << 4 << 0.0 << own.arg(QLatin1String("0"));
    QTest::newRow("negative") << 17 << -1.0 << own.arg(QLatin1String("-1"));
    QTest::newRow("NaN") << 4 << NaN << own.arg(QLatin1String("nan"));
    QTest::newRow("infinite") << 4 << Infinity << own.arg(QLatin1String("inf"));
    QTest::newRow("unknown type") << -2 << 1.0 << QStringLiteral("Wpt: 1 has the unknown speed type -2.");
}

void tst_ZrRouteCheck::speedOfAWaypoint()
{
    QFETCH(int, type);
    QFETCH(double, speed);
    QFETCH(QString, text);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {100, 200}});
    WptAt(route, 1)->spdType = type;
    WptAt(route, 1)->speed = speed;
    const Findings findings = ZrRouteCheck::Run(route);
    QCOMPARE(
        Summary(findings), text.isEmpty() ? QStringList() : QStringList{QStringLiteral("error bad-speed 1")});
    if (text.isEmpty())
        return;
    QCOMPARE(findings[0].text, text);
    // At the last waypoint no leg begins, unless the route is closed.
    ZrWpts last;
    Lay(last, {{0, 0}, {0, 200}});
    last.GetTail()->spdType = type;
    last.GetTail()->speed = speed;
    QCOMPARE(Check(last), QStringList{QStringLiteral("warning bad-speed 1")});
    last.closed = true;
    QCOMPARE(Check(last), QStringList{QStringLiteral("error bad-speed 1")});
}

void tst_ZrRouteCheck::speedPresets()
{
    const float slow = ZrWpts::s_msSlow;
    const auto restore = zr::make_scoped([slow] { ZrWpts::s_msSlow = slow; });
    ZrWpts::s_msSlow = 0.0F;
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {100, 200}});
    QCOMPARE(Check(route), QStringList());
    WptAt(route, 1)->spdType = 1;
    route.speedType = 1;
    const Findings findings = ZrRouteCheck::Run(route);
    QCOMPARE(Summary(findings),
        (QStringList{QStringLiteral("error bad-speed -1"), QStringLiteral("error bad-speed 1")}));
    QCOMPARE(findings[0].text,
        QStringLiteral(
            "The route has the slow speed, which is 0 m/s: no leg that inherits it has a duration."));
    QCOMPARE(findings[1].text, QStringLiteral("Wpt: 1 asks for the slow speed, which is 0 m/s."));
}

void tst_ZrRouteCheck::zones_data()
{
    QTest::addColumn<ZrGeoPoint>("from");
    QTest::addColumn<ZrGeoPoint>("to");
    QTest::addColumn<QStringList>("expected");
    const QStringList zone{QStringLiteral("warning zone-crossed 0")};
    const QStringList antimeridian{QStringLiteral("warning antimeridian-crossed 0")};
    QTest::newRow("within") << ZrGeoPoint{50, -0.1} << ZrGeoPoint{50, -5.9} << QStringList();
    QTest::newRow("border") << ZrGeoPoint{50, -0.001} << ZrGeoPoint{50, 0.001} << zone;
    QTest::newRow("from the border") << ZrGeoPoint{50, 0.0} << ZrGeoPoint{50, 0.001} << QStringList();
    QTest::newRow("to the border") << ZrGeoPoint{50, -0.001} << ZrGeoPoint{50, 0.0} << zone;
    QTest::newRow("equator") << ZrGeoPoint{0.001, 10} << ZrGeoPoint{-0.001, 10} << zone;
    QTest::newRow("to the equator") << ZrGeoPoint{0.001, 10} << ZrGeoPoint{0, 10} << QStringList();
    QTest::newRow("antimeridian") << ZrGeoPoint{-17, 179.999} << ZrGeoPoint{-17, -179.999} << antimeridian;
    QTest::newRow("back") << ZrGeoPoint{-17, -179.999} << ZrGeoPoint{-17, 179.999} << antimeridian;
    QTest::newRow("to 180") << ZrGeoPoint{-17, 179.999} << ZrGeoPoint{-17, 180} << zone;
    QTest::newRow("north of the grid")
        << ZrGeoPoint{84, 1} << ZrGeoPoint{84.1, 1} << QStringList{QStringLiteral("warning beyond-grid 1")};
    QTest::newRow("south of the grid")
        << ZrGeoPoint{-80.1, 1} << ZrGeoPoint{-80, 1} << QStringList{QStringLiteral("warning beyond-grid 0")};
}

void tst_ZrRouteCheck::zones()
{
    QFETCH(ZrGeoPoint, from);
    QFETCH(ZrGeoPoint, to);
    QFETCH(QStringList, expected);
    ZrWpts route;
    route.linked = true;
    AppendWpt(route, from)->name = QStringLiteral("A");
    AppendWpt(route, to)->name = QStringLiteral("B");
    const Findings findings = ZrRouteCheck::Run(route);
    QCOMPARE(Summary(findings), expected);
    if (QTest::currentDataTag() == QByteArray("border"))
        QCOMPARE(findings[0].text,
            QStringLiteral(
                "The leg from A to B goes from UTM zone 30N to 31N; grid positions are those of zone "
                "30N."));
    if (QTest::currentDataTag() == QByteArray("antimeridian"))
        QCOMPARE(findings[0].text,
            QStringLiteral(
                "The leg from A to B crosses the antimeridian, from UTM zone 60S to 1S; grid positions "
                "are those of zone 60S."));
}

void tst_ZrRouteCheck::closingLegCrosses()
{
    ZrWpts route;
    route.linked = true;
    AppendWpt(route, {50.0, 5.999});
    AppendWpt(route, {50.001, 5.999});
    AppendWpt(route, {50.0, 6.001});
    QCOMPARE(Check(route), QStringList{QStringLiteral("warning zone-crossed 1")});
    route.closed = true;
    QCOMPARE(Check(route),
        (QStringList{QStringLiteral("warning zone-crossed 1"), QStringLiteral("warning zone-crossed 2")}));
}

void tst_ZrRouteCheck::tooWide()
{
    ZrWpts route;
    route.linked = true;
    AppendWpt(route, {50.0, -4.2});
    AppendWpt(route, {50.0, 90.0}, 10.0);
    AppendWpt(route, {50.0, 90.0}, 10.0);
    ZrRouteCheck::Options options;
    options.fences.push_back(AreaOf(QStringLiteral("Home"), {{0, 0}, {0, 100}, {100, 100}}));
    options.noGo.push_back(AreaOf(QStringLiteral("Line"), {{0, 0}, {0, 100}, {0, 200}}));
    // Areas themselves are looked at.
    QCOMPARE(Summary(ZrRouteCheck::Run(route, options)),
        (QStringList{QStringLiteral("error too-wide -1"), QStringLiteral("error bad-area -1"),
            QStringLiteral("warning zone-crossed 0"), QStringLiteral("info radius-at-end 2"),
            QStringLiteral("warning coincident 2")}));
}

void tst_ZrRouteCheck::names()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {0, 200}});
    WptAt(route, 1)->pseudo.clear();
    WptAt(route, 2)->name = QStringLiteral("Büøy \u6d77 %1");
    QCOMPARE(ZrRouteCheck::Run(route).at(0).text,
        QStringLiteral("Büøy \u6d77 %1 is at the place of point 2: the leg between them has no length."));
    WptAt(route, 2)->name = QStringLiteral("%2");
    WptAt(route, 2)->spdType = -7;
    QCOMPARE(ZrRouteCheck::Run(route).at(0).text, QStringLiteral("%2 has the unknown speed type -7."));
}

void tst_ZrRouteCheck::orderAndIdentity()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 5}, {5, 5}, {5, 5}, {50, 5}}, 20.0);
    route.speed = 0.0;
    route.GetHead()->r = 5.0;
    const Findings findings = ZrRouteCheck::Run(route);
    QCOMPARE(Summary(findings),
        (QStringList{QStringLiteral("error bad-speed -1"), QStringLiteral("info radius-at-end 0"),
            QStringLiteral("error turn-beyond-leg 1"), QStringLiteral("warning coincident 3")}));
    for (const Finding& finding : findings) {
        QCOMPARE(finding.uuid, finding.index < 0 ? QUuid() : WptAt(route, finding.index)->uuid);
        QCOMPARE(finding.place.IsValid(), finding.index >= 0);
        QVERIFY(finding.text.endsWith(QLatin1Char('.')));
    }
}

void tst_ZrRouteCheck::projectionOfTheProcessStays()
{
    ZrUnits::CalcUTM(10.0, 100.0);
    const double before = ZrUnits::utm.lngOrigin;
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 200}, {100, 200}}, 20.0);
    ZrRouteCheck::Options options;
    options.fences.push_back(AreaOf(QString(), {{-10, -10}, {-10, 100}, {100, 100}}));
    QVERIFY(!ZrRouteCheck::Run(route, options).empty());
    QCOMPARE(ZrUnits::utm.lngOrigin, before);
}

void tst_ZrRouteCheck::codeNamesAreUnique()
{
    std::set<QString> names;
    std::set<QString> titles;
    Finding finding;
    for (int code = Finding::eEmpty; code <= Finding::eNearNoGo; ++code) {
        finding.code = static_cast<Finding::eCode>(code);
        QVERIFY(!finding.CodeName().isEmpty());
        names.insert(finding.CodeName());
        QVERIFY(!finding.Title().isEmpty());
        titles.insert(finding.Title());
    }
    QCOMPARE(names.size(), std::size_t{Finding::eNearNoGo + 1});
    QCOMPARE(titles.size(), names.size());
    finding.code = Finding::eTurnBeyondLeg;
    QCOMPARE(finding.Title(), QStringLiteral("Turn longer than its leg"));
    finding.code = Finding::eNearNoGo;
    QCOMPARE(finding.Title(), QStringLiteral("Close to a no-go area"));
    finding.code = Finding::eDoublesBack;
    QCOMPARE(finding.CodeName(), QStringLiteral("doubles-back"));
    finding.code = Finding::eZoneCrossed;
    QCOMPARE(finding.CodeName(), QStringLiteral("zone-crossed"));
}

void tst_ZrRouteCheck::largeRoute()
{
    ZrWpts route;
    std::vector<std::pair<double, double>> metres;
    for (int i = 0; i < 10000; ++i)
        metres.emplace_back((i / 2) * 20.0, (i + i / 2) % 2 == 0 ? 0.0 : 100.0);
    Lay(route, metres, 10.0);
    ZrRouteCheck::Options options;
    ZrArea fence; // around the lanes, with a corner every 10 m
    for (int i = 0; i <= 10010; ++i)
        fence.ring.push_back(Offset(-20.0 + i * 10.0, -10.0 + i % 2));
    for (int i = 10010; i >= 0; --i)
        fence.ring.push_back(Offset(-20.0 + i * 10.0, 120.0 + i % 3));
    options.fences.push_back(fence);
    options.noGo.push_back(
        AreaOf(QStringLiteral("Rock"), {{50001, 40}, {50030, 40}, {50030, 60}, {50001, 60}}));
    options.margin = 0.5;
    QElapsedTimer timer;
    timer.start();
    const Findings findings = ZrRouteCheck::Run(route, options);
    const auto elapsed = timer.elapsed();
    QVERIFY2(elapsed < 10000, qPrintable(QString::number(elapsed)));
    int zones = 0;
    int inside = 0;
    for (const Finding& finding : findings) {
        zones += finding.code == Finding::eZoneCrossed ? 1 : 0;
        inside += finding.code == Finding::eInNoGo ? 1 : 0;
    }
    QCOMPARE(inside, 1);
    QCOMPARE(static_cast<int>(findings.size()), zones + inside);
    qInfo("%lld ms, %d zones", elapsed, zones);
}

QTEST_GUILESS_MAIN(tst_ZrRouteCheck)
#include "tst_ZrRouteCheck.moc"
