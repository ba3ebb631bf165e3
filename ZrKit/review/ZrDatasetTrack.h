#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/export/ZrTrackEvent.h"
#include "ZrKit/export/ZrTrackPoint.h"

#include <cstddef>
#include <vector>

class ZrDataset;
class ZrLogEvt;
struct ZrLogRec;

/// Records and events of a dataset as the exports of tracks take them.
///
/// Ranges are record indices, the end excluded; what lies beyond the table is left out. The dataset is only
/// read; it must not change meanwhile. Any thread.
class ZR_KIT_EXPORT ZrDatasetTrack
{
public:
    /// An event and the record nearest to it in time.
    struct PlacedEvent
    {
        const ZrLogEvt* event; ///< the dataset's
        std::size_t record; ///< the number of records when the event has no time, or there are none
    };

    static ZrTrackPoint Point(const ZrLogRec& rec);

    /// \p event where the vehicle was in \p rec; nowhere without one.
    static ZrTrackEvent Event(const ZrLogEvt& event, const ZrLogRec* rec);

    /// Whether an event belongs to a range of \p count records: \p nearest is the record nearest to it in
    /// time, `count` or more when it has no time, or there are none.
    static bool IsIn(std::size_t nearest, std::size_t count, std::size_t first, std::size_t end);

    static std::vector<ZrTrackPoint> Points(const ZrDataset& dataset, std::size_t first, std::size_t end);

    /// The events whose nearest record is one of the range. One without a time has no place; it belongs to
    /// the whole table only.
    static std::vector<PlacedEvent> EventsIn(const ZrDataset& dataset, std::size_t first, std::size_t end);

    /// The same, where the vehicle was then.
    static std::vector<ZrTrackEvent> Events(const ZrDataset& dataset, std::size_t first, std::size_t end);
};
