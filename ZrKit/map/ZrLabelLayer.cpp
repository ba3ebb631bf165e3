#include "ZrKit/map/ZrLabelLayer.h"

#include "ZrKit/map/ZrLabelDeclutter.h"
#include "ZrKit/map/ZrMapErrors.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrLogEmit.h"
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
constexpr float widening = ZrTextRaster::Widening;

/// Pixels of its text are those of the screen.
bool IsLevel(const ZrMapLabel& label)
{
    return label.angle == 0.0 && (!label.isTurning || label.isOnScreen);
}

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

/// Corners of quads: pixels right and up of the position.
struct ZrLabelLayer::Frame
{
    ZrMapBatch::Vertex vertex; ///< with what all corners have in common
    float offsetX; ///< of the label
    float offsetY;
    float startX; ///< of the begin of the text on the base line, before it is turned
    float startY;
    float c; ///< of the angle
    float s;

    /// A quad, of texels from \p from to \p to.
    void Add(ZrMapBatch::Vertices& vertices, const QPointF& topLeft, const QSizeF& size, const QPointF& from,
        const QSizeF& texels)
    {
        const auto put = [&](double right, double down) {
            const float x = startX + static_cast<float>(topLeft.x() + right * size.width());
            const float y = startY - static_cast<float>(topLeft.y() + down * size.height());
            vertex.corner[0] = offsetX + x * c - y * s;
            vertex.corner[1] = offsetY + x * s + y * c;
            vertex.texture[0] = static_cast<float>(from.x() + right * texels.width());
            vertex.texture[1] = static_cast<float>(from.y() + down * texels.height());
            vertices.push_back(vertex);
        };
        put(0.0, 0.0);
        put(0.0, 1.0);
        put(1.0, 0.0);
        put(1.0, 0.0);
        put(0.0, 1.0);
        put(1.0, 1.0);
    }
};

ZrLabelLayer::ZrLabelLayer()
    : m_batch(QStringLiteral(":/map_label.fsh"), QStringLiteral(":/map_label_ink.fsh"))
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
    m_raster = ZrTextRaster();
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

/// Of the drawn halo, pixels; 0 for none.
float ZrLabelLayer::HaloWidth(const ZrMapLabel& label) const
{
    if (Valid(label.halo, m_look.halo).alpha() == 0)
        return 0.0F;
    // Distances beyond the border are not known.
    const float border = static_cast<float>(m_atlas->Border()) * FontSize(label) / m_atlas->FontSize();
    return std::clamp(
        label.haloWidth * static_cast<float>(m_look.pixel), 0.0F, std::max(border - 0.75F, 0.0F));
}

/// Upright texts, unless they are so large or long that a picture gains nothing.
bool ZrLabelLayer::IsForPicture(const ZrMapLabel& label, const ZrGlyphAtlas::Text& text) const
{
    const float size = FontSize(label);
    return IsDrawable(label) && IsLevel(label) && !text.places.empty() && size <= ZrTextRaster::LargestFont
        && text.width * size / m_atlas->FontSize() <= static_cast<float>(ZrTextRaster::LongestSide);
}

/// Draws it when there is none; -1 without room.
int ZrLabelLayer::PictureOf(const ZrMapLabel& label, const ZrGlyphAtlas::Text& text)
{
    const ZrGlyphAtlas::PictureKey key{label.text, FontSize(label), HaloWidth(label)};
    const int there = m_atlas->FindPicture(key);
    if (there >= 0 || !m_atlas->TakesPictures())
        return there;
    const ZrTextRaster::Picture picture = m_raster.Make(*m_atlas, text, key.size, key.halo);
    return m_atlas->AddPicture(key, picture.image, picture.corner);
}

