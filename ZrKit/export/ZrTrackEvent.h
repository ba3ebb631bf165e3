#pragma once

#include <QString>

#include <cmath>
#include <limits>

/// Something that happened on a track, for its export. A plain value; what is not known is NaN or empty.
struct ZrTrackEvent
{
    double time = std::numeric_limits<double>::quiet_NaN(); ///< seconds since 1970-01-01 UTC
    double latitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, north positive
    double longitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, east positive
    QString text; ///< a few words, shown on the map
    QString detail; ///< more of it, several lines if need be

    /// Whether there is a position on the earth: a latitude within ±90 and a longitude within ±360 degrees.
    bool HasPosition() const { return std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 360.0; }
};
