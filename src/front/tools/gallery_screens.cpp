// The program's screens as they are laid out, made of controls that do nothing: what matters is how the
// styles look beside each other, in the sizes that they are used in.
#include "base/text.h"
#include "base/version.h"
#include "front/tools/gallery_pages.h"
#include "front/tools/gallery_parts.h"
#include "gui/check_box.h"
#include "gui/drop_list.h"
#include "gui/list_view.h"
#include "gui/slider.h"
#include "gui/window.h"
#include "gui/window_ex.h"

#include <array>
#include <string>

namespace {

using Window = CGhostWindowEx;

// The bar with the logo, and the area below it.
GHOSTMANAGER_WINDOW* Frame(GHOSTMANAGER_WINDOW* root) {
    const int32_t width = root->width;
    GHOSTMANAGER_WINDOW* const bar = GalleryWindow(root, L"TOPAREA", L"", 32, {0, 0, width, 60});
    GalleryWindow(bar, L"OMBRELUNE_LOGO", L"", 32, {16, 6, 48, 48});
    GalleryText(bar, L"TEXT_TITLE", L"Ombrelune", {76, 16, 300, 28});
    GalleryText(bar, L"TEXT_RIGHT", WideFromUtf8(ProgramVersion()) + L"  ",
                {width - 220, 17, 200, 25});
    return GalleryWindow(root, L"BATTLEMAIN", L"", Window::kFrame | 32,
                         {0, 60, width, root->height - 60});
}

} // namespace

void BuildMenuPage(GHOSTMANAGER_WINDOW* root) {
    GHOSTMANAGER_WINDOW* const area = Frame(root);
    const int32_t width = area->width;
    const int32_t height = area->height;
    GalleryText(area, L"SECTIONTEXT",
                L"The moon has no dark side, only one that is not plugged in.",
                {(width - 680) / 2, 0, 680, 25});
    constexpr std::array<const wchar_t*, 5> kMenu = {L"PLAY GAMES", L"BENCHMARK", L"OPTIONS",
                                                     L"CREDITS", L"QUIT"};
    for (size_t i = 0; i < kMenu.size(); ++i) {
        GalleryButton(area, L"BUTTON", kMenu[i],
                      i == 0 ? GalleryState::kFocused : GalleryState::kNormal,
                      {(width - 800) / 2 + static_cast<int32_t>(i) * 160, 35, 140, 25});
    }
    GalleryText(area, L"LARGEHEADERTEXT", L"Member Login", {20, 70, 350, 25});
    GalleryText(area, L"WINDOWOVERLAY", L"", {20, 95, 350, 180});
    GalleryText(area, L"LARGEHEADERTEXT", L"News", {390, 70, width - 410, 25});
    GalleryText(area, L"WINDOWOVERLAY", L"Connecting to server to collect news...",
                {390, 95, width - 410, height - 115});
}

namespace {

struct GAME {
    const wchar_t* name;
    const wchar_t* year;
    int32_t mark; // in the strip of the games' marks
};
constexpr GAME kGames[] = {
    {L"Luciole",                 L"1989", 0},
    {L"Bells under the Harbour", L"1991", 0},
    {L"Moth Patrol",             L"1988", 1},
    {L"Night Ferry",             L"1990", 0},
    {L"Paper Lamps",             L"1992", 1},
    {L"homebrew-test-2",         L"",     2},
    {L"Tin Harbour",             L"1987", 1},
    {L"damaged dump",            L"",     3},
    {L"The Long Way Down",       L"1993", 0},
    {L"Weather Station",         L"1989", 0},
};

// As many rows as a large collection has.
void BuildGames(GHOSTMANAGER_WINDOW* parent) {
    constexpr int32_t kRows = 20000;
    constexpr int32_t kKnownMarks = 2;
    auto* const games = new CGhostListView(parent, 0, L"GAMELIST", 0, {false, 15, 136, 714, 310});
    games->AddColumn(L"Name", 616);
    games->AddColumn(L"Year", 80, kAlignRight);
    games->Reserve(kRows);
    for (int32_t i = 0; i < kRows; ++i) {
        const GAME& game = kGames[static_cast<size_t>(i) % std::size(kGames)];
        const int32_t row = games->AddRow();
        games->SetCell(row, 0, game.name, game.mark);
        games->SetCell(row, 1, game.year);
        for (int32_t column = 0; column < 2; ++column) {
            games->Cell(row, column)->colourSet = game.mark < kKnownMarks ? 0 : 1;
        }
    }
    games->SetSelected(3, false);
}

} // namespace

