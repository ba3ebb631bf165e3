#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/files/ZrFileKeeper.h"
#include "ZrKit/planning/ZrPlanAreas.h"
#include "ZrKit/planning/ZrPlanDrafts.h"
#include "ZrKit/planning/ZrPlanSketch.h"
#include "ZrKit/planning/ZrPlanState.h"
#include "ZrKit/planning/ZrRouteCheck.h"
#include "ZrKit/planning/ZrRouteFinding.h"
#include "ZrKit/planning/ZrRouteHistory.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrUtil/ZrWpts.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class QTimer;
class ZrPlanReader;

/// A plan that is being worked on: a route, the areas that it covers or keeps clear of, one history of both,
/// the file it came from, and a draft on disk that survives whatever happens to the program.
///
/// \code
/// ZrPlanDocument plan(draftPath, keptFolder);
/// if (plan.HasDraft() && !plan.RestoreDraft())
///     tell(plan.Error());
/// plan.History().Add(lat, lng, eZrWptBlue, ZrWpts::eAddTail);
/// plan.Edited(); // after every edit of the route: updates what depends on it, and the draft
/// plan.SetMargin(20.0);
/// plan.Undo(); // the margin
/// plan.Undo(); // the waypoint
/// if (!plan.Save(path))
///     tell(plan.Error());
/// \endcode
///
/// The draft is replaced in one step, by a thread of its own that begins at once after an edit; of edits that
/// follow within `DraftMilliseconds`, as in a drag, the last one is written when they pause, and one every
/// `DraftMostMilliseconds` while they do not. It is removed when the plan is saved whole, when undo makes it
/// what its file has, and when nothing is left in a plan that has no file. A draft that cannot be read is set
/// aside, as PATH.damaged, and never overwritten.
///
/// What was not saved when `New`, `Open`, `Take`, `Restore` or `RestoreKept` put another plan in its place is
/// kept in a folder, see `Kept`; they wait for the draft of it, which most often is written by then. Where it
/// cannot be kept the plan stays.
///
/// Plans saved in the settings form (.json) are held whole. Of other forms `NotHeld` tells what they leave
/// out; the plan then remains not saved.
///
/// `Open`, `Save`, `Export` and `RestoreKept` are for those who may wait. Others have a `ZrPlanReader` or a
/// `ZrPlanState` read or write in a thread of their own, and `Take` or `SetSaved` what came of it.
///
/// Lives on the user-interface thread, as routes do.
class ZR_KIT_EXPORT ZrPlanDocument : public QObject
{
    Q_OBJECT

public:
    static constexpr int DraftMilliseconds = 250;
    static constexpr int DraftMostMilliseconds = 1000;

    /// \param draftPath file of the draft; empty to keep none
    explicit ZrPlanDocument(const QString& draftPath, QObject* parent = nullptr);

    /// \param keptFolder folder of plans that were not saved; empty to keep none
    ZrPlanDocument(const QString& draftPath, const QString& keptFolder, QObject* parent = nullptr);
    ~ZrPlanDocument() override;

    ZrWpts& Route() { return m_route; }

    const ZrWpts& Route() const { return m_route; }

    /// Of the whole plan. After an undo or redo of its own, as after an edit, `Edited` is to be called.
    ZrRouteHistory& History() { return m_history; }

    const std::vector<ZrArea>& Areas() const { return m_areas.areas; } ///< that surveys are planned over

    const std::vector<ZrArea>& NoGo() const { return m_areas.noGo; } ///< that the path must keep clear of

    double Margin() const { return m_areas.margin; } ///< metres to keep from areas to keep clear of

    /// \name Edits
    /// Each is a step of the history, with `Edited`; one that leaves all as it was is none.
    /// @{
    void SetAreas(std::vector<ZrArea> areas);
    void SetNoGo(std::vector<ZrArea> areas);
    void SetMargin(double metres); ///< nothing for what is not finite

    /// Calls \p edit; \p name is what the history calls it.
    void ChangeAreas(const QString& name, const std::function<void(ZrPlanAreas&)>& edit);

    bool Undo(); ///< false when there is nothing to undo
    bool Redo();

    /// @}

    /// Counts edits, and plans that took the place of others: the same number is the same plan.
    int Revision() const { return m_revision; }

    /// The ring that is being drawn. It is in the draft and in kept plans, in no file and in no step; a plan
    /// with one is not saved.
    const ZrPlanSketch& Sketch() const { return m_sketch; }

    void SetSketch(const ZrPlanSketch& sketch);

    /// Makes an area of the ring, a new one or the one whose corners it has, and a step of the history. False
    /// for fewer than three corners; the ring is gone in any case.
    bool FinishSketch();

    void DeleteArea(int index, bool isNoGo); ///< a step as well; nothing for an index of none

    /// To be called after every edit of the route.
    void Edited();

    /// The way along the route, of the state at the last edit.
    const ZrRoutePath& Path();

    /// What is to be said about it, likewise.
    const std::vector<ZrRouteFinding>& Findings();

    int LineCount() const { return LinesOf(m_route); }

    /// Survey lines: legs of waypoints named "… S" to "… E" by a pattern.
    static int LinesOf(const ZrWpts& route);

    /// \name File
    /// @{
    QString FilePath() const { return m_path; } ///< empty for a plan that was never saved

    QString Name() const; ///< of the file, or "New plan"

