#pragma once

#include "ZrUtil/ZrExport.h"

#include <QObject>

#include <atomic>
#include <thread>

/// A Qt object that owns one worker thread.
///
/// Derive, implement Execute() as a loop over IsActive(), and call Stop() in the destructor of the derived
/// class: by the time the destructor of this base joins the worker, the derived part it would run in is gone.
///
/// \code
/// class SonarReader : public ZrThread
/// {
/// public:
///     ~SonarReader() override { Stop(); }
///
///     void Execute() override
///     {
///         while (IsActive())
///             ReadPing();
///     }
/// };
/// \endcode
///
/// Start(), Stop() and the destructor belong to the owning thread, usually the user-interface thread.
/// SetActive() and IsActive() may be called from any thread; `active` is the only state the two sides share.
/// The object has no event loop of its own: it lives, in the sense of Qt, in the thread that made it.
class ZR_UTIL_EXPORT ZrThread : public QObject
{
    Q_OBJECT

public:
    /// An idle object without parent.
    ZrThread();

    /// Clears `active` and joins the worker.
    ~ZrThread() override;

    /// Body of the worker; returns soon after IsActive() turns false. An exception that leaves it ends the
    /// process.
    virtual void Execute() = 0;

    /// Starts the worker; does nothing while `active` is true.
    ///
    /// `thread` is set before Execute() runs. A worker that ended by itself still has to be joined by Stop():
    /// starting anew without it ends the process (std::terminate). Throws std::system_error, with `active`
    /// false again, when the thread cannot be created.
    void Start();

    /// Clears `active` and waits until Execute() has returned. Does nothing more when there is no worker.
    ///
    /// Throws std::system_error (resource_deadlock_would_occur) when the worker itself calls it; `active` is
    /// false then, and the owner still has to call Stop().
    void Stop();

    /// Stores the flag and nothing else: no thread is started or joined. A worker may clear it to end itself.
    void SetActive(bool on);

    /// True from Start() until Stop(), SetActive(false) or destruction.
    bool IsActive() const;

    /// The worker; not joinable before Start() and after Stop(). The name hides QObject::thread(): write
    /// `QObject::thread()` for the Qt thread this object lives in.
    std::thread thread;

    /// The flag the worker polls; written by either side.
    std::atomic<bool> active{false};
};
