#pragma once

#include "apps/ZrSurvey/SurveyForm.h"

/// What the application is made of.
class FormAbout : public SurveyForm
{
    Q_OBJECT

public:
    QString m_logForm; ///< name of the form about the debug log

    explicit FormAbout(SurveyView& view);
};
