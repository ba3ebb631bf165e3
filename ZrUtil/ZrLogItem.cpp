#include "ZrUtil/ZrLogItem.h"

#include "ZrUtil/ZrEndian.h"

bool ZrLogItem::IsPlaceholder(const u8* bytes)
{
    return zr::load_le<u32>(bytes + offsetof(ZrLogItem, storedSize)) == 0;
}

std::array<u8, ZrLogItem::Size> ZrLogItem::Encode() const
{
    std::array<u8, Size> out{};
    zr::store_le(&out[offsetof(ZrLogItem, magic)], magic);
    zr::store_le(&out[offsetof(ZrLogItem, headerSize)], headerSize);
    zr::store_le(&out[offsetof(ZrLogItem, type)], type);
    zr::store_le(&out[offsetof(ZrLogItem, format)], format);
    zr::store_le(&out[offsetof(ZrLogItem, sub)], sub);
    zr::store_le(&out[offsetof(ZrLogItem, reserved0)], reserved0);
    zr::store_le(&out[offsetof(ZrLogItem, time)], time);
    zr::store_le(&out[offsetof(ZrLogItem, compressed)], compressed);
    zr::store_le(&out[offsetof(ZrLogItem, source)], source);
    zr::store_le(&out[offsetof(ZrLogItem, dataSize)], dataSize);
    zr::store_le(&out[offsetof(ZrLogItem, storedSize)], storedSize);
    zr::store_le(&out[offsetof(ZrLogItem, reserved1)], reserved1);
    return out;
}

ZrLogItem ZrLogItem::Decode(const u8* bytes)
{
    ZrLogItem item;
    item.magic = zr::load_le<u32>(bytes + offsetof(ZrLogItem, magic));
    item.headerSize = zr::load_le<u32>(bytes + offsetof(ZrLogItem, headerSize));
    item.type = zr::load_le<u16>(bytes + offsetof(ZrLogItem, type));
    item.format = zr::load_le<u16>(bytes + offsetof(ZrLogItem, format));
    item.sub = zr::load_le<u16>(bytes + offsetof(ZrLogItem, sub));
    item.reserved0 = zr::load_le<u16>(bytes + offsetof(ZrLogItem, reserved0));
    item.time = zr::load_le<double>(bytes + offsetof(ZrLogItem, time));
    item.compressed = zr::load_le<u16>(bytes + offsetof(ZrLogItem, compressed));
    item.source = zr::load_le<u16>(bytes + offsetof(ZrLogItem, source));
    item.dataSize = zr::load_le<u32>(bytes + offsetof(ZrLogItem, dataSize));
    item.storedSize = zr::load_le<u32>(bytes + offsetof(ZrLogItem, storedSize));
    item.reserved1 = zr::load_le<u32>(bytes + offsetof(ZrLogItem, reserved1));
    return item;
}
