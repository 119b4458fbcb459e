// Controls under test: the process's own manager, empty at the start of each test, with a small theme
// and, where the machine has it, a font.
#pragma once

#include "gui/font.h"
#include "gui/manager.h"
#include "gui/random_tree.h"
#include "gui/theme.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// The data stays for good, as a font's must. False when there is no such file.
inline bool HaveTestFont() {
    static const bool have = [] {
        static std::vector<uint8_t> data;
        std::ifstream file(OMBRELUNE_TEST_FONT, std::ios::binary);
        data.assign(std::istreambuf_iterator<char>(file), {});
        return CGhostFontManager::Get().AddFont("Default", data, 0, 0) >= 0;
    }();
    return have;
}

class ControlTest : public testing::Test {
protected:
    void SetUp() override {
        if (!HaveTestFont()) {
            GTEST_SKIP() << "no font to measure with";
        }
        manager.SetScreen(1280, 720);
        manager.Reset();
        CGhostTheme::Get().ParseTheme(kRandomTheme);
    }
    void TearDown() override { manager.Reset(); }

    void Post(GUI_INPUT_RECORD record) { // and what it brings about
        manager.PostInput(record, now);
        manager.Tick(0);
    }
    void MoveTo(int x, int y) {
        GUI_INPUT_RECORD record;
        record.moved = true;
        record.dx = x - manager.CursorX();
        record.dy = y - manager.CursorY();
        Post(record);
    }
    // Far enough after the last one to be no double click.
    void Press(int button = 1) {
        now += 1000;
        PressAgain(button);
    }
    void PressAgain(int button = 1) {
        GUI_INPUT_RECORD record;
        record.buttonDown = true;
        record.button = button;
        Post(record);
    }
    void Release(int button = 1) {
        GUI_INPUT_RECORD record;
        record.buttonUp = true;
        record.button = button;
        Post(record);
    }
    void ClickAt(int x, int y, int button = 1) {
        MoveTo(x, y);
        Press(button);
        Release(button);
    }
    void DoubleClickAt(int x, int y) {
        ClickAt(x, y);
        PressAgain();
        Release();
    }
    void Wheel(bool up) {
        GUI_INPUT_RECORD record;
        record.wheel = true;
        record.button = up ? 1 : 0;
        Post(record);
    }
    void KeyDown(uint32_t key) {
        GUI_INPUT_RECORD record;
        record.keyDown = true;
        record.key = static_cast<int>(key);
        Post(record);
    }
    void KeyUp(uint32_t key) {
        GUI_INPUT_RECORD record;
        record.keyUp = true;
        record.key = static_cast<int>(key);
        Post(record);
    }
    void Key(uint32_t key) {
        KeyDown(key);
        KeyUp(key);
    }
    void Type(const std::string& text) {
        for (const char character : text) {
            GUI_INPUT_RECORD record;
            record.character = character;
            Post(record);
        }
    }
    void Focus(GHOSTMANAGER_WINDOW* window) {
        manager.SetFocus(window);
        manager.Tick(0);
    }
    [[nodiscard]] GUI_RECT OnScreen(const GHOSTMANAGER_WINDOW* window) const {
        GUI_RECT rect;
        manager.GetScreenRect(window, &rect);
        return rect;
    }
    [[nodiscard]] size_t WindowCount() const {
        size_t count = 0;
        manager.ForEachWindow([&](const GHOSTMANAGER_WINDOW&) { ++count; });
        return count;
    }

    static constexpr uint32_t kReturn = 40, kEscape = 41, kBackspace = 42, kSpace = 44, kHome = 74,
                              kPageUp = 75, kDelete = 76, kEnd = 77, kPageDown = 78, kRight = 79,
                              kLeft = 80, kDown = 81, kUp = 82, kCtrl = 224, kShift = 225;

    CGhostManager& manager = CGhostManager::Get();
    uint64_t now = 1000000; // milliseconds
};
