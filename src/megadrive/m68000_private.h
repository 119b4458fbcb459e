// What the processor's instruction families share: exceptions, the status word, and the definition rows
// from which the tables are filled.
#pragma once

#include "megadrive/m68000.h"

#include <cstdint>
#include <vector>

// The system byte of the status word.
inline constexpr uint32_t kM68kTrace1 = 0x8000;
inline constexpr uint32_t kM68kTrace0 = 0x4000;
inline constexpr uint32_t kM68kIntMask = 0x0700;
// Supervisor and master bit, as kept in `s` and `m`.
inline constexpr uint32_t kM68kSupervisor = 4;
inline constexpr uint32_t kM68kMaster = 2;

enum M68kVector : uint32_t {
    kM68kIllegal = 4,
    kM68kZeroDivide = 5,
    kM68kBoundCheck = 6,
    kM68kTrapOnOverflow = 7,
    kM68kPrivilege = 8,
    kM68kLineA = 10,
    kM68kLineF = 11,
    kM68kUninitialised = 15,
    kM68kSpuriousVector = 24,
    kM68kTraps = 32
};

// A pattern of opcodes: all that equal `match` in the bits of `mask`.
struct M68K_OPCODE_ROW {
    M68kHandler handler;
    uint32_t mask; // one of the classes that M68kBuildTables fills in turn
    uint32_t match;
    uint8_t cycles;
};

using M68kRowList = std::vector<M68K_OPCODE_ROW>;

void M68kAddMoveRows(M68kRowList& rows); // MOVE, MOVEA
void M68kAddTransferRows(
    M68kRowList& rows); // MOVEQ, MOVEM, MOVEP, LEA, PEA, EXG, SWAP, status and USP
void M68kAddArithmeticRows(M68kRowList& rows); // ADD, SUB, AND, OR, EOR, CMP in all their forms
void M68kAddUnaryRows(M68kRowList& rows);   // one operand, decimal, extended, multiply, divide, CHK
void M68kAddBitRows(M68kRowList& rows);     // bits, shifts, rotates
void M68kAddControlRows(M68kRowList& rows); // branches, calls, conditions, traps, system control

// All of them.
[[nodiscard]] M68kRowList M68kRows();

// Takes any exception but reset: pushes the frame with `returnPc` and loads pc from the vector.
void M68kTakeException(M68K_STATE& cpu, uint32_t vector, uint32_t returnPc);

// The handler of illegal opcodes and of ILLEGAL.
void M68kIllegalHandler(M68K_STATE& cpu);

// Takes the privilege exception and returns false in user state.
[[nodiscard]] bool M68kIsPrivileged(M68K_STATE& cpu);

// Loads the status word, stack pointer included.
void M68kSetStatus(M68K_STATE& cpu, uint32_t status);
