#include "audio/sound_pump.h"
#include "audio/sound_rig.h"

#include "support/allocation_counter.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

constexpr uint32_t kUnit = 44100 * 4 / 200; // bytes of 5 ms of stereo

// Pumps a steady sound until the splitters have settled, and returns the 441 frames that the pump wrote
// last.
std::vector<int16_t> Steady(SoundRig& rig, int16_t left, int16_t right) {
    rig.Pump();
    uint32_t position = 0;
    for (int i = 0; i < 10; ++i) {
        rig.AppendPairs(441, left, right);
        rig.Play(441);
        position =
            rig.session.sound.directSound != 0 ? rig.channel->writeStereo : rig.channel->writeMono;
        rig.Pump();
    }
    EXPECT_EQ(rig.session.statistics.soundRepositions, 0u);
    return SoundRig::Content(rig.Active(), position, 441);
}

} // namespace

TEST(SoundPump, NewChannelPlaysThePositionalRing) {
    const SoundRig rig;
    EXPECT_TRUE(rig.channel->mono.Playing());
    EXPECT_FALSE(rig.channel->stereo.Playing());
    EXPECT_EQ(rig.channel->writeStereo, 10 * kUnit);
    EXPECT_EQ(rig.channel->writeMono, 5 * kUnit);
}

TEST(SoundPump, FirstCursorsAreFrameAlignedAtEveryRate) {
    // At 22,050 the unit is 441 bytes, which is no whole number of frames.
    for (const uint32_t rate : {22050u, 44100u, 48000u, 96000u, 192000u}) {
        SoundRig rig(rate);
        EXPECT_EQ(rig.channel->writeStereo, rate * 4 / 200 * 10 / 4 * 4) << rate;
        EXPECT_EQ(rig.channel->writeMono, rate * 4 / 200 * 5 / 2 * 2) << rate;
        rig.Pump();
        EXPECT_EQ(rig.channel->writeStereo % 4, 0u);
        EXPECT_EQ(rig.channel->writeMono % 2, 0u);
    }
}

TEST(SoundPump, EnteringFullScreenSwitchesToStereo) {
    SoundRig rig;
    rig.Play(1000);
    rig.channel->lastPlayMono = 2000;
    rig.channel->lastPlayStereo = 500;
    rig.Pump();
    EXPECT_FALSE(rig.channel->mono.Playing());
    EXPECT_TRUE(rig.channel->stereo.Playing());
    EXPECT_EQ(rig.channel->stereo.Cursors().play, 0u);
    EXPECT_EQ(rig.channel->lastPlayStereo, 0u);
    EXPECT_EQ(rig.channel->lastPlayMono, 0u);
    EXPECT_EQ(rig.channel->writeStereo, 8 * kUnit);
    EXPECT_EQ(rig.channel->writeMono, 4 * kUnit);
    EXPECT_EQ(rig.session.sound.directSound, 1);
    EXPECT_EQ(rig.session.sound.audible, 1);
}

TEST(SoundPump, StayingInFullScreenKeepsTheCursors) {
    SoundRig rig;
    rig.Pump();
    rig.Play(300);
    rig.Pump();
    EXPECT_EQ(rig.channel->stereo.Cursors().play, 1200u);
}

TEST(SoundPump, ShowingTheRoomSwitchesBack) {
    SoundRig rig;
    rig.Pump();
    rig.Play(700);
    rig.surroundings.roomVisible = true;
    rig.Pump();
    EXPECT_TRUE(rig.channel->mono.Playing());
    EXPECT_FALSE(rig.channel->stereo.Playing());
    EXPECT_EQ(rig.channel->mono.Cursors().play, 0u);
    EXPECT_EQ(rig.channel->lastPlayMono, 0u);
    EXPECT_EQ(rig.channel->lastPlayStereo, 0u);
    EXPECT_EQ(rig.channel->writeStereo, 8 * kUnit);
    EXPECT_EQ(rig.channel->writeMono, 4 * kUnit);
    EXPECT_EQ(rig.session.sound.directSound, 0);
    EXPECT_EQ(rig.session.sound.audible, 1);
}

