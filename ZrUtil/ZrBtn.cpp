#include "ZrUtil/ZrBtn.h"

#include "ZrUtil/ZrCtrlAccess.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrTheme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QTouchEvent>

namespace {

constexpr u32 hoverNone = 0;
constexpr u32 hoverOver = 1;
constexpr u32 hoverPressed = 2;

bool IsTouchCopy(const QMouseEvent& event)
{
    return event.source() == Qt::MouseEventSynthesizedBySystem;
}

bool IsPressKey(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Space || event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter
        || event.key() == Qt::Key_Select;
}

} // namespace

ZrBtn::ZrBtn(QWidget* parent, eType look)
    : QWidget(parent)
    , type(look)
    , font(ZrTheme::ctrlFont)
    , m_themeFont(font)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    setMouseTracking(true);
    // A tap must not take the focus away from what is being typed.
    setFocusPolicy(Qt::TabFocus);
    ZrCtrlAccess::Install();
}

void ZrBtn::SetHover(u32 state)
{
    if (hover == state)
        return;
    hover = state;
    update();
}

void ZrBtn::Clear()
{
    const bool wasDown = down;
    hover = hoverNone;
    down = false;
    m_isKeyDown = false;
    update();
    if (wasDown)
        ZrCtrlAccess::TellPressed(this);
}

/// Ends a press whose release will not come.
void ZrBtn::Forget()
{
    if (down || hover != hoverNone)
        Clear();
}

void ZrBtn::PtrDown(const QPoint& p)
{
    if (!rect().contains(p)) {
        Forget();
        return;
    }
    down = true;
    hover = hoverPressed;
    update();
    ZrCtrlAccess::TellPressed(this);
    const QPointer<ZrBtn> self(this);
    if (checkable) {
        on = !on;
        m_toldOn = on;
        ZrCtrlAccess::TellChecked(this);
        Q_EMIT Toggled(on);
        if (!self)
            return;
        if (link)
            *link = on;
    }
    if (id >= 0) {
        Q_EMIT Selected(id);
        if (!self)
            return;
    }
    Q_EMIT Pressed();
}

void ZrBtn::PtrMove(const QPoint& p)
{
    if (!rect().contains(p))
        SetHover(hoverNone);
    else
        SetHover(down ? hoverPressed : hoverOver);
}

/// False when a slot has deleted the button.
bool ZrBtn::EmitReleased()
{
    const QPointer<ZrBtn> self(this);
    Q_EMIT Released(id);
    if (self)
        Q_EMIT Clicked();
    return !self.isNull();
}

void ZrBtn::PtrUp()
{
    if (down && !EmitReleased())
        return;
    Clear();
}

void ZrBtn::mousePressEvent(QMouseEvent* event)
{
    if (!IsTouchCopy(*event))
        PtrDown(event->pos());
}

void ZrBtn::mouseMoveEvent(QMouseEvent* event)
{
    if (!IsTouchCopy(*event))
        PtrMove(event->pos());
}

void ZrBtn::mouseReleaseEvent(QMouseEvent* event)
{
    const bool isInside = rect().contains(event->pos());
    if (isInside && down && !EmitReleased())
        return;
    if (isInside || hover != hoverNone || down)
        Clear();
}

bool ZrBtn::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        return isEnabled() ? TouchEvent(*static_cast<QTouchEvent*>(event)) : QWidget::event(event);
    case QEvent::WindowBlocked:
        // The release goes to the dialog.
        Forget();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

bool ZrBtn::TouchEvent(QTouchEvent& event)
{
    event.accept();
    if (event.type() == QEvent::TouchEnd || event.type() == QEvent::TouchCancel) {
        PtrUp();
        return true;
    }
    const QList<QTouchEvent::TouchPoint> points = event.touchPoints();
    if (points.isEmpty())
        return true;
    const QTouchEvent::TouchPoint& last = points.last();
    if (last.state() == Qt::TouchPointPressed)
        PtrDown(last.pos().toPoint());
    else if (last.state() == Qt::TouchPointMoved)
        PtrMove(last.pos().toPoint());
    else if (last.state() == Qt::TouchPointReleased)
        PtrUp();
    return true;
}

void ZrBtn::leaveEvent(QEvent* /*event*/)
{
    SetHover(hoverNone);
}

void ZrBtn::focusInEvent(QFocusEvent* event)
{
    m_showsFocus = ZrCtrlLook::ShowsFocus(event->reason(), m_showsFocus);
    QWidget::focusInEvent(event);
}

void ZrBtn::keyPressEvent(QKeyEvent* event)
{
    if (!m_showsFocus && hasFocus())
        update();
    m_showsFocus = true;
    if (!IsPressKey(*event)) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (event->isAutoRepeat() || down)
        return;
    m_isKeyDown = true;
    PtrDown(rect().center());
}

void ZrBtn::keyReleaseEvent(QKeyEvent* event)
{
    if (!IsPressKey(*event)) {
        QWidget::keyReleaseEvent(event);
        return;
    }
    if (!event->isAutoRepeat() && m_isKeyDown)
        PtrUp();
}

void ZrBtn::focusOutEvent(QFocusEvent* event)
{
    // The release of the key goes to another widget; that of a finger or the mouse does not.
    if (m_isKeyDown)
        Forget();
    QWidget::focusOutEvent(event);
}

void ZrBtn::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        Forget();
    if (event->type() == QEvent::LayoutDirectionChange)
        Changed();
    QWidget::changeEvent(event);
}

void ZrBtn::hideEvent(QHideEvent* event)
{
    Forget();
    QWidget::hideEvent(event);
}

void ZrBtn::FollowTheme()
{
    if (font == m_themeFont)
        font = ZrTheme::ctrlFont;
    m_themeFont = ZrTheme::ctrlFont;
}

void ZrBtn::Changed()
{
    FollowTheme();
    PlaceContent();
    updateGeometry();
    update();
    if (on == m_toldOn)
        return;
    m_toldOn = on;
    ZrCtrlAccess::TellChecked(this);
}

void ZrBtn::resizeEvent(QResizeEvent* event)
{
    FollowTheme();
    PlaceContent();
    QWidget::resizeEvent(event);
}
