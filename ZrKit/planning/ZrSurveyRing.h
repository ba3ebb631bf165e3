#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrIntervals.h"
#include "ZrKit/planning/ZrLocalFrame.h"

#include <QString>

#include <vector>

/// The ring of an area, turned so that the lines of a pattern run along x: x is metres along the heading, y
/// metres to the right of it.
class ZR_KIT_EXPORT ZrSurveyRing
{
public:
    static constexpr std::size_t maxCorners = 10000;

    /// What keeps \p area from being surveyed, a sentence; empty when nothing does. It has three corners or
    /// more that do not lie within a millimetre of one line, nor on a parallel, edges that neither cross nor
    /// come within a millimetre of each other, and lies within 89 degrees of latitude and 100 km and 15
    /// degrees of longitude of the middle of \p frame (farther, the frame is no more true).
    static QString Problem(const ZrArea& area, const ZrLocalFrame& frame);

    /// Whether \p point is near enough to the middle of the frame for lengths to be true to 2e-4.
    static bool IsWithin(const ZrLocalFrame& frame, ZrGeoPoint point);

    /// The corners in the frame, without any that repeat the one before them.
    static std::vector<ZrLocalPoint> Corners(const ZrArea& area, const ZrLocalFrame& frame);

    /// The heading of the longest edge, degrees from 0 to below 180.
    static double LongestSide(const std::vector<ZrLocalPoint>& corners);

    /// \p heading in degrees.
    ZrSurveyRing(const std::vector<ZrLocalPoint>& corners, double heading);

    double Left() const { return m_left; } ///< smallest y

    double Right() const { return m_right; } ///< largest y

    /// From the turned axes back to the frame.
    ZrLocalPoint Back(ZrLocalPoint turned) const;

    /// Where the line at \p y runs within the area.
    ZrIntervals Inside(double y) const;

    /// Where the area reaches between \p low and \p high by more than a millimetre (or 1e-4 of the strip),
    /// seen along y; \p low <= \p y <= \p high.
    ZrIntervals Abeam(double y, double low, double high) const;

    /// Where the line at \p y is closer than \p distance to the edge.
    ZrIntervals NearEdge(double y, double distance) const;

private:
    std::vector<ZrLocalPoint> m_corners; ///< turned
    double m_sin = 0.0;
    double m_cos = 0.0;
    double m_left = 0.0;
    double m_right = 0.0;
};
