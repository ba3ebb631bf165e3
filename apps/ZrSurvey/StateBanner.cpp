#include "apps/ZrSurvey/StateBanner.h"

#include "ZrKit/ui/ZrFilePanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

StateBanner::StateBanner(QWidget* page, SurveyView& view, eAbout about)
    : ZrBanner(page)
    , m_view(view)
    , m_about(about)
{
    setObjectName(QStringLiteral("state"));
    connect(&view.Model().recording, &SurveyRecording::NoticeChanged, this, &StateBanner::ShowState);
    connect(&view.Model().unsaved, &UnsavedEvents::Changed, this, &StateBanner::ShowState);
    connect(this, &ZrBanner::Dismissed, this, &StateBanner::Dismiss);
    ShowState();
}

void StateBanner::ShowState()
{
    SurveyModel& model = m_view.Model();
    const UnsavedEvents& events = model.unsaved;
    const SurveyRecording::Notice notice
        = m_about == aboutEvents ? SurveyRecording::Notice() : model.recording.Told();
    if (notice.text.isEmpty() && events.IsEmpty()) {
        Clear();
        return;
    }
    QStringList texts;
    QStringList advice;
    QVector<Action> actions;
    if (!notice.text.isEmpty()) {
        texts << notice.text;
        advice << notice.advice;
    }
    if (!events.IsEmpty()) {
        texts << events.Text();
        advice << tr("Export them before the application is closed.");
        actions.append({tr("Export events"), [this] { ExportEvents(m_view); }});
    }
    if (!notice.log.isEmpty())
        actions.append({tr("Review"), [this, log = notice.log] { m_view.OpenLog(log); }});
    if (notice.isOver) {
        actions.append({tr("Settings"),
            [this] { m_view.ShowSettings(QCoreApplication::translate("FormRecording", "Recording")); }});
    }
    Show(notice.isOver || !events.IsEmpty() ? error : warning, texts.join(QLatin1Char('\n')),
        advice.join(QLatin1Char(' ')), actions);
}

void StateBanner::Dismiss()
{
    UnsavedEvents& events = m_view.Model().unsaved;
    if (!events.IsEmpty()) {
        m_view.Tell(tr("The events in memory were given up"), tr("Undo"),
            [&events, groups = events.Groups()] { events.Restore(groups); });
        events.Forget();
    }
    if (m_about == aboutAll)
        m_view.Model().recording.Dismiss();
}

void StateBanner::ExportEvents(SurveyView& view)
{
    // One for all pages, with a name by which it is found again.
    const QString name = QStringLiteral("export unsaved events");
    auto* files = view.findChild<ZrFilePanel*>(name);
    if (!files) {
        files = new ZrFilePanel(&view, tr("Export events"));
        files->setObjectName(name);
        files->SetMode(ZrFilePanel::saveFile);
        files->SetSuffixes({QStringLiteral("csv")});
        files->SetFileName(QStringLiteral("events"));
        connect(files, &ZrFilePanel::FileChosen, &view, [&view](const QString& path) {
            view.set_last_path(QFileInfo(path).path());
            QString error;
            if (view.Model().unsaved.Export(path, error))
                view.Tell(tr("%1 was written").arg(QFileInfo(path).fileName()));
            else
                view.Warn(error);
        });
    }
    files->SetFolder(view.last_path().isEmpty() ? QDir::homePath() : view.last_path());
    files->Open();
}
