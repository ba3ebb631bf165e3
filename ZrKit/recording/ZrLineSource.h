#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/recording/ZrLineSplitter.h"

#include <QObject>
#include <QString>

/// Where a recorder gets its lines from: standard input, a network port, a file that is replayed.
///
/// A source lives on a thread with an event loop and emits its signals there. After `Start` it delivers lines
/// until it emits `Finished` or is destroyed. A source that loses its connection says so by `Trouble` and
/// goes on trying: the recording must not end because a cable was pulled.
class ZR_KIT_EXPORT ZrLineSource : public QObject
{
    Q_OBJECT

public:
    explicit ZrLineSource(QObject* parent);
    ~ZrLineSource() override;

    /// Begins to deliver. False, with a sentence in \p error, when the source cannot be had at all.
    virtual bool Start(QString* error) = 0;

    /// What the source is, for messages: "UDP port 10110".
    virtual QString Name() const = 0;

    /// Lines that were too long and had to be dropped.
    u64 Dropped() const { return m_splitter.Dropped(); }

Q_SIGNALS:
    /// One line without its end.
    void Line(const QByteArray& line);
    /// The source has come to its end and delivers nothing more.
    void Finished();
    /// Something a person should know; the source goes on.
    void Trouble(const QString& message);

protected:
    /// Emits the lines that \p bytes complete.
    void Feed(const QByteArray& bytes);
    /// Emits the last line if it had no end.
    void FeedEnd();

private:
    ZrLineSplitter m_splitter;
};
