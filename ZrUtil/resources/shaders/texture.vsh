#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform highp mat4 uMatrix;
uniform int uMap;
uniform highp float uScale;
uniform highp float uScaleD;
uniform highp float uOriginX;
uniform highp float uOriginXd;
uniform highp float uOriginY;
uniform highp float uOriginYd;
uniform highp float uOffX;
uniform highp float uOffY;
attribute highp vec4 aPosition;
attribute highp vec2 aTexCoords;
varying vec2 vTexCoords;

void main()
{
    vTexCoords = aTexCoords;
    highp vec4 pos = aPosition;
    if (uMap == 1) {
        // Ordinals (pos.xy) and decimals (pos.zw) apart: the large terms cancel before the small ones are added.
        highp float x = pos.x * uScale - uOriginX - uOriginXd + pos.x * uScaleD + pos.z * uScale + pos.z * uScaleD;
        highp float y = pos.y * uScale - uOriginY - uOriginYd + pos.y * uScaleD + pos.w * uScale + pos.w * uScaleD;
        x = x + uOffX;
        y = y + uOffY;
        pos = vec4(x, y, 0.0, 1.0);
    }
    gl_Position = uMatrix * pos;
}
