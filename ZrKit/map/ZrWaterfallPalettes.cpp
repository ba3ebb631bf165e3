#include "ZrKit/map/ZrWaterfallPalettes.h"

#include "ZrKit/map/ZrWaterfallLayer.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrUtil/ZrGlSurface.h"

#include <QImage>
#include <QOpenGLContext>

#include <cmath>

void ZrWaterfallPalettes::Load(ZrGlSurface& surface)
{
    const QStringList names = ZrSonarPalette::Names();
    QImage image(256, names.size(), QImage::Format_RGBA8888);
    for (int row = 0; row < names.size(); ++row) {
        ZrSonarPalette palette;
        palette.Load(names[row]);
        for (int i = 0; i < 256; ++i)
            image.setPixel(i, row, palette.Colour(i));
    }
    if (surface.m_palTex == 0 || !QOpenGLContext::currentContext())
        return;
    QOpenGLFunctions& gl = surface.m_gl;
    gl.glBindTexture(GL_TEXTURE_2D, surface.m_palTex);
    gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, image.width(), image.height(), 0, GL_RGBA, GL_UNSIGNED_BYTE,
        image.constBits());
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    gl.glBindTexture(GL_TEXTURE_2D, 0);
    surface.m_palCount = names.size();
}

void ZrWaterfallPalettes::SetLook(ZrWaterfallLayer& layer, int palette, double gain, double contrast)
{
    if (!(contrast > 0.0) || !std::isfinite(gain) || !std::isfinite(contrast))
        return;
    // i' = (i - 1/2) contrast + 1/2 as the layer has it, and then the gain.
    const double black = 0.5 * (contrast - 1.0) / contrast;
    const double factor = 0.5 * (contrast + 1.0) * std::pow(10.0, gain / 20.0);
    layer.m_palette = palette;
    layer.m_clamp = static_cast<float>(black);
    layer.m_gain = static_cast<float>(factor - 1.0);
}
