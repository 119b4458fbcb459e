// `ombrelune bench`: whole machines, unpaced, on one core.

#include "base/files.h"
#include "base/instruction_counter.h"
#include "facts/machine_facts.h"
#include "front/demos.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/play.h"
#include "host/aligned_block.h"
#include "host/benchmark.h"
#include "host/frame_loop.h"
#include "host/machine_list.h"
#include "host/picture.h"
#include "host/session.h"
#include "settings/settings.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <numeric>
#include <string_view>

namespace {

using Clock = std::chrono::steady_clock;

struct BENCH_RESULT {
    std::string machine;
    std::string game;
    uint32_t frames = 0;
    double seconds = 0.0;
    double framesPerSecond = 0.0;
    double timesRealTime = 0.0;       // measured by the frames' sound
    double millionInstructions = 0.0; // of a frame; 0 if they cannot be counted
    uint32_t stateBytes = 0;
    double stateMicroseconds = 0.0; // of one SaveState
    double rewindPercent = 0.0;     // extra cost of a frame with rewind on
    double rewindNoise = 0.0;       // what that differed by between the turns
};

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// One machine with its buffers, run frame by frame.
class BenchRun {
public:
    explicit BenchRun(OPENED_GAME& opened) {
        CGameFile* const games[2] = {&opened.game, nullptr};
        session = EmuCreateSession(1, games, opened.options.data(), opened.title);
        if (session) {
            session->showStatic = 0;
            pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
            video.pixels = pixels.get();
        }
    }

    [[nodiscard]] bool Started() const { return session != nullptr; }
    [[nodiscard]] CEmuSystem& Machine() { return *session->machine; }

