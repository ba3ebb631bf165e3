#pragma once

// Long tracks of several shapes, the same in every run.

#include <QPointF>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace track {

/// Steps of one metre in any direction.
inline std::vector<QPointF> RandomWalk(std::size_t count, const QPointF& start = {512345.0, 4812345.0})
{
    std::mt19937 random(1);
    std::vector<QPointF> points;
    points.reserve(count);
    QPointF p = start;
    for (std::size_t i = 0; i < count; ++i) {
        points.push_back(p);
        const double heading = 2.0 * 3.14159265358979323846 * (random() / 4294967296.0);
        p += QPointF(std::cos(heading), std::sin(heading));
    }
    return points;
}

/// Lanes of a thousand positions a metre apart, \p spacing metres between them, each position off by up to
/// \p noise metres; with \p turned to north instead of east.
inline std::vector<QPointF> Lawnmower(std::size_t count, double spacing, double noise, bool turned = false)
{
    constexpr std::size_t lane = 1000;
    std::mt19937 random(2);
    const auto error = [&] { return noise * (2.0 * (random() / 4294967296.0) - 1.0); };
    std::vector<QPointF> points;
    points.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t along = i / lane % 2 ? lane - 1 - i % lane : i % lane;
        const double x = static_cast<double>(along) + error();
        const double y = static_cast<double>(i / lane) * spacing + error();
        points.push_back(QPointF(512345.0, 4812345.0) + (turned ? QPointF(y, x) : QPointF(x, y)));
    }
    return points;
}

inline std::vector<QPointF> Resting(std::size_t count, double noise)
{
    std::mt19937 random(3);
    const auto error = [&] { return noise * (2.0 * (random() / 4294967296.0) - 1.0); };
    std::vector<QPointF> points;
    points.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        points.emplace_back(512345.0 + error(), 4812345.0 + error());
    return points;
}

} // namespace track
