#include "ZrKit/map/ZrLabelLayer.h"

#include "ZrKit/map/ZrLabelDeclutter.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrTheme.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Beyond this the floats of the shader do not hold a position.
constexpr double farthest = 1e8;
/// Of the glyphs in the atlas, pixels: enough for corners to stay sharp in the largest text of a map.
constexpr int atlasFont = 32;
constexpr float standardSize = 18.0F;
/// Thin strokes come out paler than their colour: all are this much wider to either side, pixels.
constexpr float widening = 0.12F;
constexpr double besideText = 2.0; ///< design pixels that stay free between labels

bool IsDrawable(const ZrMapLabel& label)
{
    return std::fabs(label.position.x()) <= farthest && std::fabs(label.position.y()) <= farthest
        && std::isfinite(label.offset.x()) && std::isfinite(label.offset.y()) && std::isfinite(label.angle)
        && std::isfinite(label.size) && std::isfinite(label.haloWidth);
}

QColor Valid(const QColor& colour, const QColor& otherwise)
{
    return colour.isValid() ? colour : otherwise;
}

} // namespace

ZrLabelLayer::ZrLabelLayer()
    : m_batch(QStringLiteral(":/map_label.fsh"))
{
}

void ZrLabelLayer::SetLabels(std::vector<ZrMapLabel> labels)
{
    if (labels == m_labels)
        return;
    m_labels = std::move(labels);
    m_isLaidOut = false;
}

void ZrLabelLayer::SetFont(const QFont& font)
{
    if (m_hasFont && font == m_font)
        return;
    m_font = font;
    m_hasFont = true;
    m_atlas.reset();
    m_isLaidOut = false;
}

void ZrLabelLayer::SetScale(float scale)
{
    if (std::isfinite(scale) && scale > 0.0F)
        m_scale = scale;
}

void ZrLabelLayer::SetDeclutter(bool isOn, std::vector<QRectF> taken)
{
    m_isDecluttered = isOn;
    m_taken = std::move(taken);
}

QSizeF ZrLabelLayer::TextSize(const QString& text, float size)
{
    ZrGlyphAtlas& atlas = Atlas();
    const double scale
        = static_cast<double>(size > 0.0F ? size : LookOf(1.0).size) / static_cast<double>(atlas.FontSize());
    return QSizeF(static_cast<double>(atlas.Layout(text).width),
               static_cast<double>(atlas.Ascent() + atlas.Descent()))
        * scale;
}

ZrLabelLayer::Look ZrLabelLayer::LookOf(double pixel) const
{
    Look look;
    look.pixel = pixel;
    const double dp = static_cast<double>(ZrTheme::dp);
    // Without a style the theme's fonts are Qt's, and sized in points.
    const bool hasSize = ZrTheme::font.pixelSize() > 0 && std::isfinite(dp) && dp > 0.0;
    look.size = hasSize ? static_cast<float>(ZrTheme::font.pixelSize() / dp) : standardSize;
    look.family = ZrTheme::fontFamily;
    look.colour = Valid(ZrTheme::ctrlCol, Qt::white);
    look.halo = Valid(ZrTheme::formBack, Qt::black);
    return look;
}

/// The atlas of the font in force.
ZrGlyphAtlas& ZrLabelLayer::Atlas()
{
    if (m_atlas && (m_hasFont || m_atlasFamily == ZrTheme::fontFamily))
        return *m_atlas;
    QFont font = m_hasFont ? m_font : ZrTheme::font;
    if (!m_hasFont && !ZrTheme::fontFamily.isEmpty())
        font.setFamily(ZrTheme::fontFamily);
    font.setPixelSize(atlasFont);
    m_atlas = std::make_unique<ZrGlyphAtlas>(font, m_largestAtlas);
    m_atlasFamily = ZrTheme::fontFamily;
    m_revision = -1;
    m_isLaidOut = false;
    return *m_atlas;
}

