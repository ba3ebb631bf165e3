#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <cstdint>
#include <random>

/// Random numbers that are the same on every system for the same seed.
///
/// The bits are those of `std::mt19937_64`, which the standard defines to the last one. The distributions of
/// the standard library are not defined so, hence these: uniform from the upper 53 bits, normal by the
/// transform of Box and Muller, exponential by the logarithm.
///
/// A plain value, one thread at a time; `Mix` and `At` are pure.
class ZR_KIT_EXPORT ZrSimRandom
{
public:
    explicit ZrSimRandom(u64 seed)
        : m_engine(seed)
    {
    }

    double Uniform(); ///< above 0, below 1
    double Normal(); ///< mean 0, standard deviation 1
    double Exponential(); ///< mean 1

    /// 64 bits that depend on every bit of \p value: seeds for streams that have nothing to do with each
    /// other.
    static u64 Mix(u64 value);

    /// A number from 0 (included) to 1 (excluded) that belongs to a point of a lattice.
    static double At(u64 seed, std::int64_t column, std::int64_t row);

private:
    std::mt19937_64 m_engine;
    double m_spare = 0.0; ///< the transform gives two numbers at once
    bool m_hasSpare = false;
};
