// What the window's own keys ask of the program. These keys are the program's and cannot be bound to
// anything else.
//
// The pump finds the commands of a round in this table, in the order of their presses; Application has
// the table of what each of them does.
#pragma once

#include <cstdint>
#include <span>

enum class ProgramCommand : uint8_t {
    kToggleStatistics,
    kToggleCrop,
    kToggleCeilingLight,
    kToggleLinear,
    kNextScaler,
    kToggleFullScreen,
};
inline constexpr uint32_t kProgramCommands = 6;

struct PROGRAM_KEY {
    uint32_t scancode; // of the USB HID tables
    bool alt;          // with alt held; otherwise no alt, ctrl or system key may be down
    bool whileWalking; // also while the user walks the room
    ProgramCommand command;
};
[[nodiscard]] std::span<const PROGRAM_KEY> ProgramKeys();
