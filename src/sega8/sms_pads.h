// The two pad ports of the Master System, the devices in them, and the I/O ports 0xDC, 0xDD and
// 0x3F.
// Sources: C. MacDonald, SMS/GG hardware notes (2002); Asynchronous, full port 3F and controller
// port details (2001); SMS Power on paddle and Light Phaser.
//
// A pad port has seven lines: four directions, TL, TR and TH, 1 when nothing pulls them down. The
// program drives TH through port 0x3F; some devices count its edges. On export consoles a TH that
// is an output is read back; TR outputs are not.
//
// Devices:
// - Joypad: directions, TL button 1, TR button 2.
// - Light Phaser: TL is the trigger, button 1. On the four lines above and below the aim and on its
//   own line, TH is 0 for 100 clocks from the dot of the aim on, and the H counter is latched
//   there. The size of this spot is settled. The aim, in pixels of the whole picture, is the
//   player's pointer in EMU_INPUT_STATE. In a frame in which the pointer is (0, 0) the directions
//   move the aim by 2 pixels. It starts in the middle, at (128, 112).
// - Sports Pad: TL, TR are buttons 1, 2. A held direction is a movement of 10 in every reading;
//   right and up are positive. Every TH edge selects the next nibble: X high, X low, Y high, Y low.
//   A reading or a falling edge more than 280 clocks after the last edge starts with X high.
// - Paddle: TL is button 1. Left and right turn it by 4 a frame, within 0..255. Every read of the
//   port with its TR (0xDC for A, 0xDD for B) selects the other nibble; TR is 0 with the low
//   nibble.
// - Six-button pad of the Mega Drive: buttons 1 to 6 are B, C, A, X, Y, Z; start and mode are never
//   pressed. It counts rising TH edges; the count is cleared 1,956 clocks after the last edge.
//
// Units: clocks are Z80 clocks as the machine counts them (32 bits, wrapping).
// Owner: one machine, on its session's thread. Aim, turn and all counters are in its state.
// Order: `device` and `thReturns`, PadsReset; then PadsBeginFrame before each frame.
#pragma once

#include "facts/sms_facts.h"
#include "machine/emu_system.h"

#include <array>
#include <cstdint>

struct VDP;

// What a player holds down, a bit each.
enum PadInput : uint32_t {
    kPadUp = 1u << 0,
    kPadDown = 1u << 1,
    kPadLeft = 1u << 2,
    kPadRight = 1u << 3,
    kPadButton1 = 1u << 8, // up to kPadButton1 << 5
    kPadButton2 = 1u << 9,
    kPadReset = 1u << 30, // player 1's word
    kPadPause = 1u << 31
};

struct PAD_PORTS {
    // As wired: set by the machine's Init.
    std::array<PadDevice, 2> device{PadDevice::kJoypad, PadDevice::kJoypad};
    bool thReturns = true; // TH outputs are read back; false on Japanese consoles

    // As of this frame.
    std::array<uint32_t, 2> input{};          // PadInput
    std::array<int32_t, 2> lightLine{-1, -1}; // last line whose light has latched the H counter

    // In states.
    uint8_t ioControl = 0xFF; // port 0x3F
    uint8_t portDc = 0xFF;    // as last read
    uint8_t portDd = 0xFF;
    std::array<uint32_t, 2> deviceState{}; // phase of a reading, or TH edges counted
    std::array<uint32_t, 2> deviceX{};     // aim, turn, or movement (its low 8 bits)
    std::array<uint32_t, 2> deviceY{};
    std::array<uint32_t, 2> lastEdgeClock{}; // of TH
};

// Power-on values.
void PadsReset(PAD_PORTS& pads);
// After a load: brings aims and turns into their range.
void PadsSanitize(PAD_PORTS& pads);

// Takes the players' input of one frame and moves aims, paddles and balls.
void PadsBeginFrame(PAD_PORTS& pads, const std::array<uint32_t, 2>& input,
                    const EMU_INPUT_STATE* pointers);

// A write to port 0x3F. May latch the H counter.
void PadsWriteControl(PAD_PORTS& pads, VDP& vdp, uint8_t value, uint32_t clock);
[[nodiscard]] uint8_t PadsReadDc(PAD_PORTS& pads, VDP& vdp, uint32_t clock);
[[nodiscard]] uint8_t PadsReadDd(PAD_PORTS& pads, VDP& vdp, uint32_t clock);
// Latches the H counter for light that a phaser has seen since the last call. To be called before
// the latch is read.
void PadsLatchLight(PAD_PORTS& pads, VDP& vdp);
