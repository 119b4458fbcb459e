// The pages of what a theme is made of: images, and its records one by one.
#include "front/assets.h"
#include "front/tools/gallery_pages.h"
#include "front/tools/gallery_parts.h"
#include "gui/bitmap.h"
#include "gui/list.h"
#include "gui/list_rows.h"
#include "gui/list_view.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "gui/window_ex.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int32_t kTop = 56;     // of what is below the title
constexpr int32_t kBottom = 720; // of the page
constexpr int32_t kLeft = 24;
constexpr int32_t kRight = 1256;

std::wstring Wide(std::string_view name) {
    return {name.begin(), name.end()};
}

// Kept, as the theme's store keeps each copy until the program ends.
const GUI_BITMAP* ImageOf(std::string_view name) {
    static std::map<std::string_view, const GUI_BITMAP*> images;
    const auto [at, isNew] = images.try_emplace(name, nullptr);
    if (isNew) {
        at->second = LoadThemeBitmap(name);
    }
    return at->second;
}

// Two tones, so that transparent parts and dark edges are seen.
void PaintChecks(CGhostSurface& surface) {
    constexpr int32_t kCheck = 8;
    for (int32_t y = 0; y < surface.Height(); y += kCheck) {
        for (int32_t x = 0; x < surface.Width(); x += kCheck) {
            const bool light = (x + y) / kCheck % 2 == 0;
            surface.FillRect({x, y, kCheck, kCheck}, light ? 0xFF30365C : 0xFF282D50);
        }
    }
}

void ImageSample(GHOSTMANAGER_WINDOW* root, std::string_view name, const GUI_BITMAP* bitmap,
                 int32_t x, int32_t y) {
    GalleryLabel(root, Wide(name), x, y);
    new GalleryCanvas(root, {x, y + 18, bitmap->width, bitmap->height},
                      [bitmap](CGhostSurface& surface) {
                          PaintChecks(surface);
                          surface.Blit(*bitmap, {0, 0, bitmap->width, bitmap->height}, 0, 0);
                      });
}

constexpr int32_t kLargeFrom = 96; // units of height

} // namespace

// ---- Images.

// Row by row, each as high as the highest in it.
void BuildImagesPage(GHOSTMANAGER_WINDOW* root) {
    constexpr int32_t kColumns = 6;
    constexpr int32_t kWide = (kRight - kLeft) / kColumns;
    GalleryTitle(root, L"Faces and icons");
    int32_t column = 0;
    int32_t y = kTop;
    int32_t highest = 0;
    for (const GUI_IMAGE_ROW& row : BuiltInImages()) {
        const GUI_BITMAP* const bitmap = ImageOf(row.name);
        if (bitmap == nullptr || bitmap->height >= kLargeFrom) {
            continue;
        }
        // A strip of images is wider than a column.
        const int32_t needed = (bitmap->width + kWide - 1) / kWide;
        if (column + needed > kColumns) {
            column = 0;
            y += 18 + highest + 8;
            highest = 0;
        }
        ImageSample(root, row.name, bitmap, kLeft + column * kWide, y);
        highest = std::max(highest, bitmap->height);
        column += needed;
    }
}

namespace {

// A picture in a size that is not its own.
void PictureSample(GHOSTMANAGER_WINDOW* root, std::string_view name, const GUI_RECT& place) {
    const GUI_BITMAP* const bitmap = LoadThemeBitmap(name, place.width, place.height);
    if (bitmap != nullptr) {
        new GalleryCanvas(root, place, [bitmap](CGhostSurface& surface) {
            surface.Blit(*bitmap, {0, 0, bitmap->width, bitmap->height}, 0, 0);
        });
    }
}

} // namespace

void BuildPicturesPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Pictures");
    int32_t x = kLeft;
    for (const char* const name : {"#MASTERSYSTEM", "#GAMEGEAR", "#ARCADE", "#MEGADRIVE", "#NES"}) {
        const GUI_BITMAP* const bitmap = ImageOf(name);
        if (bitmap != nullptr) {
            GalleryLabel(root, Wide(name), x, kTop);
            new GalleryCanvas(
                root, {x, kTop + 18, bitmap->width, bitmap->height},
                [bitmap](CGhostSurface& surface) {
                    surface.FillRect({0, 0, surface.Width(), surface.Height()}, 0xFF12162E);
                    surface.Blit(*bitmap, {0, 0, bitmap->width, bitmap->height}, 0, 0);
                });
        }
        x += 260;
    }
    constexpr int32_t kBelow = 204;
    GalleryLabel(root, L"#OMBRELUNE_LOGO in 16, 24, 48, 96 and 400 units", kLeft, kBelow);
    int32_t y = kBelow + 32;
    for (const int32_t side : {16, 24, 48, 96}) {
        PictureSample(root, "#OMBRELUNE_LOGO", {kLeft, y, side, side});
        y += side + 24;
    }
    PictureSample(root, "#OMBRELUNE_LOGO", {kLeft + 168, kBelow + 32, 400, 400});
    // Half of its size each way.
    if (const GUI_BITMAP* const night = ImageOf("#MAINBG"); night != nullptr) {
        GalleryLabel(root, L"#MAINBG, half of its size", 616, kBelow);
        PictureSample(root, "#MAINBG", {616, kBelow + 32, night->width / 2, night->height / 2});
    }
    // The controllers of the game's panel, a third of their size.
    x = 616;
    for (const char* const name : {"#CONTROLS_MASTERSYSTEM", "#CONTROLS_GAMEGEAR", "#CONTROLS_NES",
                                   "#CONTROLS_ARCADE", "#CONTROLS_MEGADRIVE"}) {
        if (const GUI_BITMAP* const bitmap = ImageOf(name); bitmap != nullptr) {
            PictureSample(root, name, {x, 608, bitmap->width / 3, bitmap->height / 3});
            x += bitmap->width / 3 + 24;
        }
    }
}

