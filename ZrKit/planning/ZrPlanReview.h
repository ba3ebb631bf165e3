#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/planning/ZrRouteFinding.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/threads/ZrCallQueue.h"

#include <QObject>
#include <QUuid>

#include <memory>
#include <thread>
#include <vector>

class ZrPlanDocument;

/// Follows a plan that is being edited and looks it over in a thread of its own, so that no edit of a large
/// plan waits for that.
///
/// \code
/// ZrPlanReview review(plan);
/// connect(&review, &ZrPlanReview::Ready, this, [&] { show(review.Findings()); });
/// \endcode
///
/// Each state of the plan that is looked at is a copy. Of states that come while one is looked at only the
/// newest is looked at after it. Lives on the thread of the plan and must end before the plan does.
class ZR_KIT_EXPORT ZrPlanReview : public QObject
{
    Q_OBJECT

public:
    explicit ZrPlanReview(ZrPlanDocument& plan, QObject* parent = nullptr);
    ~ZrPlanReview() override; ///< waits for the thread

    bool IsCurrent() const { return m_seen == m_wanted; } ///< what it says is of the plan as it is now

    /// Which state of the plan the findings and the path are of, counted; -1 before the first `Ready`.
    int Seen() const { return m_seen; }

    const std::vector<ZrRouteFinding>& Findings() const { return m_findings; }

    const ZrRoutePath* Path() const { return m_path.get(); } ///< null before the first `Ready`

    /// The waypoints that the path leads along, in their order; empty before the first `Ready`.
    const std::vector<QUuid>& Ids() const { return m_ids; }

    int Count(ZrRouteFinding::eSeverity severity) const; ///< of findings

Q_SIGNALS:
    void Ready(); ///< findings and path are those of a newer state

private:
    void Start();

    ZrPlanDocument& m_plan;
    ZrCallQueue m_calls{this}; ///< of the thread of the plan
    std::thread m_thread; ///< looks; joined before its results are taken
    std::vector<ZrRouteFinding> m_findings;
    std::unique_ptr<ZrRoutePath> m_path;
    std::vector<QUuid> m_ids;
    int m_wanted = 0; ///< counts the states of the plan
    int m_seen = -1; ///< the state that the findings are of
    bool m_isRunning = false;
};
