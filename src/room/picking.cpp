#include "room/picking.h"

#include "room/room_camera.h"
#include "room/room_objects.h"

#include <algorithm>

namespace {

constexpr int kSteps = 500;
constexpr float kViewLength = 1000.0f; // to the far plane
constexpr float kFocusHeight = 100.0f;

bool IsInside(const CRoomObject& object, VECTOR3 point) {
    return point.y >= object.y && point.y <= object.y + object.type->height &&
           FootprintOf(object).Contains(point.x, point.z);
}

} // namespace

const CRoomObject* PickObject(const CRoomObjects& objects, const CRoomCamera& camera) {
    const VECTOR3 step = camera.Forward() * (kViewLength / kSteps);
    const auto met = [&](const std::unique_ptr<CRoomObject>& object) {
        for (int i = 1; i <= kSteps; ++i) {
            if (IsInside(*object, camera.Position() + step * static_cast<float>(i))) {
                return true;
            }
        }
        return false;
    };
    const auto& all = objects.All();
    const auto found = std::find_if(all.begin(), all.end(), met);
    return found != all.end() ? found->get() : nullptr;
}

LOOKED_AT LookedAtSet(const CRoomObject& set) {
    const VECTOR3 focus = {set.x + set.type->width / 2.0f, kFocusHeight,
                           set.z + set.type->depth / 2.0f};
    return {set.id, set.on, set.direction, focus};
}

LOOKED_AT LookAt(const CRoomObjects& objects, const CRoomCamera& camera) {
    const CRoomObject* const object = PickObject(objects, camera);
    return object != nullptr && object->type->isScreen ? LookedAtSet(*object) : LOOKED_AT{};
}
