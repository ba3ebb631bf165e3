#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

// Lines of a side-scan sonar: x is the slant range, z the altitude, both in the same unit.
uniform highp mat4 uMatrix;
uniform int uSlant;
uniform highp float uRange;
uniform highp float uSide;
uniform highp float uScale;
uniform highp float uOff;
attribute highp vec4 aPosition;
attribute highp vec2 aTexCoords;
varying vec2 vTexCoords;

void main()
{
    vTexCoords = aTexCoords;
    highp vec4 pos = aPosition;
    if (uSlant != 0 && pos.z > 0.0)
        pos.x = sqrt(max(pos.x * pos.x - pos.z * pos.z, 0.0));
    pos.x = pos.x / uRange * uSide;
    pos.y = pos.y * uScale + uOff;
    pos.z = 0.0;
    gl_Position = uMatrix * pos;
}
