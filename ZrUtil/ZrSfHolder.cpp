#include "ZrUtil/ZrSfHolder.h"

#include "ZrUtil/ZrGlSurface.h"

ZrSfHolder::ZrSfHolder(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_MouseTracking);
}

void ZrSfHolder::SetSurface(ZrGlSurface* surface)
{
    m_surface = surface;
    MatchViewport();
}

void ZrSfHolder::MatchViewport()
{
    if (!m_surface)
        return;
    PlaceViewport();
    const int factor = m_surface->m_pixelFactor;
    m_surface->OnResize(width() * factor, height() * factor);
}

/// Tells the surface where the holder is, in device pixels from the lower left of the parent.
void ZrSfHolder::PlaceViewport()
{
    const QRect at = geometry();
    const QWidget* parent = parentWidget();
    const int below = (parent ? parent->height() : at.height()) - at.bottom();
    const int factor = m_surface->m_pixelFactor;
    // The lower edge is Qt's inclusive one: the viewport lies a pixel above the geometric edge.
    m_surface->ZrglSetViewport(at.left() * factor, below * factor, at.width() * factor, at.height() * factor);
}

void ZrSfHolder::moveEvent(QMoveEvent* /*event*/)
{
    // The size is as it was: the surface has nothing to compute anew.
    if (m_surface)
        PlaceViewport();
}

void ZrSfHolder::resizeEvent(QResizeEvent* /*event*/)
{
    MatchViewport();
}

void ZrSfHolder::mouseMoveEvent(QMouseEvent* event)
{
    if (m_surface)
        m_surface->OnMouseMove(event);
}

void ZrSfHolder::mousePressEvent(QMouseEvent* event)
{
    if (m_surface)
        m_surface->OnMousePress(event);
}

void ZrSfHolder::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_surface)
        m_surface->OnMouseRelease(event);
}

void ZrSfHolder::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (m_surface)
        m_surface->OnMouseDblClick(event);
}

void ZrSfHolder::wheelEvent(QWheelEvent* event)
{
    if (m_surface)
        m_surface->OnWheel(event);
}
