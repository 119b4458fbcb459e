// Joysticks from the device library to codes, with virtual devices.
#include "front/virtual_joystick.h"

#include <memory>

namespace {

using Codes = std::set<uint32_t>;

using JoysticksTest = JoystickRounds;

VirtualJoystick::SHAPE Named(const char* name) {
    VirtualJoystick::SHAPE shape;
    shape.name = name;
    return shape;
}

using Names = std::vector<std::string>;

TEST_F(JoysticksTest, NoneIsNoError) {
    joysticks.Open();
    Round();
    EXPECT_EQ(Names(), (::Names{"-", "-", "-", "-"}));
}

TEST_F(JoysticksTest, WithoutTheLibraryThereAreNone) {
    SDL_Quit();
    Joysticks without;
    without.Close();
    EXPECT_EQ(without.PlaceOf(0), kNoJoystick);
}

TEST_F(JoysticksTest, ThoseAtTheStartTakeThePlacesInOrder) {
    const VirtualJoystick first(Named("first"));
    const VirtualJoystick second(Named("second"));
    joysticks.Open();
    EXPECT_EQ(Names(), (::Names{"first", "second", "-", "-"}));
    Round(); // the library also announces them as arrivals
    EXPECT_EQ(Names(), (::Names{"first", "second", "-", "-"}));
    EXPECT_EQ(joysticks.PlaceOf(second.Instance()), 1u);
}

TEST_F(JoysticksTest, NamesAndCountsAreRead) {
    VirtualJoystick::SHAPE shape;
    shape.axes = 3;
    shape.buttons = 9;
    shape.hats = 2;
    shape.name = "Arcade stick";
    const VirtualJoystick stick(shape);
    joysticks.Open();
    const JOYSTICK& joystick = joysticks.Places()[0];
    EXPECT_TRUE(joystick.present);
    EXPECT_EQ(joystick.name, "Arcade stick");
    EXPECT_EQ(joystick.axes, 3u);
    EXPECT_EQ(joystick.buttons, 9u);
    EXPECT_EQ(joystick.hats, 2u);
    EXPECT_EQ(joystick.balls, 0u);
    EXPECT_FALSE(joystick.controller);
    EXPECT_EQ(joystick.player, kNoPlayer);
}

TEST_F(JoysticksTest, CountsAreCut) {
    VirtualJoystick::SHAPE shape;
    shape.axes = 40;
    shape.buttons = 100;
    shape.hats = 12;
    const VirtualJoystick stick(shape);
    joysticks.Open();
    EXPECT_EQ(joysticks.Places()[0].axes, 32u);
    EXPECT_EQ(joysticks.Places()[0].buttons, 64u);
    EXPECT_EQ(joysticks.Places()[0].hats, 8u);
    Round();
    stick.Axis(31, 32767);
    stick.Axis(32, 32767);
    stick.Button(63, true);
    stick.Button(64, true);
    stick.Hat(7, SDL_HAT_LEFT);
    stick.Hat(8, SDL_HAT_LEFT);
    Round();
    EXPECT_EQ(JoystickCodes(), (Codes{400 + 63, 464 + 56 + 6, 528 + 63}));
}

TEST_F(JoysticksTest, TheFifthIsIgnored) {
    std::vector<std::unique_ptr<VirtualJoystick>> sticks;
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        sticks.push_back(std::make_unique<VirtualJoystick>(Named(name)));
    }
    joysticks.Open();
    Round();
    EXPECT_EQ(Names(), (::Names{"1", "2", "3", "4"}));
    EXPECT_EQ(joysticks.PlaceOf(sticks[4]->Instance()), kNoJoystick);
    sticks[4]->Button(0, true);
    sticks[3]->Button(0, true);
    Round();
    EXPECT_EQ(JoystickCodes(), Codes{528 + 600});
}

TEST_F(JoysticksTest, AnIgnoredOneStaysIgnoredWhenAPlaceIsFreed) {
    std::vector<std::unique_ptr<VirtualJoystick>> sticks;
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        sticks.push_back(std::make_unique<VirtualJoystick>(Named(name)));
    }
    joysticks.Open();
    Round();
    sticks[1]->Unplug();
    Round();
    EXPECT_EQ(Names(), (::Names{"1", "-", "3", "4"}));
    const VirtualJoystick late(Named("late"));
    Round();
    EXPECT_EQ(Names(), (::Names{"1", "late", "3", "4"}));
}

TEST_F(JoysticksTest, WhatIsHeldAtTheStartIsDown) {
    const VirtualJoystick stick(kPlain);
    stick.Axis(1, -32768);
    stick.Button(2, true);
    stick.Hat(0, SDL_HAT_DOWN);
    SDL_JoystickUpdate();
    joysticks.Open();
    EXPECT_EQ(JoystickCodes(), (Codes{402, 464 + 4, 528 + 2}));
    for (const uint32_t released : {400u, 403u, 528u}) {
        EXPECT_FALSE(BindingIsDown(JoystickBinding(0, released), true)) << "nothing was let go";
    }
}

