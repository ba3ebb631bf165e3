#include "apps/ZrSurvey/ReviewExport.h"

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrExportRange.h"
#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/sonar/ZrMosaic.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/sonar/ZrWaterfall.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/survey/ZrTargetFile.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrWorkPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <cmath>
#include <mutex>

namespace {

constexpr int widestPicture = 4096; ///< pixels

ZrMosaicSettings MosaicSettings(const QString& palette)
{
    ZrMosaicSettings settings;
    settings.palette = palette;
    settings.track.smoothing = ZrSurveyRecording::Smoothing;
    return settings;
}

} // namespace

/// An export under way: the worker's, but for `Stop`.
struct ReviewExport::Job
{
    Job(const std::shared_ptr<ZrSurveyRecording>& of, const QString& colours)
        : recording(of)
        , bottom(of->Bottom())
        , waterfall(log)
        , mosaic(MosaicSettings(colours))
        , palette(colours)
    {
    }

    void Stop()
    {
        cancel = reader.cancel = log.cancel = waterfall.cancel = mosaic.cancel = file.cancel = true;
        const std::lock_guard lock(partGuard);
        if (part)
            part->cancel = true;
    }

    void Run(IZrProgress& progress)
    {
        log.progress = waterfall.progress = mosaic.progress = &progress;
        switch (kind) {
        case segment:
        case track:
        case records:
        case events:
            isDone = WritePart(progress);
            break;
        case targets:
            isDone = WriteTargets();
            break;
        case ReviewExport::waterfall:
            isDone = DrawWaterfall();
            break;
        default:
            isDone = DrawMosaic();
            break;
        }
    }

    /// What was done to what was recorded, to be said of a picture.
    QString Done() const
    {
        if (kind == targets)
            return targetsInPart.size() == 1 ? ReviewExport::tr(": one target")
                                             : ReviewExport::tr(": %1 targets").arg(targetsInPart.size());
        if (kind != ReviewExport::waterfall)
            return {};
        QStringList parts;
        if (slant)
            parts << ReviewExport::tr("corrected for slant range");
        if (blanking == ZrSonarBlanking::pulse)
            parts << ReviewExport::tr("without the outgoing pulse");
        if (blanking == ZrSonarBlanking::water)
            parts << ReviewExport::tr("with a dark water column");
        return parts.isEmpty() ? QString() : QStringLiteral(", ") + parts.join(QStringLiteral(", "));
    }

    bool WritePart(IZrProgress& progress)
    {
        const std::unique_ptr<ZrSurveyDataset> dataset = recording->ReadRecords(reader);
        if (!dataset) {
            error = reader.Error();
            return false;
        }
        ZrSteadyTime times;
        times.Reserve(dataset->recs.size());
        for (const ZrLogRec& rec : dataset->recs)
            times.Append(rec.time);
        {
            const std::lock_guard lock(partGuard);
            part = std::make_unique<ZrExportRange>(
                *dataset, ZrExportRange::FirstFrom(times, from), ZrExportRange::EndAt(times, to));
            part->progress = &progress;
            part->cancel = cancel.load();
        }
        const ZrExportRange::eResult result = kind == segment ? part->WriteLog(path)
            : kind == track                                   ? part->WriteTrack(path)
            : kind == events                                  ? part->WriteEvents(path)
                                                              : part->WriteRecords(path);
        error = part->Error();
        remark = part->Damage();
        const std::lock_guard lock(partGuard);
        part.reset();
        return result == ZrExportRange::Done;
    }

    /// The samples are read from a log of its own: that of the screen is in use.
    bool OpenLog()
    {
        if (!log.OpenAs(recording->SonarLog())) {
            error = log.Error();
            return false;
        }
        lastPing = std::min(lastPing, log.Pings().size() - 1);
        return true;
    }

    bool WriteTargets()
    {
        ZrTargetFile out;
        const bool isWritten = out.Write(targetsInPart, path);
        error = out.Error();
        return isWritten;
    }

    bool DrawWaterfall()
    {
        if (!OpenLog())
            return false;
        ZrWaterfallSettings settings;
        settings.palette = palette;
        settings.slantCorrected = slant;
        settings.blanking = blanking;
        settings.shownGain = gain;
        settings.shownContrast = contrast;
        QImage image;
        for (int width : {0, widestPicture, 2048, 1024, 512}) {
            settings.width = width;
            const ZrWaterfallMap map(log.Pings(), recording->Track(), bottom, settings, firstPing, lastPing);
            if (map.IsTooLarge() && width != 512)
                continue;
            if (!waterfall.Render(map, image)) {
                error = waterfall.Error();
                return false;
            }
            break;
        }
        QSaveFile out(path);
        const QByteArray suffix = QFileInfo(path).suffix().toLower().toLatin1();
        if (out.open(QIODevice::WriteOnly) && image.save(&out, suffix.constData()) && !cancel && out.commit())
            return true;
        error = out.errorString();
        return false;
    }

