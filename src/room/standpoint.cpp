#include "room/standpoint.h"

#include "room/room_objects.h"

#include <algorithm>

namespace {

constexpr float kEyeHeight = 118.0f;
constexpr float kLeast = 60.0f;   // from the screen, for the smallest set
constexpr float kPerWidth = 1.4f; // and so many widths of a larger one
constexpr float kFromWalls = 10.0f;

} // namespace

STANDPOINT StandpointBefore(const CRoomObject& set) {
    const VECTOR3 centre = CentreOf(set);
    // A screen that lies on its back is read from the side that its lower edge is on.
    VECTOR3 way = {set.direction.x, 0.0f, set.direction.z};
    if (way == VECTOR3{}) {
        way = {0.0f, 0.0f, 1.0f};
    }
    const bool lies = set.direction.y > 0.5f;
    const float distance = lies ? kLeast / 2.0f
                                : kLeast + set.type->depth / 2.0f + set.type->width * kPerWidth;
    VECTOR3 from = centre + Normalised(way) * distance;
    from.x = std::clamp(from.x, kFromWalls, kRoomWidth - kFromWalls);
    from.y = kEyeHeight;
    from.z = std::clamp(from.z, kFromWalls, kRoomDepth - kFromWalls);
    return {from, centre};
}
