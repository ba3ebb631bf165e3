#include "ZrUtil/ZrLogHeader.h"

#include "ZrUtil/ZrEndian.h"

#include <algorithm>

namespace {

constexpr std::size_t atMagic = 0;
constexpr std::size_t atHeaderSize = atMagic + 4;
constexpr std::size_t atTag = atHeaderSize + 4;
constexpr std::size_t atVersion = atTag + 16;
constexpr std::size_t atReserved = atVersion + 4 + 4; // the gap aligns the next 8-byte field
constexpr std::size_t atCreated = atReserved + 8;
static_assert(atCreated + 8 == ZrLogHeader::Size);

} // namespace

std::array<u8, ZrLogHeader::Size> ZrLogHeader::Encode() const
{
    std::array<u8, Size> out{};
    zr::store_le(&out[atMagic], magic);
    zr::store_le(&out[atHeaderSize], headerSize);
    std::copy(tag.begin(), tag.end(), &out[atTag]);
    zr::store_le(&out[atVersion], version);
    zr::store_le(&out[atReserved], reserved);
    zr::store_le(&out[atCreated], created);
    return out;
}

ZrLogHeader ZrLogHeader::Decode(const u8* bytes)
{
    ZrLogHeader header;
    header.magic = zr::load_le<u32>(bytes + atMagic);
    header.headerSize = zr::load_le<u32>(bytes + atHeaderSize);
    std::copy(bytes + atTag, bytes + atTag + header.tag.size(), header.tag.begin());
    header.version = zr::load_le<u32>(bytes + atVersion);
    header.reserved = zr::load_le<u64>(bytes + atReserved);
    header.created = zr::load_le<double>(bytes + atCreated);
    return header;
}
