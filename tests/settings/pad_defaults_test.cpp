// Game controllers without set-up, and the user's bindings, which override them.
#include "settings/bindings.h"
#include "settings/pad_defaults.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr uint32_t kSession = 7;

// A controller as joystick `joystick`: control c is button c, but for the stick, which is the axes 0
// and 1, and the left trigger, of which only the axis 2 is known and not its direction.
PadCodes TestCodes(uint32_t joystick) {
    PadCodes codes{};
    for (uint32_t control = 0; control < kPadControls; ++control) {
        codes[control] = {JoystickButtonCode(joystick, control), 0};
    }
    codes[kPadStickLeft] = {JoystickAxisCode(joystick, 0, false), 0};
    codes[kPadStickRight] = {JoystickAxisCode(joystick, 0, true), 0};
    codes[kPadStickUp] = {JoystickAxisCode(joystick, 1, false), 0};
    codes[kPadStickDown] = {JoystickAxisCode(joystick, 1, true), 0};
    codes[kPadLeftTrigger] = {JoystickAxisCode(joystick, 2, false),
                              JoystickAxisCode(joystick, 2, true)};
    return codes;
}

void Bind(const std::wstring& action, uint32_t primary, uint32_t secondary) {
    Settings().SetInt2(L"INPUT " + action, static_cast<int32_t>(primary),
                       static_cast<int32_t>(secondary));
}

uint32_t ButtonBinding(uint32_t joystick, uint32_t button) {
    return JoystickBinding(joystick, JoystickButtonCode(joystick, button));
}

bool Down(const wchar_t* action) {
    return InputIsDown(kSession, action);
}

// Two controllers, joysticks 0 and 1; the bindings of a first run.
class PadDefaults : public testing::Test {
protected:
    void SetUp() override {
        RegisterDefaultSettings(Settings());
        InputClearAll();
        InputSetActiveKey(kSession);
        InputSetWalkingRoom(false);
        InputAttachPad(0, TestCodes(0));
        InputAttachPad(1, TestCodes(1));
        InputBeginPump();
    }
    void TearDown() override {
        InputDetachPad(0);
        InputDetachPad(1);
        InputClearAll();
        InputSetActiveKey(0);
        InputSetWalkingRoom(false);
        RegisterDefaultSettings(Settings());
        InputRefreshPadDefaults();
    }
};

TEST_F(PadDefaults, AControlActsForItsOwnPlayer) {
    InputPadChanged(0, kPadSouth, true);
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
    EXPECT_FALSE(Down(L"NES P2 BUTTONA"));
    InputPadChanged(0, kPadSouth, false);
    InputPadChanged(1, kPadSouth, true);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
    EXPECT_TRUE(Down(L"NES P2 BUTTONA"));
}

TEST_F(PadDefaults, TheKeyboardActsBesideTheController) {
    InputKeyChanged(22, true); // S, the key of NES P1 BUTTONA
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
    InputPadChanged(0, kPadSouth, true);
    InputKeyChanged(22, false);
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
    InputPadChanged(0, kPadSouth, false);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
}

TEST_F(PadDefaults, AChordOnTheKeyboardDoesNotHoldAControllerBack) {
    InputPadChanged(0, kPadSouth, true);
    InputKeyChanged(225, true); // left shift
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
}

TEST_F(PadDefaults, PadAndStickActAlikeAndApart) {
    InputPadChanged(0, kPadDpadLeft, true);
    InputPadChanged(0, kPadStickLeft, true);
    InputPadChanged(0, kPadDpadLeft, false);
    EXPECT_TRUE(Down(L"SMS P1 LEFT"));
    InputPadChanged(0, kPadStickLeft, false);
    EXPECT_FALSE(Down(L"SMS P1 LEFT"));
}

TEST_F(PadDefaults, EitherControllerPausesTheMasterSystem) {
    for (const uint32_t player : {0u, 1u}) {
        InputPadChanged(player, kPadStart, true);
        EXPECT_TRUE(Down(L"SMS PAUSE")) << player;
        InputPadChanged(player, kPadStart, false);
        EXPECT_FALSE(Down(L"SMS PAUSE")) << player;
    }
}

TEST_F(PadDefaults, TheTriggersOfTheFirstControllerAloneTurnTime) {
    InputPadChanged(1, kPadLeftTrigger, true);
    InputPadChanged(1, kPadRightTrigger, true);
    EXPECT_FALSE(Down(L"Rewind"));
    EXPECT_FALSE(Down(L"Fast Forward"));
    InputPadChanged(0, kPadLeftTrigger, true);
    EXPECT_TRUE(Down(L"Rewind"));
    EXPECT_FALSE(Down(L"Fast Forward"));
    InputPadChanged(0, kPadRightTrigger, true);
    EXPECT_TRUE(Down(L"Fast Forward"));
}

