#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform sampler2D uTexUnit;
varying vec2 vTexCoords;

void main()
{
    gl_FragColor = texture2D(uTexUnit, vTexCoords);
}
