#pragma once

// Routes for tests, laid out in metres around a place.

#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrUtil/ZrWpts.h"

#include <QMetaType>
#include <QString>

#include <cmath>
#include <memory>
#include <random>
#include <utility>
#include <vector>

Q_DECLARE_METATYPE(ZrGeoPoint)

constexpr ZrGeoPoint testPlace{50.1, -4.2};

/// Metres east and north of a place as a position.
inline ZrGeoPoint Offset(double east, double north, ZrGeoPoint place = testPlace)
{
    return ZrLocalFrame(place).ToGeo({east, north});
}

inline ZrWpt* AppendWpt(ZrWpts& route, ZrGeoPoint place, double r = 0.0)
{
    auto wpt = std::make_unique<ZrWpt>();
    wpt->lat = place.lat;
    wpt->lng = place.lng;
    wpt->r = r;
    route.AddTail(wpt.get());
    return wpt.release();
}

/// Makes \p route of waypoints that lie {east, north} metres from \p place, all interior ones with radius \p
/// r.
inline void Lay(ZrWpts& route, const std::vector<std::pair<double, double>>& metres, double r = 0.0,
    ZrGeoPoint place = testPlace)
{
    route.linked = true;
    for (const auto& [east, north] : metres)
        AppendWpt(route, Offset(east, north, place), r);
    if (route.GetHead())
        route.GetHead()->r = route.GetTail()->r = 0.0;
    route.UpdatePseudo();
}

inline ZrArea AreaOf(
    const QString& name, const std::vector<std::pair<double, double>>& metres, ZrGeoPoint place = testPlace)
{
    ZrArea area;
    area.name = name;
    for (const auto& [east, north] : metres)
        area.ring.push_back(Offset(east, north, place));
    return area;
}

inline ZrWpt* WptAt(const ZrWpts& route, int index)
{
    return route.GetAt(route.FindIndex(index));
}

inline bool Near(double a, double b, double tolerance)
{
    return std::fabs(a - b) <= tolerance;
}

inline double Apart(ZrLocalPoint a, ZrLocalPoint b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

/// A wandering route with turns of which most fit.
inline void Wander(ZrWpts& route, int count, unsigned seed, ZrGeoPoint place = testPlace)
{
    std::mt19937 random(seed);
    const auto unit = [&] { return static_cast<double>(random()) / 4294967295.0; };
    std::vector<std::pair<double, double>> metres;
    double x = 0.0;
    double y = 0.0;
    for (int i = 0; i < count; ++i) {
        metres.emplace_back(x, y);
        const double heading = unit() * 2.0 * 3.141592653589793;
        const double length = 30.0 + 300.0 * unit();
        x += length * std::sin(heading);
        y += length * std::cos(heading);
    }
    Lay(route, metres, 0.0, place);
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        ZrWpt* wpt = route.GetNext(pos);
        wpt->r = (unit() < 0.5 ? -1.0 : 1.0) * 20.0 * unit();
        wpt->spdType = static_cast<int>(unit() * 6.0);
        wpt->speed = 0.1 + unit();
    }
}

inline std::vector<ZrWpt*> Wpts(const ZrWpts& route)
{
    std::vector<ZrWpt*> wpts;
    for (ZrListPos* pos = route.GetHeadPos(); pos;)
        wpts.push_back(route.GetNext(pos));
    return wpts;
}

/// Whether the waypoint lies {east, north} metres from the place of the tests.
inline bool IsAt(const ZrWpt& wpt, double east, double north)
{
    const ZrLocalPoint point = ZrLocalFrame(testPlace).ToLocal({wpt.lat, wpt.lng});
    return std::hypot(point.x - east, point.y - north) < 1e-3;
}
