// Matrices for placing things in the room and for looking at it. Angles in degrees.
#pragma once

#include "room/vector.h"

#include <cmath>
#include <cstddef>
#include <numbers>

inline constexpr MATRIX4 kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// The transform that applies `b` first.
constexpr MATRIX4 Multiply(const MATRIX4& a, const MATRIX4& b) {
    MATRIX4 product{};
    for (size_t column = 0; column < 4; ++column) {
        for (size_t row = 0; row < 4; ++row) {
            float sum = 0.0f;
            for (size_t i = 0; i < 4; ++i) {
                sum += a[i * 4 + row] * b[column * 4 + i];
            }
            product[column * 4 + row] = sum;
        }
    }
    return product;
}

constexpr MATRIX4 Translation(VECTOR3 by) {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, by.x, by.y, by.z, 1};
}

constexpr float Radians(float degrees) {
    return degrees * (std::numbers::pi_v<float> / 180.0f);
}

// 90 degrees turn +z to +x.
inline MATRIX4 RotationAboutY(float degrees) {
    const float sine = std::sin(Radians(degrees));
    const float cosine = std::cos(Radians(degrees));
    return {cosine, 0, -sine, 0, 0, 1, 0, 0, sine, 0, cosine, 0, 0, 0, 0, 1};
}

// 90 degrees turn +y to +z.
inline MATRIX4 RotationAboutX(float degrees) {
    const float sine = std::sin(Radians(degrees));
    const float cosine = std::cos(Radians(degrees));
    return {1, 0, 0, 0, 0, cosine, sine, 0, 0, -sine, cosine, 0, 0, 0, 0, 1};
}
