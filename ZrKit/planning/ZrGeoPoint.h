#pragma once

#include <cmath>
#include <limits>

/// A position on the earth, WGS 84. A plain value; what is not known is NaN.
struct ZrGeoPoint
{
    double lat = std::numeric_limits<double>::quiet_NaN(); ///< latitude, degrees, north positive
    double lng = std::numeric_limits<double>::quiet_NaN(); ///< longitude, degrees, east positive

    /// Whether it is on the earth: a latitude within ±90 and a longitude within ±180 degrees.
    bool IsValid() const { return std::fabs(lat) <= 90.0 && std::fabs(lng) <= 180.0; }

    friend bool operator==(const ZrGeoPoint& a, const ZrGeoPoint& b)
    {
        return a.lat == b.lat && a.lng == b.lng;
    }

    friend bool operator!=(const ZrGeoPoint& a, const ZrGeoPoint& b) { return !(a == b); }
};
