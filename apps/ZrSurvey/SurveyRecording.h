#pragma once

#include "ZrKit/recording/ZrRecorder.h"

#include <QObject>
#include <QString>

/// Whether the application is recording, as the page "Record" tells it to the others.
class SurveyRecording : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool IsOn() const { return m_isOn; }

    const ZrRecorder::Status& Status() const { return m_status; } ///< of the last recording

    void Set(const ZrRecorder::Status& status); ///< a recording has begun, or goes on
    void End();

    QString ElapsedText() const; ///< "1:23:45"

Q_SIGNALS:
    void Changed();
    void Switched(bool isOn); ///< on or off

private:
    bool m_isOn = false;
    ZrRecorder::Status m_status;
};
