#include "ZrKit/review/ZrIndexHeader.h"

#include "ZrUtil/ZrEndian.h"

#include <tuple>

namespace {

// Magic, version, count, then nine record types, sub-type first.
constexpr u32 indexMagic = 0xAABBCCDD;
constexpr u16 indexVersion = 2;
constexpr std::size_t versionAt = 4;
constexpr std::size_t countAt = 6;
constexpr std::size_t typesAt = 10;
constexpr std::size_t typeSize = 4;
constexpr std::size_t typeCount = 1 + std::tuple_size_v<decltype(ZrIndexHeader::crdTypes)>;
static_assert(typesAt + typeCount * typeSize == ZrIndexHeader::Size);

} // namespace

std::array<u8, ZrIndexHeader::Size> ZrIndexHeader::Encode() const
{
    std::array<u8, Size> bytes{};
    zr::store_le<u32>(bytes.data(), indexMagic);
    zr::store_le<u16>(bytes.data() + versionAt, indexVersion);
    zr::store_le<u32>(bytes.data() + countAt, count);
    for (std::size_t i = 0; i <= crdTypes.size(); ++i) {
        const CRecType type = i == 0 ? idxType : crdTypes[i - 1];
        zr::store_le<u16>(bytes.data() + typesAt + i * typeSize, type.sub);
        zr::store_le<u16>(bytes.data() + typesAt + i * typeSize + 2, type.type);
    }
    return bytes;
}

bool ZrIndexHeader::Decode(zr::span<const u8> bytes)
{
    if (bytes.size() < Size || zr::load_le<u32>(bytes.data()) != indexMagic
        || zr::load_le<u16>(bytes.data() + versionAt) != indexVersion)
        return false;
    count = zr::load_le<u32>(bytes.data() + countAt);
    for (std::size_t i = 0; i <= crdTypes.size(); ++i) {
        const u8* const at = bytes.data() + typesAt + i * typeSize;
        (i == 0 ? idxType : crdTypes[i - 1]) = CRecType(zr::load_le<u16>(at), zr::load_le<u16>(at + 2));
    }
    return true;
}
