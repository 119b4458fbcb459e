// Boards with at most one register: 0 plain, 2 program bank, 3 character bank, 7 one-screen, 66 two banks.
//
// Every write to 0x8000 and up sets the register. A game without a character image has the 8 KB of its record
// as character RAM; 2 and 7 always have that RAM.
#include "nes/board_private.h"

namespace {

// The register of 7: a 32 KB program bank and the nametable page. 66: a program and a character bank.
constexpr uint8_t kOneScreenProgram = 0x07;
constexpr uint8_t kOneScreenPageB = 0x10;
constexpr uint8_t kTwoBankCharacter = 0x03;
constexpr uint8_t kTwoBankProgram = 0x30;
constexpr uint32_t kTwoBankProgramShift = 4;

struct BANK_STATE : NES_BOARD_STATE {
    uint8_t value = 0;
    uint16_t page = 0;    // CPU page of the last write, 8..15
    uint16_t address = 0; // its low 12 bits
    NesBoardRam characterRam{};

    template <typename Visit>
    void Fields(Visit& visit) {
        visit(value);
        visit(page);
        visit(address);
        visit(characterRam);
    }
};

BANK_STATE& State(NES_CARTRIDGE& cartridge) {
    return BoardState<BANK_STATE>(cartridge);
}

void MapRam(NES_CARTRIDGE& cartridge) {
    MapChrRam(cartridge, 0, 8, State(cartridge).characterRam.data());
}

void MapChrImageOrRam(NES_CARTRIDGE& cartridge, uint32_t bank) {
    if (cartridge.characterBanks == 0) {
        MapRam(cartridge);
    } else {
        MapChr8(cartridge, bank);
    }
}

void SyncProgramBank(NES_CARTRIDGE& cartridge) {
    MapPrg16(cartridge, 8, State(cartridge).value);
    MapPrg16(cartridge, 12, LastPrg16(cartridge));
    MapRam(cartridge);
}

void SyncCharacterBank(NES_CARTRIDGE& cartridge) {
    MapPrg32(cartridge, 8, 0);
    MapChrImageOrRam(cartridge, State(cartridge).value);
}

void SyncOneScreen(NES_CARTRIDGE& cartridge) {
    const uint8_t value = State(cartridge).value;
    MapPrg32(cartridge, 8, value & kOneScreenProgram);
    MapRam(cartridge);
    SetMirroring(cartridge,
                 (value & kOneScreenPageB) != 0 ? NesMirroring::kPageB : NesMirroring::kPageA);
}

void SyncTwoBanks(NES_CARTRIDGE& cartridge) {
    const uint8_t value = State(cartridge).value;
    MapPrg32(cartridge, 8, (value & kTwoBankProgram) >> kTwoBankProgramShift);
    MapChrImageOrRam(cartridge, value & kTwoBankCharacter);
}

template <void (*Sync)(NES_CARTRIDGE&)>
void Write(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    BANK_STATE& state = State(cartridge);
    state.value = value;
    state.page = address >> 12;
    state.address = address & 0xFFF;
    Sync(cartridge);
}

template <void (*Sync)(NES_CARTRIDGE&)>
void Reset(NES_CARTRIDGE& cartridge) {
    BANK_STATE& state = State(cartridge);
    state.value = 0;
    state.page = 0;
    state.address = 0;
    SetWriteHandler(cartridge, 8, 15, Write<Sync>);
    Sync(cartridge);
}

template <void (*Sync)(NES_CARTRIDGE&)>
constexpr NES_BOARD_ROW Row() {
    return {CreateBoardState<BANK_STATE>,
            Reset<Sync>,
            nullptr,
            nullptr,
            nullptr,
            SaveBoardState<BANK_STATE>,
            LoadBoardState<BANK_STATE, Sync>};
}

void ResetPlain(NES_CARTRIDGE& cartridge) {
    MapPrg32(cartridge, 8, 0);
    if (cartridge.characterBanks == 0) {
        MapChrRam(cartridge, 0, 8, cartridge.plainRam.data());
    } else {
        MapChr8(cartridge, 0);
    }
}

constexpr auto kNoFields = [](auto& /*visit*/) {};

uint32_t SavePlain(const NES_CARTRIDGE& /*cartridge*/, StateOut* out) {
    if (out != nullptr) {
        *out = StatePieceWrite(*out, kNoFields);
    }
    return StatePieceSize(kNoFields);
}

uint32_t LoadPlain(NES_CARTRIDGE& /*cartridge*/, const uint8_t* data, uint32_t size) {
    return StatePieceRead(data, size, kNoFields);
}

} // namespace

constexpr NES_BOARD_ROW kNesPlainBoard{nullptr, ResetPlain, nullptr,  nullptr,
                                       nullptr, SavePlain,  LoadPlain};
constexpr NES_BOARD_ROW kNesProgramBankBoard = Row<SyncProgramBank>();
constexpr NES_BOARD_ROW kNesCharacterBankBoard = Row<SyncCharacterBank>();
constexpr NES_BOARD_ROW kNesOneScreenBoard = Row<SyncOneScreen>();
constexpr NES_BOARD_ROW kNesTwoBankBoard = Row<SyncTwoBanks>();
