#include "ZrKit/review/ZrRecordingList.h"

#include "ZrKit/review/ZrIndexStamp.h"
#include "ZrUtil/ZrLogRec.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaObject>
#include <QStorageInfo>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <mutex>

namespace {

constexpr qint64 indexHeaderSize = 46;
constexpr qint64 recordSize = sizeof(ZrLogRec);

/// Positions of the index of \p path, evenly spread over its \p records.
QPolygonF Positions(const QString& path, u32 records)
{
    QPolygonF positions;
    QFile file(ZrIndexStamp::IndexPathOf(path));
    const qint64 count = records;
    if (count == 0 || !file.open(QIODevice::ReadOnly) || file.size() != indexHeaderSize + count * recordSize)
        return positions;
    const qint64 points = std::min<qint64>(count, ZrRecordingList::Points);
    for (qint64 i = 0; i < points; ++i) {
        const qint64 record = points > 1 ? i * (count - 1) / (points - 1) : 0;
        if (!file.seek(indexHeaderSize + record * recordSize))
            break;
        const QByteArray bytes = file.read(recordSize);
        if (bytes.size() != recordSize)
            break;
        ZrLogRec rec;
        std::memcpy(static_cast<void*>(&rec), bytes.constData(), static_cast<std::size_t>(recordSize));
        const double lat = rec.latitude;
        const double lng = rec.longitude;
        if (std::abs(lat) <= 90.0 && std::abs(lng) <= 180.0)
            positions.append(QPointF(lng, lat));
    }
    return positions;
}

/// When the index of a log was made; -1 without one.
qint64 IndexedAt(const QString& path)
{
    const QFileInfo stamp(ZrIndexStamp::PathOf(path));
    return stamp.exists() ? stamp.lastModified().toMSecsSinceEpoch() : -1;
}

} // namespace

bool ZrRecording::operator==(const ZrRecording& other) const
{
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    const ZrRecentLog& a = log;
    const ZrRecentLog& b = other.log;
    return a.path == b.path && a.size == b.size && same(a.start, b.start) && same(a.duration, b.duration)
        && a.sonar == b.sonar && a.isDamaged == b.isDamaged && a.damage == b.damage
        && a.isIndexed == b.isIndexed && outline == other.outline;
}

struct ZrRecordingList::Job
{
    QString folder;
    int most;
    ZrRecent recent;
    QHash<QString, Known> before;
    QHash<QString, Known> known;
    int looks = 0;
    std::mutex guard; ///< of the first ones
    QVector<ZrRecording> first;
    QVector<ZrRecording> recordings;
    qint64 freeBytes = -1;
    QString error;

    void Run(const std::function<void()>& tellFirst);
    ZrRecording Look(const QString& path);
    QVector<ZrRecording> Sorted() const;
};

void ZrRecordingList::Job::Run(const std::function<void()>& tellFirst)
{
    freeBytes = FreeBytesOf(folder);
    // The folder of the first start is made by the first recording.
    if (folder.isEmpty() || !QFileInfo::exists(folder))
        return;
    std::vector<ZrRecentLog> logs = recent.Find(folder);
    logs.resize(std::min(logs.size(), static_cast<std::size_t>(std::max(most, 0))));
    error = recent.Error();
    for (std::size_t i = 0; i < logs.size() && !recent.cancel; ++i) {
        if (i == static_cast<std::size_t>(AtOnce)) {
            const std::lock_guard lock(guard);
            first = Sorted();
            tellFirst();
        }
        recordings.append(Look(logs[i].path));
    }
    recordings = Sorted();
}

/// As it was, where neither the log nor its index changed.
ZrRecording ZrRecordingList::Job::Look(const QString& path)
{
    Known now = before.value(path);
    const ZrRecent::Seen file = recent.seen.value(path);
    const qint64 indexed = IndexedAt(path);
    if (!before.contains(path) || now.file.size != file.size || now.file.changed != file.changed
        || now.indexed != indexed) {
        ++looks;
        now.recording.log = ZrRecent::Look(path);
        now.recording.outline = OutlineOf(now.recording.log);
        now.file = file;
        now.indexed = indexed;
    }
    known.insert(path, now);
    return now.recording;
}

