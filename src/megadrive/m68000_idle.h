// Finds loops of the 68000 that only read memory, in which programs wait for an interrupt or for another processor.
#pragma once

#include "megadrive/m68000.h"
#include "megadrive/m68000_access.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Whether an opcode writes no memory, whatever its operand: moves to registers, comparisons, tests and branches.
// One of these patterns that is no instruction pushes a frame and so changes A7, which who skips rounds must look at.
[[nodiscard]] constexpr bool M68kReadsAlone(uint32_t opcode) {
    constexpr uint32_t kSizes = 0xC0; // both bits set: not of this form
    const bool hasSize = (opcode & kSizes) != kSizes;
    const bool toRegister = (opcode & 0x0100) == 0 && hasSize; // of ADD, SUB, AND, OR, CMP
    switch (opcode >> 12) {
    case 0x0: {
        const bool testsBit =
            (opcode & 0xFFC0) == 0x0800 || ((opcode & 0x01C0) == 0x0100 && (opcode & 0x38) != 0x08);
        const bool compares = (opcode & 0xFF00) == 0x0C00 && hasSize;
        const bool changesData = (opcode & 0xF138) == 0 && (opcode & 0x0E00) != 0x0800 &&
                                 (opcode & 0x0E00) != 0x0E00 && hasSize;
        return testsBit || compares || changesData;
    }
    case 0x1:
    case 0x2:
    case 0x3: return (opcode & 0x01C0) <= 0x0040; // MOVE to a data register, MOVEA
    case 0x4:
        return ((opcode & 0xFF00) == 0x4A00 && hasSize) || (opcode & 0xF1C0) == 0x41C0 ||
               opcode == 0x4E71;                  // TST, LEA, NOP
    case 0x6: return (opcode & 0x0F00) != 0x0100; // not BSR
    case 0x7: return true;                        // MOVEQ
    case 0xB: return toRegister || !hasSize;      // CMP, CMPA
    case 0x8:
    case 0x9:
    case 0xC:
    case 0xD: return toRegister;
    default: return false;
    }
}

// Whether the next instruction is such an opcode, in plain memory, and not an interrupt's entry.
[[nodiscard]] inline bool M68kMayWait(const M68K_STATE& cpu) {
    const uint16_t* page = cpu.readPages[M68kPageOf(cpu.pc)];
    if (page == nullptr || cpu.nmiPending != 0 || cpu.intLevel > cpu.intMask) {
        return false;
    }
    const bool isFetched = cpu.prefetchAddr == cpu.pc;
    return M68kReadsAlone(isFetched ? cpu.prefetchData & 0xFFFF
                                    : M68kPageWord(page, cpu.pc & kM68kLastWordOfPage));
}

// What decides how the processor goes on with the same memory, if no interrupt is due.
class M68kMoment {
public:
    explicit M68kMoment(const M68K_STATE& cpu) { std::memcpy(bytes.data(), Begin(cpu), kBytes); }

    [[nodiscard]] bool IsAlike(const M68K_STATE& cpu) const {
        return std::memcmp(bytes.data(), Begin(cpu), kBytes) == 0;
    }

private:
    // Registers, flags and the fetched word; what follows in the record are lines, times and wiring.
    static constexpr size_t kFirst = offsetof(M68K_STATE, regs);
    static constexpr size_t kBytes = offsetof(M68K_STATE, srMask) - kFirst;
    static const uint8_t* Begin(const M68K_STATE& cpu) {
        return reinterpret_cast<const uint8_t*>(&cpu) + kFirst;
    }

    std::array<uint8_t, kBytes> bytes;
};
