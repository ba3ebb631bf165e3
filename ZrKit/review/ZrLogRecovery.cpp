#include "ZrKit/review/ZrLogRecovery.h"

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/review/ZrDamagedLog.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrSameFile.h"

#include <QCoreApplication>
#include <QtEndian>

#include <algorithm>

namespace {

constexpr u64 itemSize = ZrLogItem::Size;
constexpr u64 checksumSize = 4; ///< at the end of a zlib stream
constexpr u64 lengthPrefix = 4; ///< before it
constexpr std::size_t keptCapacity = std::size_t{16} * 1024 * 1024; ///< a larger buffer is given back

/// The checksum of a zlib stream: Adler-32 as defined in RFC 1950.
u32 Adler32(zr::span<u8> data)
{
    constexpr u32 modulus = 65521;
    constexpr std::size_t safeRun = 5552; // so many bytes cannot overflow the sums
    u32 a = 1;
    u32 b = 0;
    for (std::size_t at = 0; at < data.size();) {
        const std::size_t end = at + std::min(safeRun, data.size() - at);
        for (; at < end; ++at) {
            a += data[at];
            b += a;
        }
        a %= modulus;
        b %= modulus;
    }
    return b << 16 | a;
}

/// Whether \p stored decompresses to what \p item says and ends exactly with its checksum. Decompressing
/// alone ignores what stands behind the end of the stream.
bool ProvesItself(const ZrLogItem& item, zr::span<u8> stored)
{
    QByteArray data;
    QString error;
    if (!zr::unpack_payload(item, stored, &data, &error))
        return false;
    return stored.size() == lengthPrefix
        || (stored.size() >= lengthPrefix + checksumSize
            && qFromBigEndian<quint32>(stored.data() + stored.size() - checksumSize)
                == Adler32(zr::bytes_of(data)));
}

/// Whether at least half of the fixed bytes of a file header are left.
bool IsRemainsOfFileHeader(const ZrLogHeader& header)
{
    const auto expected = ZrLogHeader().Encode();
    const auto found = header.Encode();
    int matching = 0;
    constexpr int fixedBytes = 24; // magic, size and tag
    for (int i = 0; i < fixedBytes; ++i)
        matching += found[static_cast<std::size_t>(i)] == expected[static_cast<std::size_t>(i)] ? 1 : 0;
    return matching * 2 >= fixedBytes;
}

} // namespace

/// One run: goes through the source once, step by step.
struct ZrLogRecovery::Private
{
    ZrLogRecovery& owner;
    const QString outPath; ///< empty: nothing is written
    ZrDamagedLog log;
    ZrLogWriter out;
    bool open = false; ///< the new log has begun
    bool writeFailed = false;
    u64 pos = 0; ///< everything before is decided, or part of what is being lost
    bool expected = false; ///< an item should begin at `pos`
    u64 lostFrom = 0; ///< while nothing is expected: where the loss began
    eReason lostReason = BrokenFileHeader;
    int percent = -1;
    std::vector<u8> item; ///< header and payload of the item at hand

    Private(ZrLogRecovery& recovery, const QString& path)
        : owner(recovery)
        , outPath(path)
    {
        log.cancel = &owner.cancel;
    }

    Result& Report() { return owner.m_report; }

    bool Begin(double created);
    bool Start();
    void Step();
    void Search();
    void ReportProgress();

    void TakePlain(const ZrLogItem& header);
    void TakeCompressed(const ZrLogItem& header);
    void TakeEmpty(const ZrLogItem& header);
    void TakeOverhanging(const ZrLogItem& header);
    void TakeBroken();
    void Repair(ZrLogItem header, u64 end);

    bool Load(const ZrLogItem& header);
    zr::span<u8> Payload();
    void Keep(bool repaired = false);
    void KeepAt(const ZrLogItem& header);
    void AddRange(u64 from, u64 to, eReason reason, bool lost);
    void Lose(u64 to, eReason reason);
    void LoseAndSearch(u64 searchFrom, eReason reason);
};

