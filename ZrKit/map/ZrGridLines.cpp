#include "ZrKit/map/ZrGridLines.h"

#include "ZrKit/map/ZrGridSteps.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrUnits.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double surveyFoot = 1200.0 / 3937.0; // metres
/// Positions beyond it are on no grid, metres.
constexpr double farthest = 1e8;
/// Degrees for derivatives of the projection.
constexpr double small = 1e-5;

QString Eastings(double metres, double step)
{
    return ZrUnits::GetEString(metres, ZrGridSteps::Decimals(step), true);
}

QString Northings(double metres, double step)
{
    return ZrUnits::GetNString(metres, ZrGridSteps::Decimals(step), true);
}

struct Position
{
    double lat;
    double lng;
};

/// A projection and the part of it in which a grid is drawn.
class Window
{
public:
    Window(const ZrSphd& spheroid, const ZrProj& projection)
        : m_spheroid(spheroid)
        , m_projection(projection)
        , m_middle(qRadiansToDegrees(projection.lngOrigin))
    {
        const QPointF south = ToWorld({-ZrGridLines::FarthestLat, m_middle});
        const QPointF north = ToWorld({ZrGridLines::FarthestLat, m_middle});
        const QPointF east = ToWorld({0.0, m_middle + ZrGridLines::FarthestLng});
        m_halfWidth = std::fabs(east.x() - m_projection.falseEast);
        m_south = std::min(south.y(), north.y());
        m_north = std::max(south.y(), north.y());
    }

    bool IsValid() const
    {
        return std::isfinite(m_halfWidth) && std::isfinite(m_south) && std::isfinite(m_north)
            && m_halfWidth > 0.0 && m_north > m_south;
    }

    double West() const { return m_middle - ZrGridLines::FarthestLng; }

    double East() const { return m_middle + ZrGridLines::FarthestLng; }

    QPointF ToWorld(const Position& at) const
    {
        double east = 0.0;
        double north = 0.0;
        ZrUnits::LLToEN(m_spheroid, m_projection, at.lat, at.lng, east, north);
        return {east, north};
    }

    /// The position of what is nearest in the window.
    Position ToPosition(const QPointF& world) const
    {
        const double east = m_projection.falseEast
            + std::clamp(world.x() - m_projection.falseEast, -m_halfWidth, m_halfWidth);
        Position at{0.0, 0.0};
        ZrUnits::EN2LL(
            m_spheroid, m_projection, east, std::clamp(world.y(), m_south, m_north), at.lat, at.lng);
        at.lat = std::clamp(at.lat, -ZrGridLines::FarthestLat, ZrGridLines::FarthestLat);
        at.lng = std::clamp(at.lng, West(), East());
        return at;
    }

private:
    const ZrSphd& m_spheroid;
    const ZrProj& m_projection;
    double m_middle; ///< degrees
    double m_halfWidth = 0.0; ///< metres
    double m_south = 0.0;
    double m_north = 0.0;
};

