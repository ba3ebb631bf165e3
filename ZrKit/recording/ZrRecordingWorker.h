#pragma once

#include "ZrKit/recording/ZrLineSource.h"
#include "ZrKit/recording/ZrLiveTap.h"
#include "ZrKit/recording/ZrRecorder.h"
#include "ZrKit/recording/ZrRecordingNews.h"
#include "ZrKit/records/ZrNmeaDecoder.h"
#include "ZrKit/threads/ZrCallQueue.h"

#include <functional>
#include <memory>
#include <mutex>

class QTimer;
class ZrLogEvt;

/// The part of a `ZrRecordingSession` that lives in its thread: source, decoder, recorder.
///
/// All functions but `Calls` and `TakeNews` are called on its thread, through the queue of the former.
class ZrRecordingWorker : public QObject
{
    Q_OBJECT

public:
    using MakeSource = std::function<ZrLineSource*()>;
    using MakePlan = std::function<QByteArray()>;

    explicit ZrRecordingWorker(std::function<double()> clock);
    ~ZrRecordingWorker() override;

    ZrCallQueue& Calls() { return *m_calls; } ///< any thread

    void Open(const MakeSource& make);
    void Close();
    void Start(ZrRecorder::Options options, const MakePlan& makePlan); ///< the latter may be empty
    void Stop();

    void MeasureSpace(const QString& dir);

    /// \p event without time, 0: that of the source's newest record, or \p now, seconds since the epoch.
    void AddEvent(ZrLogEvt event, double now);

    ZrRecordingNews TakeNews(); ///< any thread

Q_SIGNALS:
    void NewsReady(); ///< once until they are taken
    void Opened(const QString& name);
    void OpenFailed(const QString& error);
    void SourceFinished();
    void SourceLost(const QString& reason, int opened); ///< of the source of the `opened`th call of `Open`
    void SourceBack(int opened);
    void Trouble(const QString& message);
    void SpaceMeasured(qint64 bytes);
    void Started(const QString& file);
    void StartFailed(const QString& error, int failure); ///< a `ZrRecorder::eFailure`
    void Stopped(const QString& reason, int failure); ///< empty when it was asked for

private:
    void OnLine(const QByteArray& line);
    void OnRecord(CRecType type, u16 format, double time, const QByteArray& payload);
    void OnTick();
    void Tell();
    void End(const QString& reason);

    std::function<double()> m_clock;
    ZrCallQueue* m_calls;
    QTimer* m_tick;
    std::unique_ptr<ZrLineSource> m_source;
    std::unique_ptr<ZrRecorder> m_recorder; ///< of the recording, or of the last one
    ZrRecordHead m_head; ///< what came before a recording
    ZrNmeaDecoder m_decoder;
    ZrLiveTap m_tap;
    QByteArrayList m_lines;
    int m_opened = 0; ///< calls of `Open`
    u64 m_lineCount = 0;
    u64 m_recordCount = 0;
    u64 m_byteCount = 0;
    u64 m_damagedLines = 0;
    bool m_tellsTime = false; ///< the source
    u64 m_unseenPings = 0; ///< that were not taken from the news in time
    u64 m_toldLines = 0;
    int m_ticks = 0; ///< since the last news

    std::mutex m_mutex; ///< guards what follows
    ZrRecordingNews m_news;
    bool m_isTold = false;
};
