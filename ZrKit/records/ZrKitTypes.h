#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrRecType.h"

#include <QString>

/// Record types of the kit, beside those of `eRecordType`. Types 16 to 31 belong to the kit; the sub-type is
/// 0 unless the record's own header says otherwise. Serial text is type 2, an event type 3, a mission plan
/// type 70.
enum eKitRecType : int
{
    krtNavigation = 16, ///< `ZrNavRecord`: where the vehicle is and how it lies
    krtPing = 17, ///< `ZrPingRecord`: one line of side-scan samples; sub-type 0 port, 1 starboard
    krtFix = 18, ///< `ZrFixRecord`: one position fix of a receiver
    krtDepth = 19, ///< `ZrDepthRecord`: one depth sounding
    krtMotion = 20, ///< `ZrMotionRecord`: heading, course and speed
    krtEnvironment = 21, ///< `ZrEnvRecord`: water temperature and wind
    krtVehicle = 22 ///< `ZrVehicleRecord`: inner state of a vehicle
};

namespace zr {

/// The key {0, \p type} of a kit record.
constexpr CRecType rec_type(eKitRecType type, u16 sub = 0)
{
    return CRecType(sub, static_cast<u16>(type));
}

/// A short English name, e.g. "navigation"; empty for a type, or a sub-type, that neither library nor kit
/// knows.
ZR_KIT_EXPORT QString rec_type_name(CRecType type);

} // namespace zr
