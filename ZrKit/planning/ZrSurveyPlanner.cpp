#include "ZrKit/planning/ZrSurveyPlanner.h"

#include "ZrKit/planning/ZrSurveyCorridor.h"
#include "ZrKit/planning/ZrSurveyPattern.h"

#include <atomic>
#include <utility>

struct ZrSurveyPlanner::Job
{
    ZrSurveyPlan plan;
    std::vector<ZrWpt> waypoints;
    ZrSurveyPreview preview;
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

    void Look(const ZrSurveyPreview::Base& base, const ZrRouteSpeeds& speeds)
    {
        if (waypoints.empty() || cancel)
            return;
        ZrSurveyPreview::Base now = base;
        now.check.speeds = speeds;
        now.check.cancel = &cancel;
        preview = ZrSurveyPreview::Of(now, plan, waypoints);
    }
};

ZrSurveyPlanner::ZrSurveyPlanner(QObject* parent)
    : QObject(parent)
    , m_base(std::make_shared<const ZrSurveyPreview::Base>())
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

const ZrSurveyPreview& ZrSurveyPlanner::Preview() const
{
    return m_result->preview;
}

QString ZrSurveyPlanner::Error() const
{
    return m_result->error;
}

void ZrSurveyPlanner::SetBase(std::shared_ptr<const ZrSurveyPreview::Base> base)
{
    m_base = base ? std::move(base) : std::make_shared<const ZrSurveyPreview::Base>();
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
    m_next = [make = std::move(make), base = m_base, speeds = ZrRouteSpeeds()](Job& job) {
        make(job);
        job.Look(*base, speeds);
    };
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
        m_calls.Give(take);
    });
}
