#include "ZrKit/ui/ZrLegible.h"

#include "ZrUtil/ZrTheme.h"

#include <QFontMetrics>

#include <algorithm>
#include <cmath>

namespace {

/// Never 0, of which there is no scale.
int Most(int real)
{
    return std::max(static_cast<int>(static_cast<float>(real) / ZrLegible::LeastScale), 1);
}

} // namespace

int ZrLegible::Px(float design)
{
    return std::max(ZrTheme::DpI(design), LeastText);
}

QFont ZrLegible::Font(float design)
{
    QFont font = ZrTheme::font;
    font.setPixelSize(Px(design));
    return font;
}

float ZrLegible::Design(float design)
{
    const float least = ZrTheme::Real2Des(LeastText);
    return std::isfinite(least) ? std::max(design, least) : design;
}

QFont ZrLegible::Fitting(const QFont& font, const QString& text, int room)
{
    QFont fitting = font;
    while (fitting.pixelSize() > LeastText && QFontMetrics(fitting).horizontalAdvance(text) > room)
        fitting.setPixelSize(fitting.pixelSize() - 1);
    return fitting;
}

ZrLegible::Scale::Scale(int w, int h)
    : m_width(ZrTheme::designWidth)
    , m_height(ZrTheme::designHeight)
{
    ZrTheme::designWidth = std::min(m_width, Most(w));
    ZrTheme::designHeight = std::min(m_height, Most(h));
}

ZrLegible::Scale::~Scale()
{
    ZrTheme::designWidth = m_width;
    ZrTheme::designHeight = m_height;
}
