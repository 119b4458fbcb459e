#include "settings/bindings.h"

#include "base/text.h"
#include "settings/binding_text.h"
#include "settings/bindings/action_notes.h"
#include "settings/bindings/press_log.h"
#include "settings/input_frame.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"

#include <SDL_keyboard.h>

#include <array>
#include <atomic>

namespace {

constexpr uint32_t kKeyboard = 0; // top byte of a binding
constexpr uint32_t kJoystick = 1;
constexpr uint32_t kPad = 2;

constexpr uint32_t kJoysticks = 5; // joystick numbers that have codes
constexpr uint32_t kAxes = 32;
constexpr uint32_t kHats = 8;
constexpr uint32_t kHatDirections = 8;
constexpr uint32_t kButtons = 64;
constexpr uint32_t kCodesOfOne = 200; // from one joystick to the next
constexpr int kAxisThreshold = 28'000;

static_assert(JoystickBinding(kJoysticks - 1, JoystickButtonCode(kJoysticks - 1, kButtons - 1)) <
              (kJoystick << 24 | kJoysticks << 16));
static_assert(JoystickButtonCode(kJoysticks - 1, kButtons - 1) < kInputCodes);

constexpr std::array<uint8_t, 16> MakeHatCodes() {
    std::array<uint8_t, 16> codes{};
    codes[kHatUp] = 1 << 0;
    codes[kHatRight] = 1 << 2;
    codes[kHatDown] = 1 << 4;
    codes[kHatLeft] = 1 << 6;
    // Only this diagonal has its own code, set together with that of right but not that of up.
    codes[kHatUp | kHatRight] = 1 << 1 | 1 << 2;
    codes[kHatRight | kHatDown] = 1 << 2 | 1 << 4;
    codes[kHatLeft | kHatUp] = 1 << 6 | 1 << 0;
    codes[kHatDown | kHatLeft] = 1 << 4 | 1 << 6;
    return codes;
}

// The directions whose codes a hat's position sets, bit 0 for direction 0. Impossible positions set
// none.
constexpr std::array<uint8_t, 16> kHatCodes = MakeHatCodes();

// Written by the main thread, read by every thread one byte at a time.
std::array<std::atomic<uint8_t>, kInputCodes> gReleased{}; // set to 0 since the pump began
std::atomic<uint32_t> gActiveKey{0};
std::atomic<bool> gWalkingRoom{false};
std::atomic<void (*)(std::wstring_view)> gPollObserver{nullptr};

bool IsSet(const std::atomic<uint8_t>& byte) {
    return byte.load(std::memory_order_relaxed) != 0;
}

// Whether the modifiers held with a key are those of its binding. The keys in `inUse` are ordinary keys
// for this action and are ignored. A modifier key may be its own modifier, since a screen that records
// a press stores it that way.
bool ModifierHolds(const INPUT_STATE& state, uint32_t modifier, uint32_t key, uint32_t inUse) {
    uint32_t held = 0;
    for (uint32_t i = 0; i < kModifierKeys; ++i) {
        held |= (IsSet(state.down[kFirstModifierKey + i]) ? 1u : 0u) << i;
    }
    const uint32_t others = held & ~inUse;
    const uint32_t counted = others | (held & ModifierKeyBit(key));
    switch (modifier) {
    case kModifierShift: return (counted & kShiftKeyBits) != 0;
    case kModifierCtrl: return (counted & kCtrlKeyBits) != 0;
    default: return (others & (kShiftKeyBits | kCtrlKeyBits | kAltKeyBits)) == 0;
    }
}

bool IsDown(const INPUT_STATE& state, uint32_t binding, bool useReleased, uint32_t modifiersInUse) {
    if (binding == 0) {
        return false;
    }
    if (const uint64_t pad = PadBitOfBinding(binding); pad != 0) {
        return (state.pads.load(std::memory_order_relaxed) & pad) != 0;
    }
    const uint32_t device = binding >> 24;
    const uint32_t code = binding & 0xFFFF;
    const bool keyboard = device == kKeyboard;
    if (code >= (keyboard ? kKeyboardCodes : kInputCodes) || (!keyboard && device != kJoystick)) {
        return false;
    }
    if (!IsSet(state.down[code]) && !(useReleased && IsSet(gReleased[code]))) {
        return false;
    }
    return !keyboard || ModifierHolds(state, binding >> 16 & 0xFF, code, modifiersInUse);
}

void ClearIfDown(uint32_t code) {
    if (IsSet(gLiveInput.down[code])) {
        InputSetCode(code, false);
    }
}

std::string KeyName(uint32_t modifier, uint32_t scancode) {
    std::string name;
    if (modifier == kModifierShift) {
        name = "SHIFT + ";
    } else if (modifier == kModifierCtrl) {
        name = "CTRL + ";
    }
    const char* key = "";
    if (scancode < kKeyboardCodes) {
        key = SDL_GetScancodeName(static_cast<SDL_Scancode>(scancode));
    }
    return *key != '\0' ? name + key : name + "Key " + std::to_string(scancode);
}

std::string JoystickName(uint32_t joystick, uint32_t code) {
    constexpr std::array<const char*, kHatDirections> kDirections = {
        "UP", "UPRIGHT", "RIGHT", "DOWNRIGHT", "DOWN", "DOWNLEFT", "LEFT", "UPLEFT"};
    const std::string name = "Joy" + std::to_string(joystick + 1) + " ";
    const uint32_t firstAxis = JoystickAxisCode(joystick, 0, false);
    const uint32_t firstHat = JoystickHatCode(joystick, 0, 0);
    const uint32_t firstButton = JoystickButtonCode(joystick, 0);
    if (code >= firstAxis && code < firstHat) {
        // The sign shown is the opposite of the axis's sign.
        const uint32_t axis = (code - firstAxis) / 2;
        return name + "Axis" + std::to_string(axis) + ((code - firstAxis) % 2 == 0 ? " +" : " -");
    }
    if (code >= firstHat && code < firstButton) {
        const uint32_t hat = (code - firstHat) / kHatDirections;
        return name + "Hat" + std::to_string(hat) + " " +
               kDirections[(code - firstHat) % kHatDirections];
    }
    if (code >= firstButton && code < firstButton + kButtons) {
        return name + "Button" + std::to_string(code - firstButton);
    }
    return name + "Code" + std::to_string(code);
}

std::optional<int32_t> ReadWords(std::string_view text) {
    const std::optional<uint32_t> binding = ReadBindingText(text);
    return binding ? std::optional(static_cast<int32_t>(*binding)) : std::nullopt;
}

} // namespace

