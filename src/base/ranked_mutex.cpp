#include "base/ranked_mutex.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace {

struct HELD_LOCK {
    LockRank rank;
    const void* mutex;
};

// A plain array has no destructor, so it is still valid for locks taken while the program ends.
constexpr size_t kMostHeld = 32;

struct HELD_LOCKS {
    HELD_LOCK locks[kMostHeld];
    size_t count;
};

thread_local HELD_LOCKS gHeld{};

} // namespace

void LockRankPush(LockRank rank, const void* mutex, bool recursive) {
    for (size_t i = 0; i < gHeld.count; ++i) {
        const HELD_LOCK& held = gHeld.locks[i];
        const bool again = held.mutex == mutex;
        if ((again && !recursive) || (!again && held.rank >= rank)) {
            std::fprintf(stderr, "lock of rank %d taken under one of rank %d\n",
                         static_cast<int>(rank), static_cast<int>(held.rank));
            std::abort();
        }
        if (again) {
            break;
        }
    }
    if (gHeld.count == kMostHeld) {
        std::fprintf(stderr, "more than %zu locks held at once\n", kMostHeld);
        std::abort();
    }
    gHeld.locks[gHeld.count++] = {rank, mutex};
}

void LockRankPop(const void* mutex) {
    for (size_t i = gHeld.count; i-- > 0;) {
        if (gHeld.locks[i].mutex == mutex) {
            std::copy(gHeld.locks + i + 1, gHeld.locks + gHeld.count, gHeld.locks + i);
            --gHeld.count;
            return;
        }
    }
}
