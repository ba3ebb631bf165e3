#include "ZrKit/sonar/ZrSlantRange.h"

#include <algorithm>
#include <cmath>

namespace {

/// The amplitude at \p at, in samples, the first sample's middle being 0.5; between the middles linear.
double Between(zr::span<const u16> in, double at)
{
    const double last = static_cast<double>(in.size() - 1);
    const double k = std::clamp(at - 0.5, 0.0, last);
    const auto i = static_cast<std::size_t>(k);
    const double share = k - static_cast<double>(i);
    const double next = in[std::min(i + 1, in.size() - 1)];
    return in[i] + (next - in[i]) * share;
}

/// The mean amplitude from \p from to \p to, in samples.
double Mean(zr::span<const u16> in, double from, double to)
{
    double sum = 0.0;
    const auto end = std::min(static_cast<std::size_t>(std::ceil(to)), in.size());
    for (auto i = static_cast<std::size_t>(from); i < end; ++i) {
        const double start = std::max(from, static_cast<double>(i));
        sum += in[i] * (std::min(to, static_cast<double>(i + 1)) - start);
    }
    return sum / (to - from);
}

} // namespace

double ZrSlantRange::Ground(double slant, double altitude)
{
    const double square = slant * slant - altitude * altitude;
    return square < 0.0 ? 0.0 : std::sqrt(square);
}

double ZrSlantRange::Slant(double ground, double altitude)
{
    return std::hypot(ground, altitude);
}

void ZrSlantRange::Correct(
    zr::span<const u16> in, double slantRange, double altitude, zr::span<u16> out, double groundRange)
{
    const double height = altitude > 0.0 ? altitude : 0.0;
    const double perMetre = static_cast<double>(in.size()) / slantRange;
    const double step = groundRange / static_cast<double>(out.size());
    const double end = static_cast<double>(in.size());
    if (in.empty() || !(slantRange > 0.0) || !(groundRange > 0.0) || !std::isfinite(height)) {
        std::fill(out.begin(), out.end(), u16(0));
        return;
    }
    double from = Slant(0.0, height) * perMetre;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double to = Slant(step * static_cast<double>(i + 1), height) * perMetre;
        const double middle = Slant(step * (static_cast<double>(i) + 0.5), height) * perMetre;
        double value = 0.0;
        if (middle < end)
            value = to - from > 1.0 && to <= end ? Mean(in, from, to) : Between(in, middle);
        out[i] = static_cast<u16>(std::lround(value));
        from = to;
    }
}
