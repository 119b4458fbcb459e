#include "front/room_sound.h"

#include "audio/sound.h"
#include "room/room_camera.h"
#include "room/room_objects.h"

namespace {

// The listener's height is not used, so that of a set counts from a standing player's ears.
constexpr float kEarHeight = 118.0f;

} // namespace

VECTOR3 SoundPlaceOf(const CRoomObject& set) {
    const VECTOR3 centre = CentreOf(set);
    return {centre.x, centre.y - kEarHeight, centre.z};
}

void PlaceTelevisionSounds(const CRoomObjects& objects) {
    for (const auto& object : objects.All()) {
        if (object->type->isScreen) {
            const VECTOR3 place = SoundPlaceOf(*object);
            SoundSetTelevision(object->id, place.x, place.y, place.z);
        }
    }
}

void PlaceListener(const CRoomCamera& camera) {
    const VECTOR3 front = camera.Forward();
    const VECTOR3 top = camera.Up();
    SOUND_LISTENER listener;
    listener.x = camera.Position().x;
    listener.z = camera.Position().z;
    listener.front[0] = front.x;
    listener.front[1] = front.y;
    listener.front[2] = front.z;
    listener.top[0] = top.x;
    listener.top[1] = top.y;
    listener.top[2] = top.z;
    SoundSetListener(listener);
}
