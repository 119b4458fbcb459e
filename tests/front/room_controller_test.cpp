// The room, played with a game controller.
#include "front/room_rig.h"
#include "front/virtual_joystick.h"

#include <gmock/gmock.h>

#include <cmath>

using testing::HasSubstr;

namespace {

// Buttons and axes of kController's raw device.
constexpr int kLeftX = 0;
constexpr int kLeftY = 1;
constexpr int kRightX = 2;
constexpr int kRightY = 3;
constexpr int kFull = 32767;

class RoomController : public RoomTest {
protected:
    void SetUp() override {
        RoomTest::SetUp();
        // A window off the screen never has the focus, without which the library drops a joystick's events.
        HearControllersInBackground();
    }

    // The controller is plugged in once the program runs, as its library starts with it.
    RoomScreen* EnterWithPad(Application& application, const std::vector<std::string>& games,
                             VirtualJoystick::SHAPE shape = kController) {
        RoomScreen* const room = Enter(application, games);
        if (room == nullptr) {
            return nullptr;
        }
        pad = std::make_unique<VirtualJoystick>(shape);
        EXPECT_TRUE(application.Round());
        return HasFailure() ? nullptr : room;
    }

    // The library holds the guide button's release back for a moment.
    testing::AssertionResult Press(Application& application, int button) const {
        pad->Button(button, true);
        const bool goesOn = application.Round();
        pad->Button(button, false);
        return goesOn ? RunUntil(application, [] { return InputPadsActing() == 0; })
                      : testing::AssertionFailure() << "the program ended";
    }

    // Turns the set in front on and waits for its picture.
    testing::AssertionResult PlayFrontSet(Application& application, const RoomScreen& room) const {
        const testing::AssertionResult pressed = Press(application, kSouth);
        return pressed ? RunUntilOn(application, room, kFrontSet) : pressed;
    }

    static std::string Hint(const RoomScreen& room) {
        return {room.HintText().begin(), room.HintText().end()};
    }

    std::unique_ptr<VirtualJoystick> pad;
};

} // namespace

TEST_F(RoomController, TheLeftStickWalksAsFarAsItIsPushed) {
    Application application;
    RoomScreen* const room = EnterWithPad(application, {});
    ASSERT_NE(room, nullptr);
    const VECTOR3 from = room->Camera().Position();
    pad->Axis(kLeftX, kFull / 10); // in the dead zone
    for (int i = 0; i < 10; ++i) {
        ASSERT_TRUE(application.Round());
    }
    EXPECT_EQ(room->Camera().Position(), from);
    pad->Axis(kLeftX, kFull);
    pad->Axis(kLeftY,
              kFull / 2); // down is back; out of the dead zone's circle the way is the stick's
    ASSERT_TRUE(
        RunUntil(application, [&] { return room->Camera().Position().x > from.x + 40.0f; }));
    const VECTOR3 way = room->Camera().Position() - from;
    EXPECT_GT(way.z, way.x * 0.3f);
    EXPECT_LT(way.z, way.x * 0.9f) << "half as far as to the side, after the same start";
}

TEST_F(RoomController, TheRightStickLooks) {
    Application application;
    RoomScreen* const room = EnterWithPad(application, {});
    ASSERT_NE(room, nullptr);
    pad->Axis(kRightX, kFull / 10);
    for (int i = 0; i < 10; ++i) {
        ASSERT_TRUE(application.Round());
    }
    EXPECT_FLOAT_EQ(room->Camera().Yaw(), 0.0f) << "the dead zone";
    pad->Axis(kRightX, kFull);
    ASSERT_TRUE(RunUntil(application, [&] { return room->Camera().Yaw() < -10.0f; }));
    EXPECT_FLOAT_EQ(room->Camera().Pitch(), 0.0f);
    pad->Axis(kRightX, 0);
    pad->Axis(kRightY, -kFull);
    ASSERT_TRUE(RunUntil(application, [&] { return room->Camera().Pitch() > 5.0f; })) << "upwards";
    EXPECT_THAT(Hint(*room), testing::AnyOf(HasSubstr("A   Turn on"), HasSubstr("Right stick")));
}

