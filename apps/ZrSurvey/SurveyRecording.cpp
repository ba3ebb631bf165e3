#include "apps/ZrSurvey/SurveyRecording.h"

#include <algorithm>

void SurveyRecording::Set(const ZrRecorder::Status& status)
{
    m_status = status;
    const bool wasOn = m_isOn;
    m_isOn = true;
    if (!wasOn)
        Q_EMIT Switched(true);
    Q_EMIT Changed();
}

void SurveyRecording::End()
{
    if (!m_isOn)
        return;
    m_isOn = false;
    Q_EMIT Switched(false);
    Q_EMIT Changed();
}

QString SurveyRecording::ElapsedText() const
{
    const auto seconds = static_cast<qint64>(std::max(m_status.seconds, 0.0));
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}
