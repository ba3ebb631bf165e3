#include "ZrUtil/ZrForm.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrTheme.h"

#include <QPainter>

ZrForm::ZrForm(QWidget* parent)
    : QWidget(parent)
    , m_mgr(dynamic_cast<ZrFormMgr*>(parent))
    , m_icon(QStringLiteral(":/form_default.png"))
{
    setFocusPolicy(Qt::NoFocus);
}

void ZrForm::OnFormDisplay() { }

void ZrForm::settings(zr::ZrSetModule& /*module*/) { }

void ZrForm::Check(ZrBtn& btn, bool on)
{
    if (btn.on == on)
        return;
    btn.on = on;
    btn.update();
}

void ZrForm::PaintText(
    QPainter& p, const QString& title, const QString& help, const QSize& helpSize, int& y, int extra)
{
    y += ZrTheme::DpI(28);
    p.setFont(ZrTheme::fontLarge);
    p.setPen(ZrTheme::titleCol);
    p.drawText(0, y, title);
    y += ZrTheme::DpI(8);
    p.setFont(ZrTheme::bodyFont);
    p.setPen(ZrTheme::bodyCol);
    p.drawText(QRect(QPoint(0, y), helpSize), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, help);
    y += ZrTheme::DpI(4) + helpSize.height() + extra;
    p.setPen(ZrTheme::ctrlOutlineCol);
    p.drawLine(0, y, width(), y);
}

void ZrForm::TextCtrl(QPainter& p, QString title, QString help, int& y, int extra)
{
    PaintText(p, title, help, QSize(width() - ZrTheme::DpI(200), ZrTheme::DpI(50)), y, extra);
}

void ZrForm::TextTab(QPainter& p, QString title, QString help, int& y, int extra)
{
    PaintText(p, title, help, QSize(width(), ZrTheme::DpI(30)), y, extra);
}
