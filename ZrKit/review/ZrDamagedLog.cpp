#include "ZrKit/review/ZrDamagedLog.h"

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrUtil/ZrEndian.h"

#include <QCoreApplication>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace {

constexpr u64 blockSize = u64{1024} * 1024;
constexpr u64 asideSize = u64{4} * 1024;
constexpr u64 lengthPrefix = 4; ///< bytes before the zlib stream of a compressed payload
constexpr u64 bestRatio = 1032; ///< a deflate stream spends at least 2 bits on 258 bytes
constexpr int trustedItems = 3; ///< that many headers in a row are no chance

/// The eight bytes with which every item begins.
constexpr u8 itemStart[8] = {0xDD, 0xCC, 0xBB, 0xAA, ZrLogItem::Size, 0, 0, 0};
constexpr int remainsOfStart = 6; ///< so many of them must be left to recognise a damaged header

u64 EndOf(u64 pos, const ZrLogItem& item)
{
    return pos + ZrLogItem::Size + item.storedSize;
}

bool IsEmpty(const ZrLogItem& item)
{
    return item.dataSize == 0 && item.storedSize == 0;
}

/// Whether the two sizes can belong to one compressed payload: neither packs zlib better than it can, nor
/// does it grow what it packs by more than its own framing.
bool SizesOfCompressed(const ZrLogItem& item)
{
    const u64 data = item.dataSize;
    const u64 stored = item.storedSize;
    return stored >= lengthPrefix && data <= (stored - lengthPrefix) * bestRatio
        && stored <= data + data / 8 + 64;
}

/// Whether all fields of the header agree with the format and with each other.
bool IsHeader(const ZrLogItem& item)
{
    if (item.magic != ZrLogItem::Magic || item.headerSize != ZrLogItem::Size || item.compressed > 1
        || item.reserved0 != 0 || item.reserved1 != 0)
        return false;
    if (item.storedSize > ZrLogWriter::MaxPayload || item.dataSize > ZrLogWriter::MaxPayload)
        return false;
    if (IsEmpty(item))
        return true;
    return item.compressed == 0 ? item.storedSize == item.dataSize : SizesOfCompressed(item);
}

} // namespace

bool ZrDamagedLog::Open(const QString& path)
{
    m_file.close();
    m_error.clear();
    m_block.clear();
    m_aside.clear();
    m_crossAt = NoPos;
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        m_error = m_file.errorString();
        return false;
    }
    m_size = static_cast<u64>(std::max<qint64>(m_file.size(), 0));
    return true;
}

/// Reads as much as \p block can take from \p pos on, at least \p count bytes.
bool ZrDamagedLog::Fill(std::vector<u8>& block, u64& blockPos, u64 pos, u64 count)
{
    if (!m_error.isEmpty())
        return false;
    block.resize(
        static_cast<std::size_t>(std::min(&block == &m_block ? blockSize : asideSize, m_size - pos)));
    blockPos = pos;
    qint64 got = -1;
    if (m_file.seek(static_cast<qint64>(pos)))
        got = m_file.read(reinterpret_cast<char*>(block.data()), static_cast<qint64>(block.size()));
    block.resize(static_cast<std::size_t>(std::max<qint64>(got, 0)));
    if (block.size() >= count)
        return true;
    m_error = QCoreApplication::translate("ZrDamagedLog", "Cannot read at byte %1: %2")
                  .arg(pos)
                  .arg(got < 0 ? m_file.errorString()
                               : QCoreApplication::translate("ZrDamagedLog", "the file has become shorter"));
    return false;
}

/// \p count bytes at \p pos, at most 4 KiB, valid until the next call; null where the file does not have
/// them.
const u8* ZrDamagedLog::Peek(u64 pos, u64 count)
{
    if (pos > m_size || m_size - pos < count)
        return nullptr;
    const auto in = [&](const std::vector<u8>& block, u64 at) -> const u8* {
        const bool holds = pos >= at && pos - at <= block.size() && block.size() - (pos - at) >= count;
        return holds ? block.data() + (pos - at) : nullptr;
    };
    if (const u8* bytes = in(m_block, m_blockPos))
        return bytes;
    if (const u8* bytes = in(m_aside, m_asidePos))
        return bytes;
    return Fill(m_aside, m_asidePos, pos, count) ? m_aside.data() : nullptr;
}

bool ZrDamagedLog::Read(u64 pos, u8* out, u64 count)
{
    if (pos > m_size || m_size - pos < count)
        return false;
    const bool holds = pos >= m_blockPos && pos - m_blockPos <= m_block.size()
        && m_block.size() - (pos - m_blockPos) >= count;
    if (!holds && count <= blockSize && !Fill(m_block, m_blockPos, pos, count))
        return false;
    if (holds || count <= blockSize) {
        std::copy_n(m_block.data() + (pos - m_blockPos), count, out);
        return true;
    }
    if (m_error.isEmpty() && m_file.seek(static_cast<qint64>(pos))
        && m_file.read(reinterpret_cast<char*>(out), static_cast<qint64>(count))
            == static_cast<qint64>(count))
        return true;
    if (m_error.isEmpty())
        m_error = QCoreApplication::translate("ZrDamagedLog", "Cannot read at byte %1: %2")
                      .arg(pos)
                      .arg(m_file.errorString());
    return false;
}

