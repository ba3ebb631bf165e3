#include "ZrKit/recording/ZrLineSource.h"

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
