// A signal processor with a ROM of our own; programs are put into its writable program memory.
#pragma once

#include "megadrive/svp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

class SvpRig {
public:
    static constexpr uint32_t kProgram = 0x100;

    SvpRig() {
        for (uint32_t i = 0; i < rom.size(); ++i) {
            rom[i] = RomWord(i);
        }
        SvpReset(*svp, rom.data());
    }

    // Any 64 Ki words in a row differ, and so do the blocks of them.
    static uint16_t RomWord(uint32_t index) {
        return static_cast<uint16_t>((index * 0x9E35 + (index >> 16) * 0x1357) & 0xFFFF);
    }

    // Stores `words` at `at` and runs `instructions` from there.
    void Run(std::initializer_list<int> words, int instructions = 1, uint32_t at = kProgram) {
        uint32_t to = at;
        for (const int word : words) {
            svp->iramRom[to++] = static_cast<uint16_t>(word);
        }
        Go(at, instructions);
    }

    void Go(uint32_t at, int instructions) {
        svp->gr[kSvpPc] = at << 16;
        SvpRun(*svp, instructions);
    }

    uint32_t Pc() const { return svp->gr[kSvpPc] >> 16; }

    uint32_t A() const { return svp->gr[kSvpA]; }

    void SetA(uint32_t value) { svp->gr[kSvpA] = value; }

    // The 16 bits of a register that is no more than a cell.
    uint32_t Get(uint32_t number) const { return svp->gr[number] >> 16; }

    void Set(uint32_t number, uint32_t value) { svp->gr[number] = value << 16; }

    uint32_t Flags() const { return Get(kSvpSt) & (kSvpStZero | kSvpStNegative); }

    // Sets the access of a PM register, as a program does: address, mode, then a blind access.
    void Program(uint32_t number, bool write, uint32_t address, uint32_t mode) {
        const int blind = static_cast<int>(write ? number << 4 : number);
        Run({0x08E0, static_cast<int>(address), 0x08E0, static_cast<int>(mode), blind}, 3);
    }

    // `ld A, PMx` and `ld PMx, imm`.
    uint32_t ReadRegister(uint32_t number) {
        Run({static_cast<int>(0x0030 | number)});
        return A() >> 16;
    }

    void WriteRegister(uint32_t number, int value) {
        Run({static_cast<int>(0x0800 | number << 4), value});
    }

    std::vector<uint16_t> rom = std::vector<uint16_t>(kSvpRomWords);
    std::unique_ptr<MD_SVP> svp = std::make_unique<MD_SVP>();
};
