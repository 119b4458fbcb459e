// States from before the resampler that the program has now: their sound pieces are of version 1 and are passed over.
#include "base/files.h"
#include "formats/game_file.h"
#include "formats/zip.h"
#include "front/demos.h"
#include "library/convert.h"
#include "machine/emu_system.h"
#include "machines/machine_options.h"
#include "machines/machines.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace {

constexpr int kStateFrames = 300; // that were run before each state was saved
constexpr int kFrames = 30;
constexpr size_t kSettled = 5;   // frames
constexpr size_t kTogether = 16; // samples that are added up

struct RUN {
    std::vector<std::vector<uint32_t>> pictures;
    std::vector<std::vector<int16_t>> sounds;
};

class Player {
public:
    explicit Player(const DEMO& demo) {
        CGameFile game;
        MACHINE_RECORD record{};
        ARC_RECORD arcade{};
        arcade.board = 3;
        if (demo.system == kSystemArcade) {
            std::copy_n("ARC0", 4, arcade.tag);
            std::copy_n(reinterpret_cast<const uint8_t*>(&arcade), sizeof arcade, record.bytes);
        }
        if (demo.system == kSystemMasterSystem) {
            SMS_RECORD sms{};
            sms.features = 2; // the FM chip
            sms.input1 = 1;
            sms.input2 = 1;
            sms.board = 1;
            sms.consoles = 63;
            std::copy_n(reinterpret_cast<const uint8_t*>(&sms), sizeof sms, record.bytes);
        }
        EXPECT_TRUE(BuildKnownGame(demo.system, demo.title, demo.image, record, game));
        game.selectedName = 0;
        OptionBlock options = DefaultMachineOptions(game);
        TakeMachineSettings(demo.system, options);
        for (const MACHINE_ENTRY& entry : BuiltInMachines().machines) {
            if (entry.system == demo.system) {
                machine = entry.construct(1);
            }
        }
        CGameFile* const games[2] = {&game, nullptr};
        EXPECT_TRUE(machine->Init(options.data(), games));
    }

    RUN Run(int frames) {
        RUN run;
        std::vector<uint32_t> pixels(size_t{machine->width} * machine->height);
        std::vector<int16_t> samples(size_t{kAudioFramePairs} * 2);
        for (int i = 0; i < frames; ++i) {
            EMU_INPUT_STATE input{};
            EMU_VIDEO_FRAME video{};
            EMU_AUDIO_FRAME audio{};
            video.pixels = pixels.data();
            audio.samples = samples.data();
            audio.sampleRate = 44100;
            machine->RunFrame(&input, &video, &audio);
            run.pictures.emplace_back(pixels.begin(),
                                      pixels.begin() +
                                          static_cast<ptrdiff_t>(video.width) * video.height);
            run.sounds.emplace_back(samples.begin(), samples.begin() + audio.sampleCount * 2);
        }
        return run;
    }

    std::unique_ptr<CEmuSystem> machine;
};

// The lower part of the sound, under 2 kHz or so.
std::vector<double> LeftFrom(const RUN& run, size_t frame) {
    std::vector<double> left;
    for (; frame < run.sounds.size(); ++frame) {
        for (size_t i = 0; i < run.sounds[frame].size(); i += 2) {
            left.push_back(run.sounds[frame][i]);
        }
    }
    for (size_t i = 0; i + kTogether <= left.size(); ++i) {
        left[i] = std::accumulate(left.begin() + static_cast<ptrdiff_t>(i),
                                  left.begin() + static_cast<ptrdiff_t>(i + kTogether), 0.0);
    }
    return left;
}

// 1 for the same sound, at the best of some places.
double Likeness(const std::vector<double>& one, const std::vector<double>& other) {
    constexpr size_t kApart =
        40; // pairs: what the filter of a loaded machine keeps back, and a little
    double best = -1.0;
    const size_t count = std::min(one.size(), other.size()) - 2 * kApart;
    for (size_t shift = 0; shift <= 2 * kApart; ++shift) {
        double sums[5] = {};
        for (size_t i = 0; i < count; ++i) {
            const double a = one[i + kApart];
            const double b = other[i + shift];
            sums[0] += a;
            sums[1] += b;
            sums[2] += a * a;
            sums[3] += b * b;
            sums[4] += a * b;
        }
        const auto n = static_cast<double>(count);
        const double both = sums[4] - sums[0] * sums[1] / n;
        const double powers = (sums[2] - sums[0] * sums[0] / n) * (sums[3] - sums[1] * sums[1] / n);
        best = std::max(best, powers > 0.0 ? both / std::sqrt(powers) : -1.0);
    }
    return best;
}

} // namespace

// Where an output lies between two of the chip's pairs is not known any more, so the sound comes out up to half a
// sample earlier or later: at 2 kHz that leaves a likeness of cos(0.14) = 0.99. Where two chips are mixed, the older
// program had let the one that was behind run on by itself at other times, so they are some samples apart.
TEST(OlderStates, LoadWithTheSamePicturesAndTheSoundSettles) {
    RegisterDefaultSettings(Settings());
    BuiltInMachines().buildTables();
    std::vector<uint8_t> archive;
    std::string error;
    ASSERT_TRUE(
        ReadFile(OMBRELUNE_SOURCE_FOLDER "/tests/golden/states-of-300-frames.zip", archive, error))
        << error;
    ZipReader reader;
    ASSERT_TRUE(reader.Open(archive, error)) << error;
    ASSERT_EQ(reader.EntryCount(), 5U);
    for (uint32_t index = 0; index < reader.EntryCount(); ++index) {
        ZIP_ENTRY entry;
        std::vector<uint8_t> state;
        ASSERT_TRUE(reader.Entry(index, entry) && reader.Unpack(index, state, error)) << error;
        SCOPED_TRACE(entry.rawName);
        const auto demo = std::find_if(Demos().begin(), Demos().end(), [&](const DEMO& known) {
            return known.name == entry.rawName;
        });
        ASSERT_NE(demo, Demos().end());
        Player unbroken(*demo);
        static_cast<void>(unbroken.Run(kStateFrames));
        const RUN wanted = unbroken.Run(kFrames);
        Player loaded(*demo);
        ASSERT_TRUE(loaded.machine->LoadState(state.data(), static_cast<uint32_t>(state.size())));
        const RUN got = loaded.Run(kFrames);
        for (size_t frame = 0; frame < wanted.pictures.size(); ++frame) {
            ASSERT_TRUE(got.pictures[frame] == wanted.pictures[frame]) << frame;
        }
        EXPECT_GT(Likeness(LeftFrom(wanted, kSettled), LeftFrom(got, kSettled)), 0.94);
    }
}
