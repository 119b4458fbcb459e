// The shader's text, for light_program.cpp and its tests.
//
// The head of the fragment text defines TEXTURED, GLOSSY, TELEVISION and LIGHTS; kFragmentMiddle follows, then a
// call of AddLight for each light, and kFragmentEnd.
#pragma once

inline constexpr const char* kVertexText = R"(#version 120
varying vec3 worldPos; // in eye space
varying vec3 normal;
void main() {
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    worldPos = (gl_ModelViewMatrix * gl_Vertex).xyz;
    normal = gl_NormalMatrix * gl_Normal;
    gl_Position = ftransform();
}
)";

// `light` collects what multiplies the surface's own colour, `gloss` the rest.
inline constexpr const char* kFragmentMiddle = R"(
varying vec3 worldPos;
varying vec3 normal;
uniform sampler2D Texture0;
uniform float fTV;
struct Lights {
    vec4 color;
    vec4 specular;
    vec4 pos;
    float ambient; // of all three channels
    vec4 direction;
    float spotCosCutoff;
    float spotBall;
    float constantAttenuation;
    float linearAttenuation;
    float quadraticAttenuation;
};
#if LIGHTS > 0
uniform Lights lights[LIGHTS];
#endif

// No vector is normalised that need not be: a product with one is divided by its length instead.
void AddLight(Lights source, bool spot, float factor, vec3 N, vec3 E, inout vec3 light,
              inout vec3 gloss) {
    vec3 lightDir = source.pos.xyz - worldPos;
    float square = dot(lightDir, lightDir);
    float inverse = inversesqrt(square);
    float d = square * inverse;
    float att = factor / (source.constantAttenuation + source.linearAttenuation * d +
                          source.quadraticAttenuation * square);
    float lambert = max(dot(N, lightDir) * inverse, 0.0);
    float direct = lambert * att;
    float shine = att;
    if (spot) {
        bool outside = -dot(lightDir, source.direction.xyz) * inverse <= source.spotCosCutoff;
        float around = d > source.spotBall ? source.ambient * min(att * 4.0, 0.2) : direct * 5.0;
        light += source.color.rgb * (outside ? around : direct);
        shine = outside ? 0.0 : att;
    } else {
        light += source.color.rgb * direct + source.ambient * att;
    }
#if GLOSSY
    vec3 R = N * (2.0 * dot(N, lightDir)) - lightDir;
    float mirror = abs(pow(max(dot(R, E) * inverse, 0.0), gl_FrontMaterial.shininess));
    gloss += source.specular.rgb * (lambert > 0.0 ? mirror * shine : 0.0);
#endif
}

void main() {
    vec3 color1 = gl_FrontMaterial.diffuse.rgb + gl_FrontMaterial.emission.rgb;
#if TEXTURED
    color1 += texture2D(Texture0, gl_TexCoord[0].st).rgb;
#endif
#if TELEVISION
    vec3 light = vec3(fTV);
    float factor = 0.3;
#else
    vec3 light = vec3(0.0);
    float factor = 1.0;
#endif
    vec3 gloss = vec3(0.0);
    vec3 N = normalize(normal);
    vec3 E = normalize(-worldPos);
)";

inline constexpr const char* kFragmentEnd = R"(
    gl_FragColor = vec4(color1 * light + gl_FrontMaterial.specular.rgb * gloss, 1.0);
}
)";
