#pragma once

// A surface in a context of 64 by 64 pixels, and what its tests compare.

#include "GlTest.h"
#include "ZrUtil/ZrGlSurface.h"

#include <QImage>

#include <algorithm>
#include <cstdlib>

/// A surface that draws nothing by itself.
class GlView : public ZrGlSurface
{
public:
    static constexpr int side = 64;

    GlView()
    {
        ZrglSetViewport(0, 0, side, side);
        zrgl2dViewport(side, side);
        // One unit is one pixel, y up.
        zrgl2dProjection(0, side, 0, side, aspectStretch);
    }

    void Render() override { }

    void OnResize(int /*width*/, int /*height*/) override { }
};

namespace gl {

/// The largest difference of two colours in any channel.
inline int Distance(const QColor& a, const QColor& b)
{
    return std::max({std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
        std::abs(a.blue() - b.blue()), std::abs(a.alpha() - b.alpha())});
}

/// What is different between two images, by more than \p tolerance in any channel; empty for nothing.
inline QString Difference(const QImage& actual, const QImage& expected, int tolerance = 0)
{
    if (actual.size() != expected.size())
        return QStringLiteral("%1 x %2 pixels instead of %3 x %4")
            .arg(actual.width())
            .arg(actual.height())
            .arg(expected.width())
            .arg(expected.height());
    int count = 0;
    QString first;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QColor a = actual.pixelColor(x, y);
            const QColor b = expected.pixelColor(x, y);
            if (Distance(a, b) <= tolerance)
                continue;
            if (count++ == 0)
                first = QStringLiteral("%1, %2 is %3 instead of %4")
                            .arg(x)
                            .arg(y)
                            .arg(a.name(QColor::HexArgb), b.name(QColor::HexArgb));
        }
    }
    return count == 0 ? QString() : QStringLiteral("%1 pixels, the first at %2").arg(count).arg(first);
}

/// The pixels that are not \p background.
inline int CountNot(const QImage& image, const QColor& background)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) != background ? 1 : 0;
    }
    return count;
}

} // namespace gl
