// Every action in the order of registration, with the key it is bound to on a first run as a scancode
// of the USB HID usage tables (page 7). Of the machines' actions only those of the first player and of
// the console itself have one.

#include "front/settings/bindings.h"

namespace {

// clang-format off
constexpr INPUT_ACTION kInputActions[] = {
    // the program's own
    {L"Move Forward", 26},             // W
    {L"Move Back", 22},                // S
    {L"Move Left", 4},                 // A
    {L"Move Right", 7},                // D
    {L"Use", 8},                       // E
    {L"Turn Off", 20},                 // Q
    {L"Slow Movement", 44},            // Space
    {L"Take ScreenShot", 69},          // F12
    {L"Fast Forward", 43},             // Tab
    {L"Rewind", KeyboardBinding(43, kModifierShift)}, // Shift + Tab
    {L"Load State", 65},               // F8
    {L"Save State", 64},               // F7
    // NES
    {L"NES P1 UP", 82},                // Up
    {L"NES P1 DOWN", 81},              // Down
    {L"NES P1 LEFT", 80},              // Left
    {L"NES P1 RIGHT", 79},             // Right
    {L"NES P1 BUTTONB", 4},            // A
    {L"NES P1 BUTTONA", 22},           // S
    {L"NES P1 SELECT", 229},           // Right Shift
    {L"NES P1 START", 40},             // Return
    {L"NES P2 UP", 0},
    {L"NES P2 DOWN", 0},
    {L"NES P2 LEFT", 0},
    {L"NES P2 RIGHT", 0},
    {L"NES P2 BUTTONB", 0},
    {L"NES P2 BUTTONA", 0},
    {L"NES P2 SELECT", 0},
    {L"NES P2 START", 0},
    // arcade
    {L"Arcade Insert Coin1", 34},      // 5
    {L"Arcade Insert Coin2", 35},      // 6
    {L"Arcade Start1", 30},            // 1
    {L"Arcade Start2", 31},            // 2
    {L"Arcade P1 UP", 82},             // Up
    {L"Arcade P1 DOWN", 81},           // Down
    {L"Arcade P1 LEFT", 80},           // Left
    {L"Arcade P1 RIGHT", 79},          // Right
    {L"Arcade P1 BUTTON1", 4},         // A
    {L"Arcade P1 BUTTON2", 22},        // S
    {L"Arcade P1 BUTTON3", 7},         // D
    {L"Arcade P1 BUTTON4", 29},        // Z
    {L"Arcade P1 BUTTON5", 27},        // X
    {L"Arcade P1 BUTTON6", 6},         // C
    {L"Arcade P2 UP", 0},
    {L"Arcade P2 DOWN", 0},
    {L"Arcade P2 LEFT", 0},
    {L"Arcade P2 RIGHT", 0},
    {L"Arcade P2 BUTTON1", 0},
    {L"Arcade P2 BUTTON2", 0},
    {L"Arcade P2 BUTTON3", 0},
    {L"Arcade P2 BUTTON4", 0},
    {L"Arcade P2 BUTTON5", 0},
    {L"Arcade P2 BUTTON6", 0},
    // Master System
    {L"SMS PAUSE", 44},                // Space
    {L"SMS RESET", 76},                // Delete
    {L"SMS P1 UP", 82},                // Up
    {L"SMS P1 DOWN", 81},              // Down
    {L"SMS P1 LEFT", 80},              // Left
    {L"SMS P1 RIGHT", 79},             // Right
    {L"SMS P1 BUTTON1", 4},            // A
    {L"SMS P1 BUTTON2", 22},           // S
    {L"SMS P1 BUTTON3", 7},            // D
    {L"SMS P1 BUTTON4", 29},           // Z
    {L"SMS P1 BUTTON5", 27},           // X
    {L"SMS P1 BUTTON6", 6},            // C
    {L"SMS P2 UP", 0},
    {L"SMS P2 DOWN", 0},
    {L"SMS P2 LEFT", 0},
    {L"SMS P2 RIGHT", 0},
    {L"SMS P2 BUTTON1", 0},
    {L"SMS P2 BUTTON2", 0},
    {L"SMS P2 BUTTON3", 0},
    {L"SMS P2 BUTTON4", 0},
    {L"SMS P2 BUTTON5", 0},
    {L"SMS P2 BUTTON6", 0},
    // Mega Drive
    {L"MEGADRIVE PAUSE", 44},          // Space
    {L"MEGADRIVE RESET", 76},          // Delete
    {L"MEGADRIVE P1 UP", 82},          // Up
    {L"MEGADRIVE P1 DOWN", 81},        // Down
    {L"MEGADRIVE P1 LEFT", 80},        // Left
    {L"MEGADRIVE P1 RIGHT", 79},       // Right
    {L"MEGADRIVE P1 START", 40},       // Return
    {L"MEGADRIVE P1 MODE", 42},        // Backspace
    {L"MEGADRIVE P1 BUTTONA", 29},     // Z
    {L"MEGADRIVE P1 BUTTONB", 27},     // X
    {L"MEGADRIVE P1 BUTTONC", 6},      // C
    {L"MEGADRIVE P1 BUTTONX", 4},      // A
    {L"MEGADRIVE P1 BUTTONY", 22},     // S
    {L"MEGADRIVE P1 BUTTONZ", 7},      // D
    {L"MEGADRIVE P2 UP", 0},
    {L"MEGADRIVE P2 DOWN", 0},
    {L"MEGADRIVE P2 LEFT", 0},
    {L"MEGADRIVE P2 RIGHT", 0},
    {L"MEGADRIVE P2 START", 0},
    {L"MEGADRIVE P2 MODE", 0},
    {L"MEGADRIVE P2 BUTTONA", 0},
    {L"MEGADRIVE P2 BUTTONB", 0},
    {L"MEGADRIVE P2 BUTTONC", 0},
    {L"MEGADRIVE P2 BUTTONX", 0},
    {L"MEGADRIVE P2 BUTTONY", 0},
    {L"MEGADRIVE P2 BUTTONZ", 0},
    // Game Gear
    {L"GG P1 UP", 82},                 // Up
    {L"GG P1 DOWN", 81},               // Down
    {L"GG P1 LEFT", 80},               // Left
    {L"GG P1 RIGHT", 79},              // Right
    {L"GG P1 BUTTON1", 4},             // A
    {L"GG P1 BUTTON2", 22},            // S
    {L"GG P1 START", 40},              // Return
    {L"GG P2 UP", 0},
    {L"GG P2 DOWN", 0},
    {L"GG P2 LEFT", 0},
    {L"GG P2 RIGHT", 0},
    {L"GG P2 BUTTON1", 0},
    {L"GG P2 BUTTON2", 0},
    {L"GG P2 START", 0},
};
// clang-format on

} // namespace

std::span<const INPUT_ACTION> InputActions() {
    return kInputActions;
}
