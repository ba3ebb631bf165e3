#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class SurveyView;
class ZrChoicePanel;
class ZrFilePanel;
class ZrPlanReview;

/// Where plans come from and go to: new, open, save, export, and the draft of a plan that was not saved.
/// Nothing asks whether it is meant: what goes can be brought back.
class PlanFiles : public QObject
{
    Q_OBJECT

public:
    PlanFiles(SurveyView& view, ZrPlanReview& review, QObject* parent);

    void New();
    void ShowOpen();
    void Save(); ///< asks for a file if the plan has none
    void ShowSaveAs();
    void ShowExport();
    void ShowAreas(); ///< reads survey areas from a file
    bool Open(const QString& path); ///< false, after a message
    void Restyle();

    void RestoreDraft(); ///< what was not saved when the program ended; told by `TellDraft`
    void TellDraft();

    ZrFilePanel& Panel() const { return *m_panel; }

Q_SIGNALS:
    void Opened(); ///< the plan is another one

private:
    enum eTask : int
    {
        taskOpen,
        taskSave,
        taskExport,
        taskAreas
    };

    void Show(eTask task, const QString& title, bool isSaving, const QStringList& suffixes);
    void Take(const QString& path);
    bool SaveTo(const QString& path);
    void ReadAreas(const QString& path);
    void TellLost(const QString& text, const QByteArray& state, bool wasDirty);

    SurveyView& m_view;
    ZrPlanReview& m_review;
    ZrFilePanel* m_panel;
    eTask m_task = taskOpen;
    QString m_draftProblem;
    bool m_hasRestored = false;
};
