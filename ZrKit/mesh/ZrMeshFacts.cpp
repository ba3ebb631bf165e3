#include "ZrKit/mesh/ZrMeshFacts.h"

#include "ZrUtil/ZglObject.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

template <std::size_t N> using Values = std::array<float, N>;

Values<3> Of(const QVector3D& v)
{
    return {v.x(), v.y(), v.z()};
}

Values<2> Of(const QVector2D& v)
{
    return {v.x(), v.y()};
}

template <std::size_t N> bool IsFinite(const Values<N>& values)
{
    return std::all_of(values.begin(), values.end(), [](float value) { return std::isfinite(value); });
}

/// The different values of a list, where 0 equals −0 and NaN equals NaN.
template <class Vector> auto Different(const std::vector<Vector>& list)
{
    std::vector<decltype(Of(list[0]))> values;
    values.reserve(list.size());
    for (const Vector& vector : list) {
        auto value = Of(vector);
        for (float& part : value)
            part = std::isnan(part) ? std::numeric_limits<float>::quiet_NaN() : part + 0.0F;
        values.push_back(value);
    }
    // NaN behind all numbers, or the order would not be one.
    const auto before
        = [](float a, float b) { return std::isnan(b) ? !std::isnan(a) : !std::isnan(a) && a < b; };
    const auto less = [before](const auto& a, const auto& b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), before);
    };
    std::sort(values.begin(), values.end(), less);
    const auto same = [less](const auto& a, const auto& b) { return !less(a, b) && !less(b, a); };
    values.erase(std::unique(values.begin(), values.end(), same), values.end());
    return values;
}

struct Point
{
    double x;
    double y;
    double z;
};

Point Between(const QVector3D& from, const QVector3D& to)
{
    return {static_cast<double>(to.x()) - static_cast<double>(from.x()),
        static_cast<double>(to.y()) - static_cast<double>(from.y()),
        static_cast<double>(to.z()) - static_cast<double>(from.z())};
}

double Length(const Point& p)
{
    return std::hypot(p.x, p.y, p.z);
}

/// Half the cross product of two sides.
double Area(const Point& a, const Point& b)
{
    return 0.5 * Length({a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x});
}

} // namespace

ZrMeshFacts::ZrMeshFacts()
    : low{none, none, none}
    , high{none, none, none}
    , shortestNormal(none)
    , longestNormal(none)
{
}

ZrMeshFacts::ZrMeshFacts(const ZglObject& mesh)
    : ZrMeshFacts()
{
    triangles = mesh.m_vertices.size() / 3;
    for (std::size_t i = 0; i < mesh.m_vertices.size(); ++i) {
        if (!IsFinite(Of(mesh.m_vertices[i])) || !IsFinite(Of(mesh.m_texCoords[i]))
            || !IsFinite(Of(mesh.m_normals[i])))
            ++notFinite;
    }
    const auto points = Different(mesh.m_vertices);
    positions = points.size();
    for (const Values<3>& point : points) {
        if (!IsFinite(point))
            continue;
        for (std::size_t i = 0; i < 3; ++i) {
            low[i] = std::fmin(low[i], static_cast<double>(point[i]));
            high[i] = std::fmax(high[i], static_cast<double>(point[i]));
        }
    }
    texCoords = Different(mesh.m_texCoords).size();
    const auto directions = Different(mesh.m_normals);
    normals = directions.size();
    for (const Values<3>& normal : directions) {
        const double length = Length(
            {static_cast<double>(normal[0]), static_cast<double>(normal[1]), static_cast<double>(normal[2])});
        // Written so that a length which is no number counts.
        if (!(std::fabs(length - 1.0) <= 1e-3))
            ++notUnit;
        if (IsFinite(normal)) {
            shortestNormal = std::fmin(shortestNormal, length);
            longestNormal = std::fmax(longestNormal, length);
        }
    }
    for (std::size_t i = 0; i + 2 < mesh.m_vertices.size(); i += 3) {
        const QVector3D* const corner = &mesh.m_vertices[i];
        if (!IsFinite(Of(corner[0])) || !IsFinite(Of(corner[1])) || !IsFinite(Of(corner[2])))
            continue;
        const Point a = Between(corner[0], corner[1]);
        const Point b = Between(corner[0], corner[2]);
        const double size = Area(a, b);
        const double longest = std::max({Length(a), Length(b), Length(Between(corner[1], corner[2]))});
        area += size;
        if (2.0 * size <= 1e-6 * longest * longest)
            ++degenerate;
    }
}