void BuildBrowserPage(GHOSTMANAGER_WINDOW* root) {
    GHOSTMANAGER_WINDOW* const area = Frame(root);
    GalleryButton(area, L"BUTTON", L"BACK", GalleryState::kNormal, {15, 15, 100, 25});
    GalleryButton(area, L"LEFTSEL", L"", GalleryState::kHot, {216, 40, 40, 40});
    GalleryWindow(area, L"MEGADRIVE", L"", 0, {276, 12, 192, 96});
    GalleryButton(area, L"RIGHTSEL", L"", GalleryState::kNormal, {488, 40, 40, 40});
    GalleryText(area, L"TEXT_CENTER", L"Genesis / Megadrive (MD)", {216, 110, 312, 20});
    BuildGames(area);

    GHOSTMANAGER_WINDOW* const options =
        GalleryWindow(area, L"GAMEOPTIONS", L"", Window::kFrame, {15, 456, 714, 140});
    GalleryText(options, L"TEXT_RIGHT", L"Console:", {0, 10, 70, 25});
    GalleryDropList(options, L"SMS JAPANESE", {80, 10, 150, 25});
    GalleryText(options, L"TEXT_RIGHT", L"BIOS:", {230, 10, 60, 25});
    GalleryDropList(options, L"None", {300, 10, 380, 25});
    GalleryText(options, L"TEXT_RIGHT", L"INPUT 1:", {0, 45, 70, 25});
    GalleryDropList(options, L"Control Pad", {80, 45, 260, 25});
    GalleryText(options, L"TEXT_RIGHT", L"INPUT 2:", {345, 45, 70, 25});
    GalleryDropList(options, L"Light Phaser", {420, 45, 260, 25});
    new CGhostCheckBox(options, 0, L"CHECKBOX", L"3D Glasses", 0, {false, 80, 80, 110, 25});
    auto* const chip =
        new CGhostCheckBox(options, 0, L"CHECKBOX", L"FM Chip", 0, {false, 190, 80, 110, 25});
    chip->SetChecked(true);
    GalleryButton(area, L"PLAYOFFLINE", L"START GAME", GalleryState::kNormal, {745, 560, 170, 36});
    GalleryButton(area, L"HOSTGAME", L"HOST GAME", GalleryState::kNormal, {925, 560, 160, 36});
    GalleryButton(area, L"JOINGAME", L"JOIN GAME", GalleryState::kDisabled, {1095, 560, 160, 36});

    constexpr std::array<const wchar_t*, 5> kTabs = {L"COVERS", L"REVIEWS", L"HINTS", L"TRIVIA",
                                                     L"METAINFO"};
    for (size_t i = 0; i < kTabs.size(); ++i) {
        GalleryButton(area, L"BUTTON3", kTabs[i],
                      i == 0   ? GalleryState::kPressed
                      : i == 2 ? GalleryState::kHot
                               : GalleryState::kNormal,
                      {745 + static_cast<int32_t>(i) * 102, 40, 102, 28});
    }
    GalleryWindow(area, L"3DBOXBG", L"", 0, {745, 68, 510, 310});
    GHOSTMANAGER_WINDOW* const pictures =
        GalleryWindow(area, L"3DBOX_SSHOTSBG", L"", 0, {745, 386, 510, 160});
    GalleryWindow(pictures, L"SSHOT", L"", 0, {8, 5, 200, 150});
}

void BuildOptionsPage(GHOSTMANAGER_WINDOW* root) {
    GHOSTMANAGER_WINDOW* const area = Frame(root);
    GalleryButton(area, L"BUTTON", L"BACK", GalleryState::kNormal, {15, 15, 100, 25});
    GalleryText(area, L"SECTIONTEXT", L"OPTIONS", {300, 10, 680, 25});
    constexpr std::array<const wchar_t*, 4> kTabs = {L"General", L"Graphics", L"Sound", L"Input"};
    for (size_t i = 0; i < kTabs.size(); ++i) {
        GalleryButton(area, L"OPTIONBUTTON", kTabs[i],
                      i == 2 ? GalleryState::kPressed : GalleryState::kNormal,
                      {360 + static_cast<int32_t>(i) * 138, 53, 130, 25});
    }
    GHOSTMANAGER_WINDOW* const panel =
        GalleryWindow(area, L"OPTIONWINDOW", L"", Window::kFrame, {200, 92, 864, 440});
    struct ROW {
        const wchar_t* label;
        const wchar_t* value;
    };
    constexpr ROW kRows[] = {
        {L"Sample Rate:",    L"48000"    },
        {L"Sound Quality:",  L"Very Good"},
        {L"Cut Off Filter:", L"Enabled"  },
    };
    int32_t y = 24;
    for (const ROW& row : kRows) {
        GalleryText(panel, L"TEXT_RIGHT", row.label, {100, y, 260, 25});
        GalleryDropList(panel, row.value, {372, y, 260, 25});
        y += 36;
    }
    struct SLIDER {
        const wchar_t* label;
        const wchar_t* style;
        float value;
    };
    constexpr SLIDER kSliders[] = {
        {L"Volume:",     L"PROGRESSBAR_VOLUME", 0.8f },
        {L"Bass Boost:", L"PROGRESSBAR",        0.5f },
        {L"Mid Boost:",  L"PROGRESSBAR",        0.35f},
        {L"High Boost:", L"PROGRESSBAR",        0.6f },
    };
    for (const SLIDER& row : kSliders) {
        GalleryText(panel, L"TEXT_RIGHT", row.label, {100, y, 260, 25});
        auto* const slider =
            new CGhostSlider(panel, 0, row.style, 0.0f, 100.0f, {false, 372, y, 260, 25});
        slider->SetValue(row.value);
        y += 36;
    }
    GalleryText(panel, L"TEXT_CENTER", L"Some of these settings require a restart to become active",
                {0, 380, 848, 20});
}
