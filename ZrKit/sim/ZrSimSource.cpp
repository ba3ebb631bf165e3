#include "ZrKit/sim/ZrSimSource.h"

#include "ZrKit/sim/ZrSimSurvey.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

/// Seconds of real time that the simulation may be late; what is more it does not try to catch up with.
constexpr double mostLate = 0.5;

} // namespace

/// The thread and what it shares with the source, under `mutex`. The survey belongs to the thread alone.
struct ZrSimSource::Worker
{
    struct Entry
    {
        ZrSimRecord record;
        ZrSimVehicleState state;
        int percent = 0;
    };

    explicit Worker(std::unique_ptr<ZrSimSurvey> owned)
        : survey(std::move(owned))
    {
    }

    ~Worker()
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            stop = true;
        }
        changed.notify_all();
        if (thread.joinable())
            thread.join();
    }

    void SetPace(bool nowPaused, double nowFactor);
    bool Take(Entry& entry);

    /// Simulates until the end or `stop`; \p post asks the source to deliver.
    void Run(const std::function<void()>& post);

    std::unique_ptr<ZrSimSurvey> survey;
    std::thread thread;

    std::mutex mutex;
    std::condition_variable changed; ///< anything below, as far as the thread may wait for it
    std::deque<Entry> waiting;
    bool posted = false; ///< the source knows that something waits
    bool atEnd = false;
    QString message; ///< why the survey ended early
    bool stop = false;
    bool paused = false;
    double factor = 1.0;
    double simulated = 0.0; ///< seconds since the start of the survey that were due at `since`
    Clock::time_point since;

private:
    double Due(Clock::time_point now) const;
    bool WaitFor(double seconds, std::unique_lock<std::mutex>& lock);
};

/// Simulated seconds that are due at \p now.
double ZrSimSource::Worker::Due(Clock::time_point now) const
{
    return paused ? simulated : simulated + factor * std::chrono::duration<double>(now - since).count();
}

void ZrSimSource::Worker::SetPace(bool nowPaused, double nowFactor)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const Clock::time_point now = Clock::now();
        simulated = Due(now);
        since = now;
        paused = nowPaused;
        factor = nowFactor;
    }
    changed.notify_all();
}

/// The next entry that waits; false when there is none.
bool ZrSimSource::Worker::Take(Entry& entry)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (waiting.empty()) {
            posted = false;
            return false;
        }
        entry = std::move(waiting.front());
        waiting.pop_front();
    }
    changed.notify_all();
    return true;
}

/// Waits until the record of \p seconds is due and there is room for it; false when it is to stop.
bool ZrSimSource::Worker::WaitFor(double seconds, std::unique_lock<std::mutex>& lock)
{
    while (!stop) {
        const Clock::time_point now = Clock::now();
        const double late = Due(now) - seconds;
        if (paused || waiting.size() >= MaxWaiting) {
            changed.wait(lock);
        } else if (late < 0.0) {
            changed.wait_for(lock, std::chrono::duration<double>(-late / factor));
        } else {
            if (late > mostLate * factor) {
                simulated = seconds + mostLate * factor;
                since = now;
            }
            return true;
        }
    }
    return false;
}

void ZrSimSource::Worker::Run(const std::function<void()>& post)
{
    Entry entry;
    const double start = survey->Settings().start;
    while (survey->Next(entry.record)) {
        entry.state = survey->Vehicle().State();
        entry.percent = survey->Percent();
        std::unique_lock<std::mutex> lock(mutex);
        if (!WaitFor(entry.record.time - start, lock))
            return;
        waiting.push_back(std::move(entry));
        if (!std::exchange(posted, true))
            post();
    }
    const std::lock_guard<std::mutex> lock(mutex);
    atEnd = true;
    message = survey->Message();
    if (!std::exchange(posted, true))
        post();
}

ZrSimSource::ZrSimSource(const ZrWpts& plan, const ZrSimSettings& settings, QObject* parent)
    : ZrLineSource(parent)
    , m_plan(plan)
    , m_settings(settings)
{
}

