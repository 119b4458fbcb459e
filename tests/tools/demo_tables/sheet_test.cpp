// Sheets: what the drawings of a picture become, and what is refused with which place.

#include "demo_tables/sheet.h"
#include "support/temporary_folder.h"
#include "tools/demo_tables/hand_made_png.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

// Two cells: a letter F in colours 1 and 3, and lines in colour 2.
const std::vector<std::string> kTwoCells = {
    "1111111022222222", "1333331000000000", "1311110022222222", "1333310000000000",
    "1311110022222222", "1310000000000000", "1110000022222222", "0000000000000000",
};

class Sheet : public ::testing::Test {
protected:
    void Picture(const std::vector<std::string>& rows, unsigned colours = 64) {
        static_cast<void>(folder.Write("a.png", HandMadePng(rows, colours)));
    }
    // The text of the tables, or "" and `error`.
    std::string Convert(const std::string& sheet) {
        const auto file = folder.Write("a.sheet", sheet);
        SHEET_RESULT result;
        error.clear();
        return ConvertSheet(file, result, error) ? result.text : "";
    }

    TemporaryFolder folder;
    std::string error;
};

TEST_F(Sheet, WritesTwoPlanesForTheNes) {
    Picture(kTwoCells);
    // The low bits of the F are all of it, the high ones where the 3 is.
    EXPECT_EQ(Convert("picture a.png\nformat nes\ndrawing f 0 0 1 1\ndrawing lines 1 0 1 1\n"),
              "f:\n    .byte 254, 254, 252, 252, 252, 224, 224, 0, 0, 124, 64, 120, 64, 64, 0, 0\n"
              "lines:\n    .byte 0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 255, 0, 255, 0, 255, 0\n");
}

TEST_F(Sheet, WritesTheDrawingsInItsOwnOrder) {
    Picture(kTwoCells);
    const std::string text =
        Convert("picture a.png\nformat nes\ndrawing lines 1 0 1 1\ndrawing f 0 0 1 1\n");
    EXPECT_LT(text.find("lines:"), text.find("f:"));
}

TEST_F(Sheet, WritesFourBitsAPixelForTheMegaDrive) {
    Picture({"0123456789abcdef", "0000000000000000", "0000000000000000", "0000000000000000",
             "0000000000000000", "0000000000000000", "0000000000000000", "f00000000000000f"});
    EXPECT_EQ(Convert("picture a.png\nformat mega-drive\ndrawing ramp 0 0 2 1\n"),
              "ramp:\n"
              "    .byte 0, 2, 0, 1, 1, 35, 69, 103, 137, 171, 205, 239, 0, 0, 0, 0\n"
              "    .byte 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0\n"
              "    .byte 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0\n"
              "    .byte 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 240, 0, 0, 0\n"
              "    .byte 0, 0, 0, 15\n");
}

TEST_F(Sheet, GoesDownTheColumnsForTallSprites) {
    std::vector<std::string> rows;
    for (int row = 0; row < 16; ++row) {
        rows.emplace_back(row < 8 ? "0000000011111111" : "2222222233333333");
    }
    Picture(rows);
    // Upper left 0, lower left 2, upper right 1, lower right 3.
    EXPECT_EQ(Convert("picture a.png\nformat nes-tall\ndrawing - 0 0 2 2\n"),
              "    .byte 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0\n"
              "    .byte 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255\n"
              "    .byte 255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0\n"
              "    .byte 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, "
              "255, 255\n");
}

const std::vector<std::string> kSlash = {"00000001", "00000010", "00000100", "00001000",
                                         "00010000", "00100000", "01000000", "10000000"};

TEST_F(Sheet, WritesABitAPixelOnceOrTwice) {
    Picture(kSlash);
    EXPECT_EQ(Convert("picture a.png\nformat bits\ndrawing - 0 0 1 1\n"),
              "    .byte 1, 2, 4, 8, 16, 32, 64, 128\n");
    EXPECT_EQ(Convert("picture a.png\nformat bits twice\ndrawing - 0 0 1 1\n"),
              "    .byte 1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128\n");
}

TEST_F(Sheet, WritesALetterAPixelAndInCEndsTheText) {
    Picture(kSlash);
    const std::string assembly = Convert("picture a.png\nformat letters .#\ndrawing s 0 0 1 1\n");
    EXPECT_THAT(assembly,
                ::testing::StartsWith("s:\n    .byte 46, 46, 46, 46, 46, 46, 46, 35, 46,"));
    EXPECT_THAT(assembly, EndsWith("35, 46, 46, 46, 46, 46, 46, 46\n"));
    const std::string c =
        Convert("picture a.png\nlanguage c\nformat letters .#\ndrawing s 0 0 1 1\n");
    EXPECT_THAT(
        c, ::testing::StartsWith("const char s[] = {\n    46, 46, 46, 46, 46, 46, 46, 35, 46,"));
    EXPECT_THAT(c, EndsWith("35, 46, 46, 46, 46, 46, 46, 46,\n    0,\n};\n"));
}

TEST_F(Sheet, TakesFurtherPalettesForThoseOfTheMachine) {
    Picture({"4567ba98", "00000000", "00000000", "00000000", "00000000", "00000000", "00000000",
             "00000000"});
    // 0, 1, 2, 3 of the second palette, then 3, 2, 1, 0 of the third.
    EXPECT_EQ(Convert("picture a.png\nformat nes\npalettes 3\ndrawing - 0 0 1 1\n"),
              "    .byte 90, 0, 0, 0, 0, 0, 0, 0, 60, 0, 0, 0, 0, 0, 0, 0\n");
}

