#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QOpenGLContext>
#include <QPointer>

class ZrGlSurface;
class ZrMapView;

/// Something that a map draws in one or a few draw calls.
///
/// \code
/// void Chart::Render() // of a ZrGlSurface
/// {
///     m_view.Apply(*this);
///     m_grid.Paint(*this, m_view);
///     m_track.Paint(*this, m_view);
/// }
/// \endcode
///
/// GL objects are made by the first `Paint` and again in a new context. They are deleted by `Release`, which
/// wants the context current; a layer that is destroyed without it leaves them to the context. GUI thread
/// only.
class ZR_KIT_EXPORT ZrMapLayer
{
public:
    bool m_isVisible = true;

    ZrMapLayer() = default;
    virtual ~ZrMapLayer() = default;
    ZrMapLayer(const ZrMapLayer&) = delete;
    ZrMapLayer& operator=(const ZrMapLayer&) = delete;

    /// Draws what is visible of it. The context is current and \p view applied to \p surface; without a
    /// context or pixels, while the surface is not ready, and while the layer is not visible, nothing is
    /// drawn.
    void Paint(ZrGlSurface& surface, const ZrMapView& view);

    /// Deletes its GL objects. The context is current and the surface ready; otherwise they are left to the
    /// context.
    void Release(ZrGlSurface& surface);

protected:
    virtual void OnPaint(ZrGlSurface& surface, const ZrMapView& view) = 0;
    virtual void OnRelease(ZrGlSurface& surface) = 0; ///< deletes the GL objects and forgets them
    virtual void OnForget() = 0; ///< the GL objects are gone with their context

private:
    QPointer<QOpenGLContext> m_context; ///< that has the GL objects
    bool m_isBuilt = false; ///< there may be GL objects
};
