// The Mega Drive's I/O chip: version byte, three ports and their direction, and the pads on two of them.
//
// Registers: 0 version, 1 to 3 data of ports 1 to 3, 4 to 6 direction (a bit set is an output), then for
//   each port transmit, receive and serial control; the serial side only keeps what is written to it.
// Pads: pins 0 to 5 are inputs of the console and low when pressed; pin 6, TH, selects which buttons are
//   on them. The six-button pad counts the rises of TH, and forgets them when it is left alone for 4,192
//   processor cycles.
// Owner: one machine, on its session's thread. `now` in all functions is the running count of processor
//   cycles, which may wrap.
// Differs: a pin that the console drives itself doesn't come back in a pad's read, and every port answers
//   at once. Kept on purpose.
#pragma once

#include "facts/mega_drive_facts.h"

#include <array>
#include <cstdint>

inline constexpr uint32_t kMdIoRegisters = 16;
inline constexpr uint32_t kMdPads = 2;
inline constexpr uint32_t kMdPadTimeout = 4192; // processor cycles

// What is pressed, 1 each, in this order.
struct MD_PAD {
    uint8_t up;
    uint8_t down;
    uint8_t left;
    uint8_t right;
    uint8_t a;
    uint8_t b;
    uint8_t c;
    uint8_t x;
    uint8_t y;
    uint8_t z;
    uint8_t mode;
    uint8_t start;
};
static_assert(sizeof(MD_PAD) == 12);

struct MD_IO {
    uint8_t version = 0;                           // of the console: bit 7 overseas, bit 6 50 Hz
    std::array<uint8_t, kMdPads> devices{};        // MdDevice
    std::array<MD_PAD, kMdPads> pads{};            // the owner's to set, before a frame
    std::array<uint8_t, kMdIoRegisters> ioPorts{}; // as written
    std::array<uint8_t, kMdPads> padTh{};          // 0 or 0x40
    std::array<uint32_t, kMdPads> padLastWrite{};  // in processor cycles
    std::array<uint32_t, kMdPads> padEdges{};      // rises of TH since the last timeout
};

// Registers alone; the pads keep their count of edges, as they are not on the reset line.
void MdIoReset(MD_IO& io);

// `index` 0..15. Reading changes nothing.
[[nodiscard]] uint8_t MdReadIo(const MD_IO& io, uint32_t index);
void MdWriteIo(MD_IO& io, uint32_t index, uint8_t value, uint32_t now);
