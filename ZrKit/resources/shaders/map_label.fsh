#ifdef GL_ES
precision mediump int;
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
#else
#define highp
#define mediump
#define lowp
#endif

// Signed distances to the edge of the glyphs.
uniform sampler2D uTexUnit;
varying vec2 vTexCoords;
varying mediump vec4 vColour;
// The distance where the ink ends, and how many pixels the whole range of distances is.
varying vec2 vStyle;

void main()
{
    float ink = clamp((texture2D(uTexUnit, vTexCoords).a - vStyle.x) * vStyle.y + 0.5, 0.0, 1.0);
    gl_FragColor = vec4(vColour.rgb, vColour.a * ink);
}
