#include "apps/ZrSurvey/SurveyForm.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrSlider.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

SurveyForm::SurveyForm(SurveyView& view)
    : ZrRowForm(&view.forms())
    , m_survey(view)
{
    // An Undo, a shortcut or another form.
    connect(&view, &SurveyView::SettingsChanged, this, [this] {
        if (isVisible() && !m_isTelling)
            ShowValues();
    });
}

SurveySettings& SurveyForm::Settings() const
{
    return m_survey.Model().settings;
}

void SurveyForm::Edited()
{
    if (m_isShowing)
        return;
    // What is being typed stays as it is.
    m_isTelling = true;
    View().SettingsEdited();
    m_isTelling = false;
    OnEdited();
}

void SurveyForm::OnEdited() { }

void SurveyForm::ShowValues()
{
    m_isShowing = true;
    for (const auto& show : qAsConst(m_shows))
        show();
    m_isShowing = false;
    OnEdited();
}

/// Whatever is typed is either taken or told to be wrong.
int SurveyForm::AddInput(const QString& title, const QString& help, ZrInput* input)
{
    const int row = AddRow(title, help, {input}, beside);
    connect(input, &ZrInput::textChanged, this, [this, input, row](const QString& text) {
        if (m_isShowing)
            SetProblem(row, QString());
        else if (input->kind != ZrInput::kindText) // of a text its row knows
            SetProblem(row, input->RefusalText(text));
    });
    return row;
}

int SurveyForm::AddInteger(
    const QString& title, const QString& help, int SurveySettings::*value, int least, int most)
{
    auto* input = new ZrInput(Body());
    input->kind = ZrInput::kindInt;
    input->SetRange(least, most);
    OnShow([this, input, value] { input->SetValue(Settings().*value); });
    connect(input, &ZrInput::NewInput, this, [this, input, value, least, most] {
        if (m_isShowing || !(input->value >= least && input->value <= most))
            return;
        Settings().*value = static_cast<int>(input->value);
        Edited();
    });
    return AddInput(title, help, input);
}

int SurveyForm::AddNumber(const QString& title, const QString& help, double SurveySettings::*value, int kind,
    int places, double least, double most)
{
    auto* input = new ZrInput(Body());
    input->kind = kind;
    input->places = places;
    input->SetRange(least, most);
    OnShow([this, input, value] { input->SetValue(Settings().*value); });
    connect(input, &ZrInput::NewInput, this, [this, input, value, least, most] {
        if (m_isShowing || !(input->value >= least && input->value <= most))
            return;
        Settings().*value = input->value;
        Edited();
    });
    return AddInput(title, help, input);
}

int SurveyForm::AddText(const QString& title, const QString& help, QString SurveySettings::*value,
    const std::function<QString(const QString&)>& problem)
{
    auto* input = new ZrInput(Body());
    input->kind = ZrInput::kindText;
    const int row = AddInput(title, help, input);
    OnShow([this, input, value] { input->SetText(Settings().*value); });
    connect(input, &ZrInput::NewInput, this, [this, input, value, problem, row] {
        if (m_isShowing)
            return;
        const QString why = problem ? problem(input->text) : QString();
        SetProblem(row, why);
        if (!why.isEmpty() || Settings().*value == input->text)
            return;
        Settings().*value = input->text;
        Edited();
    });
    return row;
}

int SurveyForm::AddSwitch(
    const QString& title, const QString& help, const QString& text, bool SurveySettings::*value)
{
    auto* check = new ZrCheck(Body());
    check->text = text;
    check->get = [this, value] { return Settings().*value; };
    check->set = [this, value](bool on) {
        Settings().*value = on;
        Edited();
    };
    return AddRow(title, help, {check}, beside);
}

int SurveyForm::AddSlider(const QString& title, const QString& help, double SurveySettings::*value,
    double least, double most, double step, int places, const QString& unit)
{
    auto* slider = new ZrSlider(Body());
    slider->SetRange(least, most);
    slider->SetStep(step);
    slider->places = places;
    slider->unit = unit;
    slider->text = title;
    OnShow([this, slider, value] { slider->SetValue(Settings().*value); });
    connect(slider, &ZrSlider::ValueChanged, this, [this, value](double v) {
        if (m_isShowing)
            return;
        Settings().*value = v;
        Edited();
    });
    return AddRow(QString(), help, {slider}, below);
}

int SurveyForm::AddChoice(const QString& title, const QString& help, const QVector<ZrBtn*>& buttons,
    int columns, const std::function<int()>& get, const std::function<void(int)>& set)
{
    const auto show = [buttons, get] {
        for (int i = 0; i < buttons.size(); ++i)
            Check(*buttons[i], i == get());
    };
    OnShow(show);
    QVector<QWidget*> controls;
    for (int i = 0; i < buttons.size(); ++i) {
        controls.append(buttons[i]);
        connect(buttons[i], &ZrBtn::Clicked, this, [show, set, i] {
            set(i);
            show();
        });
    }
    return AddRow(title, help, controls, below, columns);
}

ZrBtn* SurveyForm::Button(const QString& text, const QString& icon)
{
    auto* button = new ZrBtn(Body(), ZrBtn::typeStd);
    button->text = text;
    button->setAccessibleName(text);
    if (!icon.isEmpty())
        button->img = QImage(QStringLiteral(":/icons/%1.png").arg(icon));
    return button;
}
