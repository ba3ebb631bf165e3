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
#include <utility>

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

} // namespace

QString ZrEventFile::PathOf(const QString& logPath)
{
    return logPath + QLatin1String(".evt");
}

ZrEventFile::eState ZrEventFile::Read(const QString& logPath)
{
    events.clear();
    m_bytes.clear();
    m_logPath = logPath;
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

ZrMergedEvents ZrEventFile::Merged(const std::vector<ZrLogEvt>& found, std::size_t known) const
{
    ZrMergedEvents merged;
    if (m_state != Whole)
        return merged;
    merged.Read(m_logPath);
    const auto count = static_cast<std::ptrdiff_t>(std::min(known, found.size()));
    merged.Add({found.begin(), found.begin() + count});
    return merged;
}

std::vector<ZrLogEvt> ZrEventFile::NewOf(
    const std::vector<ZrLogEvt>& found, const ZrMergedEvents& merged) const
{
    struct Known
    {
        int here = 0; ///< in the file
        int before = 0; ///< of the log, that were taken over
        bool isCounted = false;
    };

    QHash<QString, Known> known;
    for (const ZrLogEvt& evt : events)
        ++known[ZrMergedEvents::Identity(evt)].here;
    std::vector<ZrLogEvt> added;
    for (const ZrLogEvt& evt : found) {
        Known& same = known[ZrMergedEvents::Identity(evt)];
        if (!std::exchange(same.isCounted, true))
            same.before = merged.Count(evt);
        const bool isBefore = same.before-- > 0; // whatever has become of it
        const bool isHere = same.here-- > 0;
        if (!isBefore && !isHere)
            added.push_back(evt);
    }
    return added;
}

void ZrEventFile::Merge(const std::vector<ZrLogEvt>& found, const ZrMergedEvents& merged)
{
    std::vector<ZrLogEvt> added = NewOf(found, merged);
    if (added.empty())
        return;
    // As if they had been added one by one: of equal times the one added last stands first.
    std::reverse(added.begin(), added.end());
    added.insert(added.end(), events.begin(), events.end());
    std::stable_sort(added.begin(), added.end(), Before);
    events = std::move(added);
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
    return m_state == Missing ? isWanted || !events.empty() : m_state != Whole || Encoded() != m_bytes;
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

/// Reads the file of \p logPath and has \p work, both under a lock.
bool ZrEventFile::Locked(
    const QString& logPath, const std::function<bool(ZrEventFile&)>& work, QString* error)
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
    return work(file);
}

bool ZrEventFile::Update(
    const QString& logPath, const std::function<bool(ZrEventFile&)>& change, QString* error)
{
    return Locked(
        logPath, [&](ZrEventFile& file) { return !change(file) || file.Write(error); }, error);
}

bool ZrEventFile::TakeOver(const QString& logPath, const std::vector<ZrLogEvt>& found,
    std::vector<ZrLogEvt>& events, QString* error, std::size_t known)
{
    std::optional<std::vector<ZrLogEvt>> written;
    if (!TakeOver(
            logPath, found, known, [](ZrEventFile&) {}, written, error))
        return false;
    events = std::move(*written);
    return true;
}

bool ZrEventFile::TakeOver(const QString& logPath, const std::vector<ZrLogEvt>& found, std::size_t known,
    const std::function<void(ZrEventFile&)>& change, std::optional<std::vector<ZrLogEvt>>& written,
    QString* error)
{
    written.reset();
    const auto work = [&](ZrEventFile& file) {
        const bool isKept = file.Merged().HasAll(found);
        ZrMergedEvents merged = file.Merged(found, known);
        file.Merge(found, merged);
        file.isWanted = !found.empty(); // without it nothing counts as taken over
        change(file);
        // What is taken over is kept when it is in the file: between the two nothing can be lost.
        if (!file.Write(error))
            return false;
        written = file.events;
        merged.Add(found);
        return isKept || merged.Write(logPath, error);
    };
    return Locked(logPath, work, error);
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
