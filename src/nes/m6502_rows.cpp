// The 6502's instructions as rows of steps, one for each of the 256 opcodes.
//
// Source: J. West, M. Makela, 64doc: Documentation for the NMOS 65xx/85xx Instruction Set, which lists every access
// cycle by cycle, undocumented opcodes included. HARDWARE.md (NES, CPU) lists where a row departs from it.
#include "nes/m6502.h"

#include <array>
#include <utility>

namespace {

using enum M6502Step;

// Addressing modes. An indexed read makes the dummy access only on a page crossing; the modes with
// "Always", for stores and read-modify-write, always make it.
template <size_t kSteps>
using MODE = std::array<M6502Step, kSteps>;

constexpr MODE<1> kImmediate{kOperandAddress};
constexpr MODE<1> kZeroPage{kOperandLow};
constexpr MODE<2> kZeroPageX{kOperandLow, kIndexZeroPageX};
constexpr MODE<2> kZeroPageY{kOperandLow, kIndexZeroPageY};
constexpr MODE<2> kAbsolute{kOperandLow, kOperandHigh};
constexpr MODE<3> kAbsoluteX{kOperandLow, kOperandHigh, kIndexX};
constexpr MODE<3> kAbsoluteY{kOperandLow, kOperandHigh, kIndexY};
constexpr MODE<3> kAbsoluteXAlways{kOperandLow, kOperandHigh, kIndexXAlways};
constexpr MODE<3> kAbsoluteYAlways{kOperandLow, kOperandHigh, kIndexYAlways};
constexpr MODE<4> kIndexedIndirect{kPointer, kIndexPointerX, kPointerLow, kPointerHigh};
constexpr MODE<4> kIndirectIndexed{kPointer, kPointerLow, kPointerHigh, kIndexY};
constexpr MODE<4> kIndirectIndexedAlways{kPointer, kPointerLow, kPointerHigh, kIndexYAlways};

// kFetch, which has already run, the steps, and kEnd (0) in all entries that follow.
template <M6502Step... kSteps>
constexpr M6502Queue MakeQueue() {
    static_assert(sizeof...(kSteps) + 2 <= kM6502QueueSize);
    return {kFetch, kSteps...};
}

template <M6502Step... kSteps>
void Only(M6502& cpu, M6502Register operandRegister = kM6502A) {
    static constexpr M6502Queue kQueue = MakeQueue<kSteps...>();
    cpu.queue = kQueue;
    cpu.operandRegister = operandRegister;
}

template <const auto& kMode, M6502Step... kSteps>
void Set(M6502& cpu, M6502Register operandRegister = kM6502A) {
    [&]<size_t... kIndex>(std::index_sequence<kIndex...>) {
        Only<kMode[kIndex]..., kSteps...>(cpu, operandRegister);
    }
    (std::make_index_sequence<kMode.size()>{});
}

// Read-modify-write.
template <const auto& kMode, M6502Step... kOperation>
void Change(M6502& cpu) {
    Set<kMode, kRead, kWriteBack, kOperation..., kWrite>(cpu);
}

// Branches, jumps, stack, flags, and the loads, stores and compares of X and Y.
void DecodeControl(M6502& cpu) {
    switch (cpu.opcode) {
    case 0x00:
        Only<kDummyOperand, kPushPcHigh, kPushPcLow, kPushFlagsForBreak, kVectorLow, kVectorHigh>(
            cpu);
        break;
    case 0x04:
    case 0x44:
    case 0x64: Set<kZeroPage, kReadDropped>(cpu); break;
    case 0x08: Only<kDummy, kPushFlags>(cpu); break;
    case 0x0C: Set<kAbsolute, kReadDropped>(cpu); break;
    case 0x10:
    case 0x30:
    case 0x50:
    case 0x70:
    case 0x90:
    case 0xB0:
    case 0xD0:
    case 0xF0: Only<kBranch, kBranchTaken, kBranchPage>(cpu); break;
    case 0x14:
    case 0x34:
    case 0x54:
    case 0x74:
    case 0xD4:
    case 0xF4: Set<kZeroPageX, kReadDropped>(cpu); break;
    case 0x18: Only<kClearCarry>(cpu); break;
    case 0x1C:
    case 0x3C:
    case 0x5C:
    case 0x7C:
    case 0xDC:
    case 0xFC: Set<kAbsoluteX, kReadDropped>(cpu); break;
    case 0x20: Only<kOperandLow, kDummyStack, kPushPcHigh, kPushPcLow, kJump>(cpu); break;
    case 0x24: Set<kZeroPage, kBit>(cpu); break;
    case 0x28: Only<kDummy, kDummyStack, kPullFlags>(cpu); break;
    case 0x2C: Set<kAbsolute, kBit>(cpu); break;
    case 0x38: Only<kSetCarry>(cpu); break;
    case 0x40: Only<kDummy, kDummyStack, kPullFlags, kPullPcLow, kPullPcHigh>(cpu); break;
    case 0x48: Only<kDummy, kPushA>(cpu); break;
    case 0x4C: Only<kOperandLow, kJump>(cpu); break;
    case 0x58: Only<kClearDisable>(cpu); break;
    case 0x60: Only<kDummy, kDummyStack, kPullPcLow, kPullPcHigh, kReturn>(cpu); break;
    case 0x68: Only<kDummy, kDummyStack, kPullA>(cpu); break;
    case 0x6C: Set<kAbsolute, kJumpLow, kJumpHigh>(cpu); break;
    case 0x78: Only<kSetDisable>(cpu); break;
    case 0x80: Set<kImmediate, kReadDropped>(cpu); break;
    case 0x84: Set<kZeroPage, kStore>(cpu, kM6502Y); break;
    case 0x88: Only<kDecrementRegister>(cpu, kM6502Y); break;
    case 0x8C: Set<kAbsolute, kStore>(cpu, kM6502Y); break;
    case 0x94: Set<kZeroPageX, kStore>(cpu, kM6502Y); break;
    case 0x98: Only<kRegisterToA>(cpu, kM6502Y); break;
    case 0x9C: Set<kAbsolute, kIndexXHigh, kStoreHigh>(cpu, kM6502Y); break;
    case 0xA0: Set<kImmediate, kLoad>(cpu, kM6502Y); break;
    case 0xA4: Set<kZeroPage, kLoad>(cpu, kM6502Y); break;
    case 0xA8: Only<kAToRegister>(cpu, kM6502Y); break;
    case 0xAC: Set<kAbsolute, kLoad>(cpu, kM6502Y); break;
    case 0xB4: Set<kZeroPageX, kLoad>(cpu, kM6502Y); break;
    case 0xB8: Only<kClearOverflow>(cpu); break;
    case 0xBC: Set<kAbsoluteX, kLoad>(cpu, kM6502Y); break;
    case 0xC0: Set<kImmediate, kCompare>(cpu, kM6502Y); break;
    case 0xC4: Set<kZeroPage, kCompare>(cpu, kM6502Y); break;
    case 0xC8: Only<kIncrementRegister>(cpu, kM6502Y); break;
    case 0xCC: Set<kAbsolute, kCompare>(cpu, kM6502Y); break;
    case 0xD8: Only<kClearDecimal>(cpu); break;
    case 0xE0: Set<kImmediate, kCompare>(cpu, kM6502X); break;
    case 0xE4: Set<kZeroPage, kCompare>(cpu, kM6502X); break;
    case 0xE8: Only<kIncrementRegister>(cpu, kM6502X); break;
    case 0xEC: Set<kAbsolute, kCompare>(cpu, kM6502X); break;
    case 0xF8: Only<kSetDecimal>(cpu); break;
    default: break;
    }
}

// Operations on the accumulator.
void DecodeAccumulator(M6502& cpu) {
    switch (cpu.opcode) {
    case 0x01: Set<kIndexedIndirect, kOr>(cpu); break;
    case 0x05: Set<kZeroPage, kOr>(cpu); break;
    case 0x09: Set<kImmediate, kOr>(cpu); break;
    case 0x0D: Set<kAbsolute, kOr>(cpu); break;
    case 0x11: Set<kIndirectIndexed, kOr>(cpu); break;
    case 0x15: Set<kZeroPageX, kOr>(cpu); break;
    case 0x19: Set<kAbsoluteY, kOr>(cpu); break;
    case 0x1D: Set<kAbsoluteX, kOr>(cpu); break;
    case 0x21: Set<kIndexedIndirect, kAnd>(cpu); break;
    case 0x25: Set<kZeroPage, kAnd>(cpu); break;
    case 0x29: Set<kImmediate, kAnd>(cpu); break;
    case 0x2D: Set<kAbsolute, kAnd>(cpu); break;
    case 0x31: Set<kIndirectIndexed, kAnd>(cpu); break;
    case 0x35: Set<kZeroPageX, kAnd>(cpu); break;
    case 0x39: Set<kAbsoluteY, kAnd>(cpu); break;
    case 0x3D: Set<kAbsoluteX, kAnd>(cpu); break;
    case 0x41: Set<kIndexedIndirect, kXor>(cpu); break;
    case 0x45: Set<kZeroPage, kXor>(cpu); break;
    case 0x49: Set<kImmediate, kXor>(cpu); break;
    case 0x4D: Set<kAbsolute, kXor>(cpu); break;
    case 0x51: Set<kIndirectIndexed, kXor>(cpu); break;
    case 0x55: Set<kZeroPageX, kXor>(cpu); break;
    case 0x59: Set<kAbsoluteY, kXor>(cpu); break;
    case 0x5D: Set<kAbsoluteX, kXor>(cpu); break;
    case 0x61: Set<kIndexedIndirect, kAdd>(cpu); break;
    case 0x65: Set<kZeroPage, kAdd>(cpu); break;
    case 0x69: Set<kImmediate, kAdd>(cpu); break;
    case 0x6D: Set<kAbsolute, kAdd>(cpu); break;
    case 0x71: Set<kIndirectIndexed, kAdd>(cpu); break;
    case 0x75: Set<kZeroPageX, kAdd>(cpu); break;
    case 0x79: Set<kAbsoluteY, kAdd>(cpu); break;
    case 0x7D: Set<kAbsoluteX, kAdd>(cpu); break;
    case 0x81: Set<kIndexedIndirect, kStore>(cpu, kM6502A); break;
    case 0x85: Set<kZeroPage, kStore>(cpu, kM6502A); break;
    case 0x89: Set<kImmediate, kReadDropped>(cpu); break;
    case 0x8D: Set<kAbsolute, kStore>(cpu, kM6502A); break;
    case 0x91: Set<kIndirectIndexedAlways, kStore>(cpu, kM6502A); break;
    case 0x95: Set<kZeroPageX, kStore>(cpu, kM6502A); break;
    case 0x99: Set<kAbsoluteYAlways, kStore>(cpu, kM6502A); break;
    case 0x9D: Set<kAbsoluteXAlways, kStore>(cpu, kM6502A); break;
    case 0xA1: Set<kIndexedIndirect, kLoad>(cpu, kM6502A); break;
    case 0xA5: Set<kZeroPage, kLoad>(cpu, kM6502A); break;
    case 0xA9: Set<kImmediate, kLoad>(cpu, kM6502A); break;
    case 0xAD: Set<kAbsolute, kLoad>(cpu, kM6502A); break;
    case 0xB1: Set<kIndirectIndexed, kLoad>(cpu, kM6502A); break;
    case 0xB5: Set<kZeroPageX, kLoad>(cpu, kM6502A); break;
    case 0xB9: Set<kAbsoluteY, kLoad>(cpu, kM6502A); break;
    case 0xBD: Set<kAbsoluteX, kLoad>(cpu, kM6502A); break;
    case 0xC1: Set<kIndexedIndirect, kCompare>(cpu, kM6502A); break;
    case 0xC5: Set<kZeroPage, kCompare>(cpu, kM6502A); break;
    case 0xC9: Set<kImmediate, kCompare>(cpu, kM6502A); break;
    case 0xCD: Set<kAbsolute, kCompare>(cpu, kM6502A); break;
    case 0xD1: Set<kIndirectIndexed, kCompare>(cpu, kM6502A); break;
    case 0xD5: Set<kZeroPageX, kCompare>(cpu, kM6502A); break;
    case 0xD9: Set<kAbsoluteY, kCompare>(cpu, kM6502A); break;
    case 0xDD: Set<kAbsoluteX, kCompare>(cpu, kM6502A); break;
    case 0xE1: Set<kIndexedIndirect, kSubtract>(cpu); break;
    case 0xE5: Set<kZeroPage, kSubtract>(cpu); break;
    case 0xE9: Set<kImmediate, kSubtract>(cpu); break;
    case 0xED: Set<kAbsolute, kSubtract>(cpu); break;
    case 0xF1: Set<kIndirectIndexed, kSubtract>(cpu); break;
    case 0xF5: Set<kZeroPageX, kSubtract>(cpu); break;
    case 0xF9: Set<kAbsoluteY, kSubtract>(cpu); break;
    case 0xFD: Set<kAbsoluteX, kSubtract>(cpu); break;
    default: break;
    }
}

// Shifts, increments, and the loads and stores of X.
void DecodeShifts(M6502& cpu) {
    switch (cpu.opcode) {
    case 0x02:
    case 0x12:
    case 0x22:
    case 0x32:
    case 0x42:
    case 0x52:
    case 0x62:
    case 0x72:
    case 0x92:
    case 0xB2:
    case 0xD2:
    case 0xF2: Only<>(cpu); break;
    case 0x06: Change<kZeroPage, kShiftLeft>(cpu); break;
    case 0x0A: Only<kShiftLeftA>(cpu); break;
    case 0x0E: Change<kAbsolute, kShiftLeft>(cpu); break;
    case 0x16: Change<kZeroPageX, kShiftLeft>(cpu); break;
    case 0x1A:
    case 0x3A:
    case 0x5A:
    case 0x7A:
    case 0xDA:
    case 0xEA:
    case 0xFA: Only<kDummy>(cpu); break;
    case 0x1E: Change<kAbsoluteXAlways, kShiftLeft>(cpu); break;
    case 0x26: Change<kZeroPage, kRotateLeft>(cpu); break;
    case 0x2A: Only<kRotateLeftA>(cpu); break;
    case 0x2E: Change<kAbsolute, kRotateLeft>(cpu); break;
    case 0x36: Change<kZeroPageX, kRotateLeft>(cpu); break;
    case 0x3E: Change<kAbsoluteXAlways, kRotateLeft>(cpu); break;
    case 0x46: Change<kZeroPage, kShiftRight>(cpu); break;
    case 0x4A: Only<kShiftRightA>(cpu); break;
    case 0x4E: Change<kAbsolute, kShiftRight>(cpu); break;
    case 0x56: Change<kZeroPageX, kShiftRight>(cpu); break;
    case 0x5E: Change<kAbsoluteXAlways, kShiftRight>(cpu); break;
    case 0x66: Change<kZeroPage, kRotateRight>(cpu); break;
    case 0x6A: Only<kRotateRightA>(cpu); break;
    case 0x6E: Change<kAbsolute, kRotateRight>(cpu); break;
    case 0x76: Change<kZeroPageX, kRotateRight>(cpu); break;
    case 0x7E: Change<kAbsoluteXAlways, kRotateRight>(cpu); break;
    case 0x82:
    case 0xC2:
    case 0xE2: Set<kImmediate, kReadDropped>(cpu); break;
    case 0x86: Set<kZeroPage, kStore>(cpu, kM6502X); break;
    case 0x8A: Only<kRegisterToA>(cpu, kM6502X); break;
    case 0x8E: Set<kAbsolute, kStore>(cpu, kM6502X); break;
    case 0x96: Set<kZeroPageY, kStore>(cpu, kM6502X); break;
    case 0x9A: Only<kXToStack>(cpu); break;
    case 0x9E: Set<kAbsolute, kIndexYHigh, kStoreHigh>(cpu, kM6502X); break;
    case 0xA2: Set<kImmediate, kLoad>(cpu, kM6502X); break;
    case 0xA6: Set<kZeroPage, kLoad>(cpu, kM6502X); break;
    case 0xAA: Only<kAToRegister>(cpu, kM6502X); break;
    case 0xAE: Set<kAbsolute, kLoad>(cpu, kM6502X); break;
    case 0xB6: Set<kZeroPageY, kLoad>(cpu, kM6502X); break;
    case 0xBA: Only<kStackToX>(cpu); break;
    case 0xBE: Set<kAbsoluteY, kLoad>(cpu, kM6502X); break;
    case 0xC6: Change<kZeroPage, kDecrement>(cpu); break;
    case 0xCA: Only<kDecrementRegister>(cpu, kM6502X); break;
    case 0xCE: Change<kAbsolute, kDecrement>(cpu); break;
    case 0xD6: Change<kZeroPageX, kDecrement>(cpu); break;
    case 0xDE: Change<kAbsoluteXAlways, kDecrement>(cpu); break;
    case 0xE6: Change<kZeroPage, kIncrement>(cpu); break;
    case 0xEE: Change<kAbsolute, kIncrement>(cpu); break;
    case 0xF6: Change<kZeroPageX, kIncrement>(cpu); break;
    case 0xFE: Change<kAbsoluteXAlways, kIncrement>(cpu); break;
    default: break;
    }
}

// The undocumented column: mostly two operations of the columns before it at once. Stable for the most part.
void DecodeUndocumented(M6502& cpu) {
    switch (cpu.opcode) {
    case 0x03: Change<kIndexedIndirect, kShiftLeft, kOrData>(cpu); break;
    case 0x07: Change<kZeroPage, kShiftLeft, kOrData>(cpu); break;
    case 0x0B:
    case 0x2B:
    case 0x4B:
    case 0x6B:
    case 0x8B:
    case 0xAB:
    case 0xCB: Set<kImmediate, kReadDropped>(cpu); break;
    case 0x0F: Change<kAbsolute, kShiftLeft, kOrData>(cpu); break;
    case 0x13: Change<kIndirectIndexedAlways, kShiftLeft, kOrData>(cpu); break;
    case 0x17: Change<kZeroPageX, kShiftLeft, kOrData>(cpu); break;
    case 0x1B: Change<kAbsoluteYAlways, kShiftLeft, kOrData>(cpu); break;
    case 0x1F: Change<kAbsoluteXAlways, kShiftLeft, kOrData>(cpu); break;
    case 0x23: Change<kIndexedIndirect, kRotateLeft, kAndData>(cpu); break;
    case 0x27: Change<kZeroPage, kRotateLeft, kAndData>(cpu); break;
    case 0x2F: Change<kAbsolute, kRotateLeft, kAndData>(cpu); break;
    case 0x33: Change<kIndirectIndexedAlways, kRotateLeft, kAndData>(cpu); break;
    case 0x37: Change<kZeroPageX, kRotateLeft, kAndData>(cpu); break;
    case 0x3B: Change<kAbsoluteYAlways, kRotateLeft, kAndData>(cpu); break;
    case 0x3F: Change<kAbsoluteXAlways, kRotateLeft, kAndData>(cpu); break;
    case 0x43: Change<kIndexedIndirect, kShiftRight, kXorData>(cpu); break;
    case 0x47: Change<kZeroPage, kShiftRight, kXorData>(cpu); break;
    case 0x4F: Change<kAbsolute, kShiftRight, kXorData>(cpu); break;
    case 0x53: Change<kIndirectIndexedAlways, kShiftRight, kXorData>(cpu); break;
    case 0x57: Change<kZeroPageX, kShiftRight, kXorData>(cpu); break;
    case 0x5B: Change<kAbsoluteYAlways, kShiftRight, kXorData>(cpu); break;
    case 0x5F: Change<kAbsoluteXAlways, kShiftRight, kXorData>(cpu); break;
    case 0x63: Change<kIndexedIndirect, kRotateRight, kAddData>(cpu); break;
    case 0x67: Change<kZeroPage, kRotateRight, kAddData>(cpu); break;
    case 0x6F: Change<kAbsolute, kRotateRight, kAddData>(cpu); break;
    case 0x73: Change<kIndirectIndexedAlways, kRotateRight, kAddData>(cpu); break;
    case 0x77: Change<kZeroPageX, kRotateRight, kAddData>(cpu); break;
    case 0x7B: Change<kAbsoluteYAlways, kRotateRight, kAddData>(cpu); break;
    case 0x7F: Change<kAbsoluteXAlways, kRotateRight, kAddData>(cpu); break;
    case 0x83: Set<kIndexedIndirect, kStoreAX>(cpu); break;
    case 0x87: Set<kZeroPage, kStoreAX>(cpu); break;
    case 0x8F: Set<kAbsolute, kStoreAX>(cpu); break;
    case 0x93: Only<kPointer, kPointerLow, kPointerHigh, kIndexYHigh, kStoreAXHigh>(cpu); break;
    case 0x97: Set<kZeroPageY, kStoreAX>(cpu); break;
    case 0x9B: Set<kAbsoluteYAlways, kReadDropped>(cpu); break;
    case 0x9F: Set<kAbsolute, kIndexYHigh, kStoreAXHigh>(cpu); break;
    case 0xA3: Set<kIndexedIndirect, kLoadAX>(cpu); break;
    case 0xA7: Set<kZeroPage, kLoadAX>(cpu); break;
    case 0xAF: Set<kAbsolute, kLoadAX>(cpu); break;
    case 0xB3: Set<kIndirectIndexed, kLoadAX>(cpu); break;
    case 0xB7: Set<kZeroPageY, kLoadAX>(cpu); break;
    case 0xBB: Set<kAbsoluteY, kReadDropped>(cpu); break;
    case 0xBF: Set<kAbsoluteY, kLoadAX>(cpu); break;
    case 0xC3: Change<kIndexedIndirect, kDecrement, kCompareData>(cpu); break;
    case 0xC7: Change<kZeroPage, kDecrement, kCompareData>(cpu); break;
    case 0xCF: Change<kAbsolute, kDecrement, kCompareData>(cpu); break;
    case 0xD3: Change<kIndirectIndexedAlways, kDecrement, kCompareData>(cpu); break;
    case 0xD7: Change<kZeroPageX, kDecrement, kCompareData>(cpu); break;
    case 0xDB: Change<kAbsoluteYAlways, kDecrement, kCompareData>(cpu); break;
    case 0xDF: Change<kAbsoluteXAlways, kDecrement, kCompareData>(cpu); break;
    case 0xE3: Change<kIndexedIndirect, kIncrement, kSubtractData>(cpu); break;
    case 0xE7: Change<kZeroPage, kIncrement, kSubtractData>(cpu); break;
    case 0xEB: Set<kImmediate, kSubtract>(cpu); break;
    case 0xEF: Change<kAbsolute, kIncrement, kSubtractData>(cpu); break;
    case 0xF3: Change<kIndirectIndexedAlways, kIncrement, kSubtractData>(cpu); break;
    case 0xF7: Change<kZeroPageX, kIncrement, kSubtractData>(cpu); break;
    case 0xFB: Change<kAbsoluteYAlways, kIncrement, kSubtractData>(cpu); break;
    case 0xFF: Change<kAbsoluteXAlways, kIncrement, kSubtractData>(cpu); break;
    default: break;
    }
}

} // namespace

void M6502Decode(M6502& cpu) {
    switch (cpu.opcode & 3) {
    case 0: DecodeControl(cpu); break;
    case 1: DecodeAccumulator(cpu); break;
    case 2: DecodeShifts(cpu); break;
    default: DecodeUndocumented(cpu); break;
    }
}

void M6502StartInterrupt(M6502& cpu) {
    if (cpu.nmiSeen != 0) {
        Only<kDummy, kDummy, kPushPcHigh, kPushPcLow, kPushFlagsForNmi, kVectorLow, kVectorHigh>(
            cpu);
    } else {
        Only<kDummy, kDummy, kPushPcHigh, kPushPcLow, kPushFlagsForIrq, kVectorLow, kVectorHigh>(
            cpu);
    }
}