/// On screen, pixels.
float ZrLabelLayer::FontSize(const ZrMapLabel& label) const
{
    const float size = (label.size > 0.0F ? label.size : m_look.size) * static_cast<float>(m_look.pixel);
    return std::clamp(size, LeastSize, LargestSize);
}

/// Sees to it that all texts have glyphs; true when something has changed.
bool ZrLabelLayer::Layout(const Look& look)
{
    ZrGlyphAtlas& atlas = Atlas();
    if (m_isLaidOut && look == m_look)
        return false;
    m_look = look;
    m_isLaidOut = true;
    atlas.NextRound();
    m_texts.clear();
    m_texts.reserve(m_labels.size());
    for (const ZrMapLabel& label : m_labels) {
        m_texts.push_back(atlas.Layout(label.text));
        atlas.Use(m_texts.back());
    }
    return true;
}

/// Finds out which labels are shown; true when these are others than before.
bool ZrLabelLayer::Declutter(const ZrMapView& view)
{
    std::vector<bool> isShown(m_labels.size());
    std::vector<ZrLabelDeclutter::Item> items(m_labels.size());
    for (std::size_t i = 0; i < m_labels.size(); ++i) {
        const ZrMapLabel& label = m_labels[i];
        isShown[i] = IsDrawable(label) && !m_texts[i].places.empty();
        if (!isShown[i] || !m_isDecluttered)
            continue;
        const double scale = static_cast<double>(FontSize(label)) / static_cast<double>(m_atlas->FontSize());
        const QSizeF size(static_cast<double>(m_texts[i].width),
            static_cast<double>(m_atlas->Ascent() + m_atlas->Descent()));
        const double beside = besideText * m_look.pixel;
        items[i] = {ZrLabelDeclutter::Box(label, size * scale, view, m_look.pixel)
                        .adjusted(-beside, 0.0, beside, 0.0),
            label.priority};
    }
    if (m_isDecluttered)
        isShown = ZrLabelDeclutter::Shown(items, m_taken);
    if (isShown == m_isShown)
        return false;
    m_isShown = std::move(isShown);
    return true;
}

ZrMapBatch::Vertices ZrLabelLayer::Build()
{
    ZrMapBatch::Vertices vertices;
    for (std::size_t i = 0; i < m_labels.size(); ++i) {
        if (m_isShown[i])
            Add(vertices, m_labels[i], m_texts[i]);
    }
    return vertices;
}

