#include "ZrKit/recording/ZrStdinSource.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#ifndef Q_OS_WIN
#include <cerrno>
#include <unistd.h>
#endif

ZrStdinSource::ZrStdinSource(QObject* parent)
    : ZrLineSource(parent)
{
}

QString ZrStdinSource::Name() const
{
    return QCoreApplication::translate("ZrStdinSource", "standard input");
}

#ifdef Q_OS_WIN

bool ZrStdinSource::Start(QString* error)
{
    *error = QCoreApplication::translate(
        "ZrStdinSource", "Recording from the standard input is not available on this system");
    return false;
}

void ZrStdinSource::OnReadable() { }

#else

bool ZrStdinSource::Start(QString* error)
{
    Q_UNUSED(error)
    m_notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &ZrStdinSource::OnReadable);
    return true;
}

void ZrStdinSource::OnReadable()
{
    char bytes[65536];
    const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count > 0) {
        Feed(QByteArray(bytes, static_cast<int>(count)));
        return;
    }
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    m_notifier->setEnabled(false);
    FeedEnd();
    Q_EMIT Finished();
}

#endif
