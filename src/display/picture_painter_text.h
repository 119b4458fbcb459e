// The shaders of picture_painter.cpp, GLSL 1.20.
//
// kPictureHead, after a line that defines TAPS, then kEvenMain or kCrtMain.
//
// Positions: a pixel is one of the screen's, counted from the top left of the shown rectangle; a dot is a texel,
// counted from the top left of the shown area. Colours between decoding and encoding are linear light.
#pragma once

inline constexpr const char* kPictureVertexText = R"(#version 120
void main() {
    gl_Position = ftransform();
}
)";

// Even gives each pixel the mean light of exactly what it covers: TAPS dots at most in each direction.
inline constexpr const char* kPictureHead = R"(
uniform sampler2D picture;
uniform vec4 place; // the rectangle's left and its top above the screen's bottom; dots a pixel, across and down
uniform vec4 area;  // the area's first texel; the size of a texel in texture coordinates
uniform vec4 last;  // the area's last texel, across and down

vec2 Pixel() {
    return floor(vec2(gl_FragCoord.x - place.x, place.y - gl_FragCoord.y));
}

vec3 Dot(vec2 dot) {
    return texture2D(picture, (clamp(dot, area.xy, last.xy) + 0.5) * area.zw).rgb;
}

#if TAPS == 2
vec3 Even(vec2 pixel) {
    vec2 from = pixel * place.zw;
    vec2 first = floor(from);
    vec2 later = max(from + place.zw - first - 1.0, 0.0) / place.zw; // the part of the second dot
    first += area.xy;
    vec3 a = Dot(first);
    vec3 b = Dot(first + vec2(1.0, 0.0));
    vec3 c = Dot(first + vec2(0.0, 1.0));
    vec3 d = Dot(first + 1.0);
    return sqrt(mix(mix(a * a, b * b, later.x), mix(c * c, d * d, later.x), later.y));
}
#else
vec3 Even(vec2 pixel) {
    vec2 from = pixel * place.zw;
    vec2 to = from + place.zw;
    vec2 first = floor(from);
    vec3 light = vec3(0.0);
    for (int y = 0; y < TAPS; ++y) {
        for (int x = 0; x < TAPS; ++x) {
            vec2 dot = first + vec2(float(x), float(y));
            vec2 covered = max(min(to, dot + 1.0) - max(from, dot), 0.0) / place.zw;
            vec3 code = Dot(area.xy + dot);
            light += code * code * (covered.x * covered.y);
        }
    }
    return sqrt(light);
}
#endif
)";

inline constexpr const char* kEvenMain = R"(
void main() {
    gl_FragColor = vec4(Even(Pixel()), 1.0);
}
)";

// A beam draws each line of dots: across, the light goes over from dot to dot in half a cosine; down, it is a
// raised cosine around the line's middle, wider for more light. Both are integrated over the pixel, so that the
// light of a dot reaches the screen whole, however the dots lie between the pixels.
//
// The glow takes its part of the light from the beam. The mask then takes light from some pixels and gives it to
// their neighbours, no more than these can take.
inline constexpr const char* kCrtMain = R"(
uniform sampler2D glow;
uniform vec4 glowing; // texture coordinates of a dot, across and down; the glow's part of the light
uniform vec4 beam;    // its reach in lines without light, and with all; the part of the light that is kept
uniform vec4 mask;    // pixels of a stripe, across; of a slot, down; the stripes' depth, the slots' depth
uniform vec4 strength;

vec3 Decoded(vec3 code) {
    vec3 curve = pow((code + 0.055) / 1.055, vec3(2.4));
    return mix(code / 12.92, curve, step(0.04045, code));
}

vec3 Encoded(vec3 light) {
    vec3 curve = 1.055 * pow(max(light, 0.000001), vec3(1.0 / 2.4)) - 0.055;
    return mix(light * 12.92, curve, step(0.0031308, light));
}

vec3 LightOfDot(vec2 dot) {
    return Decoded(Dot(area.xy + dot));
}

// The part of a raised cosine from -1 to 1 that lies before `at`.
vec3 Before(vec3 at) {
    vec3 x = clamp(at, -1.0, 1.0);
    return 0.5 + 0.5 * x + sin(3.14159265 * x) / 6.2831853;
}

vec3 Beam(vec2 pixel) {
    vec2 from = pixel * place.zw;
    vec2 to = from + place.zw;
    vec2 middle = floor(0.5 * (from + to));
    vec3 columns = middle.x + vec3(-0.5, 0.5, 1.5);
    vec3 across = (Before(to.x - columns) - Before(from.x - columns)) / place.z;
    vec3 light = vec3(0.0);
    for (int i = 0; i < 3; ++i) {
        float line = middle.y + float(i) - 1.0;
        vec3 drawn = LightOfDot(vec2(middle.x - 1.0, line)) * across.x +
                     LightOfDot(vec2(middle.x, line)) * across.y +
                     LightOfDot(vec2(middle.x + 1.0, line)) * across.z;
        vec3 reach = mix(vec3(beam.x), vec3(beam.y), drawn);
        light += drawn * (Before((to.y - line - 0.5) / reach) -
                          Before((from.y - line - 0.5) / reach)) / place.w;
    }
    return light;
}

vec3 Glow(vec2 pixel) {
    vec2 dot = area.xy + (pixel + 0.5) * place.zw;
    return texture2D(glow, dot * glowing.xy).rgb;
}

vec3 Masked(vec3 light, vec2 pixel) {
    float stripe = mod(floor(pixel.x / mask.x), 3.0);
    vec3 lit = vec3(equal(vec3(stripe), vec3(0.0, 1.0, 2.0)));
    vec2 slot = floor(pixel / vec2(3.0 * mask.x, mask.y));
    float depth = mask.w * (1.0 - 2.0 * mod(slot.x + slot.y, 2.0));
    vec3 change = (1.0 + mask.z * (1.5 * lit - 0.5)) * (1.0 + depth) - 1.0;
    float most = (1.0 + mask.z) * (1.0 + mask.w) - 1.0;
    return light + change * min(light, (1.0 - light) / most);
}

void main() {
    vec2 pixel = Pixel();
    vec3 light = mix(Beam(pixel), Glow(pixel), glowing.z) * beam.z;
    light = mix(Decoded(Even(pixel)), Masked(light, pixel), strength.x);
    gl_FragColor = vec4(Encoded(light), 1.0);
}
)";
