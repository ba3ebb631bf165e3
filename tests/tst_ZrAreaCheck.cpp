// Fences and no-go areas: crossings, margins, and areas that are hard to handle. A second way of calculating,
// by many points along the path, holds for random ones.

#include "PathChecks.h"
#include "ZrKit/planning/ZrRouteCheck.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

using Finding = ZrRouteFinding;
using Findings = std::vector<Finding>;
using Metres = std::vector<std::pair<double, double>>;

Q_DECLARE_METATYPE(Metres)

namespace {

const double NaN = std::numeric_limits<double>::quiet_NaN();

Findings Run(const ZrWpts& route, const ZrArea& area, bool isFence, double margin = 0.0)
{
    ZrRouteCheck::Options options;
    (isFence ? options.fences : options.noGo).push_back(area);
    options.margin = margin;
    return ZrRouteCheck::Run(route, options);
}

QStringList Summary(const Findings& findings)
{
    QStringList list;
    for (const Finding& finding : findings)
        list += finding.CodeName() + QLatin1Char(' ') + QString::number(finding.index);
    return list;
}

} // namespace

class tst_ZrAreaCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noGo_data();
    void noGo();
    void fence_data();
    void fence();
    void arcOnly();
    void margins_data();
    void margins();
    void marginOfArcs();
    void badMargin();
    void texts();
    void namesOfAreas();
    void severalFences();
    void closingLeg();
    void lonelyWaypoints();
    void aroundUnknownPositions();
    void ringsTheWayTheyCome();
    void alongTheBorder();
    void degenerate_data();
    void degenerate();
    void crossingItself();
    void antimeridian();
    void farAway_data();
    void farAway();
    void tooLarge();
    void longLegs();
};

void tst_ZrAreaCheck::noGo_data()
{
    QTest::addColumn<Metres>("ring");
    QTest::addColumn<QStringList>("expected");
    // The route goes 100 m north, turns with 20 m to the right and goes 100 m east.
    const QString leg0 = QStringLiteral("in-no-go 0");
    const QString turn = QStringLiteral("in-no-go 1");
    const QString leg1 = turn; // begins at the waypoint of the turn
    QTest::newRow("beside") << Metres{{5, 0}, {70, 0}, {70, 70}, {5, 70}} << QStringList();
    QTest::newRow("across the middle of a leg")
        << Metres{{-5, 40}, {5, 40}, {5, 45}, {-5, 45}} << QStringList{leg0};
    QTest::newRow("a corner of it") << Metres{{-0.5, 40}, {20, 30}, {20, 50}} << QStringList{leg0};
    QTest::newRow("corner that is cut") << Metres{{-5, 95}, {4, 95}, {4, 105}, {-5, 105}} << QStringList();
    QTest::newRow("start") << Metres{{-5, -5}, {5, -5}, {5, 5}, {-5, 5}} << QStringList{leg0};
    QTest::newRow("whole route") << Metres{{-50, -50}, {150, -50}, {150, 150}, {-50, 150}}
                                 << QStringList{leg0, turn, leg1};
    QTest::newRow("turn only") << Metres{{4, 90}, {10, 90}, {10, 96}, {4, 96}} << QStringList{turn};
    QTest::newRow("concave, around the leg")
        << Metres{{-20, -20}, {-5, -20}, {-5, 90}, {-2, 130}, {-20, 130}} << QStringList();
    QTest::newRow("concave, both arms") << Metres{{-10, 30}, {10, 30}, {10, 40}, {-5, 40}, {-5, 50}, {10, 50},
        {10, 60}, {-10, 60}} << QStringList{leg0};
    QTest::newRow("concave, route in the bay")
        << Metres{{-10, -10}, {-3, -10}, {-3, 110}, {110, 110}, {110, 120}, {-10, 120}} << QStringList();
}

void tst_ZrAreaCheck::noGo()
{
    QFETCH(Metres, ring);
    QFETCH(QStringList, expected);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 20.0);
    QCOMPARE(Summary(Run(route, AreaOf(QString(), ring), false)), expected);
    std::reverse(ring.begin(), ring.end());
    QCOMPARE(Summary(Run(route, AreaOf(QString(), ring), false)), expected);
}

