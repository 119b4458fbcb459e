#include "megadrive/md_vdp_private.h"
#include "megadrive/md_vdp_wide.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

constexpr uint32_t kCell = 8;        // pixels across
constexpr uint32_t kLastCellX = 320; // the last place where a whole cell fits into a line buffer
constexpr uint32_t kHighLayer = 4;   // from the low to the high layer of a plane
constexpr uint32_t kScrollBits = 0x3FF;
constexpr uint32_t kAttributes = kMdVdpPriority | kMdVdpPalette | kMdVdpFlipY | kMdVdpFlipX;

struct Cell {
    uint32_t word;    // of the name table
    uint32_t pattern; // the row's eight pixels, the leftmost in the top bits
};

// One cell of a plane, at the line being drawn. `width` is in cells, a power of two. In double interlace a
// cell is 16 rows of 64 bytes and a line of the screen is two lines of the plane.
Cell FetchCell(const MD_VDP& vdp, uint32_t base, uint32_t width, uint32_t column, uint32_t scroll) {
    const uint32_t doubled = vdp.interlace2;
    const uint32_t rowBits = 3 + doubled;
    const uint32_t lastRow = (kCell << doubled) - 1;
    const uint32_t top = doubled != 0 ? vdp.line * 2 + vdp.field : vdp.line;
    const uint32_t y = (top + (scroll & kScrollBits)) & ((vdp.planeHeight << rowBits) - 1);
    const uint32_t place = (y >> rowBits) * width + (column & (width - 1));
    const uint32_t word = MdVdpVramWord(vdp, base + place * 2);
    const uint32_t row = (word & kMdVdpFlipY) != 0 ? ~y & lastRow : y & lastRow;
    uint32_t pattern = MdVdpPattern(vdp, (word << (5 + doubled)) + row * 4);
    if ((word & kMdVdpFlipX) != 0) {
        pattern = MdVdpMirror(pattern);
    }
    return {word, pattern};
}

// Where a cell is drawn: its colours, and the layer code of its pixels without priority.
struct Layer {
    std::array<uint16_t, kMdVdpLine>& line;
    MdVdpCellLayer low;
};

// Draws the pixels `first` to `first` + `count` - 1 of a cell, starting at `x`.
[[gnu::always_inline]] inline void DrawPixels(MD_VDP& vdp, const Layer& layer, const Cell& cell,
                                              uint32_t x, uint32_t first, uint32_t count) {
    const bool high = (cell.word & kMdVdpPriority) != 0;
    if (high) {
        std::fill_n(&vdp.lineFlags[x], count, uint8_t{1});
    }
    if (cell.pattern == 0) {
        return;
    }
    const auto code = static_cast<uint8_t>(layer.low + (high ? kHighLayer : 0));
    const uint16_t* palette = &vdp.cram[MdVdpPaletteOf(cell.word)];
    uint32_t pattern = cell.pattern << first * 4;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t pixel = pattern >> 28;
        pattern <<= 4;
        // A transparent pixel leaves the code alone, so the colour stored with it is never shown.
        const uint8_t raised = pixel != 0 ? code : uint8_t{0};
        vdp.layerCode[x + i] = std::max(vdp.layerCode[x + i], raised);
        layer.line[x + i] = palette[pixel];
    }
}

void DrawCell(MD_VDP& vdp, const Layer& layer, const Cell& cell, uint32_t x) {
    if (x <= kLastCellX) {
        DrawPixels(vdp, layer, cell, x, 0, kCell);
    }
}

bool IsWindow(const MD_VDP& vdp, uint32_t column) {
    return column >= vdp.windowColumn.size() || vdp.windowColumn[column] != 0;
}

// With fine scroll a cell of plane A lies in two columns, and one of them may belong to the window. Beside
// the window plane A goes on as if there were none: the chip's scroll fault there isn't built.
void DrawCellA(MD_VDP& vdp, const Cell& cell, uint32_t x) {
    const Layer layer{vdp.planeALine, kMdVdpPlaneALow};
    const uint32_t column = x / kCell;
    const uint32_t shifted = x % kCell;
    const bool left = !IsWindow(vdp, column);
    const bool right = shifted != 0 && !IsWindow(vdp, column + 1);
    if (left && (right || shifted == 0)) {
        DrawPixels(vdp, layer, cell, x, 0, kCell);
    } else if (left) {
        DrawPixels(vdp, layer, cell, x, 0, kCell - shifted);
    } else if (right) {
        DrawPixels(vdp, layer, cell, x + kCell - shifted, kCell - shifted, shifted);
    }
}

