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
    const QRect at = geometry();
    const QWidget* parent = parentWidget();
    const int height = parent ? parent->height() : at.height();
    const int factor = m_surface->m_pixelFactor;
    // The lower edge is Qt's inclusive one: the viewport lies a pixel above the geometric edge.
    m_surface->ZrglSetViewport(
        at.left() * factor, (height - at.bottom()) * factor, at.width() * factor, at.height() * factor);
    m_surface->OnResize(at.width() * factor, at.height() * factor);
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
