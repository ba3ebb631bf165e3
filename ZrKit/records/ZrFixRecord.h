#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <limits>

/// One position fix of a satellite receiver. Payload, little-endian; a value that is not known is NaN.
///
/// | Offset | Width | Field | Meaning |
/// |---|---|---|---|
/// | 0 | f64 | `latitude` | degrees, north positive |
/// | 8 | f64 | `longitude` | degrees, east positive |
/// | 16 | f32 | `height` | metres of the antenna, above mean sea level or the ellipsoid as received |
/// | 20 | f32 | `hdop` | horizontal dilution of precision |
/// | 24 | u8 | `quality` | kind of the fix, see there |
/// | 25 | u8 | `satellites` | satellites used; 255 when not known |
/// | 26 | u16 | `reserved` | 0 |
struct ZR_KIT_EXPORT ZrFixRecord
{
    static constexpr eKitRecType RecType = krtFix;
    static constexpr u16 Format = 1; ///< the item's `format`; tells the layout of the payload
    static constexpr int Size = 28; ///< bytes of the encoded payload

    double latitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, north positive
    double longitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, east positive
    /// Metres of the antenna above mean sea level or the ellipsoid, as the receiver gives it.
    float height = std::numeric_limits<float>::quiet_NaN();
    float hdop = std::numeric_limits<float>::quiet_NaN(); ///< horizontal dilution of precision

    /// 0 none, 1 autonomous, 2 differential, 3 precise, 4 RTK fixed, 5 RTK float, 6 dead reckoning, 7 typed
    /// in by hand, 8 simulated, 255 not known. Other numbers are the receiver's own.
    u8 quality = 255;
    u8 satellites = 255; ///< satellites used; 255 when not known

    QByteArray Encode() const;

    /// Fills \p out from \p payload. False, and \p out untouched, when the payload is shorter than `Size`.
    /// Bytes beyond the known layout are ignored, so that a later version may append fields.
    static bool Decode(zr::span<u8> payload, ZrFixRecord& out);
};
