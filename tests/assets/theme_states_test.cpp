// The states of a control are told apart without their colours: by brightness, edges or letters.
#include "gui/surface.h"
#include "gui/text.h"

#include "assets/theme_fixture.h"
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <vector>

namespace {

constexpr uint32_t kPanel = 0xFF12162E;
constexpr std::array<const char*, 4> kStates = {"normal", "hot", "pressed", "disabled"};

struct SAMPLE {
    const wchar_t* name;
    const wchar_t* caption;
    GUI_RECT place; // of the fill
};

constexpr SAMPLE kButtons[] = {
    {L"BUTTON",             L"PLAY",   {0, 0, 140, 25}},
    {L"MESSAGEBOX_BUTTON",  L"Ok",     {0, 0, 100, 25}},
    {L"BUTTON2",            L"Menu",   {0, 0, 140, 28}},
    {L"BUTTON3",            L"COVERS", {0, 0, 102, 28}},
    {L"OPTIONBUTTON",       L"Sound",  {0, 0, 130, 25}},
    {L"PLAYOFFLINE",        L"START",  {0, 0, 170, 36}},
    {L"HOSTGAME",           L"HOST",   {0, 0, 170, 36}},
    {L"JOINGAME",           L"JOIN",   {0, 0, 170, 36}},
    {L"LEFTSEL",            L"",       {0, 0, 40, 40} },
    {L"RIGHTSEL",           L"",       {0, 0, 40, 40} },
    {L"CHECKBOX",           L"",       {0, 0, 25, 25} },
    {L"KEYBOARD_KEY",       L"q",      {0, 0, 52, 28} },
    {L"WINDOW_TITLE_MIN",   L"\u2013", {0, 0, 20, 20} },
    {L"WINDOW_TITLE_MAX",   L"+",      {0, 0, 20, 20} },
    {L"WINDOW_TITLE_CLOSE", L"\u00D7", {0, 0, 20, 20} },
};

// Perceived brightness, 0 to 255.
int Grey(uint32_t argb) {
    return static_cast<int>(
        ((argb >> 16 & 0xFF) * 299 + (argb >> 8 & 0xFF) * 587 + (argb & 0xFF) * 114) / 1000);
}

// The state as its control paints it, with the letters always in one colour.
CGhostSurface Painted(GhostTextStyle style, const SAMPLE& sample) {
    style.textColour = 0xFFFFFFFF;
    style.textRect.left = std::min(style.textRect.left, sample.place.width / 2);
    CGhostSurface surface;
    EXPECT_TRUE(surface.Create(sample.place, 1.0));
    surface.FillRect(sample.place, kPanel);
    PaintText(surface, style, sample.caption, sample.place);
    PaintFrame(surface, style.border);
    return surface;
}

// Pixels whose brightness differs so much that it is seen.
int Different(CGhostSurface a, CGhostSurface b) {
    constexpr int kSeen = 12;
    int count = 0;
    for (int32_t i = 0; i < a.PixelWidth() * a.PixelHeight(); ++i) {
        count += std::abs(Grey(a.Pixels()[i]) - Grey(b.Pixels()[i])) >= kSeen ? 1 : 0;
    }
    return count;
}

std::string Narrow(const wchar_t* name) {
    const std::wstring wide(name);
    return {wide.begin(), wide.end()};
}

} // namespace

// A line of one unit around the control is the least that shows a state: 2 (width + height) pixels. A
// sixth of it is asked for, since a sign as small as a dash has no more.
TEST(ThemeStates, DifferInBrightnessOrShapeAndNotOnlyInColour) {
    for (const SAMPLE& sample : kButtons) {
        GhostButtonStyle style;
        ASSERT_TRUE(LoadedTheme().GetStyle(sample.name, style)) << Narrow(sample.name);
        const int least = (sample.place.width + sample.place.height) / 3;
        for (size_t a = 0; a < kStates.size(); ++a) {
            for (size_t b = a + 1; b < kStates.size(); ++b) {
                EXPECT_GE(
                    Different(Painted(style.states[a], sample), Painted(style.states[b], sample)),
                    least)
                    << Narrow(sample.name) << ": " << kStates[a] << " and " << kStates[b];
            }
        }
    }
}

TEST(ThemeStates, ADisabledBoxShowsWhetherItIsChecked) {
    GhostButtonStyle style;
    ASSERT_TRUE(LoadedTheme().GetStyle(L"CHECKBOX", style));
    const SAMPLE box{
        L"CHECKBOX", L"", {0, 0, 25, 25}
    };
    EXPECT_GE(Different(Painted(style.states[3], box), Painted(style.states[4], box)), 15);
    EXPECT_GE(Different(Painted(style.states[2], box), Painted(style.states[4], box)), 100);
}

