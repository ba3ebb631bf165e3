#include "ZrKit/ui/ZrOverlay.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace {

int ButtonHeight()
{
    return std::max(ZrTheme::DpI(64), 48);
}

int Margin()
{
    return ZrTheme::DpI(24);
}

} // namespace

ZrOverlay::ZrOverlay(QWidget* parent, const QString& title)
    : QWidget(parent)
    , m_accept(new ZrBtn(this, ZrBtn::typeAccent))
    , m_cancel(new ZrBtn(this, ZrBtn::typeStd))
    , m_title(title)
{
    hide();
    setFocusPolicy(Qt::StrongFocus);
    SetAcceptText(tr("OK"));
    SetCancelText(tr("Cancel"));
    connect(m_accept, &ZrBtn::Clicked, this, &ZrOverlay::Accept);
    connect(m_cancel, &ZrBtn::Clicked, this, &ZrOverlay::Cancel);
    if (parent)
        parent->installEventFilter(this);
}

void ZrOverlay::SetTitle(const QString& title)
{
    m_title = title;
    setAccessibleName(title);
    update();
}

void ZrOverlay::SetAcceptText(const QString& text)
{
    m_accept->text = text;
    m_accept->setAccessibleName(text);
    m_accept->setVisible(!text.isEmpty());
    m_accept->Changed();
}

void ZrOverlay::SetCancelText(const QString& text)
{
    m_cancel->text = text;
    m_cancel->setAccessibleName(text);
    m_cancel->Changed();
}

void ZrOverlay::SetAcceptEnabled(bool isEnabled)
{
    m_accept->setEnabled(isEnabled);
    m_accept->update();
}

void ZrOverlay::SetProblem(const QString& text)
{
    if (text == m_problem)
        return;
    m_problem = text;
    update();
}

void ZrOverlay::SetTitleRoom(int pixels)
{
    m_titleRoom = pixels;
}

QSize ZrOverlay::Wanted() const
{
    return {720, 560};
}

QRect ZrOverlay::Panel() const
{
    const QSize wanted(ZrTheme::DpI(static_cast<float>(Wanted().width())),
        ZrTheme::DpI(static_cast<float>(Wanted().height())));
    const QSize size = wanted.boundedTo(this->size() - QSize(Margin(), Margin()));
    return {QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

QRect ZrOverlay::Body() const
{
    const int title = ZrTheme::DpI(64);
    return Panel().adjusted(Margin(), title, -Margin(), -ButtonHeight() - 2 * Margin());
}

void ZrOverlay::Open()
{
    m_focusBefore = QApplication::focusWidget();
    if (parentWidget())
        setGeometry(parentWidget()->rect());
    show();
    raise();
    Restyle();
    setFocus();
}

void ZrOverlay::Close()
{
    hide();
    if (m_focusBefore)
        m_focusBefore->setFocus();
}

bool ZrOverlay::OnAccept()
{
    return true;
}

bool ZrOverlay::OnCancel()
{
    return true;
}

void ZrOverlay::Accept()
{
    if (!isVisible() || !m_accept->isEnabled() || !OnAccept())
        return;
    Close();
    Q_EMIT Accepted();
}

void ZrOverlay::Cancel()
{
    if (!isVisible() || !OnCancel())
        return;
    Close();
    Q_EMIT Cancelled();
}

void ZrOverlay::Place() { }

void ZrOverlay::Restyle()
{
    const QRect panel = Panel();
    const int width = std::min(ZrTheme::DpI(180), (panel.width() - 3 * Margin()) / 2);
    const int y = panel.bottom() - Margin() - ButtonHeight();
    m_accept->setGeometry(panel.right() - Margin() - width, y, width, ButtonHeight());
    const int left = m_accept->text.isEmpty() ? m_accept->x() : m_accept->x() - Margin() / 2 - width;
    m_cancel->setGeometry(left, y, width, ButtonHeight());
    m_accept->Changed();
    m_cancel->Changed();
    Place();
    update();
}

void ZrOverlay::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Restyle();
}

bool ZrOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible())
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void ZrOverlay::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, 140));
    painter.setRenderHint(QPainter::Antialiasing);
    QColor back = ZrTheme::formBack;
    back.setAlpha(255);
    painter.setPen(QPen(ZrTheme::formBdr, ZrTheme::DpI(1)));
    painter.setBrush(back);
    const QRect panel = Panel();
    painter.drawRoundedRect(panel, ZrTheme::rxy, ZrTheme::rxy);
    QFont font = ZrTheme::fontLarge;
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(ZrTheme::titleCol);
    const QRect title(
        panel.x() + Margin(), panel.y(), panel.width() - 2 * Margin() - m_titleRoom, ZrTheme::DpI(64));
    painter.drawText(title, Qt::AlignLeft | Qt::AlignVCenter,
        painter.fontMetrics().elidedText(m_title, Qt::ElideRight, title.width()));
    if (m_problem.isEmpty())
        return;
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::errorCol);
    const QRect problem(
        panel.x() + Margin(), m_cancel->y(), m_cancel->x() - panel.x() - 2 * Margin(), m_cancel->height());
    painter.drawText(problem, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, m_problem);
}

void ZrOverlay::mousePressEvent(QMouseEvent* event)
{
    m_isPressedBeside = !Panel().contains(event->pos());
}

void ZrOverlay::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_isPressedBeside && !Panel().contains(event->pos()))
        Cancel();
    m_isPressedBeside = false;
}

void ZrOverlay::wheelEvent(QWheelEvent* event)
{
    event->accept();
}

void ZrOverlay::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        Cancel();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Accept();
        break;
    default:
        // Nothing below is to act on keys meanwhile.
        break;
    }
    event->accept();
}
