#include "host/benchmark.h"

#include "base/audio_rate.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "host/aligned_block.h"
#include "host/machine_list.h"
#include "machine/emu_system.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <thread>

namespace {

constexpr uint32_t kKeyOfNobody = 0xFFFFFFFE; // a session key that gets no input
constexpr size_t kVideoBytes = 262144;

constexpr float kFramesToSpeed = 0.004f; // 1 / 250: the frames of five seconds at 50 a second
constexpr float kMachineMegahertz = 21.2f;
constexpr float kSpeedToScore = 0.0471698f; // 1 / 21.2
constexpr float kComfortable = 2.0f;

// All options zero: a second-generation console with two joypads and without an FM chip.
uint32_t CountFrames(CGameFile& game, const std::function<uint64_t()>& milliseconds) {
    const MACHINE_ENTRY* const entry = EmuFindMachine(kSystemMasterSystem);
    if (entry == nullptr) {
        return 0;
    }
    const std::unique_ptr<CEmuSystem> machine = entry->construct(kKeyOfNobody);
    const std::array<uint8_t, kMachineOptionBytes> options{};
    CGameFile* const games[2] = {&game, nullptr};
    if (machine == nullptr || !machine->Init(options.data(), games)) {
        return 0;
    }
    const auto samples = AllocateAligned<int16_t>(size_t{kAudioFramePairs} * 2);
    const auto pixels = AllocateAligned<uint32_t>(
        std::max(kVideoBytes / sizeof(uint32_t), size_t{machine->width} * machine->height));
    EMU_AUDIO_FRAME audio{samples.get(), AudioRate(), 0};
    EMU_VIDEO_FRAME video{};
    video.pixels = pixels.get();
    EMU_INPUT_STATE input{};

    uint32_t frames = 0;
    const uint64_t start = milliseconds();
    machine->RunFrame(&input, &video, &audio);
    while (milliseconds() - start < kBenchmarkMilliseconds) {
        ++frames;
        machine->RunFrame(&input, &video, &audio);
    }
    return frames;
}

template <typename... Values>
std::string Line(const char* format, Values... values) {
    char line[160];
    std::snprintf(line, sizeof line, format, values...);
    return line;
}

} // namespace

uint32_t RunBenchmark(CGameFile* game, const std::function<uint64_t()>& milliseconds) {
    uint32_t frames = 0;
    if (game != nullptr) {
        std::thread([&] { frames = CountFrames(*game, milliseconds); }).join();
    }
    return frames;
}

BENCHMARK_SCORE BenchmarkScore(uint32_t frames) {
    const float speed = static_cast<float>(frames) * kFramesToSpeed * kMachineMegahertz;
    return {speed, speed * kSpeedToScore};
}

std::vector<std::string> BenchmarkReport(uint32_t frames) {
    const auto [speed, score] = BenchmarkScore(frames);
    const std::string rule(60, '_');
    std::vector<std::string> rows = {
        rule,
        "Sega Master System Benchmark - Single Core",
        Line("   Frames Completed: %d", static_cast<int>(frames)),
        Line("Your emulated speed: %.3f MHz", static_cast<double>(speed)),
        "   SMS System Speed: 21.200 MHz",
        "                     -----------",
        Line("        Total Score: %.3f Sega Master Systems on a single core with cycle accuracy",
             static_cast<double>(score)),
        rule,
        "",
    };
    if (score > kComfortable) {
        rows.emplace_back("Congratulations! You seem to have a good enough PC to play Ombrelune "
                          "comfortably");
    }
    return rows;
}
