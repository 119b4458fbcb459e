// CMegaDrive: the Mega Drive or Genesis of three regions, with a cartridge of one of four kinds.
// md_console.h tells of the hardware.
//
// Games: the first file is an image of at least 512 bytes; a second file is not looked at.
// Options: MD_OPTIONS. Devices left automatic are chosen by the game's header, and the session's own block
//   keeps what was asked for.
// States: board, 68000, Z80, video, PSG, FM, cartridge; behind them the sound on its way, of which
//   sound_frame.h tells.
// Fails: a program that reaches for a word at an odd address ends the machine (`ended`), and the last error
//   says where it was. The picture is then black; a reset or a state starts it again.
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
    [[nodiscard]] StateBlob SaveState(uint32_t& size) override;

    [[nodiscard]] bool Peek(uint32_t address, uint8_t& value) const override;
    // "ram", "vram", "palette" (colour RAM), "vsram", "z80ram", and "sram" on a cartridge with memory of its
    // own. Words are big-endian, as the console's own programs see them.
    [[nodiscard]] std::vector<uint8_t> Dump(std::string_view region) const override;
    [[nodiscard]] std::span<const std::string_view> Regions() const override;

    [[nodiscard]] std::vector<uint8_t> BatteryContents() const override;
    [[nodiscard]] bool SetBatteryContents(std::span<const uint8_t> bytes) override;

    // Frames by the plain loop, every chip stepped in every round; for comparison with the fast one.
    void SetStepByStep(bool plain) { md.stepByStep = plain; }
    // For tests.
    [[nodiscard]] MEGA_DRIVE& Console() { return md; }

private:
    void ChooseConsole(std::span<const uint8_t> image);
    void ChooseDevices(std::span<const uint8_t> image);
    void ReadPads();
    void RunProgram();
    void End();
    void MixFrame(EMU_AUDIO_FRAME& audio);
    void SwapBattery(std::span<uint8_t> bytes) const;
    [[nodiscard]] bool LoadPieces(const uint8_t* data, uint32_t size);
    template <typename Visit>
    void BoardFields(Visit& visit);

    MD_OPTIONS chosen{};
    // Peek reads through the same functions as the 68000, which want a machine that they may change.
    mutable MEGA_DRIVE md;
};

// Builds the tables that all these machines share, so that no game has to wait for them.
void MdBuildTables();
