#include "nes/board_private.h"

#include <algorithm>

namespace {

constexpr size_t kNametablePages = 4;
constexpr size_t kFirstNametable = 8;
constexpr size_t kFirstNametableMirror = 12;
constexpr uint32_t kFirstRamPage = 6;

// Index: NesMirroring, nametable. The nametable page.
constexpr std::array<std::array<uint8_t, kNametablePages>, 5> kMirrorings{
    {{0, 0, 0, 0}, {1, 1, 1, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}, {0, 1, 2, 3}}
};

void MapProgram(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t number, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        uint8_t* data = cartridge.program[(number + i) & cartridge.programMask].get();
        cartridge.pages.cpu[firstPage + i] = {data, data != nullptr, false};
    }
}

void MapCharacter(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t number, uint32_t count) {
    if (cartridge.characterBanks == 0) {
        return;
    }
    for (uint32_t i = 0; i < count; ++i) {
        NES_PPU_PAGE& page = cartridge.pages.ppu[firstPage + i];
        page.data = cartridge.character[(number + i) & cartridge.characterMask].get();
        page.writable = 0;
    }
}

} // namespace

void MapPrg32(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank) {
    MapProgram(cartridge, firstPage, bank * 8, 8);
}

void MapPrg16(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank) {
    MapProgram(cartridge, firstPage, bank * 4, 4);
}

void MapPrg8(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank) {
    MapProgram(cartridge, firstPage, bank * 2, 2);
}

uint32_t LastPrg16(const NES_CARTRIDGE& cartridge) {
    return std::max(cartridge.programBanks, 1u) - 1;
}

void MapChr8(NES_CARTRIDGE& cartridge, uint32_t bank) {
    MapCharacter(cartridge, 0, bank * 8, 8);
}

void MapChr4(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank) {
    MapCharacter(cartridge, firstPage, bank * 4, 4);
}

void MapChr1(NES_CARTRIDGE& cartridge, uint32_t page, uint32_t bank) {
    MapCharacter(cartridge, page, bank, 1);
}

void MapChrRam(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t pages, uint8_t* ram) {
    for (uint32_t i = 0; i < pages; ++i) {
        NES_PPU_PAGE& page = cartridge.pages.ppu[firstPage + i];
        page.data = ram + i * kNesPpuPageBytes;
        page.writable = 1;
    }
}

void MapPrgRam(NES_CARTRIDGE& cartridge, NesBoardRam& ram, bool readable, bool writable) {
    cartridge.pages.cpu[kFirstRamPage] = {ram.data(), readable, writable};
    cartridge.pages.cpu[kFirstRamPage + 1] = {ram.data() + kNesCpuPageBytes, readable, writable};
}

void SetMirroring(NES_CARTRIDGE& cartridge, NesMirroring mirroring) {
    const auto& quarters = kMirrorings[static_cast<size_t>(mirroring)];
    for (size_t i = 0; i < kNametablePages; ++i) {
        for (const size_t first : {kFirstNametable, kFirstNametableMirror}) {
            NES_PPU_PAGE& page = cartridge.pages.ppu[first + i];
            page.data = cartridge.nametables[quarters[i]];
            page.writable = 1;
        }
    }
}

NesMirroring HeaderMirroring(const NES_CARTRIDGE& cartridge) {
    if ((cartridge.flags & kNesFourScreens) != 0) {
        return NesMirroring::kFourScreens;
    }
    return (cartridge.flags & kNesVerticalMirroring) != 0 ? NesMirroring::kVertical
                                                          : NesMirroring::kHorizontal;
}

uint8_t HeaderMirroringRegister(const NES_CARTRIDGE& cartridge) {
    return (cartridge.flags & kNesVerticalMirroring) != 0 ? 0 : kMirroringHorizontal;
}

NesMirroring RegisterMirroring(uint8_t value) {
    return (value & kMirroringHorizontal) != 0 ? NesMirroring::kHorizontal
                                               : NesMirroring::kVertical;
}

void SetWriteHandler(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t lastPage,
                     NesWriteHandler handler) {
    for (uint32_t page = firstPage; page <= lastPage; ++page) {
        cartridge.write[page] = handler;
    }
}
