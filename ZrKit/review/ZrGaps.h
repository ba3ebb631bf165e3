#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSpan.h"

#include <cstddef>
#include <vector>

/// The gaps of a recording, and time with the gaps cut out.
///
/// A gap is a step between two records that is longer than a threshold. Cut time is steady time (see
/// `ZrSteadyTime`) less all gaps before it: it begins with the same number, and a gap is a single moment of
/// it. Never changes once made: any number of threads.
class ZR_KIT_EXPORT ZrGaps
{
public:
    static constexpr double DefaultLongest = 5.0; ///< seconds

    /// From the last record before to the first one behind, steady times.
    struct Gap
    {
        double begin;
        double end;
    };

    /// No gaps.
    ZrGaps() = default;

    /// Those of the ascending \p times that are longer than \p longest seconds. None when that is negative or
    /// NaN.
    explicit ZrGaps(zr::span<const double> times, double longest = DefaultLongest);

    const std::vector<Gap>& All() const { return m_gaps; }

    /// Cut time at \p steady; inside a gap that of the gap.
    double Cut(double steady) const;

    /// Steady time at \p cut; at a gap its begin.
    double Whole(double cut) const;

    /// The number of the gap that \p steady lies strictly inside; the number of gaps when it lies in none.
    std::size_t GapAt(double steady) const;

    /// The first gap that begins at or after \p steady; the number of gaps when there is none.
    std::size_t From(double steady) const;

    /// Seconds of all gaps together.
    double Sum() const { return m_sums.empty() ? 0.0 : m_sums.back(); }

    /// Seconds of the gaps \p first ... \p end - 1.
    double Sum(std::size_t first, std::size_t end) const { return SumBefore(end) - SumBefore(first); }

private:
    double SumBefore(std::size_t gap) const { return gap == 0 ? 0.0 : m_sums[gap - 1]; }

    std::vector<Gap> m_gaps;
    std::vector<double> m_sums; ///< seconds of each gap and all before it
};
