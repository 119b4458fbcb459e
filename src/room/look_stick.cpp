#include "room/look_stick.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kDeadZone = 0.18f;
constexpr float kTurnRate = 180.0f; // degrees a second
constexpr float kNodRate = 120.0f;

} // namespace

STICK WithoutDeadZone(STICK stick) {
    const float length = std::hypot(stick.x, stick.y);
    if (!(length > kDeadZone)) { // NaN as well
        return {};
    }
    const float reach = std::min((length - kDeadZone) / (1.0f - kDeadZone), 1.0f);
    return {stick.x / length * reach, stick.y / length * reach};
}

STICK LookRate(STICK stick) {
    const STICK way = WithoutDeadZone(stick);
    const float length = std::hypot(way.x, way.y);
    return {way.x * length * kTurnRate, way.y * length * kNodRate};
}
