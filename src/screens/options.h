// CGUIOptions: the program's settings on four tabs. The rows of the first three are those of option_rows.h; the fourth
// has the inputs.
//
// What the player chooses from lists goes to the settings when the screen closes, all at once, and the settings are
// saved. Sliders act as they move. A stored value that is no choice of its list is shown and stays, unless the player
// chooses another.
// Lifetime: the destructor is the closing.
#pragma once

#include "screens/option_rows.h"
#include "screens/screen_panel.h"

#include <array>
#include <memory>
#include <string_view>
#include <vector>

class CGhostButton;
class CGhostDropList;
class CGhostMultiText;
class CGhostSlider;
class CGhostTextBox;
class CGhostWindowEx;
class InputTab;
class ScreenHost;

class CGUIOptions final : public CGUIPanel {
public:
    CGUIOptions(GHOSTMANAGER_WINDOW* parentWindow, ScreenHost& program);
    ~CGUIOptions() override;

    void Layout(int32_t width, int32_t height) override;
    void Update() override;
    [[nodiscard]] bool TakeBack() override;
    void TakeFocus() override;

    void ShowTab(OptionTab tab);
    [[nodiscard]] OptionTab ShownTab() const { return shown; }

    [[nodiscard]] CGhostButton* TabButton(OptionTab tab) const { return tabs[Index(tab)]; }
    [[nodiscard]] CGhostWindowEx* TabWindow(OptionTab tab) const { return pages[Index(tab)]; }
    // What the row with the focus does; null on the page of the inputs.
    [[nodiscard]] CGhostMultiText* Help() const { return helps[Index(shown)]; }
    [[nodiscard]] InputTab& Inputs() const { return *inputs; }
    // The control of a setting's row; null if it has none of that kind.
    [[nodiscard]] CGhostDropList* ListOf(std::wstring_view setting) const;
    [[nodiscard]] CGhostSlider* SliderOf(std::wstring_view setting) const;
    [[nodiscard]] const CGhostTextBox* MarkOf(std::wstring_view setting) const;

private:
    struct ROW {
        const OPTION_ROW* row;
        CGhostTextBox* label;
        CGhostDropList* list; // null in a row with a slider
        CGhostSlider* slider; // null in a row with a list
        int32_t stored;       // of the list: the choice that the setting stands for
        CGhostTextBox* mark;  // from when on a change acts; null: at once
    };

    static constexpr size_t Index(OptionTab tab) { return static_cast<size_t>(tab); }
    void MakeRow(const OPTION_ROW& row);
    void MakeDropList(ROW& made, GHOSTMANAGER_WINDOW* page);
    void MakeSlider(ROW& made, GHOSTMANAGER_WINDOW* page);
    void LayoutRows(OptionTab tab, int32_t width, int32_t height);
    void ShowHelp();
    void FollowSettings();
    [[nodiscard]] const ROW* RowOf(std::wstring_view setting) const;
    void Store();

    ScreenHost& host;
    CGhostTextBox* title;
    std::array<CGhostButton*, kOptionTabs> tabs{};
    std::array<CGhostWindowEx*, kOptionTabs> pages{};
    std::array<CGhostTextBox*, kOptionTabs> notices{}; // null where there is none
    std::vector<ROW> rows;
    std::array<CGhostMultiText*, kOptionTabs> helps{};
    std::unique_ptr<InputTab> inputs;
    OptionTab shown = OptionTab::kGeneral;
};
