#include "apps/ZrSurvey/SurveyClosing.h"

#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/ui/ZrToast.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

SurveyClosing::SurveyClosing(SurveyView& view, ZrToast& toast)
    : QObject(&view)
    , m_view(view)
    , m_toast(toast)
{
}

ZrRecordingSession* SurveyClosing::Session() const
{
    auto* page = static_cast<RecordPage*>(m_view.m_pages.value(QStringLiteral("Record")));
    return page ? &page->Session() : nullptr;
}

bool SurveyClosing::MayClose()
{
    const ZrRecordingSession* session = Session();
    if (session && session->Recording() == ZrRecordingSession::recordingStopping) {
        StopAndClose(); // asked for already
        return false;
    }
    if (session && session->IsRecording()) {
        Ask(tr("A recording is running: the window stays open."), tr("Stop and close"),
            &SurveyClosing::StopAndClose);
        return false;
    }
    const std::size_t count = m_view.Model().unsaved.Count();
    if (count == 0 || m_isSure)
        return true;
    Ask(count == 1 ? tr("1 event is in memory only and would be lost: export it first.")
                   : tr("%1 events are in memory only and would be lost: export them first.").arg(count),
        tr("Close anyway"), &SurveyClosing::CloseAnyway);
    return false;
}

void SurveyClosing::Ask(const QString& text, const QString& action, void (SurveyClosing::*act)())
{
    m_question = text;
    m_view.Tell(text, action, [this, act] { (this->*act)(); });
}

bool SurveyClosing::TakeFocus()
{
    return !m_question.isEmpty() && m_toast.Text() == m_question && m_toast.FocusAction();
}

void SurveyClosing::StopAndClose()
{
    ZrRecordingSession* session = Session();
    if (!session || session->Recording() == ZrRecordingSession::recordingOff) {
        m_view.close(); // it has ended meanwhile
        return;
    }
    m_isStopping = true;
    connect(session, &ZrRecordingSession::RecordingChanged, this, &SurveyClosing::OnRecording,
        Qt::UniqueConnection);
    session->Stop();
}

void SurveyClosing::OnRecording()
{
    if (!m_isStopping || Session()->Recording() != ZrRecordingSession::recordingOff)
        return;
    m_isStopping = false;
    // After all that the end of the recording tells: a disk that did not take its events is the next
    // question.
    QMetaObject::invokeMethod(
        &m_view, [this] { m_view.close(); }, Qt::QueuedConnection);
}

void SurveyClosing::CloseAnyway()
{
    m_isSure = true;
    m_view.close();
    m_isSure = false;
}
