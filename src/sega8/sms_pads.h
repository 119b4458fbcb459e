// The two controller ports of the Master System: what is plugged in, what the ports 0xDC, 0xDD and
// 0x3F do with it.
//
// A port has seven lines: four directions, TL, TR and TH, 1 when nothing pulls them down. The program
// drives TH through port 0x3F; the devices that listen to it count its edges. On export consoles a TH
// that is an output is read back; TR outputs are not.
//
// Devices:
// - Joypad: directions, TL button 1, TR button 2.
// - Light Phaser: TL is the trigger, button 1. TH drops while the beam is within four lines of the
//   point aimed at, for 100 clocks from that point on, and the H counter is latched there. The aim, in
//   pixels of the whole picture, is the pointer of this player in EMU_INPUT_STATE; a frame in which
//   that is (0, 0) leaves the aim where it was and lets the four directions move it by 2 pixels a
//   frame. It starts in the middle, at (128, 112).
// - Sports Pad: TL, TR are buttons 1, 2; a held direction is a movement of 10 for every reading, right
//   and up being positive. Every TH edge goes on to the next nibble: X high, X low, Y high, Y low. A
//   reading more than 280 clocks after the last edge, or a falling edge as late, begins again.
// - Paddle: TL is button 1; left and right turn it by 4 a frame, within 0..255. Every reading of the
//   port that carries its TR (0xDC for A, 0xDD for B) goes on to the other nibble; TR is 0 with the low
//   one.
// - Six-button pad of the Mega Drive: buttons 1 to 6 are B, C, A, X, Y, Z; start and mode are never
//   down. It counts rising TH edges and forgets them 1,956 clocks after the last edge.
//
// Units: clocks are the Z80's, as the machine counts them (32 bits, wrapping).
// Owner: the machine. The aim of a phaser, the turn of a paddle and all counters are in its state.
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
    bool thReturns = true; // false on Japanese consoles

    // As of this frame.
    std::array<uint32_t, 2> input{};          // PadInput
    std::array<int32_t, 2> lightLine{-1, -1}; // last line whose hit has latched the H counter

    // In states.
    uint8_t ioControl = 0xFF; // port 0x3F
    uint8_t portDc = 0xFF;    // as last read
    uint8_t portDd = 0xFF;
    std::array<uint32_t, 2> deviceState{}; // phase of a reading, or TH edges counted
    std::array<uint32_t, 2> deviceX{};     // aim, turn, or movement as 8 bits
    std::array<uint32_t, 2> deviceY{};
    std::array<uint32_t, 2> lastEdgeClock{}; // of TH
};

// Everything as when power comes on.
void PadsReset(PAD_PORTS& pads);
// After a state has been loaded: brings what stands for an aim or a turn into its range.
void PadsAfterLoad(PAD_PORTS& pads);

// Takes the players' input for one frame and moves what they move.
void PadsBeginFrame(PAD_PORTS& pads, const std::array<uint32_t, 2>& input,
                    const EMU_INPUT_STATE* pointers);

// A write to port 0x3F. May latch the H counter.
void PadsWriteControl(PAD_PORTS& pads, VDP& vdp, uint8_t value, uint32_t clock);
[[nodiscard]] uint8_t PadsReadDc(PAD_PORTS& pads, VDP& vdp, uint32_t clock);
[[nodiscard]] uint8_t PadsReadDd(PAD_PORTS& pads, VDP& vdp, uint32_t clock);
// Latches the H counter for light that a phaser has seen since the last call; before the latch is read.
void PadsLatchLight(PAD_PORTS& pads, VDP& vdp);
