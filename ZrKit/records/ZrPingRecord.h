#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <limits>

/// One line of side-scan samples of one side, nearest sample first. Payload, little-endian: the fields below,
/// then the samples, `sampleCount` x `sampleWidth` bytes, each an unsigned amplitude.
///
/// | Offset | Width | Field | Meaning |
/// |---|---|---|---|
/// | 0 | u32 | `pingNumber` | number of the ping as the sonar counts |
/// | 4 | u8 | `side` | 0 port, 1 starboard; the item carries it as its sub-type too |
/// | 5 | u8 | `sampleWidth` | bytes of one sample: 1, 2 or 4 |
/// | 6 | u16 | `reserved` | 0 |
/// | 8 | f32 | `slantRange` | metres from the sonar to the last sample |
/// | 12 | f32 | `frequency` | kHz; NaN when not known |
/// | 16 | f32 | `soundSpeed` | m/s used for the range; NaN when not known |
/// | 20 | u32 | `sampleCount` | samples that follow |
struct ZR_KIT_EXPORT ZrPingRecord
{
    static constexpr eKitRecType RecType = krtPing;
    static constexpr u16 Format = 1; ///< the item's `format`; tells the layout of the payload
    static constexpr int Size = 24; ///< bytes of the encoded payload before the samples

    u32 pingNumber = 0; ///< number of the ping as the sonar counts
    u8 side = 0; ///< 0 port, 1 starboard; the item carries it as its sub-type too
    u8 sampleWidth = 2; ///< bytes of one sample: 1, 2 or 4
    float slantRange = std::numeric_limits<float>::quiet_NaN(); ///< metres from the sonar to the last sample
    float frequency = std::numeric_limits<float>::quiet_NaN(); ///< kHz; NaN when not known
    /// Speed of sound in m/s used for the range; NaN when not known.
    float soundSpeed = std::numeric_limits<float>::quiet_NaN();
    u32 sampleCount = 0; ///< samples that follow; set by `Decode`, not read by `Encode`
    QByteArray samples; ///< `sampleCount` x `sampleWidth` bytes, little-endian

    /// The payload. The number of samples written is that of whole samples in `samples`, whatever
    /// `sampleCount` says; bytes behind the last whole sample are left out. Empty when `sampleWidth` is not
    /// 1, 2 or 4, or the samples come near 2 GiB.
    QByteArray Encode() const;

    /// Fills \p out from \p payload. False, and \p out untouched, when the payload is shorter than its fields
    /// and the samples they announce, or the sample width is not 1, 2 or 4. Bytes beyond the known layout are
    /// ignored, so that a later version may append fields.
    static bool Decode(zr::span<u8> payload, ZrPingRecord& out);

    /// The same for a payload of \p payloadSize bytes of which only the \p start is at hand, at least `Size`
    /// bytes: everything but the samples, which are left empty.
    static bool DecodeFields(zr::span<u8> start, u64 payloadSize, ZrPingRecord& out);
};
