// Codes, what is down, names of bindings, and who gets input.
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr uint32_t kKeyA = 4;
constexpr uint32_t kKeyTab = 43;
constexpr uint32_t kKeySpace = 44;
constexpr uint32_t kKeyUp = 82;
constexpr uint32_t kLeftCtrl = 224;
constexpr uint32_t kLeftShift = 225;
constexpr uint32_t kLeftAlt = 226;
constexpr uint32_t kLeftGui = 227;
constexpr uint32_t kRightCtrl = 228;
constexpr uint32_t kRightShift = 229;
constexpr uint32_t kRightAlt = 230;

// The bindings of a first run, nothing down, session 7 active.
class Bindings : public testing::Test {
protected:
    void SetUp() override {
        RegisterDefaultSettings(Settings());
        InputClearAll();
        InputSetActiveKey(7);
        InputSetWalkingRoom(false);
    }
    void TearDown() override {
        InputClearAll();
        InputSetActiveKey(0);
        InputSetWalkingRoom(false);
    }
};

TEST_F(Bindings, ABindingOfZeroIsNeverDown) {
    InputSetCode(0, true);
    EXPECT_FALSE(BindingIsDown(0, false));
    EXPECT_FALSE(BindingIsDown(0, true));
    InputSetCode(0, false);
    EXPECT_FALSE(BindingIsDown(0, true));
    InputSetCode(0, true);
    EXPECT_FALSE(InputIsDown(kApplicationKey, L"NES P2 UP"));
}

TEST_F(Bindings, AKeyIsDownWhileItIsHeld) {
    EXPECT_FALSE(BindingIsDown(kKeyA, false));
    InputKeyChanged(kKeyA, true);
    EXPECT_TRUE(BindingIsDown(kKeyA, false));
    EXPECT_FALSE(BindingIsDown(kKeyA + 1, false));
    InputKeyChanged(kKeyA, false);
    EXPECT_FALSE(BindingIsDown(kKeyA, false));
}

TEST_F(Bindings, APlainBindingDoesNotFireUnderAChord) {
    InputKeyChanged(kKeyA, true);
    for (const uint32_t key :
         {kLeftCtrl, kLeftShift, kLeftAlt, kRightCtrl, kRightShift, kRightAlt}) {
        InputKeyChanged(key, true);
        EXPECT_FALSE(BindingIsDown(kKeyA, false)) << key;
        InputKeyChanged(key, false);
        EXPECT_TRUE(BindingIsDown(kKeyA, false)) << key;
    }
    InputKeyChanged(kLeftGui, true);
    EXPECT_TRUE(BindingIsDown(kKeyA, false)) << "scancode 227 is no modifier here";
}

TEST_F(Bindings, AShiftBindingWantsAtLeastOneShiftKey) {
    const uint32_t binding = KeyboardBinding(kKeyA, kModifierShift);
    InputKeyChanged(kKeyA, true);
    EXPECT_FALSE(BindingIsDown(binding, false));
    InputKeyChanged(kLeftShift, true);
    EXPECT_TRUE(BindingIsDown(binding, false));
    InputKeyChanged(kRightShift, true);
    EXPECT_TRUE(BindingIsDown(binding, false));
    InputKeyChanged(kLeftShift, false);
    EXPECT_TRUE(BindingIsDown(binding, false));
    InputKeyChanged(kLeftCtrl, true);
    EXPECT_TRUE(BindingIsDown(binding, false)) << "other modifiers don't matter";
    InputKeyChanged(kKeyA, false);
    EXPECT_FALSE(BindingIsDown(binding, false));
}

TEST_F(Bindings, ACtrlBindingWantsAtLeastOneCtrlKey) {
    const uint32_t binding = KeyboardBinding(kKeyA, kModifierCtrl);
    InputKeyChanged(kKeyA, true);
    InputKeyChanged(kLeftShift, true);
    EXPECT_FALSE(BindingIsDown(binding, false));
    InputKeyChanged(kRightCtrl, true);
    EXPECT_TRUE(BindingIsDown(binding, false));
    InputKeyChanged(kRightCtrl, false);
    InputKeyChanged(kLeftCtrl, true);
    EXPECT_TRUE(BindingIsDown(binding, false));
}

TEST_F(Bindings, AnyOtherModifierCountsAsNone) {
    InputKeyChanged(kKeyA, true);
    for (const uint32_t modifier : {1u, 2u, 64u, 128u, 195u, 255u}) {
        EXPECT_TRUE(BindingIsDown(modifier << 16 | kKeyA, false)) << modifier;
    }
    InputKeyChanged(kLeftShift, true);
    for (const uint32_t modifier : {1u, 2u, 64u, 128u, 195u, 255u}) {
        EXPECT_FALSE(BindingIsDown(modifier << 16 | kKeyA, false)) << modifier;
    }
}

