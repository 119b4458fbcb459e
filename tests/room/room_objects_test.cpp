#include "room/model_3ds.h"
#include "room/room_objects.h"
#include "room/room_types.h"
#include "room/standpoint.h"

#include <gtest/gtest.h>

namespace {

struct PLACED {
    uint32_t id; // in the order of placing
    uint32_t type;
    VECTOR3 corner;
    VECTOR3 centre;
    VECTOR3 direction;
};

// Worked out by hand. The sets 6 to 9 stand on the unit (70 high), the handheld on the table (49), whose
// footprint is x 300..380 (its z and depth) and z 270..470 (its x and width). A centre is the corner and half the
// width, height and depth; at 90 and 270 width and depth change places.
const PLACED kPlaced[] = {
    {1,  105, {270, 0, 300},  {270 + 40, 24.5F, 300 + 100},    {0, 0, 0}     },
    {2,  104, {400, 0, 300},  {400 + 43, 35.1735F, 300 + 100}, {0, 0, 0}     },
    {3,  101, {0, 0, 0},      {250, 35, 68.5F},                {0, 0, 0}     },
    {4,  103, {310, 49, 390}, {320, 50.5F, 395.5F},            {0, 1, 0}     },
    {5,  106, {0, 0, 300},    {9.25F, 117.75F, 300 + 100},     {1, 0, 0}     },
    {6,  100, {25, 70, 60},   {25 + 38.5F, 70 + 41, 60 + 35},  {0, 0, 1}     },
    {7,  100, {145, 70, 40},  {145 + 38.5F, 70 + 41, 40 + 35}, {0, 0, 1}     },
    {8,  100, {265, 70, 30},  {265 + 38.5F, 70 + 41, 30 + 35}, {0, 0, 1}     },
    {9,  100, {385, 70, 30},  {385 + 38.5F, 70 + 41, 30 + 35}, {0, 0, 1}     },
    {10, 102, {50, 0, 715},   {50 + 42.5F, 90, 715 + 54.5F},   {0, -0.2F, -1}},
    {11, 102, {365, 0, 715},  {365 + 42.5F, 90, 715 + 54.5F},  {0, -0.2F, -1}},
};

class RoomObjects : public testing::Test {
protected:
    RoomObjects() { objects.Build(nullptr); }
    CRoomObjects objects;
};

void ExpectNear(VECTOR3 actual, VECTOR3 expected) {
    EXPECT_NEAR(actual.x, expected.x, 0.001F);
    EXPECT_NEAR(actual.y, expected.y, 0.001F);
    EXPECT_NEAR(actual.z, expected.z, 0.001F);
}

TEST_F(RoomObjects, StandWhereTheTableSays) {
    ASSERT_EQ(objects.All().size(), std::size(kPlaced));
    for (const PLACED& row : kPlaced) {
        SCOPED_TRACE(row.id);
        const CRoomObject* const object = objects.Find(row.id);
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(object->type->id, row.type);
        ExpectNear({object->x, object->y, object->z}, row.corner);
        ExpectNear(CentreOf(*object), row.centre);
        ExpectNear(object->direction, row.direction);
    }
}

TEST_F(RoomObjects, AreListedNewestFirst) {
    uint32_t expected = 11;
    for (const auto& object : objects.All()) {
        EXPECT_EQ(object->id, expected--);
    }
}

TEST_F(RoomObjects, EightTelevisionsHaveNineSlots) {
    const std::array<uint32_t, kTelevisionSlots> expected = {6, 7, 8, 9, 0, 10, 11, 4, 5};
    EXPECT_EQ(objects.Televisions(), expected);
}

TEST_F(RoomObjects, FootprintsExchangeTheirAxesWhenTurned) {
    const FOOTPRINT table = FootprintOf(*objects.Find(1)); // at (270, 300), 200 by 80, turned by 90
    EXPECT_EQ(table.left, 300.0F);
    EXPECT_EQ(table.right, 380.0F);
    EXPECT_EQ(table.front, 270.0F);
    EXPECT_EQ(table.back, 470.0F);
    const FOOTPRINT couch =
        FootprintOf(*objects.Find(2)); // at (400, 300), 200 by 86, turned by 270
    EXPECT_EQ(couch.left, 300.0F);
    EXPECT_EQ(couch.right, 386.0F);
    EXPECT_EQ(couch.front, 400.0F);
    EXPECT_EQ(couch.back, 600.0F);
    const FOOTPRINT cabinet =
        FootprintOf(*objects.Find(10)); // at (50, 715), 85 by 109, turned by 180
    EXPECT_EQ(cabinet.left, -35.0F);
    EXPECT_EQ(cabinet.right, -35.0F);
    EXPECT_EQ(cabinet.front, 606.0F);
    EXPECT_EQ(cabinet.back, 606.0F);
}

TEST_F(RoomObjects, LightsComeFromTheScreens) {
    ExpectNear(LightOf(*objects.Find(6)), {25 + 38.5F, 70 + 50, 60 + 54});
    ExpectNear(LightOf(*objects.Find(4)), {310 + 10, 49 + 2, 390 + 5});
    ExpectNear(LightOf(*objects.Find(5)), {0 + 100, 0, 300 + 118});
    // Turned round: from the far corner.
    ExpectNear(LightOf(*objects.Find(10)), {50 + 85 - 42, 135, 715 + 109 - 85});
}

TEST_F(RoomObjects, ATelevisionOverTwoObjectsTakesTheFirstOnesHeight) {
    // Over the table (49 high) and, placed later, a set: the newer one counts.
    const uint32_t below = objects.AddObject(100, 305.0F, 300.0F, 0.0F);
    const uint32_t above = objects.AddObject(103, 310.0F, 310.0F, 0.0F);
    EXPECT_EQ(objects.Find(below)->y, 49.0F);
    EXPECT_EQ(objects.Find(above)->y, 82.0F) << "the set's own height, not its place's";
}

TEST_F(RoomObjects, AnUnknownTypeIsNotPlaced) {
    EXPECT_EQ(objects.AddObject(107, 0.0F, 0.0F, 0.0F), 0U);
    EXPECT_EQ(objects.All().size(), std::size(kPlaced));
}

TEST_F(RoomObjects, ATypeWithoutAModelIsLeftOut) {
    objects.Build([](std::string_view file) {
        return file == "tv.3ds" ? nullptr : std::make_unique<Model_3DS>();
    });
    EXPECT_EQ(objects.FindType(100), nullptr);
    EXPECT_EQ(objects.All().size(), std::size(kPlaced) - 4);
    EXPECT_EQ(objects.Televisions()[0], 0U);
    EXPECT_NE(objects.Televisions()[8], 0U);
}

TEST_F(RoomObjects, APictureTurnsItsScreenOnUntilTheSessionEnds) {
    SESSION_PICTURE picture;
    picture.texture.glTexture = 7;
    picture.picture.width = 256;
    picture.colours.light = {0.5F, 0.25F, 0.75F};
    objects.Attach(6, picture);
    EXPECT_TRUE(objects.Find(6)->on);
    EXPECT_TRUE(objects.Find(6)->changed);
    EXPECT_EQ(objects.Find(6)->texture.glTexture, 7U);
    EXPECT_EQ(objects.Find(6)->picture.width, 256U);
    EXPECT_EQ(objects.Find(6)->colours.light[2], 0.75F);
    objects.Attach(99, picture);

    objects.TurnOff(6);
    EXPECT_FALSE(objects.Find(6)->on);
    EXPECT_EQ(objects.Find(6)->texture.glTexture, 0U);
    objects.TurnOff(99);
}

// Before each set: on the side that it faces, within the room, looking at its middle.
TEST_F(RoomObjects, EachSetHasAPlaceToSeeItFrom) {
    for (const uint32_t id : objects.Televisions()) {
        if (id == 0) {
            continue;
        }
        SCOPED_TRACE(id);
        const CRoomObject& set = *objects.Find(id);
        const STANDPOINT point = StandpointBefore(set);
        ExpectNear(point.at, CentreOf(set));
        EXPECT_EQ(point.from.y, 118.0F);
        const VECTOR3 way = point.from - point.at;
        if (set.direction.y > 0.5F) { // the handheld lies on the table
            EXPECT_GT(way.y, 0.0F);
            EXPECT_GT(way.z, 0.0F) << "its upper edge is away from the player";
        } else {
            EXPECT_GT(way.x * set.direction.x + way.z * set.direction.z, 100.0F);
        }
        EXPECT_GE(point.from.x, 2.0F);
        EXPECT_LE(point.from.x, 498.0F);
        EXPECT_GE(point.from.z, 2.0F);
        EXPECT_LE(point.from.z, 798.0F);
    }
}

} // namespace