    /// Differs from its file, or there is something that its file does not hold; false for an empty new plan.
    bool IsDirty() const;

    bool New(); ///< an empty plan. False, with the reason in `Error`, when the one before cannot be kept

    /// Replaces the plan by that of a file. False, with the reason in `Error` and the plan as it was.
    bool Open(const QString& path);

    /// Replaces the file, in the form that its suffix names. False, with the reason in `Error`.
    bool Save(const QString& path);

    /// What the file of the last `Save` or `SetSaved` does not hold, parts of a sentence: "2 areas", "turn
    /// radii".
    QStringList NotHeld() const { return m_notHeld; }

    /// Writes the route into a file of any form; the plan keeps its own.
    bool Export(const QString& path);

    /// Makes the plan, the draft or the plan of `Kept` that was read the plan, once. False, with the reason
    /// in `Error` and the plan as it was. To be called when it could not be read as well: a draft is set
    /// aside then.
    bool Take(ZrPlanReader& reader);

    /// The plan as it is now.
    ZrPlanState State() const;

    /// Replaces the plan by that of a state, as one that is not saved: undoes `New` or `Open`. \p kept is the
    /// `KeptPath` of it, and no longer there then. False, with the reason in `Error` and the plan as it was,
    /// when that cannot be kept.
    bool Restore(const ZrPlanState& state, const QString& kept = QString());

    /// \p state was written to \p path, which is the file from now on; \p notHeld is what
    /// `ZrPlanState::NotHeld` says of both. What was edited since is not saved, nor is a plan of which
    /// something is not held. False, and nothing happens, when the plan is another one by now.
    bool SetSaved(const QString& path, const ZrPlanState& state, const QStringList& notHeld);

    QString Error() const { return m_error; }

    QStringList Warnings() const { return m_warnings; } ///< of the last `Open`, `Save` or `Export`

    /// @}

    /// \name Draft
    /// @{
    QString DraftPath() const { return m_draft.Path(); } ///< empty for none

    bool HasDraft() const; ///< left by a program that ended without saving, or of this plan

    /// Where the draft of a run before is that nobody has looked at: `DraftPath`, until an edit needs that
    /// place, then a path of `Kept`, or `AsidePath` where that cannot keep it. Empty for none, and once it
    /// was taken or discarded. Who reads it in another thread asks again then, and reads once more what
    /// moved.
    QString ForeignPath() const { return m_isForeign ? m_draft.Path() : m_foreignPath; }

    /// False, with the reason in `Error`, when it cannot be read; it is set aside then, see `AsidePath`.
    bool RestoreDraft();

    QString AsidePath() const { return m_asidePath; } ///< of the draft set aside; empty for none

    void DiscardDraft();
    void FlushDraft(); ///< writes what waits to be written, and waits for it

    /// @}

    /// \name Plans that were not saved
    /// @{
    const ZrPlanDrafts* Kept() const { return m_kept.get(); } ///< null without a folder for them

    /// Where the plan is that the last `New`, `Open`, `Take`, `Restore` or `RestoreKept` has put away; empty
    /// when there was nothing to keep.
    QString KeptPath() const { return m_keptPath; }

    /// Replaces the plan by one of `Kept`, which is then no longer there. False, with the reason in `Error`
    /// and all as it was.
    bool RestoreKept(const QString& path);
    /// @}

Q_SIGNALS:
    void Changed(); ///< the route, the areas or the file
    void DraftFailed(const QString& error); ///< the draft cannot be written; told once until it can again

private:
    void Forget();
    bool IsEmpty() const; ///< of all but settings of the route
    bool NeedsDraft() const;
    void MatchDraft();
    void Drafted();
    void RemoveDraft();
    void WriteDraft();
    void OnDraftDone(const QString& error);
    bool KeepUnsaved(const QString& spared = QString());
    void SecureForeign();
    bool PutAside();
    void Put(const ZrPlanState& state);
    void PutUnsaved(const ZrPlanState& state, const QString& kept);
    bool Fail(const QString& error);

    ZrWpts m_route;
    ZrPlanAreas m_areas;
    ZrRouteHistory m_history;
    ZrPlanSketch m_sketch;
    bool m_isLoose = false; ///< whatever the history says, no file holds all of it
    std::unique_ptr<ZrRoutePath> m_pathway;
    std::unique_ptr<std::vector<ZrRouteFinding>> m_findings;
    int m_revision = 0;
    QString m_path;
    ZrFileKeeper m_draft;
    std::shared_ptr<const QByteArray> m_written; ///< what the draft was made of last; null for nothing
    std::unique_ptr<ZrPlanDrafts> m_kept;
    QString m_keptPath;
    QString m_returned; ///< the plan was kept there; to be removed when it is in the draft
    QString m_asidePath;
    QTimer* m_draftTimer;
    QElapsedTimer m_draftWait; ///< since the first edit that is not in the draft
    bool m_isDraftDue = false;
    bool m_isForeign = false; ///< the draft is of a run before, and was not looked at
    QString m_foreignPath; ///< where it went before it was looked at
    bool m_isStuck = false; ///< the draft is damaged and cannot be set aside
    bool m_hasDraftFailed = false;
    int m_plan = 0; ///< counted: `New`, `Take` and `Restore` begin another one
    QString m_error;
    QStringList m_warnings;
    QStringList m_notHeld;
};
