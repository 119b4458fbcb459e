// A machine's option block: defaults for a game, setting an option by name, and queries.
//
// Names, values and offsets are in the machine's row (`facts/machine_facts.h`).
#pragma once

#include "facts/machine_facts.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

class CGameFile;

using OptionBlock = std::array<uint8_t, kMachineOptionBytes>;

// The default options for this game: its record's presets, else the machine's defaults.
[[nodiscard]] OptionBlock DefaultMachineOptions(const CGameFile& game);

// Reads the options that are settings of the program again.
void TakeMachineSettings(uint16_t system, OptionBlock& options);

// Sets one option by name and value. False if the machine has no such option, or, with `error` filled,
// if the option has no such value.
[[nodiscard]] bool SetMachineOption(uint16_t system, std::string_view name, std::string_view value,
                                    OptionBlock& options, std::string& error);

// Whether a light gun is plugged into the port of that player, 0 or 1.
[[nodiscard]] bool PortTakesPointer(uint16_t system, const OptionBlock& options, size_t player);

// All options with their values, for the help text.
[[nodiscard]] std::string MachineOptionsHelp();
