#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrMergedEvents.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QString>

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

class ZrDataset;

/// The event file beside a log (log path + ".evt"), changed so that no event is ever lost.
///
/// It is replaced in one step, or not at all. One that breaks off or cannot be understood to its end is first
/// copied to a name of its own, log path + ".evt.damaged" (with a number from the second on); one that cannot
/// be read is not replaced.
///
/// \code
/// if (!ZrEventFile::Update(log, [&evt](ZrEventFile& file) { file.Add(evt); return true; }, &error))
///     …
/// \endcode
///
/// One thread at a time. Programs that change the file by `Update` at the same time wait for each other.
class ZR_KIT_EXPORT ZrEventFile
{
public:
    enum eState : int
    {
        Missing,
        Whole,
        Damaged, ///< `events` holds those in front of the damage
        Unreadable ///< there, but it cannot be opened or read
    };

    std::vector<ZrLogEvt> events; ///< in the order of the file
    bool isWanted = false; ///< there is to be a file, though there are no events and none was there

    static QString PathOf(const QString& logPath);

    /// Replaces `events` by those of the file of \p logPath.
    eState Read(const QString& logPath);

    /// How the file was found.
    eState State() const { return m_state; }

    /// Adds \p evt in front of events of the same time.
    void Add(const ZrLogEvt& evt);

    /// Those of the log that this file, as it was read, has taken over already; none unless it is whole. With
    /// them the first \p known of \p found, of which that is known otherwise: by an index that was made of
    /// them.
    ZrMergedEvents Merged(const std::vector<ZrLogEvt>& found = {}, std::size_t known = 0) const;

    /// Adds those of \p found, the events that the log itself holds, in its order, which are neither among
    /// `events` nor among \p merged. Two are the same when their uids are, or, of two without, their times
    /// and texts; the one in the file stays, since it may have been edited. Of several equal ones as many are
    /// kept as the richer side has.
    void Merge(const std::vector<ZrLogEvt>& found, const ZrMergedEvents& merged = ZrMergedEvents());

    /// Those of \p found that `Merge` would add, in their order.
    std::vector<ZrLogEvt> NewOf(const std::vector<ZrLogEvt>& found, const ZrMergedEvents& merged) const;

    /// Removes all events with \p uid; how many there were.
    int Remove(const QUuid& uid);

    /// Whether `events` differ from what the file holds.
    bool IsChanged() const;

    /// Puts `events` into the file, if they differ. False with the reason in \p error, and the file is as
    /// before.
    bool Write(QString* error);

    /// Reads the file of \p logPath, has \p change change the list, and writes it unless that returns false,
    /// all under a lock (a file of its own while it lasts). False with the reason in \p error when the file
    /// cannot be locked or written.
    static bool Update(
        const QString& logPath, const std::function<bool(ZrEventFile&)>& change, QString* error);

    /// Merges \p found into the file of \p logPath, as `Merge` and `Merged` say, and keeps that they are
    /// taken over, all under the same lock; \p events become those of the file. False with the reason in \p
    /// error, and \p events as they were, when a file cannot be locked or written.
    static bool TakeOver(const QString& logPath, const std::vector<ZrLogEvt>& found,
        std::vector<ZrLogEvt>& events, QString* error, std::size_t known = 0);

    /// The same with a \p change of the list behind the merging, under that lock too. \p written is what the
    /// file holds then: also when that returns false, since it could not be kept what was taken over.
    static bool TakeOver(const QString& logPath, const std::vector<ZrLogEvt>& found, std::size_t known,
        const std::function<void(ZrEventFile&)>& change, std::optional<std::vector<ZrLogEvt>>& written,
        QString* error);

    /// Replaces the list of \p dataset by copies that know their records.
    void Fill(ZrDataset& dataset) const;

private:
    static bool Locked(const QString& logPath, const std::function<bool(ZrEventFile&)>& work, QString* error);
    QByteArray Encoded() const;
    bool KeepDamaged(QString* error) const;

    QString m_logPath;
    QString m_path;
    eState m_state = Missing;
    QByteArray m_bytes; ///< of the file
};
