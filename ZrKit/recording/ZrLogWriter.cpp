#include "ZrKit/recording/ZrLogWriter.h"

#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFileInfo>
#include <QSaveFile>

#include <vector>

namespace {

/// Writes of this size reach nearly the speed of the disk also with items of some ten bytes.
constexpr std::size_t blockSize = std::size_t{1024} * 1024;

} // namespace

struct ZrLogWriter::Private
{
    std::unique_ptr<QSaveFile> file; ///< null unless a log is open
    std::vector<u8> block; ///< bytes accepted but not yet given to the file, less than `blockSize`
    bool failed = false; ///< the disk refused something: nothing more is taken, nothing is committed
    u64 items = 0;
    u64 bytes = 0;
    QString path;
    QString error;

    bool Fail(const QString& reason); ///< this call failed, the next one may succeed
    bool FailForGood(const QString& reason); ///< every call fails until the next `Open`
    bool IsReady();
    bool Put(zr::span<u8> data);
    bool PutItem(zr::span<u8> header, zr::span<u8> payload);
    bool WriteOut(zr::span<u8> data);
    bool Flush();
};

bool ZrLogWriter::Private::Fail(const QString& reason)
{
    error = reason;
    return false;
}

bool ZrLogWriter::Private::FailForGood(const QString& reason)
{
    failed = true;
    return Fail(reason);
}

/// True when items may be written; otherwise the reason is in `error`, that of a failure which lasts
/// unchanged.
bool ZrLogWriter::Private::IsReady()
{
    if (failed)
        return false;
    return file || Fail(QCoreApplication::translate("ZrLogWriter", "No log is open for writing."));
}

bool ZrLogWriter::Private::WriteOut(zr::span<u8> data)
{
    // A disk that fills up takes part of a block without saying why; the reason comes with the next attempt.
    std::size_t written = 0;
    while (written < data.size()) {
        const qint64 count = file->write(
            reinterpret_cast<const char*>(data.data() + written), static_cast<qint64>(data.size() - written));
        if (count <= 0)
            return FailForGood(QCoreApplication::translate("ZrLogWriter", "Cannot write %1: %2.")
                                   .arg(path, file->errorString()));
        written += static_cast<std::size_t>(count);
    }
    return true;
}

bool ZrLogWriter::Private::Flush()
{
    const bool ok = block.empty() || WriteOut(block);
    block.clear();
    return ok;
}

/// Adds bytes to the block, or gives them straight to the file when they fill one by themselves.
bool ZrLogWriter::Private::Put(zr::span<u8> data)
{
    if (data.size() > blockSize - block.size() && !Flush())
        return false;
    if (data.size() >= blockSize)
        return WriteOut(data);
    block.insert(block.end(), data.begin(), data.end());
    return true;
}

bool ZrLogWriter::Private::PutItem(zr::span<u8> header, zr::span<u8> payload)
{
    if (!Put(header) || !Put(payload))
        return false;
    ++items;
    bytes += header.size() + payload.size();
    return true;
}

ZrLogWriter::ZrLogWriter()
    : d(std::make_unique<Private>())
{
}

ZrLogWriter::~ZrLogWriter() = default;

bool ZrLogWriter::Open(const QString& path, double created)
{
    d = std::make_unique<Private>();
    d->path = path;
    // Replacing what a link points to, or the link, would both surprise somebody.
    if (QFileInfo(path).isSymLink())
        return d->FailForGood(
            QCoreApplication::translate("ZrLogWriter", "Cannot create %1: it is a symbolic link.").arg(path));
    auto file = std::make_unique<QSaveFile>(path);
    // Blocks are gathered here; a second buffer would only copy them once more.
    if (!file->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return d->FailForGood(QCoreApplication::translate("ZrLogWriter", "Cannot create %1: %2.")
                                  .arg(path, file->errorString()));
    d->file = std::move(file);
    d->block.reserve(blockSize);

    ZrLogHeader header;
    header.created = created;
    auto bytes = header.Encode();
    d->bytes = bytes.size();
    return d->Put(bytes);
}

bool ZrLogWriter::Write(
    CRecType type, u16 source, u16 format, double time, bool compress, zr::span<u8> payload)
{
    if (!d->IsReady())
        return false;
    if (payload.size() > (compress ? MaxCompressed : MaxPayload)) {
        return d->Fail(QCoreApplication::translate(
            "ZrLogWriter", "A payload of %1 bytes is too large for an item of %2.")
                           .arg(payload.size())
                           .arg(d->path));
    }
    ZrLogItem item;
    item.type = type.type;
    item.format = format;
    item.sub = type.sub;
    item.time = time;
    item.compressed = compress ? 1 : 0;
    item.source = source;
    item.dataSize = static_cast<u32>(payload.size());

    QByteArray packed;
    if (compress) {
        packed = qCompress(payload.data(), static_cast<int>(payload.size()), 1);
        if (packed.isEmpty())
            return d->Fail(
                QCoreApplication::translate("ZrLogWriter", "A payload for %1 cannot be compressed.")
                    .arg(d->path));
        payload = zr::bytes_of(packed);
    }
    item.storedSize = static_cast<u32>(payload.size());
    auto header = item.Encode();
    return d->PutItem(header, payload);
}

bool ZrLogWriter::WriteRaw(zr::span<u8> headerAndPayload)
{
    if (!d->IsReady())
        return false;
    if (headerAndPayload.size() < ZrLogItem::Size)
        return d->Fail(
            QCoreApplication::translate("ZrLogWriter", "The item for %1 is shorter than its header.")
                .arg(d->path));
    const ZrLogItem item = ZrLogItem::Decode(headerAndPayload.data());
    if (item.magic != ZrLogItem::Magic || item.headerSize != ZrLogItem::Size)
        return d->Fail(
            QCoreApplication::translate("ZrLogWriter", "The item for %1 does not begin with a header.")
                .arg(d->path));
    if (item.storedSize != headerAndPayload.size() - ZrLogItem::Size)
        return d->Fail(
            QCoreApplication::translate("ZrLogWriter", "The item for %1 is not as long as its header says.")
                .arg(d->path));
    return d->PutItem(headerAndPayload, zr::span<u8>());
}

bool ZrLogWriter::Commit()
{
    if (!d->IsReady() || !d->Flush())
        return false;
    if (!d->file->commit())
        return d->FailForGood(QCoreApplication::translate("ZrLogWriter", "Cannot replace %1: %2.")
                                  .arg(d->path, d->file->errorString()));
    d->file.reset();
    return true;
}

u64 ZrLogWriter::Items() const
{
    return d->items;
}

u64 ZrLogWriter::Bytes() const
{
    return d->bytes;
}

QString ZrLogWriter::Error() const
{
    return d->error;
}
