#pragma once

#include <QObject>
#include <QString>

class SurveyView;
class ZrRecordingSession;
class ZrToast;

/// Keeps the window from being closed by one touch while that would end a recording, or lose events that are
/// in memory only: tells what is at stake, with the action that closes all the same.
class SurveyClosing : public QObject
{
    Q_OBJECT

public:
    SurveyClosing(SurveyView& view, ZrToast& toast);

    bool MayClose(); ///< false after the question

    /// Gives the keys to the action while the question is on the screen: it does not stay for long. False
    /// when there is none, or it has them already.
    bool TakeFocus();

private:
    ZrRecordingSession* Session() const; ///< null while the page "Record" was not needed
    void Ask(const QString& text, const QString& action, void (SurveyClosing::*act)());
    void StopAndClose();
    void CloseAnyway();
    void OnRecording();

    SurveyView& m_view;
    ZrToast& m_toast;
    QString m_question; ///< told last
    bool m_isStopping = false; ///< the window closes when the recording has ended
    bool m_isSure = false; ///< events may be lost
};
