#include "display/gl_private.h"
#include "display/screen_reader.h"
#include "room/cover_view_draw.h"
#include "room/room_fixture.h"
#include "room/room_renderer.h"

namespace {

constexpr uint32_t kWide = 128;
constexpr uint32_t kHigh = 96;
constexpr COVER_RECTANGLE kAt{20, 8, 90, 60};

class CoverPictures : public RoomGlTest {
protected:
    void SetUp() override {
        RoomGlTest::SetUp();
        files = RoomOfBoxes(1, 16);
        Settings().SetBool(L"app_lighting", false); // so that colours are those of the images
        renderer.InitRoom(Services());
        view.SetSize(kAt.width, kAt.height);
    }

    void TearDown() override {
        renderer.Release();
        RoomGlTest::TearDown();
    }

    void Cover(size_t slot, uint32_t colour, uint32_t width = 8, uint32_t height = 6) {
        const std::vector<uint32_t> pixels(size_t{width} * height, colour);
        renderer.SetCover(slot, pixels.data(), width, height);
    }

    std::vector<uint32_t> Draw() {
        ClearScreen(kWhite);
        Ortho2D(kWide, kHigh);
        renderer.DrawCovers(view, kAt, seen, kWide, kHigh);
        return ReadScreen(kWide, kHigh);
    }

    // Where the middle of a slot's box is seen.
    uint32_t BoxColour(const std::vector<uint32_t>& screen, size_t slot) const {
        const VECTOR3 eye = TransformPoint(view.Camera().View(), CoverView::PlaceOf(slot));
        const MATRIX4 projection = view.Camera().Projection();
        const float x = (projection[0] * eye.x / -eye.z + 1) / 2;
        const float y = (1 - projection[5] * eye.y / -eye.z) / 2;
        const auto column = static_cast<uint32_t>(kAt.x + x * kAt.width);
        const auto row = static_cast<uint32_t>(kAt.y + y * kAt.height);
        EXPECT_LT(column, kWide);
        EXPECT_LT(row, kHigh);
        return screen[size_t{row} * kWide + column];
    }

