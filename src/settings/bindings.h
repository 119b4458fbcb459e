// Input bindings: named actions, the 32-bit codes bound to them, and the table of what is down.
//
// A binding is a u32, 0 for none. Its top byte is the device: 0 keyboard, 1 joystick, 2 game controller.
// Bits 16 to 23 are the keyboard modifier (3 shift, 192 ctrl, 0 none), the joystick's number, 0 to 4, or
// the controller's player. The low 16 bits are a controller's control (`PadBinding`); otherwise they index one table of state bytes that all devices share: keyboard scancodes (USB HID usage
// numbers, below 512) first, joystick codes from 400 up, 200 for each joystick.
//
// Modifiers: a plain key does not act while a shift, ctrl or alt key is held, so that it does not fire
// under a chord. A modifier key that a machine's action is bound to, as Right Shift is to the NES's
// Select, is an ordinary key for all actions of that machine. For the program's own actions it stays a
// modifier: Right Shift + Tab rewinds as Left Shift + Tab does, and the NES sees Select meanwhile.
//
// Threads: the main thread feeds events and sets the values below; every thread may ask. The tables
// are single atomic bytes, read without a lock. Code that reads inputs once a frame holds an
// `InputFrame` (`input_frame.h`), so that no short press is lost.
#pragma once

#include "settings/input_state.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

class SettingsStore;

inline constexpr uint32_t kKeyboardCodes = 512;
inline constexpr uint32_t kApplicationKey = 0xFFFFFFFF; // the program's own session key, -1

enum BindingModifier : uint32_t { kModifierNone = 0, kModifierShift = 3, kModifierCtrl = 192 };

// Codes of joystick `joystick`; `which` is the raw number of its axis, hat or button.
[[nodiscard]] constexpr uint32_t JoystickAxisCode(uint32_t joystick, uint32_t axis, bool positive) {
    return 400 + joystick * 200 + axis * 2 + (positive ? 1 : 0);
}
[[nodiscard]] constexpr uint32_t JoystickHatCode(uint32_t joystick, uint32_t hat,
                                                 uint32_t direction) {
    return 464 + joystick * 200 + hat * 8 + direction;
}
[[nodiscard]] constexpr uint32_t JoystickButtonCode(uint32_t joystick, uint32_t button) {
    return 528 + joystick * 200 + button;
}
[[nodiscard]] constexpr uint32_t KeyboardBinding(uint32_t scancode,
                                                 BindingModifier modifier = kModifierNone) {
    return modifier << 16 | scancode;
}
[[nodiscard]] constexpr uint32_t JoystickBinding(uint32_t joystick, uint32_t code) {
    return 1u << 24 | joystick << 16 | code;
}

// Hat positions as a device reports them, a bit for each direction.
enum HatPosition : uint8_t {
    kHatCentred = 0,
    kHatUp = 1,
    kHatRight = 2,
    kHatDown = 4,
    kHatLeft = 8
};

// An action with the code it is bound to on a first run, and the controls of game controllers that do
// the same until the user binds something (`pad_defaults.h`).
struct INPUT_ACTION {
    const wchar_t* name;
    uint32_t defaultBinding;
    uint64_t padControls = 0; // bits of `PadBit`
};

// Every action in the order of registration.
[[nodiscard]] std::span<const INPUT_ACTION> InputActions();

// The machine of each action, in the same order: 0 for the program's own, and a number below
// `kInputOwners` for a machine's.
inline constexpr uint32_t kInputOwners = 6;
[[nodiscard]] std::span<const uint8_t> InputOwners();

// The setting that holds an action's bindings: "INPUT " and its name.
[[nodiscard]] std::wstring BindingSetting(const INPUT_ACTION& action);

// Adds the setting of every action: all with zeroes, then the defaults as primary binding.
void RegisterBindings(SettingsStore& store);

// After the load of a file that an older program wrote: what the user has bound stays as it was. An action that is new
// to the file has its key, unless the user has bound that to something else that is read at the same time. Player 2, who had
// no keys then, gets his for each machine where the user has bound none and all of them are free.
void GiveNewKeys(SettingsStore& store);

// Whether one of the action's two bindings is down, or a control of a game controller that acts for it
// by default. False when the session is not the active one or the user is walking in the room;
// `kApplicationKey` is always answered.
[[nodiscard]] bool InputIsDown(uint32_t sessionKey, std::wstring_view name);

// Called with the name of every action that a session's machine or hotkeys read, on the reading thread.
// Null, the initial value: no call. For tests.
void InputSetPollObserver(void (*observer)(std::wstring_view name));

// Whether one code is down. With `useReleased` also when it was released since the pump began, so that
// a press shorter than a round is seen.
[[nodiscard]] bool BindingIsDown(uint32_t code, bool useReleased);

// Whether a code of the table is down, whatever modifiers are held; with `useReleased` as above. For the screen that
// records a press.
[[nodiscard]] bool InputCodeIsDown(uint32_t code, bool useReleased);

// Text for screens, in upper case.
[[nodiscard]] std::wstring BindingName(uint32_t code);

// The one session that gets input, and whether the user is walking in the room (then no session gets
// any).
void InputSetActiveKey(uint32_t sessionKey);
[[nodiscard]] uint32_t InputActiveKey();
void InputSetWalkingRoom(bool walking);
[[nodiscard]] bool InputWalkingRoom();

// The event pump's side. Numbers out of range are ignored.
// Forgets the releases of the previous round and notes which bindings the user has changed since.
void InputBeginPump();
// Setting a code to 0 marks it as released, even if it was not down.
void InputSetCode(uint32_t code, bool down);
void InputKeyChanged(uint32_t scancode, bool down);
void InputAxisMoved(uint32_t joystick, uint32_t axis, int16_t value);
void InputHatMoved(uint32_t joystick, uint32_t hat, uint8_t position);
void InputButtonChanged(uint32_t joystick, uint32_t button, bool down);
void InputClearJoystick(uint32_t joystick); // after it was unplugged
void InputClearAll();
