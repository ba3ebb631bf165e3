#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrBottomEcho.h"
#include "ZrKit/sonar/ZrBottomEchoes.h"
#include "ZrKit/sonar/ZrBottomTrackerSettings.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <limits>
#include <vector>

class IZrProgress;
class ZrSonarLog;

/// Finds the seabed right below the sonar, its first return, in every ping of a log.
///
/// \code
/// ZrBottomTracker tracker;
/// ZrBottomLine line;
/// const std::vector<double> altitudes = tracker.Track(log);
/// if (altitudes.size() == log.Pings().size()) // else it was cancelled
///     line.SetFound(altitudes);
/// \endcode
///
/// In each ping the edges are searched behind which both sides are brighter (`ZrBottomEchoes`); the recorded
/// altitude of the pose, where there is one, tells which of them to mistrust. Of all those the line is made
/// that is strong and steady (`ZrBottomPath`), so that neither a fish nor a wake draws it off, then short
/// gaps are bridged and the line smoothed with a median and a mean.
///
/// Samples are read ping by ping; besides the result and some hundred pings nothing is kept.
///
/// One thread at a time; `cancel` may be set from any thread. `Find` is for any number of threads.
class ZR_KIT_EXPORT ZrBottomTracker
{
public:
    IZrProgress* progress = nullptr; ///< told each whole percent of the pings; may be null
    std::atomic<bool> cancel{false}; ///< set to end `Track` at the next ping

    ZrBottomTracker()
        : ZrBottomTracker(ZrBottomTrackerSettings())
    {
    }

    explicit ZrBottomTracker(const ZrBottomTrackerSettings& settings);
    ZrBottomTracker(const ZrBottomTracker&) = delete;
    ZrBottomTracker& operator=(const ZrBottomTracker&) = delete;

    const ZrBottomTrackerSettings& Settings() const { return m_settings; } ///< as they are used

    /// Metres from the sonar to the seabed for every ping of \p log; NaN where nothing was found and no gap
    /// to bridge. Empty when `cancel` was set. Pings that cannot be read are pings without samples.
    std::vector<double> Track(ZrSonarLog& log);

    /// What of a log is tracked. A plain value.
    struct Part
    {
        std::size_t first = 0; ///< ping
        std::size_t end = std::numeric_limits<std::size_t>::max(); ///< the one behind the last
        std::array<bool, 2> sides{true, true}; ///< that are listened to, by `eSonarSide`
        /// Altitudes that are mistrusted less than others, metres, from `first` on; NaN, or none, where the
        /// recorded one is taken.
        std::vector<double> expected;
    };

    /// The same for a part alone, as if there were no others: one altitude for each of its pings.
    std::vector<double> Track(ZrSonarLog& log, const Part& part);

    /// How sure the last `Track` was of each ping, 0 to 1; 0 where it found nothing, also where a gap is
    /// bridged. The strength of the echo, less the further it lies off the smoothed line.
    const std::vector<double>& Confidences() const { return m_confidences; }

    /// The seabed in a single ping, for pings that are just being recorded: the strongest of its echoes; its
    /// altitude is NaN and its strength 0 when there is none. \p expected is the altitude that was found
    /// last or another sensor told, metres; NaN when there is none.
    static ZrBottomEcho Find(const ZrBottomEchoes::Side& port, const ZrBottomEchoes::Side& starboard,
        double expected, const ZrBottomTrackerSettings& settings = ZrBottomTrackerSettings());

private:
    bool Choose(ZrSonarLog& log, const Part& part, std::vector<ZrBottomEcho>& chosen);
    void Bridge(std::vector<double>& line) const;
    std::vector<double> Smooth(const std::vector<double>& line) const;

    ZrBottomTrackerSettings m_settings;
    std::vector<double> m_confidences;
};
