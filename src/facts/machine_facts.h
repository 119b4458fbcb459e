// What is known of a machine before one runs: its number and names, folders, options and actions.
//
// Each machine has one row, in a header of its own (`sms_facts.h` and so on) beside the enumerators and
// the option record that the machine works with. Who reads the rows:
// - the settings have a binding for every action,
// - the game library knows a machine's files by their extensions,
// - the machine polls the actions and reads the options,
// - the command line and the screens show the names.
// Plain constants: no row knows a chip, a file or a setting. `machines/machines.h` constructs the
// machines; `machines/machine_options.h` makes and reads option blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// System numbers, as in a game's header.
enum GameSystem : uint16_t {
    kSystemMasterSystem = 1,
    kSystemGameGear = 2,
    kSystemMegaDrive = 4,
    kSystemNes = 5,
    kSystemArcade = 6,
};

// Machine options: 256 bytes whose layout each machine defines.
inline constexpr size_t kMachineOptionBytes = 256;

inline constexpr size_t kMachinePlayers = 2;

struct OPTION_VALUE {
    std::string_view word; // on the command line
    const char* label;     // on the screens; null: not offered there
    uint8_t byte;          // in the option block
};

// The values of every on/off option.
inline constexpr OPTION_VALUE kSwitchValues[] = {
    {"0", "Disabled", 0},
    {"1", "Enabled",  1},
};

struct MACHINE_OPTION {
    std::string_view name; // on the command line
    const char* label;     // on the screens
    size_t offset;         // of its byte in the option block
    uint8_t initial;       // the default
    std::span<const OPTION_VALUE> values;
};

// The option, and its value, that plugs a light gun into a player's port.
struct POINTER_PORT {
    size_t offset; // in the option block
    uint8_t byte;
};

struct MACHINE_FACTS {
    uint16_t system;          // GameSystem
    const char* name;         // for people
    const char* shortName;    // on the command line and in the names of demos
    const char* folder;       // of its games, below the home folder
    const char* saveFolder;   // in the program's path notation; may be empty
    const char* databaseFile; // in the program's path notation
    std::span<const std::string_view> extensions = {}; // of its images, lower case
    std::span<const MACHINE_OPTION> options = {};
    std::span<const POINTER_PORT> pointers = {}; // by player, or empty

    // In the order of registration: the console's own, then those of each player.
    std::span<const std::wstring_view> consoleActions = {};
    std::span<const std::wstring_view> playerActions[kMachinePlayers];
    // False: the actions can be bound, but the machine does not read them.
    bool readsConsoleActions = true;
    // Actions that no part of the machine is connected to, although it may read them.
    std::span<const std::wstring_view> unconnectedActions = {};

    std::span<const std::string_view> regions; // memories to look into; a game may have fewer
};

// All machines, in the order of the library's selector.
[[nodiscard]] std::span<const MACHINE_FACTS> MachineFacts();

// Whether an action of this machine can change anything in it.
[[nodiscard]] bool HasEffect(const MACHINE_FACTS& machine, std::wstring_view action);

// Null for an unknown number or short name.
[[nodiscard]] const MACHINE_FACTS* FindMachineFacts(uint16_t system);
[[nodiscard]] const MACHINE_FACTS* FindMachineFacts(std::string_view shortName);