/// The length with which a compressed payload of an item at \p pos begins; `NoPos` when the file is shorter.
u64 ZrDamagedLog::PayloadPrefix(u64 pos)
{
    const u8* bytes = Peek(pos + ZrLogItem::Size, lengthPrefix);
    return bytes ? qFromBigEndian<quint32>(bytes) : NoPos;
}

ZrDamagedLog::eHeader ZrDamagedLog::HeaderAt(u64 pos, ZrLogItem& item)
{
    const u8* bytes = Peek(pos, ZrLogItem::Size);
    if (!bytes)
        return NoHeader;
    item = ZrLogItem::Decode(bytes);
    if (!IsHeader(item))
        return NoHeader;
    const bool fits = EndOf(pos, item) <= m_size;
    if (item.compressed == 0 || IsEmpty(item))
        return fits ? Sound : Overhanging;
    const u64 prefix = PayloadPrefix(pos);
    if (prefix != item.dataSize && !(prefix == NoPos && !fits))
        return NoHeader;
    return fits ? Sound : Overhanging;
}

bool ZrDamagedLog::FileHeaderAt(u64 pos, ZrLogHeader& header)
{
    const u8* bytes = Peek(pos, ZrLogHeader::Size);
    if (bytes)
        header = ZrLogHeader::Decode(bytes);
    return bytes != nullptr;
}

bool ZrDamagedLog::IsFileHeader(u64 pos)
{
    ZrLogHeader header;
    return FileHeaderAt(pos, header) && header.magic == ZrLogHeader::Magic
        && header.headerSize == ZrLogHeader::Size && header.tag == ZrLogHeader().tag;
}

bool ZrDamagedLog::EndsSurely(u64 pos)
{
    ZrLogItem item;
    return pos == m_size || HeaderAt(pos, item) == Sound || IsFileHeader(pos);
}

/// How many of the first \p count bytes at \p pos (at most 8) are those of an item header.
int ZrDamagedLog::MatchingBytes(u64 pos, u64 count)
{
    const u8* bytes = Peek(pos, count);
    int matching = 0;
    for (u64 i = 0; bytes && i < count; ++i)
        matching += bytes[i] == itemStart[i] ? 1 : 0;
    return matching;
}

bool ZrDamagedLog::IsZero(u64 from, u64 to)
{
    const u8* bytes = Peek(from, to - from);
    return bytes && std::all_of(bytes, bytes + (to - from), [](u8 byte) { return byte == 0; });
}

bool ZrDamagedLog::EndsLikely(u64 pos)
{
    constexpr u64 start = sizeof itemStart;
    if (pos >= m_size)
        return false;
    const u64 left = m_size - pos;
    if (left < start)
        return MatchingBytes(pos, left) == static_cast<int>(left);
    if (MatchingBytes(pos, start) >= remainsOfStart)
        return true;
    // The beginning of a header up to the end of a sector, and the next sector lost.
    const u64 hole = (pos + Sector - 1) / Sector * Sector;
    const u64 kept = std::min(hole - pos, start);
    return hole - pos < ZrLogItem::Size && hole < m_size && MatchingBytes(pos, kept) == static_cast<int>(kept)
        && IsZero(hole, std::min(hole + Sector, m_size));
}

bool ZrDamagedLog::EndsInHole(u64 from, u64 end)
{
    constexpr u64 leastZeros = 8; // texts end with a zero or two of their own
    const u64 sector = end / Sector * Sector;
    const u64 zeros = std::max(from, sector);
    return end < m_size && end > zeros && end - zeros >= leastZeros
        && IsZero(zeros, std::min(sector + Sector, m_size));
}

bool ZrDamagedLog::HeaderInHole(u64 pos)
{
    const u64 hole = (pos / Sector + 1) * Sector;
    return hole < pos + ZrLogItem::Size && hole < m_size && IsZero(hole, std::min(hole + Sector, m_size));
}

/// The first magic number that begins inside [from, end); `NoPos` if none.
u64 ZrDamagedLog::NextMagic(u64 from, u64 end)
{
    constexpr u64 width = 4;
    end = std::min(end, m_size);
    while (from < end && m_size - from >= width && !Stopped()) {
        const bool holds = from >= m_blockPos && from - m_blockPos <= m_block.size()
            && m_block.size() - (from - m_blockPos) >= width;
        if (!holds && !Fill(m_block, m_blockPos, from, width))
            return NoPos;
        const u8* const bytes = m_block.data() + (from - m_blockPos);
        // A magic number that begins in the last three bytes is met again with the next block.
        const u64 starts = std::min(m_block.size() - (from - m_blockPos) - (width - 1), end - from);
        for (const u8* at = bytes; at < bytes + starts; ++at) {
            at = static_cast<const u8*>(
                std::memchr(at, itemStart[0], static_cast<std::size_t>(bytes + starts - at)));
            if (!at)
                break;
            if (std::memcmp(at, itemStart, width) == 0)
                return from + static_cast<u64>(at - bytes);
        }
        from += starts;
    }
    return NoPos;
}

