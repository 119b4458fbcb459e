#include "room/picture_outline.h"

#include <utility>

// Everything here works on planes of bytes that are 0 or 1, a row at a time and without branches, so that
// the compiler handles sixteen pixels at once.
namespace {

using Plane = TilePlane<uint8_t>;

// Two pixels further apart than this are of different colours. The distance is twice the difference of
// luma plus those of the two colour differences, each on a scale of 255: a step of the 6-bit palettes is
// about 150 in luma alone, one of the 9-bit and 12-bit ones 30 to 70. It tells a shade from its neighbour
// there, while steps that can't be seen are no outlines.
constexpr uint16_t kAlikeDistance = 40;

// What one corner knows of its two runs, in the bits of a byte.
constexpr uint8_t kRowStep = 1;    // the run along the row is a step: one pixel, turning away
constexpr uint8_t kColumnStep = 2; // the same along the column
constexpr uint8_t kRowOpen = 4;    // that run is not the end of a thin line
constexpr uint8_t kColumnOpen = 8;
constexpr uint32_t kRowLegShift = 4; // leg minus 1, two bits
constexpr uint32_t kColumnLegShift = 6;

// A plane of pairs has the pair's upper left member's place.
struct Pairs {
    Plane right; // alike: this pixel and the one to its right
    Plane below;
    Plane falling; // this pixel and the one to the right and below
    Plane rising;  // the pixel to the right and the one below
};

struct Work {
    Plane luma;
    Plane blueness;
    Plane redness;
    Pairs alike;
    // Diagonal pairs that belong together, and those that a run doesn't get between: the second also
    // where a crossing is undecided.
    Plane fallingJoined;
    Plane risingJoined;
    Plane fallingShut;
    Plane risingShut;
    std::array<Plane, kCorners> corners;
};

template <class Value>
constexpr uint8_t Byte(Value value) {
    return static_cast<uint8_t>(value);
}

void ReadPixels(const SourcePicture& source, int64_t left, int64_t top, OutlineTile& tile) {
    const uint32_t count = tile.columns + 2 * kTileMargin;
    for (uint32_t row = 0; row < tile.rows + 2 * kTileMargin; ++row) {
        const int64_t line = top + row - kTileMargin;
        const uint32_t* from =
            source.pixels + size_t{ClampedCoordinate(line, source.height)} * source.width;
        uint32_t* to = tile.pixels[row].data();
        if (left >= kTileMargin && left + tile.columns + kTileMargin <= source.width) {
            std::copy_n(from + left - kTileMargin, count, to);
            continue;
        }
        for (uint32_t column = 0; column < count; ++column) {
            to[column] = from[ClampedCoordinate(left + column - kTileMargin, source.width)];
        }
    }
}

// Luma with weights in 256ths, and the colour differences, halved to fit a byte.
void SplitColours(const OutlineTile& tile, Work& work) {
    for (uint32_t row = 0; row < tile.rows + 2 * kTileMargin; ++row) {
        const uint32_t* from = tile.pixels[row].data();
        for (uint32_t column = 0; column < tile.columns + 2 * kTileMargin; ++column) {
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

// Compares `rows` by `columns` pixels, each with the one so many rows and columns further.
void ComparePixels(const Work& work, uint32_t firstRow, uint32_t firstColumn, uint32_t otherRow,
                   uint32_t otherColumn, uint32_t rows, uint32_t columns, Plane& alike) {
    for (uint32_t row = 0; row < rows; ++row) {
        const auto& luma = work.luma;
        const uint8_t* lumaOne = luma[row + firstRow].data() + firstColumn;
        const uint8_t* lumaOther = luma[row + otherRow].data() + otherColumn;
        const uint8_t* blueOne = work.blueness[row + firstRow].data() + firstColumn;
        const uint8_t* blueOther = work.blueness[row + otherRow].data() + otherColumn;
        const uint8_t* redOne = work.redness[row + firstRow].data() + firstColumn;
        const uint8_t* redOther = work.redness[row + otherRow].data() + otherColumn;
        uint8_t* to = alike[row].data();
        for (uint32_t column = 0; column < columns; ++column) {
            const uint16_t distance =
                static_cast<uint16_t>(2 * (Apart(lumaOne[column], lumaOther[column]) +
                                           Apart(blueOne[column], blueOther[column]) +
                                           Apart(redOne[column], redOther[column])));
            to[column] = distance <= kAlikeDistance ? 1 : 0;
        }
    }
}

// Of two diagonals that cross: is the one a thin line and the other the surface behind it? Counted are
// the neighbours that go with the pixels of each, of four.
inline uint8_t IsThin(uint8_t kin, uint8_t otherKin) {
    const uint8_t wide = otherKin >= 3 ? 1 : 0;
    const uint8_t wider = otherKin >= Byte(kin + 2) ? 1 : 0;
    return Byte(wide & wider);
}

// A crossing has one colour on the falling diagonal and another on the rising one. The two pixels of a
// diagonal that is a thin line have few neighbours of their own colour beside them, those of the surface
// behind it have three or four of four.
void JoinDiagonals(const OutlineTile& tile, Work& work) {
    const Pairs& alike = work.alike;
    for (uint32_t row = 1; row + 2 < tile.rows + 2 * kTileMargin; ++row) {
        for (uint32_t column = 1; column + 2 < tile.columns + 2 * kTileMargin; ++column) {
            const uint8_t falling = alike.falling[row][column];
            const uint8_t rising = alike.rising[row][column];
            const uint8_t beside = Byte(alike.right[row][column] | alike.right[row + 1][column] |
                                        alike.below[row][column] | alike.below[row][column + 1]);
            const uint8_t crossing = Byte(falling & rising & (beside ^ 1));
            const uint8_t fallingKin =
                Byte(alike.right[row][column - 1] + alike.below[row - 1][column] +
                     alike.right[row + 1][column + 1] + alike.below[row + 1][column + 1]);
            const uint8_t risingKin =
                Byte(alike.right[row][column + 1] + alike.below[row - 1][column + 1] +
                     alike.right[row + 1][column - 1] + alike.below[row + 1][column]);
            const uint8_t fallingThin = IsThin(fallingKin, risingKin);
            const uint8_t risingThin = IsThin(risingKin, fallingKin);
            work.fallingJoined[row][column] = Byte(falling & ((crossing ^ 1) | fallingThin));
            work.risingJoined[row][column] = Byte(rising & ((crossing ^ 1) | risingThin));
            work.fallingShut[row][column] = Byte(falling & ((crossing & risingThin) ^ 1));
            work.risingShut[row][column] = Byte(rising & ((crossing & fallingThin) ^ 1));
        }
    }
}

// The bytes of one step along a run, for a row of pixels at once.
struct RunStep {
    const uint8_t* surfaceGoesOn; // the surface beyond the outline: is its next pixel still it?
    const uint8_t* figureEnds;    // is the next pixel on this side of the outline the surface too?
    const uint8_t* shut;          // does the surface go on crosswise to this side?
};

struct RunFacts {
    uint8_t step;
    uint8_t closed; // turns back, or too long to tell
    uint8_t open;
    uint8_t leg; // minus 1
};

// Follows a run from its corner for four pixels. A run that turns away has its middle at half its length.
// One that turns back at its far end is the flat top of a curve, and half a pixel of it stays flat.
inline RunFacts FollowRun(const std::array<RunStep, 4>& steps, uint32_t at) {
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
    // Of a run of two to four pixels: does it turn back?
    const uint8_t turnsBack =
        Byte((two & (three ^ 1) & (turnsAway(1) ^ 1)) | (three & (four ^ 1) & (turnsAway(2) ^ 1)) |
             (four & (more ^ 1) & (turnsAway(3) ^ 1)));
    return {step, Byte(turnsBack | more), Byte(step | two), Byte(two + three + four - turnsBack)};
}

// Reads the two runs that meet at one corner of every pixel. `across` and `down` are +1 or -1, from the
// pixel to its corner. The runs go the other way, along the row and along the column.
//
// Where a step ends at a pixel of a third colour, it may be that of a slanted outline with shades, or that
// of a shadow beside a square corner. The long flat side that meets it there tells the shadow.
template <int across, int down>
void FollowRuns(const OutlineTile& tile, const Work& work, Plane& corners) {
    constexpr bool onFalling = across * down > 0;
    const Pairs& alike = work.alike;
    const Plane& shut = onFalling ? work.fallingShut : work.risingShut;
    const Plane& figure = onFalling ? alike.rising : alike.falling;
    const auto at = [](const Plane& plane, uint32_t row, int rowOffset, int columnOffset) {
        return plane[static_cast<uint32_t>(static_cast<int>(row) + rowOffset)].data() +
               columnOffset;
    };
    // Offsets of the pair between a place and the next one in a direction.
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
        uint8_t* to = corners[row].data();
        for (uint32_t column = first; column < tile.columns + kTileMargin + 2; ++column) {
            const RunFacts rowRun = FollowRun(along, column);
            const RunFacts columnRun = FollowRun(upright, column);
            const uint8_t rowStep =
                Byte(rowRun.step & (sameRowOn[column] | (columnRun.closed ^ 1)));
            const uint8_t columnStep =
                Byte(columnRun.step & (sameColumnOn[column] | (rowRun.closed ^ 1)));
            to[column] = Byte(rowStep * kRowStep | columnStep * kColumnStep |
                              rowRun.open * kRowOpen | columnRun.open * kColumnOpen |
                              rowRun.leg << kRowLegShift | columnRun.leg << kColumnLegShift);
        }
    }
}

// Decides on one corner of every pixel. A step counts when the outline is also slanted at its far end;
// there it is the opposite corner of the pixel across the outline.
template <int across, int down>
void CutCorners(const OutlineTile& tile, const Work& work, OutlineCorner corner, Plane& cuts) {
    constexpr int besideColumn = across > 0 ? 0 : -1;
    constexpr int besideRow = down > 0 ? 0 : -1;
    const Plane& joined = across * down > 0 ? work.risingJoined : work.fallingJoined;
    const Plane& corners = work.corners[corner];
    const Plane& opposite = work.corners[kCorners - 1 - corner];
    for (uint32_t row = kTileMargin - 1; row < tile.rows + kTileMargin + 1; ++row) {
        const uint32_t pairRow = static_cast<uint32_t>(static_cast<int>(row) + besideRow);
        const uint8_t* joins = joined[pairRow].data() + besideColumn;
        const uint8_t* sameAcross = work.alike.right[row].data() + besideColumn;
        const uint8_t* sameDown = work.alike.below[pairRow].data();
        const uint8_t* here = corners[row].data();
        const uint8_t* farOfRow =
            opposite[static_cast<uint32_t>(static_cast<int>(row) + down)].data();
        const uint8_t* farOfColumn = opposite[row].data() + across;
        uint8_t* to = cuts[row].data();
        for (uint32_t column = kTileMargin - 1; column < tile.columns + kTileMargin + 1; ++column) {
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
            to[column] = isCut ? kind : uint8_t{kWhole};
        }
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
    // A number of its own, for the compiler can't know that the planes are not the tile's size.
    const uint32_t endColumn = tile.columns + kTileMargin;
    for (uint32_t row = kTileMargin; row < tile.rows + kTileMargin; ++row) {
        const uint8_t* own = cuts[row].data();
        const uint8_t* beside = cuts[row].data() + across;
        const uint8_t* over = cuts[static_cast<uint32_t>(static_cast<int>(row) + down)].data();
        uint8_t* to = all[row].data();
        for (uint32_t column = kTileMargin; column < endColumn; ++column) {
            const uint8_t restAlong = RestOf(beside[column], kCut3x1, kRest3x1);
            const uint8_t restUpright = RestOf(over[column], kCut1x3, kRest1x3);
            // Two that meet in one pixel leave it alone, and so does what the corner itself is cut to.
            const uint8_t rest = Byte(restAlong | restUpright);
            const uint8_t taken = Byte(own[column] | (restAlong & restUpright));
            const uint8_t isFree = taken == kWhole ? 0xFF : 0;
            to[column] = Byte(own[column] | (rest & isFree));
        }
    }
}

template <int across, int down>
void CutAndExtend(OutlineTile& tile, Work& work, OutlineCorner corner) {
    // The luma plane has done its work.
    CutCorners<across, down>(tile, work, corner, work.luma);
    ExtendCuts<across, down>(tile, work.luma, tile.cuts[corner]);
}

void AnalysePiece(const SourcePicture& source, const PiecePlace& place, OutlineTile& tile) {
    tile.columns = place.columns;
    tile.rows = place.rows;
    ReadPixels(source, place.left, place.top, tile);
    Work work;
    SplitColours(tile, work);
    const uint32_t rows = tile.rows + 2 * kTileMargin - 1;
    const uint32_t columns = tile.columns + 2 * kTileMargin - 1;
    ComparePixels(work, 0, 0, 0, 1, rows + 1, columns, work.alike.right);
    ComparePixels(work, 0, 0, 1, 0, rows, columns + 1, work.alike.below);
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
// The same once more for processors with vectors of 32 bytes; everything it calls becomes part of it.
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
