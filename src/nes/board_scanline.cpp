// Board 4: eight character and four program registers, and a scanline counter.
//
// The counter is clocked by a rise of address bit 12 after enough addresses with the bit clear. With background
// and sprites in different pattern tables that happens once per line.
#include "nes/board_private.h"

#include <algorithm>

namespace {

// An address with bit 12 set closes the filter for the next seven addresses; from the eighth on, bit 12 counts
// again.
constexpr uint8_t kFilterAddresses = kNesRiseAddresses;
constexpr uint16_t kUpperHalf = 0x1000;

// Each page of 8 KB has two registers, by the lowest address bit.
constexpr uint16_t kOddRegister = 1;

// Bank select register.
constexpr uint8_t kSelectMask = 0x07;
constexpr uint8_t kSwapPrograms = 0x40;
constexpr uint8_t kSwapCharacters = 0x80;
constexpr uint8_t kProgramBits = 63;
constexpr uint32_t kRamPages = 8; // of character RAM
constexpr uint8_t kOddCharacterBank =
    1; // registers 0 and 1 select two banks, an even one and the next

// RAM control register.
constexpr uint8_t kRamOpen = 0x80;
constexpr uint8_t kRamProtected = 0x40;

struct SCANLINE_STATE : NES_BOARD_STATE {
    uint8_t irqEnable = 0; // 0 or 1
    uint8_t counter = 0;   // scanlines left
    uint8_t latch = 0;
    uint8_t reload = 0; // 1: the next clock loads the latch
    uint8_t filter = 0; // addresses until bit 12 counts again, 0..8
    uint8_t bankSelect = 0;
    uint8_t ramControl = 0;
    uint8_t mirroring = 0;
    std::array<uint8_t, 4> program{};   // 8 KB banks, 6 bits each
    std::array<uint8_t, 8> character{}; // 1 KB banks
    NesBoardRam programRam{};
    NesBoardRam characterRam{};