bool ZrLogRecovery::Private::Begin(double created)
{
    open = outPath.isEmpty() || out.Open(outPath, created);
    writeFailed = !open;
    return open;
}

/// Decides about the file header.
bool ZrLogRecovery::Private::Start()
{
    ZrLogHeader header;
    const bool there = log.FileHeaderAt(0, header);
    const bool sound = there && header.magic == ZrLogHeader::Magic && header.headerSize == ZrLogHeader::Size;
    Report().fileHeaderSound = sound;
    if (sound) {
        pos = ZrLogHeader::Size;
        expected = true;
        return Begin(header.created);
    }
    if (there && IsRemainsOfFileHeader(header)) {
        Lose(ZrLogHeader::Size, BrokenFileHeader);
        expected = true;
    }
    return true;
}

void ZrLogRecovery::Private::ReportProgress()
{
    if (!owner.progress || log.Size() == 0)
        return;
    const int now = static_cast<int>(
        static_cast<double>(std::min(pos, log.Size())) * 100.0 / static_cast<double>(log.Size()));
    if (now == percent)
        return;
    percent = now;
    owner.progress->UpdateProgress(percent);
}

void ZrLogRecovery::Private::AddRange(u64 from, u64 to, eReason reason, bool lost)
{
    if (to <= from)
        return;
    Result& report = Report();
    ++report.rangeCount;
    if (lost)
        report.bytesLost += to - from;
    const Range range{from, to - from, reason, lost};
    if (report.ranges.size() < MaxRanges)
        report.ranges.push_back(range);
    if (owner.rangeFound)
        owner.rangeFound(range);
}

/// Gives up everything from `pos` up to \p to, where an item is expected again.
void ZrLogRecovery::Private::Lose(u64 to, eReason reason)
{
    AddRange(pos, to, reason, true);
    pos = to;
    expected = true;
}

/// Gives up everything from `pos` to the next run of items that begins at \p searchFrom or behind it.
void ZrLogRecovery::Private::LoseAndSearch(u64 searchFrom, eReason reason)
{
    lostFrom = pos;
    lostReason = reason;
    pos = searchFrom;
    expected = false;
}

/// Reads the item at `pos` with \p header in the place of its own.
bool ZrLogRecovery::Private::Load(const ZrLogItem& header)
{
    if (item.capacity() > keptCapacity)
        item = std::vector<u8>();
    item.resize(static_cast<std::size_t>(itemSize + header.storedSize));
    const auto bytes = header.Encode();
    std::copy(bytes.begin(), bytes.end(), item.begin());
    return log.Read(pos + itemSize, item.data() + itemSize, header.storedSize);
}

zr::span<u8> ZrLogRecovery::Private::Payload()
{
    return zr::span<u8>(item).subspan(itemSize, item.size() - itemSize);
}

/// Writes the item that was loaded.
void ZrLogRecovery::Private::Keep(bool repaired)
{
    const ZrLogItem header = ZrLogItem::Decode(item.data());
    if (!open && !Begin(header.time))
        return;
    if (!outPath.isEmpty() && !out.WriteRaw(item)) {
        writeFailed = true;
        return;
    }
    ++Report().kept;
    Report().repaired += repaired ? 1 : 0;
    if (owner.itemKept)
        owner.itemKept({pos, header, Payload(), repaired});
    pos += item.size();
}

void ZrLogRecovery::Private::KeepAt(const ZrLogItem& header)
{
    if (Load(header))
        Keep();
}

