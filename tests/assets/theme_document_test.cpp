// The document for those who write a theme: its example is a theme, and it names all that a theme can say.
#include "assets/theme_fixture.h"
#include <gtest/gtest.h>

#include <string>

namespace {

std::string Document() {
    return TextOfFile(std::filesystem::path(OMBRELUNE_SOURCE_FOLDER) / "docs/THEMES.md");
}

} // namespace

TEST(ThemeDocument, ItsExampleIsAThemeThatCanBeUsed) {
    LoadedTheme(); // for its fonts and images
    const std::string document = Document();
    const std::string fence = "```xml\n<?xml";
    const size_t start = document.find(fence);
    ASSERT_NE(start, std::string::npos);
    const size_t from = document.find("<?xml", start);
    const size_t end = document.find("```", from);
    ASSERT_NE(end, std::string::npos);
    CGhostTheme theme;
    theme.ParseTheme(document.substr(from, end - from));
    EXPECT_EQ(theme.Names().size(), 3u);
    GhostButtonStyle button;
    ASSERT_TRUE(theme.GetStyle(L"BUTTON", button));
    EXPECT_EQ(button.states[0].bg.type, GhostFill::kBitmapSmartHorizontal);
    EXPECT_EQ(button.states[0].bg.rect, (GUI_EDGES{8, 0, 8, 0}));
    EXPECT_NE(button.states[0].bg.bitmap, nullptr);
    EXPECT_EQ(button.states[1].bg.type, GhostFill::kGradientVertical);
    EXPECT_EQ(button.states[1].border.type, GhostFrame::kRoundedColour);
    EXPECT_EQ(button.states[1].textColour, 0xFFF3EAD3);
    EXPECT_NE(button.states[1].font, nullptr);
    ASSERT_TRUE(theme.GetStyle(L"MESSAGEBOX_BUTTON", button));
    EXPECT_EQ(button.states[1].textColour, 0xFFFFFFFF);
    EXPECT_EQ(button.states[1].bg.colour2, 0xFF2F3870);
    EXPECT_NE(button.states[0].bg.bitmap, nullptr);
}

TEST(ThemeDocument, NamesEveryElementFillFrameAndState) {
    const std::string document = Document();
    for (const char* const word : {"textbox",
                                   "button",
                                   "edit",
                                   "list",
                                   "listview",
                                   "scrollbar",
                                   "droplist",
                                   "border",
                                   "font",
                                   "rect",
                                   "number",
                                   "color",
                                   "none",
                                   "color_hor",
                                   "color_ver",
                                   "bitmap",
                                   "bitmap_flipx",
                                   "bitmap_flipy",
                                   "bitmap_smartfillhor",
                                   "bitmap_smartfillver",
                                   "bitmap_stretch",
                                   "bitmap_repeaty",
                                   "bitmap_repeatxy",
                                   "rounded_color",
                                   "rounded_colorinset",
                                   "user",
                                   "normal",
                                   "hot",
                                   "pressed",
                                   "disabled",
                                   "readonly",
                                   "bg",
                                   "item_normal",
                                   "item_hot",
                                   "item_selected",
                                   "item2_normal",
                                   "item2_hot",
                                   "item2_selected",
                                   "ver_width",
                                   "ver_arrowbuttonheight",
                                   "ver_thumbminheight",
                                   "hor_height",
                                   "hor_arrowbuttonwidth",
                                   "hor_thumbminwidth",
                                   "ver_top",
                                   "ver_mid",
                                   "ver_bottom",
                                   "xoffset",
                                   "yoffset",
                                   "align",
                                   "val"}) {
        EXPECT_NE(document.find("`" + std::string(word) + "`"), std::string::npos) << word;
    }
}
