#include "ZrKit/recording/ZrLineSource.h"

#include <QCoreApplication>

#include <utility>

ZrLineSource::ZrLineSource(QObject* parent)
    : QObject(parent)
{
}

ZrLineSource::~ZrLineSource() = default;

void ZrLineSource::Feed(const QByteArray& bytes)
{
    for (const QByteArray& line : m_splitter.Feed(bytes))
        Q_EMIT Line(line);
}

void ZrLineSource::FeedEnd()
{
    const QByteArray line = m_splitter.Rest();
    if (!line.isEmpty())
        Q_EMIT Line(line);
}

void ZrLineSource::TellLost(const QString& reason)
{
    if (std::exchange(m_isLost, true))
        return;
    Q_EMIT Lost(reason);
    Q_EMIT Trouble(QCoreApplication::translate("ZrLineSource", "%1: %2; trying again").arg(Name(), reason));
}

void ZrLineSource::TellBack()
{
    if (!std::exchange(m_isLost, false))
        return;
    Q_EMIT Back();
    Q_EMIT Trouble(QCoreApplication::translate("ZrLineSource", "%1: connected").arg(Name()));
}
