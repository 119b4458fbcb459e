// The pages that show the toolkit's parts one by one: text, buttons, fields.
#include "front/tools/gallery_pages.h"

#include "front/tools/gallery_parts.h"
#include "gui/button.h"
#include "gui/check_box.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/font.h"
#include "gui/keyboard.h"
#include "gui/multi_text.h"
#include "gui/scrollbar.h"
#include "gui/slider.h"
#include "gui/surface.h"
#include "gui/text.h"

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
        {"text",          BuildTextPage    },
        {"buttons",       BuildButtonsPage },
        {"fields",        BuildFieldsPage  },
        {"held, hot",     BuildStatesPage  },
        {"the keyboard",  BuildKeyboardPage},
        {"windows",       BuildWindowsPage },
        {"faces, icons",  BuildImagesPage  },
        {"pictures",      BuildPicturesPage},
        {"text styles",   BuildStylesPage  },
        {"window styles", BuildFramesPage  },
        {"lists, tables", BuildRecordsPage },
        {"the menu",      BuildMenuPage    },
        {"the browser",   BuildBrowserPage },
        {"the options",   BuildOptionsPage },
        {"a message",     BuildMessagePage },
    };
    return kPages;
}

// ---- Text.

namespace {

struct SAMPLE {
    const char* font; // null: the default font
    int32_t size;
};
constexpr SAMPLE kSamples[] = {
    {nullptr,           14},
    {"Default",         15},
    {"Default",         18},
    {"Default",         21},
    {"Default",         25},
    {"DefaultBold",     15},
    {"DefaultBold",     18},
    {"DefaultBold",     21},
    {"DefaultMono",     15},
    {"DefaultMono",     18},
    {"DefaultMonoBold", 18},
    {"DefaultBold",     25},
    {"DefaultBold",     35},
};

void PaintFonts(CGhostSurface& surface) {
    int32_t y = 0;
    for (const SAMPLE& sample : kSamples) {
        CGhostFont* const font = sample.font != nullptr
                                     ? CGhostFontManager::Get().GetFont(sample.font, sample.size)
                                     : nullptr;
        const std::wstring_view text =
            sample.size > 21 ? L"Ombrelune: the moon, a shadow, and a window that is lit"
                             : kSentence;
        DrawText(surface, font, text, kMoon, 0, kAlignLeft, {0, y, 1100, sample.size + 4}, 0, 0);
        y += sample.size + 11;
    }
}

void NameFonts(GHOSTMANAGER_WINDOW* root, int32_t y) {
    for (const SAMPLE& sample : kSamples) {
        const std::string name = (sample.font != nullptr ? sample.font : "no font,") +
                                 std::string(" ") + std::to_string(sample.size);
        GalleryLabel(root, std::wstring(name.begin(), name.end()), 24, y + sample.size / 2 - 6);
        y += sample.size + 11;
    }
}

// A light and a dark half, so that the outline is seen at its work.
void PaintOutline(CGhostSurface& surface) {
    const int32_t half = surface.Width() / 2;
    surface.FillRect({0, 0, half, surface.Height()}, 0xFFE0D8C0);
    surface.FillRect({half, 0, half, surface.Height()}, 0xFF205060);
    CGhostFont* const font = CGhostFontManager::Get().GetFont("DefaultBold", 21);
    DrawText(surface, font, L"Main Menu [F10]  Load Game [E]  Turn off Game [Q]", kMoon, kNight, 0,
             {0, 16, surface.Width(), 40}, 0, 0);
    DrawText(surface, nullptr, L"60.0 frames a second, 4 sessions, 2.1 ms, peak 3.4 ms", kMoon,
             kNight, 0, {0, 64, surface.Width(), 24}, 0, 0);
    CGhostFont* const text = CGhostFontManager::Get().GetFont("Default", 18);
    DrawText(surface, text, L"Saved to place 3", kMoon, kNight, 0, {0, 96, surface.Width(), 24}, 0,
             0);
}

void PaintAlignment(CGhostSurface& surface) {
    constexpr uint32_t kAcross[] = {kAlignLeft, 0, kAlignRight};
    constexpr uint32_t kDown[] = {kAlignTop, 0, kAlignBottom};
    constexpr uint32_t kCell = 0xFF1B2142;
    for (int32_t i = 0; i < 9; ++i) {
        const GUI_RECT cell{(i % 3) * 112, (i / 3) * 46, 108, 42};
        surface.FillRect(cell, kCell);
        CGhostFont* const font = CGhostFontManager::Get().GetFont("Default", 18);
        DrawText(surface, font, L"Aligned", kMoon, 0, kAcross[i % 3] | kDown[i / 3], cell, 0, 0);
    }
}

} // namespace

void BuildTextPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Text");
    NameFonts(root, 60);
    new GalleryCanvas(root, {160, 60, 1096, 420}, PaintFonts);
    GalleryLabel(root, L"Outline, over light and dark", 24, 512);
    new GalleryCanvas(root, {24, 536, 600, 134}, PaintOutline);
    GalleryLabel(root, L"Alignment", 648, 512);
    new GalleryCanvas(root, {648, 536, 332, 134}, PaintAlignment);
    GalleryLabel(root, L"Wrapped", 1004, 512);
    new CGhostMultiText(root, 0, L"MESSAGEBOX_TEXT",
                        L"A message of several lines is wrapped at its spaces, and a word of "
                        L"extraordinaryincomprehensiblelengthiness is broken within.",
                        {false, 1004, 536, 252, 134});
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
        {L"OPTIONBUTTON",       L"Graphics",   130, 25},
        {L"PLAYOFFLINE",        L"START GAME", 170, 36},
        {L"HOSTGAME",           L"HOST GAME",  170, 36},
        {L"JOINGAME",           L"JOIN GAME",  170, 36},
        {L"LEFTSEL",            L"",           40,  40},
        {L"RIGHTSEL",           L"",           40,  40},
        {L"WINDOW_TITLE_MIN",   L"\u2013",     20,  20},
        {L"WINDOW_TITLE_MAX",   L"+",          20,  20},
        {L"WINDOW_TITLE_CLOSE", L"\u00D7",     20,  20},
        {L"KEYBOARD_KEY",       L"q",          52,  28},
    };
    GalleryTitle(root, L"Buttons");
    for (size_t i = 0; i < kStates.size(); ++i) {
        GalleryLabel(root, kStateNames[i], GalleryColumnX(i), 56);
    }
    int32_t y = 80;
    for (const KIND& kind : kKinds) {
        GalleryLabel(root, kind.style, 24, y + kind.height / 2 - 8);
        for (size_t i = 0; i < kStates.size(); ++i) {
            GalleryButton(root, kind.style, kind.caption, kStates[i],
                          {GalleryColumnX(i), y, kind.width, kind.height});
        }
        y += kind.height + 12;
    }
    GalleryLabel(root, L"Widths", 24, y + 9);
    int32_t x = GalleryColumnX(0);
    for (const int32_t width : {28, 60, 100, 300, 400}) {
        const std::wstring_view caption = width > 200  ? L"A caption of some length, in one line"
                                          : width > 30 ? L"Ok"
                                                       : L"?";
        GalleryButton(root, L"BUTTON", caption, GalleryState::kNormal, {x, y + 4, width, 25});
        x += width + 12;
    }
}

// ---- Fields, check boxes, sliders, scrollbars.