namespace {

// Every two of the states differ in at least `least` pixels.
void ExpectAllDifferent(const std::vector<GhostTextStyle>& states, const SAMPLE& sample, int least,
                        const std::string& what) {
    for (size_t a = 0; a < states.size(); ++a) {
        for (size_t b = a + 1; b < states.size(); ++b) {
            EXPECT_GE(Different(Painted(states[a], sample), Painted(states[b], sample)), least)
                << what << ": " << a << " and " << b;
        }
    }
}

} // namespace

TEST(ThemeStates, FieldsDifferInBrightness) {
    const SAMPLE place{
        L"", L"", {0, 0, 120, 25}
    };
    GhostEditStyle edit;
    ASSERT_TRUE(LoadedTheme().GetStyle(L"EDIT", edit));
    ExpectAllDifferent({edit.states.begin(), edit.states.end()}, place, 72, "EDIT");
    GhostDropListStyle drop;
    ASSERT_TRUE(LoadedTheme().GetStyle(L"DROPLIST", drop));
    const SAMPLE arrow{
        L"", L"", {0, 0, 25, 25}
    };
    ExpectAllDifferent({drop.button.states.begin(), drop.button.states.begin() + 4}, arrow, 16,
                       "DROPLIST's arrow");
}

// A row that is disabled differs from a usable one in its letters alone.
TEST(ThemeStates, RowsOfEveryListDifferInBrightness) {
    const SAMPLE row{
        L"", L"", {0, 0, 120, 28}
    };
    const auto expectRows = [&](const GhostListStyle& list, const std::string& what) {
        ExpectAllDifferent({list.itemNormal, list.itemHot, list.itemSelected}, row, 1000, what);
        ExpectAllDifferent({list.item2Normal, list.item2Hot, list.item2Selected}, row, 1000,
                           what + " item2");
    };
    for (const wchar_t* const name : {L"LIST", L"POPUPMENU"}) {
        GhostListStyle list;
        ASSERT_TRUE(LoadedTheme().GetStyle(name, list));
        expectRows(list, Narrow(name));
    }
    for (const wchar_t* const name : {L"LISTVIEW", L"GAMELIST", L"INPUTLIST", L"CREDITLIST"}) {
        GhostListViewStyle table;
        ASSERT_TRUE(LoadedTheme().GetStyle(name, table));
        expectRows(table.list, Narrow(name));
        const auto& heads = table.header.states;
        ExpectAllDifferent({heads.begin(), heads.begin() + 3}, row, 1000,
                           Narrow(name) + "'s headings");
        const auto& edit = table.edit.states; // of a cell, which is never read-only
        ExpectAllDifferent({edit.begin(), edit.begin() + 2}, row, 1000, Narrow(name) + "'s edit");
    }
}

// As its control paints a part: the second fill over the first, within the margins.
TEST(ThemeStates, PartsOfAScrollbarDifferInBrightness) {
    GhostScrollbarStyle bar;
    ASSERT_TRUE(LoadedTheme().GetStyle(L"WINDOW_SCROLLBAR", bar));
    struct PART {
        const char* name;
        const GhostButtonStyle& style;
        int32_t height;
    };
    const PART parts[] = {
        {"upper arrow", bar.verTop,    bar.verArrowButtonHeight},
        {"lower arrow", bar.verBottom, bar.verArrowButtonHeight},
        {"thumb",       bar.verMid,    bar.verThumbMinHeight   },
    };
    for (const PART& part : parts) {
        const GUI_RECT place{0, 0, bar.verWidth, part.height};
        const auto painted = [&](size_t state) {
            const GhostTextStyle& look = part.style.states[state];
            CGhostSurface surface;
            EXPECT_TRUE(surface.Create(place, 1.0));
            surface.FillRect(place, kPanel);
            PaintFill(surface, look.bg, place);
            PaintFill(surface, look.bg2,
                      {look.textRect.left, look.textRect.top,
                       place.width - look.textRect.left - look.textRect.right,
                       place.height - look.textRect.top - look.textRect.bottom});
            return surface;
        };
        EXPECT_GE(Different(painted(0), painted(1)), 12) << part.name << ", hot";
        EXPECT_GE(Different(painted(0), painted(2)), 12) << part.name << ", pressed";
        EXPECT_GE(Different(painted(1), painted(2)), 12) << part.name << ", hot and pressed";
    }
}
