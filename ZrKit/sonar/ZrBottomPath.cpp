#include "ZrKit/sonar/ZrBottomPath.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Altitudes that are carried on past a ping.
constexpr std::size_t mostCarried = 16;

bool IsBetter(double a, double b)
{
    return a > b;
}

} // namespace

ZrBottomPath::ZrBottomPath(const ZrBottomTrackerSettings& settings)
    : m_step(settings.step)
    , m_worth(settings.strength)
    // What a line can gain at most by leaving the seabed for that many pings, and not coming back.
    , m_jump((1.0 - settings.strength) * settings.falseEcho)
{
}

/// Against going on from \p from at \p altitude.
double ZrBottomPath::Cost(const State& from, double altitude) const
{
    if (std::isnan(from.echo.altitude))
        return 0.0;
    const double steps = (altitude - from.echo.altitude) / (m_step * (1.0 + from.missed));
    return std::min(m_jump, steps * steps);
}

/// The best altitudes of the ping before once more, and nothing.
void ZrBottomPath::AddCarried(const Layer& before, Layer& layer) const
{
    const std::size_t own = layer.size();
    State nothing;
    nothing.value = before[0].value - m_jump;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const State& state = before[i];
        const double value = state.value - (std::isnan(state.echo.altitude) ? 0.0 : m_jump);
        if (value >= nothing.value) {
            nothing.value = value;
            nothing.from = i;
        }
        if (std::isnan(state.echo.altitude))
            continue;
        State carried = state;
        carried.from = i;
        ++carried.missed;
        layer.push_back(carried);
    }
    const auto first = layer.begin() + static_cast<std::ptrdiff_t>(own);
    std::sort(first, layer.end(), [](const State& a, const State& b) { return IsBetter(a.value, b.value); });
    layer.resize(std::min(layer.size(), own + mostCarried));
    layer.push_back(nothing);
}

void ZrBottomPath::Add(const std::vector<ZrBottomEcho>& echoes)
{
    static const Layer beginning(1);
    const Layer& before = !m_layers.empty() ? m_layers.back() : m_last.empty() ? beginning : m_last;
    Layer layer;
    for (const ZrBottomEcho& echo : echoes) {
        State state;
        state.echo = echo;
        for (std::size_t i = 0; i < before.size(); ++i) {
            const double value = before[i].value - Cost(before[i], echo.altitude);
            if (i == 0 || value > state.value) {
                state.value = value;
                state.from = i;
            }
        }
        state.value += echo.strength - m_worth;
        layer.push_back(state);
    }
    AddCarried(before, layer);
    // Kept near 0, so that the values of millions of pings stay exact.
    double best = layer.front().value;
    for (const State& state : layer)
        best = std::max(best, state.value);
    for (State& state : layer)
        state.value -= best;
    m_layers.push_back(std::move(layer));
    if (m_layers.size() >= 2 * LookAhead)
        Decide(LookAhead);
}

/// Decides about the first \p pings of those in `m_layers` along the line that is best now.
void ZrBottomPath::Decide(std::size_t pings)
{
    if (m_layers.empty())
        return;
    const Layer& end = m_layers.back();
    const auto best = std::max_element(
        end.begin(), end.end(), [](const State& a, const State& b) { return a.value < b.value; });
    auto at = static_cast<std::size_t>(best - end.begin());
    const std::size_t first = m_decided.size();
    m_decided.resize(first + pings);
    for (std::size_t i = m_layers.size(); i-- > 0;) {
        const State& state = m_layers[i][at];
        if (i < pings && state.missed == 0 && !std::isnan(state.echo.altitude))
            m_decided[first + i] = state.echo;
        at = state.from;
    }
    m_last = std::move(m_layers[pings - 1]);
    m_layers.erase(m_layers.begin(), m_layers.begin() + static_cast<std::ptrdiff_t>(pings));
}

void ZrBottomPath::Finish()
{
    Decide(m_layers.size());
    m_last.clear();
}

std::vector<ZrBottomEcho> ZrBottomPath::Take()
{
    return std::exchange(m_decided, {});
}
