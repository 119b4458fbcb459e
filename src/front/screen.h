// Screen: what fills the window. One screen is shown at a time; Application gives it the input of every
// round and draws it when something on it has changed.
//
// Thread: main, with the OpenGL context current.
// Units: mouse positions and sizes in pixels of the drawing surface.
#pragma once

#include <cstdint>

struct MOUSE_STATE;
struct PUMP_EVENTS;

struct SCREEN_INPUT {
    const PUMP_EVENTS& events; // of this round
    const MOUSE_STATE& mouse;
    int64_t now; // microseconds of the host's clock
};

struct DRAW_TARGET {
    uint32_t width;
    uint32_t height;
};

class Screen {
public:
    Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    virtual ~Screen() = default;

    // Handles the round's input. True if the screen must be drawn again.
    [[nodiscard]] virtual bool Update(const SCREEN_INPUT& input) = 0;

    // Draws the whole target.
    virtual void Draw(const DRAW_TARGET& target) = 0;

    // Whether the screen uses keys and mouse itself. If not, they go to the machine.
    [[nodiscard]] virtual bool WantsInput() const = 0;
};
