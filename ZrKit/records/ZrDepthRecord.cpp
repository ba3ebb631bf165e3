#include "ZrKit/records/ZrDepthRecord.h"

#include "ZrUtil/ZrEndian.h"

#include <array>

namespace {

constexpr int atDepth = 0;
constexpr int atOffset = atDepth + 4;
static_assert(atOffset + 4 == ZrDepthRecord::Size);

} // namespace

QByteArray ZrDepthRecord::Encode() const
{
    std::array<u8, Size> out{};
    zr::store_le(&out[atDepth], depth);
    zr::store_le(&out[atOffset], offset);
    return zr::to_byte_array(out);
}

bool ZrDepthRecord::Decode(zr::span<u8> payload, ZrDepthRecord& out)
{
    if (payload.size() < Size)
        return false;
    const u8* in = payload.data();
    out.depth = zr::load_le<float>(in + atDepth);
    out.offset = zr::load_le<float>(in + atOffset);
    return true;
}
