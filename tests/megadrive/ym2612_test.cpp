// Registers, keys, DAC, sides, sample grid and resampler.
#include "machine/sound_settings.h"
#include "megadrive/ym2612_rig.h"
#include "megadrive/ym2612_tables.h"

#include "support/heard_chip.h"

#include <random>

namespace {

class Ym2612Test : public Ym2612Rig {
protected:
    // Whether a data write to this register changes anything.
    bool Changes(int reg, int value) {
        Ym2612Write(*ym, (reg & 0x100) != 0 ? 2 : 0, static_cast<uint8_t>(reg));
        const std::vector<uint8_t> before = StateOf(*ym);
        Ym2612Write(*ym, 1, static_cast<uint8_t>(value));
        return StateOf(*ym) != before;
    }
};

} // namespace

// --- tables -------------------------------------------------------------------------------------

// Known by hand: the level halves every 256 entries, is a number of 14 bits, and has both signs.
TEST_F(Ym2612Test, LevelTableHalvesEverySixDecibels) {
    ASSERT_EQ(kYm2612Tables.level.size(), 6656u);
    EXPECT_EQ(kYm2612Tables.level[0], 8168);   // 65,358 / 8 to the nearest 4
    EXPECT_EQ(kYm2612Tables.level[510], 4096); // 32,768 / 8
    for (size_t row = 1; row < 13; ++row) {
        for (size_t x = 0; x < 512; x += 2) {
            EXPECT_EQ(kYm2612Tables.level[row * 512 + x], kYm2612Tables.level[x] >> row);
            EXPECT_EQ(kYm2612Tables.level[row * 512 + x + 1], -kYm2612Tables.level[row * 512 + x]);
        }
    }
    for (size_t x = 0; x < 256; ++x) {
        EXPECT_NEAR(kYm2612Tables.level[x * 2],
                    8192.0 * std::exp2(-static_cast<double>(x + 1) / 256.0), 3.0);
    }
}

TEST_F(Ym2612Test, SineTableIsSymmetric) {
    for (size_t i = 0; i < 512; ++i) {
        EXPECT_EQ(kYm2612Tables.sine[i] & 1, 0);
        EXPECT_EQ(kYm2612Tables.sine[i + 512], kYm2612Tables.sine[i] + 1);
        EXPECT_EQ(kYm2612Tables.sine[i], kYm2612Tables.sine[511 - i]);
    }
    EXPECT_EQ(kYm2612Tables.sine[255], 0); // the crest
    EXPECT_EQ(kYm2612Tables.sine[0],
              2 * 2137); // log2(1 / sin(pi / 1024)) x 256, the published 0x859
}

// --- sample grid --------------------------------------------------------------------------------

TEST_F(Ym2612Test, OneSampleComesEvery144Clocks) {
    for (uint32_t clock = 1; clock <= 1440; ++clock) {
        Ym2612Tick(*ym);
        EXPECT_EQ(ym->pairs->sampleCount, clock / 144 * 2) << clock;
    }
}

TEST_F(Ym2612Test, ManyTicksAtOnceAreTheSame) {
    auto other = std::make_unique<HEARD_CHIP<YM2612>>();
    Ym2612SetClock(*other, kClock);
    Ym2612Reset(*other);
    const auto play = [](YM2612& chip) {
        for (const auto& [reg, value] : {
                 std::array{0x50, 0x1F},
                 std::array{0x80, 0x0F},
                 std::array{0xA4, 0x24},
                 std::array{0xA0, 0x80},
                 std::array{0xB0, 0x3F},
                 std::array{0x28, 0xF0}
        }) {
            Ym2612Write(chip, 0, static_cast<uint8_t>(reg));
            Ym2612Write(chip, 1, static_cast<uint8_t>(value));
        }
    };
    play(*ym);
    play(*other);
    for (uint32_t clocks = 0; clocks < 600; clocks += 7) {
        Ym2612Run(*ym, clocks);
        for (uint32_t i = 0; i < clocks; ++i) {
            Ym2612Tick(*other);
        }
        ASSERT_EQ(ym->pairs->sampleCount, other->pairs->sampleCount);
        ASSERT_EQ(ym->tickCount, other->tickCount);
    }
    EXPECT_GT(ym->pairs->sampleCount, 300u);
    EXPECT_EQ(ym->pairs->samples, other->pairs->samples);
    EXPECT_EQ(StateOf(*ym), StateOf(*other));
    EXPECT_NE(*std::max_element(ym->pairs->samples.begin(), ym->pairs->samples.end()), 0);
}

