// What each action's note holds, computed from the bindings of all actions: the controls of game
// controllers that may act for the action, and the modifier keys that are ordinary keys to it.
//
// A note has the pad controls at their own bits (`PadBit`) and the modifier keys at bits 20 to 27, which
// no control has.
#pragma once

#include "settings/input_state.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"

#include <bitset>
#include <cstdint>

// Before an action's name in its setting's name.
inline constexpr SettingPrefix kInputPrefix{L"INPUT "};

inline constexpr uint32_t kFirstModifierKey = 224; // scancode of Left Ctrl; bit 0
inline constexpr uint32_t kModifierKeys = 8;
inline constexpr uint32_t kCtrlKeyBits = 1u << 0 | 1u << 4;
inline constexpr uint32_t kShiftKeyBits = 1u << 1 | 1u << 5;
inline constexpr uint32_t kAltKeyBits = 1u << 2 | 1u << 6;

inline constexpr uint32_t kNoteModifiers = 20; // their lowest bit
static_assert(kPadControls <= kNoteModifiers && kNoteModifiers + kModifierKeys < 31);

// The bit of a shift, ctrl or alt key; 0 for any other key.
[[nodiscard]] constexpr uint32_t ModifierKeyBit(uint32_t scancode) {
    const bool modifier =
        scancode >= kFirstModifierKey && scancode < kFirstModifierKey + kModifierKeys;
    return modifier ? 1u << (scancode - kFirstModifierKey) : 0;
}
[[nodiscard]] constexpr uint64_t NoteOf(uint64_t pads, uint32_t modifiers) {
    return pads | uint64_t{modifiers} << kNoteModifiers;
}
[[nodiscard]] constexpr uint32_t ModifiersOfNote(uint64_t note) {
    return static_cast<uint32_t>(note >> kNoteModifiers) & ((1u << kModifierKeys) - 1);
}
[[nodiscard]] constexpr uint64_t PadsOfNote(uint64_t note) {
    return note & ~(uint64_t{(1u << kModifierKeys) - 1} << kNoteModifiers);
}

// What the bindings name.
struct BOUND_INPUTS {
    std::bitset<kInputCodes> codes; // of joysticks
    uint64_t pads = 0;              // controls of game controllers
};

// Recomputes every action's note.
BOUND_INPUTS RefreshActionNotes(const SettingsStore& store);
