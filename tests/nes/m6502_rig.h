// A 6502 on 64 KB of plain memory that logs every access, for the CPU's tests.
//
// An access is logged as kind, address and value, separated by spaces: "r8000=A9".
#pragma once

#include "nes/m6502.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

using BYTES = std::initializer_list<uint8_t>;

// An access in a log without its value: "r8000".
inline std::string AccessText(char kind, uint32_t address) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%c%04X", kind, address & 0xFFFFU);
    return text.data();
}

struct RECORDING_BUS {
    std::vector<uint8_t> memory = std::vector<uint8_t>(0x10000, 0);
    std::string trace;

    uint8_t Read(uint16_t address) {
        Note('r', address, memory[address]);
        return memory[address];
    }
    void Write(uint16_t address, uint8_t value) {
        Note('w', address, value);
        memory[address] = value;
    }

private:
    void Note(char kind, uint16_t address, uint8_t value) {
        std::array<char, 8> text{};
        std::snprintf(text.data(), text.size(), "=%02X", static_cast<unsigned>(value));
        trace += (trace.empty() ? "" : " ") + AccessText(kind, address) + text.data();
    }
};

// Starts an instruction at 8000 with SP FD and interrupts enabled. Memory is zero except for the program and the
// vectors: NMI 9000, reset 8000, IRQ and BRK A000, with a NOP at each.
struct TEST_6502 {
    static constexpr uint16_t kProgram = 0x8000;
    static constexpr uint16_t kNmiHandler = 0x9000;
    static constexpr uint16_t kIrqHandler = 0xA000;
    static constexpr uint8_t kNop = 0xEA;

    M6502 cpu;
    RECORDING_BUS bus;

    TEST_6502() {
        M6502Init(cpu, nullptr, nullptr, nullptr);
        cpu.pc = kProgram;
        cpu.sp = 0xFD;
        cpu.p = kM6502FlagOne;
        Put(0xFFFA, {0x00, 0x90, 0x00, 0x80, 0x00, 0xA0});
        for (uint32_t i = 0; i < 8; ++i) {
            bus.memory[kNmiHandler + i] = kNop;
            bus.memory[kIrqHandler + i] = kNop;
        }
    }

    explicit TEST_6502(BYTES program)
        : TEST_6502() {
        Put(kProgram, program);
    }

    void Put(uint32_t address, BYTES bytes) {
        for (const uint8_t byte : bytes) {
            bus.memory[address++ & 0xFFFF] = byte;
        }
    }

    // One cycle; `between` is the devices, which run after the sampling.
    template <typename Between>
    void Cycle(Between between) {
        M6502Sample(cpu);
        between();
        M6502Cycle(cpu, bus);
    }

    void Cycles(uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) {
            Cycle([] {});
        }
    }

    // Runs an instruction; returns its cycles, or 20 if it doesn't end.
    uint32_t Instruction() {
        uint32_t cycles = 0;
        do {
            Cycles(1);
            ++cycles;
        } while (cycles < 20 && !M6502IsBetweenInstructions(cpu));
        return cycles;
    }

    [[nodiscard]] bool HasFlag(M6502Flag flag) const { return (cpu.p & flag) != 0; }
};
