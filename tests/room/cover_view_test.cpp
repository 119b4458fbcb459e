#include "room/cover_view.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr uint32_t kWidth = 540; // twice the grid's units when two rows fill the view
constexpr uint32_t kHeight = 520;

class Covers : public testing::Test {
protected:
    Covers() {
        covers.SetSize(kWidth, kHeight);
        covers.SetCovers(std::vector<int>{0, 1, 0, 0, -1, 1}, false);
    }
    // The pixel that shows a point of the boxes' plane in the overview of two rows: the view is centred on
    // (135, 0). The rectangle is a little wider than 270 by 260, so the height fills it: 2 pixels a unit.
    void ClickOverview(int button, float x, float y) {
        covers.CoverClick(button, static_cast<int32_t>(std::lround(270.0F + (x - 135.0F) * 2.0F)),
                          static_cast<int32_t>(std::lround(260.0F - y * 2.0F)));
    }
    CoverView covers;
};

TEST_F(Covers, StandInAGridOfThreeColumns) {
    EXPECT_EQ(CoverView::PlaceOf(0), (VECTOR3{45, 65, 0}));
    EXPECT_EQ(CoverView::PlaceOf(2), (VECTOR3{225, 65, 0}));
    EXPECT_EQ(CoverView::PlaceOf(4), (VECTOR3{135, -65, 0}));
}

// 130 units above and below the middle at 45 degrees: 130 / tan 22.5 = 313.85.
TEST_F(Covers, TheOverviewSeesTheRowsInUse) {
    EXPECT_NEAR(covers.Camera().Position().x, 135.0F, 0.01F);
    EXPECT_NEAR(covers.Camera().Position().y, 0.0F, 0.01F);
    EXPECT_NEAR(covers.Camera().Position().z, 313.85F, 0.01F);
    covers.SetSize(1000, 400);
    covers.SetCovers(std::vector<int>{0}, false);
    EXPECT_NEAR(covers.Camera().Position().y, 65.0F, 0.01F);
    EXPECT_NEAR(covers.Camera().Position().z, 156.92F, 0.01F);
}

// Cells of 90 by 130: two of them are 180 wide, which a view of 4 to 3 shows from 180 / (4/3) / 2 / tan 22.5.
TEST_F(Covers, TheOverviewIsCentredOnTheColumnsInUse) {
    covers.SetSize(400, 300);
    covers.SetCovers(std::vector<int>{0}, false);
    EXPECT_NEAR(covers.Camera().Position().x, 45.0F, 0.01F);
    covers.SetCovers(std::vector<int>{0, 0}, false);
    EXPECT_NEAR(covers.Camera().Position().x, 90.0F, 0.01F);
    EXPECT_NEAR(covers.Camera().Position().z, 162.96F, 0.01F);
    covers.SetCovers(std::vector<int>{-1, 0}, false);
    EXPECT_NEAR(covers.Camera().Position().x, 135.0F, 0.01F);
    covers.SetCovers(std::vector<int>{-1, 0}, true);
    EXPECT_NEAR(covers.Camera().Position().x, 90.0F, 0.01F) << "the cabinet is at the left";
    covers.SetCovers(std::vector<int>{}, false);
    EXPECT_NEAR(covers.Camera().Position().x, 135.0F, 0.01F) << "of the whole grid";
}

TEST_F(Covers, ANarrowViewStepsBackUntilAllColumnsFit) {
    covers.SetSize(270, 520);
    EXPECT_NEAR(covers.Camera().Position().z, 270.0F / 2.0F / 0.41421F / (270.0F / 520.0F), 0.1F);
}

TEST_F(Covers, AClickZoomsToTheBoxAndOutAgain) {
    ClickOverview(1, 135, 65); // slot 1
    EXPECT_EQ(covers.Zoomed(), 1U);
    EXPECT_NEAR(covers.Camera().Position().x, 135.0F, 0.01F);
    EXPECT_NEAR(covers.Camera().Position().y, 65.0F, 0.01F);
    EXPECT_NEAR(covers.Camera().Position().z, 156.92F, 0.01F); // 65 / tan 22.5
    covers.CoverClick(1, kWidth / 2, kHeight / 2);
    EXPECT_EQ(covers.Zoomed(), kMostCovers);
    EXPECT_NEAR(covers.Camera().Position().z, 313.85F, 0.01F);
}