// ---- Styles.

namespace {

constexpr std::wstring_view kBackground = L"_BACKGROUND";

// Without the ending; empty for another name.
std::wstring WindowOf(const std::wstring& name) {
    return name.ends_with(kBackground) ? name.substr(0, name.size() - kBackground.size())
                                       : std::wstring();
}

// The names of the theme's text records that are of windows, or are not.
std::vector<std::wstring> TextNames(bool ofWindows) {
    std::vector<std::wstring> names;
    for (const CGhostTheme::NAMED& named : CGhostTheme::Get().Names()) {
        if (named.kind == StyleKind::kTextBox && WindowOf(named.name).empty() != ofWindows) {
            names.push_back(named.name);
        }
    }
    return names;
}

} // namespace

// Pictures are as high as they are, but for the large ones: those are on the page of windows or of pictures.
void BuildStylesPage(GHOSTMANAGER_WINDOW* root) {
    constexpr int32_t kColumns = 7;
    constexpr int32_t kWide = (kRight - kLeft) / kColumns;
    GalleryTitle(root, L"Text styles");
    int32_t column = 0;
    int32_t y = kTop;
    int32_t highest = 0;
    for (const std::wstring& name : TextNames(false)) {
        GhostTextStyle style;
        CGhostTheme::Get().GetStyle(name, style);
        const bool picture = style.bg.type == GhostFill::kBitmap && style.bg.bitmap != nullptr;
        const int32_t height = style.bg.bitmap != nullptr ? style.bg.bitmap->height : 40;
        if (picture && height >= kLargeFrom) {
            continue;
        }
        const int32_t x = kLeft + column * kWide;
        GalleryLabel(root, name, x, y);
        GalleryText(root, name, picture ? L"" : L"The moon rises 123",
                    {x, y + 18, kWide - 24, height});
        highest = std::max(highest, height);
        if (++column == kColumns) {
            column = 0;
            y += 18 + highest + 8;
            highest = 0;
        }
    }
}

// Named without their common ending. A frame whose upper side is higher than its thickness is of a window
// with a title.
void BuildFramesPage(GHOSTMANAGER_WINDOW* root) {
    constexpr int32_t kColumns = 6;
    constexpr int32_t kWide = (kRight - kLeft) / kColumns;
    constexpr int32_t kHigh = (kBottom - kTop) / 5;
    GalleryTitle(root, L"Window styles: _BACKGROUND");
    int32_t index = 0;
    for (const std::wstring& name : TextNames(true)) {
        const int32_t x = kLeft + index % kColumns * kWide;
        const int32_t y = kTop + index / kColumns * kHigh;
        GhostTextStyle style;
        CGhostTheme::Get().GetStyle(name, style);
        const GhostBorderStyle& border = style.border;
        const bool titled =
            border.top.bitmap != nullptr && border.top.bitmap->height > border.thickness.top;
        using Window = CGhostWindowEx;
        const uint32_t flags = Window::kFrame | (titled ? Window::kTitle | Window::kNoButtons : 0u);
        GalleryLabel(root, WindowOf(name), x, y);
        GalleryWindow(root, WindowOf(name), L"A title", flags, {x, y + 18, kWide - 24, kHigh - 30});
        ++index;
    }
}

// ---- Lists and tables.

