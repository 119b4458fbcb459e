// What the frame loop shares with the list of sessions.
#pragma once

#include "host/session.h"

using SessionListMutex = RankedRecursiveMutex<LockRank::kSessionList>;
[[nodiscard]] SessionListMutex& SessionListLock();

// The callbacks as installed. A session's thread copies them at its start, while nobody may change
// them, and never looks again.
[[nodiscard]] const EMU_HOST_CALLBACKS& SessionHost();

// The last act of a session's thread.
void SessionThreadEnded();
