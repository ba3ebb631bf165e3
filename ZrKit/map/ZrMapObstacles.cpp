#include "ZrKit/map/ZrMapObstacles.h"

#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMarkerLayer.h"
#include "ZrKit/map/ZrSegmentClip.h"
#include "ZrKit/map/ZrTrackLayer.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

constexpr double casing = 1.0; ///< of a track, at each side, design pixels
constexpr double tolerance = 0.5; ///< pixels that a line may be drawn beside its positions

bool IsSame(const ZrMapView& a, const ZrMapView& b)
{
    return a.Width() == b.Width() && a.Height() == b.Height() && a.Centre() == b.Centre()
        && a.Scale() == b.Scale() && a.Rotation() == b.Rotation();
}

/// The positions that \p box, pixels, is over.
QRectF WorldOf(const ZrMapView& view, const QRectF& box)
{
    const QPointF corners[] = {view.ToWorld(box.topLeft()), view.ToWorld(box.topRight()),
        view.ToWorld(box.bottomLeft()), view.ToWorld(box.bottomRight())};
    QPointF least = corners[0];
    QPointF most = corners[0];
    for (const QPointF& corner : corners) {
        least = {std::min(least.x(), corner.x()), std::min(least.y(), corner.y())};
        most = {std::max(most.x(), corner.x()), std::max(most.y(), corner.y())};
    }
    return {least, most};
}

} // namespace

std::vector<QRectF> ZrMapObstacles::Boxes(const ZrMarkerLayer& markers, const ZrMapView& view, double pixel)
{
    std::vector<QRectF> boxes;
    if (!markers.m_isVisible)
        return boxes;
    const QRectF screen(0.0, 0.0, view.Width(), view.Height());
    const QRectF world = view.Bounds();
    const double turn = qDegreesToRadians(view.Rotation());
    for (const ZrMapMarker& marker : markers.Markers()) {
        // Of a long plan nearly all are far away; nor is anything shown of what is not finite.
        const double reach
            = (2.0 * marker.size + std::hypot(marker.offset.x(), marker.offset.y())) * pixel * view.Scale();
        const QPointF& at = marker.position;
        if (!std::isfinite(reach)
            || !(at.x() > world.left() - reach && at.x() < world.right() + reach
                && at.y() > world.top() - reach && at.y() < world.bottom() + reach))
            continue;
        QPointF offset(marker.offset.x(), -marker.offset.y());
        if (marker.isTurning)
            offset = {offset.x() * std::cos(turn) + offset.y() * std::sin(turn),
                offset.y() * std::cos(turn) - offset.x() * std::sin(turn)};
        const QPointF middle = view.ToPixel(at) + offset * pixel;
        const double half = marker.size * pixel;
        const QRectF box(middle.x() - half, middle.y() - half, 2.0 * half, 2.0 * half);
        if (box.intersects(screen))
            boxes.push_back(box);
    }
    return boxes;
}

bool ZrMapObstacles::Look(const ZrMapView& view, double pixel)
{
    std::vector<QRectF> boxes;
    for (const ZrMarkerLayer* markers : m_markers) {
        const std::vector<QRectF> more = Boxes(*markers, view, pixel);
        boxes.insert(boxes.end(), more.begin(), more.end());
    }
    for (const ZrLabelLayer* names : m_names) {
        if (names->m_isVisible)
            boxes.insert(boxes.end(), names->Boxes().begin(), names->Boxes().end());
    }
    Counts counts;
    for (const ZrTrackLayer* track : m_tracks)
        counts.emplace_back(track->m_isVisible ? track->m_track.Count() : 0, track->m_track.ClearCount());
    const bool isSame = boxes == m_boxes && counts == m_counts && pixel == m_pixel && IsSame(view, m_view);
    m_view = view;
    m_pixel = pixel;
    m_boxes = std::move(boxes);
    m_counts = std::move(counts);
    return !isSame;
}

bool ZrMapObstacles::HasMark(const QRectF& box) const
{
    return std::any_of(
        m_boxes.begin(), m_boxes.end(), [&box](const QRectF& other) { return other.intersects(box); });
}

bool ZrMapObstacles::HasLine(const QRectF& box) const
{
    const int level = ZrTrackLod::LevelOf(tolerance * m_view.Scale());
    return std::any_of(m_tracks.begin(), m_tracks.end(), [&](const ZrTrackLayer* layer) {
        if (!layer->m_isVisible)
            return false;
        const ZrTrackLod& track = layer->m_track;
        const double beside = (static_cast<double>(layer->m_width) / 2.0 + casing) * m_pixel;
        const QRectF around = box.adjusted(-beside, -beside, beside, beside);
        const auto isBeside = [&](const ZrTrackLod::Segment& line) {
            double begin = 0.0;
            double end = 0.0;
            return !ZrSegmentClip::Of(
                m_view.ToPixel(track[line.from]), m_view.ToPixel(track[line.to]), around, begin, end);
        };
        return !track.ForEach(WorldOf(m_view, around), level, track.Count(), isBeside);
    });
}