void tst_ZrAreaCheck::fence_data()
{
    QTest::addColumn<Metres>("ring");
    QTest::addColumn<QStringList>("expected");
    const QString leg0 = QStringLiteral("outside-fence 0");
    const QString both = QStringLiteral("outside-fence 1"); // the turn, or the leg that begins there
    QTest::newRow("all inside") << Metres{{-5, -5}, {105, -5}, {105, 105}, {-5, 105}} << QStringList();
    QTest::newRow("middle of a leg") << Metres{{-5, -5}, {105, -5}, {105, 105}, {-5, 105}, {-5, 50}, {1, 45},
        {-5, 40}} << QStringList{leg0};
    QTest::newRow("both ends inside, a bay between") << Metres{{-5, -5}, {105, -5}, {105, 105}, {60, 105},
        {50, 90}, {40, 105}, {-5, 105}} << QStringList{both};
    QTest::newRow("corner that is cut")
        << Metres{{-5, -5}, {105, -5}, {105, 105}, {4, 105}, {4, 97}, {-5, 96}} << QStringList();
    QTest::newRow("turn only") << Metres{{-5, -5}, {105, -5}, {105, 105}, {15, 105}, {15, 90}, {-5, 90}}
                               << QStringList{both};
    QTest::newRow("all outside") << Metres{{10, 10}, {50, 10}, {50, 50}} << QStringList{leg0, both, both};
}

void tst_ZrAreaCheck::fence()
{
    QFETCH(Metres, ring);
    QFETCH(QStringList, expected);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 20.0);
    QCOMPARE(Summary(Run(route, AreaOf(QString(), ring), true)), expected);
}

void tst_ZrAreaCheck::arcOnly()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 20.0);
    const ZrArea rock = AreaOf(QStringLiteral("Rock"), {{4, 90}, {10, 90}, {10, 96}, {4, 96}});
    const Findings findings = Run(route, rock, false);
    QCOMPARE(findings.size(), std::size_t{1});
    QVERIFY2(
        findings[0].text.startsWith(QStringLiteral("The turn at Wpt: 1 enters the no-go area \"Rock\": ")),
        qPrintable(findings[0].text));
    // It begins where the arc enters: x is 4 there, 16 m west of the centre.
    const ZrLocalPoint place = ZrLocalFrame(testPlace).ToLocal(findings[0].place);
    QVERIFY(std::fabs(place.x - 4.0) < 1e-3 && std::fabs(place.y - 92.0) < 1e-3);
    // Without the radius the way goes round it.
    WptAt(route, 1)->r = 0.0;
    QCOMPARE(Summary(Run(route, rock, false)), QStringList());
}

void tst_ZrAreaCheck::margins_data()
{
    QTest::addColumn<double>("away"); // of the area, to the right of the route
    QTest::addColumn<double>("margin");
    QTest::addColumn<QStringList>("noGo");
    const QString near = QStringLiteral("near-no-go 0");
    QTest::newRow("none") << 0.5 << 0.0 << QStringList();
    QTest::newRow("less") << 5.0 << 4.9 << QStringList();
    QTest::newRow("as much") << 5.0 << 5.0 << QStringList();
    QTest::newRow("a hair more") << 5.0 << 5.005 << QStringList();
    QTest::newRow("more") << 5.0 << 5.1 << QStringList{near};
    QTest::newRow("much more") << 5.0 << 1e7 << QStringList{near};
    QTest::newRow("inside is not near") << -5.0 << 10.0 << QStringList{QStringLiteral("in-no-go 0")};
}