TEST(SoundPump, InTheRoomEverySessionIsHeard) {
    SoundRig rig;
    rig.surroundings = {false, true, 1.0f};
    rig.Pump();
    EXPECT_EQ(rig.session.sound.audible, 1);
    EXPECT_EQ(rig.session.sound.directSound, 0);
    EXPECT_TRUE(rig.channel->mono.Playing());
}

TEST(SoundPump, ASessionThatIsNotInFrontIsSilentOnTheRingItHas) {
    SoundRig rig;
    rig.surroundings = {false, false, 1.0f};
    rig.Pump();
    EXPECT_EQ(rig.session.sound.audible, 0);
    EXPECT_EQ(rig.session.sound.directSound, 0);

    SoundRig second;
    second.Pump();
    second.surroundings.inFront = false;
    second.Pump();
    EXPECT_EQ(second.session.sound.audible, 0);
    EXPECT_EQ(second.session.sound.directSound, 1);
    // In front again, with the room never shown: heard again, in the same place.
    second.Play(100);
    second.surroundings.inFront = true;
    second.Pump();
    EXPECT_EQ(second.session.sound.audible, 1);
    EXPECT_EQ(second.channel->stereo.Cursors().play, 400u);
}

TEST(SoundPump, SilentSessionWritesZeroesAndStillConsumes) {
    SoundRig rig;
    rig.Pump();
    const std::vector<int16_t> old(size_t{44100} * 2, 55);
    rig.channel->stereo.Write(0, old);
    rig.surroundings.inFront = false;
    rig.AppendPairs(1000, 20000, 20000);
    rig.Play(600);
    const uint32_t position = rig.channel->writeStereo;
    rig.Pump();
    EXPECT_EQ(rig.channel->writeStereo, position + 600 * 4);
    EXPECT_EQ(SoundRig::Content(rig.channel->stereo, position, 600), std::vector<int16_t>(1200, 0));
    EXPECT_EQ(SoundRig::Content(rig.channel->stereo, position + 2400, 1)[0], 55);
    EXPECT_EQ(rig.session.sound.soundBytes, 400u * 4);
}

TEST(SoundPump, StereoPathFiltersEachChannelApart) {
    SoundRig rig;
    Settings().SetFloat(L"audio_boost_low", 1.25f);
    Settings().SetFloat(L"audio_boost_mid", 0.5f);
    Settings().SetFloat(L"audio_boost_high", 2.0f);
    rig.MakeChannel();
    rig.Pump();
    std::vector<int16_t> samples(1200);
    for (size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<int16_t>((i * i * 37) % 9000);
    }
    rig.Append(samples);
    rig.Play(600);
    const uint32_t position = rig.channel->writeStereo;
    rig.Pump();
    BandSplitter left;
    left.SetCrossovers(44100, 600, 5000);
    left.gains = {1.25, 0.5, 2.0};
    BandSplitter right = left;
    std::vector<int16_t> expected(1200);
    for (size_t i = 0; i < 600; ++i) {
        expected[i * 2] = static_cast<int16_t>(left.Process(samples[i * 2]));
        expected[i * 2 + 1] = static_cast<int16_t>(right.Process(samples[i * 2 + 1]));
    }
    EXPECT_EQ(SoundRig::Content(rig.channel->stereo, position, 600), expected);
}

TEST(SoundPump, TakesBoostsThatChangeWhileItPlays) {
    SoundRig rig;
    rig.MakeChannel();
    for (const wchar_t* const boost :
         {L"audio_boost_low", L"audio_boost_mid", L"audio_boost_high"}) {
        Settings().SetFloat(boost, 0.0f);
    }
    EXPECT_NE(Steady(rig, 1000, 1000).back(), 0); // not by themselves
    rig.channel->ReadBoosts();
    EXPECT_EQ(Steady(rig, 1000, 1000).back(), 0);
}

