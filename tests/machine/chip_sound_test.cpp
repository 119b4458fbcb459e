#include "base/audio_rate.h"
#include "machine/chip_sound.h"
#include "machine/sound_settings.h"
#include "settings/settings.h"

#include "support/allocation_counter.h"
#include "support/spectrum.h"
#include "support/state_fields.h"
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <map>
#include <numbers>
#include <string>
#include <vector>

namespace {

constexpr double kPsgRate = 223721.5625;

std::vector<int16_t> Send(ChipSound& sound, const std::vector<int16_t>& samples) {
    for (size_t i = 0; i + 1 < samples.size(); i += 2) {
        sound.pairs.Add(samples[i], samples[i + 1]);
    }
    sound.Flush();
    std::vector<int16_t> out(sound.Output().begin(), sound.Output().end());
    sound.Consume(1 << 20);
    return out;
}

SOUND_CHOICE CutOffAt(int32_t low, int32_t high) {
    SOUND_CHOICE choice;
    choice.quality = 0;
    choice.cutoff = true;
    choice.cutoffLow = low;
    choice.cutoffHigh = high;
    return choice;
}

std::vector<uint8_t> StateOf(const ChipSound& sound) {
    std::vector<uint8_t> state(sound.StateSize());
    EXPECT_EQ(sound.SaveState(state.data()).At(), state.data() + state.size());
    return state;
}

uint64_t ValueIn(const std::string& table, const std::vector<uint8_t>& piece,
                 const std::string& name) {
    for (const STATE_ROW& row : ReadStateTable(table).rows) {
        if (row.name == name) {
            return state_fields_detail::ValueAt(piece, row.offset, row.width);
        }
    }
    ADD_FAILURE() << name;
    return 0;
}

} // namespace

TEST(ChipSound, CutoffLiftsTheLowsByHalfAndDropsTheHighs) {
    const double rate = 44100.0 * 4.0;
    const auto level = [rate](double frequency) {
        ChipSound sound;
        sound.Init(rate, CutOffAt(800, 15000));
        std::vector<double> heard;
        for (size_t at = 0; heard.size() < 8820 + 44100; at += 2940) {
            std::vector<int16_t> block;
            for (size_t i = 0; i < 2940; ++i) {
                const double angle =
                    2.0 * std::numbers::pi * frequency * static_cast<double>(at + i) / rate;
                const auto sample = static_cast<int16_t>(std::lrint(10000.0 * std::sin(angle)));
                block.insert(block.end(), {sample, sample});
            }
            const std::vector<int16_t> out = Send(sound, block);
            for (size_t i = 0; i < out.size(); i += 2) {
                heard.push_back(out[i]);
            }
        }
        heard.erase(heard.begin(), heard.begin() + 8820);
        heard.resize(44100);
        return MeasureTone(heard, frequency, 44100.0).amplitude / 10000.0;
    };
    EXPECT_NEAR(level(50.0), 1.5, 0.01);
    EXPECT_NEAR(level(3500.0), 1.0, 0.03);
    // 15,000 Hz is the upper split, 6 dB down; an octave above is 24 dB down more.
    EXPECT_NEAR(level(15000.0), 0.5, 0.01);
    EXPECT_LT(level(20000.0), 0.28);
}

TEST(ChipSound, CutoffWrapsInsteadOfClipping) {
    ChipSound sound;
    sound.Init(44100.0, CutOffAt(800, 15000));
    for (int trial = 0; trial < 4; ++trial) {
        const std::vector<int16_t> out = Send(sound, std::vector<int16_t>(2000, 30000));
        // A steady 30,000 becomes 45,000, which is -20,536 in sixteen bits.
        if (trial == 3) {
            EXPECT_NEAR(out[1998], 45000 - 65536, 1);
            EXPECT_NEAR(out[1999], 45000 - 65536, 1);
        }
    }
}

TEST(ChipSound, CutoffSplitsAreTheChoiceWithTheRateTruncated) {
    SOUND_CHOICE choice = CutOffAt(1234, 4321);
    choice.rate = 44100;
    ChipSound sound;
    sound.Init(44100.9, choice); // so near the program's rate that each of these pairs is picked
    BandSplitter splitter;
    splitter.SetCrossovers(44100.0, 1234.0, 4321.0);
    splitter.gains = {1.5, 1.0, 0.0};
    std::vector<int16_t> samples(400);
    std::vector<int16_t> expected(400);
    for (size_t i = 0; i < 200; ++i) {
        samples[i * 2] = static_cast<int16_t>((i * 977) % 8000);
        expected[i * 2] = static_cast<int16_t>(splitter.Process(samples[i * 2]));
    }
    const std::vector<int16_t> out = Send(sound, samples);
    for (size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(out[i * 2], expected[i * 2]) << i;
        EXPECT_EQ(out[i * 2 + 1], 0) << "the other channel is filtered apart";
    }
}

