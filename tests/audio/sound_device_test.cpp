#include "audio/sound_device.h"
#include "audio/sound_ring.h"
#include "audio/tone_ring.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <vector>

namespace {

constexpr uint32_t kPull = 512;

SIDES Listen(SoundDevice& device, uint32_t rate) {
    return MeasureSides([&](int16_t* out, uint32_t frames) { device.Render(out, frames); }, rate);
}

SIDES ListenAt(const SOUND_PLACE& place, const SOUND_PLACE& front = {0, 0, -1},
               uint32_t rate = 44100) {
    SoundDevice device;
    std::string error;
    EXPECT_TRUE(device.OpenLoopback(rate, kPull, error)) << error;
    SoundRing ring(1, rate);
    FillWithTone(ring, true, true);
    EXPECT_TRUE(device.Attach(ring, RingKind::kPositioned));
    device.PlaceRing(ring, place);
    device.PlaceListener({0, 0, 0}, front, {0, 1, 0});
    ring.Play();
    const SIDES sides = Listen(device, rate);
    device.Detach(ring);
    return sides;
}

} // namespace

TEST(SoundDevice, RendersByHrtf) {
    SoundDevice device;
    std::string error;
    ASSERT_TRUE(device.OpenLoopback(44100, kPull, error)) << error;
    EXPECT_TRUE(device.UsesHrtf());
}

TEST(SoundDevice, SourceToTheLeftIsLouderOnTheLeft) {
    const SIDES left = ListenAt({-1, 0, 0});
    const SIDES right = ListenAt({1, 0, 0});
    const SIDES ahead = ListenAt({0, 0, -1});
    // At 440 Hz the head shadows only slightly; 2 dB is still far from equal.
    EXPECT_GT(left.left, left.right * 1.6);
    EXPECT_GT(right.right, right.left * 1.6);
    EXPECT_NEAR(ahead.left / ahead.right, 1.0, 0.1);
    RecordProperty("leftOverRight", std::to_string(10.0 * std::log10(left.left / left.right)));
}

TEST(SoundDevice, TurningTheListenerTurnsTheSound) {
    // What is on the right is on the left for a listener who looks the other way.
    const SIDES turned = ListenAt({1, 0, 0}, {0, 0, 1});
    EXPECT_GT(turned.left, turned.right * 1.6);
}

TEST(SoundDevice, DistanceMakesItSofter) {
    const SIDES near = ListenAt({0, 0, -1});
    const SIDES far = ListenAt({0, 0, -4});
    // Four times as far is a quarter of the amplitude.
    EXPECT_NEAR(std::sqrt(near.left / far.left), 4.0, 0.2);
}

TEST(SoundDevice, OtherRatesPlaceTheSoundToo) {
    for (const uint32_t rate : {22050u, 48000u, 96000u, 192000u}) {
        const SIDES left = ListenAt({-1, 0, 0}, {0, 0, -1}, rate);
        EXPECT_GT(left.left, left.right * 1.6) << rate;
    }
}

TEST(SoundDevice, StereoRingComesOutAsItWentIn) {
    for (const uint32_t rate : {22050u, 44100u, 48000u, 96000u, 192000u}) {
        SoundDevice device;
        std::string error;
        ASSERT_TRUE(device.OpenLoopback(rate, kPull, error)) << error;
        SoundRing ring(2, rate);
        std::vector<int16_t> samples(size_t{rate} * 2);
        for (size_t i = 0; i < samples.size(); ++i) {
            samples[i] = static_cast<int16_t>(i * 7919 + 1);
        }
        ring.Write(0, samples);
        ASSERT_TRUE(device.Attach(ring, RingKind::kDirect));
        // The listener's place makes no difference.
        device.PlaceListener({3, 0, 4}, {1, 0, 0}, {0, 1, 0});
        ring.Play();
        std::vector<int16_t> out(size_t{rate} * 3);
        device.Render(out.data(), static_cast<uint32_t>(out.size() / 2));
        // From the first sample, around the ring, bit for bit.
        for (size_t i = 0; i < out.size(); ++i) {
            ASSERT_EQ(out[i], samples[i % samples.size()]) << rate << " at " << i;
        }
        device.Detach(ring);
    }
}

