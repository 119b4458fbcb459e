// The pages that show the toolkit's parts one by one.
#include "front/tools/gallery_pages.h"

#include "front/assets.h"
#include "front/tools/gallery_parts.h"
#include "gui/bitmap.h"
#include "gui/button.h"
#include "gui/check_box.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/font.h"
#include "gui/list.h"
#include "gui/message_box.h"
#include "gui/scrollbar.h"
#include "gui/slider.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "gui/window_ex.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

constexpr std::wstring_view kSentence =
    L"The quick brown fox jumps over 13 lazy dogs; Ärger, naïve, "
    L"señor, œuvre: 0O 1lI 8B 5S.";
constexpr uint32_t kMoon = 0xFFF3EAD3;
constexpr uint32_t kNight = 0xFF0B0E1F;

constexpr std::array kStates = {GalleryState::kNormal, GalleryState::kHot, GalleryState::kPressed,
                                GalleryState::kDisabled, GalleryState::kFocused};
constexpr std::array<std::wstring_view, 5> kStateNames = {L"normal", L"hot", L"pressed",
                                                          L"disabled", L"focus"};

} // namespace

std::span<const GALLERY_PAGE> GalleryPages() {
    static const GALLERY_PAGE kPages[] = {
        {"text",          BuildTextPage   },
        {"buttons",       BuildButtonsPage},
        {"fields",        BuildFieldsPage },
        {"windows",       BuildWindowsPage},
        {"images",        BuildImagesPage },
        {"text styles",   BuildStylesPage },
        {"lists, tables", BuildRecordsPage},
        {"the menu",      BuildMenuPage   },
        {"the browser",   BuildBrowserPage},
        {"the options",   BuildOptionsPage},
        {"a message",     BuildMessagePage},
    };
    return kPages;
}

// ---- Text.

namespace {

void PaintFonts(CGhostSurface& surface) {
    struct SAMPLE {
        const char* font;
        int32_t size;
    };
    constexpr SAMPLE kSamples[] = {
        {nullptr,           14}, // the default font
        {"Default",         15},
        {"Default",         18},
        {"Default",         21},
        {"DefaultBold",     15},
        {"DefaultBold",     18},
        {"DefaultBold",     21},
        {"DefaultMono",     15},
        {"DefaultMono",     18},
        {"DefaultMonoBold", 18},
        {"DefaultBold",     25},
        {"DefaultBold",     35},
    };
    int32_t y = 0;
    for (const SAMPLE& sample : kSamples) {
        CGhostFont* const font = sample.font != nullptr
                                     ? CGhostFontManager::Get().GetFont(sample.font, sample.size)
                                     : nullptr;
        const std::string name = (sample.font != nullptr ? sample.font : "none:") +
                                 std::string(" ") + std::to_string(sample.size);
        DrawText(surface, nullptr, std::wstring(name.begin(), name.end()), 0xFF8C91B8, 0,
                 kAlignLeft, {0, y, 140, sample.size + 4}, 0, 0);
        const std::wstring_view text = sample.size > 20 ? L"Ombrelune, moon and shadow" : kSentence;
        DrawText(surface, font, text, kMoon, 0, kAlignLeft, {150, y, 1100, sample.size + 4}, 0, 0);
        y += sample.size + 10;
    }
}

// A light and a dark half, so that the outline is seen at its work.
void PaintOutline(CGhostSurface& surface) {
    surface.FillRect({0, 0, surface.Width() / 2, surface.Height()}, 0xFFE0D8C0);
    surface.FillRect({surface.Width() / 2, 0, surface.Width() / 2, surface.Height()}, 0xFF205060);
    CGhostFont* const font = CGhostFontManager::Get().GetFont("DefaultBold", 21);
    DrawText(surface, font, L"Main Menu [F10]  Load Game [E]  Turn off Game [Q]", kMoon, kNight, 0,
             {0, 0, surface.Width(), 40}, 0, 0);
    DrawText(surface, nullptr, L"60.0 frames a second, 4 sessions, 2.1 ms, peak 3.4 ms", kMoon,
             kNight, 0, {0, 40, surface.Width(), 24}, 0, 0);
}

void PaintAlignment(CGhostSurface& surface) {
    constexpr uint32_t kAcross[] = {kAlignLeft, 0, kAlignRight};
    constexpr uint32_t kDown[] = {kAlignTop, 0, kAlignBottom};
    for (int32_t i = 0; i < 9; ++i) {
        const GUI_RECT cell{(i % 3) * 108, (i / 3) * 44, 104, 40};
        surface.FillRect(cell, 0xFF1B2142);
        CGhostFont* const font = CGhostFontManager::Get().GetFont("Default", 18);
        DrawText(surface, font, L"Aligned", kMoon, 0, kAcross[i % 3] | kDown[i / 3], cell, 0, 0);
    }
}

} // namespace

void BuildTextPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Text");
    new GalleryCanvas(root, {24, 56, 1232, 420}, PaintFonts);
    GalleryLabel(root, L"Outline, over light and dark", 24, 500);
    new GalleryCanvas(root, {24, 520, 560, 72}, PaintOutline);
    GalleryLabel(root, L"Alignment", 620, 500);
    new GalleryCanvas(root, {620, 520, 330, 140}, PaintAlignment);
}

// ---- Buttons.

void BuildButtonsPage(GHOSTMANAGER_WINDOW* root) {
    struct KIND {
        const wchar_t* style;
        const wchar_t* caption;
        int32_t width;
        int32_t height;
    };
    constexpr KIND kKinds[] = {
        {L"BUTTON",             L"PLAY GAMES", 140, 25},
        {L"MESSAGEBOX_BUTTON",  L"Ok",         100, 25},
        {L"BUTTON2",            L"Main Menu",  150, 28},
        {L"BUTTON3",            L"REVIEWS",    110, 28},
        {L"OPTIONBUTTON",       L"Graphics",   130, 28},
        {L"PLAYOFFLINE",        L"START GAME", 170, 36},
        {L"HOSTGAME",           L"HOST GAME",  170, 36},
        {L"JOINGAME",           L"JOIN GAME",  170, 36},
        {L"LEFTSEL",            L"",           40,  40},
        {L"RIGHTSEL",           L"",           40,  40},
        {L"WINDOW_TITLE_CLOSE", L"\u00D7",     20,  20},
    };
    GalleryTitle(root, L"Buttons");
    for (size_t i = 0; i < kStates.size(); ++i) {
        GalleryLabel(root, kStateNames[i], 220 + static_cast<int32_t>(i) * 190, 56);
    }
    int32_t y = 80;
    for (const KIND& kind : kKinds) {
        GalleryLabel(root, kind.style, 24, y + kind.height / 2 - 8);
        for (size_t i = 0; i < kStates.size(); ++i) {
            GalleryButton(root, kind.style, kind.caption, kStates[i],
                          {220 + static_cast<int32_t>(i) * 190, y, kind.width, kind.height});
        }
        y += kind.height + 16;
    }
    GalleryLabel(root, L"Widths", 24, y + 8);
    int32_t x = 220;
    for (const int32_t width : {28, 60, 100, 140, 300, 420}) {
        const std::wstring_view caption = width > 200  ? L"A caption of some length, in one line"
                                          : width > 30 ? L"Ok"
                                                       : L"?";
        GalleryButton(root, L"BUTTON", caption, GalleryState::kNormal, {x, y + 4, width, 25});
        x += width + 4;
    }
}

// ---- Fields, check boxes, sliders, scrollbars.

