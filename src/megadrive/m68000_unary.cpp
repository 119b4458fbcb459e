// One operand: CLR, NEG, NEGX, NOT, TST, TAS. And decimal arithmetic, multiplication, division and the bound
// check.
#include "megadrive/m68000_operand.h"

namespace {

using enum M68kMode;
using Slot = M68kSlot;
using Size = M68kSize;

struct Clear {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t /*before*/) {
        return M68kLogicFlags<kSize>(cpu, 0);
    }
};

struct Negate {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value) {
        const uint32_t result = M68kDifference<kSize>(cpu, value, 0, 0);
        cpu.notZ = result;
        cpu.x = cpu.c;
        return result;
    }
};

struct NegateExtended {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value) {
        const uint32_t result = M68kDifference<kSize>(cpu, value, 0, M68kHasX(cpu) ? 1 : 0);
        cpu.notZ |= result;
        cpu.x = cpu.c;
        return result;
    }
};

struct Invert {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t value) {
        return M68kLogicFlags<kSize>(cpu, ~value & kM68kMask<kSize>);
    }
};

// Reads before it writes, CLR too.
template <class Operation, Size kSize, M68kMode kMode>
void Unary(M68K_STATE& cpu) {
    M68kModify<kMode, kSize>(
        cpu, [&](uint32_t value) { return Operation::template Apply<kSize>(cpu, value); });
}

template <Size kSize, M68kMode kMode>
void Test(M68K_STATE& cpu) {
    M68kLogicFlags<kSize>(cpu, M68kOperand<kMode, kSize>(cpu));
}

template <M68kMode kMode>
void TestAndSet(M68K_STATE& cpu) {
    constexpr uint32_t kTaken = 0x80;
    M68kModify<kMode, Size::kByte>(
        cpu, [&](uint32_t value) { return M68kLogicFlags<Size::kByte>(cpu, value) | kTaken; });
}

// Decimal arithmetic adds in binary and then corrects by 6 each digit that left its range. V is set if the
// correction changes the top bit: to 1 in a sum, to 0 in a difference (measured by B. Trzynadlowski).
constexpr uint32_t kLowDigit = 0x06;
constexpr uint32_t kHighDigit = 0x60;

void SetDecimalFlags(M68K_STATE& cpu, uint32_t result, bool hasCarry) {
    cpu.n = result;
    cpu.notZ |= result & 0xFF;
    cpu.c = hasCarry ? kM68kFlagC : 0;
    cpu.x = cpu.c;
}

struct AddDecimal {
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        constexpr uint32_t kHighest = 0x99;
        const uint32_t extend = M68kHasX(cpu) ? 1 : 0;
        const uint32_t sum = source + target + extend;
        const bool isLowOut = (source & 15) + (target & 15) + extend > 9;
        const bool isHighOut = sum > kHighest;
        const uint32_t result = sum + (isLowOut ? kLowDigit : 0) + (isHighOut ? kHighDigit : 0);
        SetDecimalFlags(cpu, result, isHighOut);
        cpu.v = ~sum & result;
        return result & 0xFF;
    }
};

struct SubtractDecimal {
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        constexpr uint32_t kBorrow = 0x100;
        const uint32_t extend = M68kHasX(cpu) ? 1 : 0;
        const uint32_t difference = target - source - extend;
        const bool isLowOut = (target & 15) < (source & 15) + extend;
        const bool isHighOut = (difference & kBorrow) != 0;
        const uint32_t result =
            difference - (isLowOut ? kLowDigit : 0) - (isHighOut ? kHighDigit : 0);
        SetDecimalFlags(cpu, result, isHighOut || (result & kBorrow) != 0);
        cpu.v = difference & ~result;
        return result & 0xFF;
    }
};

