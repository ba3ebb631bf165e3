#include "ZrKit/review/ZrMergedEvents.h"

#include "ZrKit/files/ZrReplaceFile.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <limits>

namespace {

constexpr int formatVersion = 1;
constexpr int digestBytes = 8;
constexpr qint64 largest = qint64(64) * 1024 * 1024; ///< bytes: more than 3 million events

/// Texts may be long, and hold what JSON does not: their digest stands for them.
QByteArray Digest(const ZrLogEvt& evt)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << ZrMergedEvents::Identity(evt);
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).left(digestBytes);
}

QHash<QByteArray, int> CountsOf(const std::vector<ZrLogEvt>& events)
{
    QHash<QByteArray, int> counts;
    for (const ZrLogEvt& evt : events)
        ++counts[Digest(evt)];
    return counts;
}

} // namespace

QString ZrMergedEvents::PathOf(const QString& logPath)
{
    return logPath + QLatin1String(".evt.json");
}

/// The time is compared by its digits, so that times that are not numbers are equal to themselves.
QString ZrMergedEvents::Identity(const ZrLogEvt& evt)
{
    if (!evt.uid.isNull())
        return evt.uid.toString();
    return QString::number(evt.time, 'g', std::numeric_limits<double>::max_digits10) + QLatin1Char(' ')
        + evt.text;
}

bool ZrMergedEvents::Read(const QString& logPath)
{
    m_counts.clear();
    QFile file(PathOf(logPath));
    if (!file.open(QIODevice::ReadOnly) || file.size() > largest)
        return false;
    const QJsonObject object = QJsonDocument::fromJson(file.read(largest)).object();
    const QJsonValue events = object.value(QLatin1String("events"));
    if (object.value(QLatin1String("version")).toInt() != formatVersion || !events.isArray())
        return false;
    const QJsonArray digests = events.toArray();
    for (const QJsonValue& value : digests) {
        const QByteArray digest = QByteArray::fromHex(value.toString().toLatin1());
        if (digest.size() == digestBytes)
            ++m_counts[digest];
    }
    return true;
}

bool ZrMergedEvents::Write(const QString& logPath, QString* error) const
{
    QStringList digests;
    for (auto it = m_counts.begin(); it != m_counts.end(); ++it) {
        for (int i = 0; i < it.value(); ++i)
            digests << QString::fromLatin1(it.key().toHex());
    }
    digests.sort(); // the same events make the same file
    const QJsonObject object{
        {QStringLiteral("version"), formatVersion},
        {QStringLiteral("events"), QJsonArray::fromStringList(digests)},
    };
    return zr::replace_file(PathOf(logPath), QJsonDocument(object).toJson(QJsonDocument::Compact), error);
}

int ZrMergedEvents::Count(const ZrLogEvt& evt) const
{
    return m_counts.value(Digest(evt));
}

bool ZrMergedEvents::HasAll(const std::vector<ZrLogEvt>& found) const
{
    const QHash<QByteArray, int> counts = CountsOf(found);
    for (auto it = counts.begin(); it != counts.end(); ++it) {
        if (m_counts.value(it.key()) < it.value())
            return false;
    }
    return true;
}

void ZrMergedEvents::Add(const std::vector<ZrLogEvt>& found)
{
    const QHash<QByteArray, int> counts = CountsOf(found);
    for (auto it = counts.begin(); it != counts.end(); ++it) {
        int& count = m_counts[it.key()];
        count = std::max(count, it.value());
    }
}