/// The run of items that begins at \p pos, as far as is needed to judge it.
ZrDamagedLog::Chain ZrDamagedLog::ChainAt(u64 pos)
{
    Chain chain;
    ZrLogItem item;
    while (chain.items < trustedItems) {
        if (HeaderAt(pos, item) != Sound) {
            chain.trusted = chain.items > 0 && (pos == m_size || IsFileHeader(pos) || EndsLikely(pos));
            return chain;
        }
        chain.times[chain.items] = item.time;
        ++chain.items;
        pos = EndOf(pos, item);
        if (IsEmpty(item) && !EndsSurely(pos)) {
            // What an interrupted writer leaves; by itself it could be anything.
            chain.trusted = chain.items > 1 || EndsLikely(pos);
            return chain;
        }
    }
    chain.trusted = true;
    return chain;
}

u64 ZrDamagedLog::NextChain(u64 from)
{
    for (u64 pos = NextMagic(from, m_size); pos != NoPos; pos = NextMagic(pos + 1, m_size)) {
        if (ChainAt(pos).trusted)
            return Stopped() ? NoPos : pos;
    }
    return NoPos;
}

u64 ZrDamagedLog::NextChainInClaim(u64 from, double time)
{
    for (u64 pos = NextChain(from); pos != NoPos; pos = NextChain(pos + 1)) {
        const Chain chain = ChainAt(pos);
        // NaN is earlier than nothing.
        const bool headEarlier = chain.times[0] < time;
        const bool nextEarlier = chain.items > 1 && chain.times[1] < time;
        if (!headEarlier || nextEarlier)
            return pos;
    }
    return NoPos;
}

/// Goes from the sound item at \p pos to the next and so on, until \p end is reached or passed or no sound
/// item follows.
ZrDamagedLog::Run ZrDamagedLog::Follow(u64 pos, u64 end)
{
    Run run;
    ZrLogItem item;
    while (pos < end && !Stopped() && HeaderAt(pos, item) == Sound) {
        ++run.items;
        run.last = pos;
        pos = EndOf(pos, item);
    }
    run.end = pos;
    return run;
}

/// Where to look on when \p run, which began at \p pos, was not the one looked for: behind it when it is long
/// enough to be trusted. Thus no part of a file is followed again and again.
u64 ZrDamagedLog::Behind(u64 pos, const Run& run)
{
    return (run.items < trustedItems ? pos : run.last) + 1;
}

u64 ZrDamagedLog::ChainAcross(u64 from, u64 end)
{
    if (m_crossAt != NoPos && from <= m_crossAt && m_crossAt < end && end < m_crossEnd)
        return m_crossAt;
    for (u64 pos = NextMagic(from, end); pos != NoPos;) {
        const Run run = Follow(pos, end);
        if (run.end > end && (EndsSurely(run.end) || EndsLikely(run.end))) {
            m_crossAt = pos;
            m_crossEnd = run.end;
            return pos;
        }
        pos = NextMagic(Behind(pos, run), end);
    }
    return NoPos;
}

u64 ZrDamagedLog::FileHeaderAcross(u64 end)
{
    for (u64 pos = end - std::min<u64>(end, ZrLogHeader::Size - 1); pos < end; ++pos) {
        if (IsFileHeader(pos))
            return pos;
    }
    return NoPos;
}

u64 ZrDamagedLog::ChainTo(u64 from, u64 end)
{
    for (u64 pos = NextMagic(from, end); pos != NoPos;) {
        const Run run = Follow(pos, end);
        if (run.items > 0 && run.end == end)
            return pos;
        pos = NextMagic(Behind(pos, run), end);
    }
    return NoPos;
}

u64 ZrDamagedLog::EndOfBroken(u64 pos)
{
    const u8* bytes = Peek(pos, ZrLogItem::Size);
    if (!bytes)
        return NoPos;
    const ZrLogItem item = ZrLogItem::Decode(bytes);
    const auto endBy = [&](u32 size) {
        const u64 end = pos + ZrLogItem::Size + size;
        return size > 0 && end <= m_size && EndsSurely(end) ? end : NoPos;
    };
    if (item.dataSize == item.storedSize)
        return endBy(item.storedSize);
    if (MatchingBytes(pos, sizeof itemStart) < remainsOfStart)
        return NoPos;
    const u64 payload = pos + ZrLogItem::Size;
    if (item.compressed != 1 && PayloadPrefix(pos) != item.dataSize) {
        const u64 end = std::min(endBy(item.storedSize), endBy(item.dataSize));
        return end == NoPos ? end : std::min(end, NextChainInClaim(payload, item.time));
    }
    // A checksum ends a compressed payload, so a run of items that leads right to its end is no part of it:
    // then the size is wrong.
    const u64 end = endBy(item.storedSize);
    return end == NoPos ? end : std::min(end, ChainTo(payload, end));
}
