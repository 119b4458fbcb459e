#include "sega8/sega_memory.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

constexpr uint32_t kPageBytes = 256;
constexpr uint32_t kPagesInSlot = kSegaBankBytes / kPageBytes;
constexpr uint32_t kFixedPages = 4; // the first 1 KB, with the interrupt vectors, is never switched
constexpr uint32_t kSlotsBytes = 3 * kSegaBankBytes;
constexpr uint8_t kControlWithBios = 0xE0;  // BIOS, RAM and I/O on
constexpr uint8_t kControlAfterBios = 0xAB; // cartridge, RAM and I/O on

constexpr std::array<uint8_t, kPageBytes> kNothing = [] {
    std::array<uint8_t, kPageBytes> page{};
    page.fill(0xFF);
    return page;
}();

void CountBanks(SEGA_IMAGE& image) {
    image.bankCount =
        static_cast<uint32_t>((image.bytes.size() + kSegaBankBytes - 1) / kSegaBankBytes);
    image.bankMask = std::bit_ceil(image.bankCount + 1) - 1;
    image.bytes.resize(size_t{image.bankCount} * kSegaBankBytes, 0xFF);
}

void MapSlot(SEGA_MEMORY& memory, uint32_t slot, const uint8_t* bank, uint32_t firstPage = 0) {
    for (uint32_t page = firstPage; page < kPagesInSlot; ++page) {
        memory.readPages[slot * kPagesInSlot + page] = bank + size_t{page} * kPageBytes;
    }
}

void MapImage(SEGA_MEMORY& memory, const SEGA_IMAGE& image, const SEGA_MAPPER_WORDS& words,
              bool firstKilobyteFixed) {
    for (uint32_t slot = 0; slot < 3; ++slot) {
        MapSlot(memory, slot, image.Bank(words.slots[slot]));
    }
    if (firstKilobyteFixed) {
        for (uint32_t page = 0; page < kFixedPages; ++page) {
            memory.readPages[page] = image.Bank(0) + size_t{page} * kPageBytes;
        }
    }
}

// Maps 8 KB of RAM from `firstPage` on, and again after it.
void MapRamTwice(SEGA_MEMORY& memory, uint32_t firstPage, std::array<uint8_t, kSegaRamBytes>& ram) {
    for (uint32_t page = 0; page < kPagesInSlot; ++page) {
        uint8_t* const bytes = ram.data() + size_t{page} * kPageBytes % kSegaRamBytes;
        memory.readPages[firstPage + page] = bytes;
        memory.writePages[firstPage + page] = bytes;
    }
}

void WriteSlot(SEGA_MEMORY& memory, uint32_t slot, uint8_t value) {
    const bool toCartridge = (memory.control & kSegaCartridgeOff) == 0;
    const SEGA_IMAGE& image = toCartridge ? memory.cartridge : memory.bios;
    SEGA_MAPPER_WORDS& words = toCartridge ? memory.cartridgeWords : memory.biosWords;
    const uint32_t bank = value & image.bankMask;
    words.slots[slot] = bank < image.bankCount ? bank : 0;
}

} // namespace

SegaMapper SegaMapperOf(uint16_t board) {
    switch (board) {
    case 2: return SegaMapper::kCodemasters;
    case 3: return SegaMapper::kKorean;
    default: return SegaMapper::kSega;
    }
}

SEGA_IMAGE MakeCartridge(std::vector<uint8_t> image) {
    SEGA_IMAGE made;
    made.bytes = std::move(image);
    CountBanks(made);
    return made;
}

SEGA_IMAGE MakeBios(std::vector<uint8_t> image) {
    if (image.empty() || image.size() >= kSegaBankBytes) {
        return MakeCartridge(std::move(image));
    }
    SEGA_IMAGE made;
    made.bytes.resize(kSlotsBytes);
    for (size_t i = 0; i < made.bytes.size(); ++i) {
        made.bytes[i] = image[i % image.size()];
    }
    made.bankCount = 1;
    made.bankMask = 1;
    return made;
}

