#ifdef GL_ES
#ifdef GL_OES_standard_derivatives
#extension GL_OES_standard_derivatives : enable
#define HAS_DERIVATIVES
#endif
precision mediump int;
precision mediump float;
#else
#define HAS_DERIVATIVES
#define highp
#define mediump
#define lowp
#endif

uniform vec4 uColour;
uniform vec3 uRamp[5]; // colours of heights, from the highest
uniform float uRamped; // 1: the colour is that of the height, its first texture coordinate is its opacity
uniform vec3 uWater;
uniform float uTexture; // 1: the colour is multiplied by the texture
uniform float uLight; // 0: lines, which have no side
uniform float uGloss; // 1: a body, whose dark parts and edges are to be seen as well
uniform sampler2D uTexUnit;
varying vec3 vNormal;
varying vec3 vToEye;
varying vec2 vTexCoords;
varying float vFog;
varying float vDepth;
varying highp float vLine;

vec3 Ramp(float at)
{
    float t = at * 4.0;
    vec3 colour = mix(uRamp[0], uRamp[1], clamp(t, 0.0, 1.0));
    colour = mix(colour, uRamp[2], clamp(t - 1.0, 0.0, 1.0));
    colour = mix(colour, uRamp[3], clamp(t - 2.0, 0.0, 1.0));
    return mix(colour, uRamp[4], clamp(t - 3.0, 0.0, 1.0));
}

// How much of a line of one height is here: a pixel and a half wide, none where they would run together.
float Line()
{
#ifdef HAS_DERIVATIVES
    highp float pixel = fwidth(vLine);
    highp float away = abs(fract(vLine - 0.5) - 0.5) / max(pixel, 1.0e-6);
    return clamp(1.25 - away, 0.0, 1.0) * clamp(2.0 - 8.0 * pixel, 0.0, 1.0);
#else
    return 0.0;
#endif
}

void main()
{
    vec3 colour = uColour.rgb;
    float opacity = uColour.a;
    if (uRamped > 0.5) {
        colour = Ramp(vDepth);
        colour *= 1.0 - 0.28 * Line();
        opacity *= vTexCoords.x;
    }
    if (uTexture > 0.5)
        colour *= texture2D(uTexUnit, vTexCoords).rgb;
    vec3 normal = normalize(vNormal);
    vec3 toEye = normalize(vToEye);
    if (dot(normal, toEye) < 0.0)
        normal = -normal;
    vec3 sun = normalize(vec3(-0.4, 0.3, 0.85));
    float side = max(dot(normal, sun), 0.0);
    float sky = 0.5 + 0.5 * normal.z;
    float light = 0.38 + 0.22 * sky + 0.5 * side;
    vec3 lit = colour * mix(1.0, light, uLight);
    if (uGloss > 0.5) {
        // Paint of a dark hull is dark, what it reflects of sky and sun is not.
        float edge = pow(1.0 - max(dot(normal, toEye), 0.0), 2.5);
        float shine = pow(max(dot(normal, normalize(sun + toEye)), 0.0), 24.0);
        lit += uColour.rgb * (0.15 * light + 0.20 * sky * edge + 0.35 * shine);
    }
    gl_FragColor = vec4(mix(min(lit, vec3(1.0)), uWater, vFog), opacity);
}
