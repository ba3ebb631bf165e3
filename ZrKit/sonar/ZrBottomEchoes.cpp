#include "ZrKit/sonar/ZrBottomEchoes.h"

#include <algorithm>
#include <cmath>

namespace {

/// Cells of a window, at least where samples are short enough.
constexpr double cellsOfWindow = 24.0;
constexpr std::size_t fewestCells = 8; ///< of a window, however short it is in metres
/// What an echo counts that only one side has, the other having none there …
constexpr double alone = 0.5;
/// … and the other being dead.
constexpr double otherDead = 0.8;
/// What an echo at least counts that is far from the recorded altitude.
constexpr double farFromRecorded = 0.5;
/// Amplitudes below this share of the mean are all alike: it keeps the logarithm from going deep.
constexpr double floorShare = 1.0 / 256.0;
/// Edges of a side that are looked at: the brightest, and a wreck has many behind the seabed.
constexpr std::size_t mostEdges = 40;
/// By how much the strength of an edge is above what is required when it surely is no noise.
constexpr double surely = 0.3;
constexpr float noEdge = -1.0F;

bool IsStronger(const ZrBottomEcho& a, const ZrBottomEcho& b)
{
    return a.strength != b.strength ? a.strength > b.strength : a.altitude < b.altitude;
}

} // namespace

const std::vector<ZrBottomEcho>& ZrBottomEchoes::Find(
    const Side& port, const Side& starboard, double recorded)
{
    FindEdges(port, m_edges[0]);
    FindEdges(starboard, m_edges[1]);
    Merge();
    if (std::isfinite(recorded) && recorded > 0.0) {
        const double within = std::max(m_settings.recordedWithin, m_settings.recordedShare * recorded);
        for (ZrBottomEcho& echo : m_echoes) {
            const double beyond = std::fabs(echo.altitude - recorded) - within;
            if (beyond > 0.0)
                echo.strength *= within > 0.0
                    ? std::max(farFromRecorded, 1.0 - (1.0 - farFromRecorded) * beyond / within)
                    : farFromRecorded;
        }
    }
    std::sort(m_echoes.begin(), m_echoes.end(), IsStronger);
    if (m_echoes.size() > Most)
        m_echoes.resize(Most);
    return m_echoes;
}

/// Takes the logarithms of what lies behind the pulse; false when there is too little.
bool ZrBottomEchoes::FillCells(const Side& side)
{
    const zr::span<const u16> samples = side.samples;
    if (samples.empty() || !std::isfinite(side.slantRange) || !(side.slantRange > 0.0))
        return false;
    const double length = side.slantRange / static_cast<double>(samples.size());
    const u16 loudest = *std::max_element(samples.begin(), samples.end());
    std::size_t first = 0;
    while (first < samples.size() && samples[first] == loudest)
        ++first;
    if (first == samples.size())
        return false;
    const double blanked = std::ceil(m_settings.blanking / length);
    if (!(blanked < static_cast<double>(samples.size())))
        return false;
    first = std::max(first, static_cast<std::size_t>(blanked));
    std::size_t last = samples.size();
    if (m_settings.farthest < side.slantRange)
        last = std::min(last, static_cast<std::size_t>((m_settings.farthest + m_settings.window) / length));

    const double perCell = std::floor(m_settings.window / cellsOfWindow / length);
    const std::size_t step = perCell < 1.0 ? 1 : static_cast<std::size_t>(std::min(perCell, 1.0e6));
    if (last < first || (last - first) / step < fewestCells)
        return false;
    m_cell = length * static_cast<double>(step);
    m_origin = length * static_cast<double>(first);
    const double reach = std::round(m_settings.window / m_cell);
    m_reach = std::max(fewestCells, static_cast<std::size_t>(reach));

    const std::size_t count = (last - first) / step;
    m_cells.resize(count);
    m_sums.resize(count + 1);
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        u64 cell = 0;
        for (std::size_t k = 0; k < step; ++k)
            cell += samples[first + i * step + k];
        m_cells[i] = static_cast<float>(cell) / static_cast<float>(step);
        sum += static_cast<double>(m_cells[i]);
    }
    if (!(sum > 0.0))
        return false;
    const auto floor = static_cast<float>(1.0 + sum / static_cast<double>(count) * floorShare);
    double logs = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        m_cells[i] = std::log(m_cells[i] + floor);
        m_sums[i] = logs;
        logs += static_cast<double>(m_cells[i]);
    }
    m_sums[count] = logs;
    return true;
}

double ZrBottomEchoes::MeanOf(std::size_t from, std::size_t to) const
{
    return (m_sums[to] - m_sums[from]) / static_cast<double>(to - from);
}

double ZrBottomEchoes::Median(std::size_t from, std::size_t to)
{
    m_sorted.assign(m_cells.begin() + static_cast<std::ptrdiff_t>(from),
        m_cells.begin() + static_cast<std::ptrdiff_t>(to));
    const auto middle = m_sorted.begin() + static_cast<std::ptrdiff_t>(m_sorted.size() / 2);
    std::nth_element(m_sorted.begin(), middle, m_sorted.end());
    return static_cast<double>(*middle);
}

