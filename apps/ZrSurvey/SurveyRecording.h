#pragma once

#include "ZrKit/recording/ZrRecorder.h"
#include "ZrKit/recording/ZrSpaceLeft.h"

#include <QObject>
#include <QString>

/// Whether the application is recording, as the page "Record" tells it to the others; what should be known of
/// it until somebody has seen it; and for how long there is room.
class SurveyRecording : public QObject
{
    Q_OBJECT

public:
    /// Something that happened to a recording, and what to do next.
    struct Notice
    {
        QString text; ///< empty for none
        QString advice;
        QString log; ///< that was written, to be reviewed; empty for none
        bool isOver = false; ///< the recording has ended, or could not begin; else it goes on
    };

    using QObject::QObject;

    bool IsOn() const { return m_isOn; }

    const ZrRecorder::Status& Status() const { return m_status; } ///< of the last recording

    void Set(const ZrRecorder::Status& status); ///< a recording has begun, or goes on
    void End();

    QString ElapsedText() const; ///< "1:23:45"

    /// \name Notice
    /// Stays until it is dismissed or the next recording begins.
    /// @{
    static QString TimeNow(); ///< that notices begin with: "13:04:18 UTC"

    const Notice& Told() const { return m_notice; }

    void Tell(const Notice& notice);
    void Dismiss();
    /// @}

    /// \name Space
    /// @{

    /// Bytes per second that the source brings now; 0 when it is another one and nothing is known.
    void SetSourceRate(double rate);

    void SetEarlierRate(double rate); ///< of the latest recording in the folder; 0 when not known

    ZrSpaceLeft Left(qint64 freeBytes, qint64 stopBelow) const;
    /// @}

Q_SIGNALS:
    void Changed();
    void Switched(bool isOn); ///< on or off
    void NoticeChanged();

private:
    bool m_isOn = false;
    ZrRecorder::Status m_status;
    Notice m_notice;
    double m_sourceRate = 0.0;
    double m_lastRate = 0.0; ///< of the last recording
    double m_earlierRate = 0.0;
};
