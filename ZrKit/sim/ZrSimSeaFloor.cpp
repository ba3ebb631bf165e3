#include "ZrKit/sim/ZrSimSeaFloor.h"

#include "ZrKit/sim/ZrSimRandom.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double twoPi = 2.0 * 3.14159265358979323846;
constexpr double deepest = 11000.0; // metres
constexpr std::size_t reliefOctaves = 4;
constexpr double sand = 1.0; // backscatter

// Lengths of the patterns, metres.
constexpr double mudLength = 70.0;
constexpr double rockPatchLength = 45.0;
constexpr double rippleFieldLength = 60.0;
constexpr double rippleBendLength = 14.0;
constexpr double rockLength = 1.7;
constexpr double grainLength = 2.5;

/// Each pattern has noise of its own. Octaves follow each other.
enum eLayer : std::size_t
{
    layerRelief = 0,
    layerMud = layerRelief + reliefOctaves,
    layerMudFine,
    layerRockPatch,
    layerRockPatchFine,
    layerRock,
    layerRockFine,
    layerRippleField,
    layerRippleBend,
    layerGrain,
    layerCount
};

/// Value noise of lattice constant 1, which remembers the square of the lattice that it was in.
class Noise
{
public:
    void SetSeed(u64 seed) { m_seed = seed; }

    /// From 0 to 1.
    double At(double x, double y)
    {
        const double left = std::floor(x);
        const double low = std::floor(y);
        const auto column = static_cast<std::int64_t>(left);
        const auto row = static_cast<std::int64_t>(low);
        if (!m_isKnown || column != m_column || row != m_row) {
            m_isKnown = true;
            m_column = column;
            m_row = row;
            for (int i = 0; i < 4; ++i)
                m_corners[i] = ZrSimRandom::At(m_seed, column + i % 2, row + i / 2);
        }
        const double across = Ease(x - left);
        const double below = m_corners[0] + (m_corners[1] - m_corners[0]) * across;
        const double above = m_corners[2] + (m_corners[3] - m_corners[2]) * across;
        return below + (above - below) * Ease(y - low);
    }

private:
    static double Ease(double t) { return t * t * (3.0 - 2.0 * t); }

    u64 m_seed = 0;
    bool m_isKnown = false;
    std::int64_t m_column = 0;
    std::int64_t m_row = 0;
    double m_corners[4] = {};
};

