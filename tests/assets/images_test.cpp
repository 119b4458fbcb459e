// The images, fonts and documents that come with the theme.
#include "gui/bitmap.h"

#include "assets/theme_fixture.h"
#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace {

const std::filesystem::path kSources = OMBRELUNE_SOURCE_FOLDER;

// The names that a theme may use, in the order of the table.
constexpr std::string_view kNames[] = {"#ARCADE",
                                       "#BATTLEMAIN_BORDER_BOTTOM",
                                       "#BATTLEMAIN_BORDER_LEFT",
                                       "#BATTLEMAIN_BORDER_RIGHT",
                                       "#BATTLEMAIN_BORDER_TOP",
                                       "#BUTTON00",
                                       "#BUTTON01",
                                       "#BUTTON02",
                                       "#BUTTON03",
                                       "#BUTTON2_00",
                                       "#BUTTON2_01",
                                       "#BUTTON2_02",
                                       "#BUTTON3_00",
                                       "#BUTTON3_01",
                                       "#BUTTON3_02",
                                       "#CHECKBOX00",
                                       "#CHECKBOX02",
                                       "#CHECKBOX03",
                                       "#CONTROLS_ARCADE",
                                       "#CONTROLS_GAMEGEAR",
                                       "#CONTROLS_MASTERSYSTEM",
                                       "#CONTROLS_MEGADRIVE",
                                       "#CONTROLS_NES",
                                       "#CURSOR",
                                       "#CURSORHOT",
                                       "#CURSORWE",
                                       "#DROPLISTBUTTON00",
                                       "#DROPLISTBUTTON01",
                                       "#DROPLISTBUTTON02",
                                       "#GAMEGEAR",
                                       "#HEADER0",
                                       "#HEADER1",
                                       "#HOSTGAME",
                                       "#IMAGESET_COMMON",
                                       "#IMAGESET_GAMELIST",
                                       "#ITEMBG",
                                       "#ITEMBGSEL",
                                       "#JOINGAME",
                                       "#MAINBG",
                                       "#MASTERSYSTEM",
                                       "#MEGADRIVE",
                                       "#NES",
                                       "#OPTIONBUTTON00",
                                       "#OPTIONBUTTON02",
                                       "#PLAYOFFLINE",
                                       "#OMBRELUNE_LOGO",
                                       "#SCROLL_BG",
                                       "#SCROLL_THUMB00",
                                       "#SCROLL_VARROW_TOP00",
                                       "#SCROLL_VARROW_TOP01",
                                       "#SEL_LEFT00",
                                       "#SEL_LEFT01",
                                       "#SEL_LEFT02",
                                       "#TOPBG",
                                       "#WINDOW_BORDER_BOTTOM",
                                       "#WINDOW_BORDER_LEFT",
                                       "#WINDOW_BORDER_RIGHT",
                                       "#WINDOW_BORDER_TOP",
                                       "#WINDOW_BORDER_TOP2"};

// All matches of the first group.
std::set<std::string> Found(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
        found.insert((*at)[1]);
    }
    return found;
}

} // namespace

TEST(Images, TheTableHasEveryNameInItsOrder) {
    std::vector<std::string_view> names;
    for (const GUI_IMAGE_ROW& row : BuiltInImages()) {
        names.push_back(row.name);
    }
    EXPECT_EQ(names, std::vector<std::string_view>(std::begin(kNames), std::end(kNames)));
}

TEST(Images, EveryOneIsAPictureOfWholeUnits) {
    for (const GUI_IMAGE_ROW& row : BuiltInImages()) {
        std::vector<uint32_t> pixels;
        uint32_t width = 0;
        uint32_t height = 0;
        ASSERT_TRUE(LoadEmbeddedImage(row.png, pixels, width, height)) << row.name;
        const auto unit = static_cast<uint32_t>(row.pixelsPerUnit);
        EXPECT_EQ(width % unit, 0u) << row.name;
        EXPECT_EQ(height % unit, 0u) << row.name;
        size_t seen = 0;
        for (const uint32_t pixel : pixels) {
            seen += pixel >> 24 != 0 ? 1 : 0;
        }
        EXPECT_GT(seen, 0u) << row.name << " is empty";
    }
}

