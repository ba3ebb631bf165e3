// How the time line looks.

#include "ZrKit/review/ZrPlotDecimator.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrUtil/ZrTheme.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

QColor Faded(QColor colour, double alpha)
{
    colour.setAlphaF(alpha);
    return colour;
}

} // namespace

void ZrTimeBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), ZrTheme::toolBack);
    const QRect axis = Axis();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Faded(ZrTheme::ctrlOutlineCol, 0.18));
    painter.drawRoundedRect(axis, ZrTheme::DpI(4), ZrTheme::DpI(4));
    painter.setFont(SmallFont());
    if (!m_line.Log()) {
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(axis, Qt::AlignCenter, tr("No recording"));
        return;
    }
    PaintProfile(painter, axis);
    if (m_line.AreGapsCut())
        PaintCuts(painter, axis);
    else
        PaintGaps(painter, axis);
    PaintRange(painter, axis);
    PaintTicks(painter, axis);
    PaintEvents(painter, axis);
    PaintCursor(painter, axis);
}

void ZrTimeBar::PaintProfile(QPainter& painter, const QRect& axis)
{
    if (!m_profile || m_profile->Count() == 0)
        return;
    const ZrPlotSeries::Extent extent = m_profile->ExtentOf(0, m_profile->Count());
    if (!extent.IsKnown())
        return;
    const QVector<double> key{static_cast<double>(m_profile->Count()), m_line.VisibleBegin(),
        m_line.VisibleEnd(), m_line.AreGapsCut() ? 1.0 : 0.0, m_line.LongestStep(),
        static_cast<double>(ZrTheme::ctrlHighlightCol.rgba()), static_cast<double>(ZrTheme::DpF(6))};
    m_picture.Paint(painter, axis, key, [&](QPainter& to) {
        to.setRenderHints(painter.renderHints());
        PaintCurve(to, axis, extent);
    });
}

void ZrTimeBar::PaintCurve(QPainter& painter, const QRect& axis, const ZrPlotSeries::Extent& extent) const
{
    ZrPlotDecimator decimator;
    decimator.mostStep = m_line.LongestStep();
    const std::vector<double> columns = m_line.Columns(axis.width());
    const double low = std::min(static_cast<double>(extent.min), 0.0);
    const double span = std::max(static_cast<double>(extent.max) - low, 1e-3);
    const double height = axis.height() - ZrTheme::DpF(6);
    QPainterPath path;
    QPointF last;
    const auto close = [&] {
        if (path.elementCount() == 0)
            return;
        path.lineTo(last.x(), axis.y());
        path.closeSubpath();
        painter.fillPath(path, Faded(ZrTheme::ctrlHighlightCol, 0.28));
        path = QPainterPath();
    };
    for (const ZrPlotDecimator::Point& point : decimator.Decimate(*m_profile, columns)) {
        if (std::isnan(point.y)) {
            close();
            continue;
        }
        const QPointF at(axis.x() + static_cast<double>(point.x),
            axis.y() + (static_cast<double>(point.y) - low) / span * height);
        if (path.elementCount() == 0)
            path.moveTo(at.x(), axis.y());
        path.lineTo(at);
        last = at;
    }
    close();
}

void ZrTimeBar::PaintCuts(QPainter& painter, const QRect& axis)
{
    int taken = axis.x();
    for (const ZrTimeLine::Cut& cut : m_line.Cuts(axis.width())) {
        const int x = axis.x() + qRound(cut.fraction * axis.width());
        painter.fillRect(QRect(x - 1, axis.y(), 3, axis.height()), ZrTheme::toolBack);
        painter.setPen(QPen(ZrTheme::warnCol, 1, Qt::DashLine));
        painter.drawLine(x, axis.y(), x, axis.bottom());
        const QString text = ZrTimeText::Elapsed(cut.seconds);
        const int width = painter.fontMetrics().horizontalAdvance(text);
        const int left = x + ZrTheme::DpI(4);
        if (left < taken || left + width > axis.right())
            continue;
        painter.setPen(ZrTheme::warnCol);
        painter.drawText(QRect(left, axis.y(), width, axis.height()), Qt::AlignLeft | Qt::AlignVCenter, text);
        taken = left + width + ZrTheme::DpI(8);
    }
}

/// In real time: hatched, nothing was recorded there.
void ZrTimeBar::PaintGaps(QPainter& painter, const QRect& axis)
{
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (const ZrGaps::Gap& gap : m_line.Gaps().All()) {
        const double from = std::max(XOf(gap.begin), static_cast<double>(axis.x()));
        const double to = std::min(XOf(gap.end), axis.right() + 1.0);
        if (!(to - from >= 1.0))
            continue;
        const QRectF area(from, axis.y(), to - from, axis.height());
        painter.fillRect(area, ZrTheme::toolBack);
        painter.fillRect(area, QBrush(Faded(ZrTheme::warnCol, 0.5), Qt::BDiagPattern));
        const QString text = ZrTimeText::Elapsed(gap.end - gap.begin);
        const int width = painter.fontMetrics().horizontalAdvance(text) + ZrTheme::DpI(12);
        if (width > area.width())
            continue;
        const QRectF label(
            area.center().x() - width / 2.0, axis.center().y() - ZrTheme::DpI(11), width, ZrTheme::DpI(22));
        painter.fillRect(label, ZrTheme::toolBack);
        painter.setPen(ZrTheme::warnCol);
        painter.drawText(label, Qt::AlignCenter, text);
    }
    painter.setRenderHint(QPainter::Antialiasing);
}

