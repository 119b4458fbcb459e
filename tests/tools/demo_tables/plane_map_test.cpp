// Pictures of whole planes: which cells are kept, and the map that names them.

#include "demo_tables/plane_map.h"
#include "support/temporary_folder.h"
#include "tools/demo_tables/hand_made_png.h"

namespace {

using ::testing::HasSubstr;

// A cell whose left half and upper half both tell how it is turned: 1 at its corner, then 2 beside it.
constexpr const char* kCorner = "12000000";
constexpr const char* kMirrored = "00000021";
constexpr const char* kEmpty = "00000000";

std::vector<std::string> Rows(const std::vector<std::vector<const char*>>& cells) {
    std::vector<std::string> rows(8);
    for (const auto& cell : cells) {
        for (size_t row = 0; row < 8; ++row) {
            rows[row] += cell[row];
        }
    }
    return rows;
}

std::vector<const char*> Top(const char* row) {
    return {row, kEmpty, kEmpty, kEmpty, kEmpty, kEmpty, kEmpty, kEmpty};
}

std::vector<const char*> Bottom(const char* row) {
    return {kEmpty, kEmpty, kEmpty, kEmpty, kEmpty, kEmpty, kEmpty, row};
}

TEST(PlaneMap, KeepsACellOnceHoweverItIsTurned) {
    const TemporaryFolder folder;
    const auto file = folder.Write(
        "hill.png", HandMadePng(Rows({Top(kEmpty), Top(kCorner), Top(kMirrored), Bottom(kCorner),
                                      Bottom(kMirrored), Top("ffffffff"), Top(kCorner)})));
    PLANE_MAP map;
    std::string error;
    ASSERT_TRUE(ConvertPlane(file, map, error)) << error;
    EXPECT_EQ(map.text,
              "hillTiles:\n"
              "    .byte 18, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0\n"
              "    .byte 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0\n"
              "    .byte 255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0\n"
              "    .byte 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0\n"
              "hillTilesEnd:\n"
              "hillMap:\n" // empty, 1, mirrored 1, upside down 1, both, 2, 1
              "    .byte 0, 0, 0, 1, 8, 1, 16, 1, 24, 1, 0, 2, 0, 1\n");
    EXPECT_EQ(map.counts, "hillCells = 2\n");
}

TEST(PlaneMap, RefusesASeventeenthColour) {
    const TemporaryFolder folder;
    const auto file = folder.Write("hill.png", HandMadePng(Rows({Bottom("000g0000")})));
    PLANE_MAP map;
    std::string error;
    EXPECT_FALSE(ConvertPlane(file, map, error));
    EXPECT_THAT(error,
                HasSubstr("hill.png: pixel 3, 7: colour 16, and the last one allowed is 15"));
}

TEST(PlaneMap, RefusesMoreCellsThanAMapCanName) {
    // 2,048 cells that differ: eleven pixels of each tell its number.
    const TemporaryFolder folder;
    std::vector<std::string> rows(8 * 32, std::string(8 * 64, '0'));
    for (size_t cell = 0; cell < 2048; ++cell) {
        for (size_t bit = 0; bit < 11; ++bit) {
            const size_t x = cell % 64 * 8 + bit % 8;
            const size_t y = cell / 64 * 8 + bit / 8;
            rows[y][x] = (cell >> bit & 1) != 0 ? '2' : '1';
        }
    }
    const auto file = folder.Write("hill.png", HandMadePng(rows));
    PLANE_MAP map;
    std::string error;
    EXPECT_FALSE(ConvertPlane(file, map, error));
    EXPECT_THAT(error, HasSubstr("hill.png: 2048 different cells, and a map can name 2047"));
}

} // namespace
