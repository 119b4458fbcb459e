// Game controllers without any set-up: which control of a controller does what as long as the user
// has bound nothing else.
//
// The first two controllers act as players 1 and 2, beside the bindings and without changing them. A
// binding of the user's own always wins, in two ways. An action that has a joystick code bound to it
// listens to its bindings alone. A control whose raw joystick code is bound to some action does that
// and nothing else.
//
// Units: a control is a bit of a 64-bit word, player 1's in the low half. An action has such a word in
// `INPUT_ACTION`; what may act of it just now stands in the binding's note (`bindings/action_notes.h`),
// so that a lookup that has found the binding costs one AND more.
// Threads: the main thread feeds; every thread may ask, without a lock.
#pragma once

#include <array>
#include <cstdint>

// The pad and the stick are told apart, as the user may bind the codes of either.
enum PadControl : uint32_t {
    kPadDpadUp = 0,
    kPadDpadDown = 1,
    kPadDpadLeft = 2,
    kPadDpadRight = 3,
    kPadStickUp = 4,
    kPadStickDown = 5,
    kPadStickLeft = 6,
    kPadStickRight = 7,
    kPadSouth = 8, // the four buttons on the right by where they lie, whatever is printed on them
    kPadEast = 9,
    kPadWest = 10,
    kPadNorth = 11,
    kPadLeftShoulder = 12,
    kPadRightShoulder = 13,
    kPadBack = 14,
    kPadStart = 15,
    kPadLeftTrigger = 16,
    kPadRightTrigger = 17,
};
inline constexpr uint32_t kPadControls = 18;
inline constexpr uint32_t kPadPlayers = 2;

[[nodiscard]] constexpr uint64_t PadBit(uint32_t player, PadControl control) {
    return uint64_t{1} << (player * 32 + control);
}

// Beside a player's controls: the trigger of a light gun, which is the mouse's left button over the
// picture. It acts whatever else is bound.
[[nodiscard]] constexpr uint64_t PointerTriggerBit(uint32_t player) {
    return uint64_t{1} << (player * 32 + 31);
}
static_assert(kPadControls < 31);

// The raw joystick codes behind each control, 0 for none. Of an axis whose direction isn't known both
// codes count.
using PadCodes = std::array<std::array<uint32_t, 2>, kPadControls>;

// A controller takes the place of player 0 or 1, or leaves it; nothing of it is down then. Other
// numbers are ignored.
void InputAttachPad(uint32_t player, const PadCodes& codes);
void InputDetachPad(uint32_t player);
// Its codes have changed, as its mapping has; what is down stays.
void InputSetPadCodes(uint32_t player, const PadCodes& codes);

void InputPadChanged(uint32_t player, PadControl control, bool down);
void InputPointerTrigger(uint32_t player, bool down);
void InputClearPads(); // nothing is down any more

// Reads the bindings afresh and finds out which actions and controls the user has bound. Each pump does
// so at its beginning (`InputBeginPump`); it takes a few microseconds and allocates nothing.
void InputRefreshPadDefaults();

// The controls that are down and not bound by the user.
[[nodiscard]] uint64_t InputPadsActing();
