#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallLine.h"
#include "ZrKit/map/ZrWaterfallRing.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/sonar/ZrSonarContrast.h"
#include "ZrKit/sonar/ZrSonarGain.h"

#include <deque>
#include <memory>
#include <vector>

/// Makes the lines of a waterfall from pings as they come: both sides of a ping in one line, the fall of the
/// echo with range evened out, and the contrast chosen by what was seen so far.
///
/// \code
/// m_layer.SetRing(&m_waterfall.Ring());
/// m_waterfall.Add(ping, time, altitude);
/// \endcode
///
/// Gain and contrast are learnt on the way, more and more rarely: lines that are there keep theirs. A ping
/// of one side alone makes a line when the next ping comes. Pings without samples, or whose range is not
/// finite and above 0, are left out. One thread at a time.
class ZR_KIT_EXPORT ZrLiveWaterfall
{
public:
    /// Room for \p lines of \p width samples for each side.
    ZrLiveWaterfall(int lines, int width);

    void Add(const ZrPingRecord& ping, double time, double altitude);
    void Clear(); ///< forgets the lines, and what was learnt from them

    const ZrWaterfallRing& Ring() const { return m_ring; }

private:
    struct Raw
    {
        eSonarSide side = sidePort;
        double range = 0.0;
        double altitude = 0.0;
        std::vector<u16> samples;
    };

    void Finish();
    void Learn(const Raw& raw);

    ZrWaterfallRing m_ring;
    ZrWaterfallLine m_line; ///< begun, when `m_hasSide` says so
    u32 m_number = 0; ///< of its ping
    bool m_hasSide[2] = {false, false};
    std::unique_ptr<ZrSonarGain> m_gain;
    ZrSonarContrast m_contrast;
    std::deque<Raw> m_recent; ///< that the contrast is measured from
    u64 m_learnt = 0; ///< sides
};
