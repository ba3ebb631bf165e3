#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QStringList>
#include <QWidget>

/// A vertical list of choices of which one, or none, is selected.
///
/// \code
/// auto* units = new ZrRadio(parent);
/// units->items = QStringList({tr("Metric"), tr("Imperial")});
/// units->SetSel(0);
/// connect(units, &ZrRadio::SelChanged, this, &Form::OnUnits);
/// \endcode
///
/// Choices stand `itemHeight` apart, the first one a quarter of that below the top; a press above it selects
/// it too. A press below the last one selects none. The arrow keys, Home and End move the selection while the
/// list has the focus. Call `updateGeometry` and `update` after changing `items`. GUI thread only.
class ZR_UTIL_EXPORT ZrRadio : public QWidget
{
    Q_OBJECT

public:
    i32 m_reserved = 0;
    QStringList items;
    i32 sel = -1; ///< the selected choice; -1 for none
    i32 hot = -1; ///< the choice under the pointer; -1 for none
    i32 itemHeight; ///< real pixels: one and a half times the height of the theme's font, when constructed

    explicit ZrRadio(QWidget* parent = nullptr);

    /// The choice at \p p, widget coordinates; -1 outside the widget and below the last one.
    int GetSel(const QPoint& p);

    /// Selects without a signal.
    void SetSel(int i);

    /// Selects as a press on the choice does: with a signal when that is a change.
    void Select(int i);

    /// Makes every choice at least 44 pixels high, so that a finger hits it; `itemHeight` is less on most
    /// screens.
    void UseTouchHeight();

    /// The choice that has the focus when the list has it.
    int FocusItem() const;

    /// Where choice \p i stands, widget coordinates: what a press must hit.
    QRect ItemRect(int i) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void SelChanged(int sel);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintItem(QPainter& painter, int i);
    bool m_showsFocus = false; ///< keys are in use
};
