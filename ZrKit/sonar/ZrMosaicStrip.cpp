#include "ZrKit/sonar/ZrMosaicStrip.h"

#include <algorithm>
#include <cmath>

namespace {

/// Places on the edge of two strips belong to both rather than to none.
constexpr double slack = 1e-9;

double Cross(ZrLocalPoint a, ZrLocalPoint b)
{
    return a.x * b.y - a.y * b.x;
}

ZrLocalPoint Along(ZrLocalPoint from, ZrLocalPoint direction, double way)
{
    return {from.x + direction.x * way, from.y + direction.y * way};
}

/// The patch lies within the convex hull of its corners.
struct Corners
{
    ZrLocalPoint at[4];

    explicit Corners(const ZrMosaicStrip& strip)
        : at{strip.start0, strip.start1, Along(strip.start0, strip.ray0, strip.reach),
            Along(strip.start1, strip.ray1, strip.reach)}
    {
    }
};

} // namespace

void ZrMosaicStrip::Rows(double& south, double& north) const
{
    const Corners corners(*this);
    const auto ends = std::minmax_element(std::begin(corners.at), std::end(corners.at),
        [](const ZrLocalPoint& a, const ZrLocalPoint& b) { return a.y < b.y; });
    south = ends.first->y;
    north = ends.second->y;
}

bool ZrMosaicStrip::Columns(double northing, double& west, double& east) const
{
    const Corners corners(*this);
    west = std::numeric_limits<double>::infinity();
    east = -west;
    for (int i = 0; i < 4; ++i) {
        for (int k = i + 1; k < 4; ++k) {
            const ZrLocalPoint a = corners.at[i];
            const ZrLocalPoint b = corners.at[k];
            if (std::min(a.y, b.y) > northing || std::max(a.y, b.y) < northing)
                continue;
            const double x = a.y == b.y ? a.x : a.x + (b.x - a.x) * (northing - a.y) / (b.y - a.y);
            west = std::min(west, a.y == b.y ? std::min(a.x, b.x) : x);
            east = std::max(east, a.y == b.y ? std::max(a.x, b.x) : x);
        }
    }
    return west <= east;
}

bool ZrMosaicStrip::Find(ZrLocalPoint at, double& share, double& range) const
{
    // The place p lies on the ray of share u: (p − A0 − u e) × (d0 + u f) = 0, a quadratic in u.
    const ZrLocalPoint p{at.x - start0.x, at.y - start0.y};
    const ZrLocalPoint e{start1.x - start0.x, start1.y - start0.y};
    const ZrLocalPoint f{ray1.x - ray0.x, ray1.y - ray0.y};
    const double a = -Cross(e, f);
    const double b = Cross(p, f) - Cross(e, ray0);
    const double c = Cross(p, ray0);
    const double square = b * b - 4.0 * a * c;
    if (!(square >= 0.0))
        return false;
    const double t = -0.5 * (b + std::copysign(std::sqrt(square), b));
    bool found = false;
    for (const double u : {c / t, t / a}) {
        if (!(u >= -slack && u <= 1.0 + slack)) // also what was divided by 0
            continue;
        const ZrLocalPoint ray{ray0.x + u * f.x, ray0.y + u * f.y};
        const ZrLocalPoint out{p.x - u * e.x, p.y - u * e.y};
        const double g = (out.x * ray.x + out.y * ray.y) / (ray.x * ray.x + ray.y * ray.y);
        if (g >= -slack && g <= reach && (!found || g < range)) {
            share = std::clamp(u, 0.0, 1.0);
            range = std::max(g, 0.0);
            found = true;
        }
    }
    return found;
}