TEST(ChipSound, DamagedCutoffDoesNoHarm) {
    for (const int32_t split : {0, -1, 2147483647, -2147483647}) {
        for (const int32_t quality : {0, 1, 2}) {
            SOUND_CHOICE choice = CutOffAt(split, split);
            choice.quality = quality;
            ChipSound sound;
            sound.Init(kPsgRate, choice);
            EXPECT_FALSE(Send(sound, std::vector<int16_t>(4000, 32767)).empty());
        }
    }
}

TEST(ChipSound, AHistoryThatIsNoNumberIsNotTaken) {
    const std::vector<int16_t> tone(4000, 8000);
    ChipSound sound;
    sound.Init(kPsgRate, CutOffAt(800, 15000));
    Send(sound, tone);
    std::vector<uint8_t> state(sound.StateSize());
    sound.SaveState(state.data());
    // The filters' histories are doubles and come first. All ones are NaN.
    std::fill_n(state.begin() + 5, 8, uint8_t{0xFF});
    ASSERT_EQ(sound.LoadState(state.data(), sound.StateSize()), state.size());
    Send(sound, tone);
    const std::vector<int16_t> out = Send(sound, tone);
    EXPECT_EQ(std::count(out.begin(), out.end(), int16_t{0}), 0) << "it sounds";
}

TEST(ChipSound, FlushDoesNotAllocate) {
    for (const bool cutoff : {false, true}) {
        SOUND_CHOICE choice;
        choice.cutoff = cutoff;
        ChipSound sound;
        sound.Init(kPsgRate, choice);
        const size_t before = AllocationsSoFar();
        for (int frame = 0; frame < 10; ++frame) {
            for (int i = 0; i < 3729; ++i) {
                sound.pairs.Add(static_cast<int16_t>(i * 7), static_cast<int16_t>(i * 5));
            }
            sound.Flush();
            sound.Consume(1 << 20);
        }
        EXPECT_EQ(AllocationsSoFar(), before);
    }
}

TEST(ChipSound, PieceHasAVersionOfItsOwnAndTheOldOneIsRefused) {
    ChipSound sound;
    sound.Init(kPsgRate, {});
    std::vector<uint8_t> state(sound.StateSize());
    EXPECT_EQ(sound.SaveState(state.data()).At(), state.data() + state.size());
    EXPECT_EQ(state[0], 2);
    EXPECT_EQ(sound.LoadState(state.data(), sound.StateSize()), state.size());
    for (const int version : {0, 1, 3, 255}) {
        state[0] = static_cast<uint8_t>(version);
        EXPECT_EQ(sound.LoadState(state.data(), sound.StateSize()), 0U) << version;
    }
}

TEST(ChipSound, NearestSamplesPieceIsAsListed) {
    ChipSound sound;
    SOUND_CHOICE choice;
    choice.quality = 0;
    sound.Init(88200.0, choice);
    for (int i = 0; i < 3;
         ++i) { // outputs fall on the first and the third, the next one a pair later
        sound.pairs.Add(static_cast<int16_t>(10 + i), static_cast<int16_t>(-10 - i));
    }
    sound.Flush();
    const std::vector<uint8_t> piece = StateOf(sound);
    const uint64_t middleTicks = ValueIn("Sound, nearest sample", piece, "middleTicks");
    EXPECT_GT(middleTicks, 0U);
    ExpectValuesAsListed("Sound, nearest sample", piece,
                         {
                             {"quality",     {0}                                    },
                             {"outputTicks", {2 * middleTicks}                      },
                             {"middleTicks", {middleTicks}                          },
                             {"count",       {4}                                    },
                             {"values",      {10, 0x10000 - 10, 12, 0x10000 - 12, 0}},
                             {"phase",       {0x3F800000}                           }
    }); // 1.0
}

