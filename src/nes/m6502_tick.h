// The 6502's cycle, to be inlined into a machine's frame loop. Included by m6502.h.
#pragma once

#include "nes/m6502.h"
#include "nes/nes_lines.h"

#include <array>
#include <cstdint>

// Fills the queue for `opcode`.
void M6502Decode(M6502& cpu);
// Fills the queue for the sampled interrupt; an NMI wins over an IRQ.
void M6502StartInterrupt(M6502& cpu);

namespace m6502_detail {

inline constexpr uint16_t kStackPage = 0x0100;
inline constexpr uint16_t kNmiVector = 0xFFFA;
inline constexpr uint16_t kResetVector = 0xFFFC;
inline constexpr uint16_t kIrqVector = 0xFFFE;

// Index: a byte. Its Z and N flags.
inline constexpr std::array<uint8_t, 256> kZeroNegative = [] {
    std::array<uint8_t, 256> flags{};
    for (uint32_t i = 0; i < flags.size(); ++i) {
        flags[i] = static_cast<uint8_t>((i & kM6502FlagN) | (i == 0 ? kM6502FlagZ : 0));
    }
    return flags;
}();

constexpr uint8_t Byte(uint32_t value) {
    return static_cast<uint8_t>(value & 0xFF);
}

constexpr uint16_t Word(uint32_t high, uint32_t low) {
    return static_cast<uint16_t>((high & 0xFF) << 8 | (low & 0xFF));
}

constexpr uint16_t Sum(uint32_t address, uint32_t index) {
    return static_cast<uint16_t>((address + index) & 0xFFFF);
}

// The sum before the carry reaches the high byte.
constexpr uint16_t WrongPage(uint32_t address, uint32_t index) {
    return Word(address >> 8, address + index);
}

inline uint8_t& Register(M6502& cpu) {
    const size_t number = cpu.operandRegister % kM6502RegisterCount;
    return reinterpret_cast<uint8_t*>(&cpu)[offsetof(M6502, a) + number * kM6502RegisterStride];
}

inline void SetFlags(M6502& cpu, uint32_t mask, uint32_t flags) {
    cpu.p = static_cast<uint8_t>((cpu.p & ~mask) | flags);
}

inline void SetZeroNegative(M6502& cpu, uint8_t value) {
    SetFlags(cpu, kM6502FlagZ | kM6502FlagN, kZeroNegative[value]);
}

inline uint8_t Result(M6502& cpu, uint32_t value) {
    const uint8_t result = Byte(value);
    SetZeroNegative(cpu, result);
    return result;
}

inline void Add(M6502& cpu, uint32_t value) {
    const uint32_t a = cpu.a;
    const uint32_t sum = a + value + (cpu.p & kM6502FlagC);
    const uint32_t overflow = ((a ^ sum) & (value ^ sum) & 0x80) >> 1;
    SetFlags(cpu, kM6502FlagC | kM6502FlagV, sum >> 8 | overflow);
    cpu.a = Result(cpu, sum);
}

inline void Subtract(M6502& cpu, uint32_t value) {
    Add(cpu, value ^ 0xFF);
}

inline void Compare(M6502& cpu, uint32_t left, uint32_t right) {
    SetFlags(cpu, kM6502FlagC, left >= right ? kM6502FlagC : 0);
    SetZeroNegative(cpu, Byte(left - right));
}

inline void Bit(M6502& cpu, uint32_t value) {
    SetFlags(cpu, kM6502FlagZ | kM6502FlagV | kM6502FlagN,
             (value & (kM6502FlagV | kM6502FlagN)) | (kZeroNegative[cpu.a & value] & kM6502FlagZ));
}

// `in` is the bit shifted in: 1 from below, 0x80 from above.
inline uint8_t Left(M6502& cpu, uint32_t value, uint32_t in) {
    SetFlags(cpu, kM6502FlagC, value >> 7 & 1);
    return Result(cpu, value << 1 | in);
}

inline uint8_t Right(M6502& cpu, uint32_t value, uint32_t in) {
    SetFlags(cpu, kM6502FlagC, value & 1);
    return Result(cpu, value >> 1 | in);
}

inline uint32_t CarryBelow(const M6502& cpu) {
    return cpu.p & kM6502FlagC;
}

inline uint32_t CarryAbove(const M6502& cpu) {
    return (cpu.p & uint32_t{kM6502FlagC}) << 7;
}

template <typename Bus>
inline uint8_t Read(M6502& cpu, Bus& bus, uint16_t address) {
    const uint8_t value = bus.Read(address);
    cpu.busValue = value;
    return value;
}

template <typename Bus>
inline void Write(M6502& cpu, Bus& bus, uint16_t address, uint8_t value) {
    cpu.busValue = value;
    bus.Write(address, value);
}

template <typename Bus>
inline uint8_t Operand(M6502& cpu, Bus& bus) {
    const uint8_t value = Read(cpu, bus, cpu.pc);
    cpu.pc = Sum(cpu.pc, 1);
    return value;
}

template <typename Bus>
inline uint8_t Memory(M6502& cpu, Bus& bus) {
    return Read(cpu, bus, cpu.address);
}

template <typename Bus>
inline void Dummy(M6502& cpu, Bus& bus) {
    Read(cpu, bus, cpu.pc);
}

template <typename Bus>
inline void DummyStack(M6502& cpu, Bus& bus) {
    Read(cpu, bus, static_cast<uint16_t>(kStackPage + cpu.sp));
}

template <typename Bus>
inline void Push(M6502& cpu, Bus& bus, uint32_t value) {
    const auto address = static_cast<uint16_t>(kStackPage + cpu.sp);
    cpu.sp = Byte(cpu.sp - 1U);
    Write(cpu, bus, address, Byte(value));
}

template <typename Bus>
inline uint8_t Pull(M6502& cpu, Bus& bus) {
    cpu.sp = Byte(cpu.sp + 1U);
    return Read(cpu, bus, static_cast<uint16_t>(kStackPage + cpu.sp));
}

// The steps that take more than a line. Those that return a bool say whether they made an access.

// Ends the instruction here. The last entry is always kEnd, so queueIndex is in the queue after any other
// step.
inline void DropRest(M6502& cpu) {
    cpu.queue[cpu.queueIndex % kM6502QueueSize] = M6502Step::kEnd;
}

inline void TakeOperandAddress(M6502& cpu) {
    cpu.address = cpu.pc;
    cpu.pc = Sum(cpu.pc, 1);
}

template <typename Bus>
inline void IndexZeroPage(M6502& cpu, Bus& bus, uint32_t index) {
    Memory(cpu, bus);
    cpu.address = Byte(cpu.address + index);
}

template <typename Bus>
inline bool Index(M6502& cpu, Bus& bus, uint32_t index) {
    const uint16_t wrong = WrongPage(cpu.address, index);
    cpu.address = Sum(cpu.address, index);
    if (wrong == cpu.address) {
        return false;
    }
    Read(cpu, bus, wrong);
    return true;
}

template <typename Bus>
inline void IndexAlways(M6502& cpu, Bus& bus, uint32_t index) {
    const uint16_t wrong = WrongPage(cpu.address, index);
    cpu.address = Sum(cpu.address, index);
    Read(cpu, bus, wrong);
}

template <typename Bus>
inline void IndexHigh(M6502& cpu, Bus& bus, uint32_t index) {
    cpu.data = Byte((cpu.address >> 8) + 1U);
    IndexAlways(cpu, bus, index);
}

// The chip forms the high byte + 1 on the internal bus that also carries the value to be stored. If the
// index has carried, the AND of both becomes the high byte of the address.
template <typename Bus>
inline void StoreHigh(M6502& cpu, Bus& bus, uint32_t registers) {
    const uint8_t value = Byte(registers & cpu.data);
    const bool hasCarried = cpu.address >> 8 == cpu.data;
    if (hasCarried) {
        cpu.address = Word(value, cpu.address);
    }
    Write(cpu, bus, cpu.address, value);
}

template <typename Bus>
inline void IndexPointer(M6502& cpu, Bus& bus, uint32_t index) {
    Read(cpu, bus, cpu.data);
    cpu.data = Byte(cpu.data + index);
}

template <typename Bus>
inline void PointerLow(M6502& cpu, Bus& bus) {
    cpu.address = Read(cpu, bus, cpu.data);
    cpu.data = Byte(cpu.data + 1U);
}

template <typename Bus>
inline void LoadAX(M6502& cpu, Bus& bus) {
    cpu.a = Result(cpu, Memory(cpu, bus));
    cpu.x = cpu.a;
}

// `value` was read before the dummy read of a one-byte instruction.
template <typename Bus>
inline uint8_t AfterDummy(M6502& cpu, Bus& bus, uint8_t value) {
    Dummy(cpu, bus);
    return value;
}

template <typename Bus>
inline void AddToRegister(M6502& cpu, Bus& bus, uint32_t by) {
    Dummy(cpu, bus);
    Register(cpu) = Result(cpu, Register(cpu) + by);
}

template <typename Bus>
inline void SetOrClear(M6502& cpu, Bus& bus, uint32_t flag, bool isSet) {
    Dummy(cpu, bus);
    SetFlags(cpu, flag, isSet ? flag : 0);
}

template <typename Bus>
inline void PullFlags(M6502& cpu, Bus& bus) {
    cpu.p = static_cast<uint8_t>((Pull(cpu, bus) & ~kM6502FlagB) | kM6502FlagOne);
}

template <typename Bus>
inline void PushFlagsFor(M6502& cpu, Bus& bus, uint16_t vector, uint32_t breakFlag) {
    cpu.address = vector;
    Push(cpu, bus, cpu.p | breakFlag);
    SetFlags(cpu, kM6502FlagI, kM6502FlagI);
}

// An NMI that has arrived by now takes over the vector.
template <typename Bus>
inline void PushFlagsForBreak(M6502& cpu, Bus& bus) {
    const bool isTaken = (cpu.nmiLine & kNesNmiPpu) != 0;
    cpu.nmiLine &= ~kNesNmiPpu;
    PushFlagsFor(cpu, bus, isTaken ? kNmiVector : kIrqVector, kM6502FlagB);
}

template <typename Bus>
inline void PushFlagsForNmi(M6502& cpu, Bus& bus) {
    cpu.nmiSeen = 0;
    cpu.nmiLine = 0;
    PushFlagsFor(cpu, bus, kNmiVector, 0);
}

// The opcode's top two bits select N, V, C or Z; bit 5 is the value on which it branches.
inline bool IsBranchTaken(const M6502& cpu) {
    constexpr uint32_t kFlagShift = 6;
    constexpr uint32_t kBranchIfSet = 0x20;
    constexpr std::array<uint8_t, 4> kFlags{kM6502FlagN, kM6502FlagV, kM6502FlagC, kM6502FlagZ};
    return ((cpu.p & kFlags[cpu.opcode >> kFlagShift & 3]) != 0) ==
           ((cpu.opcode & kBranchIfSet) != 0);
}

template <typename Bus>
inline void Branch(M6502& cpu, Bus& bus) {
    cpu.data = Operand(cpu, bus);
    if (!IsBranchTaken(cpu)) {
        DropRest(cpu);
    }
}

inline uint16_t BranchTarget(const M6502& cpu) {
    return Sum(cpu.pc, static_cast<uint32_t>(static_cast<int8_t>(Byte(cpu.data))));
}

template <typename Bus>
inline void BranchTaken(M6502& cpu, Bus& bus) {
    Dummy(cpu, bus);
    cpu.address = BranchTarget(cpu);
    cpu.pc = Word(cpu.pc >> 8, cpu.address);
    if (cpu.pc == cpu.address) {
        DropRest(cpu);
    }
}

template <typename Bus>
inline void BranchPage(M6502& cpu, Bus& bus) {
    Dummy(cpu, bus);
    cpu.pc = cpu.address;
}

// Returns false if an interrupt sequence begins: its first step makes this cycle's access.
template <typename Bus>
inline bool Fetch(M6502& cpu, Bus& bus) {
    cpu.queueIndex = 1;
    if ((cpu.nmiSeen | cpu.irqSeen) != 0) [[unlikely]] {
        M6502StartInterrupt(cpu);
        return false;
    }
    cpu.opcode = Operand(cpu, bus);
    M6502Decode(cpu);
    return true;
}

// Does one step; returns whether it accessed the bus.
template <typename Bus>
inline bool DoStep(M6502& cpu, Bus& bus) {
    using enum M6502Step;
    const M6502Step step = cpu.queue[cpu.queueIndex];
    ++cpu.queueIndex;
    switch (step) {
    case kEnd:
    case kFetch: return Fetch(cpu, bus);

    case kOperandAddress: TakeOperandAddress(cpu); return false;
    case kOperandLow: cpu.address = Operand(cpu, bus); break;
    case kOperandHigh: cpu.address = Word(Operand(cpu, bus), cpu.address); break;
    case kIndexZeroPageX: IndexZeroPage(cpu, bus, cpu.x); break;
    case kIndexZeroPageY: IndexZeroPage(cpu, bus, cpu.y); break;
    case kIndexX: return Index(cpu, bus, cpu.x);
    case kIndexY: return Index(cpu, bus, cpu.y);
    case kIndexXAlways: IndexAlways(cpu, bus, cpu.x); break;
    case kIndexYAlways: IndexAlways(cpu, bus, cpu.y); break;
    case kIndexXHigh: IndexHigh(cpu, bus, cpu.x); break;
    case kIndexYHigh: IndexHigh(cpu, bus, cpu.y); break;
    case kPointer: cpu.data = Operand(cpu, bus); break;
    case kIndexPointerX: IndexPointer(cpu, bus, cpu.x); break;
    case kPointerLow: PointerLow(cpu, bus); break;
    case kPointerHigh: cpu.address = Word(Read(cpu, bus, cpu.data), cpu.address); break;

    case kLoad: Register(cpu) = Result(cpu, Memory(cpu, bus)); break;
    case kLoadAX: LoadAX(cpu, bus); break;
    case kStore: Write(cpu, bus, cpu.address, Register(cpu)); break;
    case kStoreAX: Write(cpu, bus, cpu.address, cpu.a & cpu.x); break;
    case kStoreHigh: StoreHigh(cpu, bus, Register(cpu)); break;
    case kStoreAXHigh: StoreHigh(cpu, bus, cpu.a & cpu.x); break;
    case kReadDropped: Memory(cpu, bus); break;
    case kOr: cpu.a = Result(cpu, cpu.a | Memory(cpu, bus)); break;
    case kAnd: cpu.a = Result(cpu, cpu.a & Memory(cpu, bus)); break;
    case kXor: cpu.a = Result(cpu, cpu.a ^ Memory(cpu, bus)); break;
    case kAdd: Add(cpu, Memory(cpu, bus)); break;
    case kSubtract: Subtract(cpu, Memory(cpu, bus)); break;
    case kCompare: Compare(cpu, Register(cpu), Memory(cpu, bus)); break;
    case kBit: Bit(cpu, Memory(cpu, bus)); break;

    case kRead: cpu.data = Memory(cpu, bus); break;
    case kWriteBack:
    case kWrite: Write(cpu, bus, cpu.address, Byte(cpu.data)); break;
    case kShiftLeft: cpu.data = Left(cpu, cpu.data, 0); return false;
    case kRotateLeft: cpu.data = Left(cpu, cpu.data, CarryBelow(cpu)); return false;
    case kShiftRight: cpu.data = Right(cpu, cpu.data, 0); return false;
    case kRotateRight: cpu.data = Right(cpu, cpu.data, CarryAbove(cpu)); return false;
    case kIncrement: cpu.data = Result(cpu, cpu.data + 1U); return false;
    case kDecrement: cpu.data = Result(cpu, cpu.data - 1U); return false;
    case kOrData: cpu.a = Result(cpu, cpu.a | cpu.data); return false;
    case kAndData: cpu.a = Result(cpu, cpu.a & cpu.data); return false;
    case kXorData: cpu.a = Result(cpu, cpu.a ^ cpu.data); return false;
    case kAddData: Add(cpu, cpu.data); return false;
    case kSubtractData: Subtract(cpu, cpu.data); return false;
    case kCompareData: Compare(cpu, cpu.a, cpu.data); return false;

    case kDummy: Dummy(cpu, bus); break;
    case kShiftLeftA: cpu.a = Left(cpu, AfterDummy(cpu, bus, cpu.a), 0); break;
    case kRotateLeftA: cpu.a = Left(cpu, AfterDummy(cpu, bus, cpu.a), CarryBelow(cpu)); break;
    case kShiftRightA: cpu.a = Right(cpu, AfterDummy(cpu, bus, cpu.a), 0); break;
    case kRotateRightA: cpu.a = Right(cpu, AfterDummy(cpu, bus, cpu.a), CarryAbove(cpu)); break;
    case kIncrementRegister: AddToRegister(cpu, bus, 1); break;
    case kDecrementRegister: AddToRegister(cpu, bus, 0xFF); break;
    case kAToRegister: Register(cpu) = Result(cpu, AfterDummy(cpu, bus, cpu.a)); break;
    case kRegisterToA: cpu.a = Result(cpu, AfterDummy(cpu, bus, Register(cpu))); break;
    case kStackToX: cpu.x = Result(cpu, AfterDummy(cpu, bus, cpu.sp)); break;
    case kXToStack: cpu.sp = AfterDummy(cpu, bus, cpu.x); break;
    case kClearCarry: SetOrClear(cpu, bus, kM6502FlagC, false); break;
    case kSetCarry: SetOrClear(cpu, bus, kM6502FlagC, true); break;
    case kClearDisable: SetOrClear(cpu, bus, kM6502FlagI, false); break;
    case kSetDisable: SetOrClear(cpu, bus, kM6502FlagI, true); break;
    case kClearOverflow: SetOrClear(cpu, bus, kM6502FlagV, false); break;
    case kClearDecimal: SetOrClear(cpu, bus, kM6502FlagD, false); break;
    case kSetDecimal: SetOrClear(cpu, bus, kM6502FlagD, true); break;

    case kDummyOperand: Operand(cpu, bus); break;
    case kDummyStack: DummyStack(cpu, bus); break;
    case kPushA: Push(cpu, bus, cpu.a); break;
    case kPullA: cpu.a = Result(cpu, Pull(cpu, bus)); break;
    case kPushFlags: Push(cpu, bus, cpu.p | kM6502FlagB); break;
    case kPullFlags: PullFlags(cpu, bus); break;
    case kPushPcHigh: Push(cpu, bus, cpu.pc >> 8); break;
    case kPushPcLow: Push(cpu, bus, cpu.pc); break;
    case kPullPcLow: cpu.data = Pull(cpu, bus); break;
    case kPullPcHigh: cpu.pc = Word(Pull(cpu, bus), cpu.data); break;
    case kPushFlagsForBreak: PushFlagsForBreak(cpu, bus); break;
    case kPushFlagsForIrq: PushFlagsFor(cpu, bus, kIrqVector, 0); break;
    case kPushFlagsForNmi: PushFlagsForNmi(cpu, bus); break;
    case kVectorLow: cpu.data = Memory(cpu, bus); break;
    case kVectorHigh: cpu.pc = Word(Read(cpu, bus, Sum(cpu.address, 1)), cpu.data); break;
    case kJump: cpu.pc = Word(Read(cpu, bus, cpu.pc), cpu.address); break;
    case kJumpLow: cpu.data = Memory(cpu, bus); break;
    case kJumpHigh: cpu.pc = Word(Read(cpu, bus, WrongPage(cpu.address, 1)), cpu.data); break;
    case kReturn: Operand(cpu, bus); break;
    case kBranch: Branch(cpu, bus); break;
    case kBranchTaken: BranchTaken(cpu, bus); break;
    case kBranchPage: BranchPage(cpu, bus); break;
    case kCount: break; // never in a queue
    }
    return true;
}

} // namespace m6502_detail

