#include "ZrKit/recording/ZrLiveTap.h"

#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrEnvRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"

#include <cmath>
#include <utility>

namespace {

constexpr u32 repeatedPosition = 1; // bit of the flags of navigation
constexpr u8 notKnown = 255; // quality and satellites

bool IsPosition(double latitude, double longitude)
{
    return std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 180.0;
}

/// Makes room for one more.
template <class T> bool DropOldest(std::vector<T>& waiting, std::size_t most)
{
    if (waiting.size() < most)
        return false;
    // A half at once: nobody looks, and each removal moves all the others.
    waiting.erase(waiting.begin(), waiting.begin() + static_cast<std::ptrdiff_t>(most / 2));
    return true;
}

} // namespace

void ZrLiveTap::Take(CRecType type, u16 format, double time, zr::span<u8> payload, double now)
{
    m_hasNews = true;
    m_state.lastData = now;
    if (std::isfinite(time))
        m_state.dataTime = time;
    if (type == zr::rec_type(krtPing, 0) || type == zr::rec_type(krtPing, 1)) {
        if (format == ZrPingRecord::Format)
            TakePing(payload, time, now);
    } else if (type == zr::rec_type(krtNavigation) && format == ZrNavRecord::Format) {
        TakeNavigation(payload, now);
    } else if (type == zr::rec_type(krtFix) && format == ZrFixRecord::Format) {
        TakeFix(payload, now);
    } else if (type == zr::rec_type(krtDepth) && format == ZrDepthRecord::Format) {
        TakeDepth(payload, now);
    } else if (type == zr::rec_type(krtMotion) && format == ZrMotionRecord::Format) {
        TakeMotion(payload, now);
    } else if (type == zr::rec_type(krtEnvironment) && format == ZrEnvRecord::Format) {
        ZrEnvRecord env;
        if (ZrEnvRecord::Decode(payload, env))
            m_state.temperature.Set(static_cast<double>(env.waterTemperature), now);
    }
}

bool ZrLiveTap::TakePosition(double latitude, double longitude, double now)
{
    if (!IsPosition(latitude, longitude))
        return false;
    const QPointF place(longitude, latitude);
    const bool isNew = latitude != m_state.latitude.value || longitude != m_state.longitude.value;
    m_state.latitude.Set(latitude, now);
    m_state.longitude.Set(longitude, now);
    if (isNew) {
        DropOldest(m_trail, MostTrail);
        m_trail.push_back(place);
    }
    return true;
}

void ZrLiveTap::TakeNavigation(zr::span<u8> payload, double now)
{
    ZrNavRecord nav;
    if (!ZrNavRecord::Decode(payload, nav))
        return;
    const bool isRepeated = (nav.flags & repeatedPosition) != 0;
    if ((!isRepeated || !m_state.latitude.IsKnown()) && TakePosition(nav.latitude, nav.longitude, now)
        && !isRepeated)
        m_navPosition.Set(1.0, now);
    const auto take = [now](ZrLiveValue& value, ZrLiveValue& own, float told) {
        value.Set(static_cast<double>(told), now);
        own.Set(static_cast<double>(told), now);
    };
    take(m_state.depth, m_navDepth, nav.depth);
    take(m_state.altitude, m_navAltitude, nav.altitude);
    take(m_state.heading, m_navHeading, nav.heading);
    m_state.pitch.Set(static_cast<double>(nav.pitch), now);
    m_state.roll.Set(static_cast<double>(nav.roll), now);
}

void ZrLiveTap::TakeFix(zr::span<u8> payload, double now)
{
    ZrFixRecord fix;
    if (!ZrFixRecord::Decode(payload, fix) || fix.quality == 0 || !IsPosition(fix.latitude, fix.longitude))
        return;
    m_state.fix.Set(fix.quality, now);
    if (fix.satellites != notKnown)
        m_state.satellites.Set(fix.satellites, now);
    if (!m_navPosition.IsFresh(now))
        TakePosition(fix.latitude, fix.longitude, now);
}

void ZrLiveTap::TakeDepth(zr::span<u8> payload, double now)
{
    ZrDepthRecord depth;
    if (!ZrDepthRecord::Decode(payload, depth))
        return;
    if (!m_navAltitude.IsFresh(now))
        m_state.altitude.Set(static_cast<double>(depth.depth), now);
    // Below 0 it is the way down to the keel and says nothing about the surface.
    if (!m_navDepth.IsFresh(now) && depth.offset >= 0.0F)
        m_state.depth.Set(static_cast<double>(depth.offset), now);
}

void ZrLiveTap::TakeMotion(zr::span<u8> payload, double now)
{
    ZrMotionRecord motion;
    if (!ZrMotionRecord::Decode(payload, motion))
        return;
    if (!m_navHeading.IsFresh(now))
        m_state.heading.Set(static_cast<double>(motion.headingTrue), now);
    m_state.course.Set(static_cast<double>(motion.courseTrue), now);
    m_state.speed.Set(static_cast<double>(motion.speedGround), now);
    m_state.waterSpeed.Set(static_cast<double>(motion.speedWater), now);
}

void ZrLiveTap::TakePing(zr::span<u8> payload, double time, double now)
{
    ZrLivePing live;
    if (!ZrPingRecord::Decode(payload, live.ping))
        return;
    live.time = time;
    if (m_state.altitude.IsFresh(now))
        live.altitude = m_state.altitude.value;
    if (DropOldest(m_pings, MostPings))
        m_lostPings += MostPings / 2;
    m_pings.push_back(std::move(live));
}

std::vector<QPointF> ZrLiveTap::TakeTrail()
{
    m_hasNews = false;
    return std::exchange(m_trail, {});
}

std::vector<ZrLivePing> ZrLiveTap::TakePings()
{
    return std::exchange(m_pings, {});
}
