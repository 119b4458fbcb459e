#include "support/allocation_counter.h"

#include <cstdlib>
#include <new>

namespace {

thread_local size_t gAllocations = 0;

} // namespace

size_t AllocationsSoFar() {
    return gAllocations;
}

// NOLINTBEGIN(cppcoreguidelines-no-malloc,misc-new-delete-overloads): the operators themselves
void* operator new(size_t size) {
    ++gAllocations;
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, size_t) noexcept {
    std::free(block);
}
// NOLINTEND(cppcoreguidelines-no-malloc,misc-new-delete-overloads)
