#include "ZrKit/scene/ZrDepthColours.h"

#include "ZrKit/ui/ZrColourScheme.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr QRgb stops[ZrColourScheme::Count][ZrDepthColours::Count] = {
    {0xffd9b36a, 0xff86b083, 0xff3f93a1, 0xff2a6496, 0xff1d3a6b},
    {0xfff0d79a, 0xffa3cf9f, 0xff5aaebb, 0xff3a7db5, 0xff2b4f8f},
    {0xffc2604a, 0xff9c4a38, 0xff763628, 0xff52241b, 0xff34140f},
};

} // namespace

std::array<QColor, ZrDepthColours::Count> ZrDepthColours::Stops()
{
    std::array<QColor, Count> colours;
    for (int i = 0; i < Count; ++i)
        colours[static_cast<std::size_t>(i)] = QColor::fromRgb(stops[ZrColourScheme::Current()][i]);
    return colours;
}

QColor ZrDepthColours::At(double share)
{
    const double at = std::isnan(share) ? 0.0 : std::clamp(share, 0.0, 1.0) * (Count - 1);
    const auto first = std::min(static_cast<std::size_t>(at), static_cast<std::size_t>(Count - 2));
    const double part = at - static_cast<double>(first);
    const auto all = Stops();
    const auto mix = [part](int a, int b) { return qRound(a + (b - a) * part); };
    const QColor& a = all[first];
    const QColor& b = all[first + 1];
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}
