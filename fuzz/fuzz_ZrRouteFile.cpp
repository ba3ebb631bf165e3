// A route file of any bytes: it is read or refused with a reason, and what was read goes through every form
// with all its waypoints and their positions.

#include "FuzzFile.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrUtil/ZrWpts.h"

#include <cmath>
#include <cstdlib>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

bool HasValidPositions(const ZrWpts& route)
{
    QString error;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        if (!ZrGeoShapes::Check({wpt->lat, wpt->lng}, error))
            return false;
    }
    return true;
}

void RequireSamePositions(const ZrWpts& a, const ZrWpts& b)
{
    Require(a.GetCount() == b.GetCount());
    ZrListPos* other = b.GetHeadPos();
    for (ZrListPos* pos = a.GetHeadPos(); pos;) {
        const ZrWpt* left = a.GetNext(pos);
        const ZrWpt* right = b.GetNext(other);
        Require(std::fabs(left->lat - right->lat) <= 1e-7 && std::fabs(left->lng - right->lng) <= 1e-7);
    }
}

void RequireRoundTrips(const ZrWpts& route)
{
    const bool isValid = HasValidPositions(route);
    for (const ZrRouteFile::eFormat format : {ZrRouteFile::Settings, ZrRouteFile::Store, ZrRouteFile::Gpx,
             ZrRouteFile::Kml, ZrRouteFile::GeoJson, ZrRouteFile::List}) {
        QByteArray bytes;
        ZrRouteFile file;
        const bool written = file.ToBytes(format, route, bytes);
        Require(written == (isValid || format == ZrRouteFile::Settings || format == ZrRouteFile::Store));
        Require(written == file.Error().isEmpty());
        ZrWpts again;
        if (written && isValid) {
            Require(file.FromBytes(bytes, again));
            RequireSamePositions(route, again);
            Require(again.linked == route.linked && again.closed == route.closed);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    ZrRouteFile file;
    ZrWpts route;
    const bool read
        = file.FromBytes(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)), route);
    Require(read == file.Error().isEmpty() && read != route.IsEmpty());
    if (read)
        RequireRoundTrips(route);
    ZrGeoShapes shapes;
    Require(file.ReadShapes(FuzzFile(data, size), shapes) == file.Error().isEmpty());
    return 0;
}
