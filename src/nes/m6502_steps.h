// The steps of a 6502 instruction. The values are saved with a state.
//
// A step that accesses the bus takes one cycle. A step marked "no access" takes no time: the next step
// follows in the same cycle. "Register" is the one in operandRegister. "Operand" is the byte at PC, which
// is then incremented. A step named after an operation on the accumulator reads its other input at
// `address`; with "Data" in the name it takes `data` and makes no access.
#pragma once

#include <array>
#include <cstdint>

enum class M6502Step : uint8_t {
    kEnd = 0,   // end of the instruction; acts as kFetch in the same cycle
    kFetch = 1, // starts an interrupt sequence or fetches the next opcode

    kOperandAddress = 2, // address = PC, PC + 1; no access
    kOperandLow = 3,     // operand to the address, whose high byte is cleared
    kOperandHigh = 4,    // operand to the address's high byte
    kIndexZeroPageX = 5, // dummy read at the address, then adds the index within page zero
    kIndexZeroPageY = 6,
    kIndexX = 7,       // adds the index; on a page crossing a dummy read in the wrong page,
    kIndexY = 8,       // otherwise no access
    kIndexXAlways = 9, // as kIndexX, always with the dummy read
    kIndexYAlways = 10,
    kIndexXHigh = 11, // as kIndexXAlways; data = high byte before the index, + 1
    kIndexYHigh = 12,
    kPointer = 13,       // operand to data: a pointer in page zero
    kIndexPointerX = 14, // dummy read at the pointer, then adds X within page zero
    kPointerLow = 15,    // low byte of the address from the pointer; pointer + 1 within page zero
    kPointerHigh = 16,   // high byte of the address from the pointer

    kLoad = 17,      // register from memory, with Z and N
    kLoadAX = 18,    // A and X from memory, with Z and N
    kStore = 19,     // register to memory
    kStoreAX = 20,   // A AND X to memory
    kStoreHigh = 21, // register AND data to memory; on a page crossing that value is also the page
    kStoreAXHigh = 22, // the same with A AND X as the register
    kReadDropped = 23, // read at the address, value dropped
    kOr = 24,          // A with memory
    kAnd = 25,
    kXor = 26,
    kAdd = 27,
    kSubtract = 28,
    kCompare = 29, // register with memory
    kBit = 30,

    kRead = 31,      // data from memory
    kWriteBack = 32, // the old data to memory, while the ALU works
    kWrite = 33,     // data to memory
    kShiftLeft = 34, // data; no access, like all up to kDecrement
    kRotateLeft = 35,
    kShiftRight = 36,
    kRotateRight = 37,
    kIncrement = 38,
    kDecrement = 39,
    kOrData = 40, // A with data; no access, like all up to kCompareData
    kAndData = 41,
    kXorData = 42,
    kAddData = 43,
    kSubtractData = 44,
    kCompareData = 45,

    kDummy = 46, // dummy read at PC. All up to kSetDecimal make it too
    kShiftLeftA = 47,
    kRotateLeftA = 48,
    kShiftRightA = 49,
    kRotateRightA = 50,
    kIncrementRegister = 51,
    kDecrementRegister = 52,
    kAToRegister = 53, // with Z and N, as all transfers but kXToStack
    kRegisterToA = 54,
    kStackToX = 55,
    kXToStack = 56,
    kClearCarry = 57,
    kSetCarry = 58,
    kClearDisable = 59,
    kSetDisable = 60,
    kClearOverflow = 61,
    kClearDecimal = 62,
    kSetDecimal = 63,

    kDummyOperand = 64, // operand, dropped
    kDummyStack = 65,   // dummy read at the top of the stack
    kPushA = 66,
    kPullA = 67,
    kPushFlags = 68,
    kPullFlags = 69,
    kPushPcHigh = 70,
    kPushPcLow = 71,
    kPullPcLow = 72,         // to data
    kPullPcHigh = 73,        // high byte of PC; the low one from data
    kPushFlagsForBreak = 74, // also selects the vector and sets I, like the next two
    kPushFlagsForIrq = 75,
    kPushFlagsForNmi = 76,
    kVectorLow = 77,   // to data
    kVectorHigh = 78,  // high byte of PC; the low one from data
    kJump = 79,        // operand to PC's high byte, low byte from the address
    kJumpLow = 80,     // data from the address
    kJumpHigh = 81,    // PC's high byte from the next byte of the same page, low byte from data
    kReturn = 82,      // dummy read at PC, PC + 1
    kBranch = 83,      // operand to data; ends the instruction unless the branch is taken
    kBranchTaken = 84, // dummy read, low byte of PC; ends the instruction in the same page
    kBranchPage = 85,  // dummy read in the wrong page, high byte of PC
    kCount = 86        // not a step
};

// kFetch, the steps of an instruction, then kEnd up to the last entry.
inline constexpr uint32_t kM6502QueueSize = 16;
using M6502Queue = std::array<M6502Step, kM6502QueueSize>;