/// How much brighter it gets at the beginning of each cell.
void ZrBottomEchoes::Scan()
{
    const std::size_t count = m_cells.size();
    const std::size_t least = std::max<std::size_t>(2, m_reach / 4); // in front of an edge
    const std::size_t most = m_reach / 2; // at least behind it
    m_scores.assign(count, noEdge);
    for (std::size_t i = least; i + most <= count; ++i) {
        const double before = MeanOf(i - std::min(i, m_reach), i);
        m_scores[i] = static_cast<float>(MeanOf(i, std::min(count, i + m_reach)) - before);
    }
}

/// The cell near \p edge from which on it is nearer to the level behind than to that in front: the split that
/// most cells agree with, none of them weighing more than another that is clearly on its side.
std::size_t ZrBottomEchoes::Place(std::size_t edge, double before, double after) const
{
    const std::size_t from = edge - std::min(edge, m_reach / 2);
    const std::size_t to = std::min(m_cells.size(), edge + m_reach / 2);
    const double middle = (before + after) / 2.0;
    const double half = (after - before) / 2.0;
    double sum = 0.0;
    double lowest = 0.0;
    std::size_t best = from;
    for (std::size_t i = from; i < to; ++i) {
        sum += std::clamp((static_cast<double>(m_cells[i]) - middle) / half, -1.0, 1.0);
        if (sum < lowest) {
            lowest = sum;
            best = i + 1;
        }
    }
    return best;
}

void ZrBottomEchoes::FindEdges(const Side& side, Edges& edges)
{
    edges.echoes.clear();
    edges.cell = 0.0;
    edges.alive = FillCells(side);
    if (!edges.alive)
        return;
    edges.cell = m_cell;
    Scan();
    const double required = std::log(m_settings.contrast);
    const std::size_t count = m_cells.size();
    m_found.clear();
    for (std::size_t n = 0; n < mostEdges; ++n) {
        const auto top = std::max_element(m_scores.begin(), m_scores.end());
        if (static_cast<double>(*top) < required / 2.0)
            break;
        const auto edge = static_cast<std::size_t>(top - m_scores.begin());
        const std::size_t from = edge - std::min(edge, m_reach);
        const std::size_t to = std::min(count, edge + m_reach);
        std::fill(m_scores.begin() + static_cast<std::ptrdiff_t>(from),
            m_scores.begin() + static_cast<std::ptrdiff_t>(to), noEdge);
        const double before = std::max(Median(from, edge), MeanOf(0, edge));
        const double after = Median(edge, to);
        if (after - before <= required)
            continue;
        m_found.push_back(
            {Place(edge, before, after), before, after, -std::expm1(required - (after - before))});
    }
    for (const Edge& edge : m_found) {
        const double altitude = m_origin + m_cell * static_cast<double>(edge.cell);
        if (altitude <= m_settings.farthest)
            edges.echoes.push_back({altitude, edge.strength, SeabedInFrontOf(edge)});
    }
}

/// How much speaks for seabed in front of an edge, 0 to 1: a nearer edge that is strong enough to be taken,
/// and as much brightness between the two as behind that one, over half of the way at least.
double ZrBottomEchoes::SeabedInFrontOf(const Edge& edge) const
{
    double most = 0.0;
    for (const Edge& nearer : m_found) {
        const double beyond = nearer.strength - m_settings.strength;
        const bool water = nearer.cell >= m_reach / 2; // enough to tell the level in front of it
        if (nearer.cell >= edge.cell || beyond <= 0.0 || !water)
            continue;
        const double level = MeanOf(nearer.cell, edge.cell);
        const double share = (level - nearer.before) / (nearer.after - nearer.before);
        most = std::max(
            most, nearer.strength * std::min(1.0, beyond / surely) * std::clamp(2.0 * share, 0.0, 1.0));
    }
    return most;
}

/// Makes one list of the edges of both sides; those close together are one.
void ZrBottomEchoes::Merge()
{
    m_echoes.clear();
    // A hair more than two, which may not come out exactly.
    const double within
        = std::max(m_settings.sidesWithin, 2.001 * std::max(m_edges[0].cell, m_edges[1].cell));
    for (const Half& port : m_edges[0].echoes) {
        for (const Half& starboard : m_edges[1].echoes) {
            if (std::fabs(port.altitude - starboard.altitude) > within)
                continue;
            ZrBottomEcho both;
            const double sum = port.strength + starboard.strength;
            both.altitude = (port.altitude * port.strength + starboard.altitude * starboard.strength) / sum;
            both.strength = (1.0 - (1.0 - port.strength) * (1.0 - starboard.strength))
                * (1.0 - std::max(port.doubt, starboard.doubt));
            m_echoes.push_back(both);
        }
    }
    for (int side = 0; side < 2; ++side) {
        const Edges& other = m_edges[1 - side];
        for (const Half& echo : m_edges[side].echoes) {
            const bool paired = std::any_of(other.echoes.begin(), other.echoes.end(),
                [&](const Half& twin) { return std::fabs(twin.altitude - echo.altitude) <= within; });
            if (!paired) {
                m_echoes.push_back(
                    {echo.altitude, echo.strength * (1.0 - echo.doubt) * (other.alive ? alone : otherDead)});
            }
        }
    }
}
