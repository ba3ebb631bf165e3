#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrLogItemInf.h"
#include "ZrUtil/ZrReadAhead.h"
#include "ZrUtil/ZrRecType.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QFile>
#include <QObject>
#include <QString>

#include <initializer_list>
#include <vector>

class IZrProgress;

/// Reads a data log item by item and hands each payload to whoever is connected.
///
/// \code
/// ZrPlayer player;
/// QObject::connect(&player, &ZrPlayer::NewPayload,
///     [](const ZrLogItemInf& inf, zr::span<u8> payload) { … });
/// if (player.OpenFile(path))
///     while (player.ReadNextItem(true)) { }
/// \endcode
///
/// Payloads are delivered as stored: a compressed one is still the output of `qCompress`. The span points
/// into the player's memory and is valid only during the signal; `buffer` itself is empty meanwhile.
///
/// Errors: the first damaged header or short read ends the playback. The reason goes to the debug output, the
/// file is closed, `EndOfFile` is emitted and the call returns false; see `ReadFailed`. There is no
/// resynchronisation: go on by `SeekTo` a later item whose position is known. A payload size that the file
/// cannot hold is refused before anything is allocated.
///
/// The file is read in blocks ahead of `pos`: move by `SeekTo`, not through `file`. A log may be played while
/// it is being written; what it holds is what it held when it was opened.
///
/// Threads: one thread at a time, no locks; receivers run on that thread before the call returns. A receiver
/// may read, seek or close the player during a signal; the span it was given stays intact until its signals
/// are done. The static exports use objects of their own and run on any thread, several at once on different
/// files.
class ZR_UTIL_EXPORT ZrPlayer : public QObject
{
    Q_OBJECT

public:
    QFile file;
    QString fileName; ///< path last given to `OpenFile`
    u64 fileSize = 0; ///< bytes, taken when the file was opened
    u64 pos = 0; ///< reading position: advanced by every successful read, the file is never asked
    std::vector<u8> buffer; ///< payload buffer, reused; grows to the largest item seen; empty during signals

    ZrPlayer();
    ~ZrPlayer() override;

    /// Opens \p path and checks its header; true when the position stands at the first item.
    ///
    /// A file that cannot be opened gives false without a message.
    bool OpenFile(QString path);

    void CloseFile();

    /// Delivers the next item. At the exact end of the file: `EndOfFile`, false, the file stays open.
    ///
    /// With \p playing false, `SeekLog` is emitted before the payload.
    bool ReadNextItem(bool playing);

    /// Delivers the next item whose type is in \p types and, unless \p source is 0, whose source equals it.
    /// Items in between are skipped without signals. False at the end of the file, without `EndOfFile`.
    bool ReadNextItemOfType(std::initializer_list<CRecType> types, u16 source, bool playing);
    bool ReadNextItemOfType(CRecType type, u16 source, bool playing);

    /// Delivers every item in turn until one of \p type has been delivered (true), or the file has ended
    /// (false).
    bool PlayUntilType(CRecType type);

    /// Moves the reading position to \p pos, the start of an item header; reopens a closed file.
    ///
    /// The position is set even when the seek fails. Seeking beyond the end succeeds; the next read then
    /// fails.
    bool SeekTo(u64 pos);

    /// `pos` x 100 / `fileSize`, the playback progress in percent; NaN before any file was opened, and for an
    /// empty one.
    double PosPercent() const;

    /// The common exit of every failure: \p message on the debug output, file closed, `EndOfFile`; always
    /// false.
    bool ReadFailed(QString message);

    /// Copies the items from position \p from up to \p to into the new log \p out, byte for byte.
    ///
    /// \p from is the start of an item; an item that starts before \p to is copied whole. The output gets a
    /// fresh file header. Returns false, and leaves the output as far as written, when the input cannot be
    /// read, is damaged inside the range, or a write fails. \p in and \p out naming one file are refused
    /// before anything is touched. An output that cannot be opened at all is not noticed: the export then
    /// writes nothing and returns true (the debug output says "Cannot open file: ").
    static bool ExportFileSegment(QString in, QString out, u64 from, u64 to, IZrProgress* progress);

    /// The same, limited to the items whose type is below \p filterLen and has a non-zero entry in \p
    /// typeFilter.
    static bool ExportFileSegment(
        QString in, QString out, u8* typeFilter, u16 filterLen, u64 from, u64 to, IZrProgress* progress);

    /// The plain segment preceded by the single item at position \p lead (for video, the key frame).
    ///
    /// The bytes of the lead item count towards the segment's length: copying stops that many bytes before \p
    /// to.
    static bool ExportFileSegmentWithVideo(
        QString in, QString out, u64 from, u64 to, u64 lead, IZrProgress* progress);

    /// Copies the items of the whole file that pass the filter (see `ExportFileSegment`).
    ///
    /// With \p asLog the output is a log; otherwise it holds the payloads alone, one after the other, as
    /// stored.
    static bool ExportFilteredFile(
        QString in, QString out, u8* typeFilter, u16 filterLen, bool asLog, IZrProgress* progress);

    /// Writes a census of \p in as CSV: "Index, Count", "Total, n", then one line per type in increasing
    /// order.
    ///
    /// Type 65535 is counted in the total only. A file that fails its checks yields a total of 0.
    static void ExportIndexInf(const QString& in, const QString& out);

Q_SIGNALS:
    /// An item at \p pos is about to be delivered by a step that is not part of continuous play.
    void SeekLog(u64 pos);
    void NewPayload(const ZrLogItemInf& inf, zr::span<u8> payload);
    /// The same item with the file position of its header.
    void NewPayloadPos(const ZrLogItemInf& inf, zr::span<u8> payload, u64 pos);
    void EndOfFile();

private:
    bool Read(zr::span<u8> into);

    /// Bytes from `pos` to the size known at opening; 0 when `pos` lies beyond it.
    u64 BytesLeft() const { return pos < fileSize ? fileSize - pos : 0; }

    bool ReadItem(ZrLogItem& item, bool tellMagic);
    void Deliver(const ZrLogItem& item, u64 itemPos, bool announce);

    ZrReadAhead m_ahead;
};
