#include "ZrKit/planning/ZrSurveyPlanner.h"

#include "ZrKit/planning/ZrSurveyCorridor.h"
#include "ZrKit/planning/ZrSurveyPattern.h"

#include <atomic>
#include <utility>

struct ZrSurveyPlanner::Job
{
    ZrSurveyPlan plan;
    std::vector<ZrWpt> waypoints;
    QString error;
    std::atomic<bool> cancel{false};

    void Take(const ZrSurveyPlan& made)
    {
        if (made.waypoints.size() > static_cast<std::size_t>(MostWaypoints)) {
            error = tr("The lines have %1 waypoints; a plan may have %2. Choose a larger spacing.")
                        .arg(made.waypoints.size())
                        .arg(MostWaypoints);
            return;
        }
        plan = made;
        waypoints = plan.Waypoints();
    }
};

ZrSurveyPlanner::ZrSurveyPlanner(QObject* parent)
    : QObject(parent)
    , m_result(std::make_shared<Job>())
{
}

ZrSurveyPlanner::~ZrSurveyPlanner()
{
    if (m_job)
        m_job->cancel = true;
    if (m_thread.joinable())
        m_thread.join();
}

const ZrSurveyPlan& ZrSurveyPlanner::Plan() const
{
    return m_result->plan;
}

const std::vector<ZrWpt>& ZrSurveyPlanner::Waypoints() const
{
    return m_result->waypoints;
}

QString ZrSurveyPlanner::Error() const
{
    return m_result->error;
}

void ZrSurveyPlanner::Make(const ZrArea& area, const ZrSurveyPatternSettings& settings)
{
    Start([area, settings](Job& job) {
        ZrSurveyPattern pattern;
        pattern.cancel = &job.cancel;
        pattern.Make(area, settings);
        job.error = pattern.Error();
        job.Take(pattern.Plan());
    });
}

void ZrSurveyPlanner::Make(const std::vector<ZrGeoPoint>& guide, const ZrSurveyCorridorSettings& settings)
{
    Start([guide, settings](Job& job) {
        ZrSurveyCorridor corridor;
        corridor.Make(guide, settings);
        job.error = corridor.Error();
        job.Take(corridor.Plan());
    });
}

void ZrSurveyPlanner::Start(std::function<void(Job&)> make)
{
    ++m_wanted;
    m_next = std::move(make);
    if (!m_job)
        Run();
}

void ZrSurveyPlanner::Run()
{
    ++m_runs;
    m_job = std::make_shared<Job>();
    // The last act of the thread is to ask for this.
    const auto take = [this, state = m_wanted] {
        m_thread.join();
        m_result = std::exchange(m_job, nullptr);
        m_seen = state;
        if (m_next)
            Run();
        Q_EMIT Ready();
    };
    m_thread = std::thread([this, take, job = m_job, make = std::exchange(m_next, nullptr)] {
        make(*job);
        QMetaObject::invokeMethod(this, take, Qt::QueuedConnection);
    });
}