// Any registers, with pauses from a clock to a second: keys, LFO, SSG shapes, both timers and CSM.
TEST_F(Ym2612Test, ManyTicksAtOnceAreTheSameWithAnyRegisters) {
    auto other = std::make_unique<HEARD_CHIP<YM2612>>();
    for (uint32_t seed = 0; seed < 40; ++seed) {
        std::mt19937 random(seed);
        const auto draw = [&] { return static_cast<uint32_t>(random()); };
        for (YM2612* chip : {static_cast<YM2612*>(ym.get()), static_cast<YM2612*>(other.get())}) {
            Ym2612SetClock(*chip, kClock);
            Ym2612Reset(*chip);
            chip->pairs->sampleCount = 0;
        }
        const auto write = [&](uint32_t reg, uint32_t value) {
            for (YM2612* chip :
                 {static_cast<YM2612*>(ym.get()), static_cast<YM2612*>(other.get())}) {
                Ym2612Write(*chip, reg >> 8 << 1, static_cast<uint8_t>(reg));
                Ym2612Write(*chip, 1, static_cast<uint8_t>(value));
            }
        };
        for (uint32_t trial = 0; trial < 400; ++trial) {
            for (uint32_t writes = draw() % 12; writes != 0; --writes) {
                uint32_t reg = (draw() & 0x100) | (0x30 + draw() % 0x88);
                // SSG shapes in every fourth run, so that the others have long quiet times.
                if (seed % 4 != 0 && (reg & 0xF0) == 0x90) {
                    reg = 0x28;
                }
                write(reg, draw());
            }
            write(0x28, draw());
            if (draw() % 8 == 0) {
                write(seed % 2 == 0 ? 0x22 : 0x2B, draw());
                write(0x24, draw());
                write(0x27, seed % 4 == 1 ? draw() : draw() & 0x3F);
            }
            const uint32_t clocks = draw() % (trial % 8 == 0 ? 40'000 : 1'500);
            ym->pairs->sampleCount = 0;
            other->pairs->sampleCount = 0;
            Ym2612Run(*ym, clocks);
            for (uint32_t i = 0; i < clocks; ++i) {
                Ym2612Tick(*other);
            }
            ASSERT_EQ(ym->pairs->sampleCount, other->pairs->sampleCount) << seed << " " << trial;
            ASSERT_TRUE(std::equal(ym->pairs->samples.begin(),
                                   ym->pairs->samples.begin() + ym->pairs->sampleCount,
                                   other->pairs->samples.begin()))
                << seed << " " << trial;
            ASSERT_EQ(StateOf(*ym), StateOf(*other)) << seed << " " << trial;
        }
    }
}

// --- registers ----------------------------------------------------------------------------------

TEST_F(Ym2612Test, PortsTakeAddressAndData) {
    Ym2612Write(*ym, 0, 0x24);
    EXPECT_EQ(ym->address, 0x24);
    Ym2612Write(*ym, 3, 0x80); // data goes where the last address said, through either port
    EXPECT_EQ(ym->timerA, 0x200u);
    Ym2612Write(*ym, 2, 0xB4);
    EXPECT_EQ(ym->address, 0x1B4);
    Ym2612Write(*ym, 1, 0x80);
    EXPECT_EQ(ym->channels[3].rightMask, 0u);
    EXPECT_EQ(ym->channels[0].rightMask, ~0u);
}

// As heard: one operator's key and one operator's level. The offsets are in the order 1, 3, 2, 4,
// while the bits of the key register are in the true one.
TEST_F(Ym2612Test, OperatorsAreAddressedInTheOrderOneThreeTwoFour) {
    constexpr std::array<int, 4> kOperatorOfOffset{1, 3, 2, 4};
    for (int channel = 1; channel <= 6; ++channel) {
        for (int offset = 0; offset < 4; ++offset) {
            for (int op = 1; op <= 4; ++op) {
                Start();
                PureVoice(channel);
                Pitch(channel, 4, 1000);
                SetChannel(channel, 0x40 + 4 * offset, 0);
                Keys(channel, 1 << (op - 1));
                const bool heard = PeakOf(Run(200)) > 0.0;
                EXPECT_EQ(heard, kOperatorOfOffset.at(static_cast<size_t>(offset)) == op)
                    << channel << " " << offset << " " << op;
            }
        }
    }
}

