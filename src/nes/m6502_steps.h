// The steps that a 6502's queue is made of. The values are saved with a state.
//
// A step that reaches the bus is a cycle; one that says "no access" costs no time and the next step
// follows in the same cycle. "Register" is the one that operandRegister names. "Operand" is the byte
// at PC, which moves on. A step named after an operation on the accumulator reads the other side of it
// at `address`; one with "Data" in its name takes `data` and makes no access.
#pragma once

#include <array>
#include <cstdint>

enum class M6502Step : uint8_t {
    kEnd = 0,   // the instruction is over; goes on as kFetch in the same cycle
    kFetch = 1, // an interrupt's sequence, or the next opcode

    kOperandAddress = 2, // PC is the address and moves on; no access
    kOperandLow = 3,     // operand to the address, whose high byte is cleared
    kOperandHigh = 4,    // operand to the address's high byte
    kIndexZeroPageX = 5, // dummy read at the address, then the index is added within page zero
    kIndexZeroPageY = 6,
    kIndexX = 7,       // adds the index; a dummy read in the wrong page where it has carried,
    kIndexY = 8,       // no access where it hasn't
    kIndexXAlways = 9, // as kIndexX, with the dummy read in any case
    kIndexYAlways = 10,
    kIndexXHigh = 11, // as kIndexXAlways; data is the high byte before the index, plus 1
    kIndexYHigh = 12,
    kPointer = 13,       // operand to data: a pointer in page zero
    kIndexPointerX = 14, // dummy read at the pointer, then X is added within page zero
    kPointerLow = 15,    // address's low byte from the pointer, which moves on within page zero
    kPointerHigh = 16,   // address's high byte from the pointer

    kLoad = 17,    // register from memory, with Z and N
    kLoadAX = 18,  // A and X from memory, with Z and N
    kStore = 19,   // register to memory
    kStoreAX = 20, // A AND X to memory
    kStoreHigh =
        21, // register AND data to memory; where the index carried, to the page of that number
    kStoreAXHigh = 22, // the same with A AND X for the register
    kReadDropped = 23, // read at the address for nothing
    kOr = 24,          // A with memory
    kAnd = 25,
    kXor = 26,
    kAdd = 27,
    kSubtract = 28,
    kCompare = 29, // register with memory
    kBit = 30,

    kRead = 31,      // data from memory
    kWriteBack = 32, // the old data to memory, while the chip works on it
    kWrite = 33,     // data to memory
    kShiftLeft = 34, // data; no access, and so up to kDecrement
    kRotateLeft = 35,
    kShiftRight = 36,
    kRotateRight = 37,
    kIncrement = 38,
    kDecrement = 39,
    kOrData = 40, // A with data; no access, and so up to kCompareData
    kAndData = 41,
    kXorData = 42,
    kAddData = 43,
    kSubtractData = 44,
    kCompareData = 45,

    kDummy = 46, // dummy read at PC; those up to kSetDecimal make it too
    kShiftLeftA = 47,
    kRotateLeftA = 48,
    kShiftRightA = 49,
    kRotateRightA = 50,
    kIncrementRegister = 51,
    kDecrementRegister = 52,
    kAToRegister = 53, // with Z and N, as the others but kXToStack
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

    kDummyOperand = 64, // operand for nothing
    kDummyStack = 65,   // dummy read at the top of the stack
    kPushA = 66,
    kPullA = 67,
    kPushFlags = 68,
    kPullFlags = 69,
    kPushPcHigh = 70,
    kPushPcLow = 71,
    kPullPcLow = 72,         // to data
    kPullPcHigh = 73,        // PC from it and data
    kPushFlagsForBreak = 74, // chooses the vector, disables interrupts; so do the next two
    kPushFlagsForIrq = 75,
    kPushFlagsForNmi = 76,
    kVectorLow = 77,   // to data
    kVectorHigh = 78,  // PC from it and data
    kJump = 79,        // PC from the operand, as its high byte, and the address's low byte
    kJumpLow = 80,     // data from the address
    kJumpHigh = 81,    // PC from the next byte of the same page and data
    kReturn = 82,      // dummy read at PC, which moves on
    kBranch = 83,      // operand to data; the rest of the queue is dropped unless it is taken
    kBranchTaken = 84, // dummy read, low byte of PC; the rest is dropped in the same page
    kBranchPage = 85,  // dummy read in the wrong page, high byte of PC
    kCount = 86        // no step
};

// The queue: kFetch, the steps of an instruction and kEnd.
inline constexpr uint32_t kM6502QueueSize = 16;
using M6502Queue = std::array<M6502Step, kM6502QueueSize>;
