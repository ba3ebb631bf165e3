#include "ZrKit/review/ZrLogScan.h"

#include "ZrUtil/IZrProgress.h"

#include <algorithm>
#include <limits>

namespace {

constexpr u64 firstWindow = u64(64) * 1024;
constexpr u64 largestWindow = u64(1024) * 1024;
constexpr u64 smallestWindow = u64(4) * 1024;
/// A gap from which skipping pays: below it, reading on is faster than the disk's answer to a seek.
constexpr u64 skipFrom = u64(256) * 1024;

} // namespace

bool ZrLogScan::Open(const QString& path)
{
    m_file.close();
    m_header = ZrLogHeader();
    m_sound = false;
    m_state = Closed;
    m_error.clear();
    m_errorPos = m_fileSize = m_pos = m_payloadPos = 0;
    m_payloadSize = 0;
    m_percent = -1;
    m_block.clear();
    m_blockPos = 0;
    m_window = firstWindow;

    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        m_state = Unreadable;
        m_error = m_file.errorString();
        return false;
    }
    m_fileSize = static_cast<u64>(std::max<qint64>(m_file.size(), 0));
    if (m_fileSize < ZrLogHeader::Size)
        return Fail(QStringLiteral("File is not big enough to contain a header"), 0);
    const u8* bytes = Bytes(0, ZrLogHeader::Size);
    if (!bytes)
        return Fail(QStringLiteral("Cannot read the file header"), 0);
    m_header = ZrLogHeader::Decode(bytes);
    if (m_header.magic != ZrLogHeader::Magic)
        return Fail(QStringLiteral("Not a valid header"), 0);
    if (m_header.headerSize != ZrLogHeader::Size)
        return Fail(QStringLiteral("File header version mismatch"), 0);
    m_pos = ZrLogHeader::Size;
    m_sound = true;
    m_state = Scanning;
    return true;
}

bool ZrLogScan::Fail(const QString& message, u64 pos)
{
    m_state = Damaged;
    m_error = message;
    m_errorPos = pos;
    return false;
}

/// The \p count bytes at \p pos inside the block, which is read when it does not hold them; null when the
/// file does not hold them.
const u8* ZrLogScan::Bytes(u64 pos, u64 count)
{
    const auto holds = [&] {
        return pos >= m_blockPos && pos - m_blockPos <= m_block.size()
            && m_block.size() - (pos - m_blockPos) >= count;
    };
    if (!holds() && !(FillFrom(pos, count) && holds()))
        return nullptr;
    return m_block.data() + (pos - m_blockPos);
}

/// Reads the next block, of \p least bytes or more unless the file ends.
bool ZrLogScan::FillFrom(u64 pos, u64 least)
{
    const u64 blockEnd = m_blockPos + m_block.size();
    const bool skips = pos < m_blockPos || (pos > blockEnd && pos - blockEnd >= skipFrom);
    if (!m_block.empty())
        m_window = skips ? smallestWindow : std::min(m_window * 4, largestWindow);
    const u64 size = std::max(m_window, least);
    m_block.resize(size);
    m_blockPos = pos;
    if (pos > static_cast<u64>(std::numeric_limits<qint64>::max())
        || !m_file.seek(static_cast<qint64>(pos))) {
        m_block.clear();
        return false;
    }
    const qint64 got = m_file.read(reinterpret_cast<char*>(m_block.data()), static_cast<qint64>(size));
    m_block.resize(static_cast<std::size_t>(std::max<qint64>(got, 0)));
    return true;
}

/// Whether the file holds \p size bytes from \p pos on. It is asked again only when the size known at opening
/// is not enough: a log that is being written may have grown since.
bool ZrLogScan::PayloadFits(u64 pos, u64 size) const
{
    if (pos <= m_fileSize && size <= m_fileSize - pos)
        return true;
    const u64 sizeNow = static_cast<u64>(std::max<qint64>(m_file.size(), 0));
    return pos <= sizeNow && size <= sizeNow - pos;
}

void ZrLogScan::Report()
{
    if (!progress || m_fileSize == 0)
        return;
    const double share = static_cast<double>(m_pos) * 100.0 / static_cast<double>(m_fileSize);
    const int percent = static_cast<int>(std::min(share, 100.0));
    if (percent == m_percent)
        return;
    m_percent = percent;
    progress->UpdateProgress(percent);
}

bool ZrLogScan::Next(ZrLogItem& item, u64& pos)
{
    if (m_state != Scanning)
        return false;
    if (cancel) {
        m_state = Cancelled;
        return false;
    }
    Report();
    if (m_pos == m_fileSize) {
        m_state = AtEnd;
        return false;
    }
    if (m_pos > m_fileSize || m_fileSize - m_pos < ZrLogItem::Size) {
        return Fail(QStringLiteral("Incomplete item header found. FS:") + QString::number(m_fileSize)
                + QStringLiteral(" BR:") + QString::number(m_pos),
            m_pos);
    }
    const u8* bytes = Bytes(m_pos, ZrLogItem::Size);
    if (!bytes)
        return Fail(QStringLiteral("Cannot read the item header"), m_pos);
    const ZrLogItem found = ZrLogItem::Decode(bytes);
    if (found.magic != ZrLogItem::Magic)
        return Fail(QStringLiteral("Not a valid item header:") + QString::number(found.magic, 16), m_pos);
    if (found.headerSize != ZrLogItem::Size)
        return Fail(QStringLiteral("Item header version mismatch"), m_pos);
    if (!PayloadFits(m_pos + ZrLogItem::Size, found.storedSize))
        return Fail(QStringLiteral("Unable to read item payload"), m_pos);
    item = found;
    pos = m_pos;
    m_payloadPos = m_pos + ZrLogItem::Size;
    m_payloadSize = found.storedSize;
    m_pos = m_payloadPos + m_payloadSize;
    return true;
}

zr::span<u8> ZrLogScan::PayloadStart(u32 most)
{
    const u32 count = std::min(most, m_payloadSize);
    const u8* bytes = count == 0 ? nullptr : Bytes(m_payloadPos, count);
    return bytes ? zr::bytes_of(bytes, count) : zr::span<u8>();
}

bool ZrLogScan::SeekTo(u64 pos)
{
    if (!m_sound)
        return false;
    m_pos = pos;
    m_payloadSize = 0;
    m_state = Scanning;
    m_error.clear();
    m_errorPos = 0;
    return true;
}