TEST_F(PadDefaults, ASessionThatIsNotActiveSeesNothing) {
    InputPadChanged(0, kPadSouth, true);
    EXPECT_FALSE(InputIsDown(kSession + 1, L"NES P1 BUTTONA"));
    EXPECT_TRUE(InputIsDown(kApplicationKey, L"NES P1 BUTTONA"));
}

TEST_F(PadDefaults, NobodySeesAnythingWhileTheUserWalksTheRoom) {
    InputPadChanged(0, kPadSouth, true);
    InputSetWalkingRoom(true);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
    EXPECT_TRUE(InputIsDown(kApplicationKey, L"NES P1 BUTTONA"));
    InputSetWalkingRoom(false);
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
}

TEST_F(PadDefaults, TheBindingsThemselvesStayAsTheyAre) {
    InputPadChanged(0, kPadSouth, true);
    InputBeginPump();
    for (const INPUT_ACTION& action : InputActions()) {
        EXPECT_EQ(Settings().GetInt2(std::wstring(L"INPUT ") + action.name),
                  std::pair(static_cast<int32_t>(action.defaultBinding), 0));
    }
}

TEST_F(PadDefaults, AnActionWithAJoystickAsSecondBindingListensToItsBindingsAlone) {
    Bind(L"NES P1 BUTTONA", 22, ButtonBinding(0, 40));
    InputBeginPump();
    InputPadChanged(0, kPadSouth, true);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
    EXPECT_TRUE(Down(L"SMS P1 BUTTON1")) << "the control still acts for other actions";
    InputButtonChanged(0, 40, true);
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
}

TEST_F(PadDefaults, AnActionWithAJoystickAsFirstBindingListensToItsBindingsAlone) {
    Bind(L"NES P1 BUTTONA", ButtonBinding(3, 1), 0);
    InputBeginPump();
    InputPadChanged(0, kPadSouth, true);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
    InputButtonChanged(3, 1, true);
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
}

TEST_F(PadDefaults, AnotherKeyDoesNotTakeTheControllerAway) {
    Bind(L"NES P1 BUTTONA", 30, 31);
    InputBeginPump();
    InputPadChanged(0, kPadSouth, true);
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
}

TEST_F(PadDefaults, AControlThatTheUserBoundActsForNothingElse) {
    Bind(L"Save State", 64, ButtonBinding(0, kPadSouth));
    InputBeginPump();
    InputPadChanged(0, kPadSouth, true);
    InputPadChanged(1, kPadSouth, true);
    InputButtonChanged(0, kPadSouth, true);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
    EXPECT_FALSE(Down(L"MEGADRIVE P1 BUTTONB"));
    EXPECT_TRUE(Down(L"Save State"));
    EXPECT_TRUE(Down(L"NES P2 BUTTONA")) << "the other controller's button is another code";
}

TEST_F(PadDefaults, BindingOneDirectionOfTheStickLeavesTheOthersAndThePad) {
    Bind(L"Use", 8, JoystickBinding(0, JoystickAxisCode(0, 1, false)));
    InputBeginPump();
    InputPadChanged(0, kPadStickUp, true);
    EXPECT_FALSE(Down(L"NES P1 UP"));
    InputPadChanged(0, kPadDpadUp, true);
    EXPECT_TRUE(Down(L"NES P1 UP"));
    InputPadChanged(0, kPadStickDown, true);
    EXPECT_TRUE(Down(L"NES P1 DOWN"));
}

TEST_F(PadDefaults, OfAnAxisWithoutAKnownDirectionEitherCodeTakesTheControl) {
    for (const bool positive : {false, true}) {
        Bind(L"Use", 8, JoystickBinding(0, JoystickAxisCode(0, 2, positive)));
        InputBeginPump();
        InputPadChanged(0, kPadLeftTrigger, true);
        EXPECT_FALSE(Down(L"Rewind")) << positive;
    }
    Bind(L"Use", 8, 0);
    InputBeginPump();
    EXPECT_TRUE(Down(L"Rewind"));
}

TEST_F(PadDefaults, AChangeOfBindingsCountsFromTheNextPumpOn) {
    InputPadChanged(0, kPadSouth, true);
    Bind(L"NES P1 BUTTONA", 22, ButtonBinding(0, kPadSouth));
    InputBeginPump();
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
    EXPECT_FALSE(Down(L"SMS P1 BUTTON1"));
    Bind(L"NES P1 BUTTONA", 22, 0);
    InputBeginPump();
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
    EXPECT_TRUE(Down(L"SMS P1 BUTTON1"));
}

