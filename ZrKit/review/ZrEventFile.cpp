#include "ZrKit/review/ZrEventFile.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrUtil/ZrDataset.h"

#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLockFile>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace {

/// Place in the list: by time; what has no time stands at the end.
double SortKey(const ZrLogEvt& evt)
{
    return std::isnan(evt.time) ? std::numeric_limits<double>::infinity() : evt.time;
}

bool Before(const ZrLogEvt& a, const ZrLogEvt& b)
{
    return SortKey(a) < SortKey(b);
}

/// What makes two events the same. The time is compared by its digits, so that times that are not numbers
/// are equal to themselves.
QString Identity(const ZrLogEvt& evt)
{
    if (!evt.uid.isNull())
        return evt.uid.toString();
    return QString::number(evt.time, 'g', std::numeric_limits<double>::max_digits10) + QLatin1Char(' ')
        + evt.text;
}

} // namespace

QString ZrEventFile::PathOf(const QString& logPath)
{
    return logPath + QLatin1String(".evt");
}

ZrEventFile::eState ZrEventFile::Read(const QString& logPath)
{
    events.clear();
    m_bytes.clear();
    m_path = PathOf(logPath);
    m_state = QFileInfo::exists(m_path) ? Unreadable : Missing;
    QFile file(m_path);
    if (m_state == Missing || !file.open(QIODevice::ReadOnly))
        return m_state;
    m_bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return m_state;
    QDataStream stream(m_bytes);
    stream.setVersion(QDataStream::Qt_5_15);
    qint32 count = 0;
    stream >> count;
    for (qint32 i = 0; i < count; ++i) {
        ZrLogEvt evt;
        evt.ReadFrom(stream);
        if (stream.status() != QDataStream::Ok)
            break;
        events.push_back(evt);
    }
    const bool whole = stream.status() == QDataStream::Ok && count >= 0 && stream.atEnd();
    m_state = whole ? Whole : Damaged;
    return m_state;
}

void ZrEventFile::Add(const ZrLogEvt& evt)
{
    const auto place
        = std::find_if(events.begin(), events.end(), [&evt](const ZrLogEvt& e) { return !Before(e, evt); });
    events.insert(place, evt);
}

void ZrEventFile::Merge(const std::vector<ZrLogEvt>& found)
{
    QHash<QString, int> known;
    for (const ZrLogEvt& evt : events)
        ++known[Identity(evt)];
    std::vector<ZrLogEvt> merged;
    for (const ZrLogEvt& evt : found)
        if (known[Identity(evt)]-- <= 0)
            merged.push_back(evt);
    if (merged.empty())
        return;
    // As if they had been added one by one: of equal times the one added last stands first.
    std::reverse(merged.begin(), merged.end());
    merged.insert(merged.end(), events.begin(), events.end());
    std::stable_sort(merged.begin(), merged.end(), Before);
    events = std::move(merged);
}

int ZrEventFile::Remove(const QUuid& uid)
{
    const auto end
        = std::remove_if(events.begin(), events.end(), [&uid](const ZrLogEvt& e) { return e.uid == uid; });
    const auto removed = std::distance(end, events.end());
    events.erase(end, events.end());
    return static_cast<int>(removed);
}

QByteArray ZrEventFile::Encoded() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << static_cast<qint32>(events.size());
    for (ZrLogEvt evt : events) // a copy, whose texts are shared: an event being written is not constant
        evt.WriteTo(stream);
    return bytes;
}

bool ZrEventFile::KeepDamaged(QString* error) const
{
    const QString aside = m_path + QLatin1String(".damaged");
    QString name = aside;
    for (int i = 2; QFileInfo::exists(name); ++i)
        name = aside + QLatin1Char('-') + QString::number(i);
    return zr::replace_file(name, m_bytes, error);
}

bool ZrEventFile::IsChanged() const
{
    return m_state == Missing ? !events.empty() : m_state != Whole || Encoded() != m_bytes;
}

bool ZrEventFile::Write(QString* error)
{
    if (!IsChanged())
        return true;
    const QByteArray bytes = Encoded();
    if (m_state == Unreadable) {
        if (error)
            *error = m_path + QLatin1String(": The event file cannot be read, so it is not replaced");
        return false;
    }
    if (m_state == Damaged && !KeepDamaged(error))
        return false;
    if (!zr::replace_file(m_path, bytes, error))
        return false;
    m_state = Whole;
    m_bytes = bytes;
    return true;
}

bool ZrEventFile::Update(
    const QString& logPath, const std::function<bool(ZrEventFile&)>& change, QString* error)
{
    constexpr int patienceMs = 10000;
    QLockFile lock(PathOf(logPath) + QLatin1String(".lock"));
    if (!lock.tryLock(patienceMs)) {
        if (error)
            *error = PathOf(logPath) + QLatin1String(": The event file cannot be locked for writing");
        return false;
    }
    ZrEventFile file;
    file.Read(logPath);
    return !change(file) || file.Write(error);
}

void ZrEventFile::Fill(ZrDataset& dataset) const
{
    dataset.curEvt = nullptr;
    dataset.events.RemoveAll();
    for (const ZrLogEvt& evt : events) {
        auto copy = std::make_unique<ZrLogEvt>(evt);
        copy->rec = dataset.PosFromTime(copy->time);
        dataset.events.AddTail(copy.get());
        static_cast<void>(copy.release());
    }
}
