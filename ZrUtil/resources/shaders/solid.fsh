#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform vec4 uColour;

void main()
{
    gl_FragColor = uColour;
}
