#include "ZrKit/sonar/ZrSonarGain.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double degPerRad = 180.0 / 3.14159265358979323846;
constexpr double binLength = 0.25; ///< metres
constexpr std::size_t mostBins = 16384; ///< 4 km
constexpr double anglePerBin = 2.0; ///< degrees
constexpr double mostRangeGain = 16.0;
constexpr double mostAngleGain = 4.0;
constexpr std::size_t smoothRanges = 4; ///< bins to either side
constexpr std::size_t smoothAngles = 1;
/// Rounds in which the factors for ranges and angles are fitted in turn. They settle in half as many.
constexpr int rounds = 12;
/// The law is steep near the sonar; nothing of interest lies there.
constexpr double nearest = 0.5;
/// Amplitudes below this share of the mean are shadow. Of the speckle of a seabed, one in 20 is as dark.
constexpr double shadow = 0.25;
/// A bin counts when it has at least this share of the samples of the fullest one.
constexpr double wellFilled = 0.1;
/// A line seldom has more than two ranges, on two sides.
constexpr std::size_t mostTables = 8;

/// Twice the binary logarithm, rounded down, plus 1; 0 for 0.
u8 LevelOf(unsigned amplitude)
{
    u8 octave = 0;
    for (unsigned rest = amplitude; rest > 1; rest >>= 1)
        ++octave;
    if (amplitude == 0)
        return 0;
    const bool upper = static_cast<double>(amplitude) >= static_cast<double>(1U << octave) * std::sqrt(2.0);
    return static_cast<u8>(2 * octave + (upper ? 2 : 1));
}

std::vector<u8> MakeLevels()
{
    std::vector<u8> table(65536);
    for (std::size_t v = 0; v < table.size(); ++v)
        table[v] = LevelOf(static_cast<unsigned>(v));
    return table;
}

/// What the bins of a range or of an angle hold: samples as they are, and with the gain of the other applied.
struct Total
{
    double count = 0.0;
    double sum = 0.0;
};

/// The factors that bring the mean of every bin to \p mean; see the class.
void Fit(const std::vector<Total>& bins, double mean, std::size_t smooth, double most,
    std::vector<double>& factors)
{
    double fullest = 0.0;
    for (const Total& bin : bins)
        fullest = std::max(fullest, bin.count);
    const auto counts
        = [&](std::size_t i) { return bins[i].count > 0.0 && bins[i].count >= wellFilled * fullest; };
    std::size_t before = bins.size(); // the last bin that counts
    for (std::size_t i = 0; i < bins.size(); ++i) {
        if (!counts(i)) {
            factors[i] = before < bins.size() ? factors[before] : 1.0;
            continue;
        }
        Total near;
        const std::size_t end = std::min(i + smooth + 1, bins.size());
        for (std::size_t k = i - std::min(i, smooth); k < end; ++k) {
            if (!counts(k))
                continue;
            near.sum += bins[k].sum;
            near.count += bins[k].count;
        }
        factors[i] = near.sum > 0.0 ? std::clamp(mean * near.count / near.sum, 1.0 / most, most) : 1.0;
        if (before == bins.size())
            std::fill(factors.begin(), factors.begin() + static_cast<std::ptrdiff_t>(i), factors[i]);
        before = i;
    }
}

} // namespace

ZrSonarGain::ZrSonarGain(const ZrSonarGainSettings& settings)
    : m_settings(settings)
{
    if (!std::isfinite(m_settings.spreading))
        m_settings.spreading = 0.0;
    if (!std::isfinite(m_settings.absorption))
        m_settings.absorption = 0.0;
    m_settings.strength
        = std::isfinite(m_settings.strength) ? std::clamp(m_settings.strength, 0.0, 1.0) : 1.0;
}

/// The bin of the angle whose sine is altitude / range.
std::size_t ZrSonarGain::AngleOf(double sine)
{
    const double degrees = std::asin(std::clamp(sine, 0.0, 1.0)) * degPerRad;
    return std::min(static_cast<std::size_t>(degrees / anglePerBin), angles - 1);
}

