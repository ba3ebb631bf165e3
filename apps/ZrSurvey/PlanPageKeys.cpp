// The shortcuts of the page "Plan".

#include "ZrKit/map/ZrMapGesture.h"
#include "ZrKit/planning/ZrPlanDocument.h"
#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/PlanFiles.h"
#include "apps/ZrSurvey/PlanPage.h"
#include "apps/ZrSurvey/PlanPatternPanel.h"

bool PlanPage::OnKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (modifiers == Qt::ControlModifier) {
        switch (key) {
        case Qt::Key_Z:
            Undo();
            return true;
        case Qt::Key_Y:
            Redo();
            return true;
        case Qt::Key_N:
            m_files->New();
            return true;
        case Qt::Key_O:
            m_files->ShowOpen();
            return true;
        case Qt::Key_S:
            SavePlan(false);
            return true;
        case Qt::Key_R:
            Reverse();
            return true;
        case Qt::Key_Up:
        case Qt::Key_Down:
            MoveSelected(key == Qt::Key_Up ? -1 : 1);
            return true;
        default:
            return false;
        }
    }
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier) && key == Qt::Key_Z) {
        Redo();
        return true;
    }
    // A plus is with Shift on some keyboards and without on others, and there are those beside the digits.
    if ((modifiers & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0) {
        switch (key) {
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            Zoom(ZrMapGesture::WheelFactor);
            return true;
        case Qt::Key_Minus:
            Zoom(1.0 / ZrMapGesture::WheelFactor);
            return true;
        default:
            break;
        }
    }
    if ((modifiers & ~Qt::KeypadModifier) != 0)
        return false;
    switch (key) {
    case Qt::Key_A:
        SetMode(m_mode == modeAdd ? modeBrowse : modeAdd);
        return true;
    case Qt::Key_D:
        SetMode(m_mode == modeArea ? modeBrowse : modeArea);
        return true;
    case Qt::Key_P:
        StartPattern();
        return true;
    case Qt::Key_F:
        Fit();
        return true;
    case Qt::Key_M:
        ShowMore();
        return true;
    case Qt::Key_C:
        if (!m_corners->isVisible())
            return false;
        EditArea();
        return true;
    case Qt::Key_G:
        if (m_mode != modeArea)
            return false;
        m_keepClear->on = !m_keepClear->on;
        ShowNoGo();
        return true;
    case Qt::Key_1:
    case Qt::Key_2:
    case Qt::Key_3:
        if (m_mode == modePattern)
            return false;
        ShowSide(key == Qt::Key_1 ? sideList : key == Qt::Key_2 ? sidePoint : sideChecks);
        return true;
    case Qt::Key_Insert:
        if (m_mode == modeAdd || m_mode == modeArea)
            AddHere(Crosshair());
        else
            InsertIntoLeg();
        return true;
    case Qt::Key_Backspace:
        if (m_mode != modeArea)
            return false;
        RemoveLastCorner();
        return true;
    case Qt::Key_Delete:
        if (m_area >= 0)
            DeleteArea();
        else
            DeleteSelected();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_mode != modePattern)
            return false;
        m_pattern->Apply();
        return true;
    case Qt::Key_Escape:
        if (m_mode == modeBrowse && m_selected < 0 && !HasLeg() && m_area < 0)
            return false;
        if (m_mode == modeBrowse)
            Select(-1);
        else
            SetMode(modeBrowse);
        return true;
    default:
        return false;
    }
}
