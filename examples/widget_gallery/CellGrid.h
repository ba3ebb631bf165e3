#pragma once

#include <QString>
#include <QWidget>

#include <vector>

/// Widgets in rows of equal columns, each with a caption above; as many columns as the width allows.
///
/// All sizes are design pixels of the theme, so that the grid grows and shrinks with the scale.
class CellGrid : public QWidget
{
    Q_OBJECT

public:
    explicit CellGrid(QWidget* parent);

    /// Begins a part of the grid.
    void AddHeading(const QString& text);

    /// Cells of \p columns columns together follow: they begin a row of their own unless all of them fit
    /// behind what stands there.
    void BeginGroup(int columns);

    /// A cell of \p columns columns, less where the grid has less. The widget becomes a child; it is as high
    /// as its hint, and as wide as the cell unless its size policy is fixed.
    void AddCell(const QString& caption, QWidget* widget, int columns);

    void SetCaption(const QWidget* widget, const QString& caption);

    /// Lays out for \p width; the height that this takes.
    int Place(int width);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Item
    {
        QString caption;
        QWidget* widget = nullptr; ///< null: a heading, or the begin of a group
        int columns = 1;
        QRect captionRect;
    };

    struct Columns
    {
        int count;
        int width; ///< of one column, real pixels
    };

    static Columns ColumnsOf(int width);
    int PlaceCell(Item& item, const QRect& cell);

    std::vector<Item> m_items;
};
