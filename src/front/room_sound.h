// Where the room's sound comes from and where it is heard.
#pragma once

class CRoomCamera;
class CRoomObjects;

// Each television sounds from the middle of its set.
void PlaceTelevisionSounds(const CRoomObjects& objects);

// The ears are where the camera is.
void PlaceListener(const CRoomCamera& camera);
