#include "megadrive/md_vdp_private.h"

#include <cstdint>

namespace {

struct Limits {
    uint32_t visible; // sprites of a line
    uint32_t dots;
    uint32_t links; // entries of the list
};
constexpr Limits kLimitsH32{16, 256, 64};
constexpr Limits kLimitsH40{20, 320, 80};
constexpr uint32_t kLastIndex = 79;
constexpr uint32_t kOrigin = 128; // sprite coordinates of the picture's corner

// What the words before the patterns say of a sprite on the line.
struct Sprite {
    uint32_t row;   // of its pixels, from its top
    uint32_t rows;  // pixels high
    uint32_t width; // pixels
    uint32_t attributes;
    uint32_t x; // of the picture; wraps below 0
};

// The operators of shadow and highlight, and who is never shadowed. False: no pixel to store.
bool ApplyOperator(MD_VDP& vdp, uint32_t x, uint32_t colour, uint8_t code) {
    constexpr uint32_t kHighlight = 0x3E; // colours 14 and 15 of the last palette
    constexpr uint32_t kShadow = 0x3F;
    if (colour == kHighlight || colour == kShadow) {
        vdp.shadowOp[x] = static_cast<uint8_t>(code + (colour == kHighlight ? 2 : 1));
        return false;
    }
    vdp.lineFlags[x] = (colour & 15) == 14 || code == kMdVdpSpriteHigh ? 1 : 0;
    return true;
}

// Eight pixels, the leftmost on top of `pattern`.
void DrawEight(MD_VDP& vdp, uint32_t x, uint32_t pattern, uint32_t attributes) {
    const uint8_t code = (attributes & 0x8000) != 0 ? kMdVdpSpriteHigh : kMdVdpSpriteLow;
    const uint32_t palette = attributes >> 9 & 48;
    for (; pattern != 0; pattern <<= 4, ++x) {
        const uint32_t pixel = pattern >> 28;
        if (pixel == 0 || x >= kMdVdpWidth) {
            continue;
        }
        if (vdp.spriteDots[x] != 0) {
            ++vdp.spriteDots[x];
            continue;
        }
        if (vdp.shadowOp[x] != 0) {
            continue;
        }
        if (vdp.shadowMode != 0 && !ApplyOperator(vdp, x, palette | pixel, code)) {
            continue;
        }
        vdp.layerCode[x] = code;
        vdp.spriteLine[x] = vdp.cram[palette | pixel];
        ++vdp.spriteDots[x];
    }
}

// The pattern of the cell that is `column` from the left of the picture.
uint32_t CellPattern(const MD_VDP& vdp, const Sprite& sprite, uint32_t column) {
    const bool flipX = (sprite.attributes & kMdVdpFlipX) != 0;
    const uint32_t cell = flipX ? sprite.width / 8 - 1 - column : column;
    const uint32_t row =
        (sprite.attributes & kMdVdpFlipY) != 0 ? sprite.rows - 1 - sprite.row : sprite.row;
    // Cells go down before they go across.
    const uint32_t base = sprite.attributes << (5 + vdp.interlace2);
    uint32_t pattern = MdVdpPattern(vdp, base + (cell * sprite.rows + row) * 4);
    if (flipX) {
        pattern = __builtin_bswap32(pattern);
        pattern = (pattern & 0x0F0F0F0F) << 4 | (pattern >> 4 & 0x0F0F0F0F);
    }
    return pattern;
}

class SpriteScan {
public:
    SpriteScan(MD_VDP& vdpValue, uint32_t lineValue, uint32_t budgetValue)
        : vdp(vdpValue)
        , scan(vdpValue.spriteScan)
        , limits(vdpValue.h40 != 0 ? kLimitsH40 : kLimitsH32)
        , line(lineValue)
        , budget(budgetValue) {}

    void Run() {
        while (ScanNext()) {
        }
        if (scan.dots >= limits.dots) {
            scan.flags |= kMdVdpScanDotsRanOut;
        }
        if (scan.visible >= limits.visible) {
            vdp.status |= kMdVdpOverflow;
        }
    }

private:
    // One word of VRAM; false when the line has no time for it.
    bool Spend() {
        if (budget == 0) {
            return false;
        }
        --budget;
        return true;
    }

