#include "host/host_fixture.h"

#include <cmath>
#include <random>
#include <vector>

namespace {

// A clock as bad as a busy desktop's: every read takes a little time, and a sleep up to one and a half milliseconds too
// long.
std::mt19937 gRandom;
int64_t gTime = 0;
std::vector<uint32_t> gSleeps; // microseconds of each
uint32_t gReads = 0;

int64_t Draw(int64_t most) {
    return static_cast<int64_t>(gRandom() % static_cast<uint32_t>(most + 1));
}

int64_t NoisyNow() {
    return gTime += Draw(3);
}

void NoisySleep(uint32_t microseconds) {
    gTime += microseconds + Draw(1500);
}

// An exact clock: it advances only by sleeps, and by one microsecond for each read.
int64_t ExactNow() {
    ++gReads;
    return gTime++;
}

void ExactSleep(uint32_t microseconds) {
    gSleeps.push_back(microseconds);
    gTime += microseconds;
}

// Wakes early, as after a signal.
void ShortSleep(uint32_t microseconds) {
    ExactSleep(std::min(microseconds, 2000U));
}

class Pacing : public HostTest {
public:
    ~Pacing() override { HostClose(&session); }

protected:
    Pacing() {
        gRandom.seed(7);
        gTime = 1000000;
        gSleeps.clear();
        gReads = 0;
        session.frameWidth = 16;
        session.frameHeight = 16;
    }

    void Open(const HOST_CLOCK& clock) {
        HostSetClock(clock);
        HostOpen(&session);
        data = session.hostData;
    }

    EMU_THREAD session;
    EMU_HOST_DATA* data = nullptr;
};

} // namespace

TEST_F(Pacing, WaitIsLengthBiasAndOvershoot) {
    EXPECT_EQ(PaceWait(16667, 0, 0), 16667u);
    EXPECT_EQ(PaceWait(16667, -1, 0), 16467u);
    EXPECT_EQ(PaceWait(16667, 1, 0), 16867u);
    EXPECT_EQ(PaceWait(16667, 0, 667), 16000u);
    EXPECT_EQ(PaceWait(16667, -1, 467), 16000u);
}

TEST_F(Pacing, AnOvershootAboveTheLengthLeavesNoWait) {
    EXPECT_EQ(PaceWait(1000, 0, 1000), 0u);
    EXPECT_EQ(PaceWait(1000, 0, 1001), 0u);
    EXPECT_EQ(PaceWait(1000, -1, UINT32_MAX), 0u);
}

TEST_F(Pacing, OnlyOneToFiftyMillisecondsArePaced) {
    EXPECT_FALSE(IsPacedLength(0));
    EXPECT_FALSE(IsPacedLength(999));
    EXPECT_TRUE(IsPacedLength(1000));
    EXPECT_TRUE(IsPacedLength(50000));
    EXPECT_FALSE(IsPacedLength(50001));
    EXPECT_FALSE(IsPacedLength(UINT32_MAX));
}

TEST_F(Pacing, OtherLengthsSleepFiveMillisecondsAndPublishNothing) {
    Open({ExactNow, ExactSleep});
    const EMU_VIDEO_FRAME* const before = HostGetVideoFrame(&session);
    for (const uint32_t length : {0u, 999u, 50001u}) {
        HostPresent(&session, length);
    }
    EXPECT_EQ(gSleeps, (std::vector<uint32_t>{5000, 5000, 5000}));
    EXPECT_EQ(HostGetVideoFrame(&session), before);
    EXPECT_EQ(data->overshoot, 0u);
    HostPresent(&session, 1000);
    EXPECT_NE(HostGetVideoFrame(&session), before);
}

TEST_F(Pacing, TimeCountsFromOpening) {
    Open({ExactNow, ExactSleep});
    EXPECT_EQ(data->lastFrameTime, 1000000);
    HostPresent(&session, 10000);
    EXPECT_GE(data->lastFrameTime, 1010000);
    EXPECT_LT(data->lastFrameTime, 1010020);
    EXPECT_EQ(data->overshoot, data->lastFrameTime - 1010000);
}

