#include "ZrKit/ui/ZrTextPanel.h"

#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"

#include <QPainter>

#include <algorithm>

ZrTextPanel::ZrTextPanel(QWidget* parent)
    : ZrOverlay(parent, QString())
    , m_input(new ZrInput(this))
    , m_more(new ZrInput(this))
{
    for (ZrInput* input : {m_input, m_more}) {
        input->kind = ZrInput::kindText;
        connect(input, &QLineEdit::returnPressed, this, &ZrOverlay::Accept);
        connect(input, &QLineEdit::textEdited, this, [this] { SetProblem(QString()); });
    }
    m_more->hide();
}

void ZrTextPanel::Ask(const QString& title, const QString& hint, const QString& text, const Take& take)
{
    SetTitle(title);
    SetProblem(QString());
    m_hint = hint;
    m_take = take;
    m_moreCaption.clear();
    m_more->hide();
    m_input->caption = title;
    m_input->setAccessibleName(title);
    m_input->SetText(text);
    Open();
    m_input->setFocus();
    m_input->selectAll();
}

void ZrTextPanel::AskMore(const QString& caption, const QString& text)
{
    m_moreCaption = caption;
    m_more->caption = caption;
    m_more->setAccessibleName(caption);
    m_more->SetText(text);
    m_more->show();
    Restyle();
}

QString ZrTextPanel::More() const
{
    return static_cast<const QLineEdit*>(m_more)->text();
}

QSize ZrTextPanel::Wanted() const
{
    return {720, m_moreCaption.isEmpty() ? 300 : 400};
}

/// Caption and line of the second text.
QRect ZrTextPanel::MoreRow() const
{
    return m_input->geometry().translated(0, m_input->height() + ZrTheme::DpI(8));
}

void ZrTextPanel::Place()
{
    const QRect body = Body();
    m_input->setFont(ZrTheme::font);
    m_input->setGeometry(body.x(), body.y(), body.width(), std::max(ZrTheme::DpI(56), 44));
    if (m_moreCaption.isEmpty())
        return;
    const int caption = QFontMetrics(ZrTheme::font).horizontalAdvance(m_moreCaption) + ZrTheme::DpI(16);
    m_more->setFont(ZrTheme::font);
    m_more->setGeometry(MoreRow().adjusted(std::min(caption, body.width() / 2), 0, 0, 0));
}

bool ZrTextPanel::OnAccept()
{
    const QString problem = m_take ? m_take(static_cast<QLineEdit*>(m_input)->text()) : QString();
    SetProblem(problem);
    return problem.isEmpty();
}

void ZrTextPanel::paintEvent(QPaintEvent* event)
{
    ZrOverlay::paintEvent(event);
    QPainter painter(this);
    painter.setFont(ZrTheme::font);
    painter.setPen(ZrTheme::bodyCol);
    const QRect body = Body();
    const QRect last = m_moreCaption.isEmpty() ? m_input->geometry() : MoreRow();
    if (!m_moreCaption.isEmpty())
        painter.drawText(last, Qt::AlignLeft | Qt::AlignVCenter, m_moreCaption);
    const int top = last.bottom() + ZrTheme::DpI(8);
    painter.drawText(QRect(body.x(), top, body.width(), body.bottom() - top),
        Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_hint);
}