// The vertical scroll of `plane` (0 A, 1 B) at a pair of columns. The scroll of a whole plane is latched at
// the end of a line, that of a column pair is read as the pair is fetched.
uint32_t VScroll(const MD_VDP& vdp, uint32_t pair, uint32_t plane) {
    const bool byColumn = (vdp.regs[kMdVdpRegMode3] & kMdVdpReg11ColumnScroll) != 0;
    return byColumn ? vdp.vsram[(pair * 2 + plane) & 63] : vdp.vsramLine[plane];
}

void MarkWindow(MD_VDP& vdp) {
    const uint32_t across = vdp.regs[kMdVdpRegWindowAcross];
    const uint32_t down = vdp.regs[kMdVdpRegWindowDown];
    const uint32_t columns = (across & kMdVdpWindowEdge) * 2;
    const uint32_t edge = (down & kMdVdpWindowEdge) * 8;
    const bool inRows = (down & kMdVdpWindowFar) != 0
                            ? vdp.line >= edge && vdp.line < vdp.activeHeight
                            : vdp.line < edge;
    const bool rightOf = (across & kMdVdpWindowFar) != 0;
    const auto edgeColumn =
        vdp.windowColumn.begin() + std::min<size_t>(columns, vdp.windowColumn.size());
    std::fill(vdp.windowColumn.begin(), edgeColumn, inRows || !rightOf ? 1 : 0);
    std::fill(edgeColumn, vdp.windowColumn.end(), inRows || rightOf ? 1 : 0);
}

// Sets where a plane's fetches start. Returns true if fine scroll leaves a part of a cell at the left edge;
// `x` and `column` are then those after it.
bool StartPlane(uint32_t scroll, uint32_t& x, uint32_t& column) {
    const uint32_t fine = scroll % kCell;
    column = scroll / kCell;
    x = 0;
    if (fine == 0) {
        return false;
    }
    ++column;
    x = kCell - fine;
    return true;
}

// A line without display at 40 cells fetches its cells, and each dot clears what was drawn for it as it goes
// out. So if the display comes on within the line, the planes show from that very dot on. At 32 cells the
// dots clear nothing, so such a line fetches no cells: it goes on showing its sprites and what was fetched
// before the display went off, and shows planes again from the next fetch on. Settled here.
bool DrawsCells(const MD_VDP& vdp) {
    return vdp.line < vdp.activeHeight && (vdp.h40 != 0 || MdVdpDisplayOn(vdp));
}

// --- many cells at once ---------------------------------------------------------------------------

constexpr uint64_t kEachByte = 0x0101010101010101;

// The eight pixels of a pattern as bytes, the leftmost at the lowest address.
uint64_t SpreadPixels(uint32_t pattern) {
    uint64_t pixels = pattern;
    pixels = (pixels | pixels << 16) & 0x0000FFFF0000FFFF;
    pixels = (pixels | pixels << 8) & 0x00FF00FF00FF00FF;
    pixels = (pixels | pixels << 4) & 0x0F0F0F0F0F0F0F0F;
    return std::endian::native == std::endian::little ? __builtin_bswap64(pixels) : pixels;
}

// The colours of two pixels by the byte of a pattern that holds both. The table is renewed where CRAM has
// changed since its last use.
void RefreshPairs(MD_VDP& vdp) {
    constexpr uint32_t kColours = 16;
    for (uint32_t palette = 0; palette < vdp.pairs.size(); ++palette) {
        const uint16_t* colours = &vdp.cram[size_t{palette} * kColours];
        uint16_t* known = &vdp.pairCram[size_t{palette} * kColours];
        if (std::memcmp(known, colours, kColours * sizeof *colours) == 0) {
            continue;
        }
        std::copy_n(colours, kColours, known);
        for (uint32_t i = 0; i < vdp.pairs[palette].size(); ++i) {
            vdp.pairs[palette][i] = {colours[i / kColours], colours[i % kColours]};
        }
    }
}