TEST_F(JoysticksTest, OneThatArrivesTakesTheLowestFreePlace) {
    const VirtualJoystick first(Named("first"));
    const VirtualJoystick second(Named("second"));
    const VirtualJoystick third(Named("third"));
    joysticks.Open();
    first.Unplug();
    second.Unplug();
    Round();
    EXPECT_EQ(Names(), (::Names{"-", "-", "third", "-"}));
    const VirtualJoystick fourth(Named("fourth"));
    Round();
    EXPECT_EQ(Names(), (::Names{"fourth", "-", "third", "-"}));
    fourth.Button(1, true);
    third.Button(1, true);
    Round();
    EXPECT_EQ(JoystickCodes(), (Codes{529, 929})) << "events find the place, not the instance";
}

TEST_F(JoysticksTest, SeveralComingAndGoingInOneRoundEndWhereTheyShould) {
    const VirtualJoystick first(Named("first"));
    joysticks.Open();
    Round();
    const VirtualJoystick second(Named("second"));
    first.Unplug();
    const VirtualJoystick third(Named("third"));
    second.Unplug();
    Round();
    EXPECT_EQ(joysticks.PlaceOf(first.Instance()), kNoJoystick);
    EXPECT_EQ(joysticks.PlaceOf(second.Instance()), kNoJoystick);
    const uint32_t place = joysticks.PlaceOf(third.Instance());
    ASSERT_LT(place, kJoystickPlaces);
    third.Button(0, true);
    Round();
    EXPECT_EQ(JoystickCodes(), Codes{JoystickButtonCode(place, 0)});
}

TEST_F(JoysticksTest, OneThatLeavesLetsItsCodesGo) {
    const VirtualJoystick first(kPlain);
    const VirtualJoystick second(kPlain);
    joysticks.Open();
    first.Button(0, true);
    first.Axis(0, 32767);
    first.Hat(0, SDL_HAT_UP);
    second.Button(0, true);
    Round();
    EXPECT_EQ(JoystickCodes(), (Codes{401, 464, 528, 728}));
    first.Unplug();
    Round();
    EXPECT_EQ(JoystickCodes(), Codes{728});
    EXPECT_TRUE(BindingIsDown(JoystickBinding(0, 528), true));
}

TEST_F(JoysticksTest, ClosingLetsEverythingGo) {
    const VirtualJoystick plain(kPlain);
    const VirtualJoystick controller(kController);
    joysticks.Open();
    plain.Button(0, true);
    controller.Button(0, true);
    Round();
    EXPECT_FALSE(ActionsDown().empty());
    joysticks.Close();
    EXPECT_TRUE(JoystickCodes().empty());
    EXPECT_TRUE(ActionsDown().empty());
    EXPECT_EQ(Names(), (::Names{"-", "-", "-", "-"}));
    joysticks.Open();
    EXPECT_TRUE(joysticks.Places()[1].present);
}

TEST_F(JoysticksTest, AnAxisSetsItsCodesBeyond28000Alone) {
    const VirtualJoystick stick(kPlain);
    joysticks.Open();
    struct ROW {
        int value;
        Codes codes;
    };
    const ROW rows[] = {
        {28001,  {401}},
        {28000,  {}   },
        {-28000, {}   },
        {-28001, {400}},
        {-32768, {400}},
        {32767,  {401}},
        {0,      {}   },
    };
    for (const ROW& row : rows) {
        stick.Axis(0, row.value);
        Round();
        EXPECT_EQ(JoystickCodes(), row.codes) << row.value;
    }
}

TEST_F(JoysticksTest, EveryHatPositionSetsItsCodes) {
    const VirtualJoystick stick(kPlain);
    joysticks.Open();
    struct ROW {
        int position;
        std::vector<uint32_t> directions;
    };
    const ROW rows[] = {
        {SDL_HAT_UP,        {0}   },
        {SDL_HAT_RIGHTUP,   {1, 2}},
        {SDL_HAT_RIGHT,     {2}   },
        {SDL_HAT_RIGHTDOWN, {2, 4}},
        {SDL_HAT_DOWN,      {4}   },
        {SDL_HAT_LEFTDOWN,  {4, 6}},
        {SDL_HAT_LEFT,      {6}   },
        {SDL_HAT_LEFTUP,    {6, 0}},
        {SDL_HAT_CENTERED,  {}    },
    };
    for (const ROW& row : rows) {
        stick.Hat(0, row.position);
        Round();
        Codes expected;
        for (const uint32_t direction : row.directions) {
            expected.insert(464 + direction);
        }
        EXPECT_EQ(JoystickCodes(), expected) << row.position;
    }
}

TEST_F(JoysticksTest, AShortPressOfAButtonIsSeenInItsRound) {
    const VirtualJoystick stick(kPlain);
    joysticks.Open();
    Round();
    const uint32_t binding = JoystickBinding(0, 528);
    stick.Button(0, true);
    SDL_JoystickUpdate();
    stick.Button(0, false);
    Round();
    EXPECT_FALSE(BindingIsDown(binding, false));
    EXPECT_TRUE(BindingIsDown(binding, true));
    Round();
    EXPECT_FALSE(BindingIsDown(binding, true));
}

} // namespace
