// The device library without a display, and only with the joysticks that a test attaches.
#pragma once

#include "settings/bindings.h"
#include "settings/settings.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

inline constexpr uint32_t kTestSession = 7;

class SdlTest : public testing::Test {
protected:
    void SetUp() override {
        SDL_SetHint(SDL_HINT_VIDEODRIVER, "dummy");
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO | SDL_INIT_JOYSTICK | SDL_INIT_GAMECONTROLLER), 0)
            << SDL_GetError();
        if (SDL_NumJoysticks() != 0) {
            GTEST_SKIP() << "a real joystick is plugged in and would mix with those of the test";
        }
        SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
        RegisterDefaultSettings(Settings());
        InputClearAll();
        InputBeginPump();
        InputSetActiveKey(kTestSession);
        InputSetWalkingRoom(false);
    }
    void TearDown() override {
        SDL_Quit();
        InputClearAll();
        InputSetActiveKey(0);
        InputSetWalkingRoom(false);
        RegisterDefaultSettings(Settings());
    }

    // The joystick codes that are down.
    static std::set<uint32_t> JoystickCodes() {
        std::set<uint32_t> codes;
        for (uint32_t code = JoystickAxisCode(0, 0, false); code < kInputCodes; ++code) {
            if (BindingIsDown(JoystickBinding(0, code), false)) {
                codes.insert(code);
            }
        }
        return codes;
    }

    // The actions that the active session finds down.
    static std::set<std::wstring> ActionsDown() {
        std::set<std::wstring> names;
        for (const INPUT_ACTION& action : InputActions()) {
            if (InputIsDown(kTestSession, action.name)) {
                names.insert(action.name);
            }
        }
        return names;
    }
};