void tst_ZrAreaCheck::margins()
{
    QFETCH(double, away);
    QFETCH(double, margin);
    QFETCH(QStringList, noGo);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}});
    // The corner of the area that is nearest lies beside the middle of the leg.
    const Metres ring{{away, 50}, {away + 20, 30}, {away + 20, 70}};
    QCOMPARE(Summary(Run(route, AreaOf(QString(), ring), false, margin)), noGo);
    // The same as a bay of a fence.
    Metres bay{{away, 50}, {50, 70}, {50, 9000}, {-9000, 9000}, {-9000, -9000}, {50, -9000}, {50, 30}};
    const QStringList expected = noGo.isEmpty() ? QStringList()
        : away < 0.0                            ? QStringList{QStringLiteral("outside-fence 0")}
                                                : QStringList{QStringLiteral("near-fence 0")};
    QCOMPARE(Summary(Run(route, AreaOf(QString(), bay), true, margin)), expected);
}

void tst_ZrAreaCheck::marginOfArcs()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 20.0);
    // The point of the arc nearest to the corner is 20 · (√2 − 1) m from it.
    const double gap = 20.0 * (std::sqrt(2.0) - 1.0);
    const ZrArea rock = AreaOf(QString(), {{0, 100}, {-50, 100}, {-50, 150}, {0, 150}});
    QCOMPARE(Summary(Run(route, rock, false, gap - 0.02)), QStringList());
    QCOMPARE(Summary(Run(route, rock, false, gap + 0.02)), QStringList{QStringLiteral("near-no-go 1")});
    // Inside the circle: the nearest point of an edge is that of its middle.
    const ZrArea middle = AreaOf(QString(), {{15, 75}, {25, 75}, {25, 85}, {15, 85}});
    const double inner = 20.0 - 5.0 * std::sqrt(2.0);
    QCOMPARE(Summary(Run(route, middle, false, inner - 0.02)), QStringList());
    QCOMPARE(Summary(Run(route, middle, false, inner + 0.02)).front(), QStringLiteral("near-no-go 1"));
}

void tst_ZrAreaCheck::badMargin()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}});
    const ZrArea rock = AreaOf(QString(), {{-5, 40}, {5, 40}, {5, 45}, {-5, 45}});
    for (const double bad : {-1.0, NaN, std::numeric_limits<double>::infinity()}) {
        const Findings findings = Run(route, rock, false, bad);
        QCOMPARE(
            Summary(findings), (QStringList{QStringLiteral("bad-margin -1"), QStringLiteral("in-no-go 0")}));
    }
    QCOMPARE(Run(route, rock, false, -1.0)[0].text,
        QStringLiteral("A safety margin of -1 m is not possible: areas are checked without one."));
}

void tst_ZrAreaCheck::texts()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}});
    const QString wreck = QStringLiteral("Wreck");
    const ZrArea twice = AreaOf(
        wreck, {{-10, 30}, {10, 30}, {10, 40}, {-5, 40}, {-5, 50}, {10, 50}, {10, 55.5}, {-10, 55.5}});
    const Findings noGo = Run(route, twice, false);
    QCOMPARE(noGo[0].text,
        QStringLiteral(
            "The leg from Start Mission to Wpt: 1 enters the no-go area \"Wreck\": 15.5 m of its 100.0 m "
            "inside."));
    QCOMPARE(noGo[0].severity, Finding::eError);
    QCOMPARE(noGo[0].uuid, route.GetHead()->uuid);
    const ZrLocalPoint place = ZrLocalFrame(testPlace).ToLocal(noGo[0].place);
    QVERIFY(std::fabs(place.x) < 1e-3 && std::fabs(place.y - 30.0) < 1e-3);

    const ZrArea harbour
        = AreaOf(QStringLiteral("Harbour"), {{-50, -50}, {50, -50}, {50, 87.5}, {-50, 87.5}});
    const Findings fence = Run(route, harbour, true);
    QCOMPARE(fence[0].text,
        QStringLiteral(
            "The leg from Start Mission to Wpt: 1 leaves the fence \"Harbour\": 12.5 m of its 100.0 m "
            "outside."));
    QCOMPARE(fence[1].text,
        QStringLiteral(
            "The leg from Wpt: 1 to Finish Mission leaves the fence \"Harbour\": all of it outside."));

    const ZrArea beside = AreaOf(wreck, {{3.25, -500}, {30, -500}, {30, 500}, {3.25, 500}});
    const Findings near = Run(route, beside, false, 10.0);
    QCOMPARE(near[0].text,
        QStringLiteral(
            "The leg from Start Mission to Wpt: 1 comes within 3.2 m of the border of the no-go area "
            "\"Wreck\"; the margin is 10.0 m."));
    QCOMPARE(near[0].severity, Finding::eError);
}

