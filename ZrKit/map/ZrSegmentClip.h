#pragma once

#include <QPointF>
#include <QRectF>

#include <algorithm>

/// What of a straight line is inside of a rectangle (method of Liang and Barsky). Any thread.
class ZrSegmentClip
{
public:
    /// \param begin of the part of the line from \p a to \p b that is in \p area, and \p end of it, between 0
    /// and 1. False, and neither of use, when nothing of it is.
    static bool Of(const QPointF& a, const QPointF& b, const QRectF& area, double& begin, double& end)
    {
        begin = 0.0;
        end = 1.0;
        const QPointF d = b - a;
        const double directions[] = {-d.x(), d.x(), -d.y(), d.y()};
        const double distances[]
            = {a.x() - area.left(), area.right() - a.x(), a.y() - area.top(), area.bottom() - a.y()};
        for (int i = 0; i < 4; ++i) {
            if (directions[i] == 0.0) {
                if (distances[i] < 0.0)
                    return false;
                continue;
            }
            const double t = distances[i] / directions[i];
            if (directions[i] < 0.0)
                begin = std::max(begin, t);
            else
                end = std::min(end, t);
        }
        return begin <= end;
    }
};