void SegaMemoryReset(SEGA_MEMORY& memory) {
    memory.workRam.fill(0);
    memory.cartridgeWords = {
        .slots = {0, 1, 2}
    };
    memory.biosWords = {
        .slots = {0, 1, 2}
    };
    memory.control = kControlWithBios;
    if (!memory.bios.Present()) {
        memory.control = kControlAfterBios;
        // A BIOS leaves port 0x3E's value at 0xC000 and the bank registers' at the end of RAM.
        memory.workRam[0] = kControlAfterBios;
        memory.workRam[kSegaRamBytes - 3] = 0;
        memory.workRam[kSegaRamBytes - 2] = 1;
        memory.workRam[kSegaRamBytes - 1] = 2;
    }
    SegaMemoryRebuild(memory);
}

void SegaMemoryRebuild(SEGA_MEMORY& memory) {
    memory.readPages.fill(kNothing.data());
    memory.writePages.fill(memory.dummyPage.data());
    const bool cartridgeOn = (memory.control & kSegaCartridgeOff) == 0;
    memory.listening = cartridgeOn ? memory.mapper : SegaMapper::kSega;
    if (cartridgeOn && memory.cartridge.Present()) {
        const bool sega = memory.mapper == SegaMapper::kSega;
        MapImage(memory, memory.cartridge, memory.cartridgeWords, sega);
        if (sega && (memory.cartridgeWords.control & kSegaMapperRam) != 0) {
            MapRamTwice(memory, 2 * kPagesInSlot, memory.cartridgeRam);
        }
    } else if ((memory.control & kSegaBiosOff) == 0 && memory.bios.Present()) {
        if (memory.bios.bytes.size() == kSlotsBytes && memory.bios.bankCount == 1) {
            for (uint32_t slot = 0; slot < 3; ++slot) {
                MapSlot(memory, slot, memory.bios.bytes.data() + size_t{slot} * kSegaBankBytes);
            }
        } else {
            MapImage(memory, memory.bios, memory.biosWords, true);
        }
    }
    if ((memory.control & kSegaRamOff) == 0) {
        MapRamTwice(memory, 3 * kPagesInSlot, memory.workRam);
    }
}

void SegaMemoryWriteControl(SEGA_MEMORY& memory, uint8_t value) {
    memory.control = value;
    SegaMemoryRebuild(memory);
}

void SegaMemoryWriteRegister(SEGA_MEMORY& memory, uint16_t address, uint8_t value) {
    switch (memory.listening) {
    case SegaMapper::kSega:
        if (address == kSegaMapperControl) {
            memory.cartridgeWords.control = value;
        } else {
            WriteSlot(memory, address - (kSegaMapperControl + 1u), value);
        }
        break;
    case SegaMapper::kCodemasters: WriteSlot(memory, address / kSegaBankBytes, value); break;
    case SegaMapper::kKorean: WriteSlot(memory, 2, value); break;
    }
    SegaMemoryRebuild(memory);
}

std::vector<uint8_t> SegaBattery(const SEGA_MEMORY& memory) {
    return {memory.cartridgeRam.begin(), memory.cartridgeRam.end()};
}

bool SetSegaBattery(SEGA_MEMORY& memory, std::span<const uint8_t> bytes) {
    if (bytes.size() != memory.cartridgeRam.size()) {
        return false;
    }
    std::ranges::copy(bytes, memory.cartridgeRam.begin());
    return true;
}

std::vector<uint8_t> SegaMemoryRegion(const SEGA_MEMORY& memory, std::span<const uint8_t> vram,
                                      std::span<const uint8_t> palette, std::string_view region) {
    std::span<const uint8_t> bytes;
    if (region == "ram") {
        bytes = memory.workRam;
    } else if (region == "sram") {
        bytes = memory.cartridgeRam;
    } else if (region == "vram") {
        bytes = vram;
    } else if (region == "palette") {
        bytes = palette;
    }
    return {bytes.begin(), bytes.end()};
}