void tst_ZrAreaCheck::namesOfAreas()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}});
    ZrRouteCheck::Options options;
    options.noGo.push_back(AreaOf(QString(), {{50, 0}, {60, 0}, {60, 10}}));
    options.noGo.push_back(AreaOf(QString(), {{-50, 50}, {60, 50}, {60, 60}}));
    options.noGo.push_back(AreaOf(QStringLiteral("%1 %2 \u00e9"), {{-50, 50}, {60, 50}, {60, 60}}));
    const Findings findings = ZrRouteCheck::Run(route, options);
    QCOMPARE(findings.size(), std::size_t{2});
    QVERIFY(findings[0].text.contains(QStringLiteral("enters the no-go area 2: ")));
    QVERIFY2(findings[1].text.contains(QStringLiteral("enters the no-go area \"%1 %2 \u00e9\": ")),
        qPrintable(findings[1].text));
}

void tst_ZrAreaCheck::severalFences()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}});
    ZrRouteCheck::Options options;
    options.fences.push_back(AreaOf(QStringLiteral("A"), {{-5, -5}, {5, -5}, {5, 60}, {-5, 60}}));
    options.fences.push_back(AreaOf(QStringLiteral("B"), {{-5, 40}, {5, 40}, {5, 105}, {-5, 105}}));
    // Each of them counts, also where the other one goes on.
    const Findings findings = ZrRouteCheck::Run(route, options);
    QCOMPARE(Summary(findings),
        (QStringList{QStringLiteral("outside-fence 0"), QStringLiteral("outside-fence 0")}));
}

void tst_ZrAreaCheck::closingLeg()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}});
    const ZrArea rock = AreaOf(QString(), {{45, 40}, {60, 40}, {45, 60}});
    QCOMPARE(Summary(Run(route, rock, false)), QStringList());
    route.closed = true;
    QCOMPARE(Summary(Run(route, rock, false)), QStringList{QStringLiteral("in-no-go 2")});
}

void tst_ZrAreaCheck::lonelyWaypoints()
{
    const ZrArea square = AreaOf(QStringLiteral("S"), {{-5, -5}, {5, -5}, {5, 5}, {-5, 5}});
    ZrWpts one;
    Lay(one, {{0, 0}});
    const Findings inside = Run(one, square, false);
    QCOMPARE(Summary(inside), (QStringList{QStringLiteral("single-point 0"), QStringLiteral("in-no-go 0")}));
    QCOMPARE(inside[1].text, QStringLiteral("Start Mission is inside the no-go area \"S\"."));
    QCOMPARE(Summary(Run(one, square, true)), QStringList{QStringLiteral("single-point 0")});
    QCOMPARE(Summary(Run(one, square, true, 5.5)).last(), QStringLiteral("near-fence 0"));

    ZrWpts outside;
    Lay(outside, {{20, 0}});
    QCOMPARE(
        Run(outside, square, true).back().text, QStringLiteral("Start Mission is outside the fence \"S\"."));
    // Two at one place.
    ZrWpts still;
    Lay(still, {{0, 0}, {0, 0}});
    QCOMPARE(Summary(Run(still, square, false)),
        (QStringList{
            QStringLiteral("in-no-go 0"), QStringLiteral("coincident 1"), QStringLiteral("in-no-go 1")}));
    // No waypoint at all.
    QCOMPARE(Summary(Run(ZrWpts(), square, true)), QStringList{QStringLiteral("empty -1")});
}

