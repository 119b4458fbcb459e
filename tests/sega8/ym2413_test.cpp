// Registers, timing, states and the resampler.
#include "machine/sound_settings.h"
#include "sega8/ym2413_rig.h"
#include "sega8/ym2413_tables.h"

#include "support/heard_chip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <numbers>
#include <numeric>
#include <random>

namespace {

class Ym2413 : public YmRig {};

std::vector<uint8_t> StateOf(const YM2413& ym) {
    std::vector<uint8_t> state(YmStateSize());
    YmSaveState(ym, state.data());
    return state;
}

bool AllZero(const std::vector<double>& samples) {
    return std::all_of(samples.begin(), samples.end(), [](double sample) { return sample == 0.0; });
}

} // namespace

// --- tables
// ---------------------------------------------------------------------------------------

// The family's masks hold a quarter wave of 256 entries, round(-log2(sin x) x 256), at the middle
// of each 256th of a right angle; the first is 2137, the last 0.
TEST_F(Ym2413, SineIsTheFamilysLogarithmicSine) {
    for (size_t i = 0; i < 256; ++i) {
        const double x = (static_cast<double>(i) + 0.5) / 256.0 * std::numbers::pi / 2.0;
        const auto entry = static_cast<uint32_t>(std::lround(-std::log2(std::sin(x)) * 256.0)) * 2;
        EXPECT_EQ(kYmWaves.sine[i], entry) << i;
        EXPECT_EQ(kYmWaves.sine[511 - i], entry);
        EXPECT_EQ(kYmWaves.sine[512 + i], entry + 1); // the negative half
        EXPECT_EQ(kYmWaves.sine[1023 - i], entry + 1);
    }
    EXPECT_EQ(kYmWaves.sine[0], 2u * 2137);
    EXPECT_EQ(kYmWaves.sine[255], 0u);
    // The sine of 30 degrees, a half, is between entries 84 and 85; 6 dB are 256 parts.
    EXPECT_GT(kYmWaves.sine[84], 2u * 256);
    EXPECT_LT(kYmWaves.sine[85], 2u * 256);
}

TEST_F(Ym2413, SecondWaveIsSilentInTheNegativeHalf) {
    for (size_t i = 0; i < 512; ++i) {
        EXPECT_EQ(kYmWaves.sine[1024 + i], kYmWaves.sine[i]);
        EXPECT_EQ(kYmWaves.sine[1536 + i], 5632u);
    }
}

// The family's other mask holds round((2^(x / 256) - 1) x 1024), from 0 to 1018. An attenuation of
// x 256ths of 6 dB selects entry 255 - x, to which 1024 is added.
TEST_F(Ym2413, LevelsAreTheFamilysExponentialAndHalveWithEveryRow) {
    for (size_t x = 0; x < 256; ++x) {
        const double power = std::exp2(static_cast<double>(255 - x) / 256.0);
        const auto level = static_cast<int32_t>(1024 + std::lround((power - 1.0) * 1024.0));
        for (size_t row = 0; row < 11; ++row) {
            EXPECT_EQ(kYmWaves.tl[row * 512 + x * 2], level >> row) << x;
            EXPECT_EQ(kYmWaves.tl[row * 512 + x * 2 + 1], -(level >> row)) << x;
        }
    }
    EXPECT_EQ(kYmWaves.tl[0], 1024 + 1018);
    EXPECT_EQ(kYmWaves.tl[510], 1024);
}

// 1 to 25 take four steps each on the way up and on the way down; the ends take 3 and 7, which
// makes 210 together.
TEST_F(Ym2413, TremoloIsATriangleOf210Steps) {
    ASSERT_EQ(kYmTremolo.size(), 2 * 25 * 4 + 3 + 7u);
    for (int level = 0; level <= 26; ++level) {
        const auto times = std::count(kYmTremolo.begin(), kYmTremolo.end(), level);
        EXPECT_EQ(times, level == 0 ? 7 : level == 26 ? 3 : 8) << level;
    }
    const auto top = std::find(kYmTremolo.begin(), kYmTremolo.end(), 26);
    EXPECT_EQ(top - kYmTremolo.begin(), 7 + 25 * 4);
    EXPECT_TRUE(std::is_sorted(kYmTremolo.begin(), top));
    EXPECT_TRUE(std::is_sorted(top, kYmTremolo.end(), std::greater<>()));
    EXPECT_EQ(std::count(kYmTremolo.begin(), top, 13), 4);
}

