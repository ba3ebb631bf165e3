#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrTypes.h"

#include <QFile>
#include <QString>

#include <atomic>
#include <vector>

/// Looks at any place of a damaged log and says what seems to stand there. For `ZrLogRecovery`, whose comment
/// has the rules.
///
/// Nothing is ever allocated or read by a size that the file claims: claims are followed by seeking. Memory
/// is a block of 1 MiB for going forward and one of 4 KiB for looking aside. A range that cannot be read, or
/// the cancel flag, ends every search with "nothing found"; `Stopped` tells. One thread at a time.
class ZR_KIT_EXPORT ZrDamagedLog
{
public:
    static constexpr u64 NoPos = ~u64{0};
    static constexpr u64 Sector = 512; ///< bytes that disks lose together

    enum eHeader : int
    {
        NoHeader, ///< not the header of an item
        Sound, ///< a header, and the file holds its payload
        Overhanging ///< a header in every field, but the file ends within its payload
    };

    const std::atomic<bool>* cancel = nullptr; ///< may be null

    bool Open(const QString& path);

    u64 Size() const { return m_size; }

    QString Error() const { return m_error; } ///< of the file; empty unless reading failed

    /// Whether reading failed or `cancel` is set: answers since then are worthless.
    bool Stopped() const { return !m_error.isEmpty() || (cancel && cancel->load()); }

    /// Copies the bytes of the file at \p pos. False when they cannot be read.
    bool Read(u64 pos, u8* out, u64 count);

    /// What stands at \p pos; \p item has the fields as they are, whatever the answer.
    eHeader HeaderAt(u64 pos, ZrLogItem& item);
    /// Whether a file header stands at \p pos, by magic, size and tag.
    bool IsFileHeader(u64 pos);
    /// The 48 bytes at \p pos as a file header, whatever they hold; false when the file is shorter.
    bool FileHeaderAt(u64 pos, ZrLogHeader& header);

    /// Whether an item certainly may end at \p pos: a sound item, a file header or the end of the file.
    bool EndsSurely(u64 pos);
    /// Whether what stands at \p pos are the remains of an item header.
    bool EndsLikely(u64 pos);
    /// Whether the payload from \p from to \p end runs into a zeroed sector that goes on behind it.
    bool EndsInHole(u64 from, u64 end);
    /// Whether the header at \p pos is zeroed from a sector boundary inside it to the end of that sector.
    bool HeaderInHole(u64 pos);

    /// The first place from \p from on where a run of items begins that can be trusted.
    u64 NextChain(u64 from);
    /// The same behind the header of an item made at \p time whose payload may hold whole items.
    u64 NextChainInClaim(u64 from, double time);
    /// An item that begins inside [from, end) with a run of items that leads beyond \p end; `NoPos` if none.
    u64 ChainAcross(u64 from, u64 end);
    /// A file header that begins before \p end and goes on behind it; `NoPos` if none.
    u64 FileHeaderAcross(u64 end);
    /// An item that begins inside [from, end) with a run of items that leads exactly to \p end.
    u64 ChainTo(u64 from, u64 end);
    /// Where the item at \p pos, its header damaged, seems to end, or where another begins within; `NoPos`
    /// if that cannot be told.
    u64 EndOfBroken(u64 pos);

private:
    struct Chain
    {
        int items = 0; ///< sound headers in a row, at most 3
        bool trusted = false;
        double times[3] = {};
    };

    /// A way from item to item.
    struct Run
    {
        int items = 0; ///< sound ones
        u64 last = 0; ///< position of the last of them
        u64 end = 0; ///< where it ends
    };

    const u8* Peek(u64 pos, u64 count);
    bool Fill(std::vector<u8>& block, u64& blockPos, u64 pos, u64 count);
    bool IsZero(u64 from, u64 to);
    int MatchingBytes(u64 pos, u64 count);
    u64 NextMagic(u64 from, u64 end);
    Chain ChainAt(u64 pos);
    Run Follow(u64 pos, u64 end);
    static u64 Behind(u64 pos, const Run& run);
    u64 PayloadPrefix(u64 pos);

    QFile m_file;
    QString m_error;
    u64 m_size = 0;
    std::vector<u8> m_block; ///< for going forward
    u64 m_blockPos = 0;
    std::vector<u8> m_aside; ///< for looking aside
    u64 m_asidePos = 0;
    u64 m_crossAt = NoPos; ///< the last answer of `ChainAcross`
    u64 m_crossEnd = 0; ///< where the run from there led
};
