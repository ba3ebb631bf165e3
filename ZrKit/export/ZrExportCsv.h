#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackData.h"

class QIODevice;

/// Writes a track as a table (RFC 4180, UTF-8, lines end with CR LF) with a header line:
///
/// `kind,segment,time,latitude,longitude,depth,altitude,heading,pitch,roll,text,detail`
///
/// First the events (`kind` "event", no segment), then the points ("track") with the number of their segment
/// of `ZrTrackSegments`, from 1; points without position are not written. Unlike in the other formats depths
/// are positive down, in metres. Times are ISO 8601, UTC. What is not known is empty.
class ZR_KIT_EXPORT ZrExportCsv
{
public:
    /// False when \p out, which is open for writing, did not take everything.
    static bool Write(QIODevice& out, const ZrTrackData& data);
};
