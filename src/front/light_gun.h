// LightGun: the mouse as the light guns of a game.
//
// Guns point at pixels of the whole picture, as in EMU_INPUT_STATE. Outside the visible window the
// mouse points at nothing and does not fire, whether the border is shown or not.
//
// Thread: main, except HandPointers.
#pragma once

#include "display/full_screen.h"

#include <array>
#include <cstdint>

struct EMU_INPUT_STATE;
struct MOUSE_STATE;
struct OPENED_GAME;

// A picture and the size of the screen that shows it, in pixels.
struct SHOWN_PICTURE {
    const SESSION_PICTURE& picture;
    FULL_SCREEN_VIEW view;
    uint32_t screenWidth;
    uint32_t screenHeight;
};

class LightGun {
public:
    // Notes which ports of the game's console have a gun.
    void SetGame(const OPENED_GAME& game);

    [[nodiscard]] bool InGame() const { return players[0] || players[1]; }

    // Once a round: aims at the point under the mouse, with its left button as the trigger. While the
    // mouse is unused nobody points, and the keys aim.
    void Aim(const SHOWN_PICTURE& shown, const MOUSE_STATE& mouse, bool inUse) const;

    // Clears the aim until the next Aim.
    static void LetGo();

    // Fills in the pointers for a frame of the active session. Session thread.
    static void HandPointers(EMU_INPUT_STATE& input);

private:
    std::array<bool, 2> players{}; // those with a gun
};
