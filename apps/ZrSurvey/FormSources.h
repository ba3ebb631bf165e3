#pragma once

#include "apps/ZrSurvey/SurveyForm.h"

class ZrChoicePanel;
class ZrFilePanel;

/// Where the vehicle's data come from; the fields of the source that is chosen alone are shown, and what it
/// gives when it is tried.
class FormSources : public SurveyForm
{
    Q_OBJECT

public:
    explicit FormSources(SurveyView& view);

protected:
    void OnEdited() override;

private:
    int AddFile();
    int AddPorts();
    int AddSpeeds();
    void ChoosePort();
    void ShowFeed();

    ZrFilePanel* m_files;
    ZrChoicePanel* m_ports;
    QVector<QPair<int, int>> m_fields; ///< source and row
    int m_fileRow = -1;
    int m_currentRow = -1;
    int m_portsRow = -1;
    int m_stateRow = -1;
};
