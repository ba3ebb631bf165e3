#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrListPos.h"
#include "ZrUtil/ZrLogEvt.h"
#include "ZrUtil/ZrLogItemInf.h"
#include "ZrUtil/ZrLogRec.h"
#include "ZrUtil/ZrLstMgd.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QObject>
#include <QString>

#include <array>
#include <vector>

class IZrProgress;
class ZrPlayer;

/// A data log made navigable: a table of its records, its events, extents and plots for the views.
///
/// One item of the index record type makes one record, which remembers the positions of the latest items of
/// up to eight coordinate record types before it. The table is kept beside the log in an index file (log path
/// + ".zri"), the events in an event file (+ ".evt"), so that a log is scanned once; a mission plan found on
/// the way is restored to + ".xml". An application derives from this class and decodes its navigation payload
/// in `FillRec`; here only the time of a record is set.
///
/// \code
/// ZrDataset dataset(CRecType(0, 16), {CRecType(0, 18), CRecType(0, 20)});
/// dataset.ReadFile(path);
/// dataset.curRec = dataset.PosFromTime(time);
/// if (const ZrLogRec* rec = dataset.GetRec()) {
///     dataset.SeekTo(player, *rec); // the views show the state at the record
///     player.SeekTo(rec->pos); // and play goes on from there
/// }
/// \endcode
///
/// Times are seconds since 1970-01-01T00:00:00 UTC, angles degrees, depths and altitudes metres.
///
/// Errors: a missing, stale or damaged index is told on the debug output and the log scanned again; a log
/// that cannot be opened is told there and leaves no records; an event file that cannot be opened leaves no
/// events, one that breaks off the events before. The index is not compared with the log itself: delete it
/// when the log was replaced by another one.
///
/// Threads: one thread at a time; signals are emitted on it. Positions in the index come from a file and may
/// be anything; the player checks what stands there.
class ZR_UTIL_EXPORT ZrDataset : public QObject
{
    Q_OBJECT

public:
    i32 curRec = -1; ///< current record, -1 for none; may lie outside the table, `GetRec` checks
    i32 spareI32 = 10; ///< free for applications
    i32 firstRec = -1; ///< first playable record, -1 for none
    i32 lastRec = -1; ///< last playable record, -1 for none
    std::vector<float> altitudePlot; ///< per record: index, altitude
    std::vector<float> seabedPlot; ///< per record a vertical bar: index, 0, index, seabed depth
    ZrLstMgd<ZrLogEvt> events; ///< in ascending order of time
    double spareF64 = 0.0; ///< free for applications
    QString fileName; ///< the log that was read last
    /// The event cursor, null for none. Whoever removes events from the list moves it away first.
    ZrListPos* curEvt = nullptr;
    float maxSeabed = 0.0f; ///< 1.1 times the greatest seabed depth (depth + altitude) of all records
    double minLatitude = 0.0;
    double maxLatitude = 0.0;
    double minLongitude = 0.0;
    double maxLongitude = 0.0;
    double meanLatitude = 0.0;
    double meanLongitude = 0.0;
    std::vector<ZrLogRec> recs;
    CRecType idxType; ///< one record is made per item of this type
    /// Their latest positions are remembered by every record; {0, 0} is an unused slot.
    std::array<CRecType, 8> crdTypes{};

    ZrDataset();
    ZrDataset(CRecType indexType, std::array<CRecType, 8> coordinateTypes);
    ~ZrDataset() override;

    /// Stores \p pos in each slot of \p crdPos whose coordinate type is that of the item.
    virtual void UpdCrdPos(std::array<u64, 8>& crdPos, const ZrLogItemInf& inf, u64 pos);

    /// Decodes one item of the index type into \p rec, which has its positions already. The payload is as
    /// stored in the log and valid during the call.
    virtual void FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8> payload);

    /// Replays the first item of every coordinate type that occurs, so that receivers of \p player have a
    /// state before playback starts.
    virtual void Preroll(ZrPlayer& player);

    /// Replays the latest coordinate items before \p rec. The caller then plays on from `rec.pos`.
    virtual void SeekTo(ZrPlayer& player, const ZrLogRec& rec);

    /// Loads the dataset of \p logPath: from its index and event files when the index is current, else by
    /// scanning the log, which also writes both files (the event file after each event that is found).
    void ReadFile(QString logPath);

    /// Replaces the record table by the index file of \p logPath. False, with the reason on the debug output,
    /// when it is missing, not as this dataset's record types would have made it, or damaged. The table is
    /// emptied when its records cannot all be read, and left alone by the other failures.
    bool ReadIndex(const QString& logPath);

    /// Writes the index file; nothing when there are no records.
    void WriteIndex(const QString& logPath) const;

    /// Replaces the events by those of the event file; false when it cannot be opened.
    bool ReadEvents(const QString& logPath);

    /// Writes the event file; nothing when there are no events or \p logPath is empty.
    void WriteEvents(const QString& logPath) const;

    /// Inserts a copy of \p evt, in front of events of the same time, and rewrites the event file of
    /// `fileName`.
    void AddEvent(const ZrLogEvt& evt);

    /// Empties the plots, the records and the events; there is no playable range.
    void ClearData();

    CRecType IdxType() const { return idxType; }

    std::array<CRecType, 8> CrdTypes() const { return crdTypes; }

    /// The current record; null when there is none. Valid until the table changes.
    const ZrLogRec* GetRec() const;

    /// File position of the item of record \p i; 0 when there is no such record.
    u64 GetRecFp(int i);

    /// The same of the current record.
    u64 GetNextFp();

    /// Makes the record of exactly the time \p t current, looking from the current one onwards. False, and
    /// nothing changed, when it meets a later time or the end: callers pass times taken from records.
    bool SeekToTime(double t);

    /// The record nearest in time to \p t; the first one before the table, the last one behind it.
    ///
    /// It starts at a linear estimate and walks one record at a time. Exactly at the time of the last record
    /// the estimate lies behind the table, and the result is 0; applications rely on it. Also 0 for an empty
    /// table and for times that are not numbers.
    int PosFromTime(double t);

    /// Moves the event cursor to the next event, if there is one. A null cursor is first put on the first
    /// event.
    void GoNextEvt();

    /// Moves the event cursor to the preceding event, if there is one. A null cursor is first put on the last
    /// event.
    void GoPrevEvt();

    /// Whether an event follows the cursor; a null cursor is put on the first event.
    bool HasNextEvt();

    /// Whether an event precedes the cursor; a null cursor is put on the last event.
    bool HasPrevEvt();

    /// Computes extents and plots from the records and makes the first record current (none: -1).
    ///
    /// Values that are not numbers are left out of minima, maxima and means; without any number they are 0.
    void UpdateExtents();

    /// Writes the records \p first ... \p last - 1, as far as they exist, to \p path as CSV, times as local
    /// time. \p progress hears the record's place in the whole table for every line; it may be null. False
    /// when the file cannot be written.
    bool ExportTrack(QString path, int first, int last, IZrProgress* progress);

    /// The same for all records.
    bool ExportTrack(QString path, IZrProgress* progress);

Q_SIGNALS:
    void PercentLoad(int percent);
    void NewDataset();

private:
    void ScanLog(ZrPlayer& player, const QString& logPath);
    static void RecoverPlan(const QString& logPath, zr::span<u8> payload);
    void RecoverEvent(zr::span<u8> payload);
    void ClearEvents();
};
