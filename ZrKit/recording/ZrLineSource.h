#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/recording/ZrLineSplitter.h"
#include "ZrUtil/ZrRecType.h"

#include <QObject>
#include <QString>

#include <limits>

/// Where a recorder gets its data from: standard input, a port, a file that is replayed, a simulation.
///
/// Most give lines. Those that know more than lines can say give records instead.
///
/// A source lives on a thread with an event loop and emits its signals there. After `Start` it delivers lines
/// until it emits `Finished` or is destroyed. A source that loses its connection says so by `Lost`, and by
/// `Trouble` for people, and goes on trying: the recording must not end because a cable was pulled.
class ZR_KIT_EXPORT ZrLineSource : public QObject
{
    Q_OBJECT

public:
    /// How the time of a source goes on while nobody takes what it gives. A plain value.
    struct Pace
    {
        double speed = 1.0; ///< seconds of its time in a second; 0 when it holds, or when nobody knows
        double mostAhead = std::numeric_limits<double>::infinity(); ///< seconds of its time, then it holds
    };

    explicit ZrLineSource(QObject* parent);
    ~ZrLineSource() override;

    /// Begins to deliver. False, with a sentence in \p error, when the source cannot be had at all.
    virtual bool Start(QString* error) = 0;

    /// What the source is, for messages: "UDP port 10110".
    virtual QString Name() const = 0;

    /// How the times that it tells go on: by the clock unless a source knows better. On the thread that the
    /// source lives on.
    virtual Pace TimePace() const { return {}; }

    /// Lines that were too long and had to be dropped.
    virtual u64 Dropped() const { return m_splitter.Dropped(); }

Q_SIGNALS:
    /// One line without its end.
    void Line(const QByteArray& line);
    /// One record whose time, seconds since the epoch, the source knows itself. \p payload is not compressed.
    void Record(CRecType type, u16 format, double time, const QByteArray& payload);
    /// The source has come to its end and delivers nothing more.
    void Finished();
    /// Something a person should know; the source goes on.
    void Trouble(const QString& message);
    /// The connection is lost, or could not be had yet, for \p reason; the source goes on trying.
    void Lost(const QString& reason);
    /// The connection that was lost stands again.
    void Back();

protected:
    /// Emits `Lost`, and a `Trouble` that says so; nothing until the next `TellBack` when it was told
    /// already.
    void TellLost(const QString& reason);
    /// Emits `Back`, and a `Trouble` that says so, if a loss was told before.
    void TellBack();
    /// Emits the lines that \p bytes complete.
    void Feed(const QByteArray& bytes);
    /// Emits the last line if it had no end.
    void FeedEnd();

private:
    ZrLineSplitter m_splitter;
    bool m_isLost = false; ///< told
};
