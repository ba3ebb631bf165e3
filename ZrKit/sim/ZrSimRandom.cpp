#include "ZrKit/sim/ZrSimRandom.h"

#include <cmath>

namespace {

constexpr double twoPi = 2.0 * 3.14159265358979323846;
constexpr int unusedBits = 11; ///< of 64, where 53 make a double
constexpr double unit = 1.0 / 9007199254740992.0; ///< 2^-53

} // namespace

double ZrSimRandom::Uniform()
{
    // Half a step keeps clear of 0, whose logarithm is not finite, and of 1.
    return (static_cast<double>(m_engine() >> unusedBits) + 0.5) * unit;
}

double ZrSimRandom::Normal()
{
    if (m_hasSpare) {
        m_hasSpare = false;
        return m_spare;
    }
    const double size = std::sqrt(-2.0 * std::log(Uniform()));
    const double angle = twoPi * Uniform();
    m_spare = size * std::sin(angle);
    m_hasSpare = true;
    return size * std::cos(angle);
}

double ZrSimRandom::Exponential()
{
    return -std::log(Uniform());
}

// The finaliser of the generator "splitmix64".
u64 ZrSimRandom::Mix(u64 value)
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

double ZrSimRandom::At(u64 seed, std::int64_t column, std::int64_t row)
{
    // Two odd factors part the columns from the rows; `Mix` does the rest.
    const u64 place
        = static_cast<u64>(column) * 0xD1342543DE82EF95U + static_cast<u64>(row) * 0xAEF17502108EF2D9U;
    return static_cast<double>(Mix(seed ^ place) >> unusedBits) * unit;
}
