#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

/// Slant range (along the ray of sound) and ground range (along the seabed), over a flat seabed: with the
/// altitude h of the sonar, slant² = ground² + h².
///
/// Metres. Any thread.
class ZR_KIT_EXPORT ZrSlantRange
{
public:
    /// Ground range of a slant range; 0 inside the water column. NaN goes through as NaN.
    static double Ground(double slant, double altitude);

    /// Slant range of a ground range.
    static double Slant(double ground, double altitude);

    /// Samples at even steps of slant range to samples at even steps of ground range.
    ///
    /// \p in covers 0 to \p slantRange metres, \p out 0 to \p groundRange; they do not overlap. Each output
    /// sample is the mean of the stretch of input that it covers, or interpolated at its middle where that is
    /// shorter than one input sample, so that narrow echoes are neither lost nor doubled. Of a stretch that
    /// ends beyond the input the part inside counts; from where the middle lies beyond it the output is 0.
    /// Without a known altitude (NaN), or one below 0, it counts as 0: only the scale changes. All is 0 when
    /// the altitude is beyond the range, a range is not finite and above 0, or \p in is empty.
    static void Correct(
        zr::span<const u16> in, double slantRange, double altitude, zr::span<u16> out, double groundRange);
};
