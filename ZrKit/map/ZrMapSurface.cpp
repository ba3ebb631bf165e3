#include "ZrKit/map/ZrMapSurface.h"

#include "ZrKit/map/ZrMapLayer.h"
#include "ZrUtil/ZrTheme.h"

ZrMapSurface::ZrMapSurface(QObject* parent)
    : ZrGlSurface(parent)
{
}

void ZrMapSurface::OnResize(int width, int height)
{
    m_camera.SetSize(width, height);
}

void ZrMapSurface::Render()
{
    if (!IsReady() || m_camera.IsEmpty())
        return;
    ZrGlClipToViewport();
    m_gl.glEnable(GL_SCISSOR_TEST);
    m_gl.glScissor(m_viewport.x(), m_viewport.y(), m_viewport.width(), m_viewport.height());
    m_gl.glDisable(GL_DEPTH_TEST);
    m_gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    const QColor water = m_water.isValid() ? m_water : ZrTheme::sea;
    m_gl.glClearColor(static_cast<float>(water.redF()), static_cast<float>(water.greenF()),
        static_cast<float>(water.blueF()), 1.0F);
    m_gl.glClear(GL_COLOR_BUFFER_BIT);
    m_camera.Apply(*this);
    for (ZrMapLayer* layer : qAsConst(m_layers))
        layer->Paint(*this, m_camera);
    // A layer may have drawn into a part.
    m_gl.glEnable(GL_SCISSOR_TEST);
    m_gl.glScissor(m_viewport.x(), m_viewport.y(), m_viewport.width(), m_viewport.height());
    // What was blended has left its mark on alpha; pictures of the window would be seen through there.
    m_gl.glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    m_gl.glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
    m_gl.glClear(GL_COLOR_BUFFER_BIT);
    m_gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    m_gl.glDisable(GL_SCISSOR_TEST);
}

void ZrMapSurface::Release()
{
    for (ZrMapLayer* layer : qAsConst(m_layers))
        layer->Release(*this);
}
