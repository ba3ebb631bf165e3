#include "ZrKit/map/ZrTextRaster.h"

#include "ZrKit/map/ZrDistanceField.h"

#include <QPainter>
#include <QPen>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

constexpr int oversampling = ZrDistanceField::Oversampling;
constexpr int bareInk = 128; ///< the byte of a halo that is full, and of ink that is none

/// The glyph, wider by `Widening`, `oversampling` times as large.
QImage Mask(const QPainterPath& path, const QRect& box)
{
    QImage mask(box.size() * oversampling, QImage::Format_Alpha8);
    mask.fill(0);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(oversampling, oversampling);
    painter.translate(-box.topLeft());
    painter.setBrush(Qt::black);
    painter.setPen(QPen(Qt::black, 2.0 * static_cast<double>(ZrTextRaster::Widening), Qt::SolidLine,
        Qt::RoundCap, Qt::MiterJoin));
    painter.drawPath(path);
    return mask;
}

/// Coverage of a halo of \p width pixels at each pixel of \p mask, 0 to 1.
std::vector<float> Halo(const QImage& mask, float width)
{
    std::vector<float> values = ZrDistanceField::SquaresToInk(mask);
    const float reach = width * oversampling + 1.0F;
    for (float& value : values)
        value = std::clamp(reach - std::sqrt(value), 0.0F, 1.0F);
    return values;
}

/// Two glyphs that share a pixel.
uchar Over(uchar a, uchar b)
{
    if (a <= bareInk || b <= bareInk)
        return std::max(a, b);
    constexpr int full = 255 - bareInk;
    return static_cast<uchar>(255 - ((255 - a) * (255 - b) + full / 2) / full);
}

/// Without the empty rows and columns around it.
ZrTextRaster::Picture Trimmed(const QImage& image, const QPoint& corner)
{
    int left = image.width();
    int right = -1;
    int top = image.height();
    int bottom = -1;
    for (int y = 0; y < image.height(); ++y) {
        const uchar* row = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            if (row[x] == 0)
                continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = y;
        }
    }
    if (right < 0)
        return {};
    return {image.copy(left, top, right - left + 1, bottom - top + 1), corner + QPoint(left, top)};
}

QPoint Split(float pixels)
{
    const int quarters = static_cast<int>(std::floor(pixels * ZrTextRaster::Phases + 0.5F));
    const int whole = quarters >= 0 ? quarters / ZrTextRaster::Phases
                                    : -((ZrTextRaster::Phases - 1 - quarters) / ZrTextRaster::Phases);
    return {whole, quarters - whole * ZrTextRaster::Phases};
}

} // namespace

ZrTextRaster::Picture ZrTextRaster::StampOf(const ZrGlyphAtlas& atlas, const Key& key)
{
    const auto at = m_stamps.constFind(key);
    if (at != m_stamps.constEnd())
        return *at;
    const double scale = static_cast<double>(key.size / atlas.FontSize());
    const QPainterPath path = QTransform(scale, 0.0, 0.0, scale,
        static_cast<double>(key.phase % Phases) / Phases, static_cast<double>(key.phase / Phases) / Phases)
                                  .map(atlas.PathOf(key.glyph));
    const int margin = static_cast<int>(std::ceil(key.halo)) + 1;
    const QRect box = path.boundingRect().toAlignedRect().adjusted(-margin, -margin, margin, margin);
    Picture stamp;
    if (box.width() <= LongestSide && box.height() <= LongestSide) {
        const QImage mask = Mask(path, box);
        const std::vector<float> halo = key.halo > 0.0F ? Halo(mask, key.halo) : std::vector<float>();
        QImage image(box.size(), QImage::Format_Alpha8);
        constexpr float all = oversampling * oversampling;
        for (int y = 0; y < box.height(); ++y) {
            uchar* row = image.scanLine(y);
            for (int x = 0; x < box.width(); ++x) {
                int inkSum = 0;
                float haloSum = 0.0F;
                for (int j = y * oversampling; j < (y + 1) * oversampling; ++j) {
                    const uchar* from = mask.constScanLine(j);
                    for (int i = x * oversampling; i < (x + 1) * oversampling; ++i) {
                        inkSum += from[i];
                        if (!halo.empty())
                            haloSum += halo[static_cast<std::size_t>(j * mask.width() + i)];
                    }
                }
                const float ink = static_cast<float>(inkSum) / (255.0F * all);
                const auto inked = static_cast<int>(ink * 127.0F + 0.5F);
                const auto around = static_cast<int>(haloSum / all * 127.0F + 0.5F);
                row[x] = static_cast<uchar>(inked > 0 ? bareInk + inked : around > 0 ? 1 + around : 0);
            }
        }
        stamp = Trimmed(image, box.topLeft());
    }
    if (m_stamps.size() >= MostStamps)
        m_stamps.clear();
    m_stamps.insert(key, stamp);
    return stamp;
}

ZrTextRaster::Picture ZrTextRaster::Make(
    const ZrGlyphAtlas& atlas, const ZrGlyphAtlas::Text& text, float size, float halo)
{
    if (!(size > 0.0F) || size > LargestFont || !std::isfinite(halo)
        || halo > static_cast<float>(LongestSide))
        return {};
    const float scale = size / atlas.FontSize();
    std::vector<Picture> stamps;
    QRect box;
    for (const ZrGlyphAtlas::Place& place : text.places) {
        const float longest = static_cast<float>(LongestSide);
        if (!(std::fabs(place.x * scale) <= longest) || !(std::fabs(place.y * scale) <= longest))
            return {};
        const QPoint x = Split(place.x * scale);
        const QPoint y = Split(place.y * scale);
        Picture stamp = StampOf(atlas, {place.glyph, y.y() * Phases + x.y(), size, std::max(halo, 0.0F)});
        if (stamp.image.isNull())
            return {};
        stamp.corner += QPoint(x.x(), y.x());
        box |= QRect(stamp.corner, stamp.image.size());
        stamps.push_back(std::move(stamp));
    }
    if (box.isEmpty() || box.width() > LongestSide || box.height() > LongestSide)
        return {};
    Picture picture{QImage(box.size(), QImage::Format_Alpha8), box.topLeft()};
    picture.image.fill(0);
    for (const Picture& stamp : stamps) {
        const QPoint at = stamp.corner - box.topLeft();
        for (int y = 0; y < stamp.image.height(); ++y) {
            const uchar* from = stamp.image.constScanLine(y);
            uchar* to = picture.image.scanLine(at.y() + y) + at.x();
            for (int x = 0; x < stamp.image.width(); ++x)
                to[x] = Over(to[x], from[x]);
        }
    }
    return picture;
}
