#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrTypes.h"

#include <array>
#include <cstddef>

/// The header of one item of a data log: 40 bytes, little-endian, followed by `storedSize` bytes of payload.
///
/// The next item's header follows the payload without padding. The members stand in the order and at the
/// offsets of the file. A plain value; `Encode` and `Decode` are the only road between it and a file.
struct ZR_UTIL_EXPORT ZrLogItem
{
    static constexpr u32 Magic = 0xAABBCCDD;
    static constexpr u32 Size = 40; ///< bytes in the file

    u32 magic = Magic; ///< offset 0
    u32 headerSize = Size; ///< offset 4
    u16 type = 0; ///< offset 8: record type, the high half of the `CRecType`
    u16 format = 0; ///< offset 10: the caller's 16-bit qualifier of the record
    u16 sub = 0; ///< offset 12: sub-type, the low half of the `CRecType`
    u16 reserved0 = 0; ///< offset 14
    double time = 0.0; ///< offset 16: seconds since 1970-01-01T00:00:00 UTC
    u16 compressed = 0; ///< offset 24: 1 when the payload is stored as the output of `qCompress`
    u16 source = 0; ///< offset 26: the caller's 16-bit source identifier
    u32 dataSize = 0; ///< offset 28: payload bytes before compression
    u32 storedSize = 0; ///< offset 32: payload bytes that follow this header in the file
    u32 reserved1 = 0; ///< offset 36

    CRecType RecType() const { return CRecType(sub, type); }

    /// Whether the `Size` bytes at \p bytes may be a header that its writer has not completed: it goes out
    /// with sizes of 0 first and gets them when the payload stands behind it. (An empty item keeps them.)
    static bool IsPlaceholder(const u8* bytes);

    /// The bytes as they stand in the file.
    std::array<u8, Size> Encode() const;

    /// The fields of the `Size` bytes at \p bytes, whatever they hold: nothing is checked here.
    static ZrLogItem Decode(const u8* bytes);
};

static_assert(sizeof(ZrLogItem) == ZrLogItem::Size && offsetof(ZrLogItem, type) == 8
        && offsetof(ZrLogItem, format) == 10 && offsetof(ZrLogItem, sub) == 12
        && offsetof(ZrLogItem, time) == 16 && offsetof(ZrLogItem, compressed) == 24
        && offsetof(ZrLogItem, source) == 26 && offsetof(ZrLogItem, dataSize) == 28
        && offsetof(ZrLogItem, storedSize) == 32,
    "members stand at the offsets of the file");
