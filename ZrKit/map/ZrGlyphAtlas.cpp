#include "ZrKit/map/ZrGlyphAtlas.h"

#include "ZrKit/map/ZrDistanceField.h"
#include "ZrUtil/ZrLogEmit.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QGuiApplication>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

/// The largest power of two that is not above \p side.
int PowerOfTwo(int side)
{
    int power = ZrGlyphAtlas::LeastSide;
    while (power <= side / 2)
        power *= 2;
    return power;
}

/// Of one that is kept, beside its characters and places: a node of the hash, what is before both in memory.
constexpr int bytesOfText = 150;

/// Of cells whose changes are told apart.
constexpr std::size_t mostChanges = 256;

int Area(const QSize& cell)
{
    return cell.isEmpty() ? 0 : (cell.width() + ZrGlyphAtlas::Gap) * (cell.height() + ZrGlyphAtlas::Gap);
}

QImage Empty(int width, int height)
{
    QImage image(width, height, QImage::Format_Alpha8);
    image.fill(0);
    return image;
}

void Copy(const QImage& from, const QRect& area, QImage& to, const QPoint& at)
{
    for (int y = 0; y < area.height(); ++y)
        std::memcpy(to.scanLine(at.y() + y) + at.x(), from.constScanLine(area.y() + y) + area.x(),
            static_cast<std::size_t>(area.width()));
}

/// One line without anything that would end it.
QString Line(const QString& text)
{
    QString line = text;
    if (line.size() > ZrGlyphAtlas::LongestText) {
        line.truncate(ZrGlyphAtlas::LongestText - 1);
        if (QStringView(line).back().isHighSurrogate())
            line.chop(1);
        line += QChar(0x2026);
    }
    for (QChar& c : line) {
        const QChar::Category category = c.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line
            || category == QChar::Separator_Paragraph || c == QChar(0xFFFC))
            c = QLatin1Char(' ');
    }
    return line;
}

} // namespace

ZrGlyphAtlas::ZrGlyphAtlas(const QFont& font, int largestSide)
    : m_font(font)
    , m_largestSide(PowerOfTwo(largestSide))
    , m_image(Empty(LeastSide, LeastSide))
{
    const int size = font.pixelSize() > 0 || !qGuiApp ? font.pixelSize() : QFontInfo(font).pixelSize();
    m_font.setPixelSize(std::clamp(size, LeastFont, LargestFont));
    // Metrics that are in proportion at every size.
    m_font.setHintingPreference(QFont::PreferNoHinting);
    m_border = std::max(m_font.pixelSize() / 5, 3);
    if (!qGuiApp)
        return;
    const QFontMetricsF metrics(m_font);
    m_ascent = static_cast<float>(metrics.ascent());
    m_descent = static_cast<float>(metrics.descent());
}

ZrGlyphAtlas::Text ZrGlyphAtlas::Layout(const QString& text)
{
    if (!qGuiApp || text.isEmpty())
        return {};
    const auto known = m_texts.constFind(text);
    if (known != m_texts.constEnd())
        return *known;
    Text shaped = Shape(text);
    if (text.size() > LongestText)
        return shaped;
    const int bytes = bytesOfText + text.size() * static_cast<int>(sizeof(QChar))
        + static_cast<int>(shaped.places.size() * sizeof(Place));
    if (m_keptBytes > MostKeptBytes - bytes) {
        m_texts.clear();
        m_keptBytes = 0;
    }
    m_keptBytes += bytes;
    // A copy of its own: the characters may belong to the caller.
    m_texts.insert(QString(text.constData(), text.size()), shaped);
    return shaped;
}

ZrGlyphAtlas::Text ZrGlyphAtlas::Shape(const QString& text)
{
    ++m_shaped;
    Text result;
    QTextLayout layout(Line(text), m_font);
    QTextOption option;
    option.setUseDesignMetrics(true);
    layout.setTextOption(option);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid())
        return result;
    result.width = static_cast<float>(line.horizontalAdvance());
    const QList<QGlyphRun> runs = layout.glyphRuns();
    for (const QGlyphRun& run : runs) {
        const QRawFont font = run.rawFont();
        const QVector<quint32> indexes = run.glyphIndexes();
        const QVector<QPointF> positions = run.positions();
        for (int i = 0; i < std::min(indexes.size(), positions.size()); ++i) {
            const int id = IdOf(font, indexes[i]);
            if (m_glyphs[static_cast<std::size_t>(id)].isBlank)
                continue;
            result.places.push_back({id, static_cast<float>(positions[i].x()),
                static_cast<float>(positions[i].y() - line.ascent())});
        }
    }
    return result;
}