namespace {

void BuildCheckBoxes(GHOSTMANAGER_WINDOW* root, int32_t y) {
    GalleryLabel(root, L"CHECKBOX", 24, y + 4);
    for (size_t i = 0; i < kStates.size(); ++i) {
        const int32_t x = 220 + static_cast<int32_t>(i) * 190;
        auto* const box =
            new CGhostCheckBox(root, 0, L"CHECKBOX", L"3D Glasses", {false, x, y, 130, 25});
        switch (kStates[i]) {
        case GalleryState::kHot: box->OnMouseMove(1, 1); break;
        case GalleryState::kPressed: box->SetChecked(true); break;
        case GalleryState::kDisabled: box->SetEnabled(false); break;
        case GalleryState::kFocused: box->OnFocus(true, nullptr); break;
        case GalleryState::kNormal: break;
        }
    }
}

void BuildSliders(GHOSTMANAGER_WINDOW* root, int32_t y) {
    int32_t x = 220;
    GalleryLabel(root, L"PROGRESSBAR", 24, y + 4);
    GalleryLabel(root, L"PROGRESSBAR_VOLUME", 24, y + 44);
    for (const float value : {0.0f, 0.04f, 0.5f, 0.97f, 1.0f}) {
        auto* const bass =
            new CGhostSlider(root, 0, L"PROGRESSBAR", -12.0f, 24.0f, {false, x, y, 170, 25});
        bass->SetValue(value);
        auto* const volume = new CGhostSlider(root, 0, L"PROGRESSBAR_VOLUME", 0.0f, 100.0f,
                                              {false, x, y + 40, 170, 25});
        volume->SetValue(value);
        if (value > 0.4f && value < 0.6f) {
            volume->OnFocus(true, nullptr);
        }
        x += 190;
    }
}

void BuildScrollbars(GHOSTMANAGER_WINDOW* root, int32_t y) {
    GalleryLabel(root, L"WINDOW_SCROLLBAR", 24, y);
    struct RANGE {
        int32_t total, page, pos;
    };
    constexpr RANGE kRanges[] = {
        {100,    100, 0     },
        {200,    100, 0     },
        {200,    100, 50    },
        {560000, 200, 0     },
        {560000, 200, 280000},
        {560000, 200, 559800},
    };
    int32_t x = 220;
    for (const RANGE& range : kRanges) {
        auto* const bar = new CGhostScrollbar(root, 0, L"WINDOW_SCROLLBAR", {false, x, y, 16, 200});
        bar->SetRange(range.total, range.page, range.pos, true);
        x += 48;
    }
}

} // namespace

void BuildFieldsPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Fields");
    constexpr std::array<std::wstring_view, 4> kFieldStates = {L"normal", L"hot", L"read-only",
                                                               L"focus"};
    GalleryLabel(root, L"EDIT", 24, 84);
    GalleryLabel(root, L"DROPLIST", 24, 144);
    for (size_t i = 0; i < kFieldStates.size(); ++i) {
        const int32_t x = 220 + static_cast<int32_t>(i) * 240;
        GalleryLabel(root, kFieldStates[i], x, 60);
        auto* const edit = new CGhostEdit(root, 0, L"EDIT", L"A name", 0, {false, x, 80, 220, 25});
        switch (i) {
        case 1: edit->OnMouseMove(1, 1); break;
        case 2: edit->SetReadOnly(true); break;
        case 3: edit->OnFocus(true, nullptr); break;
        default: break;
        }
    }
    constexpr std::array<std::wstring_view, 4> kArrowStates = {L"normal", L"hot", L"disabled",
                                                               L"open"};
    for (size_t i = 0; i < kArrowStates.size(); ++i) {
        const int32_t x = 220 + static_cast<int32_t>(i) * 240;
        GalleryLabel(root, kArrowStates[i], x, 120);
        CGhostDropList* const list = GalleryDropList(root, L"SMS JAPANESE", {x, 140, 190, 25});
        switch (i) {
        case 1: list->OnMouseMove(1, 1); break;
        case 2: list->SetEnabled(false); break;
        case 3: list->Open(); break;
        default: break;
        }
    }
    BuildCheckBoxes(root, 320);
    BuildSliders(root, 370);
    BuildScrollbars(root, 470);
}

// ---- Windows.

void BuildWindowsPage(GHOSTMANAGER_WINDOW* root) {
    using Window = CGhostWindowEx;
    GalleryTitle(root, L"Windows");
    GHOSTMANAGER_WINDOW* const box =
        GalleryWindow(root, L"MESSAGEBOX", L"Error loading game",
                      Window::kFrame | Window::kTitle | Window::kNoButtons, {24, 64, 450, 180});
    GalleryText(box, L"MESSAGEBOX_TEXT", L"The file holds no game of a machine that is known here.",
                {0, 0, 410, 60});
    GalleryButton(box, L"MESSAGEBOX_BUTTON", L"Ok", GalleryState::kFocused, {155, 85, 100, 25});
    GalleryWindow(root, L"MESSAGEBOX", L"A window with a title", Window::kFrame | Window::kTitle,
                  {500, 64, 360, 180});
    GHOSTMANAGER_WINDOW* const tip =
        GalleryWindow(root, L"TOOLTIP", L"", Window::kFrame, {24, 270, 250, 60});
    GalleryText(tip, L"TOOLTIP_TEXT", L"Start the game", {0, 0, 200, 18});
    GHOSTMANAGER_WINDOW* const panel =
        GalleryWindow(root, L"OPTIONWINDOW", L"", Window::kFrame, {300, 270, 300, 120});
    GalleryText(panel, L"TEXT_RIGHT", L"A panel within a screen:", {8, 8, 200, 25});
    GalleryText(root, L"WINDOWOVERLAY", L"Connecting to server to collect news...",
                {640, 270, 420, 120});
    GalleryWindow(root, L"MESSAGEBOXBG", L"", Window::kNoSignals, {24, 420, 500, 120});
    GHOSTMANAGER_WINDOW* const scrolled =
        GalleryWindow(root, L"GAMEOPTIONS", L"", Window::kFrame, {560, 420, 500, 260});
    GalleryText(scrolled, L"TEXT", L"A panel that scrolls", {8, 8, 300, 25});
}

