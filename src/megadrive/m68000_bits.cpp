// Bits, shifts and rotates.
#include "megadrive/m68000_operand.h"

namespace {

using enum M68kMode;
using Slot = M68kSlot;
using Size = M68kSize;

// The value with the bit as the instruction leaves it. Z is set from the old bit.
struct Keep {
    static uint32_t Apply(uint32_t value, uint32_t /*bit*/) { return value; }
};
struct Flip {
    static uint32_t Apply(uint32_t value, uint32_t bit) { return value ^ bit; }
};
struct Drop {
    static uint32_t Apply(uint32_t value, uint32_t bit) { return value & ~bit; }
};
struct Raise {
    static uint32_t Apply(uint32_t value, uint32_t bit) { return value | bit; }
};

// The number comes from a register, or from an extension word before those of the operand.
template <bool kFromRegister>
uint32_t BitNumber(M68K_STATE& cpu) {
    return kFromRegister ? M68kDataRegister<Slot::kHigh>(cpu) : M68kFetchWord(cpu);
}

// A data register is 32 bits wide, everything else 8.
template <class Operation, bool kFromRegister, M68kMode kMode>
void Bit(M68K_STATE& cpu) {
    constexpr Size kSize = kMode == kData ? Size::kLong : Size::kByte;
    const uint32_t number = BitNumber<kFromRegister>(cpu) & (kM68kBits<kSize> - 1);
    const uint32_t bit = uint32_t{1} << number;
    if constexpr (std::is_same_v<Operation, Keep>) {
        cpu.notZ = M68kOperand<kMode, kSize>(cpu) & bit;
    } else {
        M68kModify<kMode, kSize>(cpu, [&](uint32_t value) {
            cpu.notZ = value & bit;
            return Operation::Apply(value, bit);
        });
    }
}

// A shift takes a count of 0 to 63 and a value with its upper bits clear, and returns the result. All set C,
// all but the plain rotates set X, and ASL sets V; the caller clears V before and sets N and Z after. A count
// of 0 leaves X and clears C; a rotate through X sets C to X instead.
void CarryOut(M68K_STATE& cpu, uint32_t count, uint64_t lastBit) {
    cpu.c = count != 0 && (lastBit & 1) != 0 ? kM68kFlagC : 0;
}

void CarryAndExtend(M68K_STATE& cpu, uint32_t count, uint64_t lastBit) {
    CarryOut(cpu, count, lastBit);
    if (count != 0) {
        cpu.x = cpu.c;
    }
}

struct LogicalLeft {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value, uint32_t count) {
        const uint64_t shifted = uint64_t{value} << count;
        CarryAndExtend(cpu, count, shifted >> kM68kBits<kSize>);
        return static_cast<uint32_t>(shifted);
    }
};

// V is set if the sign changed at any time: if the bits that pass through the top bit are not all alike.
struct ArithmeticLeft {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value, uint32_t count) {
        constexpr uint32_t kBits = kM68kBits<kSize>;
        bool changes = value != 0;
        if (count < kBits) {
            const uint32_t passing =
                kM68kMask<kSize> &
                ~static_cast<uint32_t>(uint64_t{kM68kMask<kSize>} >> (count + 1));
            changes = (value & passing) != 0 && (value & passing) != passing;
        }
        cpu.v = changes ? kM68kFlagV : 0;
        return LogicalLeft::Apply<kSize>(cpu, value, count);
    }
};

struct LogicalRight {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value, uint32_t count) {
        CarryAndExtend(cpu, count, uint64_t{value} << 1 >> count);
        return static_cast<uint32_t>(uint64_t{value} >> count);
    }
};

struct ArithmeticRight {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value, uint32_t count) {
        constexpr uint32_t kSpare = 64 - kM68kBits<kSize>;
        const int64_t wide = static_cast<int64_t>(uint64_t{value} << kSpare) >> kSpare;
        const int64_t shifted = wide >> count;
        CarryAndExtend(cpu, count, count == 0 ? 0 : static_cast<uint64_t>(wide >> (count - 1)));
        return static_cast<uint32_t>(shifted);
    }
};

struct RotateLeft {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value, uint32_t count) {
        constexpr uint32_t kBits = kM68kBits<kSize>;
        const uint32_t places = count % kBits;
        const uint64_t wide = uint64_t{value} << places;
        const auto result = static_cast<uint32_t>(wide | wide >> kBits);
        CarryOut(cpu, count, result);
        return result;
    }
};

struct RotateRight {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value, uint32_t count) {
        constexpr uint32_t kBits = kM68kBits<kSize>;
        const uint32_t places = count % kBits;
        const uint64_t doubled = uint64_t{value} << kBits | value;
        const auto result = static_cast<uint32_t>(doubled >> places & kM68kMask<kSize>);
        CarryOut(cpu, count, result >> (kBits - 1));
        return result;
    }
};

// X is the bit above the value; C always becomes X.
template <Size kSize>
uint32_t RotateWithX(M68K_STATE& cpu, uint32_t value, uint32_t leftPlaces) {
    constexpr uint32_t kBits = kM68kBits<kSize>;
    const uint64_t ring = uint64_t{M68kHasX(cpu) ? 1U : 0U} << kBits | value;
    const uint64_t turned =
        leftPlaces == 0 ? ring : ring << leftPlaces | ring >> (kBits + 1 - leftPlaces);
    cpu.x = (turned >> kBits & 1) != 0 ? kM68kFlagX : 0;
    cpu.c = cpu.x;
    return static_cast<uint32_t>(turned);
}

