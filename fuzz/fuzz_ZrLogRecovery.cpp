// A damaged log of any bytes: the recovery ends, its numbers add up, what it keeps stands in the source, and
// what it writes is a log that a player reads to its end and that needs no recovery.

#include "FuzzFile.h"
#include "ZrKit/review/ZrLogCheck.h"
#include "ZrKit/review/ZrLogRecovery.h"
#include "ZrUtil/ZrPlayer.h"

#include <QTemporaryDir>

#include <cstdlib>
#include <cstring>

namespace {

constexpr u64 headerSize = ZrLogItem::Size;

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Holds what a recovery tells against the source.
class Witness
{
public:
    Witness(ZrLogRecovery& recovery, const u8* data, std::size_t size)
        : m_data(data)
        , m_size(size)
    {
        recovery.itemKept = [this](const ZrLogRecovery::Kept& item) { Item(item); };
        recovery.rangeFound = [this](const ZrLogRecovery::Range& range) { Range(range); };
    }

    u64 items = 0;
    u64 bytesLost = 0;

private:
    void Item(const ZrLogRecovery::Kept& item)
    {
        ++items;
        Require(item.pos >= m_end && item.payload.size() == item.header.storedSize);
        m_end = item.pos + headerSize + item.payload.size();
        Require(m_end <= m_size);
        Require(item.payload.empty()
            || std::memcmp(item.payload.data(), m_data + item.pos + headerSize, item.payload.size()) == 0);
    }

    void Range(const ZrLogRecovery::Range& range)
    {
        Require(range.length > 0 && range.offset >= m_end && range.length <= m_size - range.offset);
        if (!range.lost)
            return;
        bytesLost += range.length;
        m_end = range.offset + range.length;
    }

    const u8* m_data;
    std::size_t m_size;
    u64 m_end = 0; ///< of what was told last
};

u64 ItemsPlayed(const QString& path)
{
    ZrPlayer player;
    u64 items = 0;
    Require(player.OpenFile(path));
    while (player.ReadNextItem(true))
        ++items;
    Require(player.pos == player.fileSize);
    return items;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    static const QTemporaryDir folder;
    const QString path = FuzzFile(data, size);
    const QString out = folder.filePath(QStringLiteral("out.log"));
    const QString again = folder.filePath(QStringLiteral("again.log"));
    for (const bool keepDoubtful : {true, false}) {
        ZrLogRecovery recovery;
        recovery.keepDoubtful = keepDoubtful;
        const Witness witness(recovery, data, size);
        if (!recovery.Run(path, out)) {
            Require(recovery.State() == ZrLogRecovery::NothingFound);
            break;
        }
        Require(witness.items == recovery.Report().kept && witness.bytesLost == recovery.Report().bytesLost);
        Require(ItemsPlayed(out) == recovery.Report().kept);
        ZrLogRecovery second;
        second.keepDoubtful = keepDoubtful;
        Require(second.Run(out, again));
        Require(second.Report().kept == recovery.Report().kept && second.Report().rangeCount == 0);
    }
    ZrLogCheck check;
    Require(check.Run(path) && check.Items() <= size);
    return 0;
}
