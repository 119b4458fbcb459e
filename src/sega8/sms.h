// CSMS: the Master System and the Mark III. A Z80, the 8-bit VDP, the PSG, an optional FM chip, and
// a cartridge and a BIOS with their mappers.
//
// Clock: Z80, PSG and FM chip run at master / 15; the VDP makes three ticks a Z80 clock.
// Games: the first file is the cartridge, the second, if any, the BIOS. A first file whose record
//   says BIOS runs alone. Images may have any length up to 4 MB.
// States: board, Z80, VDP, PSG, YM2413; the last also on a console without the chip. sound_frame.h
//   says what is guaranteed about sound.
// Differs: docs/HARDWARE.md, "Master System, Mark III, Game Gear", Master System board.
#pragma once

#include "facts/sms_facts.h"
#include "machine/battery.h"
#include "machine/chip_sound.h"
#include "machine/emu_system.h"
#include "machine/inspection.h"
#include "sega8/psg.h"
#include "sega8/sega_memory.h"
#include "sega8/sms_pads.h"
#include "sega8/vdp.h"
#include "sega8/ym2413.h"
#include "sega8/z80.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

struct SMS_BUS;

class CSMS : public CEmuSystem, public CInspection, public CBattery {
public:
    explicit CSMS(uint32_t sessionKeyValue);

    [[nodiscard]] bool Init(const void* options, CGameFile* const games[2]) override;
    void Reset() override;
    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override;
    [[nodiscard]] bool LoadState(const uint8_t* data, uint32_t size) override;
    [[nodiscard]] uint32_t StateSize() override;
    void WriteState(StateOut out) override;

    // What the Z80 would read, with no side effect.
    [[nodiscard]] uint8_t Peek(uint16_t address) const { return SegaMemoryRead(memory, address); }
    // "ram", "sram" (on the cartridge), "vram" or "palette" (colour RAM); empty for any other name.
    [[nodiscard]] std::vector<uint8_t> Memory(std::string_view region) const;

    // Frames by the plain loop, which ticks every chip on every clock; for tests of the fast loop.
    void SetPlainLoop(bool plain) { plainLoop = plain; }

    // The ports as the Z80 sees them; only the low byte counts.
    [[nodiscard]] uint8_t ReadPort(uint16_t port);
    void WritePort(uint16_t port, uint8_t value);

    [[nodiscard]] bool Peek(uint32_t address, uint8_t& value) const override;
    [[nodiscard]] std::vector<uint8_t> Dump(std::string_view region) const override;
    [[nodiscard]] std::span<const std::string_view> Regions() const override;

    // The RAM of the cartridge. No image says whether it has any, and what no game has written is zero.
    [[nodiscard]] std::vector<uint8_t> BatteryContents() const override;
    [[nodiscard]] bool SetBatteryContents(std::span<const uint8_t> bytes) override;

private:
    friend struct MACHINE_FIELDS; // of the tests: every field of a state

    void ConnectChips();
    void TickChips(SMS_BUS& bus);
    void RunFramePlain();
    void RunFrameFast();
    void RunSound();
    void MixFm(EMU_AUDIO_FRAME& audio);
    [[nodiscard]] bool LoadPieces(const uint8_t* data, uint32_t size);
    template <typename Visit>
    void BoardFields(Visit& visit, uint8_t& irqByte);

    SMS_OPTIONS chosen{};
    bool plainLoop = false;
    Z80 z80;
    VDP vdp;
    PSG psg;
    YM2413 fm;
    ChipSound psgSound;
    ChipSound fmSound;
    SEGA_MEMORY memory;
    PAD_PORTS pads;
    uint32_t irqOut = 0;     // by the VDP
    uint8_t fmAddress = 0;   // port 0xF0: the register that port 0xF1 writes
    uint8_t fmControl = 0;   // port 0xF2
    uint8_t frameToggle = 0; // 1 in the first frame of a pair
    uint32_t clockCount = 0; // Z80 clocks
    uint32_t soundOwed = 0;  // clocks that PSG and FM chip have not run; 0 between frames
    std::array<uint8_t, kVdpVramBytes> vram{};
};
