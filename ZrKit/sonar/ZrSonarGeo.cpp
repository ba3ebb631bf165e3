#include "ZrKit/sonar/ZrSonarGeo.h"

#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSlantRange.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

/// Fills what is NaN from the neighbours. False when nothing is known.
bool Bridge(std::vector<double>& values)
{
    const auto isKnown = [](double value) { return std::isfinite(value); };
    auto known = std::find_if(values.begin(), values.end(), isKnown);
    if (known == values.end()) {
        std::fill(values.begin(), values.end(), 0.0);
        return false;
    }
    std::fill(values.begin(), known, *known);
    while (known != values.end()) {
        const auto next = std::find_if(known + 1, values.end(), isKnown);
        const double to = next == values.end() ? *known : *next;
        const double steps = static_cast<double>(next - known);
        for (auto it = known + 1; it != next; ++it)
            *it = *known + (to - *known) * static_cast<double>(it - known) / steps;
        known = next;
    }
    return true;
}

} // namespace

ZrSonarGeo::ZrSonarGeo(
    const std::vector<ZrSonarPing>& pings, const ZrSonarTrack& track, const ZrBottomLine& bottom)
    : m_pings(pings)
    , m_track(track)
{
    m_altitudes.reserve(pings.size());
    for (std::size_t i = 0; i < pings.size(); ++i)
        m_altitudes.push_back(bottom.Altitude(i));
    m_knowsAltitudes = Bridge(m_altitudes);
}

const ZrSonarChannel* ZrSonarGeo::Channel(std::size_t ping, eSonarSide side) const
{
    if (ping >= m_pings.size() || (side != sidePort && side != sideStarboard))
        return nullptr;
    const ZrSonarChannel& channel = m_pings[ping].sides[side];
    return channel.IsThere() && channel.SampleLength() > 0.0 ? &channel : nullptr;
}

bool ZrSonarGeo::Holds(const ZrSonarSpot& spot) const
{
    const ZrSonarChannel* const channel = Channel(spot.ping, spot.side);
    return channel && spot.sample >= -0.5 && spot.sample <= channel->sampleCount - 0.5;
}

double ZrSonarGeo::SlantRange(const ZrSonarSpot& spot) const
{
    const ZrSonarChannel* const channel = Channel(spot.ping, spot.side);
    return channel ? (spot.sample + 0.5) * channel->SampleLength() : unknown;
}

double ZrSonarGeo::GroundRange(const ZrSonarSpot& spot) const
{
    const double slant = SlantRange(spot);
    return std::isnan(slant) ? slant : ZrSlantRange::Ground(slant, m_altitudes[spot.ping]);
}

bool ZrSonarGeo::IsInWater(const ZrSonarSpot& spot) const
{
    const double slant = SlantRange(spot);
    return !std::isnan(slant) && slant < m_altitudes[spot.ping];
}

double ZrSonarGeo::Sample(std::size_t ping, eSonarSide side, double groundRange) const
{
    const ZrSonarChannel* const channel = Channel(ping, side);
    if (!channel)
        return unknown;
    return ZrSlantRange::Slant(groundRange, m_altitudes[ping]) / channel->SampleLength() - 0.5;
}

ZrGeoPoint ZrSonarGeo::Position(const ZrSonarSpot& spot) const
{
    const double ground = GroundRange(spot);
    return std::isfinite(ground) ? m_track.Locate(spot.ping, spot.side, ground) : ZrGeoPoint{};
}

bool ZrSonarGeo::Find(ZrGeoPoint at, ZrSonarSpot& spot, double* away) const
{
    if (!at.IsValid())
        return false;
    const ZrLocalPoint place = m_track.Frame().ToLocal(at);
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < m_pings.size(); ++i) {
        const ZrLocalPoint sonar = m_track.Point(i);
        const ZrLocalPoint right = m_track.LocateLocal(i, sideStarboard, 1.0);
        const double across
            = (place.x - sonar.x) * (right.x - sonar.x) + (place.y - sonar.y) * (right.y - sonar.y);
        const double along
            = (place.x - sonar.x) * (right.y - sonar.y) - (place.y - sonar.y) * (right.x - sonar.x);
        const eSonarSide side = across < 0.0 ? sidePort : sideStarboard;
        const ZrSonarChannel* const channel = Channel(i, side);
        if (!channel || !std::isfinite(along))
            continue;
        const double furthest = channel->sampleCount - 0.5;
        const double sample = std::clamp(Sample(i, side, std::fabs(across)), -0.5, furthest);
        const double ground = GroundRange({i, side, sample});
        const double distance = std::hypot(along, std::fabs(across) - ground);
        if (distance < nearest) {
            nearest = distance;
            spot = {i, side, sample};
        }
    }
    if (away)
        *away = nearest;
    return std::isfinite(nearest);
}
