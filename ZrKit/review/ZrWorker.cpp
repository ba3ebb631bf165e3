#include "ZrKit/review/ZrWorker.h"

#include "ZrUtil/IZrProgress.h"

#include <QMetaObject>

#include <utility>

/// Sends percentages through the event loop, each one only once in a row.
class ZrWorker::Relay final : public IZrProgress
{
public:
    explicit Relay(ZrWorker& worker)
        : m_worker(worker)
    {
    }

    void UpdateProgress(int percent) override
    {
        if (percent == m_percent)
            return;
        m_percent = percent;
        QMetaObject::invokeMethod(&m_worker, "Progress", Qt::QueuedConnection, Q_ARG(int, percent));
    }

    int GetProgress() override { return m_percent; }

private:
    ZrWorker& m_worker;
    int m_percent = -1;
};

ZrWorker::ZrWorker(QObject* parent)
    : QObject(parent)
{
}

ZrWorker::~ZrWorker()
{
    Cancel();
    Join();
}

bool ZrWorker::Start(Work work, Stop stop)
{
    if (m_working || !work)
        return false;
    m_working = true;
    m_cancelled = false;
    m_stop = std::move(stop);
    // Its last act is to ask the owning thread to conclude, which joins it before anything is looked at.
    m_thread = std::thread([this, job = std::move(work)]() mutable {
        {
            Relay relay(*this);
            job(relay);
            job = nullptr; // what it holds goes before anybody hears of the end
        }
        QMetaObject::invokeMethod(this, "Conclude", Qt::QueuedConnection);
    });
    return true;
}

void ZrWorker::Conclude()
{
    Join();
    m_working = false;
    m_stop = nullptr;
    Q_EMIT Finished();
}

void ZrWorker::Join()
{
    if (m_thread.joinable())
        m_thread.join();
}

void ZrWorker::Cancel()
{
    if (!m_working)
        return;
    m_cancelled = true;
    if (m_stop)
        m_stop();
}