TEST(SoundPump, ClippingComesBeforeTheVolume) {
    SoundRig rig;
    Settings().SetFloat(L"audio_boost_low", 4.0f);
    rig.MakeChannel();
    rig.surroundings.volume = 0.25f;
    // A steady 20,000 boosted to 80,000: clipped to full scale, then a quarter. The other way round
    // it would come to 20,000.
    const std::vector<int16_t> heard = Steady(rig, 20000, -20000);
    EXPECT_EQ(heard[0], 8191); // 32,767 / 4, truncated
    EXPECT_EQ(heard[1], -8192);
}

TEST(SoundPump, TheVolumeIsAppliedInSinglePrecision) {
    // 0.7 in single precision is a little less than that, and the product of 1,000 with it rounds to 700.
    // In double precision it stays under 700 and is truncated to 699.
    for (const bool room : {false, true}) {
        SoundRig rig;
        rig.surroundings = {!room, room, 0.7f};
        EXPECT_EQ(Steady(rig, 1000, 1000).back(), 700) << (room ? "room" : "full screen");
    }
}

TEST(SoundPump, MonoPathAddsAndHalves) {
    SoundRig rig;
    rig.surroundings = {false, true, 0.5f};
    // (12,000 + 4,000) x 0.5 x 0.5, less what the truncation of a sum just under it takes.
    EXPECT_NEAR(Steady(rig, 12000, 4000).back(), 4000, 1);
}

TEST(SoundPump, MonoPathClipsEachChannelBeforeAdding) {
    SoundRig rig;
    Settings().SetFloat(L"audio_boost_low", 4.0f);
    rig.MakeChannel();
    rig.surroundings = {false, true, 1.0f};
    // 32,767 and -4,000; unclipped it would be 58,000.
    EXPECT_NEAR(Steady(rig, 30000, -1000).back(), (32767.0 - 4000.0) / 2.0, 1.0);
}

TEST(SoundPump, MonoPathTakesTwiceTheBytesThatItWrites) {
    SoundRig rig;
    rig.surroundings = {false, true, 1.0f};
    rig.Pump();
    rig.AppendPairs(1000, 1, 1);
    rig.Play(600);
    const uint32_t position = rig.channel->writeMono;
    rig.Pump();
    EXPECT_EQ(rig.channel->writeMono, position + 600 * 2);
    EXPECT_EQ(rig.session.sound.soundBytes, 400u * 4);
    // Less is waiting than was played: the limit is half the waiting bytes.
    rig.Play(600);
    rig.Pump();
    EXPECT_EQ(rig.session.sound.soundBytes, 0u);
}

TEST(SoundPump, WhatIsLeftMovesToTheFront) {
    SoundRig rig;
    rig.Pump();
    std::vector<int16_t> samples(2000);
    for (size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<int16_t>(i);
    }
    rig.Append(samples);
    rig.Play(300);
    rig.Pump();
    int16_t first = 0;
    std::memcpy(&first, rig.data.pending.data(), 2);
    EXPECT_EQ(first, 600);
    EXPECT_EQ(rig.session.sound.soundBytes, 700u * 4);
}

TEST(SoundPump, VolumeAboveOneSaturates) {
    SoundRig rig;
    rig.surroundings.volume = 100.0f;
    const std::vector<int16_t> heard = Steady(rig, 20000, -20000);
    EXPECT_EQ(heard[0], 32767);
    EXPECT_EQ(heard[1], -32768);
}

TEST(SoundPump, DamagedBoostsAndVolumesDoNoHarm) {
    for (const float gain : {std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity(), -3.0e38f, 3.0e38f}) {
        SoundRig rig;
        Settings().SetFloat(L"audio_boost_low", gain);
        Settings().SetFloat(L"audio_boost_mid", -gain);
        Settings().SetFloat(L"audio_boost_high", gain);
        rig.MakeChannel();
        rig.surroundings.volume = gain;
        rig.Pump();
        rig.AppendPairs(2000, 30000, -30000);
        rig.Play(1000);
        rig.Pump();
        EXPECT_EQ(rig.session.sound.soundBytes, 4000u);
    }
}

