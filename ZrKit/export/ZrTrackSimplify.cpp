#include "ZrKit/export/ZrTrackSimplify.h"

#include "ZrKit/export/ZrTrackSegments.h"
#include "ZrUtil/ZrUtil.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double earthRadius = 6371000.0; ///< metres, as for `ZrUtil::LL2LLRng`

struct Vector
{
    double x;
    double y;
    double z;
};

Vector operator-(const Vector& a, const Vector& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double Dot(const Vector& a, const Vector& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector Cross(const Vector& a, const Vector& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double Length(const Vector& a)
{
    return std::sqrt(Dot(a, a));
}

/// From the centre of a sphere of radius 1.
Vector Direction(const ZrTrackPoint& point)
{
    const double latitude = ZrUtil::D2R(point.latitude);
    const double longitude = ZrUtil::D2R(point.longitude);
    const double level = std::cos(latitude);
    return {level * std::cos(longitude), level * std::sin(longitude), std::sin(latitude)};
}

/// An angle between two directions in both forms in which distances come out; no trigonometry to go from one
/// to the other.
struct Separation
{
    double sine = 0.0; ///< 1 beyond a right angle
    double squaredChord = 0.0;

    static Separation OfAngle(double angle)
    {
        return {std::sin(std::min(angle, ZrUtil::pi_2)),
            ZrUtil::Sqr(2.0 * std::sin(std::min(angle, ZrUtil::pi) / 2.0))};
    }

    static Separation OfSine(double sine)
    {
        const double squared = std::min(sine * sine, 1.0);
        return {sine, 2.0 * squared / (1.0 + std::sqrt(1.0 - squared))};
    }

    static Separation OfSquaredChord(double squared)
    {
        return {squared < 2.0 ? std::sqrt(squared * (1.0 - squared / 4.0)) : 1.0, squared};
    }

    double Angle() const { return 2.0 * std::asin(std::min(std::sqrt(squaredChord) / 2.0, 1.0)); }
};

/// The great-circle line between two directions. Everything is calculated from differences to its ends, which
/// keeps the digits that products of nearly equal directions lose.
class Line
{
public:
    Line(const Vector& from, const Vector& to)
        : m_from(from)
        , m_to(to)
        , m_normal(Cross(from, to - from))
        , m_length(Length(m_normal))
        , m_ahead(Cross(m_normal, from))
        , m_back(Cross(to, m_normal))
    {
    }

    /// Raises \p farthest to the separation of \p point from the nearest place of the line, if that is
    /// larger.
    bool Raise(Separation& farthest, const Vector& point) const
    {
        const Vector a = point - m_from;
        const Vector b = point - m_to;
        if (IsBeside(a, b)) {
            const double scaledSine = std::fabs(Dot(a, m_normal));
            if (!(scaledSine > farthest.sine * m_length))
                return false;
            farthest = Separation::OfSine(scaledSine / m_length);
            return true;
        }
        const double squaredChord = std::min(Dot(a, a), Dot(b, b));
        if (!(squaredChord > farthest.squaredChord))
            return false;
        farthest = Separation::OfSquaredChord(squaredChord);
        return true;
    }

private:
    /// Whether the nearest place lies between the ends. Ends that coincide have no line between them.
    bool IsBeside(const Vector& a, const Vector& b) const
    {
        return m_length > 0.0 && Dot(a, m_ahead) >= 0.0 && Dot(b, m_back) >= 0.0;
    }

    Vector m_from;
    Vector m_to;
    Vector m_normal;
    double m_length;
    Vector m_ahead;
    Vector m_back;
};

/// The points from `first` to `last`, both kept.
struct Piece
{
    std::size_t first;
    std::size_t last;
};

/// Marks what must be kept between the ends of \p whole.
void Mark(
    const std::vector<Vector>& directions, Piece whole, const Separation& tolerance, std::vector<bool>& kept)
{
    std::vector<Piece> open{whole};
    while (!open.empty()) {
        const Piece piece = open.back();
        open.pop_back();
        const Line line(directions[piece.first], directions[piece.last]);
        Separation farthest = tolerance;
        std::size_t split = piece.first;
        for (std::size_t i = piece.first + 1; i < piece.last; ++i) {
            if (line.Raise(farthest, directions[i]))
                split = i;
        }
        if (split == piece.first)
            continue;
        kept[split] = true;
        open.push_back({piece.first, split});
        open.push_back({split, piece.last});
    }
}

} // namespace

std::vector<std::size_t> ZrTrackSimplify::Kept(
    zr::span<const ZrTrackPoint> points, double tolerance, double maxGap)
{
    std::vector<bool> kept(points.size(), !(tolerance >= 0.0));
    std::vector<Vector> directions;
    directions.reserve(points.size());
    for (const ZrTrackPoint& point : points)
        directions.push_back(Direction(point));

    std::size_t behind = 0; // the segment before
    ZrTrackSegments segments(points, maxGap);
    // The last round is the one behind the last segment.
    for (bool more = true; more;) {
        more = segments.Next();
        if (segments.First() > behind)
            kept[behind] = true;
        if (!more)
            break;
        const Piece piece{segments.First(), segments.End() - 1};
        kept[piece.first] = kept[piece.last] = true;
        if (tolerance >= 0.0)
            Mark(directions, piece, Separation::OfAngle(tolerance / earthRadius), kept);
        behind = segments.End();
    }

    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (kept[i])
            indices.push_back(i);
    }
    return indices;
}

double ZrTrackSimplify::Distance(const ZrTrackPoint& point, const ZrTrackPoint& from, const ZrTrackPoint& to)
{
    if (!point.HasPosition() || !from.HasPosition() || !to.HasPosition())
        return std::numeric_limits<double>::quiet_NaN();
    Separation separation;
    Line(Direction(from), Direction(to)).Raise(separation, Direction(point));
    return separation.Angle() * earthRadius;
}
