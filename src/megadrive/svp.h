// SVP: the SSP1601 signal processor of one Mega Drive cartridge, with 128 KiB of DRAM that the 68000
// sees too.
//
// Clock: three instructions in a 68000 cycle, whatever the instruction. SvpRun takes their number; there is no
//   smaller unit.
// Units: addresses of program memory, DRAM and ROM count 16-bit words; those of the 68000 count bytes. A
//   register holds its value in the high half of its u32.
// Owner: the cartridge (md_cartridge.h), on its session's thread.
// Pins: `rom`, the cartridge's window; the processor reaches its first 2 MiB. It must outlive the record.
// Order: SvpReset, then SvpRun and the 68000's accesses in any order.
// Waits: the game's idle loops are at known addresses. A read there that finds nothing stops the processor
//   until the 68000 writes what the loop waits for.
// Differs: docs/HARDWARE.md, Mega Drive, Signal processor (SVP).
// Sources: published register and operand descriptions of the SSP1601; of the external memory modes, those
//   that the game's own program uses.
#pragma once

#include "machine/state_out.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kSvpMemoryWords = 65536;
inline constexpr uint32_t kSvpIramWords = 0x400; // writable words at the bottom of program memory
inline constexpr uint32_t kSvpRomWords = 0x100000;
inline constexpr uint32_t kSvpStackDepth = 6;
inline constexpr uint32_t kSvpPmRegisters = 6;

enum SVP_REGISTER : uint32_t {
    kSvpBlind = 0,
    kSvpX = 1,
    kSvpY = 2,
    kSvpA = 3, // all 32 bits
    kSvpSt = 4,
    kSvpStack = 5, // the high half holds the depth, 0 to 5
    kSvpPc = 6,    // valid between runs
    kSvpP = 7,     // all 32 bits; computed when read and at the end of a run
    kSvpPm0 = 8,
    kSvpPm1 = 9,
    kSvpPm2 = 10,
    kSvpXst = 11, // also PM3
    kSvpPm4 = 12,
    kSvpExt5 = 13,
    kSvpPmc = 14, // address in the high half, mode in the low half
    kSvpAl = 15,  // the low half of A; its own entry is unused
};

// Bits of ST.
inline constexpr uint32_t kSvpStModulo = 0x0007;     // pointers wrap at 2^n words; 0: at 256
inline constexpr uint32_t kSvpStProgrammed = 0x0060; // PM0 to PM3 reach memory
inline constexpr uint32_t kSvpStZero = 0x2000;
inline constexpr uint32_t kSvpStNegative = 0x8000;

// Bits of `emuStatus`.
inline constexpr uint32_t kSvpPmcHasAddress = 0x0001;
inline constexpr uint32_t kSvpPmcSet = 0x0002;
inline constexpr uint32_t kSvpWaitsForPm0 = 0x2000;
inline constexpr uint32_t kSvpWaitsFor30Fe06 = 0x4000;
inline constexpr uint32_t kSvpWaitsFor30Fe08 = 0x8000;
inline constexpr uint32_t kSvpWaits = 0xE000;

// Bits of PM0 as a status register.
inline constexpr uint32_t kSvpPm0SentByDsp = 0x0001;
inline constexpr uint32_t kSvpPm0SentTo = 0x0002; // the 68000 has written XST

struct MD_SVP {
    std::array<std::array<uint16_t, 256>, 2> ram{};
    std::array<uint32_t, 16> gr{};
    std::array<uint8_t, 8> r{}; // r0 to r3 point into bank 0, r4 to r7 into bank 1
    // The accesses programmed for PM0 to PM4, and a spare: address in the high half, mode in the low half.
    std::array<uint32_t, kSvpPmRegisters> pmacRead{};
    std::array<uint32_t, kSvpPmRegisters> pmacWrite{};
    uint32_t emuStatus = 0;
    std::array<uint16_t, kSvpStackDepth> stack{};
    std::array<uint16_t, kSvpMemoryWords> iramRom{};
    std::array<uint16_t, kSvpMemoryWords> dram{};
    const uint16_t* rom = nullptr; // kSvpRomWords words
    uint32_t pc = 0;               // the program counter; written at the end of a run
    int32_t budget = 0;            // instructions that the last run left, since it had to wait
};

// Clears the record and sets `rom`.
void SvpReset(MD_SVP& svp, const uint16_t* rom);

// Runs up to `instructions`; fewer if the processor has to wait.
void SvpRun(MD_SVP& svp, int32_t instructions);

// The 68000's side. `address` is within the cartridge's pages. Returns false if there is no DRAM; `value`
// then stays.
[[nodiscard]] bool SvpReadWord(const MD_SVP& svp, uint32_t address, uint16_t& value);
void SvpWriteWord(MD_SVP& svp, uint32_t address, uint16_t value);
// A word write to 0xA15000 or 0xA15002.
void SvpWriteXst(MD_SVP& svp, uint16_t value);

// The state piece.
[[nodiscard]] uint32_t SvpStateSize();
StateOut SvpSaveState(const MD_SVP& svp, StateOut out);
// Returns the bytes used, or 0 with nothing changed if the piece doesn't fit. Any contents are safe.
[[nodiscard]] uint32_t SvpLoadState(MD_SVP& svp, const uint8_t* data, uint32_t size);
