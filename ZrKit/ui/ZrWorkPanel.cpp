#include "ZrKit/ui/ZrWorkPanel.h"

#include "ZrKit/review/ZrWorker.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

#include <algorithm>

ZrWorkPanel::ZrWorkPanel(QWidget* parent)
    : ZrOverlay(parent, QString())
    , m_delay(new QTimer(this))
{
    SetAcceptText(QString());
    SetAcceptEnabled(false);
    m_delay->setSingleShot(true);
    connect(m_delay, &QTimer::timeout, this, [this] {
        m_isShown = true;
        m_cancel->show();
        update();
    });
}

void ZrWorkPanel::Begin(ZrWorker& worker, const QString& text)
{
    if (m_worker)
        disconnect(m_worker, nullptr, this, nullptr);
    m_worker = &worker;
    m_percent = 0;
    m_isShown = m_isCancelled = false;
    SetTitle(text);
    SetCancelText(tr("Cancel"));
    m_cancel->setEnabled(true);
    m_cancel->hide();
    connect(m_worker, &ZrWorker::Progress, this, [this](int percent) {
        m_percent = percent;
        update();
    });
    connect(m_worker, &ZrWorker::Finished, this, &ZrWorkPanel::End);
    Open();
    m_delay->start(DelayMilliseconds);
}

void ZrWorkPanel::End()
{
    m_delay->stop();
    if (m_worker)
        disconnect(m_worker, nullptr, this, nullptr);
    m_worker = nullptr;
    Close();
    // Not to what was touched before: the work has shown something else.
    if (parentWidget())
        parentWidget()->setFocus();
}

/// The worker's end closes it.
bool ZrWorkPanel::OnCancel()
{
    if (!m_worker || m_isCancelled)
        return false;
    m_isCancelled = true;
    SetCancelText(tr("Cancelling …"));
    m_cancel->setEnabled(false);
    update();
    m_worker->Cancel();
    return false;
}

QSize ZrWorkPanel::Wanted() const
{
    return {560, 244};
}

void ZrWorkPanel::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void ZrWorkPanel::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
}

void ZrWorkPanel::paintEvent(QPaintEvent* event)
{
    if (!m_isShown)
        return;
    ZrOverlay::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int percent = std::clamp(m_percent, 0, 100);
    const QRect body = Body();
    const int high = ZrTheme::DpI(12);
    const QRect groove(body.x(), body.y() + ZrTheme::DpI(4), body.width(), high);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ZrTheme::gridCol);
    painter.drawRoundedRect(groove, high / 2.0, high / 2.0);
    QRect done = groove;
    done.setWidth(groove.width() * percent / 100);
    painter.setBrush(m_isCancelled ? ZrTheme::ctrlOutlineCol : ZrTheme::ctrlHighlightCol);
    painter.drawRoundedRect(done, high / 2.0, high / 2.0);
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(QRect(body.x(), m_cancel->y(), m_cancel->x() - body.x(), m_cancel->height()),
        Qt::AlignLeft | Qt::AlignVCenter, tr("%1 %").arg(percent));
}
