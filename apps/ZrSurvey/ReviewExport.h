#pragma once

#include "ZrKit/review/ZrWorker.h"
#include "ZrKit/survey/ZrSurveyExport.h"

#include <QObject>

#include <memory>

class SurveyView;
class ZrChoicePanel;
class ZrFilePanel;
class ZrSurveyRecording;
class ZrWorkPanel;

/// Writes a part of a recording into a file of the user's choice, in a worker with progress and cancel.
class ReviewExport : public QObject
{
    Q_OBJECT

public:
    explicit ReviewExport(SurveyView& view);

    /// Asks what to export of the steady times \p from to \p to, and where to.
    void Ask(const std::shared_ptr<ZrSurveyRecording>& recording, double from, double to);

    /// Writes it as a kind of `ZrSurveyExport`; false while another export is under way.
    bool Write(int kind, const QString& path);

    void SetPart(const std::shared_ptr<ZrSurveyRecording>& recording, double from, double to);

    bool IsWorking() const { return m_worker.IsWorking(); }

    void Restyle();

Q_SIGNALS:
    void Done(bool isWritten); ///< a message says what became of it

private:
    void OnChosen(int kind);
    QString What() const;
    void OnFinished();

    SurveyView& m_view;
    ZrChoicePanel* m_choice;
    ZrFilePanel* m_files;
    ZrWorkPanel* m_work;
    std::shared_ptr<ZrSurveyRecording> m_recording;
    double m_from = 0.0;
    double m_to = 0.0;
    int m_kind = ZrSurveyExport::segment;
    QString m_path; ///< that is written
    std::shared_ptr<ZrSurveyExport> m_part; ///< being written
    ZrSurveyExport::eResult m_result = ZrSurveyExport::Done; ///< the worker's until it has finished
    ZrWorker m_worker; ///< last: it ends before what it works on goes
};
