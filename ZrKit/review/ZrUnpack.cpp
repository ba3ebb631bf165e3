#include "ZrKit/review/ZrUnpack.h"

#include <QCoreApplication>
#include <QtEndian>

#include <algorithm>
#include <zlib.h>

namespace {

constexpr u64 prefixSize = 4; ///< big-endian length in front of the zlib stream
constexpr u64 bestRatio = 1032; ///< a deflate stream spends at least 2 bits on 258 bytes
constexpr u64 largestArray = 0x7FFFFFFF;

/// Why \p stored cannot be a payload of \p announced bytes; empty when it may be one.
QString Implausible(const ZrLogItem& item, u64 announced, u64 storedSize)
{
    if (announced != item.dataSize) {
        return QCoreApplication::translate(
            "ZrUnpack", "The compressed payload announces %1 bytes, the item header %2")
            .arg(announced)
            .arg(item.dataSize);
    }
    if (announced > (storedSize - prefixSize) * bestRatio) {
        return QCoreApplication::translate(
            "ZrUnpack", "The compressed payload announces %1 bytes, more than its %2 bytes can hold")
            .arg(announced)
            .arg(storedSize);
    }
    return QString();
}

/// Decompresses the zlib stream that begins with \p in into \p out until that is full; how many bytes came.
u32 InflateInto(zr::span<u8> in, u8* out, u32 count)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return 0;
    stream.next_in = in.data();
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = out;
    stream.avail_out = count;
    inflate(&stream, Z_SYNC_FLUSH);
    inflateEnd(&stream);
    return count - stream.avail_out;
}

} // namespace

bool zr::unpack_payload(const ZrLogItem& item, zr::span<u8> stored, QByteArray* data, QString* error)
{
    const auto refuse = [error](const QString& sentence) {
        *error = sentence;
        return false;
    };
    if (stored.size() > largestArray || item.dataSize > largestArray)
        return refuse(QCoreApplication::translate("ZrUnpack", "The payload is larger than 2 GiB"));
    if (item.compressed == 0) {
        *data = zr::to_byte_array(stored);
        return true;
    }
    if (stored.size() < prefixSize)
        return refuse(QCoreApplication::translate(
            "ZrUnpack", "The compressed payload is shorter than its length field"));
    const u64 announced = qFromBigEndian<quint32>(stored.data());
    const QString reason = Implausible(item, announced, stored.size());
    if (!reason.isEmpty())
        return refuse(reason);
    // Nothing compressed is the length field alone.
    if (stored.size() == prefixSize) {
        *data = QByteArray("");
        return true;
    }
    const QByteArray unpacked = qUncompress(stored.data(), static_cast<int>(stored.size()));
    if (static_cast<u64>(unpacked.size()) != announced)
        return refuse(QCoreApplication::translate("ZrUnpack", "The compressed payload is damaged"));
    *data = unpacked;
    return true;
}

bool zr::unpack_start(const ZrLogItem& item, zr::span<u8> start, u32 count, QByteArray* data, QString* error)
{
    const auto refuse = [error](const QString& sentence) {
        *error = sentence;
        return false;
    };
    if (item.storedSize > largestArray || item.dataSize > largestArray)
        return refuse(QCoreApplication::translate("ZrUnpack", "The payload is larger than 2 GiB"));
    const u32 wanted = std::min(count, item.compressed == 0 ? item.storedSize : item.dataSize);
    const std::size_t needed = item.compressed == 0 ? wanted : prefixSize;
    if (start.size() < needed || item.storedSize < needed)
        return refuse(QCoreApplication::translate("ZrUnpack", "The start of the payload is too short"));
    if (item.compressed == 0) {
        *data = zr::to_byte_array(start.subspan(0, wanted));
        return true;
    }
    const QString reason = Implausible(item, qFromBigEndian<quint32>(start.data()), item.storedSize);
    if (!reason.isEmpty())
        return refuse(reason);
    QByteArray unpacked(static_cast<int>(wanted), Qt::Uninitialized);
    const zr::span<u8> stream = start.subspan(prefixSize, start.size() - prefixSize);
    if (InflateInto(stream, reinterpret_cast<u8*>(unpacked.data()), wanted) != wanted)
        return refuse(QCoreApplication::translate("ZrUnpack", "The compressed payload is damaged"));
    *data = unpacked;
    return true;
}
