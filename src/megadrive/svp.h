// SVP: the SSP1601 signal processor of one Mega Drive cartridge, with 128 KiB of DRAM that the 68000
// sees too.
//
// Clock: three instructions to a 68000 cycle, whatever the instruction; SvpRun is given the number.
// Units: addresses of program memory, DRAM and ROM count 16-bit words, but those of the 68000, which
//   count bytes. A register holds its value in the high half of its u32.
// Owner: the cartridge (md_cartridge.h), on its session's thread.
// Pins: `rom`, the cartridge's window, of which 2 MiB are reached. It must outlive the record.
// Order: SvpReset, then SvpRun and the 68000's accesses in any order.
// Waits: the game's idle loops stand at known addresses. A read that would find nothing there stops the
//   processor until the 68000 writes what the loop waits for.
// Differs: starts at word 0x400 without the internal ROM; no interrupts, general pins, saturation or
//   multiply shift; of the flags only Z and N are kept. All of it is kept on purpose.
// Sources: published register and operand descriptions of the SSP1601; the layout of the external
//   memory modes as far as the game's own program uses them.
#pragma once

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
    kSvpPc = 6,    // in force between runs
    kSvpP = 7,     // all 32 bits, formed when read and at the end of a run
    kSvpPm0 = 8,
    kSvpPm1 = 9,
    kSvpPm2 = 10,
    kSvpXst = 11, // also PM3
    kSvpPm4 = 12,
    kSvpExt5 = 13,
    kSvpPmc = 14, // address in the high half, mode in the low half
    kSvpAl = 15,  // the low half of A; its own cell is unused
};

// Bits of ST.
inline constexpr uint32_t kSvpStModulo = 0x0007;     // pointers count in 2^n words; 0: 256
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
    // Programmed accesses of PM0 to PM4 and a spare: address in the high half, mode in the low half.
    std::array<uint32_t, kSvpPmRegisters> pmacRead{};
    std::array<uint32_t, kSvpPmRegisters> pmacWrite{};
    uint32_t emuStatus = 0;
    std::array<uint16_t, kSvpStackDepth> stack{};
    std::array<uint16_t, kSvpMemoryWords> iramRom{};
    std::array<uint16_t, kSvpMemoryWords> dram{};
    const uint16_t* rom = nullptr; // kSvpRomWords words
    uint32_t pc = 0;               // where a run stands; written at its start and its end
    int32_t budget = 0;            // instructions left in this run
};

// Clears the record and takes the image.
void SvpReset(MD_SVP& svp, const uint16_t* rom);

void SvpRun(MD_SVP& svp, int32_t instructions);

// The 68000's side. `address` is within the cartridge's pages; false: no DRAM there, and `value` is
// untouched.
[[nodiscard]] bool SvpReadWord(const MD_SVP& svp, uint32_t address, uint16_t& value);
void SvpWriteWord(MD_SVP& svp, uint32_t address, uint16_t value);
// A word write to 0xA15000 or 0xA15002.
void SvpWriteXst(MD_SVP& svp, uint16_t value);

// The state piece.
[[nodiscard]] uint32_t SvpStateSize();
uint8_t* SvpSaveState(const MD_SVP& svp, uint8_t* out);
// Gives the bytes used, or 0 with nothing changed when the piece does not fit. Any contents are safe.
[[nodiscard]] uint32_t SvpLoadState(MD_SVP& svp, const uint8_t* data, uint32_t size);
