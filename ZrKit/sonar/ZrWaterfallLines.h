#pragma once

#include "ZrUtil/ZrTypes.h"

#include <array>
#include <cstddef>
#include <vector>

class ZrSonarGain;
class ZrSonarLog;
class ZrWaterfallMap;

/// The amplitudes of the rows of a side-scan image, before contrast and colour. Of `ZrWaterfall`.
///
/// Reads the pings that a row needs and keeps the latest two, so rows are best asked for in order.
class ZrWaterfallLines
{
public:
    /// All must stay.
    ZrWaterfallLines(ZrSonarLog& log, const ZrWaterfallMap& map, const ZrSonarGain& gain);

    /// Makes row \p y of the image.
    void Make(int y);

    const std::vector<u16>& Amplitudes() const { return m_amplitudes; } ///< of the columns, 0 where unknown

    const std::vector<u8>& Known() const { return m_known; } ///< of the columns, 1 where there was an echo

private:
    struct Line
    {
        std::size_t ping = static_cast<std::size_t>(-1);
        std::vector<u16> amplitudes;
        int knownLeft = 0; ///< columns from the middle outwards
        int knownRight = 0;
    };

    const Line& At(std::size_t ping);
    void Add(const Line& line, float share);

    ZrSonarLog& m_log;
    const ZrWaterfallMap& m_map;
    const ZrSonarGain& m_gain;
    std::array<Line, 2> m_lines;
    std::size_t m_older = 0;
    std::vector<u16> m_samples;
    std::vector<u16> m_side;
    std::vector<float> m_sums;
    std::vector<float> m_shares;
    std::vector<u16> m_amplitudes;
    std::vector<u8> m_known;
};
