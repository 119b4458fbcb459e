#include "settings/bindings/action_notes.h"

#include "settings/bindings.h"
#include "settings/settings.h"

#include <array>
#include <utility>

namespace {

constexpr uint64_t kPointerTriggers = PointerTriggerBit(0) | PointerTriggerBit(1);

std::array<uint32_t, 2> BindingsOf(const Setting& setting) {
    return {static_cast<uint32_t>(setting.intValue.load(std::memory_order_relaxed)),
            static_cast<uint32_t>(setting.intValue2.load(std::memory_order_relaxed))};
}

bool IsJoystickBinding(uint32_t binding) {
    return binding >> 24 == 1;
}

uint32_t ModifierKeyOf(uint32_t binding) {
    return binding >> 24 == 0 ? ModifierKeyBit(binding & 0xFFFF) : 0;
}

// The modifier keys that actions of each machine are bound to. The program's own actions have none.
std::array<uint32_t, kInputOwners> ModifiersInUse(const SettingsStore& store) {
    std::array<uint32_t, kInputOwners> inUse{};
    const auto actions = InputActions();
    for (size_t i = 0; i < actions.size(); ++i) {
        const Setting* const setting = store.Find(kInputPrefix, actions[i].name);
        if (setting != nullptr && InputOwners()[i] != 0) {
            const auto [primary, secondary] = BindingsOf(*setting);
            inUse[InputOwners()[i]] |= ModifierKeyOf(primary) | ModifierKeyOf(secondary);
        }
    }
    return inUse;
}

// The controls that actions are bound to.
uint64_t PadsInUse(const SettingsStore& store) {
    uint64_t pads = 0;
    for (const INPUT_ACTION& action : InputActions()) {
        if (const Setting* const setting = store.Find(kInputPrefix, action.name)) {
            const auto [primary, secondary] = BindingsOf(*setting);
            pads |= PadBitOfBinding(primary) | PadBitOfBinding(secondary);
        }
    }
    return pads;
}

} // namespace

BOUND_INPUTS RefreshActionNotes(const SettingsStore& store) {
    BOUND_INPUTS bound;
    bound.pads = PadsInUse(store);
    const std::array<uint32_t, kInputOwners> inUse = ModifiersInUse(store);
    const auto actions = InputActions();
    for (size_t i = 0; i < actions.size(); ++i) {
        const Setting* const setting = store.Find(kInputPrefix, actions[i].name);
        if (setting == nullptr) {
            continue;
        }
        // No default binding is a joystick's or a controller's, so such a binding is the user's own.
        bool own = false;
        uint64_t ownPads = 0;
        for (const uint32_t binding : BindingsOf(*setting)) {
            const uint32_t code = binding & 0xFFFF;
            ownPads |= PadBitOfBinding(binding);
            own |= IsJoystickBinding(binding);
            if (IsJoystickBinding(binding) && code < kInputCodes) {
                bound.codes.set(code);
            }
        }
        own |= ownPads != 0;
        const uint64_t pads =
            (actions[i].padControls & (own ? kPointerTriggers : ~bound.pads)) | ownPads;
        setting->note.store(NoteOf(pads, inUse[InputOwners()[i]]), std::memory_order_relaxed);
    }
    return bound;
}
