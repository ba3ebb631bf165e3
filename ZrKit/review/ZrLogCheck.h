#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrLogRecovery.h"
#include "ZrUtil/ZrTypes.h"

#include <QString>

#include <atomic>
#include <vector>

class IZrProgress;

/// Looks through a whole log for everything that is wrong with it, and goes on behind damage.
///
/// Found are: what `ZrLogRecovery` could not bring into a clean log or would have to repair, compressed
/// payloads that do not decompress, times that are no numbers, and payloads that do not fit the record type
/// that the library or the kit knows. Of one place one problem is told. A clock that was set back is counted
/// and is no problem. The log is only read, once; memory holds what the recovery needs, one item
/// decompressed, and at most `MaxProblems` problems.
///
/// One thread at a time; `cancel` may be set from another thread or a signal handler.
class ZR_KIT_EXPORT ZrLogCheck
{
    ZrLogRecovery m_recovery;

public:
    static constexpr std::size_t MaxProblems = 1000; ///< kept in words; all are counted

    struct Problem
    {
        u64 pos = 0; ///< of the item, or of the damaged bytes
        u64 length = 0; ///< bytes concerned
        QString text;
    };

    IZrProgress* progress = nullptr; ///< told each whole percent of the log; may be null
    std::atomic<bool>& cancel = m_recovery.cancel; ///< set to end `Run` soon

    ZrLogCheck() = default;
    ZrLogCheck(const ZrLogCheck&) = delete;
    ZrLogCheck& operator=(const ZrLogCheck&) = delete;

    /// Checks \p path. False when it cannot be read or `cancel` was set: then `Error` says why.
    bool Run(const QString& path);

    const std::vector<Problem>& Problems() const { return m_problems; } ///< in the order of the file

    u64 ProblemCount() const { return m_count; }

    u64 Items() const { return m_items; } ///< items that can be read, with problems inside or not

    u64 BackwardJumps() const { return m_jumps; } ///< items earlier than the one before them

    QString Error() const { return m_error; } ///< a sentence; empty after success

private:
    void Add(u64 pos, u64 length, const QString& text);
    void TakeItem(const ZrLogRecovery::Kept& item);

    std::vector<Problem> m_problems;
    u64 m_count = 0;
    u64 m_items = 0;
    u64 m_jumps = 0;
    u64 m_lastProblem = 0; ///< its position
    double m_lastTime = 0.0; ///< of the last item that has a time; NaN before the first
    QString m_error;
};
