// The shader's text, for light_program.cpp.
//
// The head of the fragment text defines TEXTURED, GLOSSY, TELEVISION and LIGHTS; kFragmentMiddle follows, then a
// call of AddLamp or AddTelevision for each light, and kFragmentEnd. The general form has GENERAL defined instead,
// and kGeneralCalls for the calls: it takes all of these from uniforms.
//
// All is in the room's own axes: the modelview matrix holds the place of the furniture alone, and the
// projection matrix the camera. So the place of a light is a constant, which is written into the text: a
// software renderer spends more on fetching a number that may change than on computing with it.
#pragma once

inline constexpr const char* kVertexText = R"(#version 120
varying vec3 worldPos;
varying vec3 normal;
void main() {
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    worldPos = (gl_ModelViewMatrix * gl_Vertex).xyz;
    normal = gl_NormalMatrix * gl_Normal;
    gl_Position = ftransform();
}
)";

// `light` collects what multiplies the surface's own colour, `gloss` the rest. No vector is normalised that
// need not be: a product with one is divided by its length instead.
inline constexpr const char* kFragmentMiddle = R"(
varying vec3 worldPos;
varying vec3 normal;
uniform sampler2D Texture0;
uniform float fTV;
uniform vec4 eye; // the camera's place
#if GENERAL
uniform vec4 row[20];  // four for each light, as LightRows writes them
uniform float count;   // of lights
uniform float glossy;  // 0 or 1
#define LIGHTS 0
#define TEXTURED 1
#define GLOSSY 1
#define TELEVISION 0
#endif
#if LIGHTS > 0
uniform vec4 color[LIGHTS]; // of televisions
#endif

vec3 light;
vec3 gloss;
vec3 N;
vec3 E;

#if GENERAL
float kFactor;
#elif TELEVISION
const float kFactor = 0.3;
#else
const float kFactor = 1.0;
#endif

void AddGloss(vec3 specular, vec3 lightDir, float inverse, float lambert, float shine) {
#if GLOSSY
    vec3 R = N * (2.0 * dot(N, lightDir)) - lightDir;
    float mirror = abs(pow(max(dot(R, E) * inverse, 0.0), gl_FrontMaterial.shininess));
    gloss += specular * (lambert > 0.0 ? mirror * shine : 0.0);
#endif
}

void AddLamp(vec3 pos, vec3 lampColor, vec3 specular, float ambient, float constantAttenuation,
             float linearAttenuation, float quadraticAttenuation) {
    vec3 lightDir = pos - worldPos;
    float square = dot(lightDir, lightDir);
    float inverse = inversesqrt(square);
    float att = kFactor / (constantAttenuation + linearAttenuation * (square * inverse) +
                           quadraticAttenuation * square);
    float lambert = max(dot(N, lightDir) * inverse, 0.0);
    light += lampColor * (lambert * att) + ambient * att;
    AddGloss(specular, lightDir, inverse, lambert, att);
}

void AddTelevision(vec3 tvColor, vec3 pos, vec3 direction, float ambient, float spotCosCutoff,
                   float spotBall, float constantAttenuation, float linearAttenuation,
                   float quadraticAttenuation) {
    vec3 lightDir = pos - worldPos;
    float square = dot(lightDir, lightDir);
    float inverse = inversesqrt(square);
    float d = square * inverse;
    float att = kFactor / (constantAttenuation + linearAttenuation * d + quadraticAttenuation * square);
    float lambert = max(dot(N, lightDir) * inverse, 0.0);
    float direct = lambert * att;
    bool outside = -dot(lightDir, direction) * inverse <= spotCosCutoff;
    float around = d > spotBall ? ambient * min(att * 4.0, 0.2) : direct * 5.0;
    light += tvColor * (outside ? around : direct);
    AddGloss(tvColor, lightDir, inverse, lambert, outside ? 0.0 : att);
}

void main() {
#if GENERAL
    // A texture that is not there reads as black, and with one the diffuse colour is black.
    vec3 color1 = texture2D(Texture0, gl_TexCoord[0].st).rgb + gl_FrontMaterial.diffuse.rgb;
#elif TEXTURED
    vec3 color1 = texture2D(Texture0, gl_TexCoord[0].st).rgb;
#else
    vec3 color1 = gl_FrontMaterial.diffuse.rgb;
#endif
    color1 += gl_FrontMaterial.emission.r; // it is grey
#if GENERAL
    light = vec3(fTV);
    kFactor = fTV > 0.0 ? 0.3 : 1.0;
#elif TELEVISION
    light = vec3(fTV);
#else
    light = vec3(0.0);
#endif
    gloss = vec3(0.0);
    N = normalize(normal);
    E = normalize(eye.xyz - worldPos);
)";

inline constexpr const char* kGeneralCalls = R"(
    for (int i = 0; i < 5; ++i) {
        if (float(i) < count) {
            vec4 first = row[4 * i];   // colour, 1 for a television
            vec4 second = row[4 * i + 1]; // place, ambient
            vec4 third = row[4 * i + 2];  // direction, spotCosCutoff; a lamp: specular
            vec4 fourth = row[4 * i + 3]; // attenuation: constant, linear, quadratic; spotBall
            if (first.w > 0.5) {
                AddTelevision(first.rgb, second.xyz, third.xyz, second.w, third.w, fourth.w, fourth.x,
                              fourth.y, fourth.z);
            } else {
                AddLamp(second.xyz, first.rgb, third.rgb, second.w, fourth.x, fourth.y, fourth.z);
            }
        }
    }
    if (glossy < 0.5) {
        gloss = vec3(0.0);
    }
)";

inline constexpr const char* kFragmentEnd = R"(
    vec3 shown = color1 * light;
#if GLOSSY
    shown += gl_FrontMaterial.specular.rgb * gloss;
#endif
    gl_FragColor = vec4(shown, 1.0);
}
)";
