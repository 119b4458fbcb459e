// The two buses of the Mega Drive: what the 68000 and the Z80 reach at which address.
//
// Units: words of the 68000 map are big-endian values; the byte at the even address is the high half. Reads
//   may change the VDP (its address, its status); MdPeekByte changes nothing.
// Decoding is partial, as on the board: an even byte or a word anywhere in 0xA111xx requests the Z80's bus,
//   and anywhere in 0xA112xx drives its reset line. Of the Z80's 256 addresses from 0x7F00 on, the first 32
//   reach the VDP and the others nothing.
#pragma once

#include "megadrive/md_console.h"

#include <cstdint>

// The 68000 side, in the form of its callbacks; `owner` is the MEGA_DRIVE.
[[nodiscard]] uint32_t MdReadByte(void* owner, uint32_t address);
[[nodiscard]] uint32_t MdReadWord(void* owner, uint32_t address);
[[nodiscard]] uint32_t MdReadLong(void* owner, uint32_t address); // the low word first
void MdWriteByte(void* owner, uint32_t address, uint32_t value);
void MdWriteWord(void* owner, uint32_t address, uint32_t value);
void MdWriteLong(void* owner, uint32_t address, uint32_t value); // the high word first

// What the 68000 would read, without side effects.
[[nodiscard]] uint8_t MdPeekByte(MEGA_DRIVE& md, uint32_t address);

// What a DMA of the VDP reads.
[[nodiscard]] uint16_t MdReadForDma(void* owner, uint32_t address);

// Run the clocks that the fast loop owes: VDP and FM chip catch up with the 68000, the PSG with the Z80.
void MdCatchUpVdp(MEGA_DRIVE& md);
void MdCatchUpFm(MEGA_DRIVE& md);
void MdCatchUpPsg(MEGA_DRIVE& md);
// Recomputes `vdpToEvent`. The VDP must be caught up.
void MdRefreshVdpToEvent(MEGA_DRIVE& md);

// The Z80 side, for the frame loop to inline.
struct MD_Z80_BUS {
    MEGA_DRIVE& md;

    uint8_t Read(uint16_t address) {
        if (address < kMdZ80RamEnd) {
            return md.z80Ram[address % kMdZ80RamBytes];
        }
        return ReadBeyondRam(address);
    }
    uint8_t ReadOpcode(uint16_t address) { return Read(address); }
    // Nothing is connected to the ports.
    static uint8_t IoRead([[maybe_unused]] uint16_t port) { return 0xFF; }
    void Write(uint16_t address, uint8_t value) {
        if (address < kMdZ80RamEnd) {
            md.z80Ram[address % kMdZ80RamBytes] = value;
        } else {
            WriteBeyondRam(address, value);
        }
    }
    static void IoWrite([[maybe_unused]] uint16_t port, [[maybe_unused]] uint8_t value) {}

private:
    uint8_t ReadBeyondRam(uint16_t address);
    void WriteBeyondRam(uint16_t address, uint8_t value);
};
