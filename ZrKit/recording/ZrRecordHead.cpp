#include "ZrKit/recording/ZrRecordHead.h"

#include "ZrKit/records/ZrKitTypes.h"

#include <algorithm>

std::array<CRecType, 8> ZrRecordHead::DefaultTypes()
{
    return {zr::rec_type(krtFix), zr::rec_type(krtDepth), zr::rec_type(krtMotion),
        zr::rec_type(krtEnvironment), zr::rec_type(krtVehicle), zr::rec_type(krtPing, 0),
        zr::rec_type(krtPing, 1), CRecType(rtSerialText)};
}

ZrRecordHead::ZrRecordHead()
{
    const auto types = DefaultTypes();
    m_types.assign(types.begin(), types.end());
}

ZrRecordHead::ZrRecordHead(const std::vector<CRecType>& types)
    : m_types(types)
{
}

void ZrRecordHead::Keep(CRecType type, u16 format, double time, const QByteArray& payload)
{
    if (type == CRecType(rtMissionPlan)) {
        m_sourcePlan = {type, format, time, payload};
        return;
    }
    if (std::find(m_types.begin(), m_types.end(), type) == m_types.end())
        return;
    const auto found = std::find_if(
        m_records.begin(), m_records.end(), [type](const Record& record) { return record.type == type; });
    if (found == m_records.end())
        m_records.push_back({type, format, time, payload});
    else
        *found = {type, format, time, payload};
}

void ZrRecordHead::Write(double time, const std::function<void(const Record&)>& write) const
{
    const QByteArray& plan = m_plan.isEmpty() ? m_sourcePlan.payload : m_plan;
    if (!plan.isEmpty())
        write({CRecType(rtMissionPlan), m_plan.isEmpty() ? m_sourcePlan.format : u16(0), time, plan});
    std::vector<Record> inOrder = m_records;
    std::stable_sort(
        inOrder.begin(), inOrder.end(), [](const Record& a, const Record& b) { return a.time < b.time; });
    for (const Record& record : inOrder)
        write(record);
}

void ZrRecordHead::Clear()
{
    m_records.clear();
    m_sourcePlan = Record();
}
