#pragma once

#include "ZrUtil/IPersistable.h"
#include "ZrUtil/ZrExport.h"

#include <QMatrix4x4>

/// How a view fits the rectangle that is asked for into its pixels.
enum eAspect : int
{
    aspectStretch = 0, ///< both scales as they come
    aspectFollowX = 1, ///< the y scale is that of x
    aspectFollowY = 2, ///< the x scale is that of y
    aspectAuto = 3 ///< the larger scale wins: the whole rectangle stays visible
};

/// The view transform of a drawing surface: a world rectangle, an aspect rule and a rotation become a
/// projection matrix, the world units per pixel, and the way between pixels and world.
///
/// \code
/// view.zrgl2dViewport(800, 600); // pixels
/// view.zrgl2dProjection(0.0F, 100.0F, 0.0F, 50.0F, aspectAuto); // left, right, bottom, top in world units
/// \endcode
///
/// A rectangle may be mirrored (right below left, or top below bottom) and stays so. A plain value; GUI
/// thread only.
class ZR_UTIL_EXPORT ZrGl2dOrtho : public zr::IPersistable
{
public:
    using eAspect = ::eAspect;

    QMatrix4x4 m_proj; ///< the projection matrix
    QMatrix4x4 m_view; ///< kept for derived views
    float m_originX = 0.0F; ///< world origin of the view
    float m_originY = 0.0F; ///< likewise
    eAspect m_aspect = aspectStretch;
    float m_reqLeft = 0.0F; ///< the rectangle asked for last
    float m_reqRight = 0.0F;
    float m_reqTop = 0.0F;
    float m_reqBottom = 0.0F;
    float m_rotation = 0.0F; ///< of the view, degrees
    float m_left = 0.0F; ///< the rectangle in force after the aspect rule
    float m_right = 0.0F;
    float m_top = 0.0F;
    float m_bottom = 0.0F;
    int m_width = 100; ///< viewport, pixels
    int m_height = 100;
    float m_scaleX = 1.0F; ///< world units per pixel
    float m_scaleY = 1.0F;

    ZrGl2dOrtho() = default;
    ZrGl2dOrtho(const ZrGl2dOrtho&) = default;
    ZrGl2dOrtho(ZrGl2dOrtho&&) = default;
    ZrGl2dOrtho& operator=(const ZrGl2dOrtho&) = default;
    ZrGl2dOrtho& operator=(ZrGl2dOrtho&&) = default;
    virtual ~ZrGl2dOrtho() = default;

    /// Asks for a rectangle; it takes effect at once, with the size that the viewport has.
    void zrgl2dProjection(float left, float right, float bottom, float top, eAspect aspect);

    /// Sets the size in pixels and computes the projection from the rectangle asked for last.
    ///
    /// A viewport without pixels has infinite scales.
    void zrgl2dViewport(int width, int height);

    /// Widget pixels, y down from the top left, to world, by the rectangle in force. Leaves the outputs alone
    /// while the view is rotated.
    void ScreenToXy(float sx, float sy, float& x, float& y) const;

    /// World to viewport pixels, y up from the bottom left, by the rectangle that was asked for. Leaves the
    /// outputs alone while the view is rotated.
    ///
    /// This is the way back from `ScreenToXy` only where the aspect rule changes nothing, and with y turned.
    void XyToScreen(float x, float y, float& sx, float& sy) const;

    /// "origin-x", "origin-y", "rotation"; they take effect with the next projection.
    void settings(zr::ZrSetModule& module) override;
};