void ZrTimeBar::PaintRange(QPainter& painter, const QRect& axis)
{
    painter.setClipRect(rect().adjusted(0, 0, 0, 0));
    const auto clampX
        = [&axis](double x) { return std::clamp(x, static_cast<double>(axis.left()), axis.right() + 1.0); };
    if (!std::isnan(m_range[0]) && !std::isnan(m_range[1])) {
        const double from = clampX(std::min(HandleX(0), HandleX(1)));
        const double to = clampX(std::max(HandleX(0), HandleX(1)));
        painter.fillRect(QRectF(from, axis.y(), to - from, axis.height()), Faded(ZrTheme::goodCol, 0.25));
    }
    for (int end = 0; end < 2; ++end) {
        const double x = HandleX(end);
        if (x < axis.left() - 1 || x > axis.right() + 1)
            continue;
        painter.setPen(QPen(ZrTheme::goodCol, ZrTheme::DpI(2)));
        painter.drawLine(QPointF(x, axis.y()), QPointF(x, axis.bottom()));
        const double side = ZrTheme::DpF(18);
        const QRectF box(end == 0 ? x - side : x, axis.y() - side, side, side);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ZrTheme::goodCol);
        painter.drawRect(box);
        painter.setPen(ZrTheme::goodCol.lightness() > 127 ? Qt::black : Qt::white);
        painter.drawText(box, Qt::AlignCenter, end == 0 ? tr("A") : tr("B"));
    }
}

void ZrTimeBar::PaintTicks(QPainter& painter, const QRect& axis)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const auto measure = [&metrics](const QString& text) { return metrics.horizontalAdvance(text); };
    const int top = axis.bottom() + 1;
    for (const ZrTimeLine::Tick& tick : m_line.Ticks(axis.width(), measure)) {
        const int x = axis.x() + qRound(tick.fraction * axis.width());
        const bool isLong = !tick.label.isEmpty();
        painter.setPen(QPen(ZrTheme::ctrlOutlineCol, 1));
        painter.drawLine(x, top - ZrTheme::DpI(isLong ? 8 : 4), x, top + ZrTheme::DpI(isLong ? 4 : 0));
        if (!isLong)
            continue;
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(QRect(axis.x() + tick.labelLeft, top + ZrTheme::DpI(2),
                             metrics.horizontalAdvance(tick.label) + 2, metrics.height()),
            Qt::AlignLeft | Qt::AlignVCenter, tick.label);
    }
}

void ZrTimeBar::PaintEvents(QPainter& painter, const QRect& axis)
{
    const double pole = ZrTheme::DpF(16);
    const double flag = ZrTheme::DpF(10);
    const auto paint = [&](std::size_t i, const QColor& colour) {
        const double x = XOf(m_events[i]);
        if (x < axis.left() - 1 || x > axis.right() + 1)
            return;
        painter.setPen(QPen(colour, std::max(ZrTheme::DpI(2), 1)));
        painter.drawLine(QPointF(x, axis.y() - pole), QPointF(x, axis.bottom()));
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        const QPointF corners[]
            = {{x, axis.y() - pole}, {x + flag, axis.y() - pole + flag / 2.0}, {x, axis.y() - pole + flag}};
        painter.drawPolygon(corners, 3);
    };
    for (std::size_t i = 0; i < m_events.size(); ++i) {
        if (static_cast<int>(i) != m_currentEvent)
            paint(i, ZrTheme::warnCol);
    }
    if (m_currentEvent >= 0 && m_currentEvent < static_cast<int>(m_events.size()))
        paint(static_cast<std::size_t>(m_currentEvent), ZrTheme::ctrlCol);
}

void ZrTimeBar::PaintCursor(QPainter& painter, const QRect& axis)
{
    const double x = XOf(m_cursor);
    if (!(x >= axis.left() - 1 && x <= axis.right() + 1))
        return;
    const double half = ZrTheme::DpF(7);
    painter.setPen(QPen(ZrTheme::toolBack, ZrTheme::DpI(5)));
    painter.drawLine(QPointF(x, axis.y()), QPointF(x, axis.bottom()));
    painter.setPen(QPen(ZrTheme::ctrlCol, std::max(ZrTheme::DpI(2), 1)));
    painter.drawLine(QPointF(x, axis.y()), QPointF(x, axis.bottom()));
    painter.setPen(QPen(ZrTheme::toolBack, 1));
    painter.setBrush(ZrTheme::ctrlCol);
    painter.drawEllipse(QPointF(x, axis.bottom() - half), half, half);
}
