// The browser's choice of a system: the machine's picture and name between two arrows.
//
// The order is the library's: Master System, Game Gear, NES, arcade, Mega Drive.
// Thread: main.
#pragma once

#include "screens/screen_panel.h"

#include <array>
#include <cstdint>
#include <functional>

class CGhostButton;
class CGhostTextBox;
class CGhostWindowEx;

inline constexpr size_t kSystems = 5;

struct SYSTEM_FACE {
    uint16_t system;      // its number
    const wchar_t* style; // of its picture
    const wchar_t* name;
};
[[nodiscard]] const std::array<SYSTEM_FACE, kSystems>& SystemFaces();

class SystemSwitcher {
public:
    // `step`: the player wants the system before, -1, or behind, +1.
    SystemSwitcher(GHOSTMANAGER_WINDOW* parent, std::function<void(int)> step);
    ~SystemSwitcher();
    SystemSwitcher(const SystemSwitcher&) = delete;
    SystemSwitcher& operator=(const SystemSwitcher&) = delete;

    // kWidth by kHeight units.
    void Layout(int32_t x, int32_t y);
    void Show(size_t selector); // 0 to 4
    void SetVisible(bool wanted);

    [[nodiscard]] CGhostButton* Left() const { return left; }
    [[nodiscard]] CGhostButton* Right() const { return right; }
    [[nodiscard]] const CGhostTextBox* Name() const { return name; }

    static constexpr int32_t kWidth = 312;
    static constexpr int32_t kHeight = 120;

private:
    CGhostButton* left;
    CGhostButton* right;
    CGhostTextBox* name;
    std::array<CGhostWindowEx*, kSystems> faces{};
    size_t shown = 0;
    bool visible = true;
    ScreenSignals signals;
};