/// The first items of a log may have another time than its header.
QVector<ZrRecording> ZrRecordingList::Job::Sorted() const
{
    QVector<ZrRecording> sorted = recordings;
    std::stable_sort(sorted.begin(), sorted.end(), [](const ZrRecording& a, const ZrRecording& b) {
        return std::isnan(b.log.start) ? !std::isnan(a.log.start) : a.log.start > b.log.start;
    });
    return sorted;
}

ZrRecordingList::ZrRecordingList(QObject* parent)
    : QObject(parent)
{
}

ZrRecordingList::~ZrRecordingList()
{
    if (m_job)
        m_job->recent.cancel = true;
    if (m_worker.joinable())
        m_worker.join();
}

qint64 ZrRecordingList::FreeBytesOf(const QString& folder)
{
    if (folder.isEmpty())
        return -1;
    QDir dir(QDir::cleanPath(QDir(folder).absolutePath()));
    while (!dir.exists() && !dir.isRoot())
        dir.setPath(QFileInfo(dir.path()).path());
    const QStorageInfo volume(dir);
    return volume.isValid() && volume.isReady() ? volume.bytesAvailable() : -1;
}

/// Longitudes and latitudes, degrees, as an outline: a plane is good enough for a picture.
QPolygonF ZrRecordingList::OutlineOf(const QPolygonF& positions)
{
    if (positions.size() < 2)
        return {};
    constexpr double radians = 3.14159265358979323846 / 180.0;
    const QPointF origin = positions.front();
    const double scale = std::cos(origin.y() * radians);
    QPolygonF outline;
    outline.reserve(positions.size());
    for (const QPointF& position : positions) {
        // Across the date line the short way.
        const double east = std::remainder(position.x() - origin.x(), 360.0);
        outline.append(QPointF(east * scale, origin.y() - position.y()));
    }
    const QRectF box = outline.boundingRect();
    const double side = std::max(box.width(), box.height());
    if (!(side > 0.0))
        return {};
    for (QPointF& point : outline)
        point = (point - box.topLeft()) / side;
    return outline;
}

QPolygonF ZrRecordingList::OutlineOf(const ZrRecentLog& log)
{
    ZrIndexStamp stamp;
    if (!log.isIndexed || !stamp.Read(log.path))
        return {};
    return OutlineOf(Positions(log.path, stamp.records));
}

void ZrRecordingList::List(const QString& folder, int most)
{
    if (m_isListing) {
        m_isAsked = true;
        m_nextFolder = folder;
        m_nextMost = most;
        m_job->recent.cancel = true;
        return;
    }
    m_isListing = true;
    Start(folder, most);
}

void ZrRecordingList::Start(const QString& folder, int most)
{
    m_job = std::make_unique<Job>();
    m_job->folder = folder;
    m_job->most = most;
    m_job->before = m_known;
    m_job->recent.seen = m_seen;
    m_worker = std::thread([this, job = m_job.get()] {
        job->Run([this] { QMetaObject::invokeMethod(this, "TakeFirst", Qt::QueuedConnection); });
        QMetaObject::invokeMethod(this, "Conclude", Qt::QueuedConnection);
    });
}

/// Nobody waits for the others. Where all were there before, they stay.
void ZrRecordingList::TakeFirst()
{
    if (!m_job || m_isAsked || m_recordings.size() > AtOnce)
        return;
    {
        const std::lock_guard lock(m_job->guard);
        if (m_job->first.isEmpty())
            return;
        m_recordings = m_job->first;
    }
    Q_EMIT Listed();
}

void ZrRecordingList::Conclude()
{
    m_worker.join();
    m_looks += m_job->looks;
    if (!m_job->recent.cancel) {
        m_known = m_job->known;
        m_seen = m_job->recent.seen;
    }
    if (m_isAsked) {
        m_isAsked = false;
        Start(m_nextFolder, m_nextMost);
        return;
    }
    m_recordings = m_job->recordings;
    m_freeBytes = m_job->freeBytes;
    m_error = m_job->error;
    m_job.reset();
    m_isListing = false;
    Q_EMIT Finished();
}
