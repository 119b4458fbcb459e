#include "base/bytes.h"
#include "megadrive/md_vdp_private.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

struct Limits {
    uint32_t visible; // sprites a line
    uint32_t dots;    // pixels of sprites a line
    uint32_t links;   // entries of the list
};
constexpr Limits kLimitsH32{16, 256, 64};
constexpr Limits kLimitsH40{20, 320, 80};
constexpr uint32_t kLastIndex = 79;
constexpr uint32_t kOrigin = 128; // both coordinates of a sprite in the picture's upper left corner
constexpr uint32_t kLinkBits =
    0x7F; // of the second word of an entry, with the size in cells, minus 1
constexpr uint32_t kCellsDown = 0x0300;
constexpr uint32_t kCellsDownShift = 8;
constexpr uint32_t kCellsAcross = 0x0C00;
constexpr uint32_t kCellsAcrossShift = 10;
constexpr uint32_t kPlaceBits = 0x1FF;     // of both coordinates
constexpr uint32_t kUnshadowedColour = 14; // of any palette but the last

// The first line of a sprite; wraps below 0. In double interlace the word counts rows of both fields and has
// ten bits.
uint32_t TopOf(uint32_t word, uint32_t doubled) {
    return (word >> doubled & kPlaceBits) - kOrigin;
}

// Pixels, from the second word of an entry.
uint32_t HeightOf(uint32_t size) {
    return (((size & kCellsDown) >> kCellsDownShift) + 1) * 8;
}

uint32_t WidthOf(uint32_t size) {
    return (((size & kCellsAcross) >> kCellsAcrossShift) + 1) * 8;
}

// A sprite on the line, from the words of its list entry.
struct Sprite {
    uint32_t row;   // to be drawn, counted from its top
    uint32_t rows;  // pixels high
    uint32_t width; // pixels
    uint32_t attributes;
    uint32_t x; // in the picture; wraps below 0
};

// A pixel in shadow mode: an operator marks the dot for shadow or highlight and returns false, because it has
// no pixel of its own. Others return true and say whether they are shadowed.
bool ApplyOperator(MD_VDP& vdp, uint32_t x, uint32_t colour, uint8_t code) {
    constexpr uint32_t kHighlight = 0x3E; // colours 14 and 15 of the last palette
    constexpr uint32_t kShadow = 0x3F;
    if (colour == kHighlight || colour == kShadow) {
        vdp.shadowOp[x] = static_cast<uint8_t>(code + (colour == kHighlight ? 2 : 1));
        return false;
    }
    vdp.lineFlags[x] =
        (colour & kMdVdpColourOfPalette) == kUnshadowedColour || code == kMdVdpSpriteHigh ? 1 : 0;
    return true;
}

