#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <limits>

/// Navigation of the vehicle at one moment. Payload, little-endian; a value that is not known is NaN.
///
/// | Offset | Width | Field | Meaning |
/// |---|---|---|---|
/// | 0 | f64 | `latitude` | degrees, north positive |
/// | 8 | f64 | `longitude` | degrees, east positive |
/// | 16 | f32 | `altitude` | metres above the seabed |
/// | 20 | f32 | `depth` | metres below the surface, positive down |
/// | 24 | f32 | `heading` | degrees from true north, clockwise, 0 to 360 |
/// | 28 | f32 | `pitch` | degrees, bow up positive |
/// | 32 | f32 | `roll` | degrees, starboard down positive |
/// | 36 | u32 | `flags` | bit 0: the last known position, repeated |
///
struct ZR_KIT_EXPORT ZrNavRecord
{
    static constexpr eKitRecType RecType = krtNavigation;
    static constexpr u16 Format = 1; ///< the item's `format`; tells the layout of the payload
    static constexpr int Size = 40; ///< bytes of the encoded payload

    double latitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, north positive
    double longitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees, east positive
    float altitude = std::numeric_limits<float>::quiet_NaN(); ///< metres above the seabed
    float depth = std::numeric_limits<float>::quiet_NaN(); ///< metres below the surface, positive down
    float heading = std::numeric_limits<float>::quiet_NaN(); ///< degrees from true north, clockwise, 0 to 360
    float pitch = std::numeric_limits<float>::quiet_NaN(); ///< degrees, bow up positive
    float roll = std::numeric_limits<float>::quiet_NaN(); ///< degrees, starboard down positive
    u32 flags = 0; ///< bit 0: the position is the last known one, repeated (a submerged vehicle without fix)

    QByteArray Encode() const;

    /// Fills \p out from \p payload. False, and \p out untouched, when the payload is shorter than `Size`.
    /// Bytes beyond the known layout are ignored, so that a later version may append fields.
    static bool Decode(zr::span<u8> payload, ZrNavRecord& out);
};
