#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <limits>

/// Water and wind. Payload, little-endian; a value that is not known is NaN.
///
/// | Offset | Width | Field | Meaning |
/// |---|---|---|---|
/// | 0 | f32 | `waterTemperature` | degrees Celsius |
/// | 4 | f32 | `windSpeed` | m/s |
/// | 8 | f32 | `windAngle` | degrees, where the wind comes from |
/// | 12 | u8 | `windReference` | what the wind is told against, see `eWindReference` |
/// | 13 | u8 | `reserved0` | 0 |
/// | 14 | u16 | `reserved1` | 0 |
struct ZR_KIT_EXPORT ZrEnvRecord
{
    static constexpr eKitRecType RecType = krtEnvironment;
    static constexpr u16 Format = 1; ///< the item's `format`; tells the layout of the payload
    static constexpr int Size = 16; ///< bytes of the encoded payload

    /// What `windAngle` and `windSpeed` are told against.
    enum eWindReference : u8
    {
        windUnknown = 0, ///< not known
        windRelative = 1, ///< apparent wind, angle from the bow
        windTrue = 2, ///< true speed, angle from the bow
        windNorth = 3 ///< true speed, angle from true north
    };

    float waterTemperature = std::numeric_limits<float>::quiet_NaN(); ///< degrees Celsius
    float windSpeed = std::numeric_limits<float>::quiet_NaN(); ///< m/s
    float windAngle = std::numeric_limits<float>::quiet_NaN(); ///< degrees, where the wind comes from
    u8 windReference = windUnknown; ///< what the wind is told against, one of `eWindReference`

    QByteArray Encode() const;

    /// Fills \p out from \p payload. False, and \p out untouched, when the payload is shorter than `Size`.
    /// Bytes beyond the known layout are ignored, so that a later version may append fields.
    static bool Decode(zr::span<u8> payload, ZrEnvRecord& out);
};
