#include "host/benchmark.h"
#include "host/host_fixture.h"

#include <gtest/gtest.h>

namespace {

TEST(BenchmarkScore, AMachineAtItsOwnSpeedIsOne) {
    const auto [speed, score] = BenchmarkScore(250); // 50 frames a second for five seconds
    EXPECT_NEAR(speed, 21.2f, 0.0005f);
    EXPECT_NEAR(score, 1.0f, 0.0005f);
    const std::vector<std::string> rows = BenchmarkReport(250);
    const std::string rule(rows[0].size(), '_');
    const std::vector<std::string> expected = {
        rule,
        "Sega Master System Benchmark - Single Core",
        "   Frames Completed: 250",
        "Your emulated speed: 21.200 MHz",
        "   SMS System Speed: 21.200 MHz",
        "                     -----------",
        "        Total Score: 1.000 Sega Master Systems on a single core with cycle accuracy",
        rule,
        "",
    };
    EXPECT_EQ(rows, expected);
    EXPECT_GT(rule.size(), 20u);
}

TEST(BenchmarkScore, OnlyMoreThanTwoMachinesAreCongratulated) {
    EXPECT_EQ(BenchmarkReport(500).size(), 9u);
    EXPECT_EQ(
        BenchmarkReport(500)[6],
        "        Total Score: 2.000 Sega Master Systems on a single core with cycle accuracy");
    ASSERT_EQ(BenchmarkReport(501).size(), 10u);
    EXPECT_EQ(BenchmarkReport(501)[9],
              "Congratulations! You seem to have a good enough PC to play Ombrelune comfortably");
}

class BenchmarkRun : public HostTest {};

// A frame takes 20 ms on this clock, the uncounted first one included.
TEST_F(BenchmarkRun, TheFirstFrameTakesTimeButIsNotCounted) {
    CGameFile game = MakeGame(1);
    uint64_t now = 7000;
    uint32_t looks = 0;
    const uint32_t frames = RunBenchmark(&game, [&] {
        now += looks++ == 0 ? 0u : 20u;
        return now;
    });
    EXPECT_EQ(frames, 249u);
    EXPECT_EQ(now, 12000u);
}

TEST_F(BenchmarkRun, AFrameBegunInTimeIsFinishedAndCounted) {
    CGameFile game = MakeGame(1);
    const uint64_t looks[] = {0, 4999, 5000};
    size_t look = 0;
    EXPECT_EQ(RunBenchmark(&game, [&] { return looks[look++]; }), 1u);
}

TEST_F(BenchmarkRun, WithoutAGameThereIsNothing) {
    EXPECT_EQ(RunBenchmark(nullptr, [] { return uint64_t{0}; }), 0u);
}

TEST_F(BenchmarkRun, EndsEveryMachine) {
    CGameFile game = MakeGame(1);
    const int32_t before = CTestMachine::gLive;
    uint64_t now = 0;
    static_cast<void>(RunBenchmark(&game, [&] { return now += 1000; }));
    EXPECT_EQ(CTestMachine::gLive, before);
}

} // namespace
