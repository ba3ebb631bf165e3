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
    const bool whole = first == 0 && end >= count;
    const ZrRecordTimes times(dataset.recs);
    std::vector<PlacedEvent> events;
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;) {
        const ZrLogEvt* const event = dataset.events.GetNext(pos);
        const std::size_t nearest = times.Nearest(event->time);
        if (nearest < count ? nearest >= first && nearest < end : whole)
            events.push_back({event, nearest});
    }
    return events;
}

std::vector<ZrTrackEvent> ZrDatasetTrack::Events(const ZrDataset& dataset, std::size_t first, std::size_t end)
{
    std::vector<ZrTrackEvent> events;
    for (const PlacedEvent& placed : EventsIn(dataset, first, end)) {
        ZrTrackEvent event;
        event.time = placed.event->time;
        if (placed.record < dataset.recs.size()) {
            event.latitude = dataset.recs[placed.record].latitude;
            event.longitude = dataset.recs[placed.record].longitude;
        }
        event.text = placed.event->text;
        event.detail = placed.event->detail;
        events.push_back(event);
    }
    return events;
}
