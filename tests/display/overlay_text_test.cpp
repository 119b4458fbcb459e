#include "display/display_fixture.h"
#include "display/gl.h"
#include "display/overlay_letters.h"
#include "display/overlay_text.h"
#include "display/screen_reader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <set>

namespace {

std::string LetterPattern(uint32_t letter) {
    std::string pattern;
    for (uint32_t row = 0; row < kLetterRows; ++row) {
        for (uint32_t column = 0; column < kLetterColumns; ++column) {
            pattern += LetterDot(letter, column, row) ? '#' : '.';
        }
    }
    return pattern;
}

TEST(OverlayLetters, EveryLetterDiffersFromEveryOther) {
    std::set<std::string> patterns;
    for (uint32_t letter = 0; letter < kLetterCount; ++letter) {
        EXPECT_TRUE(patterns.insert(LetterPattern(letter)).second)
            << "code " << letter + static_cast<uint32_t>(kFirstLetter);
    }
}

TEST(OverlayLetters, OnlyTheSpaceIsEmpty) {
    for (uint32_t letter = 0; letter < kLetterCount; ++letter) {
        EXPECT_EQ(LetterPattern(letter).find('#') == std::string::npos, letter == 0) << letter;
    }
}

TEST(OverlayLetters, CapitalsAndDigitsAreOnTheLineAndSevenRowsHigh) {
    const std::string_view upright = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    for (const char c : upright) {
        const auto letter = static_cast<uint32_t>(c - kFirstLetter);
        const std::string pattern = LetterPattern(letter);
        EXPECT_NE(pattern.substr(0, 5), ".....") << c;
        EXPECT_NE(pattern.substr(30, 5), ".....") << c;
        EXPECT_EQ(pattern.substr(35), "..........") << c << " hangs below the line";
    }
}

TEST(OverlayTextMeasure, CountsCellsLessTheLastBlanks) {
    const struct {
        std::string_view text;
        int scale;
        TEXT_SIZE size;
    } rows[] = {
        {"",           1,  {0, 0}  },
        {"A",          1,  {5, 9}  },
        {" ",          1,  {5, 9}  },
        {"AB",         1,  {11, 9} },
        {"AB",         2,  {22, 18}},
        {"A\nBCD",     1,  {17, 19}},
        {"BCD\nA",     3,  {51, 57}},
        {"\xC3\xA9",   1,  {5, 9}  }, // one character of two bytes
        {"a\xE2\x82\xAC"
         "b", 1,
         {17, 9}                   }, // three characters, one of three bytes
        {"A",          0,  {5, 9}  },
        {"A",          -3, {5, 9}  },
    };
    for (const auto& row : rows) {
        const TEXT_SIZE size = MeasureOverlayText(row.text, row.scale);
        EXPECT_EQ(size.width, row.size.width) << row.text;
        EXPECT_EQ(size.height, row.size.height) << row.text;
    }
}

constexpr uint32_t kGround = 0xFF406080;
constexpr uint32_t kYellow = 0xFFFFE000;

// The ground behind a bar of 140 / 255 black: 64, 96 and 128 times 115 / 255.
bool IsBar(uint32_t pixel) {
    const auto isNear = [pixel](int shift, int value) {
        return std::abs(static_cast<int>(pixel >> shift & 0xFF) - value) <= 1;
    };
    return isNear(16, 29) && isNear(8, 43) && isNear(0, 58);
}

// The screen as text: '#' the letters' colour, 'o' black, '-' the bar, '.' the ground.
class OverlayScreen : public DisplayTest {
protected:
    void SetUp() override {
        DisplayTest::SetUp();
        ASSERT_TRUE(text.Init());
    }

    void Prepare(uint32_t ground) {
        ClearScreen(ground);
        Ortho2D(128, 96);
    }

