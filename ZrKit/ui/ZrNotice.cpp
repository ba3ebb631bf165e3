#include "ZrKit/ui/ZrNotice.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QAccessible>
#include <QEvent>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int wrap = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap;

/// With places in long words, paths above all, where a line may end.
QString Breakable(const QString& text)
{
    constexpr int longest = 24;
    const QChar zeroWidthSpace(0x200B);
    QString result;
    int length = 0;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        result += c;
        length = c.isSpace() ? 0 : length + 1;
        if (c != QLatin1Char('/') && (length < longest || c.isHighSurrogate()))
            continue;
        result += zeroWidthSpace;
        length = 0;
    }
    return result;
}

/// A triangle with an exclamation mark: told by its shape, not by its colour.
void PaintSign(QPainter& painter, const QRectF& rect)
{
    painter.setPen(QPen(ZrTheme::warnCol, rect.width() / 12, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const double in = rect.width() / 12;
    painter.drawPolygon(QPolygonF({QPointF(rect.center().x(), rect.top() + in),
        QPointF(rect.right() - in, rect.bottom() - in), QPointF(rect.left() + in, rect.bottom() - in)}));
    const double x = rect.center().x();
    painter.drawLine(
        QPointF(x, rect.top() + rect.height() * 0.40), QPointF(x, rect.top() + rect.height() * 0.62));
    painter.drawPoint(QPointF(x, rect.top() + rect.height() * 0.77));
}

} // namespace

ZrNotice::ZrNotice(QWidget* window, const QString& text)
    : QWidget(window)
    , m_text(text)
    , m_ok(new ZrBtn(this, ZrBtn::typeStd))
{
    m_ok->text = tr("OK");
    m_ok->setAccessibleName(m_ok->text);
    connect(m_ok, &ZrBtn::Clicked, this, [this] {
        hide();
        deleteLater();
    });
    setToolTip(text);
    setAccessibleName(text);
    window->installEventFilter(this);
    Place();
    show();
    raise();
    m_ok->setFocus(Qt::OtherFocusReason);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

bool ZrNotice::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && (event->type() == QEvent::Resize || event->type() == QEvent::Show)) {
        // After the window itself, which sets the scale and raises its panels.
        QMetaObject::invokeMethod(
            this,
            [this] {
                Place();
                raise();
            },
            Qt::QueuedConnection);
    }
    return QWidget::eventFilter(watched, event);
}

QSize ZrNotice::TextSize(const QString& text, int width) const
{
    return QFontMetrics(ZrTheme::font)
        .boundingRect(QRect(0, 0, width, 1 << 20), wrap, Breakable(text))
        .size();
}

void ZrNotice::Place()
{
    const QSize window = parentWidget()->size();
    const int gap = ZrTheme::DpI(20);
    const int sign = ZrTheme::DpI(44);
    const int okWidth = std::max(44, ZrTheme::DpI(96));
    const int okHeight = std::max(44, ZrTheme::DpI(52));
    const int wide = std::max(0, std::min(window.width() - 2 * gap, ZrTheme::DpI(900)));
    const int textWidth = std::max(1, wide - sign - okWidth - 4 * gap);
    // Half of the window at most: what it covers is still to be seen.
    const int room = std::max(okHeight, window.height() / 2 - 2 * gap);
    m_shown = m_text;
    for (int length = m_text.size(); length > 0 && TextSize(m_shown, textWidth).height() > room;) {
        length = length * 9 / 10;
        m_shown = m_text.left(length) + QChar(0x2026);
    }
    const int inside = std::max(okHeight, TextSize(m_shown, textWidth).height());
    const int high = inside + 2 * gap;
    setGeometry((window.width() - wide) / 2, window.height() - gap - high, wide, high);
    m_textRect = QRect(2 * gap + sign, gap, textWidth, inside);
    m_ok->setGeometry(wide - gap - okWidth, (high - okHeight) / 2, okWidth, okHeight);
    m_ok->Changed();
    update();
}

void ZrNotice::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int line = std::max(1, ZrTheme::DpI(2));
    const double half = line / 2.0;
    // Opaque: what is below does not show between the words.
    QColor back = ZrTheme::formBack;
    back.setAlpha(255);
    painter.setPen(QPen(ZrTheme::warnCol, line));
    painter.setBrush(back);
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), ZrTheme::rxy, ZrTheme::rxy);
    const double side = ZrTheme::DpI(44);
    PaintSign(painter, QRectF(ZrTheme::DpI(20), (height() - side) / 2, side, side));
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::ctrlCol);
    painter.drawText(m_textRect, wrap, Breakable(m_shown));
}

void ZrNotice::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void ZrNotice::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->accept();
}
