#pragma once

#include "apps/ZrSurvey/SurveyForm.h"

/// What the application is made of.
class FormAbout : public SurveyForm
{
    Q_OBJECT

public:
    static constexpr int LibrariesRow = 1; ///< what the machine brings along
    static constexpr int FolderRow = 2; ///< where the data is

    QString m_logForm; ///< name of the form about the debug log

    explicit FormAbout(SurveyView& view);
};
