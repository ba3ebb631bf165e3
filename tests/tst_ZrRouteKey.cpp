#include "ZrKit/planning/ZrRouteKey.h"
#include "ZrUtil/ZrWpts.h"

#include <QtTest>

#include <functional>
#include <limits>

namespace {

ZrWpts Route()
{
    ZrWpts route;
    route.linked = true;
    route.Add(50.10, -4.20, eZrWptBlue, ZrWpts::eAddTail);
    route.Add(50.11, -4.20, eZrWptBlue, ZrWpts::eAddTail);
    return route;
}

ZrWpt& First(ZrWpts& route)
{
    return *route.GetHead();
}

using Change = std::function<void(ZrWpts&)>;

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_ZrRouteKey : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changes_data();
    void changes();
    void speedsOfAllRoutes();
    void copies();
    void oddRoutes();
};

void tst_ZrRouteKey::changes_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("isSame");
    const auto row = [](const char* name, bool isSame, const Change& change) {
        QTest::newRow(name) << change << isSame;
    };
    row("nothing", true, [](ZrWpts&) {});
    row("colour", true, [](ZrWpts& route) { First(route).colour = QColor(1, 2, 3); });
    row("identity", true, [](ZrWpts& route) { First(route).uuid = QUuid::createUuid(); });
    row("latitude", false, [](ZrWpts& route) { First(route).lat += 1e-12; });
    row("longitude", false, [](ZrWpts& route) { First(route).lng = -4.2000001; });
    row("name", false, [](ZrWpts& route) { First(route).name = QStringLiteral("Blø"); });
    row("turn", false, [](ZrWpts& route) { First(route).r = 5.0; });
    row("depth", false, [](ZrWpts& route) { First(route).z = 5.0; });
    row("kind of depth", false, [](ZrWpts& route) { First(route).zType = 1; });
    row("altitude", false, [](ZrWpts& route) { First(route).alt = 5.0; });
    row("speed of a leg", false, [](ZrWpts& route) { First(route).speed = 5.0; });
    row("kind of speed", false, [](ZrWpts& route) { First(route).spdType = 2; });
    row("time", false, [](ZrWpts& route) { First(route).time = 5.0; });
    row("heading", false, [](ZrWpts& route) { First(route).head = 5.0; });
    row("kind of heading", false, [](ZrWpts& route) { First(route).headType = 1; });
    row("linked", false, [](ZrWpts& route) { route.linked = false; });
    row("closed", false, [](ZrWpts& route) { route.closed = true; });
    row("speed", false, [](ZrWpts& route) { route.speed = 0.75; });
    row("kind of the speed", false, [](ZrWpts& route) { route.speedType = 3; });
    row("one more", false, [](ZrWpts& route) { route.Add(50.12, -4.2, eZrWptBlue, ZrWpts::eAddTail); });
    row("reversed", false, [](ZrWpts& route) { route.Reverse(); });
    row("none left", false, [](ZrWpts& route) { route.SetSize(0); });
}

void tst_ZrRouteKey::changes()
{
    QFETCH(Change, change);
    QFETCH(bool, isSame);
    ZrWpts route = Route();
    const QByteArray before = ZrRouteKey::Of(route);
    QCOMPARE(before.size(), ZrRouteKey::Size);
    change(route);
    QCOMPARE(ZrRouteKey::Of(route) == before, isSame);
}

void tst_ZrRouteKey::speedsOfAllRoutes()
{
    const ZrWpts route = Route();
    const QByteArray before = ZrRouteKey::Of(route);
    for (float* speed : {&ZrWpts::s_msSlow, &ZrWpts::s_msMedium, &ZrWpts::s_msFast}) {
        const float was = *speed;
        *speed = was + 0.125F;
        const QByteArray changed = ZrRouteKey::Of(route);
        *speed = was;
        QVERIFY(changed != before);
    }
    QCOMPARE(ZrRouteKey::Of(route), before);
}

void tst_ZrRouteKey::copies()
{
    const ZrWpts route = Route();
    const ZrWpts copy(route);
    QCOMPARE(ZrRouteKey::Of(copy), ZrRouteKey::Of(route));
}

void tst_ZrRouteKey::oddRoutes()
{
    QCOMPARE(ZrRouteKey::Of(ZrWpts()).size(), ZrRouteKey::Size);
    ZrWpts route = Route();
    First(route).lat = std::numeric_limits<double>::quiet_NaN();
    const QByteArray unknown = ZrRouteKey::Of(route);
    QCOMPARE(ZrRouteKey::Of(route), unknown); // a position that is not known is the same one
    First(route).lat = std::numeric_limits<double>::infinity();
    QVERIFY(ZrRouteKey::Of(route) != unknown);
}

QTEST_GUILESS_MAIN(tst_ZrRouteKey)
#include "tst_ZrRouteKey.moc"
