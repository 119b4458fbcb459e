// What becomes of the mouse pointer in each of the program's modes.
//
//   a message box, or another window over everything   seen
//   menu, panel, browser                               seen
//   walking                                            captured: its moves turn the head
//   standing, full screen                              seen for three seconds after the mouse was used, and hidden
//                                                      before and after
// Who plays with a controller sees no pointer until the mouse moves again. With a light gun in the game the pointer is
// seen for exactly as long as it aims, whoever uses a controller beside.
//
// Pure.
#pragma once

#include "screens/program_modes.h"

#include <cstdint>

enum class Pointer : uint8_t { kSeen, kHidden, kCaptured };

// How long after its last use the mouse rests, in microseconds. Light guns are aimed until then, and the strip of
// buttons is shown.
inline constexpr int64_t kMouseRests = 3000000;

struct POINTER_FACTS {
    ProgramMode mode = ProgramMode::kMenu;
    bool behind = false;    // a window that takes all input lies over what the mode shows
    bool resting = false;   // the mouse
    bool padInHand = false; // a controller was used after the mouse
    bool lightGun = false;  // the game that fills the window has one
};
[[nodiscard]] Pointer PointerFor(const POINTER_FACTS& facts);