TEST(Images, CursorsAreOf64UnitsWithTheHotSpotInTheMiddle) {
    LoadedTheme();
    for (const char* const name : {"#CURSOR", "#CURSORHOT", "#CURSORWE"}) {
        const GUI_BITMAP* const bitmap = LoadThemeBitmap(name);
        ASSERT_NE(bitmap, nullptr) << name;
        EXPECT_EQ(bitmap->width, 64) << name;
        EXPECT_EQ(bitmap->height, 64) << name;
        const auto middle = static_cast<size_t>(bitmap->pixelWidth * 33 + 33);
        EXPECT_GT(bitmap->pixels[middle] >> 24, 0x80u) << name;
    }
}

TEST(Images, EveryNameInTheThemeIsInTheTable) {
    const auto named = Found(std::string(BuiltInTheme()), "<file name=\"(#[^\"]*)\"");
    ASSERT_GT(named.size(), 30u);
    const std::set<std::string> table(std::begin(kNames), std::end(kNames));
    for (const std::string& name : named) {
        EXPECT_TRUE(table.contains(name)) << name;
    }
}

TEST(Images, TheDocumentNamesThemAll) {
    const std::string document = TextOfFile(kSources / "docs/THEMES.md");
    const auto named = Found(document, "`(#[A-Z0-9_]+)`");
    EXPECT_EQ(named, std::set<std::string>(std::begin(kNames), std::end(kNames)));
}

// A request that another one of the same face was lowered to would get the other's font, whichever
// comes first; so no size of the theme is one that a font reaches in place of the size asked for.
TEST(Fonts, EverySizeOfTheThemeIsTheOneAskedFor) {
    LoadedTheme();
    const std::string theme(BuiltInTheme());
    const std::regex font("<font name=\"([A-Za-z]+)\" size=\"([0-9]+)\"");
    size_t count = 0;
    for (std::sregex_iterator at(theme.begin(), theme.end(), font), end; at != end; ++at, ++count) {
        const int32_t asked = std::stoi((*at)[2]);
        CGhostFont* const made = CGhostFontManager::Get().GetFont((*at)[1].str(), asked);
        ASSERT_NE(made, nullptr) << (*at)[0];
        const int32_t height = made->Ascender() - made->Descender();
        EXPECT_LE(height, asked) << (*at)[0];
        EXPECT_GE(height, asked - 1) << (*at)[0];
    }
    EXPECT_GT(count, 20u);
}

// As when it is typed: the accents and signs of the languages of western Europe.
TEST(Fonts, EveryFaceHasTheLettersThatTitlesNeed) {
    LoadedTheme();
    for (const FONT_ASSET& face : BuiltInFonts()) {
        CGhostFont* const font = CGhostFontManager::Get().GetFont(face.name, 18);
        ASSERT_NE(font, nullptr) << face.name;
        for (const wchar_t letter : std::wstring(L"AZaz09ÄÖÜäöüßéèêçñøåœ–—×…’“”")) {
            EXPECT_GT(font->Advance(letter), 0)
                << face.name << " lacks " << static_cast<int>(letter);
        }
    }
}

// The header's chunk ends at byte 33; the next one then says that it is 2 GB long.
TEST(Images, AChunkLongerThanTheFileIsRefused) {
    const auto good = BuiltInImages()[0].png;
    std::vector<uint8_t> png(good.begin(), good.end());
    constexpr size_t kSecondChunk = 33;
    png.at(kSecondChunk) = 0x7F;
    std::vector<uint32_t> pixels;
    uint32_t width = 0;
    uint32_t height = 0;
    EXPECT_FALSE(LoadEmbeddedImage(png, pixels, width, height));
    EXPECT_TRUE(pixels.empty());
}