void ZrSonarGain::Learn(zr::span<const u16> samples, eSonarSide side, double slantRange, double altitude)
{
    if (m_settings.mode != ZrSonarGainSettings::gainAuto || samples.empty() || !(slantRange > 0.0)
        || !std::isfinite(slantRange))
        return;
    static const std::vector<u8> levelOf = MakeLevels();
    static const std::vector<std::size_t> angleOf = [] {
        std::vector<std::size_t> table(sines + 1);
        for (std::size_t i = 0; i <= sines; ++i)
            table[i] = AngleOf(static_cast<double>(i) / sines);
        return table;
    }();
    const double step = slantRange / static_cast<double>(samples.size());
    constexpr double last = static_cast<double>(mostBins - 1);
    std::vector<Angles>& cells = m_sides[static_cast<std::size_t>(side)].cells;
    const bool known = altitude >= 0.0 && std::isfinite(altitude);
    const double start = known ? std::ceil(altitude / step - 0.5) : 0.0;
    if (!(start < static_cast<double>(samples.size())))
        return;
    for (auto i = static_cast<std::size_t>(start); i < samples.size(); ++i) {
        const double range = (static_cast<double>(i) + 0.5) * step;
        const auto bin = static_cast<std::size_t>(std::min(range / binLength, last));
        if (bin >= cells.size())
            cells.resize(bin + 1);
        const std::size_t angle
            = known ? angleOf[static_cast<std::size_t>(std::min(altitude / range, 1.0) * sines)] : angles;
        std::unique_ptr<Cell>& cell = cells[bin][angle];
        if (!cell)
            cell = std::make_unique<Cell>();
        Sum& level = (*cell)[levelOf[samples[i]]];
        level.sum += samples[i];
        level.count += 1.0;
    }
}

ZrSonarGain::Sum ZrSonarGain::WithoutShadows(const Cell& cell)
{
    Sum all;
    for (const Sum& level : cell)
        all.Add(level);
    // Every round without shadows raises the mean, and with it what counts as shadow.
    for (int round = 0; round < 4 && all.count > 0.0; ++round) {
        const double least = shadow * all.sum / all.count;
        all = Sum();
        for (const Sum& level : cell) {
            if (level.count > 0.0 && level.sum / level.count >= least)
                all.Add(level);
        }
    }
    return all;
}

void ZrSonarGain::PrepareSide(Side& side) const
{
    std::vector<AngleSums> sums(side.cells.size());
    Sum all;
    for (std::size_t r = 0; r < sums.size(); ++r) {
        for (std::size_t a = 0; a <= angles; ++a) {
            if (side.cells[r][a])
                sums[r][a] = WithoutShadows(*side.cells[r][a]);
            all.Add(sums[r][a]);
        }
    }
    side.ranges.assign(sums.size(), 1.0);
    side.bySine.clear();
    if (!(all.sum > 0.0))
        return;
    const double mean = all.sum / all.count;
    std::vector<double> byAngle(angles + 1, 1.0);
    std::vector<Total> ranges(sums.size());
    for (int round = 0; round < rounds; ++round) {
        std::vector<Total> turned(angles);
        for (std::size_t r = 0; r < sums.size(); ++r) {
            ranges[r] = Total();
            for (std::size_t a = 0; a <= angles; ++a) {
                ranges[r].count += sums[r][a].count;
                ranges[r].sum += sums[r][a].sum * byAngle[a];
            }
        }
        Fit(ranges, mean, smoothRanges, mostRangeGain, side.ranges);
        for (std::size_t r = 0; r < sums.size(); ++r) {
            for (std::size_t a = 0; a < angles; ++a) {
                turned[a].count += sums[r][a].count;
                turned[a].sum += sums[r][a].sum * side.ranges[r];
            }
        }
        // So weak is no seabed at any angle: where the altitude is too low, the water above it.
        for (std::size_t a = 0; a < angles; ++a) {
            if (turned[a].sum >= shadow * mean * turned[a].count)
                continue;
            turned[a] = Total();
            for (AngleSums& range : sums)
                range[a] = Sum();
        }
        byAngle.resize(angles);
        Fit(turned, mean, smoothAngles, mostAngleGain, byAngle);
        byAngle.push_back(1.0);
    }
    side.bySine.resize(sines + 1);
    for (std::size_t i = 0; i <= sines; ++i) {
        const double degrees = std::asin(static_cast<double>(i) / sines) * degPerRad;
        const double at = std::clamp(degrees / anglePerBin - 0.5, 0.0, static_cast<double>(angles - 1));
        const auto a = static_cast<std::size_t>(at);
        const double next = byAngle[std::min(a + 1, angles - 1)];
        const double factor = byAngle[a] + (next - byAngle[a]) * (at - static_cast<double>(a));
        side.bySine[i] = static_cast<float>(std::pow(factor, m_settings.strength));
    }
}

