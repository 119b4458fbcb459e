// The two buses of the Mega Drive: what the 68000 and the Z80 reach at which address.
//
// Words of the 68000 map are big-endian values; a byte of one is its high half at the even address. Reads
// may change the video chip (its address, its status); MdPeekByte changes nothing.
//
// Partly decoded, as the board does: an even byte or a word anywhere in 0xA111xx asks for the Z80's bus, and
// anywhere in 0xA112xx drives its reset line. Of the Z80's 256 addresses from 0x7F00 the first 32 reach the
// video chip, the others nothing.
#pragma once

#include "megadrive/md_console.h"

#include <cstdint>

// The 68000 side, as its callbacks want them; `owner` is the MEGA_DRIVE.
[[nodiscard]] uint32_t MdReadByte(void* owner, uint32_t address);
[[nodiscard]] uint32_t MdReadWord(void* owner, uint32_t address);
[[nodiscard]] uint32_t MdReadLong(void* owner, uint32_t address); // the low word first
void MdWriteByte(void* owner, uint32_t address, uint32_t value);
void MdWriteWord(void* owner, uint32_t address, uint32_t value);
void MdWriteLong(void* owner, uint32_t address, uint32_t value); // the high word first

// What the 68000 would read, with no side effect.
[[nodiscard]] uint8_t MdPeekByte(MEGA_DRIVE& md, uint32_t address);

// The video chip's way to memory in a transfer.
[[nodiscard]] uint16_t MdReadForDma(void* owner, uint32_t address);

// Lets video and FM chip catch up with the 68000, and the PSG with the Z80's clock, in the fast loop.
void MdCatchUpVdp(MEGA_DRIVE& md);
void MdCatchUpFm(MEGA_DRIVE& md);
void MdCatchUpPsg(MEGA_DRIVE& md);
// Looks how long the video chip, which is up to date, may now wait.
void MdRefreshVdpToEvent(MEGA_DRIVE& md);

// The Z80 side, to be inlined into the frame loop.
struct MD_Z80_BUS {
    MEGA_DRIVE& md;

    uint8_t Read(uint16_t address) {
        if (address < kMdZ80RamEnd) {
            return md.z80Ram[address % kMdZ80RamBytes];
        }
        return ReadBeyondRam(address);
    }
    uint8_t ReadOpcode(uint16_t address) { return Read(address); }
    // Nothing lies on the ports.
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