TEST_F(Bindings, AModifierKeyThatNoActionAsksForHoldsItselfBack) {
    InputKeyChanged(kRightShift, true);
    EXPECT_FALSE(BindingIsDown(kRightShift, false));
    EXPECT_TRUE(BindingIsDown(KeyboardBinding(kRightShift, kModifierShift), false));
}

TEST_F(Bindings, SelectWorksOnItsDefaultKey) {
    EXPECT_FALSE(InputIsDown(7, L"NES P1 SELECT"));
    InputKeyChanged(kRightShift, true);
    EXPECT_TRUE(InputIsDown(7, L"NES P1 SELECT"));
    InputKeyChanged(kRightShift, false);
    EXPECT_FALSE(InputIsDown(7, L"NES P1 SELECT"));
}

TEST_F(Bindings, SelectDoesNotHoldBackTheOtherButtonsOfItsMachine) {
    InputKeyChanged(kRightShift, true);
    InputKeyChanged(kKeyA, true);
    InputKeyChanged(kKeyUp, true);
    EXPECT_TRUE(InputIsDown(7, L"NES P1 SELECT"));
    EXPECT_TRUE(InputIsDown(7, L"NES P1 BUTTONB"));
    EXPECT_TRUE(InputIsDown(7, L"NES P1 UP"));
    EXPECT_FALSE(InputIsDown(7, L"SMS P1 UP")) << "on other machines it is a modifier";
}

TEST_F(Bindings, TheOtherModifiersStayModifiersBesideSelect) {
    InputKeyChanged(kKeyUp, true);
    for (const uint32_t key : {kLeftShift, kLeftCtrl, kRightCtrl, kLeftAlt, kRightAlt}) {
        InputKeyChanged(key, true);
        EXPECT_FALSE(InputIsDown(7, L"NES P1 UP")) << key;
        InputKeyChanged(kRightShift, true);
        EXPECT_FALSE(InputIsDown(7, L"NES P1 SELECT")) << key;
        InputKeyChanged(kRightShift, false);
        InputKeyChanged(key, false);
    }
}

TEST_F(Bindings, EveryShiftKeyRewindsWhateverSelectIsBoundTo) {
    InputKeyChanged(kKeyTab, true);
    for (const uint32_t key : {kLeftShift, kRightShift}) {
        InputKeyChanged(key, true);
        EXPECT_TRUE(InputIsDown(7, L"Rewind")) << key;
        EXPECT_FALSE(InputIsDown(7, L"Fast Forward")) << key;
        EXPECT_EQ(InputIsDown(7, L"NES P1 SELECT"), key == kRightShift);
        InputKeyChanged(key, false);
    }
    EXPECT_TRUE(InputIsDown(7, L"Fast Forward"));
}

TEST_F(Bindings, AnyModifierKeyMayBeBoundToAMachine) {
    for (const uint32_t key :
         {kLeftCtrl, kLeftShift, kLeftAlt, kRightCtrl, kRightShift, kRightAlt}) {
        Settings().SetInt2(L"INPUT GG P1 BUTTON1", 0, static_cast<int32_t>(key));
        InputBeginPump();
        InputKeyChanged(key, true);
        InputKeyChanged(kKeyUp, true);
        EXPECT_TRUE(InputIsDown(7, L"GG P1 BUTTON1")) << key;
        EXPECT_TRUE(InputIsDown(7, L"GG P1 UP")) << key;
        EXPECT_FALSE(InputIsDown(7, L"MEGADRIVE P1 UP")) << key;
        InputKeyChanged(key, false);
    }
    Settings().SetInt2(L"INPUT GG P1 BUTTON1", static_cast<int32_t>(kKeyA), 0);
    InputBeginPump();
    InputKeyChanged(kRightAlt, true);
    EXPECT_FALSE(InputIsDown(7, L"GG P1 UP")) << "a modifier again, once nothing is bound to it";
}

// A screen that records a press with the modifiers held writes it this way.
TEST_F(Bindings, SelectBoundToShiftWithItselfWorksToo) {
    const uint32_t binding = KeyboardBinding(kRightShift, kModifierShift);
    Settings().SetInt2(L"INPUT NES P1 SELECT", static_cast<int32_t>(binding), 0);
    InputBeginPump();
    InputKeyChanged(kRightShift, true);
    InputKeyChanged(kKeyUp, true);
    EXPECT_TRUE(InputIsDown(7, L"NES P1 SELECT"));
    EXPECT_TRUE(InputIsDown(7, L"NES P1 UP"));
}

