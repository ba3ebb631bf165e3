#include "ZrUtil/ZrFormMgr.h"

#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCtrlLook.h"
#include "ZrUtil/ZrForm.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

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
    Q_EMIT FormShown();
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
    m_tabWidth = ZrTheme::DpI(m_hasTabNames ? 216 : 80);
    m_tabHeight = ZrTheme::DpI(50);
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
    // The captions of the form have the same size.
    m_tabFont = ZrTheme::fontLarge;
    m_tabFont.setBold(true);
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
    const int line = std::max(1, ZrTheme::DpI(2));
    const QRectF panel
        = QRectF(rect()).adjusted(m_tabWidth + line / 2.0, line / 2.0, -line / 2.0, -line / 2.0);
    painter.setPen(QPen(ZrTheme::formBdr, line));
    painter.setBrush(ZrTheme::formBack);
    painter.drawRoundedRect(panel, ZrTheme::rxy, ZrTheme::rxy);
    if (m_hasTabNames)
        DrawColumn(painter);

    const int current = CurrentPosition();
    const int step = ZrTheme::DpI(80);
    int position = 0;
    for (ZrForm* form : qAsConst(m_forms)) {
        if (form->m_isTiered)
            continue;
        form->m_tab = QRect(0, m_tabHeight + position * step, m_tabWidth, step);
        if (m_hasTabNames)
            DrawNamedTab(painter, *form, position == current);
        else
            DrawTab(painter, *form, position == current);
        ++position;
    }
    // Below the caption, on the grid of the forms.
    const int margin = ZrTheme::DpI(20);
    const int thin = std::max(1, ZrTheme::DpI(1));
    const double y = m_tabHeight - thin / 2.0;
    painter.setPen(QPen(ZrTheme::ctrlOutlineCol, thin, Qt::SolidLine, Qt::FlatCap));
    const QLineF lines[] = {QLineF(m_tabWidth + margin, y, width() - margin, y)};
    painter.drawLines(lines, 1);
}

/// Lines cover whole pixels.
void ZrFormMgr::DrawTab(QPainter& painter, const ZrForm& form, bool isCurrent)
{
    const int border = std::max(1, ZrTheme::DpI(2));
    const int line = isCurrent ? border : std::max(1, ZrTheme::DpI(1));
    const int gap = ZrTheme::DpI(3);
    const QRect tab = form.m_tab.adjusted(0, gap, 0, -gap);
    painter.save();
    painter.setClipRect(QRect(0, tab.top(), m_tabWidth + (isCurrent ? border : 0), tab.height()));
    painter.setPen(QPen(isCurrent ? ZrTheme::formBdr : ZrTheme::ctrlOutlineCol, line));
    if (isCurrent) {
        // The tab and the panel become one surface: its border between them goes.
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.setBrush(ZrTheme::formBack);
    } else {
        painter.setBrush(ZrTheme::formMgr);
    }
    // Its right edge lies outside of the clip.
    painter.drawRoundedRect(
        QRectF(tab).adjusted(line / 2.0, line / 2.0, ZrTheme::rxy + 2 * border, -line / 2.0), ZrTheme::rxy,
        ZrTheme::rxy);
    painter.restore();
    if (isCurrent) {
        // A bar at the outer edge: the state is not told by colour alone.
        QColor bar = ZrTheme::ctrlCheckCol;
        bar.setAlpha(255);
        painter.setPen(Qt::NoPen);
        painter.setBrush(bar);
        const double wide = std::max(2, ZrTheme::DpI(5));
        painter.drawRoundedRect(
            QRectF(tab.left() + 2 * line, tab.top() + tab.height() / 4, wide, tab.height() / 2), wide / 2,
            wide / 2);
    }
    const double side = ZrTheme::DpI(42);
    QRectF icon(0, 0, side, side);
    icon.moveCenter(QRectF(tab).center());
    if (form.m_icon.isNull())
        return;
    m_tabImg = ZrTheme::ColourImg(form.m_icon, isCurrent ? ZrTheme::ctrlCol : ZrTheme::bodyCol);
    painter.drawImage(icon, m_tabImg);
}

/// The surface of tabs with names: together with the panel one sheet, with a line between them.
void ZrFormMgr::DrawColumn(QPainter& painter) const
{
    const int line = std::max(1, ZrTheme::DpI(2));
    const QRectF column = QRectF(0, 0, m_tabWidth + line, height());
    painter.save();
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setClipRect(column);
    painter.setPen(QPen(ZrTheme::formBdr, line));
    painter.setBrush(ZrTheme::formBack);
    painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2.0, line / 2.0, -line / 2.0, -line / 2.0),
        ZrTheme::rxy, ZrTheme::rxy);
    painter.restore();
    const int thin = std::max(1, ZrTheme::DpI(1));
    painter.fillRect(QRectF(m_tabWidth, line, thin, height() - 2 * line), ZrTheme::gridCol);
    QFont font = ZrTheme::fontLarge;
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(ZrTheme::titleCol);
    const int left = ZrTheme::DpI(20);
    ZrCtrlLook::PaintText(painter, QRect(left, 0, m_tabWidth - left - ZrTheme::DpI(8), m_tabHeight),
        tr("Settings"), Qt::AlignLeft);
}

