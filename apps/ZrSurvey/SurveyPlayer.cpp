#include "apps/ZrSurvey/SurveyPlayer.h"

void SurveyPlayer::Set(bool hasRecording, bool isPlaying)
{
    if (hasRecording == m_hasRecording && isPlaying == m_isPlaying)
        return;
    m_hasRecording = hasRecording;
    m_isPlaying = isPlaying;
    Q_EMIT Changed();
}
