#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <limits>

/// Inner state of a vehicle, as a glider reports it. Payload, little-endian; a value that is not known is
/// NaN.
///
/// | Offset | Width | Field | Meaning |
/// |---|---|---|---|
/// | 0 | u32 | `navState` | state of the navigation program, the vehicle's own number |
/// | 4 | u32 | `securityLevel` | alarm bits, the vehicle's own |
/// | 8 | f32 | `temperature` | degrees Celsius inside the hull |
/// | 12 | f32 | `pressure` | pascal inside the hull |
/// | 16 | f32 | `voltage` | volt of the battery |
/// | 20 | f32 | `declination` | degrees of magnetic declination used by the vehicle, east positive |
/// | 24 | f32 | `desiredHeading` | degrees the vehicle steers for |
/// | 28 | f32 | `ballastCommand` | millilitres |
/// | 32 | f32 | `ballastPosition` | millilitres |
/// | 36 | f32 | `linearCommand` | millimetres of the pitch mass |
/// | 40 | f32 | `linearPosition` | millimetres |
/// | 44 | f32 | `angularCommand` | degrees of the roll mass |
/// | 48 | f32 | `angularPosition` | degrees |
struct ZR_KIT_EXPORT ZrVehicleRecord
{
    static constexpr eKitRecType RecType = krtVehicle;
    static constexpr u16 Format = 1; ///< the item's `format`; tells the layout of the payload
    static constexpr int Size = 52; ///< bytes of the encoded payload

    u32 navState = 0; ///< state of the navigation program, the vehicle's own number
    u32 securityLevel = 0; ///< alarm bits, the vehicle's own
    float temperature = std::numeric_limits<float>::quiet_NaN(); ///< degrees Celsius inside the hull
    float pressure = std::numeric_limits<float>::quiet_NaN(); ///< pascal inside the hull
    float voltage = std::numeric_limits<float>::quiet_NaN(); ///< volt of the battery
    /// Degrees of magnetic declination used by the vehicle, east positive.
    float declination = std::numeric_limits<float>::quiet_NaN();
    float desiredHeading = std::numeric_limits<float>::quiet_NaN(); ///< degrees the vehicle steers for
    float ballastCommand = std::numeric_limits<float>::quiet_NaN(); ///< millilitres
    float ballastPosition = std::numeric_limits<float>::quiet_NaN(); ///< millilitres
    float linearCommand = std::numeric_limits<float>::quiet_NaN(); ///< millimetres of the pitch mass
    float linearPosition = std::numeric_limits<float>::quiet_NaN(); ///< millimetres
    float angularCommand = std::numeric_limits<float>::quiet_NaN(); ///< degrees of the roll mass
    float angularPosition = std::numeric_limits<float>::quiet_NaN(); ///< degrees

    QByteArray Encode() const;

    /// Fills \p out from \p payload. False, and \p out untouched, when the payload is shorter than `Size`.
    /// Bytes beyond the known layout are ignored, so that a later version may append fields.
    static bool Decode(zr::span<u8> payload, ZrVehicleRecord& out);
};
