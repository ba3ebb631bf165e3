#include "ZrUtil/ZrLogger.h"

#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrSameFile.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QLocale>
#include <QStandardPaths>
#include <QStorageInfo>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

/// The size fields of an item have 32 bits, and readers count in int.
constexpr u64 maxPayload = 0x7FFFFFFF;

/// What may be compressed: qCompress reckons in int with an output of 101 % and 17 bytes, to which the
/// array's own header comes. Beyond that it would write past its buffer.
constexpr u64 maxCompressible = (maxPayload - 64) / 101 * 100;

double SecondsNow()
{
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

/// Bytes of all parts together; saturates, so that no lengths can wrap round to a small sum.
u64 TotalSize(const std::initializer_list<zr::span<u8>>& parts)
{
    u64 total = 0;
    for (const zr::span<u8>& part : parts)
        total += std::min<u64>(part.size(), std::numeric_limits<u64>::max() - total);
    return total;
}

/// Creates \p dir with all folders above it. Qt complains aloud about an impossible path, which must not
/// happen while the lock is held.
void MakePath(const QString& dir)
{
    if (zr::is_possible_path(dir))
        QDir().mkpath(dir);
}

/// \p time by \p format in the digits 0 to 9, whatever digits the user's language has.
QString Stamp(const QDateTime& time, const QString& format)
{
    return QLocale::c().toString(time, format);
}

} // namespace

ZrLogger::ZrLogger(QObject* parent)
    : QObject(parent)
    , logDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
    , ext(QStringLiteral(".log"))
{
}

ZrLogger::~ZrLogger()
{
    file.close();
}

void ZrLogger::OpenLog()
{
    QString path;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const QDateTime now = QDateTime::currentDateTime();
        MakePath(logDir);
        const QString name = prefix.isEmpty() ? Stamp(now, QStringLiteral("yyyyMMdd_hhmmss"))
                                              : prefix + Stamp(now, QStringLiteral("_yyyyMMdd_hhmmss"));
        path = logDir + QDir::separator() + name + ext;
    }
    OpenFile(path);
}

void ZrLogger::OpenFile(QString path)
{
    bool opened = false;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ZrLogHeader header;
        header.created = SecondsNow();
        state = lsOpening;
        file.close();
        curFile = path;
        itemCount = 0;
        bytesWritten = 0;
        m_writeErrors = 0;
        file.setFileName(path);
        // Unbuffered: every write below reaches the operating system before its call returns. Qt complains
        // aloud about an impossible name, which must not happen while the lock is held.
        opened = zr::is_possible_path(path) && file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        if (opened) {
            m_seekable = !file.isSequential();
            const auto bytes = header.Encode();
            if (!WriteBytes(bytes.data(), bytes.size()))
                ++m_writeErrors;
            bytesWritten += ZrLogHeader::Size;
        }
        state = opened ? lsLogging : lsClosed;
    }
    // Printed without the lock: a message handler may itself log to this log.
    if (opened)
        qDebug() << "Opened: " << path;
    else
        qDebug() << "Cannot open file: " << path;
}

void ZrLogger::CloseLog()
{
    bool closed = false;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (state == lsLogging) {
            state = lsClosing;
            file.close();
            closed = true;
        }
        state = lsClosed;
    }
    if (closed)
        qDebug() << "Closed Log File";
}

void ZrLogger::ToggleLogging()
{
    if (state == lsLogging)
        CloseLog();
    else
        OpenLog();
}

bool ZrLogger::WriteBytes(const void* data, u64 size)
{
    return file.write(static_cast<const char*>(data), static_cast<qint64>(size)) == static_cast<qint64>(size);
}

/// False, without the complaint that Qt would print under the lock, for what cannot seek: pipes and devices.
bool ZrLogger::Seek(qint64 position)
{
    return m_seekable && file.seek(position);
}

/// \p parts one after the other, compressed; empty when the memory does not suffice.
QByteArray ZrLogger::Pack(std::initializer_list<zr::span<u8>> parts)
{
    scratch.clear();
    for (const zr::span<u8>& part : parts)
        scratch.insert(scratch.end(), part.begin(), part.end());
    return qCompress(scratch.data(), static_cast<int>(scratch.size()), 1);
}

/// Writes the payload and fills the sizes of \p item; counters advance by what was asked for.
bool ZrLogger::WritePayload(ZrLogItem& item, std::initializer_list<zr::span<u8>> parts)
{
    bool ok = true;
    for (const zr::span<u8>& part : parts) {
        if (part.empty())
            continue;
        ok = WriteBytes(part.data(), part.size()) && ok;
        item.dataSize += static_cast<u32>(part.size());
        bytesWritten += part.size();
    }
    item.storedSize = item.dataSize;
    return ok;
}

/// The same with the output of `Pack`, made of the bytes in `scratch`.
bool ZrLogger::WritePacked(ZrLogItem& item, const QByteArray& packed)
{
    item.dataSize = static_cast<u32>(scratch.size());
    item.storedSize = static_cast<u32>(packed.size());
    bytesWritten += item.storedSize;
    return WriteBytes(packed.constData(), item.storedSize);
}

