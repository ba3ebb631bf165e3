#include "ZrKit/map/ZrGridLines.h"

#include "ZrKit/map/ZrGridSteps.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrSegmentClip.h"
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

bool IsSteep(const QPointF& way)
{
    return std::fabs(way.y()) > std::fabs(way.x());
}

struct Crossing
{
    QPointF at;
    QPointF inward; ///< the way of the line into the area
    Edge edge;
    double along; ///< from the begin of the line, pixels
};

Edge EdgeAt(const QPointF& p, const QRectF& area)
{
    const double distances[] = {std::fabs(p.y() - area.top()), std::fabs(p.y() - area.bottom()),
        std::fabs(p.x() - area.left()), std::fabs(p.x() - area.right())};
    return static_cast<Edge>(std::min_element(distances, distances + 4) - distances);
}

/// A straight part of a line, pixels.
struct Part
{
    QPointF from;
    QPointF way;
    double length;
};

/// Those that are finite.
std::vector<Part> PartsOf(const ZrGridLines::Line& line, const ZrMapView& view)
{
    std::vector<Part> parts;
    for (std::size_t i = 1; i < line.points.size(); ++i) {
        const QPointF from = view.ToPixel(line.points[i - 1]);
        const QPointF to = view.ToPixel(line.points[i]);
        const double length = Distance(from, to);
        if (std::isfinite(length))
            parts.push_back({from, to - from, length});
    }
    return parts;
}

/// Where a line goes into \p area and out of it.
std::vector<Crossing> Crossings(const std::vector<Part>& parts, const QRectF& area)
{
    std::vector<Crossing> crossings;
    double along = 0.0;
    for (const Part& part : parts) {
        const double before = along;
        along += part.length;
        double begin = 0.0;
        double end = 0.0;
        if (!ZrSegmentClip::Of(part.from, part.from + part.way, area, begin, end))
            continue;
        const QPointF from = part.from + part.way * begin;
        const QPointF to = part.from + part.way * end;
        if (begin > 0.0)
            crossings.push_back({from, part.way, EdgeAt(from, area), before + part.length * begin});
        if (end < 1.0)
            crossings.push_back({to, -part.way, EdgeAt(to, area), before + part.length * end});
    }
    return crossings;
}

/// The lower, the rather a text is put there.
int Rank(const Crossing& crossing)
{
    static constexpr int steep[] = {0, 1, 2, 3};
    static constexpr int flat[] = {2, 3, 0, 1};
    return (IsSteep(crossing.inward) ? steep : flat)[static_cast<int>(crossing.edge)];
}

/// Whether a text of \p size goes after its position, to the right or down: \p isRather, unless it would
/// leave the area there.
bool IsAfter(bool isRather, double at, double size, double first, double last)
{
    const bool fitsAfter = at + size <= last;
    const bool fitsBefore = at - size >= first;
    return isRather ? fitsAfter || !fitsBefore : !fitsBefore;
}

/// At what edge of its line a text is: to the right of its position or to the left, below it or above.
struct Side
{
    bool isRight;
    bool isBelow;
};

ZrMapLabel LabelAt(const QPointF& at, const Side& side, double inset, const QString& text)
{
    ZrMapLabel label;
    label.isOnScreen = true;
    label.alignX = side.isRight ? ZrMapLabel::alignLeft : ZrMapLabel::alignRight;
    label.alignY = side.isBelow ? ZrMapLabel::alignTop : ZrMapLabel::alignBottom;
    label.position = at + QPointF(side.isRight ? inset : -inset, side.isBelow ? inset : -inset);
    label.text = text;
    return label;
}

/// Places of the text of one line.
class Placing
{
public:
    Placing(const QRectF& area, double inset, const QSizeF& size, const QString& text)
        : m_area(area)
        , m_inset(inset)
        , m_size(size)
        , m_text(text)
    {
    }

