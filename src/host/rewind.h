// The rewind stack: a saved state for every frame that was run, the newest on top.
//
// The stack's worth is judged by its newest state alone: size times count against the limit. It is
// the session's and is touched under the session's lock.
#pragma once

#include "host/session.h"

#include <cstdint>

// `emu_rewindbuffer`, in mebibytes, as a limit in bytes: at most 1,024 count, and a negative value is
// taken as 0, which keeps no states.
[[nodiscard]] uint64_t RewindLimitBytes(int32_t mebibytes);

// Puts a state on the stack and drops the oldest one when the limit is reached. A null or empty state
// is not taken: there is nothing in it to go back to.
void RewindPush(EMU_THREAD& session, StateBlob state, uint32_t size, uint64_t limitBytes);

// Takes the newest state off and frees it. The stack is not empty.
void RewindPop(EMU_THREAD& session);

void RewindClear(EMU_THREAD& session);
