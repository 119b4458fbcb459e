// Counts the allocations with `new` on the calling thread during its life, and makes them fail when a test asks for it.
// allocation_counter.cpp replaces the global operators of the test program.
#pragma once

#include <cstddef>

[[nodiscard]] size_t AllocationsSoFar();

// While one lives, the calling thread can make `count` allocations more of `bytes` or above; later ones throw
// std::bad_alloc.
class AllocationLimit {
public:
    explicit AllocationLimit(size_t count, size_t bytes = 0);
    ~AllocationLimit();
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
};
