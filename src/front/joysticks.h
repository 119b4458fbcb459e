// The joysticks in use: at most four, each in a place of its own, 0 to 3.
//
// Joysticks found at the start take the places in the order of the device list. One that arrives later
// takes the lowest free place, one that leaves frees its own, and one that finds all places taken is
// ignored until it is plugged in again. Events name a joystick by the library's instance number; the
// place is the joystick's number in the codes of `bindings.h`.
//
// A joystick that the library knows as a game controller feeds two tables: the codes, like any other,
// and the controls of `pad_defaults.h`. The first two controllers are players 1 and 2. When one leaves,
// the other keeps its player, and the next to arrive takes the free one.
//
// Units: axes -32768 to 32767. A stick's direction goes down at 40 percent of an axis and up again at
// 30 (which makes the eight directions about equally wide, 43 degrees for a diagonal); a trigger goes
// down at 50 percent and up again at 40.
// Thread: main.
// Failure: if the library's joystick part fails, all places stay empty. Nothing is reported.
#pragma once

#include "front/pad_names.h"
#include "settings/pad_defaults.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

union SDL_Event;

inline constexpr uint32_t kJoystickPlaces = 4;
inline constexpr uint32_t kNoJoystick = 0xFFFFFFFF;
inline constexpr uint32_t kNoPlayer = 0xFFFFFFFF;

// What is known of one joystick. Inputs without a code aren't counted.
struct JOYSTICK {
    bool present = false;
    std::string name;            // UTF-8
    uint32_t axes = 0;           // at most 32
    uint32_t buttons = 0;        // at most 64
    uint32_t hats = 0;           // at most 8
    uint32_t balls = 0;          // unused
    bool controller = false;     // a game controller with known controls
    uint32_t player = kNoPlayer; // 0 or 1 for the controllers that play
};

// Both sticks of a controller: -1 to 1, right and down positive. A direction that the user has bound to an action
// does that alone, and is 0 here.
struct PAD_STICKS {
    float leftX = 0.0f;
    float leftY = 0.0f;
    float rightX = 0.0f;
    float rightY = 0.0f;
};

class Joysticks {
public:
    Joysticks();
    ~Joysticks(); // calls Close
    Joysticks(const Joysticks&) = delete;
    Joysticks& operator=(const Joysticks&) = delete;

    // Opens the connected joysticks and reads their state: what is held at this moment is down.
    void Open();
    // Closes all; nothing of theirs is down afterwards.
    void Close();

    // Handles an event of any joystick or controller. False for any other event.
    bool Handle(const SDL_Event& event);

    [[nodiscard]] std::span<const JOYSTICK, kJoystickPlaces> Places() const { return places; }
    // The first player's controller: how its buttons are named, and where its sticks are. Without one the
    // sticks rest.
    [[nodiscard]] PadFamily Family() const;
    [[nodiscard]] bool HasController() const { return Controller() != nullptr; }
    [[nodiscard]] PAD_STICKS Sticks() const;
    // The place of an instance number, or `kNoJoystick`.
    [[nodiscard]] uint32_t PlaceOf(int32_t instance) const;

private:
    struct DEVICE;

    [[nodiscard]] const JOYSTICK* Controller() const;
    [[nodiscard]] size_t PlaceIndex(const JOYSTICK& joystick) const {
        return static_cast<size_t>(&joystick - places.data());
    }
    void OpenArrived();
    void OpenAt(uint32_t place, int index);
    void OpenController(uint32_t place, int index);
    void ReadMapping(uint32_t place); // the codes of the sticks
    void CloseAt(uint32_t place);
    void Removed(int32_t instance);
    void TakeState(uint32_t place);
    void Remapped(int32_t instance);
    void ControllerButton(int32_t instance, uint32_t button, bool down);
    void ControllerAxis(int32_t instance, uint32_t axis, int value);
    void SetControl(DEVICE& device, uint32_t player, PadControl control, bool down);

    std::array<JOYSTICK, kJoystickPlaces> places{};
    std::unique_ptr<std::array<DEVICE, kJoystickPlaces>> devices;
    std::vector<int32_t> ignored; // instances without a place
    bool opened = false;
};
