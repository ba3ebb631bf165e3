#pragma once

#include "ZrUtil/ZrExport.h"

#include <QPoint>
#include <QRect>
#include <QWidget>

/// A panel that the user drags about inside its parent by a grip.
///
/// Derive from it, or put children into it, and set `grip` in `resizeEvent`. The panel stays within the
/// parent; of one larger than its parent the top left corner stays visible. GUI thread only.
class ZR_UTIL_EXPORT ZrDragWidget : public QWidget
{
    Q_OBJECT

public:
    QRect grip; ///< where a press starts a drag, widget coordinates
    bool dragging = false;
    QRect startGeom; ///< the geometry when the drag began
    QPoint pressPos; ///< where the pointer was then, global coordinates

    explicit ZrDragWidget(QWidget* parent = nullptr);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override; ///< ends a drag: its release will not come
    bool event(QEvent* event) override; ///< likewise when a modal dialog opens
    void paintEvent(QPaintEvent* event) override; ///< the panel and the dots of its grip
};
