#ifdef GL_ES
precision mediump int;
precision mediump float;
#else
#define highp
#define mediump
#define lowp
#endif

uniform highp mat4 uMatrix;
attribute highp vec3 aPosition;

void main()
{
    gl_Position = uMatrix * vec4(aPosition, 1);
    gl_PointSize = 5.0;
}
