// The drawing half of the edge scalers: colours each target pixel by the exact area that the corners'
// triangles cover of it.
#include "display/picture_outline.h"
#include "display/picture_scaler_private.h"

namespace {

// The part of a target pixel that one corner colours, in 128ths, for one factor.
template <uint32_t factor>
using Coverage = std::array<uint8_t, size_t{factor} * factor>;
template <uint32_t factor>
using CoverageTable = std::array<std::array<Coverage<factor>, kCutKinds>, kCorners>;

constexpr uint32_t kFullCoverage = 128;

// The area of a triangle inside a target pixel. Legs in target pixels, (x, y) the target pixel relative
// to the corner. The part of a triangle beyond a point in both directions is a smaller triangle of the
// same shape, so four of them make a square.
constexpr uint8_t TriangleCoverage(uint32_t rowLeg, uint32_t columnLeg, uint32_t x, uint32_t y) {
    const uint32_t product = rowLeg * columnLeg;
    // The area of the triangle beyond a point, times 2 x `product`.
    const auto beyond = [&](uint32_t fromX, uint32_t fromY) {
        const uint32_t taken = fromX * columnLeg + fromY * rowLeg;
        const uint32_t side = product - std::min(taken, product);
        return side * side;
    };
    const uint32_t square =
        beyond(x, y) + beyond(x + 1, y + 1) - beyond(x + 1, y) - beyond(x, y + 1);
    return static_cast<uint8_t>((square * (kFullCoverage / 2) + product / 2) / product);
}

// The kinds along the row, for the upper left corner. Those along the column are their transposes.
template <uint32_t factor>
constexpr Coverage<factor> RowCoverage(uint32_t kind) {
    const bool rest = kind >= kRest3x1;
    const uint32_t halves = rest ? kind - kRest3x1 + 3 : kind;
    constexpr uint32_t kHalf = factor / 2;
    Coverage<factor> cells{};
    for (uint32_t y = 0; y < factor; ++y) {
        for (uint32_t x = 0; x < factor; ++x) {
            cells[y * factor + x] =
                TriangleCoverage(kHalf * halves, kHalf, rest ? x + factor : x, y);
        }
    }
    return cells;
}

template <uint32_t factor>
constexpr Coverage<factor> CoverageOf(uint32_t corner, uint32_t kind) {
    const bool upright = (kind >= kCut1x2 && kind <= kCut1x4) || kind >= kRest1x3;
    const uint32_t rowKind = !upright ? kind : kind >= kRest1x3 ? kind - 2 : kind - 3;
    const Coverage<factor> cells = RowCoverage<factor>(rowKind);
    Coverage<factor> placed{};
    for (uint32_t y = 0; y < factor; ++y) {
        for (uint32_t x = 0; x < factor; ++x) {
            const uint32_t fromCornerX = corner & 1 ? factor - 1 - x : x;
            const uint32_t fromCornerY = corner & 2 ? factor - 1 - y : y;
            placed[y * factor + x] = upright ? cells[fromCornerX * factor + fromCornerY]
                                             : cells[fromCornerY * factor + fromCornerX];
        }
    }
    return placed;
}

template <uint32_t factor>
constexpr CoverageTable<factor> MakeCoverage() {
    CoverageTable<factor> table{};
    for (uint32_t corner = 0; corner < kCorners; ++corner) {
        for (uint32_t kind = kCut1x1; kind < kCutKinds; ++kind) {
            table[corner][kind] = CoverageOf<factor>(corner, kind);
        }
    }
    return table;
}

template <uint32_t factor>
constexpr CoverageTable<factor> kCoverage = MakeCoverage<factor>();

// Legs of half a source pixel cut off half of one target pixel at factor 2, and one target pixel and half of its two
// neighbours at factor 4.
static_assert(kCoverage<2>[kUpperLeft][kCut1x1] == Coverage<2>{64, 0, 0, 0});
static_assert(kCoverage<4>[kUpperLeft][kCut1x1] ==
              Coverage<4>{128, 64, 0, 0, 64, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
static_assert(kCoverage<2>[kLowerRight][kCut1x2] == Coverage<2>{0, 32, 0, 96});

template <uint32_t factor>
void DrawCutPixel(const OutlineTile& tile, uint32_t row, uint32_t column, uint32_t* target,
                  size_t pitch) {
    std::array<uint64_t, size_t{factor} * factor> sums{};
    std::array<uint32_t, size_t{factor} * factor> weights{};
    for (uint32_t corner = 0; corner < kCorners; ++corner) {
        const uint32_t kind = tile.cuts[corner][row][column];
        if (kind == kWhole) {
            continue;
        }
        const uint64_t colour = CutColour(tile, row, column, corner, kind);
        const Coverage<factor>& coverage = kCoverage<factor>[corner][kind];
        for (size_t cell = 0; cell < coverage.size(); ++cell) {
            sums[cell] += colour * coverage[cell];
            weights[cell] += 2U * coverage[cell];
        }
    }
    constexpr uint32_t kWhole2 = 2 * kFullCoverage;
    const uint64_t own = SpreadChannels(tile.pixels[row][column]);
    for (size_t cell = 0; cell < sums.size(); ++cell) {
        uint32_t& to = target[cell / factor * pitch + cell % factor];
        // "Alike" is not transitive: triangles of one pixel overlap where pairs of colours are alike
        // but not all of them.
        to = weights[cell] > kWhole2
                 ? GatherChannels(sums[cell], weights[cell])
                 : GatherChannels(sums[cell] + own * (kWhole2 - weights[cell]), kWhole2);
    }
}

template <uint32_t factor>
void DrawTile(const OutlineTile& tile, uint32_t* target, size_t pitch) {
    for (uint32_t row = 0; row < tile.rows; ++row) {
        const uint32_t* pixels = tile.pixels[row + kTileMargin].data() + kTileMargin;
        uint32_t* line = target + pitch * factor * row;
        for (uint32_t column = 0; column < tile.columns; ++column) {
            const uint32_t pixel = pixels[column] | kOpaque;
            for (uint32_t y = 0; y < factor; ++y) {
                std::fill_n(line + y * pitch + size_t{column} * factor, factor, pixel);
            }
        }
        const std::array<const uint8_t*, kCorners> cuts = {
            tile.cuts[0][row + kTileMargin].data(), tile.cuts[1][row + kTileMargin].data(),
            tile.cuts[2][row + kTileMargin].data(), tile.cuts[3][row + kTileMargin].data()};
        for (uint32_t column = kTileMargin; column < tile.columns + kTileMargin; ++column) {
            if ((cuts[0][column] | cuts[1][column] | cuts[2][column] | cuts[3][column]) != 0) {
                DrawCutPixel<factor>(tile, row + kTileMargin, column,
                                     line + size_t{column - kTileMargin} * factor, pitch);
            }
        }
    }
}

template <uint32_t factor>
void ScaleEdge(const SourcePicture& source, uint32_t* target, VectorForm form) {
    OutlineTile tile{};
    const size_t pitch = size_t{source.width} * factor;
    for (uint32_t top = 0; top < source.height; top += kTileRows) {
        for (uint32_t left = 0; left < source.width; left += kTileColumns) {
            const PiecePlace place = {left, top, std::min(kTileColumns, source.width - left),
                                      std::min(kTileRows, source.height - top)};
            AnalyseOutlines(source, place, tile, form);
            DrawTile<factor>(tile, target + pitch * factor * top + size_t{left} * factor, pitch);
        }
    }
}

} // namespace

void ScaleEdge2x(const SourcePicture& source, uint32_t* target, VectorForm form) {
    ScaleEdge<2>(source, target, form);
}

void ScaleEdge4x(const SourcePicture& source, uint32_t* target, VectorForm form) {
    ScaleEdge<4>(source, target, form);
}