    // The next word of the list entry.
    bool Read(uint32_t& word) {
        if (!Spend()) {
            return false;
        }
        word = MdVdpVramWord(vdp, vdp.spriteBase + scan.index * 8 + scan.step);
        scan.step += 2;
        return true;
    }

    // Goes on while sprites aren't on the line, which most aren't, and there is time for one more.
    void SkipUnseen() {
        const uint32_t doubled = vdp.interlace2;
        uint32_t index = scan.index;
        uint32_t skipped = 0;
        for (; budget >= 4; budget -= 2, ++skipped) {
            const uint32_t entry = vdp.spriteBase + index * 8;
            const uint32_t y = (MdVdpVramWord(vdp, entry) >> doubled & 511) - kOrigin;
            const uint32_t size = MdVdpVramWord(vdp, entry + 2);
            const uint32_t link = size & 127;
            const bool isLast = index == kLastIndex && vdp.h40 != 0;
            if (line - y < (size >> 8 & 3) * 8 + 8 || link >= limits.links || isLast) {
                break;
            }
            index = link;
        }
        scan.index = index;
        scan.seen += skipped;
    }

    // Looks at a sprite and goes on to the next; false at the end of the scan.
    bool ScanNext() {
        SkipUnseen();
        scan.step = 0;
        uint32_t top = 0;
        uint32_t size = 0;
        if (!Read(top)) {
            return false;
        }
        ++scan.seen;
        if (!Read(size)) {
            return false;
        }
        const uint32_t doubled = vdp.interlace2;
        const uint32_t y = (top >> doubled & 511) - kOrigin;
        const uint32_t height = (size >> 8 & 3) * 8 + 8;
        const uint32_t row = line - y;
        if (row < height) {
            ++scan.visible;
            Sprite sprite{};
            sprite.row = doubled != 0 ? 2 * row + vdp.field : row;
            sprite.rows = height << doubled;
            sprite.width = (size >> 10 & 3) * 8 + 8;
            if (!Draw(sprite)) {
                return false;
            }
        }
        const uint32_t link = size & 127;
        const bool isLast = vdp.h40 != 0 && scan.index == kLastIndex;
        if (isLast || link >= limits.links || scan.visible >= limits.visible) {
            return false;
        }
        scan.index = link;
        return true;
    }

    // A sprite whose X is 0 hides those behind it, unless it is the first with nothing to hide from.
    void MaskByX(uint32_t x) {
        if (x != 0) {
            scan.flags |= kMdVdpScanSeenX;
        } else if ((scan.flags & (kMdVdpScanSeenX | kMdVdpScanLastLineRanOut)) != 0) {
            scan.flags |= kMdVdpScanMasked;
        }
    }

    bool Draw(Sprite& sprite) {
        uint32_t x = 0;
        if (!Read(sprite.attributes) || !Read(x)) {
            return false;
        }
        x &= 511;
        MaskByX(x);
        sprite.x = x - kOrigin;
        const bool hidden = (scan.flags & kMdVdpScanMasked) != 0 || !MdVdpDisplayOn(vdp);
        for (uint32_t column = 0; column < sprite.width / 8; ++column) {
            if (!Spend() || !Spend()) {
                return false;
            }
            scan.step += 4;
            if (!hidden) {
                DrawEight(vdp, sprite.x + column * 8, CellPattern(vdp, sprite, column),
                          sprite.attributes);
            }
            scan.dots += 8;
            if (scan.dots >= limits.dots) {
                return false;
            }
        }
        return true;
    }

    MD_VDP& vdp;
    MD_VDP_SPRITE_SCAN& scan;
    const Limits limits;
    const uint32_t line;
    uint32_t budget;
};

} // namespace

void MdVdpFetchSprites(MD_VDP& vdp, uint32_t budget) {
    const uint32_t next = vdp.line + 1;
    const uint32_t line = next >= vdp.totalLines ? 0 : next;
    if (line < vdp.activeHeight) {
        SpriteScan(vdp, line, budget).Run();
    }
}
