#include "audio/sound_ring.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

std::vector<int16_t> Counting(size_t count, int first) {
    std::vector<int16_t> samples(count);
    std::iota(samples.begin(), samples.end(), static_cast<int16_t>(first));
    return samples;
}

std::vector<int16_t> ReadBack(const SoundRing& ring, uint32_t position, size_t count) {
    std::vector<int16_t> samples(count);
    ring.Read(position, samples);
    return samples;
}

} // namespace

TEST(SoundRing, HoldsOneSecond) {
    EXPECT_EQ(SoundRing(2, 44100).LengthBytes(), 44100u * 4);
    EXPECT_EQ(SoundRing(1, 44100).LengthBytes(), 44100u * 2);
    EXPECT_EQ(SoundRing(1, 192000).FrameBytes(), 2u);
}

TEST(SoundRing, MillisecondsAreWholeBytes) {
    EXPECT_EQ(SoundRing(2, 44100).BytesPerMs(), 176u); // 176.4
    EXPECT_EQ(SoundRing(1, 44100).BytesPerMs(), 88u);
    EXPECT_EQ(SoundRing(2, 48000).BytesPerMs(), 192u);
}

TEST(SoundRing, WriteWrapsInTwoPieces) {
    SoundRing ring(2, 8000);
    const std::vector<int16_t> samples = Counting(10, 100);
    ring.Write(8000 * 4 - 8, samples);
    EXPECT_EQ(ReadBack(ring, 8000 * 4 - 8, 10), samples);
    EXPECT_EQ(ReadBack(ring, 0, 6), Counting(6, 104));
    ring.WriteSilence(8000 * 4 - 4, 8);
    EXPECT_EQ(ReadBack(ring, 8000 * 4 - 8, 6), (std::vector<int16_t>{100, 101, 0, 0, 0, 0}));
    EXPECT_EQ(ReadBack(ring, 4, 2), Counting(2, 106));
}

TEST(SoundRing, PositionsAreRoundedDownToAFrame) {
    SoundRing ring(2, 8000);
    EXPECT_EQ(ring.Wrap(4411), 4408u);
    EXPECT_EQ(ring.Wrap(32000 + 7), 4u);
    ring.SetPosition(13);
    EXPECT_EQ(ring.Cursors().play, 12u);
}

TEST(SoundRing, LongerWritesThanTheRingStayInside) {
    SoundRing ring(1, 1000);
    ring.Write(500, Counting(5000, 0));
    ring.WriteSilence(1998, 100000);
    EXPECT_EQ(ReadBack(ring, 0, 1000), std::vector<int16_t>(1000, 0));
}

TEST(SoundRing, PlayCursorIsWhatWasHeardAndWrapsRound) {
    SoundRing ring(2, 8000);
    ring.Play();
    const uint32_t epoch = ring.View().epoch;
    std::vector<int16_t> block(2000);
    for (uint32_t pull = 1; pull <= 20; ++pull) {
        ASSERT_TRUE(ring.Take(epoch, block));
        EXPECT_EQ(ring.Cursors().play, (pull - 1) * 4000 % 32000);
        ring.Heard(epoch, 1000);
        EXPECT_EQ(ring.Cursors().play, pull * 4000 % 32000);
    }
}

TEST(SoundRing, NothingIsHeardThatWasNotTaken) {
    SoundRing ring(1, 8000);
    ring.Play();
    ring.Heard(ring.View().epoch, 100);
    EXPECT_EQ(ring.Cursors().play, 0u);
}

TEST(SoundRing, WriteCursorCoversWhatTheDeviceHasOrMayTake) {
    SoundRing ring(2, 8000);
    ring.Play();
    ring.SetReserveFrames(100);
    EXPECT_EQ(ring.Cursors().write, 400u);
    std::vector<int16_t> block(300);
    (void)ring.Take(ring.View().epoch, block);
    EXPECT_EQ(ring.Cursors().write, 600u);
    ring.Heard(ring.View().epoch, 100);
    EXPECT_EQ(ring.Cursors().play, 400u);
    EXPECT_EQ(ring.Cursors().write, 800u);
}

TEST(SoundRing, ReserveLeavesHalfTheRingToThePump) {
    SoundRing ring(2, 8000);
    ring.SetReserveFrames(0xFFFFFFFF);
    EXPECT_EQ(ring.Cursors().write, 16000u);
}

TEST(SoundRing, StoppedRingPlaysSilenceAndKeepsItsPosition) {
    SoundRing ring(1, 8000);
    ring.Write(0, Counting(100, 1));
    std::vector<int16_t> block(10, 77);
    EXPECT_FALSE(ring.Take(ring.View().epoch, block));
    EXPECT_EQ(block, std::vector<int16_t>(10, 0));
    ring.Heard(ring.View().epoch, 10);
    EXPECT_EQ(ring.Cursors().play, 0u);
}

TEST(SoundRing, NewPositionDropsWhatTheDeviceHad) {
    SoundRing ring(1, 8000);
    ring.Play();
    const uint32_t before = ring.View().epoch;
    std::vector<int16_t> block(10);
    (void)ring.Take(before, block);
    ring.SetPosition(200);
    ring.Heard(before, 10);
    EXPECT_EQ(ring.Cursors().play, 200u);
    EXPECT_EQ(ring.Cursors().write, 200u);
    EXPECT_FALSE(ring.Take(before, block));
    EXPECT_TRUE(ring.Take(ring.View().epoch, block));
}

TEST(SoundRing, StartingTwiceKeepsPlaying) {
    SoundRing ring(1, 8000);
    ring.Play();
    const uint32_t epoch = ring.View().epoch;
    ring.Play();
    EXPECT_EQ(ring.View().epoch, epoch);
    EXPECT_TRUE(ring.Playing());
    ring.Stop();
    EXPECT_FALSE(ring.Playing());
    EXPECT_NE(ring.View().epoch, epoch);
}

TEST(SoundRing, DistanceGoesRoundTheRing) {
    const SoundRing ring(1, 8000);
    EXPECT_EQ(ring.Distance(100, 300), 200u);
    EXPECT_EQ(ring.Distance(15900, 100), 200u);
    EXPECT_EQ(ring.Distance(5, 5), 0u);
}
