#include "apps/ZrSurvey/FormRecording.h"

#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QDir>

FormRecording::FormRecording(SurveyView& view)
    : SurveyForm(view)
    , m_folders(new ZrFilePanel(&view, tr("Folder of recordings")))
{
    m_name = tr("Recording");
    m_icon = QImage(QStringLiteral(":/icons/record.png"));
    m_folders->SetMode(ZrFilePanel::chooseFolder);
    m_folders->hide();
    AddFolder();
    AddText(tr("Name"), tr("Begins the name of every recording; date and time follow."),
        &SurveySettings::recordPrefix, &SurveySettings::PrefixProblem);
    SetUnit(AddInteger(tr("Largest file"), tr("A new file begins when one has this size; 0 for no limit."),
                &SurveySettings::splitMegabytes, 0, SurveySettings::MostSplitMegabytes),
        tr("MB"));
    SetUnit(AddInteger(tr("Longest file"), tr("A new file begins when one is this old; 0 for no limit."),
                &SurveySettings::splitMinutes, 0, SurveySettings::MostSplitMinutes),
        tr("min"));
    SetUnit(AddInteger(tr("Keep free"), tr("Recording ends cleanly when the disk has less free space."),
                &SurveySettings::stopBelowMegabytes, SurveySettings::LeastStopBelow,
                SurveySettings::MostStopBelow),
        tr("MB"));
    AddLabels();
}

void FormRecording::AddFolder()
{
    ZrBtn* folder = Button(tr("Choose the folder"), QStringLiteral("folder"));
    const int row = AddRow(tr("Folder"), QString(), {folder}, beside);
    const auto show = [this, row] { SetHelp(row, QDir::toNativeSeparators(Settings().recordDir)); };
    OnShow(show);
    connect(folder, &ZrBtn::Clicked, this, [this] {
        m_folders->SetFolder(Settings().recordDir);
        m_folders->Open();
    });
    connect(m_folders, &ZrFilePanel::FileChosen, this, [this, show](const QString& path) {
        Settings().recordDir = path;
        show();
        Edited();
    });
}

void FormRecording::AddLabels()
{
    QVector<QWidget*> controls;
    for (int i = 0; i < SurveySettings::MostLabels; ++i) {
        auto* label = new ZrInput(Body());
        label->kind = ZrInput::kindText;
        label->caption = tr("Event %1").arg(i + 1);
        label->setMaxLength(SurveySettings::LongestLabel);
        connect(label, &ZrInput::NewInput, this, &FormRecording::TakeLabels);
        m_labels.append(label);
        controls.append(label);
    }
    OnShow([this] {
        for (int i = 0; i < m_labels.size(); ++i)
            m_labels[i]->SetText(Settings().eventLabels.value(i));
    });
    AddRow(tr("Events"), tr("The labels of the event buttons; an empty one makes no button."), controls,
        below, 2);
}

void FormRecording::TakeLabels()
{
    if (IsShowing())
        return;
    QStringList labels;
    for (const ZrInput* label : qAsConst(m_labels))
        labels.append(label->text);
    labels = SurveySettings::UsableLabels(labels);
    if (labels == Settings().eventLabels)
        return;
    Settings().eventLabels = labels;
    Edited();
}
