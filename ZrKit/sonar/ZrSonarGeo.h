#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/sonar/ZrSonarPings.h"
#include "ZrKit/sonar/ZrSonarSpot.h"

#include <cstddef>
#include <memory>
#include <vector>

class ZrBottomLine;
class ZrSonarTrack;

/// Where on the earth each sample of a side-scan line lies, and which sample lies at a position.
///
/// \code
/// const ZrSonarGeo geo(log.Pings(), track, bottom);
/// const ZrGeoPoint at = geo.Position({line, sideStarboard, 412.0});
/// ZrSonarSpot spot;
/// if (geo.Find(at, spot)) { … }
/// \endcode
///
/// Sample s has the slant range (s + 0.5) sample lengths; over a flat seabed at the altitude of the bottom
/// line its ground range is √(slant² − altitude²), square to the heading of the track at that ping. Roll,
/// pitch, refraction and the slope of the seabed are not taken into account.
///
/// Where the bottom line knows nothing, altitudes are bridged between the known neighbours and held before
/// the first and behind the last; where it knows nothing at all they count as 0, as in
/// `ZrSlantRange::Correct`, so that ground range is slant range.
///
/// Metres and degrees. The track must outlive the object; it never changes: any number of threads.
class ZR_KIT_EXPORT ZrSonarGeo
{
public:
    ZrSonarGeo(ZrSonarPings pings, const ZrSonarTrack& track, const ZrBottomLine& bottom);

    const ZrSonarTrack& Track() const { return m_track; }

    const ZrSonarPings& Pings() const { return m_pings; }

    /// Whether any altitude is known.
    bool KnowsAltitudes() const { return m_knowsAltitudes; }

    double Altitude(std::size_t ping) const { return (*m_altitudes)[ping]; }

    /// Whether the spot lies on a sample that was recorded.
    bool Holds(const ZrSonarSpot& spot) const;

    /// Slant range; NaN when the ping does not exist or that side recorded nothing.
    double SlantRange(const ZrSonarSpot& spot) const;

    /// Ground range; 0 inside the water column, NaN as for the slant range.
    double GroundRange(const ZrSonarSpot& spot) const;

    /// Whether the spot lies before the first echo of the seabed.
    bool IsInWater(const ZrSonarSpot& spot) const;

    /// The sample at a ground range; NaN when that side recorded nothing.
    double Sample(std::size_t ping, eSonarSide side, double groundRange) const;

    /// The position of the spot, beneath the sonar for one in the water column. Not valid when the ranges are
    /// NaN or the track knows neither position nor heading there.
    ZrGeoPoint Position(const ZrSonarSpot& spot) const;

    /// The spot nearest to a position, over all pings. False, and \p spot untouched, when \p at is not valid
    /// or no ping is placed. \p away, if not null, gets the metres between \p at and the spot: a line that
    /// saw the position has it within half the distance between two pings.
    ///
    /// Looks at every ping.
    bool Find(ZrGeoPoint at, ZrSonarSpot& spot, double* away = nullptr) const;

private:
    bool Channel(std::size_t ping, eSonarSide side, ZrSonarChannel& channel) const;

    ZrSonarPings m_pings;
    const ZrSonarTrack& m_track;
    std::shared_ptr<const std::vector<double>> m_altitudes; ///< those of the bottom line where it has no gap
    bool m_knowsAltitudes = false;
};
