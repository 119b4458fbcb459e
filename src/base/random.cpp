#include "base/random.h"

#include <atomic>

namespace {

// The counter's step: an odd number close to 2^64 divided by the golden ratio.
constexpr uint64_t kStep = 0x9E3779B97F4A7C15;
std::atomic<uint64_t> gCounter{1};

} // namespace

void SeedRandom(uint32_t seed) {
    gCounter.store(seed, std::memory_order_relaxed);
}

int RandomNumber() {
    // The finaliser of the SplitMix64 generator (Steele, Lea and Flood, 2014).
    uint64_t x = gCounter.fetch_add(kStep, std::memory_order_relaxed) + kStep;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EB;
    x ^= x >> 31;
    return static_cast<int>(x >> 49);
}
