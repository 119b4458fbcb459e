#include "audio/clocked_output.h"

#include "support/wait_until.h"
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

constexpr uint32_t kRate = 44100;
constexpr int64_t kSecond = 1'000'000'000;

testing::AssertionResult HasPulled(const std::atomic<int>& pulls, int count) {
    return WaitUntil("the output to pull", [&] { return pulls >= count; });
}

} // namespace

TEST(ClockedOutput, PullsBlocksOfTheSizeAskedForUntilItIsStopped) {
    ClockedOutput output;
    std::atomic<int> pulls{0};
    std::atomic<uint32_t> otherSizes{0};
    output.Start(kRate, 64, [&](int16_t* out, uint32_t frames) {
        out[frames * 2 - 1] = 1; // room for all of them
        otherSizes += frames != 64 ? 1u : 0u;
        ++pulls;
    });
    ASSERT_TRUE(HasPulled(pulls, 5));
    output.Stop();
    const int atStop = pulls;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(pulls, atStop);
    EXPECT_EQ(otherSizes, 0u);
    output.Stop();
}

TEST(ClockedOutput, StartsAgainWithAnotherPull) {
    ClockedOutput output;
    std::atomic<int> first{0};
    std::atomic<int> second{0};
    output.Start(kRate, 64, [&first](int16_t*, uint32_t) { ++first; });
    ASSERT_TRUE(HasPulled(first, 1));
    output.Start(kRate, 64, [&second](int16_t*, uint32_t) { ++second; });
    const int done = first;
    ASSERT_TRUE(HasPulled(second, 3));
    EXPECT_EQ(first, done);
}

TEST(ClockedOutput, WhatWasMissedByMoreThanAPullIsSkipped) {
    constexpr uint32_t kPull = 441; // 10 ms
    // With one second done: on time, and late by exactly a pull, which keeps its place.
    EXPECT_EQ(FramesAfterStandstill(kRate, kSecond, kRate, kPull), kRate);
    EXPECT_EQ(FramesAfterStandstill(kRate, kSecond + kSecond / 100, kRate, kPull), kRate);
    // One millisecond more, and it skips to what is due now: 44,100 x 1.011.
    EXPECT_EQ(FramesAfterStandstill(kRate, kSecond + kSecond / 1000 * 11, kRate, kPull), 44585u);
    // Early ones stay.
    EXPECT_EQ(FramesAfterStandstill(kRate, 0, kRate, kPull), kRate);
}

TEST(ClockedOutput, CountsOnOverAYearWithoutLosingAFrame) {
    constexpr int64_t kYear = int64_t{365} * 24 * 60 * 60;
    const uint64_t frames = uint64_t{192000} * static_cast<uint64_t>(kYear);
    EXPECT_EQ(FramesAfterStandstill(frames, kYear * kSecond, 192000, 512), frames);
    EXPECT_EQ(FramesAfterStandstill(0, kYear * kSecond, 192000, 512), frames);
}
