#include "ZrKit/map/ZrTriangulate.h"

#include <algorithm>
#include <cmath>

namespace {

/// Twice the area of a triangle, positive when it turns counter-clockwise.
double Area2(const QPointF& a, const QPointF& b, const QPointF& c)
{
    return (b.x() - a.x()) * (c.y() - a.y()) - (b.y() - a.y()) * (c.x() - a.x());
}

bool IsInside(const QPointF& p, const QPointF& a, const QPointF& b, const QPointF& c)
{
    return Area2(a, b, p) >= 0.0 && Area2(b, c, p) >= 0.0 && Area2(c, a, p) >= 0.0;
}

bool Cross(const QPointF& a, const QPointF& b, const QPointF& c, const QPointF& d)
{
    const auto side = [](double v) { return (v > 0.0) - (v < 0.0); };
    return side(Area2(a, b, c)) * side(Area2(a, b, d)) < 0 && side(Area2(c, d, a)) * side(Area2(c, d, b)) < 0;
}

bool CrossesItself(const std::vector<QPointF>& p)
{
    const std::size_t count = p.size();
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = i + 2; k < count; ++k) {
            const bool isNeighbour = i == 0 && k == count - 1;
            if (!isNeighbour && Cross(p[i], p[i + 1], p[k], p[(k + 1) % count]))
                return true;
        }
    }
    return false;
}

} // namespace

std::vector<std::size_t> ZrTriangulate::Ring(const std::vector<QPointF>& corners)
{
    const std::size_t count = corners.size();
    const auto isFinite = [](const QPointF& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); };
    if (count < 3 || count > MostCorners || !std::all_of(corners.begin(), corners.end(), isFinite))
        return {};
    // Near 0 nothing of the precision is lost to the distance from the origin.
    std::vector<QPointF> p(corners);
    for (QPointF& point : p)
        point -= corners.front();
    double area = 0.0;
    for (std::size_t i = 0; i < count; ++i)
        area += p[i].x() * p[(i + 1) % count].y() - p[i].y() * p[(i + 1) % count].x();
    if (area == 0.0 || CrossesItself(p))
        return {};
    std::vector<std::size_t> left(count);
    for (std::size_t i = 0; i < count; ++i)
        left[i] = area > 0.0 ? i : count - 1 - i;

    std::vector<std::size_t> triangles;
    std::size_t at = 0;
    std::size_t tried = 0;
    while (left.size() >= 3 && tried < left.size()) {
        const std::size_t n = left.size();
        at %= n;
        const std::size_t a = left[(at + n - 1) % n];
        const std::size_t b = left[at];
        const std::size_t c = left[(at + 1) % n];
        const double turn = Area2(p[a], p[b], p[c]);
        const bool isEar = turn > 0.0 && std::none_of(left.begin(), left.end(), [&](std::size_t i) {
            const bool isOther = p[i] != p[a] && p[i] != p[b] && p[i] != p[c];
            return isOther && IsInside(p[i], p[a], p[b], p[c]);
        });
        if (!isEar && turn != 0.0) {
            ++at;
            ++tried;
            continue;
        }
        if (isEar)
            triangles.insert(triangles.end(), {a, b, c});
        left.erase(left.begin() + static_cast<std::ptrdiff_t>(at));
        // The corner before has become another one.
        at = (at + left.size() - 1) % left.size();
        tried = 0;
    }
    return left.size() < 3 ? triangles : std::vector<std::size_t>();
}
