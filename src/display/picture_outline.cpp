#include "display/picture_outline.h"

#include <utility>

// Everything here works on planes of bytes that are 0 or 1, a block of a row at a time and without
// branches, so that the compiler vectorises it. A block's results go to a local array first, since the
// compiler can't know that the planes don't overlap. What the last block of a row has beyond the tile
// is never read.
namespace {

using Plane = BytePlane;

// Two pixels further apart than this count as different colours. The distance is twice the difference
// of luma plus those of the two colour differences, each on a scale of 255: a step of the 6-bit
// palettes is about 150 in luma alone, one of the 9-bit and 12-bit ones 30 to 70. So neighbouring
// shades differ there, while invisible steps make no outlines.
constexpr uint16_t kAlikeDistance = 40;

// A corner's facts about its two runs, as bits of a byte.
constexpr uint8_t kRowStep = 1;    // the run along the row is a step: one pixel, turning away
constexpr uint8_t kColumnStep = 2; // the same along the column
constexpr uint8_t kRowOpen = 4;    // the run along the row is not the end of a thin line
constexpr uint8_t kColumnOpen = 8;
constexpr uint32_t kRowLegShift = 4; // leg minus 1, two bits
constexpr uint32_t kColumnLegShift = 6;

constexpr uint32_t kLanes = 32;
constexpr uint32_t kHalfLanes = 16;

// The columns from the first one whose corners are analysed, in whole blocks.
uint32_t WorkedColumns(const OutlineTile& tile) {
    return (tile.columns + 4 + kLanes - 1) / kLanes * kLanes;
}

// The columns from the tile's first one that runs and crossings read.
uint32_t SeenColumns(const OutlineTile& tile) {
    return WorkedColumns(tile) + kHalfLanes;
}

// Writes to[column] = value(column) for `columns` columns, a number of whole blocks.
template <uint32_t lanes, class Value>
inline void FillRow(uint8_t* to, size_t first, size_t columns, const Value& value) {
    for (size_t block = first; block < first + columns; block += lanes) {
        std::array<uint8_t, lanes> results;
        for (size_t lane = 0; lane < lanes; ++lane) {
            results[lane] = value(block + lane);
        }
        std::copy_n(results.data(), lanes, to + block);
    }
}

template <class Value>
constexpr uint8_t Byte(Value value) {
    return static_cast<uint8_t>(value);
}

void ReadPixels(const SourcePicture& source, int64_t left, int64_t top, OutlineTile& tile) {
    // One more than the margin, to compare the last one with.
    const uint32_t count = SeenColumns(tile) + kHalfLanes;
    for (uint32_t row = 0; row < tile.rows + 2 * kTileMargin; ++row) {
        const int64_t line = top + row - kTileMargin;
        const uint32_t* from =
            source.pixels + size_t{ClampedCoordinate(line, source.height)} * source.width;
        uint32_t* to = tile.pixels[row].data();
        if (left >= kTileMargin && left - kTileMargin + count <= source.width) {
            std::copy_n(from + left - kTileMargin, count, to);
            continue;
        }
        for (uint32_t column = 0; column < count; ++column) {
            to[column] = from[ClampedCoordinate(left + column - kTileMargin, source.width)];
        }
    }
}

// Luma with weights in 256ths, and the colour differences, halved to fit a byte.
void SplitColours(const OutlineTile& tile, OutlineWork& work) {
    const size_t count = SeenColumns(tile) + kHalfLanes;
    for (uint32_t row = 0; row < tile.rows + 2 * kTileMargin; ++row) {
        const uint32_t* from = tile.pixels[row].data();
        for (size_t column = 0; column < count; ++column) {
            const uint32_t red = (from[column] >> 16) & 0xFF;
            const uint32_t green = (from[column] >> 8) & 0xFF;
            const uint32_t blue = from[column] & 0xFF;
            const uint32_t luma = (red * 77 + green * 150 + blue * 29) >> 8;
            work.luma[row][column] = Byte(luma);
            work.blueness[row][column] = Byte((blue + 255 - luma) >> 1);
            work.redness[row][column] = Byte((red + 255 - luma) >> 1);
        }
    }
}

inline uint16_t Apart(uint8_t one, uint8_t other) {
    return Byte(uint32_t{std::max(one, other)} - std::min(one, other));
}

// Compares `rows` by `columns` pixels, each with the one at the given offset in rows and columns.
void ComparePixels(const OutlineWork& work, uint32_t firstRow, uint32_t firstColumn,
                   uint32_t otherRow, uint32_t otherColumn, uint32_t rows, uint32_t columns,
                   Plane& alike) {
    for (uint32_t row = 0; row < rows; ++row) {
        const auto& luma = work.luma;
        const uint8_t* lumaOne = luma[row + firstRow].data() + firstColumn;
        const uint8_t* lumaOther = luma[row + otherRow].data() + otherColumn;
        const uint8_t* blueOne = work.blueness[row + firstRow].data() + firstColumn;
        const uint8_t* blueOther = work.blueness[row + otherRow].data() + otherColumn;
        const uint8_t* redOne = work.redness[row + firstRow].data() + firstColumn;
        const uint8_t* redOther = work.redness[row + otherRow].data() + otherColumn;
        FillRow<kHalfLanes>(alike[row].data(), 0, columns, [&](size_t column) {
            const uint16_t distance =
                static_cast<uint16_t>(2 * (Apart(lumaOne[column], lumaOther[column]) +
                                           Apart(blueOne[column], blueOther[column]) +
                                           Apart(redOne[column], redOther[column])));
            return Byte(distance <= kAlikeDistance ? 1 : 0);
        });
    }
}

// Whether one of two crossing diagonals is a thin line on a surface of the other's colour. Takes the number of
// matching pixels among four neighbours, for each diagonal.
inline uint8_t IsThin(uint8_t kin, uint8_t otherKin) {
    const uint8_t wide = otherKin >= 3 ? 1 : 0;
    const uint8_t wider = otherKin >= Byte(kin + 2) ? 1 : 0;
    return Byte(wide & wider);
}

// A crossing has one colour on the falling diagonal and another on the rising one. The two pixels of a
// diagonal that is a thin line have few neighbours of their own colour beside them, those of the surface
// behind it have three or four of four.
void JoinDiagonals(const OutlineTile& tile, OutlineWork& work) {
    const AlikePairs& alike = work.alike;
    using Row = std::array<uint8_t, kTileStride>;
    for (uint32_t row = 1; row + 2 < tile.rows + 2 * kTileMargin; ++row) {
        const Row& falling = alike.falling[row];
        const Row& rising = alike.rising[row];
        const Row& right = alike.right[row];
        const Row& nextRight = alike.right[row + 1];
        const Row& below = alike.below[row];
        const Row& lastBelow = alike.below[row - 1];
        const Row& nextBelow = alike.below[row + 1];
        const auto fill = [&tile](Row& to, const auto& value) {
            FillRow<kHalfLanes>(to.data(), 1, SeenColumns(tile), value);
        };
        Row crossing;
        Row fallingKin;
        Row risingKin;
        fill(crossing, [&](size_t at) {
            const int beside = right[at] | nextRight[at] | below[at] | below[at + 1];
            return Byte(falling[at] & rising[at] & (beside ^ 1));
        });
        fill(fallingKin, [&](size_t at) {
            return Byte(right[at - 1] + lastBelow[at] + nextRight[at + 1] + nextBelow[at + 1]);
        });
        fill(risingKin, [&](size_t at) {
            return Byte(right[at + 1] + lastBelow[at + 1] + nextRight[at - 1] + nextBelow[at]);
        });
        Row fallingThin;
        Row risingThin;
        fill(fallingThin,
             [&](size_t at) { return Byte(crossing[at] & IsThin(fallingKin[at], risingKin[at])); });
        fill(risingThin,
             [&](size_t at) { return Byte(crossing[at] & IsThin(risingKin[at], fallingKin[at])); });
        fill(work.fallingJoined[row],
             [&](size_t at) { return Byte(falling[at] & ((crossing[at] ^ 1) | fallingThin[at])); });
        fill(work.risingJoined[row],
             [&](size_t at) { return Byte(rising[at] & ((crossing[at] ^ 1) | risingThin[at])); });
        fill(work.fallingShut[row],
             [&](size_t at) { return Byte(falling[at] & (risingThin[at] ^ 1)); });
        fill(work.risingShut[row],
             [&](size_t at) { return Byte(rising[at] & (fallingThin[at] ^ 1)); });
    }
}

// The bytes of one step along a run, for a row of pixels at once.
struct RunStep {
    const uint8_t* surfaceGoesOn; // the surface beyond the outline: is its next pixel still it?
    const uint8_t* figureEnds;    // is the next pixel on this side of the outline also the surface?
    const uint8_t* shut;          // does the surface continue diagonally to this side?
};

struct RunFacts {
    uint8_t step;
    uint8_t closed; // turns back, or is too long to tell
    uint8_t open;
    uint8_t leg; // minus 1
};

// Follows a run from its corner for four pixels. A run that turns away has its middle at half its length.
// One that turns back at its far end is the flat top of a curve, and half a pixel of it stays flat.
inline RunFacts FollowRun(const std::array<RunStep, 4>& steps, size_t at) {
    const auto goesOn = [&](uint32_t pixel) {
        return Byte(steps[pixel].surfaceGoesOn[at] & (steps[pixel].figureEnds[at] ^ 1));
    };
    const auto turnsAway = [&](uint32_t pixel) {
        return Byte((steps[pixel].surfaceGoesOn[at] | steps[pixel].shut[at]) ^ 1);
    };
    const uint8_t two = goesOn(0);
    const uint8_t three = Byte(two & goesOn(1));
    const uint8_t four = Byte(three & goesOn(2));
    const uint8_t more = Byte(four & goesOn(3));
    const uint8_t step = turnsAway(0);
    // Whether a run of two to four pixels turns back.
    const uint8_t turnsBack =
        Byte((two & (three ^ 1) & (turnsAway(1) ^ 1)) | (three & (four ^ 1) & (turnsAway(2) ^ 1)) |
             (four & (more ^ 1) & (turnsAway(3) ^ 1)));
    return {step, Byte(turnsBack | more), Byte(step | two), Byte(two + three + four - turnsBack)};
}

// Reads the two runs that meet at one corner of every pixel. `across` and `down` are +1 or -1, from the
// pixel to its corner. The runs go away from it, along the row and along the column.
//
// A step that ends at a pixel of a third colour may belong to a slanted outline with shades, or to a
// shadow beside a square corner. A shadow is recognised by the long flat side that meets it there.
template <int across, int down>
void FollowRuns(const OutlineTile& tile, const OutlineWork& work, Plane& corners) {
    constexpr bool onFalling = across * down > 0;
    const AlikePairs& alike = work.alike;
    const Plane& shut = onFalling ? work.fallingShut : work.risingShut;
    const Plane& figure = onFalling ? alike.rising : alike.falling;
    const auto at = [](const Plane& plane, uint32_t row, int rowOffset, int columnOffset) {
        return plane[static_cast<uint32_t>(static_cast<int>(row) + rowOffset)].data() +
               columnOffset;
    };
    // Offsets of the pair of a place and the next one in a direction.
    constexpr int besideColumn = across > 0 ? 0 : -1;
    constexpr int besideRow = down > 0 ? 0 : -1;
    constexpr uint32_t first = kTileMargin - 2;
    for (uint32_t row = first; row < tile.rows + kTileMargin + 2; ++row) {
        std::array<RunStep, 4> along{};
        std::array<RunStep, 4> upright{};
        for (int pixel = 1; pixel <= 4; ++pixel) {
            const uint32_t slot = static_cast<uint32_t>(pixel - 1);
            const int backColumn = across > 0 ? -pixel : pixel - 1;
            const int backRow = down > 0 ? -pixel : pixel - 1;
            along[slot] = {at(alike.right, row, down, backColumn),
                           at(alike.below, row, besideRow, -across * pixel),
                           at(shut, row, besideRow, backColumn)};
            upright[slot] = {at(alike.below, row, backRow, across),
                             at(alike.right, row, -down * pixel, besideColumn),
                             at(shut, row, backRow, besideColumn)};
        }
        const uint8_t* sameRowOn = at(figure, row, besideRow, across > 0 ? -1 : 0);
        const uint8_t* sameColumnOn = at(figure, row, down > 0 ? -1 : 0, besideColumn);
        FillRow<kLanes>(corners[row].data(), first, WorkedColumns(tile), [&](size_t column) {
            const RunFacts rowRun = FollowRun(along, column);
            const RunFacts columnRun = FollowRun(upright, column);
            const uint8_t rowStep =
                Byte(rowRun.step & (sameRowOn[column] | (columnRun.closed ^ 1)));
            const uint8_t columnStep =
                Byte(columnRun.step & (sameColumnOn[column] | (rowRun.closed ^ 1)));
            return Byte(rowStep * kRowStep | columnStep * kColumnStep | rowRun.open * kRowOpen |
                        columnRun.open * kColumnOpen | rowRun.leg << kRowLegShift |
                        columnRun.leg << kColumnLegShift);
        });
    }
}

// Decides on one corner of every pixel. A step counts when the outline is also slanted at its far end;
// there it is the opposite corner of the pixel across the outline.
template <int across, int down>
void CutCorners(const OutlineTile& tile, const OutlineWork& work, OutlineCorner corner,
                Plane& cuts) {
    constexpr int besideColumn = across > 0 ? 0 : -1;
    constexpr int besideRow = down > 0 ? 0 : -1;
    const Plane& joined = across * down > 0 ? work.risingJoined : work.fallingJoined;
    const Plane& corners = work.corners[corner];
    const Plane& opposite = work.corners[kCorners - 1 - corner];
    constexpr uint32_t first = kTileMargin - 1;
    for (uint32_t row = first; row < tile.rows + kTileMargin + 1; ++row) {
        const uint32_t pairRow = static_cast<uint32_t>(static_cast<int>(row) + besideRow);
        const uint8_t* joins = joined[pairRow].data() + besideColumn;
        const uint8_t* sameAcross = work.alike.right[row].data() + besideColumn;
        const uint8_t* sameDown = work.alike.below[pairRow].data();
        const uint8_t* here = corners[row].data();
        const uint8_t* farOfRow =
            opposite[static_cast<uint32_t>(static_cast<int>(row) + down)].data();
        const uint8_t* farOfColumn = opposite[row].data() + across;
        FillRow<kLanes>(cuts[row].data(), first, WorkedColumns(tile), [&](size_t column) {
            const uint8_t facts = here[column];
            const uint8_t same = Byte(sameAcross[column] | sameDown[column]);
            const uint8_t isOpen = facts & (kRowOpen | kColumnOpen);
            const uint8_t rowStep = Byte(facts & kRowStep & (farOfRow[column] / kColumnOpen));
            const uint8_t columnStep =
                Byte(facts & kColumnStep & (farOfColumn[column] / (kRowOpen / 2)));
            const uint8_t rowLeg = Byte((facts >> kRowLegShift) & 3);
            const uint8_t columnLeg = Byte(facts >> kColumnLegShift);
            // A step's leg is 1, so that at most one of the two is longer.
            const uint8_t upright = columnLeg > 0 ? kCut1x2 - kCut2x1 : 0;
            const uint8_t kind = Byte(kCut1x1 + rowLeg + columnLeg + upright);
            const uint8_t step = Byte(rowStep | columnStep);
            const uint8_t isCut =
                joins[column] > same && isOpen == (kRowOpen | kColumnOpen) && step != 0;
            return isCut ? kind : uint8_t{kWhole};
        });
    }
}

// The thin end of a long triangle, of which there are two kinds, the second one longer.
inline uint8_t RestOf(uint8_t kind, uint8_t firstKind, uint8_t firstRest) {
    const uint8_t isLong = Byte(kind - firstKind) <= 1 ? 0xFF : 0;
    return Byte((kind - firstKind + firstRest) & isLong);
}

// A triangle longer than its pixel ends in the next one.
template <int across, int down>
void ExtendCuts(const OutlineTile& tile, const Plane& cuts, Plane& all) {
    for (uint32_t row = kTileMargin; row < tile.rows + kTileMargin; ++row) {
        const uint8_t* own = cuts[row].data();
        const uint8_t* beside = cuts[row].data() + across;
        const uint8_t* over = cuts[static_cast<uint32_t>(static_cast<int>(row) + down)].data();
        FillRow<kLanes>(all[row].data(), kTileMargin, WorkedColumns(tile), [&](size_t column) {
            const uint8_t restAlong = RestOf(beside[column], kCut3x1, kRest3x1);
            const uint8_t restUpright = RestOf(over[column], kCut1x3, kRest1x3);
            // No rest is cut where two meet, or where the corner's own cut lies.
            const uint8_t rest = Byte(restAlong | restUpright);
            const uint8_t taken = Byte(own[column] | (restAlong & restUpright));
            const uint8_t isFree = taken == kWhole ? 0xFF : 0;
            return Byte(own[column] | (rest & isFree));
        });
    }
}

template <int across, int down>
void CutAndExtend(OutlineTile& tile, OutlineWork& work, OutlineCorner corner) {
    // The luma plane is no longer needed.
    CutCorners<across, down>(tile, work, corner, work.luma);
    ExtendCuts<across, down>(tile, work.luma, tile.cuts[corner]);
}

void AnalysePiece(const SourcePicture& source, const PiecePlace& place, OutlineTile& tile) {
    tile.columns = place.columns;
    tile.rows = place.rows;
    ReadPixels(source, place.left, place.top, tile);
    OutlineWork& work = tile.work;
    SplitColours(tile, work);
    const uint32_t rows = tile.rows + 2 * kTileMargin - 1;
    const uint32_t columns = SeenColumns(tile);
    ComparePixels(work, 0, 0, 0, 1, rows + 1, columns, work.alike.right);
    ComparePixels(work, 0, 0, 1, 0, rows, columns, work.alike.below);
    ComparePixels(work, 0, 0, 1, 1, rows, columns, work.alike.falling);
    ComparePixels(work, 0, 1, 1, 0, rows, columns, work.alike.rising);
    JoinDiagonals(tile, work);
    FollowRuns<-1, -1>(tile, work, work.corners[kUpperLeft]);
    FollowRuns<1, -1>(tile, work, work.corners[kUpperRight]);
    FollowRuns<-1, 1>(tile, work, work.corners[kLowerLeft]);
    FollowRuns<1, 1>(tile, work, work.corners[kLowerRight]);
    CutAndExtend<-1, -1>(tile, work, kUpperLeft);
    CutAndExtend<1, -1>(tile, work, kUpperRight);
    CutAndExtend<-1, 1>(tile, work, kLowerLeft);
    CutAndExtend<1, 1>(tile, work, kLowerRight);
}

#if defined(__x86_64__) && defined(__GNUC__)
// The same for processors with vectors of 32 bytes; everything it calls is inlined.
[[gnu::target("avx2"), gnu::flatten]] void
AnalysePieceWide(const SourcePicture& source, const PiecePlace& place, OutlineTile& tile) {
    AnalysePiece(source, place, tile);
}
#else
constexpr auto AnalysePieceWide = AnalysePiece;
#endif

} // namespace

void AnalyseOutlines(const SourcePicture& source, const PiecePlace& place, OutlineTile& tile,
                     VectorForm form) {
    if (form == VectorForm::kWide) {
        AnalysePieceWide(source, place, tile);
    } else {
        AnalysePiece(source, place, tile);
    }
}
