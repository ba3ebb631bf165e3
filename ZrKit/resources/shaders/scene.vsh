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
uniform highp float uLow; // heights of the first and the last colour of the ramp
uniform highp float uHigh;
uniform highp float uStep; // of the lines of one height; 0: none
attribute highp vec3 aPosition;
attribute vec3 aNormal;
attribute vec2 aTexCoords;
varying vec3 vNormal;
varying vec3 vToEye;
varying vec2 vTexCoords;
varying float vFog;
varying float vDepth; // 0 the highest, 1 the lowest
varying highp float vLine; // a line is where it is whole

void main()
{
    highp vec4 at = uModel * vec4(aPosition, 1.0);
    highp vec3 toEye = uEye - at.xyz;
    vNormal = (uModel * vec4(aNormal, 0.0)).xyz;
    vToEye = normalize(toEye);
    vTexCoords = aTexCoords;
    vDepth = clamp((uHigh - aPosition.z) / (uHigh - uLow), 0.0, 1.0);
    vLine = uStep > 0.0 ? aPosition.z / uStep : 0.5;
    vFog = clamp((length(toEye) - uFogStart) / (uFogEnd - uFogStart), 0.0, 1.0);
    gl_Position = uMatrix * at;
}
