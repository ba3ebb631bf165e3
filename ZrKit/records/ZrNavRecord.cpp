#include "ZrKit/records/ZrNavRecord.h"

#include "ZrUtil/ZrEndian.h"

#include <array>

namespace {

constexpr int atLatitude = 0;
constexpr int atLongitude = atLatitude + 8;
constexpr int atAltitude = atLongitude + 8;
constexpr int atDepth = atAltitude + 4;
constexpr int atHeading = atDepth + 4;
constexpr int atPitch = atHeading + 4;
constexpr int atRoll = atPitch + 4;
constexpr int atFlags = atRoll + 4;
static_assert(atFlags + 4 == ZrNavRecord::Size);

} // namespace

QByteArray ZrNavRecord::Encode() const
{
    std::array<u8, Size> out{};
    zr::store_le(&out[atLatitude], latitude);
    zr::store_le(&out[atLongitude], longitude);
    zr::store_le(&out[atAltitude], altitude);
    zr::store_le(&out[atDepth], depth);
    zr::store_le(&out[atHeading], heading);
    zr::store_le(&out[atPitch], pitch);
    zr::store_le(&out[atRoll], roll);
    zr::store_le(&out[atFlags], flags);
    return zr::to_byte_array(out);
}

bool ZrNavRecord::Decode(zr::span<u8> payload, ZrNavRecord& out)
{
    if (payload.size() < Size)
        return false;
    const u8* in = payload.data();
    out.latitude = zr::load_le<double>(in + atLatitude);
    out.longitude = zr::load_le<double>(in + atLongitude);
    out.altitude = zr::load_le<float>(in + atAltitude);
    out.depth = zr::load_le<float>(in + atDepth);
    out.heading = zr::load_le<float>(in + atHeading);
    out.pitch = zr::load_le<float>(in + atPitch);
    out.roll = zr::load_le<float>(in + atRoll);
    out.flags = zr::load_le<u32>(in + atFlags);
    return true;
}
