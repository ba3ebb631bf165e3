#include "ZrKit/survey/ZrTargetMarker.h"

#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/survey/ZrSurveyRecording.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t firstLine = 1; ///< as people count
constexpr double mostBeside = 10.0; ///< seconds from a fix to a ping that is placed by it alone
constexpr double mostBetween = 60.0; ///< seconds between two fixes; beyond, a place between them is a guess

} // namespace

void ZrTargetMarker::SetRecording(const ZrSurveyRecording* recording)
{
    m_recording = recording;
    Clear();
}

bool ZrTargetMarker::HasSonar() const
{
    return m_recording && m_recording->HasSonar();
}

void ZrTargetMarker::Clear()
{
    m_error.clear();
    m_target.reset();
    m_end.reset();
    m_extent.reset();
    m_shadow.reset();
    m_wantsShadow = false;
}

bool ZrTargetMarker::Fail(const QString& error)
{
    m_error = error;
    return false;
}

void ZrTargetMarker::SetWantsShadow(bool wants)
{
    m_wantsShadow = wants && m_target;
}

std::optional<ZrSonarSpot> ZrTargetMarker::SpotAt(const ZrWaterfallPoint& point) const
{
    if (!HasSonar() || !point.IsValid())
        return {};
    const auto ping = static_cast<std::size_t>(std::max(std::lround(point.ping), 0L));
    if (ping >= m_recording->Pings().size())
        return {};
    const ZrSonarChannel channel = m_recording->Pings().Side(ping, point.side);
    const double sample = point.slantRange / channel.SampleLength() - 0.5;
    if (!std::isfinite(sample))
        return {};
    return ZrSonarSpot{ping, point.side, std::clamp(sample, 0.0, channel.sampleCount - 1.0)};
}

bool ZrTargetMarker::Tap(const ZrWaterfallPoint& point)
{
    m_error.clear();
    const std::optional<ZrSonarSpot> spot = SpotAt(point);
    if (!spot)
        return Fail(tr("Nothing was recorded there."));
    return m_wantsShadow ? MarkShadow(*spot) : Mark(*spot);
}

/// The last position known is none for pings long behind it. The place of a spot is that of its pose: by the
/// time of the ping, wherever it lies on the axis.
bool ZrTargetMarker::HasPlace(const ZrSonarSpot& spot)
{
    const double gap = m_recording->Pings()[spot.ping].pose.gap;
    const auto isBetween
        = [&] { return m_recording->KnowsVehicle(m_recording->TimeOfPing(static_cast<double>(spot.ping))); };
    return gap <= mostBeside || (gap <= mostBetween && isBetween())
        || Fail(tr("No position was recorded near line %1.").arg(spot.ping + firstLine));
}

bool ZrTargetMarker::Mark(const ZrSonarSpot& spot)
{
    ZrSonarMeasure measure(m_recording->Geo(), firstLine);
    ZrSonarTarget target;
    if (!measure.Place(spot, target))
        return Fail(measure.Error());
    if (!HasPlace(spot))
        return false;
    Clear();
    m_target = target;
    return true;
}

bool ZrTargetMarker::MarkShadow(const ZrSonarSpot& spot)
{
    if (spot.side != m_target->spot.side)
        return Fail(tr("The shadow lies on the target's side of the track."));
    ZrSonarMeasure measure(m_recording->Geo(), firstLine);
    ZrSonarMeasure::Shadow shadow;
    if (!measure.Height(m_target->spot, spot.sample, shadow))
        return Fail(measure.Error());
    m_shadow = shadow;
    m_shadowEnd = {m_target->spot.ping, spot.side, spot.sample};
    m_target->height = shadow.height;
    m_wantsShadow = false;
    return true;
}

bool ZrTargetMarker::Draw(const ZrWaterfallPoint& from, const ZrWaterfallPoint& to)
{
    m_error.clear();
    const std::optional<ZrSonarSpot> a = SpotAt(from);
    const std::optional<ZrSonarSpot> b = SpotAt(to);
    if (!a || !b)
        return Fail(tr("Nothing was recorded at one of the ends."));
    ZrSonarMeasure measure(m_recording->Geo(), firstLine);
    ZrSonarTarget target;
    ZrSonarMeasure::Extent extent;
    if (!measure.Place(*a, target) || !measure.Between(*a, *b, extent))
        return Fail(measure.Error());
    if (!HasPlace(*a) || !HasPlace(*b))
        return false;
    Clear();
    m_target = target;
    m_target->length = extent.length;
    m_target->width = extent.width;
    m_end = b;
    m_extent = extent;
    return true;
}

QPointF ZrTargetMarker::PixelOf(const ZrWaterfallLayout& layout, const ZrSonarSpot& spot) const
{
    const ZrSonarChannel channel = m_recording->Pings().Side(spot.ping, spot.side);
    return layout.ToPixel(
        static_cast<double>(spot.ping), spot.side, (spot.sample + 0.5) * channel.SampleLength());
}

void ZrTargetMarker::Paint(
    QPainter& painter, const ZrWaterfallLayout& layout, double unit, const QColor& colour) const
{
    if (!m_target)
        return;
    const QPointF at = PixelOf(layout, m_target->spot);
    if (std::isnan(at.x()))
        return;
    const auto draw = [&] {
        painter.drawEllipse(at, 12.0 * unit, 12.0 * unit);
        painter.drawLine(at + QPointF(12.0 * unit, 0.0), at + QPointF(20.0 * unit, 0.0));
        painter.drawLine(at - QPointF(12.0 * unit, 0.0), at - QPointF(20.0 * unit, 0.0));
        const QPointF end = m_end ? PixelOf(layout, *m_end) : QPointF(std::nan(""), 0.0);
        if (!std::isnan(end.x())) {
            painter.drawLine(at, end);
            painter.drawEllipse(end, 5.0 * unit, 5.0 * unit);
        }
        const QPointF shadow = m_shadow ? PixelOf(layout, m_shadowEnd) : QPointF(std::nan(""), 0.0);
        if (!std::isnan(shadow.x())) {
            painter.drawLine(at, shadow);
            painter.drawLine(shadow - QPointF(0.0, 8.0 * unit), shadow + QPointF(0.0, 8.0 * unit));
        }
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    // The dark edge is what shows on bright echoes.
    painter.setPen(QPen(QColor(0, 0, 0, 200), 5.0 * unit));
    draw();
    painter.setPen(QPen(colour, 2.0 * unit));
    draw();
    painter.restore();
}
