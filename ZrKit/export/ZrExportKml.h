#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackData.h"

class QIODevice;

/// Writes a track as KML 2.2: a folder with a placemark per event, one with a placemark per segment of
/// `ZrTrackSegments`.
///
/// A segment whose points all have a time is a `gx:Track`, which viewers can play; others are a `LineString`,
/// a single point a `Point`. Altitudes are absolute: the depth with its sign turned, metres below the surface
/// are negative; 0 where the depth is not known, for KML needs a number there. Times are ISO 8601, UTC.
/// Heading, pitch, roll and altitude above the seabed are not written. An event without position is a
/// placemark without point.
class ZR_KIT_EXPORT ZrExportKml
{
public:
    /// False when \p out, which is open for writing, did not take everything.
    static bool Write(QIODevice& out, const ZrTrackData& data);
};
