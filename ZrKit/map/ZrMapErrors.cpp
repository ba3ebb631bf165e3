#include "ZrKit/map/ZrMapErrors.h"

GLenum ZrMapErrors::Take(QOpenGLFunctions& gl)
{
    const GLenum first = gl.glGetError();
    // A lost context reports an error for ever.
    for (int i = 0; first != GL_NO_ERROR && i < 10 && gl.glGetError() != GL_NO_ERROR; ++i) { }
    return first;
}

GLenum ZrMapErrors::Of(QOpenGLFunctions& gl, const std::function<void()>& upload)
{
    Take(gl);
    upload();
    return Take(gl);
}