TEST_F(PadDefaults, ANewMappingIsHeldToTheBindingsAtOnce) {
    Bind(L"Use", 8, ButtonBinding(0, 30));
    InputBeginPump();
    InputPadChanged(0, kPadSouth, true);
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
    PadCodes codes = TestCodes(0);
    codes[kPadSouth] = {JoystickButtonCode(0, 30), 0};
    InputSetPadCodes(0, codes);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
}

TEST_F(PadDefaults, AControllerThatLeavesLetsEverythingGo) {
    InputPadChanged(0, kPadSouth, true);
    InputPadChanged(1, kPadSouth, true);
    InputDetachPad(0);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
    EXPECT_TRUE(Down(L"NES P2 BUTTONA"));
    InputPadChanged(0, kPadSouth, true);
    EXPECT_FALSE(Down(L"NES P1 BUTTONA")) << "nobody is there to press it";
    InputAttachPad(0, TestCodes(2));
    EXPECT_FALSE(Down(L"NES P1 BUTTONA")) << "the next begins with nothing down";
}

TEST_F(PadDefaults, NumbersOutOfRangeAreIgnored) {
    for (const uint32_t player : {2u, 32u, 0xFFFFFFFFu}) {
        InputAttachPad(player, TestCodes(0));
        InputSetPadCodes(player, TestCodes(0));
        InputPadChanged(player, kPadSouth, true);
        InputDetachPad(player);
    }
    InputPadChanged(0, static_cast<PadControl>(kPadControls), true);
    InputPadChanged(0, static_cast<PadControl>(40), true); // would be a control of player 2
    EXPECT_EQ(InputPadsActing(), 0u);
    PadCodes codes = TestCodes(0);
    codes[kPadSouth] = {kInputCodes, 0xFFFFFFFF};
    InputAttachPad(0, codes);
    InputPadChanged(0, kPadSouth, true);
    EXPECT_EQ(InputPadsActing(), PadBit(0, kPadSouth));
}

TEST_F(PadDefaults, ABindingOfAnInvalidDeviceTakesNothing) {
    Bind(L"Use", 8, 2u << 24 | JoystickButtonCode(0, kPadSouth));
    Bind(L"Turn Off", 20, JoystickBinding(0, 0xFFFF));
    InputBeginPump();
    InputPadChanged(0, kPadSouth, true);
    EXPECT_TRUE(Down(L"NES P1 BUTTONA"));
}

// By its place, as "Pad1 Y" in the file of settings.
TEST_F(PadDefaults, AControlCanBeBoundByItsPlace) {
    Bind(L"NES P1 START", 0, PadBinding(0, kPadNorth));
    InputBeginPump();
    InputPadChanged(0, kPadNorth, true);
    EXPECT_TRUE(Down(L"NES P1 START"));
    EXPECT_TRUE(BindingIsDown(PadBinding(0, kPadNorth), false));
    EXPECT_FALSE(BindingIsDown(PadBinding(1, kPadNorth), false));
    InputPadChanged(0, kPadNorth, false);
    EXPECT_FALSE(Down(L"NES P1 START"));
}

TEST_F(PadDefaults, AControlBoundByItsPlaceDoesOnlyThat) {
    Bind(L"NES P1 SELECT", 229, PadBinding(0, kPadSouth));
    InputBeginPump();
    InputPadChanged(0, kPadSouth, true);
    EXPECT_TRUE(Down(L"NES P1 SELECT"));
    EXPECT_FALSE(Down(L"NES P1 BUTTONA"));
    EXPECT_FALSE(Down(L"SMS P1 BUTTON1"));
    EXPECT_EQ(InputPadsActing() & PadBit(0, kPadSouth), 0u) << "nor does it walk or choose";
    EXPECT_NE(InputPadsTaken() & PadBit(0, kPadSouth), 0u);
    // The action listens to its bindings alone.
    InputPadChanged(0, kPadSouth, false);
    InputPadChanged(0, kPadBack, true);
    EXPECT_FALSE(Down(L"NES P1 SELECT"));
    // The other player's controller is as ever.
    InputPadChanged(1, kPadSouth, true);
    EXPECT_TRUE(Down(L"NES P2 BUTTONA"));
}

TEST_F(PadDefaults, AnyPlayersActionTakesAnyControl) {
    Bind(L"Rewind", PadBinding(1, kPadLeftShoulder), 0);
    InputBeginPump();
    InputPadChanged(1, kPadLeftShoulder, true);
    EXPECT_TRUE(Down(L"Rewind"));
}

} // namespace
