#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrSpan.h"
#include "ZrUtil/ZrTypes.h"

#include <QFile>
#include <QString>

#include <atomic>
#include <vector>

class IZrProgress;

/// Walks a data log from item header to item header without delivering payloads.
///
/// \code
/// ZrLogScan scan;
/// ZrLogItem item;
/// u64 pos = 0;
/// if (scan.Open(path))
///     while (scan.Next(item, pos)) { … }
/// if (scan.State() != ZrLogScan::AtEnd)
///     qInfo() << scan.Error() << "at" << scan.ErrorPos();
/// \endcode
///
/// It accepts and refuses exactly what `ZrPlayer::ReadNextItem` does and stops with the same message, but
/// looks at the headers alone: that a payload is there is concluded from the size of the file. Files are read
/// in blocks of up to 1 MiB, since reading on beats seeking for payloads of up to some hundred KiB; larger
/// payloads are skipped. Memory use does not depend on the file.
///
/// One thread at a time; `cancel` may be set from another thread or a signal handler.
class ZR_KIT_EXPORT ZrLogScan
{
public:
    enum eState : int
    {
        Closed, ///< nothing was opened yet
        Unreadable, ///< the file cannot be opened; `Error` says why
        Scanning, ///< at an item, or at the end without having noticed
        AtEnd, ///< the last item ended exactly at the end of the file
        Damaged, ///< the log cannot be read on from `ErrorPos`
        Cancelled ///< `cancel` was set
    };

    IZrProgress* progress = nullptr; ///< told each whole percent of the file; may be null
    std::atomic<bool> cancel{false}; ///< set to end the scan at the next item

    ZrLogScan() = default;
    ZrLogScan(const ZrLogScan&) = delete;
    ZrLogScan& operator=(const ZrLogScan&) = delete;

    /// Opens \p path and checks its header; true when the scan stands at the first item.
    bool Open(const QString& path);

    /// The header of the next item and its position in the file.
    /// False at the end, at damage and after a cancel; `State` tells which, the arguments stay untouched.
    bool Next(ZrLogItem& item, u64& pos);

    /// The first bytes of the payload of the item that `Next` has given last, as they are stored: \p most of
    /// them, or all when there are fewer. Empty when they cannot be read. Valid until the next call of
    /// `Next`, `SeekTo`, `Open` or this one. Costs next to nothing where the payload lies in the block that
    /// was read.
    zr::span<u8> PayloadStart(u32 most);

    /// Continues at \p pos, which must be the start of an item header to be useful; also after the end or
    /// damage. False when no log is open. A wrong position shows in the following `Next`.
    bool SeekTo(u64 pos);

    eState State() const { return m_state; }

    const ZrLogHeader& Header() const { return m_header; } ///< meaningful once `Open` has read it

    u64 FileSize() const { return m_fileSize; } ///< bytes, taken when the file was opened

    u64 Pos() const { return m_pos; } ///< where the next item header is expected

    /// Why the log is unreadable or damaged: the player's message, or a sentence about the file; else empty.
    QString Error() const { return m_error; }

    u64 ErrorPos() const
    {
        return m_errorPos;
    } ///< position of the damaged item's header; 0 for the file header

private:
    const u8* Bytes(u64 pos, u64 count);
    bool FillFrom(u64 pos, u64 least);
    bool PayloadFits(u64 pos, u64 size) const;
    bool Fail(const QString& message, u64 pos);
    void Report();

    QFile m_file;
    ZrLogHeader m_header;
    bool m_sound = false; ///< the file header was read and accepted
    eState m_state = Closed;
    QString m_error;
    u64 m_errorPos = 0;
    u64 m_fileSize = 0;
    u64 m_pos = 0;
    u64 m_payloadPos = 0; ///< of the item given last
    u32 m_payloadSize = 0;
    int m_percent = -1; ///< last one reported
    std::vector<u8> m_block; ///< bytes of the file from `m_blockPos` on
    u64 m_blockPos = 0;
    u64 m_window = 0; ///< size of the block read next
};
