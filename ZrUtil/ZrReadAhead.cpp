#include "ZrUtil/ZrReadAhead.h"

#include <QIODevice>

#include <algorithm>

namespace {

/// Bytes read; 0 on failure too.
std::size_t ReadSome(QIODevice& device, u8* to, std::size_t size)
{
    return static_cast<std::size_t>(
        std::max<qint64>(device.read(reinterpret_cast<char*>(to), static_cast<qint64>(size)), 0));
}

} // namespace

bool ZrReadAhead::ReadPastBlock(QIODevice& device, zr::span<u8> into)
{
    const std::size_t waiting = m_end - m_at;
    if (waiting > 0)
        std::memcpy(into.data(), m_block.data() + m_at, waiting);
    m_at = m_end;
    const zr::span<u8> rest = into.subspan(waiting, into.size() - waiting);
    if (rest.size() >= bypassSize) {
        m_nextFill = fillBesideLarge;
        return ReadSome(device, rest.data(), rest.size()) == rest.size();
    }
    const u8* const bytes = Take(device, rest.size());
    if (!bytes)
        return false;
    std::memcpy(rest.data(), bytes, rest.size());
    return true;
}

/// Moves what waits to the front of the block and reads on behind it, until \p atLeast bytes wait.
bool ZrReadAhead::Fill(QIODevice& device, std::size_t atLeast)
{
    const std::size_t waiting = m_end - m_at;
    const std::size_t wanted = std::max(m_nextFill, atLeast);
    if (m_block.size() < wanted)
        m_block.resize(wanted);
    if (waiting > 0)
        std::memmove(m_block.data(), m_block.data() + m_at, waiting);
    m_at = 0;
    m_end = waiting + ReadSome(device, m_block.data() + waiting, wanted - waiting);
    m_nextFill = std::min(2 * wanted, greatestFill);
    return m_end >= atLeast;
}

bool ZrReadAhead::MoveTo(QIODevice& device, u64 pos)
{
    m_at = m_end = 0;
    return device.seek(static_cast<qint64>(pos));
}

const u8* ZrReadAhead::TakeFresh(QIODevice& device, u64 pos, std::size_t size, bool (*mayBeOld)(const u8*))
{
    const std::size_t waiting = m_end - m_at;
    const bool wholeWaits = waiting >= size;
    if (waiting > 0 && !wholeWaits && !MoveTo(device, pos))
        return nullptr;
    const u8* const bytes = Take(device, size);
    if (!bytes || !wholeWaits || !mayBeOld(bytes))
        return bytes;
    m_nextFill = firstFill;
    return MoveTo(device, pos) ? Take(device, size) : nullptr;
}
