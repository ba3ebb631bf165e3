#include "ZrUtil/ZrPlayer.h"

#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrSameFile.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

ZrPlayer::ZrPlayer() = default;

ZrPlayer::~ZrPlayer() = default;

bool ZrPlayer::OpenFile(QString path)
{
    CloseFile();
    fileName = path;
    file.setFileName(path);
    // Unbuffered: reading ahead is done here, where it is known which bytes may be old.
    if (!zr::is_possible_path(path) || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    fileSize = static_cast<u64>(file.size());
    pos = 0;
    if (fileSize < ZrLogHeader::Size)
        return ReadFailed(QStringLiteral("File is not big enough to contain a header"));

    std::array<u8, ZrLogHeader::Size> bytes;
    if (!Read(bytes))
        return ReadFailed(QStringLiteral("Cannot read the file header"));
    const ZrLogHeader header = ZrLogHeader::Decode(bytes.data());
    if (header.magic != ZrLogHeader::Magic)
        return ReadFailed(QStringLiteral("Not a valid header"));
    // The header size alone decides whether the layout is known; version and tag are not examined.
    if (header.headerSize != ZrLogHeader::Size)
        return ReadFailed(QStringLiteral("File header version mismatch"));
    return true;
}

void ZrPlayer::CloseFile()
{
    m_ahead.Restart();
    file.close();
}

bool ZrPlayer::Read(zr::span<u8> into)
{
    if (!m_ahead.Read(file, into))
        return false;
    pos += into.size();
    return true;
}

/// Reads header and payload of the item at `pos`; at least the header is known to fit. With \p tellMagic the
/// message about a wrong magic number names the number found.
bool ZrPlayer::ReadItem(ZrLogItem& item, bool tellMagic)
{
    // A placeholder that was read ahead may have been completed since. A payload stands in the file before
    // its header is completed, so the bytes behind a complete header are never older than it.
    const u8* const header = m_ahead.TakeFresh(file, pos, ZrLogItem::Size, &ZrLogItem::IsPlaceholder);
    if (!header)
        return ReadFailed(QStringLiteral("Cannot read the item header"));
    item = ZrLogItem::Decode(header);
    pos += ZrLogItem::Size;
    if (item.magic != ZrLogItem::Magic) {
        return ReadFailed(tellMagic
                ? QStringLiteral("Not a valid item header:") + QString::number(item.magic, 16)
                : QStringLiteral("Not a valid item header"));
    }
    if (item.headerSize != ZrLogItem::Size)
        return ReadFailed(QStringLiteral("Item header version mismatch"));

    // Nothing is allocated for a size that the file cannot hold. The file is asked only when the size known
    // at opening is not enough: it may have grown since.
    if (item.storedSize > BytesLeft()) {
        const u64 sizeNow = static_cast<u64>(std::max<qint64>(file.size(), 0));
        if (pos > sizeNow || item.storedSize > sizeNow - pos)
            return ReadFailed(QStringLiteral("Unable to read item payload"));
    }
    buffer.resize(item.storedSize);
    if (!Read(buffer))
        return ReadFailed(QStringLiteral("Unable to read item payload"));
    return true;
}

/// Hands the item in `buffer` to the receivers, with \p announce preceded by `SeekLog`. The buffer is taken
/// out of the player meanwhile, so that a receiver may read, seek or close without pulling the bytes from
/// under the receivers after it.
void ZrPlayer::Deliver(const ZrLogItem& item, u64 itemPos, bool announce)
{
    const ZrLogItemInf inf(item);
    std::vector<u8> payload = std::move(buffer);
    buffer.clear();
    if (announce)
        Q_EMIT SeekLog(itemPos);
    Q_EMIT NewPayload(inf, payload);
    Q_EMIT NewPayloadPos(inf, payload, itemPos);
    if (payload.capacity() > buffer.capacity())
        buffer = std::move(payload);
}

bool ZrPlayer::ReadNextItem(bool playing)
{
    if (!file.isOpen())
        return false;
    if (pos == fileSize) {
        Q_EMIT EndOfFile();
        return false;
    }
    if (BytesLeft() < ZrLogItem::Size) {
        return ReadFailed(QStringLiteral("Incomplete item header found. FS:") + QString::number(fileSize)
            + QStringLiteral(" BR:") + QString::number(pos));
    }
    const u64 itemPos = pos;
    ZrLogItem item;
    if (!ReadItem(item, true))
        return false;
    Deliver(item, itemPos, !playing);
    return true;
}

bool ZrPlayer::ReadNextItemOfType(std::initializer_list<CRecType> types, u16 source, bool playing)
{
    if (!file.isOpen())
        return false;
    while (pos < fileSize) {
        if (BytesLeft() < ZrLogItem::Size)
            return ReadFailed(QStringLiteral("Incomplete item header found"));
        const u64 itemPos = pos;
        ZrLogItem item;
        if (!ReadItem(item, false))
            return false;
        if (source != 0 && item.source != source)
            continue;
        if (std::find(types.begin(), types.end(), item.RecType()) == types.end())
            continue;
        Deliver(item, itemPos, !playing);
        return true;
    }
    return false;
}

bool ZrPlayer::ReadNextItemOfType(CRecType type, u16 source, bool playing)
{
    return ReadNextItemOfType({type}, source, playing);
}

bool ZrPlayer::PlayUntilType(CRecType type)
{
    // A receiver may close the file; playing on then ends like a closed player.
    while (file.isOpen() && pos < fileSize) {
        if (BytesLeft() < ZrLogItem::Size)
            return ReadFailed(QStringLiteral("Incomplete item header found"));
        const u64 itemPos = pos;
        ZrLogItem item;
        if (!ReadItem(item, false))
            return false;
        Deliver(item, itemPos, false);
        if (item.RecType() == type)
            return true;
    }
    return false;
}

bool ZrPlayer::SeekTo(u64 newPos)
{
    if (!file.isOpen() && !OpenFile(fileName))
        return false;
    m_ahead.Restart();
    const bool representable = newPos <= static_cast<u64>(std::numeric_limits<qint64>::max());
    const bool sought = representable && file.seek(static_cast<qint64>(newPos));
    pos = newPos;
    return sought;
}

double ZrPlayer::PosPercent() const
{
    return static_cast<double>(pos) * 100.0 / static_cast<double>(fileSize);
}

bool ZrPlayer::ReadFailed(QString message)
{
    qDebug().noquote() << message;
    CloseFile();
    Q_EMIT EndOfFile();
    return false;
}
