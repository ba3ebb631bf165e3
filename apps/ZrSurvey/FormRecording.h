#pragma once

#include "apps/ZrSurvey/SurveyForm.h"

class ZrFilePanel;
class ZrInput;

/// Where recordings go, when a new one begins, and the labels of events.
class FormRecording : public SurveyForm
{
    Q_OBJECT

public:
    explicit FormRecording(SurveyView& view);

private:
    void AddFolder();
    void AddLabels();
    void TakeLabels();

    ZrFilePanel* m_folders;
    QVector<ZrInput*> m_labels;
};
