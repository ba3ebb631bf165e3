#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackData.h"

class QIODevice;

/// Writes a track as GeoJSON (RFC 7946): a feature collection with a feature per event and one per segment of
/// `ZrTrackSegments`, each on a line of its own.
///
/// A segment is a `LineString`, a single point a `Point`; one that crosses the antimeridian is cut there into
/// a `MultiLineString`, as the RFC asks, between two points that are inserted at ±180°. The third coordinate
/// is the depth with its sign turned: metres below the surface are negative; it is absent where the depth is
/// not known. Properties: of a segment `kind` "track", `name`, and `times` with one entry per position (null
/// for one that is not known, and for inserted ones), nested as the positions are; of an event `kind`
/// "event", `time`, `text` and `detail`. An event without position has a null geometry. Times are ISO 8601,
/// UTC. Heading, pitch, roll and altitude above the seabed are not written.
class ZR_KIT_EXPORT ZrExportGeoJson
{
public:
    /// False when \p out, which is open for writing, did not take everything.
    static bool Write(QIODevice& out, const ZrTrackData& data);
};
