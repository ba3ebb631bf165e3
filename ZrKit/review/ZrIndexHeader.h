#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <array>
#include <cstddef>

/// What an index file (log path + ".zri") begins with: how many records follow, 160 bytes each, and of which
/// types the log's items were. A plain value.
struct ZR_KIT_EXPORT ZrIndexHeader
{
    static constexpr std::size_t Size = 46; ///< bytes

    u32 count = 0;
    CRecType idxType;
    std::array<CRecType, 8> crdTypes{};

    std::array<u8, Size> Encode() const;

    /// False, and nothing changed, when \p bytes are too few or not those of an index of the known version.
    bool Decode(zr::span<const u8> bytes);
};
