// How long the calling thread has used a processor.
#pragma once

#include <cstdint>

// Microseconds since the thread's start; 0 where the system does not tell.
[[nodiscard]] int64_t ThreadProcessorTime();
