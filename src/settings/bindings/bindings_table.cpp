// Every action in the order of registration, with its default key as a scancode of the USB HID usage
// tables (page 7). After it come the controls of game controllers that do the same.
//
// Both players have keys of their own on one keyboard. A keyboard without a wire for each key reports at
// most a few of those that share its rows and columns, so the second player's are letters that are far
// from the first one's: directions on I J K L, buttons on F G H and V B N, each below what the first
// player has on A S D and Z X C. Keys between the two hands, such as U, O and M, do nothing.

#include "facts/arcade_facts.h"
#include "facts/game_gear_facts.h"
#include "facts/mega_drive_facts.h"
#include "facts/nes_facts.h"
#include "facts/sms_facts.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"

#include <array>

namespace {

constexpr uint64_t Up(uint32_t player) {
    return PadBit(player, kPadDpadUp) | PadBit(player, kPadStickUp);
}
constexpr uint64_t Down(uint32_t player) {
    return PadBit(player, kPadDpadDown) | PadBit(player, kPadStickDown);
}
constexpr uint64_t Left(uint32_t player) {
    return PadBit(player, kPadDpadLeft) | PadBit(player, kPadStickLeft);
}
constexpr uint64_t Right(uint32_t player) {
    return PadBit(player, kPadDpadRight) | PadBit(player, kPadStickRight);
}

constexpr size_t kProgramActions = 22; // come first in the table

// clang-format off
constexpr INPUT_ACTION kInputActions[] = {
    // the program's own
    {L"Move Forward", 26, PadBit(0, kPadDpadUp)},               // W
    {L"Move Back", 22, PadBit(0, kPadDpadDown)},                // S
    {L"Move Left", 4, PadBit(0, kPadDpadLeft)},                 // A
    {L"Move Right", 7, PadBit(0, kPadDpadRight)},               // D
    {L"Use", 8, PadBit(0, kPadSouth)},                          // E
    {L"Turn Off", 20, PadBit(0, kPadNorth)},                    // Q
    {L"Slow Movement", 44, PadBit(0, kPadLeftShoulder)},        // Space
    {L"Take ScreenShot", 69},                                   // F12
    {L"Fast Forward", 43, PadBit(0, kPadRightTrigger)},         // Tab
    {L"Rewind", KeyboardBinding(43, kModifierShift), PadBit(0, kPadLeftTrigger)}, // Shift + Tab
    {L"Load State", 65},                                        // F8
    {L"Save State", 64},                                        // F7
    {L"Saved States", 66, PadBit(0, kPadRightClick)},           // F9
    {L"Game Menu", 58},                                         // F1
    {L"Pause", 19},                                             // P
    {L"Slow Motion", 47},                                       // [
    {L"Frame Step", 48},                                        // ]
    {L"Toggle Fast Forward", KeyboardBinding(43, kModifierCtrl)}, // Ctrl + Tab
    {L"Reset", KeyboardBinding(21, kModifierCtrl)},             // Ctrl + R
    {L"Mute", 39},                                              // 0
    {L"Volume Down", 45},                                       // -
    {L"Volume Up", 46},                                         // =
    // NES
    {L"NES P1 UP", 82, Up(0)},                                  // Up
    {L"NES P1 DOWN", 81, Down(0)},                              // Down
    {L"NES P1 LEFT", 80, Left(0)},                              // Left
    {L"NES P1 RIGHT", 79, Right(0)},                            // Right
    {L"NES P1 BUTTONB", 4, PadBit(0, kPadWest)},                // A
    {L"NES P1 BUTTONA", 22, PadBit(0, kPadSouth)},              // S
    {L"NES P1 SELECT", 229, PadBit(0, kPadBack)},               // Right Shift
    {L"NES P1 START", 40, PadBit(0, kPadStart)},                // Return
    {L"NES P2 UP", 12, Up(1)},                                  // I
    {L"NES P2 DOWN", 14, Down(1)},                              // K
    {L"NES P2 LEFT", 13, Left(1)},                              // J
    {L"NES P2 RIGHT", 15, Right(1)},                            // L
    {L"NES P2 BUTTONB", 9, PadBit(1, kPadWest)},                // F
    {L"NES P2 BUTTONA", 10, PadBit(1, kPadSouth)},              // G
    {L"NES P2 SELECT", 21, PadBit(1, kPadBack)},                // R
    {L"NES P2 START", 23, PadBit(1, kPadStart)},                // T
    // arcade
    {L"Arcade Insert Coin1", 34, PadBit(0, kPadBack)},          // 5
    {L"Arcade Insert Coin2", 35, PadBit(1, kPadBack)},          // 6
    {L"Arcade Start1", 30, PadBit(0, kPadStart)},               // 1
    {L"Arcade Start2", 31, PadBit(1, kPadStart)},               // 2
    {L"Arcade P1 UP", 82, Up(0)},                               // Up
    {L"Arcade P1 DOWN", 81, Down(0)},                           // Down
    {L"Arcade P1 LEFT", 80, Left(0)},                           // Left
    {L"Arcade P1 RIGHT", 79, Right(0)},                         // Right
    {L"Arcade P1 BUTTON1", 4, PadBit(0, kPadSouth)},            // A
    {L"Arcade P1 BUTTON2", 22, PadBit(0, kPadEast)},            // S
    {L"Arcade P1 BUTTON3", 7, PadBit(0, kPadWest)},             // D
    {L"Arcade P1 BUTTON4", 29, PadBit(0, kPadNorth)},           // Z
    {L"Arcade P1 BUTTON5", 27, PadBit(0, kPadLeftShoulder)},    // X
    {L"Arcade P1 BUTTON6", 6, PadBit(0, kPadRightShoulder)},    // C
    {L"Arcade P2 UP", 12, Up(1)},                               // I
    {L"Arcade P2 DOWN", 14, Down(1)},                           // K
    {L"Arcade P2 LEFT", 13, Left(1)},                           // J
    {L"Arcade P2 RIGHT", 15, Right(1)},                         // L
    {L"Arcade P2 BUTTON1", 9, PadBit(1, kPadSouth)},            // F
    {L"Arcade P2 BUTTON2", 10, PadBit(1, kPadEast)},            // G
    {L"Arcade P2 BUTTON3", 11, PadBit(1, kPadWest)},            // H
    {L"Arcade P2 BUTTON4", 25, PadBit(1, kPadNorth)},           // V
    {L"Arcade P2 BUTTON5", 5, PadBit(1, kPadLeftShoulder)},     // B
    {L"Arcade P2 BUTTON6", 17, PadBit(1, kPadRightShoulder)},   // N
    // Master System
    {L"SMS PAUSE", 44, PadBit(0, kPadStart) | PadBit(1, kPadStart)}, // Space
    {L"SMS RESET", 76},                                         // Delete
    {L"SMS P1 UP", 82, Up(0)},                                  // Up
    {L"SMS P1 DOWN", 81, Down(0)},                              // Down
    {L"SMS P1 LEFT", 80, Left(0)},                              // Left
    {L"SMS P1 RIGHT", 79, Right(0)},                            // Right
    {L"SMS P1 BUTTON1", 4, PadBit(0, kPadSouth) | PointerTriggerBit(0)}, // A
    {L"SMS P1 BUTTON2", 22, PadBit(0, kPadEast)},               // S
    {L"SMS P1 BUTTON3", 7, PadBit(0, kPadWest)},                // D
    {L"SMS P1 BUTTON4", 29, PadBit(0, kPadNorth)},              // Z
    {L"SMS P1 BUTTON5", 27, PadBit(0, kPadLeftShoulder)},       // X
    {L"SMS P1 BUTTON6", 6, PadBit(0, kPadRightShoulder)},       // C
    {L"SMS P2 UP", 12, Up(1)},                                  // I
    {L"SMS P2 DOWN", 14, Down(1)},                              // K
    {L"SMS P2 LEFT", 13, Left(1)},                              // J
    {L"SMS P2 RIGHT", 15, Right(1)},                            // L
    {L"SMS P2 BUTTON1", 9, PadBit(1, kPadSouth) | PointerTriggerBit(1)}, // F
    {L"SMS P2 BUTTON2", 10, PadBit(1, kPadEast)},               // G
    {L"SMS P2 BUTTON3", 11, PadBit(1, kPadWest)},               // H
    {L"SMS P2 BUTTON4", 25, PadBit(1, kPadNorth)},              // V
    {L"SMS P2 BUTTON5", 5, PadBit(1, kPadLeftShoulder)},        // B
    {L"SMS P2 BUTTON6", 17, PadBit(1, kPadRightShoulder)},      // N
    // Mega Drive
    {L"MEGADRIVE PAUSE", 44},                                   // Space
    {L"MEGADRIVE RESET", 76},                                   // Delete
    {L"MEGADRIVE P1 UP", 82, Up(0)},                            // Up
    {L"MEGADRIVE P1 DOWN", 81, Down(0)},                        // Down
    {L"MEGADRIVE P1 LEFT", 80, Left(0)},                        // Left
    {L"MEGADRIVE P1 RIGHT", 79, Right(0)},                      // Right
    {L"MEGADRIVE P1 START", 40, PadBit(0, kPadStart)},          // Return
    {L"MEGADRIVE P1 MODE", 42, PadBit(0, kPadBack)},            // Backspace
    {L"MEGADRIVE P1 BUTTONA", 29, PadBit(0, kPadWest)},         // Z
    {L"MEGADRIVE P1 BUTTONB", 27, PadBit(0, kPadSouth)},        // X
    {L"MEGADRIVE P1 BUTTONC", 6, PadBit(0, kPadEast)},          // C
    {L"MEGADRIVE P1 BUTTONX", 4, PadBit(0, kPadLeftShoulder)},  // A
    {L"MEGADRIVE P1 BUTTONY", 22, PadBit(0, kPadNorth)},        // S
    {L"MEGADRIVE P1 BUTTONZ", 7, PadBit(0, kPadRightShoulder)}, // D
    {L"MEGADRIVE P2 UP", 12, Up(1)},                            // I
    {L"MEGADRIVE P2 DOWN", 14, Down(1)},                        // K
    {L"MEGADRIVE P2 LEFT", 13, Left(1)},                        // J
    {L"MEGADRIVE P2 RIGHT", 15, Right(1)},                      // L
    {L"MEGADRIVE P2 START", 23, PadBit(1, kPadStart)},          // T
    {L"MEGADRIVE P2 MODE", 21, PadBit(1, kPadBack)},            // R
    {L"MEGADRIVE P2 BUTTONA", 25, PadBit(1, kPadWest)},         // V
    {L"MEGADRIVE P2 BUTTONB", 5, PadBit(1, kPadSouth)},         // B
    {L"MEGADRIVE P2 BUTTONC", 17, PadBit(1, kPadEast)},         // N
    {L"MEGADRIVE P2 BUTTONX", 9, PadBit(1, kPadLeftShoulder)},  // F
    {L"MEGADRIVE P2 BUTTONY", 10, PadBit(1, kPadNorth)},        // G
    {L"MEGADRIVE P2 BUTTONZ", 11, PadBit(1, kPadRightShoulder)}, // H
    // Game Gear
    {L"GG P1 UP", 82, Up(0)},                                   // Up
    {L"GG P1 DOWN", 81, Down(0)},                               // Down
    {L"GG P1 LEFT", 80, Left(0)},                               // Left
    {L"GG P1 RIGHT", 79, Right(0)},                             // Right
    {L"GG P1 BUTTON1", 4, PadBit(0, kPadSouth)},                // A
    {L"GG P1 BUTTON2", 22, PadBit(0, kPadEast)},                // S
    {L"GG P1 START", 40, PadBit(0, kPadStart)},                 // Return
    {L"GG P2 UP", 12, Up(1)},                                   // I
    {L"GG P2 DOWN", 14, Down(1)},                               // K
    {L"GG P2 LEFT", 13, Left(1)},                               // J
    {L"GG P2 RIGHT", 15, Right(1)},                             // L
    {L"GG P2 BUTTON1", 9, PadBit(1, kPadSouth)},                // F
    {L"GG P2 BUTTON2", 10, PadBit(1, kPadEast)},                // G
    {L"GG P2 START", 23, PadBit(1, kPadStart)},                 // T
};
// clang-format on

// The machines in the order of their rows above.
constexpr std::array<const MACHINE_FACTS*, kInputOwners - 1> kMachines = {
    &kNesFacts, &kArcadeFacts, &kSmsFacts, &kMdFacts, &kGearFacts};

struct OWNERS {
    std::array<uint8_t, std::size(kInputActions)> ofAction{};
    bool everyActionHasItsRow = false;
};

// A machine's rows are its actions in the order of its facts. It polls them by these names: one without
// a row here would never be down.
constexpr OWNERS FindOwners() {
    OWNERS owners;
    size_t row = kProgramActions;
    for (size_t machine = 0; machine < kMachines.size(); ++machine) {
        const MACHINE_FACTS& facts = *kMachines[machine];
        for (const auto names :
             {facts.consoleActions, facts.playerActions[0], facts.playerActions[1]}) {
            for (const std::wstring_view name : names) {
                if (row == std::size(kInputActions) || name != kInputActions[row].name) {
                    return owners;
                }
                owners.ofAction[row] = static_cast<uint8_t>(machine + 1);
                ++row;
            }
        }
    }
    owners.everyActionHasItsRow = row == std::size(kInputActions);
    return owners;
}

constexpr OWNERS kOwners = FindOwners();
static_assert(kOwners.everyActionHasItsRow);

} // namespace

std::span<const INPUT_ACTION> InputActions() {
    return kInputActions;
}

std::span<const uint8_t> InputOwners() {
    return kOwners.ofAction;
}
