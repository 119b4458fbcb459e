// The mouse as a light gun, as a game sees it.
#include "front/plain_machine.h"
#include "front/window_rig.h"

#include <ostream>

namespace {

struct POINT {
    uint32_t x;
    uint32_t y;
    bool operator==(const POINT&) const = default;
};

std::ostream& operator<<(std::ostream& out, const POINT& point) {
    return out << '(' << point.x << ", " << point.y << ')';
}

constexpr POINT kNowhere{0, 0};

struct PLACE {
    int32_t x; // in the window
    int32_t y;
    POINT pixel; // of the whole picture
};

class WindowPointer : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        EmuSetMachines(PlainMachines());
        gPlainShape = {};
        gPlainInput.frames = 0;
    }

    // A picture is shown, and the machine's own, not static.
    static testing::AssertionResult PlayUntilShown(Application& application) {
        return RunUntil(application, [&] {
            return MiddleOf(application) == kPlainColour && gPlainInput.frames > 0;
        });
    }

    // Lets the machine see the change. The current frame may have begun before it.
    static testing::AssertionResult LetItSee(Application& application) {
        if (!application.Round()) {
            return testing::AssertionFailure() << "the program ended";
        }
        const uint32_t before = gPlainInput.frames;
        return RunUntil(application, [&] { return gPlainInput.frames >= before + 2; });
    }

    static POINT Seen(size_t player) {
        const uint64_t pointer = gPlainInput.pointers[player];
        return {static_cast<uint32_t>(pointer), static_cast<uint32_t>(pointer >> 32)};
    }
};

} // namespace

TEST_F(WindowTest, TheMouseOverThePictureIsALightGun) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame(), {"port1=phaser"}));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    SDL_Event move{};
    move.type = SDL_MOUSEMOTION;
    move.motion.x = 320;
    move.motion.y = 240;
    SDL_PushEvent(&move);
    SDL_Event press{};
    press.type = SDL_MOUSEBUTTONDOWN;
    press.button.button = SDL_BUTTON_LEFT;
    press.button.state = SDL_PRESSED;
    press.button.x = 320;
    press.button.y = 240;
    SDL_PushEvent(&press);
    EXPECT_TRUE(RunUntilColour(application, kBlue)) << "the trigger is button 1";
}

TEST_F(WindowTest, AClickWithinOneRoundPullsTheTrigger) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame(), {"port1=phaser"}));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    for (int click = 0; click < 3 && MiddleOf(application) == kRed; ++click) {
        PointAt(320, 240, true);
        PointAt(320, 240, false);
        ASSERT_TRUE(RunFrames(application, 6));
    }
    EXPECT_EQ(MiddleOf(application), kBlue);
}

TEST_F(WindowPointer, ThePointerIsInPixelsOfTheWholePictureInEveryView) {
    // The visible window of 256 by 192 begins at pixel (32, 24). In a window of 640 by 480, twice as wide
    // as high, it is 640 by 320 with 80 lines of black above and below: 2.5 by 1.667 screen pixels to one
    // of the picture. The whole of 320 by 240, square, is 480 by 480 with 80 columns of black beside it:
    // 1.5 by 2 screen pixels to one of the picture, the visible window's first at (128, 48) of the screen.
    const std::vector<PLACE> cropped = {
        {0,   80,  {32, 24}  },
        {2,   81,  {32, 24}  },
        {3,   82,  {33, 25}  },
        {0,   82,  {32, 25}  },
        {320, 240, {160, 120}},
        {639, 399, {287, 215}},
        {320, 79,  kNowhere  },
        {320, 400, kNowhere  },
    };
    const std::vector<PLACE> whole = {
        {128, 48,  {32, 24}  },
        {130, 50,  {33, 25}  },
        {128, 50,  {32, 25}  },
        {320, 240, {160, 120}},
        {511, 431, {287, 215}},
        {127, 240, kNowhere  }, // the picture's border
        {512, 240, kNowhere  },
        {320, 47,  kNowhere  },
        {320, 432, kNowhere  },
        {79,  240, kNowhere  }, // beside the picture
        {560, 240, kNowhere  },
    };
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame(), {"port1=phaser"}));
    ASSERT_TRUE(PlayUntilShown(application));
    for (const bool crop : {true, false}) {
        for (const PictureScaler scaler : {PictureScaler::kNone, PictureScaler::kEdge2x,
                                           PictureScaler::kEdge4x, PictureScaler::kSoft4x}) {
            application.SetView({scaler, false, crop, false});
            const uint64_t shown = application.Sets().PicturesShown();
            ASSERT_TRUE(
                RunUntil(application, [&] { return application.Sets().PicturesShown() > shown; }));
            for (const PLACE& place : crop ? cropped : whole) {
                // With the button held the mouse counts as in use even on a slow computer.
                PointAt(place.x, place.y, true);
                ASSERT_TRUE(LetItSee(application));
                EXPECT_EQ(Seen(0), place.pixel)
                    << place.x << ", " << place.y << (crop ? " cropped" : " whole") << ", scaler "
                    << static_cast<int>(scaler);
                EXPECT_EQ(Seen(1), kNowhere) << "no gun in the second port";
            }
        }
    }
}

// (0, 0) means that nobody points.
TEST_F(WindowPointer, ThePicturesFirstPixelCountsAsTheOneBesideIt) {
    gPlainShape.visibleX = 0;
    gPlainShape.visibleY = 0;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame(), {"port1=phaser"}));
    ASSERT_TRUE(PlayUntilShown(application));
    const std::vector<PLACE> places = {
        {0, 80, {1, 0}},
        {3, 80, {1, 0}},
        {0, 82, {0, 1}}
    };
    for (const PLACE& place : places) {
        PointAt(place.x, place.y, true);
        ASSERT_TRUE(LetItSee(application));
        EXPECT_EQ(Seen(0), place.pixel) << place.x << ", " << place.y;
    }
    EXPECT_TRUE(gPlainInput.trigger);
}

TEST_F(WindowPointer, EachPortWithAGunHasThePointer) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame(), {"port1=joypad", "port2=phaser"}));
    ASSERT_TRUE(PlayUntilShown(application));
    PointAt(320, 240, true);
    ASSERT_TRUE(LetItSee(application));
    EXPECT_EQ(Seen(0), kNowhere);
    EXPECT_EQ(Seen(1), (POINT{160, 120}));
    EXPECT_FALSE(gPlainInput.trigger) << "the first player's port has none";
}

TEST_F(WindowPointer, BesideThePictureFiresNothing) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame(), {"port1=phaser"}));
    ASSERT_TRUE(PlayUntilShown(application));
    PointAt(320, 79, true); // the black above it
    ASSERT_TRUE(LetItSee(application));
    EXPECT_FALSE(gPlainInput.trigger);
    PointAt(320, 80, true);
    ASSERT_TRUE(LetItSee(application));
    EXPECT_TRUE(gPlainInput.trigger) << "the picture's first line";
    PointAt(320, 400, true);
    ASSERT_TRUE(LetItSee(application));
    EXPECT_FALSE(gPlainInput.trigger) << "gone below it with the button held";

    application.SetView({PictureScaler::kNone, false, false, false});
    PointAt(127, 240, true); // the border of the picture
    ASSERT_TRUE(LetItSee(application));
    EXPECT_FALSE(gPlainInput.trigger);
    PointAt(128, 240, true);
    ASSERT_TRUE(LetItSee(application));
    EXPECT_TRUE(gPlainInput.trigger);
    PointAt(128, 240, false);
    ASSERT_TRUE(LetItSee(application));
    EXPECT_FALSE(gPlainInput.trigger);
}
