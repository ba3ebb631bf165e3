#include "ZrKit/recording/ZrRecordingSession.h"

#include "ZrKit/recording/ZrRecordingWorker.h"
#include "ZrUtil/ZrLogEvt.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

ZrRecordingSession::ZrRecordingSession(QObject* parent)
    : ZrRecordingSession({}, parent)
{
}

ZrRecordingSession::ZrRecordingSession(std::function<double()> clock, QObject* parent)
    : QObject(parent)
    , m_clock(std::move(clock))
{
    m_elapsed.start();
    if (!m_clock)
        m_clock = [this] { return static_cast<double>(m_elapsed.nsecsElapsed()) * 1e-9; };
    m_worker = new ZrRecordingWorker(m_clock);
    m_worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    Connect();
    m_thread.setObjectName(QStringLiteral("recording"));
    m_thread.start();
}

ZrRecordingSession::~ZrRecordingSession()
{
    // What was asked for before comes first; the log is closed by the end of the worker.
    Do([](ZrRecordingWorker& worker) {
        worker.Stop();
        worker.Close();
        worker.thread()->quit();
    });
    m_thread.wait();
}

void ZrRecordingSession::Connect()
{
    connect(m_worker, &ZrRecordingWorker::NewsReady, this, &ZrRecordingSession::TakeNews);
    connect(m_worker, &ZrRecordingWorker::SpaceMeasured, this, &ZrRecordingSession::SpaceMeasured);
    connect(m_worker, &ZrRecordingWorker::Trouble, this, &ZrRecordingSession::Trouble);
    connect(m_worker, &ZrRecordingWorker::Opened, this, [this](const QString& name) {
        if (--m_opening == 0)
            SetSource(sourceOpen, name);
    });
    connect(m_worker, &ZrRecordingWorker::OpenFailed, this, [this](const QString& error) {
        if (--m_opening == 0)
            SetSource(error.isEmpty() ? sourceNone : sourceFailed, error);
    });
    connect(m_worker, &ZrRecordingWorker::SourceFinished, this, [this] {
        if (m_opening == 0)
            SetSource(sourceFinished, m_sourceText);
    });
    // Of one that is about to be replaced nobody wants to know.
    connect(m_worker, &ZrRecordingWorker::SourceLost, this, [this](const QString& reason, int opened) {
        if (opened == m_asked)
            Q_EMIT SourceLost(reason);
    });
    connect(m_worker, &ZrRecordingWorker::SourceBack, this, [this](int opened) {
        if (opened == m_asked)
            Q_EMIT SourceBack();
    });
    connect(m_worker, &ZrRecordingWorker::Started, this, [this] {
        TakeNews();
        // Who stops at once waits for the end.
        if (m_recording == recordingStarting)
            SetRecording(recordingOn);
    });
    connect(m_worker, &ZrRecordingWorker::StartFailed, this, &ZrRecordingSession::Fail);
    connect(m_worker, &ZrRecordingWorker::Stopped, this, [this](const QString& reason, int failure) {
        TakeNews();
        Fail(reason, failure);
    });
}

/// The recording has ended; \p message is empty when that was asked for.
void ZrRecordingSession::Fail(const QString& message, int failure)
{
    m_failure = static_cast<ZrRecorder::eFailure>(failure);
    SetRecording(recordingOff);
    if (!message.isEmpty())
        Q_EMIT Failed(message);
}

/// Has the worker do \p what, on its thread, when it comes to it.
void ZrRecordingSession::Do(std::function<void(ZrRecordingWorker&)> what)
{
    m_worker->Calls().Give([worker = m_worker, what = std::move(what)] { what(*worker); });
}

void ZrRecordingSession::SetSource(eSource source, const QString& text)
{
    m_source = source;
    m_sourceText = text;
    Q_EMIT SourceChanged();
}

void ZrRecordingSession::SetRecording(eRecording recording)
{
    if (m_recording == recording)
        return;
    m_recording = recording;
    Q_EMIT RecordingChanged();
}

void ZrRecordingSession::Open(const MakeSource& make)
{
    ++m_asked;
    ++m_opening;
    SetSource(sourceOpening, QString());
    Do([make](ZrRecordingWorker& worker) { worker.Open(make); });
}

void ZrRecordingSession::Close()
{
    Open({});
}

void ZrRecordingSession::Start(const ZrRecorder::Options& options)
{
    Start(options, {});
}

void ZrRecordingSession::Start(const ZrRecorder::Options& options, const MakePlan& makePlan)
{
    if (m_recording != recordingOff)
        return;
    m_failure = ZrRecorder::failureNone;
    m_startAsked = Now();
    SetRecording(recordingStarting);
    ZrRecorder::Options complete = options;
    complete.writesHead = true;
    complete.logsReason = true;
    Do([complete, makePlan](ZrRecordingWorker& worker) { worker.Start(complete, makePlan); });
}

void ZrRecordingSession::Stop()
{
    if (m_recording != recordingOn && m_recording != recordingStarting)
        return;
    SetRecording(recordingStopping);
    Do([](ZrRecordingWorker& worker) { worker.Stop(); });
}

void ZrRecordingSession::MeasureSpace(const QString& dir)
{
    Do([dir](ZrRecordingWorker& worker) { worker.MeasureSpace(dir); });
}

QString ZrRecordingSession::PositionText() const
{
    const ZrLiveState& state = State();
    if (!state.latitude.IsKnown() || !state.latitude.IsFresh(Now()))
        return {};
    return QStringLiteral("%1, %2")
        .arg(state.latitude.value, 0, 'f', 7)
        .arg(state.longitude.value, 0, 'f', 7);
}

/// Of an event that waits for the log, where the source tells the time: what it tells when the worker comes
/// to the event is later. Seconds since the epoch; 0 leaves the time to the worker.
double ZrRecordingSession::TimeBeforeStart() const
{
    if (m_recording != recordingStarting || !m_news.tellsTime)
        return 0.0;
    // No news come meanwhile: the source goes on at its own pace, as far as it does without being heard,
    // unless it has come to its end.
    const double ahead = std::min((Now() - m_startAsked) * m_news.pace.speed, m_news.pace.mostAhead);
    return State().dataTime + (m_source == sourceOpen ? ahead : 0.0);
}

bool ZrRecordingSession::AddEvent(const QString& label)
{
    if (!IsRecording() || label.trimmed().isEmpty())
        return false;
    ZrLogEvt event(TimeBeforeStart(), esUser, label);
    event.detail = PositionText();
    event.uid = QUuid::createUuid();
    const double now = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
    Do([event, now](ZrRecordingWorker& worker) { worker.AddEvent(event, now); });
    return true;
}

void ZrRecordingSession::TakeNews()
{
    ZrRecordingNews news = m_worker->TakeNews();
    m_news = news;
    m_news.trail.clear();
    m_news.pings.clear();
    m_news.lostEvents.clear();
    Q_EMIT Updated(news);
    if (!news.lostEvents.empty())
        Q_EMIT EventsLost(news.lostEvents);
}