template <class Operation, M68kMode kSource, M68kMode kTarget>
void Decimal(M68K_STATE& cpu) {
    const uint32_t source = M68kOperand<kSource, Size::kByte>(cpu);
    if constexpr (kTarget == kData) {
        uint32_t& target = M68kDataRegister<Slot::kHigh>(cpu);
        M68kSetData<Size::kByte>(target, Operation::Apply(cpu, source, target & 0xFF));
    } else {
        const uint32_t address = M68kEffectiveAddress<kTarget, Size::kByte, Slot::kHigh>(cpu);
        M68kWriteByte(cpu, address, Operation::Apply(cpu, source, M68kReadByte(cpu, address)));
    }
}

template <M68kMode kMode>
void NegateDecimal(M68K_STATE& cpu) {
    M68kModify<kMode, Size::kByte>(
        cpu, [&](uint32_t value) { return SubtractDecimal::Apply(cpu, value, 0); });
}

template <M68kMode kMode>
void MultiplyUnsigned(M68K_STATE& cpu) {
    const uint32_t source = M68kOperand<kMode, Size::kWord>(cpu);
    uint32_t& target = M68kDataRegister<Slot::kHigh>(cpu);
    target = M68kLogicFlags<Size::kLong>(cpu, (target & 0xFFFF) * source);
}

template <M68kMode kMode>
void MultiplySigned(M68K_STATE& cpu) {
    const uint32_t source = M68kSignExtendWord(M68kOperand<kMode, Size::kWord>(cpu));
    uint32_t& target = M68kDataRegister<Slot::kHigh>(cpu);
    target = M68kLogicFlags<Size::kLong>(cpu, M68kSignExtendWord(target) * source);
}

void DivideByZero(M68K_STATE& cpu) {
    cpu.c = 0;
    M68kTakeException(cpu, kM68kZeroDivide, cpu.pc);
}

// The register keeps its value.
void DivisionOverflows(M68K_STATE& cpu) {
    cpu.n = kM68kFlagN;
    cpu.notZ = 1;
    cpu.v = kM68kFlagV;
    cpu.c = 0;
}

uint32_t QuotientAndRemainder(M68K_STATE& cpu, uint32_t quotient, uint32_t remainder) {
    M68kLogicFlags<Size::kWord>(cpu, quotient & 0xFFFF);
    return remainder << 16 | (quotient & 0xFFFF);
}

template <M68kMode kMode>
void DivideUnsigned(M68K_STATE& cpu) {
    constexpr uint32_t kMost = 0xFFFF;
    const uint32_t divisor = M68kOperand<kMode, Size::kWord>(cpu);
    uint32_t& target = M68kDataRegister<Slot::kHigh>(cpu);
    if (divisor == 0) {
        DivideByZero(cpu);
    } else if (target / divisor > kMost) {
        DivisionOverflows(cpu);
    } else {
        target = QuotientAndRemainder(cpu, target / divisor, target % divisor);
    }
}

// In 64 bits: the quotient of the lowest number and -1 does not fit into 32.
template <M68kMode kMode>
void DivideSigned(M68K_STATE& cpu) {
    const int64_t divisor = static_cast<int16_t>(M68kOperand<kMode, Size::kWord>(cpu));
    uint32_t& target = M68kDataRegister<Slot::kHigh>(cpu);
    const int64_t dividend = static_cast<int32_t>(target);
    if (divisor == 0) {
        DivideByZero(cpu);
        return;
    }
    const int64_t quotient = dividend / divisor;
    if (quotient < INT16_MIN || quotient > INT16_MAX) {
        DivisionOverflows(cpu);
        return;
    }
    target = QuotientAndRemainder(cpu, static_cast<uint32_t>(quotient),
                                  static_cast<uint32_t>(dividend % divisor));
}

// Z (measured on a console by B. Trzynadlowski), V and C are set before the trap, whether or not it is taken.
template <M68kMode kMode>
void CheckBounds(M68K_STATE& cpu) {
    const auto bound = static_cast<int16_t>(M68kOperand<kMode, Size::kWord>(cpu));
    const auto value = static_cast<int16_t>(M68kDataRegister<Slot::kHigh>(cpu));
    cpu.notZ = static_cast<uint16_t>(value);
    cpu.v = 0;
    cpu.c = 0;
    if (value < 0 || value > bound) {
        cpu.n = value < 0 ? kM68kFlagN : 0;
        M68kTakeException(cpu, kM68kBoundCheck, cpu.pc);
    }
}