TEST_F(Bindings, TheProgramsOwnActionsTakeNoModifierAway) {
    Settings().SetInt2(L"INPUT Slow Movement", static_cast<int32_t>(kLeftShift), 0);
    InputBeginPump();
    InputKeyChanged(kLeftShift, true);
    InputKeyChanged(kKeyTab, true);
    EXPECT_TRUE(InputIsDown(7, L"Rewind"));
    EXPECT_FALSE(InputIsDown(7, L"Fast Forward"));
}

TEST_F(Bindings, KeyboardCodesEndAt512) {
    InputSetCode(511, true);
    InputSetCode(512, true);
    EXPECT_TRUE(BindingIsDown(511, false));
    EXPECT_FALSE(BindingIsDown(512, false));
    EXPECT_FALSE(BindingIsDown(0xFFFF, false));
    EXPECT_TRUE(BindingIsDown(JoystickBinding(0, 512), false)) << "one table serves all devices";
}

TEST_F(Bindings, AJoystickCodeIsDownByItsEntryAlone) {
    const uint32_t binding = JoystickBinding(1, JoystickButtonCode(1, 3));
    EXPECT_EQ(binding, 0x01010000u + 731u);
    InputButtonChanged(1, 3, true);
    EXPECT_TRUE(BindingIsDown(binding, false));
    InputKeyChanged(kLeftShift, true);
    InputKeyChanged(kLeftAlt, true);
    EXPECT_TRUE(BindingIsDown(binding, false));
}

TEST_F(Bindings, JoystickCodesEndAt2048) {
    InputSetCode(2047, true);
    EXPECT_TRUE(BindingIsDown(JoystickBinding(4, 2047), false));
    EXPECT_FALSE(BindingIsDown(JoystickBinding(4, 2048), true));
    EXPECT_FALSE(BindingIsDown(JoystickBinding(4, 0xFFFF), true));
}

TEST_F(Bindings, OtherDevicesAreNeverDown) {
    InputKeyChanged(kKeyA, true);
    for (const uint32_t device : {2u, 3u, 128u, 255u}) {
        EXPECT_FALSE(BindingIsDown(device << 24 | kKeyA, true)) << device;
    }
}

TEST_F(Bindings, AShortPressIsSeenWithReleases) {
    InputBeginPump();
    InputKeyChanged(kKeyA, true);
    InputKeyChanged(kKeyA, false);
    EXPECT_FALSE(BindingIsDown(kKeyA, false));
    EXPECT_TRUE(BindingIsDown(kKeyA, true));
    EXPECT_FALSE(BindingIsDown(kKeyA + 1, true));
    InputBeginPump();
    EXPECT_FALSE(BindingIsDown(kKeyA, true));
}

TEST_F(Bindings, ANewPumpForgetsReleasesButNotWhatIsDown) {
    InputKeyChanged(kKeyA, true);
    InputBeginPump();
    EXPECT_TRUE(BindingIsDown(kKeyA, false));
    EXPECT_TRUE(BindingIsDown(kKeyA, true));
}

TEST_F(Bindings, ShiftAndTabRewindsAndDoesNotFastForward) {
    InputKeyChanged(kKeyTab, true);
    EXPECT_TRUE(InputIsDown(7, L"Fast Forward"));
    EXPECT_FALSE(InputIsDown(7, L"Rewind"));
    InputKeyChanged(kLeftShift, true);
    EXPECT_FALSE(InputIsDown(7, L"Fast Forward"));
    EXPECT_TRUE(InputIsDown(7, L"Rewind"));
}

TEST_F(Bindings, ASessionThatIsNotActiveSeesNothing) {
    InputKeyChanged(kKeySpace, true);
    EXPECT_TRUE(InputIsDown(7, L"SMS PAUSE"));
    EXPECT_FALSE(InputIsDown(8, L"SMS PAUSE"));
    EXPECT_FALSE(InputIsDown(0, L"SMS PAUSE"));
    InputSetActiveKey(8);
    EXPECT_EQ(InputActiveKey(), 8u);
    EXPECT_FALSE(InputIsDown(7, L"SMS PAUSE"));
    EXPECT_TRUE(InputIsDown(8, L"SMS PAUSE"));
}

TEST_F(Bindings, TheActiveSessionSeesNothingWhileTheUserWalksTheRoom) {
    InputKeyChanged(kKeySpace, true);
    InputSetWalkingRoom(true);
    EXPECT_TRUE(InputWalkingRoom());
    EXPECT_FALSE(InputIsDown(7, L"SMS PAUSE"));
    InputSetWalkingRoom(false);
    EXPECT_TRUE(InputIsDown(7, L"SMS PAUSE"));
}

