#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrLogEvt.h"
#include "ZrUtil/ZrTypes.h"

#include <QCoreApplication>
#include <QString>

#include <cstddef>
#include <vector>

/// The events of a recording as a person edits them: in order, with undo and redo, kept in the event file
/// beside the log.
///
/// \code
/// ZrEventList events;
/// events.Load(logPath);
/// events.Add(ZrLogEvt(time, esUser, text));
/// if (!events.Save(&error))
///     …
/// \endcode
///
/// Events stand in ascending order of time, those without a time last; a new one stands in front of those of
/// the same time, as in the event file. An event keeps its `Id` through all changes, undo and redo; its index
/// changes with the order.
///
/// `Save` makes in the event file the changes made here since the last `Load` or `Save`, under its lock, and
/// leaves alone what other programs have changed meanwhile: their new events are here after it. An event that
/// both have changed is as it is here; one removed here is gone; one removed there and changed here is
/// there again.
///
/// A value; one thread at a time.
class ZR_KIT_EXPORT ZrEventList
{
    Q_DECLARE_TR_FUNCTIONS(ZrEventList)

public:
    static constexpr std::size_t MostSteps = 1000; ///< that can be undone; the oldest are forgotten

    /// Replaces the list by the event file of \p logPath; without one it is empty. Undo and redo are empty
    /// then. False, with a sentence in \p error (may be null), when the file is damaged, and what is in front
    /// of the damage was read, or cannot be read.
    bool Load(const QString& logPath, QString* error = nullptr);

    /// Adds those of \p found, the events that the log itself holds, that the event file should have taken
    /// over at `Load` (see `ZrEventFile::TakeOver`, also for \p known) and could not. They are saved with the
    /// next change, unless they are in the file by then, and cannot be undone; those that were removed here
    /// do not come back from the log either. Once after `Load`.
    void AddUnsaved(const std::vector<ZrLogEvt>& found, std::size_t known = 0);

    /// Writes what was changed; see above. False, with a sentence in \p error (may be null) and the file as
    /// it was, when it cannot be written; also when it alone could be, not which events of the log it has
    /// taken over. Nothing is written without changes.
    bool Save(QString* error = nullptr);

    /// Whether there is something to save.
    bool IsChanged() const;

    std::size_t Count() const { return m_entries.size(); }

    const ZrLogEvt& At(std::size_t index) const { return m_entries[index].evt; }

    u64 Id(std::size_t index) const { return m_entries[index].id; }

    /// The index of the event \p id; `Count` when it is not in the list.
    std::size_t IndexOf(u64 id) const;

    /// The times of all events in order, seconds since the epoch; for steps of a `ZrPlayClock`.
    std::vector<double> Times() const;

    /// Adds \p evt, with a new uid if it has none; its id.
    u64 Add(ZrLogEvt evt);

    /// Replaces the event \p id, whose uid stays. False when there is none or nothing is different.
    bool Edit(u64 id, ZrLogEvt evt);

    /// False when there is none.
    bool Remove(u64 id);

    bool CanUndo() const { return m_done > 0; }

    bool CanRedo() const { return m_done < m_steps.size(); }

    /// What `Undo` would take back, e.g. "Add event \"Wreck\""; empty when there is nothing.
    QString UndoText() const;
    QString RedoText() const;

    /// The id of the event that has changed by it, 0 when there was nothing to do.
    u64 Undo();
    u64 Redo();

    /// The first event behind \p time and the last one before it; `Count` when there is none. NaN is
    /// nowhere.
    std::size_t Next(double time) const;
    std::size_t Previous(double time) const;

private:
    struct Entry
    {
        u64 id;
        ZrLogEvt evt;
    };

    /// One change: an event that was added has nothing before, one that was removed nothing behind.
    struct Step
    {
        u64 id;
        bool hadBefore;
        bool hasAfter;
        ZrLogEvt before;
        ZrLogEvt after;
        std::size_t index; ///< where it stood before
    };

    void Do(Step step);
    void Put(u64 id, bool there, const ZrLogEvt& evt, std::size_t hint);
    static QString TextOf(const Step& step);
    void Adopt(const std::vector<ZrLogEvt>& events);

    QString m_logPath;
    std::vector<Entry> m_entries;
    std::vector<Entry> m_saved; ///< what the file held when it was read or written last
    std::vector<ZrLogEvt> m_found; ///< of the log, which the file did not take over
    std::size_t m_known = 0; ///< the first of them, which it did after all
    std::vector<Entry> m_unsaved; ///< those of them that were added to the list, as they were
    bool m_isToSave = false; ///< whatever has become of them
    std::vector<Step> m_steps;
    std::size_t m_done = 0; ///< steps that are not undone
    u64 m_lastId = 0;
};
