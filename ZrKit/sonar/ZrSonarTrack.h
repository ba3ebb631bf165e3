#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/sonar/ZrSonarPings.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrKit/sonar/ZrSonarTrackSettings.h"

#include <cstddef>
#include <memory>
#include <vector>

/// The way of the sonar over the ground, ping by ping, in metres and degrees: where each line of the image
/// lies and how far the lines are apart.
///
/// \code
/// const ZrSonarTrack track(log.Pings(), {});
/// const ZrGeoPoint at = track.Locate(line, sideStarboard, 12.5); // 12.5 m to starboard
/// \endcode
///
/// Metres are those of a `ZrLocalFrame` around the middle of the track (`Frame`; a few wild positions do not
/// move it), so a track may be some tens of kilometres long. Pings without a known position, and those beyond
/// 89 degrees of latitude, are left out of distances; what hangs on their position, courses too, is NaN.
///
/// Averages, courses and speeds go over pings that are near in time. Times that are set back by more than a
/// second begin anew: nothing is averaged across. Making a track takes time in proportion to the pings,
/// however long the smoothing.
///
/// Of a long track only the latest stretches of some thousand pings that were asked for are in memory, some
/// megabytes; another one is made when it is, which takes milliseconds. Where averages reach over much more
/// than a stretch, or thousands of pings have one time, all of it is kept, 52 bytes for a ping.
///
/// Never changes once made: any number of threads.
class ZR_KIT_EXPORT ZrSonarTrack
{
public:
    ZrSonarTrack(ZrSonarPings pings, const ZrSonarTrackSettings& settings);

    std::size_t Count() const { return m_pings.size(); }

    const ZrLocalFrame& Frame() const { return m_frame; }

    ZrLocalPoint Point(std::size_t ping) const; ///< position in `Frame`

    ZrGeoPoint Position(std::size_t ping) const; ///< the same in degrees

    /// Direction of the bow, degrees from true north, 0 to 360; NaN when neither recorded nor moving.
    double Heading(std::size_t ping) const;

    /// Metres along the track from the first ping; never falls. A ping without position has that of the one
    /// before.
    double Distance(std::size_t ping) const;

    double Length() const { return m_length; } ///< metres

    /// Metres per second over ground around the ping; NaN where it is not known.
    double Speed(std::size_t ping) const;

    /// The place \p groundRange metres out to \p side, square to the heading at the ping. Not valid when
    /// position or heading is not known.
    ZrGeoPoint Locate(std::size_t ping, eSonarSide side, double groundRange) const;
    ZrLocalPoint LocateLocal(std::size_t ping, eSonarSide side, double groundRange) const; ///< likewise

private:
    struct Stretch;
    struct Start;
    struct Cache;

    bool MakeStarts(std::size_t most);
    std::shared_ptr<const Stretch> StretchOf(std::size_t ping) const;
    bool Reach(Stretch& stretch, std::size_t most) const;
    void Place(Stretch& stretch) const;
    void Turn(Stretch& stretch) const;

    ZrSonarPings m_pings;
    ZrSonarTrackSettings m_settings;
    ZrLocalFrame m_frame;
    std::size_t m_stretch = 0; ///< pings of one
    double m_length = 0.0;
    std::shared_ptr<std::vector<Start>> m_starts; ///< of all stretches
    std::shared_ptr<Cache> m_cache;
};