int ZrGlyphAtlas::IdOf(const QRawFont& font, quint32 index)
{
    const auto key = qMakePair(font, index);
    const auto at = m_ids.constFind(key);
    if (at != m_ids.constEnd())
        return *at;
    Entry entry;
    entry.font = font;
    entry.index = index;
    entry.round = m_round - 1;
    entry.isBlank = font.pathForGlyph(index).boundingRect().isEmpty();
    const int id = GlyphCount();
    m_glyphs.push_back(entry);
    m_ids.insert(key, id);
    return id;
}

bool ZrGlyphAtlas::Use(const Text& text)
{
    bool isComplete = true;
    for (const Place& place : text.places)
        m_glyphs[static_cast<std::size_t>(place.glyph)].round = m_round;
    for (const Place& place : text.places) {
        Entry& entry = m_glyphs[static_cast<std::size_t>(place.glyph)];
        if (entry.glyph.cell.isEmpty())
            isComplete = Fill(entry) && isComplete;
    }
    return isComplete;
}

/// Draws the glyph into a cell of its own.
bool ZrGlyphAtlas::Fill(Entry& entry)
{
    const QPainterPath path = entry.font.pathForGlyph(entry.index);
    const QRect box = path.boundingRect().toAlignedRect().adjusted(-m_border, -m_border, m_border, m_border);
    QPoint at;
    const bool hasRoom = box.width() <= ZrDistanceField::LargestSide
        && box.height() <= ZrDistanceField::LargestSide && FindRoom(box.size(), at);
    if (!hasRoom) {
        if (!m_isFullLogged)
            ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrKit-ZrGlyphAtlas",
                "No room for a glyph of {} x {} in {} x {} texels, it is not drawn", box.width(),
                box.height(), m_image.width(), m_image.height());
        m_isFullLogged = true;
        return false;
    }
    const QImage field = ZrDistanceField::Make(path, box, m_border);
    entry.glyph.cell = QRect(at, box.size());
    entry.glyph.corner = box.topLeft();
    Copy(field, field.rect(), m_image, at);
    Changed(entry.glyph.cell);
    return true;
}

QPainterPath ZrGlyphAtlas::PathOf(int glyph) const
{
    const Entry& entry = m_glyphs[static_cast<std::size_t>(glyph)];
    return entry.font.pathForGlyph(entry.index);
}

void ZrGlyphAtlas::NextRound()
{
    ++m_round;
    m_isFullOfPictures = false;
    m_pictureArea = 0;
}

int ZrGlyphAtlas::FindPicture(const PictureKey& key)
{
    const int id = m_pictureIds.value(key, -1);
    if (id < 0)
        return -1;
    Picture& picture = m_pictures[static_cast<std::size_t>(id)];
    if (picture.round != m_round)
        m_pictureArea += Area(picture.glyph.cell.size());
    picture.round = m_round;
    return id;
}

int ZrGlyphAtlas::AddPicture(const PictureKey& key, const QImage& image, const QPoint& corner)
{
    const qint64 side = m_largestSide;
    const int most = static_cast<int>(std::min<qint64>(side * side / 2, MostPictures));
    if (image.isNull() || image.format() != QImage::Format_Alpha8 || image.width() > m_largestSide
        || image.height() > m_largestSide)
        return -1;
    const int there = FindPicture(key);
    if (there >= 0)
        return there;
    const int area = Area(image.size());
    // Growing moves nothing and costs an upload of all, dropping is worth it when much is free afterwards.
    QPoint at;
    bool hasRoom = area <= most - m_pictureArea && PlaceOnShelf(image.size(), at);
    if (!hasRoom && area <= most - m_pictureArea) {
        if (UnusedArea() >= m_image.width() * m_image.height() / 4)
            DropUnused();
        hasRoom = FindRoom(image.size(), at);
    }
    if (!hasRoom) {
        m_isFullOfPictures = true;
        return -1;
    }
    int id = static_cast<int>(m_pictures.size());
    if (m_freePictures.empty()) {
        m_pictures.emplace_back();
    } else {
        id = m_freePictures.back();
        m_freePictures.pop_back();
    }
    m_pictures[static_cast<std::size_t>(id)] = {{QRect(at, image.size()), corner}, key, m_round};
    m_pictureIds.insert(key, id);
    m_pictureArea += area;
    Copy(image, image.rect(), m_image, at);
    Changed(QRect(at, image.size()));
    return id;
}

