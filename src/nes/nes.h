// CNES: the NES in its 60 Hz form, with a cartridge on one of nine boards. nes_console.h tells of the
// hardware.
//
// Games: the first file is an image with its header of 16 bytes; a second file is not looked at. A
//   header without its mark ("NES" and 0x1A), a trainer, a board that is not built and an image shorter
//   than its header says are refused; bytes beyond that are not looked at.
// Options: none.
// States: board, processor, picture unit, sound unit, cartridge board. Behind them comes the RAM that a
//   plain board without character image shows, where there is one, and then the sound on its way, of
//   which sound_frame.h tells. A state that ends before that RAM loads, and the RAM keeps its bytes.
//   Where a piece is refused those before it are in force.
#pragma once

#include "machine/emu_system.h"
#include "machine/inspection.h"
#include "nes/nes_console.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class CNES : public CEmuSystem, public CInspection {
public:
    explicit CNES(uint32_t sessionKeyValue);

    [[nodiscard]] bool Init(const void* options, CGameFile* const games[2]) override;
    void Reset() override;
    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override;
    [[nodiscard]] bool LoadState(const uint8_t* data, uint32_t size) override;
    [[nodiscard]] StateBlob SaveState(uint32_t& size) override;

    [[nodiscard]] bool Peek(uint32_t address, uint8_t& value) const override;
    // "ram", "vram" (the four nametable pages), "palette", "oam", and "sram" on a board with RAM at
    // 0x6000.
    [[nodiscard]] std::vector<uint8_t> Dump(std::string_view region) const override;
    [[nodiscard]] std::span<const std::string_view> Regions() const override;

    // Frames by the plain loop, every chip stepped in every cycle; for comparison with the fast one.
    void SetStepByStep(bool plain) { nes.stepByStep = plain; }
    // For tests.
    [[nodiscard]] const NES_CONSOLE& Console() const { return nes; }

private:
    [[nodiscard]] bool HasPlainRam() const;
    [[nodiscard]] bool LoadPieces(const uint8_t* data, uint32_t size);
    template <typename Visit>
    void BoardFields(Visit& visit);
    template <typename Visit>
    void PlainRamFields(Visit& visit);

    NES_CONSOLE nes;
};

// Builds the tables that all these machines share, so that no game has to wait for them.
void NesBuildTables();
