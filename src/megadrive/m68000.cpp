#include "megadrive/m68000.h"

#include "megadrive/m68000_access.h"
#include "megadrive/m68000_flags.h"
#include "megadrive/m68000_private.h"

namespace {

constexpr uint32_t kType68000 = 1;
constexpr uint32_t kStatusBits = 0xA71F; // those that a 68000 has
constexpr uint32_t kExceptionMode = 8;
constexpr uint32_t kDropped = 1; // clocks of an interrupt that intAck drops
constexpr uint32_t kHighestLine = 7;
constexpr uint32_t kLowestLine = 1;
constexpr uint32_t kVectorSize = 4;

uint32_t& StackSlot(M68K_STATE& cpu) {
    return cpu.stackSlots[(cpu.s & kM68kSupervisor) | (cpu.m & cpu.s >> 1 & kM68kMaster)];
}

void SwitchStack(M68K_STATE& cpu, uint32_t s, uint32_t m) {
    StackSlot(cpu) = cpu.regs[kM68kA7];
    cpu.s = s;
    cpu.m = m;
    cpu.regs[kM68kA7] = StackSlot(cpu);
}

uint32_t ReadVector(M68K_STATE& cpu, uint32_t vector) {
    const uint32_t target = M68kReadLong(cpu, cpu.vbr + vector * kVectorSize);
    return target != 0 ? target : M68kReadLong(cpu, cpu.vbr + kM68kUninitialised * kVectorSize);
}

// Returns the old status word.
uint32_t EnterSupervisor(M68K_STATE& cpu) {
    const uint32_t status = M68kStatus(cpu);
    cpu.instrMode = kExceptionMode;
    cpu.t1 = 0;
    cpu.t0 = 0;
    SwitchStack(cpu, kM68kSupervisor, cpu.m);
    return status;
}

// The vector is read before the frame is pushed.
void PushFrameAndJump(M68K_STATE& cpu, uint32_t vector, uint32_t status, uint32_t returnPc) {
    const uint32_t target = ReadVector(cpu, vector);
    M68kPushLong(cpu, returnPc);
    M68kPushWord(cpu, status);
    cpu.pc = target;
}

void SetTimes(M68K_STATE& cpu) {
    cpu.cycBranchByte = -2;
    cpu.cycBranchWord = 2;
    cpu.cycLoopRound = -2;
    cpu.cycLoopEnd = 2;
    cpu.cycSetTrue = 2;
    cpu.cycMovemWord = 2;
    cpu.cycMovemLong = 3;
    cpu.cycShift = 1;
    cpu.cycReset = 132;
}

} // namespace

void M68kAddressError(M68K_STATE& cpu, uint32_t address, M68kAccess access, uint32_t functionCode) {
    cpu.aerrAddress = address;
    cpu.aerrMode = access;
    cpu.aerrCode = functionCode;
    throw M68K_ADDRESS_ERROR{};
}

void M68kReset(M68K_STATE& cpu) {
    M68kBuildTables();
    cpu.stopped = 0;
    cpu.cpuType = kType68000;
    cpu.srMask = kStatusBits;
    SetTimes(cpu);
    if (cpu.cyclesLeft > 0) {
        cpu.cyclesLeft = 0;
    }
    cpu.runMode = 0;
    cpu.intLevel = 0;
    cpu.irqLines = 0;
    cpu.vbr = 0;
    cpu.intMask = kM68kIntMask;
    SwitchStack(cpu, kM68kSupervisor, 0);
    cpu.pc = 0;
    cpu.prefetchAddr = 0;
    cpu.prefetchData = M68kReadImmediate(cpu, 0);
    cpu.regs[kM68kA7] = M68kFetchLong(cpu);
    cpu.pc = M68kFetchLong(cpu);
    if ((cpu.pc & 1) == 0) {
        cpu.prefetchAddr = cpu.pc;
        cpu.prefetchData = M68kReadImmediate(cpu, cpu.pc);
    }
}

void M68kSetIrqLine(M68K_STATE& cpu, uint32_t line, uint32_t state) {
    const uint32_t bit = uint32_t{1} << (line & kHighestLine);
    cpu.irqLines = state == 1 ? cpu.irqLines | bit : cpu.irqLines & ~bit;
    const uint32_t before = cpu.intLevel;
    cpu.intLevel = 0;
    for (uint32_t level = kHighestLine; level >= kLowestLine; --level) {
        if ((cpu.irqLines >> level & 1) != 0) {
            cpu.intLevel = level << 8;
            break;
        }
    }
    if (cpu.intLevel == kM68kIntMask && before != kM68kIntMask) {
        cpu.nmiPending = 1;
    }
}

uint32_t M68kTakeInterrupt(M68K_STATE& cpu, uint32_t level) {
    cpu.instrMode = kExceptionMode;
    uint32_t vector = cpu.intAck(cpu.owner, level);
    if (vector == kM68kAutovector) {
        vector = kM68kSpuriousVector + level;
    } else if (vector == kM68kSpurious) {
        vector = kM68kSpuriousVector;
    } else if (vector >= m68kExceptionCycles.size()) {
        return kDropped;
    }
    const uint32_t status = EnterSupervisor(cpu);
    cpu.intMask = level << 8;
    PushFrameAndJump(cpu, vector, status, cpu.pc);
    return m68kExceptionCycles[vector];
}

void M68kTakeException(M68K_STATE& cpu, uint32_t vector, uint32_t returnPc) {
    const uint32_t status = EnterSupervisor(cpu);
    PushFrameAndJump(cpu, vector, status, returnPc);
    M68kSpend(cpu, m68kExceptionCycles[vector]);
}

void M68kIllegalHandler(M68K_STATE& cpu) {
    M68kTakeException(cpu, kM68kIllegal, cpu.prevPc);
}

bool M68kIsPrivileged(M68K_STATE& cpu) {
    if (cpu.s != 0) {
        return true;
    }
    M68kTakeException(cpu, kM68kPrivilege, cpu.prevPc);
    return false;
}

uint32_t M68kStatus(const M68K_STATE& cpu) {
    return cpu.t1 | cpu.t0 | (cpu.s | cpu.m) << 11 | cpu.intMask | M68kConditions(cpu);
}

void M68kSetStatus(M68K_STATE& cpu, uint32_t status) {
    const uint32_t bits = status & cpu.srMask;
    cpu.t1 = bits & kM68kTrace1;
    cpu.t0 = bits & kM68kTrace0;
    cpu.intMask = bits & kM68kIntMask;
    M68kSetConditions(cpu, bits);
    SwitchStack(cpu, bits >> 11 & kM68kSupervisor, bits >> 11 & kM68kMaster);
}
