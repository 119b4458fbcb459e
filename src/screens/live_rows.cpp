#include "screens/live_rows.h"

#include "gui/button.h"
#include "gui/drop_list.h"
#include "gui/manager.h"
#include "gui/multi_text.h"
#include "gui/slider.h"
#include "gui/text_box.h"
#include "gui/window.h"

#include <algorithm>

namespace {

// Units.
constexpr int32_t kHigh = 25;
constexpr int32_t kPitch = 36;
constexpr int32_t kLabelWide = 250;
constexpr int32_t kControlWide = 280;
constexpr int32_t kColumnGap = 12;
constexpr int32_t kHelpGap = 8;
constexpr int32_t kHelpHigh = 66;
constexpr int32_t kDropHeight = 220;
constexpr float kPercent = 100.0f;

} // namespace

LiveRows::LiveRows(GHOSTMANAGER_WINDOW* parent, OptionTab tab, bool room,
                   std::function<void()> whenChanged)
    : changed(std::move(whenChanged)) {
    for (const OPTION_ROW& row : OptionRows()) {
        if (row.tab == tab && row.effect == OptionEffect::kAtOnce && (room || !row.ofRoom)) {
            MakeRow(parent, row);
        }
    }
    help = new CGhostMultiText(parent, 0, L"OPTIONHELP", {}, {});
}

void LiveRows::MakeRow(GHOSTMANAGER_WINDOW* parent, const OPTION_ROW& row) {
    ROW made;
    made.row = &row;
    made.label = new CGhostTextBox(parent, 0, L"TEXT_RIGHT", row.label, {});
    made.label->SetToolTip(row.help);
    if (row.kind == OptionKind::kSlider) {
        made.slider = new CGhostSlider(parent, 0, row.slider.style, row.slider.minimum * kPercent,
                                       row.slider.range * kPercent, {});
        made.slider->SetValue(StoredSlider(row));
        made.slider->SetToolTip(row.help);
        signals.Watch(made.slider->OnChange, [this, &row](CGhostSlider*, float value) {
            StoreSlider(row, value);
            changed();
        });
    } else {
        made.list = new CGhostDropList(parent, 0, L"DROPLIST", {}, kDropHeight, {});
        for (const OPTION_CHOICE& choice : row.choices) {
            made.list->AddItem(choice.text);
        }
        made.list->SetToolTip(row.help);
        made.list->Arrow()->SetToolTip(row.help);
        signals.Watch(made.list->OnSelect,
                      [this, &row](CGhostDropList*, int index, GHOSTLIST_ITEM*) {
                          if (StoreChoice(row, index)) {
                              changed();
                          }
                      });
    }
    rows.push_back(std::move(made));
}

void LiveRows::Layout(const GUI_RECT& place) {
    const int32_t left = place.x + (place.width - kLabelWide - kColumnGap - kControlWide) / 2 +
                         kLabelWide + kColumnGap;
    int32_t y = place.y;
    for (const ROW& row : rows) {
        row.label->SetPos(left - kColumnGap - kLabelWide, y, kLabelWide, kHigh);
        if (row.list != nullptr) {
            row.list->SetPos(left, y, kControlWide, kHigh);
        } else {
            row.slider->SetPos(left, y, kControlWide, kHigh);
        }
        y += kPitch;
    }
    help->SetPos(place.x + kColumnGap, y + kHelpGap, place.width - 2 * kColumnGap, kHelpHigh);
}

int32_t LiveRows::WantedHeight() const {
    return static_cast<int32_t>(rows.size()) * kPitch + kHelpGap + kHelpHigh;
}

void LiveRows::SetVisible(bool wanted) {
    visible = wanted;
    for (const ROW& row : rows) {
        row.label->SetVisible(visible);
        if (row.list != nullptr) {
            row.list->SetVisible(visible);
        } else {
            row.slider->SetVisible(visible);
        }
    }
    help->SetVisible(visible);
    Update();
}

void LiveRows::TakeFocus() {
    if (!rows.empty()) {
        CGhostManager::Get().SetFocus(Stops().front());
    }
}

bool LiveRows::HasFocus(const ROW& row) {
    const GHOSTMANAGER_WINDOW* const focus = CGhostManager::Get().FocusWindow();
    return focus != nullptr &&
           (row.list != nullptr ? focus == row.list->window || focus == row.list->List()->window
                                : focus == row.slider->window);
}

// A key of the program's own may change what a row shows, as F11 does.
void LiveRows::Update() {
    if (!visible) {
        return;
    }
    for (ROW& row : rows) {
        if (row.list == nullptr) {
            continue;
        }
        if (std::wstring now = StoredText(*row.row); row.shown != now) {
            row.shown = std::move(now);
            row.list->SetSelected(StoredChoice(*row.row), false);
            row.list->SetCaption(row.shown);
        }
    }
    const auto row = std::find_if(rows.begin(), rows.end(), HasFocus);
    const std::wstring text = row != rows.end() ? row->row->help : L"";
    if (text != help->Text()) {
        help->SetText(text);
    }
}

std::vector<GHOSTMANAGER_WINDOW*> LiveRows::Stops() const {
    std::vector<GHOSTMANAGER_WINDOW*> stops;
    stops.reserve(rows.size());
    for (const ROW& row : rows) {
        stops.push_back(row.list != nullptr ? row.list->window : row.slider->window);
    }
    return stops;
}

CGhostDropList* LiveRows::ListOf(std::wstring_view setting) const {
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const ROW& at) { return at.row->setting == setting; });
    return row == rows.end() ? nullptr : row->list;
}

CGhostSlider* LiveRows::SliderOf(std::wstring_view setting) const {
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const ROW& at) { return at.row->setting == setting; });
    return row == rows.end() ? nullptr : row->slider;
}
