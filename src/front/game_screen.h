// GameScreen: one session's picture over the whole window.
//
// Keys and mouse go to the machine while it is shown, and the mouse aims the game's light guns. An unused
// mouse cursor is hidden, unless a window over the game has taken the input.
// Thread: main, with the OpenGL context current.
#pragma once

#include "display/full_screen.h"
#include "front/game_view.h"
#include "front/screen.h"

#include <cstdint>

class LightGun;
class Televisions;

class GameScreen final : public Screen {
public:
    // All outlive the screen; the view may change between rounds. `sessionKey`: whose picture it is.
    GameScreen(const Televisions& televisions, const GAME_VIEW& view, const LightGun& lightGun,
               uint32_t sessionKey);
    ~GameScreen() override; // nobody aims

    [[nodiscard]] bool Update(const SCREEN_INPUT& input) override;
    void Draw(const DRAW_TARGET& target) override;
    [[nodiscard]] bool WantsInput() const override { return false; }
    [[nodiscard]] Pointer PointerWanted() const override;

private:
    [[nodiscard]] FULL_SCREEN_VIEW ViewNow() const;
    void NoteMouse(const SCREEN_INPUT& input);
    void AimLightGuns(const SCREEN_INPUT& input) const;

    const Televisions& televisions;
    const GAME_VIEW& view;
    const LightGun& lightGun;
    const uint32_t key;
    FULL_SCREEN_VIEW shownView;
    int64_t mouseMoved; // microseconds of the host's clock
    int32_t lastX = 0;
    int32_t lastY = 0;
    bool mouseRests = false;
};
