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

// Pixels from the middle of a line, and half its width.
varying vec2 vTexCoords;
varying mediump vec4 vColour;

void main()
{
    float ink = clamp(vTexCoords.y + 0.5 - abs(vTexCoords.x), 0.0, 1.0);
    // Multiplied by its alpha.
    gl_FragColor = vec4(vColour.rgb, 1.0) * (vColour.a * ink);
}
