// Counts the allocations with `new` on the calling thread during its life. allocation_counter.cpp
// replaces the global operators of the test program.
#pragma once

#include <cstddef>

[[nodiscard]] size_t AllocationsSoFar();
