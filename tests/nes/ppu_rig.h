// A bare PPU with its memory, lines and picture, for the tests of the chip.
#pragma once

#include "nes/ppu.h"
#include "nes/ppu_colours.h"
#include "nes/ppu_tick.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// An address that the board saw.
struct Watched {
    int32_t line;
    uint32_t dot;
    uint16_t address;

    bool operator==(const Watched&) const = default;
};

// A colour number for every palette entry, all different, so that a pixel identifies its entry. The first entries
// of the sprite palettes equal those of the background.
constexpr uint8_t RigColour(uint32_t entry) {
    if ((entry & 3) == 0) {
        entry &= 15;
    }
    return static_cast<uint8_t>(entry < 13 ? 0x10 + entry : entry < 25 ? 0x14 + entry : entry - 24);
}

// The pixel of a palette entry of the rig.
inline uint32_t Shade(uint32_t entry, uint32_t emphasis = 0, bool gray = false) {
    static const auto kColours = PpuBuildColourTable();
    return kColours[(RigColour(entry) & (gray ? 0x30U : 0x3FU)) | emphasis << 6];
}

class PpuRig {
public:
    PpuRig() {
        pages.board = this;
        pages.ppuAddressHook = Watch;
        PpuInit(*ppu, &pages);
        PpuReset(*ppu, true, &nmi);
        for (uint32_t page = 0; page < 8; ++page) {
            pages.ppu[page].data = &patterns[page * kNesPpuPageBytes];
            pages.ppu[page].writable = 1;
        }
        Mirror(0, 1, 0, 1);
        for (auto& page : ppu->nametables) {
            page.fill(0);
        }
        PpuBeginFrame(*ppu, pixels.data(), kPpuWidth);
    }
    PpuRig(const PpuRig&) = delete;
    PpuRig& operator=(const PpuRig&) = delete;

    void Mirror(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
        const uint32_t order[4] = {a, b, c, d};
        for (uint32_t i = 0; i < 8; ++i) {
            pages.ppu[8 + i].data = PpuNametable(*ppu, order[i & 3]);
            pages.ppu[8 + i].writable = 1;
        }
    }

    void Write(uint32_t address, uint32_t value) {
        PpuWriteRegister(*ppu, static_cast<uint16_t>(address), static_cast<uint8_t>(value));
    }
    uint8_t Read(uint32_t address) { return PpuReadRegister(*ppu, static_cast<uint16_t>(address)); }

    void Dot() { PpuTick(*ppu); }
    void Dots(uint32_t count) {
        for (; count != 0; --count) {
            Dot();
        }
    }
    // Runs until this dot is done.
    void RunTo(int32_t line, uint32_t dot) {
        do {
            Dot();
        } while (ppu->line != line || ppu->dot != dot);
    }
    // Runs to the end of the frame; returns the number of dots.
    uint32_t Finish() {
        PpuBeginFrame(*ppu, pixels.data(), kPpuWidth);
        uint32_t dots = 0;
        for (; !ppu->frameDone; ++dots) {
            Dot();
        }
        return dots;
    }
    // Draws a whole frame.
    void Frame() {
        Finish();
        Finish();
    }

    void Address(uint32_t address) {
        (void)Read(2);
        Write(6, address >> 8);
        Write(6, address & 255);
    }
    // Through PPUDATA, outside rendering.
    void WriteMemory(uint32_t address, uint32_t value) {
        Address(address);
        Write(7, value);
        Dots(3);
    }
    uint8_t ReadPalette(uint32_t address) {
        Address(address);
        const uint8_t value = Read(7);
        Dots(3);
        return value;
    }
    void SetPalette() {
        for (uint32_t entry = 0; entry < 32; ++entry) {
            WriteMemory(0x3F00 + entry, RigColour(entry));
        }
        Address(0);
    }
    // Sets scroll position and nametable, as a game does in vblank.
    void Scroll(uint32_t x, uint32_t y, uint32_t control = 0) {
        (void)Read(2);
        Write(0, control);
        Write(5, x);
        Write(5, y);
    }

    // Sets a row of a tile, low and high plane.
    void TileRow(uint32_t tile, uint32_t row, uint32_t low, uint32_t high) {
        patterns[tile * 16 + row] = static_cast<uint8_t>(low);
        patterns[tile * 16 + 8 + row] = static_cast<uint8_t>(high);
    }
    void Tile(uint32_t tile, uint32_t low, uint32_t high) {
        for (uint32_t row = 0; row < 8; ++row) {
            TileRow(tile, row, low, high);
        }
    }
    void Sprite(uint32_t number, uint32_t x, uint32_t y, uint32_t tile, uint32_t attributes) {
        const uint32_t values[4] = {y, tile, attributes, x};
        for (uint32_t i = 0; i < 4; ++i) {
            ppu->oam[number * 4 + i] = static_cast<uint8_t>(values[i]);
        }
    }

    uint8_t Status() {
        PpuCatchUp(*ppu);
        return ppu->status;
    }
    uint32_t At(uint32_t x, uint32_t y) {
        PpuCatchUp(*ppu);
        return pixels[y * kPpuWidth + x];
    }

    NES_PAGES pages;
    uint32_t nmi = 0;
    std::unique_ptr<PPU> ppu = std::make_unique<PPU>();
    std::array<uint8_t, 8192> patterns{};
    std::vector<uint32_t> pixels = std::vector<uint32_t>(size_t{kPpuWidth} * kPpuHeight);
    std::vector<Watched> log;
    bool watching = false; // append to `log`

private:
    static void Watch(void* board, uint16_t address, uint32_t count) {
        auto& rig = *static_cast<PpuRig*>(board);
        if (rig.watching) {
            rig.log.insert(rig.log.end(), count, {rig.ppu->line, rig.ppu->dot, address});
        }
    }
};
