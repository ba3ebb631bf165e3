#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrGlyphAtlas.h"
#include "ZrKit/map/ZrMapBatch.h"
#include "ZrKit/map/ZrMapLabel.h"
#include "ZrKit/map/ZrMapLayer.h"
#include "ZrKit/map/ZrTextRaster.h"

#include <QRectF>
#include <QSizeF>

#include <memory>
#include <vector>

/// Texts on a map: any number of them in one draw call, upright whatever the rotation of the map, sharp at
/// any size and angle, with a halo that keeps them readable on every background.
///
/// \code
/// ZrMapLabel label;
/// label.text = wpt.name;
/// label.position = {wpt.x, wpt.y};
/// label.offset = {12, 0};
/// label.alignY = ZrMapLabel::alignMiddle;
/// m_labels.SetLabels({label});
/// m_labels.Paint(*this, m_view);
/// \endcode
///
/// Sizes are design pixels, shown `ZrTheme::dp` × the surface's pixels for each widget pixel × `SetScale`
/// times as large. What stands upright is drawn from pictures of whole texts, pixel by pixel; what is turned,
/// very large or long from distances to the edges of glyphs. Vertices and what is new of both are uploaded
/// when labels, sizes or colours of the theme have changed, and while labels are decluttered when other ones
/// are shown; not when only the view moved. Texts that move all the time belong into a layer of their own.
///
/// Where there is no memory for vertices or texture, nothing is drawn until they change, and the debug log
/// has a line, one for each context.
///
/// A label whose position is not finite, or a world position beyond 100,000 km, is not drawn. GUI thread
/// only.
class ZR_KIT_EXPORT ZrLabelLayer : public ZrMapLayer
{
public:
    static constexpr float LeastSize = 4.0F; ///< of a font, pixels on screen
    static constexpr float LargestSize = 400.0F;
    static constexpr double BesideText = 2.0; ///< design pixels that each label keeps free left and right

    ZrLabelLayer();

    void SetLabels(std::vector<ZrMapLabel> labels); ///< instead of all there were

    const std::vector<ZrMapLabel>& Labels() const { return m_labels; }

    void SetFont(const QFont& font); ///< its size is not that of the labels; without a call `ZrTheme::font`
    void SetScale(float scale); ///< of all sizes, above 0; 1 at first

    /// Draws only labels that do not overlap those of a higher priority, nor \p taken: what else lies on the
    /// map, in pixels of the view.
    void SetDeclutter(bool isOn, std::vector<QRectF> taken = {});

    /// The labels that were drawn by the last `Paint`, by index; empty before.
    const std::vector<bool>& Shown() const { return m_isShown; }

    /// Where those are, pixels of the view: for other layers to keep clear of them. None while labels may
    /// overlap.
    const std::vector<QRectF>& Boxes() const { return m_boxes; }

    /// The size of a text in design pixels: its advance, and ascent and descent of the font.
    QSizeF TextSize(const QString& text, float size = 0.0F);

protected:
    void OnPaint(ZrGlSurface& surface, const ZrMapView& view) override;
    void OnRelease(ZrGlSurface& surface) override;
    void OnForget() override;

private:
    /// What the vertices depend on beside the labels.
    struct Look
    {
        double pixel = 0.0; ///< pixels for a design pixel
        float size = 0.0F; ///< of `ZrTheme::font`, design pixels
        QString family; ///< of `ZrTheme`
        QColor colour;
        QColor halo;

        bool operator==(const Look& b) const
        {
            return pixel == b.pixel && size == b.size && family == b.family && colour == b.colour
                && halo == b.halo;
        }
    };

    /// A label's text as it is drawn.
    struct Text
    {
        ZrGlyphAtlas::Text glyphs;
        int picture = -1; ///< of the atlas; -1: from its glyphs
    };

    /// Where the quads of a label are.
    struct Frame;

    Look LookOf(double factor) const;
    ZrGlyphAtlas& Atlas();
    float FontSize(const ZrMapLabel& label) const;
    float HaloWidth(const ZrMapLabel& label) const;
    bool Layout(const Look& look);
    bool IsForPicture(const ZrMapLabel& label, const ZrGlyphAtlas::Text& text) const;
    int PictureOf(const ZrMapLabel& label, const ZrGlyphAtlas::Text& text);
    bool Declutter(const ZrMapView& view);
    ZrMapBatch::Vertices Build();
    Frame FrameOf(const ZrMapLabel& label, const ZrGlyphAtlas::Text& text) const;
    void AddPicture(ZrMapBatch::Vertices& vertices, const ZrMapLabel& label, const Text& text) const;
    void AddGlyphs(ZrMapBatch::Vertices& vertices, const ZrMapLabel& label, const Text& text) const;
    void LimitAtlas(ZrGlSurface& surface);
    bool UploadAtlas(ZrGlSurface& surface);

    std::vector<ZrMapLabel> m_labels;
    std::vector<Text> m_texts; ///< of the labels
    std::vector<bool> m_isShown;
    std::vector<QRectF> m_taken;
    std::vector<QRectF> m_boxes; ///< of the labels that are shown
    QFont m_font;
    bool m_hasFont = false;
    float m_scale = 1.0F;
    bool m_isDecluttered = false;
    bool m_isLaidOut = false;
    Look m_look;
    std::unique_ptr<ZrGlyphAtlas> m_atlas;
    ZrTextRaster m_raster; ///< of the atlas
    QString m_atlasFamily; ///< of the theme when it was made
    int m_largestAtlas = 4096; ///< that the context takes, texels
    ZrMapBatch m_batch;
    unsigned m_texture = 0;
    int m_revision = -1; ///< of the atlas in the texture
    QSize m_textureSize; ///< empty while there was no memory for it
    std::vector<unsigned char> m_rows; ///< of a cell on its way to the texture
    bool m_hasDistances = false; ///< among the vertices are those of glyphs
    bool m_hasHalos = false; ///< of pictures
    bool m_isSmooth = false; ///< texels of the texture are mixed
    bool m_isFailureLogged = false;
};
