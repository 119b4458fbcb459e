// The program's one generator of pseudo-random numbers.
//
// Process-wide and lock-free: a counter behind a mixing function, so that any thread may draw. A run
// in which one thread draws repeats exactly from the same seed; headless runs rest on that.
#pragma once

#include <cstdint>

void SeedRandom(uint32_t seed);

// 0 to 32,767.
[[nodiscard]] int RandomNumber();
