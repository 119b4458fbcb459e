#include "support/allocation_counter.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

thread_local size_t gAllocations = 0;
thread_local size_t gLeft = SIZE_MAX; // allocations of gLimitedBytes or above before one fails
thread_local size_t gLimitedBytes = SIZE_MAX;

} // namespace

size_t AllocationsSoFar() {
    return gAllocations;
}

AllocationLimit::AllocationLimit(size_t count, size_t bytes) {
    gLeft = count;
    gLimitedBytes = bytes;
}

AllocationLimit::~AllocationLimit() {
    gLeft = SIZE_MAX;
    gLimitedBytes = SIZE_MAX;
}

// NOLINTBEGIN(cppcoreguidelines-no-malloc,misc-new-delete-overloads): the operators themselves
void* operator new(size_t size) {
    if (size >= gLimitedBytes && gLeft-- == 0) {
        gLeft = 0;
        throw std::bad_alloc();
    }
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

// The library's own call those above, but a sanitizer's do not.
void* operator new[](size_t size) {
    return operator new(size);
}

void operator delete[](void* block) noexcept {
    std::free(block);
}

void operator delete[](void* block, size_t) noexcept {
    std::free(block);
}
// NOLINTEND(cppcoreguidelines-no-malloc,misc-new-delete-overloads)
