// CRoomCamera: where the player stands and looks. Pure arithmetic; knows no window and no OpenGL.
//
// Units: room units, seconds, degrees. Yaw 0 looks along -z and grows to the left; pitch grows upwards.
// Order: Move once a picture, then the matrices.
#pragma once

#include "room/vector.h"

// What the player's hands ask for, each -1 to 1.
struct WALK_INPUT {
    float right = 0.0f;
    float forward = 0.0f;
    bool slow = false;
};

class CRoomCamera {
public:
    // The start of the room's camera.
    void SetUp(float screenAspect);
    // Anywhere else, for the cover view.
    void SetUp(float screenAspect, VECTOR3 from, VECTOR3 at);
    void SetAspect(float screenAspect);

    // Walks for `seconds`; the room's walls end it. Without input the camera glides to a stop.
    void Move(const WALK_INPUT& input, float seconds);
    // A relative movement of the mouse, in pixels.
    void Look(float dx, float dy, bool slow);
    // By degrees, to the right and downwards.
    void Turn(float right, float down);
    // Along the view, a notch of the wheel.
    void Zoom(int notches, bool slow);

    [[nodiscard]] VECTOR3 Position() const { return position; }
    [[nodiscard]] VECTOR3 Forward() const;
    [[nodiscard]] VECTOR3 Right() const;
    [[nodiscard]] VECTOR3 Up() const;
    [[nodiscard]] float Pitch() const { return pitch; }
    [[nodiscard]] float Yaw() const { return yaw; }
    void TurnBy(float degreesOfYaw) { yaw += degreesOfYaw; }

    // Near 5 and far 1000 unless set otherwise.
    void SetRange(float nearest, float farthest);
    [[nodiscard]] MATRIX4 Projection() const; // 45 degrees upright
    [[nodiscard]] MATRIX4 View() const;

    // The point that is seen at (x, y), both 0 to 1 from the top left, at this depth: 0 on the near plane, 1 on
    // the far one, as the depth buffer counts.
    [[nodiscard]] VECTOR3 Unproject(float x, float y, float depth) const;

private:
    [[nodiscard]] VECTOR3 LevelForward() const;

    VECTOR3 position;
    float pitch = 0.0f;
    float yaw = 0.0f;
    float aspect = 16.0f / 9.0f;
    float nearPlane = 5.0f;
    float farPlane = 1000.0f;
    VECTOR3 acceleration{2500.0f, 2500.0f, 2500.0f};
    VECTOR3 speed{400.0f, 400.0f, 400.0f};
    VECTOR3 velocity;
    VECTOR3 input;
};
