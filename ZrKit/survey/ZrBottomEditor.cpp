#include "ZrKit/survey/ZrBottomEditor.h"

#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrBottomTracker.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/survey/ZrSurveyRecording.h"

#include <algorithm>
#include <cmath>

namespace {

/// The line as it is tells better than a sensor of the vehicle where the seabed is: metres and a share of it
/// within which an echo is trusted.
constexpr double trustedWithin = 1.0;
constexpr double trustedShare = 0.1;

std::size_t PingOf(double ping)
{
    constexpr double most = 1.0e15; // beyond any log
    return static_cast<std::size_t>(std::llround(std::clamp(ping, 0.0, most)));
}

ZrBottomTrackerSettings Guided()
{
    ZrBottomTrackerSettings settings;
    settings.recordedWithin = trustedWithin;
    settings.recordedShare = trustedShare;
    return settings;
}

} // namespace

/// Works on a copy, since the line may change meanwhile; the table of pings does not.
struct ZrBottomEditor::SaveJob
{
    SaveJob(const std::shared_ptr<ZrSurveyRecording>& from, u64 number)
        : recording(from)
        , line(from->Bottom())
        , version(number)
    {
    }

    void Run()
    {
        ZrBottomFile file(recording->Path());
        isSaved = file.Save(recording->Pings(), line);
        error = file.Error();
    }

    std::shared_ptr<ZrSurveyRecording> recording;
    ZrBottomLine line;
    u64 version;
    bool isSaved = false;
    QString error;
};

struct ZrBottomEditor::TrackJob
{
    TrackJob()
        : tracker(Guided())
    {
    }

    void Run(IZrProgress& progress)
    {
        // That of the recording is in use by its waterfall.
        ZrSonarLog own;
        if (!own.OpenAs(recording->SonarLog()))
            return;
        tracker.progress = &progress;
        found = tracker.Track(own, part);
        tracker.progress = nullptr;
    }

    std::shared_ptr<ZrSurveyRecording> recording;
    ZrBottomTracker tracker;
    ZrBottomTracker::Part part;
    std::vector<double> found;
    bool isDropped = false; ///< nobody waits for it any more
};

ZrBottomEditor::ZrBottomEditor(QObject* parent)
    : QObject(parent)
{
    connect(&m_tracker, &ZrWorker::Finished, this, &ZrBottomEditor::OnTracked);
}

ZrBottomEditor::~ZrBottomEditor()
{
    SetRecording(nullptr);
}

void ZrBottomEditor::SetRecording(const std::shared_ptr<ZrSurveyRecording>& recording)
{
    if (m_recording) {
        EndStroke();
        Flush();
    }
    // The job keeps the recording that it works on.
    m_tracker.Cancel();
    if (m_trackJob)
        m_trackJob->isDropped = true;
    m_recording = recording && recording->HasSonar() ? recording : nullptr;
    m_version = m_saved = 0;
    m_isDrawing = false;
}

bool ZrBottomEditor::Draw(double fromPing, double fromAltitude, double toPing, double toAltitude)
{
    if (!m_recording || !std::isfinite(fromPing) || !std::isfinite(toPing))
        return false;
    if (!m_recording->BottomHistory().Draw(PingOf(fromPing), fromAltitude, PingOf(toPing), toAltitude))
        return false;
    m_isDrawing = true;
    return true;
}

void ZrBottomEditor::EndStroke()
{
    if (!m_recording)
        return;
    m_recording->BottomHistory().CloseStroke();
    if (m_isDrawing)
        Apply();
}

bool ZrBottomEditor::Clear(std::size_t first, std::size_t last)
{
    EndStroke();
    if (!m_recording || !m_recording->BottomHistory().Clear(first, last))
        return false;
    Apply();
    return true;
}

bool ZrBottomEditor::CanUndo() const
{
    return m_recording && m_recording->BottomHistory().CanUndo();
}

bool ZrBottomEditor::CanRedo() const
{
    return m_recording && m_recording->BottomHistory().CanRedo();
}

