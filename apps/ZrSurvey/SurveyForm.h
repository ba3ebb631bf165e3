#pragma once

#include "ZrKit/ui/ZrRowForm.h"
#include "apps/ZrSurvey/SurveySettings.h"

#include <functional>

class SurveyView;
class ZrBtn;
class ZrInput;

/// A form of the application's settings: its controls show members of `SurveySettings` and change them at
/// once, if what was given is within the limits; else the row says what they are.
class SurveyForm : public ZrRowForm
{
    Q_OBJECT

public:
    explicit SurveyForm(SurveyView& view);

    virtual bool IsLive() const { return false; } ///< the page behind shows at once what is set

protected:
    SurveyView& View() const { return m_survey; }

    SurveySettings& Settings() const;

    /// Each returns the number of the row.
    int AddInteger(
        const QString& title, const QString& help, int SurveySettings::*value, int least, int most);
    /// \param kind a `ZrInput::eKind`; in SI units
    int AddNumber(const QString& title, const QString& help, double SurveySettings::*value, int kind,
        int places, double least, double most);
    /// \param problem says why a text is refused; may be empty
    int AddText(const QString& title, const QString& help, QString SurveySettings::*value,
        const std::function<QString(const QString&)>& problem);
    int AddSwitch(
        const QString& title, const QString& help, const QString& text, bool SurveySettings::*value);
    int AddSlider(const QString& title, const QString& help, double SurveySettings::*value, double least,
        double most, double step, int places, const QString& unit);
    /// One of several buttons, whose place is the value.
    int AddChoice(const QString& title, const QString& help, const QVector<ZrBtn*>& buttons, int columns,
        const std::function<int()>& get, const std::function<void(int)>& set);

    ZrBtn* Button(const QString& text, const QString& icon = QString());

    void Edited(); ///< `Settings` were changed by the user
    virtual void OnEdited(); ///< likewise, for what depends on them

    void ShowValues() override;

    /// Called by `ShowValues`, in the order added.
    void OnShow(const std::function<void()>& show) { m_shows.append(show); }

    bool IsShowing() const { return m_isShowing; }

private:
    int AddInput(const QString& title, const QString& help, ZrInput* input);

    SurveyView& m_survey;
    QVector<std::function<void()>> m_shows;
    bool m_isShowing = false;
    bool m_isTelling = false; ///< of its own change
};
