// The rewind stack: a saved state of every frame, the newest on top.
//
// Only the newest state is whole. The machine writes each state over it, and what changes is noted, packed and kept
// (state_changes.h): it leads from the newer state back to the older one. So a step back unpacks the changes of one
// frame, and the oldest state can be dropped without touching another.
//
// The limit applies to all memory that the stack uses, as RewindBytes counts it. The newest state is kept whatever the
// limit.
//
// Threads: the session's own, under the session's `lock`. The thread that stops the session frees the
// rest once the session's thread has ended.
#pragma once

#include "machine/emu_system.h"
#include "machine/state_changes.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

// A state that is not the newest.
struct PACKED_STATE {
    std::unique_ptr<uint8_t[]> changes; // from it to the state after it
    uint32_t packedBytes = 0;
    uint32_t stateBytes = 0;
};

struct REWIND_STACK {
    StateBlob
        rewindHead; // the newest state, which the next step back loads; null if the stack is empty
    uint32_t rewindHeadBytes = 0;   // its size
    uint32_t rewindRoomBytes = 0;   // of its block: no state of the stack is larger
    uint32_t rewindCount = 0;       // states on the stack
    uint32_t rewindSteps = 0;       // frames taken back in the current rewind; 0 when not rewinding
    bool rewindRefused = false;     // the player has been told that there was no memory for a state
    uint64_t packedBytes = 0;       // memory of `older`
    std::deque<PACKED_STATE> older; // the oldest first
    StateChanges changes;           // of the newest state
    std::vector<uint8_t> packed;    // them packed
};

// `emu_rewindbuffer`, in mebibytes, as a limit in bytes: capped at 1,024; a negative value counts as 0,
// which keeps no states.
[[nodiscard]] uint64_t RewindLimitBytes(int32_t mebibytes);

// Puts the machine's state on the stack and drops the oldest ones while the stack is over the limit. Does nothing if
// the machine cannot save its state. False if there is no memory for it; the stack is then as it was.
[[nodiscard]] bool RewindPush(REWIND_STACK& stack, CEmuSystem& machine, uint64_t limitBytes);

// Removes the newest state; the one before it is then whole, byte for byte as it was pushed. The stack must not be
// empty. Allocates nothing.
void RewindPop(REWIND_STACK& stack);

// All memory that the stack uses, with what the allocator adds to a block.
[[nodiscard]] uint64_t RewindBytes(const REWIND_STACK& stack);

void RewindClear(REWIND_STACK& stack);