TEST(SoundPump, NothingPlayedMeansNothingMoves) {
    SoundRig rig;
    rig.Pump();
    rig.AppendPairs(1000, 1, 1);
    const uint32_t position = rig.channel->writeStereo;
    rig.data.syncBias = 7;
    for (int i = 0; i < 1000; ++i) {
        rig.Pump();
    }
    EXPECT_EQ(rig.channel->writeStereo, position);
    EXPECT_EQ(rig.session.sound.soundBytes, 4000u);
    EXPECT_EQ(rig.data.syncBias, 7);
    EXPECT_EQ(rig.session.statistics.soundRepositions, 0u);
}

TEST(SoundPump, NothingWaitingLeavesTheDebt) {
    SoundRig rig;
    rig.Pump();
    rig.Play(300);
    rig.Pump();
    EXPECT_EQ(rig.channel->lastPlayStereo, 0u);
    rig.AppendPairs(100, 1, 1);
    rig.Pump();
    EXPECT_EQ(rig.channel->lastPlayStereo, 400u);
}

TEST(SoundPump, GapIsTheLargestEverSeen) {
    SoundRig rig;
    rig.SetReserve(882); // 20 ms; 3,528 bytes at 176 a millisecond
    rig.Pump();
    EXPECT_EQ(rig.gapMs, 20u);
    rig.SetReserve(441);
    rig.Pump();
    EXPECT_EQ(rig.gapMs, 20u);
}

// Only the write position's lead decides; each row is one lead.
TEST(SoundPump, WritePositionMovesOnlyWhenItIsOutOfBounds) {
    struct ROW {
        bool positional;
        uint32_t aheadMs;
        bool moves;
    };
    for (const ROW& row : {
             ROW{false, 10, true },
             ROW{false, 11, false},
             ROW{false, 30, false},
             ROW{false, 31, true },
             ROW{true,  10, true },
             ROW{true,  11, false},
             ROW{true,  29, false},
             ROW{true,  30, true }
    }) {
        SoundRig rig;
        rig.surroundings = {!row.positional, row.positional, 1.0f};
        rig.SetReserve(441); // 10 ms
        rig.Pump();
        rig.AppendPairs(2000, 1, 1);
        rig.Play(1000);
        SoundRing& ring = rig.Active();
        const uint32_t play = ring.Cursors().play;
        uint32_t& write = row.positional ? rig.channel->writeMono : rig.channel->writeStereo;
        uint32_t& last = row.positional ? rig.channel->lastPlayMono : rig.channel->lastPlayStereo;
        write = play + row.aheadMs * ring.BytesPerMs();
        rig.Pump();
        EXPECT_EQ(rig.session.statistics.soundRepositions, row.moves ? 1u : 0u) << row.aheadMs;
        // The pump wrote 1,000 frames from there.
        const uint32_t start = play + (row.moves ? 15 : row.aheadMs) * ring.BytesPerMs();
        EXPECT_EQ(write, start + 1000 * ring.FrameBytes()) << row.aheadMs;
        EXPECT_EQ(last, play);
    }
}

TEST(SoundPump, RepositionForgetsTheDebt) {
    SoundRig rig;
    rig.Pump();
    rig.AppendPairs(100, 1, 1);
    rig.Play(4000); // 90 ms, far beyond the write position
    rig.Pump();
    EXPECT_EQ(rig.session.statistics.soundRepositions, 1u);
    EXPECT_EQ(rig.channel->lastPlayStereo, 16000u);
}

