#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrBtn.h"

#include <QImage>

/// A button that shows a palette of `ZrSonarPalette`, weakest colour at the left, above its name.
class ZR_KIT_EXPORT ZrPaletteBtn : public ZrBtn
{
    Q_OBJECT

public:
    /// \param palette one of `ZrSonarPalette::Names`
    ZrPaletteBtn(QWidget* parent, const QString& palette);

    QSize sizeHint() const override;

protected:
    QRectF ContentRect() const override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF Swatch() const;
    void LoadColours();

    QString m_palette;
    QImage m_colours; ///< null until they are painted first
};
