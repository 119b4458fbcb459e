// Who has the player's hands: the room, a screen of the interface, or a machine.
//
//   walking                     mouse and keys move the camera; machines and interface get no input
//   roomVisible, not walking    the room is shown, the mouse is free: the interface, or a machine played
//                               where it stands
//   not roomVisible             a picture or a screen of the interface fills the window
//
// Pure transitions: they say what the owner must do, and do nothing else. Thread: main.
#pragma once

#include "room/picking.h"

#include <cstdint>

enum class RoomOrder : uint8_t {
    kNothing,
    kChooseGame,        // for the screen `id`
    kStopGame,          // turn off `id` and walk on
    kStopAndChooseGame, // turn off `id`, then choose another one for it
};

struct ROOM_ORDER {
    RoomOrder order = RoomOrder::kNothing;
    uint32_t id = 0; // of the object, which is its session's key

    bool operator==(const ROOM_ORDER&) const = default;
};

class RoomModes {
public:
    [[nodiscard]] bool RoomVisible() const { return roomVisible; }
    [[nodiscard]] bool Walking() const { return walking; }
    // The screen that the player looks at.
    [[nodiscard]] const LOOKED_AT& Selected() const { return selected; }

    // Once a picture, with what the middle of the screen shows.
    void SetLookedAt(const LOOKED_AT& lookedAt) { selected = lookedAt; }

    // Into the room, walking.
    void Enter();
    // The selected screen's picture, or a screen of the interface, fills the window.
    void LeaveForFullScreen();

    // The action `Use` and the left mouse button.
    [[nodiscard]] ROOM_ORDER Use();
    // Takes the hands off the camera, or puts them on it again.
    void ToggleWalking();
    // The middle mouse button: as ToggleWalking, if the selected screen is on.
    void ToggleWalkingAtScreen();
    // The action `Turn Off`. `startFullScreen` is the setting emu_startfullscreen.
    [[nodiscard]] ROOM_ORDER TurnOff(bool startFullScreen);

private:
    bool roomVisible = false;
    bool walking = false;
    LOOKED_AT selected;
};