namespace {

void PaintListStyle(CGhostSurface& surface, const GhostListStyle& style, int32_t rowHeight,
                    int32_t top) {
    struct ROW {
        const GhostTextStyle& style;
        const wchar_t* text;
    };
    const ROW rows[] = {
        {style.itemNormal,    L"item_normal: The Lantern of Luciole"    },
        {style.item2Normal,   L"item2_normal: Moth Patrol (World)"      },
        {style.itemHot,       L"item_hot: Tin Harbour"                  },
        {style.item2Hot,      L"item2_hot: A game that nobody knows"    },
        {style.itemSelected,  L"item_selected: Night Ferry (Europe)"    },
        {style.item2Selected, L"item2_selected: Paper Lamps, Revision 1"},
    };
    PaintFill(surface, style.bg.bg, {0, top, surface.Width(), surface.Height() - top});
    int32_t y = top;
    int32_t icon = 0;
    for (const ROW& row : rows) {
        const GUI_RECT place{0, y, surface.Width(), rowHeight};
        PaintFill(surface, row.style.bg, place);
        GhostTextStyle text = row.style;
        text.bg.type = GhostFill::kNone;
        PaintListImage(surface, style.imageList, icon, 2, y + 1);
        PaintText(surface, text, row.text, {28, y, surface.Width() - 28, rowHeight});
        y += rowHeight;
        ++icon;
    }
    PaintFrame(surface, style.bg.border);
}

void PaintTable(CGhostSurface& surface, const std::wstring& name) {
    GhostListViewStyle style;
    CGhostTheme::Get().GetStyle(name, style);
    const wchar_t* const heads[] = {L"Action", L"Input1", L"Input2"};
    const int32_t width = surface.Width() / 3;
    PaintListStyle(surface, style.list, style.itemHeight, style.headerHeight);
    for (int32_t i = 0; i < 3; ++i) {
        PaintText(surface, style.header.states[static_cast<size_t>(i)], heads[i],
                  {i * width, 0, width, style.headerHeight});
    }
}

void BuildTable(GHOSTMANAGER_WINDOW* root) {
    constexpr int32_t kRows = 20000;
    GalleryLabel(root, L"GAMELIST, a control of 20,000 rows: hot, chosen, indented", kLeft, 524);
    auto* const table =
        new CGhostListView(root, 0, L"GAMELIST", 0, {false, kLeft, 544, 790, 28 * 5 + 2});
    table->AddColumn(L"Name", 400);
    table->AddColumn(L"Group", 240);
    table->AddColumn(L"Plays", 120, kAlignRight);
    table->Reserve(kRows);
    for (int32_t i = 0; i < kRows; ++i) {
        const int32_t row = table->AddRow();
        table->SetCell(row, 0, L"Row " + std::to_wstring(i + 1), i % 4);
        table->Cell(row, 0)->indent = i % 3;
        table->SetCell(row, 1, i % 2 == 0 ? L"even" : L"odd");
        table->SetCell(row, 2, std::to_wstring(i * 7));
        for (int32_t column = 0; column < 3; ++column) {
            table->Cell(row, column)->colourSet = i % 4 < 2 ? 0 : 1;
        }
    }
    table->SetSelected(10000, false);
    table->EnsureVisible(10002);
    table->OnMouseMove(40, 40);
}

// A table with few rows, no marks and columns that do not reach its right edge.
void BuildPlainTable(GHOSTMANAGER_WINDOW* root) {
    GalleryLabel(root, L"LISTVIEW, a control of three rows", 844, 524);
    auto* const table =
        new CGhostListView(root, 0, L"LISTVIEW", 0, {false, 844, 544, 380, 28 * 5 + 2});
    table->AddColumn(L"Action", 160);
    table->AddColumn(L"Input 1", 120);
    for (const wchar_t* const name : {L"Up", L"Down", L"Button 1"}) {
        const int32_t row = table->AddRow();
        table->SetCell(row, 0, name);
        table->SetCell(row, 1, L"Pad 1");
    }
}

} // namespace

void BuildRecordsPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Lists and tables");
    GalleryLabel(root, L"LIST, a control of 20,000 rows", 844, 60);
    auto* const list = new CGhostList(root, 0, L"LIST", 0, {false, 844, 80, 380, 28 * 7 + 2});
    for (int32_t i = 0; i < 20000; ++i) {
        list->AddItem(L"Row " + std::to_wstring(i + 1), i % 9 < 6 ? i % 9 : -1,
                      i % 7 == 3 ? GHOSTLIST_ITEM::kDisabled : 0);
    }
    list->SetSelected(10001, false);
    list->EnsureVisible(10003);
    list->OnFocus(true, nullptr);
    const wchar_t* const lists[] = {L"LIST", L"POPUPMENU"};
    int32_t x = 24;
    for (const wchar_t* const name : lists) {
        GalleryLabel(root, name, x, 60);
        new GalleryCanvas(root, {x, 80, 380, 28 * 6 + 2}, [name](CGhostSurface& surface) {
            GhostListStyle style;
            CGhostTheme::Get().GetStyle(name, style);
            PaintListStyle(surface, style, 28, 0);
        });
        x += 410;
    }
    const wchar_t* const tables[] = {L"GAMELIST", L"INPUTLIST", L"CREDITLIST"};
    x = 24;
    for (const wchar_t* const name : tables) {
        GalleryLabel(root, name, x, 292);
        new GalleryCanvas(root, {x, 312, 380, 28 * 7 + 2},
                          [name](CGhostSurface& surface) { PaintTable(surface, name); });
        x += 410;
    }
    BuildTable(root);
    BuildPlainTable(root);
}
