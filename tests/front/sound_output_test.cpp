#include "front/event_pump.h"
#include "front/notices.h"
#include "front/sound_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int64_t kSecond = 1'000'000; // microseconds

// A device that the test plugs in and out, and that answers when the test says so.
class SoundOutputTest : public testing::Test {
protected:
    ~SoundOutputTest() override { answers = true; }

    SOUND_OUTPUT_CALLS Calls() {
        SOUND_OUTPUT_CALLS calls;
        calls.open = [this](std::string& error) {
            ++attempts;
            while (!answers) {
                std::this_thread::yield();
            }
            open = there.load();
            error = "no sound: it is busy";
            return open.load();
        };
        calls.close = [this] {
            open = false;
            ++closes;
        };
        calls.number = [this] { return open ? 7u : 0u; };
        return calls;
    }

    // A round after the running attempt, if there is one.
    static void Round(SoundOutput& sound, int64_t now, uint32_t gone = 0) {
        while (sound.Trying()) {
            std::this_thread::yield();
        }
        PUMP_EVENTS events;
        events.outputGone = gone;
        sound.Watch(events, now);
    }

    // With the result of the first attempt.
    static void Start(SoundOutput& sound) {
        sound.Start(0);
        Round(sound, 0);
    }

    // The notices since the last call; by the test's clock they stay for seconds.
    static std::vector<std::string> Lines() {
        const std::vector<std::string> lines = ProgramNotices().Lines(0);
        (void)ProgramNotices().Lines(INT64_MAX);
        return lines;
    }

    void SetUp() override { (void)Lines(); }

    std::atomic<bool> there{true};
    std::atomic<bool> answers{true};
    std::atomic<bool> open{false};
    std::atomic<int> attempts{0};
    std::atomic<int> closes{0};
};

} // namespace

TEST_F(SoundOutputTest, ADeviceThatIsThereIsOpenedOnceAndSilently) {
    SoundOutput sound(Calls());
    Start(sound);
    EXPECT_TRUE(open);
    for (int64_t now = 0; now < 60 * kSecond; now += kSecond / 2) {
        Round(sound, now);
    }
    EXPECT_EQ(attempts, 1);
    EXPECT_TRUE(Lines().empty());
    sound.Stop();
    EXPECT_FALSE(open);
}

TEST_F(SoundOutputTest, OneThatIsBusyIsTriedEveryTwoSecondsUntilItIsBack) {
    there = false;
    SoundOutput sound(Calls());
    Start(sound);
    EXPECT_THAT(Lines(), testing::ElementsAre("no sound: it is busy; playing without sound"));
    // Ten rounds a second.
    for (int64_t now = 0; now < 10 * kSecond; now += kSecond / 10) {
        Round(sound, now);
    }
    EXPECT_GE(attempts, 1 + 4);
    EXPECT_LE(attempts, 1 + 5);
    EXPECT_TRUE(Lines().empty()) << "it is said once";
    there = true;
    Round(sound, 12 * kSecond);
    Round(sound, 12 * kSecond);
    EXPECT_TRUE(open);
    EXPECT_THAT(Lines(), testing::ElementsAre("Sound is back"));
    const int last = attempts;
    Round(sound, 100 * kSecond);
    EXPECT_EQ(attempts, last);
}

TEST_F(SoundOutputTest, OneThatGoesIsClosedAndLookedForAtOnceAndThenAgain) {
    SoundOutput sound(Calls());
    Start(sound);
    there = false;
    Round(sound, kSecond, 7);
    EXPECT_THAT(Lines(), Contains(HasSubstr("sound device is gone")));
    Round(sound, kSecond);
    EXPECT_EQ(attempts, 2);
    EXPECT_EQ(closes, 1);
    EXPECT_FALSE(open);
    // That attempt failed, as one on a device that is busy for a moment does, and is not the last.
    there = true;
    Round(sound, 2 * kSecond);
    EXPECT_EQ(attempts, 2);
    Round(sound, 3 * kSecond);
    Round(sound, 3 * kSecond);
    EXPECT_TRUE(open);
    EXPECT_THAT(Lines(), testing::ElementsAre("Sound is back"));
}

TEST_F(SoundOutputTest, AnotherDeviceThatGoesIsNoMatter) {
    SoundOutput sound(Calls());
    Start(sound);
    Round(sound, kSecond, 6);
    Round(sound, kSecond);
    EXPECT_EQ(attempts, 1);
    EXPECT_TRUE(open);
    EXPECT_TRUE(Lines().empty());
}

TEST_F(SoundOutputTest, OneThatGoesBeforeItsOpeningIsKnownIsNotForgotten) {
    there = false;
    SoundOutput sound(Calls());
    Start(sound);
    there = true;
    answers = false;
    Round(sound, 2 * kSecond);
    PUMP_EVENTS events;
    events.outputGone = 7;
    sound.Watch(events, 2 * kSecond);
    answers = true;
    Round(sound, 3 * kSecond); // learns of it, and has it closed and opened anew
    Round(sound, 3 * kSecond);
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(attempts, 3);
    EXPECT_TRUE(open);
}

TEST_F(SoundOutputTest, AnAttemptThatTakesLongHoldsUpNoRound) {
    there = false;
    SoundOutput sound(Calls());
    Start(sound);
    answers = false;
    Round(sound, 2 * kSecond);
    for (int64_t now = 2 * kSecond; now < 60 * kSecond; now += kSecond) {
        sound.Watch({}, now); // must not wait
    }
    EXPECT_TRUE(sound.Trying());
    EXPECT_LE(attempts, 2);
    answers = true;
    there = true;
    Round(sound, 60 * kSecond);
    EXPECT_TRUE(open);
}

TEST_F(SoundOutputTest, ADeviceThatDoesNotAnswerDoesNotHoldUpTheStart) {
    answers = false;
    SoundOutput sound(Calls());
    sound.Start(kSecond); // must not wait
    sound.Watch({}, 4 * kSecond - 1);
    EXPECT_TRUE(Lines().empty());
    sound.Watch({}, 4 * kSecond);
    EXPECT_THAT(Lines(), testing::ElementsAre(
                             "no sound: the device does not answer; playing without sound"));
    sound.Watch({}, 8 * kSecond);
    EXPECT_TRUE(Lines().empty()) << "it is said once";
    answers = true;
    Round(sound, 8 * kSecond);
    EXPECT_TRUE(open);
    EXPECT_THAT(Lines(), testing::ElementsAre("Sound is back"));
}

TEST_F(SoundOutputTest, StartsAgainAsOftenAsItWasStopped) {
    SoundOutput sound(Calls());
    for (int run = 1; run <= 20000; ++run) {
        Start(sound);
        ASSERT_TRUE(open) << run;
        sound.Stop();
    }
    EXPECT_EQ(attempts, 20000);
}

TEST_F(SoundOutputTest, StopsInEveryStateAndStartsAgain) {
    SoundOutput sound(Calls());
    sound.Stop();
    sound.Watch({}, 100 * kSecond);
    EXPECT_EQ(attempts, 0);
    Start(sound);
    Start(sound);
    EXPECT_EQ(closes, 1);
    EXPECT_TRUE(open);
    there = false;
    Round(sound, kSecond, 7);
    sound.Stop(); // while an attempt is running
    sound.Stop();
    EXPECT_FALSE(open);
}
