// Taps: presses and releases between two looks.
#include "settings/bindings.h"
#include "settings/input_frame.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace {

constexpr uint32_t kSession = 7;
constexpr uint32_t kKeyTab = 43;
constexpr uint32_t kKeyF7 = 64;
constexpr uint32_t kKeyA = 4; // "NES P1 BUTTONB"
constexpr uint32_t kLeftShift = 225;

class InputFrames : public testing::Test {
protected:
    void SetUp() override {
        RegisterDefaultSettings(Settings());
        InputClearAll();
        InputSetActiveKey(kSession);
        InputSetWalkingRoom(false);
    }
    void TearDown() override {
        InputClearAll();
        InputSetActiveKey(0);
        InputSetWalkingRoom(false);
    }

    static void Tap(uint32_t key) {
        InputKeyChanged(key, true);
        InputKeyChanged(key, false);
    }

    // Whether the action is down in the looker's next frame, 16 ms after the one before.
    bool Next(std::wstring_view action, uint32_t session = kSession) {
        now += 16'000;
        looker.ForgetAfterPause(now);
        const InputFrame frame(looker, session);
        return InputIsDown(session, action);
    }

    int64_t now = InputClock();
    InputLooker looker;
};

TEST_F(InputFrames, ATapOfAKeyIsDownForOneFrame) {
    EXPECT_FALSE(Next(L"Save State"));
    Tap(kKeyF7);
    EXPECT_TRUE(Next(L"Save State"));
    EXPECT_FALSE(Next(L"Save State"));
    Tap(kKeyF7);
    EXPECT_TRUE(Next(L"Save State")) << "and the next tap again";
    EXPECT_FALSE(Next(L"Save State"));
}

TEST_F(InputFrames, ATapOutlivesThePumpsThatFollowIt) {
    Tap(kKeyF7);
    InputBeginPump();
    InputBeginPump();
    EXPECT_TRUE(Next(L"Save State"));
}

TEST_F(InputFrames, ATapOfAButtonOrHatIsDownForOneFrame) {
    Settings().SetInt2(L"INPUT NES P1 BUTTONB", static_cast<int32_t>(JoystickBinding(0, 528)), 0);
    Settings().SetInt2(L"INPUT NES P1 UP", static_cast<int32_t>(JoystickBinding(0, 464)), 0);
    Settings().SetInt2(L"INPUT NES P1 RIGHT", static_cast<int32_t>(JoystickBinding(0, 466)), 0);
    InputButtonChanged(0, 0, true);
    InputButtonChanged(0, 0, false);
    EXPECT_TRUE(Next(L"NES P1 BUTTONB"));
    EXPECT_FALSE(Next(L"NES P1 BUTTONB"));
    InputHatMoved(0, 0, kHatUp);
    InputHatMoved(0, 0, kHatCentred);
    {
        const InputFrame frame(looker, kSession);
        EXPECT_TRUE(InputIsDown(kSession, L"NES P1 UP"));
        EXPECT_FALSE(InputIsDown(kSession, L"NES P1 RIGHT")) << "only what was pressed";
    }
    EXPECT_FALSE(Next(L"NES P1 UP"));
}

TEST_F(InputFrames, ATapOfAControllerOrOfTheLightGunIsDownForOneFrame) {
    InputAttachPad(0, PadCodes{});
    InputPadChanged(0, kPadSouth, true);
    InputPadChanged(0, kPadSouth, false);
    EXPECT_TRUE(Next(L"NES P1 BUTTONA"));
    EXPECT_FALSE(Next(L"NES P1 BUTTONA"));
    InputPointerTrigger(1, true);
    InputPointerTrigger(1, false);
    EXPECT_TRUE(Next(L"SMS P2 BUTTON1"));
    EXPECT_FALSE(Next(L"SMS P2 BUTTON1"));
    InputDetachPad(0);
}

TEST_F(InputFrames, APressThatLastsEndsWithItsRelease) {
    InputKeyChanged(kKeyF7, true);
    EXPECT_TRUE(Next(L"Save State"));
    EXPECT_TRUE(Next(L"Save State"));
    InputKeyChanged(kKeyF7, false);
    EXPECT_FALSE(Next(L"Save State")) << "it was seen already";
}