namespace {

// Takes the message box, which is nobody's child, away with the page.
class MessageGuard : public GalleryCanvas {
public:
    MessageGuard(GHOSTMANAGER_WINDOW* parent, CGhostMessageBox* message)
        : GalleryCanvas(parent, {0, 0, 1, 1}, [](CGhostSurface&) {})
        , box(message) {
        box->OnClosed.connect([this](CGhostMessageBox*) { box = nullptr; });
    }
    void Destroy() override {
        if (box != nullptr) {
            box->OnClosed.disconnect_all_slots();
            box->Dismiss();
        }
        GalleryCanvas::Destroy();
    }

private:
    ~MessageGuard() override = default;
    CGhostMessageBox* box;
};

} // namespace

void BuildMessagePage(GHOSTMANAGER_WINDOW* root) {
    BuildBrowserPage(root);
    CGhostMessageBox* const box = CGhostMessageBox::Show(
        L"Error loading game", L"The file holds no game of a machine that is known here. "
                               L"What \"ombrelune info\" says about it may help.");
    if (box != nullptr) {
        new MessageGuard(root, box);
    }
}

// ---- Images.

void BuildImagesPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Images");
    int32_t x = 24;
    int32_t y = 52;
    int32_t rowHeight = 0;
    for (const GUI_IMAGE_ROW& row : BuiltInImages()) {
        const GUI_BITMAP* const bitmap = LoadThemeBitmap(row.name);
        if (bitmap == nullptr) {
            continue;
        }
        const int32_t width = std::min(bitmap->width, 192);
        const int32_t height = std::min(bitmap->height, 100);
        const int32_t cell = std::max(width, 130);
        if (x + cell > 1256) {
            x = 24;
            y += rowHeight + 22;
            rowHeight = 0;
        }
        GalleryLabel(root, std::wstring(row.name.begin(), row.name.end()), x, y, cell);
        new GalleryCanvas(root, {x, y + 16, width, height}, [bitmap](CGhostSurface& surface) {
            surface.Blit(*bitmap, {0, 0, bitmap->width, bitmap->height}, 0, 0);
        });
        x += cell + 8;
        rowHeight = std::max(rowHeight, height);
    }
}

// ---- Styles.

void BuildStylesPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Text styles");
    int32_t x = 24;
    int32_t y = 56;
    for (const CGhostTheme::NAMED& named : CGhostTheme::Get().Names()) {
        if (named.kind != StyleKind::kTextBox) {
            continue;
        }
        GalleryLabel(root, named.name, x, y, 232);
        GalleryText(root, named.name, L"Ombrelune 123", {x, y + 16, 220, 32});
        y += 56;
        if (y > 664) {
            y = 56;
            x += 240;
        }
    }
}

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
        GalleryIcon(surface, style.imageList, icon, 2, y + 1);
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

} // namespace

void BuildRecordsPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Lists and tables");
    GalleryLabel(root, L"LIST, a control of 20,000 rows", 844, 60);
    auto* const list = new CGhostList(root, 0, L"LIST", 0, {false, 844, 80, 380, 200});
    for (int32_t i = 0; i < 20000; ++i) {
        list->AddItem(L"Row " + std::to_wstring(i + 1), i % 9 < 6 ? i % 9 : -1,
                      i % 7 == 3 ? GHOSTLIST_ITEM::kDisabled : 0);
    }
    list->SetSelected(10001, false);
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
        GalleryLabel(root, name, x, 290);
        new GalleryCanvas(root, {x, 310, 380, 28 * 7 + 2},
                          [name](CGhostSurface& surface) { PaintTable(surface, name); });
        x += 410;
    }
}
