// Mega Drive cartridge: a ROM and at most one extra piece of hardware, as the 68000 sees them in the
// low 8 MiB of its map.
//
// Kinds: a plain ROM, battery RAM, a serial EEPROM (md_eeprom.h), or the signal processor (svp.h). The
//   header decides. The page tables hold that decision, so the bus never asks for the kind.
// Units: addresses are 24-bit 68000 addresses, pages 64 KiB of them. A block of memory is held as words
//   of the host whose high byte is the one at the even address; battery RAM as such words in bytes, low
//   byte first, so that there a byte access flips bit 0.
// Owner: one machine, on its session's thread; no lock. Not copyable, for the signal processor points
//   into it.
// Order: MdCartSetup once, MdCartReset at every reset of the machine, then accesses.
// Sizes: an image is cut at the 8 MiB of the window. One of an odd size is paired with 0xFF behind it,
//   and a header that isn't wholly there reads as 0xFF.
#pragma once

#include "megadrive/md_eeprom.h"
#include "megadrive/svp.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

inline constexpr size_t kMdCartWindowBytes = 8 << 20;
inline constexpr size_t kMdCartPages = 256;         // of the whole 68000 map
inline constexpr uint32_t kMdCartWindowPages = 128; // of the window
inline constexpr uint32_t kMdCartPageBytes = 65536;
inline constexpr size_t kMdSramBytes = 65536;

struct MD_CARTRIDGE;

// Null in a page table: the machine's own map holds there.
using MdCartReadByte = uint8_t (*)(MD_CARTRIDGE& cart, uint32_t address);
using MdCartReadWord = uint16_t (*)(MD_CARTRIDGE& cart, uint32_t address);
using MdCartWriteByte = void (*)(MD_CARTRIDGE& cart, uint32_t address, uint8_t value);
using MdCartWriteWord = void (*)(MD_CARTRIDGE& cart, uint32_t address, uint16_t value);

enum MD_CART_KIND : uint32_t {
    kMdCartPlain = 0,
    kMdCartSram = 1,
    kMdCartEeprom = 2,
    kMdCartSvp = 3,
};

// Battery RAM.
struct MD_SRAM {
    uint32_t start = 0;
    uint32_t end = 0; // one past the last address
    std::array<uint8_t, kMdSramBytes> data{};
};

struct MD_CARTRIDGE {
    MD_CARTRIDGE() = default;
    MD_CARTRIDGE(const MD_CARTRIDGE&) = delete;
    MD_CARTRIDGE& operator=(const MD_CARTRIDGE&) = delete;

    MD_CART_KIND cartKind = kMdCartPlain;
    // For the picture unit's DMA, whose reads from this cartridge come one word late.
    uint32_t svpDmaQuirk = 0;
    std::string title;       // of the header, runs of blanks folded
    std::string productCode; // 16 bytes

    std::vector<uint16_t> rom; // the window
    std::array<MdCartReadByte, kMdCartPages> readByte{};
    std::array<MdCartReadWord, kMdCartPages> readWord{};
    std::array<MdCartWriteByte, kMdCartPages> writeByte{};
    std::array<MdCartWriteWord, kMdCartPages> writeWord{};

    // At most one of these, by the kind.
    std::unique_ptr<MD_SRAM> sram;
    std::unique_ptr<MD_EEPROM> eeprom;
    std::unique_ptr<MD_SVP> svp;
};

// Takes an image as it comes from the file, bytes in 68000 order, and resets the cartridge.
void MdCartSetup(MD_CARTRIDGE& cart, std::span<const uint8_t> image);

void MdCartReset(MD_CARTRIDGE& cart);

// The ROM in the window, whatever lies over it.
[[nodiscard]] inline uint16_t MdCartRomWord(const MD_CARTRIDGE& cart, uint32_t address) {
    return cart.rom[(address & (kMdCartWindowBytes - 1)) >> 1];
}

[[nodiscard]] inline uint8_t MdCartRomByte(const MD_CARTRIDGE& cart, uint32_t address) {
    const uint32_t word = MdCartRomWord(cart, address);
    return static_cast<uint8_t>((address & 1) != 0 ? word & 0xFF : word >> 8);
}

// The words of a 64 KiB page that is nothing but ROM, so that it may be read without its handlers; null
// for any other page. It holds for as long as the cartridge is set up.
[[nodiscard]] const uint16_t* MdCartPlainPage(const MD_CARTRIDGE& cart, uint32_t page);

// With the signal processor: what the machine calls after each 68000 instruction.
inline void MdCartRunSvp(MD_CARTRIDGE& cart, uint32_t masterClocks) {
    constexpr uint32_t kClocksACycle = 7;
    constexpr uint32_t kInstructionsACycle = 3;
    SvpRun(*cart.svp, static_cast<int32_t>(masterClocks / kClocksACycle * kInstructionsACycle));
}

// The contents of battery RAM or EEPROM that are worth a file: whatever an access can reach, in whole words;
// empty without either. Words of battery RAM have their low byte first.
[[nodiscard]] std::span<uint8_t> MdCartSaveData(MD_CARTRIDGE& cart);

// The state piece. What the header decided isn't taken from a state: a cartridge keeps its own.
[[nodiscard]] uint32_t MdCartStateSize(const MD_CARTRIDGE& cart);
// Writes MdCartStateSize bytes and gives the byte behind them.
uint8_t* MdCartSaveState(const MD_CARTRIDGE& cart, uint8_t* out);
// Gives the bytes used, or 0 with nothing changed when the piece does not fit. Any contents are safe.
[[nodiscard]] uint32_t MdCartLoadState(MD_CARTRIDGE& cart, const uint8_t* data, uint32_t size);
