#pragma once

#include "ZrKit/recording/ZrLineSource.h"
#include "ZrKit/records/ZrNmeaDecoder.h"

#include <QElapsedTimer>
#include <QFile>

class QTimer;

/// Replays a text file of NMEA sentences at the pace of the times in it, a number of times faster or slower.
///
/// A line is delivered when the time that the sentences have told so far is due. A step backwards in time, or
/// one forward of more than `MaxGap` seconds, is not waited for.
///
/// \code
/// session.Open([path] { return new ZrFileSource(path, 10.0, nullptr); }); // ten times as fast
/// \endcode
class ZR_KIT_EXPORT ZrFileSource : public ZrLineSource
{
    Q_OBJECT

public:
    static constexpr double MaxGap = 60.0; ///< seconds of the data

    /// \p speed 1 is real time, 10 ten times faster, 0 without any waiting.
    ZrFileSource(const QString& path, double speed, QObject* parent);
    bool Start(QString* error) override;
    QString Name() const override;

    u64 Dropped() const override { return m_lines.Dropped(); }

private:
    void OnDue();
    bool NextLine();
    double WaitFor(double dataTime);

    QFile m_file;
    double m_speed;
    QTimer* m_timer;
    QElapsedTimer m_clock;
    ZrNmeaDecoder m_decoder;
    QByteArrayList m_pending; ///< lines read from the file and not delivered yet
    ZrLineSplitter m_lines;
    bool m_atEnd = false;
    double m_lastDataTime = 0.0; ///< seconds, as the data tell
    double m_due = 0.0; ///< seconds of `m_clock` at which the next line is due
    bool m_haveTime = false;
};
