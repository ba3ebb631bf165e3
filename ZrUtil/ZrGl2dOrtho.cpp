#include "ZrUtil/ZrGl2dOrtho.h"

#include "ZrUtil/ZrSetModule.h"

#include <cmath>

void ZrGl2dOrtho::zrgl2dProjection(float left, float right, float bottom, float top, eAspect aspect)
{
    m_reqLeft = left;
    m_reqRight = right;
    m_reqBottom = bottom;
    m_reqTop = top;
    m_aspect = aspect;
    zrgl2dViewport(m_width, m_height);
}

void ZrGl2dOrtho::zrgl2dViewport(int width, int height)
{
    m_width = width;
    m_height = height;
    const float w = static_cast<float>(width);
    const float h = static_cast<float>(height);
    float l = m_reqLeft;
    float r = m_reqRight;
    float b = m_reqBottom;
    float t = m_reqTop;
    float sx = std::fabs((r - l) / w);
    float sy = std::fabs((t - b) / h);

    int mode = m_aspect;
    if (mode == aspectAuto)
        mode = sy > sx ? aspectFollowY : aspectFollowX;
    if (mode == aspectFollowX) {
        sy = sx;
        const float c = (b + t) / 2;
        const float half = h * sx / 2;
        const bool isUp = t > b;
        t = isUp ? c + half : c - half;
        b = isUp ? c - half : c + half;
    } else if (mode == aspectFollowY) {
        sx = sy;
        const float c = (l + r) / 2;
        const float half = w * sy / 2;
        const bool isRight = r > l;
        l = isRight ? c - half : c + half;
        r = isRight ? c + half : c - half;
    }
    m_scaleX = sx;
    m_scaleY = sy;
    m_proj.setToIdentity();
    m_proj.ortho(l, r, b, t, -100.0F, 100.0F);
    m_proj.rotate(m_rotation, 0.0F, 0.0F, 1.0F);
    m_left = l;
    m_right = r;
    m_top = t;
    m_bottom = b;
}

void ZrGl2dOrtho::ScreenToXy(float sx, float sy, float& x, float& y) const
{
    if (m_rotation != 0.0F)
        return;
    x = m_width == 0 ? m_left : m_left + (m_right - m_left) * sx / static_cast<float>(m_width);
    y = m_height == 0 ? m_top : m_top + (m_bottom - m_top) * sy / static_cast<float>(m_height);
}

void ZrGl2dOrtho::XyToScreen(float x, float y, float& sx, float& sy) const
{
    if (m_rotation != 0.0F)
        return;
    const float wide = m_reqRight - m_reqLeft;
    const float high = m_reqTop - m_reqBottom;
    sx = wide == 0.0F ? 0.0F : (x - m_reqLeft) / wide * static_cast<float>(m_width);
    sy = high == 0.0F ? 0.0F : (y - m_reqBottom) / high * static_cast<float>(m_height);
}

void ZrGl2dOrtho::settings(zr::ZrSetModule& module)
{
    module.item(QStringLiteral("origin-x"), m_originX);
    module.item(QStringLiteral("origin-y"), m_originY);
    module.item(QStringLiteral("rotation"), m_rotation);
}
