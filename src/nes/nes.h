// CNES: the 60 Hz NES, with a cartridge on one of nine boards. The hardware is in nes_console.h.
//
// Games: the first file is an image with a 16-byte header; a second file is ignored. Refused: a header
//   without its mark ("NES" and 0x1A), a trainer, a board that isn't built, an image shorter than its header
//   says. Bytes after the image are ignored.
// Options: none.
// States: console, CPU, PPU, APU, cartridge board; then, for a plain board without character image, its
//   character RAM; then the resampler history (sound_frame.h). A state that ends before the character RAM
//   loads and leaves that RAM unchanged. If a piece is refused, the pieces before it stay loaded.
#pragma once

#include "machine/battery.h"
#include "machine/emu_system.h"
#include "machine/inspection.h"
#include "nes/nes_console.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class CNES : public CEmuSystem, public CInspection, public CBattery {
public:
    explicit CNES(uint32_t sessionKeyValue);

    [[nodiscard]] bool Init(const void* options, CGameFile* const games[2]) override;
    void Reset() override;
    void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override;
    [[nodiscard]] bool LoadState(const uint8_t* data, uint32_t size) override;
    [[nodiscard]] uint32_t StateSize() override;
    void WriteState(StateOut out) override;

    [[nodiscard]] bool Peek(uint32_t address, uint8_t& value) const override;
    // "ram", "vram" (the four nametable pages), "palette", "oam", and "sram" if the board has RAM at 0x6000.
    [[nodiscard]] std::vector<uint8_t> Dump(std::string_view region) const override;
    [[nodiscard]] std::span<const std::string_view> Regions() const override;

    // The RAM at 0x6000, if the header says that a battery keeps it.
    [[nodiscard]] std::vector<uint8_t> BatteryContents() const override;
    [[nodiscard]] bool SetBatteryContents(std::span<const uint8_t> bytes) override;

    // Runs frames in the plain loop, which ticks every chip in every cycle; for comparison with the fast one.
    void SetPlainLoop(bool plain) { nes.plainLoop = plain; }
    // For tests.
    [[nodiscard]] const NES_CONSOLE& Console() const { return nes; }

private:
    [[nodiscard]] std::span<uint8_t> ProgramRam() const;
    [[nodiscard]] bool HasPlainRam() const;
    [[nodiscard]] bool LoadPieces(const uint8_t* data, uint32_t size);
    template <typename Visit>
    void BoardFields(Visit& visit);
    template <typename Visit>
    void PlainRamFields(Visit& visit);

    NES_CONSOLE nes;
};

// Builds the shared tables ahead of time, so that no game has to wait for them.
void NesBuildTables();
