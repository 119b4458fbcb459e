// CGUISlotsPanel: the saved states of the running game: ten slots, each with its picture, date and time played, and
// what can be done with the chosen one. It lies over the game, dims it and takes all input.
//
// Return, space, a controller's lower button and a double click on a slot load it, or save to it if it is empty; the
// delete key deletes it. Everything else is done by the buttons: Load, Save, Delete, Undo Save or Undo Delete of the
// chosen slot, and Undo Load. When something has been loaded the panel closes; after all else it stays.
// It does nothing itself: it says what is wanted, and shows the answer.
//
// Units: those of the virtual screen. Thread: main.
#pragma once

#include "host/slot_worker.h"
#include "screens/screen_panel.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

class CGhostButton;
class CGhostTextBox;
class CGhostWindowEx;
class SlotCell;

struct SLOTS_PANEL_CALLS {
    std::function<void(SlotAct act, uint32_t slot)> order; // each is answered by Take
    std::function<void()> closed;
};

enum class SlotButton : uint8_t { kLoad, kSave, kDelete, kUndoSlot, kUndoLoad, kClose };
inline constexpr size_t kSlotButtons = 6;

class CGUISlotsPanel {
public:
    explicit CGUISlotsPanel(SLOTS_PANEL_CALLS panelCalls)
        : calls(std::move(panelCalls)) {}
    ~CGUISlotsPanel();
    CGUISlotsPanel(const CGUISlotsPanel&) = delete;
    CGUISlotsPanel& operator=(const CGUISlotsPanel&) = delete;

    // Asks for the list. The focus is on the slot that was saved last.
    void Open(const std::wstring& gameTitle);
    void Close();
    [[nodiscard]] bool IsShown() const { return dimmed != nullptr; }

    // The answer to an order; also one that comes after the panel has closed.
    void Take(const SLOT_ANSWER& answer);

    // Once a round, before the toolkit's tick.
    void Update();

    [[nodiscard]] bool Waits() const { return waits; }       // for the answer to an order
    [[nodiscard]] uint32_t Chosen() const { return chosen; } // slot, from 1
    // While it is shown.
    [[nodiscard]] SlotCell* Cell(uint32_t slot) const { return cells[slot - 1]; }
    [[nodiscard]] CGhostButton* Button(SlotButton which) const {
        return buttons[static_cast<size_t>(which)];
    }
    [[nodiscard]] const CGhostTextBox* Message() const { return message; }
    [[nodiscard]] const CGhostWindowEx* Box() const { return box; }

private:
    void Make(const std::wstring& gameTitle);
    void Place();
    void Choose(uint32_t slot);
    void TakeSlot(uint32_t slot);
    void Press(SlotButton which);
    void Order(SlotAct act);
    void Say(const std::wstring& text, bool trouble);
    void ShowList();
    void FitButtons();

    SLOTS_PANEL_CALLS calls;
    CGhostWindowEx* dimmed = nullptr; // null while it is closed; the rest is in it
    CGhostWindowEx* box = nullptr;
    std::array<SlotCell*, kStateSlots> cells{};
    std::array<CGhostButton*, kSlotButtons> buttons{};
    CGhostTextBox* message = nullptr;
    GUI_RECT screen; // that it was placed for
    SLOT_LIST list;
    uint32_t chosen = 1;
    bool listed = false; // since it was opened
    bool waits = false;  // for the answer to an order
    ScreenSignals signals;
};
