#include "apps/ZrSurvey/FormDisplay.h"

#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "apps/ZrSurvey/SurveyView.h"

FormDisplay::FormDisplay(SurveyView& view)
    : SurveyForm(view)
{
    m_name = tr("Display");
    m_icon = QImage(QStringLiteral(":/icons/day.png"));
    const char* const icons[ZrColourScheme::Count] = {"day", "dusk", "night"};
    QVector<ZrBtn*> schemes;
    for (int i = 0; i < ZrColourScheme::Count; ++i)
        schemes.append(Button(ZrColourScheme::Name(i), QString::fromLatin1(icons[i])));
    AddChoice(
        tr("Colours"),
        tr("Day for the sun on deck, dusk for rooms, night keeps the eyes adapted to the dark."), schemes, 0,
        [this] { return Settings().colours; }, [this](int scheme) { View().SetColours(scheme); });

    auto* full = new ZrCheck(Body());
    full->text = tr("Full screen");
    full->setToolTip(tr("F11"));
    full->get = [this] { return View().isFullScreen(); };
    full->set = [this](bool on) { on ? View().showFullScreen() : View().showNormal(); };
    AddRow(tr("Window"), tr("Over the whole screen, nothing else beside it (F11)."), {full}, beside);
}
