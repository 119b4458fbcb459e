// Screen: what fills the window, below the toolkit's windows and the lines of text. Application shows one
// screen at a time, hands it the input of every round, and draws it when something has changed.
//
// A screen gets what it shows when it is made: Televisions for the pictures of sessions, GAME_VIEW for how
// to show them.
//
// Thread: main, with the OpenGL context current, from its making to its end.
// Order: any number of Update, each before the Draw that shows what it changed. A screen ends when another
//   is shown, or before the window closes.
// Units: mouse positions and sizes in pixels of the drawing surface. A screen that has positions of its own
//   scales them with the target, as the toolkit does.
#pragma once

#include "screens/program_pointer.h"

#include <cstdint>
#include <string>
#include <vector>

struct MOUSE_STATE;
struct OPENED_GAME;
struct PUMP_EVENTS;

struct DRAW_TARGET {
    uint32_t width;
    uint32_t height;
};

// A window of the toolkit on the target, in pixels from the top left, and what is seen of it.
struct WINDOW_PLACE {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
    int32_t seenX = 0;
    int32_t seenY = 0;
    int32_t seenWidth = 0;
    int32_t seenHeight = 0;
};

// One round.
struct SCREEN_INPUT {
    const PUMP_EVENTS& events; // the screen's own input is in `events.screen`
    const MOUSE_STATE& mouse;
    DRAW_TARGET target; // what the next Draw gets, unless the window changes its size
    int64_t now;        // microseconds of the host's clock
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

    // Whether keys and mouse belong to the screen alone, from the next round on: as while the user walks
    // in a room. Then the mouse is captured, so that only its moves count, and neither a machine nor a
    // window of the toolkit gets any input. Otherwise all of it goes to both.
    [[nodiscard]] virtual bool WantsInput() const = 0;

    // What becomes of the mouse pointer from the next round on. It is captured while the screen wants the input.
    [[nodiscard]] virtual Pointer PointerWanted() const {
        return WantsInput() ? Pointer::kCaptured : Pointer::kSeen;
    }

    // The window's title while a game of the screen's own is played; empty: that of the program.
    [[nodiscard]] virtual std::string PlayedTitle() const { return {}; }

    // The graphics context is given up, with every texture and program in it; and there is a new one.
    virtual void LoseGraphics() {}
    virtual void RenewGraphics() {}

    // Draws the scene that goes with a window of the toolkit (kWindowBackgroundPass), over that window.
    virtual void DrawInWindow(const WINDOW_PLACE& /*place*/, const DRAW_TARGET& /*target*/) {}

    // Files and folders were dropped on the window, paths in UTF-8. True if the screen takes them all as they are;
    // otherwise each is opened as a game.
    [[nodiscard]] virtual bool TakeDroppedFiles(const std::vector<std::string>& /*files*/) {
        return false;
    }

    // A game was dropped on the window. True if the screen has played it, or said why not; otherwise it takes
    // the place of the game that fills the window.
    [[nodiscard]] virtual bool TakeDropped(OPENED_GAME& /*opened*/) { return false; }
};
