#include "ZrUtil/ZrFormMgr.h"

#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrForm.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

ZrFormMgr::ZrFormMgr(QWidget* parent)
    : ZrDragWidget(parent)
    , m_view(dynamic_cast<ZrAppView*>(parent))
    , m_close(new ZrBtn(this, ZrBtn::typeTool))
    , m_closeImg(ZrTheme::ColourImg(QImage(QStringLiteral(":/btn_close.png")), ZrTheme::ctrlCol))
{
    m_close->img = m_closeImg;
    m_close->setToolTip(tr("Close the settings (Esc)"));
    m_close->setAccessibleName(tr("Close the settings"));
    connect(m_close, &ZrBtn::Clicked, this, &ZrFormMgr::OnClose);
}

ZrFormMgr::~ZrFormMgr()
{
    const QList<ZrForm*> forms = m_forms;
    m_forms.clear();
    qDeleteAll(forms);
}

void ZrFormMgr::AddNewForm(ZrForm* form)
{
    if (!form || m_forms.contains(form))
        return;
    m_forms.append(form);
    form->m_mgr = this;
    // A form that goes by itself is forgotten.
    connect(form, &QObject::destroyed, this, [this, form] {
        m_forms.removeAll(form);
        if (m_form == form)
            m_form = nullptr;
    });
    form->setGeometry(FormArea());
    if (!m_form && !form->m_isTiered) {
        m_form = form;
        // A child that comes after the panel was shown stays hidden by itself.
        form->show();
    } else {
        form->hide();
    }
    update();
}

ZrForm* ZrFormMgr::SetToForm(QString name)
{
    ZrForm* found = nullptr;
    const QList<ZrForm*> forms = m_forms;
    for (ZrForm* form : forms) {
        const bool isIt = form->m_name == name;
        form->setVisible(isIt);
        if (isIt)
            found = form;
    }
    if (!found)
        return nullptr;
    m_form = found;
    found->OnFormDisplay();
    BuildImg();
    update();
    return found;
}

int ZrFormMgr::CurrentPosition()
{
    const ZrForm* wanted = m_form && m_form->m_isTiered ? m_form->m_parentForm : m_form;
    if (!wanted)
        return -1;
    int position = 0;
    for (const ZrForm* form : qAsConst(m_forms)) {
        if (form->m_isTiered)
            continue;
        if (form == wanted)
            return position;
        ++position;
    }
    return -1;
}

int ZrFormMgr::NonTieredCount()
{
    return static_cast<int>(std::count_if(
        m_forms.cbegin(), m_forms.cend(), [](const ZrForm* form) { return !form->m_isTiered; }));
}

QRect ZrFormMgr::FormArea() const
{
    const int margin = ZrTheme::DpI(20);
    const int wide = width() - 2 * margin - m_tabWidth;
    const int high = height() - margin - m_tabHeight;
    if (m_layout == tabsLeft)
        return {m_tabWidth + margin, m_tabHeight, wide, high};
    if (m_layout == tabsTop)
        return {margin, m_tabHeight, wide, high};
    return {};
}

void ZrFormMgr::resizeEvent(QResizeEvent* /*event*/)
{
    m_tabs = std::make_unique<QImage>(size(), QImage::Format_ARGB32);
    m_tabWidth = ZrTheme::DpI(80);
    m_tabHeight = ZrTheme::DpI(50);
    m_tabFont = ZrTheme::fontSmall;
    grip = QRect(m_tabWidth, 0, width() - m_tabWidth, m_tabHeight);
    m_close->setGeometry(width() - ZrTheme::DpI(45), ZrTheme::DpI(5), ZrTheme::DpI(40), ZrTheme::DpI(40));
    BuildImg();
    for (ZrForm* form : qAsConst(m_forms))
        form->setGeometry(FormArea());
}

void ZrFormMgr::BuildImg()
{
    if (!m_tabs || m_tabs->isNull())
        return;
    m_tabs->fill(Qt::transparent);
    // Tabs that are not drawn are not hit either.
    for (ZrForm* form : qAsConst(m_forms))
        form->m_tab = QRect();
    QPainter painter(m_tabs.get());
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing
        | QPainter::SmoothPixmapTransform | QPainter::HighQualityAntialiasing);
    QT_WARNING_POP
    switch (m_layout) {
    case tabsLeft:
        DrawLeft(painter);
        break;
    case tabsTop:
        DrawTop(painter);
        break;
    case tabsRight:
        DrawRight(painter);
        break;
    case tabsBottom:
        DrawBottom(painter);
        break;
    default:
        break;
    }
}

