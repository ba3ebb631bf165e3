#include "ZrKit/review/ZrSurveyDataset.h"

#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrNavRecord.h"

#include <QByteArray>

#include <cmath>
#include <limits>

namespace {

constexpr u32 navPositionRepeated = 1; ///< bit of `ZrNavRecord::flags`

float FiniteOrUnknown(float value)
{
    return std::isfinite(value) ? value : std::numeric_limits<float>::quiet_NaN();
}

bool IsPosition(double latitude, double longitude)
{
    return std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 180.0;
}

/// The record of a fix as navigation; everything but the position is unknown.
ZrNavRecord FromFix(const ZrFixRecord& fix)
{
    ZrNavRecord nav;
    if (fix.quality != 0) {
        nav.latitude = fix.latitude;
        nav.longitude = fix.longitude;
    }
    return nav;
}

/// Whether \p payload is the output of `qCompress` for a record of \p size bytes: the size comes first,
/// big-endian, then a zlib stream with its two bytes of header. The latitude of a plain record does not begin
/// with these six bytes but by an unheard-of chance.
bool IsPacked(zr::span<u8> payload, int size)
{
    constexpr std::size_t headerSize = 6;
    constexpr int zlibMark = 0x78;
    constexpr int zlibCheck = 31; ///< divides both bytes taken as one number
    return payload.size() >= headerSize && payload[0] == 0 && payload[1] == 0 && payload[2] == 0
        && payload[3] == size && payload[4] == zlibMark && (zlibMark * 256 + payload[5]) % zlibCheck == 0;
}

template <class Record> bool Decode(const ZrLogItemInf& inf, zr::span<u8> payload, Record& out)
{
    constexpr std::size_t largestPacked = 1024; ///< far more than tens of bytes are packed into
    if (inf != zr::rec_type(Record::RecType) || inf.format != Record::Format)
        return false;
    if (!IsPacked(payload, Record::Size) || payload.size() > largestPacked)
        return Record::Decode(payload, out);
    const QByteArray unpacked = qUncompress(payload.data(), static_cast<int>(payload.size()));
    return Record::Decode(zr::bytes_of(unpacked), out);
}

} // namespace

std::array<CRecType, 8> ZrSurveyDataset::DefaultCrdTypes()
{
    return {zr::rec_type(krtFix), zr::rec_type(krtDepth), zr::rec_type(krtMotion),
        zr::rec_type(krtEnvironment), zr::rec_type(krtVehicle), zr::rec_type(krtPing, 0),
        zr::rec_type(krtPing, 1), CRecType(rtSerialText)};
}

ZrSurveyDataset::ZrSurveyDataset()
    : ZrSurveyDataset(DefaultIdxType(), DefaultCrdTypes())
{
}

ZrSurveyDataset::ZrSurveyDataset(CRecType indexType, std::array<CRecType, 8> coordinateTypes)
    : ZrDataset(indexType, coordinateTypes)
{
}

void ZrSurveyDataset::FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8> payload)
{
    ZrDataset::FillRec(rec, inf, payload);
    ZrNavRecord nav; // everything unknown
    ZrFixRecord fix;
    if (Decode(inf, payload, fix))
        nav = FromFix(fix);
    else
        Decode(inf, payload, nav);

    rec.altitude = FiniteOrUnknown(nav.altitude);
    rec.depth = FiniteOrUnknown(nav.depth);
    rec.heading = FiniteOrUnknown(nav.heading);
    rec.pitch = FiniteOrUnknown(nav.pitch);
    rec.roll = FiniteOrUnknown(nav.roll);
    if (IsPosition(nav.latitude, nav.longitude)) {
        rec.latitude = nav.latitude;
        rec.longitude = nav.longitude;
        rec.spare40 = rfPositionKnown | ((nav.flags & navPositionRepeated) ? rfPositionHeld : 0u);
    } else if (!recs.empty() && (recs.back().spare40 & rfPositionKnown)) {
        rec.latitude = recs.back().latitude;
        rec.longitude = recs.back().longitude;
        rec.spare40 = rfPositionKnown | rfPositionHeld;
    } else {
        rec.latitude = rec.longitude = std::numeric_limits<double>::quiet_NaN();
        rec.spare40 = 0;
    }
}
