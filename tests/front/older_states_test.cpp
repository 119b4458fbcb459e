// States saved before the current resampler: their sound pieces have version 1 and are skipped.
#include "formats/game_file.h"
#include "front/golden_files.h"
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

constexpr int kStateFrames = 300; // run before each state was saved
constexpr int kFrames = 30;
constexpr size_t kSettled = 5;   // frames
constexpr size_t kTogether = 16; // samples that are added up

struct RUN {
    std::vector<std::vector<uint32_t>> pictures;
    std::vector<std::vector<int16_t>> sounds;
};

class Player {
public:
    explicit Player(const std::string& name) {
        CGameFile game;
        EXPECT_TRUE(LoadGameFile(false, kGoldenFolder / (name + ".game"), game));
        game.selectedName = 0;
        OptionBlock options = DefaultMachineOptions(game);
        TakeMachineSettings(game.Header().system, options);
        for (const MACHINE_ENTRY& entry : BuiltInMachines().machines) {
            if (entry.system == game.Header().system) {
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

// The sound below about 2 kHz.
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

// The best correlation over some shifts; 1 for the same sound.
double Likeness(const std::vector<double>& one, const std::vector<double>& other) {
    constexpr size_t kApart = 40; // pairs: a little more than the delay of the filter
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

// The position of an output between two of the chip's pairs is lost, so the sound is up to half a
// sample earlier or later: at 2 kHz that leaves a correlation of cos(0.14) = 0.99. Two mixed chips are
// some samples apart, since the older program ran the later one on at other times.
TEST(OlderStates, LoadWithTheSamePicturesAndTheSoundSettles) {
    RegisterDefaultSettings(Settings());
    BuiltInMachines().buildTables();
    for (const char* name : {"older-arcade-skywren", "older-gg-glimmer", "older-md-mistral",
                             "older-nes-ecume", "older-sms-luciole"}) {
        SCOPED_TRACE(name);
        const std::vector<uint8_t> state = ReadGoldenState(name);
        Player unbroken(name);
        static_cast<void>(unbroken.Run(kStateFrames));
        const RUN wanted = unbroken.Run(kFrames);
        Player loaded(name);
        ASSERT_TRUE(loaded.machine->LoadState(state.data(), static_cast<uint32_t>(state.size())));
        const RUN got = loaded.Run(kFrames);
        for (size_t frame = 0; frame < wanted.pictures.size(); ++frame) {
            ASSERT_TRUE(got.pictures[frame] == wanted.pictures[frame]) << frame;
        }
        EXPECT_GT(Likeness(LeftFrom(wanted, kSettled), LeftFrom(got, kSettled)), 0.94);
    }
}
