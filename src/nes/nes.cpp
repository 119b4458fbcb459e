#include "nes/nes.h"

#include "facts/nes_facts.h"
#include "machine/machine_image.h"
#include "machine/read_buttons.h"
#include "machine/sound_frame.h"
#include "machine/state_piece.h"
#include "machine/state_pieces.h"
#include "nes/board.h"
#include "nes/nes_lines.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr uint32_t kLargestImage = 8 * 1024 * 1024; // more than a header can express
constexpr float kAspect = 1.25F;
constexpr uint32_t kBlack = 0xFF000000;
constexpr uint8_t kPlainBoard = 0;
constexpr uint32_t kProgramRamPage = 6;

// Index: action. Not the order of the bits.
constexpr uint32_t kButtonBits[] = {kNesUp,      kNesDown,    kNesLeft,   kNesRight,
                                    kNesButtonB, kNesButtonA, kNesSelect, kNesStart};

template <typename Bytes>
std::vector<uint8_t> Copy(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

} // namespace

void NesBuildTables() {
    const auto ppu = std::make_unique<PPU>();
    PpuInit(*ppu, nullptr);
}

CNES::CNES(uint32_t sessionKeyValue)
    : CEmuSystem(sessionKeyValue, kPpuWidth, kPpuHeight) {}

bool CNES::Init([[maybe_unused]] const void* options, CGameFile* const games[2]) {
    const auto image = TakeImage(games[0], kLargestImage);
    if (!image) {
        return false;
    }
    std::string error;
    if (!CartridgeLoad(nes.cartridge, *image, error)) {
        if (!error.empty()) {
            EmuSetLastError(std::move(error));
        }
        return false;
    }
    NesConnect(nes);
    Reset();
    return true;
}

void CNES::Reset() {
    NesReset(nes);
}

void CNES::RunFrame([[maybe_unused]] EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
                    EMU_AUDIO_FRAME* audio) {
    for (size_t i = 0; i < kNesPads; ++i) {
        nes.pads[i].buttons =
            static_cast<uint8_t>(ReadButtons(sessionKey, kNesPlayerActions[i], kButtonBits));
    }
    video->width = kPpuWidth;
    video->height = kPpuHeight;
    video->aspect = kAspect;
    video->visibleX = 0;
    video->visibleY = 0;
    video->visibleWidth = kPpuWidth;
    video->visibleHeight = kPpuHeight;
    video->visibleAspect = kAspect;
    if (nes.ppu.line != kPpuPreRenderLine) {
        // The first frame after a reset begins in vblank: it draws nothing.
        std::fill_n(video->pixels, size_t{kPpuWidth} * kPpuHeight, kBlack);
    }
    PpuBeginFrame(nes.ppu, video->pixels, kPpuWidth);
    NesRunFrame(nes);
    // The host's buffer may be freed before the next frame, and a loaded state may be on a visible line.
    nes.ppu.pixels = nullptr;
    nes.ppu.row = nullptr;
    nes.sound.Flush();
    TakeSound(nes.sound, *audio);
}

template <typename Visit>
void CNES::BoardFields(Visit& visit) {
    visit(nes.workRam);
    for (NES_PAD& pad : nes.pads) {
        visit(pad.buttons);
    }
    for (NES_PAD& pad : nes.pads) {
        visit(pad.readIndex);
    }
}

template <typename Visit>
void CNES::PlainRamFields(Visit& visit) {
    visit(nes.cartridge.plainRam);
}

// The piece of a plain board has no fields, so its RAM has a piece of its own.
bool CNES::HasPlainRam() const {
    return nes.cartridge.boardNumber == kPlainBoard && nes.cartridge.characterBanks == 0;
}

uint32_t CNES::StateSize() {
    const auto board = [&](auto& visit) { BoardFields(visit); };
    const auto plainRam = [&](auto& visit) { PlainRamFields(visit); };
    return StatePieceSize(board) + M6502StateSize() + PpuStateSize() + ApuStateSize() +
           BoardStateSize(nes.cartridge) + (HasPlainRam() ? StatePieceSize(plainRam) : 0) +
           SoundStateSize({&nes.sound});
}

