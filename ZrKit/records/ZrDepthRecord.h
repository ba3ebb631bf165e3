#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <limits>

/// One depth sounding. Payload, little-endian; a value that is not known is NaN.
///
/// | Offset | Width | Field | Meaning |
/// |---|---|---|---|
/// | 0 | f32 | `depth` | metres of water below the transducer |
/// | 4 | f32 | `offset` | metres from the transducer to the water line or the keel, see there |
struct ZR_KIT_EXPORT ZrDepthRecord
{
    static constexpr eKitRecType RecType = krtDepth;
    static constexpr u16 Format = 1; ///< the item's `format`; tells the layout of the payload
    static constexpr int Size = 8; ///< bytes of the encoded payload

    float depth = std::numeric_limits<float>::quiet_NaN(); ///< metres of water below the transducer

    /// Metres from the transducer up to the water line (positive) or down to the keel (negative).
    float offset = std::numeric_limits<float>::quiet_NaN();

    QByteArray Encode() const;

    /// Fills \p out from \p payload. False, and \p out untouched, when the payload is shorter than `Size`.
    /// Bytes beyond the known layout are ignored, so that a later version may append fields.
    static bool Decode(zr::span<u8> payload, ZrDepthRecord& out);
};
