#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sim/ZrSimRecord.h"
#include "ZrKit/sim/ZrSimSensors.h"
#include "ZrKit/sim/ZrSimSettings.h"
#include "ZrKit/sim/ZrSimSonar.h"
#include "ZrKit/sim/ZrSimVehicle.h"

#include <QString>

#include <deque>
#include <memory>
#include <vector>

class ZrRoutePath;
class ZrWpts;

/// A simulated survey as the records that a vehicle would log, one after the other, in the order of their
/// times.
///
/// \code
/// ZrSimSurvey survey(route, {});
/// ZrSimRecord record;
/// while (survey.Next(record))
///     … // survey.Vehicle().State() is where the vehicle was then
/// if (!survey.Message().isEmpty()) … // why there is nothing, or why it ended early
/// \endcode
///
/// The plan comes first (`rtMissionPlan`), then navigation, fix, motion, depth, vehicle state, environment
/// and pings (port, then starboard), each at its rate, counted from the start; those of one moment in this
/// order. Positions, angles and depths have the errors of the sensors; what the sonar sees has the true ones.
///
/// The same plan, settings and time give the same bytes. The route is read in the constructor only, as
/// `ZrRoutePath` does; from then on a survey may be used by one thread at a time, any one.
class ZR_KIT_EXPORT ZrSimSurvey
{
public:
    ZrSimSurvey(const ZrWpts& route, const ZrSimSettings& settings);
    ZrSimSurvey(const ZrSimSurvey&) = delete;
    ZrSimSurvey& operator=(const ZrSimSurvey&) = delete;

    /// The next record; false at the end.
    bool Next(ZrSimRecord& record);

    /// Why there is no survey, or why it ended before the last waypoint: a sentence; empty otherwise.
    const QString& Message() const { return m_message; }

    /// Whether there was anything to simulate.
    bool IsValid() const { return m_isValid; }

    const ZrSimVehicle& Vehicle() const { return *m_vehicle; }

    const ZrSimSeaFloor& Floor() const { return *m_floor; }

    const ZrSimSonar& Sonar() const { return *m_sonar; }

    const ZrSimSettings& Settings() const { return m_settings; }

    /// Percent of the way that lie behind the vehicle.
    int Percent() const;

    double RecordRate() const; ///< records in a second of the survey, on average

private:
    /// What is logged at a rate; the order is that of records of one moment.
    enum eStream : int
    {
        streamNavigation,
        streamFix,
        streamMotion,
        streamDepth,
        streamVehicle,
        streamEnvironment,
        streamPing,
        streamCount
    };

    struct Stream
    {
        double rate = 0.0; ///< a second; 0 for none
        u64 count = 0; ///< logged so far
    };

    void AddPlan(const ZrWpts& route);
    bool Advance();
    void Log(eStream stream);
    template <class Record> void Add(const Record& record, u16 sub = 0);

    ZrSimSettings m_settings;
    std::shared_ptr<const ZrSimSeaFloor> m_floor;
    std::unique_ptr<ZrSimVehicle> m_vehicle;
    std::unique_ptr<ZrSimSensors> m_sensors;
    std::unique_ptr<ZrSimSonar> m_sonar;
    Stream m_streams[streamCount];
    ZrSimReading m_reading;
    double m_now = 0.0; ///< seconds since the start
    bool m_hasReading = false; ///< `m_reading` is of `m_now`
    std::deque<ZrSimRecord> m_ready;
    bool m_isValid = false;
    QString m_message;
};
