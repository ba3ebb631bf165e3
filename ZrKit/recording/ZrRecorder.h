#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/recording/ZrRecordHead.h"
#include "ZrKit/records/ZrNmeaDecoder.h"
#include "ZrUtil/ZrLogger.h"
#include "ZrUtil/ZrTypes.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <functional>

class QTimer;
class ZrLogEvt;

/// A recording session: lines go in, a data log grows, and the recording ends cleanly before the disk is
/// full.
///
/// Every line is logged as serial text exactly as it came, damaged ones too; a sound NMEA sentence is
/// followed by the records decoded from it (position fix, depth, motion, environment). Item times are the
/// times of arrival.
///
/// A long recording may be split into parts, numbered logs of which each can be understood alone: with
/// `writesHead` they begin with the plan and the latest records (`ZrRecordHead`). No item is ever cut, and no
/// log overwritten.
///
/// \code
/// ZrRecorder::Options options;
/// options.dir = QStringLiteral("/data/logs");
/// ZrRecorder recorder(options, nullptr);
/// QString error;
/// if (!recorder.Start(&error)) …
/// QObject::connect(&source, &ZrLineSource::Line, &recorder, &ZrRecorder::AddLine);
/// \endcode
///
/// Lives on one thread with an event loop.
class ZR_KIT_EXPORT ZrRecorder : public QObject
{
    Q_OBJECT

public:
    /// Why a recording could not begin, or had to end.
    enum eFailure : int
    {
        failureNone = 0, ///< it goes on, or was ended by `Stop`
        failureSpace = 1, ///< less than `Options::stopBelow` is free
        failureWrite = 2, ///< the disk takes no more data: of the last item nothing or a part is in the log
        failureCreate = 3 ///< the log, or its next part, cannot be created
    };

    struct Options
    {
        QString dir; ///< where the log is created; made when missing
        QString prefix; ///< prefix of the log's name, may be empty
        u16 source = 1; ///< source identifier of every item
        qint64 stopBelow = 100 * 1024 * 1024; ///< bytes: recording ends when fewer are free
        qint64 warnBelow = 1024 * 1024 * 1024; ///< bytes: a warning is given once when fewer are free
        std::function<qint64()> freeSpace; ///< asks for the free bytes; empty: the volume of `dir`
        qint64 splitBytes = 0; ///< a new part before a log gets larger; 0 for never
        double splitSeconds = 0.0; ///< a new part when a log is so old; 0 for never
        std::function<double()> clock; ///< seconds, never going back; empty: that of the system
        bool writesHead = false; ///< each log begins with the plan and the latest records
        QByteArray plan; ///< of the head, in the line form of a settings store; empty: that of the source
        bool logsReason = false; ///< a recording that has to end has an event as its last item that says why
    };

    struct Status
    {
        QString file; ///< path of the log, or of its part that is being written
        int part = 0; ///< from 1; 0 for a recording that is not split
        u64 items = 0;
        u64 bytes = 0;
        u64 lines = 0;
        u64 damagedLines = 0; ///< not a sound NMEA sentence; logged all the same
        u64 fixes = 0; ///< positions decoded
        qint64 freeBytes = -1; ///< -1 when the volume does not tell
        double seconds = 0.0; ///< since the start
        double bytesPerSecond = 0.0; ///< over the last seconds
        double itemsPerSecond = 0.0; ///< over the last seconds
        double secondsLeft = -1.0; ///< until `stopBelow` is reached at this rate; -1 when not known
    };

    ZrRecorder(const Options& options, QObject* parent);
    ~ZrRecorder() override;

    /// Creates the log. False with a sentence in \p error when it cannot be created or too little space is
    /// free.
    bool Start(QString* error);

    /// Ends the recording and closes the log; harmless when it has ended already.
    void Stop();

    bool IsRecording() const;

    eFailure Failure() const { return m_failure; } ///< of the recording, or of the last one

    /// Counts and rates at this moment.
    Status CurrentStatus() const;

    /// Logs one line (without its end).
    void AddLine(const QByteArray& line);

    /// Logs one record whose item carries \p time, seconds since the epoch, rather than that of its arrival:
    /// for sources that tell their own time, such as simulations. False when it is not in the log: nothing is
    /// recorded, or no longer, the disk does not take it, or \p payload has 1 GiB or more.
    bool AddRecord(CRecType type, u16 format, double time, const QByteArray& payload);

    /// Logs an event. False when it is not in the log, see `AddRecord`.
    bool AddEvent(ZrLogEvt event);

    /// Remembers a record that came before the recording, for the head of its log.
    void Remember(CRecType type, u16 format, double time, const QByteArray& payload);

    void Forget(); ///< all that was remembered: another source is used

Q_SIGNALS:
    /// About once a second while recording.
    void StatusChanged();
    /// Something a person should know; the recording goes on.
    void Warning(const QString& message);
    /// The recording had to end; the log is closed and sound up to here.
    void Failed(const QString& message);

private:
    double Elapsed() const;
    u64 Items() const;
    u64 Bytes() const;
    bool OpenPart();
    bool MakeRoom(u64 bytes);
    void LogRecord(CRecType type, u16 format, double time, const QByteArray& payload);
    void OnTick();
    void CheckAfterWriting();
    void CheckDisk();
    void Fail(eFailure failure, const QString& message);

    Options m_options;
    ZrLogger m_logger;
    ZrNmeaDecoder m_decoder;
    ZrRecordHead m_head;
    QTimer* m_tick;
    QElapsedTimer m_clock;
    Status m_status;
    QString m_stem; ///< of the names of the parts
    double m_started = 0.0; ///< seconds of the clock
    double m_partStarted = 0.0;
    u64 m_partHead = 0; ///< items of the head of the part
    u64 m_doneItems = 0; ///< of earlier parts
    u64 m_doneBytes = 0;
    eFailure m_failure = failureNone;
    double m_lastTick = 0.0;
    u64 m_lastBytes = 0;
    u64 m_lastItems = 0;
    u64 m_bytesAtCheck = 0;
    bool m_warned = false;
};
