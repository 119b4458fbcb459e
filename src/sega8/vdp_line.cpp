#include "sega8/vdp.h"
#include "sega8/vdp_private.h"

#include <cstring>

namespace {

// Settled: two set pattern bits collide even if the first sprite is invisible there (colour 0 of
// modes 0 and 2); then the second sprite is visible. Bits past the edges do not count.
void PutSpritePixel(VDP& vdp, int32_t x, uint8_t entry) {
    if (x < 0 || x >= static_cast<int32_t>(kVdpPictureWidth)) {
        return;
    }
    uint8_t& pixel = vdp.spriteLine[x];
    if ((pixel & kVdpSpriteHere) != 0) {
        pixel |= kVdpSpriteCollides;
    }
    if ((pixel & kVdpSpriteEntry) == 0) {
        pixel |= entry;
    }
    pixel |= kVdpSpriteHere;
}

void PutSpriteDot(VDP& vdp, int32_t left, uint32_t dot, bool zoomed, uint8_t entry) {
    const auto offset = static_cast<int32_t>(dot);
    if (zoomed) {
        PutSpritePixel(vdp, left + 2 * offset, entry);
        PutSpritePixel(vdp, left + 2 * offset + 1, entry);
    } else {
        PutSpritePixel(vdp, left + offset, entry);
    }
}

bool IsZoomed(const VDP& vdp) {
    return (vdp.regs[1] & kVdpReg1Zoom) != 0;
}

// Pixels by which all sprites are moved to the left.
int32_t SpriteShift(const VDP& vdp) {
    return (vdp.regs[0] & kVdpReg0ShiftSprites) != 0 ? 8 : 0;
}

// Published: the first chip doubles the width of only the first four sprites of a line.
void LayMode4Sprite(VDP& vdp, uint32_t sprite) {
    const bool zoomed = IsZoomed(vdp) && (vdp.variant != kVdpFirst || sprite < 4);
    const int32_t left = vdp.spriteX[sprite] - SpriteShift(vdp);
    const uint32_t low = vdp.spriteData[sprite][0];
    const uint32_t high = vdp.spriteData[sprite][1];
    for (uint32_t dot = 0; dot < 8; ++dot) {
        const uint32_t bit = 7 - dot;
        const uint32_t colour = ((low >> bit) & 1) | ((low >> (bit + 8)) & 1) << 1 |
                                ((high >> bit) & 1) << 2 | ((high >> (bit + 8)) & 1) << 3;
        if (colour != 0) {
            PutSpriteDot(vdp, left, dot, zoomed, static_cast<uint8_t>(kVdpUpperPalette + colour));
        }
    }
}

void LayLegacySprite(VDP& vdp, uint32_t sprite) {
    const bool zoomed = IsZoomed(vdp);
    const bool wide = (vdp.regs[1] & kVdpReg1BigSprites) != 0;
    const uint32_t flags = vdp.spriteFlags[sprite];
    const int32_t early = (flags & kVdpSpriteEarlyClock) != 0 ? 32 : 0;
    const int32_t left = vdp.spriteX[sprite] - early - SpriteShift(vdp);
    const uint32_t colour = flags & kVdpSpriteColour;
    const auto entry = static_cast<uint8_t>(colour == 0 ? 0 : kVdpUpperPalette + colour);
    const uint32_t pattern =
        (vdp.spriteData[sprite][0] & 255U) << 8 | (vdp.spriteData[sprite][1] & 255U);
    const uint32_t width = wide ? 16 : 8;
    for (uint32_t dot = 0; dot < width; ++dot) {
        if ((pattern & (0x8000U >> dot)) != 0) {
            PutSpriteDot(vdp, left, dot, zoomed, entry);
        }
    }
}

// The first sprite of the list is on top.
void LaySprites(VDP& vdp) {
    for (uint32_t sprite = 0; sprite < vdp.spriteCount; ++sprite) {
        if (vdp.mode == 4) {
            LayMode4Sprite(vdp, sprite);
        } else {
            LayLegacySprite(vdp, sprite);
        }
    }
}

// Samples the table bases of modes 0 to 2. Published: mode 2 has pattern and colour tables for each
// third of the screen. The first chip's mask bits are left out; software sets them all.
void SampleLegacyBases(VDP& vdp) {
    const uint32_t patterns = vdp.regs[kVdpPatterns];
    const uint32_t colours = vdp.regs[kVdpColours];
    vdp.nameBase = static_cast<uint16_t>((vdp.regs[kVdpNames] & kVdpNamesLegacy) << 10);
    if (vdp.mode == 2) {
        const uint32_t third = vdp.line < 64 ? 0 : vdp.line < 128 ? 2048 : 4096;
        vdp.patternBase = static_cast<uint16_t>(((patterns & kVdpPatternsThirds) << 11) + third);
        vdp.colourBase = static_cast<uint16_t>(((colours & kVdpColoursThirds) << 6) + third);
    } else {
        vdp.patternBase = static_cast<uint16_t>((patterns & kVdpPatternsLegacy) << 11);
        vdp.colourBase = static_cast<uint16_t>(colours << 6);
    }
}

// The last lines of a frame are the top border of its own picture.
uint32_t OutputRowOf(const VDP& vdp) {
    const uint32_t topBorder = vdp.totalLines - vdp.border;
    if (vdp.line >= topBorder) {
        return vdp.line - topBorder;
    }
    const uint32_t row = vdp.line + vdp.border;
    return row < vdp.pictureHeight ? row : kVdpNoRow;
}

void SamplePause(VDP& vdp) {
    if (vdp.pausePressed && !vdp.pauseSeen) {
        *vdp.nmiOut = 1;
    }
    vdp.pauseSeen = vdp.pausePressed;
}

} // namespace

