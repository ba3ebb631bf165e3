#pragma once

#include "ZrKit/export/ZrTrackEvent.h"
#include "ZrKit/export/ZrTrackPoint.h"
#include "ZrUtil/ZrSpan.h"

#include <QString>

#include <limits>

class ZrTrackPointSource;

/// What an export writes: views of points and events that the caller keeps during the call.
struct ZrTrackData
{
    QString name; ///< of the track; may be empty
    zr::span<const ZrTrackPoint> points; ///< in the order of travel
    ZrTrackPointSource* source = nullptr; ///< gives them instead where they are not all in memory
    zr::span<const ZrTrackEvent> events;
    /// Seconds between two points from which on nothing is drawn between them; infinite for never.
    double maxGap = std::numeric_limits<double>::infinity();
};
