#pragma once

#include "apps/ZrSurvey/SurveyForm.h"

class ZrFilePanel;

/// Where the vehicle's data come from; the fields of the source that is chosen alone are shown.
class FormSources : public SurveyForm
{
    Q_OBJECT

public:
    explicit FormSources(SurveyView& view);

protected:
    void OnEdited() override;

private:
    int AddFile();

    ZrFilePanel* m_files;
    QVector<QPair<int, int>> m_fields; ///< source and row
    int m_fileRow = -1;
    int m_currentRow = -1;
};