// Measured on a 315-5124 (C. MacDonald, TMS9918 colors for SMS VDP, 2006), six bits each:
// transparent, black, medium green, light green, dark blue, light blue, dark red, cyan, medium red,
// light red, dark yellow, light yellow, dark green, magenta, grey, white. The line buffers hold
// them as entries 16 to 31.
constinit const uint32_t kVdpFixedColours[32] = {
    VdpSixBitPixel(0x00), VdpSixBitPixel(0x00), VdpSixBitPixel(0x00), VdpSixBitPixel(0x00),
    VdpSixBitPixel(0x00), VdpSixBitPixel(0x00), VdpSixBitPixel(0x00), VdpSixBitPixel(0x00),
    VdpSixBitPixel(0x00), VdpSixBitPixel(0x00), VdpSixBitPixel(0x00), VdpSixBitPixel(0x00),
    VdpSixBitPixel(0x00), VdpSixBitPixel(0x00), VdpSixBitPixel(0x00),
    VdpSixBitPixel(0x00), // 0 to 15 are not used
    VdpSixBitPixel(0x00), VdpSixBitPixel(0x00), VdpSixBitPixel(0x08),
    VdpSixBitPixel(0x0C), // 16
    VdpSixBitPixel(0x10), VdpSixBitPixel(0x30), VdpSixBitPixel(0x01),
    VdpSixBitPixel(0x3C), // 20
    VdpSixBitPixel(0x02), VdpSixBitPixel(0x03), VdpSixBitPixel(0x05),
    VdpSixBitPixel(0x0F), // 24
    VdpSixBitPixel(0x04), VdpSixBitPixel(0x33), VdpSixBitPixel(0x15),
    VdpSixBitPixel(0x3F), // 28
};

// The line starts as backdrop, which stays visible in the pixels that a fine scroll frees on the
// left.
void VdpStartLine(VDP& vdp) {
    vdp.mode = VdpModeOf(vdp.regs);
    vdp.displayEnabled = (vdp.regs[1] & kVdpReg1Display) != 0;
    vdp.scrollX = vdp.regs[kVdpScrollX];
    vdp.scrollY = vdp.regs[kVdpScrollY];
    vdp.outputRow = OutputRowOf(vdp);
    VdpDeriveSlotList(vdp);
    VdpDeriveLine(vdp);
    SampleLegacyBases(vdp);
    std::memset(vdp.colourLine, vdp_fetch::Backdrop(vdp), sizeof vdp.colourLine);
    std::memset(vdp.priorityLine, 0, sizeof vdp.priorityLine);
    std::memset(vdp.spriteLine, 0, sizeof vdp.spriteLine);
    if (vdp.displayEnabled && VdpLineIsActive(vdp)) {
        LaySprites(vdp);
    }
    vdp.fetchIndex = 0;
    SamplePause(vdp);
}
