// Game controllers without set-up: what each control does until the user binds something else.
//
// The first two controllers act as players 1 and 2, beside the bindings and without changing them. A
// binding of the user's own always wins, in two ways. An action that has a joystick code or a control
// bound to it listens to its bindings alone. A control that is bound to some action, itself or by its
// raw joystick code, does that and nothing else.
//
// Units: a control is a bit of a 64-bit word, player 1's in the low half. An action has such a word in
// `INPUT_ACTION`; the part of it that may act at the moment is in the binding's note
// (`bindings/action_notes.h`), so that it costs a lookup one more AND.
// Threads: the main thread writes; any thread may read, without a lock.
#pragma once

#include <array>
#include <cstdint>

struct INPUT_ACTION;

// The pad and the stick are separate, since the user may bind the codes of either.
enum PadControl : uint32_t {
    kPadDpadUp = 0,
    kPadDpadDown = 1,
    kPadDpadLeft = 2,
    kPadDpadRight = 3,
    kPadStickUp = 4,
    kPadStickDown = 5,
    kPadStickLeft = 6,
    kPadStickRight = 7,
    kPadSouth = 8, // the four buttons on the right, by position and not by label
    kPadEast = 9,
    kPadWest = 10,
    kPadNorth = 11,
    kPadLeftShoulder = 12,
    kPadRightShoulder = 13,
    kPadBack = 14,
    kPadStart = 15,
    kPadLeftTrigger = 16,
    kPadRightTrigger = 17,
    kPadGuide = 18,      // the maker's button in the middle
    kPadRightClick = 19, // the right stick pressed down
};
inline constexpr uint32_t kPadControls = 20;
inline constexpr uint32_t kPadPlayers = 2;

[[nodiscard]] constexpr uint64_t PadBit(uint32_t player, PadControl control) {
    return uint64_t{1} << (player * 32 + control);
}

// A control as a binding: device 2, the player in bits 16 to 23, the control below. Unlike a joystick's codes it means
// the same button on every controller.
[[nodiscard]] constexpr uint32_t PadBinding(uint32_t player, PadControl control) {
    return 2u << 24 | player << 16 | control;
}
// The control's bit; 0 for a binding of another kind.
[[nodiscard]] constexpr uint64_t PadBitOfBinding(uint32_t binding) {
    const uint32_t player = binding >> 16 & 0xFF;
    const uint32_t control = binding & 0xFFFF;
    return binding >> 24 == 2 && player < kPadPlayers && control < kPadControls
               ? PadBit(player, static_cast<PadControl>(control))
               : 0;
}

// Added to a player's controls: the trigger of a light gun, which is the mouse's left button over the
// picture. It acts even if the user has bound something else.
[[nodiscard]] constexpr uint64_t PointerTriggerBit(uint32_t player) {
    return uint64_t{1} << (player * 32 + 31);
}
static_assert(kPadControls < 31);

// The raw joystick codes of each control, 0 for none. An axis whose direction is unknown has both
// codes.
using PadCodes = std::array<std::array<uint32_t, 2>, kPadControls>;

// Assigns a controller to player 0 or 1, or removes it; all its controls are then up. Other players are
// ignored.
void InputAttachPad(uint32_t player, const PadCodes& codes);
void InputDetachPad(uint32_t player);
// Its codes have changed with its mapping; the controls that are down stay down.
void InputSetPadCodes(uint32_t player, const PadCodes& codes);

void InputPadChanged(uint32_t player, PadControl control, bool down);
void InputPointerTrigger(uint32_t player, bool down);
void InputClearPads(); // releases all controls

// Reads the bindings again and finds which actions and controls the user has bound. Each pump begins
// with this (`InputBeginPump`); it takes a few microseconds and allocates nothing.
void InputRefreshPadDefaults();

// The controls that act for this action as of the last refresh, bound to it or by default.
[[nodiscard]] uint64_t InputPadsOf(const INPUT_ACTION& action);

// The controls that are down and not bound by the user; in an InputFrame also those that were tapped.
[[nodiscard]] uint64_t InputPadsActing();
// All controls that are down, bound by the user or not. Main thread.
[[nodiscard]] uint64_t InputPadsDown();
// The controls that the user has bound, as of the last pump. Main thread.
[[nodiscard]] uint64_t InputPadsTaken();

// Whether the user has bound this code of a joystick to an action, as of the last pump. Main thread.
[[nodiscard]] bool InputCodeIsBound(uint32_t code);
