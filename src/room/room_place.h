// The place in the room where the player stands, and the direction of the view, as a text for the next start.
//
// The text has five numbers: x, y and z in room units, then yaw and pitch in degrees (room_camera.h).
// Thread: main.
#pragma once

#include "room/vector.h"

#include <optional>
#include <string>
#include <string_view>

class CRoomCamera;
class CRoomObjects;

struct ROOM_PLACE {
    VECTOR3 from;
    VECTOR3 at; // a point that he looks at
};

[[nodiscard]] std::string RoomPlaceText(const CRoomCamera& camera);

// Nothing for any other text, and for a place beyond the walls or in the furniture, which may have been moved.
[[nodiscard]] std::optional<ROOM_PLACE> ReadRoomPlace(std::string_view text,
                                                      const CRoomObjects& objects);