void ZrLogRecovery::Private::TakePlain(const ZrLogItem& header)
{
    const u64 payload = pos + itemSize;
    const u64 end = payload + header.storedSize;
    if (log.EndsSurely(end))
        return KeepAt(header);
    const u64 across = std::min(log.ChainAcross(payload, end), log.FileHeaderAcross(end));
    if (log.Stopped())
        return;
    if (across != ZrDamagedLog::NoPos)
        return Lose(across, MissingBytes);
    if (log.EndsLikely(end))
        return KeepAt(header);
    if (log.EndsInHole(payload, end)) {
        Lose(end, Hole);
        return LoseAndSearch(end, BrokenHeader);
    }
    ++Report().doubtful;
    AddRange(pos, end, DoubtfulEnd, !owner.keepDoubtful);
    if (owner.keepDoubtful)
        KeepAt(header);
    pos = end;
    LoseAndSearch(end, BrokenHeader);
}

void ZrLogRecovery::Private::TakeCompressed(const ZrLogItem& header)
{
    if (!Load(header))
        return;
    if (ProvesItself(header, Payload()))
        return Keep();
    const u64 payload = pos + itemSize;
    const u64 end = payload + header.storedSize;
    const bool sure = log.EndsSurely(end);
    // Its own size may be what is damaged.
    const u64 within = sure ? log.ChainTo(payload, end) : log.ChainAcross(payload, end);
    if (log.Stopped())
        return;
    if (within != ZrDamagedLog::NoPos)
        return Lose(within, BrokenPayload);
    if (sure || log.EndsLikely(end))
        return Lose(end, BrokenPayload);
    LoseAndSearch(payload, BrokenPayload);
}

/// Both sizes are 0: an item without payload, or one that its writer did not complete.
void ZrLogRecovery::Private::TakeEmpty(const ZrLogItem& header)
{
    const u64 payload = pos + itemSize;
    const bool compressed = header.compressed != 0;
    if (log.EndsSurely(payload))
        return compressed ? Lose(payload, LostPlaceholder) : KeepAt(header);
    if (log.HeaderInHole(pos))
        return LoseAndSearch(payload, Hole);
    if (!compressed && log.EndsLikely(payload))
        return KeepAt(header);
    u64 end = std::min(log.NextChainInClaim(payload, header.time), log.Size());
    if (end - payload >= ZrLogHeader::Size && log.IsFileHeader(end - ZrLogHeader::Size))
        end -= ZrLogHeader::Size;
    if (!log.Stopped())
        Repair(header, end);
}

void ZrLogRecovery::Private::Repair(ZrLogItem header, u64 end)
{
    const u64 size = end - pos - itemSize;
    if (size > ZrLogWriter::MaxPayload)
        return Lose(end, LostPlaceholder);
    header.storedSize = header.dataSize = static_cast<u32>(size);
    if (!Load(header))
        return;
    if (header.compressed != 0) {
        if (size < lengthPrefix)
            return Lose(end, LostPlaceholder);
        header.dataSize = qFromBigEndian<quint32>(Payload().data());
        const auto bytes = header.Encode();
        std::copy(bytes.begin(), bytes.end(), item.begin());
        if (!ProvesItself(header, Payload()))
            return Lose(end, LostPlaceholder);
    }
    Keep(true);
}

/// A header in every field, but the file ends within its payload.
void ZrLogRecovery::Private::TakeOverhanging(const ZrLogItem& header)
{
    const u64 next = log.NextChainInClaim(pos + itemSize, header.time);
    if (log.Stopped())
        return;
    if (next == ZrDamagedLog::NoPos)
        Lose(log.Size(), CutOff);
    else
        Lose(next, MissingBytes);
}

void ZrLogRecovery::Private::TakeBroken()
{
    const u64 end = log.EndOfBroken(pos);
    if (log.Stopped())
        return;
    if (end == ZrDamagedLog::NoPos)
        return LoseAndSearch(pos + 1, BrokenHeader);
    // What stands there is sound and in the right place, so it need not lead to others.
    Lose(end, BrokenHeader);
}

/// Goes to the next run of items.
void ZrLogRecovery::Private::Search()
{
    const u64 next = log.NextChain(pos);
    if (log.Stopped())
        return;
    pos = lostFrom;
    Lose(std::min(next, log.Size()), lostReason);
}

