#include "ZrKit/records/ZrMotionRecord.h"

#include "ZrUtil/ZrEndian.h"

#include <array>

namespace {

constexpr int atHeadingTrue = 0;
constexpr int atHeadingMagnetic = atHeadingTrue + 4;
constexpr int atCourseTrue = atHeadingMagnetic + 4;
constexpr int atSpeedGround = atCourseTrue + 4;
constexpr int atSpeedWater = atSpeedGround + 4;
static_assert(atSpeedWater + 4 + 4 == ZrMotionRecord::Size, "4 reserved bytes end the payload");

} // namespace

QByteArray ZrMotionRecord::Encode() const
{
    std::array<u8, Size> out{};
    zr::store_le(&out[atHeadingTrue], headingTrue);
    zr::store_le(&out[atHeadingMagnetic], headingMagnetic);
    zr::store_le(&out[atCourseTrue], courseTrue);
    zr::store_le(&out[atSpeedGround], speedGround);
    zr::store_le(&out[atSpeedWater], speedWater);
    return zr::to_byte_array(out);
}

bool ZrMotionRecord::Decode(zr::span<u8> payload, ZrMotionRecord& out)
{
    if (payload.size() < Size)
        return false;
    const u8* in = payload.data();
    out.headingTrue = zr::load_le<float>(in + atHeadingTrue);
    out.headingMagnetic = zr::load_le<float>(in + atHeadingMagnetic);
    out.courseTrue = zr::load_le<float>(in + atCourseTrue);
    out.speedGround = zr::load_le<float>(in + atSpeedGround);
    out.speedWater = zr::load_le<float>(in + atSpeedWater);
    return true;
}