    RoomRenderer renderer;
    CoverView view;
    COVER_RECTANGLE seen = kAt;
};

TEST_F(CoverPictures, EachBoxShowsItsOwnCover) {
    const std::vector<int> kinds{0, 1, 0, 1, 0, 1};
    const std::vector<uint32_t> colours{kRed, kGreen, kBlue, 0xFFFF00FF, 0xFF00FFFF, 0xFFFFFF00};
    view.SetCovers(kinds, false);
    for (size_t i = 0; i < colours.size(); ++i) {
        Cover(i, colours[i]);
    }
    const std::vector<uint32_t> screen = Draw();
    for (size_t i = 0; i < colours.size(); ++i) {
        EXPECT_EQ(BoxColour(screen, i), colours[i]) << i;
    }
}

TEST_F(CoverPictures, SlotWithoutAKindIsNotDrawn) {
    view.SetCovers(std::vector<int>{0, kNoCover, 1}, false);
    for (size_t i = 0; i < 3; ++i) {
        Cover(i, kRed);
    }
    const std::vector<uint32_t> screen = Draw();
    EXPECT_EQ(BoxColour(screen, 0), kRed);
    EXPECT_EQ(BoxColour(screen, 1), kWhite);
    EXPECT_EQ(BoxColour(screen, 2), kRed);
}

TEST_F(CoverPictures, BoxWithoutACoverHasItsOwnImage) {
    view.SetCovers(std::vector<int>{0, 0}, false);
    Cover(0, kRed);
    const std::vector<uint32_t> screen = Draw();
    EXPECT_EQ(BoxColour(screen, 0), kRed);
    EXPECT_NE(BoxColour(screen, 1), kRed);
    EXPECT_NE(BoxColour(screen, 1), kWhite);
    renderer.SetCover(0, nullptr, 0, 0);
    const uint32_t again = BoxColour(Draw(), 0); // the same image, seen from another side
    EXPECT_NEAR(again & 0xFF, BoxColour(screen, 1) & 0xFF, 4);
}

TEST_F(CoverPictures, NothingOutsideTheRectangleIsTouched) {
    view.SetCovers(std::vector<int>{0, 0, 0, 0, 0, 0}, true);
    for (size_t i = 0; i < kMostCovers; ++i) {
        Cover(i, kRed);
    }
    view.CoverClick(1, 45, 15); // close to one box, so that it fills the view and others leave it
    const std::vector<uint32_t> screen = Draw();
    size_t inside = 0;
    for (uint32_t y = 0; y < kHigh; ++y) {
        for (uint32_t x = 0; x < kWide; ++x) {
            const bool within = x >= 20 && x < 110 && y >= 8 && y < 68;
            const uint32_t colour = screen[size_t{y} * kWide + x];
            if (within) {
                inside += colour != kWhite ? 1 : 0;
            } else {
                ASSERT_EQ(colour, kWhite) << x << " " << y;
            }
        }
    }
    EXPECT_GT(inside, 500U);
}

TEST_F(CoverPictures, ACoveredPartOfTheWindowIsNotDrawn) {
    view.SetCovers(std::vector<int>{0, 0, 0}, false);
    for (size_t i = 0; i < 3; ++i) {
        Cover(i, kRed);
    }
    const std::vector<uint32_t> whole = Draw();
    seen = {50, 20, 30, 40};
    const std::vector<uint32_t> part = Draw();
    for (uint32_t y = 0; y < kHigh; ++y) {
        for (uint32_t x = 0; x < kWide; ++x) {
            const bool within = x >= 50 && x < 80 && y >= 20 && y < 60;
            const size_t at = size_t{y} * kWide + x;
            ASSERT_EQ(part[at], within ? whole[at] : kWhite) << x << " " << y;
        }
    }
}

TEST_F(CoverPictures, CoversOutliveTheContext) {
    view.SetCovers(std::vector<int>{0, 1}, false);
    Cover(0, kRed);
    Cover(1, kGreen);
    const std::vector<uint32_t> before = Draw();
    renderer.Release();
    renderer.InitRoom(Services());
    EXPECT_EQ(Draw(), before);
}

TEST_F(CoverPictures, TurnedBoxShowsItsOtherSide) {
    view.SetCovers(std::vector<int>{0}, false);
    Cover(0, kRed);
    EXPECT_EQ(BoxColour(Draw(), 0), kRed);
    view.CoverClick(2, 45, 30); // the middle, as it is alone
    ASSERT_TRUE(view.Slots()[0].flipping);
    view.Update(1.0f);
    ASSERT_EQ(view.Slots()[0].turn, 180.0f);
    const uint32_t back = BoxColour(Draw(), 0);
    EXPECT_NE(back, kRed) << "only the front of this box has the cover";
    EXPECT_NE(back, kWhite);
}

TEST_F(CoverPictures, CabinetStandsBehindTheBoxes) {
    view.SetCovers(std::vector<int>{0}, false);
    const std::vector<uint32_t> without = Draw();
    view.SetCovers(std::vector<int>{0}, true);
    const std::vector<uint32_t> with = Draw();
    EXPECT_NE(with, without);
    EXPECT_EQ(BoxColour(with, 0), BoxColour(without, 0));
}

TEST_F(CoverPictures, LargeImageIsReduced) {
    view.SetCovers(std::vector<int>{0}, false);
    Cover(0, kBlue, 2500, 1100);
    EXPECT_EQ(BoxColour(Draw(), 0), kBlue);
}

TEST_F(CoverPictures, SmallerImageLeavesNothingOfALargerOne) {
    view.SetCovers(std::vector<int>{0}, false);
    Cover(0, kGreen, 64, 64);
    Cover(0, kRed, 9, 7);
    const std::vector<uint32_t> screen = Draw();
    for (const uint32_t colour : screen) {
        EXPECT_FALSE((colour >> 8 & 0xFF) > 0x80 && (colour & 0xFF0000) == 0) << colour;
    }
}

TEST_F(CoverPictures, LampLightsThem) {
    Settings().SetBool(L"app_lighting", true);
    view.SetCovers(std::vector<int>{0, 0, 0}, false);
    for (size_t i = 0; i < 3; ++i) {
        Cover(i, 0xFF808080);
    }
    const std::vector<uint32_t> screen = Draw();
    const uint32_t middle = BoxColour(screen, 1) & 0xFF;
    const uint32_t left = BoxColour(screen, 0) & 0xFF;
    const uint32_t right = BoxColour(screen, 2) & 0xFF;
    // The lamp is at (155, 100, 120); the middle of the front at (135, 65, 5.5): d 121.4, attenuation
    // 1 / (1 + 0.0061 + 0.1179) = 0.8897, cosine 114.5 / 121.4 = 0.943. The cover of 0.502 shows
    // 0.502 * (0.5 * 0.8897 + 0.6 * 0.943 * 0.8897) = 0.476. The mirrored ray has the same cosine to the eye,
    // which is straight before the box: its gloss of 0.502 and 12 adds 0.5 * 0.502 * 0.943^12 * 0.8897 = 0.111.
    EXPECT_NEAR(middle, 0.587 * 255, 3);
    EXPECT_LT(right, middle);
    EXPECT_LT(left, right) << "the lamp is right of the middle";
}

} // namespace