TEST_F(Ym2612Test, RegistersWithoutAChannelAreDropped) {
    for (int reg = 0x33; reg < 0x200; reg += 4) {
        if ((reg & 0xFF) >= 0x30) {
            EXPECT_FALSE(Changes(reg, 0x5A)) << reg;
            EXPECT_FALSE(Changes(reg, 0xFF)) << reg;
        }
    }
    EXPECT_TRUE(Changes(0x32, 0x5A));
}

TEST_F(Ym2612Test, SecondPortHasNoGlobalRegisters) {
    for (int reg = 0x100; reg < 0x130; ++reg) {
        EXPECT_FALSE(Changes(reg, 0xFF)) << reg;
    }
    EXPECT_TRUE(Changes(0x2B, 0xFF));
}

TEST_F(Ym2612Test, RegistersThatDoNotExistAreDropped) {
    for (const int reg : {0x00, 0x1F, 0x20, 0x21, 0x23, 0x29, 0x2C, 0x2F, 0xB8, 0xBC, 0xC0, 0xFE}) {
        EXPECT_FALSE(Changes(reg, 0xFF)) << reg;
    }
}

TEST_F(Ym2612Test, KeysOfChannelsThreeAndSevenDoNotExist) {
    for (int channel = 1; channel <= 6; ++channel) {
        PureVoice(channel);
    }
    EXPECT_FALSE(Changes(0x28, 0xF3));
    EXPECT_FALSE(Changes(0x28, 0xF7));
    EXPECT_FALSE(Changes(0x28, 0x03));
    for (const int value : {0, 1, 2, 4, 5, 6}) {
        EXPECT_TRUE(Changes(0x28, 0xF0 | value));
        const auto channel = static_cast<size_t>(value < 3 ? value : value - 1);
        EXPECT_EQ(ym->channels.at(channel).slots[3].keyOn, 1) << value;
    }
}

TEST_F(Ym2612Test, OperatorRegistersAreTakenApart) {
    SetOperator(4, 2, 0x30, 0x5C);
    SetOperator(4, 2, 0x40, 0xFF);
    SetOperator(4, 2, 0x50, 0x8A);
    SetOperator(4, 2, 0x60, 0x85);
    SetOperator(4, 2, 0x70, 0x1F);
    SetOperator(4, 2, 0x80, 0xF3);
    SetOperator(4, 2, 0x90, 0xFB);
    const YM2612_SLOT& slot = Slot(4, 2);
    EXPECT_EQ(slot.dt, 5u);
    EXPECT_EQ(slot.mul, 24u);
    EXPECT_EQ(slot.tl, 1016u);
    EXPECT_EQ(slot.ar, 52u);
    EXPECT_EQ(slot.ksrShift, 1);
    EXPECT_EQ(slot.d1r, 42u);
    EXPECT_EQ(slot.amMask, ~0u);
    EXPECT_EQ(slot.d2r, 94u);
    EXPECT_EQ(slot.sl, 992u);
    EXPECT_EQ(slot.rr, 46u);
    EXPECT_EQ(slot.ssg, 11);
    SetOperator(4, 2, 0x30, 0x00);
    SetOperator(4, 2, 0x50, 0x00);
    SetOperator(4, 2, 0x60, 0x00);
    EXPECT_EQ(slot.mul, 1u);
    EXPECT_EQ(slot.ar, 0u);
    EXPECT_EQ(slot.ksrShift, 3);
    EXPECT_EQ(slot.d1r, 0u);
    EXPECT_EQ(slot.amMask, 0u);
}

