// How late a sound is heard when the device takes much at once, or nothing for a while.

#include "audio/sound_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <numbers>
#include <vector>

namespace {

constexpr uint32_t kRate = 44100;
constexpr int64_t kSecond = 1'000'000'000; // in nanoseconds, the simulation's time
constexpr int64_t kMillisecond = kSecond / 1000;
constexpr uint32_t kPull = 512; // frames

// At `at` the device takes `burst` frames at once, then nothing for `pause`, then sound at the normal
// rate.
struct STANDSTILL {
    int64_t at;
    uint32_t burst;
    int64_t pause;
};

struct HEARD {
    int64_t time; // of the pull
    int16_t sample;
};

// One machine, one pump and one device, each with the time of its next action. The machine's sample is
// a function of its frame's start and of the sample's number.
class Delayed {
public:
    using Source = std::function<int16_t(int64_t time, uint64_t pair)>;

    Delayed(const STANDSTILL& device, bool room, Source source)
        : standstill(device)
        , sound(std::move(source)) {
        rig.surroundings = {!room, room, 1.0f};
        rig.SetReserve(64 + kPull);
    }

    void RunUntil(int64_t end) {
        while (std::min({nextFrame, nextPump, nextPull}) < end) {
            if (nextFrame <= nextPull && nextFrame <= nextPump) {
                Frame();
            } else if (nextPull <= nextPump) {
                PullOnce();
            } else {
                sumMs += WaitingMs();
                ++rounds;
                rig.Pump();
                highestMs = std::max(highestMs, WaitingMs());
                nextPump += 5 * kMillisecond;
            }
        }
    }

    [[nodiscard]] double WaitingMs() const {
        return rig.session.sound.soundBytes * 1000.0 / (kRate * 4);
    }

    // The mean over a second, sampled at the pump's rounds.
    double SecondsMean(int64_t from) {
        RunUntil(from);
        sumMs = 0.0;
        rounds = 0;
        RunUntil(from + kSecond);
        return sumMs / rounds;
    }

    // The first loud sample from `from`, in milliseconds after it; -1 for none.
    [[nodiscard]] int64_t LoudAfterMs(int64_t from) const {
        const auto found = std::find_if(heard.begin(), heard.end(), [from](const HEARD& x) {
            return x.time >= from && std::abs(x.sample) > 5000;
        });
        return found == heard.end() ? -1 : (found->time - from) / kMillisecond;
    }

    SoundRig rig{kRate};
    std::vector<HEARD> heard; // left
    double highestMs = 0.0;   // waiting after a round of the pump

private:
    void Frame() {
        const auto due = static_cast<uint64_t>(static_cast<double>(++frames) * kRate / 60.0);
        std::vector<int16_t> samples;
        for (uint64_t pair = pairs; pair < due; ++pair) {
            const int16_t sample = sound(nextFrame, pair);
            samples.insert(samples.end(), {sample, sample});
        }
        EMU_AUDIO_FRAME frame{samples.data(), kRate, static_cast<uint32_t>(due - pairs)};
        HostSubmitAudio(&rig.session, &frame);
        const auto exact = static_cast<double>(due - pairs) * kSecond / kRate;
        nextFrame += static_cast<int64_t>(exact) + rig.data.syncBias.load() * kMillisecond / 5;
        pairs = due;
    }

    void PullOnce() {
        if (!stood && nextPull >= standstill.at) {
            stood = true;
            for (uint32_t taken = 0; taken < standstill.burst; taken += kPull) {
                rig.Play(kPull);
            }
            nextPull += standstill.pause;
            return;
        }
        const std::vector<int16_t> samples = rig.Play(kPull);
        for (size_t i = 0; i < samples.size(); i += rig.Active().Channels()) {
            heard.push_back({nextPull, samples[i]});
        }
        nextPull += kPull * kSecond / kRate;
    }

    STANDSTILL standstill;
    Source sound;
    int64_t nextFrame = 0;
    int64_t nextPump = 1'700'000;
    int64_t nextPull = 0;
    int64_t frames = 0;
    uint64_t pairs = 0;
    double sumMs = 0.0;
    int rounds = 0;
    bool stood = false;
};

int16_t Tone(uint64_t pair, double hertz) {
    return static_cast<int16_t>(std::lrint(
        10000.0 * std::sin(2.0 * std::numbers::pi * hertz * static_cast<double>(pair) / kRate)));
}

// Silent until `key`, a tone from then on.
Delayed::Source Beep(int64_t key) {
    return
        [key](int64_t time, uint64_t pair) { return time >= key ? Tone(pair, 440.0) : int16_t{0}; };
}

// A frame until the machine looks at the key, the band's top and a frame of waiting sound, 33 ms in the
// ring and a pull of 12 ms are 114 ms at most.
constexpr int64_t kLatestMs = 120;

} // namespace

