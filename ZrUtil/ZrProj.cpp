#include "ZrUtil/ZrProj.h"

#include "ZrUtil/ZrSetModule.h"

#include <cmath>

void ZrProj::SetupUTM(double lat, double lng)
{
    constexpr double radians = 0.017453292519943295; // π/180
    const double zone
        = std::trunc(std::fmod(std::floor((lng + 180.0) / 6.0), 60.0)); // one less than its number
    lngOrigin = (6.0 * (zone + 1.0) - 183.0) * radians;
    falseNorth = lat < 0.0 ? 10000000.0 : 0.0;
}

void ZrProj::serialise(zr::ZrSetModule& module)
{
    module.item(QStringLiteral("latitude origin"), latOrigin);
    module.item(QStringLiteral("longitude origin"), lngOrigin);
    module.item(QStringLiteral("false easting"), falseEast);
    module.item(QStringLiteral("false northing"), falseNorth);
    module.item(QStringLiteral("scale factor"), scaleFactor);
}
