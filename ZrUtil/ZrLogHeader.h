#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <array>

/// The header at offset 0 of every data log: 48 bytes, little-endian.
///
/// | Offset | Width | Field | Value written |
/// |---|---|---|---|
/// | 0 | u32 | `magic` | 0x11223344 |
/// | 4 | u32 | `headerSize` | 48 |
/// | 8 | 16 bytes | `tag` | "ZrLogHeaderxxxx" and a zero byte |
/// | 24 | u32 | `version` | 1 |
/// | 28 | 4 bytes | gap | zeros, ignored by readers |
/// | 32 | u64 | `reserved` | 0 |
/// | 40 | f64 | `created` | seconds since 1970-01-01T00:00:00 UTC, millisecond resolution |
///
/// A plain value; `Encode` and `Decode` are the only road between it and a file.
struct ZR_UTIL_EXPORT ZrLogHeader
{
    static constexpr u32 Magic = 0x11223344;
    static constexpr u32 Size = 48; ///< bytes in the file

    u32 magic = Magic;
    u32 headerSize = Size;
    std::array<char, 16> tag{"ZrLogHeaderxxxx"};
    u32 version = 1;
    u64 reserved = 0;
    double created = 0.0; ///< seconds since the epoch, UTC

    /// The bytes as they stand in the file.
    std::array<u8, Size> Encode() const;

    /// The fields of the `Size` bytes at \p bytes, whatever they hold: nothing is checked here.
    static ZrLogHeader Decode(const u8* bytes);
};
