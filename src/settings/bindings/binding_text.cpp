#include "settings/binding_text.h"

#include "base/text.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"

#include <SDL_keyboard.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace {

constexpr uint32_t kJoysticks = 5;
constexpr uint32_t kAxes = 32;
constexpr uint32_t kHats = 8;
constexpr uint32_t kHatDirections = 8;
constexpr uint32_t kButtons = 64;

constexpr std::string_view kNone = "None";
constexpr std::string_view kKeyWithoutName = "Key ";
constexpr std::string_view kDigit = "Digit ";

constexpr std::array<std::string_view, kHatDirections> kDirections = {
    "Up", "UpRight", "Right", "DownRight", "Down", "DownLeft", "Left", "UpLeft"};

// In the order of PadControl.
constexpr std::array<std::string_view, kPadControls> kControls = {
    "Up",
    "Down",
    "Left",
    "Right",
    "Stick Up",
    "Stick Down",
    "Stick Left",
    "Stick Right",
    "A",
    "B",
    "X",
    "Y",
    "Left Shoulder",
    "Right Shoulder",
    "Back",
    "Start",
    "Left Trigger",
    "Right Trigger",
    "Guide",
    "Right Stick",
};

// Without spaces, in lower case.
std::string Plain(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (const char c : text) {
        if (c != ' ' && c != '\t') {
            plain += LowerAscii(c);
        }
    }
    return plain;
}

bool TakeFront(std::string_view& text, std::string_view front) {
    const std::string wanted = Plain(front);
    if (!text.starts_with(wanted)) {
        return false;
    }
    text.remove_prefix(wanted.size());
    return true;
}

// A number that is all of the text and below `limit`.
std::optional<uint32_t> ReadNumber(std::string_view text, uint32_t limit) {
    uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, code] = std::from_chars(text.data(), end, number);
    if (text.empty() || stop != end || code != std::errc() || number >= limit) {
        return std::nullopt;
    }
    return number;
}

// The number from 1 that the text begins with, less one.
std::optional<uint32_t> TakePlace(std::string_view& text, uint32_t limit) {
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::optional<uint32_t> number = ReadNumber(text.substr(0, digits), limit + 1);
    if (!number || *number == 0) {
        return std::nullopt;
    }
    text.remove_prefix(digits);
    return *number - 1;
}

// ---- Keys

std::string_view NameOfScancode(uint32_t scancode) {
    return SDL_GetScancodeName(static_cast<SDL_Scancode>(scancode));
}

bool IsDigit(std::string_view name) {
    return name.size() == 1 && name[0] >= '0' && name[0] <= '9';
}

// 0: none.
uint32_t ScancodeOfName(std::string_view plain) {
    for (uint32_t scancode = 1; scancode < kKeyboardCodes; ++scancode) {
        const std::string_view name = NameOfScancode(scancode);
        if (!name.empty() && Plain(name) == plain) {
            return scancode;
        }
    }
    return 0;
}

// A digit alone would be a code.
std::string KeyText(uint32_t scancode, bool alone) {
    const std::string_view name = NameOfScancode(scancode);
    if (IsDigit(name) && alone) {
        return std::string(kDigit) += name;
    }
    // A name that an earlier key has as well would be read as that.
    if (name.empty() || ScancodeOfName(Plain(name)) != scancode) {
        return std::string(kKeyWithoutName) += std::to_string(scancode);
    }
    return std::string(name);
}

std::optional<uint32_t> ReadKey(std::string_view plain) {
    BindingModifier modifier = kModifierNone;
    if (TakeFront(plain, "Shift+")) {
        modifier = kModifierShift;
    } else if (TakeFront(plain, "Ctrl+")) {
        modifier = kModifierCtrl;
    }
    // A digit alone would be a code; after a modifier there is no doubt.
    if (const uint32_t scancode = ScancodeOfName(plain);
        scancode != 0 && (modifier != kModifierNone || !IsDigit(plain))) {
        return KeyboardBinding(scancode, modifier);
    }
    std::string_view rest = plain;
    if (TakeFront(rest, kDigit)) {
        return IsDigit(rest) ? std::optional(KeyboardBinding(ScancodeOfName(rest), modifier))
                             : std::nullopt;
    }
    if (!TakeFront(rest, kKeyWithoutName)) {
        return std::nullopt;
    }
    const std::optional<uint32_t> scancode = ReadNumber(rest, kKeyboardCodes);
    return scancode && *scancode != 0 ? std::optional(KeyboardBinding(*scancode, modifier))
                                      : std::nullopt;
}

// ---- Joysticks

