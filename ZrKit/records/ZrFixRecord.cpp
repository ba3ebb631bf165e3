#include "ZrKit/records/ZrFixRecord.h"

#include "ZrUtil/ZrEndian.h"

#include <array>

namespace {

constexpr int atLatitude = 0;
constexpr int atLongitude = atLatitude + 8;
constexpr int atHeight = atLongitude + 8;
constexpr int atHdop = atHeight + 4;
constexpr int atQuality = atHdop + 4;
constexpr int atSatellites = atQuality + 1;
static_assert(atSatellites + 1 + 2 == ZrFixRecord::Size, "2 reserved bytes end the payload");

} // namespace

QByteArray ZrFixRecord::Encode() const
{
    std::array<u8, Size> out{};
    zr::store_le(&out[atLatitude], latitude);
    zr::store_le(&out[atLongitude], longitude);
    zr::store_le(&out[atHeight], height);
    zr::store_le(&out[atHdop], hdop);
    zr::store_le(&out[atQuality], quality);
    zr::store_le(&out[atSatellites], satellites);
    return zr::to_byte_array(out);
}

bool ZrFixRecord::Decode(zr::span<u8> payload, ZrFixRecord& out)
{
    if (payload.size() < Size)
        return false;
    const u8* in = payload.data();
    out.latitude = zr::load_le<double>(in + atLatitude);
    out.longitude = zr::load_le<double>(in + atLongitude);
    out.height = zr::load_le<float>(in + atHeight);
    out.hdop = zr::load_le<float>(in + atHdop);
    out.quality = zr::load_le<u8>(in + atQuality);
    out.satellites = zr::load_le<u8>(in + atSatellites);
    return true;
}
