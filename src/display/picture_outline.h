// Finds where the outlines of a picture's shapes are to be cut: the analysing half of the edge scalers.
//
// An outline follows the borders between pixels that differ. Drawn in pixels, a slanted line is a row
// of steps: runs of one pixel that turn one way at one end and the other way at the other, with runs of
// any length between them. The line that such steps represent goes through the middles of the runs,
// exactly if the steps repeat. So at every corner of the outline the triangle between the corner and
// the middles of the two runs that meet there gets the colour on the other side.
//
// A corner stays square when neither run is a step, or when either run is one pixel long and turns back
// at both ends: that is the end of a thin line, a dot or a tooth. If the diagonals of a two by two
// block have different colours, the pair that is a thin line on a larger surface is joined; in
// dithering neither is, and nothing is cut.
//
// Units: lengths of runs in source pixels, legs of triangles in halves of one.
// Owner: the caller owns the tile, 300 KiB, and clears it once before its first use. Any thread.
// Order: AnalyseOutlines, then reads of `cuts` inside the tile.
#pragma once

#include "display/picture_scaler_private.h"

#include <array>

// The pixels of a tile, and the margin around them. The reach of the analysis is seven: one for a
// triangle that crosses into the next pixel, one for the far end of a step, four for the length of runs
// and one for the surroundings of a crossing.
constexpr uint32_t kTileColumns = 124;
constexpr uint32_t kTileRows = 64;
constexpr uint32_t kTileMargin = 8;
// Room for whole vectors at the end of a row.
constexpr uint32_t kTileStride = 160;
constexpr uint32_t kTileLines = kTileRows + 2 * kTileMargin;

// The four corners of a pixel, in the order of `OutlineTile::cuts`.
enum OutlineCorner : uint32_t { kUpperLeft = 0, kUpperRight = 1, kLowerLeft = 2, kLowerRight = 3 };
constexpr uint32_t kCorners = 4;

// What happens to a corner. The first leg is along the row, the second along the column.
enum OutlineCut : uint8_t {
    kWhole = 0,
    kCut1x1 = 1, // legs of one half each: a slope of 45 degrees
    kCut2x1 = 2, // and so on to 4: one step in three or four pixels
    kCut3x1 = 3,
    kCut4x1 = 4,
    kCut1x2 = 5,
    kCut1x3 = 6,
    kCut1x4 = 7,
    kRest3x1 = 8, // the thin end of the beside pixel's kCut3x1
    kRest4x1 = 9,
    kRest1x3 = 10, // the thin end of the kCut1x3 of the pixel above or below
    kRest1x4 = 11,
    kCutKinds = 12,
};

template <class Value>
using TilePlane = std::array<std::array<Value, kTileStride>, kTileLines>;

using BytePlane = TilePlane<uint8_t>;

// In a plane of pairs, a pair has the place of its upper left pixel.
struct AlikePairs {
    BytePlane right; // alike: this pixel and the one to its right
    BytePlane below;
    BytePlane falling; // this pixel and the one to the right and below
    BytePlane rising;  // the pixel to the right and the one below
};

// The analysis's working data. All are bytes of 0 or 1 except colours and corners.
struct OutlineWork {
    BytePlane luma;
    BytePlane blueness;
    BytePlane redness;
    AlikePairs alike;
    // Diagonal pairs that are joined, and those that a run cannot pass between: the second includes
    // undecided crossings.
    BytePlane fallingJoined;
    BytePlane risingJoined;
    BytePlane fallingShut;
    BytePlane risingShut;
    std::array<BytePlane, kCorners> corners;
};

// One piece of a picture with its surroundings. Row and column kTileMargin are the piece's first.
struct OutlineTile {
    uint32_t columns; // of the piece
    uint32_t rows;
    TilePlane<uint32_t> pixels;
    // OutlineCut of each corner.
    std::array<BytePlane, kCorners> cuts;
    OutlineWork work;
};

// The place of a piece: its upper left pixel, which may lie before the picture's borders, and its size,
// 1..kTileColumns by 1..kTileRows.
struct PiecePlace {
    int64_t left;
    int64_t top;
    uint32_t columns;
    uint32_t rows;
};

void AnalyseOutlines(const SourcePicture& source, const PiecePlace& place, OutlineTile& tile,
                     VectorForm form);

// Three channels of a pixel side by side in one word, 21 bits each, to be weighted together.
constexpr uint32_t kLaneBits = 21;

constexpr uint64_t SpreadChannels(uint32_t pixel) {
    return (pixel & 0xFF) | (uint64_t{(pixel >> 8) & 0xFF} << kLaneBits) |
           (uint64_t{(pixel >> 16) & 0xFF} << (2 * kLaneBits));
}

// Divides weighted channels by the sum of their weights.
constexpr uint32_t GatherChannels(uint64_t sums, uint32_t weight) {
    constexpr uint64_t kLaneMask = (uint64_t{1} << kLaneBits) - 1;
    uint32_t pixel = kOpaque;
    for (uint32_t channel = 0; channel < 3; ++channel) {
        const uint32_t sum = static_cast<uint32_t>((sums >> (channel * kLaneBits)) & kLaneMask);
        pixel |= (sum + weight / 2) / weight << (8 * channel);
    }
    return pixel;
}

// Twice the colour that a corner gets: the mean of the pixels on both sides of it, or the pixel that
// the thin end of a triangle comes from. Row and column are the tile's.
inline uint64_t CutColour(const OutlineTile& tile, uint32_t row, uint32_t column, uint32_t corner,
                          uint32_t kind) {
    const uint64_t beside = SpreadChannels(tile.pixels[row][corner & 1 ? column + 1 : column - 1]);
    const uint64_t over = SpreadChannels(tile.pixels[corner & 2 ? row + 1 : row - 1][column]);
    if (kind < kRest3x1) {
        return beside + over;
    }
    return 2 * (kind < kRest1x3 ? over : beside);
}
