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
// What one unit of the texture coordinates is of the texture.
uniform highp vec2 uTexel;
// A split world position, or pixels right and down from the upper left corner of the view.
attribute highp vec4 aPosition;
// Pixels right and up from the position, and texture coordinates.
attribute highp vec4 aCorner;
attribute mediump vec4 aColour;
attribute mediump vec4 aHalo;
// The value of the texture where the ink is a half, and by how much ink changes with the value; 1 for a position on the screen; 1 for a corner that turns with the map.
attribute highp vec4 aStyle;
varying highp vec2 vTexCoords;
varying mediump vec4 vColour;
varying mediump vec4 vHalo;
varying highp vec2 vStyle;

void main()
{
    vTexCoords = aCorner.zw * uTexel;
    vColour = aColour;
    vHalo = vec4(aHalo.rgb * aHalo.a, aHalo.a);
    vStyle = vec2(aStyle.y, 0.5 - aStyle.x * aStyle.y);
    highp vec2 at;
    if (aStyle.z > 0.5) {
        at = vec2(aPosition.x - uHalf.x, uHalf.y - aPosition.y);
    } else {
        // Multiples of a kilometre and what is left apart: the large terms cancel before the small ones are added.
        highp float x = aPosition.x * uScale - uOriginX - uOriginXd + aPosition.x * uScaleD + aPosition.z * uScale + aPosition.z * uScaleD;
        highp float y = aPosition.y * uScale - uOriginY - uOriginYd + aPosition.y * uScaleD + aPosition.w * uScale + aPosition.w * uScaleD;
        at = vec2(x + uOffX, y + uOffY);
        if (aStyle.w > 0.5)
            at = at + aCorner.xy;
        at = (uMatrix * vec4(at, 0.0, 1.0)).xy * uHalf;
    }
    // What stands upright begins at a whole pixel, where glyphs are sharpest.
    if (aStyle.w < 0.5)
        at = floor(at + uHalf + 0.5) - uHalf + aCorner.xy;
    gl_Position = vec4(at / uHalf, 0.0, 1.0);
}
