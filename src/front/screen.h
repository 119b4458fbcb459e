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

    // Takes the round's input. True when the screen looks different from now on.
    [[nodiscard]] virtual bool Update(const SCREEN_INPUT& input) = 0;

    // Draws the whole of the target.
    virtual void Draw(const DRAW_TARGET& target) = 0;

    // Whether keys and mouse are the screen's own. If not, they are the machine's.
    [[nodiscard]] virtual bool WantsInput() const = 0;
};
