#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackData.h"

class QIODevice;

/// Writes a track as GPX 1.1: one track with a segment per `ZrTrackSegments`, events as waypoints.
///
/// The elevation `ele` is the depth with its sign turned: metres below the surface are negative. Times are
/// ISO 8601, UTC. GPX has no place for heading, pitch, roll and altitude above the seabed. Waypoints must
/// have a position: events without one are left out. `name` is the event's text, `desc` its detail.
class ZR_KIT_EXPORT ZrExportGpx
{
public:
    /// False when \p out, which is open for writing, did not take everything.
    static bool Write(QIODevice& out, const ZrTrackData& data);
};
