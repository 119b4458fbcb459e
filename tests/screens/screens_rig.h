// The program's screens without a window: the toolkit's own manager with the program's theme, and a player who
// clicks on what the captions say.
#pragma once

#include "front/assets.h"
#include "gui/button.h"
#include "gui/font.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/theme.h"
#include "library/player_database.h"
#include "screens/screen_host.h"
#include "web/download_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

class HostRecord : public ScreenHost {
public:
    void Take(ModeInput input) override { taken.push_back(input); }
    void StartGame(GAME_TO_START game) override { started.push_back(std::move(game)); }
    void ShowCovers(std::vector<GUI_BITMAP> covers, int kind, bool /*cabinet*/) override {
        coverCount = covers.size();
        coverKind = kind;
    }
    void CoverClick(int button, int32_t /*x*/, int32_t /*y*/) override {
        coverClicks.push_back(button);
    }
    [[nodiscard]] DownloadQueue& Downloads() override { return downloads; }
    [[nodiscard]] PlayerDatabase& Player() override { return player; }
    void SettingsChanged() override { ++settingsChanges; }
    void SaveSettings() override { ++saves; }
    void ForgetInput() override { ++inputsForgotten; }
    [[nodiscard]] std::vector<SCREEN_JOYSTICK> Joysticks() const override { return joysticks; }
    [[nodiscard]] std::wstring UseOfKey(uint32_t scancode) const override {
        return scancode == 62 ? L"smooth pixels" : L""; // F5
    }
    [[nodiscard]] bool OpenBenchmarkGame(CGameFile& game) const override {
        return openGame && openGame(game);
    }
    [[nodiscard]] uint64_t Milliseconds() const override { return now += step; }

    int64_t wallClock = 1'700'000'000;                   // seconds since 1970
    PlayerDatabase player{[this] { return wallClock; }}; // without a file
    int settingsChanges = 0;
    int saves = 0;
    int inputsForgotten = 0;
    std::vector<SCREEN_JOYSTICK> joysticks;
    std::function<bool(CGameFile&)> openGame; // null: there is no game for the benchmark
    std::vector<GAME_TO_START> started;
    std::vector<int> coverClicks; // buttons
    size_t coverCount = 0;
    int coverKind = -1;
    std::vector<ModeInput> taken; // in their order
    mutable uint64_t now = 1000;
    uint64_t step = 0; // milliseconds between two looks at the clock
    // What the service answers to an address; one that is not here cannot be reached.
    std::map<std::wstring, std::string> answers;
    DownloadQueue::FetchFunction fetch; // in their place, if there is one
    DownloadQueue downloads{
        [this](const std::wstring& url, std::wstring& error, const std::atomic<uint32_t>* abort,
               std::unique_ptr<uint8_t[]>& data, uint32_t& size, const std::atomic<bool>& quit) {
            if (fetch) {
                return fetch(url, error, abort, data, size, quit);
            }
            const auto found = answers.find(url);
            if (found == answers.end()) {
                error = L"Invalid response code";
                return false;
            }
            size = static_cast<uint32_t>(found->second.size());
            data = std::make_unique<uint8_t[]>(size);
            std::copy(found->second.begin(), found->second.end(), data.get());
            return true;
        }};
};

class ScreensTest : public testing::Test {
protected:
    void SetUp() override {
        LoadThemeOnce();
        Manager().Reset();
        Manager().SetScreen(1280, 720);
    }
    void TearDown() override { Manager().Reset(); }

    static CGhostManager& Manager() { return CGhostManager::Get(); }

    void Tick() { Manager().Tick(16667); }

    // With the left button, in the middle of the window.
    void Click(const GHOSTMANAGER_WINDOW* window) {
        GUI_RECT place;
        ASSERT_TRUE(Manager().GetScreenRect(window, &place));
        Post([&](GUI_INPUT_RECORD& record) {
            record.moved = true;
            record.dx = place.x + place.width / 2 - Manager().CursorX();
            record.dy = place.y + place.height / 2 - Manager().CursorY();
        });
        Post([](GUI_INPUT_RECORD& record) {
            record.buttonDown = true;
            record.button = 1;
        });
        Post([](GUI_INPUT_RECORD& record) {
            record.buttonUp = true;
            record.button = 1;
        });
        now += 1000; // two clicks of a test are no double click
        Tick();
    }
    void Click(const CGhostButton* button) { Click(button->window); }

    // At a place of the screen.
    void MoveTo(int32_t x, int32_t y) {
        Post([&](GUI_INPUT_RECORD& record) {
            record.moved = true;
            record.dx = x - Manager().CursorX();
            record.dy = y - Manager().CursorY();
        });
    }
    void PressMouse() {
        Post([](GUI_INPUT_RECORD& record) {
            record.buttonDown = true;
            record.button = 1;
        });
        Post([](GUI_INPUT_RECORD& record) {
            record.buttonUp = true;
            record.button = 1;
        });
    }
    void DoubleClickAt(int32_t x, int32_t y) {
        now += 1000;
        MoveTo(x, y);
        PressMouse();
        PressMouse();
        now += 1000;
        Tick();
    }

    void PressKey(GHOSTGUIKey key) {
        KeyDown(key);
        KeyUp(key);
        Tick();
    }
    void KeyDown(GHOSTGUIKey key, bool repeat = false) {
        Post([&](GUI_INPUT_RECORD& record) {
            record.keyDown = true;
            record.key = static_cast<int32_t>(key);
            record.repeat = repeat;
        });
    }
    void TypeCharacter(wchar_t character) {
        Post([&](GUI_INPUT_RECORD& record) { record.character = static_cast<int32_t>(character); });
        Tick();
    }
    void KeyUp(GHOSTGUIKey key) {
        Post([&](GUI_INPUT_RECORD& record) {
            record.keyUp = true;
            record.key = static_cast<int32_t>(key);
        });
    }

    HostRecord host;

private:
    template <typename Fill>
    void Post(const Fill& fill) {
        GUI_INPUT_RECORD record;
        fill(record);
        Manager().PostInput(record, now);
    }

    static void LoadThemeOnce() {
        static const bool loaded = [] {
            for (const FONT_ASSET& font : BuiltInFonts()) {
                CGhostFontManager::Get().AddFont(font.name, font.data, 14, 0);
            }
            SetThemeImages(BuiltInImages());
            CGhostTheme::Get().ParseTheme(BuiltInTheme());
            return true;
        }();
        static_cast<void>(loaded);
    }

    uint64_t now = 1000; // milliseconds
};