// Published: a rate of 4n + q is (4 + q) / 4 times as fast as the rate 4n, and four rates double
// the speed. The slowest that moves makes one increment in 2 x 8192 samples. Settled: from rate 68
// on (52 of the manual's 63; the first 16 of the table never step) it is twice as fast, and from 76
// on it is 4 a sample.
TEST_F(Ym2413, RateTablesDoubleTheSpeedEveryFourRates) {
    for (size_t rate = 0; rate < kYmRates; ++rate) {
        double perSample = 0.0;
        for (size_t i = 0; i < 8; ++i) {
            perSample += kYmSteps[kYmRateSelect[rate] + i];
        }
        perSample /= 8.0 * static_cast<double>(1U << kYmRateShift[rate]);
        double expected = 0.0;
        if (rate >= 76) {
            expected = 4.0;
        } else if (rate >= 16) {
            const auto octave = static_cast<double>((rate - 16) / 4);
            const auto quarter = static_cast<double>(rate % 4);
            expected = 0.5 / 8192.0 * std::exp2(octave) * (4.0 + quarter) / 4.0;
            expected *= rate >= 68 ? 2.0 : 1.0;
        }
        EXPECT_DOUBLE_EQ(perSample, expected) << rate;
    }
}

// The eight increments are spread evenly: none is more than one size above the smallest, and the
// sums of both halves differ by no more than that.
TEST_F(Ym2413, EnvelopeIncrementsAreSpreadEvenly) {
    for (size_t row = 0; row < 15; ++row) {
        const uint8_t* const steps = &kYmSteps[row * 8];
        const auto [least, most] = std::minmax_element(steps, steps + 8);
        EXPECT_LE(*most, std::max(2 * *least, 1)) << row;
        const int first = std::accumulate(steps, steps + 4, 0);
        const int second = std::accumulate(steps + 4, steps + 8, 0);
        EXPECT_LE(std::abs(first - second), *most - *least) << row;
    }
    EXPECT_EQ(kYmSteps[kYmStepInstant], 8);
    EXPECT_EQ(kYmSteps[kYmStepLast], 0);
}

// Six decibels an octave, an octave being 16 parts: 16 x log2 of the F-number's top bits, rounded
// up to an even number, and 16 less for each block below the last; at least 0.
TEST_F(Ym2413, KeyScaleRisesSixDecibelsAnOctave) {
    for (int block = 0; block < 8; ++block) {
        for (int top = 0; top < 16; ++top) {
            const int last =
                top == 0 ? 0 : 48 + 2 * static_cast<int>(std::ceil(8 * std::log2(top)));
            const int expected = std::max(0, last - 16 * (7 - block));
            EXPECT_EQ(kYmKeyScale[static_cast<size_t>(block * 16 + top)], expected)
                << block << " " << top;
        }
    }
    EXPECT_EQ(kYmKeyScale[127], 112); // 42 dB, the most
}

// The deviation is as large as the F-number's top three bits, in eight steps of a triangle: whole,
// half, none, half and whole on the other side. Halves are cut off.
TEST_F(Ym2413, VibratoIsATriangleAsDeepAsTheNumberIsHigh) {
    for (int top = 0; top < 8; ++top) {
        const std::array<int32_t, 8>& row = kYmVibrato[static_cast<size_t>(top)];
        EXPECT_EQ(row[0], top);
        EXPECT_EQ(row[1], top / 2);
        EXPECT_EQ(row[2], 0);
        for (size_t step = 0; step < 4; ++step) {
            EXPECT_EQ(row[step + 4], -row[step]);
            EXPECT_EQ(row[step], row[(8 - step) % 8]) << "the same on the way back";
        }
    }
}

// --- timing and reset
// -------------------------------------------------------------------------------

TEST_F(Ym2413, OneSampleComesEvery72Clocks) {
    for (uint32_t clock = 1; clock <= 720; ++clock) {
        YmTick(*ym);
        EXPECT_EQ(ym->pairs->sampleCount, clock / 72 * 2) << clock;
    }
}

