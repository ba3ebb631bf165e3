#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/planning/ZrSurveyCorridorSettings.h"
#include "ZrKit/planning/ZrSurveyPlan.h"

#include <QString>

#include <vector>

/// Plans survey lines along a guide: a pipeline, a cable, a channel.
///
/// \code
/// ZrSurveyCorridorSettings settings;
/// settings.lineSpacing = 25.0;
/// settings.linesLeft = settings.linesRight = 2;
/// ZrSurveyCorridor corridor;
/// if (!corridor.Make(guide, settings))
///     return corridor.Error();
/// corridor.Plan().AppendTo(route);
/// \endcode
///
/// Each line has straight legs parallel to those of the guide, at a whole number of spacings, which are
/// joined where they meet (mitred joints), and ends abeam of the ends of the guide. Where the inner side of a
/// bend leaves no room for a leg, it is left out and the legs before and behind it are joined. Bends of more
/// than 150 degrees are refused: their joint would lie far away.
///
/// What lies beside the guide is within half a spacing of a line, and at a bend by the angle θ within half a
/// spacing / cos(θ/2).
///
/// A guide may cross itself. Turn radii at the bends: a bend whose arc does not fit into its legs is left
/// sharp, with a finding.
///
/// Geometry is that of a `ZrLocalFrame` around the guide, see there for its accuracy. Any thread, one object
/// by one thread at a time.
class ZR_KIT_EXPORT ZrSurveyCorridor
{
public:
    static constexpr int maxLines = 1000; ///< on each side
    static constexpr int maxPoints = 10000; ///< of the guide
    static constexpr int maxWaypoints = 1000000; ///< of the lines, turns excepted

    /// Plans anew. False, with the reason in `Error` and an empty plan, when the settings or the guide do not
    /// allow it. The guide has two different points or more, within 89 degrees of latitude and 100 km and 15
    /// degrees of longitude of their middle; points that repeat the one before them are ignored.
    bool Make(const std::vector<ZrGeoPoint>& guide, const ZrSurveyCorridorSettings& settings);

    const ZrSurveyPlan& Plan() const { return m_plan; }

    /// Why the last `Make` failed, a sentence; empty when it did not.
    QString Error() const { return m_error; }

private:
    QString Planned(const std::vector<ZrGeoPoint>& guide, const ZrSurveyCorridorSettings& settings);

    ZrSurveyPlan m_plan;
    QString m_error;
};