TEST(SoundPump, BiasFollowsTheWaitingSoundBeforeTheTransfer) {
    struct ROW {
        uint32_t bytes;
        int bias;
    };
    // 176 bytes a millisecond: 20 ms are 3,520 and 35 ms are 6,160 bytes.
    for (const ROW& row : {
             ROW{3516, -1},
             ROW{3520, 0 },
             ROW{6160, 0 },
             ROW{6164, 1 },
             ROW{4,    -1}
    }) {
        for (const bool positional : {false, true}) {
            SoundRig rig;
            rig.surroundings = {!positional, positional, 1.0f};
            rig.Pump();
            rig.data.syncBias = 7;
            rig.AppendPairs(row.bytes / 4, 1, 1);
            rig.Play(10);
            rig.Pump();
            EXPECT_EQ(rig.data.syncBias, row.bias) << row.bytes;
        }
    }
}

TEST(SoundPump, RingsWrapWithoutAClick) {
    // A steady value written for three seconds fills the whole ring.
    SoundRig rig;
    rig.SetReserve(512 + 64);
    rig.Pump();
    for (int pull = 0; pull < 260; ++pull) {
        rig.AppendPairs(512, 10000, -10000);
        const std::vector<int16_t> heard = rig.Play(512);
        rig.Pump();
        if (pull > 100) {
            for (size_t i = 0; i < heard.size(); i += 2) {
                ASSERT_NEAR(heard[i], 10000, 1) << pull;
                ASSERT_NEAR(heard[i + 1], -10000, 1) << pull;
            }
        }
    }
    EXPECT_EQ(rig.session.statistics.soundRepositions, 0u);
}

TEST(SoundPump, DeviceThatNeverMovesLeavesATenthOfASecondWaiting) {
    SoundRig rig;
    std::vector<int16_t> samples(size_t{735} * 2, 100);
    EMU_AUDIO_FRAME frame{samples.data(), 44100, 735};
    for (int i = 0; i < 300; ++i) {
        HostSubmitAudio(&rig.session, &frame);
        rig.Pump();
        ASSERT_LE(rig.session.sound.soundBytes, 4410u * 4);
    }
    // Seven frames exceed the bound. Then 35 ms are left, a little more than two frames, and four more
    // exceed the bound again: at the 7th, the 11th and so on to the 299th.
    EXPECT_EQ(rig.session.statistics.soundRepositions, 74u);
    EXPECT_EQ(rig.session.sound.soundBytes, (1543u + 735u) * 4);
    // It comes back: the waiting sound is played from then on.
    rig.Play(512);
    rig.Pump();
    EXPECT_EQ(rig.session.sound.soundBytes, (1543u + 735u - 512u) * 4);
    EXPECT_EQ(rig.data.syncBias, 1);
}

TEST(SoundPump, PumpDoesNotAllocate) {
    for (const bool room : {false, true}) {
        SoundRig rig;
        rig.surroundings.roomVisible = room;
        rig.Pump();
        rig.AppendPairs(20000, 1000, 1000);
        const size_t before = AllocationsSoFar();
        rig.Pump();
        EXPECT_EQ(AllocationsSoFar(), before);
        rig.Play(15000);
        const size_t second = AllocationsSoFar();
        rig.Pump();
        EXPECT_EQ(AllocationsSoFar(), second);
    }
}

// As while a game is paused. What waits is played, then nothing, for the two seconds that are looked at.
TEST(SoundPump, WithoutNewSoundTheRingsFallSilent) {
    for (const bool room : {false, true}) {
        SoundRig rig;
        rig.surroundings = {!room, room, 1.0f};
        Steady(rig, 8000, 8000);
        for (int i = 0; i < 20; ++i) {
            rig.Play(441);
            rig.Pump();
        }
        for (int i = 0; i < 200; ++i) {
            const std::vector<int16_t> heard = rig.Play(441);
            EXPECT_EQ(std::ranges::count(heard, 0), std::ssize(heard)) << i << " " << room;
            rig.Pump();
        }
    }
}
