// CGhostPopup: a menu at the mouse cursor, closed by a choice, escape or the loss of the focus.
//
// Style: POPUPMENU, a list record.
#pragma once

#include "gui/control.h"
#include "gui/list.h"

class CGhostPopup : public CGhostGUIHandlerEx {
public:
    // Ends with its parent, over which it floats.
    CGhostPopup(GHOSTMANAGER_WINDOW* parent, uint32_t creationId);

    int32_t AddItem(const std::wstring& text, int32_t image = -1, uint32_t itemFlags = 0,
                    uint64_t value = 0);
    void Clear();
    void Show();                       // at the cursor
    void ShowAt(int32_t x, int32_t y); // on the screen
    void Hide();
    [[nodiscard]] bool IsShown() const { return shown; }
    [[nodiscard]] CGhostList* List() const { return list; }

    GuiSignal<void(CGhostPopup*, int, GHOSTLIST_ITEM*)> OnSelect;

    void Destroy() override { delete this; }
    void OnTick(unsigned microseconds) override;

protected:
    ~CGhostPopup() override = default;

private:
    [[nodiscard]] bool HasFocus() const;
    [[nodiscard]] bool IsOwnPart(const void* part) const;

    CGhostList* list = nullptr; // its window is owned by this one's, and ends first
    GUI_RECT screen;            // that it was placed for
    bool shown = false;
    uint32_t focusBefore = 0; // the id of the window that had it
};
