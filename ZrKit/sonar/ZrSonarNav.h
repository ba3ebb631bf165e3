#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/sonar/ZrSonarPose.h"

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

/// The navigation of a log as a function of time.
///
/// \code
/// ZrSonarNav nav;
/// nav.Add(time, record); // every record of the log, in any order
/// nav.Prepare();
/// const ZrSonarPose pose = nav.At(pingTime);
/// \endcode
///
/// Values between two records are interpolated, angles the shorter way round; before the first and after the
/// last one the nearest is held. Each value has its own row of records: one that is missing, not finite, out
/// of range, or a position that is repeated (`flags` bit 0) or exactly 0, 0 (receivers say so before their
/// first fix), is left out and bridged. Of several values at one time the last one given counts.
///
/// In range are headings and rolls within ±360 and ±180 degrees, pitches within ±90 degrees, depths from
/// −1,000 to 12,000 m, and altitudes above 0 up to 12,000 m: an echo sounder without an echo says 0 or less.
///
/// `At` may be called from several threads once `Prepare` is done.
class ZR_KIT_EXPORT ZrSonarNav
{
public:
    /// Where the last search ended: it makes the next one short when times follow each other. Begins empty;
    /// one for each thread, and for one `ZrSonarNav` only.
    struct Place
    {
        std::array<std::size_t, 6> behind{};
    };

    /// \p time is seconds since the epoch; records without a finite time are dropped.
    void Add(double time, const ZrNavRecord& record);

    /// Sorts what was added; before the first `At` and after every further `Add`.
    void Prepare();

    /// The pose at \p time; all NaN when \p time is not finite or nothing is known.
    ZrSonarPose At(double time) const;

    /// The same for many times that follow each other, whatever \p place says.
    ZrSonarPose At(double time, Place& place) const;

private:
    using Row = std::vector<std::pair<double, double>>; ///< time and value

    static double Value(const Row& row, double time, bool isAngle, std::size_t& behind);
    void Locate(double time, std::size_t& behind, ZrSonarPose& pose) const;

    struct Fix
    {
        double time;
        ZrGeoPoint at;
    };

    std::vector<Fix> m_fixes;
    Row m_heading, m_pitch, m_roll, m_depth, m_altitude;
};
