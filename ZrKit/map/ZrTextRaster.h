#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrGlyphAtlas.h"

#include <QHash>
#include <QImage>
#include <QPoint>

/// Draws whole texts at the size that they have on screen: one picture instead of many glyphs, and sharper at
/// small sizes than distances are.
///
/// \code
/// const ZrTextRaster::Picture picture = raster.Make(atlas, atlas.Layout(text), 13.0F, 1.5F);
/// \endcode
///
/// A byte of a picture holds coverage of ink and of halo: 128 + 127 · ink where there is ink, which the halo
/// is under wholly, 1 + 127 · halo around it, 0 beyond. In the shader of labels that is an edge at `Edge`
/// with `Sharpness`. Strokes are `Widening` pixels wider to either side than the outlines, for thin ones come
/// out paler than their colour. Glyphs stand at quarters of a pixel, the text begins at a whole one.
///
/// Drawn glyphs are kept, `MostStamps` at most. Belongs to one atlas. GUI thread only.
class ZR_KIT_EXPORT ZrTextRaster
{
public:
    static constexpr int Phases = 4; ///< places of a glyph in a pixel, in either direction
    static constexpr float LargestFont = 48.0F; ///< pixels; larger texts change little by it
    static constexpr int LongestSide = 1024; ///< of a picture, pixels
    static constexpr int MostStamps = 4096;
    static constexpr float Widening = 0.12F; ///< pixels
    static constexpr float Edge = 191.5F / 255.0F; ///< the byte where ink is a half
    static constexpr float Sharpness = 255.0F / 127.0F; ///< change of ink for that of the byte

    struct Picture
    {
        QImage image; ///< `Format_Alpha8`; null for nothing to be drawn, or too large
        QPoint corner; ///< its upper left one, from the begin of the text on the base line
    };

    /// \p size of the font and width of the \p halo in pixels; without a halo from 0 down.
    Picture Make(const ZrGlyphAtlas& atlas, const ZrGlyphAtlas::Text& text, float size, float halo);

    int StampCount() const { return m_stamps.size(); } ///< drawn glyphs that are kept

private:
    /// A glyph at one size in one place of a pixel.
    struct Key
    {
        int glyph;
        int phase;
        float size;
        float halo;

        bool operator==(const Key& b) const
        {
            return glyph == b.glyph && phase == b.phase && size == b.size && halo == b.halo;
        }

        friend uint qHash(const Key& key, uint seed)
        {
            return ::qHash(key.glyph * Phases * Phases + key.phase, seed) ^ ::qHash(key.size, seed)
                ^ (::qHash(key.halo, seed) << 1);
        }
    };

    Picture StampOf(const ZrGlyphAtlas& atlas, const Key& key);

    QHash<Key, Picture> m_stamps;
};
