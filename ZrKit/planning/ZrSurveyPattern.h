#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrSurveyPatternSettings.h"
#include "ZrKit/planning/ZrSurveyPlan.h"

#include <QString>

#include <atomic>

/// Plans parallel survey lines over an area.
///
/// \code
/// ZrSurveyPatternSettings settings;
/// settings.lineSpacing = 40.0;
/// settings.turnRadius = 15.0;
/// ZrSurveyPattern pattern;
/// if (!pattern.Make(area, settings))
///     return pattern.Error();
/// pattern.Plan().AppendTo(route);
/// \endcode
///
/// As many lines as it takes are spread over the width of the area at exactly the spacing asked for, with
/// equal shares of what remains left outside of the first and the last one: the edges lie within half a
/// spacing (the larger one of two) of them. A width that is 2 cm or less (or a thousandth of the spacing)
/// above a whole number of spacings takes no further line. A line falls into pieces where the area is not
/// convex; the pieces are run one behind the other, straight on. Pieces that the overshoot joins become one.
///
/// Where lines end by `Cover` follows from the parts of the edge within the strip that a line is to cover,
/// and from the stretches of the line within the area; by `Edge`, and with a margin, from the crossings of
/// line and edge (even-odd rule) less the stretches that are closer to an edge than the margin. No polygon is
/// ever grown or shrunk.
///
/// With a turn radius, the way between lines is given corners that a route rounds, see `ZrSurveyTurn`; they
/// lie outside the lines, up to three radii and, behind lines of unequal lengths, the difference of these.
/// Lines themselves are straight over their whole length.
///
/// Geometry is that of a `ZrLocalFrame` around the area, see there for its accuracy. The time is proportional
/// to the lines times the corners. Any thread, one object by one thread at a time.
class ZR_KIT_EXPORT ZrSurveyPattern
{
public:
    static constexpr int maxLines = 10000; ///< in one direction, pieces counted one by one; more are refused

    /// Ends the work at the next line, once it is true: `Make` fails then. May be null.
    const std::atomic<bool>* cancel = nullptr;

    /// Plans anew. False, with the reason in `Error` and an empty plan, when the settings or the area do not
    /// allow it, when more than `maxLines` lines would be needed, or when margin and smallest length leave
    /// none.
    bool Make(const ZrArea& area, const ZrSurveyPatternSettings& settings);

    const ZrSurveyPlan& Plan() const { return m_plan; }

    /// Why the last `Make` failed, a sentence; empty when it did not.
    QString Error() const { return m_error; }

private:
    QString Planned(const ZrArea& area, const ZrSurveyPatternSettings& settings);

    ZrSurveyPlan m_plan;
    QString m_error;
};
