#include "ZrKit/records/ZrVehicleRecord.h"

#include "ZrUtil/ZrEndian.h"

#include <array>

namespace {

constexpr int atNavState = 0;
constexpr int atSecurityLevel = atNavState + 4;
constexpr int atTemperature = atSecurityLevel + 4;
constexpr int atPressure = atTemperature + 4;
constexpr int atVoltage = atPressure + 4;
constexpr int atDeclination = atVoltage + 4;
constexpr int atDesiredHeading = atDeclination + 4;
constexpr int atBallastCommand = atDesiredHeading + 4;
constexpr int atBallastPosition = atBallastCommand + 4;
constexpr int atLinearCommand = atBallastPosition + 4;
constexpr int atLinearPosition = atLinearCommand + 4;
constexpr int atAngularCommand = atLinearPosition + 4;
constexpr int atAngularPosition = atAngularCommand + 4;
static_assert(atAngularPosition + 4 == ZrVehicleRecord::Size);

} // namespace

QByteArray ZrVehicleRecord::Encode() const
{
    std::array<u8, Size> out{};
    zr::store_le(&out[atNavState], navState);
    zr::store_le(&out[atSecurityLevel], securityLevel);
    zr::store_le(&out[atTemperature], temperature);
    zr::store_le(&out[atPressure], pressure);
    zr::store_le(&out[atVoltage], voltage);
    zr::store_le(&out[atDeclination], declination);
    zr::store_le(&out[atDesiredHeading], desiredHeading);
    zr::store_le(&out[atBallastCommand], ballastCommand);
    zr::store_le(&out[atBallastPosition], ballastPosition);
    zr::store_le(&out[atLinearCommand], linearCommand);
    zr::store_le(&out[atLinearPosition], linearPosition);
    zr::store_le(&out[atAngularCommand], angularCommand);
    zr::store_le(&out[atAngularPosition], angularPosition);
    return zr::to_byte_array(out);
}

bool ZrVehicleRecord::Decode(zr::span<u8> payload, ZrVehicleRecord& out)
{
    if (payload.size() < Size)
        return false;
    const u8* in = payload.data();
    out.navState = zr::load_le<u32>(in + atNavState);
    out.securityLevel = zr::load_le<u32>(in + atSecurityLevel);
    out.temperature = zr::load_le<float>(in + atTemperature);
    out.pressure = zr::load_le<float>(in + atPressure);
    out.voltage = zr::load_le<float>(in + atVoltage);
    out.declination = zr::load_le<float>(in + atDeclination);
    out.desiredHeading = zr::load_le<float>(in + atDesiredHeading);
    out.ballastCommand = zr::load_le<float>(in + atBallastCommand);
    out.ballastPosition = zr::load_le<float>(in + atBallastPosition);
    out.linearCommand = zr::load_le<float>(in + atLinearCommand);
    out.linearPosition = zr::load_le<float>(in + atLinearPosition);
    out.angularCommand = zr::load_le<float>(in + atAngularCommand);
    out.angularPosition = zr::load_le<float>(in + atAngularPosition);
    return true;
}