std::wstring BindingSetting(const INPUT_ACTION& action) {
    return std::wstring(kInputPrefix.Text()) + action.name;
}

void RegisterBindings(SettingsStore& store) {
    for (const INPUT_ACTION& action : InputActions()) {
        store.RegisterInt2(BindingSetting(action), 0, 0);
    }
    for (const INPUT_ACTION& action : InputActions()) {
        store.RegisterInt2(BindingSetting(action), static_cast<int32_t>(action.defaultBinding), 0);
        store.SetWordReader(BindingSetting(action), ReadWords);
    }
    RefreshActionNotes(store);
}

void InputSetPollObserver(void (*observer)(std::wstring_view name)) {
    gPollObserver.store(observer, std::memory_order_relaxed);
}

bool InputIsDown(uint32_t sessionKey, std::wstring_view name) {
    if (auto* const observer = gPollObserver.load(std::memory_order_relaxed)) {
        observer(name);
    }
    if (sessionKey != kApplicationKey && (sessionKey != InputActiveKey() || InputWalkingRoom())) {
        return false;
    }
    const Setting* const setting = Settings().Find(kInputPrefix, name);
    if (setting == nullptr) {
        return false;
    }
    const auto primary = static_cast<uint32_t>(setting->intValue.load(std::memory_order_relaxed));
    const auto secondary =
        static_cast<uint32_t>(setting->intValue2.load(std::memory_order_relaxed));
    const INPUT_STATE& state = *tInputState;
    const uint64_t note = setting->note.load(std::memory_order_relaxed);
    const uint32_t inUse = ModifiersOfNote(note);
    return IsDown(state, primary, false, inUse) || IsDown(state, secondary, false, inUse) ||
           (PadsOfNote(note) & state.pads.load(std::memory_order_relaxed)) != 0;
}

bool BindingIsDown(uint32_t code, bool useReleased) {
    return IsDown(*tInputState, code, useReleased, 0);
}