TEST(SoundDevice, LeftOnlyStereoStaysLeft) {
    SoundDevice device;
    std::string error;
    ASSERT_TRUE(device.OpenLoopback(44100, kPull, error)) << error;
    SoundRing ring(2, 44100);
    FillWithTone(ring, true, false);
    ASSERT_TRUE(device.Attach(ring, RingKind::kDirect));
    ring.Play();
    const SIDES sides = Listen(device, 44100);
    EXPECT_NEAR(sides.left, 10000.0 * 10000.0 / 2.0, 1.0e5);
    EXPECT_EQ(sides.right, 0.0);
    device.Detach(ring);
}

TEST(SoundDevice, PlayCursorIsWhatTheRendererConsumed) {
    SoundDevice device;
    std::string error;
    ASSERT_TRUE(device.OpenLoopback(44100, kPull, error)) << error;
    SoundRing stereo(2, 44100);
    SoundRing mono(1, 44100);
    ASSERT_TRUE(device.Attach(stereo, RingKind::kDirect));
    ASSERT_TRUE(device.Attach(mono, RingKind::kPositioned));
    stereo.Play();
    mono.Play();
    std::vector<int16_t> out(size_t{4096} * 2);
    uint64_t rendered = 0;
    // Pulls of any size, some longer than the device's own, over several rounds of the ring.
    for (uint32_t pull = 0; pull < 300; ++pull) {
        const uint32_t frames = 1 + pull * 251 % 2000;
        device.Render(out.data(), frames);
        rendered += frames;
        ASSERT_EQ(stereo.Cursors().play, rendered * 4 % stereo.LengthBytes()) << pull;
        ASSERT_EQ(mono.Cursors().play, rendered * 2 % mono.LengthBytes()) << pull;
        // The device never reads past the write cursor that it has announced.
        ASSERT_LE(stereo.Distance(stereo.Cursors().play, stereo.Cursors().write), (512u + 64) * 4);
    }
    device.Detach(stereo);
    device.Detach(mono);
}

TEST(SoundDevice, WriteCursorStaysOnePullAndALookaheadAhead) {
    SoundDevice device;
    std::string error;
    ASSERT_TRUE(device.OpenLoopback(44100, kPull, error)) << error;
    SoundRing ring(2, 44100);
    ASSERT_TRUE(device.Attach(ring, RingKind::kDirect));
    ring.Play();
    std::vector<int16_t> out(size_t{kPull} * 2);
    for (int pull = 0; pull < 100; ++pull) {
        const auto [play, write] = ring.Cursors();
        EXPECT_EQ(ring.Distance(play, write), (kPull + 64) * 4);
        device.Render(out.data(), kPull);
    }
    device.Detach(ring);
}

TEST(SoundDevice, RingThatStartsOverIsHeardFromItsStart) {
    SoundDevice device;
    std::string error;
    ASSERT_TRUE(device.OpenLoopback(44100, kPull, error)) << error;
    SoundRing ring(2, 44100);
    std::vector<int16_t> samples(size_t{44100} * 2);
    for (size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<int16_t>(i / 4);
    }
    ring.Write(0, samples);
    ASSERT_TRUE(device.Attach(ring, RingKind::kDirect));
    ring.Play();
    std::vector<int16_t> out(size_t{kPull} * 40);
    device.Render(out.data(), kPull * 20);
    ring.SetPosition(0);
    device.Render(out.data(), kPull * 20);
    EXPECT_EQ(ring.Cursors().play, kPull * 80);
    EXPECT_EQ(out[size_t{kPull} * 40 - 2], samples[size_t{kPull} * 40 - 2]);
    // Stopped, it is silent and does not advance.
    ring.Stop();
    device.Render(out.data(), kPull);
    device.Render(out.data(), kPull);
    EXPECT_EQ(ring.Cursors().play, kPull * 80);
    for (size_t i = 0; i < size_t{kPull} * 2; ++i) {
        ASSERT_EQ(out[i], 0);
    }
    // A later start continues from there.
    ring.Play();
    device.Render(out.data(), kPull * 20);
    EXPECT_EQ(out[size_t{kPull} * 40 - 2], samples[size_t{kPull} * 80 - 2]);
    device.Detach(ring);
}

