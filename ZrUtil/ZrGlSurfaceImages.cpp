// Palettes, markers and backgrounds of `ZrGlSurface`.

#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrLogEmit.h"
#include "ZrUtil/ZrMarkerImages.h"

#include <QDebug>
#include <QImage>

#include <vector>

namespace {

constexpr int rowsOfPalette = 10;

static_assert(ZrMarkerImages::Paths.size() == ZrGlSurface::MarkerCount, "each marker has an image");

/// 256 × 256 pixels for want of palettes: in each row, 256 bytes from the one before, the ramp advances by
/// one byte, not by one pixel.
std::vector<uchar> GreyRamps()
{
    constexpr std::size_t side = 256;
    std::vector<uchar> pixels(side * side * 4, 0);
    for (std::size_t row = 0; row < side; ++row) {
        for (std::size_t v = 0; v < side; ++v) {
            uchar* at = pixels.data() + row * side + v;
            at[0] = at[1] = at[2] = static_cast<uchar>(v);
            at[3] = 255;
        }
    }
    return pixels;
}

/// The pixels of an image file, null where there are none to be had.
QImage ReadImage(const QString& path)
{
    // Qt writes a warning of its own about a file without a name.
    return path.isEmpty() ? QImage() : QImage(path).convertToFormat(QImage::Format_RGBA8888);
}

} // namespace

/// Whether the context takes textures of \p size; the debug log has a line when not.
bool ZrGlSurface::IsTextureSize(const QSize& size)
{
    GLint most = 0;
    m_gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    if (size.width() <= most && size.height() <= most)
        return true;
    ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrUtil-ZrGlSurface",
        "An image of {} by {} pixels is larger than a texture may be: {}", size.width(), size.height(), most);
    return false;
}

/// Uploads an RGBA image and sets how it is sampled; magnification is linear.
void ZrGlSurface::Upload(GLuint tex, const QImage& image, int minFilter)
{
    m_gl.glBindTexture(GL_TEXTURE_2D, tex);
    m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, minFilter);
    m_gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    m_gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, image.width(), image.height(), 0, GL_RGBA, GL_UNSIGNED_BYTE,
        image.constBits());
}

bool ZrGlSurface::ZrglLoadImageToTexture(QString path, GLuint& tex)
{
    if (!IsReadyOrWarn())
        return false;
    const QImage image = ReadImage(path);
    if (image.isNull() || !IsTextureSize(image.size()))
        return false;
    m_gl.glGenTextures(1, &tex);
    Upload(tex, image, GL_LINEAR);
    return true;
}

void ZrGlSurface::ZrglInitPalette()
{
    if (!IsReadyOrWarn())
        return;
    m_gl.glGenTextures(1, &m_palTex);
    const QImage image = ReadImage(QStringLiteral(":/palettes.png"));
    if (!image.isNull() && IsTextureSize(image.size())) {
        m_palCount = image.height() / rowsOfPalette;
        Upload(m_palTex, image, GL_NEAREST);
        return;
    }
    qDebug() << "zrglInitPalette, Cannot load palettes bitmap from resource, using default greyscale";
    m_palCount = 1;
    const std::vector<uchar> pixels = GreyRamps();
    Upload(m_palTex, QImage(pixels.data(), 256, 256, QImage::Format_RGBA8888), GL_NEAREST);
}

void ZrGlSurface::ZrglInitMarkers()
{
    if (!IsReadyOrWarn())
        return;
    for (std::size_t i = 0; i < m_markers.size(); ++i) {
        m_markers[i] = 0;
        if (!ZrglLoadImageToTexture(QString::fromLatin1(ZrMarkerImages::Paths[i]), m_markers[i])) {
            LogFailure("Marker image load failed: ", ZrMarkerImages::Paths[i]);
            continue;
        }
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        m_gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    }
}

void ZrGlSurface::ZrglSetBackground(QString path)
{
    m_background = path;
    if (!IsReady())
        return;
    const QImage image = ReadImage(path);
    if (image.isNull() || !IsTextureSize(image.size())) {
        ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrUtil-ZrGlSurface", "Background image load failed: {}", path);
        return;
    }
    if (m_bgTex == 0)
        m_gl.glGenTextures(1, &m_bgTex);
    Upload(m_bgTex, image, GL_NEAREST);
}