// The exact clock: one sleep until 60 microseconds before the end, and a read for each of those.
TEST_F(Pacing, SleepsOnceThenPolls) {
    Open({ExactNow, ExactSleep});
    data->lastFrameTime = gTime;
    gReads = 0;
    PaceFrame(*data, 5000);
    EXPECT_EQ(gSleeps, std::vector<uint32_t>{4940});
    EXPECT_EQ(gReads, 61u);
    EXPECT_EQ(data->overshoot, 0u);
}

TEST_F(Pacing, ASleepThatEndsEarlyIsTakenUpAgain) {
    Open({ExactNow, ShortSleep});
    data->lastFrameTime = gTime;
    PaceFrame(*data, 5000);
    EXPECT_EQ(gSleeps, (std::vector<uint32_t>{2000, 2000, 938})); // less the two reads between
    EXPECT_EQ(data->overshoot, 0u);
}

TEST_F(Pacing, TheBoundOfSleepingIsExact) {
    Open({ExactNow, ExactSleep});
    data->lastFrameTime = gTime;
    PaceFrame(*data, 60);
    EXPECT_TRUE(gSleeps.empty());
    data->lastFrameTime = gTime;
    PaceFrame(*data, 61);
    EXPECT_EQ(gSleeps, std::vector<uint32_t>{1});
}

TEST_F(Pacing, ALongDelayIsForgivenAfterOneFrame) {
    Open({ExactNow, ExactSleep});
    gTime += 100000000; // the computer stopped for a hundred seconds
    HostPresent(&session, 16667);
    EXPECT_GT(data->overshoot, 99000000u);
    gTime += 3000;
    HostPresent(&session, 16667); // no wait at all
    EXPECT_LT(data->overshoot, 3100u);
}

TEST_F(Pacing, OvershootIsBoundedByItsWord) {
    Open({ExactNow, ExactSleep});
    gTime += int64_t{1} << 40;
    HostPresent(&session, 16667);
    EXPECT_EQ(data->overshoot, UINT32_MAX);
}

TEST_F(Pacing, MeanOverSixHundredFramesHoldsUnderANoisyClock) {
    for (const uint32_t length : {16683u, 20000u, 8333u}) {
        Open({NoisyNow, NoisySleep});
        const int64_t start = data->lastFrameTime;
        for (int frame = 0; frame < 600; ++frame) {
            gTime += 1000 + Draw(5000); // the machine's own work
            HostPresent(&session, length);
        }
        const double mean = static_cast<double>(data->lastFrameTime - start) / 600;
        EXPECT_LT(std::abs(mean - length) / length, 0.005) << length << ", mean " << mean;
        HostClose(&session);
    }
    Open({NoisyNow, NoisySleep});
}

TEST_F(Pacing, BiasMovesTheMeanByTwoHundredMicroseconds) {
    for (const int32_t bias : {-1, 1}) {
        Open({NoisyNow, NoisySleep});
        data->syncBias = bias;
        const int64_t start = data->lastFrameTime;
        for (int frame = 0; frame < 600; ++frame) {
            gTime += 1000 + Draw(5000);
            HostPresent(&session, 16683);
        }
        const double mean = static_cast<double>(data->lastFrameTime - start) / 600;
        EXPECT_NEAR(mean, 16683 + 200 * bias, 10) << bias;
        HostClose(&session);
    }
    Open({NoisyNow, NoisySleep});
}

TEST_F(Pacing, TheSteadyClockReturnsForNullMembers) {
    HostSetClock({nullptr, nullptr});
    const int64_t before = HostClock().nowMicroseconds();
    HostClock().sleepMicroseconds(1000);
    EXPECT_GE(HostClock().nowMicroseconds(), before + 1000);
}
