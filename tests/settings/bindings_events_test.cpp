// From the event pump's raw joystick events to the table of codes.
#include "settings/bindings.h"

#include <gtest/gtest.h>

#include <set>

namespace {

bool Down(uint32_t code) {
    return BindingIsDown(JoystickBinding(0, code), false);
}

bool DownOrReleased(uint32_t code) {
    return BindingIsDown(JoystickBinding(0, code), true);
}

std::set<uint32_t> AllDown() {
    std::set<uint32_t> codes;
    for (uint32_t code = 0; code < kInputCodes; ++code) {
        if (Down(code)) {
            codes.insert(code);
        }
    }
    return codes;
}

class BindingEvents : public testing::Test {
protected:
    void SetUp() override { InputClearAll(); }
    void TearDown() override { InputClearAll(); }
};

using Codes = std::set<uint32_t>;

TEST_F(BindingEvents, CodesFollowTheirFormulas) {
    EXPECT_EQ(JoystickAxisCode(0, 0, false), 400u);
    EXPECT_EQ(JoystickAxisCode(3, 5, true), 400u + 600 + 11);
    EXPECT_EQ(JoystickHatCode(2, 7, 6), 464u + 400 + 56 + 6);
    EXPECT_EQ(JoystickButtonCode(4, 63), 528u + 800 + 63);
    EXPECT_EQ(JoystickBinding(4, 1391), 0x0104056Fu);
    EXPECT_EQ(KeyboardBinding(43, kModifierShift), 196651u);
}

TEST_F(BindingEvents, AnAxisBeyondTheThresholdSetsItsCode) {
    InputAxisMoved(0, 1, -28001);
    EXPECT_EQ(AllDown(), Codes{402});
    InputClearAll();
    InputAxisMoved(0, 1, 28001);
    EXPECT_EQ(AllDown(), Codes{403});
    InputClearAll();
    InputAxisMoved(1, 0, -32768);
    EXPECT_EQ(AllDown(), Codes{600});
    InputClearAll();
    InputAxisMoved(1, 0, 32767);
    EXPECT_EQ(AllDown(), Codes{601});
}

TEST_F(BindingEvents, AnAxisInTheDeadZoneClearsBothCodes) {
    for (const int16_t value : {int16_t{-28000}, int16_t{-1}, int16_t{0}, int16_t{28000}}) {
        InputSetCode(400, true);
        InputSetCode(401, true);
        InputAxisMoved(0, 0, value);
        EXPECT_EQ(AllDown(), Codes{}) << value;
    }
}

TEST_F(BindingEvents, AnAxisThatCrossesAtOnceLeavesOneCode) {
    InputAxisMoved(0, 0, 30000);
    InputAxisMoved(0, 0, -30000);
    EXPECT_EQ(AllDown(), Codes{400});
    InputAxisMoved(0, 0, 30000);
    EXPECT_EQ(AllDown(), Codes{401});
}

TEST_F(BindingEvents, AnAxisPushedOneWayDoesNotMarkTheOther) {
    InputAxisMoved(0, 0, 30000);
    EXPECT_TRUE(DownOrReleased(401));
    EXPECT_FALSE(DownOrReleased(400));
}

TEST_F(BindingEvents, SettingACodeToZeroMarksItAlsoWhenItWasNotDown) {
    InputSetCode(700, false);
    EXPECT_FALSE(Down(700));
    EXPECT_TRUE(DownOrReleased(700));
    InputBeginPump();
    EXPECT_FALSE(DownOrReleased(700));
}

TEST_F(BindingEvents, EveryHatPositionSetsItsCodes) {
    struct ROW {
        int position;
        Codes directions;
    };
    const ROW rows[] = {
        {kHatCentred,          {}    },
        {kHatUp,               {0}   },
        {kHatRight,            {2}   },
        {kHatUp | kHatRight,   {1, 2}},
        {kHatDown,             {4}   },
        {kHatRight | kHatDown, {2, 4}},
        {kHatLeft,             {6}   },
        {kHatLeft | kHatUp,    {6, 0}},
        {kHatDown | kHatLeft,  {4, 6}},
    };
    for (const ROW& before : rows) { // whatever position the hat comes from
        for (const ROW& row : rows) {
            InputHatMoved(1, 2, static_cast<uint8_t>(before.position));
            InputHatMoved(1, 2, static_cast<uint8_t>(row.position));
            Codes expected;
            for (const uint32_t direction : row.directions) {
                expected.insert(464 + 200 + 16 + direction);
            }
            EXPECT_EQ(AllDown(), expected) << row.position;
        }
    }
}

TEST_F(BindingEvents, AHatPositionThatCannotBeSetsNothing) {
    for (const int position : {kHatUp | kHatDown, kHatLeft | kHatRight, 15, 16, 255}) {
        InputHatMoved(0, 0, kHatUp);
        InputHatMoved(0, 0, static_cast<uint8_t>(position));
        EXPECT_EQ(AllDown(), Codes{}) << position;
    }
}

TEST_F(BindingEvents, AHatEventMarksAllEightCodes) {
    InputHatMoved(0, 1, kHatUp);
    for (uint32_t direction = 0; direction < 8; ++direction) {
        EXPECT_TRUE(DownOrReleased(472 + direction)) << direction;
    }
    EXPECT_FALSE(DownOrReleased(471));
    EXPECT_FALSE(DownOrReleased(480));
}

TEST_F(BindingEvents, ANeighbouringHatIsNotTouched) {
    InputHatMoved(0, 0, kHatUp);
    InputHatMoved(0, 1, kHatDown);
    EXPECT_EQ(AllDown(), (Codes{464, 476}));
}

TEST_F(BindingEvents, ButtonsSetAndClearTheirCodes) {
    InputButtonChanged(0, 0, true);
    InputButtonChanged(4, 63, true);
    EXPECT_EQ(AllDown(), (Codes{528, 1391}));
    InputButtonChanged(0, 0, false);
    EXPECT_EQ(AllDown(), Codes{1391});
}

TEST_F(BindingEvents, NumbersOutOfRangeAreIgnored) {
    constexpr uint32_t kHuge = 0xFFFFFFFF;
    for (const uint32_t joystick : {5u, 100u, kHuge}) {
        InputAxisMoved(joystick, 0, 32767);
        InputHatMoved(joystick, 0, kHatUp);
        InputButtonChanged(joystick, 0, true);
        InputClearJoystick(joystick);
    }
    InputAxisMoved(0, 32, 32767);
    InputAxisMoved(0, kHuge, 32767);
    InputHatMoved(0, 8, kHatUp);
    InputHatMoved(0, kHuge, kHatUp);
    InputButtonChanged(0, 64, true);
    InputButtonChanged(0, kHuge, true);
    InputKeyChanged(512, true);
    InputKeyChanged(kHuge, true);
    InputSetCode(2048, true);
    InputSetCode(kHuge, true);
    EXPECT_EQ(AllDown(), Codes{});
}

TEST_F(BindingEvents, TheLastOnesInRangeCount) {
    InputAxisMoved(4, 31, 32767);
    InputHatMoved(4, 7, kHatLeft);
    InputButtonChanged(4, 63, true);
    InputKeyChanged(511, true);
    InputSetCode(2047, true);
    EXPECT_EQ(AllDown(), (Codes{1263, 1326, 1391, 511, 2047}));
}

TEST_F(BindingEvents, ClearingAJoystickLeavesTheOthers) {
    InputButtonChanged(1, 0, true);
    InputAxisMoved(1, 0, 30000);
    InputButtonChanged(2, 0, true);
    InputButtonChanged(0, 63, true);
    InputBeginPump();
    InputClearJoystick(1);
    EXPECT_EQ(AllDown(), (Codes{591, 928}));
    EXPECT_TRUE(DownOrReleased(728)) << "what was down has been let go";
    EXPECT_FALSE(DownOrReleased(729));
}

TEST_F(BindingEvents, ClearingEverythingForgetsReleasesToo) {
    InputKeyChanged(4, true);
    InputKeyChanged(5, false);
    InputClearAll();
    EXPECT_EQ(AllDown(), Codes{});
    EXPECT_FALSE(DownOrReleased(5));
}

} // namespace
