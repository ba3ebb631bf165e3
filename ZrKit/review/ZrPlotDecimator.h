#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrPlotSeries.h"
#include "ZrUtil/ZrSpan.h"

#include <cstddef>
#include <limits>
#include <vector>

/// Turns the visible part of a series into the few points that draw the same line on the screen.
///
/// The columns of the screen are given by the times at their edges, as `ZrTimeLine::Columns` makes them; so
/// gaps may be cut out. Of a column with many records the first, smallest, largest and last value remain, at
/// its middle; a column with up to two keeps them where they are. A point whose y is NaN interrupts the line:
/// where values are not known or records are more than `mostStep` apart. At the edges of the screen the line
/// is cut to the value between the records on either side.
///
/// There are at most four points for each column and two for the edges. The work depends on the columns and,
/// but for a logarithm, not on the number of records.
///
/// \code
/// for (const ZrPlotDecimator::Point& point : decimator.Decimate(series.depth, line.Columns(width)))
///     …
/// \endcode
///
/// One thread at a time.
class ZR_KIT_EXPORT ZrPlotDecimator
{
public:
    struct Point
    {
        float x; ///< columns from the left edge, never falling
        float y; ///< NaN interrupts the line
    };

    double mostStep = std::numeric_limits<double>::infinity(); ///< seconds

    /// The points for columns with the ascending \p edges, one more than there are columns. They stay until
    /// the next call.
    const std::vector<Point>& Decimate(const ZrPlotSeries& series, zr::span<const double> edges);

    /// How many times, values and blocks of values the last call looked at.
    std::size_t Looks() const { return m_looks; }

private:
    std::size_t FirstFrom(double time, std::size_t begin, bool after);
    bool IsApart(std::size_t i) const;
    void Break(double x);
    void Add(double x, float y);
    void Edge(std::size_t behind, double time, double x);
    void Few(std::size_t first, std::size_t end, double x, double left, double right);
    void Many(std::size_t first, std::size_t end, double x);

    const ZrPlotSeries* m_series = nullptr; ///< while it works
    std::vector<Point> m_points;
    std::size_t m_looks = 0;
};
