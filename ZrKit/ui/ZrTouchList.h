#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/ui/ZrListItem.h"

#include <QElapsedTimer>
#include <QListView>
#include <QVector>

#include <functional>

/// A list for fingers: rows that a finger hits, scrolled by it and coasting on, with one current row.
///
/// \code
/// list->SetItems({{tr("Line 1"), tr("1.2 km"), QString(), QImage(), false, QColor(), 1}});
/// connect(list, &ZrTouchList::Chosen, this, [this](int row) { Open(row); });
/// \endcode
///
/// A tap makes a row the current one and chooses it, unless the row is replaced by another one meanwhile; the
/// second tap of a double one chooses nothing. Return chooses the current row; a finger held on a row tells
/// `Held`. Rows are painted from the items in view alone, so that lists may be long; those of very long ones
/// are not even made before they are seen, see `SetRows`. GUI thread only.
///
/// The list hands presses to its scroller itself: the gesture of `QScroller` holds them back, and gives them
/// afterwards to what the display says lies under the point, which is another window where one that lets taps
/// through, such as a message or one that dims the screen, covers the list.
class ZR_KIT_EXPORT ZrTouchList : public QListView
{
    Q_OBJECT

public:
    static constexpr float RowHeight = 72.0F; ///< design pixels; rows without a subtitle take 56, those with
                                              ///< more than one line of it what they need

    QString m_empty; ///< shown while there is no item

    /// Makes the pictures of rows that are to have one and hold none, when they are painted: those of a long
    /// list would take much memory, and nobody waits for them. May be empty.
    std::function<QImage(int row)> m_picture;

    explicit ZrTouchList(QWidget* parent);
    ~ZrTouchList() override;

    /// Replaces all rows; the current row stays where it was as far as there is one, and so does the
    /// position.
    void SetItems(const QVector<ZrListItem>& items);
    void SetItem(int row, const ZrListItem& item); ///< nothing for a row that is none

    const QVector<ZrListItem>& Items() const; ///< of `SetItems`; empty for rows that are made

    /// Replaces all rows by \p count that \p make makes each time they are painted or asked for, likewise.
    /// All are as high as the first one. \p make is not called for a row that is none, and may be called as
    /// long as the list has these rows.
    void SetRows(int count, const std::function<ZrListItem(int row)>& make);

    int Count() const; ///< of rows, whichever way they came

    ZrListItem Item(int row) const; ///< likewise; empty for a row that is none

    int Current() const; ///< -1 for none
    void SetCurrent(int row); ///< shows it; -1 for none; tells nobody

    void Restyle(); ///< after a change of colours, fonts or scale

Q_SIGNALS:
    void Chosen(int row);
    void Held(int row); ///< a finger or the mouse stays on it, or the menu key was pressed
    void CurrentChanged(int row); ///< by the user

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    class Model;
    class Delegate;

    void Replace(const QVector<ZrListItem>& items, int count, const std::function<ZrListItem(int row)>& make);
    bool FingerDown(const QPoint& at, bool isAgain);
    bool FingerMoves(const QPoint& at);
    bool FingerUp(const QPoint& at);
    void SetPressed(int row);

    Model* m_model;
    bool m_isSetting = false;
    int m_pressed = -1; ///< row that the finger is on, and chooses when it goes; -1 for none
    ZrListItem m_pressedItem; ///< what that row was when it was pressed
    QElapsedTimer m_clock; ///< for the speed of the finger
};
