#include "nes/ppu.h"

#include "nes/nes_lines.h"
#include "nes/ppu_colours.h"
#include "nes/ppu_private.h"

namespace {

constexpr uint8_t kColourBits = 0x3F;
constexpr uint8_t kGrayColumn = 0x30;    // of the colour numbers: luminance without hue
constexpr uint32_t kRandomSeed = 0x2C02; // at every reset, so that runs repeat

const std::array<uint32_t, kPpuColours>& SharedColours() {
    static const std::array<uint32_t, kPpuColours> kColours = PpuBuildColourTable();
    return kColours;
}

[[nodiscard]] uint8_t RandomByte(PPU& ppu) {
    ppu.randomState = ppu.randomState * 1664525 + 1013904223;
    return static_cast<uint8_t>(ppu.randomState >> 24);
}

void BeginVblank(PPU& ppu) {
    ppu.status |= kPpuStatusVblank;
    ppu.oamAddress = 0;
    if ((ppu.control & kPpuCtrlNmi) != 0) {
        *ppu.nmiLine |= kNesNmiPpu;
    }
}

// On every line PpuEvent is due at kPpuFrameEndDot and at the end of the line; on the pre-render line also
// at these two.
constexpr uint32_t kClearStatusDot = 1;
constexpr uint32_t kCopyScrollDot = 304;

// The first event dot after `dot`.
[[nodiscard]] uint32_t NextEvent(const PPU& ppu, uint32_t dot) {
    const bool preRender = ppu.line == kPpuPreRenderLine;
    if (preRender && dot < kClearStatusDot) {
        return kClearStatusDot;
    }
    if (dot < kPpuFrameEndDot) {
        return kPpuFrameEndDot;
    }
    return preRender && dot < kCopyScrollDot ? kCopyScrollDot : ppu.lineLength;
}

// Dot 256, while `dot` is still that of the last pixel.
void EndPicture(PPU& ppu) {
    PpuCatchUp(ppu);
    if (ppu.line < kPpuIdleLine) {
        ppu.spriteLine.fill(0);
    }
    if (ppu.rendering) {
        ppu.spriteCount = ppu.foundCount;
        ppu.zeroNote = ppu.foundZero;
    }
    if (ppu.line == kPpuPreRenderLine) {
        ppu.frameDone = true;
        const bool shorten = ppu.oddFrame && ppu.rendering && ppu.lineLength == kPpuLineDots;
        ppu.lineLength = shorten ? kPpuShortLineDots : kPpuLineDots;
    }
}

void EndLine(PPU& ppu) {
    ppu.lineLength = kPpuLineDots;
    ++ppu.line;
    if (ppu.line == ppu.totalLines - 1) {
        ppu.line = kPpuPreRenderLine;
        ppu.oddFrame = !ppu.oddFrame;
    }
    ppu.dot = 0;
    ppu.drawnDots = 0;
    ppu.evaluatedDots = 0;
    PpuDerive(ppu);
    PpuDeriveRow(ppu);
    if (ppu.line == kPpuVblankLine) {
        BeginVblank(ppu);
    }
}

[[nodiscard]] uint8_t LayersOf(uint8_t mask, uint8_t backgroundBit, uint8_t spriteBit) {
    const uint32_t background = (mask & backgroundBit) != 0 ? kPpuLayerBackground : 0;
    const uint32_t sprites = (mask & spriteBit) != 0 ? kPpuLayerSprites : 0;
    return static_cast<uint8_t>(background | sprites);
}

} // namespace

void PpuInit(PPU& ppu, NES_PAGES* pages) {
    ppu.pages = pages;
    ppu.colours = SharedColours().data();
}

