#pragma once

#include "ZrUtil/ZrExport.h"
#include "ZrUtil/ZrGlSurface.h"

/// Paints what lies behind the pages: hexagons, a fade over them, and light from the foot. It works in
/// pixels, y down. GUI thread only.
class ZR_UTIL_EXPORT ZrAppBack : public ZrGlSurface
{
    Q_OBJECT

public:
    GLuint m_hexTex = 0; ///< ":/back_hex.png", repeated
    GLuint m_fadeTex = 0; ///< ":/back_fade.png", over everything
    GLuint m_lightTex = 0; ///< ":/back_light.png", along the lower edge

    explicit ZrAppBack(QObject* parent = nullptr);

    void OnCreate() override;
    void OnResize(int width, int height) override;
    void Render() override;

private:
    void RenderRect(float x, float y, float w, float h, GLuint tex);
};
