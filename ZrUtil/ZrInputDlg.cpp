// The text being edited, and what the keys do to it. Fingers, mouse and keys of hardware are in
// ZrInputDlgEvents.cpp, the layouts in ZrInputDlgKeys.cpp, the painting in ZrInputDlgPaint.cpp.

#include "ZrUtil/ZrInputDlg.h"

#include "ZrUtil/ZrInput.h"

#include <QEvent>
#include <QTextBoundaryFinder>

#include <algorithm>

bool ZrInputDlg::s_keepInside = false;

ZrInputDlg::ZrInputDlg(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    setAttribute(Qt::WA_InputMethodEnabled);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    hide();
    connect(&m_repeat, &QTimer::timeout, this, &ZrInputDlg::Repeat);
}

void ZrInputDlg::SetControl(ZrInput* control)
{
    m_control = control;
}

void ZrInputDlg::Open(const QRect& place)
{
    setGeometry(Inside(place));
    // The keyboard stays inside when the window changes.
    if (s_keepInside && parentWidget())
        parentWidget()->installEventFilter(this);
    cursor = text.size();
    m_isFresh = true;
    m_preedit.clear();
    Describe();
    raise();
    show();
    setFocus();
}

/// \p place moved into the parent; its left upper corner wins.
QRect ZrInputDlg::Inside(QRect place) const
{
    const QWidget* parent = parentWidget();
    if (s_keepInside && parent) {
        place.moveLeft(std::max(0, std::min(place.left(), parent->width() - place.width())));
        place.moveTop(std::max(0, std::min(place.top(), parent->height() - place.height())));
    }
    return place;
}

int ZrInputDlg::IsValid()
{
    return Q_EMIT Validate(text);
}

/// Takes the control's answer for the text, and paints.
void ZrInputDlg::Changed()
{
    const QPointer<ZrInputDlg> self(this);
    const int answer = IsValid();
    if (!self)
        return;
    state = answer;
    Describe();
    updateMicroFocus();
    update();
}

void ZrInputDlg::OnOk()
{
    if (state != 1)
        return;
    const QPointer<ZrInputDlg> self(this);
    Q_EMIT Commit(text);
    if (self)
        hide();
}

void ZrInputDlg::OnCancel()
{
    const QPointer<ZrInputDlg> self(this);
    Q_EMIT Cancelled();
    if (self)
        hide();
}

void ZrInputDlg::OnNeg()
{
    const QPointer<ZrInputDlg> self(this);
    const bool wasAtEnd = cursor >= text.size();
    QString opposite = text;
    Q_EMIT Negate(opposite);
    if (!self)
        return;
    text = opposite;
    cursor = wasAtEnd ? text.size() : std::min(cursor, text.size());
    Changed();
}

void ZrInputDlg::MoveCursor(int position)
{
    m_isFresh = false;
    cursor = position;
    updateMicroFocus();
    update();
}

void ZrInputDlg::OnStart()
{
    MoveCursor(0);
}

void ZrInputDlg::OnEnd()
{
    MoveCursor(text.size());
}

/// The next or previous place between two characters that the user sees: surrogate pairs and combining marks
/// stay together.
int ZrInputDlg::Boundary(bool next) const
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(cursor);
    const int found = next ? finder.toNextBoundary() : finder.toPreviousBoundary();
    if (found >= 0)
        return found;
    return next ? text.size() : 0;
}

void ZrInputDlg::OnLeft()
{
    const bool isInside = cursor > 0 && cursor <= text.size();
    MoveCursor(isInside ? Boundary(false) : std::max(cursor - 1, 0));
}

void ZrInputDlg::OnRight()
{
    const bool isInside = cursor >= 0 && cursor < text.size();
    MoveCursor(isInside ? Boundary(true) : std::clamp(cursor + 1, 0, text.size()));
}

/// Enters \p s at the cursor, in place of the text when nothing was done to it yet.
void ZrInputDlg::Insert(const QString& s)
{
    const int room = m_control ? m_control->maxLength() : 32767;
    if (s.isEmpty() || s.size() + (m_isFresh ? 0 : text.size()) > room)
        return;
    if (m_isFresh) {
        text.clear();
        cursor = 0;
    }
    m_isFresh = false;
    cursor = std::clamp(cursor, 0, text.size());
    text.insert(cursor, s);
    cursor += s.size();
    Changed();
}

void ZrInputDlg::OnKey(QChar c)
{
    Insert(m_caps ? c.toUpper() : c);
}

void ZrInputDlg::OnDelete()
{
    cursor = std::clamp(cursor, 0, text.size());
    if (cursor == text.size()) {
        RemoveBefore();
        return;
    }
    m_isFresh = false;
    text.remove(cursor, Boundary(true) - cursor);
    Changed();
}

/// Removes the character before the cursor.
void ZrInputDlg::RemoveBefore()
{
    m_isFresh = false;
    cursor = std::clamp(cursor, 0, text.size());
    if (cursor > 0) {
        const int from = Boundary(false);
        text.remove(from, cursor - from);
        cursor = from;
    }
    Changed();
}

void ZrInputDlg::Perform(ZrInputItem item)
{
    switch (item.action) {
    case zriKey:
        OnKey(item.ch);
        break;
    case zriDelete:
        OnDelete();
        break;
    case zriLeft:
        OnLeft();
        break;
    case zriRight:
        OnRight();
        break;
    case zriStart:
        OnStart();
        break;
    case zriEnd:
        OnEnd();
        break;
    case zriNegate:
        OnNeg();
        break;
    case zriOk:
        OnOk();
        break;
    case zriCancel:
        OnCancel();
        break;
    case zriCaps:
        m_caps = !m_caps;
        update();
        break;
    case zriSymbols:
        m_symbols = !m_symbols;
        BuildQwerty();
        update();
        break;
    }
}

QString ZrInputDlg::Range() const
{
    const QString range = m_control ? m_control->RangeText() : QString();
    return range.isEmpty() ? QString() : tr("allowed: %1").arg(range);
}

bool ZrInputDlg::IsRangeError() const
{
    double value = 0.0;
    return state != 1 && m_control && m_control->GetStrValue(text, value) == ZrInput::outOfRange;
}

QString ZrInputDlg::Refusal() const
{
    if (state == 1)
        return QString();
    const bool isRange = IsRangeError();
    const QString word = isRange ? tr("Range Error") : tr("Error");
    const QString reason = isRange ? Range() : m_control ? m_control->RefusalText(text) : QString();
    return reason.isEmpty() ? word : word + QStringLiteral(" — ") + reason;
}

/// Tells assistive tools what the strip shows.
void ZrInputDlg::Describe()
{
    setAccessibleName(caption);
    const QString unit = m_control ? m_control->UnitText() : QString();
    QStringList parts{unit.isEmpty() ? text : text + QLatin1Char(' ') + unit};
    const QString refusal = Refusal();
    if (!refusal.isEmpty())
        parts += refusal;
    const QString range = Range();
    if (!range.isEmpty() && !IsRangeError())
        parts += range;
    setAccessibleDescription(parts.join(QStringLiteral(". ")));
}