TEST_F(Ym2612Test, ChannelRegistersAreTakenApart) {
    SetChannel(5, 0xB0, 0x3D);
    SetChannel(5, 0xB4, 0x65);
    const YM2612_CHANNEL& channel = ym->channels[4];
    EXPECT_EQ(channel.algorithm, 5);
    EXPECT_EQ(channel.feedback, 13);
    EXPECT_EQ(channel.leftMask, 0u);
    EXPECT_EQ(channel.rightMask, ~0u);
    EXPECT_EQ(channel.ams, 1);
    EXPECT_EQ(channel.pms, 160u);
    SetChannel(5, 0xB0, 0x00);
    EXPECT_EQ(channel.feedback, 0);
}

// --- reset --------------------------------------------------------------------------------------

TEST_F(Ym2612Test, ResetSilencesAndClears) {
    for (int channel = 1; channel <= 6; ++channel) {
        PlayOne(channel, 1, 4, 1000);
        SetChannel(channel, 0xB4, 0x37);
    }
    Set(0x22, 0x0F);
    Set(0x26, 255);
    Set(0x2A, 0xFF);
    Set(0x2B, 0x80);
    Set(0x27, 0x8F);
    Skip(2000);
    ASSERT_NE(ym->status, 0);
    Ym2612Reset(*ym);
    EXPECT_EQ(ym->status, 0);
    EXPECT_EQ(ym->irq, 0);
    EXPECT_EQ(ym->irqMask, 3);
    EXPECT_EQ(ym->dacEnabled, 0);
    EXPECT_EQ(ym->dacOut, 0);
    EXPECT_EQ(ym->lfoIncrement, 0u);
    EXPECT_EQ(ym->egTimerAdd, 65536u);
    EXPECT_EQ(ym->egTimerOverflow, 196608u);
    for (const YM2612_CHANNEL& channel : ym->channels) {
        EXPECT_EQ(channel.pitch.blockFnum, 0u);
        EXPECT_EQ(channel.pms, 0u);
        for (const YM2612_SLOT& slot : channel.slots) {
            EXPECT_EQ(slot.state, Ym2612Envelope::kOff);
            EXPECT_EQ(slot.volume, 1023);
            EXPECT_EQ(slot.keyOn, 0);
            EXPECT_EQ(slot.tl, 0u);
        }
    }
    EXPECT_EQ(PeakOf(Run(2000)), 0.0);
    EXPECT_EQ(ym->status, 0); // the timers are stopped
}

// Some games never write the register of the sides.
TEST_F(Ym2612Test, BothSidesAreOnAfterReset) {
    for (int channel = 1; channel <= 6; ++channel) {
        for (const size_t side : {size_t{0}, size_t{1}}) {
            Start();
            PlayOne(channel, 4, 4, 1000);
            EXPECT_EQ(PeakOf(Run(200, side)), kPeak) << channel;
        }
    }
}

// Programs pull the reset line in the middle of a frame.
TEST_F(Ym2612Test, ResetLeavesTheSampleGridAndWhatSounded) {
    PlayOne(1, 4, 4, 1000);
    Ym2612Run(*ym, 20 * 144 + 50);
    Ym2612Reset(*ym);
    EXPECT_EQ(ym->tickCount, 50u);
    EXPECT_EQ(ym->pairs->sampleCount, 40u);
    EXPECT_NE(ym->pairs->samples[20], 0);
}

// --- DAC and sides ------------------------------------------------------------------------------

TEST_F(Ym2612Test, DacIsHeardWithTheNextSample) {
    Set(0x2B, 0x80);
    for (int value = 0; value < 256; ++value) {
        Set(0x2A, value);
        EXPECT_EQ(Run(1)[0], (value - 128) * 64.0);
    }
}

TEST_F(Ym2612Test, DacIsSilentWhileItIsOffAndKeepsItsValue) {
    Set(0x2A, 0xFF);
    EXPECT_EQ(Run(1)[0], 0.0);
    Set(0x2B, 0x7F);
    EXPECT_EQ(Run(1)[0], 0.0);
    Set(0x2B, 0x80);
    EXPECT_EQ(Run(1)[0], 127 * 64.0);
}

