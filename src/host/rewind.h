// The rewind stack: a saved state for every frame that was run, the newest on top.
//
// The size of the whole stack is judged by its newest state alone: its bytes times the number of states,
// against the limit.
//
// Threads: the session's own, under the session's `lock`. The thread that stops the session frees what
// is left, once the session's thread has ended.
#pragma once

#include "machine/emu_system.h"

#include <cstdint>
#include <memory>

// One state of the stack.
struct REWIND_NODE {
    StateBlob state;
    uint32_t size = 0;                 // bytes
    std::unique_ptr<REWIND_NODE> next; // the older state
    REWIND_NODE* newer = nullptr;      // null at the head
};

struct REWIND_STACK {
    REWIND_STACK() = default;
    ~REWIND_STACK();
    REWIND_STACK(const REWIND_STACK&) = delete;
    REWIND_STACK& operator=(const REWIND_STACK&) = delete;

    std::unique_ptr<REWIND_NODE> rewindHead; // the newest state
    REWIND_NODE* rewindCursor = nullptr;     // the state that the present rewind loads next
    REWIND_NODE* rewindTail = nullptr; // the oldest state, so that it is dropped without a walk
    uint32_t rewindCount = 0;          // states on the stack
    uint32_t rewindSteps = 0;          // taken back in the present rewind; 0 when not rewinding
};

// `emu_rewindbuffer`, in mebibytes, as a limit in bytes: at most 1,024 count, and a negative value is
// taken as 0, which keeps no states.
[[nodiscard]] uint64_t RewindLimitBytes(int32_t mebibytes);

// Puts a state on the stack and drops the oldest one when the limit is reached. A null or empty state
// is not taken: there is nothing in it to go back to.
void RewindPush(REWIND_STACK& stack, StateBlob state, uint32_t size, uint64_t limitBytes);

// Takes the newest state off and frees it. The stack is not empty.
void RewindPop(REWIND_STACK& stack);

void RewindClear(REWIND_STACK& stack);
