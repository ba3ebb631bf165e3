#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallLine.h"
#include "ZrKit/map/ZrWaterfallRing.h"
#include "ZrKit/records/ZrPingRecord.h"
#include "ZrKit/sonar/ZrBottomEchoes.h"
#include "ZrKit/sonar/ZrSonarContrast.h"
#include "ZrKit/sonar/ZrSonarGain.h"

#include <array>
#include <deque>
#include <memory>
#include <vector>

/// Makes the lines of a waterfall from pings as they come: both sides of a ping in one line, the fall of the
/// echo with range evened out, and the contrast chosen by what was seen lately.
///
/// \code
/// m_layer.SetRing(&m_waterfall.Ring());
/// m_waterfall.Add(ping, time, altitude);
/// \endcode
///
/// Gain and contrast are learnt on the way. Each time the number of lines has doubled all lines that there
/// are are made anew; in between a line keeps its looks, and the contrast goes to that of the last
/// `ContrastLines` in small steps, so that the picture neither flickers nor has bands. The contrast is that
/// of the sea floor: what lies nearer than the altitude, or than `PulseShare` of the range where that is not
/// known, is no part of it. The outgoing pulse, the nearest `PulseShare` of the range within half of the
/// altitude, is no brighter than `PulseMost`.
///
/// The altitude of a line is that of the first return of the sea floor in its samples, the median of the last
/// `BottomLines` when most of them had one; without any of late the one that was told.
///
/// A ping of one side alone makes a line when the next ping comes. Pings without samples, or whose range is
/// not finite and above 0, are left out. One thread at a time.
class ZR_KIT_EXPORT ZrLiveWaterfall
{
public:
    static constexpr i64 ContrastLines = 64;
    static constexpr std::size_t BottomLines = 5;
    static constexpr double PulseShare = 0.02;
    static constexpr u8 PulseMost = 56; ///< of 255

    /// Room for \p lines of \p width samples for each side.
    ZrLiveWaterfall(int lines, int width);

    void Add(const ZrPingRecord& ping, double time, double altitude);
    void Clear(); ///< forgets the lines, and what was learnt from them

    const ZrWaterfallRing& Ring() const { return m_ring; }

private:
    /// A ping as it came.
    struct Raw
    {
        double time = 0.0;
        double altitude = 0.0;
        std::array<double, 2> range{};
        std::array<std::vector<u16>, 2> samples; ///< empty for a side that there is not
    };

    void Finish();
    void FindBottom(Raw& raw);
    void Learn();
    void Make(const Raw& raw, ZrWaterfallLine& line) const;
    void MeasureContrast(bool isAtOnce);
    void MakeAll();

    ZrWaterfallRing m_ring;
    Raw m_begun;
    u32 m_number = 0; ///< of the ping that was begun
    std::unique_ptr<ZrSonarGain> m_gain;
    ZrSonarContrast m_contrast;
    ZrBottomEchoes m_echoes;
    std::deque<double> m_found; ///< altitudes of the last echoes, metres; NaN for lines without one
    double m_bottom = 0.0; ///< their median; NaN without any of late
    int m_missed = 0; ///< lines since then
    std::deque<Raw> m_lines; ///< those of the ring, and the one that comes next
    i64 m_learnt = 0; ///< lines
};
