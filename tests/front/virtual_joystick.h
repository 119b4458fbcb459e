// Virtual joysticks and game controllers of the device library, and the rounds that read them.
#pragma once

#include "front/event_pump.h"
#include "front/joysticks.h"
#include "front/sdl_fixture.h"

#include <string>
#include <vector>

inline constexpr uint16_t kTestMaker = 0x1209; // a vendor number for anybody's use

// A virtual device. It is kept open, as only an open one can be moved.
class VirtualJoystick {
public:
    struct SHAPE {
        SDL_JoystickType type = SDL_JOYSTICK_TYPE_UNKNOWN;
        uint16_t axes = 2;
        uint16_t buttons = 4;
        uint16_t hats = 1;
        uint16_t model = 0;
        const char* name = nullptr;
    };

    explicit VirtualJoystick(const SHAPE& shape) {
        SDL_VirtualJoystickDesc description{};
        description.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
        description.type = static_cast<uint16_t>(shape.type);
        description.naxes = shape.axes;
        description.nbuttons = shape.buttons;
        description.nhats = shape.hats;
        description.vendor_id = shape.model != 0 ? kTestMaker : uint16_t{0};
        description.product_id = shape.model;
        description.name = shape.name;
        const int index = SDL_JoystickAttachVirtualEx(&description);
        joystick = SDL_JoystickOpen(index);
        EXPECT_NE(joystick, nullptr) << SDL_GetError();
        instance = SDL_JoystickInstanceID(joystick);
    }
    ~VirtualJoystick() {
        Unplug();
        if (joystick != nullptr && SDL_WasInit(SDL_INIT_JOYSTICK) != 0) {
            SDL_JoystickClose(joystick);
        }
    }
    VirtualJoystick(const VirtualJoystick&) = delete;
    VirtualJoystick& operator=(const VirtualJoystick&) = delete;

    void Axis(int axis, int value) const {
        EXPECT_EQ(SDL_JoystickSetVirtualAxis(joystick, axis, static_cast<int16_t>(value)), 0);
    }
    void Button(int button, bool down) const {
        EXPECT_EQ(SDL_JoystickSetVirtualButton(joystick, button, down ? 1 : 0), 0);
    }
    void Hat(int hat, int position) const {
        EXPECT_EQ(SDL_JoystickSetVirtualHat(joystick, hat, static_cast<uint8_t>(position)), 0);
    }
    void Unplug() const {
        for (int index = 0; index < SDL_NumJoysticks(); ++index) {
            if (SDL_JoystickGetDeviceInstanceID(index) == instance) {
                EXPECT_EQ(SDL_JoystickDetachVirtual(index), 0);
                return;
            }
        }
    }
    [[nodiscard]] SDL_JoystickID Instance() const { return instance; }

private:
    SDL_Joystick* joystick = nullptr;
    SDL_JoystickID instance = -1;
};

inline constexpr VirtualJoystick::SHAPE kPlain{};

// The library maps it itself; axes 0 and 1 are the left stick, 4 and 5 the triggers.
inline constexpr VirtualJoystick::SHAPE kController{
    SDL_JOYSTICK_TYPE_GAMECONTROLLER, 6, 15, 0, 0, nullptr};

// Its buttons, and those of its pad.
inline constexpr int kSouth = 0;
inline constexpr int kEast = 1;
inline constexpr int kNorth = 3;
inline constexpr int kBackButton = 4;
inline constexpr int kGuide = 5;
inline constexpr int kStartButton = 6;
inline constexpr int kRightClick = 8; // of the right stick
inline constexpr int kLeftShoulder = 9;
inline constexpr int kRightShoulder = 10;
inline constexpr int kDown = 12;
inline constexpr int kRight = 14;

// A window without a display never has the keyboard, and without it controllers would not be heard. Before the program
// starts.
inline void HearControllersInBackground() {
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
}

class JoystickRounds : public SdlTest {
protected:
    void TearDown() override {
        joysticks.Close();
        SdlTest::TearDown();
    }
    void Round() { (void)pump.Pump(); }

    [[nodiscard]] std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const JOYSTICK& joystick : joysticks.Places()) {
            names.push_back(joystick.present ? joystick.name : "-");
        }
        return names;
    }

    Joysticks joysticks;
    EventPump pump{joysticks};
};