TEST_F(Bindings, TheApplicationIsAlwaysAnswered) {
    InputKeyChanged(kKeySpace, true);
    InputSetWalkingRoom(true);
    EXPECT_EQ(kApplicationKey, static_cast<uint32_t>(-1));
    EXPECT_TRUE(InputIsDown(kApplicationKey, L"Slow Movement"));
}

TEST_F(Bindings, TheSecondaryBindingServesAsWell) {
    Settings().SetInt2(L"INPUT Use", 8, static_cast<int32_t>(JoystickBinding(0, 528)));
    EXPECT_FALSE(InputIsDown(kApplicationKey, L"Use"));
    InputButtonChanged(0, 0, true);
    EXPECT_TRUE(InputIsDown(kApplicationKey, L"Use"));
    InputButtonChanged(0, 0, false);
    InputKeyChanged(8, true);
    EXPECT_TRUE(InputIsDown(kApplicationKey, L"Use"));
}

TEST_F(Bindings, ActionNamesAreOneInAnyCase) {
    InputKeyChanged(82, true);
    EXPECT_TRUE(InputIsDown(kApplicationKey, L"megadrive p1 Up"));
}

TEST_F(Bindings, AnUnknownActionIsNeverDown) {
    InputKeyChanged(kKeyA, true);
    EXPECT_FALSE(InputIsDown(kApplicationKey, L"No Such Action"));
    EXPECT_FALSE(InputIsDown(kApplicationKey, L""));
    EXPECT_FALSE(InputIsDown(kApplicationKey, L"INPUT Move Left")) << "the prefix is put before it";
}

TEST_F(Bindings, ASettingOutsideOfTheActionsIsNotAnAction) {
    Settings().SetInt(L"emu_fastforward", kKeyA);
    InputKeyChanged(kKeyA, true);
    EXPECT_FALSE(InputIsDown(kApplicationKey, L"emu_fastforward"));
}

TEST(BindingName, NothingBoundHasItsOwnText) {
    EXPECT_EQ(BindingName(0), L"<undefined>");
}

TEST(BindingName, KeysAreNamedInUpperCaseAfterTheirModifier) {
    EXPECT_EQ(BindingName(26), L"W");
    EXPECT_EQ(BindingName(44), L"SPACE");
    EXPECT_EQ(BindingName(229), L"RIGHT SHIFT");
    EXPECT_EQ(BindingName(196651), L"SHIFT + TAB");
    EXPECT_EQ(BindingName(KeyboardBinding(69, kModifierCtrl)), L"CTRL + F12");
    EXPECT_EQ(BindingName(1u << 16 | 43), L"TAB");
}

TEST(BindingName, AKeyWithoutANameStillHasAText) {
    EXPECT_EQ(BindingName(3), L"KEY 3");
    EXPECT_EQ(BindingName(KeyboardBinding(511, kModifierShift)), L"SHIFT + KEY 511");
    EXPECT_EQ(BindingName(60000), L"KEY 60000");
}

TEST(BindingName, AnAxisShowsTheOppositeOfItsSign) {
    EXPECT_EQ(BindingName(JoystickBinding(0, 400)), L"JOY1 AXIS0 +");
    EXPECT_EQ(BindingName(JoystickBinding(0, 401)), L"JOY1 AXIS0 -");
    EXPECT_EQ(BindingName(JoystickBinding(3, 400 + 600 + 63)), L"JOY4 AXIS31 -");
}

TEST(BindingName, AHatShowsItsDirection) {
    const wchar_t* const directions[] = {L"UP",   L"UPRIGHT",  L"RIGHT", L"DOWNRIGHT",
                                         L"DOWN", L"DOWNLEFT", L"LEFT",  L"UPLEFT"};
    for (uint32_t d = 0; d < 8; ++d) {
        EXPECT_EQ(BindingName(JoystickBinding(0, 464 + d)),
                  std::wstring(L"JOY1 HAT0 ") + directions[d]);
    }
    EXPECT_EQ(BindingName(JoystickBinding(1, 664 + 63)), L"JOY2 HAT7 UPLEFT");
}

TEST(BindingName, AButtonShowsItsNumber) {
    EXPECT_EQ(BindingName(JoystickBinding(0, 528)), L"JOY1 BUTTON0");
    EXPECT_EQ(BindingName(JoystickBinding(4, 528 + 800 + 63)), L"JOY5 BUTTON63");
}

TEST(BindingName, EveryCodeHasAText) {
    for (uint32_t top = 0; top <= 0xFFFF; top += 0x55) {
        for (uint32_t low = 0; low < 0x10000; low += 97) {
            EXPECT_FALSE(BindingName(top << 16 | low).empty());
        }
    }
}

} // namespace
