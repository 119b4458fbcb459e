// The row of the System E arcade board. It has no options.
//
// A set has no extension of its own: it is assembled from the files that its database names. Its saves
// are in the home folder itself.
#pragma once

#include "facts/machine_facts.h"

#include <cstdint>

// Board numbers of game records. 2, 3, 5, 6 and 7 have a joystick panel; the programs of 2, 5 and 6
// are encrypted.
enum ArcadeBoard : uint32_t { kBoardAnalog = 1, kBoardJoystick = 3, kBoardDial = 4 };

inline constexpr std::wstring_view kArcadeConsoleActions[] = {
    L"Arcade Insert Coin1", L"Arcade Insert Coin2", L"Arcade Start1", L"Arcade Start2"};
inline constexpr std::wstring_view kArcadePlayerActions[kMachinePlayers][10] = {
    {L"Arcade P1 UP", L"Arcade P1 DOWN", L"Arcade P1 LEFT", L"Arcade P1 RIGHT",
     L"Arcade P1 BUTTON1", L"Arcade P1 BUTTON2", L"Arcade P1 BUTTON3", L"Arcade P1 BUTTON4",
     L"Arcade P1 BUTTON5", L"Arcade P1 BUTTON6"},
    {L"Arcade P2 UP", L"Arcade P2 DOWN", L"Arcade P2 LEFT", L"Arcade P2 RIGHT",
     L"Arcade P2 BUTTON1", L"Arcade P2 BUTTON2", L"Arcade P2 BUTTON3", L"Arcade P2 BUTTON4",
     L"Arcade P2 BUTTON5", L"Arcade P2 BUTTON6"},
};

// The panels of these games have two buttons, and the players take turns at one of them.
inline constexpr std::wstring_view kArcadeUnconnectedActions[] = {
    L"Arcade P1 BUTTON3", L"Arcade P1 BUTTON4", L"Arcade P1 BUTTON5", L"Arcade P1 BUTTON6",
    L"Arcade P2 UP",      L"Arcade P2 DOWN",    L"Arcade P2 LEFT",    L"Arcade P2 RIGHT",
    L"Arcade P2 BUTTON1", L"Arcade P2 BUTTON2", L"Arcade P2 BUTTON3", L"Arcade P2 BUTTON4",
    L"Arcade P2 BUTTON5", L"Arcade P2 BUTTON6"};

inline constexpr std::string_view kArcadeRegions[] = {"ram", "vram", "palette"};

inline constexpr MACHINE_FACTS kArcadeFacts = {
    .system = kSystemArcade,
    .name = "System E",
    .shortName = "arcade",
    .folder = "arcade",
    .saveFolder = "",
    .databaseFile = ".\\dat\\arcade.dat",
    .consoleActions = kArcadeConsoleActions,
    .playerActions = {kArcadePlayerActions[0], kArcadePlayerActions[1]},
    .unconnectedActions = kArcadeUnconnectedActions,
    .regions = kArcadeRegions,
};
