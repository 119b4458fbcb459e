#include "screens/binding_capture.h"
#include "settings/bindings.h"

#include <gtest/gtest.h>

namespace {

// Scancodes of the USB HID tables.
constexpr uint32_t kA = 4;
constexpr uint32_t kTab = 43;
constexpr uint32_t kLeftCtrl = 224;
constexpr uint32_t kLeftShift = 225;
constexpr uint32_t kLeftAlt = 226;
constexpr uint32_t kLeftSystem = 227;
constexpr uint32_t kRightShift = 229;

using Taken = std::optional<uint32_t>;

class Capture : public testing::Test {
protected:
    void SetUp() override { InputClearAll(); }
    void TearDown() override { InputClearAll(); }

    // A key event as the pump makes it: the table first, then what listens.
    static Taken Down(BindingCapture& capture, uint32_t key) {
        InputKeyChanged(key, true);
        return capture.KeyDown(key);
    }
    static Taken Up(BindingCapture& capture, uint32_t key) {
        InputKeyChanged(key, false);
        return capture.KeyUp(key);
    }
    static Taken NextRound(BindingCapture& capture) {
        InputBeginPump();
        return capture.LookAtJoysticks();
    }
};

TEST_F(Capture, TakesAKey) {
    BindingCapture capture(false);
    EXPECT_EQ(Down(capture, kA), KeyboardBinding(kA));
}

TEST_F(Capture, TakesAKeyWithShiftOrCtrl) {
    BindingCapture shifted(false);
    EXPECT_EQ(Down(shifted, kRightShift), std::nullopt);
    EXPECT_EQ(Down(shifted, kTab), KeyboardBinding(kTab, kModifierShift));
    InputClearAll();
    BindingCapture controlled(false);
    EXPECT_EQ(Down(controlled, kLeftCtrl), std::nullopt);
    EXPECT_EQ(Down(controlled, kTab), KeyboardBinding(kTab, kModifierCtrl));
}

// All of them between two looks at the table, which then shows nothing down.
TEST_F(Capture, TakesAChordThatIsOverWithinARound) {
    BindingCapture capture(false);
    EXPECT_EQ(NextRound(capture), std::nullopt);
    EXPECT_EQ(capture.KeyDown(kLeftShift), std::nullopt);
    EXPECT_EQ(capture.KeyDown(kTab), KeyboardBinding(kTab, kModifierShift));
}

TEST_F(Capture, TakesAModifierByItselfWhenItIsReleased) {
    BindingCapture capture(false);
    EXPECT_EQ(Down(capture, kRightShift), std::nullopt);
    EXPECT_EQ(NextRound(capture), std::nullopt);
    EXPECT_EQ(Up(capture, kRightShift), KeyboardBinding(kRightShift));
}

// What is taken for an action of the program acts for it.
TEST_F(Capture, GivesAProgramActionAModifierThatActs) {
    BindingCapture capture(true);
    Down(capture, kLeftShift);
    const Taken taken = Up(capture, kLeftShift);
    EXPECT_EQ(taken, KeyboardBinding(kLeftShift, kModifierShift));
    InputKeyChanged(kLeftShift, true);
    EXPECT_TRUE(BindingIsDown(*taken, false));
}

TEST_F(Capture, AModifierThatHadAKeyWithItIsNotTaken) {
    BindingCapture capture(false);
    Down(capture, kLeftAlt);
    EXPECT_EQ(Down(capture, kTab), std::nullopt); // the desktop's chord
    EXPECT_EQ(Up(capture, kTab), std::nullopt);
    EXPECT_EQ(Up(capture, kLeftAlt), std::nullopt);
}

TEST_F(Capture, AltIsAMachinesKeyAlone) {
    BindingCapture machine(false);
    Down(machine, kLeftAlt);
    EXPECT_EQ(Up(machine, kLeftAlt), KeyboardBinding(kLeftAlt));
    BindingCapture program(true);
    Down(program, kLeftAlt);
    EXPECT_EQ(Up(program, kLeftAlt), std::nullopt);
}

// The window loses the keyboard: the table is cleared and no release comes.
TEST_F(Capture, ForgetsAModifierWhoseReleaseNeverCame) {
    BindingCapture capture(false);
    Down(capture, kLeftAlt);
    InputKeyChanged(kLeftAlt, false);
    NextRound(capture);
    EXPECT_EQ(Down(capture, kA), KeyboardBinding(kA));
}

TEST_F(Capture, LeavesTheDesktopsKey) {
    BindingCapture capture(false);
    EXPECT_EQ(Down(capture, kLeftSystem), std::nullopt);
    EXPECT_EQ(Up(capture, kLeftSystem), std::nullopt);
}

TEST_F(Capture, IgnoresAKeyThatWasHeldUntilItIsPressedAnew) {
    InputKeyChanged(kA, true);
    BindingCapture capture(false);
    EXPECT_EQ(capture.KeyDown(kA), std::nullopt); // a repeat
    EXPECT_EQ(NextRound(capture), std::nullopt);
    EXPECT_EQ(capture.KeyDown(kA), std::nullopt);
    Up(capture, kA);
    EXPECT_EQ(Down(capture, kA), KeyboardBinding(kA));
}

TEST_F(Capture, ShiftThatWasHeldStillCounts) {
    InputKeyChanged(kLeftShift, true);
    BindingCapture capture(false);
    EXPECT_EQ(Down(capture, kA), KeyboardBinding(kA, kModifierShift));
    EXPECT_EQ(Up(capture, kLeftShift), std::nullopt);
}

TEST_F(Capture, TakesAButtonOfAnyJoystick) {
    for (const uint32_t joystick : {0u, 3u, 4u}) {
        for (const uint32_t button : {0u, 63u}) {
            InputClearAll();
            BindingCapture capture(false);
            EXPECT_EQ(NextRound(capture), std::nullopt);
            InputButtonChanged(joystick, button, true);
            EXPECT_EQ(capture.LookAtJoysticks(),
                      JoystickBinding(joystick, JoystickButtonCode(joystick, button)));
        }
    }
}

TEST_F(Capture, TakesAButtonThatIsPressedAndReleasedWithinARound) {
    BindingCapture capture(false);
    InputBeginPump();
    InputButtonChanged(1, 5, true);
    InputButtonChanged(1, 5, false);
    EXPECT_EQ(capture.LookAtJoysticks(), JoystickBinding(1, JoystickButtonCode(1, 5)));
}

TEST_F(Capture, DoesNotTakeTheButtonThatBeganIt) {
    InputButtonChanged(0, 0, true);
    BindingCapture capture(false);
    EXPECT_EQ(capture.LookAtJoysticks(), std::nullopt);
    InputBeginPump();
    InputButtonChanged(0, 0, false);
    EXPECT_EQ(capture.LookAtJoysticks(), std::nullopt);
    EXPECT_EQ(NextRound(capture), std::nullopt);
    InputButtonChanged(0, 0, true);
    EXPECT_EQ(capture.LookAtJoysticks(), JoystickBinding(0, JoystickButtonCode(0, 0)));
}

TEST_F(Capture, TakesADirectionOfAnAxisAndNotItsTremble) {
    BindingCapture capture(false);
    InputBeginPump();
    InputAxisMoved(0, 2, 900); // near its middle, which counts as a release of both directions
    EXPECT_EQ(capture.LookAtJoysticks(), std::nullopt);
    InputBeginPump();
    InputAxisMoved(0, 2, 32767);
    EXPECT_EQ(capture.LookAtJoysticks(), JoystickBinding(0, JoystickAxisCode(0, 2, true)));
}

TEST_F(Capture, IgnoresATriggerThatRestsAtItsEnd) {
    InputAxisMoved(0, 5, -32768);
    BindingCapture capture(false);
    EXPECT_EQ(NextRound(capture), std::nullopt);
    InputAxisMoved(0, 5, 32767);
    EXPECT_EQ(capture.LookAtJoysticks(), JoystickBinding(0, JoystickAxisCode(0, 5, true)));
}

TEST_F(Capture, TakesAHatsDirectionAndADiagonalAsAStraightOne) {
    const std::pair<uint8_t, uint32_t> cases[] = {
        {kHatUp,               0},
        {kHatRight,            2},
        {kHatDown,             4},
        {kHatLeft,             6},
        {kHatUp | kHatRight,   2},
        {kHatDown | kHatRight, 2},
    };
    for (const auto& [position, direction] : cases) {
        InputClearAll();
        BindingCapture capture(false);
        InputBeginPump();
        InputHatMoved(1, 0, position);
        EXPECT_EQ(capture.LookAtJoysticks(), JoystickBinding(1, JoystickHatCode(1, 0, direction)));
    }
}

} // namespace
