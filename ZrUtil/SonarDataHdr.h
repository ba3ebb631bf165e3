#pragma once

#include "ZrUtil/ZrTypes.h"

/// Header of a sonar image, as it comes before the payload: 2066 bytes, little-endian.
///
/// Packed: take members by value, not by reference.
#pragma pack(push, 1)

struct SonarDataHdr
{
    static constexpr int maxCols = 1024; ///< entries of `colPos`; an image may have more columns

    float scale; ///< display parameter, belongs to the application
    u8 reserved[8]; ///< 0
    u16 rows; ///< of the image
    u16 cols; ///< samples per row
    i16 colPos[maxCols]; ///< position of each column; the unit belongs to the application
    u16 reservedEnd; ///< 0
};

#pragma pack(pop)

static_assert(sizeof(SonarDataHdr) == 2066, "the layout of the header is fixed");