/// The panel beside the tabs, open towards the tab that is current, and a tab for every form that has one.
void ZrFormMgr::DrawLeft(QPainter& painter)
{
    const double line = std::max(1.0, static_cast<double>(ZrTheme::DpI(2)));
    const QRectF panel = QRectF(rect()).adjusted(m_tabWidth, line / 2, -line / 2, -line / 2);
    painter.setPen(QPen(ZrTheme::formBdr, line));
    painter.setBrush(ZrTheme::formBack);
    painter.drawRoundedRect(panel, ZrTheme::rxy, ZrTheme::rxy);

    const int current = CurrentPosition();
    const int step = ZrTheme::DpI(80);
    int position = 0;
    for (ZrForm* form : qAsConst(m_forms)) {
        if (form->m_isTiered)
            continue;
        form->m_tab = QRect(0, m_tabHeight + position * step, m_tabWidth, step);
        DrawTab(painter, *form, position == current);
        ++position;
    }
    painter.setPen(QPen(ZrTheme::ctrlOutlineCol, ZrTheme::DpI(1)));
    const int y = m_tabHeight;
    const QLine lines[] = {QLine(m_tabWidth + ZrTheme::DpI(8), y, width() - ZrTheme::DpI(8), y)};
    painter.drawLines(lines, 1);
}

void ZrFormMgr::DrawTab(QPainter& painter, const ZrForm& form, bool isCurrent)
{
    const double line = std::max(1.0, static_cast<double>(ZrTheme::DpI(2)));
    const QRectF tab = QRectF(form.m_tab).adjusted(line / 2, ZrTheme::DpI(3), 0, -ZrTheme::DpI(3));
    painter.save();
    painter.setClipRect(
        QRectF(0, tab.top() - line, m_tabWidth + (isCurrent ? line : 0.0), tab.height() + 2 * line));
    painter.setPen(QPen(isCurrent ? ZrTheme::formBdr : ZrTheme::ctrlOutlineCol, isCurrent ? line : line / 2));
    if (isCurrent) {
        // The tab and the panel become one surface: its border between them goes.
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.setBrush(ZrTheme::formBack);
    } else {
        painter.setBrush(ZrTheme::formMgr);
    }
    painter.drawRoundedRect(tab.adjusted(0, 0, ZrTheme::rxy + line, 0), ZrTheme::rxy, ZrTheme::rxy);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.restore();
    if (isCurrent) {
        // A bar at the outer edge: the state is not told by colour alone.
        QColor bar = ZrTheme::ctrlCheckCol;
        bar.setAlpha(255);
        painter.setPen(Qt::NoPen);
        painter.setBrush(bar);
        const double wide = ZrTheme::DpI(4);
        painter.drawRoundedRect(
            QRectF(tab.left() + line * 2, tab.top() + tab.height() / 4, wide, tab.height() / 2), wide / 2,
            wide / 2);
    }
    const double side = ZrTheme::DpI(42);
    QRectF icon(0, 0, side, side);
    icon.moveCenter(tab.center());
    if (!form.m_icon.isNull())
        painter.drawImage(
            icon, ZrTheme::ColourImg(form.m_icon, isCurrent ? ZrTheme::ctrlCol : ZrTheme::bodyCol));
}

void ZrFormMgr::DrawTop(QPainter& /*painter*/) { }

void ZrFormMgr::DrawRight(QPainter& /*painter*/) { }

void ZrFormMgr::DrawBottom(QPainter& /*painter*/) { }

void ZrFormMgr::paintEvent(QPaintEvent* /*event*/)
{
    BuildImg();
    if (!m_tabs)
        return;
    QPainter painter(this);
    painter.drawImage(0, 0, *m_tabs);
    if (!m_form)
        return;
    painter.setFont(ZrTheme::fontLarge);
    painter.setPen(ZrTheme::titleCol);
    const int margin = ZrTheme::DpI(20);
    const QRect title(
        m_tabWidth + margin, 0, width() - m_tabWidth - 2 * margin - ZrTheme::DpI(45), m_tabHeight);
    painter.drawText(title, m_form->m_name, ZrTheme::left);
}

void ZrFormMgr::mousePressEvent(QMouseEvent* event)
{
    ZrDragWidget::mousePressEvent(event);
    // The window below would take a press in its upper band for a drag of its own.
    event->accept();
    const QList<ZrForm*> forms = m_forms;
    for (ZrForm* form : forms) {
        if (m_forms.contains(form) && form->m_tab.contains(event->pos()))
            SetToForm(form->m_name);
    }
}

void ZrFormMgr::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        OnClose();
    else
        ZrDragWidget::keyPressEvent(event);
}

void ZrFormMgr::showEvent(QShowEvent* event)
{
    m_focusBefore = QApplication::focusWidget();
    setFocus(Qt::PopupFocusReason);
    ZrDragWidget::showEvent(event);
}

void ZrFormMgr::hideEvent(QHideEvent* event)
{
    ZrDragWidget::hideEvent(event);
    if (m_focusBefore)
        m_focusBefore->setFocus(Qt::PopupFocusReason);
    m_focusBefore = nullptr;
}

void ZrFormMgr::OnClose()
{
    hide();
}

void ZrFormMgr::settings(zr::ZrSetModule& module)
{
    for (ZrForm* form : qAsConst(m_forms))
        module.sub_item(form->m_name, *form);
}
