#include "room/room_camera.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

class RoomCamera : public testing::Test {
protected:
    RoomCamera() { camera.SetUp(16.0F / 9.0F); }

    void Walk(const WALK_INPUT& input, int steps, float seconds) {
        for (int i = 0; i < steps; ++i) {
            camera.Move(input, seconds);
        }
    }
    CRoomCamera camera;
};

void ExpectNear(VECTOR3 actual, VECTOR3 expected, float within = 0.001F) {
    EXPECT_NEAR(actual.x, expected.x, within);
    EXPECT_NEAR(actual.y, expected.y, within);
    EXPECT_NEAR(actual.z, expected.z, within);
}

TEST_F(RoomCamera, StartsInTheRoomLookingAtItsFrontWall) {
    ExpectNear(camera.Position(), {180, 118, 200});
    ExpectNear(camera.Forward(), {0, 0, -1});
    ExpectNear(camera.Right(), {1, 0, 0});
    ExpectNear(camera.Up(), {0, 1, 0});
}

// The first step only makes speed: 2500 * 0.01 = 25. The second goes 25 * 0.01 + 2500 * 0.01 * 0.01 = 0.5.
TEST_F(RoomCamera, TheFirstStepsAreWorkedOutByHand) {
    camera.Move({.forward = 1.0F}, 0.01F);
    ExpectNear(camera.Position(), {180, 118, 200});
    camera.Move({.forward = 1.0F}, 0.01F);
    ExpectNear(camera.Position(), {180, 118, 199.5F});
    camera.Move({.forward = 1.0F}, 0.01F); // 50 * 0.01 + 0.25
    ExpectNear(camera.Position(), {180, 118, 198.75F});
}

// At the limit of 300 a step of 0.01 is 3 and the term of the acceleration 0.25.
TEST_F(RoomCamera, WalksAtTheSpeedLimit) {
    Walk({.right = 1.0F}, 20, 0.01F);
    const float before = camera.Position().x;
    camera.Move({.right = 1.0F}, 0.01F);
    EXPECT_NEAR(camera.Position().x - before, 3.25F, 0.001F);
}

TEST_F(RoomCamera, SlowMovementLimitsToAHundredAndTwenty) {
    Walk({.right = 1.0F}, 20, 0.01F);
    camera.Move({.right = 1.0F, .slow = true}, 0.01F); // cuts the velocity
    const float before = camera.Position().x;
    camera.Move({.right = 1.0F, .slow = true}, 0.01F);
    EXPECT_NEAR(camera.Position().x - before, 1.45F, 0.001F);
}

// From 300, 12 steps of 25 each end it.
TEST_F(RoomCamera, GlidesToAStopWithoutInput) {
    Walk({.right = 1.0F}, 12, 0.01F);
    const float released = camera.Position().x;
    Walk({}, 12, 0.01F);
    const float stopped = camera.Position().x;
    // 3 + 2.75 + ... + 0.25 = 12 * (3 + 0.25) / 2
    EXPECT_NEAR(stopped - released, 19.5F, 0.01F);
    Walk({}, 5, 0.01F);
    EXPECT_EQ(camera.Position().x, stopped);
}

TEST_F(RoomCamera, AWallStopsItAtTwoUnitsAndItsVelocityStays) {
    Walk({.right = -1.0F}, 200, 0.01F);
    EXPECT_EQ(camera.Position().x, 2.0F);
    // With the velocity of -300 the way back takes 12 steps of 25 before it begins.
    Walk({.right = 1.0F}, 11, 0.01F);
    EXPECT_EQ(camera.Position().x, 2.0F);
    Walk({.right = 1.0F}, 4, 0.01F);
    EXPECT_GT(camera.Position().x, 2.0F);
}

TEST_F(RoomCamera, StaysWithinTheRoomOnAllSides) {
    Walk({.right = 1.0F}, 300, 0.01F);
    EXPECT_EQ(camera.Position().x, 498.0F);
    Walk({.forward = -1.0F}, 400, 0.01F);
    EXPECT_EQ(camera.Position().z, 798.0F);
    Walk({.forward = 1.0F}, 600, 0.01F);
    EXPECT_EQ(camera.Position().z, 2.0F);
    camera.Look(0, -450, false); // straight up
    camera.Zoom(10, false);
    camera.Move({}, 0.01F);
    EXPECT_EQ(camera.Position().y, 258.0F);
    camera.Zoom(-10, false);
    camera.Move({}, 0.01F);
    EXPECT_EQ(camera.Position().y, 2.0F);
}

