// Glyphs and texts of `ZrGlSurface`.

#include "ZrUtil/ZrGlSurface.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int glyphGap = 2; ///< pixels between the glyphs of a row
constexpr int verticesPerChar = 6;

int NextPowerOfTwo(int v)
{
    int power = 1;
    while (power < v && power < (1 << 30))
        power *= 2;
    return power;
}

/// Folds a single row of glyphs into a nearly square image with sides that are powers of two.
QSize AtlasSize(int width, int height)
{
    while (width > 0 && height > 0 && width > 2 * height) {
        width = NextPowerOfTwo((width + 1) / 2);
        height = NextPowerOfTwo(2 * height);
    }
    return {width, height};
}

/// Makes every pixel that is not transparent white: the raster painter leaves the edges of glyphs
/// multiplied by their alpha, which would darken them once more when they are blended.
void WhitenInk(QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (const int a = qAlpha(row[x]))
                row[x] = qRgba(255, 255, 255, a);
        }
    }
}

/// The character at \p i of the glyph table.
QChar GlyphChar(std::size_t i)
{
    return QChar(static_cast<ushort>(ZrGlSurface::GlyphFirst + static_cast<int>(i)));
}

} // namespace

void ZrGlSurface::ZrglInitFont()
{
    ZrglSetFont(m_font);
}

void ZrGlSurface::ZrglSetFont(QFont font)
{
    m_font = font;
    // Metrics need the fonts of the application.
    if (!qGuiApp)
        return;
    const QFontMetrics metrics(font);
    const int high = metrics.height();
    int row = 0;
    for (std::size_t i = 0; i < m_glyphs.size(); ++i) {
        Glyph& glyph = m_glyphs[i];
        glyph = Glyph();
        glyph.code = static_cast<u8>(GlyphFirst + static_cast<int>(i));
        glyph.width = metrics.horizontalAdvance(GlyphChar(i));
        glyph.height = high;
        row += glyph.width + glyphGap;
    }
    const QSize size = AtlasSize(row, high);
    if (IsReady() && !IsTextureSize(size))
        return;
    QImage image(size, QImage::Format_ARGB32);
    if (image.isNull())
        return;
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::TextAntialiasing);
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    painter.setRenderHint(QPainter::HighQualityAntialiasing);
    QT_WARNING_POP
    painter.setFont(font);
    painter.setPen(QColor(QStringLiteral("#ffffffff")));
    const auto width = static_cast<float>(size.width());
    const auto height = static_cast<float>(size.height());
    int x = 0;
    int y = 0;
    for (std::size_t i = 0; i < m_glyphs.size(); ++i) {
        Glyph& glyph = m_glyphs[i];
        if (x + glyph.width > size.width()) {
            x = 0;
            y += high;
        }
        painter.drawText(x, y, glyph.width, high, 0, QString(GlyphChar(i)));
        glyph.s0 = static_cast<float>(x) / width;
        glyph.s1 = static_cast<float>(x + glyph.width) / width;
        glyph.t0 = static_cast<float>(y) / height;
        glyph.t1 = static_cast<float>(y + high) / height;
        x += glyph.width + glyphGap;
    }
    painter.end();
    WhitenInk(image);
    if (IsReady() && m_fontTex != 0)
        Upload(m_fontTex, image.convertToFormat(QImage::Format_RGBA8888), GL_NEAREST);
}

void ZrGlSurface::ZrglAddText(
    ZrGlTextBuffer& buffer, float x, float y, float angleDeg, QString text, unsigned flags)
{
    const int count = text.size();
    float* out = buffer.Grow(count);
    if (!out)
        return;
    static const Glyph none;
    const auto glyphOf = [this](QChar c) -> const Glyph& {
        const int i = c.unicode() - GlyphFirst;
        return i >= 0 && i < GlyphCount ? m_glyphs[static_cast<std::size_t>(i)] : none;
    };
    int pixelWidth = 0;
    int pixelHeight = 0;
    for (const QChar c : text) {
        pixelWidth += glyphOf(c).width;
        pixelHeight = std::max(pixelHeight, glyphOf(c).height);
    }
    const float width = static_cast<float>(pixelWidth) * m_scaleX;
    const float height = static_cast<float>(pixelHeight) * m_scaleY;
    float penX = 0.0F;
    float penY = 0.0F;
    if (flags & textCentre)
        penX = -width / 2;
    else if (flags & textRight)
        penX = -width;
    if (flags & textMiddle)
        penY = -height / 2;
    else if (flags & textTop)
        penY = -height;

    QMatrix4x4 place;
    place.translate(x, y);
    place.rotate(angleDeg, 0.0F, 0.0F, 1.0F);
    const auto put = [&](float px, float py, float s, float t) {
        const QVector3D at = place.map(QVector3D(px, py, 0.0F));
        *out++ = at.x();
        *out++ = at.y();
        *out++ = s;
        *out++ = t;
    };
    for (const QChar c : text) {
        const Glyph& glyph = glyphOf(c);
        float s0 = glyph.s0;
        float s1 = glyph.s1;
        // The first row of the image is the upper edge of the glyph.
        float tUp = glyph.t0;
        float tDown = glyph.t1;
        if (flags & textMirrorX)
            std::swap(s0, s1);
        if (flags & textMirrorY)
            std::swap(tUp, tDown);
        const float right = penX + static_cast<float>(glyph.width) * m_scaleX;
        const float up = penY + static_cast<float>(glyph.height) * m_scaleY;
        put(penX, penY, s0, tDown);
        put(right, penY, s1, tDown);
        put(penX, up, s0, tUp);
        put(penX, up, s0, tUp);
        put(right, penY, s1, tDown);
        put(right, up, s1, tUp);
        penX = right;
    }
    buffer.m_count += count;
}

void ZrGlSurface::ZrglRenderText(ZrGlTextBuffer& buffer)
{
    if (buffer.m_count < 1 || !IsReadyOrWarn())
        return;
    m_gl.glActiveTexture(GL_TEXTURE0);
    m_gl.glBindTexture(GL_TEXTURE_2D, m_fontTex);
    UseProgram(texture);
    m_gl.glEnable(GL_BLEND);
    m_gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    Draw(GL_TRIANGLES, buffer.m_data, 4, true, buffer.m_count * verticesPerChar);
    m_gl.glDisable(GL_BLEND);
}