/// Writes one item at the end of the file: header, payload, and the header again with its sizes.
void ZrLogger::WriteItem(ZrLogItem& item, std::initializer_list<zr::span<u8>> parts)
{
    // Whatever may want of memory comes first: an item is begun only when it can be completed.
    QByteArray packed;
    if (item.compressed != 0) {
        packed = Pack(parts);
        if (packed.isEmpty()) {
            ++m_writeErrors;
            return;
        }
    }
    // The header goes out with both sizes 0 first and is rewritten behind the payload: a reader that meets
    // sizes of 0 followed by something that is no header knows that the writer was interrupted right here.
    const qint64 itemStart = file.pos();
    const auto placeholder = item.Encode();
    bool ok = WriteBytes(placeholder.data(), placeholder.size());
    bytesWritten += ZrLogItem::Size;
    ok = (item.compressed != 0 ? WritePacked(item, packed) : WritePayload(item, parts)) && ok;
    // Reckoned, not asked: after a write that the disk did not take whole the next item still starts where
    // this header says that its payload ends.
    const qint64 itemEnd = itemStart + ZrLogItem::Size + item.storedSize;
    const auto header = item.Encode();
    ok = Seek(itemStart) && WriteBytes(header.data(), header.size()) && ok;
    ok = Seek(itemEnd) && ok;
    ++itemCount;
    if (!ok)
        ++m_writeErrors;
}

void ZrLogger::LogData(
    CRecType type, u16 source, u16 format, bool compress, std::initializer_list<zr::span<u8>> parts)
{
    const u64 total = TotalSize(parts);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (state != lsLogging || !file.isOpen())
            return;
        if (total <= (compress ? maxCompressible : maxPayload)) {
            ZrLogItem item;
            item.type = type.type;
            item.sub = type.sub;
            item.format = format;
            item.source = source;
            item.compressed = compress ? 1 : 0;
            item.time = SecondsNow();
            WriteItem(item, parts);
            return;
        }
    }
    qDebug() << "Payload too large to be logged, bytes:" << total;
}

void ZrLogger::LogData(eRecordType type, u16 format, std::initializer_list<zr::span<u8>> parts)
{
    LogData(CRecType(type), 0, format, false, parts);
}

void ZrLogger::LogData(eRecordType type, u16 format, bool compress, std::initializer_list<zr::span<u8>> parts)
{
    LogData(CRecType(type), 0, format, compress, parts);
}

void ZrLogger::LogData(eRecordType type, u16 format, bool compress, zr::span<u8> part)
{
    LogData(CRecType(type), 0, format, compress, {part});
}

void ZrLogger::LogSerStr(const QString& text)
{
    const QByteArray latin1 = text.toLatin1();
    // A QByteArray always ends with a zero byte behind its size.
    const zr::span<u8> withZero
        = zr::bytes_of(latin1.constData(), static_cast<std::size_t>(latin1.size()) + 1);
    LogData(CRecType(rtSerialText), 0, 0, false, {withZero});
}

void ZrLogger::RawWrite(char* data, unsigned size)
{
    if (file.isOpen() && !WriteBytes(data, size))
        ++m_writeErrors;
}

void ZrLogger::Decorate(QString newPrefix, QString newExt)
{
    prefix = std::move(newPrefix);
    ext = std::move(newExt);
}

void ZrLogger::SetLogDirectory(QString dir)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        logDir = dir;
        MakePath(dir);
    }
    qDebug() << "The log directory is set to:" << dir;
}

QString ZrLogger::LogDir() const
{
    return logDir;
}

QString ZrLogger::CurFile() const
{
    return curFile;
}

elogState ZrLogger::LogState() const
{
    return state;
}

bool ZrLogger::IsActive() const
{
    return state == lsLogging;
}

qint64 ZrLogger::DiskSpace()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return QStorageInfo(logDir).bytesAvailable();
}

QString ZrLogger::SpaceStr(u64 bytes)
{
    // Each bound belongs to the lower unit: 1024 is "1024b", 1 MiB is "1024.0Kb".
    if (bytes == 0)
        return tr("Empty");
    if (bytes <= 0x400)
        return QString::number(bytes) + tr("b");
    const auto inUnits
        = [bytes](double unit) { return QString::number(static_cast<double>(bytes) / unit, 'f', 1); };
    if (bytes <= 0x100000)
        return inUnits(0x400) + tr("Kb");
    if (bytes <= 0x40000000)
        return inUnits(0x100000) + tr("Mb");
    return inUnits(0x40000000) + tr("Gb");
}

u64 ZrLogger::WriteErrors() const
{
    return m_writeErrors;
}

void ZrLogger::SetupEncryption(u16 id, u64 key)
{
    cipherId = id;
    cipherKey = key;
}
