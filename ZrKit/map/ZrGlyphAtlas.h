#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QFont>
#include <QHash>
#include <QImage>
#include <QPair>
#include <QPointF>
#include <QRawFont>
#include <QRect>
#include <QString>

#include <vector>

/// The glyphs of all texts that occurred, as distance fields in one image for a texture.
///
/// \code
/// ZrGlyphAtlas atlas(ZrTheme::font);
/// const ZrGlyphAtlas::Text text = atlas.Layout(QStringLiteral("51° 7' N"));
/// atlas.NextRound(); // what is not used from here on may go
/// atlas.Use(text);
/// for (const ZrGlyphAtlas::Place& place : text.places)
///     Draw(atlas.At(place.glyph).cell, place.x, place.y);
/// \endcode
///
/// Texts are shaped: kerning, accents, scripts that join or run to the left, and other fonts where the one
/// asked for lacks a character. A glyph without an outline (a blank, a coloured picture) takes its room and
/// has no cell. Sizes are pixels of the font's design size, y down.
///
/// The image grows from `LeastSide` in powers of two. When it is at its largest, glyphs that no text used in
/// this round are dropped and the others move together; when that is not enough, a glyph has no cell and the
/// debug log has a line. Needs the fonts of a QGuiApplication; without one every text is empty. GUI thread.
class ZR_KIT_EXPORT ZrGlyphAtlas
{
public:
    static constexpr int LeastSide = 128; ///< texels
    static constexpr int Gap = 1; ///< texels between cells
    static constexpr int LeastFont = 8; ///< pixels; smaller fonts are drawn from this size
    static constexpr int LargestFont = 96;
    static constexpr int LongestText = 200; ///< characters; a longer one is cut and ends in "…"

    struct Glyph
    {
        QRect cell; ///< texels, with `Border` around the ink; empty for none
        QPointF corner; ///< upper left corner of the cell, from the origin of the glyph
    };

    struct Place
    {
        int glyph = 0; ///< for `At`
        float x = 0.0F; ///< of its origin, from the begin of the text
        float y = 0.0F; ///< below the base line
    };

    struct Text
    {
        std::vector<Place> places;
        float width = 0.0F;
    };

    explicit ZrGlyphAtlas(const QFont& font = QFont(), int largestSide = 2048);

    float FontSize() const { return static_cast<float>(m_font.pixelSize()); }

    float Ascent() const { return m_ascent; } ///< above the base line

    float Descent() const { return m_descent; } ///< below it

    int Border() const { return m_border; } ///< texels of a cell around the ink: the spread of the distances

    const QImage& Image() const { return m_image; } ///< `Format_Alpha8`, see `ZrDistanceField`

    int Revision() const { return m_revision; } ///< counts the changes of the image

    int GlyphCount() const
    {
        return static_cast<int>(m_glyphs.size());
    } ///< that occurred, with a cell or not

    /// Shapes \p text; control characters and line ends become blanks.
    Text Layout(const QString& text);

    void NextRound() { ++m_round; } ///< nothing is used any longer

    /// Sees to it that the glyphs of \p text have cells, and keeps them until the next round. Cells may
    /// move: read them after the last `Use`. False when one found no room.
    bool Use(const Text& text);

    const Glyph& At(int glyph) const { return m_glyphs[static_cast<std::size_t>(glyph)].glyph; }

private:
    struct Entry
    {
        Glyph glyph;
        QRawFont font;
        quint32 index = 0;
        int round = 0; ///< of its last use
        bool isBlank = false;
    };

    struct Shelf
    {
        int top;
        int height;
        int right; ///< first free column
    };

    int IdOf(const QRawFont& font, quint32 index);
    bool Fill(Entry& entry);
    bool FindRoom(const QSize& size, QPoint& at);
    bool PlaceOnShelf(const QSize& size, QPoint& at);
    bool Grow();
    bool DropUnused();

    QFont m_font;
    int m_largestSide;
    int m_border;
    float m_ascent = 0.0F;
    float m_descent = 0.0F;
    QImage m_image;
    int m_revision = 0;
    int m_round = 0;
    bool m_isFullLogged = false;
    std::vector<Entry> m_glyphs;
    QHash<QPair<QRawFont, quint32>, int> m_ids;
    std::vector<Shelf> m_shelves;
};
