// The benchmark: how fast this computer runs one Master System, unpaced, on one core. The result is expressed in
// machines of that kind.
//
// Units: frames; a frame in a second is 1/50 of a machine's speed, and the machine's speed counts as 21.2 MHz.
// Thread: RunBenchmark waits for a thread of its own, which shares nothing of the machine with others.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class CGameFile;

inline constexpr uint64_t kBenchmarkMilliseconds = 5000;

// Runs the game for five seconds and returns the number of whole frames. The first frame takes part of the time but
// is not counted. `milliseconds`: a steady clock, which the benchmark's thread calls. Null or a game that does not
// start yields 0.
[[nodiscard]] uint32_t RunBenchmark(CGameFile* game, const std::function<uint64_t()>& milliseconds);

struct BENCHMARK_SCORE {
    float speed; // MHz
    float score; // machines at their own speed
};
[[nodiscard]] BENCHMARK_SCORE BenchmarkScore(uint32_t frames);

// What the player reads, line by line.
[[nodiscard]] std::vector<std::string> BenchmarkReport(uint32_t frames);
