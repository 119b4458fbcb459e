#include "screens/slots_panel.h"

#include "base/text.h"
#include "gui/button.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window.h"
#include "gui/window_ex.h"
#include "screens/slot_cell.h"

#include <algorithm>

namespace {

// Units.
constexpr int32_t kColumns = 5;
constexpr int32_t kRows = 2;
constexpr int32_t kGap = 12;
constexpr int32_t kTop = 8; // below the title bar
constexpr int32_t kMessageHeight = 28;
constexpr int32_t kButtonHeight = 28;
constexpr int32_t kInnerWidth = kColumns * SlotCell::kWidth + (kColumns - 1) * kGap;
// The buttons fill the row, so that every direction leads to the next one.
constexpr int32_t kButtonWidth = (kInnerWidth - (static_cast<int32_t>(kSlotButtons) - 1) * kGap) /
                                 static_cast<int32_t>(kSlotButtons);
constexpr int32_t kMessageTop = kTop + kRows * (SlotCell::kHeight + kGap);
constexpr int32_t kButtonsTop = kMessageTop + kMessageHeight + kGap;
constexpr int32_t kInnerHeight = kButtonsTop + kButtonHeight + 4;

struct BUTTON_ROW {
    const wchar_t* caption;
    const wchar_t* help;
};
constexpr BUTTON_ROW kButtons[kSlotButtons] = {
    {L"Load",      L"Goes on from this slot. It can be undone"                       },
    {L"Save",      L"Saves the game here. What was in the slot can be brought back"  },
    {L"Delete",    L"Empties the slot. It can be undone"                             },
    {L"Undo Save", L"Brings back what was in this slot before; once more undoes that"},
    {L"Undo Load", L"Goes on from where you were before you loaded a slot"           },
    {L"Close",     L"Back to the game"                                               },
};

constexpr const wchar_t* kHowTo =
    L"Return, a controller's lower button or a double click loads a slot, or saves to an empty one";

} // namespace

CGUISlotsPanel::~CGUISlotsPanel() {
    if (IsShown()) {
        CGhostManager::Get().DestroyWindow(dimmed->window);
    }
}

void CGUISlotsPanel::Open(const std::wstring& gameTitle) {
    if (IsShown()) {
        return;
    }
    list = {};
    listed = false;
    waits = false;
    chosen = 1;
    Make(gameTitle);
    Place();
    CGhostManager::Get().TakeInput(dimmed->window);
    cells[0]->SetFocus();
    ShowList();
    Say(kHowTo, false);
    Order(SlotAct::kList);
}

void CGUISlotsPanel::Make(const std::wstring& gameTitle) {
    dimmed = new CGhostWindowEx(nullptr, 0, L"MESSAGEBOXBG", L"", CGhostWindowEx::kNoSignals, {});
    box = new CGhostWindowEx(
        dimmed->window, 0, L"SLOTSWINDOW", L"Saved States: " + gameTitle,
        CGhostWindowEx::kFrame | CGhostWindowEx::kTitle | CGhostWindowEx::kNoButtons, {});
    for (uint32_t slot = 1; slot <= kStateSlots; ++slot) {
        SlotCell* const cell = new SlotCell(box->window, slot, {});
        cells[slot - 1] = cell;
        signals.Watch(cell->OnChosen, [this](SlotCell* one) { Choose(one->Slot()); });
        signals.Watch(cell->OnTaken, [this](SlotCell* one) { TakeSlot(one->Slot()); });
        signals.Watch(cell->OnDelete, [this](SlotCell*) { Press(SlotButton::kDelete); });
    }
    message = new CGhostTextBox(box->window, 0, L"SLOTS_MESSAGE", L"", {});
    for (size_t i = 0; i < kSlotButtons; ++i) {
        buttons[i] = new CGhostButton(box->window, 0, L"BUTTON2", kButtons[i].caption, 0, {});
        buttons[i]->SetToolTip(kButtons[i].help);
        const auto which = static_cast<SlotButton>(i);
        signals.Watch(buttons[i]->OnClick,
                      [this, which](CGhostButton*, int, int, unsigned) { Press(which); });
    }
}

