#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QPointF>
#include <QRectF>

class ZrGlSurface;

/// Where a map looks: the world position in the middle of a view, its scale and its rotation, in doubles.
///
/// \code
/// ZrMapView view;
/// view.SetSize(width, height); // device pixels
/// view.Fit(track.Bounds(), 40.0);
/// view.Apply(surface); // once for each frame, before the layers are painted
/// \endcode
///
/// World positions are metres of a projected grid, x to the east, y to the north. Pixels are device pixels
/// of the view, y down from its upper left corner. Map pixels are pixels from the middle of the view before
/// the rotation, y up: what the primitives of a surface take after `Apply`. Values that are not finite are
/// ignored. A plain value; one thread at a time.
class ZR_KIT_EXPORT ZrMapView
{
public:
    static constexpr double NearestScale = 0.001; ///< metres per pixel
    static constexpr double FarthestScale = 50000.0;

    int Width() const { return m_width; }

    int Height() const { return m_height; }

    QPointF Centre() const { return m_centre; } ///< world

    double Scale() const { return m_scale; } ///< metres per pixel

    double Rotation() const { return m_rotation; } ///< of the map, degrees counter-clockwise, 0 to 360

    bool IsEmpty() const { return m_width <= 0 || m_height <= 0; } ///< has no pixels

    void SetSize(int width, int height); ///< device pixels; below 0 is 0
    void SetCentre(const QPointF& world);
    void SetScale(double metresPerPixel); ///< clamped to the range of scales
    void SetRotation(double degrees); ///< of the map, counter-clockwise; a heading here points up

    QPointF ToPixel(const QPointF& world) const;
    QPointF ToWorld(const QPointF& pixel) const;
    QPointF ToMapPixel(const QPointF& world) const;

    /// The box of world positions that holds all that is visible; empty without pixels.
    QRectF Bounds() const;

    /// Moves the map with a finger that moved by \p pixels.
    void Pan(const QPointF& pixels);

    /// Shows the map \p factor times as large; the world position under \p pixel stays there.
    void ZoomAbout(const QPointF& pixel, double factor);

    /// Turns the map counter-clockwise; the world position under \p pixel stays there.
    void RotateAbout(const QPointF& pixel, double degrees);

    /// Shows all of \p world with \p margin pixels around it, as large as that allows; keeps the rotation.
    /// An empty rectangle is centred at the scale there is.
    void Fit(const QRectF& world, double margin);

    /// Sets size, rotation and projection of \p surface, so that one of its world units is a map pixel.
    void Apply(ZrGlSurface& surface) const;

private:
    QPointF Turned(const QPointF& offset, double degrees) const;

    int m_width = 0;
    int m_height = 0;
    QPointF m_centre;
    double m_scale = 1.0;
    double m_rotation = 0.0;
};
