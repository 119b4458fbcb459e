// The keys that stop a game, slow it down, let it run ahead and begin it again.
#include "host/frame_loop.h"
#include "host/host_fixture.h"
#include "host/report.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gmock/gmock.h>

#include <cmath>

using testing::Each;
using testing::ElementsAre;

namespace {

uint32_t gPresents = 0;
uint32_t gLength = 0;
std::vector<int16_t> gSubmitted; // left samples, in order
std::vector<std::string> gNotices;

class TimeKeys : public HostTest {
public:
    ~TimeKeys() override {
        HostSetNoticeSink(nullptr);
        HostClose(session.get());
    }

protected:
    TimeKeys() {
        gPresents = gLength = 0;
        gSubmitted.clear();
        gNotices.clear();
        HostSetNoticeSink([](const std::string& notice) { gNotices.push_back(notice); });
        Settings().SetInt(L"emu_rewindbuffer", 1);
        host = TestHost();
        host.present = [](EMU_THREAD* target, uint32_t length) {
            ++gPresents;
            gLength = length;
            HostPresent(target, length);
        };
        host.submitAudio = [](EMU_THREAD*, EMU_AUDIO_FRAME* audio) {
            for (uint32_t i = 0; i < audio->sampleCount; ++i) {
                gSubmitted.push_back(audio->samples[size_t{i} * 2]);
            }
        };
        session = Create();
        HostOpen(session.get());
        machine = &MachineOf(*session);
        loop = std::make_unique<FRAME_LOOP>();
        InputSetActiveKey(session->key);
    }

    void Rounds(int count = 1) {
        for (int i = 0; i < count; ++i) {
            const InputFrame look(loop->hotkeys, session->key);
            EmuRound(*session, host, *loop, EmuPollHotkeys(session->key));
        }
    }

    // A press of one round.
    void Tap(std::wstring_view action) {
        Press(action, true);
        Rounds();
        Press(action, false);
    }

    // The frame on the picture that was presented last.
    [[nodiscard]] uint32_t Shown() const { return loop->lastPicture.pixels[0] & 0xFFFFFF; }

    std::unique_ptr<EMU_THREAD> session;
    CTestMachine* machine = nullptr;
    std::unique_ptr<FRAME_LOOP> loop;
    EMU_HOST_CALLBACKS host{};
};

} // namespace

TEST_F(TimeKeys, PauseStopsTheGameUntilItIsPressedAgain) {
    Rounds(3);
    Tap(L"Pause");
    EXPECT_THAT(gNotices, ElementsAre("Paused"));
    gPresents = 0;
    Rounds(20);
    EXPECT_EQ(machine->runs, 3u);
    EXPECT_EQ(gPresents, 0u) << "the picture stays";
    Tap(L"Pause");
    Rounds(2);
    EXPECT_EQ(machine->runs, 6u);
    EXPECT_THAT(gNotices, ElementsAre("Paused", "Playing on"));
}

TEST_F(TimeKeys, AKeyThatIsHeldPausesOnce) {
    Press(L"Pause", true);
    Rounds(20);
    EXPECT_EQ(machine->runs, 0u);
    Press(L"Pause", false);
    Rounds();
    EXPECT_EQ(machine->runs, 0u);
}

TEST_F(TimeKeys, APausedGameSavesTheStateInWhichItWasStopped) {
    Rounds(5);
    Tap(L"Pause");
    Rounds(10);
    Tap(L"Save State");
    Tap(L"Pause");
    Rounds(30);
    machine->frame = 0;
    Tap(L"Load State");
    EXPECT_EQ(Shown(), 6u) << "the frame after the fifth";
}

TEST_F(TimeKeys, ALoadedStateIsShownByAPausedGame) {
    Rounds(5);
    Tap(L"Save State"); // after the fifth frame
    Rounds(10);
    Tap(L"Pause");
    Tap(L"Load State");
    EXPECT_EQ(Shown(), 6u);
    Rounds(5);
    EXPECT_EQ(Shown(), 6u);
}

