#include "random.h"

static u16 state = 1;

void RandomSeed(u16 seed) {
    state = seed ? seed : 1;
}

// A xorshift register of 16 bits, period 65,535.
u8 Random(void) {
    state ^= state << 7;
    state ^= state >> 9;
    state ^= state << 8;
    return (u8)state;
}