/// From 0 at \p from to 1 at \p to, without corners.
double Rise(double from, double to, double value)
{
    const double t = std::clamp((value - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

/// \p value within its limits; \p otherwise when it is no number.
double Within(double value, double least, double most, double otherwise)
{
    return std::isnan(value) ? otherwise : std::clamp(value, least, most);
}

bool IsOnPlane(double x, double y)
{
    return std::fabs(x) <= ZrSimSeaFloor::Farthest && std::fabs(y) <= ZrSimSeaFloor::Farthest;
}

} // namespace

ZrSimSeaFloor::ZrSimSeaFloor(const ZrSimSeaFloorSettings& settings, std::vector<ZrSimTarget> targets)
    : m_settings(settings)
    , m_targets(std::move(targets))
{
    const ZrSimSeaFloorSettings usual;
    m_settings.depth = Within(settings.depth, 0.0, deepest, usual.depth);
    m_settings.relief = Within(settings.relief, 0.0, deepest, usual.relief);
    m_settings.reliefLength = Within(settings.reliefLength, 1.0, 1e6, usual.reliefLength);
    m_settings.rippleHeight = Within(settings.rippleHeight, 0.0, 10.0, usual.rippleHeight);
    m_settings.rippleLength = Within(settings.rippleLength, 0.05, 1000.0, usual.rippleLength);
    m_settings.rockHeight = Within(settings.rockHeight, 0.0, 100.0, usual.rockHeight);
    const auto isBad = [](const ZrSimTarget& target) { return !target.IsValid(); };
    m_targets.erase(std::remove_if(m_targets.begin(), m_targets.end(), isBad), m_targets.end());
}

/// The patterns of a floor, at places that are best near each other.
class ZrSimSeaFloor::Sampler
{
public:
    explicit Sampler(const ZrSimSeaFloorSettings& settings)
        : m_settings(settings)
        , m_rippleDirection(twoPi * ZrSimRandom::At(settings.seed, layerRippleField, 0))
        , m_rippleEast(std::cos(m_rippleDirection))
        , m_rippleNorth(std::sin(m_rippleDirection))
    {
        for (std::size_t layer = 0; layer < layerCount; ++layer)
            m_noise[layer].SetSeed(ZrSimRandom::Mix(settings.seed * layerCount + layer));
    }

    /// Goes to a place on the plane.
    void GoTo(double x, double y)
    {
        m_x = x;
        m_y = y;
        m_mud = m_rock = 0.0;
        if (!m_settings.patches)
            return;
        m_mud = Rise(0.52, 0.6, Patches(layerMud, mudLength));
        m_rock = Rise(0.68, 0.74, Patches(layerRockPatch, rockPatchLength));
    }

    double Depth(double detail)
    {
        const auto tells = [detail](double length) { return !(length < detail); };
        double up = Relief(detail);
        if (m_rock > 0.0 && m_settings.rockHeight > 0.0 && tells(rockLength))
            up += m_rock * m_settings.rockHeight * Rise(0.35, 1.0, Rocks());
        if (m_settings.rippleHeight > 0.0 && tells(m_settings.rippleLength))
            up += Ripples();
        return std::max(0.0, m_settings.depth - up);
    }

    double Reflectivity()
    {
        constexpr double mud = 0.3;
        constexpr double rock = 3.0;
        const double soft = sand + (mud - sand) * m_mud;
        const double grain = 0.75 + 0.5 * At(layerGrain, grainLength);
        return (soft + (rock - soft) * m_rock) * grain;
    }

private:
    double At(std::size_t layer, double length) { return m_noise[layer].At(m_x / length, m_y / length); }

    double Patches(std::size_t layer, double length)
    {
        return 0.8 * At(layer, length) + 0.2 * At(layer + 1, length / 4.0);
    }

    double Rocks() { return 0.7 * At(layerRock, rockLength) + 0.3 * At(layerRockFine, rockLength / 3.0); }

    double Relief(double detail)
    {
        double up = 0.0;
        double length = m_settings.reliefLength;
        double height = m_settings.relief;
        for (std::size_t octave = 0; octave < reliefOctaves && height > 0.0 && !(length < detail); ++octave) {
            up += height * (2.0 * At(layerRelief + octave, length) - 1.0);
            length /= 2.0;
            height /= 2.0;
        }
        return up;
    }

    double Ripples()
    {
        const double field = Rise(0.45, 0.6, At(layerRippleField, rippleFieldLength));
        const double share = field * (1.0 - m_mud) * (1.0 - m_rock);
        if (!(share > 0.0))
            return 0.0;
        // Crests run across a direction that belongs to the seed, and bend a little.
        const double way = (m_x * m_rippleEast + m_y * m_rippleNorth) / m_settings.rippleLength;
        const double bend = 1.5 * At(layerRippleBend, rippleBendLength);
        return share * m_settings.rippleHeight / 2.0 * std::sin(twoPi * (way + bend));
    }

    const ZrSimSeaFloorSettings& m_settings;
    double m_rippleDirection;
    double m_rippleEast;
    double m_rippleNorth;
    Noise m_noise[layerCount];
    double m_x = 0.0;
    double m_y = 0.0;
    double m_mud = 0.0; ///< share of mud here, 0 to 1
    double m_rock = 0.0;
};

double ZrSimSeaFloor::Depth(double x, double y, double detail) const
{
    if (!IsOnPlane(x, y))
        return m_settings.depth;
    Sampler sampler(m_settings);
    sampler.GoTo(x, y);
    return sampler.Depth(detail);
}

double ZrSimSeaFloor::Reflectivity(double x, double y) const
{
    if (!IsOnPlane(x, y))
        return sand;
    Sampler sampler(m_settings);
    sampler.GoTo(x, y);
    return sampler.Reflectivity();
}

ZrSimSeaFloor::Spot ZrSimSeaFloor::At(
    double x, double y, double detail, const std::vector<const ZrSimTarget*>& targets) const
{
    std::vector<Spot> spots;
    Along({x, y}, 0.0, 0.0, detail, targets, 1, spots);
    return spots.front();
}

void ZrSimSeaFloor::Along(ZrLocalPoint from, double east, double north, double detail,
    const std::vector<const ZrSimTarget*>& targets, std::size_t count, std::vector<Spot>& spots) const
{
    Sampler sampler(m_settings);
    spots.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double x = from.x + static_cast<double>(i) * east;
        const double y = from.y + static_cast<double>(i) * north;
        Spot& spot = spots[i];
        spot = {m_settings.depth, sand};
        if (!IsOnPlane(x, y))
            continue;
        sampler.GoTo(x, y);
        spot.depth = sampler.Depth(detail);
        double height = 0.0;
        for (const ZrSimTarget* target : targets) {
            const double here = target->HeightAt(x, y);
            if (here > height) {
                height = here;
                spot.reflectivity = target->strength;
            }
        }
        if (height > 0.0)
            spot.depth -= height;
        else
            spot.reflectivity = sampler.Reflectivity();
    }
}

std::vector<const ZrSimTarget*> ZrSimSeaFloor::TargetsNear(double x, double y, double range) const
{
    std::vector<const ZrSimTarget*> near;
    for (const ZrSimTarget& target : m_targets) {
        if (std::hypot(target.at.x - x, target.at.y - y) <= range + target.Reach())
            near.push_back(&target);
    }
    return near;
}
