#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <limits>

/// Heading, course and speed. Payload, little-endian; a value that is not known is NaN.
///
/// | Offset | Width | Field | Meaning |
/// |---|---|---|---|
/// | 0 | f32 | `headingTrue` | degrees from true north, 0 to 360 |
/// | 4 | f32 | `headingMagnetic` | degrees from magnetic north, 0 to 360 |
/// | 8 | f32 | `courseTrue` | degrees from true north, course over ground |
/// | 12 | f32 | `speedGround` | m/s over ground |
/// | 16 | f32 | `speedWater` | m/s through the water |
/// | 20 | u32 | `reserved` | 0 |
struct ZR_KIT_EXPORT ZrMotionRecord
{
    static constexpr eKitRecType RecType = krtMotion;
    static constexpr u16 Format = 1; ///< the item's `format`; tells the layout of the payload
    static constexpr int Size = 24; ///< bytes of the encoded payload

    float headingTrue = std::numeric_limits<float>::quiet_NaN(); ///< degrees from true north, 0 to 360
    /// Degrees from magnetic north, 0 to 360.
    float headingMagnetic = std::numeric_limits<float>::quiet_NaN();
    /// Degrees from true north, course over ground.
    float courseTrue = std::numeric_limits<float>::quiet_NaN();
    float speedGround = std::numeric_limits<float>::quiet_NaN(); ///< m/s over ground
    float speedWater = std::numeric_limits<float>::quiet_NaN(); ///< m/s through the water

    QByteArray Encode() const;

    /// Fills \p out from \p payload. False, and \p out untouched, when the payload is shorter than `Size`.
    /// Bytes beyond the known layout are ignored, so that a later version may append fields.
    static bool Decode(zr::span<u8> payload, ZrMotionRecord& out);
};
