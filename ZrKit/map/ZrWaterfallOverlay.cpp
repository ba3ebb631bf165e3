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
constexpr double labelMargin = 2.0; ///< pixels beside a number
constexpr int mostHalvings = 4; ///< of the step, until a number fits

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

std::vector<ZrWaterfallOverlay::Mark> ZrWaterfallOverlay::Scale(
    const ZrWaterfallLayout& layout, const QFont& font)
{
    if (!(layout.MetresPerPixel() > 0.0))
        return {};
    const QFontMetrics metrics(font);
    const QRect rect = layout.View().rect;
    const double scale = ZrUnits::shortLengthScale;
    const double most = std::max(layout.Range(sidePort), layout.Range(sideStarboard)) * scale;
    const double room = 5.0 * metrics.averageCharWidth() + ScaleHeight(font);
    const double middle = MiddleOf(layout);
    const QString unit = ZrUnits::GetShortLengthUnits();
    const double unitHalf = metrics.horizontalAdvance(unit) / 2.0 + labelMargin;
    const double left = rect.x();
    const double right = rect.x() + rect.width();
    int count = std::max(static_cast<int>(layout.WiderColumns() / room) + 1, 3);
    std::vector<Mark> widest;
    for (int halving = 0; halving <= mostHalvings; ++halving, count = 2 * count - 1) {
        const ZrAxisTicks ticks(0.0, most, count);
        std::vector<Mark> marks;
        bool isDone = true;
        if (middle >= left && middle <= right)
            marks.push_back(
                {middle, middle - unitHalf < left || middle + unitHalf > right ? QString() : unit});
        for (const int sign : {-1, 1}) {
            if (layout.Columns(sign < 0 ? sidePort : sideStarboard) == 0)
                continue;
            bool hasText = false;
            // The end of the number before, counted from the middle.
            double taken = marks.empty() || marks.front().text.isEmpty() ? 0.0 : unitHalf;
            for (const double value : ticks.Values()) {
                const double away = value / scale / layout.MetresPerPixel();
                const double x = middle + sign * away;
                if (value == 0.0 || x < left || x > right)
                    continue;
                const QString text = ticks.Label(value);
                const double half = metrics.horizontalAdvance(text) / 2.0 + labelMargin;
                const bool isClear = x - half >= left && x + half <= right && away - half >= taken;
                marks.push_back({x, isClear ? text : QString()});
                if (isClear)
                    taken = away + half;
                hasText = hasText || isClear;
            }
            isDone = isDone && hasText;
        }
        if (isDone)
            return marks;
        if (halving == 0)
            widest = std::move(marks);
    }
    return widest;
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
    painter.setPen(colour);
    for (const Mark& mark : Scale(layout, font)) {
        painter.drawLine(QPointF(mark.x, top - high / 4.0), QPointF(mark.x, top));
        const double half = metrics.horizontalAdvance(mark.text) / 2.0 + labelMargin;
        painter.drawText(QRectF(mark.x - half, top, 2.0 * half, high), Qt::AlignCenter, mark.text);
    }
    painter.restore();
}
