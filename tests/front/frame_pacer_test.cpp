#include "front/frame_pacer.h"

#include <gtest/gtest.h>

namespace {

constexpr int64_t kMillisecond = 1000;

// A round of this length that ends with a swap, from `now` on.
int64_t Swap(FramePacer& pacer, int64_t now, int64_t length) {
    pacer.CountSwap(now + length);
    pacer.EndRound(now + length);
    return now + length;
}

} // namespace

TEST(FramePacer, WithoutABeatOnlyNewsAreDrawn) {
    FramePacer pacer;
    pacer.Start(false, 0);
    EXPECT_TRUE(pacer.WantsDrawing(true)) << "the first picture";
    EXPECT_FALSE(pacer.WantsDrawing(false));
    Swap(pacer, 0, 16 * kMillisecond);
    EXPECT_FALSE(pacer.WantsDrawing(true));
    pacer.NoteNews();
    EXPECT_TRUE(pacer.WantsDrawing(true));
    EXPECT_FALSE(pacer.WantsDrawing(false)) << "nobody sees it";
}

TEST(FramePacer, ADisplayThatSetsTheBeatIsAlwaysDrawn) {
    FramePacer pacer;
    pacer.Start(true, 0);
    int64_t now = 0;
    for (int round = 0; round < 100; ++round) {
        now = Swap(pacer, now, 16 * kMillisecond);
        EXPECT_TRUE(pacer.WantsDrawing(true));
    }
    EXPECT_FALSE(pacer.WantsDrawing(false));
}

TEST(FramePacer, ABeatThatIsTooQuickToBeADisplaysIsNotFollowed) {
    FramePacer pacer;
    pacer.Start(true, 0);
    int64_t now = 0;
    for (int round = 0; round < 30; ++round) {
        now = Swap(pacer, now, 1 * kMillisecond);
    }
    EXPECT_TRUE(pacer.WantsDrawing(true));
    now = Swap(pacer, now, 2 * kMillisecond); // a swap that waited: the count restarts
    for (int round = 0; round < 30; ++round) {
        now = Swap(pacer, now, 1 * kMillisecond);
    }
    EXPECT_TRUE(pacer.WantsDrawing(true));
    Swap(pacer, now, 1 * kMillisecond);
    EXPECT_FALSE(pacer.WantsDrawing(true));
}

TEST(FramePacer, TheRateIsThatOfTheLastWholeSecond) {
    FramePacer pacer;
    pacer.Start(true, 0);
    EXPECT_EQ(pacer.RateText(), "");
    int64_t now = 0;
    for (int round = 0; round < 49; ++round) {
        now = Swap(pacer, now, 20 * kMillisecond);
    }
    EXPECT_EQ(pacer.RateText(), "");
    now = Swap(pacer, now, 20 * kMillisecond);
    EXPECT_EQ(pacer.RateText(), "50 frames/s");
    for (int round = 0; round < 24; ++round) {
        now = Swap(pacer, now, 40 * kMillisecond);
    }
    EXPECT_EQ(pacer.RateText(), "50 frames/s");
    Swap(pacer, now, 40 * kMillisecond);
    EXPECT_EQ(pacer.RateText(), "25 frames/s");
    EXPECT_FLOAT_EQ(pacer.FrameTimeSeconds(), 0.04f);
}
