#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

// Palette with a correction that grows with range: s runs from the sonar outwards.
uniform sampler2D uTexUnit;
uniform sampler2D uPalUnit;
uniform float uPalIndex;
uniform float uClamp;
uniform float uSlope;
uniform float uGain;
uniform float uAlpha;
varying vec2 vTexCoords;

void main()
{
    float i = texture2D(uTexUnit, vTexCoords).a;
    float r = uClamp + uSlope * vTexCoords.s;
    i = clamp((i - r) / (1.0 - r) * (1.0 + uGain), 0.0, 1.0);
    gl_FragColor = vec4(texture2D(uPalUnit, vec2(i, uPalIndex)).rgb, min(1.0, i + uAlpha));
}
