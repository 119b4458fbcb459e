// The program's one generator of pseudo-random numbers.
//
// Process-wide and lock-free: an atomic counter and a mixing function. Any thread may draw. When only
// one thread draws, the same seed repeats the sequence exactly; headless runs rely on that.
#pragma once

#include <cstdint>

void SeedRandom(uint32_t seed);

// 0 to 32,767.
[[nodiscard]] int RandomNumber();
