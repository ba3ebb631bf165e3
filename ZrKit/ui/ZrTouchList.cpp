#include "ZrKit/ui/ZrTouchList.h"

#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrTheme.h"

#include <QAbstractListModel>
#include <QContextMenuEvent>
#include <QGestureEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QScroller>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace {

QStringList Lines(const ZrListItem& item)
{
    return item.subtitle.split(QLatin1Char('\n'));
}

} // namespace

class ZrTouchList::Model : public QAbstractListModel
{
public:
    QVector<ZrListItem> items;
    std::function<ZrListItem(int)> make; ///< instead of the items; empty for these

    using QAbstractListModel::QAbstractListModel;

    int Count() const { return make ? m_made : items.size(); }

    ZrListItem Item(int row) const
    {
        if (row < 0 || row >= Count())
            return {};
        return make ? make(row) : items[row];
    }

    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : Count(); }

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role == Qt::AccessibleTextRole || role == Qt::DisplayRole) {
            const ZrListItem item = Item(index.row());
            QStringList parts = QStringList{item.title} + Lines(item) + QStringList{item.detail};
            parts.removeAll(QString());
            return parts.join(QStringLiteral(", "));
        }
        return {};
    }

    void Replace(const QVector<ZrListItem>& others, int count, const std::function<ZrListItem(int)>& maker)
    {
        beginResetModel();
        items = others;
        make = maker;
        m_made = count;
        endResetModel();
    }

    void Tell(int row) { Q_EMIT dataChanged(index(row), index(row)); }

private:
    int m_made = 0; ///< rows that are made
};

class ZrTouchList::Delegate : public QStyledItemDelegate
{
public:
    explicit Delegate(ZrTouchList& list)
        : QStyledItemDelegate(&list)
        , m_list(list)
    {
    }

    QSize sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& index) const override
    {
        const ZrListItem item = m_list.Item(index.row());
        const int lines = Lines(item).size();
        int height = std::max(ZrTheme::DpI(item.subtitle.isEmpty() ? 56 : RowHeight), 44);
        if (lines > 1)
            height = std::max(height, TextHeight(lines) + 2 * ZrTheme::DpI(8));
        return {ZrTheme::DpI(100), height};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        ZrListItem item = m_list.Item(index.row());
        if (item.isPicture && item.image.isNull() && m_list.m_picture)
            item.image = m_list.m_picture(index.row());
        const bool isCurrent
            = option.state.testFlag(QStyle::State_Selected) || index.row() == m_list.m_pressed;
        const QRect row = option.rect;
        painter->save();
        if (isCurrent)
            painter->fillRect(row, ZrTheme::ctrlActiveCol);
        if (isCurrent && m_list.hasFocus()) {
            painter->setPen(QPen(ZrTheme::ctrlHighlightCol, ZrTheme::DpI(2)));
            painter->drawRect(row.adjusted(1, 1, -2, -2));
        }
        painter->fillRect(QRect(row.x(), row.bottom(), row.width(), 1), ZrTheme::gridCol);
        const int edge = ZrTheme::DpI(6);
        if (item.edge.isValid() || isCurrent)
            painter->fillRect(QRect(row.x(), row.y(), edge, row.height() - 1),
                item.edge.isValid() ? item.edge : ZrTheme::ctrlCheckCol);
        const int gap = ZrTheme::DpI(12);
        QRect text = row.adjusted(edge + gap, 0, -gap, 0);
        if (!item.image.isNull())
            text.setLeft(text.left() + PaintImage(*painter, item, text) + gap);
        if (!item.detail.isEmpty())
            text.setRight(text.right() - PaintDetail(*painter, item, text) - gap);
        PaintText(*painter, item, text);
        painter->restore();
    }

