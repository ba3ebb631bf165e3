#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrLocalFrame.h"
#include "ZrKit/planning/ZrSurveyLane.h"
#include "ZrKit/planning/ZrSurveyPlan.h"
#include "ZrKit/planning/ZrSurveyPose.h"

#include <optional>
#include <vector>

/// Makes a plan of lanes: chooses their order and directions, numbers and names them, joins them by turns.
///
/// Used by the planners of patterns, which validate the settings before.
class ZR_KIT_EXPORT ZrSurveyRouter
{
public:
    ZrSurveyRouter(const ZrLocalFrame& frame, const ZrSurveySettings& settings);

    /// Runs lanes, from left to right, none without pieces, beginning at a corner.
    void Run(std::vector<ZrSurveyLane> lanes, ZrSurveySettings::eEntry entry, bool cross);

    /// Runs lanes, beginning at the corner nearest to where the last line ended.
    void RunFromNearest(const std::vector<ZrSurveyLane>& lanes, bool cross);

    const ZrSurveyPlan& Plan() const { return m_plan; }

private:
    void RunPiece(const std::vector<ZrLocalPoint>& points, ZrSurveyLine line);
    void AddTurn(const ZrSurveyPose& to, std::size_t behind);
    void AddWaypoint(
        ZrLocalPoint at, ZrSurveyWaypoint::eRole role, std::size_t line, double radius, const QString& name);
    void AddFinding(ZrSurveyFinding::eKind kind, std::size_t line, const QString& text);

    ZrLocalFrame m_frame;
    ZrSurveyPlan m_plan;
    std::optional<ZrSurveyPose> m_last; ///< the end of the last line
    ZrLocalPoint m_lastWaypoint;
};