/// Sees to it that all texts have pictures or glyphs; true when something has changed.
bool ZrLabelLayer::Layout(const Look& look)
{
    ZrGlyphAtlas& atlas = Atlas();
    if (m_isLaidOut && look == m_look)
        return false;
    m_look = look;
    m_isLaidOut = true;
    atlas.NextRound();
    m_texts.assign(m_labels.size(), Text());
    // What is there already is marked as used before anything new takes a place.
    std::vector<std::size_t> without;
    for (std::size_t i = 0; i < m_labels.size(); ++i) {
        const ZrMapLabel& label = m_labels[i];
        m_texts[i].glyphs = atlas.Layout(label.text);
        if (!IsForPicture(label, m_texts[i].glyphs))
            atlas.Use(m_texts[i].glyphs);
        else if (atlas.FindPicture({label.text, FontSize(label), HaloWidth(label)}) < 0)
            without.push_back(i);
    }
    for (const std::size_t i : without)
        PictureOf(m_labels[i], m_texts[i].glyphs);
    for (std::size_t i = 0; i < m_labels.size(); ++i) {
        const ZrMapLabel& label = m_labels[i];
        Text& text = m_texts[i];
        if (!IsForPicture(label, text.glyphs))
            continue;
        text.picture = atlas.FindPicture({label.text, FontSize(label), HaloWidth(label)});
        if (text.picture >= 0 && atlas.PictureAt(text.picture).cell.isEmpty())
            text.picture = -1;
        if (text.picture < 0)
            atlas.Use(text.glyphs);
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
        isShown[i] = IsDrawable(label) && !m_texts[i].glyphs.places.empty();
        if (!isShown[i] || !m_isDecluttered)
            continue;
        const double scale = static_cast<double>(FontSize(label)) / static_cast<double>(m_atlas->FontSize());
        const QSizeF size(static_cast<double>(m_texts[i].glyphs.width),
            static_cast<double>(m_atlas->Ascent() + m_atlas->Descent()));
        const double beside = BesideText * m_look.pixel;
        items[i] = {ZrLabelDeclutter::Box(label, size * scale, view, m_look.pixel)
                        .adjusted(-beside, 0.0, beside, 0.0),
            label.priority};
    }
    m_boxes.clear();
    if (m_isDecluttered) {
        isShown = ZrLabelDeclutter::Shown(items, m_taken);
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (isShown[i])
                m_boxes.push_back(items[i].box);
        }
    }
    if (isShown == m_isShown)
        return false;
    m_isShown = std::move(isShown);
    return true;
}

ZrMapBatch::Vertices ZrLabelLayer::Build()
{
    ZrMapBatch::Vertices vertices;
    m_hasDistances = false;
    m_hasHalos = false;
    for (std::size_t i = 0; i < m_labels.size(); ++i) {
        if (!m_isShown[i])
            continue;
        if (m_texts[i].picture >= 0) {
            AddPicture(vertices, m_labels[i], m_texts[i]);
            m_hasHalos = m_hasHalos || HaloWidth(m_labels[i]) > 0.0F;
        } else {
            AddGlyphs(vertices, m_labels[i], m_texts[i]);
            m_hasDistances = true;
        }
    }
    return vertices;
}

ZrLabelLayer::Frame ZrLabelLayer::FrameOf(const ZrMapLabel& label, const ZrGlyphAtlas::Text& text) const
{
    const float scale = FontSize(label) / m_atlas->FontSize();
    const auto pixel = static_cast<float>(m_look.pixel);
    const bool isLevel = IsLevel(label);
    const auto whole = [isLevel](float v) { return isLevel ? std::round(v) : v; };
    const float high = (m_atlas->Ascent() + m_atlas->Descent()) * scale;
    const auto angle = static_cast<float>(qDegreesToRadians(std::fmod(label.angle, 360.0)));
    Frame frame{};
    if (label.isOnScreen)
        frame.vertex.SetPixel(label.position);
    else
        frame.vertex.SetWorld(label.position);
    frame.vertex.isTurning = label.isTurning && !label.isOnScreen ? 1.0F : 0.0F;
    frame.offsetX = whole(static_cast<float>(label.offset.x()) * pixel);
    frame.offsetY = whole(static_cast<float>(-label.offset.y()) * pixel);
    frame.startX = whole(-text.width * scale * static_cast<float>(label.alignX) / 2.0F);
    frame.startY = whole(high * static_cast<float>(label.alignY) / 2.0F - m_atlas->Ascent() * scale);
    frame.c = std::cos(angle);
    frame.s = std::sin(angle);
    return frame;
}

/// Ink and halo in one quad whose pixels are the picture's.
void ZrLabelLayer::AddPicture(ZrMapBatch::Vertices& vertices, const ZrMapLabel& label, const Text& text) const
{
    const ZrGlyphAtlas::Glyph& picture = m_atlas->PictureAt(text.picture);
    Frame frame = FrameOf(label, text.glyphs);
    frame.vertex.edge = ZrTextRaster::Edge;
    frame.vertex.sharpness = ZrTextRaster::Sharpness;
    frame.vertex.SetColour(Valid(label.colour, m_look.colour));
    if (HaloWidth(label) > 0.0F)
        frame.vertex.SetHalo(Valid(label.halo, m_look.halo));
    frame.Add(vertices, picture.corner, picture.cell.size(), picture.cell.topLeft(), picture.cell.size());
}

