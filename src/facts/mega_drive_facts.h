// The Mega Drive's row, and its options.
#pragma once

#include "facts/machine_facts.h"

#include <cstddef>
#include <cstdint>

enum MdConsole : uint8_t {
    kMdConsoleAuto = 0, // by the game's header
    kMdConsoleGenesis = 1,
    kMdConsoleJapan = 2,
    kMdConsolePal = 3,
};

enum MdDevice : uint8_t {
    kMdDeviceAutomatic = 0, // one of the two pads, by the game's header
    kMdDeviceNone = 1,      // as every unknown number
    kMdDevice3Button = 2,
    kMdDevice6Button = 3,
};

// The option block. The gains are settings of the program, not named options.
struct MD_OPTIONS {
    uint8_t console;    // MdConsole
    uint8_t devices[2]; // MdDevice of port 1 and 2
    uint8_t padding;
    float ymVolume; // gains of FM and PSG in the mix
    float psgVolume;
    uint8_t reserved[244];
};
static_assert(sizeof(MD_OPTIONS) == kMachineOptionBytes);
static_assert(offsetof(MD_OPTIONS, ymVolume) == 4);

inline constexpr OPTION_VALUE kMdConsoleValues[] = {
    {"auto",    "Auto Detect",     kMdConsoleAuto   },
    {"genesis", "GENESIS v1",      kMdConsoleGenesis},
    {"japan",   "MEGADRIVE Japan", kMdConsoleJapan  },
    {"pal",     "MEGADRIVE PAL",   kMdConsolePal    },
};
inline constexpr OPTION_VALUE kMdDeviceValues[] = {
    {"auto",    "Auto Detect",     kMdDeviceAutomatic},
    {"none",    "None",            kMdDeviceNone     },
    {"3button", "3 Button Joypad", kMdDevice3Button  },
    {"6button", "6 Button Joypad", kMdDevice6Button  },
};

inline constexpr size_t kMdConsoleAt = offsetof(MD_OPTIONS, console);
inline constexpr size_t kMdPort1At = offsetof(MD_OPTIONS, devices);
inline constexpr size_t kMdPort2At = kMdPort1At + 1;

inline constexpr MACHINE_OPTION kMdOptions[] = {
    {"console", "Console:", kMdConsoleAt, kMdConsoleAuto,     kMdConsoleValues},
    {"port1",   "INPUT 1:", kMdPort1At,   kMdDeviceAutomatic, kMdDeviceValues },
    {"port2",   "INPUT 2:", kMdPort2At,   kMdDeviceAutomatic, kMdDeviceValues },
};

inline constexpr std::wstring_view kMdConsoleActions[] = {L"MEGADRIVE PAUSE", L"MEGADRIVE RESET"};
inline constexpr std::wstring_view kMdPlayerActions[kMachinePlayers][12] = {
    {L"MEGADRIVE P1 UP", L"MEGADRIVE P1 DOWN", L"MEGADRIVE P1 LEFT", L"MEGADRIVE P1 RIGHT",
     L"MEGADRIVE P1 START", L"MEGADRIVE P1 MODE", L"MEGADRIVE P1 BUTTONA", L"MEGADRIVE P1 BUTTONB",
     L"MEGADRIVE P1 BUTTONC", L"MEGADRIVE P1 BUTTONX", L"MEGADRIVE P1 BUTTONY",
     L"MEGADRIVE P1 BUTTONZ"},
    {L"MEGADRIVE P2 UP", L"MEGADRIVE P2 DOWN", L"MEGADRIVE P2 LEFT", L"MEGADRIVE P2 RIGHT",
     L"MEGADRIVE P2 START", L"MEGADRIVE P2 MODE", L"MEGADRIVE P2 BUTTONA", L"MEGADRIVE P2 BUTTONB",
     L"MEGADRIVE P2 BUTTONC", L"MEGADRIVE P2 BUTTONX", L"MEGADRIVE P2 BUTTONY",
     L"MEGADRIVE P2 BUTTONZ"},
};

inline constexpr std::string_view kMdExtensions[] = {".bin", ".smd", ".gen", ".md"};
// Only cartridges with memory of their own have the last one.
inline constexpr std::string_view kMdRegions[] = {"ram",   "vram",   "palette",
                                                  "vsram", "z80ram", "sram"};

inline constexpr MACHINE_FACTS kMdFacts = {
    .system = kSystemMegaDrive,
    .name = "Mega Drive",
    .shortName = "md",
    .folder = "megadrive",
    .saveFolder = ".\\megadrive",
    .databaseFile = ".\\dat\\megadrive.dat",
    .extensions = kMdExtensions,
    .options = kMdOptions,
    .consoleActions = kMdConsoleActions,
    .playerActions = {kMdPlayerActions[0], kMdPlayerActions[1]},
    .readsConsoleActions = false,
    .regions = kMdRegions,
};
