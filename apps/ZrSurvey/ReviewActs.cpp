// What buttons and keys do on the page "Review".

#include "ZrKit/review/ZrTimeText.h"
#include "ZrKit/sonar/ZrSonarBlanking.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/ReviewBottom.h"
#include "apps/ZrSurvey/ReviewEvents.h"
#include "apps/ZrSurvey/ReviewExport.h"
#include "apps/ZrSurvey/ReviewLook.h"
#include "apps/ZrSurvey/ReviewMeasure.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QKeyEvent>

#include <cmath>

void ReviewPage::Act(int act)
{
    if (!m_recording)
        return;
    const std::vector<double>& records = m_recording->Times()->Times();
    bool isMoved = false;
    switch (act) {
    case ReviewTransport::previousEvent:
        StepEvent(-1);
        break;
    case ReviewTransport::nextEvent:
        StepEvent(1);
        break;
    case ReviewTransport::secondBack:
        isMoved = m_clock.StepSeconds(-1.0);
        break;
    case ReviewTransport::secondForward:
        isMoved = m_clock.StepSeconds(1.0);
        break;
    case ReviewTransport::recordBack:
        isMoved = m_clock.Step(records, -1);
        break;
    case ReviewTransport::recordForward:
        isMoved = m_clock.Step(records, 1);
        break;
    case ReviewTransport::play:
    case ReviewTransport::playBack: {
        const double direction = act == ReviewTransport::play ? 1.0 : -1.0;
        const bool isSame = m_clock.Rate() * direction > 0.0;
        if (m_clock.IsPlaying() && isSame) {
            m_clock.Pause();
            break;
        }
        m_clock.SetRate(std::fabs(m_clock.Rate()) * direction);
        m_clock.Play();
        // From the end it goes to the other one.
        isMoved = true;
        break;
    }
    case ReviewTransport::slower:
        m_clock.Slower();
        break;
    case ReviewTransport::faster:
        m_clock.Faster();
        break;
    case ReviewTransport::setA:
        SetRangeEnd(0);
        break;
    case ReviewTransport::setB:
        SetRangeEnd(1);
        break;
    case ReviewTransport::loop:
        if (m_clock.HasLoop()) {
            m_clock.ClearLoop();
        } else if (!m_clock.SetLoop(m_bar->RangeA(), m_bar->RangeB())) {
            View().Tell(tr("Set the ends of the range with A and B first"));
        }
        break;
    case ReviewTransport::addEvent:
        m_clock.Pause();
        m_events->Add(m_clock.Time());
        break;
    case ReviewTransport::typeTime:
        m_clock.Pause();
        m_text->Ask(tr("Go to"),
            tr("Time of day (12:34:56), date and time (2021-05-03 12:34), or seconds from here (+90, −1:30). "
               "UTC."),
            ZrTimeText::Clock(m_recording->Times()->LogTime(m_clock.Time()), 1),
            [this](const QString& text) { return GoToText(text); });
        break;
    default:
        break;
    }
    if (isMoved)
        ShowCursor();
    ShowState();
}

void ReviewPage::PlayOrPause()
{
    const bool isBackward = m_clock.IsPlaying() && m_clock.Rate() < 0.0;
    Act(isBackward ? ReviewTransport::playBack : ReviewTransport::play);
}

void ReviewPage::StepEvent(int direction)
{
    const ZrEventList& events = m_recording->Events();
    const double time = m_recording->Times()->LogTime(m_clock.Time());
    // A cursor that was put on an event by its time is there but for rounding.
    constexpr double same = 1e-4;
    const std::size_t event = direction > 0 ? events.Next(time + same) : events.Previous(time - same);
    if (event >= events.Count()) {
        View().Tell(direction > 0 ? tr("No event behind the cursor") : tr("No event before the cursor"));
        return;
    }
    m_clock.Pause();
    GoTo(m_recording->TimeOf(events.At(event)));
    m_events->SetCurrent(static_cast<int>(event));
}

void ReviewPage::SetRangeEnd(int end)
{
    const double ends[]
        = {end == 0 ? m_clock.Time() : m_bar->RangeA(), end == 1 ? m_clock.Time() : m_bar->RangeB()};
    m_bar->SetRange(ends[0], ends[1]);
    if (m_clock.HasLoop() && !m_clock.SetLoop(ends[0], ends[1]))
        m_clock.ClearLoop();
}

void ReviewPage::ExportPart()
{
    if (!m_recording || m_export->IsWorking())
        return;
    const double a = m_bar->RangeA();
    const double b = m_bar->RangeB();
    const bool hasRange = !std::isnan(a) && !std::isnan(b) && a != b;
    m_export->Ask(
        m_recording, hasRange ? a : m_bar->Line().VisibleBegin(), hasRange ? b : m_bar->Line().VisibleEnd());
}

void ReviewPage::Toggle(bool& setting)
{
    setting = !setting;
    View().SettingsEdited(); // which comes back here
}

void ReviewPage::Enlarge(ePane pane)
{
    m_pane = m_pane == pane ? paneAll : pane;
    Place();
    ShowState();
    Changed();
}

