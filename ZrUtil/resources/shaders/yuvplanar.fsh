#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

// Each plane is in the alpha channel of its own texture, in the limited range of video.
uniform sampler2D uTexY;
uniform sampler2D uTexCb;
uniform sampler2D uTexCr;
uniform int uColourSpace;
varying vec2 vTexCoords;

void main()
{
    float y = (texture2D(uTexY, vTexCoords).a - 0.06275) * 1.16428;
    float cb = (texture2D(uTexCb, vTexCoords).a - 0.5) * 2.27679;
    float cr = (texture2D(uTexCr, vTexCoords).a - 0.5) * 2.27679;
    vec3 rgb = vec3(0.5);
    if (uColourSpace == 1) // BT.601
        rgb = vec3(y + 0.70100 * cr, y - 0.17207 * cb - 0.35707 * cr, y + 0.88600 * cb);
    else if (uColourSpace == 2) // BT.709
        rgb = vec3(y + 0.78740 * cr, y - 0.09366 * cb - 0.23406 * cr, y + 0.92780 * cb);
    gl_FragColor = vec4(rgb, 1.0);
}
