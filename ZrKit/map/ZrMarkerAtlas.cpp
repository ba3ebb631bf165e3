#include "ZrKit/map/ZrMarkerAtlas.h"

#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrLogEmit.h"
#include "ZrUtil/ZrMarkerImages.h"

#include <algorithm>

namespace {

static_assert(ZrGlSurface::MarkerCount <= ZrMarkerAtlas::CellCount, "each image has a cell");

constexpr int cellsOfRow = ZrMarkerAtlas::Side / ZrMarkerAtlas::Cell;

/// The means of four pixels each.
QImage Halved(const QImage& image)
{
    QImage half(image.width() / 2, image.height() / 2, QImage::Format_Alpha8);
    for (int y = 0; y < half.height(); ++y) {
        const uchar* const a = image.constScanLine(2 * y);
        const uchar* const b = image.constScanLine(2 * y + 1);
        uchar* const to = half.scanLine(y);
        for (int x = 0; x < half.width(); ++x)
            to[x] = static_cast<uchar>((a[2 * x] + a[2 * x + 1] + b[2 * x] + b[2 * x + 1] + 2) / 4);
    }
    return half;
}

} // namespace

ZrMarkerAtlas::ZrMarkerAtlas()
    : m_hasImage(CellCount, false)
{
    QImage all(Side, Side, QImage::Format_Alpha8);
    all.fill(0);
    for (int i = 0; i < ZrGlSurface::MarkerCount; ++i) {
        const char* const path = ZrMarkerImages::Paths[static_cast<std::size_t>(i)];
        QImage image(QString::fromLatin1(path));
        if (image.isNull()) {
            ZR_LOG(ZR_DEBUG_LOG_WARNING, "ZrKit-ZrMarkerAtlas", "Marker image load failed: {}", path);
            continue;
        }
        if (image.size() != QSize(ImageSide, ImageSide))
            image = image.scaled(ImageSide, ImageSide, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        image = image.convertToFormat(QImage::Format_Alpha8);
        m_hasImage[static_cast<std::size_t>(i)] = true;
        const int left = i % cellsOfRow * Cell + Border;
        const int top = i / cellsOfRow * Cell + Border;
        for (int y = 0; y < ImageSide; ++y)
            std::copy_n(image.constScanLine(y), ImageSide, all.scanLine(top + y) + left);
    }
    m_levels.push_back(all);
    while (m_levels.back().width() > 1)
        m_levels.push_back(Halved(m_levels.back()));
}

bool ZrMarkerAtlas::HasImage(int index) const
{
    return index >= 0 && index < CellCount && m_hasImage[static_cast<std::size_t>(index)];
}

QRectF ZrMarkerAtlas::CellOf(int index)
{
    if (index < 0 || index >= CellCount)
        return {};
    constexpr double cell = static_cast<double>(Cell) / Side;
    return {index % cellsOfRow * cell, index / cellsOfRow * cell, cell, cell};
}
