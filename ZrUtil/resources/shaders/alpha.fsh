#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform sampler2D uTexUnit;
uniform vec4 uColour;
varying vec2 vTexCoords;

void main()
{
    gl_FragColor = vec4(uColour.rgb, texture2D(uTexUnit, vTexCoords).a);
}
