#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QOpenGLFunctions>

#include <functional>

/// Errors of OpenGL around an upload, which alone can run out of memory in a layer that is otherwise right.
///
/// Asking for errors waits for the driver: only where something is uploaded, not in each frame. The context
/// is current; GUI thread only.
class ZR_KIT_EXPORT ZrMapErrors
{
public:
    /// Fetches all errors there are; the first of them, or GL_NO_ERROR.
    static GLenum Take(QOpenGLFunctions& gl);

    /// Runs \p upload; its first error, or GL_NO_ERROR. Errors from before are taken too, lest they be taken
    /// for its own.
    static GLenum Of(QOpenGLFunctions& gl, const std::function<void()>& upload);
};
