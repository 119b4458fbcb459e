// The browser's search: the field for a name, and the menu with the other filters over the list of games.
//
// Thread: main.
#pragma once

#include "library/row_filter.h"
#include "screens/screen_panel.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

class CGhostButton;
class CGhostCheckBox;
class CGhostDropList;
class CGhostEdit;
class CGhostTextBox;
class CGhostWindowEx;

// Which games are looked through at all.
enum class ShownGames : uint8_t { kAll, kFavourites, kRecentlyPlayed };

class BrowserFilters {
public:
    // `changed`: the player has chosen something else.
    BrowserFilters(GHOSTMANAGER_WINDOW* parent, std::function<void()> changed);
    ~BrowserFilters();
    BrowserFilters(const BrowserFilters&) = delete;
    BrowserFilters& operator=(const BrowserFilters&) = delete;

    // The strip is kHeight units high; the menu opens under it.
    void Layout(int32_t x, int32_t y, int32_t width);
    void ShowCount(size_t games); // "Showing %d games"
    void CloseMenu();
    void ClearName();
    void SetVisible(bool visible);

    // The other filters choose among these.
    [[nodiscard]] ShownGames Games() const;
    [[nodiscard]] ROW_CHOICES Choices() const;
    // Whether something else than the name hides games.
    [[nodiscard]] bool MenuFilters() const;

    [[nodiscard]] CGhostEdit* Name() const { return name; }
    [[nodiscard]] CGhostEdit* Year() const { return year; }
    [[nodiscard]] CGhostButton* MenuButton() const { return menuButton; }
    [[nodiscard]] CGhostWindowEx* Menu() const { return menu; }
    [[nodiscard]] CGhostDropList* Show() const { return show; }
    [[nodiscard]] CGhostDropList* PlayType() const { return playType; }
    [[nodiscard]] CGhostDropList* Group() const { return group; }
    [[nodiscard]] CGhostDropList* Mode() const { return regionMode; }
    [[nodiscard]] CGhostCheckBox* Region(size_t index) const { return regions[index]; }
    [[nodiscard]] const CGhostTextBox* Count() const { return count; }

    static constexpr int32_t kHeight = 41;
    static constexpr size_t kRegions = 6;

private:
    void MakeMenu();
    void Changed();
    CGhostTextBox* Label(GHOSTMANAGER_WINDOW* parent, const wchar_t* text);

    std::function<void()> changed;
    CGhostWindowEx* strip;
    CGhostTextBox* nameLabel;
    CGhostEdit* name;
    CGhostButton* menuButton;
    CGhostTextBox* count;
    CGhostWindowEx* menu;
    CGhostTextBox* showLabel;
    CGhostDropList* show;
    CGhostTextBox* yearLabel;
    CGhostEdit* year;
    CGhostTextBox* playTypeLabel;
    CGhostDropList* playType;
    CGhostTextBox* groupLabel;
    CGhostDropList* group;
    CGhostDropList* regionMode;
    std::array<CGhostCheckBox*, kRegions> regions{};
    ScreenSignals signals;
};
