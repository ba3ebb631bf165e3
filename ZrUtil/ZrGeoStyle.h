#pragma once

/// How positions are written. The values are fixed: settings files hold them.
///
/// The examples are the latitude 51.123456789°.
enum eGeoStyle : int
{
    eGeoSignedDeg = 0, ///< +51.12345679°
    eGeoSignedDegMin = 1, ///< +51° 7.40741'
    eGeoSignedDMS = 2, ///< +51° 7' 24"
    eGeoSignedDMSFrac = 3, ///< +51° 7' 24.444"
    eGeoDeg = 4, ///< 51.12345679° N
    eGeoDegMin = 5, ///< 51° 7.40741' N
    eGeoDMS = 6, ///< 51° 7' 24" N
    eGeoDMSFrac = 7, ///< 51° 7' 24.444" N
    eGeoUTM = 8, ///< grid values: easting and northing
};
