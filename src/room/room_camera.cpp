#include "room/room_camera.h"

#include "room/room_objects.h"

#include <algorithm>
#include <numbers>

namespace {

constexpr float kFieldOfView = 45.0f; // degrees, upright
constexpr float kWalkSpeed = 300.0f;  // units a second
constexpr float kSlowSpeed = 120.0f;
constexpr float kStandstill = 0.000001f; // units a second
constexpr float kLookFactor = 0.2f;      // degrees a pixel
constexpr float kSlowLookFactor = 0.05f;
constexpr float kNotch = 40.0f; // units
constexpr float kSlowNotch = 10.0f;
constexpr float kWallDistance = 2.0f;
constexpr VECTOR3 kStart{180.0f, 118.0f, 200.0f};
constexpr VECTOR3 kStartAim{180.0f, 118.0f, 0.0f};

constexpr float Radians(float degrees) {
    return degrees * std::numbers::pi_v<float> / 180.0f;
}

constexpr float Degrees(float radians) {
    return radians * 180.0f / std::numbers::pi_v<float>;
}

// How far an axis moves in `seconds`.
float StepOf(float velocity, float acceleration, float input, float seconds) {
    if (input == 0.0f && std::abs(velocity) < kStandstill) {
        return 0.0f;
    }
    return velocity * seconds + acceleration * input * seconds * seconds;
}

// The velocity after `seconds` of acceleration towards what the input asks for.
float VelocityAfter(float velocity, float acceleration, float input, float speed, float seconds) {
    const float wanted = input * speed;
    const float change = acceleration * seconds;
    const float reached = velocity < wanted ? std::min(velocity + change, wanted)
                                            : std::max(velocity - change, wanted);
    return std::clamp(reached, -speed, speed);
}

} // namespace

void CRoomCamera::SetUp(float screenAspect) {
    SetUp(screenAspect, kStart, kStartAim);
}

void CRoomCamera::SetUp(float screenAspect, VECTOR3 from, VECTOR3 at) {
    *this = CRoomCamera();
    SetAspect(screenAspect);
    position = from;
    const VECTOR3 view = Normalised(at - from);
    yaw = Degrees(std::atan2(-view.x, -view.z));
    pitch = Degrees(std::asin(std::clamp(view.y, -1.0f, 1.0f)));
}

void CRoomCamera::SetAspect(float screenAspect) {
    aspect = std::isfinite(screenAspect) && screenAspect > 0.0f ? screenAspect : 1.0f;
}

void CRoomCamera::SetRange(float nearest, float farthest) {
    nearPlane = nearest;
    farPlane = farthest;
}

VECTOR3 CRoomCamera::Forward() const {
    const float level = std::cos(Radians(pitch));
    return {-std::sin(Radians(yaw)) * level, std::sin(Radians(pitch)),
            -std::cos(Radians(yaw)) * level};
}

VECTOR3 CRoomCamera::Right() const {
    return {std::cos(Radians(yaw)), 0.0f, -std::sin(Radians(yaw))};
}

VECTOR3 CRoomCamera::Up() const {
    return Cross(Right(), Forward());
}

// Of full length, so that who looks up or down walks as fast. Upside down, ahead is the other way.
VECTOR3 CRoomCamera::LevelForward() const {
    constexpr float kUpright = -0.0001f; // a cosine; that of 90 degrees may be a little below 0
    const float way = std::cos(Radians(pitch)) < kUpright ? -1.0f : 1.0f;
    return {-std::sin(Radians(yaw)) * way, 0.0f, -std::cos(Radians(yaw)) * way};
}

void CRoomCamera::Move(const WALK_INPUT& walk, float seconds) {
    input = {walk.right, 0.0f, walk.forward};
    const float limit = walk.slow ? kSlowSpeed : kWalkSpeed;
    speed = {limit, limit, limit};

    if (velocity != VECTOR3{}) {
        const float right = StepOf(velocity.x, acceleration.x, input.x, seconds);
        const float forward = StepOf(velocity.z, acceleration.z, input.z, seconds);
        position = position + Right() * right + LevelForward() * forward;
    }
    velocity.x = VelocityAfter(velocity.x, acceleration.x, input.x, speed.x, seconds);
    velocity.z = VelocityAfter(velocity.z, acceleration.z, input.z, speed.z, seconds);

    position.x = std::clamp(position.x, kWallDistance, kRoomWidth - kWallDistance);
    position.y = std::clamp(position.y, kWallDistance, kRoomHeight - kWallDistance);
    position.z = std::clamp(position.z, kWallDistance, kRoomDepth - kWallDistance);
}

// Downwards there is no limit: past 90 degrees the view is upside down.
void CRoomCamera::Look(float dx, float dy, bool slow) {
    const float factor = slow ? kSlowLookFactor : kLookFactor;
    Turn(dx * factor, dy * factor);
}

void CRoomCamera::Turn(float right, float down) {
    yaw -= right;
    pitch = std::min(pitch - down, 90.0f);
}

void CRoomCamera::Zoom(int notches, bool slow) {
    position = position + Forward() * (static_cast<float>(notches) * (slow ? kSlowNotch : kNotch));
}

MATRIX4 CRoomCamera::Projection() const {
    const float height = 1.0f / std::tan(Radians(kFieldOfView) / 2.0f);
    MATRIX4 m{};
    m[0] = height / aspect;
    m[5] = height;
    m[10] = (farPlane + nearPlane) / (nearPlane - farPlane);
    m[11] = -1.0f;
    m[14] = 2.0f * farPlane * nearPlane / (nearPlane - farPlane);
    return m;
}

MATRIX4 CRoomCamera::View() const {
    const VECTOR3 right = Right();
    const VECTOR3 up = Up();
    const VECTOR3 back = Forward() * -1.0f;
    return {right.x,
            up.x,
            back.x,
            0.0f,
            right.y,
            up.y,
            back.y,
            0.0f,
            right.z,
            up.z,
            back.z,
            0.0f,
            -Dot(right, position),
            -Dot(up, position),
            -Dot(back, position),
            1.0f};
}

// Inverts projection and view: first the distance along the view from the depth, then the two other coordinates
// from that distance.
VECTOR3 CRoomCamera::Unproject(float x, float y, float depth) const {
    const MATRIX4 projection = Projection();
    const float distance = projection[14] / (2.0f * depth - 1.0f + projection[10]);
    const float right = (2.0f * x - 1.0f) * distance / projection[0];
    const float up = (1.0f - 2.0f * y) * distance / projection[5];
    return position + Right() * right + Up() * up + Forward() * distance;
}