void PpuReset(PPU& ppu, bool hard, uint32_t* nmiLine) {
    const uint16_t vramAddress = hard ? uint16_t{0} : ppu.vramAddress;
    const uint8_t oamAddress = hard ? uint8_t{0} : ppu.oamAddress;
    NES_PAGES* pages = ppu.pages;
    const uint32_t* colours = ppu.colours;
    uint32_t* pixels = ppu.pixels;
    const uint32_t rowLength = ppu.rowLength;

    ppu = PPU{};
    ppu.pages = pages;
    ppu.colours = colours;
    ppu.pixels = pixels;
    ppu.rowLength = rowLength;
    ppu.nmiLine = nmiLine;
    ppu.vramAddress = vramAddress;
    ppu.oamAddress = oamAddress;
    ppu.randomState = kRandomSeed;
    ppu.oam.fill(0xFF);
    ppu.secondaryOam.fill(0xFF);
    ppu.palette.fill(kColourBits);
    for (auto& page : ppu.nametables) {
        page.fill(0xFF);
    }
    *nmiLine &= ~kNesNmiPpu;
    PpuDerive(ppu);
    PpuDeriveShades(ppu);
}

void PpuBeginFrame(PPU& ppu, uint32_t* pixels, uint32_t stride) {
    PpuCatchUp(ppu);
    ppu.pixels = pixels;
    ppu.rowLength = stride;
    ppu.frameDone = false;
    PpuDeriveRow(ppu);
}

uint8_t* PpuNametable(PPU& ppu, uint32_t page) {
    return ppu.nametables[page & 3].data();
}

void PpuDeriveRow(PPU& ppu) {
    ppu.row = ppu.visible && ppu.pixels != nullptr
                  ? ppu.pixels + static_cast<size_t>(ppu.line) * ppu.rowLength
                  : nullptr;
}

void PpuDeriveShades(PPU& ppu) {
    for (size_t i = 0; i < ppu.palette.size(); ++i) {
        ppu.shades[i] = ppu.colours[(ppu.palette[i] & ppu.grayMask) | ppu.emphasis];
    }
}

void PpuDerive(PPU& ppu) {
    ppu.layers = LayersOf(ppu.mask, kPpuMaskBackground, kPpuMaskSprites);
    ppu.leftLayers = ppu.layers & LayersOf(ppu.mask, kPpuMaskLeftBackground, kPpuMaskLeftSprites);
    ppu.grayMask = (ppu.mask & kPpuMaskGray) != 0 ? kGrayColumn : kColourBits;
    ppu.emphasis = (ppu.mask & uint32_t{kPpuMaskEmphasis}) << 1;
    ppu.rendering = ppu.layers != 0 && ppu.line < kPpuIdleLine;
    ppu.visible = ppu.line >= 0 && ppu.line < kPpuIdleLine;
    ppu.eventDot = NextEvent(ppu, ppu.dot);
}

uint32_t PpuEvent(PPU& ppu, uint32_t dot) {
    if (dot == ppu.lineLength) {
        EndLine(ppu);
        return 0;
    }
    const bool preRender = ppu.line == kPpuPreRenderLine;
    if (dot == kPpuFrameEndDot) {
        EndPicture(ppu);
    } else if (preRender && dot == kClearStatusDot) {
        ppu.status = 0;
    } else if (preRender && dot == kCopyScrollDot && ppu.rendering) {
        ppu.vramAddress = ppu.tempAddress;
    }
    ppu.eventDot = NextEvent(ppu, dot);
    return dot;
}

void PpuAccessDot(PPU& ppu) {
    if (!ppu.rendering) {
        switch (ppu.ioState) {
        case kPpuReadStart:
        case kPpuWriteStart: ppu_bus::Watch(ppu, ppu.ioAddress); break;
        case kPpuWriteEnd: NesWritePpuPage(*ppu.pages, ppu.ioAddress, ppu.ioValue); break;
        case kPpuReadEnd: ppu.readBuffer = NesReadPpuPage(*ppu.pages, ppu.ioAddress); break;
        default: break;
        }
    }
    ppu.ioState = static_cast<uint8_t>(ppu.ioState > kPpuWriteEnd ? ppu.ioState - 2 : 0);
}

// CPU and PPU use the bus at the same time: neither address wins, and a write stores a garbled byte.
uint8_t PpuCollide(PPU& ppu) {
    const uint8_t value = RandomByte(ppu);
    if (ppu.ioState == kPpuWriteEnd) {
        NesWritePpuPage(*ppu.pages, ppu.fetchAddress, value);
    }
    return value;
}
