#pragma once

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrExport.h"

#include <QColor>

/// A button that shows a colour and edits it in the colour dialog.
///
/// GUI thread only. The dialog is modal; the button may be deleted meanwhile.
class ZR_UTIL_EXPORT ZrColBtn : public ZrBtn
{
    Q_OBJECT

public:
    QColor* colour = nullptr; ///< what is edited, owned by somebody else; null: white is offered, none stored

    explicit ZrColBtn(QWidget* parent = nullptr);

    QSize sizeHint() const override;

Q_SIGNALS:
    void ColourChanged(QColor colour); ///< the user has chosen one; it is stored already

public Q_SLOTS:
    /// Opens the dialog with the current colour.
    void OnPressed();

protected:
    void paintEvent(QPaintEvent* event) override;
    QRectF ContentRect() const override;

private:
    QRectF SwatchRect() const;
};