/// First all halos of the text, then all ink: no halo covers the glyph before it.
void ZrLabelLayer::AddGlyphs(ZrMapBatch::Vertices& vertices, const ZrMapLabel& label, const Text& text) const
{
    const ZrGlyphAtlas& atlas = *m_atlas;
    const float scale = FontSize(label) / atlas.FontSize();
    const auto border = static_cast<float>(atlas.Border());
    const float range = 2.0F * border * scale; // of all distances, pixels
    Frame frame = FrameOf(label, text.glyphs);
    frame.vertex.sharpness = range;
    const auto add = [&](const QColor& colour, float width) {
        if (colour.alpha() == 0)
            return;
        frame.vertex.SetColour(colour);
        frame.vertex.edge = 0.5F - (width + widening) / range;
        // Of the border only what this width needs.
        const auto inset = static_cast<double>(std::max(border - (width + 0.62F) / scale, 0.0F));
        for (const ZrGlyphAtlas::Place& place : text.glyphs.places) {
            const ZrGlyphAtlas::Glyph& glyph = atlas.At(place.glyph);
            if (glyph.cell.isEmpty())
                continue;
            const QRectF cell = QRectF(glyph.cell).adjusted(inset, inset, -inset, -inset);
            const QPointF corner = glyph.corner
                + QPointF(static_cast<double>(place.x) + inset, static_cast<double>(place.y) + inset);
            frame.Add(vertices, corner * static_cast<double>(scale), cell.size() * static_cast<double>(scale),
                cell.topLeft(), cell.size());
        }
    };
    const float halo = HaloWidth(label);
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
    if (Declutter(view) || isChanged || !m_batch.IsUploaded()) {
        const ZrMapBatch::Vertices vertices = Build();
        m_batch.SetPlain(!m_hasDistances && !m_hasHalos);
        if (!m_batch.Use(surface))
            return;
        m_batch.Upload(surface, vertices);
    }
    if (std::find(m_isShown.begin(), m_isShown.end(), true) == m_isShown.end())
        return;
    surface.m_gl.glActiveTexture(GL_TEXTURE0);
    if (UploadAtlas(surface))
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

/// Binds the texture, with the glyphs and pictures that there are. False when there is no memory for it.
bool ZrLabelLayer::UploadAtlas(ZrGlSurface& surface)
{
    auto& gl = surface.m_gl;
    const bool isNew = m_texture == 0;
    if (isNew)
        gl.glGenTextures(1, &m_texture);
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    if (isNew) {
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    // A picture's pixels are texels; mixing four would cost a quarter of the time of a frame, and give the
    // same.
    if (isNew || m_isSmooth != m_hasDistances) {
        const GLint filter = m_hasDistances ? GL_LINEAR : GL_NEAREST;
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
        m_isSmooth = m_hasDistances;
    }
    if (m_revision == m_atlas->Revision())
        return !m_textureSize.isEmpty();
    const QImage& image = m_atlas->Image();
    const std::vector<QRect> changes = m_atlas->ChangesSince(m_revision);
    m_revision = m_atlas->Revision();
    gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    const GLenum error = ZrMapErrors::Of(gl, [&] {
        if (m_textureSize != image.size()) {
            gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, image.width(), image.height(), 0, GL_ALPHA,
                GL_UNSIGNED_BYTE, image.constBits());
            return;
        }
        for (const QRect& cell : changes) {
            m_rows.resize(static_cast<std::size_t>(cell.width()) * static_cast<std::size_t>(cell.height()));
            uchar* to = m_rows.data();
            for (int y = cell.top(); y <= cell.bottom(); ++y, to += cell.width())
                std::copy_n(image.constScanLine(y) + cell.x(), cell.width(), to);
            gl.glTexSubImage2D(GL_TEXTURE_2D, 0, cell.x(), cell.y(), cell.width(), cell.height(), GL_ALPHA,
                GL_UNSIGNED_BYTE, m_rows.data());
        }
    });
    m_textureSize = error == GL_NO_ERROR ? image.size() : QSize();
    if (error != GL_NO_ERROR && !m_isFailureLogged) {
        ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrKit-ZrLabelLayer",
            "No texture of {} by {} for labels, none is drawn: error {}", image.width(), image.height(),
            error);
        m_isFailureLogged = true;
    }
    return error == GL_NO_ERROR;
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
    m_textureSize = QSize();
    m_revision = -1;
    m_isFailureLogged = false;
}