TEST(SoundDevice, RingsAddUpAndSaturate) {
    SoundDevice device;
    std::string error;
    ASSERT_TRUE(device.OpenLoopback(44100, kPull, error)) << error;
    SoundRing first(2, 44100);
    SoundRing second(2, 44100);
    first.Write(0, std::vector<int16_t>(88200, 20000));
    second.Write(0, std::vector<int16_t>(88200, 10000));
    ASSERT_TRUE(device.Attach(first, RingKind::kDirect));
    ASSERT_TRUE(device.Attach(second, RingKind::kDirect));
    first.Play();
    second.Play();
    std::vector<int16_t> out(size_t{kPull} * 20);
    device.Render(out.data(), kPull * 10);
    EXPECT_EQ(out.back(), 30000);
    second.Write(0, std::vector<int16_t>(88200, 20000));
    device.Render(out.data(), kPull * 10);
    EXPECT_EQ(out.back(), 32767);
    device.Detach(first);
    device.Render(out.data(), kPull * 10);
    EXPECT_EQ(out.back(), 20000);
    device.Detach(second);
}

TEST(SoundDevice, DamagedPlacesAreIgnored) {
    SoundDevice device;
    std::string error;
    ASSERT_TRUE(device.OpenLoopback(44100, kPull, error)) << error;
    SoundRing ring(1, 44100);
    FillWithTone(ring, true, true);
    ASSERT_TRUE(device.Attach(ring, RingKind::kPositioned));
    device.PlaceRing(ring, {-1, 0, 0});
    const float none = std::numeric_limits<float>::quiet_NaN();
    device.PlaceRing(ring, {none, 0, 0});
    device.PlaceListener({none, 0, 0}, {0, 0, 0}, {0, 0, 0});
    device.PlaceListener({0, 0, 0}, {1, 0, 0}, {-1, 0, 0});
    ring.Play();
    const SIDES sides = Listen(device, 44100);
    EXPECT_GT(sides.left, sides.right * 1.6);
    device.Detach(ring);
}

TEST(SoundDevice, ClosedDeviceTakesEveryCall) {
    SoundDevice device;
    SoundRing ring(1, 44100);
    EXPECT_FALSE(device.Attach(ring, RingKind::kPositioned));
    device.PlaceRing(ring, {1, 2, 3});
    device.PlaceListener({0, 0, 0}, {0, 0, -1}, {0, 1, 0});
    device.Detach(ring);
    device.Close();
    std::vector<int16_t> out(64, 5);
    device.Render(out.data(), 32);
    EXPECT_EQ(out, std::vector<int16_t>(64, 0));
    EXPECT_FALSE(device.UsesHrtf());
    EXPECT_EQ(device.SdlDevice(), 0u);
}

TEST(SoundDevice, CloseWithRingsAttachedAndOpenAgain) {
    SoundDevice device;
    std::string error;
    SoundRing ring(2, 44100);
    ring.Play();
    std::vector<int16_t> out(size_t{kPull} * 2);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(device.OpenLoopback(44100, kPull, error)) << error;
        ASSERT_TRUE(device.Attach(ring, RingKind::kDirect));
        const uint32_t before = ring.Cursors().play;
        device.Render(out.data(), kPull);
        EXPECT_EQ(ring.Distance(before, ring.Cursors().play), kPull * 4);
        device.Close();
    }
}
