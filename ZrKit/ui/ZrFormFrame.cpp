#include "ZrKit/ui/ZrFormFrame.h"

#include "ZrUtil/ZrForm.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrTheme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

ZrFormFrame::ZrFormFrame(QWidget& window, ZrFormMgr& forms)
    : QWidget(&window)
    , m_forms(forms)
{
    setFocusPolicy(Qt::NoFocus);
    hide();
    window.installEventFilter(this);
    forms.installEventFilter(this);
    connect(&forms, &ZrFormMgr::FormShown, this, &ZrFormFrame::Follow);
    if (!forms.isHidden())
        Cover();
}

/// Over the window, below the forms.
void ZrFormFrame::Cover()
{
    setGeometry(parentWidget()->rect());
    show();
    stackUnder(&m_forms);
    Follow();
}

void ZrFormFrame::Follow()
{
    m_isDark = !m_isLive || !m_forms.m_form || !m_isLive(*m_forms.m_form);
    setAttribute(Qt::WA_TransparentForMouseEvents, !m_isDark);
    update();
}

/// To the form whose tab is so many below the current one.
void ZrFormFrame::Step(int by)
{
    QVector<ZrForm*> tabs;
    for (ZrForm* form : qAsConst(m_forms.m_forms)) {
        if (!form->m_isTiered)
            tabs.append(form);
    }
    const int current = m_forms.CurrentPosition();
    if (current >= 0 && current + by >= 0 && current + by < tabs.size())
        m_forms.SetToForm(tabs[current + by]->m_name);
}

bool ZrFormFrame::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget()) {
        if (event->type() == QEvent::Resize && isVisible())
            setGeometry(parentWidget()->rect());
        return false;
    }
    switch (event->type()) {
    case QEvent::Show:
        Cover();
        break;
    case QEvent::Hide:
        hide();
        break;
    case QEvent::ZOrderChange:
        stackUnder(&m_forms);
        break;
    case QEvent::Move:
    case QEvent::Resize:
        update();
        break;
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool isUp = key->key() == Qt::Key_PageUp;
        if (key->modifiers() != Qt::ControlModifier || (!isUp && key->key() != Qt::Key_PageDown))
            break;
        Step(isUp ? -1 : 1);
        return true;
    }
    default:
        break;
    }
    return false;
}

void ZrFormFrame::PaintShadow(QPainter& painter) const
{
    const int wide = std::max(ZrTheme::DpI(24), 8);
    const QRectF forms = QRectF(m_forms.geometry()).translated(0.0, wide / 6.0);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    for (int i = 0; i < wide; ++i) {
        const double share = 1.0 - static_cast<double>(i) / wide;
        painter.setPen(QPen(QColor(0, 0, 0, static_cast<int>(110.0 * share * share)), 1.0));
        const double out = i + 0.5;
        painter.drawRoundedRect(forms.adjusted(-out, -out, out, out), ZrTheme::rxy + out, ZrTheme::rxy + out);
    }
}

void ZrFormFrame::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (m_isDark)
        painter.fillRect(rect(), QColor(0, 0, 0, 140));
    PaintShadow(painter);
}

void ZrFormFrame::mousePressEvent(QMouseEvent* event)
{
    m_isPressed = event->button() == Qt::LeftButton;
}

void ZrFormFrame::mouseReleaseEvent(QMouseEvent* event)
{
    // A finger that comes back to the forms has thought better of it.
    if (m_isPressed && event->button() == Qt::LeftButton && !m_forms.geometry().contains(event->pos()))
        m_forms.OnClose();
    m_isPressed = false;
}

void ZrFormFrame::wheelEvent(QWheelEvent* event)
{
    event->accept();
}
