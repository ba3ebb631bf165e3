#include "ZrKit/files/ZrFileKeeper.h"

#include "ZrKit/files/ZrReplaceFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaObject>

#include <utility>

ZrFileKeeper::ZrFileKeeper(const QString& path, QObject* parent)
    : QObject(parent)
    , m_path(path)
{
}

ZrFileKeeper::~ZrFileKeeper()
{
    {
        const std::lock_guard lock(m_guard);
        m_isEnding = true;
    }
    m_news.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

void ZrFileKeeper::Write(Content content, Then then)
{
    Order(write, std::move(content), std::move(then));
}

void ZrFileKeeper::Remove()
{
    Order(removal, {}, {});
}

void ZrFileKeeper::Order(eOrder order, Content content, Then then)
{
    {
        const std::lock_guard lock(m_guard);
        m_order = order;
        m_content.swap(content);
        m_then.swap(then);
    }
    // What was not written any more ends here, without the guard.
    if (!m_thread.joinable())
        m_thread = std::thread([this] { Run(); });
    m_news.notify_all();
}

void ZrFileKeeper::Finish()
{
    {
        std::unique_lock lock(m_guard);
        m_news.wait(lock, [this] { return m_order == none && m_now == none; });
    }
    Tell();
}

bool ZrFileKeeper::IsThere() const
{
    const std::lock_guard lock(m_guard);
    const eOrder last = m_order != none ? m_order : m_now;
    return last == none ? QFileInfo(m_path).isFile() : last == write;
}

void ZrFileKeeper::Run()
{
    std::unique_lock lock(m_guard);
    while (true) {
        m_news.wait(lock, [this] { return m_order != none || m_isEnding; });
        if (m_order == none)
            return;
        m_now = std::exchange(m_order, none);
        const eOrder now = m_now;
        Content content = std::exchange(m_content, nullptr);
        Then then = std::exchange(m_then, nullptr);
        lock.unlock();
        QString error;
        if (now == write) {
            QDir().mkpath(QFileInfo(m_path).path());
            if (zr::replace_file(m_path, content(), &error) && then)
                then();
        } else {
            QFile::remove(m_path);
        }
        content = nullptr;
        then = nullptr;
        lock.lock();
        m_now = none;
        m_error = error;
        m_isUntold = true;
        if (!m_isEnding)
            QMetaObject::invokeMethod(this, "Tell", Qt::QueuedConnection);
        m_news.notify_all();
    }
}

void ZrFileKeeper::Tell()
{
    QString error;
    {
        const std::lock_guard lock(m_guard);
        if (!std::exchange(m_isUntold, false))
            return;
        error = m_error;
    }
    Q_EMIT Done(error);
}
