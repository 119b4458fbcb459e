#include "nes/board_private.h"

namespace {

constexpr NES_BOARD_ROW kNotBuilt{};

constexpr std::array<const NES_BOARD_ROW*, kNesBoardNumbers> BuildTable() {
    std::array<const NES_BOARD_ROW*, kNesBoardNumbers> table{};
    for (const NES_BOARD_ROW*& row : table) {
        row = &kNotBuilt;
    }
    table[0] = &kNesPlainBoard;
    table[1] = &kNesShiftBoard;
    table[2] = &kNesProgramBankBoard;
    table[3] = &kNesCharacterBankBoard;
    table[4] = &kNesScanlineBoard;
    table[7] = &kNesOneScreenBoard;
    table[9] = &kNesLatchedBoard;
    table[66] = &kNesTwoBankBoard;
    table[73] = &kNesCycleBoard;
    return table;
}

// Index: board number.
constexpr std::array<const NES_BOARD_ROW*, kNesBoardNumbers> kBoards = BuildTable();

} // namespace

const NES_BOARD_ROW& NesBoard(uint8_t number) {
    return *kBoards[number];
}

void BoardReset(NES_CARTRIDGE& cartridge) {
    const auto hook = cartridge.pages.ppuAddressHook;
    cartridge.pages = NES_PAGES{};
    cartridge.pages.board = &cartridge;
    cartridge.pages.ppuAddressHook = hook;
    cartridge.write.fill(nullptr);
    *cartridge.irqLines &= ~kNesIrqBoard;
    SetMirroring(cartridge, HeaderMirroring(cartridge));
    cartridge.board->reset(cartridge);
}

uint32_t BoardStateSize(const NES_CARTRIDGE& cartridge) {
    return cartridge.board->saveState(cartridge, nullptr);
}

uint8_t* BoardSaveState(const NES_CARTRIDGE& cartridge, uint8_t* out) {
    return out + cartridge.board->saveState(cartridge, out);
}

uint32_t BoardLoadState(NES_CARTRIDGE& cartridge, const uint8_t* data, uint32_t size) {
    return cartridge.board->loadState(cartridge, data, size);
}
