#ifdef GL_ES
precision mediump int;
precision mediump float;
#ifndef GL_FRAGMENT_PRECISION_HIGH
#define highp mediump
#endif
#else
#define highp
#define mediump
#define lowp
#endif

uniform sampler2D uTexUnit;
// Colour of the halo; none with alpha 0.
uniform mediump vec4 uHaloColour;
varying highp vec2 vTexCoords;
varying mediump vec4 vColour;
varying highp float vHalo;

void main()
{
    mediump float shape = texture2D(uTexUnit, vTexCoords).a;
    mediump float halo = 0.0;
    if (uHaloColour.a > 0.0) {
        highp float d = vHalo * 0.7071;
        halo = max(shape, texture2D(uTexUnit, vTexCoords + vec2(vHalo, 0.0)).a);
        halo = max(halo, texture2D(uTexUnit, vTexCoords - vec2(vHalo, 0.0)).a);
        halo = max(halo, texture2D(uTexUnit, vTexCoords + vec2(0.0, vHalo)).a);
        halo = max(halo, texture2D(uTexUnit, vTexCoords - vec2(0.0, vHalo)).a);
        halo = max(halo, texture2D(uTexUnit, vTexCoords + vec2(d, d)).a);
        halo = max(halo, texture2D(uTexUnit, vTexCoords - vec2(d, d)).a);
        halo = max(halo, texture2D(uTexUnit, vTexCoords + vec2(d, -d)).a);
        halo = max(halo, texture2D(uTexUnit, vTexCoords - vec2(d, -d)).a);
    }
    // The marker over its halo.
    mediump float over = shape * vColour.a;
    mediump float under = halo * uHaloColour.a * (1.0 - over);
    mediump float alpha = over + under;
    gl_FragColor = vec4((vColour.rgb * over + uHaloColour.rgb * under) / max(alpha, 0.001), alpha);
}
