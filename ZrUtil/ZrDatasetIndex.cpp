// The index file of a dataset: a packed header of 46 bytes, then the image of the record table.

#include "ZrUtil/ZrConsole.h"
#include "ZrUtil/ZrDataset.h"
#include "ZrUtil/ZrEndian.h"

#include <QDebug>
#include <QFile>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

static_assert(std::is_trivially_copyable_v<ZrLogRec>, "records are read and written as their bytes");

namespace {

constexpr u32 indexMagic = 0xAABBCCDD;
constexpr u16 indexVersion = 2;

// Offsets of the header's fields, which follow each other without gaps.
constexpr std::size_t versionAt = sizeof(u32);
constexpr std::size_t countAt = versionAt + sizeof(u16);
constexpr std::size_t typesAt = countAt + sizeof(u32); ///< of the index type; the coordinate types follow
constexpr std::size_t typeSize = 2 * sizeof(u16);
constexpr std::size_t headerSize = typesAt + 9 * typeSize;
static_assert(headerSize == 46);

using Header = std::array<u8, headerSize>;

void StoreType(u8* out, CRecType type)
{
    zr::store_le<u16>(out, type.sub);
    zr::store_le<u16>(out + sizeof(u16), type.type);
}

/// The header of an index of \p count records with the record types of \p dataset.
Header MakeHeader(const ZrDataset& dataset, u32 count)
{
    Header header;
    zr::store_le<u32>(header.data(), indexMagic);
    zr::store_le<u16>(header.data() + versionAt, indexVersion);
    zr::store_le<u32>(header.data() + countAt, count);
    StoreType(header.data() + typesAt, dataset.idxType);
    for (std::size_t slot = 0; slot < dataset.crdTypes.size(); ++slot)
        StoreType(header.data() + typesAt + (1 + slot) * typeSize, dataset.crdTypes[slot]);
    return header;
}

/// Turns the fields of \p count records from the order of the file into that of the host, or back. Nothing on
/// little-endian hosts, where the image in memory is that of the file.
void ConvertRecords(ZrLogRec* records, std::size_t count)
{
    if constexpr (!zr::detail::hostIsLittleEndian) {
        constexpr std::array<u8, 25> widths{
            8, 8, 8, 8, 8, 4, 4, 8, 4, 4, 4, 4, 4, 4, 4, 8, 8, 8, 8, 8, 8, 8, 8, 8, 4};
        u8* field = reinterpret_cast<u8*>(records);
        for (std::size_t i = 0; i < count; ++i)
            for (u8 width : widths) {
                std::reverse(field, field + width);
                field += width;
            }
    } else {
        static_cast<void>(records);
        static_cast<void>(count);
    }
}

/// Reads \p count records from \p file into \p recs. False when they do not arrive or find no memory.
bool ReadRecords(QFile& file, u32 count, std::vector<ZrLogRec>& recs)
{
    if (count > static_cast<u32>(std::numeric_limits<i32>::max()))
        return false;
    try {
        recs.resize(count);
    } catch (const std::bad_alloc&) {
        return false;
    }
    const qint64 bytes = static_cast<qint64>(recs.size() * sizeof(ZrLogRec));
    if (file.read(reinterpret_cast<char*>(recs.data()), bytes) != bytes)
        return false;
    ConvertRecords(recs.data(), recs.size());
    return true;
}

/// Tells why the index file \p path is not used; always false.
bool Refuse(const char* format, const QString& path)
{
    ZrConsole::Debug(0, format, path.toUtf8().constData());
    return false;
}

} // namespace

bool ZrDataset::ReadIndex(const QString& logPath)
{
    const QString path = logPath + QLatin1String(".zri");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Refuse("Cannot open index file: %s", path);

    // What a short file lacks of the header counts as zeros.
    Header header{};
    file.read(reinterpret_cast<char*>(header.data()), headerSize);
    const u32 count = zr::load_le<u32>(header.data() + countAt);
    const Header wanted = MakeHeader(*this, count);
    if (zr::load_le<u32>(header.data()) != indexMagic)
        return Refuse("Index file \"%s\" magic number corrupted", path);
    if (zr::load_le<u16>(header.data() + versionAt) != indexVersion)
        return Refuse("Index file \"%s\" is an old format", path);
    if (!std::equal(header.begin() + typesAt, header.end(), wanted.begin() + typesAt))
        return Refuse("Index file \"%s\" is out of date (changed idx/crd types)", path);
    // The count comes from the file: its product must not wrap, and nothing is allocated before it agrees.
    if (static_cast<u64>(file.size()) != headerSize + u64(count) * sizeof(ZrLogRec))
        return Refuse("Index file \"%s\" has wrong size", path);

    recs.clear();
    if (!ReadRecords(file, count, recs)) {
        recs.clear();
        return Refuse("Failed reading all indexes from \"%s\"", path);
    }
    qDebug() << "Read" << count << "from index file:" << path;
    return true;
}

void ZrDataset::WriteIndex(const QString& logPath) const
{
    if (recs.empty())
        return;
    QFile file(logPath + QLatin1String(".zri"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return;
    // A write that fails leaves a file of the wrong size, which no reader takes.
    const Header header = MakeHeader(*this, static_cast<u32>(recs.size()));
    file.write(reinterpret_cast<const char*>(header.data()), headerSize);
    const auto writeTable = [&file](const std::vector<ZrLogRec>& table) {
        file.write(reinterpret_cast<const char*>(table.data()),
            static_cast<qint64>(table.size() * sizeof(ZrLogRec)));
    };
    if constexpr (zr::detail::hostIsLittleEndian) {
        writeTable(recs);
    } else {
        std::vector<ZrLogRec> converted = recs;
        ConvertRecords(converted.data(), converted.size());
        writeTable(converted);
    }
}