void tst_ZrAreaCheck::aroundUnknownPositions()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {0, 200}, {0, 300}});
    WptAt(route, 1)->lat = NaN;
    const ZrArea square = AreaOf(QString(), {{-5, -5}, {5, -5}, {5, 5}, {-5, 5}});
    QCOMPARE(Summary(Run(route, square, false)),
        (QStringList{QStringLiteral("in-no-go 0"), QStringLiteral("no-position 1")}));
    const ZrArea last = AreaOf(QString(), {{-5, 250}, {5, 250}, {5, 255}, {-5, 255}});
    QCOMPARE(Summary(Run(route, last, false)),
        (QStringList{QStringLiteral("no-position 1"), QStringLiteral("in-no-go 2")}));
}

void tst_ZrAreaCheck::ringsTheWayTheyCome()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}});
    ZrArea area = AreaOf(QString(), {{-5, 40}, {5, 40}, {5, 40}, {5, 45}, {-5, 45}, {-5, 45}, {-5, 40}});
    QCOMPARE(Summary(Run(route, area, false)), QStringList{QStringLiteral("in-no-go 0")});
    area = AreaOf(QString(), {{5, 40}, {15, 40}, {15, 40}, {15, 45}, {5, 45}, {5, 45}, {5, 40}});
    QCOMPARE(Summary(Run(route, area, false)), QStringList());
}

void tst_ZrAreaCheck::alongTheBorder()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}});
    const ZrArea square = AreaOf(QString(), {{0, 0}, {0, 100}, {100, 100}, {100, 0}});
    QCOMPARE(Summary(Run(route, square, true)), QStringList());
    QCOMPARE(Summary(Run(route, square, false)), QStringList());
    // On along the same line, where the border turns off.
    const ZrArea less = AreaOf(QString(), {{0, -50}, {0, 60}, {90, 60}, {90, -50}});
    QCOMPARE(Summary(Run(route, less, false)), QStringList());
    QCOMPARE(Summary(Run(route, less, true)),
        (QStringList{QStringLiteral("outside-fence 0"), QStringLiteral("outside-fence 1")}));
    // The border bends to the other side: the leg goes on inside.
    const ZrArea bends = AreaOf(QString(), {{0, -50}, {0, 60}, {-90, 60}, {-90, 200}, {90, 200}, {90, -50}});
    QCOMPARE(Summary(Run(route, bends, true)).size(), 1);
    const Findings inside = Run(route, bends, false);
    QCOMPARE(Summary(inside), (QStringList{QStringLiteral("in-no-go 0"), QStringLiteral("in-no-go 1")}));
    QVERIFY(inside[0].text.contains(QStringLiteral(": 40.0 m of its 100.0 m inside.")));
}

void tst_ZrAreaCheck::degenerate_data()
{
    QTest::addColumn<QVector<double>>("ring");
    QTest::addColumn<QString>("text");
    const auto corners = [](int count, const char* rest) {
        return QStringLiteral("The no-go area \"X\" cannot be checked: it has %1 %2")
            .arg(count)
            .arg(QLatin1String(rest));
    };
    const char* few = "corners, an area needs three.";
    const char* same = "different corners, an area needs three.";
    QTest::newRow("none") << QVector<double>{} << corners(0, few);
    QTest::newRow("one") << QVector<double>{50, -4} << corners(1, few);
    QTest::newRow("two") << QVector<double>{50, -4, 51, -4} << corners(2, few);
    QTest::newRow("one, thrice") << QVector<double>{50, -4, 50, -4, 50, -4} << corners(1, same);
    QTest::newRow("two, closed") << QVector<double>{50, -4, 51, -4, 50, -4} << corners(2, same);
    const QString line
        = QStringLiteral("The no-go area \"X\" cannot be checked: all its corners lie on a line.");
    QTest::newRow("line") << QVector<double>{50.1, -4.2, 50.2, -4.2, 50.3, -4.2} << line;
    QTest::newRow("line far away") << QVector<double>{-30.1, 100, -30.2, 100, -30.3, 100} << line;
    const auto invalid = [](int corner) {
        return QStringLiteral("The no-go area \"X\" cannot be checked: its corner %1 has no valid position.")
            .arg(corner);
    };
    const double inf = std::numeric_limits<double>::infinity();
    QTest::newRow("NaN") << QVector<double>{50, -4, NaN, -4, 50, -5} << invalid(2);
    QTest::newRow("infinite") << QVector<double>{50, -4, 51, -4, 50, inf} << invalid(3);
    QTest::newRow("out of range") << QVector<double>{-90.5, -4, 51, -4, 50, -5} << invalid(1);
    QTest::newRow("only NaN") << QVector<double>{NaN, NaN} << invalid(1);
}

