#pragma once

#include "ZrKit/planning/ZrPlanDrafts.h"
#include "ZrKit/planning/ZrPlanState.h"
#include "ZrKit/review/ZrWorker.h"

#include <QObject>
#include <QQueue>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class SurveyView;
class ZrChoicePanel;
class ZrFilePanel;
class ZrPlanReader;

/// Where plans come from and go to: new, open, save, export, and the draft of a plan that was not saved.
/// Nothing asks whether it is meant: what goes can be brought back.
///
/// Files are read and written in a thread of their own, one after the other in the order asked for.
class PlanFiles : public QObject
{
    Q_OBJECT

public:
    PlanFiles(SurveyView& view, QObject* parent);
    ~PlanFiles() override; ///< what is to be written is written

    void New();
    void ShowOpen();
    void Save(); ///< asks for a file if the plan has none
    void ShowSaveAs();
    void ShowExport();
    void ShowAreas(); ///< reads survey areas from a file
    bool HasKept() const; ///< there are plans that were not saved
    void ShowKept(); ///< for one of them to be taken up again
    void Open(const QString& path); ///< `Opened` tells, or a message
    void Restyle();

    void RestoreDraft(); ///< begins to read what was not saved when the program ended
    void TellDraft(); ///< says so, now or when it is read

    ZrFilePanel& Panel() const { return *m_panel; }

    bool IsBusy() const { return m_worker->IsWorking(); } ///< with a file

    bool IsRestoring() const { return m_isRestoring; } ///< the draft is still being read

Q_SIGNALS:
    void Opened(); ///< the plan is another one
    void Restored(); ///< the draft is the plan, before anything else was
    void AreasRead(int count); ///< into the plan, a step of its history
    void BusyChanged();

private:
    enum eTask : int
    {
        taskOpen,
        taskSave,
        taskExport,
        taskAreas
    };

    struct Writing;

    void Show(eTask task, const QString& title, bool isSaving, const QStringList& suffixes);
    void Take(const QString& path);
    void SaveTo(const QString& path);
    void Export(const QString& path);
    void Write(const std::function<void(Writing&)>& work, const std::function<void(const Writing&)>& then);
    void ReadAreas(const QString& path);
    void ChooseKept(const std::vector<ZrPlanDrafts::Entry>& entries);
    void RestoreKept(const QString& path);
    void ReadDraft(const QString& path);
    void TakeDraft(ZrPlanReader& reader);
    void EndRestoring();
    void TellUnread(const QString& error);
    void TellLost(const QString& text, const std::shared_ptr<const ZrPlanState>& before);
    std::shared_ptr<const ZrPlanState> Unsaved() const;
    void TellSaved(const QString& path, bool isPlan, const QStringList& notHeld, const QStringList& warnings);
    void Run(const std::function<void()>& work, const std::function<void()>& then);
    void StartNext();
    void OnFinished();

    /// What is done with a file, and what then is done with what came of it.
    struct Job
    {
        std::function<void()> work; ///< in the worker's thread
        std::function<void()> then;
    };

    SurveyView& m_view;
    QQueue<Job> m_jobs; ///< the first one is under way
    std::unique_ptr<ZrWorker> m_worker; ///< ends before what still waits is done
    ZrFilePanel* m_panel;
    ZrChoicePanel* m_kept;
    eTask m_task = taskOpen;
    QString m_draftProblem;
    bool m_hasRestored = false;
    bool m_isRestoring = false;
    bool m_isTellingDue = false;
};