    bool DrawMosaic()
    {
        if (!OpenLog())
            return false;
        mosaic.AddLine(log, bottom, firstPing, lastPing);
        if (!mosaic.Build()) {
            error = mosaic.Error();
            return false;
        }
        if (!file.Write(mosaic.Image(), mosaic.Frame(), path)) {
            error = file.Error();
            return false;
        }
        return true;
    }

    std::shared_ptr<ZrSurveyRecording> recording;
    ZrBottomLine bottom; ///< that of the recording may be corrected meanwhile
    std::vector<ZrSonarTarget> targetsInPart;
    int kind = segment;
    QString path;
    std::size_t firstPing = 0;
    std::size_t lastPing = 0;
    bool slant = false;
    int blanking = ZrSonarBlanking::none;
    double gain = 0.0; ///< dB
    double contrast = 1.0;
    double from = 0.0; ///< steady times of the part
    double to = 0.0;
    std::atomic<bool> cancel{false};
    ZrDatasetReader reader;
    std::mutex partGuard; ///< of the pointer
    std::unique_ptr<ZrExportRange> part; ///< null unless one is written
    ZrSonarLog log;
    ZrWaterfall waterfall;
    ZrMosaic mosaic;
    ZrMosaicFile file;
    QString palette;
    bool isDone = false;
    QString error;
    QString remark;
};

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
    static const char* const suffixes[kindCount]
        = {"log", "gpx kml geojson csv", "csv", "csv", "geojson csv", "png jpg", "png jpg tif"};
    static const char* const names[kindCount]
        = {"part", "track", "records", "events", "targets", "waterfall", "mosaic"};
    m_kind = kind;
    m_files->SetPurpose(tr("Export: %1").arg(m_choice->Items()[kind].title));
    m_files->SetMode(ZrFilePanel::saveFile);
    m_files->SetSuffixes(QString::fromLatin1(suffixes[kind]).split(QLatin1Char(' ')));
    const QFileInfo log(m_recording->Path());
    const QString folder = m_view.last_path();
    m_files->SetFolder(folder.isEmpty() ? log.path() : folder);
    m_files->SetFileName(log.completeBaseName() + QLatin1Char('-') + QLatin1String(names[kind]));
    m_files->Open();
}

bool ReviewExport::Write(int kind, const QString& path)
{
    if (m_worker.IsWorking() || !m_recording)
        return false;
    const SurveySettings& settings = m_view.Model().settings;
    const QStringList palettes = ZrSonarPalette::Names();
    m_job = std::make_shared<Job>(
        m_recording, palettes[std::clamp(settings.palette, 0, static_cast<int>(palettes.size()) - 1)]);
    m_job->reader.restorePlan = false; // it was when the recording was opened
    m_job->from = m_from;
    m_job->to = m_to;
    m_job->kind = kind;
    m_job->path = path;
    m_job->slant = settings.slant;
    m_job->blanking = settings.blanking;
    m_job->gain = settings.gain;
    m_job->contrast = settings.contrast;
    for (const ZrSonarTarget& target : m_recording->Targets()) {
        const double at = m_recording->Times()->FromLog(target.time);
        if (at >= m_from && at <= m_to)
            m_job->targetsInPart.push_back(target);
    }
    if (m_recording->HasSonar()) {
        m_job->firstPing = static_cast<std::size_t>(std::ceil(m_recording->PingAt(m_from)));
        m_job->lastPing = std::max(m_job->firstPing, static_cast<std::size_t>(m_recording->PingAt(m_to)));
    }
    m_work->Begin(m_worker, tr("Exporting %1").arg(QFileInfo(path).fileName()));
    return m_worker.Start(
        [job = m_job](IZrProgress& progress) { job->Run(progress); }, [job = m_job] { job->Stop(); });
}

void ReviewExport::OnFinished()
{
    const std::shared_ptr<Job> job = std::move(m_job);
    if (job->isDone) {
        const QString name = QFileInfo(job->path).fileName();
        m_view.Tell(job->remark.isEmpty()
                ? tr("%1 was written").arg(name) + job->Done()
                : tr("%1 was written as far as the log is sound: %2").arg(name, job->remark));
    } else if (m_worker.IsCancelled()) {
        m_view.Tell(tr("The export was cancelled; nothing was replaced"));
    } else {
        m_view.Warn(tr("The export failed. %1").arg(job->error));
    }
    Q_EMIT Done(job->isDone);
}

void ReviewExport::Restyle()
{
    if (m_choice->isVisible())
        m_choice->Restyle();
    if (m_files->isVisible())
        m_files->Restyle();
}
