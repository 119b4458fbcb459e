// Mega Drive cartridge: a ROM and at most one extra piece of hardware, as the 68000 sees them in the
// low 8 MiB of its map, the window.
//
// Kinds: a plain ROM, battery RAM, a serial EEPROM (md_eeprom.h), or the signal processor (svp.h). The
//   header decides. The page tables hold the decision, so the bus never tests the kind.
// Units: addresses are 24-bit 68000 addresses; a page is 64 KiB of them. ROM is held as words of the host
//   whose high byte is the one at the even address. Battery RAM is held as bytes of such words, low byte
//   first, so a byte access flips bit 0.
// Owner: one machine, on its session's thread; no lock. Not copyable, since the signal processor points
//   into it.
// Order: MdCartSetup once, MdCartReset at every reset of the machine, then accesses.
// Sizes: an image is cut at the 8 MiB of the window. A byte of 0xFF is added to an image of odd size, and missing
//   bytes of the header read as 0xFF.
// Differs: docs/HARDWARE.md, Mega Drive, Cartridge.
#pragma once

#include "machine/state_out.h"
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
inline constexpr size_t kMdCartPages = 256;         // in the whole 68000 map
inline constexpr uint32_t kMdCartWindowPages = 128; // in the window
inline constexpr uint32_t kMdCartPageBytes = 65536;
inline constexpr size_t kMdSramBytes = 65536;

struct MD_CARTRIDGE;

// A null entry of a page table leaves the page to the machine's own map.
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
    uint32_t svpDmaQuirk = 0; // for the VDP: 1 if a DMA gets each word of this ROM one word late
    std::string title;        // from the header, with single blanks
    std::string productCode;  // 16 bytes

    std::vector<uint16_t> rom; // the window
    std::array<MdCartReadByte, kMdCartPages> readByte{};
    std::array<MdCartReadWord, kMdCartPages> readWord{};
    std::array<MdCartWriteByte, kMdCartPages> writeByte{};
    std::array<MdCartWriteWord, kMdCartPages> writeWord{};

    // At most one of these is set, by the kind.
    std::unique_ptr<MD_SRAM> sram;
    std::unique_ptr<MD_EEPROM> eeprom;
    std::unique_ptr<MD_SVP> svp;
};

// Takes an image as it is in the file, bytes in 68000 order, and resets the cartridge.
void MdCartSetup(MD_CARTRIDGE& cart, std::span<const uint8_t> image);

void MdCartReset(MD_CARTRIDGE& cart);

// The ROM in the window, even where RAM or another device covers it.
[[nodiscard]] inline uint16_t MdCartRomWord(const MD_CARTRIDGE& cart, uint32_t address) {
    return cart.rom[(address & (kMdCartWindowBytes - 1)) >> 1];
}

[[nodiscard]] inline uint8_t MdCartRomByte(const MD_CARTRIDGE& cart, uint32_t address) {
    const uint32_t word = MdCartRomWord(cart, address);
    return static_cast<uint8_t>((address & 1) != 0 ? word & 0xFF : word >> 8);
}

// The words of a page that is nothing but ROM, which may be read without its handlers; null for any other
// page. Valid until the next MdCartSetup.
[[nodiscard]] const uint16_t* MdCartPlainPage(const MD_CARTRIDGE& cart, uint32_t page);

// For a cartridge with the signal processor: the machine calls this after each 68000 instruction.
inline void MdCartRunSvp(MD_CARTRIDGE& cart, uint32_t masterClocks) {
    constexpr uint32_t kClocksACycle = 7;
    constexpr uint32_t kInstructionsACycle = 3;
    SvpRun(*cart.svp, static_cast<int32_t>(masterClocks / kClocksACycle * kInstructionsACycle));
}

// The contents of battery RAM or EEPROM to be kept in a file: what an access can reach, in whole words. Empty
// without either. Words of battery RAM have their low byte first.
[[nodiscard]] std::span<uint8_t> MdCartSaveData(MD_CARTRIDGE& cart);

// The state piece. A load keeps what the cartridge's own header decided.
[[nodiscard]] uint32_t MdCartStateSize(const MD_CARTRIDGE& cart);
// Writes MdCartStateSize bytes and returns the byte after them.
StateOut MdCartSaveState(const MD_CARTRIDGE& cart, StateOut out);
// Returns the bytes used, or 0 with nothing changed if the piece doesn't fit. Any contents are safe.
[[nodiscard]] uint32_t MdCartLoadState(MD_CARTRIDGE& cart, const uint8_t* data, uint32_t size);
