// Findings of plans as pins: several that would cover one another are one, with their number.

#include "ZrKit/chart/ZrPlanChart.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"

#include <QPolygonF>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

constexpr int imagePin = 7; ///< of `ZrGlSurface::m_markers`
constexpr double pinSize = 18.0; ///< half its side, design pixels
constexpr double groupSize = 25.0; ///< likewise, with a number in it
constexpr float numberSize = 17.0F; ///< design pixels

/// The shape of a pin, halves of its side.
constexpr double pinPoint = 11.0 / 12.0; ///< of its point below its middle
constexpr double headAbove = 14.2 / 12.0; ///< of the middle of its head above its point
constexpr double headRadius = 8.2 / 12.0;
constexpr double stemHeight = 8.0 / 12.0; ///< up to where it is as wide as its head
constexpr double stemRadius = 4.5 / 12.0;

double SizeOf(const ZrPinGroups::Group& group)
{
    return group.members.size() > 1 ? groupSize : pinSize;
}

/// Head and stem, from where the pin points to, y down.
std::array<QRectF, 2> RectsOf(double size)
{
    const double top = -(headAbove + headRadius) * size;
    const double neck = -stemHeight * size;
    return {QRectF(QPointF(-headRadius * size, top), QPointF(headRadius * size, neck)),
        QRectF(QPointF(-stemRadius * size, neck), QPointF(stemRadius * size, 0.0))};
}

double Distance(const QPointF& a, const QPointF& b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

} // namespace

void ZrPlanChart::SetFindings(const std::vector<ZrRouteFinding>& findings)
{
    m_findings.clear();
    m_findingOf.clear();
    // They count findings of before.
    m_pins = ZrPinGroups();
    const auto add = [&](ZrRouteFinding::eSeverity severity) {
        for (std::size_t i = 0; i < findings.size(); ++i) {
            if (findings[i].severity != severity || !findings[i].place.IsValid())
                continue;
            m_findings.push_back(ToWorld(findings[i].place));
            m_findingOf.push_back(static_cast<int>(i));
        }
    };
    add(ZrRouteFinding::eError);
    m_errors = m_findings.size();
    add(ZrRouteFinding::eWarning);
    m_areMarksDue = true;
}

void ZrPlanChart::AddPins(std::vector<ZrMapMarker>& markers)
{
    std::vector<ZrMapLabel> numbers;
    for (const ZrPinGroups::Group& group : m_pins.Groups()) {
        const bool isError = static_cast<std::size_t>(group.members.front()) < m_errors;
        ZrMapMarker marker;
        marker.position = group.at;
        // Its point is where it belongs, and leaves the waypoint there to be seen.
        marker.size = SizeOf(group);
        marker.offset = {0.0, marker.size * pinPoint};
        marker.image = imagePin;
        marker.colour = isError ? ZrTheme::errorCol : ZrTheme::warnCol;
        markers.push_back(marker);
        if (group.members.size() < 2)
            continue;
        ZrMapLabel number;
        number.text = QString::number(group.members.size());
        number.position = group.at;
        number.offset = {0.0, -headAbove * marker.size};
        number.alignX = ZrMapLabel::alignCentre;
        number.alignY = ZrMapLabel::alignMiddle;
        number.size = ZrLegible::Design(numberSize);
        number.colour = ZrTheme::sea;
        // Over the hole of the head.
        number.halo = marker.colour;
        number.haloWidth = 4.0F;
        numbers.push_back(number);
    }
    QFont bold = ZrTheme::font;
    bold.setBold(true);
    m_numberLayer.SetFont(bold);
    m_numberLayer.SetLabels(std::move(numbers));
}

std::vector<QRectF> ZrPlanChart::PinRects(const ZrMapView& view) const
{
    std::vector<QRectF> rects;
    const double reach = 2.0 * groupSize * m_pixel;
    const QRectF seen = QRectF(0.0, 0.0, view.Width(), view.Height()).adjusted(-reach, -reach, reach, reach);
    for (const ZrPinGroups::Group& group : m_pins.Groups()) {
        const QPointF at = view.ToPixel(group.at);
        if (!seen.contains(at))
            continue;
        for (const QRectF& rect : RectsOf(SizeOf(group)))
            rects.emplace_back(at + rect.topLeft() * m_pixel, rect.size() * m_pixel);
    }
    return rects;
}

/// Design pixels right and down from a place, of pins that may come within \p reach of it.
std::vector<QRectF> ZrPlanChart::PinsFrom(const QPointF& origin, double reach) const
{
    std::vector<QRectF> rects;
    for (const int index : m_pins.Near(origin, (reach + 2.0 * groupSize) * m_scale)) {
        const ZrPinGroups::Group& group = m_pins.Groups()[static_cast<std::size_t>(index)];
        const QPointF at = Turned(group.at - origin);
        for (const QRectF& rect : RectsOf(SizeOf(group)))
            rects.push_back(rect.translated(at));
    }
    return rects;
}

ZrPlanChart::Pin ZrPlanChart::PinAt(const ZrMapView& view, const QPointF& pixel, double radius) const
{
    const ZrPinGroups::Group* nearest = nullptr;
    for (const ZrPinGroups::Group& group : m_pins.Groups()) {
        const QPointF point = view.ToPixel(group.at);
        const double distance = Distance(point - QPointF(0.0, headAbove * SizeOf(group) * m_pixel), pixel);
        if (distance > radius || distance > Distance(point, pixel))
            continue;
        radius = distance;
        nearest = &group;
    }
    Pin pin;
    if (!nearest)
        return pin;
    QPolygonF places;
    double width = 0.0;
    for (const int member : nearest->members) {
        const auto index = static_cast<std::size_t>(member);
        pin.findings.push_back(m_findingOf[index]);
        places.append(m_findings[index]);
        width = std::max(width, Distance(m_findings[index], nearest->at));
    }
    pin.bounds = places.boundingRect();
    // The scale is known by steps.
    pin.hasParts = width > 1.2 * LeastPin * m_pixel * ZrMapView::NearestScale;
    return pin;
}