void tst_ZrAreaCheck::degenerate()
{
    QFETCH(QVector<double>, ring);
    QFETCH(QString, text);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}});
    ZrArea area;
    area.name = QStringLiteral("X");
    for (int i = 0; i < ring.size(); i += 2)
        area.ring.push_back({ring[i], ring[i + 1]});
    const Findings findings = Run(route, area, false, 10.0);
    QCOMPARE(Summary(findings), QStringList{QStringLiteral("bad-area -1")});
    QCOMPARE(findings[0].text, text);
    QCOMPARE(findings[0].severity, Finding::eError);
    QCOMPARE(Summary(Run(route, area, true)), QStringList{QStringLiteral("bad-area -1")});
}

void tst_ZrAreaCheck::crossingItself()
{
    // A bow tie whose halves are as large, so that its area by the signed formula is 0.
    const ZrArea bow = AreaOf(QStringLiteral("Bow"), {{-10, 10}, {10, 30}, {10, 10}, {-10, 30}});
    ZrWpts right;
    Lay(right, {{8, 0}, {8, 100}});
    const Findings findings = Run(right, bow, false);
    QCOMPARE(Summary(findings),
        (QStringList{QStringLiteral("area-crosses-itself -1"), QStringLiteral("in-no-go 0")}));
    QCOMPARE(findings[0].text,
        QStringLiteral(
            "The border of the no-go area \"Bow\" crosses itself: what it goes round twice counts as "
            "outside."));
    QCOMPARE(findings[0].severity, Finding::eWarning);
    ZrWpts below;
    Lay(below, {{-3, 15}, {3, 15}}); // between the halves
    QCOMPARE(Summary(Run(below, bow, false)), QStringList{QStringLiteral("area-crosses-itself -1")});
}

void tst_ZrAreaCheck::antimeridian()
{
    const ZrGeoPoint fiji{-17.0, 180.0};
    ZrWpts route;
    Lay(route, {{-100, 0}, {100, 0}, {100, 100}}, 20.0, fiji);
    const auto codes = [&](const Metres& ring, bool isFence, double margin) {
        QStringList list = Summary(Run(route, AreaOf(QString(), ring, fiji), isFence, margin));
        list.removeOne(QStringLiteral("antimeridian-crossed 0"));
        return list;
    };
    const Metres around{{-150, -50}, {150, -50}, {150, 150}, {-150, 150}};
    QCOMPARE(codes(around, true, 40.0), QStringList());
    QCOMPARE(codes(around, true, 51.0).front(), QStringLiteral("near-fence 0"));
    QCOMPARE(codes(around, false, 0.0).size(), 3);
    QCOMPARE(
        codes({{-5, -5}, {5, -5}, {5, 5}, {-5, 5}}, false, 0.0), QStringList{QStringLiteral("in-no-go 0")});
    QCOMPARE(codes({{-5, 5}, {5, 5}, {5, 15}, {-5, 15}}, false, 0.0), QStringList());
    // The other way of writing the meridian.
    ZrArea area = AreaOf(QString(), {{0, -5}, {50, -5}, {50, 5}, {0, 5}}, fiji);
    for (ZrGeoPoint& corner : area.ring)
        corner.lng = std::fabs(corner.lng) > 179.99999 ? -std::copysign(180.0, corner.lng) : corner.lng;
    QVERIFY(Summary(Run(route, area, false)).contains(QStringLiteral("in-no-go 0")));
}

