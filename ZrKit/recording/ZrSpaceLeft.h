#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QtGlobal>

/// For how long a disk has room for a recording, and from what that is told.
///
/// \code
/// ZrSpaceLeft::Rates rates;
/// rates.source = arrivals.PerSecond(now); // a ZrArrivalRate of ZrRecordingNews::byteCount
/// const ZrSpaceLeft left = ZrSpaceLeft::Of(freeBytes, options.stopBelow, rates);
/// \endcode
///
/// A plain value.
struct ZR_KIT_EXPORT ZrSpaceLeft
{
    /// What the rate is known from, the better one first.
    enum eBy : int
    {
        byNothing = 0,
        byRecording = 1, ///< the one that goes on
        bySource = 2, ///< what comes, or came last, from the source
        byLast = 3 ///< an earlier recording
    };

    /// Bytes per second; what is not known, or is no rate, is below or at 0, or NaN.
    struct Rates
    {
        double recording = -1.0;
        double source = -1.0;
        double last = -1.0;
    };

    double seconds = -1.0; ///< until the recording ends by itself; -1 when not known
    eBy by = byNothing; ///< also where the space is not known

    bool IsKnown() const { return seconds >= 0.0; }

    /// \param freeBytes of the disk; -1 when not known
    /// \param stopBelow that stay free, see `ZrRecorder::Options`
    static ZrSpaceLeft Of(qint64 freeBytes, qint64 stopBelow, const Rates& rates);
};
