// The 64 KB address space of the Z80 in a Master System or Game Gear: cartridge and BIOS through
// their mappers, 8 KB of work RAM, 8 KB of RAM on the cartridge.
// Source: C. MacDonald, SMS/GG hardware notes (2002); SMS Power, Mappers.
//
// The space is a table of 256 pages of 256 bytes, each with a pointer for reads and one for writes.
// A write to the address of a mapper register changes the mapping too. Unmapped reads come from a
// page of 0xFF, unmapped writes go to a page that is never read.
//
// Banks have 16 KB; an image is padded to whole banks with 0xFF. The bank mask is the next power of
// two above the bank count, minus 1. A bank number that is still too large after masking selects
// bank 0 (settled).
// Units: addresses in bytes; slots 0 to 2 are the three 16 KB of ROM space from 0x0000 on.
// Owner: one machine, on its session's thread.
// Order: images and mapper kind, then SegaMemoryReset.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

inline constexpr uint32_t kSegaBankBytes = 0x4000;
// A bank register has eight bits.
inline constexpr uint32_t kSegaImageLimit = 256 * kSegaBankBytes;
inline constexpr uint32_t kSegaRamBytes = 0x2000;

// How a cartridge switches banks; the values are those of game records. Any other value is kSega.
enum class SegaMapper : uint16_t { kSega = 1, kCodemasters = 2, kKorean = 3 };
[[nodiscard]] SegaMapper SegaMapperOf(uint16_t board);

// A cartridge or BIOS.
struct SEGA_IMAGE {
    std::vector<uint8_t> bytes; // whole banks; empty without an image
    uint32_t bankCount = 0;
    uint32_t bankMask = 0;

    [[nodiscard]] bool Present() const { return bankCount != 0; }
    [[nodiscard]] const uint8_t* Bank(uint32_t number) const {
        return bytes.data() + size_t{number < bankCount ? number : 0} * kSegaBankBytes;
    }
};
[[nodiscard]] SEGA_IMAGE MakeCartridge(std::vector<uint8_t> image);
// An image of less than a bank is repeated over all three slots and has a bank count of 1.
[[nodiscard]] SEGA_IMAGE MakeBios(std::vector<uint8_t> image);

inline constexpr uint16_t kSegaMapperControl = 0xFFFC; // the bank registers of slots 0 to 2 follow
inline constexpr uint8_t kSegaMapperRam = 0x08;        // of that register: cartridge RAM in slot 2
inline constexpr uint16_t kKoreanMapperBank = 0xA000;  // the bank register of slot 2

// A mapper's registers, in the form of states.
struct SEGA_MAPPER_WORDS {
    std::array<uint32_t, 3> slots{}; // bank numbers
    uint32_t control = 0;            // kSegaMapperControl
};

// Bits of the memory control port, 0x3E: 1 switches off.
enum SegaMemoryControl : uint8_t {
    kSegaIoOff = 0x04,
    kSegaBiosOff = 0x08,
    kSegaRamOff = 0x10,
    kSegaCartridgeOff = 0x40
};

struct SEGA_MEMORY {
    SEGA_MEMORY() = default;
    SEGA_MEMORY(const SEGA_MEMORY&) = delete; // the tables point into the record
    SEGA_MEMORY& operator=(const SEGA_MEMORY&) = delete;

    std::array<const uint8_t*, 256> readPages{}; // by the high byte of the address
    std::array<uint8_t*, 256> writePages{};

    SEGA_IMAGE cartridge;
    SEGA_IMAGE bios;
    SegaMapper mapper = SegaMapper::kSega; // of the cartridge
    SegaMapper listening =
        SegaMapper::kSega; // the cartridge's, or kSega while it is off, for a BIOS

    SEGA_MAPPER_WORDS cartridgeWords;
    SEGA_MAPPER_WORDS biosWords; // `control` is unused: there is only one such register
    uint8_t control = 0;         // port 0x3E

    std::array<uint8_t, kSegaRamBytes> workRam{};
    std::array<uint8_t, kSegaRamBytes> cartridgeRam{}; // kept by a reset
    std::array<uint8_t, 256> dummyPage{};              // for unmapped writes
};

// Clears the work RAM and sets memory and control to their values when a game starts: with a BIOS
// those at power-on, without one those that a BIOS leaves.
void SegaMemoryReset(SEGA_MEMORY& memory);
// Derives the page tables from `control` and the mappers' words. Any values are safe.
void SegaMemoryRebuild(SEGA_MEMORY& memory);
void SegaMemoryWriteControl(SEGA_MEMORY& memory, uint8_t value);
// The effect of a write to a mapper register; the byte itself is stored by SegaMemoryWrite.
void SegaMemoryWriteRegister(SEGA_MEMORY& memory, uint16_t address, uint8_t value);

// The RAM on the cartridge, as something that a battery keeps (machine/battery.h).
[[nodiscard]] std::vector<uint8_t> SegaBattery(const SEGA_MEMORY& memory);
[[nodiscard]] bool SetSegaBattery(SEGA_MEMORY& memory, std::span<const uint8_t> bytes);

// A copy of a memory by its name: "ram", "sram" (on the cartridge), "vram" or "palette". Empty for
// any other name.
[[nodiscard]] std::vector<uint8_t> SegaMemoryRegion(const SEGA_MEMORY& memory,
                                                    std::span<const uint8_t> vram,
                                                    std::span<const uint8_t> palette,
                                                    std::string_view region);

[[nodiscard]] inline uint8_t SegaMemoryRead(const SEGA_MEMORY& memory, uint16_t address) {
    return memory.readPages[address >> 8][address & 0xFF];
}

// True for the address of a mapper register.
[[nodiscard]] inline bool SegaMemoryIsRegister(const SEGA_MEMORY& memory, uint16_t address) {
    switch (memory.listening) {
    case SegaMapper::kCodemasters: // the first byte of each slot
        return address % kSegaBankBytes == 0 && address < 3 * kSegaBankBytes;
    case SegaMapper::kKorean: return address == kKoreanMapperBank;
    case SegaMapper::kSega: break;
    }
    return address >= kSegaMapperControl;
}

inline void SegaMemoryWrite(SEGA_MEMORY& memory, uint16_t address, uint8_t value) {
    memory.writePages[address >> 8][address & 0xFF] = value;
    if (SegaMemoryIsRegister(memory, address)) [[unlikely]] {
        SegaMemoryWriteRegister(memory, address, value);
    }
}