// DrawPixels for whole cells, with all eight layer codes at once.
struct PlainCells {
    explicit PlainCells(MD_VDP& vdpValue)
        : vdp(vdpValue) {
        RefreshPairs(vdp);
    }

    // `pattern` as it is in VRAM.
    [[gnu::always_inline]] void Draw(const Layer& layer, uint32_t word, uint32_t pattern,
                                     uint32_t x) const {
        const uint64_t high = word / kMdVdpPriority;
        if (high != 0) {
            std::memcpy(&vdp.lineFlags[x], &kEachByte, sizeof kEachByte);
        }
        if (pattern == 0) {
            return;
        }
        if ((word & kMdVdpFlipX) != 0) {
            pattern = MdVdpMirror(pattern);
        }
        const uint64_t opaque = (SpreadPixels(pattern) + kEachByte * 0x7F) >> 7 & kEachByte;
        const uint64_t raised = opaque * (layer.low + high * kHighLayer);
        uint64_t codes = 0;
        std::memcpy(&codes, &vdp.layerCode[x], sizeof codes);
        // Codes are below 0x80, so with bit 7 set no byte borrows from the next, and bit 7 stays set where
        // the old code is at least as large as the new one.
        const uint64_t stays = (((codes | kEachByte * 0x80) - raised) >> 7 & kEachByte) * 0xFF;
        codes = (codes & stays) | (raised & ~stays);
        std::memcpy(&vdp.layerCode[x], &codes, sizeof codes);
        const auto& pairs = vdp.pairs[MdVdpPaletteOf(word) / 16];
        for (uint32_t i = 0; i < kCell / 2; ++i) {
            std::memcpy(&layer.line[x + size_t{i} * 2],
                        pairs[pattern >> (24 - 8 * i) & 0xFF].data(), sizeof pairs[0]);
        }
    }

    template <typename PatternOf>
    [[gnu::always_inline]] void DrawTwo(const Layer& layer, uint32_t left, uint32_t right,
                                        PatternOf patternOf, uint32_t x) const {
        Draw(layer, left, patternOf(left, left), x);
        Draw(layer, right, patternOf(right, right), x + kCell);
    }

    MD_VDP& vdp;
};

#ifdef OMBRELUNE_MD_VDP_WIDE
// The same with vectors.
struct WideCells {
    OMBRELUNE_MD_VDP_WIDE explicit WideCells(MD_VDP& vdpValue)
        : vdp(vdpValue) {
        for (uint32_t i = 0; i < 4; ++i) {
            palettes[i] = md_vdp_wide::LoadPalette(&vdp.cram[size_t{i} * 16]);
        }
    }

    OMBRELUNE_MD_VDP_WIDE void Draw(const Layer& layer, uint32_t word, uint32_t pattern,
                                    uint32_t x) const {
        const uint32_t high = word / kMdVdpPriority;
        if (high != 0) {
            std::memcpy(&vdp.lineFlags[x], &kEachByte, sizeof kEachByte);
        }
        if (pattern == 0) {
            return;
        }
        const auto pixels = md_vdp_wide::Pixels(pattern, 0, IsMirrored(word));
        const auto codes = md_vdp_wide::Load8(&vdp.layerCode[x]);
        md_vdp_wide::Store8(&vdp.layerCode[x], _mm_max_epu8(codes, Raised(layer, high, pixels)));
        md_vdp_wide::Store16(&layer.line[x], md_vdp_wide::Colours(PaletteOf(word), pixels));
    }

