#include "ZrUtil/ZrThread.h"

#include <future>
#include <system_error>

ZrThread::ZrThread() = default;

ZrThread::~ZrThread()
{
    active.exchange(false);
    if (thread.joinable())
        thread.join();
}

void ZrThread::Start()
{
    if (active.exchange(true))
        return;
    try {
        // The worker waits at this gate until `thread` is assigned: an Execute() that calls Stop() at once
        // would otherwise find no thread to join, or read the member while it is written.
        std::promise<void> assigned;
        thread = std::thread([this, gate = assigned.get_future()] {
            gate.wait();
            Execute();
        });
        assigned.set_value();
    } catch (...) {
        active.exchange(false);
        throw;
    }
}

void ZrThread::Stop()
{
    active.exchange(false);
    if (!thread.joinable())
        return;
    // Not left to join(): POSIX lets a system wait for ever when a thread joins itself.
    if (thread.get_id() == std::this_thread::get_id())
        throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
    thread.join();
}

void ZrThread::SetActive(bool on)
{
    active.exchange(on);
}

bool ZrThread::IsActive() const
{
    return active.load();
}
