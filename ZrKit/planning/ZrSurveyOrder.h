#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrSurveySettings.h"

#include <cstddef>
#include <vector>

/// The order in which the lines of a survey are run.
class ZR_KIT_EXPORT ZrSurveyOrder
{
public:
    /// Indices of the lines in the order of running. \p across: their places across the pattern, metres, in
    /// order from the side of the entry corner.
    ///
    /// `Racetrack` runs lines of a near and a far half in turn, as towed seismic surveys do, in blocks of the
    /// fewest lines that keep lines run in succession at least two radii (\p turnRadius) apart, also from one
    /// block to the next. With too few lines for that, there is one block, as far apart as they allow.
    static std::vector<std::size_t> Of(
        ZrSurveySettings::eOrder order, const std::vector<double>& across, double turnRadius);
};