bool ZrBottomEditor::Undo()
{
    if (!m_recording || !m_recording->BottomHistory().Undo())
        return false;
    Apply();
    return true;
}

bool ZrBottomEditor::Redo()
{
    if (!m_recording || !m_recording->BottomHistory().Redo())
        return false;
    Apply();
    return true;
}

std::size_t ZrBottomEditor::EditedCount(std::size_t first, std::size_t last) const
{
    std::size_t count = 0;
    if (m_recording) {
        const ZrBottomLine& line = m_recording->Bottom();
        for (std::size_t ping = first; ping <= last && ping < line.Count(); ++ping)
            count += line.IsEdited(ping) ? 1 : 0;
    }
    return count;
}

/// The line is another one: it is used and saved.
void ZrBottomEditor::Apply()
{
    m_isDrawing = false;
    ++m_version;
    const auto [first, end] = m_recording->ApplyBottom();
    Q_EMIT Changed(static_cast<qint64>(first), static_cast<qint64>(end));
    Save();
}

// -- Saving

void ZrBottomEditor::Save()
{
    if (m_saveJob)
        return; // goes on when that has ended
    m_saveJob = std::make_shared<SaveJob>(m_recording, m_version);
    if (!m_saver) {
        m_saver = std::make_unique<ZrWorker>();
        connect(m_saver.get(), &ZrWorker::Finished, this, &ZrBottomEditor::OnSaved);
    }
    m_saver->Start([job = m_saveJob](IZrProgress& /*progress*/) { job->Run(); }, {});
}

void ZrBottomEditor::OnSaved()
{
    const std::shared_ptr<SaveJob> job = std::move(m_saveJob);
    m_saveJob.reset();
    if (!job->isSaved) {
        Q_EMIT SaveFailed(job->error);
        return;
    }
    m_saved = job->version;
    if (m_saved != m_version)
        Save();
    else
        Q_EMIT Saved();
}

/// Waits for what is being saved, and saves what is not.
void ZrBottomEditor::Flush()
{
    m_saver.reset();
    const std::shared_ptr<SaveJob> job = std::move(m_saveJob);
    m_saveJob.reset();
    if (job && job->isSaved)
        m_saved = job->version;
    if (m_saved == m_version)
        return;
    SaveJob last(m_recording, m_version);
    last.Run();
    if (!last.isSaved)
        Q_EMIT SaveFailed(last.error);
}

// -- Detection

bool ZrBottomEditor::Track(std::size_t first, std::size_t last, const std::array<bool, 2>& sides)
{
    EndStroke();
    if (!m_recording || m_tracker.IsWorking())
        return false;
    const ZrBottomLine& line = m_recording->Bottom();
    m_trackJob = std::make_shared<TrackJob>();
    m_trackJob->recording = m_recording;
    ZrBottomTracker::Part& part = m_trackJob->part;
    part.end = std::min(std::max(first, last), line.Count() - 1) + 1;
    part.first = std::min(std::min(first, last), part.end);
    part.sides = sides;
    for (std::size_t ping = part.first; ping < part.end; ++ping)
        part.expected.push_back(line.Altitude(ping));
    return m_tracker.Start([job = m_trackJob](IZrProgress& progress) { job->Run(progress); },
        [job = m_trackJob] { job->tracker.cancel = true; });
}

void ZrBottomEditor::OnTracked()
{
    const std::shared_ptr<TrackJob> job = std::move(m_trackJob);
    m_trackJob.reset();
    const ZrBottomTracker::Part& part = job->part;
    bool isChanged = false;
    if (!job->isDropped && job->found.size() == part.end - part.first) {
        for (std::size_t i = 0; i < job->found.size(); ++i) {
            if (std::isnan(job->found[i]))
                job->found[i] = part.expected[i];
        }
        isChanged = m_recording->BottomHistory().Replace(part.first, job->found);
        if (isChanged)
            Apply();
    }
    Q_EMIT Tracked(isChanged);
}
