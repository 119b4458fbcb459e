// The Mega Drive's I/O chip: version byte, three ports and their direction, and the pads on two of them.
//
// Registers: 0 version, 1 to 3 data of ports 1 to 3, 4 to 6 direction (a set bit is an output), then for each
//   port transmit, receive and serial control. The serial registers only keep what is written to them.
// Pads: pins 0 to 5 are inputs of the console, low when pressed. Pin 6, TH, selects which buttons are on them.
//   The six-button pad counts the rising edges of TH and forgets them after 4,192 68000 cycles without a
//   write.
// Units: `now` is the running count of 68000 cycles, which may wrap.
// Owner: one machine, on its session's thread.
// Differs: docs/HARDWARE.md, Mega Drive, Board.
#pragma once

#include "facts/mega_drive_facts.h"

#include <array>
#include <cstdint>

inline constexpr uint32_t kMdIoRegisters = 16;
inline constexpr uint32_t kMdPads = 2;
inline constexpr uint32_t kMdPadTimeout = 4192; // 68000 cycles
inline constexpr uint8_t kMdIoTh = 0x40;        // of a data register

// The buttons of a pad in this order, 1 when pressed.
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
    std::array<MD_PAD, kMdPads> pads{};            // set by the owner before a frame
    std::array<uint8_t, kMdIoRegisters> ioPorts{}; // as written
    std::array<uint8_t, kMdPads> padTh{};          // 0 or 0x40
    std::array<uint32_t, kMdPads> padLastWrite{};  // in 68000 cycles
    std::array<uint32_t, kMdPads> padEdges{};      // rising edges of TH since the last timeout
};

// Resets the registers alone: pads are not on the reset line and keep their count of edges.
void MdIoReset(MD_IO& io);

// `index` 0..15. Reading changes nothing.
[[nodiscard]] uint8_t MdReadIo(const MD_IO& io, uint32_t index);
void MdWriteIo(MD_IO& io, uint32_t index, uint8_t value, uint32_t now);
