#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

/// A georeferenced image: 78 bytes of values, whose meaning belongs to the application, and the pixels.
///
/// The pixels are allocated by `malloc`. Assignment is shallow: both records then share the pixels, and only
/// one of them may release them — set `buffer` to null in the other before it goes. There is no copy
/// constructor, so that records are not copied unawares.
class ZR_UTIL_EXPORT ZrGeoImg
{
public:
    u8 values[78] = {};
    u8* buffer = nullptr; ///< owned

    ZrGeoImg() = default;

    /// Frees the pixels and zeroes the values.
    ~ZrGeoImg();

    ZrGeoImg(const ZrGeoImg&) = delete;

    /// Copies the values and the pointer; the former pixels are not released.
    ZrGeoImg& operator=(const ZrGeoImg& other);
};
