#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <cstddef>
#include <limits>

/// Darkens what a ping recorded in front of the seabed, so that neither the outgoing pulse nor noise of the
/// water draws the eye off it.
///
/// \code
/// ZrSonarBlanking::Apply(ZrSonarBlanking::pulse, samples, channel.slantRange, altitude);
/// \endcode
///
/// The pulse is the run of samples at the beginning that are at least half as loud as the loudest one of the
/// ping. It ends at the seabed at the latest, where that is not known after a twentieth of the range. A ping
/// that begins quietly has none.
///
/// Works on raw samples: a gain that differs with range would change what is loudest. Any thread.
struct ZR_KIT_EXPORT ZrSonarBlanking
{
    enum eKind : int
    {
        none = 0, ///< all is shown as it was recorded
        pulse = 1, ///< the outgoing pulse is dark
        water = 2, ///< all in front of the seabed; where that is not known the pulse alone
        kindCount = 3
    };

    /// How many of the samples, nearest first, are dark. \p slantRange of the end of the last one and
    /// \p altitude in metres, NaN for an altitude that is not known. A kind or a range that is none gives 0.
    static std::size_t Count(int kind, zr::span<const u16> samples, double slantRange,
        double altitude = std::numeric_limits<double>::quiet_NaN());

    /// Sets these to 0; their number.
    static std::size_t Apply(int kind, zr::span<u16> samples, double slantRange,
        double altitude = std::numeric_limits<double>::quiet_NaN());
};
