// The NES's row. It has no options.
#pragma once

#include "facts/machine_facts.h"

inline constexpr std::wstring_view kNesPlayerActions[kMachinePlayers][8] = {
    {L"NES P1 UP", L"NES P1 DOWN", L"NES P1 LEFT", L"NES P1 RIGHT", L"NES P1 BUTTONB",
     L"NES P1 BUTTONA", L"NES P1 SELECT", L"NES P1 START"},
    {L"NES P2 UP", L"NES P2 DOWN", L"NES P2 LEFT", L"NES P2 RIGHT", L"NES P2 BUTTONB",
     L"NES P2 BUTTONA", L"NES P2 SELECT", L"NES P2 START"},
};

inline constexpr std::string_view kNesExtensions[] = {".nes"};
// Only boards with RAM at 0x6000 have the last one.
inline constexpr std::string_view kNesRegions[] = {"ram", "vram", "palette", "oam", "sram"};

inline constexpr MACHINE_FACTS kNesFacts = {
    .system = kSystemNes,
    .name = "NES",
    .shortName = "nes",
    .folder = "nes",
    .saveFolder = ".\\nes",
    .databaseFile = ".\\dat\\nes.dat",
    .extensions = kNesExtensions,
    .playerActions = {kNesPlayerActions[0], kNesPlayerActions[1]},
    .regions = kNesRegions,
};
