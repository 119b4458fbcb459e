#include "settings/pad_defaults.h"

#include "settings/bindings.h"
#include "settings/bindings/action_notes.h"
#include "settings/bindings/press_log.h"
#include "settings/settings.h"

#include <array>
#include <atomic>

namespace {

static_assert(kPadControls <= 32 && kPadPlayers <= 2); // the bits of one word

// The main thread's own.
std::array<PadCodes, kPadPlayers> gCodes{};
std::array<bool, kPadPlayers> gAttached{};
uint64_t gDown = 0;
uint64_t gTaken = 0;                 // controls that the user has bound
BOUND_INPUTS gBound;                 // all that he has bound, also without a controller
std::atomic<uint64_t> gPadsBound{0}; // the controls of that, for every thread

constexpr uint64_t AllOf(uint32_t player) {
    return uint64_t{0xFFFFFFFF} << (player * 32);
}

void SetDown(uint64_t down) {
    const uint64_t pressed = down & ~gDown;
    gDown = down;
    LogPads(pressed, gDown & ~gTaken, gTaken);
}

} // namespace

void InputAttachPad(uint32_t player, const PadCodes& codes) {
    if (player >= kPadPlayers) {
        return;
    }
    gAttached[player] = true;
    SetDown(gDown & ~AllOf(player));
    InputSetPadCodes(player, codes);
}

void InputDetachPad(uint32_t player) {
    if (player >= kPadPlayers) {
        return;
    }
    gAttached[player] = false;
    SetDown(gDown & ~AllOf(player));
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
    SetDown(down ? gDown | bit : gDown & ~bit);
}

void InputPointerTrigger(uint32_t player, bool down) {
    if (player >= kPadPlayers) {
        return;
    }
    const uint64_t bit = PointerTriggerBit(player);
    SetDown(down ? gDown | bit : gDown & ~bit);
}

void InputClearPads() {
    SetDown(0);
}

void InputRefreshPadDefaults() {
    gBound = RefreshActionNotes(Settings());
    gPadsBound.store(gBound.pads, std::memory_order_relaxed);
    gTaken = 0;
    for (uint32_t player = 0; player < kPadPlayers; ++player) {
        for (uint32_t control = 0; control < kPadControls; ++control) {
            for (const uint32_t code : gCodes[player][control]) {
                if (InputCodeIsBound(code)) {
                    gTaken |= PadBit(player, static_cast<PadControl>(control));
                }
            }
        }
    }
    SetDown(gDown);
}

uint64_t InputPadsOf(const INPUT_ACTION& action) {
    const Setting* const setting = Settings().Find(kInputPrefix, action.name);
    return setting != nullptr ? PadsOfNote(setting->note.load(std::memory_order_relaxed)) : 0;
}

uint64_t InputPadsActing() {
    return tInputState->pads.load(std::memory_order_relaxed) &
           ~gPadsBound.load(std::memory_order_relaxed);
}

uint64_t InputPadsDown() {
    return gDown;
}

uint64_t InputPadsTaken() {
    return gTaken | gBound.pads;
}

bool InputCodeIsBound(uint32_t code) {
    return code != 0 && code < kInputCodes && gBound.codes[code];
}
