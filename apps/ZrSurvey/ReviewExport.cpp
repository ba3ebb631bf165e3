#include "apps/ZrSurvey/ReviewExport.h"

#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrWorkPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>

#include <algorithm>

ReviewExport::ReviewExport(SurveyView& view)
    : m_view(view)
    , m_choice(new ZrChoicePanel(&view, tr("Export")))
    , m_files(new ZrFilePanel(&view, tr("Export to")))
    , m_work(new ZrWorkPanel(&view))
{
    connect(m_choice, &ZrChoicePanel::Chosen, this, &ReviewExport::OnChosen);
    connect(m_files, &ZrFilePanel::FileChosen, this, [this](const QString& path) {
        m_view.set_last_path(QFileInfo(path).path());
        Write(m_kind, path);
    });
    connect(&m_worker, &ZrWorker::Finished, this, &ReviewExport::OnFinished);
}

void ReviewExport::SetPart(const std::shared_ptr<ZrSurveyRecording>& recording, double from, double to)
{
    m_recording = recording;
    m_from = std::min(from, to);
    m_to = std::max(from, to);
}

void ReviewExport::Ask(const std::shared_ptr<ZrSurveyRecording>& recording, double from, double to)
{
    SetPart(recording, from, to);
    const auto item = [](const QString& title, const QString& subtitle, const char* icon) {
        ZrListItem entry;
        entry.title = title;
        entry.subtitle = subtitle;
        entry.image = QImage(QStringLiteral(":/icons/%1.png").arg(QLatin1String(icon)));
        return entry;
    };
    QVector<ZrListItem> items;
    items << item(tr("Part of the log"), tr("A recording of its own, with its events"), "file");
    items << item(tr("Track"), tr("GPX, KML, GeoJSON or CSV, with the events"), "plan");
    items << item(tr("Records"), tr("A table of position, depth, altitude, attitude"), "list");
    items << item(tr("Events"), tr("A table"), "events");
    if (recording->HasSonar()) {
        items << item(tr("Targets"), tr("GeoJSON or CSV, with position and size"), "target");
        items << item(
            tr("Waterfall picture"), tr("PNG or JPEG, in the colours, gain and contrast shown"), "image");
        items << item(tr("Mosaic"), tr("The sea floor with north up and its place on the earth"), "mosaic");
    }
    const double length = m_to - m_from;
    m_choice->SetTitle(
        tr("Export %1, from %2")
            .arg(ZrTimeText::Elapsed(length), ZrTimeText::Clock(recording->Times()->LogTime(m_from))));
    m_choice->SetItems(items, -1);
    m_choice->Open();
}

void ReviewExport::OnChosen(int kind)
{
    m_kind = kind;
    m_files->SetPurpose(tr("Export: %1").arg(m_choice->Items()[kind].title));
    m_files->SetMode(ZrFilePanel::saveFile);
    m_files->SetSuffixes(ZrSurveyExport::Suffixes(kind));
    const QFileInfo log(m_recording->Path());
    const QString folder = m_view.last_path();
    m_files->SetFolder(folder.isEmpty() ? log.path() : folder);
    m_files->SetFileName(log.completeBaseName() + QLatin1Char('-') + ZrSurveyExport::Name(kind));
    m_files->Open();
}

bool ReviewExport::Write(int kind, const QString& path)
{
    if (m_worker.IsWorking() || !m_recording)
        return false;
    const SurveySettings& settings = m_view.Model().settings;
    const QStringList palettes = ZrSonarPalette::Names();
    const auto part = std::make_shared<ZrSurveyExport>(m_recording, m_from, m_to);
    part->palette = palettes[std::clamp(settings.palette, 0, static_cast<int>(palettes.size()) - 1)];
    part->slant = settings.slant;
    part->blanking = settings.blanking;
    part->gain = settings.gain;
    part->contrast = settings.contrast;
    m_part = part;
    m_kind = kind;
    m_path = path;
    m_work->Begin(m_worker, tr("Exporting %1").arg(QFileInfo(path).fileName()));
    return m_worker.Start(
        [=](IZrProgress& progress) { m_result = part->Run(kind, path, &progress); }, [=] { part->Stop(); });
}

/// What was done to what was recorded, to be said of a picture.
QString ReviewExport::What() const
{
    if (m_kind == ZrSurveyExport::targets)
        return m_part->Items() == 1 ? tr(": one target") : tr(": %1 targets").arg(m_part->Items());
    if (m_kind != ZrSurveyExport::waterfall)
        return {};
    QStringList parts;
    if (m_part->IsSlantCorrected())
        parts << tr("corrected for slant range");
    if (m_part->Blanking() == ZrSonarBlanking::pulse)
        parts << tr("without the outgoing pulse");
    if (m_part->Blanking() == ZrSonarBlanking::water)
        parts << tr("with a dark water column");
    return parts.isEmpty() ? QString() : QStringLiteral(", ") + parts.join(QStringLiteral(", "));
}

void ReviewExport::OnFinished()
{
    const QString name = QFileInfo(m_path).fileName();
    if (m_result == ZrSurveyExport::Failed)
        m_view.Warn(tr("The export failed. %1").arg(m_part->Error()));
    else if (m_result == ZrSurveyExport::Cancelled)
        m_view.Tell(tr("The export was cancelled; nothing was replaced"));
    else if (m_part->Remark().isEmpty())
        m_view.Tell(tr("%1 was written").arg(name) + What());
    else
        m_view.Tell(tr("%1 was written as far as the log is sound: %2").arg(name, m_part->Remark()));
    m_part.reset();
    Q_EMIT Done(m_result == ZrSurveyExport::Done);
}

void ReviewExport::Restyle()
{
    if (m_choice->isVisible())
        m_choice->Restyle();
    if (m_files->isVisible())
        m_files->Restyle();
}