TEST_F(Ym2413, ResetSilencesEverySlotAndRestoresTheVoices) {
    PureVoice();
    Write({
        {0x30, 0x50}
    });
    KeyOn(0, 4, 300);
    KeyOn(8, 4, 200);
    EXPECT_FALSE(AllZero(Run(2000)));
    YmReset(*ym);
    EXPECT_TRUE(AllZero(Run(2000)));
    for (const YM_CHANNEL& channel : ym->channels) {
        EXPECT_EQ(channel.blockFnum, 0u);
        for (const YM_SLOT& slot : channel.slots) {
            EXPECT_EQ(slot.state, YmEnvelope::kOff);
            EXPECT_EQ(slot.volume, 255);
            EXPECT_EQ(slot.key, 0u);
        }
    }
    EXPECT_EQ(ym->instrument, kYmVoices);
    EXPECT_EQ(ym->instrument[0][0], 0x49);
    EXPECT_EQ(ym->instVol, (std::array<uint8_t, 9>{}));
}

// Registers 63 to 16 and 15 are cleared; the rhythm register is 14.
TEST_F(Ym2413, ResetLeavesTheRhythmRegister) {
    Write({
        {0x0E, 0x3F}
    });
    YmReset(*ym);
    EXPECT_EQ(ym->rhythm, 0x3F);
}

TEST_F(Ym2413, BothSidesAreTheSame) {
    Write({
        {0x30, 0x10}
    });
    KeyOn(0, 4, 300);
    for (int i = 0; i < 72 * 600; ++i) {
        YmTick(*ym);
    }
    ASSERT_EQ(ym->pairs->sampleCount, 1200u);
    for (size_t i = 0; i < 1200; i += 2) {
        EXPECT_EQ(ym->pairs->samples[i], ym->pairs->samples[i + 1]);
    }
}

// Nine full sines in step reach 9 x 2042 x 4.
TEST_F(Ym2413, SumIsClippedToSixteenBits) {
    PureVoice();
    for (int channel = 0; channel < 9; ++channel) {
        KeyOn(channel, 4, 300);
    }
    Skip(1000);
    const std::vector<double> samples = Run(1000);
    EXPECT_EQ(*std::max_element(samples.begin(), samples.end()), 32767.0);
    EXPECT_EQ(*std::min_element(samples.begin(), samples.end()), -32768.0);
}

// --- registers
// ----------------------------------------------------------------------------------------

TEST_F(Ym2413, UserVoiceIsFollowedByItsChannelsAlone) {
    Write({
        {0x30, 0x10},
        {0x31, 0x10},
        {0x32, 0x10}
    }); // voice 1 everywhere
    Write({
        {0x30, 0x05}
    }); // and back to 0 on one channel
    PureVoice();
    Write({
        {1, 0x2A       },
        {2, 0x80 | 0x15},
        {3, 0x1F       },
        {5, 0x37       },
        {7, 0x94       },
        {0, 0xE3       },
        {4, 0x52       },
        {6, 0x61       }
    });
    EXPECT_EQ(Carrier(0).mul, 20);
    EXPECT_EQ(Modulator(0).mul, 6);
    EXPECT_EQ(Modulator(0).amMask, 0xFFFFFFFFu);
    EXPECT_NE(Modulator(0).vib, 0);
    EXPECT_EQ(Modulator(0).egType, 1);
    EXPECT_EQ(Modulator(0).tl, 42u);
    EXPECT_EQ(Modulator(0).ksl, 1);
    EXPECT_EQ(Modulator(0).wavetable, 1024u);
    EXPECT_EQ(Carrier(0).wavetable, 1024u);
    EXPECT_EQ(ym->channels[0].fb, 15);
    EXPECT_EQ(Carrier(0).tl, 40u);
    EXPECT_EQ(Carrier(0).ar, 3u * 4 + 16);
    EXPECT_EQ(Carrier(0).dr, 7u * 4 + 16);
    EXPECT_EQ(Carrier(0).sl, 72u);
    EXPECT_EQ(Carrier(0).rr, 4u * 4 + 16);
    EXPECT_EQ(Modulator(0).ar, 5u * 4 + 16);
    EXPECT_EQ(Modulator(0).sl, 48u);
    // Voice 1: 61 61 1E 17 F0 78 00 17.
    EXPECT_EQ(Carrier(1).mul, 2);
    EXPECT_EQ(Modulator(1).tl, 0x1Eu * 2);
    EXPECT_EQ(ym->channels[1].fb, 15);
    EXPECT_EQ(Carrier(1).ar, 7u * 4 + 16);
    EXPECT_EQ(ym->instrument[0],
              (std::array<uint8_t, 8>{0xE3, 0x2A, 0x95, 0x1F, 0x52, 0x37, 0x61, 0x94}));
}

