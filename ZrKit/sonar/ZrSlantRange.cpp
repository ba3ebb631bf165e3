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

/// The mean amplitude from \p from to \p to, in samples; they lie inside, more than half a sample apart.
double Mean(zr::span<const u16> in, double from, double to)
{
    const auto first = static_cast<std::size_t>(from);
    const auto last = static_cast<std::size_t>(to);
    u64 whole = 0;
    for (std::size_t i = first; i < last; ++i)
        whole += in[i];
    double sum = static_cast<double>(whole) - in[first] * (from - static_cast<double>(first));
    if (last < in.size())
        sum += in[last] * (to - static_cast<double>(last));
    return sum / (to - from);
}

bool IsRange(double metres)
{
    return std::isfinite(metres) && metres > 0.0;
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
    std::size_t i = 0;
    if (!in.empty() && IsRange(slantRange) && IsRange(groundRange) && height < slantRange) {
        // All in input samples: the altitude squared, and the length of an output sample on the ground.
        const double perMetre = static_cast<double>(in.size()) / slantRange;
        const double square = height * perMetre * height * perMetre;
        const double step = groundRange / static_cast<double>(out.size()) * perMetre;
        const auto slant = [&](double steps) { return std::sqrt(steps * step * steps * step + square); };
        const double end = static_cast<double>(in.size());
        double from = slant(0.0);
        for (; i < out.size(); ++i) {
            const double k = static_cast<double>(i);
            const double to = slant(k + 1.0);
            const double middle = slant(k + 0.5);
            if (!(middle < end))
                break;
            const double value = to - from > 1.0 ? Mean(in, from, std::min(to, end)) : Between(in, middle);
            out[i] = static_cast<u16>(value + 0.5);
            from = to;
        }
    }
    std::fill(out.begin() + i, out.end(), u16(0));
}
