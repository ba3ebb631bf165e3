#include "ZrKit/sim/ZrSimTarget.h"

#include <cmath>
#include <initializer_list>

namespace {

constexpr double radPerDeg = 3.14159265358979323846 / 180.0;
constexpr double largest = 1000.0; // metres

/// Height of a hull, as a share of that of the deckhouse: \p along is −1 at the stern and 1 at the bow,
/// \p across −1 to 1 between the sides of its widest frame.
double HullShare(double along, double across)
{
    // Full amidships, round at the stern, pointed at the bow.
    const double taper = along > 0.0 ? 1.0 - along * along : std::sqrt(1.0 - along * along);
    const double fromAxis = std::fabs(across);
    if (fromAxis > taper)
        return 0.0;
    if (along > -0.75 && along < -0.4 && fromAxis < 0.7 * taper)
        return 1.0; // deckhouse
    const bool isHold = (along > -0.25 && along < 0.15) || (along > 0.25 && along < 0.6);
    if (isHold && fromAxis < 0.6 * taper)
        return 0.15;
    return fromAxis > 0.85 * taper ? 0.6 : 0.5; // gunwale, deck
}

} // namespace

double ZrSimTarget::HeightAt(double x, double y) const
{
    const double east = x - at.x;
    const double north = y - at.y;
    if (!(std::fabs(east) <= length + width && std::fabs(north) <= length + width))
        return 0.0; // most places, without the sines
    const double sine = std::sin(heading * radPerDeg);
    const double cosine = std::cos(heading * radPerDeg);
    const double along = 2.0 * (east * sine + north * cosine) / length;
    const double across = 2.0 * (east * cosine - north * sine) / width;
    if (!(std::fabs(along) <= 1.0 && std::fabs(across) <= 1.0))
        return 0.0;
    switch (kind) {
    case Cylinder:
        return height * 0.5 * (1.0 + std::sqrt(1.0 - across * across));
    case Block:
        return height;
    case Wreck:
        break;
    }
    return height * HullShare(along, across);
}

double ZrSimTarget::Reach() const
{
    return std::hypot(length, width) / 2.0;
}

bool ZrSimTarget::IsValid() const
{
    for (const double size : {length, width, height}) {
        if (!(size > 0.0 && size <= largest))
            return false;
    }
    return std::isfinite(at.x) && std::isfinite(at.y) && std::isfinite(heading) && std::isfinite(strength)
        && strength >= 0.0;
}

QString ZrSimTarget::KindName() const
{
    switch (kind) {
    case Cylinder:
        return QStringLiteral("cylinder");
    case Block:
        return QStringLiteral("block");
    case Wreck:
        break;
    }
    return QStringLiteral("wreck");
}
