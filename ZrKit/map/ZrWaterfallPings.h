#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallLine.h"
#include "ZrKit/sonar/ZrSonarContrast.h"
#include "ZrKit/sonar/ZrSonarGain.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

class IZrProgress;
class ZrSonarGeo;
class ZrSonarLog;

/// Makes the lines of a waterfall from the pings of a log: evened out in range, with one contrast for all.
///
/// \code
/// ZrWaterfallPings pings(log, geo);
/// if (pings.Learn()) // once
///     pings.Make(17, line);
/// \endcode
///
/// The gain is learnt from, and the contrast measured on, at most `MostLearnt` pings evenly spread over the
/// log, so that neither a long log takes long nor scrolling changes what was seen already. Bottom altitudes
/// are those of the geometry that was set last.
///
/// One thread at a time, but for `cancel`, `SetGeo` and `SetBlanking`, which are for any: the next line that
/// is made follows them.
class ZR_KIT_EXPORT ZrWaterfallPings
{
public:
    static constexpr std::size_t MostLearnt = 400;

    IZrProgress* progress = nullptr; ///< of `Learn`; may be null
    std::atomic<bool> cancel{false}; ///< ends `Learn` at the next ping

    /// The log must stay.
    ZrWaterfallPings(ZrSonarLog& log, std::shared_ptr<const ZrSonarGeo> geo);

    /// Another bottom line. Gain and contrast stay as they were learnt, lest the picture flickers with every
    /// correction.
    void SetGeo(std::shared_ptr<const ZrSonarGeo> geo);

    /// What in front of the seabed is dark, a `ZrSonarBlanking::eKind`; nothing at first.
    void SetBlanking(int kind) { m_blanking = kind; }

    int Blanking() const { return m_blanking; }

    /// Makes gain and contrast. False when `cancel` was set.
    bool Learn();

    /// Replaces \p line by ping \p ping; a side that cannot be read shows nothing.
    void Make(std::size_t ping, ZrWaterfallLine& line);

    std::size_t Count() const; ///< of pings

private:
    bool Report(std::size_t done, std::size_t all);
    std::shared_ptr<const ZrSonarGeo> Geo() const;

    ZrSonarLog& m_log;
    mutable std::mutex m_mutex; ///< guards the next
    std::shared_ptr<const ZrSonarGeo> m_geo;
    std::atomic<int> m_blanking{0};
    ZrSonarGain m_gain;
    ZrSonarContrast m_contrast;
    std::vector<u16> m_samples;
};
