#include "examples/widget_gallery/CellGrid.h"

#include "ZrUtil/ZrTheme.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace {

// Design pixels.
constexpr float margin = 24.0F;
constexpr float gap = 16.0F;
constexpr float smallestColumn = 120.0F;
constexpr float headingHeight = 56.0F;
constexpr float captionGap = 4.0F;

int CaptionHeight()
{
    return QFontMetrics(ZrTheme::bodyFont).height();
}

} // namespace

CellGrid::CellGrid(QWidget* parent)
    : QWidget(parent)
{
}

void CellGrid::AddHeading(const QString& text)
{
    Item item;
    item.caption = text;
    m_items.push_back(item);
}

void CellGrid::BeginGroup(int columns)
{
    Item item;
    item.columns = columns;
    m_items.push_back(item);
}

void CellGrid::AddCell(const QString& caption, QWidget* widget, int columns)
{
    Item item;
    item.caption = caption;
    item.widget = widget;
    item.columns = columns;
    m_items.push_back(item);
    widget->setParent(this);
    widget->show();
}

void CellGrid::SetCaption(const QWidget* widget, const QString& caption)
{
    for (Item& item : m_items) {
        if (item.widget == widget && item.caption != caption) {
            item.caption = caption;
            update(item.captionRect);
        }
    }
}

CellGrid::Columns CellGrid::ColumnsOf(int width)
{
    const int inside = width - 2 * ZrTheme::DpI(margin);
    const int between = ZrTheme::DpI(gap);
    const int count = std::max(1, (inside + between) / (ZrTheme::DpI(smallestColumn) + between));
    return {count, (inside - (count - 1) * between) / count};
}

/// The height that the cell takes.
int CellGrid::PlaceCell(Item& item, const QRect& cell)
{
    const int captionHeight = item.caption.isEmpty() ? 0 : CaptionHeight() + ZrTheme::DpI(captionGap);
    item.captionRect = QRect(cell.left(), cell.top(), cell.width(), captionHeight);
    const QWidget& widget = *item.widget;
    QSize size = widget.sizeHint().expandedTo(widget.minimumSize()).boundedTo(widget.maximumSize());
    if (widget.sizePolicy().horizontalPolicy() != QSizePolicy::Fixed)
        size.setWidth(cell.width());
    item.widget->setGeometry(QRect(QPoint(cell.left(), cell.top() + captionHeight), size));
    return captionHeight + size.height();
}

int CellGrid::Place(int width)
{
    const Columns columns = ColumnsOf(width);
    const int between = ZrTheme::DpI(gap);
    const int left = ZrTheme::DpI(margin);
    int y = between;
    int column = 0;
    int rowHeight = 0;
    const auto endRow = [&] {
        if (column > 0)
            y += rowHeight + between;
        column = 0;
        rowHeight = 0;
    };
    for (Item& item : m_items) {
        const int span = std::min(item.columns, columns.count);
        const bool isHeading = !item.widget && !item.caption.isEmpty();
        if (isHeading || column + span > columns.count)
            endRow();
        if (item.widget) {
            const int x = left + column * (columns.width + between);
            const QRect cell(x, y, span * columns.width + (span - 1) * between, 0);
            rowHeight = std::max(rowHeight, PlaceCell(item, cell));
            column += span;
        } else if (isHeading) {
            item.captionRect = QRect(left, y, width - 2 * left, ZrTheme::DpI(headingHeight));
            y += item.captionRect.height() + between;
        }
    }
    endRow();
    resize(width, y);
    update();
    return y;
}

void CellGrid::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    for (const Item& item : m_items) {
        if (item.caption.isEmpty())
            continue;
        const bool isHeading = !item.widget;
        const QRect rect = item.captionRect;
        painter.setFont(isHeading ? ZrTheme::fontLarge : ZrTheme::bodyFont);
        painter.setPen(isHeading ? ZrTheme::titleText : ZrTheme::bodyText);
        const QString shown = painter.fontMetrics().elidedText(item.caption, Qt::ElideRight, rect.width());
        const QRectF above = rect.adjusted(0, 0, 0, isHeading ? 0 : -ZrTheme::DpI(captionGap));
        painter.drawText(above, shown, ZrTheme::left);
        if (isHeading)
            painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), std::max(1, ZrTheme::DpI(1))),
                ZrTheme::ctrlOutlineCol);
    }
}