    // Two cells with the same palette, priority and mirroring are drawn together, unless one of them is empty.
    template <typename PatternOf>
    OMBRELUNE_MD_VDP_WIDE void DrawTwo(const Layer& layer, uint32_t left, uint32_t right,
                                       PatternOf patternOf, uint32_t x) const {
        if (((left ^ right) & kAttributes) != 0) {
            Draw(layer, left, patternOf(left, left), x);
            Draw(layer, right, patternOf(right, right), x + kCell);
            return;
        }
        const uint32_t leftPattern = patternOf(left, left);
        const uint32_t rightPattern = patternOf(right, left);
        if ((leftPattern == 0) != (rightPattern == 0)) {
            Draw(layer, left, leftPattern, x);
            Draw(layer, right, rightPattern, x + kCell);
            return;
        }
        const uint32_t high = left / kMdVdpPriority;
        if (high != 0) {
            md_vdp_wide::Store16(&vdp.lineFlags[x], _mm_set1_epi8(1));
        }
        if (leftPattern == 0) {
            return;
        }
        const auto pixels = md_vdp_wide::Pixels(leftPattern, rightPattern, IsMirrored(left));
        const auto codes = md_vdp_wide::Load16(&vdp.layerCode[x]);
        md_vdp_wide::Store16(&vdp.layerCode[x], _mm_max_epu8(codes, Raised(layer, high, pixels)));
        const auto& palette = PaletteOf(left);
        md_vdp_wide::Store16(&layer.line[x], md_vdp_wide::Colours(palette, pixels));
        md_vdp_wide::Store16(&layer.line[x + kCell], md_vdp_wide::OtherColours(palette, pixels));
    }

    [[nodiscard]] static uint32_t IsMirrored(uint32_t word) {
        return (word & kMdVdpFlipX) != 0 ? 1 : 0;
    }

    // The layer codes of pixels; 0 where they are transparent.
    OMBRELUNE_MD_VDP_WIDE static md_vdp_wide::Bytes Raised(const Layer& layer, uint32_t high,
                                                           md_vdp_wide::Bytes pixels) {
        const auto code = _mm_set1_epi8(static_cast<char>(layer.low + high * kHighLayer));
        return _mm_andnot_si128(_mm_cmpeq_epi8(pixels, _mm_setzero_si128()), code);
    }

    [[nodiscard]] const md_vdp_wide::Palette& PaletteOf(uint32_t word) const {
        return palettes[MdVdpPaletteOf(word) / 16];
    }

    MD_VDP& vdp;
    md_vdp_wide::Palette palettes[4];
};
#endif

// What the cells of a plane share in a line.
struct PlaneRun {
    uint32_t base;
    uint32_t width; // in cells
    uint32_t column;
    uint32_t count; // of cells, from `column` on
    uint32_t x;     // of the first one
};

// FetchCell and DrawCell for a run of cells. The scroll of a whole plane is the same in all of them; `scroll`
// returns that of a pair of columns, counted from the first.
template <bool ByColumn, uint32_t kDoubled, typename Cells, typename Scroll>
[[gnu::always_inline]] inline void DrawRun(const Cells& cells, const Layer& layer,
                                           const PlaneRun& run, Scroll scroll) {
    const MD_VDP& vdp = cells.vdp;
    constexpr uint32_t kRowBits = 3 + kDoubled;
    constexpr uint32_t kLastRow = (kCell << kDoubled) - 1;
    const uint32_t top = kDoubled != 0 ? vdp.line * 2 + vdp.field : vdp.line;
    const uint32_t lastY = (vdp.planeHeight << kRowBits) - 1;
    const uint32_t lastColumn = run.width - 1;
    uint32_t y = 0;
    uint32_t names = 0;
    const auto findRow = [&](uint32_t pair) {
        y = (top + (scroll(pair) & kScrollBits)) & lastY;
        names = run.base + (y >> kRowBits) * run.width * 2;
    };
    const auto wordAt = [&](uint32_t i) {
        return MdVdpVramWord(vdp, names + ((run.column + i) & lastColumn) * 2);
    };
    const auto patternOf = [&](uint32_t word, uint32_t attributes) {
        const uint32_t row = ((attributes & kMdVdpFlipY) != 0 ? ~y : y) & kLastRow;
        return MdVdpPattern(vdp, (word << (5 + kDoubled)) + row * 4);
    };
    findRow(0);
    uint32_t i = 0;
    for (; i + 1 < run.count; i += 2) {
        if (ByColumn) {
            findRow(i / 2);
        }
        cells.DrawTwo(layer, wordAt(i), wordAt(i + 1), patternOf, run.x + i * kCell);
    }
    if (i < run.count) {
        if (ByColumn) {
            findRow(i / 2);
        }
        const uint32_t word = wordAt(i);
        cells.Draw(layer, word, patternOf(word, word), run.x + i * kCell);
    }
}