namespace {

void BuildEdits(GHOSTMANAGER_WINDOW* root, int32_t y) {
    constexpr std::array<std::wstring_view, 5> kFieldStates = {L"normal", L"hot", L"read-only",
                                                               L"focus", L"focus, selected"};
    GalleryLabel(root, L"EDIT", 24, y + 5);
    for (size_t i = 0; i < kFieldStates.size(); ++i) {
        GalleryLabel(root, kFieldStates[i], GalleryColumnX(i), y - 24);
        auto* const edit = new CGhostEdit(root, 0, L"EDIT", L"Paper Lamps", 0,
                                          {false, GalleryColumnX(i), y, kGalleryColumnWide, 25});
        switch (i) {
        case 1: GalleryHold(*edit, [=] { edit->OnMouseMove(1, 1); }); break;
        case 2: edit->SetReadOnly(true); break;
        case 3: edit->OnFocus(true, nullptr); break;
        case 4:
            edit->OnFocus(true, nullptr);
            edit->SetSelection(0, 5);
            break;
        default: break;
        }
    }
}

void BuildDropLists(GHOSTMANAGER_WINDOW* root, int32_t y) {
    constexpr std::array<std::wstring_view, 5> kArrowStates = {L"normal", L"hot", L"disabled",
                                                               L"focus", L"open"};
    GalleryLabel(root, L"DROPLIST", 24, y + 5);
    for (size_t i = 0; i < kArrowStates.size(); ++i) {
        GalleryLabel(root, kArrowStates[i], GalleryColumnX(i), y - 24);
        CGhostDropList* const list =
            GalleryDropList(root, L"SMS JAPANESE", {GalleryColumnX(i), y, kGalleryColumnWide, 25});
        switch (i) {
        case 1: GalleryHold(*list, [=] { list->OnMouseMove(1, 1); }); break;
        case 2: list->SetEnabled(false); break;
        case 3: list->OnFocus(true, nullptr); break;
        case 4: list->Open(); break;
        default: break;
        }
    }
}

void BuildSliders(GHOSTMANAGER_WINDOW* root, int32_t y) {
    constexpr std::array kValues = {0.0f, 0.02f, 0.5f, 0.97f, 1.0f};
    constexpr size_t kFocused = 2;
    GalleryLabel(root, L"PROGRESSBAR", 24, y + 5);
    GalleryLabel(root, L"PROGRESSBAR_VOLUME", 24, y + 41);
    for (size_t i = 0; i < kValues.size(); ++i) {
        auto* const bass = new CGhostSlider(root, 0, L"PROGRESSBAR", -12.0f, 24.0f,
                                            {false, GalleryColumnX(i), y, kGalleryColumnWide, 25});
        bass->SetValue(kValues[i]);
        auto* const volume =
            new CGhostSlider(root, 0, L"PROGRESSBAR_VOLUME", 0.0f, 100.0f,
                             {false, GalleryColumnX(i), y + 36, kGalleryColumnWide, 25});
        volume->SetValue(kValues[i]);
        if (i == kFocused) {
            volume->OnFocus(true, nullptr);
        }
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
    int32_t x = GalleryColumnX(0);
    for (const RANGE& range : kRanges) {
        auto* const bar = new CGhostScrollbar(root, 0, L"WINDOW_SCROLLBAR", {false, x, y, 16, 200});
        bar->SetRange(range.total, range.page, range.pos, true);
        x += 48;
    }
}

// A field, a choice and captions that are longer than their place. The open list has the last column.
void BuildLongTexts(GHOSTMANAGER_WINDOW* root, int32_t y) {
    GalleryLabel(root, L"Longer than its place", 24, y + 5);
    const auto place = [&](size_t column) {
        return GUI_PLACE{false, GalleryColumnX(column), y, kGalleryColumnWide, 25};
    };
    new CGhostEdit(root, 0, L"EDIT", std::wstring(kSentence), 0, place(0));
    GalleryDropList(root, kSentence, {GalleryColumnX(1), y, kGalleryColumnWide, 25});
    auto* const box =
        new CGhostCheckBox(root, 0, L"CHECKBOX", std::wstring(kSentence), 0, place(2));
    box->SetChecked(true);
    GalleryButton(root, L"BUTTON", kSentence, GalleryState::kNormal,
                  {GalleryColumnX(3), y, kGalleryColumnWide, 25});
}

void BuildScrolledText(GHOSTMANAGER_WINDOW* root, int32_t y) {
    std::wstring text;
    for (int i = 1; i <= 4; ++i) {
        text += L"Night " + std::to_wstring(i) +
                L". The lamp is low, a screen lights the wall, and the moon is in the window. "
                L"Somebody has "
                L"left a game where it was hardest, and nobody else in the house is awake.\n\n";
    }
    const int32_t x = GalleryColumnX(2);
    GalleryLabel(root, L"WINDOWOVERLAY, scrolled", x, y - 24);
    new CGhostMultiText(root, 0, L"WINDOWOVERLAY", text,
                        {false, x, y, GalleryColumnX(4) + kGalleryColumnWide - x, 200});
}

} // namespace

void BuildFieldsPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Fields");
    BuildEdits(root, 84);
    BuildSliders(root, 136);
    BuildDropLists(root, 236);
    BuildLongTexts(root, 324);
    BuildScrollbars(root, 440);
    BuildScrolledText(root, 440);
}

void BuildKeyboardPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"The keyboard on the screen");
    auto* const edit = new CGhostEdit(root, 0, L"EDIT", L"Paper", 0, {false, 490, 160, 300, 25});
    GalleryLabel(root, L"for this field", 490, 136);
    CGhostKeyboard::Open(edit); // it ends with its field
}
