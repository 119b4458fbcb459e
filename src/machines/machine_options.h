// The option block of a machine: made for a game, changed by the names of the options, and looked into.
//
// Names, values and offsets stand in the machine's row (`facts/machine_facts.h`).
#pragma once

#include "facts/machine_facts.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

class CGameFile;

using OptionBlock = std::array<uint8_t, kMachineOptionBytes>;

// The options of a first run for this game: what its record presets, else the machine's own defaults.
[[nodiscard]] OptionBlock DefaultMachineOptions(const CGameFile& game);

// Takes the options that are settings of the program from there anew.
void TakeMachineSettings(uint16_t system, OptionBlock& options);

// Sets one option by its name and value. False when the machine has no such option, or, with `error`
// filled, when the option has no such value.
[[nodiscard]] bool SetMachineOption(uint16_t system, std::string_view name, std::string_view value,
                                    OptionBlock& options, std::string& error);

// Whether the port of that player, 0 or 1, takes a pointer: a light gun is plugged in.
[[nodiscard]] bool PortTakesPointer(uint16_t system, const OptionBlock& options, size_t player);

// All options with their values, for the help text.
[[nodiscard]] std::string MachineOptionsHelp();