TEST_F(InputFrames, WhatIsDownStaysSoForTheWholeFrame) {
    const InputFrame frame(looker, kSession);
    InputKeyChanged(kKeyA, true);
    EXPECT_FALSE(InputIsDown(kSession, L"NES P1 BUTTONB"));
    EXPECT_FALSE(BindingIsDown(kKeyA, false));
    InputKeyChanged(kKeyA, false);
    {
        InputLooker other; // a looker that starts only now
        const InputFrame inner(other, kSession);
        EXPECT_FALSE(InputIsDown(kSession, L"NES P1 BUTTONB"));
    }
    EXPECT_FALSE(InputIsDown(kSession, L"NES P1 BUTTONB"));
}

TEST_F(InputFrames, ATapWithinAFrameBelongsToTheNext) {
    {
        const InputFrame frame(looker, kSession);
        Tap(kKeyA);
        EXPECT_FALSE(InputIsDown(kSession, L"NES P1 BUTTONB"));
    }
    EXPECT_TRUE(Next(L"NES P1 BUTTONB"));
    EXPECT_FALSE(Next(L"NES P1 BUTTONB"));
}

TEST_F(InputFrames, OutsideOfAFrameTheTablesAnswer) {
    Tap(kKeyA);
    EXPECT_FALSE(InputIsDown(kSession, L"NES P1 BUTTONB"));
    EXPECT_TRUE(BindingIsDown(kKeyA, true)) << "the table of releases is as it was";
    EXPECT_TRUE(Next(L"NES P1 BUTTONB"));
    InputKeyChanged(kKeyA, true);
    EXPECT_TRUE(InputIsDown(kSession, L"NES P1 BUTTONB"));
}

TEST_F(InputFrames, EveryLookerSeesATapOnce) {
    InputLooker slow;
    Tap(kKeyF7);
    EXPECT_TRUE(Next(L"Save State"));
    EXPECT_FALSE(Next(L"Save State"));
    {
        const InputFrame frame(slow, kSession);
        EXPECT_TRUE(InputIsDown(kSession, L"Save State")) << "nobody took it away";
    }
    const InputFrame frame(slow, kSession);
    EXPECT_FALSE(InputIsDown(kSession, L"Save State"));
}

TEST_F(InputFrames, ATapOfAChordKeepsItsModifier) {
    InputKeyChanged(kLeftShift, true);
    Tap(kKeyTab);
    InputKeyChanged(kLeftShift, false);
    {
        const InputFrame frame(looker, kSession);
        EXPECT_TRUE(InputIsDown(kSession, L"Rewind"));
        EXPECT_FALSE(InputIsDown(kSession, L"Fast Forward"));
    }
    EXPECT_FALSE(Next(L"Rewind"));
}

TEST_F(InputFrames, ATapForAnotherSessionIsNotKept) {
    constexpr uint32_t kOther = 8;
    Tap(kKeyA);
    EXPECT_FALSE(Next(L"NES P1 BUTTONB", kOther));
    InputSetActiveKey(kOther);
    EXPECT_FALSE(Next(L"NES P1 BUTTONB", kOther));
    Tap(kKeyA);
    EXPECT_TRUE(Next(L"NES P1 BUTTONB", kOther));
}

TEST_F(InputFrames, ATapInTheRoomIsNotKept) {
    InputSetWalkingRoom(true);
    Tap(kKeyA);
    EXPECT_FALSE(Next(L"NES P1 BUTTONB"));
    InputSetWalkingRoom(false);
    EXPECT_FALSE(Next(L"NES P1 BUTTONB"));
}

// Also when no frame has passed meanwhile: the button that closed a menu is not the game's.
TEST_F(InputFrames, ATapFromBeforeTheInputWasGivenIsNotKept) {
    EXPECT_FALSE(Next(L"Save State"));
    InputSetActiveKey(0);
    Tap(kKeyF7);
    InputSetActiveKey(kSession);
    EXPECT_FALSE(Next(L"Save State"));
    Tap(kKeyF7);
    InputSetActiveKey(kSession); // the same again
    EXPECT_TRUE(Next(L"Save State"));
    InputSetWalkingRoom(true);
    Tap(kKeyF7);
    InputSetWalkingRoom(false);
    EXPECT_FALSE(Next(L"Save State"));
    InputSetActiveKey(0);
    InputKeyChanged(kKeyF7, true);
    InputSetActiveKey(kSession);
    EXPECT_TRUE(Next(L"Save State")) << "it is still held";
    InputKeyChanged(kKeyF7, false);
}

