#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class IZrProgress;

/// Makes a clean log of a damaged one: every item that is intact, and nothing that never was an item.
///
/// \code
/// ZrLogRecovery recovery;
/// if (!recovery.Run(damagedPath, newPath))
///     return recovery.Error();
/// qInfo() << recovery.Report().kept << "items kept," << recovery.Report().bytesLost << "bytes lost";
/// \endcode
///
/// A log has no checksums and no index; what an item is shows only by its header and by what follows it.
/// Where the format leaves several answers, these rules decide:
///
/// 1. *Header.* A place may be an item when all it says agrees: magic, header size 40, `compressed` 0 or 1,
///    reserved fields 0, a payload within the file and below 2 GiB, `dataSize` equal to `storedSize` unless
///    compressed, a compressed payload whose leading length is `dataSize` and whose sizes zlib can produce.
/// 2. *Place.* An item is expected behind the file header, behind each item kept, and where a broken header
///    leads (rule 7). Items inside the payload of an item kept are never looked at. Elsewhere a header counts
///    only as the first of a run: three headers each of which ends where the next begins, or fewer when the
///    last ends at the end of the file, at a file header, at a placeholder (rule 5) or at the remains of a
///    header.
/// 3. *Compressed items* prove themselves: the payload must decompress to exactly `dataSize` bytes, and end
///    with the checksum of these. Otherwise the item is left out.
/// 4. *Plain items* are kept when their end is confirmed: by the end of the file, a file header, another
///    header, or its remains (six of its first eight bytes; its beginning up to a sector of 512 zeros; the
///    beginning that the end of the file left). They are left out when a run of items that begins inside
///    leads across their end (bytes are missing), and when their last bytes lie in a zeroed sector that goes
///    on behind them. What is left are the *doubtful* ones: a sound header in the right place, followed by
///    something unknown, with all of the payload or with foreign bytes in it. They are counted and listed,
///    and kept unless `keepDoubtful` is off.
/// 5. *Placeholders.* An interrupted writer leaves a header with both sizes 0 before the payload. Its payload
///    is what follows up to the next run of items or the end; compressed, it must prove itself as in rule 3.
///    A header of sizes 0 with a confirmed end is an item without payload; one that is zero from a sector
///    boundary on is none.
/// 6. *Claims.* A header in the expected place whose payload the file does not hold, or a placeholder, claims
///    what follows it. An item found in there that is older than the claiming one is taken for a part of its
///    payload, unless the one behind it is older too: what an item contains was made before it.
/// 7. *Broken headers.* When a size in a damaged header still leads to a confirmed end, all up to
///    there is its item, look-alikes included, and the next one is expected there; when the two sizes differ,
///    rule 6 holds for what lies there.
///
/// Hence what cannot be known: bytes of a payload changed in place stay unnoticed unless it is compressed;
/// missing bytes stay so when they are as many as the items behind them have; when a header is lost without a
/// trace, whole items inside its payload may be taken for items.
///
/// The new log is built in a temporary file and takes its place in one step at the end; nothing is left
/// behind by a failure. The source is only read. Its creation time is kept when its file header is sound;
/// otherwise the log gets the time of its first item. Reading goes forward in blocks of 1 MiB; memory holds
/// the blocks and the item at hand (a compressed one also decompressed), and at most `MaxRanges` ranges.
///
/// One thread at a time; `cancel` may be set from another thread or a signal handler.
class ZR_KIT_EXPORT ZrLogRecovery
{
public:
    static constexpr std::size_t MaxRanges = 1000; ///< ranges listed in a report; all are counted

    enum eState : int
    {
        Idle, ///< nothing was run yet
        Done, ///< the new log is in its place
        Refused, ///< the output is the input
        Unreadable, ///< the input cannot be opened or read
        NothingFound, ///< neither a file header nor an item: no log was written
        NotWritten, ///< the output cannot be written
        Cancelled ///< `cancel` was set
    };

    enum eReason : int
    {
        BrokenFileHeader, ///< bytes in front of the first item that are no file header
        InnerFileHeader, ///< a file header behind items: logs were joined
        BrokenHeader, ///< no item header where one is expected, or a damaged one
        CutOff, ///< the file ends within the item
        MissingBytes, ///< another item begins within the payload
        BrokenPayload, ///< the compressed payload does not decompress
        Hole, ///< the item ends in a zeroed sector
        LostPlaceholder, ///< an interrupted item whose payload cannot be used
        DoubtfulEnd ///< the item is doubtful (rule 4)
    };

    /// A part of the source that is not in the new log, or is there with doubt.
    struct Range
    {
        u64 offset = 0; ///< in the source
        u64 length = 0; ///< bytes
        eReason reason = BrokenHeader;
        bool lost = true; ///< false for a doubtful item that was kept
    };

    struct Result
    {
        u64 kept = 0; ///< items in the new log, the repaired and doubtful ones included
        u64 repaired = 0; ///< placeholders that were completed
        u64 doubtful = 0; ///< doubtful items, kept or not
        u64 sourceBytes = 0; ///< size of the source
        u64 bytesLost = 0; ///< bytes of the source that are not in the new log
        u64 rangeCount = 0; ///< ranges found; `ranges` holds the first of them
        std::vector<Range> ranges; ///< in the order of the file
        bool fileHeaderSound = false;
    };

    /// An item on its way into the new log.
    struct Kept
    {
        u64 pos; ///< in the source
        ZrLogItem header; ///< as it is written
        zr::span<u8> payload; ///< as stored; valid during the call
        bool repaired;
    };

    /// Told, in the order of the file and on the thread of `Run`, each item that is kept and each range, also
    /// those that the report does not list; the range of a doubtful item before the item. May be empty.
    std::function<void(const Kept&)> itemKept;
    std::function<void(const Range&)> rangeFound;

    IZrProgress* progress = nullptr; ///< told each whole percent of the source; may be null
    std::atomic<bool> cancel{false}; ///< set to end `Run` soon, nothing being written
    bool keepDoubtful = true; ///< see rule 4

    ZrLogRecovery();
    ~ZrLogRecovery();
    ZrLogRecovery(const ZrLogRecovery&) = delete;
    ZrLogRecovery& operator=(const ZrLogRecovery&) = delete;

    /// Recovers \p in into \p out, which is replaced. True when \p out is there, with however many items.
    bool Run(const QString& in, const QString& out);

    /// The same without writing anything: what `Run` would find and keep.
    bool Examine(const QString& in);

    eState State() const { return m_state; }

    /// Why the last `Run` failed, a sentence; empty when it did not.
    QString Error() const { return m_error; }

    /// What the last `Run` found; after a failure as far as it came.
    const Result& Report() const { return m_report; }

    /// A few words for a person: "the file ends within the item".
    static QString ReasonText(eReason reason);

private:
    struct Private;

    bool Fail(eState state, const QString& error);
    bool Process(const QString& in, const QString& out);

    eState m_state = Idle;
    QString m_error;
    Result m_report;
};