// A box of kind 0 is 72 by 103 in a cell of 90 by 130: 9 units to each side and 13.5 above and below.
TEST_F(Covers, OnlyTheBoxItselfIsHit) {
    ClickOverview(1, 45 - 37.5F, 65);
    EXPECT_EQ(covers.Zoomed(), kMostCovers);
    ClickOverview(1, 45, 65 + 52.5F);
    EXPECT_EQ(covers.Zoomed(), kMostCovers);
    ClickOverview(1, 45 - 35, 65 + 50);
    EXPECT_EQ(covers.Zoomed(), 0U);
}

// Kind 1 is 100 high: 50 above its middle, where kind 0 has 51.5.
TEST_F(Covers, TheBoxesSizeGoesByItsKind) {
    ClickOverview(1, 135, 65 + 51);
    EXPECT_EQ(covers.Zoomed(), kMostCovers);
    ClickOverview(1, 45, 65 + 51);
    EXPECT_EQ(covers.Zoomed(), 0U);
}

TEST_F(Covers, ASlotWithoutACoverIsNotHit) {
    ClickOverview(1, 135, -65);
    EXPECT_EQ(covers.Zoomed(), kMostCovers);
    EXPECT_EQ(covers.Slots()[4].kind, kNoCover);
}

// 300 degrees a second: 0.5 s is 150, 0.6 s is 180 and stops exactly.
TEST_F(Covers, AFlipStopsAtTheBackAndAtTheFront) {
    ClickOverview(2, 45, 65);
    covers.Update(0.5F);
    EXPECT_NEAR(covers.Slots()[0].turn, 150.0F, 0.01F);
    EXPECT_TRUE(covers.Slots()[0].flipping);
    covers.Update(0.2F);
    EXPECT_EQ(covers.Slots()[0].turn, 180.0F);
    EXPECT_FALSE(covers.Slots()[0].flipping);
    covers.Update(1.0F);
    EXPECT_EQ(covers.Slots()[0].turn, 180.0F);
    ClickOverview(2, 45, 65);
    covers.Update(0.3F);
    EXPECT_NEAR(covers.Slots()[0].turn, 270.0F, 0.01F);
    covers.Update(5.0F);
    EXPECT_EQ(covers.Slots()[0].turn, 0.0F);
    EXPECT_EQ(covers.Slots()[1].turn, 0.0F) << "the others stay";
}

TEST_F(Covers, NewCoversEndFlipsAndZoom) {
    ClickOverview(1, 45, 65);
    covers.CoverClick(2, kWidth / 2, kHeight / 2);
    covers.Update(0.1F);
    covers.SetCovers(std::vector<int>{0, 7, -5, 0, 0, 0, 0, 0}, true);
    EXPECT_EQ(covers.Zoomed(), kMostCovers);
    EXPECT_EQ(covers.Slots()[0].turn, 0.0F);
    EXPECT_EQ(covers.Slots()[1].kind, kNoCover) << "an unknown kind";
    EXPECT_EQ(covers.Slots()[2].kind, kNoCover);
    EXPECT_TRUE(covers.HasCabinet());
}

TEST_F(Covers, TheLeanIsCut) {
    covers.Lean(10.0F, -10.0F);
    EXPECT_NEAR(covers.Camera().Position().x, 138.0F, 0.001F);
    EXPECT_NEAR(covers.Camera().Position().y, -0.8F, 0.001F);
}

// Slot 4 has no box.
TEST_F(Covers, AreLookedAtOneAfterTheOtherWithoutAPointer) {
    for (const size_t slot : {size_t{0}, size_t{1}, size_t{2}, size_t{3}, size_t{5}}) {
        covers.LookCloser();
        EXPECT_EQ(covers.Zoomed(), slot);
        EXPECT_NEAR(covers.Camera().Position().x, CoverView::PlaceOf(slot).x, 0.01F);
    }
    covers.LookCloser();
    EXPECT_EQ(covers.Zoomed(), kMostCovers);
    EXPECT_NEAR(covers.Camera().Position().z, 313.85F, 0.01F);
    covers.SetCovers({}, false);
    covers.LookCloser();
    EXPECT_EQ(covers.Zoomed(), kMostCovers) << "there is none";
}

TEST_F(Covers, WhatIsLookedAtIsTurnedOver) {
    covers.LookCloser();
    covers.LookCloser();
    covers.TurnOver();
    for (size_t slot = 0; slot < kMostCovers; ++slot) {
        EXPECT_EQ(covers.Slots()[slot].flipping, slot == 1) << slot;
    }
    covers.SetCovers(std::vector<int>{0, 1, 0}, false);
    covers.TurnOver();
    for (size_t slot = 0; slot < kMostCovers; ++slot) {
        EXPECT_EQ(covers.Slots()[slot].flipping, slot < 3) << slot << ", of all";
    }
}

} // namespace
