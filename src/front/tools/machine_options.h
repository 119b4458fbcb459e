// The options of a machine by their names on the command line, and the option block that they make.
#pragma once

#include "machine/emu_system.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

class CGameFile;

using OptionBlock = std::array<uint8_t, kMachineOptionBytes>;

// The options of a first run for this game: what its record presets, else the machine's own defaults.
[[nodiscard]] OptionBlock DefaultMachineOptions(const CGameFile& game);

// Those options that are settings of the program, taken from there anew.
void TakeMachineSettings(uint16_t system, OptionBlock& options);

// Sets one option by its name and value. False when the machine has no such option, or, with `error`
// filled, when the option has no such value.
[[nodiscard]] bool SetMachineOption(uint16_t system, std::string_view name, std::string_view value,
                                    OptionBlock& options, std::string& error);

// All options with their values, for the help text.
[[nodiscard]] std::string MachineOptionsHelp();
