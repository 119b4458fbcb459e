// The Game Gear's row, and its options.
#pragma once

#include "facts/machine_facts.h"

#include <cstddef>
#include <cstdint>

enum GearModel : uint8_t {
    kGearExport = 0, // also for every unknown number
    kGearJapanese = 1
};

// The option block. All zero is one export console with its own window.
struct GEAR_OPTIONS {
    uint8_t model;       // GearModel
    uint8_t gearToGear;  // not 0: two consoles
    uint8_t fullDisplay; // not 0: the whole picture
    uint8_t reserved[253];
};
static_assert(sizeof(GEAR_OPTIONS) == kMachineOptionBytes);
static_assert(offsetof(GEAR_OPTIONS, fullDisplay) == 2);

inline constexpr OPTION_VALUE kGearModelValues[] = {
    {"export",   "Export",   kGearExport  },
    {"japanese", "Japanese", kGearJapanese},
};

inline constexpr size_t kGearModelAt = offsetof(GEAR_OPTIONS, model);
inline constexpr size_t kGearLinkAt = offsetof(GEAR_OPTIONS, gearToGear);
inline constexpr size_t kGearFullDisplayAt = offsetof(GEAR_OPTIONS, fullDisplay);

inline constexpr MACHINE_OPTION kGearOptions[] = {
    {"model", "GameGear Model:", kGearModelAt,       kGearExport, kGearModelValues},
    {"link",  "Gear-To-Gear:",   kGearLinkAt,        0,           kSwitchValues   },
    {"full",  "Full Display:",   kGearFullDisplayAt, 0,           kSwitchValues   },
};

inline constexpr std::wstring_view kGearPlayerActions[kMachinePlayers][7] = {
    {L"GG P1 UP", L"GG P1 DOWN", L"GG P1 LEFT", L"GG P1 RIGHT", L"GG P1 BUTTON1", L"GG P1 BUTTON2",
     L"GG P1 START"},
    {L"GG P2 UP", L"GG P2 DOWN", L"GG P2 LEFT", L"GG P2 RIGHT", L"GG P2 BUTTON1", L"GG P2 BUTTON2",
     L"GG P2 START"},
};

inline constexpr std::string_view kGearExtensions[] = {".gg"};
inline constexpr std::string_view kGearRegions[] = {"ram", "sram", "vram", "palette"};

inline constexpr MACHINE_FACTS kGearFacts = {
    .system = kSystemGameGear,
    .name = "Game Gear",
    .shortName = "gg",
    .folder = "gamegear",
    .saveFolder = ".\\gamegear",
    .databaseFile = ".\\dat\\gamegear.dat",
    .extensions = kGearExtensions,
    .options = kGearOptions,
    .playerActions = {kGearPlayerActions[0], kGearPlayerActions[1]},
    .regions = kGearRegions,
};
