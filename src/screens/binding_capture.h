// BindingCapture: makes the next input of a device into a binding (bindings.h).
//
// Keys come as events in their order, joysticks are looked at once a round. What is held when the capture begins
// does not count until it has been released, so the press that asked for the capture is never taken.
// Modifiers: a key is taken with shift, else with ctrl, if one is held. A modifier key by itself is taken when it is
// released: for a machine's action as an ordinary key; for one of the program's own as its own modifier, since a plain
// binding of those never acts while a modifier is held. Alt takes no part in bindings; by itself it can be a
// machine's key.
// Thread: main.
#pragma once

#include "settings/input_state.h"

#include <bitset>
#include <cstdint>
#include <optional>

class BindingCapture {
public:
    explicit BindingCapture(bool forProgramAction);

    std::optional<uint32_t> KeyDown(uint32_t scancode);
    std::optional<uint32_t> KeyUp(uint32_t scancode);

    // Once a round, after the round's events have reached the table of inputs and before its keys come here.
    std::optional<uint32_t> LookAtJoysticks();

private:
    [[nodiscard]] bool Held(uint32_t firstKey, uint32_t secondKey) const;
    [[nodiscard]] std::optional<uint32_t> Alone(uint32_t modifierKey) const;
    [[nodiscard]] bool IsNew(uint32_t code, bool orReleased) const;
    [[nodiscard]] std::optional<uint32_t> NewOfJoystick(uint32_t joystick) const;

    bool programAction;
    std::bitset<kInputCodes> ignored;   // held since before the capture
    std::bitset<kInputCodes> modifiers; // shift, ctrl and alt keys that are held
    uint32_t lastModifier = 0;          // pressed since, with no other key after it
};
