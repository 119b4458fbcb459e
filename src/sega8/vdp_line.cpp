#include "sega8/vdp.h"
#include "sega8/vdp_private.h"

#include <cstring>

namespace {

// A six-bit colour as a pixel.
constexpr uint32_t Pixel(uint32_t value) {
    return 0xFF000000U | (value & 3) * 85 << 16 | ((value >> 2) & 3) * 85 << 8 |
           ((value >> 4) & 3) * 85;
}

// Settled: a pattern bit of a second sprite makes a collision even where the first shows nothing
// (colour 0 of modes 0 and 2), and then the second one is seen. Bits past the edges do not count.
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

// Published: the first chip doubles only the first four sprites of a line sideways.
void LayMode4Sprite(VDP& vdp, uint32_t sprite) {
    const bool zoomed = (vdp.regs[1] & 1) != 0 && (vdp.variant != kVdpFirst || sprite < 4);
    const int32_t left = vdp.spriteX[sprite] - ((vdp.regs[0] & 0x08) != 0 ? 8 : 0);
    const uint32_t low = vdp.spriteData[sprite][0];
    const uint32_t high = vdp.spriteData[sprite][1];
    for (uint32_t dot = 0; dot < 8; ++dot) {
        const uint32_t bit = 7 - dot;
        const uint32_t colour = ((low >> bit) & 1) | ((low >> (bit + 8)) & 1) << 1 |
                                ((high >> bit) & 1) << 2 | ((high >> (bit + 8)) & 1) << 3;
        if (colour != 0) {
            PutSpriteDot(vdp, left, dot, zoomed, static_cast<uint8_t>(16 + colour));
        }
    }
}

void LayLegacySprite(VDP& vdp, uint32_t sprite) {
    const bool zoomed = (vdp.regs[1] & 1) != 0;
    const bool wide = (vdp.regs[1] & 2) != 0;
    const uint32_t flags = vdp.spriteFlags[sprite];
    const int32_t left =
        vdp.spriteX[sprite] - ((flags & 0x80) != 0 ? 32 : 0) - ((vdp.regs[0] & 0x08) != 0 ? 8 : 0);
    const uint32_t colour = flags & 15;
    const auto entry = static_cast<uint8_t>(colour == 0 ? 0 : 16 + colour);
    const uint32_t pattern =
        (vdp.spriteData[sprite][0] & 255U) << 8 | (vdp.spriteData[sprite][1] & 255U);
    const uint32_t width = wide ? 16 : 8;
    for (uint32_t dot = 0; dot < width; ++dot) {
        if ((pattern & (0x8000U >> dot)) != 0) {
            PutSpriteDot(vdp, left, dot, zoomed, entry);
        }
    }
}

// The first of the list lies on top.
void LaySprites(VDP& vdp) {
    for (uint32_t sprite = 0; sprite < vdp.spriteCount; ++sprite) {
        if (vdp.mode == 4) {
            LayMode4Sprite(vdp, sprite);
        } else {
            LayLegacySprite(vdp, sprite);
        }
    }
}

// Name, pattern and colour tables of modes 0 to 2. Published: only mode 2 has a table for each third
// of the screen; the mask bits of the first chip are left out, as software sets them all.
void TakeLegacyBases(VDP& vdp) {
    vdp.nameBase = static_cast<uint16_t>((vdp.regs[2] & 15) << 10);
    if (vdp.mode == 2) {
        const uint32_t third = vdp.line < 64 ? 0 : vdp.line < 128 ? 2048 : 4096;
        vdp.patternBase = static_cast<uint16_t>(((vdp.regs[4] & 4U) << 11) + third);
        vdp.colourBase = static_cast<uint16_t>(((vdp.regs[3] & 0x80U) << 6) + third);
    } else {
        vdp.patternBase = static_cast<uint16_t>((vdp.regs[4] & 7) << 11);
        vdp.colourBase = static_cast<uint16_t>(vdp.regs[3] << 6);
    }
}

// Lines at the end of the frame are the top border of the same picture.
uint32_t OutputRowOf(const VDP& vdp) {
    const uint32_t topBorder = vdp.totalLines - vdp.border;
    if (vdp.line >= topBorder) {
        return vdp.line - topBorder;
    }
    const uint32_t row = vdp.line + vdp.border;
    return row < vdp.pictureHeight ? row : kVdpNoRow;
}

void LookAtPause(VDP& vdp) {
    if (vdp.pausePressed && !vdp.pauseSeen) {
        *vdp.nmiOut = 1;
    }
    vdp.pauseSeen = vdp.pausePressed;
}

} // namespace

// Measured on a 315-5124, six bits each: transparent, black, medium green, light green, dark blue,
// light blue, dark red, cyan, medium red, light red, dark yellow, light yellow, dark green, magenta,
// grey, white. The line buffers hold them as entries 16 to 31.
constinit const uint32_t kVdpFixedColours[32] = {
    Pixel(0x00), Pixel(0x00), Pixel(0x00), Pixel(0x00), Pixel(0x00), Pixel(0x00),
    Pixel(0x00), Pixel(0x00), Pixel(0x00), Pixel(0x00), Pixel(0x00), Pixel(0x00),
    Pixel(0x00), Pixel(0x00), Pixel(0x00), Pixel(0x00), // 0 to 15 are not used
    Pixel(0x00), Pixel(0x00), Pixel(0x08), Pixel(0x0C), // 16
    Pixel(0x10), Pixel(0x30), Pixel(0x01), Pixel(0x3C), // 20
    Pixel(0x02), Pixel(0x03), Pixel(0x05), Pixel(0x0F), // 24
    Pixel(0x04), Pixel(0x33), Pixel(0x15), Pixel(0x3F), // 28
};

// The pixels that a fine scroll leaves free at the left show the backdrop, so the line starts as it.
void VdpStartLine(VDP& vdp) {
    vdp.mode = VdpModeOf(vdp.regs);
    vdp.displayEnabled = (vdp.regs[1] & 0x40) != 0;
    vdp.scrollX = vdp.regs[8];
    vdp.scrollY = vdp.regs[9];
    vdp.outputRow = OutputRowOf(vdp);
    VdpDeriveSlotList(vdp);
    VdpDeriveLine(vdp);
    TakeLegacyBases(vdp);
    std::memset(vdp.colourLine, vdp_fetch::Backdrop(vdp), sizeof vdp.colourLine);
    std::memset(vdp.priorityLine, 0, sizeof vdp.priorityLine);
    std::memset(vdp.spriteLine, 0, sizeof vdp.spriteLine);
    if (vdp.displayEnabled && VdpLineIsActive(vdp)) {
        LaySprites(vdp);
    }
    vdp.fetchIndex = 0;
    LookAtPause(vdp);
}
