#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/sonar/ZrSonarPing.h"
#include "ZrKit/sonar/ZrSonarSide.h"
#include "ZrKit/sonar/ZrSonarTrackSettings.h"

#include <cstddef>
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
/// Never changes once made: any number of threads.
class ZR_KIT_EXPORT ZrSonarTrack
{
public:
    ZrSonarTrack(const std::vector<ZrSonarPing>& pings, const ZrSonarTrackSettings& settings);

    std::size_t Count() const { return m_points.size(); }

    const ZrLocalFrame& Frame() const { return m_frame; }

    ZrLocalPoint Point(std::size_t ping) const { return m_points[ping]; } ///< position in `Frame`

    ZrGeoPoint Position(std::size_t ping) const; ///< the same in degrees

    /// Direction of the bow, degrees from true north, 0 to 360; NaN when neither recorded nor moving.
    double Heading(std::size_t ping) const { return m_headings[ping]; }

    /// Metres along the track from the first ping; never falls. A ping without position has that of the one
    /// before.
    double Distance(std::size_t ping) const { return m_distances[ping]; }

    double Length() const { return m_distances.empty() ? 0.0 : m_distances.back(); } ///< metres

    /// Metres per second over ground around the ping; NaN where it is not known.
    double Speed(std::size_t ping) const;

    /// The place \p groundRange metres out to \p side, square to the heading at the ping. Not valid when
    /// position or heading is not known.
    ZrGeoPoint Locate(std::size_t ping, eSonarSide side, double groundRange) const;
    ZrLocalPoint LocateLocal(std::size_t ping, eSonarSide side, double groundRange) const; ///< likewise

private:
    void FillHeadings(const std::vector<ZrSonarPing>& pings, const ZrSonarTrackSettings& settings);
    void FillDistances();
    double Course(std::size_t ping) const;
    void Around(std::size_t ping, double seconds, std::size_t& first, std::size_t& last) const;

    ZrLocalFrame m_frame;
    std::vector<double> m_clock; ///< seconds from the first ping; never falls, and leaps where times fall
    std::vector<std::size_t> m_known; ///< the pings with a known position
    std::vector<ZrLocalPoint> m_points;
    std::vector<double> m_convergences; ///< from true north to the north of the frame, degrees
    std::vector<double> m_headings;
    std::vector<double> m_distances;
};
