// The Mega Drive as a board of chips: 68000, Z80, VDP, FM chip and PSG, the I/O chip, two memories and a
// cartridge, all in one record so that the frame loop reaches them by fixed offsets.
//
// Clock: one master clock of 53.69 MHz (60 Hz) or 53.20 MHz (50 Hz). A 68000 cycle is 7 master clocks, a
//   clock of Z80 and PSG is 15; the FM chip counts 68000 cycles. A line is 3,420 master clocks; a frame is
//   262 or 313 lines.
// Within a 68000 cycle the chips run in this order: Z80, PSG, FM chip, VDP. The 68000 runs a whole
//   instruction at once, before the cycles that it takes.
// Units: `workRam` holds words as the host reads them, so a byte is stored at its address with bit 0 flipped.
// Owner: CMegaDrive, on its session's thread, with no lock. Not movable, since the chips point at each other.
// Order: MdCartSetup, MdConnect, MdReset, then MdRunFrame for each frame.
// Differs: docs/HARDWARE.md, Mega Drive, Board.
#pragma once

#include "machine/chip_sound.h"
#include "megadrive/m68000.h"
#include "megadrive/md_cartridge.h"
#include "megadrive/md_io.h"
#include "megadrive/md_vdp.h"
#include "megadrive/ym2612.h"
#include "sega8/psg.h"
#include "sega8/z80.h"
#include "sega8/z80_idle.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kMdClock60 = 53693175; // Hz
inline constexpr uint32_t kMdClock50 = 53203425;
inline constexpr uint32_t kMdCycleClocks = 7; // master clocks of a 68000 cycle
inline constexpr int32_t kMdZ80Clocks = 15;   // of a Z80 clock
inline constexpr size_t kMdWorkRamBytes = 65536;
inline constexpr size_t kMdZ80RamBytes = 8192;
inline constexpr uint32_t kMdZ80RamEnd = 0x4000;     // on the Z80's bus, where it is repeated once
inline constexpr uint32_t kMdZ80BankMask = 0xFF8000; // of the Z80's window
inline constexpr uint32_t kMdAddressMask = 0xFFFFFF;
inline constexpr uint32_t kMdIoPage =
    0xA1; // of 64 KiB: the I/O chip and the registers that control the Z80

inline constexpr uint32_t kMdZ80MostAhead = 480; // clocks; about two lines

// How to take back what the Z80 of the fast loop has done ahead of its time (md_z80_ahead.h).
struct MD_Z80_AHEAD {
    struct WRITE {
        uint16_t address; // in its RAM
        uint8_t before;
    };
    Z80 start;           // as it was when it began
    uint32_t clocks = 0; // of which it is ahead of `start`
    uint32_t writes = 0;
    std::array<WRITE, kMdZ80MostAhead> log; // at most one write a clock
    Z80IdleLoop idle;
    uint32_t effects = 0; // what makes a round of a loop unlike the one before; wraps
};

struct MEGA_DRIVE {
    M68K_STATE cpu;
    Z80 z80;
    MD_VDP vdp;
    YM2612 fm;
    PSG psg;
    ChipSound fmSound;
    ChipSound psgSound;
    MD_CARTRIDGE cartridge;
    MD_IO io;

    bool is50Hz = false;
    uint32_t masterClock = kMdClock60; // Hz
    bool plainLoop = false;            // the plain loop, which runs every chip in every cycle

    uint32_t m68kBusCycles = 0;  // since the reset; wraps, so only differences count
    uint32_t m68kBusReads = 0;   // of anything but plain memory; wraps, not saved
    int32_t z80Clock = 0;        // master clocks owed to Z80 and PSG
    uint32_t z80Bank = 0;        // base of the Z80's window, a multiple of 0x8000 below 0x1000000
    bool openBusRead = false;    // an undriven read is looking up the word at the program counter
    bool z80HandingOver = false; // the Z80 runs its last clocks before its bus changes hands

    // Clocks that the fast loop still owes, 0 between frames: 68000 cycles of VDP and FM chip, clocks of the
    // PSG.
    uint32_t vdpOwed = 0;
    uint32_t fmOwed = 0;
    uint32_t psgOwed = 0;
    uint32_t vdpToEvent =
        0; // 68000 cycles from the VDP's own time to its next event that others may see
    MD_Z80_AHEAD z80Ahead;
    int32_t z80Deadline =
        kMdZ80Clocks; // master clocks in `z80Clock` from which on the Z80 must run

    alignas(8) std::array<uint16_t, kMdWorkRamBytes / 2> workRam{};
    std::array<uint8_t, kMdZ80RamBytes> z80Ram{};
};

// Wires the chips. `md` must hold its cartridge, region and devices.
void MdConnect(MEGA_DRIVE& md);

// Power-on values of everything except what the cartridge keeps.
void MdReset(MEGA_DRIVE& md);

// After a load, or after an instruction that was left half done: brings every field back into its range and
// forgets the clocks that are owed.
void MdSanitize(MEGA_DRIVE& md);

// Runs until the VDP has ended its last line. The 68000 completes the instruction in progress. Throws
// M68K_ADDRESS_ERROR if the program accesses a word at an odd address.
void MdRunFrame(MEGA_DRIVE& md);
