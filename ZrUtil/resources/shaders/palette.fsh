#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform sampler2D uTexUnit;
uniform sampler2D uPalUnit;
uniform float uPalIndex;
varying vec2 vTexCoords;

void main()
{
    float i = texture2D(uTexUnit, vTexCoords).a;
    gl_FragColor = vec4(texture2D(uPalUnit, vec2(i, uPalIndex)).rgb, 0.5 + i / 2.0);
}
