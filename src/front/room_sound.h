// Where the room's sound comes from and where it is heard.
#pragma once

#include "room/vector.h"

class CRoomCamera;
class CRoomObjects;
struct CRoomObject;

// Where a television sounds from, its height counted from the ears of a standing player.
[[nodiscard]] VECTOR3 SoundPlaceOf(const CRoomObject& set);

// Each television sounds from the middle of its set.
void PlaceTelevisionSounds(const CRoomObjects& objects);

// The ears are where the camera is.
void PlaceListener(const CRoomCamera& camera);
