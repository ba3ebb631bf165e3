#include "ZrKit/planning/ZrSurveyOrder.h"

#include <cmath>

namespace {

using Indices = std::vector<std::size_t>;

/// The fewest steps from line to line that lead at least \p distance away, wherever they begin; the number of
/// lines when none do.
std::size_t StepsFor(double distance, const std::vector<double>& across)
{
    const std::size_t count = across.size();
    for (std::size_t steps = 1; steps < count; ++steps) {
        bool enough = true;
        for (std::size_t i = 0; enough && i + steps < count; ++i)
            enough = std::fabs(across[i + steps] - across[i]) >= distance;
        if (enough)
            return steps;
    }
    return count;
}

/// Appends \p count lines from \p first on, one of each half in turn. Steps between them are count / 2 or one
/// more or less.
void AppendBlock(std::size_t first, std::size_t count, bool farHalfFirst, Indices& order)
{
    const std::size_t half = farHalfFirst ? count / 2 : (count + 1) / 2;
    for (std::size_t i = 0; i < count - count / 2; ++i) {
        const std::size_t near = first + i;
        const std::size_t far = near + half;
        const bool hasNear = i < half;
        const bool hasFar = far < first + count;
        if (farHalfFirst && hasFar)
            order.push_back(far);
        if (hasNear)
            order.push_back(near);
        if (!farHalfFirst && hasFar)
            order.push_back(far);
    }
}

Indices Racetrack(const std::vector<double>& across, double turnRadius)
{
    Indices order;
    const std::size_t count = across.size();
    // The shorter one of the two steps in a block is one less than its half.
    const std::size_t half = StepsFor(2.0 * turnRadius, across) + 1;
    const std::size_t blocks = count / (2 * half);
    // A block that begins in its near half ends at its far edge and the next one must begin beyond its own
    // near half, and the other way round.
    bool farHalfFirst = false;
    for (std::size_t block = 0; block + 1 < blocks; ++block) {
        AppendBlock(block * 2 * half, 2 * half, farHalfFirst, order);
        farHalfFirst = !farHalfFirst;
    }
    AppendBlock(order.size(), count - order.size(), farHalfFirst, order);
    return order;
}

} // namespace

std::vector<std::size_t> ZrSurveyOrder::Of(
    ZrSurveySettings::eOrder order, const std::vector<double>& across, double turnRadius)
{
    const std::size_t count = across.size();
    if (order == ZrSurveySettings::Racetrack)
        return Racetrack(across, turnRadius);
    Indices indices;
    indices.reserve(count);
    const std::size_t step = order == ZrSurveySettings::Next ? 1 : 2;
    const std::size_t first = order == ZrSurveySettings::EvenThenOdd && count > 1 ? 1 : 0;
    for (std::size_t i = first; i < count; i += step)
        indices.push_back(i);
    if (order == ZrSurveySettings::EveryOther) {
        for (std::size_t i = count - count % 2; i >= 2; i -= 2)
            indices.push_back(i - 1);
    } else if (first == 1) {
        for (std::size_t i = 0; i < count; i += 2)
            indices.push_back(i);
    }
    return indices;
}
