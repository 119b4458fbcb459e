// Board 9: each half of the pattern tables has two bank registers, and the PPU's reads of tiles FD and FE
// select between them.
#include "nes/board_private.h"

namespace {

constexpr uint32_t kPagesAHalf = 4;
constexpr uint16_t kTileMask = 0x3F8;
constexpr uint16_t kTileFd = 0x3D8; // high plane of the tile, in the last page of a half
constexpr uint16_t kTileFe = 0x3E8;
constexpr uint8_t kProgramBits = 15;
constexpr uint8_t kCharacterBits = 31;

enum Latch : uint8_t { kFd, kFe };

// Stored instead of the mirroring register's bit: four screens by the header, and nothing written yet.
constexpr uint8_t kFourScreens = 2;

struct LATCHED_STATE : NES_BOARD_STATE {
    uint8_t program = 0;                // 8 KB bank at 0x8000, 4 bits
    uint8_t mirroring = 0;              // bit 0, or kFourScreens
    std::array<uint8_t, 2> latches{};   // by half, Latch
    std::array<uint8_t, 4> character{}; // left FD, left FE, right FD, right FE; 5 bits each

    template <typename Visit>
    void Fields(Visit& visit) {
        visit(program);
        visit(mirroring);
        visit(latches);
        visit(character);
    }
};

LATCHED_STATE& State(NES_CARTRIDGE& cartridge) {
    return BoardState<LATCHED_STATE>(cartridge);
}

void MapHalf(NES_CARTRIDGE& cartridge, uint32_t half) {
    const LATCHED_STATE& state = State(cartridge);
    MapChr4(cartridge, half * kPagesAHalf, state.character[half * 2 + state.latches[half]]);
}

// The header's four screens apply until the register is written.
void SyncMirroring(NES_CARTRIDGE& cartridge) {
    const uint8_t value = State(cartridge).mirroring;
    SetMirroring(cartridge, (value & kFourScreens) != 0 ? HeaderMirroring(cartridge)
                                                        : RegisterMirroring(value));
}

void Sync(NES_CARTRIDGE& cartridge) {
    SyncMirroring(cartridge);
    MapPrg8(cartridge, 8, State(cartridge).program);
    MapPrg8(cartridge, 10, 13);
    MapPrg8(cartridge, 12, 14);
    MapPrg8(cartridge, 14, 15);
    MapHalf(cartridge, 0);
    MapHalf(cartridge, 1);
}

// The byte read still comes from the old bank.
uint8_t ReadAndLatch(void* board, uint16_t address) {
    NES_CARTRIDGE& cartridge = *static_cast<NES_CARTRIDGE*>(board);
    const uint8_t* data = cartridge.pages.ppu[NesPpuPageOf(address)].data;
    const uint8_t value = data != nullptr ? data[NesPpuPlace(address)] : kNesUnreadable;
    const uint16_t tile = address & kTileMask;
    if (tile == kTileFd || tile == kTileFe) {
        const uint32_t half = NesPpuPageOf(address) / kPagesAHalf & 1;
        State(cartridge).latches[half] = tile == kTileFe ? kFe : kFd;
        MapHalf(cartridge, half);
    }
    return value;
}

void WriteProgram(NES_CARTRIDGE& cartridge, uint16_t /*address*/, uint8_t value) {
    State(cartridge).program = value & kProgramBits;
    Sync(cartridge);
}

void WriteCharacter(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    constexpr uint32_t kFirstPage = 11;
    State(cartridge).character[(address >> kNesCpuPageShift) - kFirstPage] = value & kCharacterBits;
    Sync(cartridge);
}

void WriteMirroring(NES_CARTRIDGE& cartridge, uint16_t /*address*/, uint8_t value) {
    State(cartridge).mirroring = value & kMirroringHorizontal;
    Sync(cartridge);
}

void Reset(NES_CARTRIDGE& cartridge) {
    LATCHED_STATE& state = State(cartridge);
    state.program = 0;
    state.mirroring = (cartridge.flags & kNesFourScreens) != 0 ? kFourScreens
                                                               : HeaderMirroringRegister(cartridge);
    state.latches = {kFd, kFd};
    state.character.fill(0);
    SetWriteHandler(cartridge, 10, 10, WriteProgram);
    SetWriteHandler(cartridge, 11, 14, WriteCharacter);
    SetWriteHandler(cartridge, 15, 15, WriteMirroring);
    cartridge.pages.ppu[kPagesAHalf - 1].read = ReadAndLatch;
    cartridge.pages.ppu[kPagesAHalf * 2 - 1].read = ReadAndLatch;
    Sync(cartridge);
}

void Restore(NES_CARTRIDGE& cartridge) {
    LATCHED_STATE& state = State(cartridge);
    state.program &= kProgramBits;
    state.mirroring &= kFourScreens | kMirroringHorizontal;
    for (uint8_t& latch : state.latches) {
        latch &= kFe;
    }
    for (uint8_t& bank : state.character) {
        bank &= kCharacterBits;
    }
    Sync(cartridge);
}

} // namespace

constexpr NES_BOARD_ROW kNesLatchedBoard{CreateBoardState<LATCHED_STATE>,
                                         Reset,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         SaveBoardState<LATCHED_STATE>,
                                         LoadBoardState<LATCHED_STATE, Restore>};
