// What a session's thread needs of those who start it.
#pragma once

#include "host/session.h"

// The callbacks as installed. A session's thread copies them at its start, while nobody may change
// them, and never looks again.
[[nodiscard]] const EMU_HOST_CALLBACKS& SessionHost();

// The last act of a session's thread.
void SessionThreadEnded();
