#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform highp mat4 uMatrix;
uniform highp float uScale;
uniform highp float uScaleD;
uniform highp float uOriginX;
uniform highp float uOriginXd;
uniform highp float uOriginY;
uniform highp float uOriginYd;
uniform highp float uOffX;
uniform highp float uOffY;
// Half the size of the view, pixels.
uniform highp vec2 uHalf;
// Pixels for each design pixel.
uniform highp float uDesign;
// Width of the halo, design pixels, and what is the most of it in texture coordinates.
uniform highp vec2 uHaloWidth;
// A split world position.
attribute highp vec4 aPosition;
// Design pixels right and up from the position, and texture coordinates.
attribute highp vec4 aCorner;
attribute mediump vec4 aColour;
// Texture coordinates for each design pixel; 1 for a corner that turns with the map.
attribute highp vec2 aStyle;
varying highp vec2 vTexCoords;
varying mediump vec4 vColour;
varying highp float vHalo;

void main()
{
    vTexCoords = aCorner.zw;
    vColour = aColour;
    vHalo = min(uHaloWidth.x * aStyle.x, uHaloWidth.y);
    // Multiples of a kilometre and what is left apart: the large terms cancel before the small ones are added.
    highp float x = aPosition.x * uScale - uOriginX - uOriginXd + aPosition.x * uScaleD + aPosition.z * uScale + aPosition.z * uScaleD;
    highp float y = aPosition.y * uScale - uOriginY - uOriginYd + aPosition.y * uScaleD + aPosition.w * uScale + aPosition.w * uScaleD;
    highp vec2 at = vec2(x + uOffX, y + uOffY);
    highp vec2 corner = aCorner.xy * uDesign;
    if (aStyle.y > 0.5)
        at = at + corner;
    gl_Position = uMatrix * vec4(at, 0.0, 1.0);
    if (aStyle.y < 0.5)
        gl_Position.xy = gl_Position.xy + corner / uHalf;
}
