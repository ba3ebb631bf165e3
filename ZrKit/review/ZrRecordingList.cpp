#include "ZrKit/review/ZrRecordingList.h"

#include "ZrKit/review/ZrIndexStamp.h"
#include "ZrKit/review/ZrRecent.h"
#include "ZrUtil/ZrLogRec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaObject>
#include <QStorageInfo>

#include <algorithm>
#include <cmath>
#include <cstring>

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

/// Longitudes and latitudes, degrees, as an outline: a plane is good enough for a picture.
QPolygonF Outline(const QPolygonF& positions)
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
    QVector<ZrRecording> recordings;
    qint64 freeBytes = -1;
    QString error;

    void Run();
};

void ZrRecordingList::Job::Run()
{
    freeBytes = FreeBytesOf(folder);
    // The folder of the first start is made by the first recording.
    if (folder.isEmpty() || !QFileInfo::exists(folder))
        return;
    const auto logs = recent.List(folder, static_cast<std::size_t>(std::max(most, 0)));
    error = recent.Error();
    for (const ZrRecentLog& log : logs) {
        if (recent.cancel)
            break;
        recordings.append({log, OutlineOf(log)});
    }
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

QPolygonF ZrRecordingList::OutlineOf(const ZrRecentLog& log)
{
    ZrIndexStamp stamp;
    if (!log.isIndexed || !stamp.Read(log.path))
        return {};
    return Outline(Positions(log.path, stamp.records));
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
    m_worker = std::thread([this, job = m_job.get()] {
        job->Run();
        QMetaObject::invokeMethod(this, "Conclude", Qt::QueuedConnection);
    });
}

void ZrRecordingList::Conclude()
{
    m_worker.join();
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
