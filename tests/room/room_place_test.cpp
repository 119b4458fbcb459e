#include "room/room_camera.h"
#include "room/room_objects.h"
#include "room/room_place.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

class RoomPlace : public testing::Test {
protected:
    RoomPlace() { objects.Build(nullptr); }
    CRoomObjects objects;
};

// The direction in which a place looks has this length 1 part.
void ExpectDirection(const ROOM_PLACE& place, VECTOR3 direction) {
    const VECTOR3 way = Normalised(place.at - place.from);
    EXPECT_NEAR(way.x, direction.x, 0.001F);
    EXPECT_NEAR(way.y, direction.y, 0.001F);
    EXPECT_NEAR(way.z, direction.z, 0.001F);
}

} // namespace

TEST_F(RoomPlace, IsReadAsItWasWritten) {
    CRoomCamera camera;
    camera.SetUp(1.0F, {180, 118, 200}, {280, 118, 300}); // along x and z alike
    const std::string text = RoomPlaceText(camera);
    EXPECT_EQ(text, "180.00 118.00 200.00 -135.00 0.00")
        << "yaw 0 looks along -z and grows to the left";
    const auto place = ReadRoomPlace(text, objects);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->from, (VECTOR3{180, 118, 200}));
    ExpectDirection(*place, {std::sqrt(0.5F), 0, std::sqrt(0.5F)});
}

TEST_F(RoomPlace, KeepsALookUpwards) {
    const auto place = ReadRoomPlace("180 118 200 0 30", objects);
    ASSERT_TRUE(place);
    ExpectDirection(*place, {0, 0.5F, -std::sqrt(0.75F)}); // the sine and cosine of 30 degrees
}

TEST_F(RoomPlace, IsRefusedInFurnitureAndBeyondTheWalls) {
    EXPECT_FALSE(ReadRoomPlace("310 118 400 0 0", objects))
        << "the coffee table: x 270 to 350, z 300 to 500";
    EXPECT_FALSE(ReadRoomPlace("250 118 60 0 0", objects)) << "the unit with the sets";
    EXPECT_FALSE(ReadRoomPlace("92 118 769 0 0", objects)) << "the left cabinet";
    EXPECT_FALSE(ReadRoomPlace("500 118 200 0 0", objects));
    EXPECT_FALSE(ReadRoomPlace("180 118 -1 0 0", objects));
    EXPECT_FALSE(ReadRoomPlace("180 260 200 0 0", objects));
    EXPECT_TRUE(ReadRoomPlace("180 118 200 0 0", objects)) << "before the unit";
}

TEST_F(RoomPlace, IsRefusedWhereTheTextIsNone) {
    for (const char* const text : {"", " ", "180", "180 118 200 0", "180 118 200 0 0 0",
                                   "180 118 200 0 x", "180,5 118 200 0 0", "nan 118 200 0 0",
                                   "180 118 200 inf 0", "180 118  200 0 0", "180 118 200 0 0 "}) {
        EXPECT_FALSE(ReadRoomPlace(text, objects)) << text;
    }
}
