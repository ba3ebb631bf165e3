#pragma once

#include "ZrKit/ZrKitExport.h"

#include <vector>

/// A stretch of a straight line.
struct ZrInterval
{
    double from = 0.0;
    double to = 0.0;
};

/// Intervals in order, none touching another.
class ZR_KIT_EXPORT ZrIntervals
{
public:
    ZrIntervals() = default;

    /// The union of intervals in any order; those closer than \p gap become one.
    static ZrIntervals Union(std::vector<ZrInterval> intervals, double gap = 0.0);

    /// What is left of these outside of \p others.
    ZrIntervals Without(const ZrIntervals& others) const;

    const std::vector<ZrInterval>& All() const { return m_all; }

private:
    std::vector<ZrInterval> m_all;
};