// Draws eight pixels, the leftmost in the top bits of `pattern`. The first sprite of the list stays on top.
void DrawEight(MD_VDP& vdp, uint32_t x, uint32_t pattern, uint32_t attributes) {
    const uint8_t code = (attributes & kMdVdpPriority) != 0 ? kMdVdpSpriteHigh : kMdVdpSpriteLow;
    const uint32_t palette = MdVdpPaletteOf(attributes);
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

// The pattern row of a sprite's cell, `column` counted from the left as shown.
uint32_t CellPattern(const MD_VDP& vdp, const Sprite& sprite, uint32_t column) {
    const bool flipX = (sprite.attributes & kMdVdpFlipX) != 0;
    const uint32_t cell = flipX ? sprite.width / 8 - 1 - column : column;
    const uint32_t row =
        (sprite.attributes & kMdVdpFlipY) != 0 ? sprite.rows - 1 - sprite.row : sprite.row;
    // The cells of a column follow each other, then those of the next column.
    const uint32_t base = sprite.attributes << (5 + vdp.interlace2);
    const uint32_t pattern = MdVdpPattern(vdp, base + (cell * sprite.rows + row) * 4);
    return flipX ? MdVdpMirror(pattern) : pattern;
}

// Follows the links and notes the lines of every sprite.
void BuildLines(MD_VDP_SPRITE_LINES& lines, const Limits& limits, bool h40, uint32_t doubled) {
    lines.onLine = {};
    uint32_t index = 0;
    uint32_t place = 0;
    for (; place < kMdVdpMostScanned; ++place) {
        lines.index[place] = static_cast<uint8_t>(index);
        const uint8_t* entry = &lines.list[size_t{index} * 8];
        const uint32_t size = LoadLittleEndian<uint16_t>(entry + 2);
        const uint32_t link = size & kLinkBits;
        if (link >= limits.links || (h40 && index == kLastIndex)) {
            break;
        }
        const uint32_t top = TopOf(LoadLittleEndian<uint16_t>(entry), doubled);
        for (uint32_t row = 0; row < HeightOf(size); ++row) {
            if (top + row < lines.onLine.size()) {
                lines.onLine[top + row][place / 64] |= uint64_t{1} << place % 64;
            }
        }
        index = link;
    }
    lines.end = place;
}

// True if `spriteLines` holds for the list as it is. A list that has just changed may change again at the next
// line, so it is looked at anew only when it has stayed for one.
bool RefreshLines(MD_VDP& vdp, const Limits& limits) {
    MD_VDP_SPRITE_LINES& lines = vdp.spriteLines;
    const size_t bytes = size_t{limits.links} * 8;
    if (vdp.spriteBase + bytes > kMdVdpVramBytes) {
        return false;
    }
    constexpr uint32_t kValid = 4;
    const uint32_t mode = kValid | (vdp.h40 != 0 ? 2U : 0U) | vdp.interlace2;
    const uint32_t key = vdp.spriteBase << 3 | mode;
    const uint8_t* list = &vdp.vram[vdp.spriteBase];
    if (lines.key != key || std::memcmp(lines.list.data(), list, bytes) != 0) {
        lines.key = key;
        lines.built = 0;
        std::memcpy(lines.list.data(), list, bytes);
        return false;
    }
    if (lines.built == 0) {
        BuildLines(lines, limits, vdp.h40 != 0, vdp.interlace2);
        lines.built = 1;
    }
    return true;
}

// The first place from `place` on whose entry is on the line, or ends the scan.
uint32_t NextPlace(const MD_VDP_SPRITE_LINES& lines, uint32_t line, uint32_t place) {
    const auto& places = lines.onLine[line];
    for (uint32_t word = place / 64; word < places.size(); ++word) {
        const uint32_t from = word == place / 64 ? place % 64 : 0;
        if (const uint64_t rest = places[word] >> from; rest != 0) {
            return std::min(word * 64 + from + static_cast<uint32_t>(std::countr_zero(rest)),
                            lines.end);
        }
    }
    return lines.end;
}

// The scan of the sprite list for one line. It reads one word of VRAM at a time until the budget or a limit
// ends it; a link of 0 leads back to the first sprite and ends nothing. It checks link and visible limit as
// it leaves a sprite, and the dots after every 8.
class SpriteScan {
public:
    SpriteScan(MD_VDP& vdpValue, uint32_t lineValue, uint32_t budgetValue)
        : vdp(vdpValue)
        , scan(vdpValue.spriteScan)
        , limits(vdpValue.h40 != 0 ? kLimitsH40 : kLimitsH32)
        , line(lineValue)
        , budget(budgetValue)
        , knowsLines(vdpValue.spriteScan.index == 0 && budgetValue <= kMdVdpMostScanned * 2 &&
                     RefreshLines(vdpValue, limits)) {}

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
    // Takes the time of one word of VRAM; false if none is left.
    bool Spend() {
        if (budget == 0) {
            return false;
        }
        --budget;
        return true;
    }

    // Reads the next word of the list entry; false if no time is left.
    bool Read(uint32_t& word) {
        if (!Spend()) {
            return false;
        }
        word = MdVdpVramWord(vdp, vdp.spriteBase + scan.index * 8 + scan.step);
        scan.step += 2;
        return true;
    }

    // Most sprites aren't on the line: skips them while there is time for one more.
    void SkipUnseen() {
        if (!knowsLines || budget < 4) {
            return;
        }
        const uint32_t unseen = NextPlace(vdp.spriteLines, line, place) - place;
        const uint32_t skipped = std::min(unseen, (budget - 2) / 2);
        place += skipped;
        budget -= skipped * 2;
        scan.index = vdp.spriteLines.index[place];
        scan.seen += skipped;
    }

    // Reads one list entry, draws its sprite and moves to the next entry; false at the end of the scan.
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
        const uint32_t height = HeightOf(size);
        const uint32_t row = line - TopOf(top, doubled);
        if (row < height) {
            ++scan.visible;
            Sprite sprite{};
            sprite.row = doubled != 0 ? 2 * row + vdp.field : row;
            sprite.rows = height << doubled;
            sprite.width = WidthOf(size);
            if (!Draw(sprite)) {
                return false;
            }
        }
        const uint32_t link = size & kLinkBits;
        const bool isLast = vdp.h40 != 0 && scan.index == kLastIndex;
        if (isLast || link >= limits.links || scan.visible >= limits.visible) {
            return false;
        }
        scan.index = link;
        ++place;
        return true;
    }

    // A sprite with X 0 masks the rest of the line, if a sprite with another X came before it on this line or
    // the line before ran out of dots.
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
        x &= kPlaceBits;
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
    const bool knowsLines;
    uint32_t place = 0; // of the entry in the order of the links
};

} // namespace

void MdVdpFetchSprites(MD_VDP& vdp, uint32_t budget) {
    const uint32_t next = vdp.line + 1;
    const uint32_t line = next >= vdp.totalLines ? 0 : next;
    if (line < vdp.activeHeight) {
        SpriteScan(vdp, line, budget).Run();
    }
}
