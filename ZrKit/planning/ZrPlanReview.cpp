#include "ZrKit/planning/ZrPlanReview.h"

#include "ZrKit/planning/ZrLegEnds.h"
#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrKit/planning/ZrRouteCheck.h"

#include <algorithm>
#include <utility>

ZrPlanReview::ZrPlanReview(ZrPlanDocument& plan, QObject* parent)
    : QObject(parent)
    , m_plan(plan)
{
    connect(&plan, &ZrPlanDocument::Changed, this, [this] {
        ++m_wanted;
        Start();
    });
    Start();
}

ZrPlanReview::~ZrPlanReview()
{
    if (m_thread.joinable())
        m_thread.join();
}

int ZrPlanReview::Count(ZrRouteFinding::eSeverity severity) const
{
    return static_cast<int>(std::count_if(m_findings.begin(), m_findings.end(),
        [severity](const ZrRouteFinding& finding) { return finding.severity == severity; }));
}

void ZrPlanReview::Start()
{
    if (m_isRunning)
        return;
    m_isRunning = true;

    struct Job
    {
        ZrWpts route;
        ZrRouteCheck::Options options;
        std::vector<ZrRouteFinding> findings;
        std::unique_ptr<ZrRoutePath> path;
        std::vector<QUuid> ids;
    };

    auto job = std::make_shared<Job>();
    job->route = m_plan.Route();
    job->options.noGo = m_plan.NoGo();
    job->options.margin = m_plan.Margin();
    job->options.speeds = ZrRouteSpeeds();
    // Its last act is to ask for its results to be taken.
    m_thread = std::thread([this, job, state = m_wanted] {
        job->findings = ZrRouteCheck::Run(job->route, job->options);
        job->path = std::make_unique<ZrRoutePath>(job->route, *job->options.speeds);
        job->ids = ZrLegEnds::Ids(job->route);
        const auto take = [this, job, state] {
            m_thread.join();
            m_isRunning = false;
            m_findings = std::move(job->findings);
            m_path = std::move(job->path);
            m_ids = std::move(job->ids);
            m_seen = state;
            if (!IsCurrent())
                Start();
            Q_EMIT Ready();
        };
        m_calls.Give(take);
    });
}