void tst_ZrAreaCheck::farAway_data()
{
    QTest::addColumn<ZrGeoPoint>("place");
    QTest::newRow("next sea") << ZrGeoPoint{54.0, 3.0};
    QTest::newRow("60 degrees east") << ZrGeoPoint{50.1, 55.8};
    QTest::newRow("far side") << ZrGeoPoint{50.1, 175.8};
    QTest::newRow("across the antimeridian") << ZrGeoPoint{-17.0, 180.0};
    QTest::newRow("south") << ZrGeoPoint{-60.0, -4.2};
    QTest::newRow("near the pole") << ZrGeoPoint{89.5, 10.0};
}

void tst_ZrAreaCheck::farAway()
{
    QFETCH(ZrGeoPoint, place);
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}, {100, 100}}, 20.0);
    const ZrArea area
        = AreaOf(QStringLiteral("F"), {{-5000, -5000}, {5000, -5000}, {5000, 5000}, {-5000, 5000}}, place);
    QCOMPARE(Summary(Run(route, area, false, 100.0)), QStringList());
    const Findings outside = Run(route, area, true);
    QCOMPARE(outside.back().code, Finding::eOutsideFence);
    QCOMPARE(outside.back().severity, Finding::eError);
}

void tst_ZrAreaCheck::tooLarge()
{
    ZrWpts route;
    Lay(route, {{0, 0}, {0, 100}});
    ZrArea area;
    area.name = QStringLiteral("Ocean");
    area.ring = {{0, -80}, {0, 0}, {60, 0}, {60, -80}};
    const Findings findings = Run(route, area, true);
    QCOMPARE(Summary(findings), QStringList{QStringLiteral("bad-area -1")});
    QVERIFY(findings[0].text.startsWith(QStringLiteral("The fence \"Ocean\" is too large to be checked: ")));
    // All round the earth, in short steps.
    area.ring.clear();
    for (int lng = -180; lng < 180; lng += 10)
        area.ring.push_back({60.0, static_cast<double>(lng)});
    QCOMPARE(Summary(Run(route, area, false)), QStringList{QStringLiteral("bad-area -1")});
    // From the other side of the earth to within a wide route.
    ZrWpts wide;
    wide.linked = true;
    AppendWpt(wide, {50.0, -25.0});
    AppendWpt(wide, {50.0, 25.0});
    area.ring
        = {{-10, 170}, {-10, -130}, {-10, -70}, {-10, -15}, {60, -15}, {60, -70}, {60, -130}, {60, 170}};
    QVERIFY(Summary(Run(wide, area, false)).contains(QStringLiteral("bad-area -1")));
    // As large as a sea.
    area.ring = {{40, -20}, {40, 10}, {60, 10}, {60, -20}};
    QCOMPARE(Summary(Run(route, area, true)), QStringList());
    QCOMPARE(Summary(Run(route, area, false)), QStringList{QStringLiteral("in-no-go 0")});
}

void tst_ZrAreaCheck::longLegs()
{
    ZrWpts route;
    route.linked = true;
    AppendWpt(route, {60.0, 3.1});
    AppendWpt(route, {60.0, 21.0});
    const ZrGeoPoint middle{60.0, 12.05};
    const auto crosses = [&](double north) {
        const ZrArea area = AreaOf(
            QString(), {{-100, north}, {100, north}, {100, north + 1000}, {-100, north + 1000}}, middle);
        return Summary(Run(route, area, false)).contains(QStringLiteral("in-no-go 0"));
    };
    // L² tan φ / 8 R of 996 km is 33.8 km, less a part since the parallel is not short.
    int found = 0;
    for (int km = -2; km < 45; ++km) {
        if (crosses(km * 1000.0)) {
            ++found;
            QVERIFY2(km >= 32 && km <= 35, qPrintable(QString::number(km)));
        }
    }
    QCOMPARE(found, 1);
}

QTEST_GUILESS_MAIN(tst_ZrAreaCheck)
#include "tst_ZrAreaCheck.moc"
