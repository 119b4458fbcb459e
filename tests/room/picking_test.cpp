#include "room/picking.h"
#include "room/room_camera.h"
#include "room/room_objects.h"

#include <gtest/gtest.h>

namespace {

// Ids in the order of placing: 1 table, 2 couch, 3 unit, 4 handheld, 5 flat set, 6 to 9 sets, 10 and 11 cabinets.
struct STANDPOINT {
    const char* what;
    VECTOR3 from;
    VECTOR3 at;
    uint32_t picked;
    uint32_t selected; // 0 for furniture
};

const STANDPOINT kStandpoints[] = {
    {"the second set from the front",     {180, 118, 300}, {183, 111, 75},    7, 7},
    {"the first set from its side",       {300, 118, 200}, {63, 111, 95},     6, 6},
    {"the fourth set",                    {420, 118, 300}, {423, 111, 65},    9, 9},
    {"the unit below the sets",           {180, 118, 300}, {183, 30, 137},    3, 0},
    {"the handheld from above",           {320, 130, 396}, {320, 50.5F, 395}, 4, 4},
 // Where the flat set's box is with its axes exchanged: x 300..318.5, z 0..200.
    {"the flat set's exchanged box",      {309, 200, 300}, {309, 180, 180},   5, 5},
 // The flat set itself, on the wall x 0, has no box there.
    {"the wall where the flat set hangs", {200, 118, 560}, {5, 118, 420},     0, 0},
 // A box turned by 180 degrees is empty.
    {"a cabinet",                         {92, 100, 600},  {92, 100, 760},    0, 0},
    {"the couch's exchanged box",         {340, 118, 700}, {340, 40, 560},    2, 0},
    {"the ceiling",                       {250, 118, 500}, {250, 258, 501},   0, 0},
};

TEST(Picking, FindsWhatTheMiddleOfTheScreenShows) {
    CRoomObjects objects;
    objects.Build(nullptr);
    for (const STANDPOINT& row : kStandpoints) {
        SCOPED_TRACE(row.what);
        CRoomCamera camera;
        camera.SetUp(1.5F, row.from, row.at);
        const CRoomObject* const object = PickObject(objects, camera);
        EXPECT_EQ(object != nullptr ? object->id : 0, row.picked);
        EXPECT_EQ(LookAt(objects, camera).id, row.selected);
    }
}

// A table and a set on the floor behind it, 200 units further on: the one that was placed later wins.
TEST(Picking, TheListDecidesAndNotTheDistance) {
    CRoomCamera camera;
    camera.SetUp(1.5F, {288, 40, 205}, {288, 40, 700});
    CRoomObjects objects;
    objects.Build(nullptr);
    static_cast<void>(objects.AddObject(100, 250.0F, 600.0F, 0.0F));
    const uint32_t nearTable = objects.AddObject(105, 240.0F, 400.0F, 0.0F);
    EXPECT_EQ(PickObject(objects, camera)->id, nearTable);

    objects.Build(nullptr);
    static_cast<void>(objects.AddObject(105, 240.0F, 400.0F, 0.0F));
    const uint32_t farSet = objects.AddObject(100, 250.0F, 600.0F, 0.0F);
    EXPECT_EQ(PickObject(objects, camera)->id, farSet) << "though the table is in the way";
}

TEST(Picking, TellsTheScreensStateDirectionAndFocus) {
    CRoomObjects objects;
    objects.Build(nullptr);
    CRoomCamera camera;
    camera.SetUp(1.5F, {180, 118, 300}, {183, 111, 75});
    EXPECT_FALSE(LookAt(objects, camera).on);
    objects.Attach(7, {});
    const LOOKED_AT lookedAt = LookAt(objects, camera);
    EXPECT_TRUE(lookedAt.on);
    EXPECT_EQ(lookedAt.direction, (VECTOR3{0, 0, 1}));
    EXPECT_EQ(lookedAt.focus, (VECTOR3{145 + 38.5F, 100, 40 + 35}));
}

} // namespace