ZrSimSource::~ZrSimSource()
{
    Stop();
}

bool ZrSimSource::Start(QString* error)
{
    if (IsRunning()) {
        *error = QCoreApplication::translate("ZrSimSource", "The simulation runs already");
        return false;
    }
    auto survey = std::make_unique<ZrSimSurvey>(m_plan, m_settings);
    if (!survey->IsValid()) {
        *error = survey->Message();
        return false;
    }
    m_state = survey->Vehicle().State();
    m_percent = 0;
    m_recordRate = survey->RecordRate();
    m_worker = std::make_unique<Worker>(std::move(survey));
    m_worker->since = Clock::now();
    m_worker->paused = m_paused;
    m_worker->factor = m_factor;
    Worker* const worker = m_worker.get();
    const auto post = [this] { QMetaObject::invokeMethod(this, "Deliver", Qt::QueuedConnection); };
    try {
        worker->thread = std::thread([worker, post] { worker->Run(post); });
    } catch (const std::system_error& failure) {
        m_worker.reset();
        *error = QCoreApplication::translate("ZrSimSource", "The simulation cannot begin: %1")
                     .arg(QString::fromLocal8Bit(failure.what()));
        return false;
    }
    return true;
}

QString ZrSimSource::Name() const
{
    return QCoreApplication::translate("ZrSimSource", "simulated vehicle");
}

ZrLineSource::Pace ZrSimSource::TimePace() const
{
    Pace pace;
    pace.speed = m_paused ? 0.0 : m_factor;
    if (m_recordRate > 0.0)
        pace.mostAhead = static_cast<double>(MaxWaiting) / m_recordRate;
    return pace;
}

void ZrSimSource::Stop()
{
    m_worker.reset();
}

void ZrSimSource::SetPaused(bool paused)
{
    m_paused = paused;
    if (!m_worker)
        return;
    m_worker->SetPace(m_paused, m_factor);
    if (!paused)
        QMetaObject::invokeMethod(this, "Deliver", Qt::QueuedConnection); // of what has waited
}

std::size_t ZrSimSource::Waiting() const
{
    if (!m_worker)
        return 0;
    const std::lock_guard<std::mutex> lock(m_worker->mutex);
    return m_worker->waiting.size();
}

bool ZrSimSource::IsPaused() const
{
    return m_paused;
}

void ZrSimSource::SetFactor(double factor)
{
    m_factor = std::isnan(factor) ? 1.0 : std::clamp(factor, 1.0, MaxFactor);
    if (m_worker)
        m_worker->SetPace(m_paused, m_factor);
}

double ZrSimSource::Factor() const
{
    return m_factor;
}

bool ZrSimSource::IsRunning() const
{
    return m_worker != nullptr;
}

void ZrSimSource::Deliver()
{
    const QPointer<ZrSimSource> alive(this);
    Worker* const worker = m_worker.get();
    Worker::Entry entry;
    // A receiver may hold or stop the source, start it anew or delete it. At most what may wait is given at
    // once, or a fast simulation would keep the event loop away from everything else.
    for (std::size_t given = 0; alive && worker && m_worker.get() == worker; ++given) {
        if (m_paused)
            return;
        if (given == MaxWaiting) {
            QMetaObject::invokeMethod(this, "Deliver", Qt::QueuedConnection);
            return;
        }
        if (!worker->Take(entry))
            break;
        m_state = entry.state;
        m_percent = entry.percent;
        const ZrSimRecord& record = entry.record;
        Q_EMIT Record(record.type, record.format, record.time, record.payload);
    }
    if (!alive || !worker || m_worker.get() != worker || m_paused)
        return;
    QString message;
    {
        const std::lock_guard<std::mutex> lock(worker->mutex);
        if (!worker->atEnd || !worker->waiting.empty())
            return;
        message = worker->message;
    }
    Stop();
    m_percent = message.isEmpty() ? 100 : m_percent;
    if (!message.isEmpty())
        Q_EMIT Trouble(message);
    if (alive)
        Q_EMIT Finished();
}
