#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrRecentLog.h"

#include <QCoreApplication>
#include <QHash>
#include <QString>

#include <atomic>
#include <cstddef>
#include <vector>

class IZrProgress;
class QFileInfo;

/// Lists the recordings of a folder, newest first, without reading them.
///
/// \code
/// ZrRecent recent;
/// const std::vector<ZrRecentLog> logs = recent.List(folder);
/// \endcode
///
/// Recordings are the files whose name ends in ".log" (in any case) or that begin as one. Of each the file
/// header is read; of those listed also the index and its stamp, when they were made from a log of this size,
/// else up to `Peeked` bytes at either end: the first items tell start and sonar, the last ones the end and
/// whether the log breaks off. An index that is believed by the size of its log alone may be wrong; loading
/// the dataset finds out.
///
/// A recording is damaged when its file header is none, the items at its ends do not follow each other, it
/// breaks off, or its stamp says so. What could not be found out is not called damaged.
///
/// Folders below are not entered; links are followed. One thread at a time; `cancel` may be set from any
/// thread or a signal handler.
class ZR_KIT_EXPORT ZrRecent
{
    Q_DECLARE_TR_FUNCTIONS(ZrRecent)

public:
    static constexpr u32 Peeked = 64 * 1024; ///< bytes

    IZrProgress* progress = nullptr; ///< told each whole percent; may be null
    std::atomic<bool> cancel{false}; ///< ends the work at the next file; never cleared here

    /// A file of a folder as it was read.
    struct Seen
    {
        qint64 size = 0; ///< bytes
        qint64 changed = 0; ///< ms since 1970
        bool isLog = false; ///< it begins as one
        double created = 0.0; ///< the time in its file header
    };

    /// Of what was seen before, by path, and has the same size and time, the header is not read again.
    QHash<QString, Seen> seen;

    /// All recordings of \p folder, the latest first by the times in their file headers; those without one
    /// come last. Of each there are path, size and that time alone. Else as `List`.
    std::vector<ZrRecentLog> Find(const QString& folder);

    /// At most \p most recordings of \p folder, by the times in their file headers; those without one come
    /// last. What was found before `cancel` was set. Empty, with a sentence in `Error`, when the folder
    /// cannot be read.
    std::vector<ZrRecentLog> List(const QString& folder, std::size_t most = 50);

    /// The summary of one recording.
    static ZrRecentLog Look(const QString& path);

    QString Error() const { return m_error; } ///< of the last `List`; else empty

private:
    static Seen LookAtHeader(const QFileInfo& info);
    void Report(double share);

    int m_percent = -1; ///< told last
    QString m_error;
};
