#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/files/ZrFileKeeper.h"
#include "ZrKit/planning/ZrArea.h"
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

#include <memory>
#include <vector>

class QTimer;
class ZrPlanReader;

/// A plan that is being worked on: a route with undo, the areas that it covers or keeps clear of, the file it
/// came from, and a draft on disk that survives whatever happens to the program.
///
/// \code
/// ZrPlanDocument plan(draftPath);
/// if (plan.HasDraft())
///     offer([&] { plan.RestoreDraft(); }, [&] { plan.DiscardDraft(); });
/// plan.History().Add(lat, lng, eZrWptBlue, ZrWpts::eAddTail);
/// plan.Edited(); // after every edit of the route: updates what depends on it, and the draft
/// if (!plan.Save(path))
///     tell(plan.Error());
/// \endcode
///
/// The draft is replaced in one step, by a thread of its own that begins at once after an edit; of edits that
/// follow within `DraftMilliseconds`, as in a drag, the last one is written when they pause, and one every
/// `DraftMostMilliseconds` while they do not. It is removed when the plan is saved, or abandoned by `New`,
/// `Open` or `DiscardDraft`. Plans saved in the settings form (.json) hold the areas as well; other forms
/// hold the route alone.
///
/// `Open`, `Save` and `Export` are for those who may wait. Others have a `ZrPlanReader` or a `ZrPlanState`
/// read or write in a thread of their own, and `Take` or `SetSaved` what came of it.
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
    ~ZrPlanDocument() override;

    ZrWpts& Route() { return m_route; }

    const ZrWpts& Route() const { return m_route; }

    ZrRouteHistory& History() { return m_history; }

    const std::vector<ZrArea>& Areas() const { return m_areas; } ///< that surveys are planned over

    const std::vector<ZrArea>& NoGo() const { return m_noGo; } ///< that the path must keep clear of

    void SetAreas(std::vector<ZrArea> areas); ///< counts as an edit
    void SetNoGo(std::vector<ZrArea> areas); ///< likewise

    double Margin() const { return m_margin; } ///< metres to keep from areas to keep clear of

    void SetMargin(double metres);

    /// To be called after every edit of the route.
    void Edited();

    /// The way along the route, of the state at the last edit.
    const ZrRoutePath& Path();

    /// What is to be said about it, likewise.
    const std::vector<ZrRouteFinding>& Findings();

    int LineCount() const; ///< survey lines: legs of waypoints named "… S" to "… E" by a pattern

    /// \name File
    /// @{
    QString FilePath() const { return m_path; } ///< empty for a plan that was never saved

    QString Name() const; ///< of the file, or "New plan"

    bool IsDirty() const; ///< differs from its file; false for an empty new plan

    void New(); ///< an empty plan

    /// Replaces the plan by that of a file. False, with the reason in `Error` and the plan as it was.
    bool Open(const QString& path);

    /// Replaces the file, in the form that its suffix names. False, with the reason in `Error`.
    bool Save(const QString& path);

    /// Writes the route into a file of any form; the plan keeps its own.
    bool Export(const QString& path);

    /// Makes the plan, or the draft, that was loaded the plan. False, with the reason in `Error` and the plan
    /// as it was.
    bool Take(ZrPlanReader& reader);

    /// The plan as it is now.
    ZrPlanState State() const;

    /// Replaces the plan by that of a state, as one that is not saved: undoes `New` or `Open`.
    void Restore(const ZrPlanState& state);

    /// \p state was written to \p path, which is the file from now on. What was edited since is not saved;
    /// nothing happens when the plan is another one by now.
    void SetSaved(const QString& path, const ZrPlanState& state);

    QString Error() const { return m_error; }

    QStringList Warnings() const { return m_warnings; } ///< of the last `Open`, `Save` or `Export`

    /// @}

    /// \name Draft
    /// @{
    QString DraftPath() const { return m_draft.Path(); } ///< empty for none

    bool HasDraft() const; ///< left by a program that ended without saving, or of this plan
    bool RestoreDraft(); ///< false, with the reason in `Error`, when it cannot be read
    void DiscardDraft();
    void FlushDraft(); ///< writes what waits to be written, and waits for it
    /// @}

Q_SIGNALS:
    void Changed(); ///< the route, the areas or the file
    void DraftFailed(const QString& error); ///< the draft cannot be written; told once until it can again

private:
    void Forget();
    void SetPath(const QString& path);
    void WriteDraft();
    void OnDraftDone(const QString& error);
    void Put(const ZrPlanState& state);
    bool Fail(const QString& error);

    ZrWpts m_route;
    ZrRouteHistory m_history;
    std::vector<ZrArea> m_areas;
    std::vector<ZrArea> m_noGo;
    double m_margin = 0.0;
    bool m_areasEdited = false;
    std::unique_ptr<ZrRoutePath> m_pathway;
    std::unique_ptr<std::vector<ZrRouteFinding>> m_findings;
    QString m_path;
    ZrFileKeeper m_draft;
    QTimer* m_draftTimer;
    QElapsedTimer m_draftWait; ///< since the first edit that is not in the draft
    bool m_isDraftDue = false;
    bool m_hasDraftFailed = false;
    int m_edits = 0; ///< counted
    int m_plan = 0; ///< likewise: `New`, `Take` and `Restore` begin another one
    QString m_error;
    QStringList m_warnings;
};
