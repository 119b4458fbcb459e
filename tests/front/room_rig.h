// The room in the window, for the tests that walk in it: games of our own on its sets, keys, mouse, and what the
// middle of the window shows. The player starts in front of the set kFrontSet and looks at its screen.
#pragma once

#include "front/opened_game.h"
#include "front/room_screen.h"
#include "front/window_rig.h"
#include "host/session_list.h"
#include "settings/bindings.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

// Objects have their numbers in the order in which the room is furnished.
inline constexpr uint32_t kHandheld = 4;
inline constexpr uint32_t kFrontSet = 7; // the second from the left of the four along the wall
inline constexpr uint32_t kRightSet = 9;
inline constexpr std::array<uint32_t, 8> kAllSets = {6,  7,  8, 9,
                                                     10, 11, 4, 5}; // as they are filled

inline void Key(SDL_Scancode scancode, bool down) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = scancode;
    event.key.keysym.sym = SDL_GetKeyFromScancode(scancode);
    SDL_PushEvent(&event);
}

inline void MoveMouse(int32_t dx, int32_t dy) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.xrel = dx;
    event.motion.yrel = dy;
    SDL_PushEvent(&event);
}

inline void MouseButton(uint8_t button, bool down) {
    SDL_Event event{};
    event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    event.button.button = button;
    event.button.state = down ? SDL_PRESSED : SDL_RELEASED;
    SDL_PushEvent(&event);
}

inline void Click(uint8_t button) {
    MouseButton(button, true);
    MouseButton(button, false);
}

inline bool SessionRuns(uint32_t key) {
    return PinSession(key) != nullptr;
}

class RoomTest : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        Settings().SetInt(L"app_window_width", 320); // drawn in software
        Settings().SetInt(L"app_window_height", 240);
    }

    // Starts the program in the room, with these games and all sets off. Null after a failure.
    RoomScreen* Enter(Application& application, const std::vector<std::string>& names) {
        Start(application);
        if (HasFatalFailure()) {
            return nullptr;
        }
        std::vector<OPENED_GAME> games;
        for (const std::string& name : names) {
            games.push_back(Opened(name));
        }
        RoomScreen* const room = &application.ShowRoom(std::move(games));
        const auto end = [&] { return room->Selected().id == kFrontSet; };
        EXPECT_TRUE(RunUntil(application, end));
        return HasFailure() ? nullptr : room;
    }

    static OPENED_GAME Opened(const std::string& name) {
        OPENED_GAME opened;
        std::string error;
        EXPECT_TRUE(OpenForPlaying(name, {}, opened, error)) << error;
        return opened;
    }

    static testing::AssertionResult Tap(Application& application, SDL_Scancode key) {
        Key(key, true);
        Key(key, false);
        return application.Round() ? testing::AssertionSuccess()
                                   : testing::AssertionFailure() << "the program ended";
    }

    // Until the set shows the machine's picture, no more television static.
    static testing::AssertionResult RunUntilOn(Application& application, const RoomScreen& room,
                                               uint32_t key) {
        return RunUntil(application, [&] {
            if (room.Games().StateOf(key) != SetState::kPlaying) {
                return false;
            }
            const SessionPin session = PinSession(key);
            const auto object = std::ranges::find_if(
                room.Objects().All(), [&](const auto& one) { return one->id == key; });
            return session != nullptr && session->showStatic == 0 && (*object)->on;
        });
    }

    static testing::AssertionResult RunUntilOff(Application& application, const RoomScreen& room,
                                                uint32_t key) {
        return RunUntil(application, [&] { return room.Games().StateOf(key) == SetState::kOff; });
    }

    static bool ShowsPicture(const RoomScreen& room, uint32_t key) {
        return std::ranges::any_of(room.Objects().All(), [&](const auto& object) {
            return object->id == key && object->on;
        });
    }

    static uint32_t MiddleOfWindow(Application& application) {
        const std::vector<uint32_t> window = application.ReadWindow();
        return window[window.size() / 2 + application.MainWindow().PixelWidth() / 2];
    }
    // Lamp and glass change a picture's colour, but not which part of it is the strongest.
    static bool IsRed(uint32_t pixel) { return Part(pixel, 16) > 2 * Others(pixel, 8, 0); }
    static bool IsBlue(uint32_t pixel) { return Part(pixel, 0) > 2 * Others(pixel, 16, 8); }

    [[nodiscard]] bool SaveExists(const std::string& name) const {
        return std::filesystem::exists(folder.Path() / "sms" / "saves" / (name + ".zip"));
    }

private:
    static uint32_t Part(uint32_t pixel, int shift) { return pixel >> shift & 0xFF; }
    static uint32_t Others(uint32_t pixel, int one, int other) {
        return std::max({Part(pixel, one), Part(pixel, other), 20u});
    }
};
