#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform sampler2D uTexUnit;
uniform vec4 uColKey;
varying vec2 vTexCoords;

void main()
{
    vec4 c = texture2D(uTexUnit, vTexCoords);
    if (c == uColKey)
        c.a = 0.0;
    gl_FragColor = c;
}
