#include "ZrKit/threads/ZrCallQueue.h"

#include <utility>

ZrCallQueue::ZrCallQueue(QObject* parent)
    : QObject(parent)
{
}

ZrCallQueue::~ZrCallQueue() = default;

void ZrCallQueue::Give(std::function<void()> call)
{
    if (!call)
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.push_back(std::move(call));
    // The event only wakes: what it carried would cross threads under Qt's own locks, which no checker sees.
    // It is posted under the lock, since a call that can be taken may end the queue.
    QMetaObject::invokeMethod(this, "RunNext", Qt::QueuedConnection);
}

void ZrCallQueue::RunNext()
{
    std::function<void()> call;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        call = std::move(m_calls.front());
        m_calls.pop_front();
    }
    // The last use of this object: the call may end it.
    call();
}