/// First all halos of the text, then all ink: no halo covers the glyph before it.
void ZrLabelLayer::Add(
    ZrMapBatch::Vertices& vertices, const ZrMapLabel& label, const ZrGlyphAtlas::Text& text)
{
    const ZrGlyphAtlas& atlas = *m_atlas;
    const float scale = FontSize(label) / atlas.FontSize();
    const auto border = static_cast<float>(atlas.Border());
    const float range = 2.0F * border * scale; // of all distances, pixels
    const auto pixel = static_cast<float>(m_look.pixel);
    const bool isTurning = label.isTurning && !label.isOnScreen;
    const bool isLevel = label.angle == 0.0 && !isTurning;
    const auto whole = [isLevel](float v) { return isLevel ? std::round(v) : v; };

    ZrMapBatch::Vertex vertex;
    if (label.isOnScreen)
        vertex.SetPixel(label.position);
    else
        vertex.SetWorld(label.position);
    vertex.isTurning = isTurning ? 1.0F : 0.0F;
    vertex.sharpness = range;
    const auto offsetX = whole(static_cast<float>(label.offset.x()) * pixel);
    const auto offsetY = whole(static_cast<float>(-label.offset.y()) * pixel);
    const auto startX = whole(-text.width * scale * static_cast<float>(label.alignX) / 2.0F);
    const float high = (atlas.Ascent() + atlas.Descent()) * scale;
    const auto base = whole(high * static_cast<float>(label.alignY) / 2.0F - atlas.Ascent() * scale);
    const auto angle = static_cast<float>(qDegreesToRadians(std::fmod(label.angle, 360.0)));
    const float c = std::cos(angle);
    const float s = std::sin(angle);

    const auto add = [&](const QColor& colour, float width) {
        if (colour.alpha() == 0)
            return;
        vertex.SetColour(colour);
        vertex.edge = 0.5F - (width + widening) / range;
        // Of the border only what this width needs.
        const float inset = std::max(border - (width + 0.62F) / scale, 0.0F);
        for (const ZrGlyphAtlas::Place& place : text.places) {
            const ZrGlyphAtlas::Glyph& glyph = atlas.At(place.glyph);
            if (glyph.cell.isEmpty())
                continue;
            const auto put = [&](float right, float down) {
                const float x = startX + (place.x + static_cast<float>(glyph.corner.x()) + right) * scale;
                const float y = base - (place.y + static_cast<float>(glyph.corner.y()) + down) * scale;
                vertex.corner[0] = offsetX + x * c - y * s;
                vertex.corner[1] = offsetY + x * s + y * c;
                vertex.texture[0] = static_cast<float>(glyph.cell.x()) + right;
                vertex.texture[1] = static_cast<float>(glyph.cell.y()) + down;
                vertices.push_back(vertex);
            };
            const float right = static_cast<float>(glyph.cell.width()) - inset;
            const float down = static_cast<float>(glyph.cell.height()) - inset;
            put(inset, inset);
            put(inset, down);
            put(right, inset);
            put(right, inset);
            put(inset, down);
            put(right, down);
        }
    };
    // Distances beyond the border are not known.
    const float widest = std::max(border * scale - 0.75F, 0.0F);
    const float halo = std::clamp(label.haloWidth * pixel, 0.0F, widest);
    if (halo > 0.0F)
        add(Valid(label.halo, m_look.halo), halo);
    add(Valid(label.colour, m_look.colour), 0.0F);
}

void ZrLabelLayer::OnPaint(ZrGlSurface& surface, const ZrMapView& view)
{
    const double pixel
        = static_cast<double>(ZrTheme::dp) * surface.m_pixelFactor * static_cast<double>(m_scale);
    if (!std::isfinite(pixel) || pixel <= 0.0 || !m_batch.Use(surface))
        return;
    LimitAtlas(surface);
    const bool isChanged = Layout(LookOf(pixel));
    if (Declutter(view) || isChanged || !m_batch.IsUploaded())
        m_batch.Upload(surface, Build());
    if (std::find(m_isShown.begin(), m_isShown.end(), true) == m_isShown.end())
        return;
    surface.m_gl.glActiveTexture(GL_TEXTURE0);
    UploadAtlas(surface);
    m_batch.Draw(surface, view, m_atlas->Image().size());
}

/// Makes the atlas anew when it may grow beyond what the context takes.
void ZrLabelLayer::LimitAtlas(ZrGlSurface& surface)
{
    if (m_texture != 0)
        return;
    GLint largest = 0;
    surface.m_gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    if (largest >= m_largestAtlas)
        return;
    m_largestAtlas = std::max(largest, ZrGlyphAtlas::LeastSide);
    m_atlas.reset();
    m_isLaidOut = false;
}

/// Binds the texture, with the glyphs that there are.
void ZrLabelLayer::UploadAtlas(ZrGlSurface& surface)
{
    auto& gl = surface.m_gl;
    const bool isNew = m_texture == 0;
    if (isNew)
        gl.glGenTextures(1, &m_texture);
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    if (isNew) {
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    }
    if (m_revision == m_atlas->Revision())
        return;
    m_revision = m_atlas->Revision();
    const QImage& image = m_atlas->Image();
    gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, image.width(), image.height(), 0, GL_ALPHA, GL_UNSIGNED_BYTE,
        image.constBits());
}

void ZrLabelLayer::OnRelease(ZrGlSurface& surface)
{
    if (m_texture != 0)
        surface.m_gl.glDeleteTextures(1, &m_texture);
    m_batch.Release(surface);
    OnForget();
}

void ZrLabelLayer::OnForget()
{
    m_batch.Forget();
    m_texture = 0;
    m_revision = -1;
}
