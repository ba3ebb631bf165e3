#include "ZrKit/ui/ZrToast.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

#include <algorithm>

namespace {

constexpr float distance = 8.0F; ///< from what is kept free, design pixels

int LeastHeight()
{
    return std::max(ZrTheme::DpI(72), 60);
}

} // namespace

ZrToast::ZrToast(QWidget* parent)
    : QWidget(parent)
    , m_action(new ZrBtn(this, ZrBtn::typeAccent))
    , m_timer(new QTimer(this))
{
    hide();
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &QWidget::hide);
    connect(m_action, &ZrBtn::Clicked, this, [this] {
        // The action may show the next message.
        const std::function<void()> run = m_run;
        hide();
        if (run)
            run();
    });
}

void ZrToast::Show(const QString& text, const QString& action, const std::function<void()>& run)
{
    m_run = run;
    m_action->text = action;
    m_action->setAccessibleName(action);
    m_action->setVisible(!action.isEmpty());
    Start(info, text);
}

void ZrToast::Show(eKind kind, const QString& text)
{
    m_run = {};
    m_action->text.clear();
    m_action->hide();
    Start(kind, text);
}

void ZrToast::Start(eKind kind, const QString& text)
{
    m_kind = kind;
    m_text = text;
    setAccessibleName(text);
    Place();
    show();
    raise();
    update();
    m_timer->start(kind == info ? Milliseconds : 2 * Milliseconds);
    Q_EMIT Shown(kind, text);
}

bool ZrToast::FocusAction()
{
    if (!m_action->isVisible() || m_action->hasFocus())
        return false;
    m_action->setFocus(Qt::TabFocusReason);
    return true;
}

void ZrToast::SetFree(int below, int right)
{
    if (below == m_freeBelow && right == m_freeRight)
        return;
    m_freeBelow = std::max(below, 0);
    m_freeRight = std::max(right, 0);
    Place();
}

int ZrToast::Room()
{
    return LeastHeight() + 2 * ZrTheme::DpI(distance);
}

void ZrToast::Place()
{
    const QRect area = parentWidget() ? parentWidget()->rect().adjusted(0, 0, -m_freeRight, 0) : QRect();
    const int margin = ZrTheme::DpI(24);
    const int above = m_freeBelow > 0 ? m_freeBelow + ZrTheme::DpI(distance) : margin;
    const int width = std::min(area.width() - 2 * margin, ZrTheme::DpI(760));
    const int button = m_action->text.isEmpty() ? 0 : std::max(ZrTheme::DpI(140), 44);
    const int padding = ZrTheme::DpI(16);
    const int textWidth = width - 4 * padding - button;
    const QRect text
        = QFontMetrics(ZrTheme::font).boundingRect(0, 0, textWidth, area.height(), Qt::TextWordWrap, m_text);
    const int height = std::max(text.height() + 2 * padding, LeastHeight());
    setGeometry(area.center().x() - width / 2, std::max(area.bottom() - above - height, 0), width, height);
    const int side = std::max(ZrTheme::DpI(48), 44);
    m_action->setGeometry(width - padding - button, (height - side) / 2, button, side);
    m_action->Changed();
}

QRect ZrToast::TextRect() const
{
    const int padding = ZrTheme::DpI(16);
    const int right = m_action->text.isEmpty() ? width() : m_action->x();
    return {2 * padding, 0, right - 3 * padding, height()};
}

void ZrToast::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor edge = m_kind == error ? ZrTheme::errorCol
        : m_kind == warning             ? ZrTheme::warnCol
                                        : ZrTheme::ctrlHighlightCol;
    QColor back = ZrTheme::formBack;
    back.setAlpha(255);
    painter.setPen(QPen(edge, ZrTheme::DpI(2)));
    painter.setBrush(back);
    const double half = ZrTheme::DpI(2) / 2.0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), ZrTheme::rxy, ZrTheme::rxy);
    painter.fillRect(QRect(0, ZrTheme::rxy, ZrTheme::DpI(8), height() - 2 * ZrTheme::rxy), edge);
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::ctrlCol);
    painter.drawText(TextRect(), Qt::AlignVCenter | Qt::TextWordWrap, m_text);
}

void ZrToast::mouseReleaseEvent(QMouseEvent* event)
{
    if (rect().contains(event->pos()))
        hide();
}
