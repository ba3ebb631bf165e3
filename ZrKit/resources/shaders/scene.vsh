#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

// Lit surfaces of a scene; what is far fades into the water.
uniform highp mat4 uMatrix;
uniform highp mat4 uModel;
uniform highp vec3 uEye;
uniform highp float uFogStart;
uniform highp float uFogEnd;
uniform highp float uLow; // heights of the two colours
uniform highp float uHigh;
attribute highp vec3 aPosition;
attribute vec3 aNormal;
attribute vec2 aTexCoords;
varying vec3 vNormal;
varying vec2 vTexCoords;
varying float vFog;
varying float vHeight;

void main()
{
    highp vec4 at = uModel * vec4(aPosition, 1.0);
    vNormal = (uModel * vec4(aNormal, 0.0)).xyz;
    vTexCoords = aTexCoords;
    vHeight = clamp((aPosition.z - uLow) / (uHigh - uLow), 0.0, 1.0);
    vFog = clamp((distance(at.xyz, uEye) - uFogStart) / (uFogEnd - uFogStart), 0.0, 1.0);
    gl_Position = uMatrix * at;
}
