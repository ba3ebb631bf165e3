#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <atomic>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

class IZrProgress;
class QFile;
class QIODevice;
class ZrDataset;
class ZrLogEvt;
class ZrLogScan;
class ZrLogWriter;
class ZrRecordSource;
class ZrSteadyTime;
struct ZrLogItem;
struct ZrLogRec;
struct ZrTrackEvent;

/// Writes a part of a recording into files: as a log of its own, as a track for other programs, as tables.
///
/// The part is a range of records of a dataset, its end excluded. Each file is built beside its place and
/// takes it in one step at the end; a failure or `cancel` leaves what was there.
///
/// \code
/// ZrExportRange part(dataset, ZrExportRange::FirstFrom(steady, begin), ZrExportRange::EndAt(steady, end));
/// part.progress = &progress;
/// if (part.WriteLog(path) == ZrExportRange::Failed)
///     return part.Error();
/// \endcode
///
/// Of a long log the records need not be in memory: they are read piece by piece from the index, and nothing
/// of what lies outside the part, but for the records around events and what `WriteLog` tells.
///
/// \code
/// ZrDatasetReader reader;
/// if (reader.Index(path, dataset) == ZrDatasetReader::Unreadable)
///     return reader.Error();
/// ZrExportRange part(dataset, *reader.Records(), first, end);
/// part.times = &steady;
/// \endcode
///
/// The dataset is only read; it must not change meanwhile. One thread at a time; `cancel` may be set from any
/// thread or a signal handler.
class ZR_KIT_EXPORT ZrExportRange
{
    Q_DECLARE_TR_FUNCTIONS(ZrExportRange)

public:
    enum eResult : int
    {
        Done,
        Failed, ///< `Error` says why
        Cancelled
    };

    IZrProgress* progress = nullptr; ///< told each whole percent; may be null
    std::atomic<bool> cancel{false}; ///< ends the export soon; never cleared here

    /// The times of all records, which tell where those around an event lie; null when they are not known:
    /// then all records are gone through once, if there are events.
    const ZrSteadyTime* times = nullptr;

    /// All events of the dataset are of the part; else those whose nearest record is. A table of them needs
    /// no record then.
    bool takesAllEvents = false;

    /// \name Where a part with sonar outside of the records begins and ends
    /// Positions in the log.
    /// @{
    u64 beginPos = 0; ///< `WriteLog` copies from here on what lies in front of the log's first record
    u64 endPos = std::numeric_limits<u64>::max(); ///< and up to here, if the part's last record is before it
    /// @}

    /// Records \p first ... \p end - 1, as far as there are any.
    ZrExportRange(const ZrDataset& dataset, std::size_t first, std::size_t end);

    /// The same of \p records, which stand in for those of \p dataset: types, name and events are its own.
    ZrExportRange(const ZrDataset& dataset, ZrRecordSource& records, std::size_t first, std::size_t end);

    ~ZrExportRange();

    /// The first record at or behind the steady time \p begin, and the one behind the last at or before \p
    /// end.
    static std::size_t FirstFrom(const ZrSteadyTime& times, double begin);
    static std::size_t EndAt(const ZrSteadyTime& times, double end);

    /// Why \p out may not be written for the recording \p log, a sentence: it is no possible name, no file or
    /// one of the recording's own. Else empty.
    static QString Refusal(const QString& log, const QString& out);

    /// What is said of a file of its own.
    static QString BelongsToRecording(const QString& out);

    /// The items from the first record of the part up to the one behind it, byte for byte; from the first
    /// record of the log on all items in front of it too, to its last one all behind it, unless `beginPos`
    /// and `endPos` say less. In front stand, in the order of the log, the latest items of the coordinate
    /// types before the part, so that views have a state from its first moment on. The events of the part go
    /// into an event file beside \p out, and are all that its readers show: those of the items count as taken
    /// over (`ZrMergedEvents`), so that none comes back that was removed or changed. An index that lies there
    /// is removed.
    ///
    /// Of a damaged log the items in front of the damage are written; see `Damage`.
    eResult WriteLog(const QString& out);

    /// Track and events in the format that the suffix of \p out asks for, see `ZrTrackExport::FormatOf`.
    eResult WriteTrack(const QString& out);

    /// A table of the records (RFC 4180, UTF-8):
    /// `time,latitude,longitude,depth,altitude,seabed,heading,pitch,roll`. Times are ISO 8601, UTC; what is
    /// not known is empty.
    eResult WriteRecords(const QString& out);

    /// A table of the events, see `ZrEventTable`.
    eResult WriteEvents(const QString& out);

    QString Error() const { return m_error; } ///< why the last call failed, a sentence; else empty

    QString Damage() const { return m_damage; } ///< what is damaged in the part that was written as a log

    u64 Items() const { return m_items; } ///< items, points, records or events written by the last call

private:
    using Fill = std::function<bool(QIODevice& out)>;

    struct PlacedEvent
    {
        const ZrLogEvt* event; ///< the dataset's
        std::size_t record; ///< nearest to it in time; `Count` of the records when none is
    };

    class Points;

    void Begin();
    bool ReadRecord(std::size_t record, ZrLogRec& rec);
    bool FailReading();
    bool FindEvents(std::vector<PlacedEvent>& events, bool arePlaced);
    bool PlaceEvents(std::vector<PlacedEvent>& events);
    bool TrackEvents(std::vector<ZrTrackEvent>& events);
    eResult Fail(const QString& error);
    eResult FailWithout();
    void Report(double share);
    eResult WriteFile(const QString& out, double expectedBytes, const Fill& fill);
    bool CopyItem(ZrLogScan& scan, QFile& in, ZrLogWriter& log);
    void Hold(const ZrLogItem& item);
    bool CopyState(ZrLogScan& scan, QFile& in, ZrLogWriter& log, const ZrLogRec& first, u64 from);
    bool CopyItems(ZrLogScan& scan, QFile& in, ZrLogWriter& log, u64 from, u64 to);
    bool WriteEventFile(const QString& out, const std::vector<PlacedEvent>& found);

    const ZrDataset& m_dataset;
    std::unique_ptr<ZrRecordSource> m_ofDataset; ///< null when others stand in
    ZrRecordSource& m_records;
    std::size_t m_first;
    std::size_t m_end;
    QByteArray m_item; ///< copied last
    std::vector<ZrLogEvt> m_held; ///< events among the items copied
    QString m_error;
    QString m_damage;
    u64 m_items = 0;
    int m_percent = -1;
};
