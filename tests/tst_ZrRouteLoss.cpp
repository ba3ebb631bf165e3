// What files of the forms do not hold of a route.

#include "ZrKit/planning/ZrRouteLoss.h"
#include "ZrUtil/ZrWpts.h"

#include <QtTest>

#include <functional>
#include <limits>

namespace {

using Edit = std::function<void(ZrWpts&, ZrWpt&)>;

} // namespace

Q_DECLARE_METATYPE(Edit)

class tst_ZrRouteLoss : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plainRoute_data();
    void plainRoute();
    void losses_data();
    void losses();
    void emptyRoute();
    void notToBeWritten();
};

namespace {

void LayRoute(ZrWpts& route)
{
    route.linked = true;
    for (int i = 0; i < 3; ++i) {
        ZrWpt* wpt = route.Add(50.0 + 0.01 * i, -4.0 - 0.003 * i, eZrWptBlue, ZrWpts::eAddTail);
        wpt->name = QStringLiteral("A %1").arg(i);
        wpt->z = 7.5 * i;
        wpt->r = 12.345;
        wpt->spdType = 4;
        wpt->speed = 1.25;
    }
}

void AddForms(bool withSettings)
{
    if (withSettings)
        QTest::newRow("settings") << int(ZrRouteFile::Settings);
    QTest::newRow("store") << int(ZrRouteFile::Store);
    QTest::newRow("gpx") << int(ZrRouteFile::Gpx);
    QTest::newRow("kml") << int(ZrRouteFile::Kml);
    QTest::newRow("geojson") << int(ZrRouteFile::GeoJson);
    QTest::newRow("list") << int(ZrRouteFile::List);
}

} // namespace

void tst_ZrRouteLoss::plainRoute_data()
{
    QTest::addColumn<int>("format");
    AddForms(true);
}

void tst_ZrRouteLoss::plainRoute()
{
    QFETCH(int, format);
    ZrWpts route;
    LayRoute(route);
    QCOMPARE(ZrRouteLoss::Of(static_cast<ZrRouteFile::eFormat>(format), route), QStringList());
}

void tst_ZrRouteLoss::losses_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QStringList>("lost");
    const auto add = [](const char* name, ZrRouteFile::eFormat format, const Edit& edit,
                         const QStringList& lost) { QTest::newRow(name) << int(format) << edit << lost; };
    const Edit altitude = [](ZrWpts&, ZrWpt& wpt) { wpt.zType = 1; };
    const Edit flags = [](ZrWpts&, ZrWpt& wpt) { wpt.flags = 5; };
    const Edit colour = [](ZrWpts&, ZrWpt& wpt) { wpt.colour = QColor(1, 2, 3); };
    const Edit tab = [](ZrWpts&, ZrWpt& wpt) { wpt.name = QStringLiteral("a\tb"); };
    const Edit foreign = [](ZrWpts&, ZrWpt& wpt) { wpt.name = QStringLiteral("港"); };
    const QString further = QStringLiteral("further properties of waypoints");
    const QString depths = QStringLiteral("depths and altitudes");
    const QString names = QStringLiteral("names as they are");
    add("altitude in a list", ZrRouteFile::List, altitude, {depths});
    add("altitude in gpx", ZrRouteFile::Gpx, altitude, {});
    add("altitude in the store", ZrRouteFile::Store, altitude, {});
    add("flags in a list", ZrRouteFile::List, flags, {further});
    add("flags in kml", ZrRouteFile::Kml, flags, {});
    add("colour does not count", ZrRouteFile::List, colour, {});
    add("tab in a list", ZrRouteFile::List, tab, {names});
    add("foreign letters in a list", ZrRouteFile::List, foreign, {});
    add("foreign letters in the store", ZrRouteFile::Store, foreign, {names});
    add("both", ZrRouteFile::List,
        [altitude, flags](ZrWpts& route, ZrWpt& wpt) {
            altitude(route, wpt);
            flags(route, wpt);
        },
        {depths, further});
    add("nothing in the settings", ZrRouteFile::Settings, altitude, {});
}

void tst_ZrRouteLoss::losses()
{
    QFETCH(int, format);
    QFETCH(Edit, edit);
    QFETCH(QStringList, lost);
    ZrWpts route;
    LayRoute(route);
    edit(route, *route.GetAt(route.FindIndex(1)));
    QStringList found = ZrRouteLoss::Of(static_cast<ZrRouteFile::eFormat>(format), route);
    found.sort();
    QCOMPARE(found, lost);
}

void tst_ZrRouteLoss::emptyRoute()
{
    QCOMPARE(ZrRouteLoss::Of(ZrRouteFile::Gpx, ZrWpts()), QStringList());
}

void tst_ZrRouteLoss::notToBeWritten()
{
    ZrWpts route;
    LayRoute(route);
    route.GetHead()->lat = std::numeric_limits<double>::quiet_NaN();
    QCOMPARE(ZrRouteLoss::Of(ZrRouteFile::Kml, route), QStringList(QStringLiteral("the route")));
}

QTEST_GUILESS_MAIN(tst_ZrRouteLoss)
#include "tst_ZrRouteLoss.moc"
