// Where to stand to see a set well: before its screen, at eye level.
#pragma once

#include "room/vector.h"

struct CRoomObject;

struct STANDPOINT {
    VECTOR3 from;
    VECTOR3 at; // the middle of the screen
};

// Of a screen. Room units.
[[nodiscard]] STANDPOINT StandpointBefore(const CRoomObject& set);