TEST_F(Ym2413, UserVoiceReachesChannels6To8OnlyWithoutRhythm) {
    for (const bool rhythm : {false, true}) {
        Start();
        Write({
            {0x0E, rhythm ? 0x20 : 0x00},
            {1,    0x27                }
        });
        for (size_t channel = 0; channel < 9; ++channel) {
            const bool follows = channel < 6 || !rhythm;
            EXPECT_EQ(Carrier(channel).mul == 14, follows) << channel << " rhythm " << rhythm;
        }
    }
}

TEST_F(Ym2413, UserVoiceStartsWithItsOwnBytes) {
    Write({
        {0x30, 0x10},
        {0x30, 0x00}
    });
    EXPECT_EQ(Modulator(0).mul, 18);        // 49
    EXPECT_EQ(Carrier(0).mul, 24);          // 4C
    EXPECT_EQ(Modulator(0).tl, 0x0Cu * 2);  // 4C
    EXPECT_EQ(Modulator(0).ksl, 2);         // top bits 1
    EXPECT_EQ(Carrier(0).wavetable, 1024u); // 12
    EXPECT_EQ(ym->channels[0].fb, 10);
}

TEST_F(Ym2413, VoiceIsLoadedOnlyWhenItsNumberChanges) {
    Write({
        {0x30, 0x30}
    });
    Carrier(0).mul = 77;
    Write({
        {0x30, 0x3F}
    });
    EXPECT_EQ(Carrier(0).mul, 77);
    EXPECT_EQ(Carrier(0).tl, 120u);
    Write({
        {0x30, 0x40},
        {0x30, 0x30}
    });
    EXPECT_EQ(Carrier(0).mul, 2);
}

TEST_F(Ym2413, EveryFixedVoiceIsLoadedWhole) {
    for (int voice = 1; voice < 16; ++voice) {
        Write({
            {0x34, voice << 4}
        });
        const auto& bytes = kYmVoices[static_cast<size_t>(voice)];
        for (size_t index = 0; index < 2; ++index) {
            const YM_SLOT& slot = ym->channels[4].slots[index];
            EXPECT_EQ(slot.egType, bytes[index] >> 5 & 1);
            EXPECT_EQ(slot.ksr, (bytes[index] & 0x10) != 0 ? 0 : 2);
            EXPECT_EQ(slot.sl, (bytes[6 + index] >> 4) * 8u);
            EXPECT_EQ(slot.dr,
                      (bytes[4 + index] & 15) != 0 ? (bytes[4 + index] & 15) * 4u + 16 : 0u);
        }
        EXPECT_EQ(Modulator(4).tl, (bytes[2] & 63) * 2u);
        EXPECT_EQ(Carrier(4).wavetable, (bytes[3] & 16) != 0 ? 1024u : 0u);
    }
}

// Numbers 9 to 15 of each group are those of channels 0 to 6 again.
TEST_F(Ym2413, RegistersAfterTheNinthChannelRepeat) {
    Write({
        {0x19, 0x55},
        {0x2F, 0x0B},
        {0x3A, 0x27}
    });
    EXPECT_EQ(ym->channels[0].blockFnum, 0x055u);
    EXPECT_EQ(ym->channels[6].blockFnum, 0xB00u);
    EXPECT_EQ(ym->instVol[1], 0x27);
}

TEST_F(Ym2413, OtherRegistersDoNothing) {
    Write({
        {0x30, 0x21}
    });
    KeyOn(0, 4, 300);
    const std::vector<uint8_t> before = StateOf(*ym);
    for (int reg = 0; reg < 256; ++reg) {
        if ((reg >= 8 && reg < 14) || reg == 15 || reg >= 64) {
            Write({
                {reg, 0xFF}
            });
        }
    }
    EXPECT_EQ(StateOf(*ym), before);
}

