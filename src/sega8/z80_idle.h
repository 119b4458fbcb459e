// Skips the rounds of a loop that only reads memory, in which games wait for an interrupt; HALT is such a loop, too.
// Two rounds that begin with the same registers and without another access between them are equal, and so is every
// round after them until the lines of the chip change.
#pragma once

#include "sega8/z80.h"

#include <cstdint>

// True if both do the same from here on, with the same memory and ports: all but R is equal, which only counts
// instructions.
[[nodiscard]] bool Z80IsAlike(const Z80& one, const Z80& other);

// Whether an opcode that has just been read is LD A,R or LD R,A. It counts as an effect, since R differs in every
// round.
[[nodiscard]] inline bool Z80UsesRefresh(const Z80& z80, uint8_t opcode) {
    constexpr uint8_t kLoadRFromA = 0x4F;
    constexpr uint8_t kLoadAFromR = 0x5F;
    return z80.prefix == kZ80PrefixEd && (opcode == kLoadRFromA || opcode == kLoadAFromR);
}

class Z80IdleLoop {
public:
    // After the last instruction of a round, on the clock `now` of any steady count. `effects` counts the accesses
    // that were no reads of memory, and the uses of R. Skips whole rounds within the next clocks and returns their
    // clocks. `quietClocks` () returns how many clocks it may skip.
    template <typename QuietClocks>
    [[gnu::noinline]] uint32_t Skip(Z80& z80, uint32_t effects, uint32_t now,
                                    QuietClocks&& quietClocks) {
        uint32_t skipped = 0;
        if (effects == lastEffects && Z80IsAlike(z80, last)) {
            const uint32_t round = now - lastClock;
            const uint32_t rounds = quietClocks() / round;
            z80.r7 = (z80.r7 + rounds * (z80.r7 - last.r7)) & 0xFF;
            skipped = rounds * round;
        }
        lastEffects = effects;
        lastClock = now + skipped;
        last = z80;
        return skipped;
    }

    // The same for `left` clocks.
    uint32_t Skip(Z80& z80, uint32_t effects, uint32_t now, uint32_t left) {
        return Skip(z80, effects, now, [left] { return left; });
    }

private:
    Z80 last; // at the end of the round before
    uint32_t lastEffects = 0;
    uint32_t lastClock = 0;
};
