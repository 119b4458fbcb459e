// The processor's tick, for the machine's loop to inline.
#pragma once

#include "megadrive/m68000.h"
#include "megadrive/m68000_access.h"

// Takes an interrupt and returns the clocks of its entry; 1 if intAck drops it.
uint32_t M68kTakeInterrupt(M68K_STATE& cpu, uint32_t level);

inline constexpr uint32_t kM68kStoppedClocks = 4;
inline constexpr uint32_t kM68kNmiLevel = 7;

// Runs one instruction, takes an interrupt, or stays stopped for four clocks. Returns the clocks. Throws
// M68K_ADDRESS_ERROR.
inline uint32_t M68kTick(M68K_STATE& cpu) {
    if (cpu.stopped != 0) {
        return kM68kStoppedClocks;
    }
    if (cpu.nmiPending != 0) [[unlikely]] {
        cpu.nmiPending = 0;
        return M68kTakeInterrupt(cpu, kM68kNmiLevel);
    }
    if (cpu.intLevel > cpu.intMask) [[unlikely]] {
        return M68kTakeInterrupt(cpu, cpu.intLevel >> 8);
    }
    cpu.prevPc = cpu.pc;
    if ((cpu.pc & 1) != 0) [[unlikely]] {
        M68kAddressError(cpu, cpu.pc, kM68kReading, cpu.s | kM68kProgram);
    }
    cpu.ir = M68kFetchWord(cpu);
    m68kHandlers[cpu.ir](cpu);
    return m68kCycles[cpu.ir];
}