bool ReviewPage::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<const QKeyEvent*>(event);
        if (OnKey(key->key(), key->modifiers()))
            return true;
    }
    return SurveyPage::eventFilter(watched, event);
}

bool ReviewPage::OnKey(int key, Qt::KeyboardModifiers modifiers)
{
    const bool isShift = modifiers & Qt::ShiftModifier;
    const bool isCtrl = modifiers & Qt::ControlModifier;
    if (modifiers & Qt::AltModifier)
        return false;
    if (isCtrl && key == Qt::Key_O) {
        AskFile();
        return true;
    }
    if (!m_recording)
        return false;
    const auto act = [this](int what) {
        Act(what);
        return true;
    };
    const auto click = [](ZrBtn* button) {
        if (button->isEnabled())
            Q_EMIT button->Clicked();
        return true;
    };
    if (OnToolKey(key, modifiers))
        return true;
    using T = ReviewTransport;
    switch (key) {
    case Qt::Key_Space:
        if (isShift)
            return act(T::playBack);
        PlayOrPause();
        return true;
    case Qt::Key_Left:
        return act(isShift ? T::secondBack : T::recordBack);
    case Qt::Key_Right:
        return act(isShift ? T::secondForward : T::recordForward);
    case Qt::Key_Home:
        GoTo(m_clock.Begin());
        return true;
    case Qt::Key_End:
        GoTo(m_clock.End());
        return true;
    case Qt::Key_A:
        return act(T::setA);
    case Qt::Key_B:
        return act(T::setB);
    case Qt::Key_L:
        return isCtrl ? click(m_list) : act(T::loop);
    case Qt::Key_E:
        return act(isShift ? T::previousEvent : isCtrl ? T::nextEvent : T::addEvent);
    case Qt::Key_T:
        return act(T::typeTime);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return act(T::faster);
    case Qt::Key_Minus:
        return act(T::slower);
    case Qt::Key_F:
        return click(isShift ? m_fit : m_follow);
    case Qt::Key_P:
        return click(m_look);
    case Qt::Key_S:
        return click(isCtrl ? m_exportBtn : m_slant);
    case Qt::Key_O:
        return click(m_bottom);
    case Qt::Key_K:
        return click(m_correct);
    case Qt::Key_M:
        return click(m_measure);
    case Qt::Key_G:
        return click(m_gaps);
    case Qt::Key_W: {
        int& kind = View().Model().settings.blanking;
        kind = (kind + 1) % ZrSonarBlanking::kindCount;
        View().SettingsEdited();
        m_sonar->Look().Load();
        return true;
    }
    case Qt::Key_1:
        return click(m_mapLarge);
    case Qt::Key_2:
        return click(m_sonarLarge);
    case Qt::Key_3:
        return click(m_plotsLarge);
    case Qt::Key_F6:
        m_events->EditCurrent();
        return true;
    case Qt::Key_Delete:
        m_events->RemoveCurrent();
        return true;
    case Qt::Key_Z:
    case Qt::Key_Y:
        if (!isCtrl)
            return false;
        if (key == Qt::Key_Y || isShift)
            m_events->Redo();
        else
            m_events->Undo();
        return true;
    case Qt::Key_Escape:
        if (m_sonar->Look().isVisible())
            return click(m_look);
        if (m_pane != paneAll) {
            Enlarge(m_pane);
            return true;
        }
        return false;
    default:
        return false;
    }
}

/// Keys that a tool which is on has for itself.
bool ReviewPage::OnToolKey(int key, Qt::KeyboardModifiers modifiers)
{
    ReviewBottom& bottom = m_sonar->Bottom();
    ReviewMeasure& measure = m_sonar->Measure();
    const bool isCtrl = modifiers & Qt::ControlModifier;
    const bool isShift = modifiers & Qt::ShiftModifier;
    if (key == Qt::Key_Escape && (bottom.IsOn() || measure.IsOn())) {
        bottom.SetOn(false);
        measure.SetOn(false);
        return true;
    }
    if (measure.IsOn() && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
        measure.Store();
        return true;
    }
    if (measure.IsOn() && measure.Target() && !isCtrl && (key == Qt::Key_H || key == Qt::Key_C)) {
        if (key == Qt::Key_H)
            measure.ToggleShadow();
        else
            measure.Clear();
        return true;
    }
    if (!bottom.IsOn())
        return false;
    switch (key) {
    case Qt::Key_Z:
    case Qt::Key_Y:
        if (!isCtrl)
            return false;
        if (key == Qt::Key_Y || isShift)
            bottom.Redo();
        else
            bottom.Undo();
        return true;
    case Qt::Key_D:
        if (isCtrl)
            return false;
        if (isShift)
            bottom.SetSides((bottom.Sides() + 1) % ReviewBottom::sidesCount);
        else
            bottom.Detect();
        return true;
    case Qt::Key_Delete:
        bottom.TakeBack();
        return true;
    default:
        return false;
    }
}