TEST(ChipSound, FilteredSoundsPieceIsAsListed) {
    constexpr double kRate = 223721.5625;
    const uint32_t stride = ResamplerFilterFor(1, kRate, 44100.0)->stride;
    ASSERT_GT(stride, 1U);
    ChipSound sound;
    sound.Init(kRate, {});
    const std::string table = "Sound, filtered";
    const std::vector<uint8_t> fresh = StateOf(sound);
    const uint64_t wanted = ValueIn(table, fresh, "wanted");
    for (uint32_t i = 0; i < 3 * stride + 1; ++i) {
        sound.pairs.Add(static_cast<int16_t>(i), static_cast<int16_t>(0x1000 + i));
    }
    sound.Flush();
    const std::vector<uint8_t> piece = StateOf(sound);
    const uint64_t outputTicks = ValueIn(table, piece, "outputTicks");
    const uint64_t middleTicks = ValueIn(table, piece, "middleTicks");
    EXPECT_NEAR(static_cast<double>(outputTicks) / static_cast<double>(middleTicks),
                kRate / 44100.0 / stride, 1e-6);
    ExpectValuesAsListed(table, piece,
                         {
                             {"quality",     {1}          },
                             {"outputTicks", {outputTicks}},
                             {"middleTicks", {middleTicks}},
                             {"count",       {0}          },
                             {"values",      {0}          },
                             {"wanted",      {wanted - 3} },
                             {"ticks",       {0}          },
                             {"strayPairs",  {1}          }
    });
    // What is still heard ends with the last pair.
    EXPECT_EQ(LoadLittleEndian<uint16_t>(&piece[piece.size() - 4]), 3 * stride);
    EXPECT_EQ(LoadLittleEndian<uint16_t>(&piece[piece.size() - 2]), 0x1000 + 3 * stride);
    EXPECT_EQ((piece.size() - ReadStateTable(table).size) % 4, 0U);
}

TEST(ChipSound, CutOffHistoryIsAsListedAndTheRestFollows) {
    ChipSound sound;
    SOUND_CHOICE choice;
    choice.quality = 0;
    choice.cutoff = true;
    sound.Init(44100.0, choice);
    sound.pairs.Add(100, -300);
    sound.pairs.Add(200, -400);
    sound.Flush();
    const std::vector<uint8_t> piece = StateOf(sound);
    const STATE_TABLE table = ReadStateTable("Sound, cut off");
    std::map<std::string, std::vector<double>> got;
    for (const STATE_ROW& row : table.rows) {
        ASSERT_EQ(row.width, 8U);
        for (uint32_t i = 0; i < row.count; ++i) {
            got[row.name].push_back(
                std::bit_cast<double>(LoadLittleEndian<uint64_t>(&piece[row.offset + 8 * i])));
        }
    }
    EXPECT_EQ(got.size(), 12U);
    EXPECT_EQ(got["sides[0].low.inputs"], (std::vector<double>{200, 100, 0, 0}));
    EXPECT_EQ(got["sides[1].low.inputs"], (std::vector<double>{-400, -300, 0, 0}));
    for (const std::string side : {"sides[0].", "sides[1]."}) {
        // The second crossover hears what the first one passes above its split; a high-pass begins with a jump, a
        // low-pass slowly.
        EXPECT_EQ(got[side + "high.inputs"], got[side + "low.highOutputs"]);
        EXPECT_GT(std::fabs(got[side + "low.highOutputs"][1]), 50.0);
        EXPECT_LT(std::fabs(got[side + "low.lowOutputs"][1]), 5.0);
        EXPECT_GT(std::fabs(got[side + "high.lowOutputs"][1]),
                  std::fabs(got[side + "high.highOutputs"][1]));
    }
    EXPECT_EQ(LoadLittleEndian<uint32_t>(&piece[table.size]), 0U) << "the quality";
    EXPECT_EQ(piece.size(), table.size - 5 + ReadStateTable("Sound, nearest sample").size);
}

TEST(ChipSound, ChoiceComesFromTheSettings) {
    RegisterDefaultSettings(Settings());
    SetAudioRate(48000);
    SOUND_CHOICE choice = SoundChoiceFromSettings();
    EXPECT_EQ(choice.rate, 48000U);
    EXPECT_EQ(choice.quality, 1);
    EXPECT_FALSE(choice.cutoff);
    EXPECT_EQ(choice.cutoffLow, 800);
    EXPECT_EQ(choice.cutoffHigh, 15000);
    Settings().SetInt(L"audio_app_quality", 2);
    Settings().SetBool(L"emu_audiocutoff_enabled", true);
    Settings().SetInt(L"emu_audiocutoff_low", 1);
    Settings().SetInt(L"emu_audiocutoff_high", 2);
    choice = SoundChoiceFromSettings();
    EXPECT_EQ(choice.quality, 2);
    EXPECT_TRUE(choice.cutoff);
    EXPECT_EQ(choice.cutoffLow, 1);
    EXPECT_EQ(choice.cutoffHigh, 2);
    RegisterDefaultSettings(Settings());
    SetAudioRate(44100);
}