TEST_F(RoomCamera, WalksLevelWhereverItLooks) {
    camera.Look(0, 300, false); // 60 degrees down
    Walk({.forward = 1.0F}, 30, 0.01F);
    EXPECT_EQ(camera.Position().y, 118.0F);
    EXPECT_LT(camera.Position().z, 150.0F);
}

TEST_F(RoomCamera, WalksAheadWhenItLooksStraightUpOrDown) {
    camera.Look(0, -450, false); // to the limit of 90 degrees
    Walk({.forward = 1.0F}, 20, 0.01F);
    EXPECT_LT(camera.Position().z, 180.0F);
    CRoomCamera down;
    down.SetUp(1.0F);
    down.Look(0, 450, false); // 90 degrees down
    for (int i = 0; i < 20; ++i) {
        down.Move({.forward = 1.0F}, 0.01F);
    }
    EXPECT_LT(down.Position().z, 180.0F);
}

TEST_F(RoomCamera, TheMouseTurnsByAFifthOfADegreeAPixel) {
    camera.Look(100, 50, false);
    EXPECT_NEAR(camera.Yaw(), -20.0F, 0.001F);
    EXPECT_NEAR(camera.Pitch(), -10.0F, 0.001F);
    EXPECT_GT(camera.Forward().x, 0.0F) << "to the right";
    camera.Look(100, 50, true);
    EXPECT_NEAR(camera.Yaw(), -25.0F, 0.001F);
    EXPECT_NEAR(camera.Pitch(), -12.5F, 0.001F);
}

TEST_F(RoomCamera, PitchIsLimitedUpwardsOnly) {
    camera.Look(0, -1000, false);
    EXPECT_EQ(camera.Pitch(), 90.0F);
    camera.Look(0, 1000, false);
    EXPECT_NEAR(camera.Pitch(), -110.0F, 0.001F);
}

TEST_F(RoomCamera, AWheelNotchMovesAlongTheView) {
    camera.Zoom(1, false);
    ExpectNear(camera.Position(), {180, 118, 160});
    camera.Zoom(-1, true);
    ExpectNear(camera.Position(), {180, 118, 170});
}

TEST_F(RoomCamera, TheSpeedHardlyDependsOnTheNumberOfPictures) {
    CRoomCamera coarse;
    coarse.SetUp(1.0F);
    Walk({.right = 1.0F}, 120, 1.0F / 120.0F);
    for (int i = 0; i < 30; ++i) {
        coarse.Move({.right = 1.0F}, 1.0F / 30.0F);
    }
    // 300 units a second; the term of the acceleration adds 2500 * dt a second.
    EXPECT_NEAR(camera.Position().x, coarse.Position().x, 90.0F);
}

TEST_F(RoomCamera, TheViewPutsWhatIsAheadOnTheNegativeZAxis) {
    camera.Look(450, 0, false); // 90 degrees to the right: towards +x
    const VECTOR3 ahead = TransformPoint(camera.View(), camera.Position() + VECTOR3{10, 0, 0});
    ExpectNear(ahead, {0, 0, -10});
    const VECTOR3 above = TransformPoint(camera.View(), camera.Position() + VECTOR3{0, 3, 0});
    ExpectNear(above, {0, 3, 0});
}

// tan 22.5 degrees is 0.41421: a point at that height and distance 1 is on the upper edge.
TEST_F(RoomCamera, SeesFortyFiveDegreesUprightFromFiveToAThousand) {
    const MATRIX4 m = camera.Projection();
    EXPECT_NEAR(m[5] * 0.41421F, 1.0F, 0.0001F);
    EXPECT_NEAR(m[0] * 0.41421F * 16.0F / 9.0F, 1.0F, 0.0001F);
    const auto depthAt = [&](float distance) { return (m[10] * -distance + m[14]) / distance; };
    EXPECT_NEAR(depthAt(5.0F), -1.0F, 0.0001F);
    EXPECT_NEAR(depthAt(1000.0F), 1.0F, 0.0001F);
}

TEST_F(RoomCamera, UnprojectUndoesTheProjection) {
    camera.Look(130, 40, false);
    const VECTOR3 point = camera.Position() + camera.Forward() * 200.0F + camera.Right() * 30.0F +
                          camera.Up() * -20.0F;
    const VECTOR3 eye = TransformPoint(camera.View(), point);
    const MATRIX4 m = camera.Projection();
    const float x = m[0] * eye.x / -eye.z;
    const float y = m[5] * eye.y / -eye.z;
    const float z = (m[10] * eye.z + m[14]) / -eye.z;
    ExpectNear(camera.Unproject((x + 1) / 2, (1 - y) / 2, (z + 1) / 2), point, 0.05F);
}

} // namespace
