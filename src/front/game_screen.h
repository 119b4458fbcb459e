// GameScreen: the active session's picture over the whole window.
//
// Keys and mouse go to the machine while it is shown. An unused mouse cursor is hidden.
// Thread: main, with the OpenGL context current.
#pragma once

#include "display/picture_scaler.h"
#include "front/screen.h"

#include <cstdint>

class Televisions;

// How a game's picture is shown.
struct GAME_VIEW {
    PictureScaler scaler = PictureScaler::kNone;
    bool linear = false;
    bool crop = true; // the visible window of the picture, or the whole
    bool statistics = false;

    bool operator==(const GAME_VIEW&) const = default;
};

class GameScreen final : public Screen {
public:
    explicit GameScreen(const Televisions& televisions);

    [[nodiscard]] bool Update(const SCREEN_INPUT& input) override;
    void Draw(const DRAW_TARGET& target) override;
    [[nodiscard]] bool WantsInput() const override { return false; }

    // A change of the view takes effect with the next round.
    void SetView(const GAME_VIEW& wanted) { view = wanted; }
    [[nodiscard]] const GAME_VIEW& View() const { return view; }

    // Microseconds of the host's clock.
    [[nodiscard]] int64_t MouseMoved() const { return mouseMoved; }

private:
    void HideIdleCursor(const SCREEN_INPUT& input);

    const Televisions& televisions;
    GAME_VIEW view;
    GAME_VIEW shownView;
    int64_t mouseMoved;
    int32_t lastX = 0;
    int32_t lastY = 0;
    bool cursorShown = true;
};
