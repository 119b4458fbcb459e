// FirstSteps: how to play, in the place of the news where no web service is set: the keys that lead from the menu to a
// game, through the room and back, as they are bound.
//
// Units: those of the virtual screen. Thread: main.
#pragma once

#include "gui/control.h"

#include <cstdint>
#include <string>
#include <vector>

class CGhostTextBox;
class KeyLine;

class FirstSteps {
public:
    // `foot` is the last line.
    FirstSteps(GHOSTMANAGER_WINDOW* parent, const std::wstring& foot);
    ~FirstSteps();
    FirstSteps(const FirstSteps&) = delete;
    FirstSteps& operator=(const FirstSteps&) = delete;

    void Layout(int32_t x, int32_t y, int32_t width, int32_t height);
    // Reads the keys anew when it appears.
    void SetVisible(bool visible);

    [[nodiscard]] bool IsVisible() const;
    [[nodiscard]] GUI_RECT Place() const;
    // Each row: "[Q] Turn it off."
    [[nodiscard]] std::vector<std::wstring> Texts() const;
    [[nodiscard]] const CGhostTextBox& Foot() const { return *last; }

private:
    struct ROW {
        KeyLine* keys;
        CGhostTextBox* does;
    };
    struct GROUP {
        CGhostTextBox* header;
        std::vector<ROW> rows;
    };

    void ReadKeys();

    CGhostTextBox* back;
    std::vector<GROUP> groups;
    CGhostTextBox* last;
};
