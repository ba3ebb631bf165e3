#pragma once

// Where a track goes on a map and where its picture goes, and how far these are from each other.

#include "TrackShapes.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrTrackLod.h"
#include "ZrKit/map/ZrTrackPicture.h"

#include <QPointF>
#include <QSize>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace track {

inline ZrTrackLod TrackOf(const std::vector<QPointF>& points)
{
    ZrTrackLod track;
    track.Append(points);
    return track;
}

inline ZrMapView ViewOf(
    const QPointF& centre, double scale, double rotation = 0.0, const QSize& size = {1280, 800})
{
    ZrMapView view;
    view.SetSize(size.width(), size.height());
    view.SetCentre(centre);
    view.SetScale(scale);
    view.SetRotation(rotation);
    return view;
}

/// Where lines go, at four points to a pixel, and how far it is from anywhere to them.
class Field
{
public:
    static constexpr int Fine = 4;

    explicit Field(const ZrMapView& view)
        : m_view(view)
        , m_width(view.Width() * Fine)
        , m_height(view.Height() * Fine)
        , m_marks(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height))
    {
    }

    void Add(const QPointF& a, const QPointF& b)
    {
        const QPointF from = m_view.ToPixel(a) * Fine;
        const QPointF d = m_view.ToPixel(b) * Fine - from;
        // The part in view alone: a segment may be very much longer.
        double begin = 0;
        double end = 1;
        Cut(from.x(), d.x(), m_width, begin, end);
        Cut(from.y(), d.y(), m_height, begin, end);
        if (begin > end)
            return;
        const int steps = static_cast<int>(std::ceil((end - begin) * std::hypot(d.x(), d.y()) * 1.5)) + 1;
        for (int i = 0; i <= steps; ++i) {
            const QPointF p = from + d * (begin + (end - begin) * i / steps);
            const int x = static_cast<int>(std::floor(p.x()));
            const int y = static_cast<int>(std::floor(p.y()));
            if (x >= 0 && y >= 0 && x < m_width && y < m_height)
                m_marks[At(x, y)] = 1;
        }
    }

    /// The longest way from a mark of this to one of \p other, pixels. Near the edges nothing counts: what a
    /// mark there belongs to may be outside.
    double FarthestTo(const Field& other) const
    {
        const std::vector<float> ways = other.Ways();
        constexpr int edge = 6 * Fine;
        float most = 0;
        for (int y = edge; y < m_height - edge; ++y) {
            for (int x = edge; x < m_width - edge; ++x) {
                if (m_marks[At(x, y)])
                    most = std::max(most, ways[At(x, y)]);
            }
        }
        return std::sqrt(static_cast<double>(most)) / Fine;
    }

private:
    static void Cut(double from, double d, double size, double& begin, double& end)
    {
        if (d == 0) {
            if (from < 0 || from >= size)
                end = -1;
            return;
        }
        const double t0 = -from / d;
        const double t1 = (size - from) / d;
        begin = std::max(begin, std::min(t0, t1));
        end = std::min(end, std::max(t0, t1));
    }

    std::size_t At(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x);
    }

    /// Squares of the distances to the nearest mark, up to a few pixels.
    std::vector<float> Ways() const
    {
        constexpr int reach = 4 * Fine;
        constexpr float none = 1e9F;
        std::vector<float> across(m_marks.size(), none);
        for (int y = 0; y < m_height; ++y) {
            int last = -1000000;
            for (int x = 0; x < m_width; ++x) {
                last = m_marks[At(x, y)] ? x : last;
                across[At(x, y)] = static_cast<float>(x - last);
            }
            last = 1000000;
            for (int x = m_width - 1; x >= 0; --x) {
                last = m_marks[At(x, y)] ? x : last;
                across[At(x, y)] = std::min(across[At(x, y)], static_cast<float>(last - x));
            }
        }
        std::vector<float> ways(m_marks.size(), none);
        for (int y = 0; y < m_height; ++y) {
            for (int i = std::max(y - reach, 0); i <= std::min(y + reach, m_height - 1); ++i) {
                const float dy2 = static_cast<float>((i - y) * (i - y));
                for (int x = 0; x < m_width; ++x) {
                    const float w = across[At(x, i)];
                    ways[At(x, y)] = std::min(ways[At(x, y)], w * w + dy2);
                }
            }
        }
        return ways;
    }

    ZrMapView m_view;
    int m_width;
    int m_height;
    std::vector<char> m_marks;
};

inline void AddTrack(Field& field, const ZrTrackLod& track)
{
    for (i64 i = 1; i < track.Count(); ++i) {
        if (!track.IsBreak(i - 1) && !track.IsBreak(i))
            field.Add(track[i - 1], track[i]);
    }
}

inline void AddPicture(Field& field, const ZrTrackPicture& picture)
{
    const std::vector<float>& v = picture.Vertices();
    const auto at = [&v](std::size_t i) {
        return QPointF(static_cast<double>(v[i]) + static_cast<double>(v[i + 2]),
            static_cast<double>(v[i + 1]) + static_cast<double>(v[i + 3]));
    };
    for (std::size_t i = 0; i + 7 < v.size(); i += 8)
        field.Add(at(i), at(i + 4));
}

} // namespace track