private:
    /// Of the title and so many lines below it.
    static int TextHeight(int lines)
    {
        return QFontMetrics(ZrLegible::Font(18)).height()
            + lines * QFontMetrics(ZrLegible::Font(15)).height();
    }

    /// Returns the width that the image takes.
    static int PaintImage(QPainter& painter, const ZrListItem& item, const QRect& area)
    {
        const int height = item.isPicture ? area.height() - ZrTheme::DpI(12) : ZrTheme::DpI(28);
        const int width
            = std::min(item.image.width() * height / std::max(item.image.height(), 1), 2 * height);
        const QRect target(area.x(), area.center().y() - height / 2, width, height);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(
            target, item.isPicture ? item.image : ZrTheme::ColourImg(item.image, ZrTheme::ctrlCol));
        return width;
    }

    static int PaintDetail(QPainter& painter, const ZrListItem& item, const QRect& area)
    {
        painter.setFont(ZrLegible::Font(18));
        painter.setPen(ZrTheme::bodyCol);
        const int width = std::min(painter.fontMetrics().horizontalAdvance(item.detail), area.width() / 2);
        const QRect target(area.right() - width, area.y(), width + 1, area.height());
        painter.drawText(target, Qt::AlignRight | Qt::AlignVCenter,
            painter.fontMetrics().elidedText(item.detail, Qt::ElideRight, target.width()));
        return width;
    }

    static void PaintText(QPainter& painter, const ZrListItem& item, const QRect& area)
    {
        // Never smaller than the line below it.
        painter.setFont(ZrLegible::Font(18));
        painter.setPen(ZrTheme::ctrlCol);
        const QString title = painter.fontMetrics().elidedText(item.title, Qt::ElideRight, area.width());
        if (item.subtitle.isEmpty()) {
            painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter, title);
            return;
        }
        // All as one in the middle of the row, as the picture is.
        const QStringList lines = Lines(item);
        const int high = painter.fontMetrics().height();
        int y = area.y() + (area.height() - TextHeight(lines.size())) / 2;
        painter.drawText(QRect(area.x(), y, area.width(), high), Qt::AlignLeft | Qt::AlignTop, title);
        y += high;
        painter.setFont(ZrLegible::Font(15));
        painter.setPen(ZrTheme::bodyCol);
        const int low = painter.fontMetrics().height();
        for (const QString& line : lines) {
            painter.drawText(QRect(area.x(), y, area.width(), low), Qt::AlignLeft | Qt::AlignTop,
                painter.fontMetrics().elidedText(line, Qt::ElideRight, area.width()));
            y += low;
        }
    }

    ZrTouchList& m_list;
};

ZrTouchList::ZrTouchList(QWidget* parent)
    : QListView(parent)
    , m_model(new Model(this))
{
    setModel(m_model);
    setItemDelegate(new Delegate(*this));
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    viewport()->grabGesture(Qt::TapAndHoldGesture);
    m_clock.start();
    Restyle();
}

ZrTouchList::~ZrTouchList() = default;

void ZrTouchList::Restyle()
{
    setStyleSheet(QStringLiteral("QListView { background: transparent; border: none; outline: none; }"));
    scheduleDelayedItemsLayout();
    viewport()->update();
}

const QVector<ZrListItem>& ZrTouchList::Items() const
{
    return m_model->items;
}

void ZrTouchList::SetItems(const QVector<ZrListItem>& items)
{
    Replace(items, 0, {});
}

void ZrTouchList::SetRows(int count, const std::function<ZrListItem(int row)>& make)
{
    Replace({}, std::max(count, 0), make);
}

void ZrTouchList::Replace(
    const QVector<ZrListItem>& items, int count, const std::function<ZrListItem(int row)>& make)
{
    const int current = Current();
    const int position = verticalScrollBar()->value();
    m_isSetting = true;
    // Else each row would be made for its height.
    setUniformItemSizes(static_cast<bool>(make));
    m_model->Replace(items, count, make);
    if (m_pressed >= Count())
        m_pressed = -1;
    if (m_pressed >= 0) {
        const ZrListItem item = Item(m_pressed);
        if (item.title != m_pressedItem.title || item.data != m_pressedItem.data)
            m_pressed = -1;
    }
    m_isSetting = false;
    SetCurrent(std::min(current, Count() - 1));
    verticalScrollBar()->setValue(position);
}

int ZrTouchList::Count() const
{
    return m_model->Count();
}

ZrListItem ZrTouchList::Item(int row) const
{
    return m_model->Item(row);
}

void ZrTouchList::SetItem(int row, const ZrListItem& item)
{
    if (row < 0 || row >= m_model->items.size())
        return;
    m_model->items[row] = item;
    m_model->Tell(row);
}

int ZrTouchList::Current() const
{
    return currentIndex().isValid() ? currentIndex().row() : -1;
}