struct RotateLeftX {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value, uint32_t count) {
        return RotateWithX<kSize>(cpu, value, count % (kM68kBits<kSize> + 1));
    }
};

struct RotateRightX {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value, uint32_t count) {
        constexpr uint32_t kRing = kM68kBits<kSize> + 1;
        return RotateWithX<kSize>(cpu, value, (kRing - count % kRing) % kRing);
    }
};

template <class Operation, Size kSize>
uint32_t ShiftAndFlag(M68K_STATE& cpu, uint32_t value, uint32_t count) {
    cpu.v = 0;
    const uint32_t result = Operation::template Apply<kSize>(cpu, value, count) & kM68kMask<kSize>;
    cpu.n = result >> kM68kTopShift<kSize>;
    cpu.notZ = result;
    return result;
}

template <class Operation, Size kSize, bool kFromRegister>
void ShiftRegister(M68K_STATE& cpu) {
    constexpr uint32_t kMostCount = 63;
    constexpr uint32_t kMostPlaces = 15; // a loaded state may hold any shift
    const uint32_t count =
        kFromRegister ? M68kDataRegister<Slot::kHigh>(cpu) & kMostCount : M68kQuickValue(cpu);
    uint32_t& target = M68kDataRegister<Slot::kLow>(cpu);
    M68kSetData<kSize>(target,
                       ShiftAndFlag<Operation, kSize>(cpu, target & kM68kMask<kSize>, count));
    M68kSpend(cpu,
              static_cast<int32_t>(count << (static_cast<uint32_t>(cpu.cycShift) & kMostPlaces)));
}

template <class Operation, M68kMode kMode>
void ShiftMemory(M68K_STATE& cpu) {
    M68kModify<kMode, Size::kWord>(
        cpu, [&](uint32_t value) { return ShiftAndFlag<Operation, Size::kWord>(cpu, value, 1); });
}

template <class Operation, bool kFromRegister, M68kMode kMode>
void AddBit(M68kRowList& rows, uint32_t kind, uint32_t cycles) {
    if constexpr (kFromRegister) {
        M68kAddRegisterRow(rows, Bit<Operation, true, kMode>, 0x0100 | kind << 6, kMode, cycles);
    } else {
        M68kAddRow(rows, Bit<Operation, false, kMode>, 0x0800 | kind << 6, kMode, cycles);
    }
}

template <class Operation, bool kFromRegister>
void AddBits(M68kRowList& rows, uint32_t kind, uint32_t dataClocks) {
    constexpr bool kTests = std::is_same_v<Operation, Keep>;
    constexpr uint32_t kBase = (kTests ? 4 : 8) + (kFromRegister ? 0 : 4);
    const auto add = [&]<M68kMode kMode>() {
        AddBit<Operation, kFromRegister, kMode>(rows, kind,
                                                kBase + M68kModeClocks(kMode, Size::kByte));
    };
    AddBit<Operation, kFromRegister, kData>(rows, kind, dataClocks);
    M68kForAlterable<Size::kByte>(add);
    if constexpr (kTests) {
        M68kForModes(M68K_MODES<kPcDisplacement, kPcIndexed>{}, add);
    }
}

template <class Operation>
void AddRegisterShift(M68kRowList& rows, uint32_t kind, bool isLeft) {
    M68kForSizes([&]<Size kSize>() {
        const uint32_t match = 0xE000 | (isLeft ? 0x100U : 0) | M68kSizeBits(kSize) | kind << 3;
        const auto cycles = static_cast<uint8_t>(kSize == Size::kLong ? 8 : 6);
        rows.push_back({ShiftRegister<Operation, kSize, false>, 0xF1F8, match, cycles});
        rows.push_back({ShiftRegister<Operation, kSize, true>, 0xF1F8, match | 0x20, cycles});
    });
}

template <class Operation>
void AddShift(M68kRowList& rows, uint32_t kind, bool isLeft) {
    AddRegisterShift<Operation>(rows, kind, isLeft);
    const uint32_t match = 0xE0C0 | kind << 9 | (isLeft ? 0x100U : 0);
    M68kForModes(m68k_modes::Alterable{}, [&]<M68kMode kMode>() {
        M68kAddRow(rows, ShiftMemory<Operation, kMode>, match, kMode,
                   8 + M68kModeClocks(kMode, Size::kWord));
    });
}

} // namespace

void M68kAddBitRows(M68kRowList& rows) {
    // On data registers the time depends on the half of the bit; this is that of the upper one.
    AddBits<Keep, true>(rows, 0, 6);
    AddBits<Flip, true>(rows, 1, 8);
    AddBits<Drop, true>(rows, 2, 10);
    AddBits<Raise, true>(rows, 3, 8);
    AddBits<Keep, false>(rows, 0, 10);
    AddBits<Flip, false>(rows, 1, 12);
    AddBits<Drop, false>(rows, 2, 14);
    AddBits<Raise, false>(rows, 3, 12);
    AddBit<Keep, true, kImmediate>(rows, 0, 10);
    AddShift<ArithmeticRight>(rows, 0, false);
    AddShift<ArithmeticLeft>(rows, 0, true);
    AddShift<LogicalRight>(rows, 1, false);
    AddShift<LogicalLeft>(rows, 1, true);
    AddShift<RotateRightX>(rows, 2, false);
    AddShift<RotateLeftX>(rows, 2, true);
    AddShift<RotateRight>(rows, 3, false);
    AddShift<RotateLeft>(rows, 3, true);
}
