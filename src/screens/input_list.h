// InputList: the table of actions and their two inputs. Left and right choose which of the inputs the keys and a
// controller are at; a frame shows it.
//
// Mouse: a click on an input chooses it; one on the action's name chooses the first.
// Keys: return begins (OnChoose), delete and backspace clear.
#pragma once

#include "gui/list_view.h"

class InputList final : public CGhostListView {
public:
    // Columns: the action, and an input each.
    static constexpr int32_t kFirstInput = 1;
    static constexpr int32_t kLastInput = 2;

    InputList(GHOSTMANAGER_WINDOW* parent, const GUI_PLACE& place);

    [[nodiscard]] uint32_t Input() const { return static_cast<uint32_t>(column - kFirstInput); }

    GuiSignal<void(InputList*)> OnMoved; // to another row or input
    GuiSignal<void(InputList*)> OnClear;

    void OnMouseDown(int x, int y, unsigned button) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    bool GoWithin(GUI_DIRECTION way) override;
    void TellSelected() override;

private:
    void GoTo(int32_t wantedColumn);

    int32_t column = kFirstInput;
};