TEST_F(Ym2413, PitchIsMadeOfTwoRegisters) {
    Write({
        {0x12, 0xAB},
        {0x22, 0x0D}
    });
    EXPECT_EQ(ym->channels[2].blockFnum, 0xDABu);
    EXPECT_EQ(ym->channels[2].kcode, 0xD);
    EXPECT_EQ(ym->channels[2].kslBase, kYmKeyScale[0xDAB >> 5]);
    Write({
        {0x12, 0x00}
    });
    EXPECT_EQ(ym->channels[2].blockFnum, 0xD00u);
}

TEST_F(Ym2413, KeyIsHeldByMelodyAndRhythmApart) {
    KeyOn(6, 4, 300);
    Write({
        {0x0E, 0x30}
    });
    EXPECT_EQ(Carrier(6).key, 3u);
    KeyOff(6, 4, 300);
    EXPECT_EQ(Carrier(6).key, 2u);
    EXPECT_EQ(Carrier(6).state, YmEnvelope::kDump);
    Write({
        {0x0E, 0x20}
    });
    EXPECT_EQ(Carrier(6).key, 0u);
    EXPECT_EQ(Carrier(6).state, YmEnvelope::kRelease);
}

TEST_F(Ym2413, RhythmBitsKeyTheirSlots) {
    struct ROW {
        int bit;
        size_t channel;
        bool modulator;
        bool carrier;
    };
    for (const ROW row : {
             ROW{4, 6, true,  true },
             ROW{0, 7, true,  false},
             ROW{3, 7, false, true },
             ROW{2, 8, true,  false},
             ROW{1, 8, false, true }
    }) {
        Start();
        Write({
            {0x0E, 0x20 | 1 << row.bit}
        });
        for (size_t channel = 6; channel < 9; ++channel) {
            EXPECT_EQ(Modulator(channel).key != 0, row.modulator && channel == row.channel)
                << row.bit;
            EXPECT_EQ(Carrier(channel).key != 0, row.carrier && channel == row.channel) << row.bit;
        }
        Write({
            {0x0E, 0x1F}
        }); // without bit 5 no key is held
        for (size_t channel = 6; channel < 9; ++channel) {
            EXPECT_EQ(Modulator(channel).key | Carrier(channel).key, 0u);
        }
        EXPECT_EQ(ym->rhythm, 0x1F);
    }
}

TEST_F(Ym2413, RhythmModeLoadsItsVoicesAndRestoresTheOldOnes) {
    Write({
        {0x36, 0x12},
        {0x37, 0x34},
        {0x38, 0x56}
    });
    Write({
        {0x0E, 0x20}
    });
    EXPECT_EQ(Modulator(6).tl, 0x16u * 2);
    EXPECT_EQ(Carrier(6).tl, 16u);
    EXPECT_EQ(Modulator(7).tl, 3u * 8);
    EXPECT_EQ(Carrier(7).tl, 4u * 8);
    EXPECT_EQ(Modulator(8).tl, 5u * 8);
    EXPECT_EQ(Modulator(8).mul, 10);
    Write({
        {0x0E, 0x00}
    });
    EXPECT_EQ(Modulator(6).tl, 0x1Eu * 2);
    EXPECT_EQ(Modulator(7).tl, 0x19u * 2);
    EXPECT_EQ(Modulator(8).tl, 0x1Eu * 2);
    EXPECT_EQ(Carrier(8).tl, 6u * 8);
}

TEST_F(Ym2413, RhythmModeTakesLevelsInPlaceOfVoices) {
    Write({
        {0x0E, 0x20},
        {0x36, 0x53},
        {0x37, 0xA4},
        {0x38, 0x71}
    });
    EXPECT_EQ(Carrier(6).tl, 24u);
    EXPECT_EQ(Modulator(6).tl, 0x16u * 2); // the bass drum's modulator keeps its voice's
    EXPECT_EQ(Modulator(7).tl, 80u);
    EXPECT_EQ(Carrier(7).tl, 32u);
    EXPECT_EQ(Modulator(8).tl, 56u);
    EXPECT_EQ(Carrier(8).tl, 8u);
    EXPECT_EQ(Modulator(8).mul, 10); // the tom's own, not voice 7's
}

