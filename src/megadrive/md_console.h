// The Mega Drive as a board of chips: 68000, Z80, video, FM and PSG, the I/O chip, two memories and a
// cartridge, all in one record so that the frame loop reaches them by fixed offsets.
//
// Clock: everything hangs on one master clock of 53.69 MHz (60 Hz) or 53.20 MHz (50 Hz). A cycle of the
//   68000 is 7 master clocks, a clock of Z80 and PSG 15; the FM chip counts 68000 cycles. A line is 3,420
//   master clocks; 262 lines or 313 make a frame.
// Order of a round (one 68000 cycle): Z80, PSG, FM, video. The 68000 itself does a whole instruction at
//   once, ahead of the rounds that the instruction takes.
// Units: `workRam` holds words as the host reads them, so a byte lies at its address with bit 0 flipped.
// Owner: CMegaDrive, on its session's thread, with no lock. Not movable, for the chips point at each other.
// Order of calls: MdConnect once a cartridge is in (MdCartSetup), MdReset, then MdRunFrame.
// Differs: the Z80 pays its whole debt of an instruction in the first rounds of it; giving the Z80's bus
//   away and back moves it by three clocks at once; reads of nothing give the word at the 68000's
//   program counter; after 256 instructions in a row without time one takes four cycles; an acknowledged
//   horizontal interrupt drops a waiting vertical one. All kept on purpose.
#pragma once

#include "machine/chip_sound.h"
#include "megadrive/m68000.h"
#include "megadrive/md_cartridge.h"
#include "megadrive/md_io.h"
#include "megadrive/md_vdp.h"
#include "megadrive/ym2612.h"
#include "sega8/psg.h"
#include "sega8/z80.h"

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr uint32_t kMdClock60 = 53693175; // Hz
inline constexpr uint32_t kMdClock50 = 53203425;
inline constexpr uint32_t kMdCycleClocks = 7; // master clocks of a 68000 cycle
inline constexpr int32_t kMdZ80Clocks = 15;   // of a Z80 clock
inline constexpr size_t kMdWorkRamBytes = 65536;
inline constexpr size_t kMdZ80RamBytes = 8192;
inline constexpr uint32_t kMdZ80RamEnd = 0x4000; // on the Z80's bus, where it lies twice
inline constexpr uint32_t kMdAddressMask = 0xFFFFFF;
inline constexpr uint32_t kMdIoPage = 0xA1; // of 64 KiB: the I/O chip and what controls the Z80

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
    bool stepByStep = false; // every chip in every round; for comparison with the fast loop

    uint32_t m68kBusCycles = 0; // since the reset; wraps, and is used as a difference only
    int32_t z80Clock = 0;       // master clocks owed to Z80 and PSG
    uint32_t z80Bank = 0;       // base of the Z80's window, a multiple of 0x8000 below 0x1000000
    // Guards a read of nothing whose program counter lies in nothing as well.
    bool openBusRead = false;
    bool z80HandingOver = false; // the Z80 does its last clocks before its bus changes hands

    // 68000 cycles for which video and FM chip have not been clocked yet, and clocks of the PSG; 0 between
    // frames.
    uint32_t vdpWaiting = 0;
    uint32_t fmWaiting = 0;
    uint32_t psgWaiting = 0;
    uint32_t vdpToEvent = 0; // cycles from the last one that was run to where others may notice

    alignas(8) std::array<uint16_t, kMdWorkRamBytes / 2> workRam{};
    std::array<uint8_t, kMdZ80RamBytes> z80Ram{};
};

// Wires the chips. `md` holds its cartridge, region and devices already.
void MdConnect(MEGA_DRIVE& md);

// Power-on values of everything but what the cartridge keeps.
void MdReset(MEGA_DRIVE& md);

// Brings what a loaded state, or an instruction that was left half done, may have put out of its bounds back
// into them, and lets no chip wait.
void MdSettle(MEGA_DRIVE& md);

// Until the video chip has ended its last line. The 68000 may run over by the rest of an instruction.
// Throws M68K_ADDRESS_ERROR where the program goes wrong beyond repair.
void MdRunFrame(MEGA_DRIVE& md);