    /// Where the line meets the edge at \p crossing, and at the other side of the line, if that has room.
    void AddAt(
        const Crossing& crossing, ZrGridLines::ePlace kind, std::vector<ZrGridLines::Place>& places) const
    {
        // Lines that lean less are taken for upright or level.
        constexpr double lean = 0.1;
        const QPointF in = crossing.inward;
        const double w = m_size.width() + m_inset;
        const double h = m_size.height() + m_inset;
        Side side{crossing.edge != Edge::right, crossing.edge != Edge::bottom};
        const bool isUpOrDown = crossing.edge == Edge::top || crossing.edge == Edge::bottom;
        if (isUpOrDown)
            side.isRight = IsAfter(
                in.x() <= lean * std::fabs(in.y()), crossing.at.x(), w, m_area.left(), m_area.right());
        else
            side.isBelow = IsAfter(
                in.y() < -lean * std::fabs(in.x()), crossing.at.y(), h, m_area.top(), m_area.bottom());
        Add(crossing.at, side, kind, places);
        bool& other = isUpOrDown ? side.isRight : side.isBelow;
        other = !other;
        if (m_area.contains(Add(crossing.at, side, kind, places)))
            return;
        places.pop_back();
    }

    /// Beside the line at \p at, on both sides.
    void AddAlong(const QPointF& at, bool isSteep, std::vector<ZrGridLines::Place>& places) const
    {
        for (const bool isAfter : {true, false}) {
            const Side side{isSteep ? isAfter : true, isSteep ? true : isAfter};
            if (!m_area.contains(Add(at, side, ZrGridLines::alongLine, places)))
                places.pop_back();
        }
    }

private:
    /// \returns what the text covers
    QRectF Add(const QPointF& at, const Side& side, ZrGridLines::ePlace kind,
        std::vector<ZrGridLines::Place>& places) const
    {
        ZrGridLines::Place place;
        place.label = LabelAt(at, side, m_inset, m_text);
        place.box = QRectF(QPointF(), m_size);
        place.box.moveTo(place.label.position
            - QPointF(side.isRight ? 0.0 : m_size.width(), side.isBelow ? 0.0 : m_size.height()));
        place.kind = kind;
        places.push_back(place);
        return place.box;
    }

    QRectF m_area;
    double m_inset;
    QSizeF m_size;
    QString m_text;
};

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

std::vector<ZrGridLines::Place> ZrGridLines::Places(
    const Line& line, const ZrMapView& view, const QRectF& area, double inset, const QSizeF& size)
{
    std::vector<Place> places;
    if (area.isEmpty() || view.IsEmpty())
        return places;
    const std::vector<Part> parts = PartsOf(line, view);
    std::vector<Crossing> crossings = Crossings(parts, area);
    std::stable_sort(crossings.begin(), crossings.end(),
        [](const Crossing& a, const Crossing& b) { return Rank(a) < Rank(b); });
    const Placing placing(area, inset, size, line.text);
    for (std::size_t i = 0; i < crossings.size(); ++i)
        placing.AddAt(crossings[i], i == 0 ? atEdge : atOtherEdge, places);
    if (crossings.size() < 2)
        return places;
    // A parallel bows away from what is straight between its ends.
    const double from = crossings.front().along;
    const double length = crossings.back().along - from;
    for (const double share : {0.5, 0.25, 0.75}) {
        double left = from + length * share;
        auto part = parts.begin();
        for (; part + 1 != parts.end() && left > part->length; ++part)
            left -= part->length;
        const double t = part->length > 0.0 ? left / part->length : 0.0;
        placing.AddAlong(part->from + part->way * t, IsSteep(part->way), places);
    }
    return places;
}

std::vector<ZrMapLabel> ZrGridLines::Labels(const Lines& lines, const ZrMapView& view, const QRectF& area,
    double inset, const std::vector<QSizeF>& sizes)
{
    std::vector<ZrMapLabel> labels;
    for (std::size_t i = 0; i < lines.size() && i < sizes.size(); ++i) {
        const std::vector<Place> places = Places(lines[i], view, area, inset, sizes[i]);
        if (!places.empty())
            labels.push_back(places.front().label);
    }
    return labels;
}
