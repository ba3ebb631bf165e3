#include "ZrKit/sonar/ZrSonarGeo.h"

#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSlantRange.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

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

ZrSonarGeo::ZrSonarGeo(ZrSonarPings pings, const ZrSonarTrack& track, const ZrBottomLine& bottom)
    : m_pings(std::move(pings))
    , m_track(track)
{
    const std::vector<double>& found = bottom.Found();
    const bool isWhole = !found.empty() && found.size() == m_pings.size() && !bottom.HasEdits()
        && std::all_of(found.begin(), found.end(), [](double altitude) { return std::isfinite(altitude); });
    if (isWhole) {
        m_altitudes = bottom.SharedFound();
        m_knowsAltitudes = true;
        return;
    }
    auto altitudes = std::make_shared<std::vector<double>>();
    altitudes->reserve(m_pings.size());
    for (std::size_t i = 0; i < m_pings.size(); ++i)
        altitudes->push_back(bottom.Altitude(i));
    m_knowsAltitudes = Bridge(*altitudes);
    m_altitudes = std::move(altitudes);
}

/// The side of a ping; false when it has recorded nothing.
bool ZrSonarGeo::Channel(std::size_t ping, eSonarSide side, ZrSonarChannel& channel) const
{
    if (ping >= m_pings.size() || (side != sidePort && side != sideStarboard))
        return false;
    channel = m_pings.Side(ping, side);
    return channel.IsThere() && channel.SampleLength() > 0.0;
}

bool ZrSonarGeo::Holds(const ZrSonarSpot& spot) const
{
    ZrSonarChannel channel;
    return Channel(spot.ping, spot.side, channel) && spot.sample >= -0.5
        && spot.sample <= channel.sampleCount - 0.5;
}

double ZrSonarGeo::SlantRange(const ZrSonarSpot& spot) const
{
    ZrSonarChannel channel;
    return Channel(spot.ping, spot.side, channel) ? (spot.sample + 0.5) * channel.SampleLength() : unknown;
}

double ZrSonarGeo::GroundRange(const ZrSonarSpot& spot) const
{
    const double slant = SlantRange(spot);
    return std::isnan(slant) ? slant : ZrSlantRange::Ground(slant, Altitude(spot.ping));
}

bool ZrSonarGeo::IsInWater(const ZrSonarSpot& spot) const
{
    const double slant = SlantRange(spot);
    return !std::isnan(slant) && slant < Altitude(spot.ping);
}

double ZrSonarGeo::Sample(std::size_t ping, eSonarSide side, double groundRange) const
{
    ZrSonarChannel channel;
    if (!Channel(ping, side, channel))
        return unknown;
    return ZrSlantRange::Slant(groundRange, Altitude(ping)) / channel.SampleLength() - 0.5;
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
        ZrSonarChannel channel;
        if (!Channel(i, side, channel) || !std::isfinite(along))
            continue;
        const double furthest = channel.sampleCount - 0.5;
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
