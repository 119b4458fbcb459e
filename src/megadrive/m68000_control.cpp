// Control flow: branches, conditions, calls and returns, traps, and system control.
#include "megadrive/m68000_operand.h"

#include <utility>

namespace {

using enum M68kMode;
using Slot = M68kSlot;
using Size = M68kSize;

// Numbers of conditions.
constexpr uint32_t kAlways = 0;
constexpr uint32_t kConditions = 16;
constexpr uint32_t kFirstOfBranches = 2; // the two below are BRA and BSR

void RefuseLineA(M68K_STATE& cpu) {
    M68kTakeException(cpu, kM68kLineA, cpu.prevPc);
}

void RefuseLineF(M68K_STATE& cpu) {
    M68kTakeException(cpu, kM68kLineF, cpu.prevPc);
}

// Displacements count from the word after the opcode. On a 68000 a displacement byte of 0xFF is -1 like any
// other: an odd address, which is an address error of the next tick.
template <uint32_t kCondition>
void BranchByte(M68K_STATE& cpu) {
    if (M68kHolds<kCondition>(cpu)) {
        cpu.pc += M68kSignExtendByte(cpu.ir);
    } else {
        M68kSpend(cpu, cpu.cycBranchByte);
    }
}

template <uint32_t kCondition>
void BranchWord(M68K_STATE& cpu) {
    const uint32_t base = cpu.pc;
    const uint32_t displacement = M68kSignExtendWord(M68kFetchWord(cpu));
    if (M68kHolds<kCondition>(cpu)) {
        cpu.pc = base + displacement;
    } else {
        M68kSpend(cpu, cpu.cycBranchWord);
    }
}

void CallByte(M68K_STATE& cpu) {
    M68kPushLong(cpu, cpu.pc);
    cpu.pc += M68kSignExtendByte(cpu.ir);
}

void CallWord(M68K_STATE& cpu) {
    const uint32_t base = cpu.pc;
    const uint32_t displacement = M68kSignExtendWord(M68kFetchWord(cpu));
    M68kPushLong(cpu, cpu.pc);
    cpu.pc = base + displacement;
}

template <uint32_t kCondition>
void Loop(M68K_STATE& cpu) {
    const uint32_t base = cpu.pc;
    const uint32_t displacement = M68kSignExtendWord(M68kFetchWord(cpu));
    if (M68kHolds<kCondition>(cpu)) {
        return;
    }
    uint32_t& target = M68kDataRegister<Slot::kLow>(cpu);
    const uint32_t count = (target - 1) & 0xFFFF;
    M68kSetData<Size::kWord>(target, count);
    if (count != 0xFFFF) {
        cpu.pc = base + displacement;
        M68kSpend(cpu, cpu.cycLoopRound);
    } else {
        M68kSpend(cpu, cpu.cycLoopEnd);
    }
}

// Memory is read before it is written.
template <uint32_t kCondition, M68kMode kMode>
void Set(M68K_STATE& cpu) {
    const bool isTrue = M68kHolds<kCondition>(cpu);
    M68kModify<kMode, Size::kByte>(cpu, [&](uint32_t /*before*/) { return isTrue ? 0xFFU : 0U; });
    if constexpr (kMode == kData) {
        if (isTrue) {
            M68kSpend(cpu, cpu.cycSetTrue);
        }
    }
}

template <M68kMode kMode>
void Jump(M68K_STATE& cpu) {
    cpu.pc = M68kEffectiveAddress<kMode, Size::kLong>(cpu);
}

template <M68kMode kMode>
void Call(M68K_STATE& cpu) {
    const uint32_t target = M68kEffectiveAddress<kMode, Size::kLong>(cpu);
    M68kPushLong(cpu, cpu.pc);
    cpu.pc = target;
}

void Return(M68K_STATE& cpu) {
    cpu.pc = M68kPullLong(cpu);
}

void ReturnAndRestore(M68K_STATE& cpu) {
    M68kSetConditions(cpu, M68kPullWord(cpu));
    cpu.pc = M68kPullLong(cpu);
}

// Both words come from the supervisor's stack, even if the new status word leads to user state.
void ReturnFromException(M68K_STATE& cpu) {
    if (M68kIsPrivileged(cpu)) {
        const uint32_t status = M68kPullWord(cpu);
        cpu.pc = M68kPullLong(cpu);
        M68kSetStatus(cpu, status);
    }
}

void Trap(M68K_STATE& cpu) {
    constexpr uint32_t kNumber = 15;
    M68kTakeException(cpu, kM68kTraps + (cpu.ir & kNumber), cpu.pc);
}

void TrapOnOverflow(M68K_STATE& cpu) {
    if (M68kHasV(cpu)) {
        M68kTakeException(cpu, kM68kTrapOnOverflow, cpu.pc);
    }
}

void DoNothing(M68K_STATE& /*cpu*/) {}

// Resets the devices, not the processor, by a callback of the owner.
void ResetDevices(M68K_STATE& cpu) {
    constexpr size_t kOnReset = 1;
    if (M68kIsPrivileged(cpu)) {
        if (cpu.events[kOnReset] != nullptr) {
            cpu.events[kOnReset](cpu.owner);
        }
        M68kSpend(cpu, cpu.cycReset);
    }
}

// `stopped` is shared with the VDP, so STOP ends when the VDP next releases the bus.
void Stop(M68K_STATE& cpu) {
    if (M68kIsPrivileged(cpu)) {
        const uint32_t status = M68kFetchWord(cpu);
        cpu.stopped = 1;
        M68kSetStatus(cpu, status);
        if (cpu.cyclesLeft > 0) {
            cpu.cyclesLeft = 0;
        }
    }
}

// Calls `call.template operator()<number>()` for every condition from the first on.
template <uint32_t kFirst, typename Add>
void ForConditions(Add&& call) {
    [&]<uint32_t... kSteps>(std::integer_sequence<uint32_t, kSteps...> /*steps*/) {
        (call.template operator()<kFirst + kSteps>(), ...);
    }
    (std::make_integer_sequence<uint32_t, kConditions - kFirst>{});
}

// A displacement byte of 0xFF, a third form on later processors, has a row of its own.
void AddBranch(M68kRowList& rows, M68kHandler byByte, M68kHandler byWord, uint32_t number,
               uint8_t cycles) {
    const uint32_t match = 0x6000 | number << 8;
    rows.push_back({byByte, 0xFF00, match, cycles});
    rows.push_back({byWord, 0xFFFF, match, cycles});
    rows.push_back({byByte, 0xFFFF, match | 0xFF, cycles});
}

void AddConditionRows(M68kRowList& rows) {
    constexpr uint8_t kBranchClocks = 10;
    constexpr uint8_t kCallClocks = 18;
    constexpr uint8_t kLoopClocks = 12;
    AddBranch(rows, BranchByte<kAlways>, BranchWord<kAlways>, 0, kBranchClocks);
    AddBranch(rows, CallByte, CallWord, 1, kCallClocks);
    ForConditions<kFirstOfBranches>([&]<uint32_t kCondition>() {
        AddBranch(rows, BranchByte<kCondition>, BranchWord<kCondition>, kCondition, kBranchClocks);
    });
    ForConditions<kAlways>([&]<uint32_t kCondition>() {
        const uint32_t match = 0x50C0 | kCondition << 8;
        rows.push_back({Loop<kCondition>, 0xFFF8, match | 0x08, kLoopClocks});
        M68kAddRow(rows, Set<kCondition, kData>, match, kData, 4);
        M68kForAlterable<Size::kByte>([&]<M68kMode kMode>() {
            M68kAddRow(rows, Set<kCondition, kMode>, match, kMode,
                       8 + M68kModeClocks(kMode, Size::kByte));
        });
    });
}

constexpr uint32_t JumpClocks(M68kMode mode) {
    switch (mode) {
    case kIndirect: return 8;
    case kIndexed:
    case kPcIndexed: return 14;
    case kAbsoluteLong: return 12;
    default: return 10;
    }
}

} // namespace

