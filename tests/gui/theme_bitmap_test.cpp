// Bitmaps in the theme: names of images, and what a fill does without one.
#include "gui/bitmap.h"
#include "gui/theme.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace {

// A PNG of 8 by 4 pixels, two units: the left one red, the right one blue with an alpha of 0x80.
constexpr uint8_t kPng[] = {
    0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44, 0x52,
    0x00, 0x00, 0x00, 0x08, 0x00, 0x00, 0x00, 0x04, 0x08, 0x06, 0x00, 0x00, 0x00, 0xB3, 0xCD, 0x7E,
    0xF0, 0x00, 0x00, 0x00, 0x15, 0x49, 0x44, 0x41, 0x54, 0x78, 0xDA, 0x63, 0xF8, 0xCF, 0xC0, 0xF0,
    0x1F, 0x19, 0x03, 0x51, 0x03, 0x0A, 0xA6, 0xBD, 0x02, 0x00, 0x90, 0x7E, 0x37, 0xD1, 0x23, 0xD3,
    0x4D, 0x9C, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};

constexpr GUI_IMAGE_ROW kRows[] = {
    {"#BUTTON00", kPng      },
    {"#DAMAGED",  {kPng, 40}},
    {"#BUTTON01", kPng      },
};

class ThemeBitmapsTest : public testing::Test {
protected:
    void SetUp() override { SetThemeImages(kRows); }
    void TearDown() override { SetThemeImages({}); }

    GhostTexture Fill(const std::string& records, const wchar_t* name) {
        theme.ParseTheme("<?xml version='1.0'?><theme>" + records + "</theme>");
        GhostTextStyle style;
        EXPECT_TRUE(theme.GetStyle(name, style));
        return style.bg;
    }
    CGhostTheme theme;
};

using ThemeBitmaps = ThemeBitmapsTest;

const std::string kStretched =
    "<textbox name='A'><texture type='bitmap_stretch'><file name='#BUTTON00'/></texture></textbox>";

} // namespace

TEST_F(ThemeBitmaps, NamesAreComparedWhole) {
    EXPECT_NE(LoadThemeBitmap("#BUTTON00"), nullptr);
    for (const char* const name :
         {"#BUTTON0", "#BUTTON000", "BUTTON00", "#button00", "#", "", " #BUTTON00", "#BUTTON00 "}) {
        EXPECT_EQ(LoadThemeBitmap(name), nullptr) << name;
    }
    EXPECT_EQ(LoadThemeBitmap("#DAMAGED"), nullptr);
}

TEST_F(ThemeBitmaps, PixelsAreArgbAndFourByFourAreAUnit) {
    const GUI_BITMAP* const bitmap = LoadThemeBitmap("#BUTTON00");
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap->width, 2);
    EXPECT_EQ(bitmap->height, 1);
    EXPECT_EQ(bitmap->pixels, (std::vector<uint32_t>{0xFFFF0000, 0x800000FF}));
}

TEST_F(ThemeBitmaps, AnImageIsDecodedOnceHoweverOftenItIsNamed) {
    EXPECT_EQ(LoadThemeBitmap("#BUTTON00"), LoadThemeBitmap("#BUTTON00"));
    EXPECT_NE(LoadThemeBitmap("#BUTTON00"), LoadThemeBitmap("#BUTTON01"));
    EXPECT_EQ(LoadThemeBitmap("#DAMAGED"), nullptr);
    EXPECT_EQ(LoadThemeBitmap("#DAMAGED"), nullptr);
}

// What a row says of its pixels counts, and another size is made of all of them.
TEST_F(ThemeBitmaps, ARowSaysHowManyPixelsAUnitHas) {
    static const std::vector<uint8_t> copy(std::begin(kPng), std::end(kPng));
    static const GUI_IMAGE_ROW fine[] = {
        {"#FINE", copy, 2}
    };
    SetThemeImages(fine);
    const GUI_BITMAP* const bitmap = LoadThemeBitmap("#FINE");
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap->width, 4);
    EXPECT_EQ(bitmap->height, 2);
    const GUI_BITMAP* const small = LoadThemeBitmap("#FINE", 1, 1);
    ASSERT_NE(small, nullptr);
    EXPECT_EQ(small->width, 1);
    // Half of it opaque red, half blue with about half the alpha.
    EXPECT_EQ(small->pixels, (std::vector<uint32_t>{0xC0AA0055}));
    EXPECT_EQ(LoadThemeBitmap("#FINE", 1, 1), small);
    EXPECT_EQ(LoadThemeBitmap("#FINE"), bitmap);
    EXPECT_EQ(LoadThemeBitmap("#NOWHERE", 1, 1), nullptr);
}

