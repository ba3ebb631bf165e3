#include "ZrKit/ui/ZrTextPanel.h"

#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"

#include <QPainter>

#include <algorithm>

ZrTextPanel::ZrTextPanel(QWidget* parent)
    : ZrOverlay(parent, QString())
    , m_input(new ZrInput(this))
{
    m_input->kind = ZrInput::kindText;
    connect(m_input, &QLineEdit::returnPressed, this, &ZrOverlay::Accept);
    connect(m_input, &QLineEdit::textEdited, this, [this] { SetProblem(QString()); });
}

void ZrTextPanel::Ask(const QString& title, const QString& hint, const QString& text, const Take& take)
{
    SetTitle(title);
    SetProblem(QString());
    m_hint = hint;
    m_take = take;
    m_input->caption = title;
    m_input->setAccessibleName(title);
    m_input->SetText(text);
    Open();
    m_input->setFocus();
    m_input->selectAll();
}

QSize ZrTextPanel::Wanted() const
{
    return {720, 300};
}

void ZrTextPanel::Place()
{
    const QRect body = Body();
    m_input->setFont(ZrTheme::font);
    m_input->setGeometry(body.x(), body.y(), body.width(), std::max(ZrTheme::DpI(56), 44));
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
    const int top = m_input->geometry().bottom() + ZrTheme::DpI(8);
    painter.drawText(QRect(body.x(), top, body.width(), body.bottom() - top),
        Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_hint);
}