    template <typename Visit>
    void Fields(Visit& visit) {
        visit(irqEnable);
        visit(counter);
        visit(latch);
        visit(reload);
        visit(filter);
        visit(bankSelect);
        visit(ramControl);
        visit(mirroring);
        visit(program);
        visit(character);
        visit(programRam);
        visit(characterRam);
    }
};

SCANLINE_STATE& State(NES_CARTRIDGE& cartridge) {
    return BoardState<SCANLINE_STATE>(cartridge);
}

void Sync(NES_CARTRIDGE& cartridge) {
    SCANLINE_STATE& state = State(cartridge);
    // Four screens by the header override the mirroring register.
    if ((cartridge.flags & kNesFourScreens) == 0) {
        SetMirroring(cartridge, RegisterMirroring(state.mirroring));
    }
    const uint32_t swapped = (state.bankSelect & kSwapPrograms) != 0 ? 2 : 0;
    for (uint32_t i = 0; i < 4; ++i) {
        const uint32_t index = (i & 1) != 0 ? i : i ^ swapped;
        MapPrg8(cartridge, 8 + i * 2, uint32_t{state.program[index]} & kProgramBits);
    }
    const uint32_t half = (state.bankSelect & kSwapCharacters) != 0 ? 4 : 0;
    for (uint32_t i = 0; i < 8; ++i) {
        const uint32_t bank = state.character[i ^ half];
        if (cartridge.characterBanks == 0) {
            MapChrRam(cartridge, i, 1,
                      state.characterRam.data() + bank % kRamPages * kNesPpuPageBytes);
        } else {
            MapChr1(cartridge, i, bank);
        }
    }
    const bool open = (state.ramControl & kRamOpen) != 0;
    MapPrgRam(cartridge, state.programRam, open, open && (state.ramControl & kRamProtected) == 0);
}

void SetRegister(SCANLINE_STATE& state, uint8_t value) {
    const size_t number = state.bankSelect & kSelectMask;
    if (number < 2) {
        state.character[number * 2] = value & static_cast<uint8_t>(~kOddCharacterBank);
        state.character[number * 2 + 1] = value | kOddCharacterBank;
    } else if (number < 6) {
        state.character[number + 2] = value;
    } else {
        state.program[number - 6] = value & kProgramBits;
    }
}

void WriteBanks(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    SCANLINE_STATE& state = State(cartridge);
    if ((address & kOddRegister) == 0) {
        state.bankSelect = value;
    } else {
        SetRegister(state, value);
    }
    Sync(cartridge);
}

// The header can't say whether a board's RAM protection works, so any write opens the RAM.
void WriteMirroringAndRam(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    SCANLINE_STATE& state = State(cartridge);
    if ((address & kOddRegister) == 0) {
        state.mirroring = value;
    } else {
        state.ramControl = kRamOpen;
    }
    Sync(cartridge);
}

void WriteLatch(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    SCANLINE_STATE& state = State(cartridge);
    if ((address & kOddRegister) == 0) {
        state.latch = value;
    } else {
        state.reload = 1;
    }
}

void WriteIrq(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t /*value*/) {
    State(cartridge).irqEnable = address & kOddRegister;
    if ((address & kOddRegister) == 0) {
        *cartridge.irqLines &= ~kNesIrqBoard;
    }
}

void CountLine(NES_CARTRIDGE& cartridge, SCANLINE_STATE& state) {
    const uint8_t before = state.counter;
    if (state.counter == 0 || state.reload != 0) {
        state.counter = state.latch;
        state.reload = 0;
    } else {
        --state.counter;
    }
    if (before != 0 && state.counter == 0 && state.irqEnable != 0) {
        *cartridge.irqLines |= kNesIrqBoard;
    }
}

// The first of several addresses with bit 12 set leaves the filter closed for the others.
void WatchAddresses(void* board, uint16_t address, uint32_t count) {
    NES_CARTRIDGE& cartridge = *static_cast<NES_CARTRIDGE*>(board);
    SCANLINE_STATE& state = State(cartridge);
    if ((address & kUpperHalf) == 0) {
        state.filter -= static_cast<uint8_t>(std::min<uint32_t>(state.filter, count));
        return;
    }
    if (state.filter <= 1) {
        CountLine(cartridge, state);
    }
    state.filter = kFilterAddresses;
}

uint32_t RisesToInterrupt(const NES_CARTRIDGE& cartridge) {
    const auto& state = BoardState<SCANLINE_STATE>(cartridge);
    if (state.irqEnable == 0) {
        return kNesNoInterrupt;
    }
    if (state.reload == 0 && state.counter != 0) {
        return state.counter;
    }
    const bool atOnce = state.counter != 0 && state.latch == 0;
    return atOnce ? 1 : state.latch + 1U;
}

void Reset(NES_CARTRIDGE& cartridge) {
    SCANLINE_STATE& state = State(cartridge);
    state.irqEnable = 0;
    state.counter = 0;
    state.latch = 0;
    state.reload = 0;
    state.filter = 0;
    state.bankSelect = 0;
    state.ramControl = 0;
    state.mirroring = HeaderMirroringRegister(cartridge);
    state.program = {0x3C, 0x3D, 0x3E, 0x3F}; // the last four
    state.character = {0, 1, 2, 3, 4, 5, 6, 7};
    cartridge.risesToInterrupt = RisesToInterrupt;
    SetWriteHandler(cartridge, 8, 9, WriteBanks);
    SetWriteHandler(cartridge, 10, 11, WriteMirroringAndRam);
    SetWriteHandler(cartridge, 12, 13, WriteLatch);
    SetWriteHandler(cartridge, 14, 15, WriteIrq);
    Sync(cartridge);
}

void Restore(NES_CARTRIDGE& cartridge) {
    SCANLINE_STATE& state = State(cartridge);
    state.irqEnable &= 1;
    state.reload &= 1;
    state.filter = state.filter > kFilterAddresses ? kFilterAddresses : state.filter;
    Sync(cartridge);
}

} // namespace

constexpr NES_BOARD_ROW kNesScanlineBoard{CreateBoardState<SCANLINE_STATE>,
                                          Reset,
                                          nullptr,
                                          nullptr,
                                          WatchAddresses,
                                          SaveBoardState<SCANLINE_STATE>,
                                          LoadBoardState<SCANLINE_STATE, Restore>};