TEST_F(RoomController, ItsButtonsUseLeaveAndTurnOff) {
    Application application;
    RoomScreen* const room = EnterWithPad(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(PlayFrontSet(application, *room));
    EXPECT_THAT(Hint(*room), AllOf(HasSubstr("A   Play"), HasSubstr("Y   Turn off")));
    ASSERT_TRUE(RunUntilColour(application, kRed));

    ASSERT_TRUE(Press(application, kEast)); // hands off the camera
    EXPECT_TRUE(room->Modes().RoomVisible());
    EXPECT_FALSE(room->Modes().Walking());
    ASSERT_TRUE(Press(application, kEast));
    EXPECT_FALSE(room->Modes().Walking()) << "the machine's button now";
    ASSERT_TRUE(Press(application, kGuide));
    EXPECT_TRUE(room->Modes().Walking());

    ASSERT_TRUE(Press(application, kSouth));
    EXPECT_FALSE(room->Modes().RoomVisible());
    pad->Button(kSouth, true);
    ASSERT_TRUE(RunUntilColour(application, kBlue)) << "it plays";
    pad->Button(kSouth, false);
    ASSERT_TRUE(Press(application, kEast));
    EXPECT_FALSE(room->Modes().RoomVisible());
    EXPECT_THAT(Hint(*room), testing::AnyOf(HasSubstr("Guide"), testing::IsEmpty()));
    ASSERT_TRUE(Press(application, kGuide));
    EXPECT_TRUE(room->Modes().RoomVisible());
    EXPECT_TRUE(room->Modes().Walking());

    ASSERT_TRUE(Press(application, kNorth));
    ASSERT_TRUE(RunUntilOff(application, *room, kFrontSet));
    EXPECT_FALSE(SessionRuns(kFrontSet));
}

TEST_F(RoomController, WhereNobodyPlaysTheLeavingButtonComesBack) {
    Application application;
    RoomScreen* const room = EnterWithPad(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    ASSERT_TRUE(Press(application, kEast));
    EXPECT_FALSE(room->Modes().Walking());
    ASSERT_TRUE(Press(application, kEast));
    EXPECT_TRUE(room->Modes().Walking());
}

TEST_F(RoomController, ATapBetweenTwoRoundsCounts) {
    Application application;
    RoomScreen* const room = EnterWithPad(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    pad->Button(kGuide, true);
    SDL_PumpEvents();
    pad->Button(kGuide, false);
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(room->Modes().Walking());
}

TEST_F(RoomController, ADirectionBoundToSomethingElseNeitherWalksNorLooks) {
    Settings().SetInt2(
        L"INPUT Save State",
        static_cast<int32_t>(JoystickBinding(0, JoystickAxisCode(0, kLeftX, true))),
        static_cast<int32_t>(JoystickBinding(0, JoystickAxisCode(0, kRightX, true))));
    Application application;
    RoomScreen* const room = EnterWithPad(application, {});
    ASSERT_NE(room, nullptr);
    const VECTOR3 from = room->Camera().Position();
    pad->Axis(kLeftX, kFull);
    pad->Axis(kRightX, kFull);
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(application.Round());
    }
    EXPECT_EQ(room->Camera().Position(), from);
    EXPECT_FLOAT_EQ(room->Camera().Yaw(), 0.0f);
    pad->Axis(kLeftX, -kFull); // the other way is free
    pad->Axis(kRightX, -kFull);
    EXPECT_TRUE(RunUntil(application, [&] {
        return room->Camera().Position().x < from.x - 5.0f && room->Camera().Yaw() > 5.0f;
    }));
}

TEST_F(RoomController, AButtonBoundToSomethingElseDoesNotUse) {
    Settings().SetInt2(L"INPUT Save State",
                       static_cast<int32_t>(JoystickBinding(0, JoystickButtonCode(0, kSouth))), 0);
    Application application;
    RoomScreen* const room = EnterWithPad(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    pad->Axis(kRightY, kFull / 4); // the pad is in hand
    ASSERT_TRUE(application.Round());
    pad->Axis(kRightY, 0);
    EXPECT_THAT(Hint(*room), HasSubstr("E   Turn on")) << "what still does it";
    ASSERT_TRUE(Press(application, kSouth));
    EXPECT_EQ(room->Games().StateOf(kFrontSet), SetState::kOff);
}

TEST_F(RoomController, PromptsNameTheHandInUse) {
    Application application;
    RoomScreen* const room = EnterWithPad(application, {LatchGame()});
    ASSERT_NE(room, nullptr);
    EXPECT_THAT(Hint(*room), HasSubstr("E   Turn on"));
    pad->Button(kLeftShoulder, true); // the left shoulder walks slowly, and shows nothing
    ASSERT_TRUE(application.Round());
    pad->Button(kLeftShoulder, false);
    ASSERT_TRUE(application.Round());
    EXPECT_THAT(Hint(*room), HasSubstr("A   Turn on"));
    MoveMouse(1, 0);
    ASSERT_TRUE(application.Round());
    EXPECT_THAT(Hint(*room), HasSubstr("E   Turn on"));
}