    // Runs frames for `seconds` and returns how many. `elapsed` is the time they took, `soundSeconds`
    // how long they last.
    uint32_t Run(double seconds, double& elapsed, double& soundSeconds) {
        uint32_t frames = 0;
        uint64_t pairs = 0;
        const Clock::time_point start = Clock::now();
        do {
            EmuStep(*session, &input, &video, &sound.frame, false);
            pairs += sound.frame.sampleCount;
            ++frames;
            elapsed = SecondsSince(start);
        } while (elapsed < seconds);
        soundSeconds = static_cast<double>(pairs) / sound.frame.sampleRate;
        return frames;
    }

private:
    std::unique_ptr<EMU_THREAD> session;
    AlignedBlock<uint32_t> pixels;
    EMU_VIDEO_FRAME video{};
    EMU_INPUT_STATE input{};
    SOUND_FRAME sound;
};

void MeasureStates(BenchRun& run, BENCH_RESULT& result) {
    constexpr uint32_t kStates = 200;
    const Clock::time_point start = Clock::now();
    for (uint32_t i = 0; i < kStates; ++i) {
        const StateBlob state = run.Machine().SaveState(result.stateBytes);
    }
    result.stateMicroseconds = SecondsSince(start) / kStates * 1e6;
}

bool Measure(const DEMO& demo, double seconds, const InstructionCounter& counter,
             BENCH_RESULT& result) {
    OPENED_GAME opened;
    if (!OpenDemo(demo.name, opened)) {
        Complain(std::string(demo.name) + ": cannot be opened");
        return false;
    }
    BenchRun run(opened);
    if (!run.Started()) {
        Complain(std::string(demo.name) + ": " + EmuLastError());
        return false;
    }
    double elapsed = 0.0;
    double soundSeconds = 0.0;
    Settings().SetInt(L"emu_rewindbuffer", 0);
    run.Run(0.0, elapsed, soundSeconds); // one frame to warm up
    result.machine = FindMachineFacts(demo.system)->shortName;
    result.game = demo.name;
    // In turns, so that other load on the computer affects both alike.
    constexpr size_t kTurns = 4;
    double sound = 0.0;
    uint64_t instructions = 0;
    double percents[kTurns] = {};
    for (size_t turn = 0; turn < kTurns; ++turn) {
        Settings().SetInt(L"emu_rewindbuffer", 0);
        const uint64_t counted = counter.Count();
        const uint32_t frames = run.Run(seconds / kTurns, elapsed, soundSeconds);
        const double plain = elapsed / frames;
        result.frames += frames;
        instructions += counter.Count() - counted;
        result.seconds += elapsed;
        sound += soundSeconds;
        Settings().SetInt(L"emu_rewindbuffer", 16);
        const uint32_t rewound = run.Run(seconds / kTurns / 2, elapsed, soundSeconds);
        percents[turn] = (elapsed / rewound / plain - 1.0) * 100.0;
    }
    result.framesPerSecond = result.frames / result.seconds;
    result.timesRealTime = sound / result.seconds;
    result.millionInstructions = static_cast<double>(instructions) / result.frames / 1e6;
    result.rewindPercent = std::accumulate(percents, percents + kTurns, 0.0) / kTurns;
    const auto [least, most] = std::minmax_element(percents, percents + kTurns);
    result.rewindNoise = *most - *least;
    MeasureStates(run, result);
    return true;
}

// Digits that the next run would show differently are left out.
std::string RewindText(const BENCH_RESULT& result) {
    constexpr double kWorthSaying = 1.0; // percent
    if (result.rewindPercent < std::max(result.rewindNoise, kWorthSaying)) {
        return "none seen";
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.0f %%", result.rewindPercent);
    return text;
}

void PrintHeading(const InstructionCounter& counter) {
    std::printf("%-8s %-16s %8s %10s %s%14s %12s %12s\n", "machine", "game", "frames/s",
                "real time", counter.Works() ? "  Minstr/frame " : "", "state bytes", "to save",
                "rewind cost");
}

void Print(const BENCH_RESULT& result, const InstructionCounter& counter) {
    std::printf("%-8s %-16s %8.0f %8.1f x ", result.machine.c_str(), result.game.c_str(),
                result.framesPerSecond, result.timesRealTime);
    if (counter.Works()) {
        std::printf("%14.2f ", result.millionInstructions);
    }
    std::printf("%14" PRIu32 " %9.0f us %12s\n", result.stateBytes, result.stateMicroseconds,
                RewindText(result).c_str());
    std::fflush(stdout);
}

std::string Json(const std::vector<BENCH_RESULT>& results) {
    std::string text = "{\"machines\": [";
    for (const BENCH_RESULT& result : results) {
        char row[512];
        std::snprintf(row, sizeof row,
                      "%s{\"machine\": \"%s\", \"game\": \"%s\", \"frames\": %" PRIu32
                      ", \"seconds\": %.3f, \"framesPerSecond\": %.2f, \"timesRealTime\": %.3f, "
                      "\"millionInstructions\": %.3f, \"stateBytes\": %" PRIu32
                      ", \"stateMicroseconds\": %.2f, \"rewindPercent\": %.2f}",
                      &result == results.data() ? "" : ", ", result.machine.c_str(),
                      result.game.c_str(), result.frames, result.seconds, result.framesPerSecond,
                      result.timesRealTime, result.millionInstructions, result.stateBytes,
                      result.stateMicroseconds, result.rewindPercent);
        text += row;
    }
    return text + "]}\n";
}

// The game to benchmark a system with: the one whose name says so, else the first.
const DEMO* BenchGame(uint16_t system) {
    const DEMO* found = nullptr;
    for (const DEMO& demo : Demos()) {
        if (demo.system == system && std::string_view(demo.name).ends_with("-bench")) {
            return &demo;
        }
        if (demo.system == system && found == nullptr) {
            found = &demo;
        }
    }
    return found;
}

int BenchAsOnScreen() {
    OPENED_GAME opened;
    if (!OpenDemo("sms-bench", opened)) {
        Complain("sms-bench: cannot be opened");
        return kExitFailed;
    }
    const Clock::time_point start = Clock::now();
    const uint32_t frames = RunBenchmark(&opened.game, [start] {
        return static_cast<uint64_t>(
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
    });
    for (const std::string& line : BenchmarkReport(frames)) {
        std::printf("%s\n", line.c_str());
    }
    return frames != 0 ? kExitDone : kExitFailed;
}

} // namespace

int BenchCommand(const BENCH_OPTIONS& options) {
    if (options.screen) {
        return BenchAsOnScreen();
    }
    std::vector<BENCH_RESULT> results;
    const InstructionCounter counter;
    bool done = true;
    for (const MACHINE_FACTS& system : MachineFacts()) {
        const bool wanted = options.machine == "all" || options.machine == system.shortName;
        const DEMO* demo = wanted ? BenchGame(system.system) : nullptr;
        if (demo == nullptr || EmuFindMachine(system.system) == nullptr) {
            if (wanted && options.machine != "all") {
                Complain(std::string(system.name) + ": that machine is not built in");
                done = false;
            }
            continue;
        }
        BENCH_RESULT result;
        if (!Measure(*demo, options.seconds, counter, result)) {
            done = false;
            continue;
        }
        if (results.empty()) {
            PrintHeading(counter);
        }
        Print(result, counter);
        results.push_back(result);
    }
    if (!counter.Works()) {
        std::printf("Instructions are not counted: %s\n", counter.WhyNot().c_str());
    }
    if (!options.jsonFile.empty()) {
        const std::string json = Json(results);
        std::string error;
        if (!WriteFile(options.jsonFile,
                       {reinterpret_cast<const uint8_t*>(json.data()), json.size()}, error)) {
            Complain(error);
            done = false;
        }
    }
    return done ? kExitDone : kExitFailed;
}
