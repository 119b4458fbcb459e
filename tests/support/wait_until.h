// Waits for another thread. A wait has a limit, and a failure says what it waited for.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string_view>
#include <thread>

// Far longer than on a busy computer: it only ends a run that hangs.
inline constexpr std::chrono::seconds kLongestWait{120};

template <typename Condition>
[[nodiscard]] testing::AssertionResult WaitUntil(std::string_view what, const Condition& condition,
                                                 std::chrono::seconds longest = kLongestWait) {
    const auto end = std::chrono::steady_clock::now() + longest;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) {
            return testing::AssertionFailure()
                   << "waited " << longest.count() << " seconds for " << what;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return testing::AssertionSuccess();
}
