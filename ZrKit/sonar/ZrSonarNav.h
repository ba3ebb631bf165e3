#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/sonar/ZrSonarPose.h"

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
/// `At` may be called from several threads once `Prepare` is done.
class ZR_KIT_EXPORT ZrSonarNav
{
public:
    /// \p time is seconds since the epoch; records without a finite time are dropped.
    void Add(double time, const ZrNavRecord& record);

    /// Sorts what was added; before the first `At` and after every further `Add`.
    void Prepare();

    /// The pose at \p time; all NaN when \p time is not finite or nothing is known.
    ZrSonarPose At(double time) const;

private:
    using Row = std::vector<std::pair<double, double>>; ///< time and value

    static double Value(const Row& row, double time);
    static double Angle(const Row& row, double time);

    struct Fix
    {
        double time;
        ZrGeoPoint at;
    };

    std::vector<Fix> m_fixes;
    Row m_heading, m_pitch, m_roll, m_depth, m_altitude;
};
