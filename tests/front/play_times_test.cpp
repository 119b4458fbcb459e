#include "front/play_times.h"
#include "library/player_database.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr int64_t kSecond = 1'000'000;

GAME_IDENTITY Game(uint8_t number) {
    GAME_IDENTITY game;
    game.system = kSystemMasterSystem;
    game.hash.fill(number);
    return game;
}

PLAYED_GAME Runs(uint32_t serial, uint8_t number) {
    return {serial, Game(number)};
}

class PlayTimesTest : public testing::Test {
protected:
    void Round(const std::vector<PLAYED_GAME>& playing, int64_t later) {
        now += later;
        times.Update(playing, now);
    }

    int64_t now = 5 * kSecond;
    PlayerDatabase player{[] { return int64_t{1000}; }}; // without a file
    PlayTimes times{player};
};

TEST_F(PlayTimesTest, KnowsWhatIsNotToldYet) {
    Round({Runs(1, 1)}, 0);
    Round({Runs(1, 1)}, 10 * kSecond);
    EXPECT_EQ(times.Untold(1, now + 2 * kSecond), 12);
    EXPECT_EQ(times.Untold(2, now), 0) << "it does not run";
    Round({Runs(1, 1)}, 55 * kSecond);
    EXPECT_EQ(player.Find(Game(1)).secondsPlayed, 65);
    EXPECT_EQ(times.Untold(1, now + kSecond), 1) << "the rest has been told";
}

TEST_F(PlayTimesTest, CountsAStartAndTheTimeThatItRuns) {
    Round({}, 0);
    Round({Runs(1, 1)}, kSecond);
    EXPECT_EQ(player.Find(Game(1)), (PLAYER_RECORD{false, 1000, 0, 1}));
    Round({Runs(1, 1)}, 10 * kSecond);
    Round({}, 2 * kSecond);
    EXPECT_EQ(player.Find(Game(1)), (PLAYER_RECORD{false, 1000, 12, 1}));
    Round({}, 100 * kSecond);
    EXPECT_EQ(player.Find(Game(1)).secondsPlayed, 12);
}

TEST_F(PlayTimesTest, TellsWhatHasRunOnceAMinute) {
    Round({Runs(1, 1)}, 0);
    Round({Runs(1, 1)}, 60 * kSecond - 1);
    EXPECT_EQ(player.Find(Game(1)).secondsPlayed, 0);
    Round({Runs(1, 1)}, 1);
    EXPECT_EQ(player.Find(Game(1)).secondsPlayed, 60);
    Round({Runs(1, 1)}, 90 * kSecond + kSecond / 2);
    Round({}, kSecond / 2);
    EXPECT_EQ(player.Find(Game(1)).secondsPlayed, 151) << "parts of seconds add up";
}

TEST_F(PlayTimesTest, AnotherSessionIsAnotherStart) {
    Round({Runs(1, 1)}, 0);
    Round({Runs(2, 1)}, 5 * kSecond);
    Round({Runs(2, 1), Runs(3, 2)}, 5 * kSecond);
    Round({}, 5 * kSecond);
    EXPECT_EQ(player.Find(Game(1)), (PLAYER_RECORD{false, 1000, 15, 2}));
    EXPECT_EQ(player.Find(Game(2)), (PLAYER_RECORD{false, 1000, 5, 1}));
}

TEST_F(PlayTimesTest, TwoSetsWithOneGameCountBoth) {
    Round({Runs(1, 1), Runs(2, 1)}, 0);
    Round({}, 30 * kSecond);
    EXPECT_EQ(player.Find(Game(1)), (PLAYER_RECORD{false, 1000, 60, 2}));
}

} // namespace
