#include "apps/ZrSurvey/FormSonar.h"

#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/ui/ZrPaletteBtn.h"
#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/SurveyView.h"

FormSonar::FormSonar(SurveyView& view)
    : SurveyForm(view)
{
    m_name = tr("Sonar");
    m_icon = QImage(QStringLiteral(":/icons/sonar.png"));
    QVector<ZrBtn*> palettes;
    for (const QString& name : ZrSonarPalette::Names())
        palettes.append(new ZrPaletteBtn(Body(), name));
    AddChoice(
        tr("Palette"), tr("Colours of the echoes, weak ones at the left."), palettes, 5,
        [this] { return Settings().palette; },
        [this](int palette) {
            Settings().palette = palette;
            Edited();
        });
    AddSlider(tr("Gain"), QString(), &SurveySettings::gain, -SurveySettings::MostGain,
        SurveySettings::MostGain, 0.5, 1, tr("dB"));
    AddSlider(tr("Contrast"), QString(), &SurveySettings::contrast, SurveySettings::LeastContrast,
        SurveySettings::MostContrast, 0.05, 2, QString());
    AddChoice(
        tr("Water column"), tr("What lies in front of the sea floor: the outgoing pulse, or all of it."),
        {Button(tr("As recorded")), Button(tr("No pulse")), Button(tr("Dark"))}, 3,
        [this] { return Settings().blanking; },
        [this](int kind) {
            Settings().blanking = kind;
            Edited();
        });
    AddSwitch(tr("Slant range"), tr("Echoes are placed at their distance over the ground."), tr("Corrected"),
        &SurveySettings::slant);
    AddSwitch(tr("Bottom line"), tr("Where the sea floor begins is drawn over the echoes."), tr("Shown"),
        &SurveySettings::bottom);
}
