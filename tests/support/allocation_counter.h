// Counts what a stretch of code allocates with `new` on the calling thread. allocation_counter.cpp
// replaces the global operators of the test program.
#pragma once

#include <cstddef>

[[nodiscard]] size_t AllocationsSoFar();