void CNES::WriteState(StateOut out) {
    const auto board = [&](auto& visit) { BoardFields(visit); };
    const auto plainRam = [&](auto& visit) { PlainRamFields(visit); };
    out = StatePieceWrite(out, board);
    out = M6502SaveState(nes.cpu, out);
    out = PpuSaveState(nes.ppu, out);
    out = ApuSaveState(nes.apu, out);
    out = BoardSaveState(nes.cartridge, out);
    if (HasPlainRam()) {
        out = StatePieceWrite(out, plainRam);
    }
    SaveSoundState({&nes.sound}, out);
}

bool CNES::LoadPieces(const uint8_t* data, uint32_t size) {
    const auto board = [&](auto& visit) { BoardFields(visit); };
    const auto plainRam = [&](auto& visit) { PlainRamFields(visit); };
    StatePieces pieces(data, size);
    bool loaded = pieces.Take(
        [&](const uint8_t* piece, uint32_t left) { return StatePieceRead(piece, left, board); });
    loaded = loaded && pieces.Load(nes.cpu, M6502LoadState) && pieces.Load(nes.ppu, PpuLoadState) &&
             pieces.Load(nes.apu, ApuLoadState) && pieces.Load(nes.cartridge, BoardLoadState);
    // A state that ends here leaves the RAM unchanged.
    if (loaded && HasPlainRam() && pieces.Left() != 0) {
        loaded = pieces.Take([&](const uint8_t* piece, uint32_t left) {
            return StatePieceRead(piece, left, plainRam);
        });
    }
    LoadSoundState({&nes.sound}, pieces.Rest(), loaded ? pieces.Left() : 0);
    return loaded;
}

// The lines are masked even if a later piece was refused: the CPU's may be loaded then.
bool CNES::LoadState(const uint8_t* data, uint32_t size) {
    const bool loaded = LoadPieces(data, size);
    nes.cpu.irqLines &= kNesIrqFrame | kNesIrqSample | kNesIrqBoard;
    nes.cpu.nmiLine &= kNesNmiPpu;
    return loaded;
}

bool CNES::Peek(uint32_t address, uint8_t& value) const {
    if (address > 0xFFFF) {
        return false;
    }
    value = NesPeek(nes, static_cast<uint16_t>(address));
    return true;
}

std::vector<uint8_t> CNES::Dump(std::string_view region) const {
    std::vector<uint8_t> bytes;
    if (region == "ram") {
        return Copy(nes.workRam);
    }
    if (region == "palette") {
        return Copy(nes.ppu.palette);
    }
    if (region == "oam") {
        return Copy(nes.ppu.oam);
    }
    if (region == "vram") {
        for (const auto& page : nes.ppu.nametables) {
            bytes.insert(bytes.end(), page.begin(), page.end());
        }
    }
    if (region == "sram") {
        const std::span<const uint8_t> ram = ProgramRam();
        return {ram.begin(), ram.end()};
    }
    return bytes;
}

std::span<const std::string_view> CNES::Regions() const {
    return std::span(kNesRegions).first(std::size(kNesRegions) - (ProgramRam().empty() ? 1 : 0));
}

std::span<uint8_t> CNES::ProgramRam() const {
    uint8_t* const ram = nes.cartridge.pages.cpu[kProgramRamPage].data;
    return ram != nullptr ? std::span(ram, kNesBoardRamBytes) : std::span<uint8_t>();
}

std::vector<uint8_t> CNES::BatteryContents() const {
    if ((nes.cartridge.flags & kNesBattery) == 0) {
        return {};
    }
    const std::span<const uint8_t> ram = ProgramRam();
    return {ram.begin(), ram.end()};
}

bool CNES::SetBatteryContents(std::span<const uint8_t> bytes) {
    const std::span<uint8_t> ram = ProgramRam();
    if ((nes.cartridge.flags & kNesBattery) == 0 || bytes.size() != ram.size()) {
        return false;
    }
    std::ranges::copy(bytes, ram.begin());
    return true;
}