TEST_F(TimeKeys, WhatIsTappedInAPauseDoesNotReachTheGame) {
    Rounds();
    Tap(L"Pause");
    Tap(L"SMS P1 BUTTON1");
    Tap(L"Pause");
    Rounds(3);
    EXPECT_EQ(machine->pressed, 0u);
}

TEST_F(TimeKeys, AFrameStepRunsOneFrameWithWhatIsHeld) {
    Rounds(3);
    Tap(L"Frame Step");
    EXPECT_EQ(machine->runs, 4u) << "it also pauses";
    Rounds(10);
    EXPECT_EQ(machine->runs, 4u);
    Press(L"SMS P1 BUTTON1", true);
    Tap(L"Frame Step");
    EXPECT_EQ(machine->runs, 5u);
    EXPECT_EQ(machine->pressed, 1u);
    EXPECT_EQ(Shown(), 5u);
    EXPECT_THAT(gNotices, ElementsAre("Paused"));
}

TEST_F(TimeKeys, AFrameStepRunsOneWholeFrameInSlowMotionToo) {
    Tap(L"Slow Motion");
    Tap(L"Frame Step");
    Rounds();
    Tap(L"Frame Step");
    EXPECT_EQ(machine->runs, 3u);
}

TEST_F(TimeKeys, APausedGameCanBeRewoundAndStaysPaused) {
    Rounds(10);
    Tap(L"Pause");
    Press(L"Rewind", true);
    Rounds(4);
    Press(L"Rewind", false);
    const uint32_t shown = Shown();
    EXPECT_LT(shown, 10u);
    Rounds(5);
    EXPECT_EQ(Shown(), shown);
}

// The left samples of a frame rise by one; those of frame n begin at 100 n.
TEST_F(TimeKeys, APauseEndsTheSoundWithoutAJumpAndAgainBeginsItWithoutOne) {
    Rounds(20);
    const size_t before = gSubmitted.size();
    const int16_t last = gSubmitted.back();
    ASSERT_GT(last, 1000);
    Tap(L"Pause");
    Rounds(5);
    // 5 ms at 44100.
    ASSERT_EQ(gSubmitted.size(), before + 220);
    EXPECT_EQ(gSubmitted.back(), 0);
    for (size_t i = before; i < gSubmitted.size(); ++i) {
        EXPECT_LE(std::abs(gSubmitted[i] - gSubmitted[i - 1]), last / 220 + 1) << i;
    }
    const size_t silent = gSubmitted.size();
    Tap(L"Pause");
    ASSERT_EQ(gSubmitted.size(), silent + 735);
    const int16_t steepest = gSubmitted[silent + 220] / 220 + 3;
    for (size_t i = silent; i < gSubmitted.size(); ++i) {
        EXPECT_LE(std::abs(gSubmitted[i] - gSubmitted[i - 1]), steepest) << i;
    }
}

TEST_F(TimeKeys, ASingleFrameIsNotHeard) {
    Rounds(3);
    Tap(L"Pause");
    const size_t before = gSubmitted.size();
    Tap(L"Frame Step");
    EXPECT_EQ(gSubmitted.size(), before);
}

TEST_F(TimeKeys, SlowMotionShowsEachFrameForTwoRoundsThenForFourThenForOne) {
    Tap(L"Slow Motion");
    Rounds(7);
    EXPECT_EQ(machine->runs, 4u);
    Tap(L"Slow Motion");
    Rounds(7);
    EXPECT_EQ(machine->runs, 6u);
    Tap(L"Slow Motion");
    Rounds(7);
    EXPECT_EQ(machine->runs, 14u);
    EXPECT_THAT(gNotices, ElementsAre("Slow motion: half speed", "Slow motion: quarter speed",
                                      "Normal speed"));
    EXPECT_EQ(gLength, 16666u);
}

TEST_F(TimeKeys, EveryRoundOfSlowMotionShowsTheNewestFrameAndIsPaced) {
    Tap(L"Slow Motion");
    for (const uint32_t frame : {1u, 2u, 2u, 3u, 3u, 4u}) {
        Rounds();
        EXPECT_EQ(Shown(), frame);
        EXPECT_EQ(gLength, 16666u);
    }
}

