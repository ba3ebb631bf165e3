#include "ZrKit/sim/ZrSimSurvey.h"

#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/records/ZrVehicleRecord.h"
#include "ZrKit/sim/ZrSimScatter.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"
#include "ZrUtil/ZrWpts.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr u8 simulatedFix = 8;
constexpr u32 heldPosition = 1;
constexpr double fullVoltage = 28.8;
constexpr double voltagePerSecond = 1e-4;
constexpr double hullTemperature = 14.0; // degrees Celsius
constexpr double hullPressure = 95000.0; // pascal
constexpr double surfaceTemperature = 12.0; // degrees Celsius
constexpr double coolerPerMetre = 0.05;
constexpr double coldest = 2.0;

float Single(double value)
{
    return static_cast<float>(value);
}

/// In binary32 the last degrees below 360 are 360.
float SingleAngle(double degrees)
{
    const float angle = Single(degrees);
    return angle >= 360.0F ? 0.0F : angle;
}

} // namespace

ZrSimSurvey::ZrSimSurvey(const ZrWpts& route, const ZrSimSettings& settings)
    : m_settings(settings)
    , m_message(settings.Fault())
{
    std::vector<ZrSimTarget> targets = settings.targets;
    if (m_message.isEmpty()) {
        const std::vector<ZrSimTarget> scattered = ZrSimScatter::Along(
            ZrRoutePath(route), settings.scattered, settings.sonar.range, settings.seed);
        targets.insert(targets.end(), scattered.begin(), scattered.end());
    }
    m_floor = std::make_shared<const ZrSimSeaFloor>(settings.floor, std::move(targets));
    m_vehicle = std::make_unique<ZrSimVehicle>(route, m_floor, settings.vehicle);
    m_sensors = std::make_unique<ZrSimSensors>(settings.seed, m_vehicle->Frame(), settings.sensors);
    m_sonar = std::make_unique<ZrSimSonar>(settings.seed, m_floor, settings.sonar);
    if (m_message.isEmpty())
        m_message = m_vehicle->Message();
    m_isValid = m_message.isEmpty();
    if (!m_isValid)
        return;
    m_streams[streamNavigation].rate = settings.navRate;
    m_streams[streamFix].rate = settings.fixRate;
    m_streams[streamMotion].rate = settings.motionRate;
    m_streams[streamDepth].rate = settings.depthRate;
    m_streams[streamVehicle].rate = settings.vehicleRate;
    m_streams[streamEnvironment].rate = settings.environmentRate;
    m_streams[streamPing].rate = settings.pings ? m_sonar->Rate() : 0.0;
    if (settings.recordsPlan)
        AddPlan(route);
}

void ZrSimSurvey::AddPlan(const ZrWpts& route)
{
    ZrWpts copy(route);
    ZrXmlStore store(true);
    copy.SyncXml(*store.AddSet(QStringLiteral("Waypoints")));
    QByteArray bytes;
    store.Save(bytes);
    m_ready.push_back({CRecType(rtMissionPlan), m_settings.source, 0, m_settings.start, bytes});
}

template <class Record> void ZrSimSurvey::Add(const Record& record, u16 sub)
{
    m_ready.push_back({CRecType(sub, static_cast<u16>(Record::RecType)), m_settings.source, Record::Format,
        m_settings.start + m_now, record.Encode()});
}

bool ZrSimSurvey::Next(ZrSimRecord& record)
{
    while (m_ready.empty()) {
        if (!Advance())
            return false;
    }
    record = std::move(m_ready.front());
    m_ready.pop_front();
    return true;
}

