#pragma once

#include "ZrKit/sonar/ZrWaterfallSettings.h"

#include <QRect>

#include <limits>

/// How lines of a `ZrWaterfallRing` are shown: where, which of them, how large. A plain value.
///
/// Lengths along are counted in lines: line n reaches from n to n + 1.
struct ZrWaterfallView
{
    QRect rect; ///< device pixels of the view, y down from its upper left corner; empty shows nothing
    ZrWaterfallSettings::eSides sides = ZrWaterfallSettings::bothSides;
    ZrWaterfallSettings::eNewest newest = ZrWaterfallSettings::newestTop;
    bool slantCorrected = false; ///< across are even steps over the seabed, without the water column
    bool speedCorrected = false; ///< pixels are as long along as across; where no way is known one line is
                                 ///< `pixelsPerLine`
    double range = 0.0; ///< metres shown to each side, slant or ground range as drawn; 0: all there is
    double pixelsPerLine = 1.0; ///< above 0
    /// What lies at the edge of the newest lines; NaN: the end of the ring, so that new lines push the
    /// picture on. Any other stands still until the ring has no such line any more.
    double end = std::numeric_limits<double>::quiet_NaN();
};
