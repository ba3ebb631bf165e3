#pragma once

#include "ZrUtil/ZrExport.h"

#include <QWidget>

class ZrGlSurface;

/// A plain child widget that marks where on the application's GL widget a surface draws. It keeps the
/// surface's viewport in step with its own geometry and hands mouse and wheel events on. The viewport counts
/// from the lower edge of the parent: when that moves and the holder does not, call `MatchViewport`.
///
/// Without a surface it ignores both. GUI thread only.
class ZR_UTIL_EXPORT ZrSfHolder : public QWidget
{
    Q_OBJECT

public:
    ZrGlSurface* m_surface = nullptr; ///< what is hosted; not owned

    explicit ZrSfHolder(QWidget* parent);

    /// Hosts \p surface from now on, null for none, and matches its viewport.
    void SetSurface(ZrGlSurface* surface);

    /// Sets the surface's viewport from the geometry, in device pixels, and tells it its size.
    void MatchViewport();

protected:
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void PlaceViewport();
};