    static std::vector<std::string> Screen(uint32_t width, uint32_t height) {
        // Ortho2D covers the whole window, so its top rows are read.
        const std::vector<uint32_t> pixels = ReadScreen(128, 96);
        std::vector<std::string> lines(height);
        for (uint32_t y = 0; y < height; ++y) {
            for (uint32_t x = 0; x < width; ++x) {
                const uint32_t pixel = pixels[y * 128 + x];
                lines[y] += pixel == kYellow   ? '#'
                            : pixel == kBlack  ? 'o'
                            : pixel == kGround ? '.'
                            : IsBar(pixel)     ? '-'
                                               : '?';
            }
        }
        return lines;
    }

    static bool AllGround(uint32_t ground) {
        const std::vector<uint32_t> pixels = ReadScreen(128, 96);
        return std::all_of(pixels.begin(), pixels.end(),
                           [ground](uint32_t pixel) { return pixel == ground; });
    }

    OverlayText text; // destroyed before the context
};

TEST_F(OverlayScreen, LetterIsDrawnAtItsPlaceWithADarkRimOnADarkBar) {
    Prepare(kGround);
    text.Draw("L", 3, 3, 1, kYellow);
    const std::vector<std::string> expected = {
        "............", //
        ".---------..", //
        ".-ooo-----..", //
        ".-o#o-----..", //
        ".-o#o-----..", //
        ".-o#o-----..", //
        ".-o#o-----..", //
        ".-o#o-----..", //
        ".-o#ooooo-..", //
        ".-o#####o-..", //
        ".-ooooooo-..", //
        ".---------..", //
        ".---------..", //
        ".---------..", //
        "............", //
    };
    EXPECT_EQ(Screen(12, 15), expected);
}

TEST_F(OverlayScreen, ScaleMakesEveryDotASquare) {
    Prepare(kGround);
    text.Draw("T", 6, 6, 3, kYellow);
    const std::vector<std::string> lines = Screen(30, 42);
    // T: a bar of five dots at the top, a stem in the middle column down to the seventh row.
    for (uint32_t y = 0; y < 42; ++y) {
        for (uint32_t x = 0; x < 30; ++x) {
            const bool bar = y >= 6 && y < 9 && x >= 6 && x < 21;
            const bool stem = y >= 6 && y < 27 && x >= 12 && x < 15;
            EXPECT_EQ(lines[y][x] == '#', bar || stem) << x << ',' << y;
        }
    }
    EXPECT_EQ(lines[0], "---------------------------...")
        << "two dots on the left, two on the right";
    EXPECT_EQ(lines[3], "---ooooooooooooooooooooo---...") << "the rim above";
    EXPECT_EQ(lines[38], "---------------------------...") << "two dots below the ninth row";
    EXPECT_EQ(lines[39], "..............................");
}

TEST_F(OverlayScreen, BarsOfLinesTouchWithoutOverlapping) {
    Prepare(kGround);
    text.Draw("..\n\n.\n.", 2, 2, 1, kYellow);
    const std::vector<std::string> lines = Screen(16, 46);
    // The last column of a line is right of its letters and shows only the bar.
    std::string firstBar;
    std::string otherBars;
    for (const std::string& line : lines) {
        firstBar += line[14];
        otherBars += line[8];
    }
    const auto run = [](char c, size_t length) { return std::string(length, c); };
    // Two lines of text are wide at column 14 and 8; the second line has no letters and no bar.
    EXPECT_EQ(firstBar, run('-', 11) + run('.', 35));
    EXPECT_EQ(otherBars.substr(11), run('.', 10) + run('-', 22) + run('.', 3));
}

TEST_F(OverlayScreen, LettersFollowSixDotsApartAndLinesTen) {
    Prepare(kGround);
    text.Draw("|_\n_|", 1, 1, 1, kYellow);
    const std::vector<std::string> lines = Screen(14, 20);
    for (uint32_t y = 0; y < 20; ++y) {
        for (uint32_t x = 0; x < 14; ++x) {
            // The bar: middle column, rows 0 to 6. The underscore: five columns of row 7.
            const bool firstBar = x == 1 + 2 && y >= 1 && y < 8;
            const bool firstLow = x >= 1 + 6 && x < 1 + 6 + 5 && y == 1 + 7;
            const bool secondLow = x >= 1 && x < 1 + 5 && y == 1 + 10 + 7;
            const bool secondBar = x == 1 + 6 + 2 && y >= 1 + 10 && y < 1 + 10 + 7;
            EXPECT_EQ(lines[y][x] == '#', firstBar || firstLow || secondLow || secondBar)
                << x << ',' << y;
        }
    }
}

TEST_F(OverlayScreen, CharacterWithoutALetterShowsABox) {
    Prepare(kGround);
    text.Draw("\xC3\xA9", 1, 1, 1, kYellow);
    const std::vector<std::string> lines = Screen(14, 11);
    EXPECT_EQ(lines[1], "o#####o-......");
    EXPECT_EQ(lines[4].substr(1, 1), "#");
    EXPECT_EQ(lines[4].substr(5, 1), "#");
    EXPECT_EQ(lines[7], "o#####o-......");
    Prepare(kGround);
    text.Draw("\x01", 1, 1, 1, kYellow);
    EXPECT_EQ(Screen(14, 11), lines);
    Prepare(kGround);
    text.Draw("\x7F", 1, 1, 1, kYellow);
    EXPECT_EQ(Screen(14, 11), lines);
}

TEST_F(OverlayScreen, OpacityLetsTheGroundThrough) {
    Prepare(kWhite);
    text.Draw("I", 1, 1, 1, 0x80FF0000);
    const std::vector<uint32_t> pixels = ReadScreen(128, 96);
    const auto channel = [&](uint32_t x, uint32_t y, int shift) {
        return static_cast<int>(pixels[y * 128 + x] >> shift & 0xFF);
    };
    // The bar leaves white 185: its opacity is 140 * 128 / 255 = 70 of 255. What is drawn at 128 / 255
    // over it keeps 185 * 127 / 255 = 92 of that. The stem of the I is column 2.
    EXPECT_NEAR(channel(3, 4, 16), 128 + 92, 1);
    EXPECT_NEAR(channel(3, 4, 8), 92, 1);
    EXPECT_NEAR(channel(3, 4, 0), 92, 1);
    for (const int shift : {16, 8, 0}) {
        EXPECT_NEAR(channel(2, 4, shift), 92, 1) << "the rim";
        EXPECT_NEAR(channel(7, 4, shift), 185, 1) << "the bar";
        EXPECT_EQ(channel(8, 4, shift), 255) << "beside the text";
    }
}

TEST_F(OverlayScreen, TextWithoutOpacityChangesNothing) {
    Prepare(kGround);
    text.Draw("Hello", 10, 10, 2, 0x00FFFFFF);
    EXPECT_TRUE(AllGround(kGround));
}

TEST_F(OverlayScreen, TextOverTheEdgeIsCut) {
    Prepare(kGround);
    text.Draw("L", -2, -3, 1, kYellow);
    // Only columns 2 and up of the L are left: the foot in row 6, which is row 3 of the screen.
    const std::vector<std::string> expected = {
        "-----.", //
        "-----.", //
        "oooo-.", //
        "###o-.", //
        "oooo-.", //
        "-----.", //
    };
    EXPECT_EQ(Screen(6, 6), expected);
    Prepare(kGround);
    text.Draw("far away", 4000, 10, 1, kYellow);
    text.Draw("far away", -4000, 10, 1, kYellow);
    EXPECT_TRUE(AllGround(kGround));
}

TEST_F(OverlayScreen, NothingIsDrawnBeforeInit) {
    const OverlayText unmade;
    Prepare(kGround);
    unmade.Draw("A", 3, 3, 2, kYellow);
    EXPECT_TRUE(AllGround(kGround));
}

TEST_F(OverlayScreen, BlendingAndColourAreAsBeforeAfterwards) {
    Prepare(kGround);
    text.Draw("A", 3, 3, 2, 0x80FF00FF);
    EXPECT_EQ(glIsEnabled(GL_BLEND), GL_FALSE);
    EXPECT_EQ(glIsEnabled(GL_TEXTURE_2D), GL_FALSE);
    GLfloat colour[4]{};
    glGetFloatv(GL_CURRENT_COLOR, colour);
    EXPECT_THAT(colour, testing::Each(1.0f));
}

} // namespace
