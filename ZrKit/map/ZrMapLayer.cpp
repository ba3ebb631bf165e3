#include "ZrKit/map/ZrMapLayer.h"

#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"

void ZrMapLayer::Paint(ZrGlSurface& surface, const ZrMapView& view)
{
    QOpenGLContext* const context = QOpenGLContext::currentContext();
    if (!m_isVisible || view.IsEmpty() || !context)
        return;
    if (m_isBuilt && m_context != context)
        OnForget();
    m_context = context;
    m_isBuilt = true;
    OnPaint(surface, view);
}

void ZrMapLayer::Release(ZrGlSurface& surface)
{
    if (!m_isBuilt)
        return;
    if (m_context && m_context == QOpenGLContext::currentContext() && surface.IsReady())
        OnRelease(surface);
    else
        OnForget();
    m_context.clear();
    m_isBuilt = false;
}
