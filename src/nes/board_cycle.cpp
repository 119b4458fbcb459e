// Board 73: a program bank and a counter of CPU cycles.
#include "nes/board_private.h"

namespace {

// Control register.
constexpr uint8_t kEnableAfterAcknowledge = 1;
constexpr uint8_t kCounting = 2;
constexpr uint8_t kEightBits = 4;
constexpr uint8_t kControlMask = 7;

constexpr uint32_t kFull = 0xFFFF;
// Bit 16 is above the counter: in this mode it is never full and never interrupts.
constexpr uint32_t kFullEightBits = 0x100FF;

struct CYCLE_STATE : NES_BOARD_STATE {
    uint8_t control = 0; // 3 bits
    uint16_t counter = 0;
    uint16_t latch = 0;
    uint8_t bank = 0; // 16 KB at 0x8000
    NesBoardRam programRam{};
    NesBoardRam characterRam{};

    template <typename Visit>
    void Fields(Visit& visit) {
        visit(control);
        visit(counter);
        visit(latch);
        visit(bank);
        visit(programRam);
        visit(characterRam);
    }
};

CYCLE_STATE& State(NES_CARTRIDGE& cartridge) {
    return BoardState<CYCLE_STATE>(cartridge);
}

// The program RAM is in the first two pages, which the machine answers itself, so no access reaches it.
void MapHiddenRam(NES_CARTRIDGE& cartridge) {
    NesBoardRam& ram = State(cartridge).programRam;
    cartridge.pages.cpu[0] = {ram.data(), true, true};
    cartridge.pages.cpu[1] = {ram.data() + kNesCpuPageBytes, true, true};
}

void Sync(NES_CARTRIDGE& cartridge) {
    CYCLE_STATE& state = State(cartridge);
    MapHiddenRam(cartridge);
    MapPrg16(cartridge, 8, state.bank);
    MapPrg16(cartridge, 12, LastPrg16(cartridge));
    MapChrRam(cartridge, 0, 8, state.characterRam.data());
}

void Clock(NES_CARTRIDGE& cartridge) {
    CYCLE_STATE& state = State(cartridge);
    if ((state.control & kCounting) == 0) {
        return;
    }
    const uint32_t full = (state.control & kEightBits) != 0 ? kFullEightBits : kFull;
    if ((state.counter & full) == full) {
        state.counter = state.latch;
        *cartridge.irqLines |= kNesIrqBoard;
    } else {
        ++state.counter;
    }
}

// Pages 8 to 11 each set one hexadecimal digit of the latch, the lowest first.
void WriteLatch(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    CYCLE_STATE& state = State(cartridge);
    const uint32_t shift = (address >> 12 & 3u) * 4;
    state.latch = static_cast<uint16_t>((state.latch & ~(15u << shift)) | (value & 15u) << shift);
}

void WriteControl(NES_CARTRIDGE& cartridge, uint16_t /*address*/, uint8_t value) {
    CYCLE_STATE& state = State(cartridge);
    state.control = value & kControlMask;
    if ((state.control & kCounting) != 0) {
        state.counter = state.latch;
    }
    *cartridge.irqLines &= ~kNesIrqBoard;
}

void WriteAcknowledge(NES_CARTRIDGE& cartridge, uint16_t /*address*/, uint8_t /*value*/) {
    CYCLE_STATE& state = State(cartridge);
    const bool counting = (state.control & kEnableAfterAcknowledge) != 0;
    state.control = static_cast<uint8_t>((state.control & ~kCounting) | (counting ? kCounting : 0));
    *cartridge.irqLines &= ~kNesIrqBoard;
}

void WriteBank(NES_CARTRIDGE& cartridge, uint16_t /*address*/, uint8_t value) {
    State(cartridge).bank = value;
    Sync(cartridge);
}

void Reset(NES_CARTRIDGE& cartridge) {
    CYCLE_STATE& state = State(cartridge);
    state.control = 0;
    state.counter = 0;
    state.latch = 0;
    state.bank = 0;
    SetWriteHandler(cartridge, 8, 11, WriteLatch);
    SetWriteHandler(cartridge, 12, 12, WriteControl);
    SetWriteHandler(cartridge, 13, 13, WriteAcknowledge);
    SetWriteHandler(cartridge, 15, 15, WriteBank);
    Sync(cartridge);
}

void Restore(NES_CARTRIDGE& cartridge) {
    State(cartridge).control &= kControlMask;
    Sync(cartridge);
}

} // namespace

constexpr NES_BOARD_ROW kNesCycleBoard{CreateBoardState<CYCLE_STATE>,
                                       Reset,
                                       nullptr,
                                       Clock,
                                       nullptr,
                                       SaveBoardState<CYCLE_STATE>,
                                       LoadBoardState<CYCLE_STATE, Restore>};
