#include "ZrUtil/ZrSphd.h"

#include "ZrUtil/ZrSetModule.h"

void ZrSphd::serialise(zr::ZrSetModule& module)
{
    module.item(QStringLiteral("semi-major"), semiMajor);
    module.item(QStringLiteral("semi-minor"), semiMinor);
    module.item(QStringLiteral("flattening"), flattening);
    module.item(QStringLiteral("eccentricity sqr"), eccentricitySqr);
}