// The file may go after the first call, and no density costs anything of another.
TEST_F(ThemeBitmaps, AnotherDensityIsMadeOfWhatWasDecodedOnce) {
    static std::vector<uint8_t> copy(std::begin(kPng), std::end(kPng));
    static const GUI_IMAGE_ROW rows[] = {
        {"#KEPT", copy}
    };
    SetThemeImages(rows);
    const GUI_BITMAP* const bitmap = LoadThemeBitmap("#KEPT");
    ASSERT_NE(bitmap, nullptr);
    const std::vector<uint32_t> before = bitmap->pixels;
    std::fill(copy.begin(), copy.end(), uint8_t{0});
    RefitThemeBitmaps(2.0);
    EXPECT_EQ(bitmap->pixelWidth, 4);
    EXPECT_EQ(bitmap->pixels,
              (std::vector<uint32_t>{0xFFFF0000, 0xFFFF0000, 0x800000FF, 0x800000FF, 0xFFFF0000,
                                     0xFFFF0000, 0x800000FF, 0x800000FF}));
    RefitThemeBitmaps(0.5);
    EXPECT_EQ(bitmap->pixels, (std::vector<uint32_t>{0xC0AA0055}));
    RefitThemeBitmaps(1.0);
    EXPECT_EQ(bitmap->pixels, before);
}

// A name means what the present table says.
TEST_F(ThemeBitmaps, AnotherTableHasImagesOfItsOwn) {
    const GUI_BITMAP* const before = LoadThemeBitmap("#BUTTON00");
    static const std::vector<uint8_t> copy(std::begin(kPng), std::end(kPng));
    static const GUI_IMAGE_ROW other[] = {
        {"#BUTTON00", copy}
    };
    SetThemeImages(other);
    EXPECT_NE(LoadThemeBitmap("#BUTTON00"), before);
}

TEST_F(ThemeBitmaps, AFillKeepsTheBitmapThatItInherits) {
    const GhostTexture fill =
        Fill(kStretched + "<textbox name='B' use='A'><texture><rect left='1'/></texture></textbox>",
             L"B");
    EXPECT_EQ(fill.type, GhostFill::kBitmapStretch);
    EXPECT_NE(fill.bitmap, nullptr);
    EXPECT_EQ(fill.rect.left, 1);
}

// What asks for a bitmap and finds none paints nothing, though the record began with one.
TEST_F(ThemeBitmaps, AFillThatFindsNoFilePaintsNothingWhateverItInherits) {
    for (const char* const texture :
         {"<texture type='bitmap'><file name='#NOWHERE'/></texture>",
          "<texture type='bitmap'><file name='BUTTON00'/></texture>", "<texture type='bitmap'/>",
          "<texture><file name='#BUTTON0'/></texture>",
          "<texture type='bitmap_repeatxy'><file name='#DAMAGED'/></texture>"}) {
        const GhostTexture fill =
            Fill(kStretched + "<textbox name='B' use='A'>" + texture + "</textbox>", L"B");
        EXPECT_EQ(fill.type, GhostFill::kNone) << texture;
        EXPECT_EQ(fill.bitmap, nullptr) << texture;
    }
}

TEST_F(ThemeBitmaps, ABetterFileAfterAMissingOneCounts) {
    const GhostTexture fill =
        Fill("<textbox name='A'><texture type='bitmap'><file name='#NOWHERE'/>"
             "<file name='#BUTTON01'/></texture></textbox>",
             L"A");
    EXPECT_EQ(fill.type, GhostFill::kBitmap);
    EXPECT_NE(fill.bitmap, nullptr);
}

TEST_F(ThemeBitmaps, EveryTypeHasItsNumber) {
    struct ROW {
        const char* type;
        int number;
    };
    constexpr ROW kTypes[] = {
        {"color",               0 },
        {"color_hor",           1 },
        {"color_ver",           2 },
        {"none",                3 },
        {"bitmap",              4 },
        {"bitmap_flipy",        5 },
        {"bitmap_flipx",        6 },
        {"bitmap_smartfillhor", 7 },
        {"bitmap_smartfillver", 8 },
        {"bitmap_stretch",      9 },
        {"bitmap_repeaty",      11},
        {"bitmap_repeatxy",     12},
    };
    for (const ROW& row : kTypes) {
        const GhostTexture fill = Fill(std::string("<textbox name='A'><texture type='") + row.type +
                                           "'><file name='#BUTTON00'/></texture></textbox>",
                                       L"A");
        EXPECT_EQ(static_cast<int>(fill.type), row.number) << row.type;
    }
}
