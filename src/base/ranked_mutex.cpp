#include "base/ranked_mutex.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

struct HELD_LOCK {
    LockRank rank;
    const void* mutex;
};

thread_local std::vector<HELD_LOCK> gHeld;

} // namespace

void LockRankPush(LockRank rank, const void* mutex, bool recursive) {
    for (const HELD_LOCK& held : gHeld) {
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
    gHeld.push_back({rank, mutex});
}

void LockRankPop(const void* mutex) {
    for (auto held = gHeld.rbegin(); held != gHeld.rend(); ++held) {
        if (held->mutex == mutex) {
            gHeld.erase(std::next(held).base());
            return;
        }
    }
}
