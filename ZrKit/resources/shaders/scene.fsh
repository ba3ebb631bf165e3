#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform vec4 uColour; // of what is high
uniform vec4 uColourLow;
uniform vec3 uWater;
uniform float uTexture; // 1: the colour is multiplied by the texture
uniform float uLight; // 0: lines, which have no side
uniform sampler2D uTexUnit;
varying vec3 vNormal;
varying vec2 vTexCoords;
varying float vFog;
varying float vHeight;

void main()
{
    vec3 colour = mix(uColourLow.rgb, uColour.rgb, vHeight);
    if (uTexture > 0.5)
        colour *= texture2D(uTexUnit, vTexCoords).rgb;
    vec3 sun = normalize(vec3(-0.4, 0.3, 0.85));
    float side = dot(normalize(vNormal), sun);
    float light = mix(1.0, 0.5 + 0.6 * max(side, 0.0) + 0.1 * min(side, 0.0), uLight);
    gl_FragColor = vec4(mix(colour * light, uWater, vFog), uColour.a);
}
