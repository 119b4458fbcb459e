// What a stick of a game controller means to the walking camera.
#pragma once

// Axes from -1 to 1; right and down are positive, as controllers report them.
struct STICK {
    float x = 0.0f;
    float y = 0.0f;
};

// The stick's way out of its dead zone, a circle of 0.18 in which worn sticks rest: length 0 at its rim, 1 at the
// stick's end, in the stick's direction.
[[nodiscard]] STICK WithoutDeadZone(STICK stick);

// Degrees a second: 180 to the sides and 120 up and down at the stick's end, and a square curve before it, so that
// small corrections are easy. x turns to the right, y downwards.
[[nodiscard]] STICK LookRate(STICK stick);