void ZrTouchList::SetCurrent(int row)
{
    m_isSetting = true;
    if (row < 0 || row >= Count())
        clearSelection();
    setCurrentIndex(row < 0 ? QModelIndex() : m_model->index(row));
    m_isSetting = false;
}

void ZrTouchList::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QListView::currentChanged(current, previous);
    if (!m_isSetting && current.isValid())
        Q_EMIT CurrentChanged(current.row());
}

void ZrTouchList::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    if (Count() > 0 || m_empty.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setFont(ZrLegible::Font(18));
    painter.setPen(ZrTheme::bodyCol);
    const int margin = ZrTheme::DpI(16);
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
        Qt::AlignCenter | Qt::TextWordWrap, m_empty);
}

void ZrTouchList::keyPressEvent(QKeyEvent* event)
{
    const bool isChoice = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isChoice && Current() >= 0) {
        Q_EMIT Chosen(Current());
        return;
    }
    // All but the ways through the rows are shortcuts of the page; letters are no search.
    const bool isWay = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down
        || event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown || event->key() == Qt::Key_Home
        || event->key() == Qt::Key_End;
    if (!isWay || event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
        event->ignore();
        return;
    }
    QListView::keyPressEvent(event);
}

void ZrTouchList::contextMenuEvent(QContextMenuEvent* event)
{
    const QModelIndex at
        = event->reason() == QContextMenuEvent::Keyboard ? currentIndex() : indexAt(event->pos());
    if (at.isValid())
        Q_EMIT Held(at.row());
}

void ZrTouchList::hideEvent(QHideEvent* event)
{
    // The release goes elsewhere.
    QScroller::scroller(viewport())->stop();
    SetPressed(-1);
    QListView::hideEvent(event);
}

void ZrTouchList::SetPressed(int row)
{
    if (row == m_pressed)
        return;
    for (const int each : {std::exchange(m_pressed, row), row}) {
        if (each >= 0)
            update(m_model->index(each));
    }
    m_pressedItem = row >= 0 ? Item(row) : ZrListItem();
}

/// \returns whether it is dealt with, as do the others of the finger
bool ZrTouchList::FingerDown(const QPoint& at, bool isAgain)
{
    QScroller& scroller = *QScroller::scroller(viewport());
    const bool isCoasting = scroller.state() == QScroller::Scrolling;
    scroller.handleInput(QScroller::InputPress, at, m_clock.elapsed());
    // It stops the list, or it has chosen already.
    SetPressed(isCoasting || isAgain ? -1 : indexAt(at).row());
    return true;
}

bool ZrTouchList::FingerMoves(const QPoint& at)
{
    QScroller& scroller = *QScroller::scroller(viewport());
    scroller.handleInput(QScroller::InputMove, at, m_clock.elapsed());
    if (scroller.state() == QScroller::Dragging)
        SetPressed(-1);
    return true;
}

bool ZrTouchList::FingerUp(const QPoint& at)
{
    QScroller::scroller(viewport())->handleInput(QScroller::InputRelease, at, m_clock.elapsed());
    const QModelIndex index = m_model->index(m_pressed);
    SetPressed(-1);
    // A finger rolls while it is lifted.
    const int slack = ZrTheme::DpI(12);
    if (!index.isValid() || !visualRect(index).adjusted(0, -slack, 0, slack).contains(at))
        return true;
    setCurrentIndex(index);
    Q_EMIT Chosen(index.row());
    return true;
}

bool ZrTouchList::viewportEvent(QEvent* event)
{
    const auto* mouse = dynamic_cast<QMouseEvent*>(event);
    if (mouse && mouse->button() == Qt::LeftButton) {
        if (event->type() == QEvent::MouseButtonRelease)
            return FingerUp(mouse->pos());
        return FingerDown(mouse->pos(), event->type() == QEvent::MouseButtonDblClick);
    }
    if (mouse && mouse->buttons() == Qt::LeftButton)
        return FingerMoves(mouse->pos());
    if (event->type() == QEvent::Gesture) {
        auto* gesture = static_cast<QTapAndHoldGesture*>(
            static_cast<QGestureEvent*>(event)->gesture(Qt::TapAndHoldGesture));
        if (gesture && gesture->state() == Qt::GestureFinished) {
            const int row = m_pressed;
            SetPressed(-1);
            if (row >= 0)
                Q_EMIT Held(row);
            return true;
        }
    }
    return QListView::viewportEvent(event);
}
