#pragma once

#include "ZrKit/export/ZrTrackEvent.h"
#include "ZrKit/export/ZrTrackPoint.h"
#include "ZrUtil/ZrSpan.h"

#include <QString>

#include <limits>

/// What an export writes: views of points and events that the caller keeps during the call.
struct ZrTrackData
{
    QString name; ///< of the track; may be empty
    zr::span<const ZrTrackPoint> points; ///< in the order of travel
    zr::span<const ZrTrackEvent> events;
    /// Seconds between two points from which on nothing is drawn between them; infinite for never.
    double maxGap = std::numeric_limits<double>::infinity();
};
