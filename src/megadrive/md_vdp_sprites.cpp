#include "base/bytes.h"
#include "megadrive/md_vdp_private.h"
#include "megadrive/md_vdp_wide.h"

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
constexpr uint32_t kPlaceBits = 0x1FF;      // of both coordinates
constexpr uint32_t kUnshadowedColour = 14;  // of any palette but the last
constexpr uint32_t kOperatorPalette = 0x30; // its colours 14 and 15 are operators in shadow mode

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

// A pixel in shadow mode: an operator marks the dot for shadow or highlight and returns false, because it has
// no pixel of its own. Others return true and say whether they are shadowed.
bool ApplyOperator(MD_VDP& vdp, uint32_t x, uint32_t colour, uint8_t code) {
    constexpr uint32_t kHighlight = kOperatorPalette | 14;
    constexpr uint32_t kShadow = kOperatorPalette | 15;
    if (colour == kHighlight || colour == kShadow) {
        vdp.shadowOp[x] = static_cast<uint8_t>(code + (colour == kHighlight ? 2 : 1));
        return false;
    }
    vdp.lineFlags[x] =
        (colour & kMdVdpColourOfPalette) == kUnshadowedColour || code == kMdVdpSpriteHigh ? 1 : 0;
    return true;
}

#ifdef OMBRELUNE_MD_VDP_WIDE
// DrawEight with vectors; false, and nothing is drawn, where a pixel may be out of the line.
OMBRELUNE_MD_VDP_WIDE bool DrawEightWide(MD_VDP& vdp, uint32_t x, uint32_t pattern,
                                         uint32_t attributes) {
    using namespace md_vdp_wide;
    if (x > kMdVdpWidth - 8) {
        return false;
    }
    const uint32_t palette = MdVdpPaletteOf(attributes);
    const bool high = (attributes & kMdVdpPriority) != 0;
    const Bytes code = _mm_set1_epi8(high ? kMdVdpSpriteHigh : kMdVdpSpriteLow);
    const Bytes zero = _mm_setzero_si128();
    const Bytes pixels = Pixels(pattern, 0, 0);
    const Bytes dots = Load8(&vdp.spriteDots[x]);
    const Bytes isFree = _mm_cmpeq_epi8(dots, zero);
    const Bytes ops = Load8(&vdp.shadowOp[x]);
    // A free dot takes a pixel, unless an operator has marked it; a taken dot counts its pixels.
    Bytes takes = _mm_andnot_si128(_mm_cmpeq_epi8(pixels, zero),
                                   _mm_and_si128(isFree, _mm_cmpeq_epi8(ops, zero)));
    const Bytes counts =
        _mm_andnot_si128(_mm_or_si128(_mm_cmpeq_epi8(pixels, zero), isFree), _mm_set1_epi8(-1));
    if (vdp.shadowMode != 0) {
        const Bytes isUnshadowed = _mm_cmpeq_epi8(pixels, _mm_set1_epi8(kUnshadowedColour));
        if (palette == kOperatorPalette) {
            const Bytes marks =
                _mm_and_si128(takes, _mm_cmpgt_epi8(pixels, _mm_set1_epi8(kUnshadowedColour - 1)));
            // 1 for shadow, 2 for highlight.
            const Bytes mark = _mm_sub_epi8(_mm_add_epi8(code, _mm_set1_epi8(1)), isUnshadowed);
            Store8(&vdp.shadowOp[x], _mm_blendv_epi8(ops, mark, marks));
            takes = _mm_andnot_si128(marks, takes);
        }
        const Bytes isBright = high ? _mm_set1_epi8(-1) : isUnshadowed;
        const Bytes flags = _mm_and_si128(isBright, _mm_set1_epi8(1));
        Store8(&vdp.lineFlags[x], _mm_blendv_epi8(Load8(&vdp.lineFlags[x]), flags, takes));
    }
    Store8(&vdp.spriteDots[x], _mm_sub_epi8(dots, _mm_or_si128(takes, counts)));
    Store8(&vdp.layerCode[x], _mm_blendv_epi8(Load8(&vdp.layerCode[x]), code, takes));
    const Bytes colours = Colours(LoadPalette(&vdp.cram[palette]), pixels);
    Store16(&vdp.spriteLine[x],
            _mm_blendv_epi8(Load16(&vdp.spriteLine[x]), colours, _mm_unpacklo_epi8(takes, takes)));
    return true;
}
#else
bool DrawEightWide(MD_VDP&, uint32_t, uint32_t, uint32_t) {
    return false;
}
#endif

// Draws eight pixels, the leftmost in the top bits of `pattern`. The first sprite of the list stays on top.
void DrawEight(MD_VDP& vdp, uint32_t x, uint32_t pattern, uint32_t attributes) {
    if (pattern == 0 || (vdp.wide != 0 && DrawEightWide(vdp, x, pattern, attributes))) {
        return;
    }
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
        vdp.spriteScan = scan;
    }

private:
    // Reads the next word of the list entry; false if no time is left.
    bool Read(uint32_t& word) {
        if (budget == 0) {
            return false;
        }
        --budget;
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
            if (!Draw(doubled != 0 ? 2 * row + vdp.field : row, height << doubled,
                      WidthOf(size) / 8)) {
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

    // Reads the rest of the entry and draws the sprite's row, counted from its top. The cells of a column follow
    // each other in VRAM, then those of the next column.
    bool Draw(uint32_t row, uint32_t rows, uint32_t cells) {
        uint32_t attributes = 0;
        uint32_t x = 0;
        if (!Read(attributes) || !Read(x)) {
            return false;
        }
        x &= kPlaceBits;
        MaskByX(x);
        const uint32_t columns = std::min({cells, budget / 2, (limits.dots - scan.dots) / 8});
        budget -= columns * 2;
        scan.step += columns * 4;
        scan.dots += columns * 8;
        if ((scan.flags & kMdVdpScanMasked) == 0 && MdVdpDisplayOn(vdp)) {
            const bool flipX = (attributes & kMdVdpFlipX) != 0;
            const uint32_t shownRow = (attributes & kMdVdpFlipY) != 0 ? rows - 1 - row : row;
            uint32_t address = (attributes << (5 + vdp.interlace2)) +
                               ((flipX ? cells - 1 : 0) * rows + shownRow) * 4;
            for (uint32_t column = 0; column < columns; ++column) {
                const uint32_t pattern = MdVdpPattern(vdp, address);
                DrawEight(vdp, x - kOrigin + column * 8, flipX ? MdVdpMirror(pattern) : pattern,
                          attributes);
                address += flipX ? 0U - rows * 4 : rows * 4;
            }
        }
        return columns == cells && scan.dots < limits.dots;
    }

    MD_VDP& vdp;
    MD_VDP_SPRITE_SCAN scan; // in registers; goes back at the end
    const Limits& limits;
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
