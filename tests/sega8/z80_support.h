// A Z80 on a plain bus that logs every access, for the processor's tests.
//
// An access is logged as clock, kind and address, and the value of a write: "2f4000" is an opcode
// fetch on the second clock; r and w are memory, i and o are ports.
#pragma once

#include "sega8/z80.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

struct RECORDING_BUS {
    std::vector<uint8_t> memory = std::vector<uint8_t>(0x10000, 0);
    uint8_t portValue = 0xAA;
    uint32_t clock = 0;
    std::string trace;

    uint8_t Read(uint16_t address) {
        Note('r', address);
        return memory[address];
    }
    uint8_t ReadOpcode(uint16_t address) {
        Note('f', address);
        return memory[address];
    }
    uint8_t IoRead(uint16_t port) {
        Note('i', port);
        return portValue;
    }
    void Write(uint16_t address, uint8_t value) {
        Note('w', address);
        NoteValue(value);
        memory[address] = value;
    }
    void IoWrite(uint16_t port, uint8_t value) {
        Note('o', port);
        NoteValue(value);
    }

private:
    void Note(char kind, uint16_t address) {
        std::array<char, 24> text{};
        std::snprintf(text.data(), text.size(), "%s%u%c%04X", trace.empty() ? "" : " ", clock, kind,
                      static_cast<unsigned>(address));
        trace += text.data();
    }
    void NoteValue(uint8_t value) {
        std::array<char, 8> text{};
        std::snprintf(text.data(), text.size(), "=%02X", static_cast<unsigned>(value));
        trace += text.data();
    }
};

// Starts with PC at 4000, SP 6000, HL 5000, DE 5100, BC 0210, IX 5200, IY 5300, A 12 and F 0.
struct TEST_Z80 {
    static constexpr uint32_t kProgram = 0x4000;

    Z80 z80;
    RECORDING_BUS bus;

    TEST_Z80() {
        Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
        Z80Reset(z80);
        z80.regs[kZ80Pc] = kProgram;
        z80.regs[kZ80Sp] = 0x6000;
        z80.regs[kZ80Hl] = 0x5000;
        z80.regs[kZ80De] = 0x5100;
        z80.regs[kZ80Bc] = 0x0210;
        z80.regs[kZ80Ix] = 0x5200;
        z80.regs[kZ80Iy] = 0x5300;
        z80.regs[kZ80Af] = 0x1200;
    }

    explicit TEST_Z80(std::initializer_list<uint8_t> program)
        : TEST_Z80() {
        uint32_t address = kProgram;
        for (const uint8_t byte : program) {
            bus.memory[address++] = byte;
        }
    }

    void Clocks(uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) {
            ++bus.clock;
            Z80TickOn(z80, bus);
        }
    }

    // Runs to the end of an instruction, prefixes included; returns its clocks, or 0 if it does not
    // end.
    uint32_t Instruction() {
        constexpr uint32_t kLimit = 64;
        for (uint32_t clocks = 1; clocks <= kLimit; ++clocks) {
            Clocks(1);
            if (z80.queueIndex == 0 && z80.prefix == kZ80NoPrefix) {
                return clocks;
            }
        }
        return 0;
    }

    void Instructions(uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) {
            Instruction();
        }
    }

    [[nodiscard]] uint32_t Word(Z80Register name) const { return z80.regs[name] & 0xFFFF; }
    [[nodiscard]] uint32_t A() const { return (z80.regs[kZ80Af] >> 8) & 0xFF; }
    [[nodiscard]] uint32_t F() const { return z80.regs[kZ80Af] & 0xFF; }
};
