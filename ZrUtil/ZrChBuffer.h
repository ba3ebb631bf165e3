#pragma once

#include "ZrUtil/ZrChEntry.h"
#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <mutex>
#include <vector>

/// A ring of data lines of one width, with a time for each: the store of a scrolling waterfall.
///
/// One thread adds lines, another draws: it holds `mutex` while it reads the members.
class ZR_UTIL_EXPORT ZrChBuffer
{
public:
    mutable std::mutex mutex; ///< guards all members; taken by all functions
    u32 dirty = 0; ///< set to 1 when there is something new; cleared by who draws
    i32 width = 0; ///< bytes per line; 0 while there is no buffer
    i32 lines = 0; ///< capacity
    i32 next = 0; ///< the line that is written next
    std::vector<u8> data; ///< `width` × `lines` bytes
    std::vector<ZrChEntry> entries; ///< one for each line

    ZrChBuffer() = default;

    ZrChBuffer(const ZrChBuffer&) = delete;
    ZrChBuffer& operator=(const ZrChBuffer&) = delete;

    /// Makes a buffer of this size, every byte 0x0F, every entry 0; a size that is not positive releases it.
    /// When memory runs out `std::bad_alloc` leaves an empty buffer.
    void InitBuffer(int newWidth, int newLines);

    /// Writes the next line: the first min(`width`, \p n) bytes, behind which the line keeps what it held.
    ///
    /// \return the entry of the line, with the time (as a `float`: to about two minutes for seconds since
    /// 1970, so pass times from the begin of the record), for the caller to fill its other members while
    /// nobody else writes; null without a buffer and for an \p n that is not positive.
    ZrChEntry* AddData(double time, int n, u8* bytes);
};
