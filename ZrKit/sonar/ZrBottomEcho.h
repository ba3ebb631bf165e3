#pragma once

#include <limits>

/// An echo that may be the seabed. A plain value.
struct ZrBottomEcho
{
    double altitude = std::numeric_limits<double>::quiet_NaN(); ///< slant range of its beginning, metres

    /// How far it stands out, 0 (not at all) to 1: 1 − required contrast / contrast for one side; more when
    /// both sides have it, less when only one of them has.
    double strength = 0.0;
};
