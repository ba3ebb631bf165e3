// Fingers, mouse, keys of hardware and input methods of the keyboard on the screen.

#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrInputDlg.h"
#include "ZrUtil/ZrUnits.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTouchEvent>

#include <algorithm>

namespace {

constexpr int repeatAfter = 400; ///< ms until a key held down repeats
constexpr int repeatEvery = 70; ///< ms
constexpr int mouseId = -1; ///< among the fingers

bool Repeats(eZriAction action)
{
    return action == zriDelete || action == zriLeft || action == zriRight;
}

/// OK and Cancel act when let go: a finger may slide off them.
bool Closes(eZriAction action)
{
    return action == zriOk || action == zriCancel;
}

/// Ctrl and Meta make commands of keys; Ctrl with Alt is how some systems send AltGr.
bool IsCommand(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers held = event.modifiers();
    return (held & Qt::MetaModifier) != 0
        || ((held & Qt::ControlModifier) != 0 && (held & Qt::AltModifier) == 0);
}

} // namespace

/// Keys reach half the gap around them: there is no dead line between two.
int ZrInputDlg::ItemAt(const QPoint& p) const
{
    const int around = (Bx(1) - Bx(0) - Cell(0, 0, 1).width()) / 2;
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        if (m_items[i].rect.adjusted(-around, -around, around, around).contains(p))
            return static_cast<int>(i);
    }
    return -1;
}

bool ZrInputDlg::IsHeld(int item) const
{
    return std::any_of(m_fingers.begin(), m_fingers.end(),
        [item](const Finger& finger) { return finger.item == item && finger.isOver; });
}

void ZrInputDlg::PointerDown(int id, const QPoint& p)
{
    PointerUp(id, QPoint(-1, -1));
    const int i = ItemAt(p);
    if (i < 0 || !m_items[static_cast<std::size_t>(i)].enabled)
        return;
    const ZrInputItem item = m_items[static_cast<std::size_t>(i)];
    m_fingers.push_back({id, i, true});
    m_repeat.stop();
    update();
    if (Closes(item.action))
        return;
    if (Repeats(item.action)) {
        m_repeatFinger = id;
        m_repeat.start(repeatAfter);
    }
    Perform(item);
}

void ZrInputDlg::PointerMove(int id, const QPoint& p)
{
    const int over = ItemAt(p);
    for (Finger& finger : m_fingers) {
        if (finger.id != id || finger.isOver == (finger.item == over))
            continue;
        finger.isOver = !finger.isOver;
        update();
    }
}

void ZrInputDlg::PointerUp(int id, const QPoint& p)
{
    const auto found = std::find_if(
        m_fingers.begin(), m_fingers.end(), [id](const Finger& finger) { return finger.id == id; });
    if (found == m_fingers.end())
        return;
    const int held = found->item;
    m_fingers.erase(found);
    if (m_repeatFinger == id)
        m_repeat.stop();
    update();
    const ZrInputItem item = m_items[static_cast<std::size_t>(held)];
    if (Closes(item.action) && ItemAt(p) == held)
        Perform(item);
}

void ZrInputDlg::ReleaseAll()
{
    m_repeat.stop();
    m_fingers.clear();
    update();
}

void ZrInputDlg::Repeat()
{
    m_repeat.setInterval(repeatEvery);
    for (const Finger& finger : m_fingers) {
        if (finger.id != m_repeatFinger || !finger.isOver)
            continue;
        Perform(m_items[static_cast<std::size_t>(finger.item)]);
        return;
    }
}

void ZrInputDlg::HandleTouch(QTouchEvent& event)
{
    event.accept();
    if (event.type() == QEvent::TouchCancel) {
        ReleaseAll();
        return;
    }
    const QPointer<ZrInputDlg> self(this);
    const QList<QTouchEvent::TouchPoint> points = event.touchPoints();
    for (const QTouchEvent::TouchPoint& point : points) {
        const QPoint p = point.pos().toPoint();
        // Ids start at 0, the mouse lies below.
        if (point.state() == Qt::TouchPointPressed)
            PointerDown(point.id(), p);
        else if (point.state() == Qt::TouchPointMoved)
            PointerMove(point.id(), p);
        else if (point.state() == Qt::TouchPointReleased)
            PointerUp(point.id(), p);
        if (!self)
            return;
    }
}

void ZrInputDlg::mousePressEvent(QMouseEvent* event)
{
    // Touches come as themselves, the system's mouse copies of them would enter everything twice.
    if (event->source() == Qt::MouseEventSynthesizedBySystem || event->button() != Qt::LeftButton)
        return;
    m_hot = ItemAt(event->pos());
    PointerDown(mouseId, event->pos());
}

void ZrInputDlg::mouseMoveEvent(QMouseEvent* event)
{
    if (event->source() == Qt::MouseEventSynthesizedBySystem)
        return;
    PointerMove(mouseId, event->pos());
    const int over = ItemAt(event->pos());
    if (over == m_hot)
        return;
    m_hot = over;
    update();
}

void ZrInputDlg::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->source() != Qt::MouseEventSynthesizedBySystem && event->button() == Qt::LeftButton)
        PointerUp(mouseId, event->pos());
}

