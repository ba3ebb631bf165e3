#include "ZrKit/sim/ZrSimSonar.h"

#include "ZrKit/sim/ZrSimRandom.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"
#include "ZrUtil/ZrEndian.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double radPerDeg = pi / 180.0;

constexpr double stepsPerSample = 4.0 / 3.0;
constexpr double backLobe = 0.08; // power of a beam where it does not look, against its middle
constexpr double pulseLength = 0.08; // metres over which the end of the outgoing pulse falls to 1/e
constexpr double pulse = 25000.0; // its amplitude
constexpr double noiseRise = 2.0; // the receiver's gain at full range makes the noise so much larger
constexpr double largest = 65535.0;
constexpr double powerPerDecibel = 10.0;

double Within(double value, double least, double most, double otherwise)
{
    return std::isnan(value) ? otherwise : std::clamp(value, least, most);
}

/// Where the sound meets the floor.
struct Hit
{
    double out = 0.0; ///< metres over ground
    double up = 0.0; ///< metres above the sonar
    double range = 0.0;
    double elevation = 0.0; ///< radians above the horizontal
    double reflectivity = 0.0;
};

Hit HitAt(double out, double up, double reflectivity)
{
    return {out, up, std::hypot(out, up), std::atan2(up, out), reflectivity};
}

/// sin² of the angle between the ray to the middle of a step and the step.
double Lambert(const Hit& from, const Hit& to)
{
    const double out = (from.out + to.out) / 2.0;
    const double up = (from.up + to.up) / 2.0;
    const double cross = (to.out - from.out) * up - (to.up - from.up) * out;
    const double lengths = std::hypot(to.out - from.out, to.up - from.up) * std::hypot(out, up);
    const double sine = lengths > 0.0 ? cross / lengths : 0.0;
    return sine * sine;
}

/// Spreads \p power evenly over the slant ranges from \p a to \p b, in samples.
void Deposit(std::vector<double>& powers, double a, double b, double power)
{
    const double end = static_cast<double>(powers.size());
    const double from = std::min(a, b);
    const double to = std::max(a, b);
    if (!(from < end))
        return;
    const auto first = static_cast<std::size_t>(from);
    if (to - from < 1e-9 || static_cast<std::size_t>(to) == first) {
        powers[first] += power;
        return;
    }
    const double density = power / (to - from);
    for (std::size_t i = first; i < powers.size() && static_cast<double>(i) < to; ++i) {
        const double low = std::max(from, static_cast<double>(i));
        const double high = std::min(to, static_cast<double>(i) + 1.0);
        powers[i] += density * (high - low);
    }
}

} // namespace

ZrSimSonar::ZrSimSonar(
    u64 seed, std::shared_ptr<const ZrSimSeaFloor> floor, const ZrSimSonarSettings& settings)
    : m_seed(ZrSimRandom::Mix(seed))
    , m_floor(std::move(floor))
    , m_settings(settings)
{
    using Limits = ZrSimSonarSettings;
    const ZrSimSonarSettings usual;
    m_settings.range = Within(settings.range, Limits::MinRange, Limits::MaxRange, usual.range);
    m_settings.samples = std::clamp(settings.samples, Limits::MinSamples, Limits::MaxSamples);
    m_settings.soundSpeed = Within(settings.soundSpeed, 1300.0, 1700.0, usual.soundSpeed);
    m_settings.tilt = Within(settings.tilt, 0.0, 90.0, usual.tilt);
    m_settings.beam = Within(settings.beam, 1.0, 180.0, usual.beam);
    m_settings.absorption = Within(settings.absorption, 0.0, 1.0, usual.absorption);
    m_settings.noise = Within(settings.noise, 0.0, largest, usual.noise);
    m_settings.gain = Within(settings.gain, 0.0, largest, usual.gain);
    m_settings.looks = std::clamp(settings.looks, 0, 100);
}

double ZrSimSonar::Rate() const
{
    const double most = m_settings.soundSpeed / (2.0 * m_settings.range);
    return m_settings.rate > 0.0 ? std::min(most, m_settings.rate) : most;
}

