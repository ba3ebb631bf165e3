#include "ZrKit/records/ZrEnvRecord.h"

#include "ZrUtil/ZrEndian.h"

#include <array>

namespace {

constexpr int atWaterTemperature = 0;
constexpr int atWindSpeed = atWaterTemperature + 4;
constexpr int atWindAngle = atWindSpeed + 4;
constexpr int atWindReference = atWindAngle + 4;
static_assert(atWindReference + 1 + 3 == ZrEnvRecord::Size, "3 reserved bytes end the payload");

} // namespace

QByteArray ZrEnvRecord::Encode() const
{
    std::array<u8, Size> out{};
    zr::store_le(&out[atWaterTemperature], waterTemperature);
    zr::store_le(&out[atWindSpeed], windSpeed);
    zr::store_le(&out[atWindAngle], windAngle);
    zr::store_le(&out[atWindReference], windReference);
    return zr::to_byte_array(out);
}

bool ZrEnvRecord::Decode(zr::span<u8> payload, ZrEnvRecord& out)
{
    if (payload.size() < Size)
        return false;
    const u8* in = payload.data();
    out.waterTemperature = zr::load_le<float>(in + atWaterTemperature);
    out.windSpeed = zr::load_le<float>(in + atWindSpeed);
    out.windAngle = zr::load_le<float>(in + atWindAngle);
    out.windReference = zr::load_le<u8>(in + atWindReference);
    return true;
}
