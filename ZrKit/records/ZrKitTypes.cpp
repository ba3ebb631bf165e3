#include "ZrKit/records/ZrKitTypes.h"

namespace {

struct TypeName
{
    int type;
    u16 highestSub; ///< sub-types 0 to this one belong to the name
    const char* name;
};

constexpr TypeName typeNames[] = {
    {rtSerialText, 0, "serial text"},
    {rtEvent, 0, "event"},
    {krtNavigation, 0, "navigation"},
    {krtPing, 1, "ping"},
    {krtFix, 0, "fix"},
    {krtDepth, 0, "depth"},
    {krtMotion, 0, "motion"},
    {krtEnvironment, 0, "environment"},
    {krtVehicle, 0, "vehicle"},
    {rtMissionPlan, 0, "mission plan"},
};

} // namespace

QString zr::rec_type_name(CRecType type)
{
    for (const TypeName& entry : typeNames) {
        if (entry.type == type.type && type.sub <= entry.highestSub)
            return QString::fromLatin1(entry.name);
    }
    return QString();
}