/// The one that is current is filled, and has a bar at the outer edge: its state is not told by colour alone.
void ZrFormMgr::DrawNamedTab(QPainter& painter, const ZrForm& form, bool isCurrent)
{
    const int gap = ZrTheme::DpI(8);
    const QRect tab = form.m_tab.adjusted(gap, gap / 2, -gap, -gap / 2);
    painter.setPen(Qt::NoPen);
    if (isCurrent) {
        painter.setBrush(ZrTheme::formMgr);
        painter.drawRoundedRect(tab, ZrTheme::rxy, ZrTheme::rxy);
        QColor bar = ZrTheme::ctrlCheckCol;
        bar.setAlpha(255);
        painter.setBrush(bar);
        const double wide = std::max(2, ZrTheme::DpI(5));
        painter.drawRoundedRect(
            QRectF(tab.left(), tab.top() + tab.height() / 4, wide, tab.height() / 2), wide / 2, wide / 2);
    }
    const QColor ink = isCurrent ? ZrTheme::ctrlCol : ZrTheme::bodyCol;
    const int side = ZrTheme::DpI(32);
    const QRect icon(tab.left() + ZrTheme::DpI(12), tab.center().y() - side / 2, side, side);
    if (!form.m_icon.isNull()) {
        m_tabImg = ZrTheme::ColourImg(form.m_icon, ink);
        painter.drawImage(icon, m_tabImg);
    }
    painter.setFont(ZrTheme::fontLarge);
    painter.setPen(ink);
    const QRect name = tab.adjusted(icon.right() - tab.left() + ZrTheme::DpI(12), 0, -gap / 2, 0);
    painter.drawText(name, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, form.m_name);
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
    painter.setFont(m_tabFont);
    painter.setPen(ZrTheme::titleCol);
    const int margin = ZrTheme::DpI(20);
    const QRect title(
        m_tabWidth + margin, 0, width() - m_tabWidth - 2 * margin - ZrTheme::DpI(45), m_tabHeight);
    ZrCtrlLook::PaintText(painter, title, m_form->m_name, Qt::AlignLeft);
}

QRect ZrFormMgr::CloseArea() const
{
    const int least = std::max(ZrCtrlLook::smallestTarget, ZrTheme::DpI(64));
    QRect area = m_close->geometry();
    const int wide = std::max(0, least - area.width());
    const int high = std::max(0, least - area.height());
    area.adjust(-wide / 2, -high / 2, wide - wide / 2, high - high / 2);
    // What lies outside of the panel cannot be hit: the other side grows.
    area.moveRight(std::min(area.right(), rect().right()));
    area.moveTop(std::max(area.top(), 0));
    return area;
}

void ZrFormMgr::mousePressEvent(QMouseEvent* event)
{
    ZrDragWidget::mousePressEvent(event);
    // The window below would take a press in its upper band for a drag of its own.
    event->accept();
    m_mayClose = event->button() == Qt::LeftButton && CloseArea().contains(event->pos());
    m_pressAt = event->globalPos();
    const QList<ZrForm*> forms = m_forms;
    for (ZrForm* form : forms) {
        if (m_forms.contains(form) && form->m_tab.contains(event->pos()))
            SetToForm(form->m_name);
    }
}

void ZrFormMgr::mouseMoveEvent(QMouseEvent* event)
{
    // A drag that begins there is one.
    if ((event->globalPos() - m_pressAt).manhattanLength() >= QApplication::startDragDistance())
        m_mayClose = false;
    ZrDragWidget::mouseMoveEvent(event);
}

void ZrFormMgr::mouseReleaseEvent(QMouseEvent* event)
{
    ZrDragWidget::mouseReleaseEvent(event);
    const bool isTap = m_mayClose && event->button() == Qt::LeftButton;
    m_mayClose = false;
    if (isTap)
        OnClose();
}

bool ZrFormMgr::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return ZrDragWidget::event(event);
    // A tab shows an icon alone, unless it has its name.
    const auto* help = static_cast<QHelpEvent*>(event);
    for (const ZrForm* form : qAsConst(m_forms)) {
        if (!form->m_tab.contains(help->pos()))
            continue;
        QToolTip::showText(help->globalPos(), m_hasTabNames ? QString() : form->m_name, this, form->m_tab);
        return true;
    }
    QToolTip::hideText();
    event->ignore();
    return true;
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
    m_mayClose = false;
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
