#pragma once

#include "apps/ZrSurvey/SurveyPage.h"

class ZrBtn;

/// The state at a glance, and the way to everything else.
class HomePage : public SurveyPage
{
    Q_OBJECT

public:
    explicit HomePage(SurveyView& view);

protected:
    void Place() override;

private:
    ZrBtn* AddEntry(const QString& icon, const QString& text, const QString& hint, const QString& page);

    QVector<ZrBtn*> m_entries;
};
