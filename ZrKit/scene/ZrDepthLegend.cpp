#include "ZrKit/scene/ZrDepthLegend.h"

#include "ZrKit/review/ZrAxisTicks.h"
#include "ZrKit/scene/ZrDepthColours.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr int mostTicks = 5;

QFont Small()
{
    return ZrLegible::Font(15);
}

int Margin()
{
    return std::max(ZrTheme::DpI(12), 6);
}

/// Numbers of the user's units for each metre.
double Scale()
{
    const double scale = ZrUnits::shortLengthScale;
    return scale > 0.0 && std::isfinite(scale) ? scale : 1.0;
}

ZrAxisTicks Ticks(double shallow, double deep)
{
    return {shallow * Scale(), deep * Scale(), mostTicks};
}

} // namespace

ZrDepthLegend::ZrDepthLegend(QWidget* parent, const QString& caption)
    : QWidget(parent)
    , m_caption(caption)
    , m_shallow(unknown)
    , m_deep(unknown)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(caption);
}

void ZrDepthLegend::SetRange(double shallow, double deep)
{
    const bool isRange = std::isfinite(shallow) && std::isfinite(deep) && shallow < deep;
    const bool isSame = isRange ? shallow == m_shallow && deep == m_deep : !HasRange();
    if (isSame)
        return;
    m_shallow = isRange ? shallow : unknown;
    m_deep = isRange ? deep : unknown;
    Restyle();
}

void ZrDepthLegend::Restyle()
{
    setAccessibleDescription(Caption());
    updateGeometry();
    update();
}

QString ZrDepthLegend::Caption() const
{
    return QStringLiteral("%1, %2").arg(m_caption, ZrUnits::GetShortLengthUnits());
}

double ZrDepthLegend::Step() const
{
    return HasRange() ? Ticks(m_shallow, m_deep).Step() / Scale() : 0.0;
}

QSize ZrDepthLegend::sizeHint() const
{
    const QFontMetrics metrics(Small());
    return {metrics.horizontalAdvance(Caption()) + 2 * Margin(),
        metrics.height() + 3 * Margin() + std::max(ZrTheme::DpI(160), 6 * metrics.height())};
}

QRect ZrDepthLegend::BarRect() const
{
    const int caption = QFontMetrics(Small()).height();
    // The numbers at its ends stand out by half of their height.
    const int top = 2 * Margin() + caption;
    return {Margin(), top, std::max(ZrTheme::DpI(20), 12), std::max(height() - top - Margin(), 1)};
}

QVector<ZrDepthLegend::Label> ZrDepthLegend::Labels() const
{
    QVector<Label> labels;
    if (!HasRange())
        return labels;
    const QRect bar = BarRect();
    const int high = QFontMetrics(Small()).height();
    const ZrAxisTicks ticks = Ticks(m_shallow, m_deep);
    const int left = bar.right() + 1 + Margin();
    // A bar that is lower than a number has it at its top.
    const int lowest = std::max(bar.bottom() + 1 - high, bar.top());
    for (const double value : ticks.Values()) {
        const double depth = value / Scale();
        const double share = (depth - m_shallow) / (m_deep - m_shallow);
        const int y = bar.y() + qRound(share * (bar.height() - 1));
        labels.append(
            {depth, QRect(left, std::clamp(y - high / 2, bar.top(), lowest), width() - left - Margin(), high),
                ticks.Label(value)});
    }
    return labels;
}

void ZrDepthLegend::paintEvent(QPaintEvent* /*event*/)
{
    if (!HasRange())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::toolBack);
    painter.drawRoundedRect(rect(), ZrTheme::rxy, ZrTheme::rxy);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setFont(Small());
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(
        rect().adjusted(Margin(), Margin(), -Margin(), 0), Qt::AlignLeft | Qt::AlignTop, Caption());
    const QRect bar = BarRect();
    QLinearGradient colours(0, bar.top(), 0, bar.bottom());
    const auto stops = ZrDepthColours::Stops();
    for (std::size_t i = 0; i < stops.size(); ++i)
        colours.setColorAt(static_cast<double>(i) / (ZrDepthColours::Count - 1), stops[i]);
    painter.fillRect(bar, colours);
    for (const Label& label : Labels()) {
        const double share = (label.depth - m_shallow) / (m_deep - m_shallow);
        const int y = bar.y() + qRound(share * (bar.height() - 1));
        painter.setPen(QPen(ZrTheme::bodyCol, std::max(ZrTheme::DpI(1), 1)));
        painter.drawLine(bar.right() + 1, y, bar.right() + Margin() / 2, y);
        painter.setPen(ZrTheme::ctrlCol);
        painter.drawText(label.rect, Qt::AlignLeft | Qt::AlignVCenter, label.text);
    }
}
