#include "screens/binding_capture.h"

#include "settings/bindings.h"

namespace {

// Scancodes of the USB HID tables.
constexpr uint32_t kLeftCtrl = 224;
constexpr uint32_t kLeftShift = 225;
constexpr uint32_t kLeftAlt = 226;
constexpr uint32_t kLeftSystem = 227; // the desktop's own key
constexpr uint32_t kRightCtrl = 228;
constexpr uint32_t kRightShift = 229;
constexpr uint32_t kRightAlt = 230;
constexpr uint32_t kRightSystem = 231;

constexpr uint32_t kJoysticks = 5;
constexpr uint32_t kAxes = 32;
constexpr uint32_t kHats = 8;
constexpr uint32_t kButtons = 64;

constexpr uint32_t kFirstJoystickCode = JoystickAxisCode(0, 0, false);

bool IsShift(uint32_t scancode) {
    return scancode == kLeftShift || scancode == kRightShift;
}

bool IsCtrl(uint32_t scancode) {
    return scancode == kLeftCtrl || scancode == kRightCtrl;
}

bool IsModifier(uint32_t scancode) {
    return IsShift(scancode) || IsCtrl(scancode) || scancode == kLeftAlt || scancode == kRightAlt;
}

} // namespace

BindingCapture::BindingCapture(bool forProgramAction)
    : programAction(forProgramAction) {
    for (uint32_t code = 0; code < kInputCodes; ++code) {
        const bool down = InputCodeIsDown(code, false);
        ignored[code] = down;
        modifiers[code] = down && code < kFirstJoystickCode && IsModifier(code);
    }
}

bool BindingCapture::Held(uint32_t firstKey, uint32_t secondKey) const {
    return modifiers[firstKey] || modifiers[secondKey];
}

std::optional<uint32_t> BindingCapture::KeyDown(uint32_t scancode) {
    if (scancode == 0 || scancode >= kFirstJoystickCode || scancode == kLeftSystem ||
        scancode == kRightSystem || ignored[scancode]) {
        return std::nullopt;
    }
    if (IsModifier(scancode)) {
        modifiers.set(scancode);
        lastModifier = scancode;
        return std::nullopt;
    }
    lastModifier = 0;
    if (Held(kLeftAlt, kRightAlt)) {
        return std::nullopt;
    }
    return KeyboardBinding(scancode, Held(kLeftShift, kRightShift) ? kModifierShift
                                     : Held(kLeftCtrl, kRightCtrl) ? kModifierCtrl
                                                                   : kModifierNone);
}

std::optional<uint32_t> BindingCapture::KeyUp(uint32_t scancode) {
    if (scancode >= kFirstJoystickCode) {
        return std::nullopt;
    }
    modifiers.reset(scancode);
    ignored.reset(scancode);
    if (lastModifier == 0 || scancode != lastModifier) {
        return std::nullopt;
    }
    lastModifier = 0;
    return Alone(scancode);
}

std::optional<uint32_t> BindingCapture::Alone(uint32_t modifierKey) const {
    if (!programAction) {
        return KeyboardBinding(modifierKey);
    }
    if (IsShift(modifierKey)) {
        return KeyboardBinding(modifierKey, kModifierShift);
    }
    if (IsCtrl(modifierKey)) {
        return KeyboardBinding(modifierKey, kModifierCtrl);
    }
    return std::nullopt;
}

// A window that loses the keyboard gets no releases; the table is cleared then.
std::optional<uint32_t> BindingCapture::LookAtJoysticks() {
    for (uint32_t code = 0; code < kInputCodes; ++code) {
        if (!InputCodeIsDown(code, true)) {
            ignored.reset(code);
            modifiers.reset(code);
        }
    }
    if (lastModifier != 0 && !modifiers[lastModifier]) {
        lastModifier = 0;
    }
    for (uint32_t joystick = 0; joystick < kJoysticks; ++joystick) {
        if (const auto code = NewOfJoystick(joystick)) {
            return JoystickBinding(joystick, *code);
        }
    }
    return std::nullopt;
}

bool BindingCapture::IsNew(uint32_t code, bool orReleased) const {
    return !ignored[code] && InputCodeIsDown(code, orReleased);
}

// Only a button's release tells of a press: every move of an axis in its middle, and every event of a hat, counts
// as a release of all its directions.
std::optional<uint32_t> BindingCapture::NewOfJoystick(uint32_t joystick) const {
    for (uint32_t button = 0; button < kButtons; ++button) {
        if (const uint32_t code = JoystickButtonCode(joystick, button); IsNew(code, true)) {
            return code;
        }
    }
    // The straight directions: a diagonal sets at least one of them too.
    for (uint32_t hat = 0; hat < kHats; ++hat) {
        for (const uint32_t direction : {0u, 2u, 4u, 6u}) {
            if (const uint32_t code = JoystickHatCode(joystick, hat, direction);
                IsNew(code, false)) {
                return code;
            }
        }
    }
    for (uint32_t axis = 0; axis < kAxes; ++axis) {
        for (const bool positive : {false, true}) {
            if (const uint32_t code = JoystickAxisCode(joystick, axis, positive);
                IsNew(code, false)) {
                return code;
            }
        }
    }
    return std::nullopt;
}
