// The page of what a control looks like while the mouse or a key holds it: sliders, scrollbars, check boxes, the
// headings of a table, an edit in a cell, a text that scrolls.
#include "front/tools/gallery_pages.h"
#include "front/tools/gallery_parts.h"
#include "gui/button.h"
#include "gui/check_box.h"
#include "gui/edit.h"
#include "gui/list_view.h"
#include "gui/multi_text.h"
#include "gui/scrollbar.h"
#include "gui/slider.h"
#include "gui/window.h"

#include <array>
#include <string>

namespace {

constexpr int32_t kLeft = 24;

void BuildSliders(GHOSTMANAGER_WINDOW* root, int32_t y) {
    constexpr std::array<std::wstring_view, 5> kNames = {L"normal", L"hot", L"dragged",
                                                         L"read-only", L"focus"};
    constexpr float kValue = 0.36f;
    GalleryLabel(root, L"PROGRESSBAR", kLeft, y + 5);
    for (size_t i = 0; i < kNames.size(); ++i) {
        const int32_t x = GalleryColumnX(i);
        const auto at = static_cast<int>(kGalleryColumnWide * kValue) + 1;
        GalleryLabel(root, kNames[i], x, y - 24);
        auto* const slider = new CGhostSlider(root, 0, L"PROGRESSBAR", 0.0f, 100.0f,
                                              {false, x, y, kGalleryColumnWide, 25});
        slider->SetValue(kValue);
        switch (i) {
        case 1: GalleryHold(*slider, [=] { slider->OnMouseMove(at, 12); }); break;
        case 2: GalleryHold(*slider, [=] { slider->OnMouseDown(at, 12, 1); }); break;
        case 3: slider->SetReadOnly(true); break;
        case 4: slider->OnFocus(true, nullptr); break;
        default: break;
        }
    }
}

// As the theme has it, a box that is held looks checked.
void BuildCheckBoxes(GHOSTMANAGER_WINDOW* root, int32_t y) {
    constexpr std::array<std::wstring_view, 5> kNames = {L"normal", L"hot", L"pressed", L"disabled",
                                                         L"focus"};
    for (size_t i = 0; i < kNames.size(); ++i) {
        GalleryLabel(root, kNames[i], GalleryColumnX(i), y - 24);
    }
    for (const bool checked : {false, true}) {
        const int32_t top = y + (checked ? 32 : 0);
        GalleryLabel(root, checked ? L"CHECKBOX, checked" : L"CHECKBOX", kLeft, top + 5);
        for (size_t i = 0; i < kNames.size(); ++i) {
            auto* const box = new CGhostCheckBox(root, 0, L"CHECKBOX", L"3D Glasses", 0,
                                                 {false, GalleryColumnX(i), top, 130, 25});
            box->SetChecked(checked);
            switch (i) {
            case 1: GalleryHold(*box, [=] { box->OnMouseMove(1, 1); }); break;
            case 2: GalleryHold(*box, [=] { box->OnMouseDown(1, 1, 1); }); break;
            case 3: box->SetEnabled(false); break;
            case 4: box->OnFocus(true, nullptr); break;
            default: break;
            }
        }
    }
}

// A press that stays where the bar cannot go on, so that it does not run while it is looked at.
void BuildScrollbars(GHOSTMANAGER_WINDOW* root, int32_t y) {
    constexpr int32_t kHigh = 144;
    constexpr int32_t kArrow = 8;              // within an arrow button
    constexpr int32_t kLower = kHigh - kArrow; // within the lower one
    constexpr int32_t kThumb = 24;             // within the thumb of a bar at its start
    struct BAR {
        const wchar_t* name;
        int32_t pos;
        int32_t mouseY; // -1: not there
        bool pressed;
    };
    constexpr BAR kBars[] = {
        {L"normal",            50,  -1,     false},
        {L"arrow hot",         0,   kArrow, false},
        {L"arrow pressed",     0,   kArrow, true },
        {L"lower hot",         100, kLower, false},
        {L"lower pressed",     100, kLower, true },
        {L"thumb hot",         0,   kThumb, false},
        {L"thumb dragged",     0,   kThumb, true },
        {L"focus",             50,  -1,     false},
        {L"nothing to scroll", 0,   -1,     false},
    };
    constexpr int32_t kStep = 116;
    GalleryLabel(root, L"WINDOW_SCROLLBAR", kLeft, y);
    int32_t x = GalleryColumnX(0);
    for (const BAR& row : kBars) {
        GalleryLabel(root, row.name, x, y - 24);
        auto* const bar =
            new CGhostScrollbar(root, 0, L"WINDOW_SCROLLBAR", {false, x, y, 16, kHigh});
        const bool last = &row == &kBars[std::size(kBars) - 1];
        bar->SetRange(last ? 100 : 200, 100, row.pos, true);
        if (row.pressed) {
            GalleryHold(*bar, [=] { bar->OnMouseDown(kArrow, row.mouseY, 1); });
        } else if (row.mouseY >= 0) {
            GalleryHold(*bar, [=] { bar->OnMouseMove(kArrow, row.mouseY); });
        } else if (&row == &kBars[7]) {
            bar->OnFocus(true, nullptr);
        }
        x += kStep;
    }
}

// The headings are the table's child windows.
CGhostButton* Heading(const CGhostListView& table, int32_t column) {
    for (auto* child = table.window->firstChild; child != nullptr; child = child->nextSibling) {
        auto* const button = dynamic_cast<CGhostButton*>(child->handler);
        if (button != nullptr && column-- == 0) {
            return button;
        }
    }
    return nullptr;
}

CGhostListView* MakeTable(GHOSTMANAGER_WINDOW* root, const GUI_PLACE& place,
                          std::initializer_list<const wchar_t*> heads) {
    auto* const table = new CGhostListView(root, 0, L"LISTVIEW", 0, place);
    const auto count = static_cast<int32_t>(heads.size());
    for (const wchar_t* const head : heads) {
        table->AddColumn(head, (place.width - 2) / count);
    }
    for (const wchar_t* const name : {L"Night Ferry", L"Paper Lamps", L"Tin Harbour"}) {
        const int32_t row = table->AddRow();
        for (int32_t column = 0; column < count; ++column) {
            table->SetCell(row, column, column == 0 ? name : L"1990");
        }
    }
    return table;
}

void BuildTables(GHOSTMANAGER_WINDOW* root, int32_t y) {
    constexpr int32_t kHigh = 28 * 4 + 2;
    GalleryLabel(root, L"the headings of LISTVIEW", kLeft, y - 20);
    auto* const table = MakeTable(root, {false, kLeft, y, 712, kHigh},
                                  {L"normal", L"hot", L"pressed", L"focus", L"sorted"});
    table->SetSortable(4);
    table->SortBy(4, false);
    table->SetSelected(1, false);
    CGhostButton* const hot = Heading(*table, 1);
    CGhostButton* const pressed = Heading(*table, 2);
    GalleryHold(*hot, [=] { hot->OnMouseMove(40, 8); });
    GalleryHold(*pressed, [=] { pressed->SetDown(true); });
    Heading(*table, 3)->OnFocus(true, nullptr);

    GalleryLabel(root, L"the edit in a cell", 760, y - 20);
    auto* const edited = MakeTable(root, {false, 760, y, 236, kHigh}, {L"Name", L"Year"});
    edited->BeginEdit(1, 0);

    GalleryLabel(root, L"a table with the focus", 1020, y - 20);
    auto* const focused = MakeTable(root, {false, 1020, y, 236, kHigh}, {L"Name", L"Year"});
    focused->SetSelected(2, false);
    focused->OnFocus(true, nullptr);
}

void BuildText(GHOSTMANAGER_WINDOW* root, int32_t y) {
    const std::wstring text =
        L"A text that is longer than its place scrolls. With the focus on it the arrow "
        L"keys do, page by page or line by line, and the ring goes around it.\n"
        L"The moon has no dark side, only one that is not plugged in.\n"
        L"The ferry leaves at night, and the lamps are made of paper.";
    constexpr int32_t kWide = 392;
    int32_t x = kLeft;
    for (const std::wstring_view name : {L"normal", L"focus", L"short, nothing to scroll"}) {
        GalleryLabel(root, name, x, y - 20);
        auto* const shown =
            new CGhostMultiText(root, 0, L"WINDOWOVERLAY",
                                name.starts_with(L"short") ? L"Nothing has come in yet." : text,
                                {false, x, y, kWide, 84});
        if (name == L"focus") {
            shown->OnFocus(true, nullptr);
        }
        x += kWide + 28;
    }
}

} // namespace

void BuildStatesPage(GHOSTMANAGER_WINDOW* root) {
    GalleryTitle(root, L"Held, hot and focused");
    BuildSliders(root, 84);
    BuildCheckBoxes(root, 148);
    BuildScrollbars(root, 260);
    BuildTables(root, 450);
    BuildText(root, 610);
}
