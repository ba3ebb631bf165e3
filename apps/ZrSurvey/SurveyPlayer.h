#pragma once

#include <QObject>

/// Playing of the recording under review, for pages that show it without being the page "Review", which keeps
/// the clock.
///
/// The clock has no time of its own: it goes on while a visible page tells by `Advance` how long its frames
/// take.
class SurveyPlayer : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool HasRecording() const { return m_hasRecording; }

    bool IsPlaying() const { return m_isPlaying; }

    void Set(bool hasRecording, bool isPlaying); ///< as it is now

    void Toggle() { Q_EMIT ToggleWanted(); }

    void Pause()
    {
        if (m_isPlaying)
            Q_EMIT PauseWanted();
    }

    void Advance(double seconds) { Q_EMIT Elapsed(seconds); }

Q_SIGNALS:
    void Changed();
    void ToggleWanted();
    void PauseWanted();
    void Elapsed(double seconds);

private:
    bool m_hasRecording = false;
    bool m_isPlaying = false;
};
