#include "ZrKit/ui/ZrWorkPanel.h"

#include "ZrKit/review/ZrWorker.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>

ZrWorkPanel::ZrWorkPanel(QWidget* parent)
    : QWidget(parent)
    , m_cancel(new ZrBtn(this, ZrBtn::typeStd))
    , m_delay(new QTimer(this))
{
    hide();
    setFocusPolicy(Qt::StrongFocus);
    m_delay->setSingleShot(true);
    connect(m_delay, &QTimer::timeout, this, [this] {
        m_isShown = true;
        m_cancel->show();
        update();
    });
    connect(m_cancel, &ZrBtn::Clicked, this, &ZrWorkPanel::Cancel);
    if (parent)
        parent->installEventFilter(this);
}

void ZrWorkPanel::Begin(ZrWorker& worker, const QString& text)
{
    if (m_worker)
        disconnect(m_worker, nullptr, this, nullptr);
    m_worker = &worker;
    m_text = text;
    m_percent = 0;
    m_isShown = m_isCancelled = false;
    m_cancel->text = tr("Cancel");
    m_cancel->setEnabled(true);
    m_cancel->hide();
    setAccessibleName(text);
    connect(m_worker, &ZrWorker::Progress, this, [this](int percent) {
        m_percent = percent;
        update();
    });
    connect(m_worker, &ZrWorker::Finished, this, &ZrWorkPanel::End);
    if (parentWidget())
        setGeometry(parentWidget()->rect());
    Place();
    show();
    raise();
    setFocus();
    m_delay->start(DelayMilliseconds);
}

void ZrWorkPanel::End()
{
    m_delay->stop();
    if (m_worker)
        disconnect(m_worker, nullptr, this, nullptr);
    m_worker = nullptr;
    hide();
    if (parentWidget())
        parentWidget()->setFocus();
}

void ZrWorkPanel::Cancel()
{
    if (!m_worker || m_isCancelled)
        return;
    m_isCancelled = true;
    m_cancel->text = tr("Cancelling …");
    m_cancel->setEnabled(false);
    m_cancel->Changed();
    update();
    m_worker->Cancel();
}

QRect ZrWorkPanel::Panel() const
{
    const QSize wanted(ZrTheme::DpI(560), ZrTheme::DpI(236));
    const QSize size = wanted.boundedTo(this->size());
    return {QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

void ZrWorkPanel::Place()
{
    const QRect panel = Panel();
    const int margin = ZrTheme::DpI(24);
    const int buttonHeight = std::max(ZrTheme::DpI(64), 48);
    const int buttonWidth = std::min(ZrTheme::DpI(200), panel.width() - 2 * margin);
    m_cancel->setGeometry(panel.right() - margin - buttonWidth, panel.bottom() - margin - buttonHeight,
        buttonWidth, buttonHeight);
    m_cancel->Changed();
}

void ZrWorkPanel::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Place();
}

bool ZrWorkPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible())
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void ZrWorkPanel::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        Cancel();
    event->accept();
}

void ZrWorkPanel::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void ZrWorkPanel::wheelEvent(QWheelEvent* event)
{
    event->accept();
}

void ZrWorkPanel::paintEvent(QPaintEvent* /*event*/)
{
    if (!m_isShown)
        return;
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, 140));
    painter.setRenderHint(QPainter::Antialiasing);
    QColor back = ZrTheme::formBack;
    back.setAlpha(255);
    painter.setPen(QPen(ZrTheme::formBdr, ZrTheme::DpI(1)));
    painter.setBrush(back);
    const QRect panel = Panel();
    painter.drawRoundedRect(panel, ZrTheme::rxy, ZrTheme::rxy);
    const int margin = ZrTheme::DpI(24);
    const QRect text(
        panel.x() + margin, panel.y() + ZrTheme::DpI(12), panel.width() - 2 * margin, ZrTheme::DpI(48));
    painter.setFont(ZrTheme::fontLarge);
    painter.setPen(ZrTheme::titleCol);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
        painter.fontMetrics().elidedText(m_text, Qt::ElideMiddle, text.width()));
    const QRect groove(text.x(), text.bottom() + ZrTheme::DpI(12), text.width(), ZrTheme::DpI(12));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::gridCol);
    painter.drawRoundedRect(groove, groove.height() / 2.0, groove.height() / 2.0);
    QRect done = groove;
    done.setWidth(groove.width() * std::clamp(m_percent, 0, 100) / 100);
    painter.setBrush(m_isCancelled ? ZrTheme::ctrlOutlineCol : ZrTheme::ctrlHighlightCol);
    painter.drawRoundedRect(done, groove.height() / 2.0, groove.height() / 2.0);
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(QRect(text.x(), m_cancel->y(), m_cancel->x() - text.x(), m_cancel->height()),
        Qt::AlignLeft | Qt::AlignVCenter, tr("%1 %").arg(std::clamp(m_percent, 0, 100)));
}
