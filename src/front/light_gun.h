// LightGun: the mouse as the light guns of a game that is played with them.
//
// Guns point at pixels of the whole picture, as EMU_INPUT_STATE counts them. Whoever points beside the
// visible window points at nothing and fires nothing, whether its border is shown or not.
//
// Thread: main, except HandPointers.
#pragma once

#include <array>
#include <cstdint>

struct EMU_INPUT_STATE;
struct MOUSE_STATE;
struct OPENED_GAME;
struct SESSION_PICTURE;

// A picture as it lies on the screen, whose size is in pixels.
struct SHOWN_PICTURE {
    const SESSION_PICTURE& picture;
    bool crop; // the visible window of the picture, or the whole
    uint32_t screenWidth;
    uint32_t screenHeight;
};

class LightGun {
public:
    // Looks which ports of the game's console have a gun.
    void SetGame(const OPENED_GAME& game);

    // Once a round: the point under the mouse, its left button as the trigger. Nobody points with a mouse
    // that is not in use, and the keys aim.
    void Aim(const SHOWN_PICTURE& shown, const MOUSE_STATE& mouse, bool inUse) const;

    // For one frame of the active session. Its thread.
    static void HandPointers(EMU_INPUT_STATE& input);

private:
    std::array<bool, 2> players{}; // have a gun
};