inline void M6502Sample(M6502& cpu) {
    cpu.nmiSeen = cpu.nmiLine;
    cpu.irqSeen = cpu.irqLines != 0 && (cpu.p & kM6502FlagI) == 0 ? 1 : 0;
}

template <typename Bus>
inline void M6502Cycle(M6502& cpu, Bus& bus) {
    while (!m6502_detail::DoStep(cpu, bus)) {
    }
    ++cpu.cycles;
}

template <typename Bus>
void M6502ResetOn(M6502& cpu, Bus& bus) {
    M6502Init(cpu, cpu.context, cpu.read, cpu.write);
    cpu.p = kM6502FlagOne;
    m6502_detail::Read(cpu, bus, 0);
    m6502_detail::Dummy(cpu, bus);
    for (int i = 0; i < 3; ++i) {
        m6502_detail::DummyStack(cpu, bus);
        cpu.sp = m6502_detail::Byte(cpu.sp - 1U);
    }
    m6502_detail::SetFlags(cpu, kM6502FlagI, kM6502FlagI);
    cpu.data = m6502_detail::Read(cpu, bus, m6502_detail::kResetVector);
    cpu.pc =
        m6502_detail::Word(m6502_detail::Read(cpu, bus, m6502_detail::kResetVector + 1), cpu.data);
}
