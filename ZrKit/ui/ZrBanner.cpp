#include "ZrKit/ui/ZrBanner.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"

#include <QAccessible>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int wrap = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
constexpr int leastTextWidth = 24; ///< times the height of the text: buttons go below a narrower one

int Side()
{
    return std::max(ZrTheme::DpI(56), 44);
}

QFont TextFont(bool isBold)
{
    QFont font = ZrTheme::font;
    font.setPixelSize(std::max(font.pixelSize(), ZrBanner::LeastText));
    font.setBold(isBold);
    return font;
}

/// With places in long words, paths above all, where a line may end.
QString Breakable(QString text)
{
    return text.replace(QLatin1Char('/'), QStringLiteral("/\u200B"));
}

int HeightOf(const QString& text, bool isBold, int width)
{
    if (text.isEmpty())
        return 0;
    return QFontMetrics(TextFont(isBold))
        .boundingRect(QRect(0, 0, std::max(width, 1), 1 << 20), wrap, Breakable(text))
        .height();
}

QColor ColourOf(ZrBanner::eKind kind)
{
    return kind == ZrBanner::error  ? ZrTheme::errorCol
        : kind == ZrBanner::warning ? ZrTheme::warnCol
                                    : ZrTheme::ctrlHighlightCol;
}

} // namespace

/// Where everything is at a width.
struct ZrBanner::Plan
{
    QRect text;
    QRect advice;
    QVector<QRect> buttons;
    QRect close;
    int height = 0;
};

ZrBanner::ZrBanner(QWidget* parent)
    : QWidget(parent)
    , m_close(new ZrBtn(this, ZrBtn::typeTool))
{
    hide();
    m_close->setObjectName(QStringLiteral("dismiss"));
    m_close->img = QImage(QStringLiteral(":/icons/cancel.png"));
    m_close->setToolTip(tr("Close the message"));
    m_close->setAccessibleName(m_close->toolTip());
    connect(m_close, &ZrBtn::Clicked, this, [this] {
        Clear();
        Q_EMIT Dismissed();
    });
}

void ZrBanner::Show(eKind kind, const QString& text, const QString& advice, const QVector<Action>& actions)
{
    const bool isNew = text != m_text || advice != m_advice;
    m_kind = kind;
    m_text = text;
    m_advice = advice;
    for (ZrBtn* button : qAsConst(m_buttons)) {
        button->hide();
        button->deleteLater(); // it may be the one that is clicked
    }
    m_buttons.clear();
    for (const Action& action : actions) {
        auto* button = new ZrBtn(this, ZrBtn::typeStd);
        button->text = action.text;
        button->setAccessibleName(action.text);
        connect(button, &ZrBtn::Clicked, this, [run = action.run] { run(); });
        button->show();
        m_buttons.append(button);
    }
    setAccessibleName(advice.isEmpty() ? text : text + QLatin1Char('\n') + advice);
    show();
    Restyle();
    if (isNew) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ZrBanner::Clear()
{
    if (IsEmpty())
        return;
    m_text.clear();
    m_advice.clear();
    hide();
    Q_EMIT Changed();
}

void ZrBanner::Restyle()
{
    Place();
    update();
    Q_EMIT Changed();
}

ZrBanner::Plan ZrBanner::PlanFor(int width) const
{
    Plan plan;
    if (IsEmpty())
        return plan;
    const int gap = std::max(ZrTheme::DpI(8), 4);
    const int side = Side();
    const QFontMetrics metrics(TextFont(false));
    QVector<int> widths;
    int row = 0; // all buttons side by side
    for (const ZrBtn* button : m_buttons) {
        widths.append(std::max(metrics.horizontalAdvance(button->text) + 4 * gap, 2 * side));
        row += widths.last() + gap;
    }
    const int left = 3 * gap;
    const int right = width - gap - side; // of what is not the close button
    const bool isBeside = right - gap - row - left >= leastTextWidth * metrics.height();
    const int textWidth = (isBeside ? right - row : right) - gap - left;
    const int text = HeightOf(m_text, true, textWidth);
    const int advice = HeightOf(m_advice, false, textWidth);
    const int between = advice > 0 ? gap / 2 : 0;
    const int texts = text + between + advice;
    const int upper = std::max(texts, side);
    plan.height = upper + 2 * gap;
    const int top = gap + (upper - texts) / 2;
    plan.text = QRect(left, top, textWidth, text);
    plan.advice = QRect(left, top + text + between, textWidth, advice);
    plan.close = QRect(right, isBeside ? (plan.height - side) / 2 : gap, side, side);
    if (isBeside) {
        int x = right - row;
        for (const int wide : qAsConst(widths)) {
            plan.buttons.append(QRect(x, (plan.height - side) / 2, wide, side));
            x += wide + gap;
        }
        return plan;
    }
    int x = left;
    int y = plan.height;
    for (const int wanted : qAsConst(widths)) {
        const int wide = std::min(wanted, width - left - gap);
        if (x > left && x + wide > width - gap) {
            x = left;
            y += side + gap;
        }
        plan.buttons.append(QRect(x, y, wide, side));
        x += wide + gap;
    }
    if (!widths.isEmpty())
        plan.height = y + side + gap;
    return plan;
}

int ZrBanner::HeightFor(int width) const
{
    return PlanFor(width).height;
}

void ZrBanner::Place()
{
    const Plan plan = PlanFor(width());
    m_close->setGeometry(plan.close);
    m_close->Changed();
    for (int i = 0; i < plan.buttons.size(); ++i) {
        m_buttons[i]->setGeometry(plan.buttons[i]);
        m_buttons[i]->font = TextFont(false);
        m_buttons[i]->Changed();
    }
}

void ZrBanner::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Place();
}

void ZrBanner::paintEvent(QPaintEvent* /*event*/)
{
    const Plan plan = PlanFor(width());
    const int line = std::max(ZrTheme::DpI(2), 1);
    const double half = line / 2.0;
    const QColor edge = ColourOf(m_kind);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor back = ZrTheme::toolBack;
    back.setAlpha(255);
    painter.setPen(QPen(edge, line));
    painter.setBrush(back);
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), ZrTheme::rxy, ZrTheme::rxy);
    painter.fillRect(QRect(0, ZrTheme::rxy, std::max(ZrTheme::DpI(8), 4), height() - 2 * ZrTheme::rxy), edge);
    painter.setFont(TextFont(true));
    painter.setPen(ZrTheme::ctrlCol);
    painter.drawText(plan.text, wrap, Breakable(m_text));
    painter.setFont(TextFont(false));
    painter.setPen(ZrTheme::bodyCol);
    painter.drawText(plan.advice, wrap, Breakable(m_advice));
}
