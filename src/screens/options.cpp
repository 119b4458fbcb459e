#include "screens/options.h"

#include "gui/button.h"
#include "gui/drop_list.h"
#include "gui/manager.h"
#include "gui/multi_text.h"
#include "gui/slider.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "screens/input_tab.h"
#include "screens/screen_host.h"

#include <algorithm>

namespace {

constexpr const wchar_t* kTabNames[kOptionTabs] = {L"General", L"Graphics", L"Picture", L"Sound",
                                                   L"Input"};
constexpr const wchar_t* kNotice = L"Some of these settings require a restart to become active";
constexpr float kPercent = 100.0f;

// Units.
constexpr int32_t kHigh = 25;
constexpr int32_t kTabWide = 104;
constexpr int32_t kTabPitch = 110;
constexpr int32_t kTabTop = 47;
constexpr int32_t kPageTop = 84;
constexpr int32_t kPageWide = 864;
constexpr int32_t kPageFoot = 20; // below the pages, which are as high as they can be
constexpr int32_t kRowTop = 28;
constexpr int32_t kRowPitch = 50;   // or less, where a page has more rows than that holds
constexpr int32_t kNoticeFoot = 36; // from the lower edge of a page to the top of the notice
constexpr int32_t kFewRows = 7;     // the help of a page with fewer is where it would be with these
constexpr int32_t kHelpGap = 16;
constexpr int32_t kHelpHigh = 60;
constexpr int32_t kLabelWide = 260;
constexpr int32_t kControlWide = 260;
constexpr int32_t kMarkWide = 160;
constexpr int32_t kColumnGap = 12;
constexpr int32_t kDropHeight = 220;

const wchar_t* EffectText(OptionEffect effect) {
    switch (effect) {
    case OptionEffect::kRestart: return L"after a restart";
    case OptionEffect::kNextGame: return L"from the next game on";
    default: return L"";
    }
}

} // namespace

CGUIOptions::CGUIOptions(GHOSTMANAGER_WINDOW* parentWindow, ScreenHost& program)
    : CGUIPanel(parentWindow)
    , host(program)
    , title(Own(new CGhostTextBox(parent, 0, L"SECTIONTEXT", L"OPTIONS", {}))) {
    for (size_t tab = 0; tab < kOptionTabs; ++tab) {
        tabs[tab] = Own(new CGhostButton(parent, static_cast<uint32_t>(tab), L"OPTIONBUTTON",
                                         kTabNames[tab], CGhostButton::kLatches, {}));
        signals.Watch(tabs[tab]->OnClick, [this, tab](CGhostButton*, int, int, unsigned) {
            ShowTab(static_cast<OptionTab>(tab));
        });
    }
    for (CGhostWindowEx*& page : pages) {
        page = Own(new CGhostWindowEx(parent, 0, L"OPTIONWINDOW", {}, CGhostWindowEx::kFrame, {}));
    }
    for (const OPTION_ROW& row : OptionRows()) {
        MakeRow(row);
    }
    for (const OptionTab tab : {OptionTab::kGeneral, OptionTab::kGraphics}) {
        notices[Index(tab)] =
            new CGhostTextBox(pages[Index(tab)]->window, 0, L"TEXT_CENTER", kNotice, {});
    }
    for (const OptionTab tab :
         {OptionTab::kGeneral, OptionTab::kGraphics, OptionTab::kPicture, OptionTab::kSound}) {
        helps[Index(tab)] =
            new CGhostMultiText(pages[Index(tab)]->window, 0, L"OPTIONHELP", {}, {});
    }
    inputs = std::make_unique<InputTab>(pages[Index(OptionTab::kInput)]->window, host);
    ShowTab(OptionTab::kGeneral);
}

CGUIOptions::~CGUIOptions() {
    inputs.reset();
    Store();
}

void CGUIOptions::MakeRow(const OPTION_ROW& row) {
    GHOSTMANAGER_WINDOW* const page = pages[Index(row.tab)]->window;
    ROW made{};
    made.row = &row;
    made.label = new CGhostTextBox(page, 0, L"TEXT_RIGHT", row.label, {});
    made.label->SetToolTip(row.help);
    if (row.kind == OptionKind::kSlider) {
        MakeSlider(made, page);
    } else {
        MakeDropList(made, page);
    }
    if (row.effect != OptionEffect::kAtOnce) {
        made.mark = new CGhostTextBox(page, 0, L"TEXT_SMALL", EffectText(row.effect), {});
        made.mark->SetToolTip(row.help);
    }
    rows.push_back(made);
}

void CGUIOptions::MakeDropList(ROW& made, GHOSTMANAGER_WINDOW* page) {
    const OPTION_ROW& row = *made.row;
    made.list = new CGhostDropList(page, 0, L"DROPLIST", {}, kDropHeight, {});
    for (const OPTION_CHOICE& choice : row.choices) {
        made.list->AddItem(choice.text);
    }
    made.stored = StoredChoice(row);
    made.list->SetSelected(made.stored, false);
    made.list->SetCaption(StoredText(row));
    made.list->SetToolTip(row.help);
    made.list->Arrow()->SetToolTip(row.help);
}

void CGUIOptions::MakeSlider(ROW& made, GHOSTMANAGER_WINDOW* page) {
    const OPTION_ROW& row = *made.row;
    made.slider = new CGhostSlider(page, 0, row.slider.style, row.slider.minimum * kPercent,
                                   row.slider.range * kPercent, {});
    made.slider->SetValue(StoredSlider(row));
    made.slider->SetToolTip(row.help);
    signals.Watch(made.slider->OnChange, [this, &row](CGhostSlider*, float value) {
        StoreSlider(row, value);
        host.SettingsChanged();
    });
}

// ---- Places.

