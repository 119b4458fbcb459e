// A library of 10,000 games with two names each, read as the game browser does.
//
// Cold is without the index, warm is with it. With OMBRELUNE_DROP_CACHES=1, and as root, both also begin
// with the system's file cache empty, which slows down everything else on the computer for a while.
#include "base/files.h"
#include "library/catalogue.h"
#include "library/library_index.h"
#include "library/made_games.h"

#include "support/temporary_folder.h"
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
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

// What the program allocates, in units of a million bytes.
double HeapMegabytes() {
    return static_cast<double>(mallinfo2().uordblks) / 1e6;
}

// A catalogue whose files come from an index that is opened for this scan.
class Scan {
public:
    Scan() { (void)index.Open(Database(), error); }

    // Runs the scan of the first system and notes when its first rows can be shown and when it ends.
    void Run() {
        const auto start = Clock::now();
        (void)catalogue.SwitchSystem(0, 1);
        std::vector<GameListRow> shown;
        while (catalogue.ScanRuns()) {
            if (first == 0) {
                catalogue.TakeNewRows(shown);
                first = shown.empty() ? 0 : Seconds(start, Clock::now());
            }
            peak = std::max(peak, HeapMegabytes());
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        whole = Seconds(start, Clock::now());
    }
    Catalogue& Rows() { return catalogue; }

    double first = 0; // seconds
    double whole = 0; // seconds
    double peak = 0;  // of the heap, megabytes
    uint64_t FilesRead() const { return index.FilesRead(); }

private:
    CATALOGUE_HOOKS Hooks() {
        CATALOGUE_HOOKS hooks;
        ReadThroughIndex(index, hooks);
        return hooks;
    }

    std::string error;
    LibraryIndex index;
    Catalogue catalogue{Hooks()};
};

void ScanFolder(benchmark::State& state, bool cold) {
    SetHomeFolder(Home());
    bool dropped = false;
    double first = 0;
    double megabytes = 0;
    double peak = 0;
    uint64_t filesRead = 0;
    for ([[maybe_unused]] auto _ : state) {
        if (cold) {
            fs::remove(Database());
        }
        dropped = DropFileCache();
        const double before = HeapMegabytes();
        Scan scan;
        scan.Run();
        state.SetIterationTime(scan.whole);
        first = std::max(first, scan.first);
        filesRead = scan.FilesRead();
        megabytes = HeapMegabytes() - before;
        peak = scan.peak - before;
        if (scan.Rows().Rows().size() != kFiles * kNames) {
            state.SkipWithError("not all rows were found");
            break;
        }
    }
    state.counters["files read"] = static_cast<double>(filesRead);
    state.counters["first rows ms"] = first * 1000;
    state.counters["MB"] = megabytes;
    state.counters["peak MB"] = peak;
    state.SetLabel(dropped ? "file cache dropped" : "file cache as it was");
}
BENCHMARK_CAPTURE(ScanFolder, Cold, true)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ScanFolder, Warm, false)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);

// A key press in the field of the name, with all rows of the library.
void FilterRows(benchmark::State& state, const wchar_t* name) {
    SetHomeFolder(Home());
    Scan scan;
    scan.Run();
    ROW_CHOICES choices;
    choices.group = RowGroup::kNone;
    choices.name = name;
    choices.year = L"1900-2000";
    size_t lines = 0;
    for ([[maybe_unused]] auto _ : state) {
        const auto found = scan.Rows().ApplyFilters(choices);
        benchmark::DoNotOptimize(found.data());
        lines = found.size();
    }
    state.counters["lines"] = static_cast<double>(lines);
}
BENCHMARK_CAPTURE(FilterRows, Everything, L"")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FilterRows, AllMatch, L"length")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FilterRows, FewMatch, L"length 77")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FilterRows, NoneMatches, L"e q")->Unit(benchmark::kMillisecond);

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