TEST_F(InputFrames, ATapInTheRoomIsSeenByTheProgramItself) {
    constexpr uint32_t kKeyE = 8; // "Use"
    InputSetWalkingRoom(true);
    EXPECT_FALSE(Next(L"Use", kApplicationKey));
    Tap(kKeyE);
    EXPECT_TRUE(Next(L"Use", kApplicationKey));
    EXPECT_FALSE(Next(L"Use", kApplicationKey));
    InputSetWalkingRoom(false);
    Tap(kKeyE);
    EXPECT_TRUE(Next(L"Use", kApplicationKey)) << "whichever session is active";
}

TEST_F(InputFrames, ATappedControlActsForOneFrame) {
    InputAttachPad(0, PadCodes{});
    InputPadChanged(0, kPadGuide, true);
    InputPadChanged(0, kPadGuide, false);
    EXPECT_EQ(InputPadsActing(), 0u);
    {
        const InputFrame frame(looker, kApplicationKey);
        EXPECT_EQ(InputPadsActing(), PadBit(0, kPadGuide));
    }
    const InputFrame frame(looker, kApplicationKey);
    EXPECT_EQ(InputPadsActing(), 0u);
    InputDetachPad(0);
}

TEST_F(InputFrames, ATapBeforeAPauseIsNotKept) {
    EXPECT_FALSE(Next(L"NES P1 BUTTONB"));
    Tap(kKeyA);
    now += kLongestFrame;
    EXPECT_FALSE(Next(L"NES P1 BUTTONB"));
    EXPECT_FALSE(Next(L"NES P1 BUTTONB"));
    InputKeyChanged(kKeyA, true);
    now += kLongestFrame;
    EXPECT_TRUE(Next(L"NES P1 BUTTONB")) << "a key that is held is held";
}

TEST_F(InputFrames, ATapBeforeTheFirstLookIsNotKept) {
    Tap(kKeyA);
    InputLooker late;
    const InputFrame frame(late, kSession);
    EXPECT_FALSE(InputIsDown(kSession, L"NES P1 BUTTONB"));
}

TEST_F(InputFrames, ClearingEverythingForgetsTaps) {
    Tap(kKeyA);
    InputPointerTrigger(0, true);
    InputPointerTrigger(0, false);
    InputClearAll();
    EXPECT_FALSE(Next(L"NES P1 BUTTONB"));
    EXPECT_FALSE(Next(L"SMS P1 BUTTON1"));
}

// Taps while another thread looks as fast as it can: one edge for each tap, none lost and none twice.
// The tapping thread waits until each is seen.
TEST_F(InputFrames, EveryTapIsOneEdgeToAThreadThatLooks) {
    constexpr int kTaps = 2000;
    std::atomic<int> edges{0};
    std::atomic<int> ends{0};
    std::atomic<bool> looking{false};
    std::atomic<bool> stop{false};
    std::thread session([&] {
        InputLooker own;
        bool wasDown = false;
        looking = true;
        while (!stop) {
            const InputFrame frame(own, kSession);
            const bool down = InputIsDown(kSession, L"Save State");
            edges += down && !wasDown ? 1 : 0;
            ends += !down && wasDown ? 1 : 0;
            wasDown = down;
        }
    });
    while (!looking) {
        std::this_thread::yield();
    }
    int lost = 0;
    for (int tap = 1; tap <= kTaps && lost == 0; ++tap) {
        Tap(kKeyF7);
        // Taps of two frames in a row would be one long press.
        for (int wait = 0; ends < tap; ++wait) {
            std::this_thread::yield();
            lost += wait > 10'000'000 ? 1 : 0;
            if (lost != 0) {
                break;
            }
        }
    }
    stop = true;
    session.join();
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(edges, kTaps);
}

} // namespace
