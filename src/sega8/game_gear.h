// CGAMEGEAR: the Game Gear, or two of them with a link cable, side by side in one picture.
//
// Clock: as an NTSC Master System. Two consoles run in turn, a Z80 clock each, the first one first.
// Games: the first file is the cartridge. With one console a second file is the BIOS; with two it
//   is the second player's cartridge; without it both play the first.
// Picture: 160 x 144 as on the console's screen, or all 256 x (height and borders) with Full
//   Display. Two consoles make 320 x 144 pixels, or a width of 512. If their heights differ, black
//   rows fill the lower one.
// Sound: of two consoles the average; each has its own panning.
// Input: "GG P1 ..." for the first console, "GG P2 ..." for the second.
// States: board of both consoles, then Z80, VDP and PSG of the first and of the second, also with
//   one console. sound_frame.h says what is guaranteed about sound.
// Differs: docs/HARDWARE.md, "Master System, Mark III, Game Gear", Master System board
//   and Game Gear board.
#pragma once

#include "facts/game_gear_facts.h"
#include "machine/battery.h"
#include "machine/chip_sound.h"
#include "machine/emu_system.h"
#include "machine/inspection.h"
#include "machine/side_by_side.h"
#include "sega8/gear_link.h"
#include "sega8/psg.h"
#include "sega8/sega_memory.h"
#include "sega8/vdp.h"
#include "sega8/z80.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

// One console.
struct GEAR_CONSOLE {
    Z80 z80;
    VDP vdp;
    PSG psg;
    ChipSound sound; // of the PSG
    SEGA_MEMORY memory;
    GEAR_LINK link;
    uint32_t irqOut = 0;      // by the VDP
    uint32_t soundOwed = 0;   // clocks that the PSG has not run; 0 between frames
    uint8_t ioControl = 0xFF; // port 0x3F
    uint8_t buttons = 0xFF;   // port 0xDC; 0: pressed
    std::array<uint8_t, kVdpVramBytes> vram{};
};

// Runs the clocks that the PSG owes.
inline void GearRunSound(GEAR_CONSOLE& console) {
    PsgRun(console.psg, console.soundOwed);
    console.soundOwed = 0;
}

[[nodiscard]] uint8_t GearReadPort(GEAR_CONSOLE& console, uint16_t port);
void GearWritePort(GEAR_CONSOLE& console, uint16_t port, uint8_t value);

class CGAMEGEAR : public CEmuSystem, public CInspection, public CBattery, public CSideBySide {
public:
    explicit CGAMEGEAR(uint32_t sessionKeyValue);

    [[nodiscard]] bool Init(const void* options, CGameFile* const games[2]) override;
    void Reset() override;
    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override;
    [[nodiscard]] bool LoadState(const uint8_t* data, uint32_t size) override;
    [[nodiscard]] StateBlob SaveState(uint32_t& size) override;

    // What a console's Z80 would read, with no side effect. 0 is the first console, any other
    // number the second.
    [[nodiscard]] uint8_t Peek(uint16_t address, uint32_t console = 0) const;
    // "ram", "sram", "vram" or "palette" of a console; empty for any other name.
    [[nodiscard]] std::vector<uint8_t> Memory(std::string_view region, uint32_t console = 0) const;

    // Frames by the plain loop, which ticks every chip on every clock; for tests of the fast loop.
    void SetPlainLoop(bool plain) { plainLoop = plain; }

    [[nodiscard]] bool Peek(uint32_t address, uint8_t& value) const override;
    [[nodiscard]] std::vector<uint8_t> Dump(std::string_view region) const override;
    [[nodiscard]] std::span<const std::string_view> Regions() const override;

    // The RAM of the first console's cartridge, as on a Master System. The second one plays the same game with a battery
    // of its own, which is not kept.
    [[nodiscard]] std::vector<uint8_t> BatteryContents() const override;
    [[nodiscard]] bool SetBatteryContents(std::span<const uint8_t> bytes) override;

    [[nodiscard]] uint32_t Screens() const override { return consoleCount; }

private:
    friend struct MACHINE_FIELDS; // of the tests: every field of a state

    void ConnectChips();
    void ReadInput();
    void RunConsoles();
    void RunFramePlain();
    void RunFrameFast();
    void FinishPicture(EMU_VIDEO_FRAME& video) const;
    void CutWindow(EMU_VIDEO_FRAME& video) const;
    [[nodiscard]] bool LoadPieces(const uint8_t* data, uint32_t size);
    template <typename Visit>
    void BoardFields(Visit& visit);

    GEAR_OPTIONS chosen{};
    uint32_t consoleCount = 1;
    bool plainLoop = false;
    std::array<GEAR_CONSOLE, 2> consoles; // the second one runs only with a link
};
