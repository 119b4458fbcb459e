#include "video/video_rate.h"

#include "facts/machine_facts.h"

#include <gtest/gtest.h>

namespace {

double Rate(uint32_t system, uint32_t pairs, uint32_t sampleRate) {
    const VIDEO_RATE rate = VideoRate(system, pairs, sampleRate);
    return static_cast<double>(rate.number) / rate.divisor;
}

} // namespace

// The published rates of the consoles, to their last digit.
TEST(VideoRate, IsTheConsolesOwn) {
    for (const uint32_t system :
         {kSystemMasterSystem, kSystemGameGear, kSystemMegaDrive, kSystemArcade}) {
        EXPECT_NEAR(Rate(system, 735, 44100), 59.9228, 0.0001);
        EXPECT_NEAR(Rate(system, 887, 44100), 49.7015, 0.0001);
    }
    EXPECT_NEAR(Rate(kSystemNes, 733, 44100), 60.0988, 0.0001);
}

// The first frame of a resampler is a few samples short.
TEST(VideoRate, FollowsTheSampleRate) {
    EXPECT_NEAR(Rate(kSystemMegaDrive, 770, 48000), 59.9228, 0.0001);
    EXPECT_NEAR(Rate(kSystemMegaDrive, 940, 48000), 49.7015, 0.0001);
    EXPECT_NEAR(Rate(kSystemMegaDrive, 3204, 192000), 59.9228, 0.0001);
}
