#pragma once

#include "ZrKit/review/ZrWorker.h"

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
    enum eKind : int
    {
        segment,
        track,
        records,
        events,
        targets,
        waterfall,
        mosaic,
        kindCount
    };

    explicit ReviewExport(SurveyView& view);

    /// Asks what to export of the steady times \p from to \p to, and where to.
    void Ask(const std::shared_ptr<ZrSurveyRecording>& recording, double from, double to);

    /// Writes it; false while another export is under way.
    bool Write(int kind, const QString& path);

    void SetPart(const std::shared_ptr<ZrSurveyRecording>& recording, double from, double to);

    bool IsWorking() const { return m_worker.IsWorking(); }

    void Restyle();

Q_SIGNALS:
    void Done(bool isWritten); ///< a message says what became of it

private:
    struct Job;

    void OnChosen(int kind);
    void OnFinished();

    SurveyView& m_view;
    ZrChoicePanel* m_choice;
    ZrFilePanel* m_files;
    ZrWorkPanel* m_work;
    std::shared_ptr<ZrSurveyRecording> m_recording;
    double m_from = 0.0;
    double m_to = 0.0;
    int m_kind = segment;
    std::shared_ptr<Job> m_job;
    ZrWorker m_worker; ///< last: it ends before what it works on goes
};