// The sound is that of a slower tape: as many samples as ever, in half as steep a line.
TEST_F(TimeKeys, SlowMotionStretchesTheSound) {
    Rounds(2);
    Tap(L"Slow Motion");
    gSubmitted.clear();
    Rounds();  // the second half of frame 3
    Rounds(2); // frame 4
    ASSERT_EQ(gSubmitted.size(), 3u * 735);
    for (size_t i = 1; i < 735; ++i) {
        EXPECT_LE(gSubmitted[i] - gSubmitted[i - 1], 1) << i;
    }
    EXPECT_EQ(gSubmitted[734], 300 + 734);
    EXPECT_EQ(gSubmitted[735], 300 + 734 + (400 - 1034) / 2) << "half the way to the next frame";
    EXPECT_EQ(gSubmitted[736], 400);
    EXPECT_EQ(gSubmitted[3 * 735 - 1], 400 + 734);
}

TEST_F(TimeKeys, FastForwardStaysOnWithoutItsKey) {
    Tap(L"Toggle Fast Forward");
    Rounds(3);
    EXPECT_EQ(machine->runs, 8u);
    Tap(L"Toggle Fast Forward");
    Rounds(3);
    EXPECT_EQ(machine->runs, 12u);
    EXPECT_THAT(gNotices, ElementsAre("Fast forward", "Normal speed"));
}

TEST_F(TimeKeys, FastForwardAndSlowMotionEndEachOther) {
    Tap(L"Slow Motion");
    Tap(L"Toggle Fast Forward");
    EXPECT_EQ(machine->runs, 3u);
    Tap(L"Slow Motion");
    Rounds(3);
    EXPECT_EQ(machine->runs, 5u);
}

TEST_F(TimeKeys, ResetBeginsTheGameAgain) {
    Rounds(5);
    const uint32_t resets = machine->resets;
    Press(L"Reset", true);
    Rounds(3);
    Press(L"Reset", false);
    EXPECT_EQ(machine->resets, resets + 1);
    EXPECT_EQ(Shown(), 3u);
    EXPECT_THAT(gNotices, ElementsAre("Reset"));
}

TEST_F(TimeKeys, ActOnTheGameThatIsPlayedAlone) {
    InputSetActiveKey(session->key + 1);
    for (const wchar_t* const key : {L"Pause", L"Slow Motion", L"Toggle Fast Forward", L"Reset"}) {
        Tap(key);
    }
    Rounds(4);
    EXPECT_EQ(machine->frame, 8u);
}

namespace {

int64_t gNow = 0;

} // namespace

// At most two frames come at once, to fill the sound that has run dry.
TEST_F(TimeKeys, NoRaceFollowsALongPause) {
    gNow = 1'000'000;
    HostSetClock({[] { return gNow++; },
                  [](uint32_t milliseconds) {
                      gNow += milliseconds == 0 ? 10 : int64_t{milliseconds} * 1000;
                  }});
    session->hostData.load()->lastFrameTime = gNow;
    Rounds(10);
    Tap(L"Pause");
    Rounds(2000); // ten seconds
    const int64_t start = gNow;
    Tap(L"Pause");
    Rounds(11);
    EXPECT_GT(gNow - start, 10 * 16'666 - 1000);
    EXPECT_LT(gNow - start, 11 * 16'666);
}

TEST_F(TimeKeys, GamesWaitWhileTheProgramSaysSo) {
    const uint32_t key = 5;
    ASSERT_NE(Start(key), 0u);
    const auto runs = [] {
        uint32_t count = 0; // until it has begun
        WithMachine(key, [&](CTestMachine& one) { count = one.frame; });
        return count;
    };
    ASSERT_TRUE(Eventually([&] { return runs() > 3; }));
    EmuWaitForFocus(true);
    // A round that is under way still ends.
    uint32_t stopped = runs();
    ASSERT_TRUE(Eventually([&] { return std::exchange(stopped, runs()) == stopped; }));
    for (int i = 0; i < 20; ++i) {
        HostClock().sleepMilliseconds(1);
        EXPECT_LE(runs(), stopped + 1);
    }
    EmuWaitForFocus(false);
    EXPECT_TRUE(Eventually([&] { return runs() > stopped + 3; }));
}
