#pragma once

// A map in a context of its own size, and what pictures of it are compared with.

#include "GlTest.h"
#include "ZrKit/map/ZrMapLayer.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrGlSurface.h"

#include <QImage>

/// A surface that draws nothing by itself.
class MapSurface : public ZrGlSurface
{
public:
    void Render() override { }

    void OnResize(int /*width*/, int /*height*/) override { }
};

namespace map {

inline ZrMapView ViewOf(const QSize& size, const QPointF& centre, double scale, double rotation = 0.0)
{
    ZrMapView view;
    view.SetSize(size.width(), size.height());
    view.SetCentre(centre);
    view.SetScale(scale);
    view.SetRotation(rotation);
    return view;
}

/// A context with a surface to paint layers on.
class Stage
{
public:
    Stage(gl::Api api, const QSize& size)
        : m_context(api, size)
    {
        m_surface.m_background = QStringLiteral(":/back_light.png");
        m_surface.OnCreate();
        m_context.TakeErrors();
    }

    gl::Context& Context() { return m_context; }

    MapSurface& Surface() { return m_surface; }

    QImage Painted(ZrMapLayer& layer, const ZrMapView& view)
    {
        m_context.Clear(Qt::black);
        view.Apply(m_surface);
        layer.Paint(m_surface, view);
        return m_context.Read();
    }

private:
    gl::Context m_context;
    MapSurface m_surface;
};

/// The pixels that are \p colour in one image and have none of that colour within \p reach pixels in the
/// other.
inline int CountAlone(const QImage& image, const QImage& other, const QColor& colour, int reach = 1)
{
    const QRgb rgb = colour.rgb();
    const auto has = [rgb](const QImage& i, int x, int y) {
        return i.valid(x, y) && (i.pixel(x, y) | 0xff000000U) == rgb;
    };
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (!has(image, x, y))
                continue;
            bool isNear = false;
            for (int dy = -reach; dy <= reach; ++dy) {
                for (int dx = -reach; dx <= reach; ++dx)
                    isNear = isNear || has(other, x + dx, y + dy);
            }
            count += isNear ? 0 : 1;
        }
    }
    return count;
}

inline int Count(const QImage& image, const QColor& colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += (image.pixel(x, y) | 0xff000000U) == colour.rgb() ? 1 : 0;
    }
    return count;
}

} // namespace map