void ZrInputDlg::leaveEvent(QEvent* /*event*/)
{
    m_hot = -1;
    update();
}

void ZrInputDlg::hideEvent(QHideEvent* event)
{
    ReleaseAll();
    QWidget::hideEvent(event);
}

void ZrInputDlg::focusOutEvent(QFocusEvent* event)
{
    // The release may go to somebody else.
    ReleaseAll();
    QWidget::focusOutEvent(event);
}

bool ZrInputDlg::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        HandleTouch(*static_cast<QTouchEvent*>(event));
        return true;
    case QEvent::ShortcutOverride:
        // Shortcuts of the window must not act on what is typed here.
        if (!IsTypingKey(*static_cast<QKeyEvent*>(event)))
            break;
        event->accept();
        return true;
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        // Not for the page behind.
        event->accept();
        return true;
    default:
        break;
    }
    return QWidget::event(event);
}

bool ZrInputDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible()) {
        FitInto(parentWidget()->size());
        setGeometry(Inside(QRect(pos(), QSize(dlgWidth, dlgHeight))));
    }
    return QWidget::eventFilter(watched, event);
}

/// The Tab key does not lead to the controls behind the keyboard.
bool ZrInputDlg::focusNextPrevChild(bool /*next*/)
{
    return true;
}

bool ZrInputDlg::IsTypingKey(const QKeyEvent& event) const
{
    if (event.matches(QKeySequence::Paste))
        return true;
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        return true;
    default:
        break;
    }
    if (event.text().isEmpty() || IsCommand(event))
        return false;
    const uint first = event.text().toUcs4().constFirst();
    const QChar::Category category = QChar::category(first);
    // Joiners and the like are part of words.
    return QChar::isPrint(first) || category == QChar::Other_Format || category == QChar::Other_PrivateUse;
}

/// \p s with what keyboards of other layouts send for the signs that values are written with. Free text
/// stays.
QString ZrInputDlg::AsTyped(const QString& s) const
{
    if (m_builder == &ZrInputDlg::BuildQwerty)
        return s;
    const bool isGeo = m_builder == &ZrInputDlg::BuildGeo;
    QString typed = s;
    for (QChar& c : typed) {
        switch (c.unicode()) {
        case u',':
            c = QLatin1Char('.');
            break;
        case 0x2212: // minus sign
        case 0x2013: // en dash
            c = QLatin1Char('-');
            break;
        case 0x00BA: // masculine ordinal indicator
        case 0x02DA: // ring above
            c = ZrUnits::degrees;
            break;
        case 0x00B4: // acute accent
        case 0x2019: // right single quotation mark
        case 0x2032: // prime
            c = QLatin1Char('\'');
            break;
        case 0x201D: // right double quotation mark
        case 0x2033: // double prime
            c = QLatin1Char('"');
            break;
        default:
            // Hemispheres are written in capitals.
            if (isGeo && QStringLiteral("nsew").contains(c))
                c = c.toUpper();
            break;
        }
    }
    return typed;
}

void ZrInputDlg::Paste()
{
    const QString copied = QGuiApplication::clipboard()->text();
    // A line feed may stand around what was copied, and is no part of a value.
    QString line = copied.trimmed();
    const int end = line.indexOf(QLatin1Char('\n'));
    if (end >= 0)
        line.truncate(end);
    Insert(AsTyped(line.trimmed()));
}

void ZrInputDlg::keyPressEvent(QKeyEvent* event)
{
    if (!IsTypingKey(*event)) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        Paste();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        // Held down since before the keyboard opened it is meant for something else.
        if (!event->isAutoRepeat())
            OnOk();
        break;
    case Qt::Key_Escape:
        OnCancel();
        break;
    case Qt::Key_Left:
        OnLeft();
        break;
    case Qt::Key_Right:
        OnRight();
        break;
    case Qt::Key_Home:
        OnStart();
        break;
    case Qt::Key_End:
        OnEnd();
        break;
    case Qt::Key_Delete:
        if (cursor < text.size())
            OnDelete();
        break;
    case Qt::Key_Backspace:
        RemoveBefore();
        break;
    default:
        Insert(AsTyped(event->text()));
        break;
    }
}

void ZrInputDlg::inputMethodEvent(QInputMethodEvent* event)
{
    m_preedit = event->preeditString();
    const QString composed = event->commitString();
    event->accept();
    update();
    if (event->replacementLength() > 0) {
        const int from = std::clamp(cursor + event->replacementStart(), 0, text.size());
        text.remove(from, event->replacementLength());
        cursor = from;
        m_isFresh = false;
        // Nothing may follow it.
        const QPointer<ZrInputDlg> self(this);
        Changed();
        if (!self)
            return;
    }
    Insert(AsTyped(composed));
}

QVariant ZrInputDlg::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImCursorRectangle:
        return DisplayRect();
    case Qt::ImSurroundingText:
        return text;
    case Qt::ImCursorPosition:
    case Qt::ImAnchorPosition:
        return cursor;
    case Qt::ImHints:
        return int(m_builder == &ZrInputDlg::BuildQwerty ? Qt::ImhNone
                                                         : Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    default:
        return QWidget::inputMethodQuery(query);
    }
}
