#include "ZrUtil/ZrAppBack.h"

#include "ZrUtil/ZrTheme.h"

namespace {

// A tile of the hexagons, design pixels.
constexpr float tileWidth = 377.0F;
constexpr float tileHeight = 217.0F;

} // namespace

ZrAppBack::ZrAppBack(QObject* parent)
    : ZrGlSurface(parent)
{
}

void ZrAppBack::OnCreate()
{
    ZrGlSurface::OnCreate();
    ZrglLoadImageToTexture(QStringLiteral(":/back_hex.png"), m_hexTex);
    ZrglLoadImageToTexture(QStringLiteral(":/back_fade.png"), m_fadeTex);
    ZrglLoadImageToTexture(QStringLiteral(":/back_light.png"), m_lightTex);
}

void ZrAppBack::OnResize(int width, int height)
{
    ZrglSetViewport(0, 0, width, height);
    zrgl2dViewport(width, height);
    zrgl2dProjection(0.0F, static_cast<float>(width), static_cast<float>(height), 0.0F, aspectStretch);
}

void ZrAppBack::RenderRect(float x, float y, float w, float h, GLuint tex)
{
    if (tex == 0)
        return;
    float quad[] = {x, y, 0, 0, x, y + h, 0, 1, x + w, y, 1, 0, x + w, y + h, 1, 1};
    ZrglRenderVbo(quad, tex, texture);
}

void ZrAppBack::Render()
{
    const auto width = static_cast<float>(m_width);
    const auto height = static_cast<float>(m_height);
    const float tileW = ZrTheme::DpF(tileWidth) * static_cast<float>(m_pixelFactor);
    const float tileH = ZrTheme::DpF(tileHeight) * static_cast<float>(m_pixelFactor);
    // A scale that is broken, or next to nothing, would ask for endless tiles.
    if (tileW >= 8.0F && tileH >= 8.0F) {
        for (float y = 0.0F; y < height; y += tileH) {
            for (float x = 0.0F; x < width; x += tileW)
                RenderRect(x, y, tileW, tileH, m_hexTex);
        }
    }
    RenderRect(0.0F, 0.0F, width, height, m_fadeTex);
    RenderRect(0.0F, height - tileH, width, tileH, m_lightTex);
}
