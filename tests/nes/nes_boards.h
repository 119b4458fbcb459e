// A cartridge with each kind of board, for tests that hold for all of them.
#pragma once

#include "nes/nes_rig.h"

#include "support/machine_states.h"

#include <memory>
#include <ostream>
#include <random>
#include <vector>

struct NES_BOARD_CASE {
    const char* name;
    int board;
    int flags;
    int programBanks;
    int characterBanks;
};

// The case's name in a failing test.
inline void PrintTo(const NES_BOARD_CASE& what, std::ostream* out) {
    *out << what.name;
}

inline constexpr NES_BOARD_CASE kNesBoardCases[] = {
    {"Plain",           0,  1, 2, 1},
    {"PlainRam",        0,  0, 2, 0},
    {"Shift",           1,  1, 8, 4},
    {"ShiftRam",        1,  0, 4, 0},
    {"ProgramBank",     2,  1, 3, 0},
    {"CharacterBank",   3,  0, 2, 4},
    {"Scanline",        4,  0, 8, 8},
    {"ScanlineFourRam", 4,  8, 4, 0},
    {"OneScreen",       7,  0, 8, 0},
    {"Latched",         9,  0, 8, 8},
    {"TwoBanks",        66, 1, 8, 4},
    {"Cycle",           73, 0, 4, 0},
};

// With random patterns if the board has character ROM.
inline NES_IMAGE ImageOf(const NES_BOARD_CASE& what) {
    std::mt19937 random(static_cast<uint32_t>(what.board) + 1);
    std::vector<uint8_t> characters(static_cast<size_t>(what.characterBanks) * 0x2000);
    for (uint8_t& byte : characters) {
        byte = static_cast<uint8_t>(random());
    }
    return {what.board, what.flags, what.programBanks, what.characterBanks, characters};
}

// Runs frames with the same input for the same frame numbers.
inline std::vector<FRAME_RESULT> Play(CNES& machine, int from, int count) {
    auto rig = std::make_unique<MACHINE_RIG>();
    std::vector<FRAME_RESULT> results;
    for (int frame = from; frame < from + count; ++frame) {
        MACHINE_RIG::Press(L"NES P1 UP", (frame / 8 & 1) != 0);
        MACHINE_RIG::Press(L"NES P2 BUTTONB", (frame / 16 & 1) != 0);
        rig->Frame(machine);
        results.push_back({rig->pictureHash, rig->soundHash, rig->audio.sampleCount});
    }
    return results;
}
