#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <array>
#include <functional>
#include <vector>

/// Remembers what a log must begin with to be understood without the one before it: the mission plan, and the
/// latest record of each type that says where the vehicle is and how it is.
///
/// \code
/// head.Keep(type, format, time, payload); // every record
/// head.Write([&](const ZrRecordHead::Record& record) { recorder.AddRecord(record...); });
/// \endcode
///
/// One thread at a time.
class ZR_KIT_EXPORT ZrRecordHead
{
public:
    struct Record
    {
        CRecType type;
        u16 format = 0;
        double time = 0.0; ///< seconds since the epoch
        QByteArray payload; ///< not compressed
    };

    /// Fix, depth, motion, environment, vehicle, ping to port, ping to starboard, serial text: the coordinate
    /// types of a survey dataset.
    static std::array<CRecType, 8> DefaultTypes();

    ZrRecordHead();
    explicit ZrRecordHead(const std::vector<CRecType>& types);

    /// The plan that logs begin with, in the line form of a settings store; empty for that which the source
    /// tells, if it does.
    void SetPlan(const QByteArray& plan) { m_plan = plan; }

    /// Remembers the record if it is of a type that logs begin with.
    void Keep(CRecType type, u16 format, double time, const QByteArray& payload);

    /// Calls \p write with the plan, whose time is \p time, and the records in the order of their times.
    void Write(double time, const std::function<void(const Record&)>& write) const;

    void Clear(); ///< forgets the records and the plan of the source

private:
    std::vector<CRecType> m_types;
    std::vector<Record> m_records; ///< at most one of a type
    QByteArray m_plan;
    Record m_sourcePlan; ///< without payload: none
};