TEST_F(Sheet, FillsUpToAMultiple) {
    Picture(kSlash);
    EXPECT_EQ(Convert("picture a.png\nformat bits\ndrawing - 0 0 1 1\nfill 10\nfill 5\n"),
              "    .byte 1, 2, 4, 8, 16, 32, 64, 128\n    .byte 0, 0\n");
}

TEST_F(Sheet, LeavesCommentsOut) {
    Picture(kSlash);
    EXPECT_NE(Convert("# A slash.\npicture a.png # here\nformat bits\n\ndrawing - 0 0 1 1\n"), "");
}

TEST_F(Sheet, NamesThePixelWhoseColourThereIsNot) {
    auto rows = kTwoCells;
    rows[5][9] = '4';
    Picture(rows);
    EXPECT_EQ(Convert("picture a.png\nformat nes\ndrawing - 0 0 2 1\n"), "");
    EXPECT_THAT(error, HasSubstr("a.png: pixel 9, 5: colour 4, and the last one allowed is 3"));
}

TEST_F(Sheet, NamesAPixelThatIsInNoDrawing) {
    Picture(kTwoCells);
    EXPECT_EQ(Convert("picture a.png\nformat nes\ndrawing - 0 0 1 1\n"), "");
    EXPECT_THAT(error, HasSubstr("a.png: pixel 8, 0: is in no drawing"));
}

TEST_F(Sheet, RefusesInvalidPictures) {
    const std::string sheet = "picture a.png\nformat nes\ndrawing - 0 0 1 1\n";
    EXPECT_EQ(Convert(sheet), "");
    EXPECT_THAT(error, HasSubstr("a.png"));
    static_cast<void>(folder.Write("a.png", "no picture at all"));
    EXPECT_EQ(Convert(sheet), "");
    EXPECT_THAT(error, HasSubstr("a.png"));
    static_cast<void>(folder.Write("a.png", PngWithoutPalette(8, 8)));
    EXPECT_EQ(Convert(sheet), "");
    EXPECT_THAT(error, HasSubstr("a.png: the picture has no palette"));
    Picture({"0000000", "0000000"});
    EXPECT_EQ(Convert(sheet), "");
    EXPECT_THAT(error, HasSubstr("a.png: width and height must be multiples of 8 pixels"));
    auto cut = HandMadePng(kTwoCells);
    cut.resize(cut.size() - 30);
    static_cast<void>(folder.Write("a.png", cut));
    EXPECT_EQ(Convert(sheet), "");
    EXPECT_THAT(error, HasSubstr("a.png"));
}

struct FAULTY {
    const char* sheet;
    const char* error;
};

TEST_F(Sheet, NamesTheLineThatIsWrong) {
    Picture(kTwoCells);
    const FAULTY rows[] = {
        {"paint a.png\n",                                                     "a.sheet:1: unknown word 'paint'"            },
        {"picture a.png\npicture a.png\n",                                    "a.sheet:2: one picture is wanted"           },
        {"# One.\n\nformat snes\n",                                           "a.sheet:3: the formats are"                 },
        {"format letters\n",                                                  "a.sheet:1: the formats are"                 },
        {"palettes 0\n",                                                      "a.sheet:1: palettes are 1 to 8"             },
        {"language basic\n",                                                  "a.sheet:1: the languages are"               },
        {"picture a.png\ndrawing - 0 0 1 1\n",                                "a.sheet:2: picture and format come before"  },
        {"picture a.png\nformat nes\ndrawing - 0 0 1\n",                      "a.sheet:3: a drawing has a name"            },
        {"picture a.png\nformat nes\ndrawing - 0 0 0 1\n",                    "a.sheet:3: column, line"                    },
        {"picture a.png\nformat nes\ndrawing - 0 x 1 1\n",                    "a.sheet:3: column, line"                    },
        {"picture a.png\nformat nes\ndrawing - 1 0 2 1\n",
         "a.sheet:3: the drawing leaves the picture, which has 2 by 1 cells"                                               },
        {"picture a.png\nformat nes\ndrawing a-b 0 0 1 1\n",                  "a.sheet:3: 'a-b' is no name"                },
        {"picture a.png\nformat nes\ndrawing 1a 0 0 1 1\n",                   "a.sheet:3: '1a' is no name"                 },
        {"picture a.png\nformat nes\ndrawing a 0 0 1 1\ndrawing a 1 0 1 1\n",
         "a.sheet:4: a second drawing 'a'"                                                                                 },
        {"picture a.png\nformat nes\nlanguage c\ndrawing - 0 0 1 1\n",
         "a.sheet:4: in C every drawing has a name"                                                                        },
        {"picture a.png\nformat nes\ndrawing - 0 0 2 1\nfill 0\n",            "a.sheet:4: fill has"                        },
        {"picture a.png\nformat nes\n",                                       "a.sheet:2: the sheet ends without a drawing"},
    };
    for (const FAULTY& row : rows) {
        EXPECT_EQ(Convert(row.sheet), "") << row.sheet;
        EXPECT_THAT(error, HasSubstr(row.error)) << row.sheet;
    }
}

} // namespace
