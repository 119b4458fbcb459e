// The 64 KB that the Z80 of a Master System or Game Gear sees: cartridge and BIOS through their
// mappers, 8 KB of work RAM, 8 KB of RAM on the cartridge.
//
// The space is a table of 256 pages of 256 bytes, one pointer for reading and one for writing. A read
// is one look-up. A write stores through the table, and then its address is tested for the mapper's
// registers. Where nothing is, reads come from a page of 0xFF and writes go to a page that is never
// read.
//
// Banks are 16 KB. An image that is no multiple of that is filled up with 0xFF. The bank mask is the
// next power of two above the bank count, minus 1; a number that is still past the count after masking
// stands for bank 0.
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
// A bank register is a byte, so this is all that can be reached.
inline constexpr uint32_t kSegaImageLimit = 256 * kSegaBankBytes;
inline constexpr uint32_t kSegaRamBytes = 0x2000;

// How a cartridge switches its banks; the numbers are those of game records. Any other number counts
// as kSega.
enum class SegaMapper : uint16_t { kSega = 1, kCodemasters = 2, kKorean = 3 };
[[nodiscard]] SegaMapper SegaMapperOf(uint16_t board);

// A cartridge or BIOS.
struct SEGA_IMAGE {
    std::vector<uint8_t> bytes; // whole banks; empty when there is none
    uint32_t bankCount = 0;
    uint32_t bankMask = 0;

    [[nodiscard]] bool Present() const { return bankCount != 0; }
    [[nodiscard]] const uint8_t* Bank(uint32_t number) const {
        return bytes.data() + size_t{number < bankCount ? number : 0} * kSegaBankBytes;
    }
};
[[nodiscard]] SEGA_IMAGE MakeCartridge(std::vector<uint8_t> image);
// One of less than a bank is repeated over all three slots and keeps a bank count of 1.
[[nodiscard]] SEGA_IMAGE MakeBios(std::vector<uint8_t> image);

// A mapper's registers, as they stand in states.
struct SEGA_MAPPER_WORDS {
    std::array<uint32_t, 3> slots{}; // bank numbers
    uint32_t control = 0;            // written at 0xFFFC; bit 3 puts cartridge RAM in slot 2
};

// Bits of the memory control port, 0x3E. They are active low.
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
        SegaMapper::kSega; // kSega while the cartridge is off: a BIOS has that one

    SEGA_MAPPER_WORDS cartridgeWords;
    SEGA_MAPPER_WORDS biosWords; // its `control` is unused: there is one 0xFFFC
    uint8_t control = 0;         // port 0x3E

    std::array<uint8_t, kSegaRamBytes> workRam{};
    std::array<uint8_t, kSegaRamBytes> cartridgeRam{}; // kept by a reset
    std::array<uint8_t, 256> dummyPage{};              // takes writes that go nowhere
};

// Clears the work RAM and leaves memory and control as they are when a game begins: with a BIOS as it
// finds them, without one as it would have left them.
void SegaMemoryReset(SEGA_MEMORY& memory);
// Makes the page tables from `control` and the mappers' words, whatever those hold.
void SegaMemoryRebuild(SEGA_MEMORY& memory);
void SegaMemoryWriteControl(SEGA_MEMORY& memory, uint8_t value);
// What a write to a mapper's register does besides storing the byte.
void SegaMemoryWriteRegister(SEGA_MEMORY& memory, uint16_t address, uint8_t value);

// A copy of a memory by its name: "ram", "sram" (on the cartridge), "vram" or "palette"; empty for any
// other name.
[[nodiscard]] std::vector<uint8_t> SegaMemoryRegion(const SEGA_MEMORY& memory,
                                                    std::span<const uint8_t> vram,
                                                    std::span<const uint8_t> palette,
                                                    std::string_view region);

[[nodiscard]] inline uint8_t SegaMemoryRead(const SEGA_MEMORY& memory, uint16_t address) {
    return memory.readPages[address >> 8][address & 0xFF];
}

// Whether a mapper listens at this address.
[[nodiscard]] inline bool SegaMemoryIsRegister(const SEGA_MEMORY& memory, uint16_t address) {
    switch (memory.listening) {
    case SegaMapper::kCodemasters: return (address & 0x3FFF) == 0 && address != 0xC000;
    case SegaMapper::kKorean: return address == 0xA000;
    case SegaMapper::kSega: break;
    }
    return address >= 0xFFFC;
}

inline void SegaMemoryWrite(SEGA_MEMORY& memory, uint16_t address, uint8_t value) {
    memory.writePages[address >> 8][address & 0xFF] = value;
    if (SegaMemoryIsRegister(memory, address)) [[unlikely]] {
        SegaMemoryWriteRegister(memory, address, value);
    }
}
