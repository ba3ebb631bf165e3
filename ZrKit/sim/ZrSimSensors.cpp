#include "ZrKit/sim/ZrSimSensors.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double wanderTime = 30.0; // seconds
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// Numbers of streams that belong to one seed.
constexpr u64 errorStream = 1;
constexpr u64 dropoutStream = 2;

double Size(double deviation)
{
    return std::isfinite(deviation) && deviation > 0.0 ? deviation : 0.0;
}

double Compass(double degrees)
{
    const double rest = std::fmod(degrees, 360.0);
    const double positive = rest < 0.0 ? rest + 360.0 : rest;
    return positive >= 360.0 ? 0.0 : positive;
}

} // namespace

ZrSimSensors::ZrSimSensors(u64 seed, const ZrLocalFrame& frame, const ZrSimSensorSettings& settings)
    : m_frame(frame)
    , m_random(ZrSimRandom::Mix(seed) ^ errorStream)
    , m_dropouts(ZrSimRandom::Mix(seed) ^ dropoutStream)
{
    m_settings.position = Size(settings.position);
    m_settings.heading = Size(settings.heading);
    m_settings.attitude = Size(settings.attitude);
    m_settings.depth = Size(settings.depth);
    m_settings.altitude = Size(settings.altitude);
    m_settings.speed = Size(settings.speed);
    m_settings.dropout = std::min(1.0, Size(settings.dropout));
}

void ZrSimSensors::Wander(double seconds)
{
    // The exact step of the process: it keeps its deviation at any interval.
    const double kept = m_hasWandered ? std::exp(-std::max(0.0, seconds) / wanderTime) : 0.0;
    const double fresh = m_settings.position * std::sqrt(1.0 - kept * kept);
    m_east = kept * m_east + fresh * m_random.Normal();
    m_north = kept * m_north + fresh * m_random.Normal();
    m_hasWandered = true;
}

void ZrSimSensors::Silence(ZrSimReading& reading)
{
    constexpr int sensors = 4;
    if (m_dropouts.Uniform() >= m_settings.dropout)
        return;
    switch (static_cast<int>(m_dropouts.Uniform() * sensors)) {
    case 0:
        reading.position = m_lastPosition;
        reading.isPositionHeld = true;
        return;
    case 1:
        reading.heading = unknown;
        return;
    case 2:
        reading.altitude = unknown;
        return;
    default:
        reading.groundSpeed = reading.waterSpeed = reading.course = unknown;
        return;
    }
}

ZrSimReading ZrSimSensors::Read(const ZrSimVehicleState& state)
{
    Wander(state.time - m_time);
    m_time = state.time;
    ZrSimReading reading;
    reading.time = state.time;
    reading.position = m_frame.ToGeo({state.at.x + m_east, state.at.y + m_north});
    reading.heading = Compass(state.heading + m_settings.heading * m_random.Normal());
    reading.course = state.course;
    reading.groundSpeed = std::max(0.0, state.groundSpeed + m_settings.speed * m_random.Normal());
    reading.waterSpeed = std::max(0.0, state.speed + m_settings.speed * m_random.Normal());
    reading.depth = state.depth + m_settings.depth * m_random.Normal();
    reading.altitude = std::max(0.0, state.altitude + m_settings.altitude * m_random.Normal());
    reading.pitch = state.pitch + m_settings.attitude * m_random.Normal();
    reading.roll = state.roll + m_settings.attitude * m_random.Normal();
    Silence(reading);
    if (!reading.isPositionHeld)
        m_lastPosition = reading.position;
    return reading;
}