void CGUIOptions::Layout(int32_t width, int32_t height) {
    title->SetPos((width - 680) / 2, 10, 680, kHigh);
    const int32_t tabsWide = static_cast<int32_t>(kOptionTabs - 1) * kTabPitch + kTabWide;
    int32_t x = (width - tabsWide) / 2;
    for (CGhostButton* const tab : tabs) {
        tab->SetPos(x, kTabTop, kTabWide, kHigh);
        x += kTabPitch;
    }
    const int32_t left = (width - kPageWide) / 2;
    const int32_t high = height - kPageTop - kPageFoot;
    for (const OptionTab tab :
         {OptionTab::kGeneral, OptionTab::kGraphics, OptionTab::kPicture, OptionTab::kSound}) {
        CGhostWindowEx* const page = pages[Index(tab)];
        page->SetPos(left, kPageTop, kPageWide, high);
        LayoutRows(tab, page->window->clientRect.width, page->window->clientRect.height);
    }
    CGhostWindowEx* const inputPage = pages[Index(OptionTab::kInput)];
    inputPage->SetPos(left, kPageTop, kPageWide, high);
    inputs->Layout(inputPage->window->clientRect.width, inputPage->window->clientRect.height);
}

void CGUIOptions::LayoutRows(OptionTab tab, int32_t width, int32_t height) {
    // The controls lie in the middle; the labels end at their left.
    const int32_t left = (width - kControlWide) / 2;
    const auto count = static_cast<int32_t>(std::count_if(
        rows.begin(), rows.end(), [&](const ROW& row) { return row.row->tab == tab; }));
    const int32_t lines = std::max(count, kFewRows);
    const int32_t below = kHelpGap + kHelpHigh + kNoticeFoot;
    const int32_t pitch = std::min(kRowPitch, (height - kRowTop - below) / lines);
    int32_t y = kRowTop;
    for (const ROW& row : rows) {
        if (row.row->tab != tab) {
            continue;
        }
        row.label->SetPos(left - kColumnGap - kLabelWide, y, kLabelWide, kHigh);
        if (row.list != nullptr) {
            row.list->SetPos(left, y, kControlWide, kHigh);
        } else {
            row.slider->SetPos(left, y, kControlWide, kHigh);
        }
        if (row.mark != nullptr) {
            row.mark->SetPos(left + kControlWide + kColumnGap, y, kMarkWide, kHigh);
        }
        y += pitch;
    }
    helps[Index(tab)]->SetPos(left, kRowTop + lines * pitch + kHelpGap, width - left, kHelpHigh);
    if (CGhostTextBox* const notice = notices[Index(tab)]; notice != nullptr) {
        notice->SetPos(0, height - kNoticeFoot, width, 20);
    }
}

// ---- Tabs and focus.

void CGUIOptions::ShowTab(OptionTab tab) {
    shown = tab;
    for (size_t i = 0; i < kOptionTabs; ++i) {
        tabs[i]->SetDown(i == Index(tab));
        pages[i]->SetVisible(i == Index(tab));
    }
}

void CGUIOptions::Update() {
    // A key that was pressed on the chosen tab and taken away from it leaves the button up.
    if (CGhostButton* const tab = tabs[Index(shown)]; !tab->IsDown()) {
        tab->SetDown(true);
    }
    inputs->Update();
    FollowSettings();
    ShowHelp();
}

// A key of the program's own may change what a row shows, as F11 does, and the row must not change it back.
void CGUIOptions::FollowSettings() {
    for (ROW& row : rows) {
        if (row.list == nullptr) {
            continue;
        }
        const int32_t now = StoredChoice(*row.row);
        if (now != row.stored) {
            row.stored = now;
            row.list->SetSelected(now, false);
            row.list->SetCaption(StoredText(*row.row));
        }
    }
}

bool CGUIOptions::TakeBack() {
    return inputs->TakeBack();
}

// The tips need a mouse; with keys and a controller the row that has the focus explains itself.
void CGUIOptions::ShowHelp() {
    CGhostMultiText* const help =
        helps[Index(shown)]; // the page of the inputs tells the same itself
    if (help == nullptr) {
        return;
    }
    const GHOSTMANAGER_WINDOW* const focus = CGhostManager::Get().FocusWindow();
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const ROW& at) {
        return at.list != nullptr ? focus == at.list->window || focus == at.list->List()->window
                                  : focus == at.slider->window;
    });
    const std::wstring text = row != rows.end() && focus != nullptr ? row->row->help : L"";
    if (text != help->Text()) {
        help->SetText(text);
    }
}

void CGUIOptions::TakeFocus() {
    tabs[Index(shown)]->SetFocus();
}

// ---- Settings.

const CGUIOptions::ROW* CGUIOptions::RowOf(std::wstring_view setting) const {
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const ROW& at) { return at.row->setting == setting; });
    return row == rows.end() ? nullptr : &*row;
}

CGhostDropList* CGUIOptions::ListOf(std::wstring_view setting) const {
    const ROW* const row = RowOf(setting);
    return row != nullptr ? row->list : nullptr;
}

CGhostSlider* CGUIOptions::SliderOf(std::wstring_view setting) const {
    const ROW* const row = RowOf(setting);
    return row != nullptr ? row->slider : nullptr;
}

const CGhostTextBox* CGUIOptions::MarkOf(std::wstring_view setting) const {
    const ROW* const row = RowOf(setting);
    return row != nullptr ? row->mark : nullptr;
}

void CGUIOptions::Store() {
    bool changed = false;
    for (const ROW& row : rows) {
        if (row.list != nullptr) {
            changed = StoreChoice(*row.row, row.list->Selected()) || changed;
        }
    }
    if (changed) {
        host.SettingsChanged();
    }
    host.SaveSettings();
}
