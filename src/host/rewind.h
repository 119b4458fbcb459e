// The rewind stack: a saved state of every frame, the newest on top.
//
// The limit applies to an estimate of the stack's size: the bytes of the newest state times the number
// of states.
//
// Threads: the session's own, under the session's `lock`. The thread that stops the session frees the
// rest once the session's thread has ended.
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
    REWIND_NODE* rewindCursor = nullptr;     // the state that the current rewind loads next
    REWIND_NODE* rewindTail = nullptr;       // the oldest state, the next to be dropped
    uint32_t rewindCount = 0;                // states on the stack
    uint32_t rewindSteps = 0; // frames taken back in the current rewind; 0 when not rewinding
};

// `emu_rewindbuffer`, in mebibytes, as a limit in bytes: capped at 1,024; a negative value counts as 0,
// which keeps no states.
[[nodiscard]] uint64_t RewindLimitBytes(int32_t mebibytes);

// Puts a state on the stack and drops the oldest one when the limit is reached. A null or empty state
// is ignored.
void RewindPush(REWIND_STACK& stack, StateBlob state, uint32_t size, uint64_t limitBytes);

// Removes and frees the newest state. The stack must not be empty.
void RewindPop(REWIND_STACK& stack);

void RewindClear(REWIND_STACK& stack);
