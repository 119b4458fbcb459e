// The soft scaler. A quadratic B-spline through the pixels gives a surface without steps: where pixels
// climb in steps, the line along which it is half way between two colours is straight. Alone it is a
// blur. So every value is moved away from the middle between the darkest and the brightest of its
// surroundings, by half its distance, and clamped between the two: edges get steep and don't ring.
//
// Colours are mixed as coded, not as linear light. So the mean of a dithered surface does not change,
// and dark strokes are as wide as bright ones.
#include "display/picture_outline.h"
#include "display/picture_scaler_private.h"

#include <array>
#include <cstring>

namespace {

constexpr size_t kFactor = 4;
constexpr uint32_t kChannels = 4;

// The reach of the surface and its bounds, and what that leaves of an analysed piece.
constexpr uint32_t kReach = 2;
constexpr uint32_t kPieceColumns = kTileColumns - 2 * kReach;
constexpr uint32_t kPieceRows = kTileRows - 2 * kReach;
constexpr uint32_t kStripBytes = kPieceColumns * kChannels;

// The weights of the previous, the own and the next pixel at the four places in a source pixel. The
// spline's are 49 78 1 and 25 94 9 in 128ths. In 16ths both directions together fit 16 bits, so nothing
// is rounded between them, and rows and columns are treated alike.
constexpr std::array<std::array<uint16_t, 3>, kFactor> kSpline = {
    {{6, 10, 0}, {3, 12, 1}, {1, 12, 3}, {0, 10, 6}}
};
// Bounds are interpolated linearly, in 8ths. Bounds that jump would show the pixels again.
constexpr std::array<std::array<uint16_t, 3>, kFactor> kLinear = {
    {{3, 5, 0}, {1, 7, 0}, {0, 7, 1}, {0, 5, 3}}
};

using SourceBytes = std::array<uint8_t, kStripBytes + 2 * kReach * kChannels>;
using StripShorts = std::array<uint16_t, kStripBytes>;

// One source row, widened: one array for each place in a source pixel.
struct WideRow {
    std::array<StripShorts, kFactor> surface; // 16 times a byte
    std::array<StripShorts, kFactor> darkest; // 8 times a byte
    std::array<StripShorts, kFactor> brightest;
};

// A piece with its margin on all sides, outlines smoothed.
using SoftPiece = std::array<SourceBytes, kTileRows>;

// The area of each kind of cut, in 48ths of a pixel.
constexpr std::array<uint8_t, kCutKinds> kCutArea = {0, 6, 12, 16, 18, 12, 16, 18, 2, 6, 2, 6};
constexpr uint32_t kPixelArea = 48;

// The mean colour of a pixel with its corners cut.
uint32_t SmoothPixel(const OutlineTile& tile, uint32_t row, uint32_t column) {
    uint64_t sums = 0;
    uint32_t weight = 0;
    for (uint32_t corner = 0; corner < kCorners; ++corner) {
        const uint32_t kind = tile.cuts[corner][row][column];
        if (kind != kWhole) {
            sums += CutColour(tile, row, column, corner, kind) * kCutArea[kind];
            weight += 2U * kCutArea[kind];
        }
    }
    if (weight > 2 * kPixelArea) {
        return GatherChannels(sums, weight);
    }
    sums += SpreadChannels(tile.pixels[row][column]) * (2 * kPixelArea - weight);
    return GatherChannels(sums, 2 * kPixelArea);
}

void SmoothOutlines(const OutlineTile& tile, SoftPiece& piece) {
    for (uint32_t row = 0; row < tile.rows; ++row) {
        const uint32_t line = row + kTileMargin;
        // Bytes are read and written in memory order, independent of their channels.
        std::array<uint32_t, kTileColumns> pixels;
        std::copy_n(tile.pixels[line].data() + kTileMargin, tile.columns, pixels.data());
        for (uint32_t column = kTileMargin; column < tile.columns + kTileMargin; ++column) {
            if ((tile.cuts[0][line][column] | tile.cuts[1][line][column] |
                 tile.cuts[2][line][column] | tile.cuts[3][line][column]) != 0) {
                pixels[column - kTileMargin] = SmoothPixel(tile, line, column);
            }
        }
        std::memcpy(piece[row].data(), pixels.data(), tile.columns * sizeof(uint32_t));
    }
}

template <class Value>
constexpr uint16_t Short(Value value) {
    return static_cast<uint16_t>(value);
}

constexpr uint8_t Lowest(uint8_t one, uint8_t two, uint8_t three) {
    return std::min(std::min(one, two), three);
}

constexpr uint8_t Highest(uint8_t one, uint8_t two, uint8_t three) {
    return std::max(std::max(one, two), three);
}

// The extremes of three rows by three columns around every pixel but the outermost.
void FindBounds(const SourceBytes* rows, uint32_t count, SourceBytes& darkest,
                SourceBytes& brightest) {
    SourceBytes low;
    SourceBytes high;
    for (uint32_t at = 0; at < count; ++at) {
        low[at] = Lowest(rows[0][at], rows[1][at], rows[2][at]);
        high[at] = Highest(rows[0][at], rows[1][at], rows[2][at]);
    }
    for (uint32_t at = kChannels; at < count - kChannels; ++at) {
        darkest[at] = Lowest(low[at - kChannels], low[at], low[at + kChannels]);
        brightest[at] = Highest(high[at - kChannels], high[at], high[at + kChannels]);
    }
}

// Weights are template arguments here and below, so that zero weights cost nothing.
template <std::array<uint16_t, 3> weights>
void WeighNeighbours(const SourceBytes& bytes, uint32_t count, StripShorts& wide) {
    const uint8_t* own = bytes.data() + size_t{kReach} * kChannels;
    for (uint32_t at = 0; at < count; ++at) {
        const uint8_t* here = own + at;
        wide[at] = Short(uint32_t{here[-int{kChannels}]} * weights[0] +
                         uint32_t{here[0]} * weights[1] + uint32_t{here[kChannels]} * weights[2]);
    }
}

// The middle row of three.
void WidenRow(const SourceBytes* rows, uint32_t columns, WideRow& wide) {
    SourceBytes darkest;
    SourceBytes brightest;
    FindBounds(rows, (columns + 2 * kReach) * kChannels, darkest, brightest);
    const uint32_t count = columns * kChannels;
    const auto widen = [&]<uint32_t place>() {
        WeighNeighbours<kSpline[place]>(rows[1], count, wide.surface[place]);
        WeighNeighbours<kLinear[place]>(darkest, count, wide.darkest[place]);
        WeighNeighbours<kLinear[place]>(brightest, count, wide.brightest[place]);
    };
    widen.operator()<0>();
    widen.operator()<1>();
    widen.operator()<2>();
    widen.operator()<3>();
}

// Three wide rows, from the one above to the one below.
using RowPointers = std::array<const WideRow*, 3>;

// The channels at one place of the source pixels of a row. All values are 64 times a byte.
template <uint32_t down>
void CombineRows(const RowPointers& rows, uint32_t place, uint32_t count,
                 std::array<uint8_t, kStripBytes>& bytes) {
    const uint16_t* surface[3] = {rows[0]->surface[place].data(), rows[1]->surface[place].data(),
                                  rows[2]->surface[place].data()};
    // Of the linear weights one is zero.
    constexpr uint32_t kNear = down < kFactor / 2 ? 0 : 2;
    const uint16_t* lowOwn = rows[1]->darkest[place].data();
    const uint16_t* lowNear = rows[kNear]->darkest[place].data();
    const uint16_t* highOwn = rows[1]->brightest[place].data();
    const uint16_t* highNear = rows[kNear]->brightest[place].data();
    constexpr std::array<uint16_t, 3> kWeights = kSpline[down];
    constexpr uint16_t kOwnShare = kLinear[down][1];
    constexpr uint16_t kNearShare = kLinear[down][kNear];
    for (uint32_t at = 0; at < count; ++at) {
        const uint16_t sum =
            Short(Short(surface[0][at] * kWeights[0]) + Short(surface[1][at] * kWeights[1]) +
                  Short(surface[2][at] * kWeights[2]));
        const int16_t value = static_cast<int16_t>(sum >> 2);
        const int16_t low = static_cast<int16_t>(lowOwn[at] * kOwnShare + lowNear[at] * kNearShare);
        const int16_t high =
            static_cast<int16_t>(highOwn[at] * kOwnShare + highNear[at] * kNearShare);
        const int16_t fromMiddle = static_cast<int16_t>((value - low) + (value - high));
        const int16_t steep = static_cast<int16_t>(value + (fromMiddle >> 2));
        const int16_t held = std::min(std::max(steep, low), high);
        bytes[at] = static_cast<uint8_t>((held + 32) >> 6);
    }
}

template <uint32_t down>
void DrawRow(const RowPointers& rows, uint32_t columns, uint32_t* target) {
    std::array<std::array<uint32_t, kPieceColumns>, kFactor> places;
    for (uint32_t place = 0; place < kFactor; ++place) {
        std::array<uint8_t, kStripBytes> bytes;
        CombineRows<down>(rows, place, columns * kChannels, bytes);
        std::memcpy(places[place].data(), bytes.data(), columns * sizeof(uint32_t));
    }
    for (uint32_t column = 0; column < columns; ++column) {
        target[column * kFactor] = places[0][column] | kOpaque;
        target[column * kFactor + 1] = places[1][column] | kOpaque;
        target[column * kFactor + 2] = places[2][column] | kOpaque;
        target[column * kFactor + 3] = places[3][column] | kOpaque;
    }
}

// `target` is the piece's upper left pixel.
void DrawPiece(const SoftPiece& piece, uint32_t columns, uint32_t rows, uint32_t* target,
               size_t pitch) {
    std::array<WideRow, 3> ring;
    WidenRow(&piece[0], columns, ring[0]);
    WidenRow(&piece[1], columns, ring[1]);
    for (uint32_t row = 0; row < rows; ++row) {
        WidenRow(&piece[row + 2], columns, ring[(row + 2) % 3]);
        const RowPointers around = {&ring[row % 3], &ring[(row + 1) % 3], &ring[(row + 2) % 3]};
        uint32_t* line = target + pitch * kFactor * row;
        DrawRow<0>(around, columns, line);
        DrawRow<1>(around, columns, line + pitch);
        DrawRow<2>(around, columns, line + 2 * pitch);
        DrawRow<3>(around, columns, line + 3 * pitch);
    }
}

#if defined(__x86_64__) && defined(__GNUC__)
// The same for processors with vectors of 32 bytes; everything it calls is inlined.
[[gnu::target("avx2"), gnu::flatten]] void DrawPieceWide(const SoftPiece& piece, uint32_t columns,
                                                         uint32_t rows, uint32_t* target,
                                                         size_t pitch) {
    DrawPiece(piece, columns, rows, target, pitch);
}
#else
constexpr auto DrawPieceWide = DrawPiece;
#endif

} // namespace

void ScaleSoft4x(const SourcePicture& source, uint32_t* target, VectorForm form) {
    const size_t pitch = size_t{source.width} * kFactor;
    const auto draw = form == VectorForm::kWide ? DrawPieceWide : DrawPiece;
    OutlineTile tile{};
    SoftPiece piece;
    for (uint32_t top = 0; top < source.height; top += kPieceRows) {
        for (uint32_t left = 0; left < source.width; left += kPieceColumns) {
            const uint32_t columns = std::min(kPieceColumns, source.width - left);
            const uint32_t rows = std::min(kPieceRows, source.height - top);
            AnalyseOutlines(source,
                            {int64_t{left} - kReach, int64_t{top} - kReach, columns + 2 * kReach,
                             rows + 2 * kReach},
                            tile, form);
            SmoothOutlines(tile, piece);
            draw(piece, columns, rows, target + pitch * kFactor * top + size_t{left} * kFactor,
                 pitch);
        }
    }
}