bool InputCodeIsDown(uint32_t code, bool useReleased) {
    return code < kInputCodes &&
           (IsSet(tInputState->down[code]) || (useReleased && IsSet(gReleased[code])));
}

std::wstring BindingName(uint32_t code) {
    if (code == 0) {
        return L"<undefined>";
    }
    const uint32_t device = code >> 24;
    const uint32_t middle = code >> 16 & 0xFF;
    const uint32_t state = code & 0xFFFF;
    std::string name;
    switch (device) {
    case kKeyboard: name = KeyName(middle, state); break;
    case kJoystick: name = JoystickName(middle, state); break;
    case kPad: name = BindingText(code); break;
    default: name = "Device" + std::to_string(device) + " Code" + std::to_string(state); break;
    }
    for (char& c : name) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return WideFromUtf8(name);
}

void InputSetActiveKey(uint32_t sessionKey) {
    if (sessionKey != InputActiveKey()) {
        HandPressesOver();
    }
    gActiveKey.store(sessionKey, std::memory_order_release); // with what was handed over
}

uint32_t InputActiveKey() {
    return gActiveKey.load(std::memory_order_acquire);
}

void InputSetWalkingRoom(bool walking) {
    if (walking != InputWalkingRoom()) {
        HandPressesOver();
    }
    gWalkingRoom.store(walking, std::memory_order_release);
}

bool InputWalkingRoom() {
    return gWalkingRoom.load(std::memory_order_acquire);
}

void InputBeginPump() {
    for (std::atomic<uint8_t>& released : gReleased) {
        released.store(0, std::memory_order_relaxed);
    }
    InputRefreshPadDefaults();
}

void InputSetCode(uint32_t code, bool down) {
    if (code >= kInputCodes) {
        return;
    }
    LogCode(code, down);
    if (!down) {
        gReleased[code].store(1, std::memory_order_relaxed);
    }
}

void InputKeyChanged(uint32_t scancode, bool down) {
    if (scancode < kKeyboardCodes) {
        InputSetCode(scancode, down);
    }
}

void InputAxisMoved(uint32_t joystick, uint32_t axis, int16_t value) {
    if (joystick >= kJoysticks || axis >= kAxes) {
        return;
    }
    const uint32_t under = JoystickAxisCode(joystick, axis, false);
    const uint32_t over = JoystickAxisCode(joystick, axis, true);
    if (value < -kAxisThreshold) {
        InputSetCode(under, true);
        ClearIfDown(over); // a stick may go from one end to the other between two events
    } else if (value > kAxisThreshold) {
        InputSetCode(over, true);
        ClearIfDown(under);
    } else {
        InputSetCode(under, false);
        InputSetCode(over, false);
    }
}

void InputHatMoved(uint32_t joystick, uint32_t hat, uint8_t position) {
    if (joystick >= kJoysticks || hat >= kHats) {
        return;
    }
    // All eight are marked, as an event clears them all. The state of those that stay down is never 0
    // in between, or a session that reads at that moment would see a release.
    const uint32_t set = position < kHatCodes.size() ? kHatCodes[position] : 0u;
    for (uint32_t direction = 0; direction < kHatDirections; ++direction) {
        const uint32_t code = JoystickHatCode(joystick, hat, direction);
        gReleased[code].store(1, std::memory_order_relaxed);
        LogCode(code, (set >> direction & 1) != 0);
    }
}

void InputButtonChanged(uint32_t joystick, uint32_t button, bool down) {
    if (joystick < kJoysticks && button < kButtons) {
        InputSetCode(JoystickButtonCode(joystick, button), down);
    }
}

void InputClearJoystick(uint32_t joystick) {
    if (joystick >= kJoysticks) {
        return;
    }
    const uint32_t first = JoystickAxisCode(joystick, 0, false);
    for (uint32_t code = first; code < first + kCodesOfOne; ++code) {
        ClearIfDown(code);
    }
}

void InputClearAll() {
    for (uint32_t code = 0; code < kInputCodes; ++code) {
        gLiveInput.down[code].store(0, std::memory_order_relaxed);
        gReleased[code].store(0, std::memory_order_relaxed);
    }
    InputClearPads();
    ForgetPresses();
}