void M68kAddControlRows(M68kRowList& rows) {
    AddConditionRows(rows);
    M68kForModes(m68k_modes::Control{}, [&]<M68kMode kMode>() {
        M68kAddRow(rows, Jump<kMode>, 0x4EC0, kMode, JumpClocks(kMode));
        M68kAddRow(rows, Call<kMode>, 0x4E80, kMode, JumpClocks(kMode) + 8);
    });
    rows.push_back({RefuseLineA, 0xF000, 0xA000, 4});
    rows.push_back({RefuseLineF, 0xF000, 0xF000, 4});
    rows.push_back({M68kIllegalHandler, 0xFFFF, 0x4AFC, 4});
    rows.push_back({Trap, 0xFFF0, 0x4E40, 4});
    rows.push_back({ResetDevices, 0xFFFF, 0x4E70, 0});
    rows.push_back({DoNothing, 0xFFFF, 0x4E71, 4});
    rows.push_back({Stop, 0xFFFF, 0x4E72, 4});
    rows.push_back({ReturnFromException, 0xFFFF, 0x4E73, 20});
    rows.push_back({Return, 0xFFFF, 0x4E75, 16});
    rows.push_back({TrapOnOverflow, 0xFFFF, 0x4E76, 4});
    rows.push_back({ReturnAndRestore, 0xFFFF, 0x4E77, 20});
}
