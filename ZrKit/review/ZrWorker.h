#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QObject>

#include <functional>
#include <thread>

class IZrProgress;

/// Runs one piece of long work at a time in a thread of its own, and tells when it is done.
///
/// \code
/// connect(&worker, &ZrWorker::Finished, this, [this] { Show(*m_reader, m_series); });
/// m_reader = std::make_shared<ZrSurveySeriesReader>();
/// worker.Start(
///     [reader = m_reader, path, this](IZrProgress& progress) {
///         reader->progress = &progress;
///         reader->Read(path, m_series);
///     },
///     [reader = m_reader] { reader->cancel = true; });
/// \endcode
///
/// Every `Start` that returns true ends in one `Finished`, through the event loop of the thread that the
/// object lives in; the work is done by then, and its results may be looked at. The progress ends with the
/// work.
///
/// Threads: all functions belong to that thread. The destructor stops the work and waits for it; no
/// `Finished` comes then.
class ZR_KIT_EXPORT ZrWorker : public QObject
{
    Q_OBJECT

public:
    /// Runs in the worker's thread; throws nothing.
    using Work = std::function<void(IZrProgress& progress)>;
    /// Called by `Cancel` while the work runs, or before it begins or after it has ended: it must be harmless
    /// then.
    using Stop = std::function<void()>;

    explicit ZrWorker(QObject* parent = nullptr);
    ~ZrWorker() override;

    /// False, and nothing is done, while another piece of work is under way, and without \p work. \p stop may
    /// be empty: then the work cannot be ended early.
    bool Start(Work work, Stop stop);

    /// Asks the work to end soon; `Finished` comes all the same. Nothing when there is none.
    void Cancel();

    /// True from `Start` to `Finished`.
    bool IsWorking() const { return m_working; }

    /// Whether `Cancel` was called for the work under way, or the last one.
    bool IsCancelled() const { return m_cancelled; }

Q_SIGNALS:
    void Progress(int percent);
    void Finished();

private:
    class Relay;

    Q_INVOKABLE void Conclude();
    void Join();

    bool m_working = false;
    bool m_cancelled = false;
    Stop m_stop;
    std::thread m_thread;
};
