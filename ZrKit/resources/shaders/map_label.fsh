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

// Signed distances to the edge of glyphs, or the ink and halo of whole texts, which have an edge likewise.
uniform sampler2D uTexUnit;
varying vec2 vTexCoords;
varying mediump vec4 vColour;
// Multiplied by its alpha.
varying mediump vec4 vHalo;
// Ink is the value multiplied by the first, and the second added.
varying vec2 vStyle;

void main()
{
    float ink = texture2D(uTexUnit, vTexCoords).a * vStyle.x + vStyle.y;
    gl_FragColor = mix(vHalo * clamp(ink + 1.0, 0.0, 1.0), vec4(vColour.rgb, 1.0), clamp(ink, 0.0, 1.0) * vColour.a);
}
