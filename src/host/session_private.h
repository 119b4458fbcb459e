// What a session's thread needs from session.cpp.
#pragma once

#include "host/session.h"

// The installed callbacks. A session's thread copies them once at its start, while nobody may change
// them.
[[nodiscard]] const EMU_HOST_CALLBACKS& SessionHost();

// The last act of a session's thread.
void SessionThreadEnded();
