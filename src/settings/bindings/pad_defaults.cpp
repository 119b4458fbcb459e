#include "settings/pad_defaults.h"

#include "settings/bindings.h"
#include "settings/settings.h"

#include <atomic>
#include <bitset>

namespace {

constexpr SettingPrefix kInputPrefix{L"INPUT "};

static_assert(kPadControls <= 32 && kPadPlayers <= 2); // the bits of one word

// The main thread's own.
std::array<PadCodes, kPadPlayers> gCodes{};
std::array<bool, kPadPlayers> gAttached{};
uint64_t gDown = 0;
uint64_t gTaken = 0; // controls that the user has bound

// Written by the main thread, read by every thread.
std::atomic<uint64_t> gActing{0};

using BoundCodes = std::bitset<kInputCodes>;

constexpr uint64_t kPointerTriggers = PointerTriggerBit(0) | PointerTriggerBit(1);

constexpr uint64_t AllOf(uint32_t player) {
    return uint64_t{0xFFFFFFFF} << (player * 32);
}

void UpdateActing() {
    gActing.store(gDown & ~gTaken, std::memory_order_relaxed);
}

bool IsJoystickBinding(uint32_t binding) {
    return binding >> 24 == 1;
}

void AddBoundCode(BoundCodes& bound, uint32_t binding) {
    const uint32_t code = binding & 0xFFFF;
    if (IsJoystickBinding(binding) && code < kInputCodes) {
        bound.set(code);
    }
}

// Gives each action the controls that may act for it, and collects the joystick codes bound.
BoundCodes RefreshActions() {
    BoundCodes bound;
    for (const INPUT_ACTION& action : InputActions()) {
        const Setting* const setting = Settings().Find(kInputPrefix, action.name);
        if (setting == nullptr) {
            continue;
        }
        const auto primary =
            static_cast<uint32_t>(setting->intValue.load(std::memory_order_relaxed));
        const auto secondary =
            static_cast<uint32_t>(setting->intValue2.load(std::memory_order_relaxed));
        // No binding of a first run is a joystick's, so any that is one is the user's.
        const bool own = IsJoystickBinding(primary) || IsJoystickBinding(secondary);
        setting->padControls.store(own ? action.padControls & kPointerTriggers : action.padControls,
                                   std::memory_order_relaxed);
        AddBoundCode(bound, primary);
        AddBoundCode(bound, secondary);
    }
    return bound;
}

} // namespace

void InputAttachPad(uint32_t player, const PadCodes& codes) {
    if (player >= kPadPlayers) {
        return;
    }
    gAttached[player] = true;
    gDown &= ~AllOf(player);
    InputSetPadCodes(player, codes);
}

void InputDetachPad(uint32_t player) {
    if (player >= kPadPlayers) {
        return;
    }
    gAttached[player] = false;
    gDown &= ~AllOf(player);
    UpdateActing();
}

void InputSetPadCodes(uint32_t player, const PadCodes& codes) {
    if (player >= kPadPlayers) {
        return;
    }
    gCodes[player] = codes;
    InputRefreshPadDefaults();
}

void InputPadChanged(uint32_t player, PadControl control, bool down) {
    if (player >= kPadPlayers || control >= kPadControls || !gAttached[player]) {
        return;
    }
    const uint64_t bit = PadBit(player, control);
    gDown = down ? gDown | bit : gDown & ~bit;
    UpdateActing();
}

void InputPointerTrigger(uint32_t player, bool down) {
    if (player >= kPadPlayers) {
        return;
    }
    const uint64_t bit = PointerTriggerBit(player);
    gDown = down ? gDown | bit : gDown & ~bit;
    UpdateActing();
}

void InputClearPads() {
    gDown = 0;
    UpdateActing();
}

void InputRefreshPadDefaults() {
    const BoundCodes bound = RefreshActions();
    gTaken = 0;
    for (uint32_t player = 0; player < kPadPlayers; ++player) {
        for (uint32_t control = 0; control < kPadControls; ++control) {
            for (const uint32_t code : gCodes[player][control]) {
                if (code != 0 && code < kInputCodes && bound[code]) {
                    gTaken |= PadBit(player, static_cast<PadControl>(control));
                }
            }
        }
    }
    UpdateActing();
}

uint64_t InputPadsActing() {
    return gActing.load(std::memory_order_relaxed);
}
