#include "ZrKit/review/ZrDatasetTrack.h"

#include "ZrKit/review/ZrRecordTimes.h"
#include "ZrUtil/ZrDataset.h"

#include <algorithm>

ZrTrackPoint ZrDatasetTrack::Point(const ZrLogRec& rec)
{
    ZrTrackPoint point;
    point.time = rec.time;
    point.latitude = rec.latitude;
    point.longitude = rec.longitude;
    point.depth = static_cast<double>(rec.depth);
    point.altitude = static_cast<double>(rec.altitude);
    point.heading = static_cast<double>(rec.heading);
    point.pitch = static_cast<double>(rec.pitch);
    point.roll = static_cast<double>(rec.roll);
    return point;
}

ZrTrackEvent ZrDatasetTrack::Event(const ZrLogEvt& event, const ZrLogRec* rec)
{
    ZrTrackEvent placed;
    placed.time = event.time;
    if (rec) {
        placed.latitude = rec->latitude;
        placed.longitude = rec->longitude;
    }
    placed.text = event.text;
    placed.detail = event.detail;
    return placed;
}

bool ZrDatasetTrack::IsIn(std::size_t nearest, std::size_t count, std::size_t first, std::size_t end)
{
    return nearest < count ? nearest >= first && nearest < end : first == 0 && end >= count;
}

std::vector<ZrTrackPoint> ZrDatasetTrack::Points(const ZrDataset& dataset, std::size_t first, std::size_t end)
{
    const std::size_t last = std::min(end, dataset.recs.size());
    std::vector<ZrTrackPoint> points;
    points.reserve(last > first ? last - first : 0);
    for (std::size_t i = first; i < last; ++i)
        points.push_back(Point(dataset.recs[i]));
    return points;
}

std::vector<ZrDatasetTrack::PlacedEvent> ZrDatasetTrack::EventsIn(
    const ZrDataset& dataset, std::size_t first, std::size_t end)
{
    const std::size_t count = dataset.recs.size();
    const ZrRecordTimes times(dataset.recs);
    std::vector<PlacedEvent> events;
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;) {
        const ZrLogEvt* const event = dataset.events.GetNext(pos);
        const std::size_t nearest = times.Nearest(event->time);
        if (IsIn(nearest, count, first, end))
            events.push_back({event, nearest});
    }
    return events;
}

std::vector<ZrTrackEvent> ZrDatasetTrack::Events(const ZrDataset& dataset, std::size_t first, std::size_t end)
{
    std::vector<ZrTrackEvent> events;
    for (const PlacedEvent& placed : EventsIn(dataset, first, end)) {
        const bool hasPlace = placed.record < dataset.recs.size();
        events.push_back(Event(*placed.event, hasPlace ? &dataset.recs[placed.record] : nullptr));
    }
    return events;
}