TEST_F(Ym2413, SustainBitCountsWhenTheRatesAreReadAgain) {
    PureVoice();
    KeyOn(0, 4, 300);
    const YM_RATE before = Carrier(0).sustainRelease;
    KeyOn(0, 4, 300, 0x20);
    EXPECT_EQ(ym->channels[0].sustain, 1);
    EXPECT_EQ(Carrier(0).sustainRelease.shift, before.shift);
    KeyOn(0, 4, 301, 0x20);
    EXPECT_EQ(Carrier(0).sustainRelease.shift, before.shift + 2); // eight rates slower
}

// --- output
// -------------------------------------------------------------------------------------------

TEST_F(Ym2413, OwnerThatNeverFlushesIsSafe) {
    YmRun(*ym, 800'000);
    EXPECT_EQ(ym->pairs->sampleCount, ym->pairs->samples.size()) << "what comes then is lost";
}

// 313 lines of 228 clocks are the longest frame; no pair of it may be lost.
TEST_F(Ym2413, NoSoundOfAFrameIsLostAtAnyRateAndQuality) {
    constexpr uint32_t kClockPal = 3'546'895;
    constexpr int kFrames = 20;
    constexpr int kFrameClocks = 313 * 228;
    for (const uint32_t rate : {22050u, 44100u, 48000u, 96000u, 192000u}) {
        for (const int quality : {0, 1, 2}) {
            SetAudioRate(rate);
            Settings().SetInt(L"audio_app_quality", quality);
            YmInit(*ym, kClockPal);
            YmReset(*ym);
            ym->sound.Init(kClockPal / 72.0, SoundChoiceFromSettings());
            size_t pairs = 0;
            for (int frame = 0; frame < kFrames; ++frame) {
                for (int clock = 0; clock < kFrameClocks; ++clock) {
                    YmTick(*ym);
                }
                ASSERT_LT(ym->pairs->sampleCount, ym->pairs->samples.size());
                ym->sound.Flush();
                EXPECT_EQ(ym->pairs->sampleCount, 0u);
                const size_t ready = ym->sound.Output().size();
                pairs += ready / 2;
                ym->sound.Consume(static_cast<int32_t>(ready));
            }
            const double expected = double{kFrames} * kFrameClocks / kClockPal * rate;
            EXPECT_NEAR(static_cast<double>(pairs), expected, rate * 0.003 + 5.0)
                << rate << " quality " << quality;
        }
    }
}

TEST_F(Ym2413, SoundUntilReadyIsMadeInWholeSamples) {
    ym->sound.Init(kRate, SoundChoiceFromSettings());
    for (int i = 0; i < 31; ++i) {
        YmTick(*ym);
    }
    ym->sound.FlushUntilReady(401, [&] { YmRun(*ym, kYmClocksPerSample); });
    EXPECT_GE(ym->sound.Output().size(), 401u);
    EXPECT_LE(ym->sound.Output().size(), 404u);
    EXPECT_EQ(ym->tick, 31u);
    const uint32_t steps = ym->egCounter;
    ym->sound.FlushUntilReady(300, [&] { YmRun(*ym, kYmClocksPerSample); });
    EXPECT_EQ(ym->egCounter, steps);
}

TEST_F(Ym2413, SoundUntilReadyEndsWhenTheResamplerIsFull) {
    ym->sound.FlushUntilReady(1'000'000, [&] { YmRun(*ym, kYmClocksPerSample); });
    EXPECT_EQ(ym->sound.Output().size(), 44100u / 40 * 2);
}

// --- states
// -------------------------------------------------------------------------------------------

TEST_F(Ym2413, StateSavedAtAnyClockContinuesWithTheSameSound) {
    Write({
        {0x30, 0x10},
        {0x31, 0x22},
        {0x32, 0xC3},
        {0x0E, 0x20}
    });
    KeyOn(0, 4, 300);
    KeyOn(1, 5, 200);
    KeyOn(2, 3, 400);
    KeyOn(7, 3, 321);
    Write({
        {0, 0x31},
        {1, 0x31},
        {2, 0x10},
        {5, 0x81}
    });
    KeyOn(3, 6, 300);
    auto other = std::make_unique<HEARD_CHIP<YM2413>>();
    for (int trial = 0; trial < 20; ++trial) {
        Write({
            {0x0E, 0x20 | trial}
        });
        Skip(100);
        for (int clock = 0; clock < trial * 3; ++clock) {
            YmTick(*ym);
        }
        ym->pairs->sampleCount = 0;
        const std::vector<uint8_t> state = StateOf(*ym);
        EXPECT_EQ(state[0], 1);
        YmInit(*other, kClock);
        YmReset(*other);
        ASSERT_EQ(YmLoadState(*other, state.data(), YmStateSize()), YmStateSize());
        EXPECT_EQ(StateOf(*other), state);
        // Writes whose effect depends on earlier writes must match too.
        const auto listen = [&] {
            std::vector<double> samples = Run(500);
            Write({
                {1, 0x37},
                {4, 0x56},
                {5, 0x46}
            });
            const std::vector<double> more = Run(500);
            samples.insert(samples.end(), more.begin(), more.end());
            return samples;
        };
        const std::vector<double> expected = listen();
        const std::vector<uint8_t> end = StateOf(*ym);
        ym.swap(other);
        ASSERT_EQ(listen(), expected) << trial;
        ASSERT_EQ(StateOf(*ym), end) << trial;
    }
}

TEST_F(Ym2413, StateOfAnotherSizeOrVersionIsRefused) {
    std::vector<uint8_t> state = StateOf(*ym);
    Write({
        {0x10, 0x33}
    });
    EXPECT_EQ(YmLoadState(*ym, state.data(), YmStateSize() - 1), 0u);
    EXPECT_EQ(YmLoadState(*ym, state.data(), 0), 0u);
    state[0] = 0;
    EXPECT_EQ(YmLoadState(*ym, state.data(), YmStateSize()), 0u);
    state[0] = 1;
    ++state[2];
    EXPECT_EQ(YmLoadState(*ym, state.data(), YmStateSize()), 0u);
    EXPECT_EQ(ym->channels[0].blockFnum, 0x33u);
}

namespace {

// Fields that index or shift. Sanitizers do not see an index past an array within the record.
void ExpectIndexesInRange(const YM2413& ym) {
    ASSERT_LT(ym.tick, 72u);
    ASSERT_LT(ym.lfoAmCnt, 210u << 24);
    ASSERT_LE(ym.lfoPm, 7u);
    for (const YM_CHANNEL& channel : ym.channels) {
        ASSERT_LE(channel.blockFnum, 0xFFFu);
        ASSERT_LE(channel.fb, 15);
        ASSERT_LE(channel.kcode, 15);
        for (const YM_SLOT& slot : channel.slots) {
            ASSERT_LE(std::max({slot.ar, slot.dr, slot.rr}) + slot.kscale, 91u);
            ASSERT_LE(slot.kscale, 15);
            ASSERT_LE(slot.ksr, 2);
            ASSERT_LE(slot.ksl, 31);
            ASSERT_LE(slot.state, YmEnvelope::kDump);
            ASSERT_TRUE(slot.wavetable == 0 || slot.wavetable == 1024);
            for (const YM_RATE& rate :
                 {slot.attack, slot.decay, slot.release, slot.sustainRelease, slot.dump}) {
                ASSERT_LE(rate.shift, 15);
                ASSERT_LE(rate.select, 112);
            }
        }
    }
}

} // namespace

TEST_F(Ym2413, AnyBytesAsAStateAreSafe) {
    std::vector<uint8_t> state = StateOf(*ym);
    std::mt19937 random(1);
    bool heard = false;
    for (int trial = 0; trial < 300; ++trial) {
        for (size_t i = 5; i < state.size(); ++i) {
            state[i] = trial == 0 ? uint8_t{0xFF} : static_cast<uint8_t>(random());
        }
        ASSERT_EQ(YmLoadState(*ym, state.data(), YmStateSize()), YmStateSize());
        ExpectIndexesInRange(*ym);
        heard |= !AllZero(Run(50));
        for (int i = 0; i < 20; ++i) {
            Write({
                {static_cast<int>(random() & 0xFF), static_cast<int>(random() & 0xFF)}
            });
            Skip(5);
        }
    }
    EXPECT_TRUE(heard);
}