double Distance(const QPointF& a, const QPointF& b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

/// What a view shows of the earth.
struct Extent
{
    double south = std::numeric_limits<double>::infinity();
    double north = -std::numeric_limits<double>::infinity();
    double west = std::numeric_limits<double>::infinity();
    double east = -std::numeric_limits<double>::infinity();
    double perLat = std::numeric_limits<double>::infinity(); ///< least metres of a degree
    double perLng = std::numeric_limits<double>::infinity();

    void Add(const Window& window, const QPointF& world)
    {
        const Position at = window.ToPosition(world);
        south = std::min(south, at.lat);
        north = std::max(north, at.lat);
        west = std::min(west, at.lng);
        east = std::max(east, at.lng);
        const QPointF here = window.ToWorld(at);
        perLat = std::min(perLat, Distance(here, window.ToWorld({at.lat + small, at.lng})) / small);
        perLng = std::min(perLng, Distance(here, window.ToWorld({at.lat, at.lng + small})) / small);
    }
};

Extent ExtentOf(const Window& window, const ZrMapView& view)
{
    constexpr int parts = 8;
    Extent extent;
    for (int j = 0; j <= parts; ++j) {
        for (int i = 0; i <= parts; ++i)
            extent.Add(
                window, view.ToWorld({view.Width() * i / double(parts), view.Height() * j / double(parts)}));
    }
    return extent;
}

/// A line of constant latitude or longitude.
ZrGridLines::Line Curve(const Window& window, const ZrMapView& view, const Position& from, const Position& to)
{
    constexpr double pixelsPerPart = 60.0;
    constexpr int mostParts = 64;
    const double length = Distance(window.ToWorld(from), window.ToWorld(to)) / view.Scale();
    const int parts = static_cast<int>(std::clamp(length / pixelsPerPart, 1.0, double(mostParts)));
    ZrGridLines::Line line;
    for (int i = 0; i <= parts; ++i) {
        const double t = static_cast<double>(i) / parts;
        line.points.push_back(
            window.ToWorld({from.lat + (to.lat - from.lat) * t, from.lng + (to.lng - from.lng) * t}));
    }
    return line;
}

enum class Edge
{
    top,
    bottom,
    left,
    right
};

struct Crossing
{
    QPointF at;
    QPointF inward; ///< the way of the line into the area
    Edge edge;

    bool IsSteep() const { return std::fabs(inward.y()) > std::fabs(inward.x()); }
};

Edge EdgeAt(const QPointF& p, const QRectF& area)
{
    const double distances[] = {std::fabs(p.y() - area.top()), std::fabs(p.y() - area.bottom()),
        std::fabs(p.x() - area.left()), std::fabs(p.x() - area.right())};
    return static_cast<Edge>(std::min_element(distances, distances + 4) - distances);
}

/// What is in \p area of the part of a line from \p a to \p b, as begin and end between 0 and 1.
bool Clip(const QPointF& a, const QPointF& b, const QRectF& area, double& begin, double& end)
{
    begin = 0.0;
    end = 1.0;
    const QPointF d = b - a;
    const double directions[] = {-d.x(), d.x(), -d.y(), d.y()};
    const double distances[]
        = {a.x() - area.left(), area.right() - a.x(), a.y() - area.top(), area.bottom() - a.y()};
    for (int i = 0; i < 4; ++i) {
        if (directions[i] == 0.0) {
            if (distances[i] < 0.0)
                return false;
            continue;
        }
        const double t = distances[i] / directions[i];
        if (directions[i] < 0.0)
            begin = std::max(begin, t);
        else
            end = std::min(end, t);
    }
    return begin <= end;
}

/// Where a line goes into \p area and out of it.
std::vector<Crossing> Crossings(const ZrGridLines::Line& line, const ZrMapView& view, const QRectF& area)
{
    std::vector<Crossing> crossings;
    for (std::size_t i = 1; i < line.points.size(); ++i) {
        const QPointF a = view.ToPixel(line.points[i - 1]);
        const QPointF b = view.ToPixel(line.points[i]);
        double begin = 0.0;
        double end = 0.0;
        const bool isFinite
            = std::isfinite(a.x()) && std::isfinite(a.y()) && std::isfinite(b.x()) && std::isfinite(b.y());
        if (!isFinite || !Clip(a, b, area, begin, end))
            continue;
        const QPointF from = a + (b - a) * begin;
        const QPointF to = a + (b - a) * end;
        if (begin > 0.0)
            crossings.push_back({from, b - a, EdgeAt(from, area)});
        if (end < 1.0)
            crossings.push_back({to, a - b, EdgeAt(to, area)});
    }
    return crossings;
}

/// The lower, the rather a text is put there.
int Rank(const Crossing& crossing)
{
    static constexpr int steep[] = {0, 1, 2, 3};
    static constexpr int flat[] = {2, 3, 0, 1};
    return (crossing.IsSteep() ? steep : flat)[static_cast<int>(crossing.edge)];
}

/// Whether a text of \p size goes after its position, to the right or down: \p isRather, unless it would
/// leave the area there.
bool IsAfter(bool isRather, double at, double size, double first, double last)
{
    const bool fitsAfter = at + size <= last;
    const bool fitsBefore = at - size >= first;
    return isRather ? fitsAfter || !fitsBefore : !fitsBefore;
}

/// The text of a line that meets the edge of \p area at \p crossing.
ZrMapLabel LabelAt(const Crossing& crossing, const QRectF& area, double inset, const QSizeF& size)
{
    // Lines that lean less are taken for upright or level.
    constexpr double lean = 0.1;
    const QPointF in = crossing.inward;
    const double w = size.width() + inset;
    const double h = size.height() + inset;
    bool isRight = crossing.edge != Edge::right;
    bool isBelow = crossing.edge != Edge::bottom;
    if (crossing.edge == Edge::top || crossing.edge == Edge::bottom)
        isRight = IsAfter(in.x() <= lean * std::fabs(in.y()), crossing.at.x(), w, area.left(), area.right());
    else
        isBelow = IsAfter(in.y() < -lean * std::fabs(in.x()), crossing.at.y(), h, area.top(), area.bottom());
    ZrMapLabel label;
    label.isOnScreen = true;
    label.alignX = isRight ? ZrMapLabel::alignLeft : ZrMapLabel::alignRight;
    label.alignY = isBelow ? ZrMapLabel::alignTop : ZrMapLabel::alignBottom;
    label.position = crossing.at + QPointF(isRight ? inset : -inset, isBelow ? inset : -inset);
    return label;
}

} // namespace