void CGUISlotsPanel::Place() {
    screen = CGhostManager::Get().ScreenRect();
    dimmed->SetPos(0, 0, screen.width, screen.height);
    GUI_RECT outer;
    GUI_RECT client;
    box->SetPos(0, 0, kInnerWidth, kInnerHeight);
    CGhostManager::Get().GetWindowRects(box->window, &outer, &client, nullptr);
    const int32_t width = kInnerWidth + outer.width - client.width;
    const int32_t height = kInnerHeight + outer.height - client.height;
    box->SetPos((screen.width - width) / 2, (screen.height - height) / 2, width, height);
    for (int32_t i = 0; i < kColumns * kRows; ++i) {
        cells[static_cast<size_t>(i)]->SetPos(i % kColumns * (SlotCell::kWidth + kGap),
                                              kTop + i / kColumns * (SlotCell::kHeight + kGap),
                                              SlotCell::kWidth, SlotCell::kHeight);
    }
    message->SetPos(0, kMessageTop, kInnerWidth, kMessageHeight);
    int32_t x = 0;
    for (CGhostButton* const button : buttons) {
        button->SetPos(x, kButtonsTop, kButtonWidth, kButtonHeight);
        x += kButtonWidth + kGap;
    }
}

void CGUISlotsPanel::Close() {
    if (!IsShown()) {
        return;
    }
    signals = {};
    CGhostManager::Get().DestroyWindow(dimmed->window);
    dimmed = nullptr;
    box = nullptr;
    message = nullptr;
    cells = {};
    buttons = {};
    calls.closed();
}

void CGUISlotsPanel::Update() {
    if (IsShown() && CGhostManager::Get().ScreenRect() != screen) {
        Place();
    }
}

void CGUISlotsPanel::Choose(uint32_t slot) {
    chosen = slot;
    for (SlotCell* const cell : cells) {
        cell->SetChosen(cell->Slot() == slot);
    }
    FitButtons();
}

void CGUISlotsPanel::TakeSlot(uint32_t slot) {
    Choose(slot);
    if (listed) {
        Press(list.slots[slot - 1].filled ? SlotButton::kLoad : SlotButton::kSave);
    }
}

void CGUISlotsPanel::Press(SlotButton which) {
    if (which == SlotButton::kClose) {
        Close();
        return;
    }
    static constexpr SlotAct kActs[] = {SlotAct::kLoad, SlotAct::kSave, SlotAct::kDelete,
                                        SlotAct::kUndoSlot, SlotAct::kUndoLoad};
    if (Button(which)->IsEnabled()) {
        Order(kActs[static_cast<size_t>(which)]);
    }
}

// One at a time: the next would be about slots that are not shown yet.
void CGUISlotsPanel::Order(SlotAct act) {
    if (!waits) {
        waits = true;
        calls.order(act, chosen);
    }
}

void CGUISlotsPanel::Say(const std::wstring& text, bool trouble) {
    message->SetStyle(trouble ? L"SLOTS_TROUBLE" : L"SLOTS_MESSAGE");
    message->SetText(text);
    message->SetToolTip(trouble ? text : std::wstring()); // it may be longer than the line
}

void CGUISlotsPanel::Take(const SLOT_ANSWER& answer) {
    if (!IsShown()) {
        return;
    }
    waits = false;
    list = answer.list;
    ShowList();
    const SlotAct act = answer.order.act;
    if (!answer.text.empty()) {
        Say(WideFromUtf8(answer.text), !answer.done);
    }
    if (!listed) {
        listed = true;
        const auto newest = std::max_element(list.slots.begin(), list.slots.end(),
                                             [](const SLOT_FACTS& a, const SLOT_FACTS& b) {
                                                 return (a.readable ? a.label.takenAt : INT64_MIN) <
                                                        (b.readable ? b.label.takenAt : INT64_MIN);
                                             });
        // Unless the player has chosen another meanwhile.
        if (chosen == 1) {
            cells[static_cast<size_t>(newest - list.slots.begin())]->SetFocus();
        }
    }
    FitButtons();
    if (answer.done && (act == SlotAct::kLoad || act == SlotAct::kUndoLoad)) {
        Close();
    }
}

void CGUISlotsPanel::ShowList() {
    for (SlotCell* const cell : cells) {
        cell->Show(list.slots[cell->Slot() - 1]);
    }
    FitButtons();
}

// A button that can do nothing any more hands the focus back to the slot.
void CGUISlotsPanel::FitButtons() {
    const SLOT_FACTS& facts = list.slots[chosen - 1];
    const std::array<bool, kSlotButtons> can = {
        facts.filled, true, facts.filled, facts.hasBefore, list.hasLoadBefore, true};
    Button(SlotButton::kUndoSlot)
        ->SetCaption(!facts.filled && facts.hasBefore ? L"Undo Delete" : L"Undo Save");
    const GHOSTMANAGER_WINDOW* const focus = CGhostManager::Get().FocusWindow();
    for (size_t i = 0; i < kSlotButtons; ++i) {
        if (buttons[i]->IsEnabled() == can[i]) {
            continue;
        }
        if (!can[i] && focus == buttons[i]->window) {
            cells[chosen - 1]->SetFocus();
        }
        buttons[i]->SetEnabled(can[i]);
    }
}
