// A bare VDP with its lines, a bus and a picture, for the tests of the chip.
#pragma once

#include "megadrive/md_vdp.h"
#include "megadrive/md_vdp_timetable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// A pixel of nine bits of colour, as it is.
inline uint32_t PlainPixel(uint32_t colour) {
    const auto level = [](uint32_t threeBits) { return threeBits * 248 / 7; };
    return 0xFF000000U | level(colour >> 6 & 7) << 16 | level(colour >> 3 & 7) << 8 |
           level(colour & 7);
}

// The rig gives every CRAM entry a colour of its own, so that a pixel tells its entry.
constexpr uint32_t RigColour(uint32_t entry) {
    return entry * 8 + 1;
}

inline uint32_t EntryPixel(uint32_t entry) {
    return PlainPixel(RigColour(entry));
}

struct IrqLog {
    uint32_t hCount; // after the step
    uint32_t line;
    uint32_t irq;
    uint32_t state;
    bool operator==(const IrqLog&) const = default;
};

constexpr uint32_t kVramCode = 1;
constexpr uint32_t kCramCode = 3;
constexpr uint32_t kVsramCode = 5;

class MdVdpRig {
public:
    explicit MdVdpRig(uint32_t tvMode = kMdVdp60Hz) {
        MdVdpInit(*vdp, this, Raise, DmaRead, &zInt, &stall, tvMode);
        for (uint32_t entry = 0; entry < 64; ++entry) {
            vdp->cram[entry] = static_cast<uint16_t>(RigColour(entry));
        }
        MdVdpBeginFrame(*vdp, pixels.data());
    }
    MdVdpRig(const MdVdpRig&) = delete;
    MdVdpRig& operator=(const MdVdpRig&) = delete;

    // Display on, planes of 32 by 32 cells. Tables: A 0x2000, window 0x3000, B 0x4000, sprites 0x5000,
    // horizontal scroll 0x5400; patterns of tiles 1 to 0x3F below 0x800 are free.
    void Setup(bool h40) {
        Reg(1, 0x44);
        Reg(12, h40 ? 0x81 : 0);
        Reg(2, 0x2000 >> 10);
        Reg(3, 0x3000 >> 10);
        Reg(4, 0x4000 >> 13);
        Reg(5, 0x5000 >> 9);
        Reg(13, 0x5400 >> 10);
        Reg(15, 2);
        Reg(10, 255);
        for (uint32_t tile = 1; tile < 16; ++tile) {
            for (uint32_t row = 0; row < 8; ++row) {
                TileRow(tile, row, tile * 0x11111111);
            }
        }
        vdp->spriteDots.fill(0);
        Finish();
    }

    void Reg(uint32_t index, uint32_t value) {
        MdVdpWriteRegister(*vdp, index, static_cast<uint8_t>(value));
    }
    void Control(uint32_t word) { MdVdpWriteControl(*vdp, static_cast<uint16_t>(word)); }
    void Data(uint32_t word) { MdVdpWriteData(*vdp, static_cast<uint16_t>(word)); }
    // The two words of a command.
    void Command(uint32_t code, uint32_t address) {
        Control((code & 3) << 14 | (address & 0x3FFF));
        Control((code & 60) << 2 | address >> 14);
    }

    void Word(uint32_t address, uint32_t word) {
        vdp->vram[address & 0xFFFE] = static_cast<uint8_t>(word);
        vdp->vram[(address & 0xFFFE) + 1] = static_cast<uint8_t>(word >> 8);
    }
    uint32_t WordAt(uint32_t address) const {
        return vdp->vram[address & 0xFFFE] | uint32_t{vdp->vram[(address & 0xFFFE) + 1]} << 8;
    }
    // The leftmost pixel is the top digit of `row8`.
    void TileRow(uint32_t tile, uint32_t row, uint32_t row8) {
        Word(tile * 32 + row * 4, row8 >> 16);
        Word(tile * 32 + row * 4 + 2, row8 & 0xFFFF);
    }
    void CellA(uint32_t column, uint32_t row, uint32_t word) {
        Word(0x2000 + (row * vdp->planeWidth + column) * 2, word);
    }
    void CellWindow(uint32_t column, uint32_t row, uint32_t word) {
        Word(0x3000 + (row * vdp->windowWidth + column) * 2, word);
    }
    void CellB(uint32_t column, uint32_t row, uint32_t word) {
        Word(0x4000 + (row * vdp->planeWidth + column) * 2, word);
    }
    // `size` is width - 1 in bits 2 and 3 and height - 1 in 0 and 1, in cells; x and y are of the picture.
    void Sprite(uint32_t number, uint32_t x, uint32_t y, uint32_t size, uint32_t link,
                uint32_t attributes) {
        const uint32_t entry = 0x5000 + number * 8;
        Word(entry, y + 128);
        Word(entry + 2, size << 8 | link);
        Word(entry + 4, attributes);
        Word(entry + 6, x + 128);
    }

    void Step() {
        if (vdp->h40 != 0) {
            MdVdpStepH40(*vdp);
        } else {
            MdVdpStepH32(*vdp);
        }
    }
    void Steps(uint32_t count) {
        for (; count != 0; --count) {
            Step();
        }
    }
    // Runs until this step is the next.
    void RunTo(uint32_t line, uint32_t hCount) {
        do {
            Step();
        } while (vdp->line != line || vdp->hCount != hCount);
    }
    // Runs to the end of the frame and returns the number of steps.
    uint32_t Finish() {
        MdVdpBeginFrame(*vdp, pixels.data());
        uint32_t steps = 0;
        for (; vdp->frameDone == 0; ++steps) {
            Step();
        }
        return steps;
    }
    // Scans the list for the sprites of `line`.
    void ScanFor(uint32_t line) {
        RunTo(line - 1, vdp->h40 != 0 ? 397 : 319);
        Step();
    }

    // A pixel of the active picture.
    uint32_t At(uint32_t x, uint32_t y) const {
        return pixels[(y + vdp->border) * (vdp->h40 != 0 ? 320 : 256) + x];
    }

    uint32_t zInt = 0;
    uint32_t stall = 0;
    std::vector<IrqLog> irqs;
    std::vector<uint32_t> reads; // addresses on the bus, which returns half of each
    std::unique_ptr<MD_VDP> vdp = std::make_unique<MD_VDP>();
    std::vector<uint32_t> pixels = std::vector<uint32_t>(kMdVdpPixels);

private:
    static void Raise(void* owner, uint32_t line, uint32_t state) {
        auto& rig = *static_cast<MdVdpRig*>(owner);
        rig.irqs.push_back({rig.vdp->hCount, rig.vdp->line, line, state});
    }
    static uint16_t DmaRead(void* owner, uint32_t address) {
        static_cast<MdVdpRig*>(owner)->reads.push_back(address);
        return static_cast<uint16_t>(address / 2);
    }
};
