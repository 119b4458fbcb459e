// The window's events: read once a round, into the tables of `bindings.h` and a record for the program
// itself.
//
// Order: `Pump` begins with `InputBeginPump`, which forgets the releases of the previous round; a key
// pressed and released within this round is seen with `BindingIsDown(code, true)`.
// Units: mouse positions in pixels of the drawing surface, which on a high-density screen has more than
// the window; `SetWindowSize` sets both sizes. Keys are scancodes of the USB HID tables.
// Thread: main, the one that made the window.
#pragma once

#include "front/program_commands.h"

#include <bitset>
#include <cstdint>
#include <string>
#include <vector>

class Joysticks;
struct SDL_KeyboardEvent;
struct SDL_MouseButtonEvent;
struct SDL_MouseMotionEvent;
struct SDL_MouseWheelEvent;
struct SDL_WindowEvent;
union SDL_Event;

enum class GuiInputKind : uint8_t {
    kMouseMove,
    kMouseDown,
    kMouseUp,
    kWheel,
    kKeyDown,
    kKeyUp,
    kText
};

// One event of mouse or keyboard. Fields that a kind doesn't have are 0.
struct GUI_INPUT {
    GuiInputKind kind = GuiInputKind::kMouseMove;
    bool repeat = false; // of a key down: the key is held
    int32_t x = 0;       // where the mouse is, for every mouse event
    int32_t y = 0;
    int32_t dx = 0; // how far it moved, only for a move
    int32_t dy = 0;
    uint32_t button = 0; // 1 left, 2 middle, 3 right, then the side buttons
    int32_t wheel = 0;   // -1 up, +1 down; one record for each step
    uint32_t key = 0;    // scancode
    // Of a key: its character in the current layout, a capital with shift; 0 if it has none or is part of a chord with
    // ctrl, alt or the system key. Of text: the typed character, 32 or more.
    uint32_t character = 0;
};

// The events of one round.
struct PUMP_EVENTS {
    bool quit = false; // the window was closed, or the system asks the program to end
    // Of the program's own keys, in the order of their presses.
    std::vector<ProgramCommand> commands;
    bool graphicsReset = false;       // all that the graphics context held is gone
    bool windowChanged = false;       // resized, exposed or restored: to be drawn again
    uint32_t outputGone = 0;          // number of an open audio output that was lost; 0: none
    std::vector<std::string> dropped; // files dropped on the window, paths in UTF-8
    std::vector<GUI_INPUT> gui;       // for the toolkit
    std::vector<GUI_INPUT> screen;    // for the screen, while it wants them; the toolkit gets none
};

struct MOUSE_STATE {
    int32_t x = 0;
    int32_t y = 0;
    bool left = false;        // the left button is down
    bool leftPressed = false; // went down since the pump began, even if it is up again
};

class EventPump {
public:
    explicit EventPump(Joysticks& joysticks);

    // Reads all waiting events.
    [[nodiscard]] PUMP_EVENTS Pump();

    // The program has stood still: of the events that wait now, the next Pump hands on no press of a key or button,
    // no step of the wheel, no text and no command. The tables of what is down are kept as ever.
    void ForgetPresses() { forgetPresses = true; }

    // The window's size in its own units and in pixels of the drawing surface. Until it is called, or
    // for a size of 0, both are equal.
    void SetWindowSize(int32_t width, int32_t height, int32_t drawableWidth,
                       int32_t drawableHeight);
    [[nodiscard]] const MOUSE_STATE& Mouse() const { return mouse; }
    // Until the system says otherwise, the window has the keyboard.
    [[nodiscard]] bool HasKeyboard() const { return hasKeyboard; }

private:
    void HandleEvent(const SDL_Event& event, PUMP_EVENTS& events);
    void HandleKey(const SDL_KeyboardEvent& event, PUMP_EVENTS& events);
    void HandleButton(const SDL_MouseButtonEvent& event, PUMP_EVENTS& events);
    void HandleMotion(const SDL_MouseMotionEvent& event, PUMP_EVENTS& events);
    void HandleWheel(const SDL_MouseWheelEvent& event, PUMP_EVENTS& events);
    void HandleWindow(const SDL_WindowEvent& event, PUMP_EVENTS& events);
    void LetGo();
    [[nodiscard]] int32_t ToDrawableX(int32_t x) const;
    [[nodiscard]] int32_t ToDrawableY(int32_t y) const;
    [[nodiscard]] GUI_INPUT MouseRecord(GuiInputKind kind) const;

    Joysticks& joysticks;
    MOUSE_STATE mouse;
    std::bitset<512> keysDown; // by scancode, what this pump has set
    bool forgetPresses = false;
    bool hasKeyboard = true;
    int32_t windowWidth = 0;
    int32_t windowHeight = 0;
    int32_t surfaceWidth = 0;
    int32_t surfaceHeight = 0;
};
