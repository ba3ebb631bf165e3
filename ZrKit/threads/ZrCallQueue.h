#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

/// Runs functions on the thread that it lives on, one after the other, in the order in which they were given.
///
/// \code
/// auto* calls = new ZrCallQueue(worker); // lives where the worker lives
/// calls->Give([worker, options] { worker->Start(options); }); // on any thread
/// \endcode
///
/// What a function has captured was written before `Give` and is handed over under a mutex: no other lock is
/// needed for it. The thread must run an event loop; each function is a turn of it, so that timers and
/// sockets have theirs in between. Functions that wait when the queue ends are not run any more.
///
/// Threads: `Give` is for any, as long as the queue lives; all else belongs to its own.
class ZR_KIT_EXPORT ZrCallQueue : public QObject
{
    Q_OBJECT

public:
    explicit ZrCallQueue(QObject* parent = nullptr);
    ~ZrCallQueue() override;

    /// Nothing for an empty \p call. It may give others, and may end the queue; it throws nothing.
    void Give(std::function<void()> call);

private:
    Q_INVOKABLE void RunNext();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_calls;
};
