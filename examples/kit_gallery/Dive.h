#pragma once

#include "ZrKit/review/ZrPlotSeries.h"
#include "ZrKit/review/ZrSteadyTime.h"

#include <QString>

#include <memory>
#include <vector>

/// A dive made up by formulas: 40 minutes, a record a second, with a minute missing.
struct Dive
{
    explicit Dive(int number);

    int number;
    std::shared_ptr<ZrSteadyTime> times = std::make_shared<ZrSteadyTime>();
    ZrPlotSeries depth{times}; ///< metres
    ZrPlotSeries seabed{times}; ///< metres below the surface
    ZrPlotSeries heading{times}; ///< degrees without leaps
    std::vector<double> events; ///< log times
};
