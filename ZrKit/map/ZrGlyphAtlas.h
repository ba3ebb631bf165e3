#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrTypes.h"

#include <QFont>
#include <QHash>
#include <QImage>
#include <QPainterPath>
#include <QPair>
#include <QPoint>
#include <QPointF>
#include <QRawFont>
#include <QRect>
#include <QString>

#include <vector>

/// The glyphs of all texts that occurred, as distance fields in one image for a texture, and beside them
/// pictures of whole texts (`ZrTextRaster`).
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
/// The image grows from `LeastSide` in powers of two. When it is at its largest, what no text used in this
/// round is dropped and the rest moves together; when that is not enough, a glyph has no cell and the debug
/// log has a line. Pictures take at most half of the largest image and `MostPictures` texels in a round, and
/// drop what is not used before the image grows when that is a quarter of it: texts that change all the time
/// take the place of each other. Needs the fonts of a QGuiApplication; without one every text is empty. GUI
/// thread.
class ZR_KIT_EXPORT ZrGlyphAtlas
{
public:
    static constexpr int LeastSide = 128; ///< texels
    static constexpr int Gap = 1; ///< texels between cells
    static constexpr int LeastFont = 8; ///< pixels; smaller fonts are drawn from this size
    static constexpr int LargestFont = 96;
    static constexpr int LongestText = 200; ///< characters; a longer one is cut and ends in "…"
    static constexpr int MostKeptBytes = 20 << 20; ///< of texts that are kept as they were shaped
    static constexpr int MostPictures = 2048 * 2048; ///< texels of all pictures of a round

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

    /// What makes a picture of a text differ from others.
    struct PictureKey
    {
        QString text;
        float size = 0.0F; ///< of the font, pixels
        float halo = 0.0F; ///< pixels

        bool operator==(const PictureKey& b) const
        {
            return size == b.size && halo == b.halo && text == b.text;
        }

        friend uint qHash(const PictureKey& key, uint seed)
        {
            return ::qHash(key.text, seed) ^ ::qHash(key.size, seed) ^ (::qHash(key.halo, seed) << 1);
        }
    };

    explicit ZrGlyphAtlas(const QFont& font = QFont(), int largestSide = 2048);

    float FontSize() const { return static_cast<float>(m_font.pixelSize()); }

    float Ascent() const { return m_ascent; } ///< above the base line

    float Descent() const { return m_descent; } ///< below it

    int Border() const { return m_border; } ///< texels of a cell around the ink: the spread of the distances

    const QImage& Image() const { return m_image; } ///< `Format_Alpha8`, see `ZrDistanceField`

    int Revision() const { return m_revision; } ///< counts the changes of the image

    /// What has changed after \p revision: the cells, or the whole image.
    std::vector<QRect> ChangesSince(int revision) const;

    int GlyphCount() const
    {
        return static_cast<int>(m_glyphs.size());
    } ///< that occurred, with a cell or not

    /// Shapes \p text; control characters and line ends become blanks. What was shaped is kept for the next
    /// time, up to `MostKeptBytes`, about 200 bytes for a text of five characters: shaping costs some 10 µs.
    Text Layout(const QString& text);

    i64 ShapedCount() const { return m_shaped; } ///< texts that `Layout` had to shape

    int KeptBytes() const { return m_keptBytes; } ///< of texts as they were shaped, about

    void NextRound(); ///< nothing is used any longer

    /// Sees to it that the glyphs of \p text have cells, and keeps them until the next round. Cells may
    /// move: read them after the last `Use`. False when one found no room.
    bool Use(const Text& text);

    const Glyph& At(int glyph) const { return m_glyphs[static_cast<std::size_t>(glyph)].glyph; }

    QPainterPath PathOf(int glyph) const; ///< its outline, from its origin

    /// The picture of a text, for `PictureAt`, kept until the next round; -1 when there is none. Look for all
    /// of a round before the first is added.
    int FindPicture(const PictureKey& key);

    bool TakesPictures() const { return !m_isFullOfPictures; } ///< false when one of this round found no room

    /// Takes a picture of `Format_Alpha8` whose upper left corner is at \p corner from the begin of the
    /// text, unless there is one. -1 when there is no room. Cells may move.
    int AddPicture(const PictureKey& key, const QImage& image, const QPoint& corner);

    const Glyph& PictureAt(int picture) const
    {
        return m_pictures[static_cast<std::size_t>(picture)].glyph;
    } ///< no cell when there was no room after all

private:
    struct Entry
    {
        Glyph glyph;
        QRawFont font;
        quint32 index = 0;
        int round = 0; ///< of its last use
        bool isBlank = false;
    };

    struct Picture
    {
        Glyph glyph;
        PictureKey key;
        int round = 0;
    };

    struct Shelf
    {
        int top;
        int height;
        int right; ///< first free column
    };

    Text Shape(const QString& text);
    int IdOf(const QRawFont& font, quint32 index);
    bool Fill(Entry& entry);
    bool FindRoom(const QSize& size, QPoint& at);
    int UnusedArea() const;
    void Changed(const QRect& cell);
    void ChangedAll();
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
    int m_wholeRevision = 0; ///< after it only cells have changed
    std::vector<QRect> m_changes; ///< one for each revision after that
    int m_round = 0;
    bool m_isFullLogged = false;
    bool m_isFullOfPictures = false;
    int m_pictureArea = 0; ///< of this round, texels
    std::vector<Entry> m_glyphs;
    std::vector<Picture> m_pictures;
    std::vector<int> m_freePictures;
    QHash<PictureKey, int> m_pictureIds;
    QHash<QPair<QRawFont, quint32>, int> m_ids;
    QHash<QString, Text> m_texts; ///< as they were shaped
    int m_keptBytes = 0; ///< of `m_texts`
    i64 m_shaped = 0; ///< texts
    std::vector<Shelf> m_shelves;
};
