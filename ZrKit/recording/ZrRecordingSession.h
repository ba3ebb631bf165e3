#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/recording/ZrRecorder.h"
#include "ZrKit/recording/ZrRecordingNews.h"

#include <QElapsedTimer>
#include <QObject>
#include <QThread>

#include <functional>
#include <vector>

class ZrLineSource;
class ZrRecordingWorker;

/// Runs a source of a vehicle's data and records it, in a thread of its own: neither parsing nor the disk
/// ever holds the screen. What comes is told live whether it is recorded or not.
///
/// \code
/// ZrRecordingSession session;
/// connect(&session, &ZrRecordingSession::Updated, page, &Page::Show); // at most 20 times a second
/// session.Open([] { return new ZrUdpSource(10110, nullptr); });
/// session.Start(options);
/// session.AddEvent(tr("Target"));
/// session.Stop();
/// \endcode
/// `ex_record_survey` records a simulated vehicle with it, `ex_record_nmea` all other sources.
///
/// A recording goes on over changes and failures of its source; it ends by `Stop`, or by itself before the
/// disk is full. Logs begin with the plan and the latest records (`ZrRecorder::Options::writesHead`), and
/// each item is with the operating system before the next one is taken: a killed program loses none.
///
/// Times of items are those that the source tells, or of arrival where it tells lines alone. Functions and
/// signals belong to the thread that the session lives on; none of them waits. The destructor ends a
/// recording and waits until its log is closed.
class ZR_KIT_EXPORT ZrRecordingSession : public QObject
{
    Q_OBJECT

public:
    enum eSource : int
    {
        sourceNone = 0,
        sourceOpening = 1,
        sourceOpen = 2, ///< whether anything comes is told by `State().lastData`
        sourceFinished = 3, ///< has come to its end
        sourceFailed = 4 ///< cannot be had; see `SourceText`
    };

    enum eRecording : int
    {
        recordingOff = 0,
        recordingStarting = 1,
        recordingOn = 2,
        recordingStopping = 3
    };

    /// Makes the source, on the session's own thread, where it lives and ends. Null for none.
    using MakeSource = std::function<ZrLineSource*()>;

    /// Makes the plan of a recording likewise, in the line form of a settings store: it may take its time.
    using MakePlan = std::function<QByteArray()>;

    explicit ZrRecordingSession(QObject* parent = nullptr);

    /// \p clock gives seconds that never go back, for ages of values; called on both threads.
    ZrRecordingSession(std::function<double()> clock, QObject* parent);
    ~ZrRecordingSession() override;

    /// \name Source
    /// @{
    void Open(const MakeSource& make); ///< instead of the one before
    void Close();

    eSource Source() const { return m_source; }

    QString SourceText() const { return m_sourceText; } ///< its name, or why it cannot be had

    const ZrLiveState& State() const { return m_news.state; }

    double Now() const { return m_clock(); } ///< for ages of the values of `State`

    const ZrRecordingNews& News() const
    {
        return m_news;
    } ///< told last, without what is told once: trail, pings and lost events

    /// @}

    /// \name Recording
    /// `Options::writesHead` and `logsReason` are always set.
    /// @{
    void Start(const ZrRecorder::Options& options);

    /// \param makePlan gives `Options::plan`
    void Start(const ZrRecorder::Options& options, const MakePlan& makePlan);
    void Stop();

    eRecording Recording() const { return m_recording; }

    /// Whether a recording goes on or is about to begin.
    bool IsRecording() const { return m_recording == recordingOn || m_recording == recordingStarting; }

    const ZrRecorder::Status& Status() const { return m_news.status; } ///< of the last one, when it has ended

    /// Why the last one could not begin, or ended by itself; set when `Failed` is told.
    ZrRecorder::eFailure Failure() const { return m_failure; }

    /// Asks for the free bytes of the volume that a recording in \p dir would be written to; the answer is
    /// `SpaceMeasured`. Disks may sleep: it is the thread that waits.
    void MeasureSpace(const QString& dir);

    /// Adds an event of the user, of this moment, and with the position in its detail where one is known and
    /// fresh: degrees, "50.1234567, -4.1234567". False when nothing is recorded or \p label is empty. While
    /// the recording is about to begin it waits for the log; where the source tells the time, its moment is
    /// the one that the source has come to at its pace, see `ZrLineSource::TimePace`. One that the log could
    /// not take after all is told by `EventsLost`.
    bool AddEvent(const QString& label);
    /// @}

Q_SIGNALS:
    void Updated(const ZrRecordingNews& news);
    void SourceChanged();
    /// The connection of the source that was opened last is lost, for \p reason, and tried again. It may
    /// come before the source is open. `Trouble` says the same in a sentence.
    void SourceLost(const QString& reason);
    void SourceBack(); ///< and stands again
    void RecordingChanged(); ///< `Recording`
    void SpaceMeasured(qint64 bytes); ///< -1 when it is not known
    void Failed(const QString& message); ///< a recording could not begin, or had to end
    void EventsLost(const std::vector<ZrLogEvt>& events); ///< they are in no log, and nowhere else
    void Trouble(const QString& message); ///< something a person should know; all goes on

private:
    void Connect();
    void Do(std::function<void(ZrRecordingWorker&)> what);
    void SetSource(eSource source, const QString& text);
    void SetRecording(eRecording recording);
    void Fail(const QString& message, int failure);
    void TakeNews();
    QString PositionText() const;
    double TimeBeforeStart() const;

    QElapsedTimer m_elapsed;
    std::function<double()> m_clock;
    QThread m_thread;
    ZrRecordingWorker* m_worker; ///< lives on the thread, and ends with it
    eSource m_source = sourceNone;
    QString m_sourceText;
    int m_asked = 0; ///< calls of `Open` and `Close`
    int m_opening = 0; ///< those that the worker has not answered
    eRecording m_recording = recordingOff;
    double m_startAsked = 0.0; ///< when, of the clock
    ZrRecorder::eFailure m_failure = ZrRecorder::failureNone;
    ZrRecordingNews m_news;
};
