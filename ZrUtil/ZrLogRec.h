#pragma once

#include "ZrUtil/ZrLogItemInf.h"
#include "ZrUtil/ZrTypes.h"

#include <array>
#include <cstddef>

#pragma pack(push, 4)

/// One indexed record of a dataset: when, where and at which file positions.
///
/// 160 bytes, packed to 4-byte alignment, because an index file holds these bytes as they are
/// (little-endian). `pos` and `crdPos` are therefore not aligned to 8 bytes: copy them, never bind a
/// reference or a pointer to them. The navigation members are filled by the dataset of the application.
struct ZrLogRec
{
    double time = 0.0; ///< offset 0: seconds since 1970-01-01T00:00:00 UTC
    double latitude = 0.0; ///< offset 8: degrees, north positive
    double longitude = 0.0; ///< offset 16: degrees, east positive
    double spare24 = 0.0; ///< offset 24, free for applications
    double spare32 = 0.0; ///< offset 32, free for applications
    u32 spare40 = 0; ///< offset 40, free for applications
    u32 spare44 = 0; ///< offset 44, free for applications
    double spare48 = 0.0; ///< offset 48, free for applications
    float altitude = 0.0f; ///< offset 56: metres above the seabed
    float depth = 0.0f; ///< offset 60: metres below the surface
    float heading = 0.0f; ///< offset 64: degrees, clockwise from north
    float pitch = 0.0f; ///< offset 68: degrees
    float roll = 0.0f; ///< offset 72: degrees
    float spare76 = 0.0f; ///< offset 76, free for applications
    float spare80 = 0.0f; ///< offset 80, free for applications
    u64 pos = 0; ///< offset 84: file position of the item's header
    std::array<u64, 8> crdPos{}; ///< offset 92: positions of the latest items of the 8 coordinate types
    u32 spare156 = 0; ///< offset 156, free for applications

    /// All zero.
    ZrLogRec() = default;

    /// The time of \p inf, the item position and the coordinate positions; everything else zero.
    ZrLogRec(const ZrLogItemInf& inf, u64 itemPos, const std::array<u64, 8>& coordinatePos)
        : time(inf.time)
        , pos(itemPos)
        , crdPos(coordinatePos)
    {
    }
};

#pragma pack(pop)

static_assert(sizeof(ZrLogRec) == 160 && offsetof(ZrLogRec, spare48) == 48
        && offsetof(ZrLogRec, altitude) == 56 && offsetof(ZrLogRec, spare80) == 80
        && offsetof(ZrLogRec, pos) == 84 && offsetof(ZrLogRec, crdPos) == 92
        && offsetof(ZrLogRec, spare156) == 156,
    "the record is stored byte for byte in index files");
