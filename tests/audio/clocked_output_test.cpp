#include "audio/clocked_output.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

constexpr uint32_t kRate = 44100;
constexpr int64_t kSecond = 1'000'000'000;

// Waits for what another thread does; the suite's own time limit ends it when that never comes.
void WaitForPulls(const std::atomic<int>& pulls, int count) {
    while (pulls < count) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
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
    WaitForPulls(pulls, 5);
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
    WaitForPulls(first, 1);
    output.Start(kRate, 64, [&second](int16_t*, uint32_t) { ++second; });
    const int done = first;
    WaitForPulls(second, 3);
    EXPECT_EQ(first, done);
}

TEST(ClockedOutput, LatePullsAreMadeGoodForATenthOfASecond) {
    // After a second and a tenth, with one second done: all of the rest is still to come.
    EXPECT_EQ(FramesAfterStandstill(kRate, kSecond + kSecond / 10, kRate), kRate);
    EXPECT_EQ(FramesAfterStandstill(kRate, kSecond, kRate), kRate);
    // A moment more, and it goes on with what is due now: 44,100 x 1.101.
    EXPECT_EQ(FramesAfterStandstill(kRate, kSecond + kSecond / 1000 * 101, kRate), 48554u);
}

TEST(ClockedOutput, CountsOnOverAYearWithoutLosingAFrame) {
    constexpr int64_t kYear = int64_t{365} * 24 * 60 * 60;
    const uint64_t frames = uint64_t{192000} * static_cast<uint64_t>(kYear);
    EXPECT_EQ(FramesAfterStandstill(frames, kYear * kSecond, 192000), frames);
    EXPECT_EQ(FramesAfterStandstill(0, kYear * kSecond, 192000), frames);
}