/// Goes on to the moment of the next record and makes it; false when the vehicle does not get there.
bool ZrSimSurvey::Advance()
{
    if (!m_isValid || !m_vehicle->IsRunning())
        return false;
    int next = streamNavigation;
    const auto due = [this](int stream) {
        const Stream& s = m_streams[stream];
        return static_cast<double>(s.count) / s.rate;
    };
    for (int stream = 0; stream < streamCount; ++stream) {
        if (m_streams[stream].rate > 0.0 && due(stream) < due(next))
            next = stream;
    }
    const double moment = due(next);
    if (moment > m_settings.maxDuration) {
        m_message = QCoreApplication::translate("ZrSimSurvey", "The survey takes longer than %1 s")
                        .arg(m_settings.maxDuration, 0, 'f', 0);
        m_isValid = false;
        return false;
    }
    if (moment > m_now) {
        m_vehicle->Step(moment - m_now);
        if (!m_vehicle->IsRunning()) {
            m_message = m_vehicle->Message();
            return false;
        }
        m_now = moment;
        m_hasReading = false;
    }
    if (!m_hasReading) {
        m_reading = m_sensors->Read(m_vehicle->State());
        m_hasReading = true;
    }
    Log(static_cast<eStream>(next));
    ++m_streams[next].count;
    return true;
}

void ZrSimSurvey::Log(eStream stream)
{
    const ZrSimVehicleState& state = m_vehicle->State();
    switch (stream) {
    case streamNavigation: {
        ZrNavRecord nav;
        nav.latitude = m_reading.position.lat;
        nav.longitude = m_reading.position.lng;
        nav.altitude = Single(m_reading.altitude);
        nav.depth = Single(m_reading.depth);
        nav.heading = SingleAngle(m_reading.heading);
        nav.pitch = Single(m_reading.pitch);
        nav.roll = Single(m_reading.roll);
        nav.flags = m_reading.isPositionHeld ? heldPosition : 0;
        Add(nav);
        return;
    }
    case streamFix: {
        // A receiver that lost its position says nothing.
        if (m_reading.isPositionHeld)
            return;
        ZrFixRecord fix;
        fix.latitude = m_reading.position.lat;
        fix.longitude = m_reading.position.lng;
        fix.quality = simulatedFix;
        Add(fix);
        return;
    }
    case streamMotion: {
        ZrMotionRecord motion;
        motion.headingTrue = SingleAngle(m_reading.heading);
        motion.courseTrue = SingleAngle(m_reading.course);
        motion.speedGround = Single(m_reading.groundSpeed);
        motion.speedWater = Single(m_reading.waterSpeed);
        Add(motion);
        return;
    }
    case streamDepth: {
        ZrDepthRecord depth;
        depth.depth = Single(m_reading.altitude);
        depth.offset = Single(m_reading.depth);
        Add(depth);
        return;
    }
    case streamVehicle: {
        ZrVehicleRecord vehicle;
        vehicle.navState = static_cast<u32>(state.waypoint);
        vehicle.temperature = Single(hullTemperature);
        vehicle.pressure = Single(hullPressure);
        vehicle.voltage = Single(std::max(0.0, fullVoltage - voltagePerSecond * m_now));
        vehicle.desiredHeading = SingleAngle(state.wantedHeading);
        Add(vehicle);
        return;
    }
    case streamEnvironment: {
        ZrEnvRecord environment;
        environment.waterTemperature
            = Single(std::max(coldest, surfaceTemperature - coolerPerMetre * state.depth));
        Add(environment);
        return;
    }
    case streamPing: {
        const u32 number = static_cast<u32>(m_streams[streamPing].count);
        for (const eSonarSide side : {sidePort, sideStarboard})
            Add(m_sonar->Ping(state, number, side), static_cast<u16>(side));
        return;
    }
    case streamCount:
        return;
    }
}

double ZrSimSurvey::RecordRate() const
{
    double rate = 0.0;
    for (int stream = 0; stream < streamCount; ++stream)
        rate += m_streams[stream].rate * (stream == streamPing ? 2.0 : 1.0); // both sides
    return rate;
}

int ZrSimSurvey::Percent() const
{
    const double length = m_vehicle->Length();
    if (!(length > 0.0))
        return 0;
    return static_cast<int>(std::clamp(100.0 * (1.0 - m_vehicle->State().toGo / length), 0.0, 100.0));
}
