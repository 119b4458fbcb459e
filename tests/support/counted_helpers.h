// Counts the threads that begin as helpers, while an object of this class lives.
#pragma once

#include "base/helper_thread.h"

#include <atomic>

class CountedHelpers {
public:
    CountedHelpers() {
        begun = 0;
        SetHelperBegins([] { ++begun; });
    }
    ~CountedHelpers() { SetHelperBegins(nullptr); }
    CountedHelpers(const CountedHelpers&) = delete;
    CountedHelpers& operator=(const CountedHelpers&) = delete;

    [[nodiscard]] static int Begun() { return begun; }

private:
    static inline std::atomic<int> begun{0};
};
