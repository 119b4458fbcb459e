// PadChord: back and start of one game controller, held together for half a second, open the menu of a game: a
// controller need not have a guide button, and its driver may keep that for itself.
//
// Games know both buttons, and a player may press them together, but holds them so long only on purpose.
//
// Thread: main.
#pragma once

#include "settings/pad_defaults.h"

#include <cstdint>

class PadChord {
public:
    // Once a round. `controls` are those that are down, of all players; true in the round in which the time is over.
    [[nodiscard]] bool Update(uint64_t controls, int64_t now) {
        bool both = false;
        for (uint32_t player = 0; player < kPadPlayers; ++player) {
            const uint64_t chord = PadBit(player, kPadBack) | PadBit(player, kPadStart);
            both = both || (controls & chord) == chord;
        }
        if (!both) {
            since = kNotHeld;
            return false;
        }
        since = since == kNotHeld ? now : since;
        if (since == kUsed || now - since < kHold) {
            return false;
        }
        since = kUsed;
        return true;
    }

private:
    static constexpr int64_t kHold = 500000; // microseconds
    static constexpr int64_t kNotHeld = -1;
    static constexpr int64_t kUsed = -2; // until the buttons are released
    int64_t since = kNotHeld;
};
