// A bare VDP with its memory, lines and picture, for the tests of the chip.
#pragma once

#include "sega8/vdp.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

constexpr uint32_t kRigWidth = 256;
constexpr uint32_t kRigRows = 256;
constexpr uint32_t kUntouched = 0x12345678;

// A colour of the six-bit palette as a pixel: two bits each of red, green and blue from the low
// end.
constexpr uint32_t SixBits(uint32_t value) {
    constexpr uint32_t kLevels[4] = {0x00, 0x55, 0xAA, 0xFF};
    return 0xFF000000U | kLevels[value & 3] << 16 | kLevels[(value >> 2) & 3] << 8 |
           kLevels[(value >> 4) & 3];
}

class VdpRig {
public:
    explicit VdpRig(uint32_t variant = kVdpSecond, bool pal = false) {
        VdpInit(vdp, &irq, &nmi, pal, variant);
        vdp.vram = vram.data();
        VdpReset(vdp);
        VdpBeginFrame(vdp, pixels.data(), kRigWidth);
    }
    VdpRig(const VdpRig&) = delete;
    VdpRig& operator=(const VdpRig&) = delete;

    // Mode 4, display on, name table 0x3800, sprite table 0x3F00 (empty), sprite tiles from 0, and
    // palette entry n = colour value n: a pixel shows its entry.
    void StartMode4() {
        const uint8_t values[11] = {0x04, 0x40, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0, 0, 0, 0xFF};
        for (uint8_t i = 0; i < sizeof values; ++i) {
            Reg(i, values[i]);
        }
        for (uint8_t entry = 0; entry < 32; ++entry) {
            Colour(entry, entry);
        }
        vram[0x3F00] = 0xD0;
    }

    void Reg(uint32_t number, uint32_t value) {
        VdpControlWrite(vdp, static_cast<uint8_t>(value));
        VdpControlWrite(vdp, static_cast<uint8_t>(0x80 | number));
    }

    void Address(uint32_t code, uint32_t address) {
        VdpControlWrite(vdp, static_cast<uint8_t>(address & 255));
        VdpControlWrite(vdp, static_cast<uint8_t>(code << 6 | address >> 8));
    }

    void Colour(uint32_t address, uint32_t value) {
        Address(3, address);
        VdpDataWrite(vdp, static_cast<uint8_t>(value));
    }

    // Fills row `row` of mode 4 tile `tile` with pixels of these colours, leftmost first.
    void TileRow(uint32_t tile, uint32_t row, const std::array<uint8_t, 8>& colours) {
        for (uint32_t plane = 0; plane < 4; ++plane) {
            uint32_t bits = 0;
            for (const uint8_t colour : colours) {
                bits = bits << 1 | ((static_cast<uint32_t>(colour) >> plane) & 1);
            }
            vram[tile * 32 + row * 4 + plane] = static_cast<uint8_t>(bits);
        }
    }

    void SolidTile(uint32_t tile, uint8_t colour) {
        for (uint32_t row = 0; row < 8; ++row) {
            TileRow(tile, row, {colour, colour, colour, colour, colour, colour, colour, colour});
        }
    }

    void Name(uint32_t row, uint32_t column, uint32_t entry, uint32_t base = 0x3800) {
        const size_t at = base + row * 64 + column * 2;
        vram[at] = static_cast<uint8_t>(entry);
        vram[at + 1] = static_cast<uint8_t>(entry >> 8);
    }

    // A mode 4 sprite, the last one of the list.
    void Sprite(uint32_t number, uint32_t y, uint32_t x, uint32_t tile) {
        vram[0x3F00 + number] = static_cast<uint8_t>(y);
        vram[0x3F80 + number * 2] = static_cast<uint8_t>(x);
        vram[0x3F81 + number * 2] = static_cast<uint8_t>(tile);
        if (number < 63) {
            vram[0x3F01 + number] = 0xD0;
        }
    }

    void Ticks(uint32_t ticks) {
        for (; ticks != 0; --ticks) {
            VdpTick(vdp);
        }
    }

    // Runs to just before the work of `dot` on `line`, at least one tick.
    void RunTo(uint32_t line, uint32_t dot) {
        do {
            VdpTick(vdp);
            if (vdp.frameDone) {
                VdpBeginFrame(vdp, pixels.data(), kRigWidth);
            }
        } while (vdp.line != line || vdp.dotCounter != dot * 2);
    }

    // Runs to the end of the frame and starts the next one.
    void Finish() {
        while (!vdp.frameDone) {
            VdpTick(vdp);
        }
        VdpBeginFrame(vdp, pixels.data(), kRigWidth);
    }

    // A whole frame with the current settings on every line.
    void Frame() {
        Finish();
        Finish();
    }

    // A pixel of the active picture, without the border.
    [[nodiscard]] uint32_t At(uint32_t x, uint32_t y) const {
        return pixels[(y + vdp.border) * kRigWidth + x];
    }

    VDP vdp;
    uint32_t irq = 0;
    uint32_t nmi = 0;
    std::vector<uint8_t> vram = std::vector<uint8_t>(kVdpVramBytes);
    std::vector<uint32_t> pixels = std::vector<uint32_t>(kRigWidth * kRigRows, kUntouched);
};
