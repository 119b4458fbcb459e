// The commands of the window's fixed keys, which cannot be bound to anything else.
//
// The pump finds the commands of a round in this table, in the order of their presses; Application runs
// them.
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

struct PROGRAM_KEY {
    uint32_t scancode; // of the USB HID tables
    bool alt;          // with alt held; otherwise no alt, ctrl or system key may be down
    bool whileWalking; // also while the user is walking in the room
    ProgramCommand command;
    const char* key;  // as it is printed on the keyboard
    const char* name; // what it does, for the help
};
[[nodiscard]] std::span<const PROGRAM_KEY> ProgramKeys();
