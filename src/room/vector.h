// Vectors and matrices of the room. Right-handed axes: x right, y up, z towards the viewer at the start;
// room units, about a centimetre.
#pragma once

#include <array>
#include <cmath>

struct VECTOR3 {
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;

    bool operator==(const VECTOR3&) const = default;
};

constexpr VECTOR3 operator+(VECTOR3 a, VECTOR3 b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

constexpr VECTOR3 operator-(VECTOR3 a, VECTOR3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

constexpr VECTOR3 operator*(VECTOR3 a, float factor) {
    return {a.x * factor, a.y * factor, a.z * factor};
}

constexpr float Dot(VECTOR3 a, VECTOR3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

constexpr VECTOR3 Cross(VECTOR3 a, VECTOR3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline float Length(VECTOR3 a) {
    return std::sqrt(Dot(a, a));
}

// A vector of length 0 stays as it is.
inline VECTOR3 Normalised(VECTOR3 a) {
    const float length = Length(a);
    return length > 0.0f ? a * (1.0f / length) : a;
}

// Column after column, as OpenGL takes it.
using MATRIX4 = std::array<float, 16>;

constexpr VECTOR3 TransformPoint(const MATRIX4& m, VECTOR3 p) {
    return {m[0] * p.x + m[4] * p.y + m[8] * p.z + m[12],
            m[1] * p.x + m[5] * p.y + m[9] * p.z + m[13],
            m[2] * p.x + m[6] * p.y + m[10] * p.z + m[14]};
}

constexpr VECTOR3 TransformDirection(const MATRIX4& m, VECTOR3 d) {
    return {m[0] * d.x + m[4] * d.y + m[8] * d.z, m[1] * d.x + m[5] * d.y + m[9] * d.z,
            m[2] * d.x + m[6] * d.y + m[10] * d.z};
}