std::string JoystickText(uint32_t joystick, uint32_t code) {
    std::string text = "Joy" + std::to_string(joystick + 1) + " ";
    const uint32_t firstAxis = JoystickAxisCode(joystick, 0, false);
    const uint32_t firstHat = JoystickHatCode(joystick, 0, 0);
    const uint32_t firstButton = JoystickButtonCode(joystick, 0);
    if (code >= firstAxis && code < firstHat) {
        // The sign is the opposite of the axis's, as on the screens.
        return text + "Axis" + std::to_string((code - firstAxis) / 2) +
               ((code - firstAxis) % 2 == 0 ? " +" : " -");
    }
    if (code >= firstHat && code < firstButton) {
        const uint32_t hat = code - firstHat;
        text += "Hat" + std::to_string(hat / kHatDirections) + " ";
        return text += kDirections[hat % kHatDirections];
    }
    return text + "Button" + std::to_string(code - firstButton);
}

std::optional<uint32_t> ReadJoystick(std::string_view plain) {
    const std::optional<uint32_t> joystick = TakePlace(plain, kJoysticks);
    if (!joystick) {
        return std::nullopt;
    }
    if (TakeFront(plain, "Button")) {
        const std::optional<uint32_t> button = ReadNumber(plain, kButtons);
        return button ? std::optional(
                            JoystickBinding(*joystick, JoystickButtonCode(*joystick, *button)))
                      : std::nullopt;
    }
    const bool isHat = TakeFront(plain, "Hat");
    if (!isHat && !TakeFront(plain, "Axis")) {
        return std::nullopt;
    }
    const size_t digits = std::min(plain.find_first_not_of("0123456789"), plain.size());
    const std::optional<uint32_t> number =
        ReadNumber(plain.substr(0, digits), isHat ? kHats : kAxes);
    const std::string_view way = plain.substr(digits);
    if (!number) {
        return std::nullopt;
    }
    if (!isHat && (way == "+" || way == "-")) {
        return JoystickBinding(*joystick, JoystickAxisCode(*joystick, *number, way == "-"));
    }
    for (uint32_t direction = 0; isHat && direction < kHatDirections; ++direction) {
        if (Plain(kDirections[direction]) == way) {
            return JoystickBinding(*joystick, JoystickHatCode(*joystick, *number, direction));
        }
    }
    return std::nullopt;
}

// ---- Controllers

std::optional<uint32_t> ReadPad(std::string_view plain) {
    const std::optional<uint32_t> player = TakePlace(plain, kPadPlayers);
    for (uint32_t control = 0; player && control < kPadControls; ++control) {
        if (Plain(kControls[control]) == plain) {
            return PadBinding(*player, static_cast<PadControl>(control));
        }
    }
    return std::nullopt;
}

bool IsOfJoystick(uint32_t binding) {
    const uint32_t joystick = binding >> 16 & 0xFF;
    const uint32_t code = binding & 0xFFFF;
    return binding >> 24 == 1 && joystick < kJoysticks &&
           code >= JoystickAxisCode(joystick, 0, false) &&
           code <= JoystickButtonCode(joystick, kButtons - 1);
}

} // namespace

std::string BindingText(uint32_t binding) {
    if (binding == 0) {
        return std::string(kNone);
    }
    const uint32_t middle = binding >> 16 & 0xFF;
    const uint32_t low = binding & 0xFFFF;
    if (const uint64_t bit = PadBitOfBinding(binding); bit != 0) {
        std::string text = "Pad" + std::to_string(middle + 1) + " ";
        return text += kControls[low];
    }
    if (IsOfJoystick(binding)) {
        return JoystickText(middle, low);
    }
    const bool known =
        middle == kModifierNone || middle == kModifierShift || middle == kModifierCtrl;
    if (binding >> 24 != 0 || !known || low == 0 || low >= kKeyboardCodes) {
        return std::to_string(static_cast<int32_t>(binding));
    }
    const char* const modifier = middle == kModifierShift  ? "Shift+"
                                 : middle == kModifierCtrl ? "Ctrl+"
                                                           : "";
    return modifier + KeyText(low, middle == kModifierNone);
}

std::optional<uint32_t> ReadBindingText(std::string_view text) {
    const std::string plain = Plain(text);
    if (plain == Plain(kNone)) {
        return 0;
    }
    std::string_view rest = plain;
    if (TakeFront(rest, "Joy")) {
        return ReadJoystick(rest);
    }
    if (TakeFront(rest, "Pad")) {
        return ReadPad(rest);
    }
    return ReadKey(plain);
}
