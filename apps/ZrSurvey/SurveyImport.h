#pragma once

#include "ZrKit/import/ZrImportTask.h"

#include <QObject>

class SurveyView;
class ZrWorkPanel;

/// Opens a recording in a foreign form: its log, made beside the other recordings.
///
/// One that is there already and not older is opened at once, with the offer to import once more beside it.
class SurveyImport : public QObject
{
    Q_OBJECT

public:
    explicit SurveyImport(SurveyView& view);

    void Start(const QString& path); ///< nothing while another import is under way

    void Cancel() { m_task.Cancel(); } ///< as the button of the panel that shows how far it is

    bool IsWorking() const { return m_task.IsWorking(); }

private:
    void Run(const QString& path, const QString& log);
    void OnFinished(int result);

    SurveyView& m_view;
    ZrWorkPanel* m_work;
    ZrImportTask m_task;
};
