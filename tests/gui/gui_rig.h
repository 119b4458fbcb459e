// A manager of a test's own with handlers that write down what they are told.
#pragma once

#include "gui/handler.h"
#include "gui/manager.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using Log = std::vector<std::string>;

// Writes "name event arguments" for everything it is told.
class RecordingHandler : public CGhostGUIHandler {
public:
    RecordingHandler(Log& sharedLog, std::string ownName)
        : log(sharedLog)
        , name(std::move(ownName)) {}

    void Destroy() override { Write("destroy"); }
    void ShowToolTip(const std::wstring& text) override {
        Write("showtip " + std::string(text.begin(), text.end()));
    }
    void HideToolTip() override { Write("hidetip"); }
    void OnHoverTimeout() override { Write("hover"); }
    void OnFocus(bool gained, void* /*other*/) override { Write(gained ? "focus" : "blur"); }
    void OnResize(int width, int height, int clientWidth, int clientHeight) override {
        Write("resize", {width, height, clientWidth, clientHeight});
    }
    void OnMove(int x, int clientTop) override { Write("move", {x, clientTop}); }
    void OnActivate(void* /*window*/, bool active) override {
        Write(active ? "activate" : "deactivate");
    }
    void OnFrameMouseMove(int x, int y) override { Write("framemove", {x, y}); }
    void OnFrameMouseDown(int x, int y, unsigned button) override {
        Write("framedown", {x, y, static_cast<int>(button)});
    }
    void OnFrameMouseUp(int x, int y, unsigned button) override {
        Write("frameup", {x, y, static_cast<int>(button)});
    }
    void OnFrameMouseWheel(int x, int y, bool up) override {
        Write(up ? "framewheelup" : "framewheeldown", {x, y});
    }
    void OnMouseEnter() override { Write("enter"); }
    void OnMouseMove(int x, int y) override { Write("mousemove", {x, y}); }
    void OnMouseLeave() override { Write("leave"); }
    void OnMouseDoubleClick(int x, int y, unsigned button) override {
        Write("double", {x, y, static_cast<int>(button)});
    }
    void OnMouseDown(int x, int y, unsigned button) override {
        Write("down", {x, y, static_cast<int>(button)});
    }
    void OnMouseUp(int x, int y, unsigned button) override {
        Write("up", {x, y, static_cast<int>(button)});
    }
    void OnMouseWheel(int x, int y, bool up) override {
        Write(up ? "wheelup" : "wheeldown", {x, y});
    }
    void OnKeyDown(GHOSTGUIKey key) override { Write("keydown", {static_cast<int>(key)}); }
    void OnKeyUp(GHOSTGUIKey key) override { Write("keyup", {static_cast<int>(key)}); }
    void OnChar(unsigned character) override { Write("char", {static_cast<int>(character)}); }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) override {
        Write("paint", {surface->Width(), surface->Height()});
        if (colour != 0) {
            surface->FillRect({0, 0, surface->Width(), surface->Height()}, colour);
        }
    }
    void GetClientInset(int* right, int* bottom) override {
        *right = insetRight;
        *bottom = insetBottom;
    }

    uint32_t colour = 0; // fills the client area when it is not 0
    int insetRight = 0;
    int insetBottom = 0;

protected:
    void Write(const std::string& event, const std::vector<int>& arguments = {}) {
        std::string line = name + " " + event;
        for (const int argument : arguments) {
            line += " " + std::to_string(argument);
        }
        log.push_back(line);
    }

private:
    Log& log;
    std::string name;
};

class GuiTest : public testing::Test {
protected:
    // A window with a handler of that name; it lives as long as the test.
    GHOSTMANAGER_WINDOW* Make(const std::string& name, GHOSTMANAGER_WINDOW* parent, GUI_RECT place,
                              bool nonClient = false) {
        handlers.push_back(std::make_unique<RecordingHandler>(log, name));
        GHOSTMANAGER_WINDOW* const window =
            manager.CreateWindow(parent, 0, handlers.back().get(), nonClient);
        manager.SetWindowPos(window, place.x, place.y, place.width, place.height);
        log.clear();
        return window;
    }

    // A frame of that thickness on every side.
    void Frame(GHOSTMANAGER_WINDOW* window, int32_t thickness) {
        GhostBorderStyle border;
        border.type = GhostFrame::kColour;
        border.thickness = {thickness, thickness, thickness, thickness};
        manager.SetWindowFrame(window, &border);
        log.clear();
    }

    GUI_INPUT_RECORD MoveTo(int32_t x, int32_t y) {
        GUI_INPUT_RECORD record;
        record.moved = true;
        record.dx = x - manager.CursorX();
        record.dy = y - manager.CursorY();
        manager.PostInput(record, now);
        return record;
    }
    GUI_INPUT_RECORD Press(int32_t button = 1) {
        GUI_INPUT_RECORD record;
        record.buttonDown = true;
        record.button = button;
        manager.PostInput(record, now);
        return record;
    }
    void Release(int32_t button = 1) {
        GUI_INPUT_RECORD record;
        record.buttonUp = true;
        record.button = button;
        manager.PostInput(record, now);
    }
    void Wheel(bool up) {
        GUI_INPUT_RECORD record;
        record.wheel = true;
        record.button = up ? 1 : 0;
        manager.PostInput(record, now);
    }
    void KeyDown(uint32_t key) {
        GUI_INPUT_RECORD record;
        record.keyDown = true;
        record.key = static_cast<int32_t>(key);
        manager.PostInput(record, now);
    }
    void KeyUp(uint32_t key) {
        GUI_INPUT_RECORD record;
        record.keyUp = true;
        record.key = static_cast<int32_t>(key);
        manager.PostInput(record, now);
    }

    // What the handlers were told since the last call, without the paintings.
    Log Told() {
        manager.Tick(0);
        Log told;
        for (const std::string& line : log) {
            if (line.find(" paint") == std::string::npos) {
                told.push_back(line);
            }
        }
        log.clear();
        return told;
    }

    Log log;
    std::vector<std::unique_ptr<RecordingHandler>> handlers;
    CGhostManager manager;  // ends before its handlers
    uint64_t now = 1000000; // milliseconds
};
