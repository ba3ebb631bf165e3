#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrArea.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrKit/planning/ZrSurveyCorridorSettings.h"
#include "ZrKit/planning/ZrSurveyPatternSettings.h"
#include "ZrKit/planning/ZrSurveyPlan.h"
#include "ZrKit/planning/ZrSurveyPreview.h"
#include "ZrKit/threads/ZrCallQueue.h"
#include "ZrUtil/ZrWpt.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <thread>
#include <vector>

/// Plans survey lines in a thread of its own, for those who change the parameters while they look at the
/// lines.
///
/// \code
/// connect(&planner, &ZrSurveyPlanner::Ready, this, [this] { Show(planner.Plan()); });
/// planner.Make(area, settings); // at each step of a slider
/// \endcode
///
/// Of parameters that come while others are planned only the latest are planned after them. The results of
/// the others come all the same: they are what is seen of a long drag. What is planned is what
/// `ZrSurveyPattern` and `ZrSurveyCorridor` make; more than `MostWaypoints` are refused.
///
/// Threads: all functions belong to the thread that the planner lives in. The destructor ends the work and
/// waits for it; no `Ready` comes then.
class ZR_KIT_EXPORT ZrSurveyPlanner : public QObject
{
    Q_OBJECT

public:
    /// What a route may have.
    static constexpr int MostWaypoints = ZrRouteFile::MaxWaypoints;

    explicit ZrSurveyPlanner(QObject* parent = nullptr);
    ~ZrSurveyPlanner() override;

    /// The plan that the lines are for, from the next `Make` on; its speeds are those of the process then.
    /// Without a call, or null: an empty one.
    void SetBase(std::shared_ptr<const ZrSurveyPreview::Base> base);

    void Make(const ZrArea& area, const ZrSurveyPatternSettings& settings); ///< lines over an area
    void Make(const std::vector<ZrGeoPoint>& guide, const ZrSurveyCorridorSettings& settings); ///< along it

    /// Whether the results are of the parameters given last.
    bool IsCurrent() const { return m_seen == m_wanted; }

    /// \name Results, of the last `Ready`
    /// @{
    const ZrSurveyPlan& Plan() const; ///< empty when there is a problem

    const std::vector<ZrWpt>& Waypoints() const; ///< as a route has them

    const ZrSurveyPreview& Preview() const; ///< the plan with the lines in it

    QString Error() const; ///< why there are none, a sentence; else empty

    /// @}

    int Runs() const { return m_runs; } ///< plans begun, counted

Q_SIGNALS:
    /// There are results, of the parameters given last if `IsCurrent`.
    void Ready();

private:
    struct Job;

    void Start(std::function<void(Job&)> make);
    void Run();

    std::shared_ptr<const ZrSurveyPreview::Base> m_base;
    ZrCallQueue m_calls{this}; ///< of the thread that the planner lives on
    std::thread m_thread; ///< plans; joined before its results are looked at
    std::shared_ptr<Job> m_result;
    std::shared_ptr<Job> m_job; ///< under way; null for none
    std::function<void(Job&)> m_next; ///< plans the latest parameters; empty when that has begun
    int m_wanted = 0; ///< counts the parameters
    int m_seen = 0; ///< those that the results are of
    int m_runs = 0;
};
