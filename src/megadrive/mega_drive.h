// CMegaDrive: the Mega Drive or Genesis of three regions, with a cartridge of one of four kinds.
// md_console.h describes the hardware.
//
// Games: the first file is an image of at least 512 bytes; a second file is ignored.
// Options: MD_OPTIONS. A device left automatic is chosen by the game's header; the session's own block keeps
//   the setting as it was.
// States: board, 68000, Z80, VDP, PSG, FM chip, cartridge, then the sound that hasn't been taken yet
//   (sound_frame.h).
// Fails: a program that accesses a word at an odd address ends the machine (`ended`), and `endReason` says
//   where. The picture is black from then on; a reset or a loaded state starts the machine again.
#pragma once

#include "facts/mega_drive_facts.h"
#include "machine/battery.h"
#include "machine/emu_system.h"
#include "machine/inspection.h"
#include "megadrive/md_console.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class CMegaDrive : public CEmuSystem, public CInspection, public CBattery {
public:
    explicit CMegaDrive(uint32_t sessionKeyValue);

    [[nodiscard]] bool Init(const void* options, CGameFile* const games[2]) override;
    void Reset() override;
    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override;
    [[nodiscard]] bool LoadState(const uint8_t* data, uint32_t size) override;
    [[nodiscard]] uint32_t StateSize() override;
    void WriteState(StateOut out) override;

    [[nodiscard]] bool Peek(uint32_t address, uint8_t& value) const override;
    // "ram", "vram", "palette" (CRAM), "vsram", "z80ram", and "sram" for a cartridge with memory of its own.
    // Words are big-endian, as the console's programs see them.
    [[nodiscard]] std::vector<uint8_t> Dump(std::string_view region) const override;
    [[nodiscard]] std::span<const std::string_view> Regions() const override;

    [[nodiscard]] std::vector<uint8_t> BatteryContents() const override;
    [[nodiscard]] bool SetBatteryContents(std::span<const uint8_t> bytes) override;

    // Runs frames by the plain loop, which the fast one must match.
    void SetPlainLoop(bool plain) { md.plainLoop = plain; }
    // For tests.
    [[nodiscard]] MEGA_DRIVE& Console() { return md; }

private:
    void ChooseConsole(std::span<const uint8_t> image);
    void ChooseDevices(std::span<const uint8_t> image);
    void ReadPads();
    void RunProgram();
    void MixFrame(EMU_AUDIO_FRAME& audio);
    void SwapBattery(std::span<uint8_t> bytes) const;
    [[nodiscard]] bool LoadPieces(const uint8_t* data, uint32_t size);
    template <typename Visit>
    void BoardFields(Visit& visit);

    MD_OPTIONS chosen{};
    // Peek reads through the 68000's own functions, which take a machine that they may change.
    mutable MEGA_DRIVE md;
};

// Builds the tables that all these machines share, so that no game has to wait for them.
void MdBuildTables();
