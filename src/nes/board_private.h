// What the boards share: mapping pages, mirroring, and state records.
//
// Every page number is masked by the image's size: a bank number that is too large wraps if the number of
// banks is a power of two, and otherwise maps absent pages.
#pragma once

#include "machine/state_piece.h"
#include "nes/board.h"

// The rows of the table.
extern const NES_BOARD_ROW kNesPlainBoard;         // 0
extern const NES_BOARD_ROW kNesShiftBoard;         // 1
extern const NES_BOARD_ROW kNesProgramBankBoard;   // 2
extern const NES_BOARD_ROW kNesCharacterBankBoard; // 3
extern const NES_BOARD_ROW kNesScanlineBoard;      // 4
extern const NES_BOARD_ROW kNesOneScreenBoard;     // 7
extern const NES_BOARD_ROW kNesLatchedBoard;       // 9
extern const NES_BOARD_ROW kNesTwoBankBoard;       // 66
extern const NES_BOARD_ROW kNesCycleBoard;         // 73

// The pages of the four nametables.
enum class NesMirroring : uint8_t {
    kPageA,       // A A A A
    kPageB,       // B B B B
    kVertical,    // A B A B
    kHorizontal,  // A A B B
    kFourScreens, // A B C D
};

// Program image: maps 8, 4 or 2 pages of 4 KB from `firstPage` on.
void MapPrg32(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank);
void MapPrg16(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank);
void MapPrg8(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank);

// The number of the image's last bank of 16 KB.
[[nodiscard]] uint32_t LastPrg16(const NES_CARTRIDGE& cartridge);

// Character image: maps 8, 4 or 1 pages of 1 KB. Does nothing if there is no character image.
void MapChr8(NES_CARTRIDGE& cartridge, uint32_t bank);
void MapChr4(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank);
void MapChr1(NES_CARTRIDGE& cartridge, uint32_t page, uint32_t bank);

// Character RAM: maps `pages` pages of `ram` in order, from `firstPage` on.
void MapChrRam(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t pages, uint8_t* ram);

// Program RAM at CPU pages 6 and 7.
void MapPrgRam(NES_CARTRIDGE& cartridge, NesBoardRam& ram, bool readable, bool writable);

void SetMirroring(NES_CARTRIDGE& cartridge, NesMirroring mirroring);
[[nodiscard]] NesMirroring HeaderMirroring(const NES_CARTRIDGE& cartridge);

// The mirroring register of boards 4 and 9: set for A A B B, clear for A B A B.
inline constexpr uint8_t kMirroringHorizontal = 1;
[[nodiscard]] uint8_t HeaderMirroringRegister(const NES_CARTRIDGE& cartridge);
[[nodiscard]] NesMirroring RegisterMirroring(uint8_t value);

void SetWriteHandler(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t lastPage,
                     NesWriteHandler handler);

template <typename State>
void CreateBoardState(NES_CARTRIDGE& cartridge) {
    cartridge.state = std::make_unique<State>();
}

template <typename State>
[[nodiscard]] State& BoardState(const NES_CARTRIDGE& cartridge) {
    return static_cast<State&>(*cartridge.state);
}

// A record lists its saved fields in `Fields` (Visit&).
template <typename State>
uint32_t SaveBoardState(const NES_CARTRIDGE& cartridge, StateOut* out) {
    State& state = BoardState<State>(cartridge);
    const auto fields = [&](auto& visit) { state.Fields(visit); };
    if (out != nullptr) {
        *out = StatePieceWrite(*out, fields);
    }
    return StatePieceSize(fields);
}

// `Restore` masks the loaded fields and maps the pages again.
template <typename State, void (*Restore)(NES_CARTRIDGE&)>
uint32_t LoadBoardState(NES_CARTRIDGE& cartridge, const uint8_t* data, uint32_t size) {
    State& state = BoardState<State>(cartridge);
    const uint32_t used = StatePieceRead(data, size, [&](auto& visit) { state.Fields(visit); });
    if (used != 0) {
        Restore(cartridge);
    }
    return used;
}