template <bool ByColumn, typename Cells, typename Scroll>
[[gnu::always_inline]] inline void DrawCells(const Cells& cells, const Layer& layer,
                                             const PlaneRun& run, Scroll scroll) {
    if (cells.vdp.interlace2 != 0) {
        DrawRun<ByColumn, 1>(cells, layer, run, scroll);
    } else {
        DrawRun<ByColumn, 0>(cells, layer, run, scroll);
    }
}

template <typename Cells>
[[gnu::always_inline]] inline void DrawPairs(const Cells& cells, const Layer& layer,
                                             const PlaneRun& run, uint32_t plane) {
    const MD_VDP& vdp = cells.vdp;
    if ((vdp.regs[kMdVdpRegMode3] & kMdVdpReg11ColumnScroll) != 0) {
        const uint32_t pair = vdp.tileColumn / 2;
        DrawCells<true>(cells, layer, run,
                        [&](uint32_t i) { return vdp.vsram[((pair + i) * 2 + plane) & 63]; });
    } else {
        DrawCells<false>(cells, layer, run, [&](uint32_t) { return vdp.vsramLine[plane]; });
    }
}

// Plane A where the window is nowhere near. Fine scroll moves the cell of the last column out of the line, and
// the part outside isn't drawn.
template <typename Cells>
[[gnu::always_inline]] inline void DrawPairsA(const Cells& cells, uint32_t columns) {
    MD_VDP& vdp = cells.vdp;
    const uint32_t shifted = vdp.planeAX % kCell;
    const bool cut = shifted != 0 && vdp.tileColumn + columns == vdp.windowColumn.size();
    DrawPairs(
        cells, {vdp.planeALine, kMdVdpPlaneALow},
        {vdp.planeABase, vdp.planeWidth, vdp.planeAColumn, columns - (cut ? 1 : 0), vdp.planeAX},
        0);
    if (cut) {
        const uint32_t last = columns - 1;
        const uint32_t scroll = VScroll(vdp, (vdp.tileColumn + last) / 2, 0);
        DrawCellA(vdp,
                  FetchCell(vdp, vdp.planeABase, vdp.planeWidth, vdp.planeAColumn + last, scroll),
                  vdp.planeAX + last * kCell);
    }
}

// Fetches of `columns` columns without the window or with nothing else; false if the window begins or ends
// among them. The column after the last one counts too, since fine scroll moves cells into it.
template <typename Cells>
[[gnu::always_inline]] inline bool FetchAlike(MD_VDP& vdp, uint32_t columns) {
    const uint32_t left = vdp.tileColumn;
    const auto first = vdp.windowColumn.begin() + left;
    const auto last =
        vdp.windowColumn.begin() + std::min<size_t>(left + columns + 1, vdp.windowColumn.size());
    const bool window = *first != 0;
    if (std::any_of(first, last, [&](uint8_t in) { return (in != 0) != window; })) {
        return false;
    }
    const Cells cells(vdp);
    DrawPairs(cells, {vdp.planeBLine, kMdVdpPlaneBLow},
              {vdp.planeBBase, vdp.planeWidth, vdp.planeBColumn, columns, vdp.planeBX}, 1);
    if (window) {
        DrawCells<false>(cells, {vdp.windowLine, kMdVdpWindowLow},
                         {vdp.windowBase, vdp.windowWidth, left, columns, left * kCell},
                         [](uint32_t) { return 0U; });
    } else {
        DrawPairsA(cells, columns);
    }
    return true;
}

bool FetchAlikePlain(MD_VDP& vdp, uint32_t columns) {
    return FetchAlike<PlainCells>(vdp, columns);
}

#ifdef OMBRELUNE_MD_VDP_WIDE
// Everything that it calls is inlined, so that it becomes wide, too.
[[gnu::target("avx2"), gnu::flatten]] bool FetchAlikeWide(MD_VDP& vdp, uint32_t columns) {
    return FetchAlike<WideCells>(vdp, columns);
}
#else
constexpr auto FetchAlikeWide = FetchAlikePlain;
#endif

