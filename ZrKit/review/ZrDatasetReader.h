#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrIndexStamp.h"
#include "ZrUtil/ZrTypes.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

class IZrProgress;
class QFile;
class ZrDataset;
class ZrEventFile;
class ZrIndexFile;
class ZrLogEvt;
class ZrLogScan;
class ZrRecordSource;
struct ZrLogItem;

/// Loads a dataset as `ZrDataset::ReadFile` does, but knows when an index is out of date, can be cancelled,
/// and loses nothing.
///
/// An index is used when its stamp (see `ZrIndexStamp`) says that it was made from this very log by this
/// class of dataset, and the positions of its first, middle and last record hold items of its type. Else the
/// log is scanned. Then, all in one step each and only when the scan is through:
/// - the events that the log holds are merged into the event file, whose own events all stay, each of them
///   once: one that was removed since does not come back (`ZrEventFile::TakeOver`);
/// - index and stamp are written anew. Without any record there is no index; one of the same record types is
///   removed, since a reader without stamps would take it for that of the log;
/// - a mission plan that the log holds, the last one of several, is restored to log path + ".xml", unless
///   such a file is there: it may have been edited.
/// A cancelled or failed scan changes no file. Files that cannot be written are told in `WriteError`, and the
/// dataset is loaded all the same.
///
/// Of a damaged log the items in front of the damage are used; `Complete`, `Error` and `ErrorPos` tell, also
/// when the index is used. The signals of the dataset are not emitted. Compressed events and plans are
/// understood; the payload handed to `FillRec` is as stored.
///
/// \code
/// ZrSurveyDataset dataset;
/// ZrDatasetReader reader;
/// if (reader.Read(path, dataset) == ZrDatasetReader::Unreadable)
///     qInfo() << reader.Error();
/// \endcode
///
/// A dataset takes 160 bytes for a record. `Index` leaves them in the file, from where `Records` reads them
/// piece by piece: memory does not grow with the log.
///
/// One thread at a time; `cancel` may be set from another or by a signal handler.
class ZR_KIT_EXPORT ZrDatasetReader
{
public:
    enum eResult : int
    {
        FromIndex, ///< the index was up to date
        Built, ///< the log was scanned
        Unreadable, ///< the log cannot be opened or has no sound file header; the dataset is empty
        Cancelled ///< `cancel` was set; the dataset is empty
    };

    IZrProgress* progress = nullptr; ///< told each whole percent of a scan; may be null
    std::atomic<bool> cancel{false}; ///< ends the work at the next item; `Read` never clears it
    bool rebuild = false; ///< scan even if the index is up to date
    bool writeIndex = true; ///< keep index and events beside the log
    bool restorePlan = true; ///< write a mission plan beside the log

    ZrDatasetReader();
    ~ZrDatasetReader();

    /// Replaces everything in \p dataset, whose record types decide what becomes a record.
    eResult Read(const QString& logPath, ZrDataset& dataset);

    /// Does the same, but leaves the records of \p dataset in the index: the dataset holds types, name and
    /// events (without the numbers of their records), no records and no extents; `Records` gives them.
    /// `FillRec` may look at the last one of `recs`, not at those before. An index that cannot be kept beside
    /// the log, or is not to be, is a temporary file that goes with the reader; when not even that can be
    /// made, or the disk of either fills meanwhile, the records are in the dataset after all, 160 bytes each.
    eResult Index(const QString& logPath, ZrDataset& dataset);

    /// The records that `Index` has found, valid up to the next call and as long as its dataset; null unless
    /// it was `FromIndex` or `Built`.
    ZrRecordSource* Records() const { return m_records.get(); }

    /// Why the log was scanned, e.g. "there is no index yet"; empty when the index was used.
    QString Reason() const { return m_reason; }

    bool Complete() const { return m_stamp.complete; } ///< the log ends cleanly

    QString Error() const { return m_stamp.error; } ///< why it is unreadable or damaged; else empty

    u64 ErrorPos() const { return m_stamp.errorPos; } ///< position of the item that cannot be read

    /// The events that the log itself holds, in its order, when it was `Built`.
    const std::vector<ZrLogEvt>& LogEvents() const { return m_events; }

    /// How many of them, from the first one on, the scan for an index before had found; see
    /// `ZrEventFile::Merged`.
    std::size_t KnownEvents() const { return m_knownEvents; }

    /// The first file that could not be written, and why; empty when all went well.
    QString WriteError() const { return m_writeError; }

private:
    eResult Load(const QString& logPath, ZrDataset& dataset);
    QString WhyOutdated(const QString& logPath, ZrDataset& dataset, const ZrEventFile& events);
    std::unique_ptr<ZrRecordSource> OpenTable(const QString& logPath, ZrDataset& dataset) const;
    static std::size_t KnownBefore(const QString& logPath);
    void BeginIndex(const QString& logPath, const ZrDataset& dataset);
    bool PutAside(ZrDataset& dataset, bool isAll);
    eResult Scan(const QString& logPath, ZrDataset& dataset);
    bool TakeItems(ZrLogScan& scan, QFile& payloads, ZrDataset& dataset);
    bool TakeItem(const ZrLogItem& item, u64 pos, QFile& payloads, ZrDataset& dataset);
    void TakeEvent(const ZrLogItem& item);
    void TakePlan(const ZrLogItem& item);
    bool MergeEvents(const QString& logPath, ZrEventFile& events);
    void WriteIndex(const QString& logPath, const ZrDataset& dataset);
    void WriteTable(const QString& logPath, const ZrDataset& dataset);
    void WritePlan(const QString& logPath);
    void Note(const QString& writeError);

    QString m_reason;
    QString m_writeError;
    ZrIndexStamp m_stamp;
    std::vector<ZrLogEvt> m_events; ///< found in the log
    std::size_t m_knownEvents = 0; ///< the first of them
    QByteArray m_plan; ///< the last one in the log
    std::array<u64, 8> m_crdPos{}; ///< latest position of each coordinate type
    std::vector<u8> m_payload; ///< of the item at hand
    bool m_keepsRecords = true; ///< in the dataset
    std::unique_ptr<ZrIndexFile> m_index; ///< that takes the records meanwhile; null for none
    bool m_isIndexBeside = false; ///< the log, so that it can be moved to its place
    QString m_besideError; ///< why not
    bool m_isIndexLost = false; ///< what it took cannot be read again
    std::unique_ptr<ZrRecordSource> m_records;
};