TEST(SoundDelay, TwoSecondsAtOnceAreCaughtUpWithinASecond) {
    for (const bool room : {false, true}) {
        for (const int64_t at : {int64_t{0}, 5 * kSecond}) {
            const STANDSTILL device{at, 2 * kRate, kSecond};
            const int64_t key = at + 2 * kSecond; // a second after the device continues
            Delayed run(device, room, Beep(key));
            const double mean = run.SecondsMean(key);
            EXPECT_GT(mean, 20.0);
            EXPECT_LT(mean, 35.0);
            const int64_t delay = run.LoudAfterMs(key);
            EXPECT_GE(delay, 0);
            EXPECT_LT(delay, kLatestMs) << at << (room ? " room" : "");
        }
    }
}

TEST(SoundDelay, NeverMoreThanATenthOfASecondWaits) {
    Delayed run({5 * kSecond, 2 * kRate, kSecond}, false, Beep(0));
    run.RunUntil(10 * kSecond);
    EXPECT_LE(run.highestMs, 100.0);
}

TEST(SoundDelay, AStandstillOfAnyLengthIsForgottenWithinASecond) {
    // Short ones stay under the bound but leave a surplus.
    for (int64_t pause = 20; pause <= 400; pause += 10) {
        const int64_t key = 6 * kSecond + pause * kMillisecond;
        Delayed run({5 * kSecond, 0, pause * kMillisecond}, false, Beep(key));
        EXPECT_LT(run.SecondsMean(key), 35.0) << pause;
        const int64_t delay = run.LoudAfterMs(key);
        EXPECT_GE(delay, 0);
        EXPECT_LT(delay, kLatestMs) << pause;
    }
}

TEST(SoundDelay, WhatIsDroppedLeavesNoClick) {
    // The device pauses and continues where it was, so the only cuts are those in the waiting sound. A
    // sine of 100 Hz and 10,000 rises by 142 from sample to sample; in a fade of 220 pairs between two
    // of them up to 20,000 / 220 come on top. A hard cut is up to 20,000.
    for (const int64_t pause : {70, 90, 150, 300, 1000, 3000}) {
        Delayed run({5 * kSecond, 0, pause * kMillisecond}, false,
                    [](int64_t, uint64_t pair) { return Tone(pair, 100.0); });
        run.RunUntil(4 * kSecond);
        const uint32_t before = run.rig.session.statistics.soundRepositions;
        const size_t from = run.heard.size();
        run.RunUntil(10 * kSecond);
        EXPECT_GT(run.rig.session.statistics.soundRepositions, before) << "nothing was dropped";
        int steepest = 0;
        for (size_t i = from; i < run.heard.size(); ++i) {
            steepest = std::max(steepest, std::abs(run.heard[i].sample - run.heard[i - 1].sample));
        }
        EXPECT_LT(steepest, 142 + 91 + 10) << pause;
    }
}

TEST(SoundDelay, TheNewestSoundIsKept) {
    SoundRig rig;
    rig.Pump();
    std::vector<int16_t> samples;
    for (int16_t i = 0; i < 5000; ++i) {
        samples.insert(samples.end(), {i, i});
    }
    rig.Append(samples); // 113 ms
    rig.Pump();
    // 35 ms are kept, 1,543 pairs, of which the first 220 begin with the oldest sample.
    ASSERT_EQ(rig.session.sound.soundBytes, 1543u * 4);
    const auto at = [&](size_t pair) {
        int16_t sample = 0;
        std::memcpy(&sample, rig.data.pending.data() + pair * 4, sizeof sample);
        return sample;
    };
    EXPECT_EQ(at(0), 0);
    EXPECT_EQ(at(110), 110 + 3457 / 2); // halfway between the 110th of the old and of the new
    EXPECT_EQ(at(220), 3457 + 220);
    EXPECT_EQ(at(1542), 4999);
    EXPECT_EQ(rig.session.statistics.soundRepositions, 1u);
}

TEST(SoundDelay, ATenthOfASecondIsLeftAlone) {
    SoundRig rig;
    rig.Pump();
    rig.AppendPairs(4410, 1, 1);
    rig.Pump();
    EXPECT_EQ(rig.session.sound.soundBytes, 4410u * 4);
    rig.AppendPairs(1, 1, 1);
    rig.Pump();
    EXPECT_EQ(rig.session.sound.soundBytes, 1543u * 4);
}
