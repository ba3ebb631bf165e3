#include "ZrKit/review/ZrRecordingPreviews.h"

#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrRecordingList.h"
#include "ZrKit/review/ZrSurveyDataset.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Positions of the records, evenly spread.
QPolygonF Positions(const ZrDataset& dataset)
{
    QPolygonF positions;
    const std::size_t count = dataset.recs.size();
    const std::size_t points = std::min<std::size_t>(count, ZrRecordingList::Points);
    for (std::size_t i = 0; i < points; ++i) {
        const ZrLogRec& rec = dataset.recs[points > 1 ? i * (count - 1) / (points - 1) : 0];
        const double lat = rec.latitude;
        const double lng = rec.longitude;
        if (std::abs(lat) <= 90.0 && std::abs(lng) <= 180.0)
            positions.append(QPointF(lng, lat));
    }
    return positions;
}

} // namespace

/// A recording under way: the worker's, but for `cancel`.
struct ZrRecordingPreviews::Job
{
    ZrRecentLog log;
    ZrDatasetReader reader;
    QPolygonF outline;

    void Run()
    {
        reader.restorePlan = false; // nobody has opened it
        ZrSurveyDataset ofNavigation;
        if (!Take(ofNavigation))
            return;
        // Logs without navigation have their positions in fixes.
        ZrSurveyDataset ofFixes(zr::rec_type(krtFix), ZrSurveyDataset::DefaultCrdTypes());
        if (ofNavigation.recs.empty())
            Take(ofFixes);
    }

    bool Take(ZrSurveyDataset& dataset)
    {
        const ZrDatasetReader::eResult result = reader.Read(log.path, dataset);
        const bool isRead = result == ZrDatasetReader::Built || result == ZrDatasetReader::FromIndex;
        if (isRead)
            outline = ZrRecordingList::OutlineOf(Positions(dataset));
        return isRead;
    }
};

ZrRecordingPreviews::ZrRecordingPreviews(QObject* parent)
    : QObject(parent)
    , m_outlines(Kept)
{
    connect(&m_worker, &ZrWorker::Finished, this, &ZrRecordingPreviews::OnFinished);
}

ZrRecordingPreviews::~ZrRecordingPreviews() = default;

bool ZrRecordingPreviews::IsMissing(const ZrRecording& recording) const
{
    const ZrRecentLog& log = recording.log;
    return recording.outline.isEmpty() && !log.isIndexed && log.size <= LargestLog
        && m_tried.value(log.path, ~u64(0)) != log.size;
}

QPolygonF ZrRecordingPreviews::Outline(const ZrRecording& recording) const
{
    const QPolygonF* const made = m_outlines.object(recording.log.path);
    return recording.outline.isEmpty() && made ? *made : recording.outline;
}

void ZrRecordingPreviews::Want(const QVector<ZrRecording>& recordings)
{
    m_wanted = recordings;
    StartNext();
}

void ZrRecordingPreviews::Cancel()
{
    m_wanted.clear();
    m_worker.Cancel();
}

void ZrRecordingPreviews::StartNext()
{
    while (!m_worker.IsWorking() && !m_wanted.isEmpty()) {
        const ZrRecording next = m_wanted.takeFirst();
        if (!IsMissing(next))
            continue;
        ++m_tries;
        m_job = std::make_shared<Job>();
        m_job->log = next.log;
        m_worker.Start([job = m_job](IZrProgress& /*progress*/) { job->Run(); },
            [job = m_job] { job->reader.cancel = true; });
    }
}

void ZrRecordingPreviews::OnFinished()
{
    const std::shared_ptr<Job> job = std::exchange(m_job, nullptr);
    const QString path = job->log.path;
    if (!m_worker.IsCancelled()) {
        m_tried.insert(path, job->log.size);
        if (!job->outline.isEmpty()) {
            m_outlines.insert(path, new QPolygonF(job->outline));
            Q_EMIT Made(path);
        }
    }
    StartNext();
}