ZrGridLines::Lines ZrGridLines::Projected(const ZrMapView& view, double spacing)
{
    Lines lines;
    if (view.IsEmpty() || !(spacing > 0.0))
        return lines;
    const double unit = ZrUnits::GetEUnits() == QLatin1String("ftE") ? surveyFoot : 1.0;
    const double round = ZrGridSteps::Length(spacing * view.Scale() / unit);
    const double step = round * unit;
    // A step more, for the lines to leave the view at its edge.
    const QRectF box = view.Bounds().adjusted(-step, -step, step, step)
        & QRectF(-farthest, -farthest, 2 * farthest, 2 * farthest);
    if (box.isEmpty())
        return lines;
    for (const i64 k : ZrGridSteps::Multiples(box.left(), box.right(), step)) {
        const double x = static_cast<double>(k) * step;
        lines.push_back({true, Eastings(x, round), {{x, box.top()}, {x, box.bottom()}}});
    }
    for (const i64 k : ZrGridSteps::Multiples(box.top(), box.bottom(), step)) {
        const double y = static_cast<double>(k) * step;
        lines.push_back({false, Northings(y, round), {{box.left(), y}, {box.right(), y}}});
    }
    return lines;
}

ZrGridLines::Lines ZrGridLines::Geographic(
    const ZrMapView& view, double spacing, eGeoStyle style, const ZrSphd& spheroid, const ZrProj& projection)
{
    Lines lines;
    const Window window(spheroid, projection);
    if (view.IsEmpty() || !(spacing > 0.0) || !window.IsValid())
        return lines;
    const Extent extent = ExtentOf(window, view);
    const double ticks = static_cast<double>(ZrGridSteps::TicksPerDegree(style));
    const i64 latStep = ZrGridSteps::Angle(spacing * view.Scale() / extent.perLat, style);
    const i64 lngStep = ZrGridSteps::Angle(spacing * view.Scale() / extent.perLng, style);
    // A step more than was met: parallels bend, and corners were not the extremes.
    const double latMore = static_cast<double>(latStep) / ticks;
    const double lngMore = static_cast<double>(lngStep) / ticks;
    const double south = std::max(extent.south - latMore, -FarthestLat);
    const double north = std::min(extent.north + latMore, FarthestLat);
    const double west = std::max(extent.west - lngMore, window.West());
    const double east = std::min(extent.east + lngMore, window.East());
    for (const i64 k : ZrGridSteps::Multiples(west * ticks, east * ticks, static_cast<double>(lngStep))) {
        const double lng = static_cast<double>(k * lngStep) / ticks;
        Line line = Curve(window, view, {south, lng}, {north, lng});
        line.isNorthSouth = true;
        line.text = ZrGridSteps::LngText(k * lngStep, lngStep, style);
        lines.push_back(line);
    }
    for (const i64 k : ZrGridSteps::Multiples(south * ticks, north * ticks, static_cast<double>(latStep))) {
        const double lat = static_cast<double>(k * latStep) / ticks;
        Line line = Curve(window, view, {lat, west}, {lat, east});
        line.text = ZrGridSteps::LatText(k * latStep, latStep, style);
        lines.push_back(line);
    }
    return lines;
}

std::vector<ZrMapLabel> ZrGridLines::Labels(const Lines& lines, const ZrMapView& view, const QRectF& area,
    double inset, const std::vector<QSizeF>& sizes)
{
    std::vector<ZrMapLabel> labels;
    if (area.isEmpty() || view.IsEmpty())
        return labels;
    for (std::size_t i = 0; i < lines.size() && i < sizes.size(); ++i) {
        const std::vector<Crossing> crossings = Crossings(lines[i], view, area);
        const auto best = std::min_element(crossings.begin(), crossings.end(),
            [](const Crossing& a, const Crossing& b) { return Rank(a) < Rank(b); });
        if (best == crossings.end())
            continue;
        labels.push_back(LabelAt(*best, area, inset, sizes[i]));
        labels.back().text = lines[i].text;
    }
    return labels;
}