/// Texels of cells that nothing used in this round.
int ZrGlyphAtlas::UnusedArea() const
{
    int area = 0;
    for (const Entry& entry : m_glyphs)
        area += entry.round != m_round ? Area(entry.glyph.cell.size()) : 0;
    for (const Picture& picture : m_pictures)
        area += picture.round != m_round ? Area(picture.glyph.cell.size()) : 0;
    return area;
}

void ZrGlyphAtlas::Changed(const QRect& cell)
{
    ++m_revision;
    m_changes.push_back(cell);
    if (m_changes.size() > mostChanges)
        ChangedAll();
}

void ZrGlyphAtlas::ChangedAll()
{
    m_wholeRevision = ++m_revision;
    m_changes.clear();
}

std::vector<QRect> ZrGlyphAtlas::ChangesSince(int revision) const
{
    if (revision < m_wholeRevision)
        return {m_image.rect()};
    const auto known = static_cast<std::size_t>(revision - m_wholeRevision);
    return {
        m_changes.begin() + static_cast<std::ptrdiff_t>(std::min(known, m_changes.size())), m_changes.end()};
}

bool ZrGlyphAtlas::FindRoom(const QSize& size, QPoint& at)
{
    while (!PlaceOnShelf(size, at)) {
        if (!Grow())
            return DropUnused() && PlaceOnShelf(size, at);
    }
    return true;
}

/// A place on the lowest shelf that is high enough, or on a new one.
bool ZrGlyphAtlas::PlaceOnShelf(const QSize& size, QPoint& at)
{
    const int width = size.width() + Gap;
    const int height = size.height() + Gap;
    Shelf* best = nullptr;
    for (Shelf& shelf : m_shelves) {
        if (shelf.height >= height && shelf.right + width <= m_image.width()
            && (!best || shelf.height < best->height))
            best = &shelf;
    }
    // A new shelf rather than a waste of a third.
    const int top = m_shelves.empty() ? 0 : m_shelves.back().top + m_shelves.back().height;
    const bool hasSpace = top + height <= m_image.height() && width <= m_image.width();
    if ((!best || best->height > height + height / 3) && hasSpace) {
        m_shelves.push_back({top, height, 0});
        best = &m_shelves.back();
    }
    if (!best)
        return false;
    at = QPoint(best->right, best->top);
    best->right += width;
    return true;
}

bool ZrGlyphAtlas::Grow()
{
    const bool isWider = m_image.width() <= m_image.height();
    const int width = isWider ? m_image.width() * 2 : m_image.width();
    const int height = isWider ? m_image.height() : m_image.height() * 2;
    if (width > m_largestSide || height > m_largestSide)
        return false;
    QImage image = Empty(width, height);
    Copy(m_image, m_image.rect(), image, QPoint(0, 0));
    m_image = image;
    ChangedAll();
    return true;
}

/// Takes the cells of what is not in use and moves the others together; false when all are in use.
bool ZrGlyphAtlas::DropUnused()
{
    std::vector<Glyph*> kept;
    bool isAnyDropped = false;
    for (Entry& entry : m_glyphs) {
        if (entry.glyph.cell.isEmpty())
            continue;
        if (entry.round == m_round) {
            kept.push_back(&entry.glyph);
        } else {
            entry.glyph.cell = QRect();
            isAnyDropped = true;
        }
    }
    for (auto at = m_pictureIds.begin(); at != m_pictureIds.end();) {
        Picture& picture = m_pictures[static_cast<std::size_t>(*at)];
        if (picture.round == m_round) {
            kept.push_back(&picture.glyph);
            ++at;
        } else {
            m_freePictures.push_back(*at);
            picture = Picture();
            at = m_pictureIds.erase(at);
            isAnyDropped = true;
        }
    }
    if (!isAnyDropped)
        return false;
    // In the order of places, which those of a hash are not: the same texts give the same image.
    std::sort(kept.begin(), kept.end(), [](const Glyph* a, const Glyph* b) {
        return a->cell.height() != b->cell.height() ? a->cell.height() > b->cell.height()
            : a->cell.y() != b->cell.y()            ? a->cell.y() < b->cell.y()
                                                    : a->cell.x() < b->cell.x();
    });
    const QImage old = m_image;
    m_image = Empty(old.width(), old.height());
    m_shelves.clear();
    for (Glyph* glyph : kept) {
        const QRect from = glyph->cell;
        QPoint at;
        glyph->cell = QRect();
        if (PlaceOnShelf(from.size(), at)) {
            glyph->cell = QRect(at, from.size());
            Copy(old, from, m_image, at);
        }
    }
    ChangedAll();
    return true;
}
