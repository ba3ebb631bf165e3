#pragma once

#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrUtil/ZrTypes.h"

#include <cstddef>
#include <vector>

class ZrSonarGain;
class ZrSonarGeo;
class ZrSonarLog;

/// The samples of one side of a line as amplitudes by ground range, the latest pings kept at hand.
///
/// One thread; log, geometry and gain must outlive the object.
class ZrMosaicRows
{
public:
    static constexpr std::size_t Kept = 128; ///< pings at hand

    ZrMosaicRows(ZrSonarLog& log, const ZrSonarGeo& geo, const ZrSonarGain& gain, eSonarSide side);

    /// The amplitude after the gain, 0 to 65535, at \p range metres of ground range; NaN beyond what the ping
    /// recorded, or when it cannot be read. \p width metres are averaged where that is more than a sample,
    /// else it lies between the samples; a width of 0 takes the nearest sample as it is.
    double At(std::size_t ping, double range, double width);

private:
    struct Row
    {
        std::size_t ping = static_cast<std::size_t>(-1);
        double altitude = 0.0;
        double perMetre = 0.0; ///< samples for a metre of slant range
        std::vector<double> sums; ///< of the samples before each one
    };

    const Row& Get(std::size_t ping);
    void Load(std::size_t ping, Row& row);

    ZrSonarLog& m_log;
    const ZrSonarGeo& m_geo;
    const ZrSonarGain& m_gain;
    eSonarSide m_side;
    std::vector<Row> m_rows;
    std::vector<u16> m_samples;
};
