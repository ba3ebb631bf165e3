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
    vec4 c = texture2D(uTexUnit, vTexCoords);
    gl_FragColor = vec4(c.rgb, clamp(0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b, 0.0, 1.0));
}