void ZrLogRecovery::Private::Step()
{
    if (!expected)
        return Search();
    if (log.IsFileHeader(pos))
        return Lose(pos + ZrLogHeader::Size, InnerFileHeader);
    ZrLogItem header;
    switch (log.HeaderAt(pos, header)) {
    case ZrDamagedLog::NoHeader:
        return TakeBroken();
    case ZrDamagedLog::Overhanging:
        return TakeOverhanging(header);
    case ZrDamagedLog::Sound:
        break;
    }
    if (header.storedSize == 0)
        return TakeEmpty(header);
    return header.compressed != 0 ? TakeCompressed(header) : TakePlain(header);
}

ZrLogRecovery::ZrLogRecovery() = default;
ZrLogRecovery::~ZrLogRecovery() = default;

bool ZrLogRecovery::Fail(eState state, const QString& error)
{
    m_state = state;
    m_error = error;
    return false;
}

bool ZrLogRecovery::Run(const QString& in, const QString& out)
{
    m_report = Result();
    if (zr::is_same_file(in, out))
        return Fail(Refused,
            QCoreApplication::translate("ZrLogRecovery", "%1 and %2 are the same file.").arg(in, out));
    if (!zr::is_possible_path(out))
        return Fail(NotWritten,
            QCoreApplication::translate("ZrLogRecovery", "There is no name to write the new log to."));
    return Process(in, out);
}

bool ZrLogRecovery::Examine(const QString& in)
{
    return Process(in, QString());
}

bool ZrLogRecovery::Process(const QString& in, const QString& out)
{
    m_state = Idle;
    m_error.clear();
    m_report = Result();
    Private run(*this, out);
    if (!run.log.Open(in))
        return Fail(Unreadable,
            QCoreApplication::translate("ZrLogRecovery", "Cannot read %1: %2.").arg(in, run.log.Error()));
    m_report.sourceBytes = run.log.Size();

    bool goesOn = run.Start();
    while (goesOn && (run.pos < run.log.Size() || !run.expected)) {
        run.ReportProgress();
        run.Step();
        goesOn = !run.log.Stopped() && !run.writeFailed;
    }
    if (!run.log.Error().isEmpty())
        return Fail(Unreadable,
            QCoreApplication::translate("ZrLogRecovery", "Cannot read %1: %2.").arg(in, run.log.Error()));
    if (cancel)
        return Fail(Cancelled, QCoreApplication::translate("ZrLogRecovery", "The recovery was cancelled."));
    if (!run.writeFailed && !run.open)
        return Fail(NothingFound,
            QCoreApplication::translate("ZrLogRecovery", "%1 holds neither a log header nor an item.")
                .arg(in));
    if (run.writeFailed || (!out.isEmpty() && !run.out.Commit()))
        return Fail(NotWritten, run.out.Error());
    run.ReportProgress();
    m_state = Done;
    return true;
}

QString ZrLogRecovery::ReasonText(eReason reason)
{
    switch (reason) {
    case BrokenFileHeader:
        return QCoreApplication::translate("ZrLogRecovery", "no file header");
    case InnerFileHeader:
        return QCoreApplication::translate("ZrLogRecovery", "a file header between items");
    case BrokenHeader:
        return QCoreApplication::translate("ZrLogRecovery", "no item header");
    case CutOff:
        return QCoreApplication::translate("ZrLogRecovery", "the file ends within the item");
    case MissingBytes:
        return QCoreApplication::translate("ZrLogRecovery", "bytes of the item are missing");
    case BrokenPayload:
        return QCoreApplication::translate("ZrLogRecovery", "the compressed payload is damaged");
    case Hole:
        return QCoreApplication::translate("ZrLogRecovery", "the item ends in a zeroed sector");
    case LostPlaceholder:
        return QCoreApplication::translate(
            "ZrLogRecovery", "the payload of an interrupted item cannot be used");
    case DoubtfulEnd:
        return QCoreApplication::translate("ZrLogRecovery", "something unknown follows the item");
    }
    return QString();
}
