#include "ZrKit/map/ZrWaterfallOverlay.h"

#include "ZrKit/map/ZrWaterfallLayout.h"
#include "ZrKit/review/ZrAxisTicks.h"
#include "ZrUtil/ZrUnits.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

const QColor bottomColour(64, 224, 255);
const QColor shade(0, 0, 0, 150);

double MiddleOf(const ZrWaterfallLayout& layout)
{
    return layout.View().rect.x() + layout.Columns(sidePort);
}

} // namespace

std::vector<QPolygonF> ZrWaterfallOverlay::Bottom(const ZrWaterfallLayout& layout)
{
    std::vector<QPolygonF> lines;
    if (!(layout.MetresPerPixel() > 0.0) || layout.IsSlantCorrected())
        return lines;
    const QRect rect = layout.View().rect;
    const bool isTop = layout.View().newest == ZrWaterfallSettings::newestTop;
    for (const eSonarSide side : {sidePort, sideStarboard}) {
        if (layout.Columns(side) == 0)
            continue;
        const double sign = side == sidePort ? -1.0 : 1.0;
        QPolygonF line;
        const auto end = [&lines, &line] {
            if (line.size() > 1)
                lines.push_back(line);
            line.clear();
        };
        for (const ZrWaterfallLayout::Row& row : layout.Rows()) {
            const double away = row.altitude / layout.MetresPerPixel();
            if (!row.isThere || !(away >= 0.0) || away > layout.Columns(side)) {
                end();
                continue;
            }
            const double along = (row.from + row.to) / 2.0;
            const double y = isTop ? along : rect.height() - along;
            line.append({MiddleOf(layout) + sign * away, rect.y() + y});
        }
        end();
    }
    return lines;
}

void ZrWaterfallOverlay::PaintBottom(QPainter& painter, const ZrWaterfallLayout& layout, double penWidth)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(bottomColour, std::max(penWidth, 1.0)));
    for (const QPolygonF& line : Bottom(layout))
        painter.drawPolyline(line);
    painter.restore();
}

int ZrWaterfallOverlay::ScaleHeight(const QFont& font)
{
    return QFontMetrics(font).height() + 4;
}

void ZrWaterfallOverlay::PaintScale(
    QPainter& painter, const ZrWaterfallLayout& layout, const QFont& font, const QColor& colour)
{
    if (!(layout.MetresPerPixel() > 0.0))
        return;
    painter.save();
    painter.setFont(font);
    const QFontMetrics metrics = painter.fontMetrics();
    const QRect rect = layout.View().rect;
    const int high = ScaleHeight(font);
    const int top = rect.bottom() + 1 - high;
    painter.fillRect(rect.x(), top, rect.width(), high, shade);
    const double scale = ZrUnits::shortLengthScale;
    const double most = std::max(layout.Range(sidePort), layout.Range(sideStarboard)) * scale;
    const double room = 5.0 * metrics.averageCharWidth() + high;
    const ZrAxisTicks ticks(0.0, most, std::max(static_cast<int>(layout.WiderColumns() / room) + 1, 3));
    painter.setPen(colour);
    for (const double value : ticks.Values()) {
        for (const int sign : {-1, 1}) {
            const double x = MiddleOf(layout) + sign * value / scale / layout.MetresPerPixel();
            if ((value == 0.0 && sign < 0) || x < rect.x() || x > rect.x() + rect.width())
                continue;
            painter.drawLine(QPointF(x, top - high / 4.0), QPointF(x, top));
            const QString text = value == 0.0 ? ZrUnits::GetShortLengthUnits() : ticks.Label(value);
            const double half = metrics.horizontalAdvance(text) / 2.0 + 2.0;
            if (x < rect.x() + half || x + half > rect.x() + rect.width())
                continue;
            painter.drawText(QRectF(x - half, top, 2.0 * half, high), Qt::AlignCenter, text);
        }
    }
    painter.restore();
}
