#include "ZrKit/review/ZrIndexFile.h"

#include "ZrUtil/ZrDataset.h"
#include "ZrUtil/ZrEndian.h"

#include <QTemporaryFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>

namespace {

constexpr u32 mostRecords = std::numeric_limits<i32>::max();

qint64 PlaceOf(std::size_t record)
{
    return static_cast<qint64>(ZrIndexHeader::Size + record * sizeof(ZrLogRec));
}

/// Bytes of the fields of a record, in their order.
constexpr std::array<u8, 25> widths{
    8, 8, 8, 8, 8, 4, 4, 8, 4, 4, 4, 4, 4, 4, 4, 8, 8, 8, 8, 8, 8, 8, 8, 8, 4};

constexpr std::size_t Sum()
{
    std::size_t sum = 0;
    for (const u8 width : widths)
        sum += width;
    return sum;
}

static_assert(Sum() == sizeof(ZrLogRec));

/// Turns the fields of records from the order of the file into that of the host, or back. Nothing on
/// little-endian hosts, where the image in memory is that of the file.
void Convert(std::vector<ZrLogRec>& records)
{
    if constexpr (!zr::detail::hostIsLittleEndian) {
        u8* field = reinterpret_cast<u8*>(records.data());
        for (std::size_t i = 0; i < records.size(); ++i)
            for (const u8 width : widths) {
                std::reverse(field, field + width);
                field += width;
            }
    } else {
        static_cast<void>(records);
    }
}

/// A temporary file that tells at once what the disk does not take, and keeps nothing of it.
class UnbufferedFile final : public QTemporaryFile
{
public:
    using QTemporaryFile::QTemporaryFile;

    bool Open() { return open(QIODevice::ReadWrite | QIODevice::Unbuffered); }
};

} // namespace

ZrIndexFile::ZrIndexFile() = default;
ZrIndexFile::~ZrIndexFile() = default;

bool ZrIndexFile::Fail(const QString& reason)
{
    m_error = reason;
    return false;
}

bool ZrIndexFile::Open(const QString& path, const ZrDataset& types)
{
    m_error.clear();
    m_header = ZrIndexHeader();
    m_file = std::make_unique<QFile>(path);
    if (!m_file->open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Fail(m_file->errorString());
    const QByteArray bytes = m_file->read(static_cast<qint64>(ZrIndexHeader::Size));
    ZrIndexHeader header;
    if (!header.Decode(zr::bytes_of(bytes)))
        return Fail(tr("This is no index"));
    if (header.idxType != types.idxType || header.crdTypes != types.crdTypes)
        return Fail(tr("The index is of other record types"));
    if (m_file->size() != PlaceOf(header.count) || header.count > mostRecords)
        return Fail(tr("The index is damaged"));
    m_header = header;
    return true;
}

bool ZrIndexFile::Create(const QString& folder, const ZrDataset& types)
{
    m_error.clear();
    m_header = ZrIndexHeader();
    m_header.idxType = types.idxType;
    m_header.crdTypes = types.crdTypes;
    auto file = std::make_unique<UnbufferedFile>(folder + QLatin1String("/.zri-XXXXXX"));
    const bool isOpen = file->Open();
    m_file = std::move(file);
    return isOpen ? WriteHeader() : Fail(m_file->errorString());
}

bool ZrIndexFile::WriteHeader()
{
    const auto bytes = m_header.Encode();
    const auto size = static_cast<qint64>(bytes.size());
    return (m_file->seek(0) && m_file->write(reinterpret_cast<const char*>(bytes.data()), size) == size)
        || Fail(tr("The index could not be written"));
}

bool ZrIndexFile::Append(zr::span<const ZrLogRec> records)
{
    for (std::size_t i = 0; i < records.size(); i += AtOnce) {
        const ZrLogRec* const begin = records.data() + i;
        m_piece.assign(begin, begin + std::min<std::size_t>(AtOnce, records.size() - i));
        Convert(m_piece);
        const auto size = static_cast<qint64>(m_piece.size() * sizeof(ZrLogRec));
        if (m_header.count > mostRecords - m_piece.size() || !m_file->seek(PlaceOf(m_header.count))
            || m_file->write(reinterpret_cast<const char*>(m_piece.data()), size) != size)
            return Fail(tr("The index could not be written"));
        m_header.count += static_cast<u32>(m_piece.size());
    }
    return true;
}

bool ZrIndexFile::MoveTo(const QString& path, const QString& log)
{
    auto* const file = qobject_cast<QTemporaryFile*>(m_file.get());
    if (!file)
        return Fail(tr("No index is being written"));
    if (!WriteHeader())
        return false;
    constexpr auto usual = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::WriteGroup
        | QFile::ReadOther | QFile::WriteOther;
    file->setPermissions((QFile::permissions(log) & usual) | QFile::WriteOwner);
    const QString name = file->fileName(); // from here on it has one
    if (name.isEmpty())
        return Fail(tr("The index could not be written"));
    if (std::rename(QFile::encodeName(name).constData(), QFile::encodeName(path).constData()) != 0)
        return Fail(QString::fromLocal8Bit(std::strerror(errno)));
    file->setAutoRemove(false);
    return true;
}

bool ZrIndexFile::Read(std::size_t first, std::size_t end, std::vector<ZrLogRec>& records)
{
    const std::size_t last = std::min(end, Count());
    records.clear();
    if (first >= last)
        return true;
    records.resize(last - first);
    const auto size = static_cast<qint64>(records.size() * sizeof(ZrLogRec));
    if (!m_file->seek(PlaceOf(first))
        || m_file->read(reinterpret_cast<char*>(records.data()), size) != size) {
        records.clear();
        return Fail(tr("The index is cut off, or cannot be read"));
    }
    Convert(records);
    return true;
}
