// What the player looks at: the object that the middle of the screen shows.
//
// Thread: main. Units: room units.
#pragma once

#include "room/vector.h"

#include <cstdint>

class CRoomCamera;
class CRoomObjects;
struct CRoomObject;

// The object that the view meets, null if it meets none. The view is tested at 500 points as far as the far plane;
// of several objects the first in the list wins, not the nearest.
[[nodiscard]] const CRoomObject* PickObject(const CRoomObjects& objects, const CRoomCamera& camera);

// The screen that the player looks at; all zero if there is none.
struct LOOKED_AT {
    uint32_t id = 0;
    bool on = false;
    VECTOR3 direction; // the way that it faces
    VECTOR3 focus;     // above its middle, at eye level
};
// Of a screen that is chosen in another way.
[[nodiscard]] LOOKED_AT LookedAtSet(const CRoomObject& set);
[[nodiscard]] LOOKED_AT LookAt(const CRoomObjects& objects, const CRoomCamera& camera);
