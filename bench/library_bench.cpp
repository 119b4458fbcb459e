// A library of 10,000 games with two names each, read as the game browser does.
//
// Cold is without the index, warm is with it. With OMBRELUNE_DROP_CACHES=1, and as root, both also begin
// with the system's file cache empty, which slows down everything else on the computer for a while.
#include "library/library_index.h"
#include "library/made_games.h"

#include "support/temporary_folder.h"
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int kFiles = 10'000;
constexpr uint32_t kNames = 2;
constexpr size_t kPackedBytes = 16'384;

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

// Made once, removed at the program's end.
const fs::path& Home() {
    static const TemporaryFolder folder;
    static const bool made = [] {
        for (int i = 0; i < kFiles; ++i) {
            const std::string title = "A Game of Some Length " + std::to_string(i);
            // In an order that is not that of the names, as copying or converting makes it.
            const std::string name = std::to_string(i * 7919 % kFiles) + " " + title;
            const fs::path file =
                folder.Write("sms/" + name + ".game", MadeGame(title, kNames, kPackedBytes));
            SetAge(file, std::chrono::hours(1));
        }
        sync();
        return true;
    }();
    benchmark::DoNotOptimize(made);
    return folder.Path();
}

fs::path Database() {
    return Home() / "library-cache.db";
}

// False if it was not asked for or is not allowed.
bool DropFileCache() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread runs
    const char* asked = std::getenv("OMBRELUNE_DROP_CACHES");
    if (asked == nullptr || *asked != '1') {
        return false;
    }
    sync();
    std::ofstream file("/proc/sys/vm/drop_caches");
    file << "3" << std::flush;
    return file.good();
}

size_t ReadAll(LibraryIndex& index) {
    size_t names = 0;
    index.LoadFolder(Home() / "sms");
    for (const auto& entry : fs::directory_iterator(Home() / "sms")) {
        CGameFile game;
        names += index.LoadGame(entry.path(), game) ? game.NameCount() : 0;
    }
    return names;
}

// The index alone: all records of the folder, without rows.
void ReadIndex(benchmark::State& state, bool cold) {
    (void)Home();
    bool dropped = false;
    uint64_t filesRead = 0;
    double commit = 0;
    for ([[maybe_unused]] auto _ : state) {
        if (cold) {
            fs::remove(Database());
        }
        dropped = DropFileCache();
        std::string error;
        const auto start = Clock::now();
        LibraryIndex index;
        const bool opened = index.Open(Database(), error);
        const size_t names = ReadAll(index);
        const auto read = Clock::now();
        index.Commit();
        if (!opened || names != kFiles * kNames) {
            state.SkipWithError(("not all was read; " + error).c_str());
            break;
        }
        state.SetIterationTime(Seconds(start, read));
        commit = Seconds(read, Clock::now());
        filesRead = index.FilesRead();
    }
    state.counters["files read"] = static_cast<double>(filesRead);
    state.counters["commit ms"] = commit * 1000;
    state.SetLabel(dropped ? "file cache dropped" : "file cache as it was");
}
BENCHMARK_CAPTURE(ReadIndex, Cold, true)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadIndex, Warm, false)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);

// Without the index, as it would be in every scan.
void ReadFiles(benchmark::State& state) {
    (void)Home();
    for ([[maybe_unused]] auto _ : state) {
        size_t names = 0;
        for (const auto& entry : fs::directory_iterator(Home() / "sms")) {
            CGameFile game;
            names += LoadGameFile(true, entry.path(), game) ? game.NameCount() : 0;
        }
        benchmark::DoNotOptimize(names);
    }
}
BENCHMARK(ReadFiles)->Unit(benchmark::kMillisecond);

} // namespace
