#include "ZrKit/records/ZrPingRecord.h"

#include "ZrUtil/ZrEndian.h"

#include <array>

namespace {

constexpr int atPingNumber = 0;
constexpr int atSide = atPingNumber + 4;
constexpr int atSampleWidth = atSide + 1;
constexpr int atSlantRange = atSampleWidth + 1 + 2; // two reserved bytes align the fields that follow
constexpr int atFrequency = atSlantRange + 4;
constexpr int atSoundSpeed = atFrequency + 4;
constexpr int atSampleCount = atSoundSpeed + 4;
static_assert(atSampleCount + 4 == ZrPingRecord::Size);

/// Payloads stay below 2 GiB, the most that an item of a log holds.
constexpr u64 maxSampleBytes = 0x7FFFFFFFu - 1024;

bool IsSampleWidth(u8 width)
{
    return width == 1 || width == 2 || width == 4;
}

} // namespace

QByteArray ZrPingRecord::Encode() const
{
    if (!IsSampleWidth(sampleWidth) || static_cast<u64>(samples.size()) > maxSampleBytes)
        return QByteArray();
    const u32 count = static_cast<u32>(samples.size()) / sampleWidth;
    const int sampleBytes = static_cast<int>(count * sampleWidth);

    std::array<u8, Size> out{};
    zr::store_le(&out[atPingNumber], pingNumber);
    zr::store_le(&out[atSide], side);
    zr::store_le(&out[atSampleWidth], sampleWidth);
    zr::store_le(&out[atSlantRange], slantRange);
    zr::store_le(&out[atFrequency], frequency);
    zr::store_le(&out[atSoundSpeed], soundSpeed);
    zr::store_le(&out[atSampleCount], count);
    return zr::to_byte_array(out) + samples.left(sampleBytes);
}

bool ZrPingRecord::DecodeFields(zr::span<u8> start, u64 payloadSize, ZrPingRecord& out)
{
    if (start.size() < Size || payloadSize < Size)
        return false;
    const u8* in = start.data();
    const u8 width = zr::load_le<u8>(in + atSampleWidth);
    const u32 count = zr::load_le<u32>(in + atSampleCount);
    // In 64 bits: 2^32 - 1 samples of 4 bytes would wrap.
    const u64 sampleBytes = static_cast<u64>(count) * width;
    if (!IsSampleWidth(width) || sampleBytes > payloadSize - Size || sampleBytes > maxSampleBytes)
        return false;

    out.pingNumber = zr::load_le<u32>(in + atPingNumber);
    out.side = zr::load_le<u8>(in + atSide);
    out.sampleWidth = width;
    out.slantRange = zr::load_le<float>(in + atSlantRange);
    out.frequency = zr::load_le<float>(in + atFrequency);
    out.soundSpeed = zr::load_le<float>(in + atSoundSpeed);
    out.sampleCount = count;
    out.samples.clear();
    return true;
}

bool ZrPingRecord::Decode(zr::span<u8> payload, ZrPingRecord& out)
{
    if (!DecodeFields(payload, payload.size(), out))
        return false;
    const std::size_t sampleBytes = std::size_t(out.sampleCount) * out.sampleWidth;
    out.samples = zr::to_byte_array(payload.subspan(Size, sampleBytes));
    return true;
}
