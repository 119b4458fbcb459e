// Board 1: four registers, written through a shift register that takes one bit per write, the lowest first.
#include "nes/board_private.h"

namespace {

constexpr uint8_t kControlAtReset = 12; // kFixLast and kSwitchHalf: last bank fixed at 0xC000
constexpr uint8_t kBitsAValue = 5;
constexpr uint8_t kValueMask = 31;
constexpr uint32_t kBanksOfTwoHalves = 32; // 512 KB: kOuterBank selects a half of the program
constexpr uint8_t kShiftReset = 0x80;      // bit of a written value

enum Register : uint32_t { kControl, kChr0, kChr1, kPrg };
constexpr uint32_t kRegisterShift = 13; // of an address to its register

// Control register.
constexpr uint8_t kMirroringMask = 3;
constexpr uint8_t kFixLast = 4; // with kSwitchHalf: 0xC000 is fixed, otherwise 0x8000
constexpr uint8_t kSwitchHalf = 8;
constexpr uint8_t kChrHalves = 16;
// Above them, a bit for each bit of kControlAtReset: set by a reset write, but not mapped yet. A state keeps
// them too, so that a loaded run goes on as the saved one did.
constexpr uint8_t kPendingShift = 3;
constexpr uint8_t kControlMask = kValueMask | kControlAtReset << kPendingShift;

constexpr size_t kHalfBytes = 4 * kNesPpuPageBytes;

constexpr uint8_t kOuterBank = 0x10; // CHR 0 register, with kBanksOfTwoHalves
constexpr uint8_t kPrgBank = 0x0F;   // PRG register
constexpr uint32_t kOddBank = 1;     // doesn't count where two banks are selected together
constexpr uint8_t kRamClosed = 0x10;

struct SHIFT_STATE : NES_BOARD_STATE {
    std::array<uint8_t, 4> registers{}; // by Register, 5 bits each and the pending ones
    uint8_t shift = 0;                  // bits shifted in so far
    uint8_t count = 0;                  // number of them, 0..4
    uint32_t lastRegister = 0;          // the one that was set last, 0..3
    uint32_t lastCycle = 0;             // CPU cycle of the last accepted write
    NesBoardRam programRam{};
    NesBoardRam characterRam{};

    template <typename Visit>
    void Fields(Visit& visit) {
        visit(registers);
        visit(shift);
        visit(count);
        visit(lastRegister);
        visit(lastCycle);
        visit(programRam);
        visit(characterRam);
    }
};

SHIFT_STATE& State(NES_CARTRIDGE& cartridge) {
    return BoardState<SHIFT_STATE>(cartridge);
}

void SyncProgram(NES_CARTRIDGE& cartridge) {
    const auto& registers = State(cartridge).registers;
    const uint32_t pending = registers[kControl] >> kPendingShift & kControlAtReset;
    const uint32_t control = registers[kControl] & ~pending;
    const uint32_t outer =
        cartridge.programBanks == kBanksOfTwoHalves ? uint32_t{registers[kChr0]} & kOuterBank : 0;
    const uint32_t bank = uint32_t{registers[kPrg]} & kPrgBank;
    uint32_t low = bank & ~kOddBank;
    uint32_t high = bank | kOddBank;
    if ((control & kSwitchHalf) != 0) {
        const bool fixLast = (control & kFixLast) != 0;
        low = fixLast ? bank : 0;
        high = fixLast ? kPrgBank : bank;
    }
    MapPrg16(cartridge, 8, low + outer);
    MapPrg16(cartridge, 12, high + outer);
}

void MapHalf(NES_CARTRIDGE& cartridge, uint32_t firstPage, uint32_t bank) {
    if (cartridge.characterBanks == 0) {
        MapChrRam(cartridge, firstPage, 4,
                  State(cartridge).characterRam.data() + bank % 2 * kHalfBytes);
    } else {
        MapChr4(cartridge, firstPage, bank);
    }
}

void SyncCharacters(NES_CARTRIDGE& cartridge) {
    const auto& registers = State(cartridge).registers;
    if ((registers[kControl] & kChrHalves) != 0) {
        MapHalf(cartridge, 0, registers[kChr0] & kValueMask);
        MapHalf(cartridge, 4, registers[kChr1] & kValueMask);
    } else {
        const uint32_t bank = registers[kChr0] & kValueMask;
        MapHalf(cartridge, 0, bank & ~kOddBank);
        MapHalf(cartridge, 4, bank | kOddBank);
    }
}

void Sync(NES_CARTRIDGE& cartridge) {
    // Index: control & 3.
    constexpr std::array<NesMirroring, 4> kMirrorings{NesMirroring::kPageA, NesMirroring::kPageB,
                                                      NesMirroring::kVertical,
                                                      NesMirroring::kHorizontal};
    SHIFT_STATE& state = State(cartridge);
    SetMirroring(cartridge, kMirrorings[state.registers[kControl] & kMirroringMask]);
    SyncProgram(cartridge);
    SyncCharacters(cartridge);
    const bool open = (state.registers[kPrg] & kRamClosed) == 0;
    MapPrgRam(cartridge, state.programRam, open, open);
}

// The second of two writes in consecutive cycles, as a read-modify-write instruction makes them, is ignored.
void Write(NES_CARTRIDGE& cartridge, uint16_t address, uint8_t value) {
    SHIFT_STATE& state = State(cartridge);
    if (*cartridge.cpuCycles - state.lastCycle <= 1) {
        return;
    }
    state.lastCycle = *cartridge.cpuCycles;
    if ((value & kShiftReset) != 0) {
        // The new control bits take effect with the next register write.
        uint8_t& control = state.registers[kControl];
        const auto pending = static_cast<uint8_t>(kControlAtReset & ~control);
        control = static_cast<uint8_t>(control | pending | pending << kPendingShift);
        state.shift = 0;
        state.count = 0;
        return;
    }
    state.shift = static_cast<uint8_t>(state.shift | (value & 1) << state.count);
    if (++state.count == kBitsAValue) {
        state.lastRegister = address >> kRegisterShift & kPrg;
        state.registers[kControl] &= kValueMask;
        state.registers[state.lastRegister] = state.shift & kValueMask;
        state.shift = 0;
        state.count = 0;
        Sync(cartridge);
    }
}

void Reset(NES_CARTRIDGE& cartridge) {
    SHIFT_STATE& state = State(cartridge);
    state.registers = {kControlAtReset, 0, 0, 0};
    state.shift = 0;
    state.count = 0;
    state.lastRegister = 0;
    state.lastCycle = 0;
    SetWriteHandler(cartridge, 8, 15, Write);
    Sync(cartridge);
}

void Restore(NES_CARTRIDGE& cartridge) {
    SHIFT_STATE& state = State(cartridge);
    const uint8_t control = state.registers[kControl] & kControlMask;
    for (uint8_t& value : state.registers) {
        value &= kValueMask;
    }
    state.registers[kControl] = control;
    state.count %= kBitsAValue;
    state.lastRegister &= kPrg;
    Sync(cartridge);
}

} // namespace

constexpr NES_BOARD_ROW kNesShiftBoard{CreateBoardState<SHIFT_STATE>,
                                       Reset,
                                       nullptr,
                                       nullptr,
                                       nullptr,
                                       SaveBoardState<SHIFT_STATE>,
                                       LoadBoardState<SHIFT_STATE, Restore>};
