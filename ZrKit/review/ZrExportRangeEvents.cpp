// The events of a part of a recording, and where they lie.

#include "ZrKit/export/ZrTrackEvent.h"
#include "ZrKit/review/ZrDatasetTrack.h"
#include "ZrKit/review/ZrExportRange.h"
#include "ZrKit/review/ZrNearestRecords.h"
#include "ZrKit/review/ZrRecordSource.h"
#include "ZrKit/review/ZrRecordsAround.h"
#include "ZrUtil/ZrDataset.h"

#include <algorithm>

bool ZrExportRange::FailReading()
{
    m_error = tr("Cannot read the index of %1: %2").arg(m_dataset.fileName, m_records.Error());
    return false;
}

bool ZrExportRange::ReadRecord(std::size_t record, ZrLogRec& rec)
{
    std::vector<ZrLogRec> read;
    if (!m_records.Read(record, record + 1, read) || read.empty())
        return FailReading();
    rec = read.front();
    return true;
}

/// The events of the part: all, or as `ZrDatasetTrack::IsIn` says. With their nearest records if they are to
/// be placed. False when `cancel` was set or the records cannot be read.
bool ZrExportRange::FindEvents(std::vector<PlacedEvent>& events, bool arePlaced)
{
    if (m_first == m_end && !takesAllEvents)
        return true;
    const std::size_t count = m_records.Count();
    for (ZrListPos* pos = m_dataset.events.GetHeadPos(); pos;)
        events.push_back({m_dataset.events.GetNext(pos), count});
    if ((arePlaced || !takesAllEvents) && !PlaceEvents(events))
        return false;
    const auto isOutside = [&](const PlacedEvent& placed) {
        return !ZrDatasetTrack::IsIn(placed.record, count, m_first, m_end);
    };
    if (!takesAllEvents)
        events.erase(std::remove_if(events.begin(), events.end(), isOutside), events.end());
    return true;
}

/// Finds the records nearest to them.
bool ZrExportRange::PlaceEvents(std::vector<PlacedEvent>& events)
{
    const std::size_t count = m_records.Count();
    std::vector<double> at;
    for (const PlacedEvent& placed : events)
        at.push_back(placed.event->time);
    ZrNearestRecords nearest(at);
    std::vector<ZrLogRec> records;
    for (const ZrRecordsAround::Range& range : ZrRecordsAround::Of(times, count, at)) {
        for (std::size_t i = range.first; i < range.end; i += ZrRecordSource::AtOnce) {
            if (cancel)
                return false;
            if (!m_records.Read(i, std::min(i + ZrRecordSource::AtOnce, range.end), records))
                return FailReading();
            for (std::size_t k = 0; k < records.size(); ++k)
                nearest.Add(i + k, records[k].time);
        }
    }
    for (std::size_t i = 0; i < events.size(); ++i)
        events[i].record = std::min(nearest.Of(i), count);
    return true;
}

/// The same, where the vehicle was then.
bool ZrExportRange::TrackEvents(std::vector<ZrTrackEvent>& events)
{
    std::vector<PlacedEvent> placed;
    if (!FindEvents(placed, true))
        return false;
    for (const PlacedEvent& at : placed) {
        const bool hasPlace = at.record < m_records.Count();
        ZrLogRec rec;
        if (hasPlace && (cancel || !ReadRecord(at.record, rec)))
            return false;
        events.push_back(ZrDatasetTrack::Event(*at.event, hasPlace ? &rec : nullptr));
    }
    return true;
}