std::vector<double> ZrSimSonar::Echoes(const ZrSimVehicleState& state, eSonarSide side) const
{
    const auto samples = static_cast<std::size_t>(m_settings.samples);
    std::vector<double> powers(samples, 0.0);
    const double sampleLength = m_settings.range / m_settings.samples;
    const double step = sampleLength / stepsPerSample;
    const double turn = side == sidePort ? -90.0 : 90.0;
    const double abeam = (state.gridHeading + turn) * radPerDeg;
    const double east = std::sin(abeam);
    const double north = std::cos(abeam);
    const double roll = side == sidePort ? -state.roll : state.roll;
    const double axis = -(m_settings.tilt + roll) * radPerDeg;
    const double width = m_settings.beam * radPerDeg;
    const std::vector<const ZrSimTarget*> targets
        = m_floor->TargetsNear(state.at.x, state.at.y, m_settings.range);
    // Forms that the steps cannot show would only make moiré patterns.
    const double detail = 2.0 * step;
    const std::size_t steps = static_cast<std::size_t>(std::ceil(m_settings.samples * stepsPerSample)) + 2;
    std::vector<ZrSimSeaFloor::Spot> spots;
    m_floor->Along(state.at, step * east, step * north, detail, targets, steps, spots);
    const auto hit = [&](std::size_t i) {
        return HitAt(static_cast<double>(i) * step, state.depth - spots[i].depth, spots[i].reflectivity);
    };

    Hit last = hit(0);
    double horizon = last.elevation;
    for (std::size_t i = 1; i < steps; ++i) {
        const Hit now = hit(i);
        if (now.elevation > horizon) {
            const double rise = now.elevation - last.elevation;
            const double seen = std::min(1.0, (now.elevation - horizon) / rise);
            const double lobe = (now.elevation - axis) / width;
            const double beam = backLobe + (1.0 - backLobe) * std::exp(-lobe * lobe);
            const double length = std::hypot(now.out - last.out, now.up - last.up) * seen;
            const double begin = now.range - seen * (now.range - last.range);
            Deposit(powers, begin / sampleLength, now.range / sampleLength,
                now.reflectivity * Lambert(last, now) * length * beam);
            horizon = now.elevation;
        }
        last = now;
    }
    for (std::size_t i = 0; i < samples; ++i) {
        const double range = (static_cast<double>(i) + 0.5) * sampleLength;
        const double loss = std::pow(10.0, -2.0 * m_settings.absorption * range / powerPerDecibel);
        powers[i] = m_settings.gain * std::sqrt(powers[i] / sampleLength * loss);
    }
    return powers;
}

ZrPingRecord ZrSimSonar::Ping(const ZrSimVehicleState& state, u32 number, eSonarSide side) const
{
    const std::vector<double> echoes = Echoes(state, side);
    ZrSimRandom random(ZrSimRandom::Mix(m_seed + number) + static_cast<u64>(side));
    ZrPingRecord record;
    record.pingNumber = number;
    record.side = static_cast<u8>(side);
    record.sampleWidth = 2;
    record.slantRange = static_cast<float>(m_settings.range);
    record.frequency = static_cast<float>(m_settings.frequency);
    record.soundSpeed = static_cast<float>(m_settings.soundSpeed);
    record.sampleCount = static_cast<u32>(echoes.size());
    record.samples.resize(m_settings.samples * 2);
    u8* const out = reinterpret_cast<u8*>(record.samples.data());
    const double share = 1.0 / static_cast<double>(echoes.size());
    const double sampleLength = m_settings.range * share;
    for (std::size_t i = 0; i < echoes.size(); ++i) {
        const double middle = static_cast<double>(i) + 0.5;
        const double noise = m_settings.noise * (1.0 + (noiseRise - 1.0) * middle * share);
        double power = echoes[i] * echoes[i] + noise * noise;
        if (m_settings.looks > 0) {
            double speckle = 0.0;
            for (int look = 0; look < m_settings.looks; ++look)
                speckle += random.Exponential();
            power *= speckle / m_settings.looks;
        }
        const double amplitude = std::sqrt(power) + pulse * std::exp(-middle * sampleLength / pulseLength);
        zr::store_le<u16>(out + 2 * i, static_cast<u16>(std::min(largest, amplitude) + 0.5));
    }
    return record;
}