TEST_F(Ym2612Test, DacTakesThePlaceOfChannelSixAlone) {
    PlayOne(5, 4, 4, 1000);
    PlayOne(6, 4, 4, 1000);
    Set(0x2A, 0x80);
    Set(0x2B, 0x80);
    EXPECT_EQ(PeakOf(Run(1000)), kPeak);
    Set(0x2B, 0);
    EXPECT_EQ(PeakOf(Run(1000)), 2.0 * kPeak);
}

TEST_F(Ym2612Test, DacGoesThroughTheSidesOfChannelSix) {
    Set(0x2B, 0x80);
    Set(0x2A, 0xFF);
    for (int sides = 0; sides < 4; ++sides) {
        SetChannel(6, 0xB4, sides << 6);
        EXPECT_EQ(Run(1, 0)[0] != 0.0, (sides & 2) != 0);
        EXPECT_EQ(Run(1, 1)[0] != 0.0, (sides & 1) != 0);
    }
}

TEST_F(Ym2612Test, EveryChannelHasItsSides) {
    for (int channel = 1; channel <= 6; ++channel) {
        Start();
        PlayOne(channel, 4, 4, 1000);
        for (int sides = 0; sides < 4; ++sides) {
            SetChannel(channel, 0xB4, sides << 6);
            EXPECT_EQ(PeakOf(Run(200, 0)), (sides & 2) != 0 ? kPeak : 0.0) << channel;
            EXPECT_EQ(PeakOf(Run(200, 1)), (sides & 1) != 0 ? kPeak : 0.0) << channel;
        }
    }
}

// --- resampler ----------------------------------------------------------------------------------

TEST_F(Ym2612Test, SoundComesAtTheProgramsRate) {
    constexpr uint32_t kPalClock = 7'600'489; // 53,203,424 / 7
    constexpr uint32_t kFrameClocks = kPalClock / 50;
    constexpr int kFrames = 100;
    for (const uint32_t rate : {44100u, 48000u}) {
        for (int quality = 0; quality <= 2; ++quality) {
            SetAudioRate(rate);
            Settings().SetInt(L"audio_app_quality", quality);
            Ym2612SetClock(*ym, kPalClock);
            Ym2612Reset(*ym);
            ym->sound.Init(kPalClock / 144.0, SoundChoiceFromSettings());
            size_t pairs = 0;
            for (int frame = 0; frame < kFrames; ++frame) {
                Ym2612Run(*ym, kFrameClocks);
                ym->sound.Flush();
                EXPECT_EQ(ym->pairs->sampleCount, 0u);
                const size_t ready = ym->sound.Output().size();
                pairs += ready / 2;
                ym->sound.Consume(static_cast<int32_t>(ready));
            }
            const double expected = double{kFrames} * kFrameClocks / kPalClock * rate;
            EXPECT_NEAR(static_cast<double>(pairs), expected, rate * 0.003 + 5.0)
                << rate << " quality " << quality;
        }
    }
}

TEST_F(Ym2612Test, OwnerThatNeverFlushesIsSafe) {
    Ym2612Run(*ym, 10'000 * 144);
    EXPECT_EQ(ym->pairs->sampleCount, ym->pairs->samples.size()) << "what comes then is lost";
}

TEST_F(Ym2612Test, SoundUntilReadyIsMadeInWholeSamples) {
    ym->sound.Init(kRate, SoundChoiceFromSettings());
    Ym2612Run(*ym, 31);
    ym->sound.FlushUntilReady(401, [this] { Ym2612Run(*ym, kYm2612ClocksPerSample); });
    EXPECT_GE(ym->sound.Output().size(), 401u);
    EXPECT_LE(ym->sound.Output().size(), 404u);
    EXPECT_EQ(ym->tickCount, 31u);
    const uint32_t steps = ym->egCounter;
    const uint32_t timer = ym->egTimer;
    ym->sound.FlushUntilReady(300, [this] { Ym2612Run(*ym, kYm2612ClocksPerSample); });
    EXPECT_EQ(ym->egCounter, steps);
    EXPECT_EQ(ym->egTimer, timer);
}

TEST_F(Ym2612Test, SoundUntilReadyEndsWhenTheResamplerIsFull) {
    ym->sound.FlushUntilReady(1'000'000, [this] { Ym2612Run(*ym, kYm2612ClocksPerSample); });
    EXPECT_EQ(ym->sound.Output().size(), 44100u / 40 * 2);
}