void ZrSonarGain::Prepare()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_tables.clear();
    for (Side& side : m_sides)
        PrepareSide(side);
}

double ZrSonarGain::LawFactor(double range, double slantRange) const
{
    const double r = std::max(range, nearest);
    const double decibels
        = m_settings.spreading * std::log10(r / slantRange) + 2.0 * m_settings.absorption * (r - slantRange);
    return std::pow(10.0, decibels / 20.0);
}

double ZrSonarGain::RangeFactor(eSonarSide side, double range, double slantRange) const
{
    const std::vector<double>& factors = m_sides[static_cast<std::size_t>(side)].ranges;
    double factor = 1.0;
    if (m_settings.mode == ZrSonarGainSettings::gainLaw) {
        factor = LawFactor(range, slantRange);
    } else if (m_settings.mode == ZrSonarGainSettings::gainAuto && !factors.empty()) {
        const double last = static_cast<double>(factors.size() - 1);
        const double at = std::clamp(range / binLength - 0.5, 0.0, last);
        const auto i = static_cast<std::size_t>(at);
        const double next = factors[std::min(i + 1, factors.size() - 1)];
        factor = factors[i] + (next - factors[i]) * (at - static_cast<double>(i));
    }
    return m_settings.strength == 1.0 ? factor : std::pow(factor, m_settings.strength);
}

double ZrSonarGain::Factor(eSonarSide side, double range, double slantRange, double altitude) const
{
    if (std::isnan(range) || !(slantRange > 0.0))
        return 1.0;
    const std::vector<float>& bySine = m_sides[static_cast<std::size_t>(side)].bySine;
    const double sine = altitude / range;
    const bool seabed = !bySine.empty() && sine >= 0.0 && sine <= 1.0;
    return RangeFactor(side, range, slantRange)
        * (seabed ? static_cast<double>(bySine[static_cast<std::size_t>(sine * sines)]) : 1.0);
}

/// The logarithms and powers of a line are worked out once for all pings of the same range.
std::shared_ptr<const ZrSonarGain::Table> ZrSonarGain::TableFor(
    eSonarSide side, double slantRange, std::size_t count) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const std::shared_ptr<const Table>& table : m_tables) {
        if (table->side == side && table->slantRange == slantRange && table->factors.size() == count)
            return table;
    }
    const auto table = std::make_shared<Table>();
    table->side = side;
    table->slantRange = slantRange;
    table->factors.resize(count);
    const double step = slantRange / static_cast<double>(count);
    for (std::size_t i = 0; i < count; ++i) {
        // Beyond what a float holds every amplitude saturates alike.
        const double factor = RangeFactor(side, (static_cast<double>(i) + 0.5) * step, slantRange);
        table->factors[i] = static_cast<float>(std::min(factor, 1e30));
    }
    if (m_tables.size() >= mostTables)
        m_tables.erase(m_tables.begin());
    m_tables.push_back(table);
    return table;
}

void ZrSonarGain::Apply(zr::span<u16> samples, eSonarSide side, double slantRange, double altitude) const
{
    if (m_settings.mode == ZrSonarGainSettings::gainNone || samples.empty() || !(slantRange > 0.0)
        || !std::isfinite(slantRange))
        return;
    const std::shared_ptr<const Table> table = TableFor(side, slantRange, samples.size());
    const std::vector<float>& bySine = m_sides[static_cast<std::size_t>(side)].bySine;
    const double step = slantRange / static_cast<double>(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        float value = static_cast<float>(samples[i]) * table->factors[i];
        const double sine = altitude / ((static_cast<double>(i) + 0.5) * step);
        if (!bySine.empty() && sine >= 0.0 && sine <= 1.0)
            value *= bySine[static_cast<std::size_t>(sine * sines)];
        samples[i] = static_cast<u16>(std::min(value, 65535.0F) + 0.5F);
    }
}
