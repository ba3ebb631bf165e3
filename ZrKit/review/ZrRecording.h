#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrRecentLog.h"

#include <QPolygonF>

/// A recent recording with what a picture of it needs. A plain value.
struct ZR_KIT_EXPORT ZrRecording
{
    ZrRecentLog log;

    /// Where the vehicle went: the longer side of what it covers is 1, x to the east, y to the south, from 0
    /// on. Empty unless the log has an index with positions.
    QPolygonF outline;

    bool operator==(const ZrRecording& other) const; ///< what is not known equals itself

    bool operator!=(const ZrRecording& other) const { return !(*this == other); }
};