void AdvanceColumns(MD_VDP& vdp, uint32_t columns) {
    vdp.tileColumn += columns;
    vdp.planeAColumn += columns;
    vdp.planeBColumn += columns;
    vdp.planeAX += columns * kCell;
    vdp.planeBX += columns * kCell;
}

} // namespace

// The partial first cell takes the scroll of the first pair of columns.
void MdVdpStartLine(MD_VDP& vdp) {
    MarkWindow(vdp);
    const bool draws = DrawsCells(vdp);
    const bool partA = StartPlane(vdp.hScrollA, vdp.planeAX, vdp.planeAColumn);
    if (partA && draws && !IsWindow(vdp, 0)) {
        const Cell cell = FetchCell(vdp, vdp.planeABase, vdp.planeWidth, vdp.planeAColumn - 1,
                                    VScroll(vdp, 0, 0));
        DrawPixels(vdp, {vdp.planeALine, kMdVdpPlaneALow}, cell, 0, kCell - vdp.planeAX,
                   vdp.planeAX);
    }
    const bool partB = StartPlane(vdp.hScrollB, vdp.planeBX, vdp.planeBColumn);
    if (partB && draws) {
        const Cell cell = FetchCell(vdp, vdp.planeBBase, vdp.planeWidth, vdp.planeBColumn - 1,
                                    VScroll(vdp, 0, 1));
        DrawPixels(vdp, {vdp.planeBLine, kMdVdpPlaneBLow}, cell, 0, kCell - vdp.planeBX,
                   vdp.planeBX);
    }
}

void MdVdpFetchCells(MD_VDP& vdp) {
    const uint32_t left = vdp.tileColumn;
    if (left + 2 > vdp.windowColumn.size()) {
        return;
    }
    std::fill_n(&vdp.backdropLine[size_t{left} * kCell], 2 * kCell,
                vdp.cram[vdp.regs[kMdVdpRegBackdrop] & kMdVdpReg7Colour]);
    vdp.backdropX = (left + 2) * kCell;
    // The columns advance even if nothing is drawn, so a line that is switched on again is in its place.
    const bool draws = DrawsCells(vdp);
    const uint32_t scrollA = VScroll(vdp, left / 2, 0);
    const uint32_t scrollB = VScroll(vdp, left / 2, 1);
    for (uint32_t column = left; draws && column < left + 2; ++column) {
        const uint32_t shift = (column - left) * kCell;
        const uint32_t step = column - left;
        DrawCell(vdp, {vdp.planeBLine, kMdVdpPlaneBLow},
                 FetchCell(vdp, vdp.planeBBase, vdp.planeWidth, vdp.planeBColumn + step, scrollB),
                 vdp.planeBX + shift);
        const uint32_t xA = vdp.planeAX + shift;
        if (!IsWindow(vdp, xA / kCell) || !IsWindow(vdp, xA / kCell + 1)) {
            DrawCellA(
                vdp,
                FetchCell(vdp, vdp.planeABase, vdp.planeWidth, vdp.planeAColumn + step, scrollA),
                xA);
        }
        if (vdp.windowColumn[column] != 0) {
            DrawCell(vdp, {vdp.windowLine, kMdVdpWindowLow},
                     FetchCell(vdp, vdp.windowBase, vdp.windowWidth, column, 0), column * kCell);
        }
    }
    AdvanceColumns(vdp, 2);
}

// Of the layers each has its own buffer of colours, and of the codes of a pixel the largest stays, so a layer
// may be drawn over many columns before the next.
void MdVdpFetchLine(MD_VDP& vdp, uint32_t fetches) {
    const uint32_t columns = fetches * 2;
    const uint32_t left = vdp.tileColumn;
    if (!(vdp.wide != 0 ? FetchAlikeWide : FetchAlikePlain)(vdp, columns)) {
        for (; fetches != 0; --fetches) {
            MdVdpFetchCells(vdp);
        }
        return;
    }
    std::fill_n(&vdp.backdropLine[size_t{left} * kCell], columns * kCell,
                vdp.cram[vdp.regs[kMdVdpRegBackdrop] & kMdVdpReg7Colour]);
    vdp.backdropX = (left + columns) * kCell;
    AdvanceColumns(vdp, columns);
}