template <class Operation, Size kSize>
void AddUnary(M68kRowList& rows, uint32_t line) {
    constexpr bool kIsLong = kSize == Size::kLong;
    const uint32_t match = line | M68kSizeBits(kSize);
    M68kAddRow(rows, Unary<Operation, kSize, kData>, match, kData, kIsLong ? 6 : 4);
    M68kForAlterable<kSize>([&]<M68kMode kMode>() {
        M68kAddRow(rows, Unary<Operation, kSize, kMode>, match, kMode,
                   (kIsLong ? 12U : 8U) + M68kModeClocks(kMode, kSize));
    });
}

template <Size kSize>
void AddTest(M68kRowList& rows) {
    const uint32_t match = 0x4A00 | M68kSizeBits(kSize);
    M68kAddRow(rows, Test<kSize, kData>, match, kData, 4);
    M68kForAlterable<kSize>([&]<M68kMode kMode>() {
        M68kAddRow(rows, Test<kSize, kMode>, match, kMode, 4 + M68kModeClocks(kMode, kSize));
    });
}

void AddByteRows(M68kRowList& rows) {
    M68kAddRow(rows, NegateDecimal<kData>, 0x4800, kData, 6);
    M68kAddRow(rows, TestAndSet<kData>, 0x4AC0, kData, 4);
    M68kForAlterable<Size::kByte>([&]<M68kMode kMode>() {
        const uint32_t clocks = M68kModeClocks(kMode, Size::kByte);
        M68kAddRow(rows, NegateDecimal<kMode>, 0x4800, kMode, 8 + clocks);
        M68kAddRow(rows, TestAndSet<kMode>, 0x4AC0, kMode, 14 + clocks);
    });
}

template <class Operation>
void AddDecimalRows(M68kRowList& rows, uint32_t match) {
    constexpr uint8_t kClocks = 18;
    rows.push_back({Decimal<Operation, kData, kData>, 0xF1F8, match, 6});
    rows.push_back({Decimal<Operation, kPreDecrement, kPreDecrement>, 0xF1F8, match | 8, kClocks});
    rows.push_back(
        {Decimal<Operation, kPreDecrementA7, kPreDecrement>, 0xF1FF, match | 0x00F, kClocks});
    rows.push_back(
        {Decimal<Operation, kPreDecrement, kPreDecrementA7>, 0xFFF8, match | 0xE08, kClocks});
    rows.push_back(
        {Decimal<Operation, kPreDecrementA7, kPreDecrementA7>, 0xFFFF, match | 0xE0F, kClocks});
}

} // namespace

void M68kAddUnaryRows(M68kRowList& rows) {
    M68kForSizes([&]<Size kSize>() {
        AddUnary<NegateExtended, kSize>(rows, 0x4000);
        AddUnary<Clear, kSize>(rows, 0x4200);
        AddUnary<Negate, kSize>(rows, 0x4400);
        AddUnary<Invert, kSize>(rows, 0x4600);
        AddTest<kSize>(rows);
    });
    AddByteRows(rows);
    AddDecimalRows<SubtractDecimal>(rows, 0x8100);
    AddDecimalRows<AddDecimal>(rows, 0xC100);
    M68kForData<Size::kWord>([&]<M68kMode kMode>() {
        const uint32_t clocks = M68kModeClocks(kMode, Size::kWord);
        M68kAddRegisterRow(rows, CheckBounds<kMode>, 0x4180, kMode, 10 + clocks);
        M68kAddRegisterRow(rows, DivideUnsigned<kMode>, 0x80C0, kMode, 140 + clocks);
        M68kAddRegisterRow(rows, DivideSigned<kMode>, 0x81C0, kMode, 158 + clocks);
        M68kAddRegisterRow(rows, MultiplyUnsigned<kMode>, 0xC0C0, kMode, 54 + clocks);
        M68kAddRegisterRow(rows, MultiplySigned<kMode>, 0xC1C0, kMode, 54 + clocks);
    });
}
