#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <cstddef>
#include <cstring>
#include <vector>

class QIODevice;

/// Reads a file from front to back in blocks, for readers that ask for many small pieces.
///
/// Belongs to one device, which should be unbuffered itself. The device's own position is ahead of the
/// reader's by what waits in the block; whoever moves the device calls `Restart` first. Blocks start small,
/// so that a jump costs little, and double up to 256 KiB while reading goes on; a piece of 16 KiB or more
/// goes from the device straight to where it is wanted.
///
/// What waits in the block may have changed in the file since it was read; `TakeFresh` is for pieces where
/// this matters. One thread at a time.
class ZR_UTIL_EXPORT ZrReadAhead
{
public:
    /// Fills \p into from the block and \p device. False when fewer bytes arrive; what has been read is then
    /// lost.
    bool Read(QIODevice& device, zr::span<u8> into)
    {
        if (into.size() > m_end - m_at)
            return ReadPastBlock(device, into);
        if (!into.empty())
            std::memcpy(into.data(), m_block.data() + m_at, into.size());
        m_at += into.size();
        return true;
    }

    /// The next \p size bytes where they lie in the block, for pieces of up to 16 KiB; null when fewer
    /// arrive. Valid until the next call of anything here.
    const u8* Take(QIODevice& device, std::size_t size)
    {
        if (size > m_end - m_at && !Fill(device, size))
            return nullptr;
        const u8* const bytes = m_block.data() + m_at;
        m_at += size;
        return bytes;
    }

    /// As `Take`, for a piece of a file that somebody may be writing, at \p pos, where the reader stands.
    ///
    /// It is never put together from bytes of two moments, and it is read again when it was waiting in the
    /// block and \p mayBeOld says of its bytes that the file may hold others by now.
    const u8* TakeFresh(QIODevice& device, u64 pos, std::size_t size, bool (*mayBeOld)(const u8*));

    /// Forgets the bytes that wait in the block and begins with small blocks again.
    void Restart()
    {
        m_at = m_end = 0;
        m_nextFill = firstFill;
    }

private:
    bool ReadPastBlock(QIODevice& device, zr::span<u8> into);
    bool Fill(QIODevice& device, std::size_t atLeast);
    bool MoveTo(QIODevice& device, u64 pos);

    static constexpr std::size_t firstFill = std::size_t(16) * 1024;
    static constexpr std::size_t fillBesideLarge
        = std::size_t(4) * 1024; ///< headers between pieces that bypass the block
    static constexpr std::size_t greatestFill = std::size_t(256) * 1024;
    static constexpr std::size_t bypassSize = std::size_t(16) * 1024;

    std::vector<u8> m_block;
    std::size_t m_at = 0; ///< where the bytes that wait begin in the block
    std::size_t m_end = 0; ///< and where they end
    std::size_t m_nextFill = firstFill;
};
