// LiveRows: the settings of one topic of option_rows.h that act while a game runs, each change at once.
//
// It has no window of its own: its labels and controls are the parent's children, and end with it.
// Styles: those of the options screen.
// Units: those of the virtual screen. Thread: main.
#pragma once

#include "screens/option_rows.h"
#include "screens/screen_panel.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

class CGhostDropList;
class CGhostMultiText;
class CGhostSlider;
class CGhostTextBox;

class LiveRows {
public:
    // `room`: with the rows of the room's pictures. `changed` is called after each change.
    LiveRows(GHOSTMANAGER_WINDOW* parent, OptionTab tab, bool room,
             std::function<void()> whenChanged);
    LiveRows(const LiveRows&) = delete;
    LiveRows& operator=(const LiveRows&) = delete;

    void Layout(const GUI_RECT& place);
    void SetVisible(bool visible);
    void TakeFocus();
    // Once a round: shows what the settings hold now, and explains the row that has the focus.
    void Update();

    [[nodiscard]] int32_t WantedHeight() const;
    // Every control that can have the focus.
    [[nodiscard]] std::vector<GHOSTMANAGER_WINDOW*> Stops() const;
    // The control of a setting's row; null if it has none of that kind.
    [[nodiscard]] CGhostDropList* ListOf(std::wstring_view setting) const;
    [[nodiscard]] CGhostSlider* SliderOf(std::wstring_view setting) const;
    [[nodiscard]] size_t Count() const { return rows.size(); }

private:
    struct ROW {
        const OPTION_ROW* row = nullptr;
        CGhostTextBox* label = nullptr;
        CGhostDropList* list = nullptr;
        CGhostSlider* slider = nullptr;
        std::wstring shown; // of a list
    };
    void MakeRow(GHOSTMANAGER_WINDOW* parent, const OPTION_ROW& row);
    [[nodiscard]] static bool HasFocus(const ROW& row);

    std::function<void()> changed;
    std::vector<ROW> rows;
    CGhostMultiText* help;
    bool visible = true;
    ScreenSignals signals;
};
