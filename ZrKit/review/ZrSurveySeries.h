#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrPlotSeries.h"
#include "ZrKit/review/ZrSteadyTime.h"
#include "ZrUtil/ZrTypes.h"

#include <limits>
#include <memory>
#include <vector>

/// What a vehicle did over the time of a recording: the curves that a review plots, and the track on the map.
///
/// One row for each navigation record; see `ZrSurveySeriesReader`. What is not known is NaN. Less than 60
/// bytes for a row. A plain value that shares its times: copies of it are not independent while it grows.
struct ZR_KIT_EXPORT ZrSurveySeries
{
    struct Position
    {
        double latitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, north positive
        double longitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, east positive
    };

    std::shared_ptr<ZrSteadyTime> times = std::make_shared<ZrSteadyTime>();
    ZrPlotSeries depth{times}; ///< metres below the surface
    ZrPlotSeries altitude{times}; ///< metres above the seabed
    ZrPlotSeries seabed{times}; ///< metres of water: depth and altitude
    /// Degrees from true north without leaps: from 359 it goes on to 361. Brought within 0 to 360 it is the
    /// heading.
    ZrPlotSeries heading{times};
    ZrPlotSeries speed{times}; ///< metres per second over ground
    ZrPlotSeries pitch{times}; ///< degrees, bow up positive
    ZrPlotSeries roll{times}; ///< degrees, starboard down positive
    std::vector<Position> track; ///< the position of each row; repeated ones are there as they were recorded

    std::size_t Count() const { return track.size(); }

    /// Gives back memory that was kept ready for more rows.
    void Squeeze();

    u64 Bytes() const; ///< memory of all rows
};
