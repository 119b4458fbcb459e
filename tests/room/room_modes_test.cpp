#include "room/room_modes.h"

#include <gtest/gtest.h>

namespace {

LOOKED_AT Screen(uint32_t id, bool on) {
    LOOKED_AT screen;
    screen.id = id;
    screen.on = on;
    return screen;
}

class Modes : public testing::Test {
protected:
    Modes() { modes.Enter(); }
    RoomModes modes;
};

TEST_F(Modes, UseOfAScreenChoosesAGameAndFreesTheHands) {
    modes.SetLookedAt(Screen(6, false));
    EXPECT_EQ(modes.Use(), (ROOM_ORDER{RoomOrder::kChooseGame, 6}));
    EXPECT_FALSE(modes.Walking());
    EXPECT_TRUE(modes.RoomVisible());
}

TEST_F(Modes, UseOfFurnitureDoesNothing) {
    modes.SetLookedAt({});
    EXPECT_EQ(modes.Use(), ROOM_ORDER{});
    EXPECT_TRUE(modes.Walking());
}

TEST_F(Modes, UseNeedsTheRoomAndAWalker) {
    modes.SetLookedAt(Screen(6, true));
    modes.ToggleWalking();
    EXPECT_EQ(modes.Use(), ROOM_ORDER{});
    modes.LeaveForFullScreen();
    EXPECT_EQ(modes.Use(), ROOM_ORDER{});
}

TEST_F(Modes, TheMiddleButtonWorksAtAScreenThatIsOn) {
    modes.SetLookedAt(Screen(6, false));
    modes.ToggleWalkingAtScreen();
    EXPECT_TRUE(modes.Walking());
    modes.SetLookedAt(Screen(6, true));
    modes.ToggleWalkingAtScreen();
    EXPECT_FALSE(modes.Walking());
    modes.ToggleWalkingAtScreen();
    EXPECT_TRUE(modes.Walking());
}

TEST_F(Modes, EscapeBringsTheRoomBackFromTheFullScreen) {
    modes.LeaveForFullScreen();
    EXPECT_FALSE(modes.RoomVisible());
    modes.ToggleWalking();
    EXPECT_TRUE(modes.RoomVisible());
    EXPECT_TRUE(modes.Walking());
}

TEST_F(Modes, TurnOffStopsTheGameAndWalksOn) {
    modes.SetLookedAt(Screen(9, true));
    modes.ToggleWalking();
    EXPECT_EQ(modes.TurnOff(false), (ROOM_ORDER{RoomOrder::kStopGame, 9}));
    EXPECT_FALSE(modes.Selected().on);
    EXPECT_TRUE(modes.RoomVisible());
    EXPECT_TRUE(modes.Walking());
}

TEST_F(Modes, TurnOffOpensTheBrowserIfGamesStartFullScreen) {
    modes.SetLookedAt(Screen(9, true));
    EXPECT_EQ(modes.TurnOff(true), (ROOM_ORDER{RoomOrder::kStopAndChooseGame, 9}));
    EXPECT_FALSE(modes.Walking());
}

TEST_F(Modes, TurnOffWithoutASelectionDoesNothing) {
    EXPECT_EQ(modes.TurnOff(false), ROOM_ORDER{});
}

} // namespace
